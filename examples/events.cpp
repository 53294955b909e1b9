// Receives events of the camera: the end of each exposure. The events are registered at the device, and their data are
// features of the camera.
#include "example.hpp"

int main()
{
    return Run([] {
        const Camera camera = OpenFirstCamera();
        const koro::EventController events = camera.device.EnableEvents(koro::EventType::RemoteDevice);
        camera.features.Enumeration("EventSelector").SetCurrentEntry("ExposureEnd");
        camera.features.Enumeration("EventNotification").SetCurrentEntry("On");
        camera.AllocateAndQueue(3);

        koro::Acquisition acquisition(camera.stream, camera.features);
        for (int number = 0; number < 3; ++number)
        {
            const auto event = events.TryWait(5000);
            if (!event) throw std::runtime_error("The camera has sent no event.");
            camera.features.UpdateEventNodes(*event);
            std::printf(
                "frame %lld is exposed\n",
                static_cast<long long>(camera.features.Integer("EventExposureEndFrameID").Value()));
        }
        acquisition.Stop();
    });
}
