/*
 * Continues grabbing after the camera was disconnected. A timeout of a wait may mean that the camera is gone. The
 * program then closes the device and opens it again when the interface lists it. The serial number shows that it is the
 * same camera.
 */
#include "example.h"

#include <stdio.h>
#include <string.h>
#include <threads.h>

enum
{
    numBuffers = 3,
    numFrames = 10,
    frameTimeout_ms = 500,
    updateTimeout_ms = 500,
    pause_ms = 250,
    mostUpdates = 240 /* at least one minute because of the pauses */
};

/* Any answer will do; a camera that has gone gives none. */
static int Answers(const Camera* camera)
{
    KORO_RemoteDeviceHandle remoteDevice = NULL;
    KORO_ModuleHandle module = NULL;
    KORO_PortHandle port = NULL;
    uint8_t bytes[4];
    Check(KORO_Device_GetRemoteDevice(camera->device, &remoteDevice));
    Check(KORO_RemoteDevice_ToModule(remoteDevice, &module));
    Check(KORO_Module_GetPort(module, &port));
    return KORO_Port_Read(port, 0, bytes, sizeof bytes) == KORO_RETURN_CODE_SUCCESS;
}

/* Whether a device of the list has this serial number and can be opened; its index then. */
static int Find(KORO_InterfaceHandle interface, const char* wanted, size_t* index)
{
    size_t numDevices = 0;
    Check(KORO_Interface_GetNumDevices(interface, &numDevices));
    for (*index = 0; *index < numDevices; ++*index)
    {
        KORO_DeviceDescriptorHandle device = NULL;
        KORO_Bool8 isOpenable = 0;
        char serialNumber[256];
        size_t size = sizeof serialNumber;
        Check(KORO_Interface_GetDevice(interface, *index, &device));
        Check(KORO_DeviceDescriptor_GetSerialNumber(device, serialNumber, &size));
        Check(KORO_DeviceDescriptor_GetIsOpenable(device, KORO_DEVICE_ACCESS_CONTROL, &isOpenable));
        if (strcmp(serialNumber, wanted) == 0 && isOpenable)
        {
            return 1;
        }
    }
    return 0;
}

static void Start(Camera* camera)
{
    AllocateAndQueue(camera, numBuffers);
    StartAcquisition(camera);
}

/* The timeout of an update is the longest time that it takes: most producers respond at once. */
static void Pause(void)
{
    const struct timespec duration = {.tv_sec = 0, .tv_nsec = pause_ms * 1000000L};
    thrd_sleep(&duration, NULL);
}

static void Reconnect(Camera* camera, const char* serialNumber)
{
    size_t index = 0;
    printf("the camera has gone\n");
    CloseDevice(camera);
    for (int update = 0; update < mostUpdates; ++update)
    {
        Check(KORO_Interface_UpdateDevices(camera->interface, updateTimeout_ms));
        if (Find(camera->interface, serialNumber, &index))
        {
            OpenDevice(camera, index);
            Start(camera);
            printf("the camera is back\n");
            return;
        }
        Pause();
    }
    Fail("The camera did not come back.");
}

int main(void)
{
    char serialNumber[256];
    size_t size = sizeof serialNumber;
    Check(KORO_Library_Initialize());
    Camera camera = OpenFirstCamera();
    Check(KORO_Device_GetSerialNumber(camera.device, serialNumber, &size));
    Start(&camera);
    for (int frame = 0; frame < numFrames;)
    {
        KORO_BufferHandle buffer = NULL;
        const KORO_ReturnCode code = KORO_DataStream_WaitForFinishedBuffer(camera.stream, frameTimeout_ms, &buffer);
        if (code == KORO_RETURN_CODE_SUCCESS)
        {
            printf("frame %d\n", ++frame);
            Check(KORO_DataStream_QueueBuffer(camera.stream, buffer));
        }
        else if (code == KORO_RETURN_CODE_TIMEOUT && !Answers(&camera))
        {
            Reconnect(&camera, serialNumber);
        }
        else
        {
            Check(code);
        }
    }
    StopAcquisition(&camera);
    CloseCamera(&camera);
    return KORO_Library_Close();
}
