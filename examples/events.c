/*
 * Receives events of the camera: the end of each exposure. The events are registered at the device, and their data are
 * features of the camera.
 */
#include "example.h"

#include <stdio.h>

enum
{
    numBuffers = 3,
    numEvents = 3,
    eventTimeout_ms = 5000
};

static KORO_EventControllerHandle EnableEvents(KORO_DeviceHandle device)
{
    KORO_EventSupportingModuleHandle module = NULL;
    KORO_EventControllerHandle events = NULL;
    Check(KORO_Device_ToEventSupportingModule(device, &module));
    Check(KORO_EventSupportingModule_EnableEvents(module, KORO_EVENT_REMOTE_DEVICE, &events));
    return events;
}

int main(void)
{
    Check(KORO_Library_Initialize());
    Camera camera = OpenFirstCamera();
    KORO_EventControllerHandle events = EnableEvents(camera.device);
    Choose(camera.features, "EventSelector", "ExposureEnd");
    Choose(camera.features, "EventNotification", "On");
    AllocateAndQueue(&camera, numBuffers);

    StartAcquisition(&camera);
    for (int number = 0; number < numEvents; ++number)
    {
        KORO_EventHandle event = NULL;
        Check(KORO_EventController_WaitForEvent(events, eventTimeout_ms, &event));
        Check(KORO_NodeMap_UpdateEventNodes(camera.features, event));
        printf("frame %lld is exposed\n", (long long)GetInteger(camera.features, "EventExposureEndFrameID"));
        Check(KORO_Event_Destruct(event));
    }
    StopAcquisition(&camera);
    Check(KORO_EventController_Destruct(events));
    CloseCamera(&camera);
    return KORO_Library_Close();
}
