#include "example.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum
{
    updateTimeout_ms = 1000
};

void Fail(const char* text)
{
    fprintf(stderr, "%s\n", text);
    KORO_Library_Close();
    exit(EXIT_FAILURE);
}

void Check(KORO_ReturnCode code)
{
    char text[1024] = "";
    size_t textSize = sizeof text;
    if (code == KORO_RETURN_CODE_SUCCESS)
    {
        return;
    }
    KORO_Library_GetLastError(&code, text, &textSize);
    Fail(text);
}

KORO_ProducerLibraryHandle LoadProducer(size_t index)
{
    char path[4096];
    size_t pathSize = sizeof path;
    KORO_ProducerLibraryHandle producer = NULL;
    Check(KORO_EnvironmentInspector_GetCTIPath(index, path, &pathSize));
    Check(KORO_ProducerLibrary_Construct(path, pathSize, &producer));
    return producer;
}

KORO_SystemHandle OpenSystem(KORO_ProducerLibraryHandle producer)
{
    KORO_SystemDescriptorHandle descriptor = NULL;
    KORO_SystemHandle system = NULL;
    Check(KORO_ProducerLibrary_GetSystem(producer, &descriptor));
    Check(KORO_SystemDescriptor_OpenSystem(descriptor, &system));
    Check(KORO_System_UpdateInterfaces(system, updateTimeout_ms));
    return system;
}

KORO_InterfaceHandle OpenInterface(KORO_SystemHandle system, size_t index)
{
    KORO_InterfaceDescriptorHandle descriptor = NULL;
    KORO_InterfaceHandle interface = NULL;
    Check(KORO_System_GetInterface(system, index, &descriptor));
    Check(KORO_InterfaceDescriptor_OpenInterface(descriptor, &interface));
    Check(KORO_Interface_UpdateDevices(interface, updateTimeout_ms));
    return interface;
}

/* Leaves the interface open that has a device. */
static int FindDevice(Camera* camera)
{
    size_t numInterfaces = 0, numDevices = 0;
    Check(KORO_System_GetNumInterfaces(camera->system, &numInterfaces));
    for (size_t index = 0; index < numInterfaces; ++index)
    {
        camera->interface = OpenInterface(camera->system, index);
        Check(KORO_Interface_GetNumDevices(camera->interface, &numDevices));
        if (numDevices > 0)
        {
            return 1;
        }
        Check(KORO_Interface_Destruct(camera->interface));
    }
    return 0;
}

Camera OpenFirstInterface(void)
{
    Camera camera = {NULL, NULL, NULL, NULL, NULL, NULL};
    size_t numProducers = 0;
    Check(KORO_EnvironmentInspector_UpdateCTIPaths());
    Check(KORO_EnvironmentInspector_GetNumCTIPaths(&numProducers));
    if (numProducers == 0)
    {
        Fail("No producer (.cti) works in the folders of GENICAM_GENTL64_PATH; `koro doctor` shows why.");
    }
    for (size_t index = 0; index < numProducers; ++index)
    {
        camera.producer = LoadProducer(index);
        camera.system = OpenSystem(camera.producer);
        if (FindDevice(&camera))
        {
            return camera;
        }
        Check(KORO_System_Destruct(camera.system));
        Check(KORO_ProducerLibrary_Destruct(camera.producer));
    }
    Fail("No producer lists a camera; `koro doctor` and `koro list` show more.");
    return camera;
}

static KORO_NodeMapHandle FeaturesOf(KORO_DeviceHandle device)
{
    KORO_RemoteDeviceHandle remoteDevice = NULL;
    KORO_ModuleHandle module = NULL;
    KORO_NodeMapHandle features = NULL;
    Check(KORO_Device_GetRemoteDevice(device, &remoteDevice));
    Check(KORO_RemoteDevice_ToModule(remoteDevice, &module));
    Check(KORO_Module_GetNodeMap(module, 0, &features));
    return features;
}

void OpenDevice(Camera* camera, size_t index)
{
    KORO_DeviceDescriptorHandle deviceDescriptor = NULL;
    KORO_DataStreamDescriptorHandle streamDescriptor = NULL;
    Check(KORO_Interface_GetDevice(camera->interface, index, &deviceDescriptor));
    Check(KORO_DeviceDescriptor_OpenDevice(deviceDescriptor, KORO_DEVICE_ACCESS_CONTROL, &camera->device));
    Check(KORO_Device_GetDataStream(camera->device, 0, &streamDescriptor));
    Check(KORO_DataStreamDescriptor_OpenDataStream(streamDescriptor, &camera->stream));
    camera->features = FeaturesOf(camera->device);
}

