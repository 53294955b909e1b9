// Continues grabbing after the camera was disconnected. A timeout of a wait may mean that the camera is gone. The
// program then closes the device and opens it again when the interface lists it. The serial number shows that it is the
// same camera.
#include "example.hpp"

#include <chrono>
#include <optional>
#include <thread>

namespace
{

constexpr uint64_t frameTimeout_ms = 500;
constexpr uint64_t updateTimeout_ms = 500;
// The timeout of an update is the longest time that it takes: most producers respond at once.
constexpr std::chrono::milliseconds pauseBetweenUpdates(250);
constexpr int mostUpdates = 240; // at least one minute because of the pauses

std::optional<koro::DeviceDescriptor> Find(const koro::Interface& interface, const std::string& serialNumber)
{
    for (const koro::DeviceDescriptor& listed : interface.Devices())
    {
        if (listed.SerialNumber() == serialNumber && listed.IsOpenable(koro::AccessType::Control)) return listed;
    }
    return std::nullopt;
}

void Reconnect(Camera& camera, const std::string& serialNumber)
{
    std::printf("the camera has gone\n");
    camera.CloseDevice();
    for (int update = 0; update < mostUpdates; ++update)
    {
        camera.interface.UpdateDevices(updateTimeout_ms);
        if (const auto listed = Find(camera.interface, serialNumber))
        {
            camera.Open(*listed);
            std::printf("the camera is back\n");
            return;
        }
        std::this_thread::sleep_for(pauseBetweenUpdates);
    }
    throw std::runtime_error("The camera did not come back.");
}

// Grabs until there are `wanted` frames or the camera is lost; returns the number of frames.
int Grab(const Camera& camera, int numFrames, int wanted)
{
    camera.AllocateAndQueue(3);
    const koro::Acquisition acquisition(camera.stream, camera.features);
    while (numFrames < wanted)
    {
        if (const auto frame = camera.stream.TryWait(frameTimeout_ms))
        {
            std::printf("frame %d\n", ++numFrames);
            camera.stream.QueueBuffer(*frame);
            continue;
        }
        const koro::NoFrameReason reason = koro::WhyNoFrame(camera.stream, camera.device.RemoteDevice());
        if (reason == koro::NoFrameReason::CameraGone) break;
        throw std::runtime_error(koro::TextOf(reason));
    }
    return numFrames;
}

} // namespace

int main()
{
    return Run([] {
        constexpr int wanted = 10;
        Camera camera = OpenFirstCamera();
        const std::string serialNumber = camera.device.SerialNumber();
        for (int numFrames = Grab(camera, 0, wanted); numFrames < wanted;)
        {
            Reconnect(camera, serialNumber);
            numFrames = Grab(camera, numFrames, wanted);
        }
    });
}
