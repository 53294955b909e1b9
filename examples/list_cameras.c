/* Lists every camera of every producer: serial number, vendor and model, type of the transport layer. */
#include "example.h"

#include <stdio.h>

typedef KORO_ReturnCode (*StringGetter)(KORO_DeviceDescriptorHandle, char*, size_t*);

/* A camera need not have every text; one that its producer does not give is shown as a dash. */
static void Print(StringGetter get, KORO_DeviceDescriptorHandle camera, const char* end)
{
    char text[256];
    size_t textSize = sizeof text;
    const KORO_ReturnCode code = get(camera, text, &textSize);
    printf("%s%s", code == KORO_RETURN_CODE_SUCCESS ? text : "-", end);
}

static size_t ListCameras(KORO_InterfaceHandle interface)
{
    size_t numDevices = 0;
    Check(KORO_Interface_GetNumDevices(interface, &numDevices));
    for (size_t index = 0; index < numDevices; ++index)
    {
        KORO_DeviceDescriptorHandle camera = NULL;
        Check(KORO_Interface_GetDevice(interface, index, &camera));
        Print(KORO_DeviceDescriptor_GetSerialNumber, camera, "  ");
        Print(KORO_DeviceDescriptor_GetVendorName, camera, " ");
        Print(KORO_DeviceDescriptor_GetModelName, camera, "  ");
        Print(KORO_DeviceDescriptor_GetTLType, camera, "\n");
    }
    return numDevices;
}

static size_t ListInterfaces(KORO_SystemHandle system)
{
    size_t numInterfaces = 0, numCameras = 0;
    Check(KORO_System_GetNumInterfaces(system, &numInterfaces));
    for (size_t index = 0; index < numInterfaces; ++index)
    {
        KORO_InterfaceHandle interface = OpenInterface(system, index);
        numCameras += ListCameras(interface);
        Check(KORO_Interface_Destruct(interface));
    }
    return numCameras;
}

int main(void)
{
    size_t numPaths = 0, numCameras = 0;
    Check(KORO_Library_Initialize());
    Check(KORO_EnvironmentInspector_UpdateCTIPaths());
    Check(KORO_EnvironmentInspector_GetNumCTIPaths(&numPaths));
    for (size_t index = 0; index < numPaths; ++index)
    {
        KORO_ProducerLibraryHandle producer = LoadProducer(index);
        KORO_SystemHandle system = OpenSystem(producer);
        numCameras += ListInterfaces(system);
        Check(KORO_System_Destruct(system));
        Check(KORO_ProducerLibrary_Destruct(producer));
    }
    printf("%zu cameras\n", numCameras);
    return KORO_Library_Close();
}
