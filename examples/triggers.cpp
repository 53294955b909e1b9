// Takes a frame each time the program requests one, by a software trigger.
#include "example.hpp"

int main()
{
    return Run([] {
        const Camera camera = OpenFirstCamera();
        camera.features.Enumeration("TriggerSelector").SetCurrentEntry("FrameStart");
        camera.features.Enumeration("TriggerMode").SetCurrentEntry("On");
        camera.features.Enumeration("TriggerSource").SetCurrentEntry("Software");
        camera.AllocateAndQueue(3);

        koro::Acquisition acquisition(camera.stream, camera.features);
        for (int number = 1; number <= 3; ++number)
        {
            camera.features.Command("TriggerSoftware").Execute();
            const koro::Buffer frame = NextFrame(camera);
            std::printf("frame of trigger %d\n", number);
            camera.stream.QueueBuffer(frame);
        }
        acquisition.Stop();
    });
}
