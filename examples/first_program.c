/* The first program: one frame of the first camera, and its size. */
#include <koro/koro.h>

#include <stdio.h>
#include <stdlib.h>

/* Ends the program with the library's own words when a call has failed. */
static void Check(KORO_ReturnCode code)
{
    char text[1024] = "";
    size_t textSize = sizeof text;
    if (code != KORO_RETURN_CODE_SUCCESS)
    {
        KORO_Library_GetLastError(&code, text, &textSize);
        fprintf(stderr, "%s\n", text);
        exit(EXIT_FAILURE);
    }
}

int main(void)
{
    char path[4096];
    size_t size = sizeof path, width = 0, height = 0;
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
    KORO_NodeHandle node;
    KORO_CommandNodeHandle start;

    Check(KORO_Library_Initialize());
    Check(KORO_EnvironmentInspector_UpdateCTIPaths());
    Check(KORO_EnvironmentInspector_GetCTIPath(0, path, &size));
    Check(KORO_ProducerLibrary_Construct(path, size, &producer));
    Check(KORO_ProducerLibrary_GetSystem(producer, &systemDescriptor));
    Check(KORO_SystemDescriptor_OpenSystem(systemDescriptor, &system));
    Check(KORO_System_UpdateInterfaces(system, 1000));
    Check(KORO_System_GetInterface(system, 0, &interfaceDescriptor));
    Check(KORO_InterfaceDescriptor_OpenInterface(interfaceDescriptor, &interface));
    Check(KORO_Interface_UpdateDevices(interface, 1000));
    Check(KORO_Interface_GetDevice(interface, 0, &deviceDescriptor));
    Check(KORO_DeviceDescriptor_OpenDevice(deviceDescriptor, KORO_DEVICE_ACCESS_CONTROL, &device));
    Check(KORO_Device_GetDataStream(device, 0, &streamDescriptor));
    Check(KORO_DataStreamDescriptor_OpenDataStream(streamDescriptor, &stream));
    Check(KORO_Device_GetRemoteDevice(device, &camera));
    Check(KORO_RemoteDevice_ToModule(camera, &module));
    Check(KORO_Module_GetNodeMap(module, 0, &features));
    Check(KORO_NodeMap_FindNode(features, "AcquisitionStart", sizeof "AcquisitionStart", &node));
    Check(KORO_Node_ToCommandNode(node, &start));

    Check(KORO_DataStream_GetPayloadSize(stream, &size));
    Check(KORO_DataStream_AllocAndAnnounceBuffer(stream, size, NULL, &buffer));
    Check(KORO_DataStream_QueueBuffer(stream, buffer));
    Check(KORO_DataStream_StartAcquisition(stream, KORO_ACQ_START_FLAGS_DEFAULT, 1));
    Check(KORO_CommandNode_Execute(start));
    Check(KORO_DataStream_WaitForFinishedBuffer(stream, 5000, &buffer));
    Check(KORO_Buffer_GetWidth(buffer, &width));
    Check(KORO_Buffer_GetHeight(buffer, &height));
    printf("%zu x %zu pixels\n", width, height);
    return KORO_Library_Close();
}
