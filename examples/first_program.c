/* The first program: one frame of the first camera, and its size. */
#include <koro/koro.h>

#include <stdio.h>
#include <stdlib.h>

/* Ends the program with a reason. The library is closed before, since some producers crash when they are left open. */
static void Fail(const char* reason)
{
    fprintf(stderr, "%s\n", reason);
    KORO_Library_Close();
    exit(EXIT_FAILURE);
}

/* The same with the library's own words when a call has failed. */
static void Check(KORO_ReturnCode code)
{
    char text[1024] = "";
    size_t textSize = sizeof text;
    if (code != KORO_RETURN_CODE_SUCCESS)
    {
        KORO_Library_GetLastError(&code, text, &textSize);
        Fail(text);
    }
}

static KORO_NodeHandle Find(KORO_NodeMapHandle features, const char* name, size_t nameSize)
{
    KORO_NodeHandle node = NULL;
    Check(KORO_NodeMap_FindNode(features, name, nameSize, &node));
    return node;
}

/* Where the producer does not know the size of a frame, the camera does. */
static size_t FrameSize(KORO_DataStreamHandle stream, KORO_NodeMapHandle features)
{
    size_t size = 0;
    int64_t value = 0;
    KORO_IntegerNodeHandle node;
    if (KORO_DataStream_GetPayloadSize(stream, &size) == KORO_RETURN_CODE_SUCCESS && size > 0)
    {
        return size;
    }
    Check(KORO_Node_ToIntegerNode(Find(features, "PayloadSize", sizeof "PayloadSize"), &node));
    Check(KORO_IntegerNode_GetValue(node, KORO_NODE_CACHE_POLICY_USE_CACHE, &value));
    return (size_t)value;
}

int main(void)
{
    char path[4096];
    size_t size = sizeof path, count = 0, width = 0, height = 0;
    KORO_ProducerLibraryHandle producer;
    KORO_SystemDescriptorHandle systemDescriptor;
    KORO_SystemHandle system;
    KORO_InterfaceDescriptorHandle interfaceDescriptor;
    KORO_InterfaceHandle interface;
    KORO_DeviceDescriptorHandle deviceDescriptor;
    KORO_DeviceHandle device;
    KORO_DataStreamDescriptorHandle streamDescriptor;
    KORO_DataStreamHandle stream;
    KORO_BufferHandle buffer;
    KORO_RemoteDeviceHandle camera;
    KORO_ModuleHandle module;
    KORO_NodeMapHandle features;
    KORO_CommandNodeHandle start, stop;
    KORO_NodeHandle node = NULL;
    KORO_IntegerNodeHandle lock = NULL;

    Check(KORO_Library_Initialize());
    Check(KORO_EnvironmentInspector_UpdateCTIPaths());
    Check(KORO_EnvironmentInspector_GetNumCTIPaths(&count));
    if (count == 0)
    {
        Fail(
            getenv("GENICAM_GENTL64_PATH")
                ? "No producer (.cti) works in the folders of GENICAM_GENTL64_PATH; `koro doctor` shows why."
                : "GENICAM_GENTL64_PATH is not set: it names the folders of producers (.cti).");
    }
    Check(KORO_EnvironmentInspector_GetCTIPath(0, path, &size));
    Check(KORO_ProducerLibrary_Construct(path, size, &producer));
    Check(KORO_ProducerLibrary_GetSystem(producer, &systemDescriptor));
    Check(KORO_SystemDescriptor_OpenSystem(systemDescriptor, &system));
    Check(KORO_System_UpdateInterfaces(system, 1000));
    Check(KORO_System_GetNumInterfaces(system, &count));
    if (count == 0) Fail("The producer lists no interface.");
    Check(KORO_System_GetInterface(system, 0, &interfaceDescriptor));
    Check(KORO_InterfaceDescriptor_OpenInterface(interfaceDescriptor, &interface));
    Check(KORO_Interface_UpdateDevices(interface, 1000));
    Check(KORO_Interface_GetNumDevices(interface, &count));
    if (count == 0) Fail("The first interface lists no camera; `koro list` shows all interfaces.");
    Check(KORO_Interface_GetDevice(interface, 0, &deviceDescriptor));
    Check(KORO_DeviceDescriptor_OpenDevice(deviceDescriptor, KORO_DEVICE_ACCESS_CONTROL, &device));
    Check(KORO_Device_GetDataStream(device, 0, &streamDescriptor));
    Check(KORO_DataStreamDescriptor_OpenDataStream(streamDescriptor, &stream));
    Check(KORO_Device_GetRemoteDevice(device, &camera));
    Check(KORO_RemoteDevice_ToModule(camera, &module));
    Check(KORO_Module_GetNodeMap(module, 0, &features));
    Check(KORO_Node_ToCommandNode(Find(features, "AcquisitionStart", sizeof "AcquisitionStart"), &start));
    Check(KORO_Node_ToCommandNode(Find(features, "AcquisitionStop", sizeof "AcquisitionStop"), &stop));

    Check(KORO_DataStream_AllocAndAnnounceBuffer(stream, FrameSize(stream, features), NULL, &buffer));
    Check(KORO_DataStream_QueueBuffer(stream, buffer));
    Check(KORO_DataStream_StartAcquisition(stream, KORO_ACQ_START_FLAGS_DEFAULT, 1));
    /* What changes the size of frames stays as it is while they come; not every camera has the feature. */
    Check(KORO_NodeMap_TryFindNode(features, "TLParamsLocked", sizeof "TLParamsLocked", &node));
    if (node)
    {
        Check(KORO_Node_ToIntegerNode(node, &lock));
        Check(KORO_IntegerNode_SetValue(lock, 1));
    }
    Check(KORO_CommandNode_Execute(start));
    Check(KORO_DataStream_WaitForFinishedBuffer(stream, 5000, &buffer));
    Check(KORO_Buffer_GetWidth(buffer, &width));
    Check(KORO_Buffer_GetHeight(buffer, &height));
    printf("%zu x %zu pixels\n", width, height);
    Check(KORO_CommandNode_Execute(stop));
    Check(KORO_DataStream_StopAcquisition(stream, KORO_ACQ_STOP_FLAGS_DEFAULT));
    if (lock) Check(KORO_IntegerNode_SetValue(lock, 0));
    return KORO_Library_Close();
}