Camera OpenFirstCamera(void)
{
    Camera camera = OpenFirstInterface();
    OpenDevice(&camera, 0);
    return camera;
}

/* A camera need not have the feature. */
static void LockParameters(const Camera* camera, int64_t locked)
{
    KORO_NodeHandle node = NULL;
    Check(KORO_NodeMap_TryFindNode(camera->features, "TLParamsLocked", sizeof "TLParamsLocked", &node));
    if (node)
    {
        SetInteger(camera->features, "TLParamsLocked", locked);
    }
}

void StartAcquisition(const Camera* camera)
{
    Check(KORO_DataStream_StartAcquisitionInfinite(camera->stream, KORO_ACQ_START_FLAGS_DEFAULT));
    LockParameters(camera, 1);
    Execute(camera->features, "AcquisitionStart");
}

void StopAcquisition(const Camera* camera)
{
    Execute(camera->features, "AcquisitionStop");
    Check(KORO_DataStream_StopAcquisition(camera->stream, KORO_ACQ_STOP_FLAGS_DEFAULT));
    LockParameters(camera, 0);
}

size_t PayloadSize(const Camera* camera)
{
    KORO_Bool8 defines = 0;
    size_t size = 0;
    if (KORO_DataStream_GetDefinesPayloadSize(camera->stream, &defines) == KORO_RETURN_CODE_SUCCESS && defines &&
        KORO_DataStream_GetPayloadSize(camera->stream, &size) == KORO_RETURN_CODE_SUCCESS)
    {
        return size;
    }
    return (size_t)GetInteger(camera->features, "PayloadSize");
}

void AllocateAndQueue(const Camera* camera, int numBuffers)
{
    const size_t payloadSize = PayloadSize(camera);
    for (int index = 0; index < numBuffers; ++index)
    {
        KORO_BufferHandle buffer = NULL;
        Check(KORO_DataStream_AllocAndAnnounceBuffer(camera->stream, payloadSize, NULL, &buffer));
        Check(KORO_DataStream_QueueBuffer(camera->stream, buffer));
    }
}

KORO_NodeHandle FindFeature(KORO_NodeMapHandle features, const char* name)
{
    KORO_NodeHandle node = NULL;
    Check(KORO_NodeMap_FindNode(features, name, strlen(name) + 1, &node));
    return node;
}

void Execute(KORO_NodeMapHandle features, const char* command)
{
    KORO_CommandNodeHandle node = NULL;
    Check(KORO_Node_ToCommandNode(FindFeature(features, command), &node));
    Check(KORO_CommandNode_Execute(node));
}

void SetInteger(KORO_NodeMapHandle features, const char* name, int64_t value)
{
    KORO_IntegerNodeHandle node = NULL;
    Check(KORO_Node_ToIntegerNode(FindFeature(features, name), &node));
    Check(KORO_IntegerNode_SetValue(node, value));
}

int64_t GetInteger(KORO_NodeMapHandle features, const char* name)
{
    KORO_IntegerNodeHandle node = NULL;
    int64_t value = 0;
    Check(KORO_Node_ToIntegerNode(FindFeature(features, name), &node));
    Check(KORO_IntegerNode_GetValue(node, KORO_NODE_CACHE_POLICY_IGNORE_CACHE, &value));
    return value;
}

void SetBoolean(KORO_NodeMapHandle features, const char* name, int value)
{
    KORO_BooleanNodeHandle node = NULL;
    Check(KORO_Node_ToBooleanNode(FindFeature(features, name), &node));
    Check(KORO_BooleanNode_SetValue(node, value ? 1 : 0));
}

void Choose(KORO_NodeMapHandle features, const char* enumeration, const char* entry)
{
    KORO_EnumerationNodeHandle node = NULL;
    Check(KORO_Node_ToEnumerationNode(FindFeature(features, enumeration), &node));
    Check(KORO_EnumerationNode_SetCurrentEntryBySymbolicValue(node, entry, strlen(entry) + 1));
}

void CloseDevice(Camera* camera)
{
    Check(KORO_DataStream_Destruct(camera->stream));
    Check(KORO_Device_Destruct(camera->device));
    camera->stream = NULL;
    camera->device = NULL;
    camera->features = NULL;
}

void CloseCamera(Camera* camera)
{
    CloseDevice(camera);
    Check(KORO_Interface_Destruct(camera->interface));
    Check(KORO_System_Destruct(camera->system));
    Check(KORO_ProducerLibrary_Destruct(camera->producer));
}
