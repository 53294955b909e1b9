/* Takes a frame each time the program requests one, by a software trigger. */
#include "example.h"

#include <stdio.h>

enum
{
    numBuffers = 3,
    numFrames = 3,
    frameTimeout_ms = 5000
};

int main(void)
{
    Check(KORO_Library_Initialize());
    Camera camera = OpenFirstCamera();
    Choose(camera.features, "TriggerSelector", "FrameStart");
    Choose(camera.features, "TriggerMode", "On");
    Choose(camera.features, "TriggerSource", "Software");
    AllocateAndQueue(&camera, numBuffers);

    StartAcquisition(&camera);
    for (int frame = 1; frame <= numFrames; ++frame)
    {
        KORO_BufferHandle buffer = NULL;
        Execute(camera.features, "TriggerSoftware");
        Check(KORO_DataStream_WaitForFinishedBuffer(camera.stream, frameTimeout_ms, &buffer));
        printf("frame of trigger %d\n", frame);
        Check(KORO_DataStream_QueueBuffer(camera.stream, buffer));
    }
    StopAcquisition(&camera);
    CloseCamera(&camera);
    return KORO_Library_Close();
}
