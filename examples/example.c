#include "example.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum
{
    updateTimeout_ms = 1000
};

void Check(KORO_ReturnCode code)
{
    char text[1024] = "";
    size_t textSize = sizeof text;
    if (code == KORO_RETURN_CODE_SUCCESS)
    {
        return;
    }
    KORO_Library_GetLastError(&code, text, &textSize);
    fprintf(stderr, "%s\n", text);
    exit(EXIT_FAILURE);
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

Camera OpenFirstCamera(void)
{
    Camera camera = {NULL, NULL, NULL, NULL, NULL};
    KORO_DeviceDescriptorHandle deviceDescriptor = NULL;
    KORO_DataStreamDescriptorHandle streamDescriptor = NULL;
    Check(KORO_EnvironmentInspector_UpdateCTIPaths());
    camera.producer = LoadProducer(0);
    camera.system = OpenSystem(camera.producer);
    camera.interface = OpenInterface(camera.system, 0);
    Check(KORO_Interface_GetDevice(camera.interface, 0, &deviceDescriptor));
    Check(KORO_DeviceDescriptor_OpenDevice(deviceDescriptor, KORO_DEVICE_ACCESS_CONTROL, &camera.device));
    Check(KORO_Device_GetDataStream(camera.device, 0, &streamDescriptor));
    Check(KORO_DataStreamDescriptor_OpenDataStream(streamDescriptor, &camera.stream));
    return camera;
}

void Execute(const Camera* camera, const char* command)
{
    KORO_RemoteDeviceHandle remoteDevice = NULL;
    KORO_ModuleHandle module = NULL;
    KORO_NodeMapHandle features = NULL;
    KORO_NodeHandle node = NULL;
    KORO_CommandNodeHandle commandNode = NULL;
    Check(KORO_Device_GetRemoteDevice(camera->device, &remoteDevice));
    Check(KORO_RemoteDevice_ToModule(remoteDevice, &module));
    Check(KORO_Module_GetNodeMap(module, 0, &features));
    Check(KORO_NodeMap_FindNode(features, command, strlen(command) + 1, &node));
    Check(KORO_Node_ToCommandNode(node, &commandNode));
    Check(KORO_CommandNode_Execute(commandNode));
}

void CloseCamera(const Camera* camera)
{
    Check(KORO_DataStream_Destruct(camera->stream));
    Check(KORO_Device_Destruct(camera->device));
    Check(KORO_Interface_Destruct(camera->interface));
    Check(KORO_System_Destruct(camera->system));
    Check(KORO_ProducerLibrary_Destruct(camera->producer));
}
