// What the tests of the C++ face share: a tree opened down to a stream, and the code that a call fails with.
#pragma once

#include <koro/koro.hpp>

#include <functional>
#include <string>

namespace koro::test
{

inline KORO_ReturnCode CodeOf(const std::function<void()>& call)
{
    try
    {
        call();
    }
    catch (const koro::Error& error)
    {
        return error.Code();
    }
    return KORO_RETURN_CODE_SUCCESS;
}

// A producer opened down to a stream; the members close from the leaves.
struct Tree
{
    koro::Library library = koro::Library::Initialize();
    koro::ProducerLibrary producer;
    koro::System system;
    koro::Interface firstInterface;
    koro::Device device;
    koro::DataStream stream;

    explicit Tree(const std::string& path) : producer(path), system(producer.System().OpenSystem())
    {
        system.UpdateInterfaces(1000);
        firstInterface = system.Interfaces().at(0).OpenInterface();
        firstInterface.UpdateDevices(1000);
        device = firstInterface.Devices().at(0).OpenDevice();
        stream = device.DataStreams().at(0).OpenDataStream();
    }
};

} // namespace koro::test
