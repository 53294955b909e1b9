// What the C++ examples share: opening a stream.
#pragma once

#include <koro/koro.hpp>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

// Everything that is open between the library and a stream, from the root to the leaf. The members are destroyed in
// reverse order, which is the order that producers expect.
struct Camera
{
    koro::Library library = koro::Library::Initialize();
    koro::ProducerLibrary producer;
    koro::System system;
    koro::Interface interface;
    koro::Device device;
    koro::DataStream stream;
    koro::NodeMap features;

    void Open(const koro::DeviceDescriptor& descriptor)
    {
        device = descriptor.OpenDevice();
        const auto streams = device.DataStreams();
        if (streams.empty()) throw std::runtime_error("The camera has no stream.");
        stream = streams.front().OpenDataStream();
        features = device.RemoteDevice().NodeMap();
    }
    void CloseDevice()
    {
        stream.Close();
        device.Close();
    }
    void AllocateAndQueue(int numBuffers) const
    {
        const size_t size = koro::FrameSize(stream, features);
        for (int index = 0; index < numBuffers; ++index)
            stream.QueueBuffer(stream.AllocAndAnnounceBuffer(size));
    }
};

// The first camera of the first producer that lists one.
inline Camera OpenFirstCamera()
{
    constexpr uint64_t updateTimeout_ms = 1000;
    Camera camera;
    koro::EnvironmentInspector::Update();
    const auto paths = koro::EnvironmentInspector::CTIPaths();
    if (paths.empty())
        throw std::runtime_error(
            "No producer (.cti) works in the folders of GENICAM_GENTL64_PATH; `koro doctor` shows why.");
    for (const std::string& path : paths)
    {
        koro::ProducerLibrary producer(path);
        koro::System system = producer.System().OpenSystem();
        system.UpdateInterfaces(updateTimeout_ms);
        for (const koro::InterfaceDescriptor& listed : system.Interfaces())
        {
            koro::Interface interface = listed.OpenInterface();
            interface.UpdateDevices(updateTimeout_ms);
            const auto devices = interface.Devices();
            if (devices.empty()) continue;
            camera.producer = std::move(producer);
            camera.system = std::move(system);
            camera.interface = std::move(interface);
            camera.Open(devices.front());
            return camera;
        }
    }
    throw std::runtime_error("No producer lists a camera; `koro doctor` and `koro list` show more.");
}

// Returns the next frame, or throws the reason why none arrived.
inline koro::Buffer NextFrame(const Camera& camera, uint64_t timeout_ms = 5000)
{
    if (const auto buffer = camera.stream.TryWait(timeout_ms)) return *buffer;
    throw std::runtime_error(koro::TextOf(koro::WhyNoFrame(camera.stream, camera.device.RemoteDevice())));
}

// Runs a program and prints its exceptions, after everything that it had opened is closed.
template <typename Program>
int Run(const Program& program)
{
    try
    {
        program();
        return EXIT_SUCCESS;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "%s\n", error.what());
        return EXIT_FAILURE;
    }
}
