// Device: an open camera, the local module, and RemoteDevice: the port of the camera behind it.
//
// A producer derives from Device. The virtual functions are called on any thread, and the kit holds no lock, except
// in MakeStream, where it holds the lock of the list of open streams.
#pragma once

#include "producers/kit/child_list.h"
#include "producers/kit/module.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace koro::kit
{

class DataStream;
class Interface;

// What of a device is known without opening it. Empty texts are answered by GC_ERR_NOT_AVAILABLE.
struct DeviceFacts
{
    std::string id;
    std::string vendor;
    std::string model;
    std::string version;
    std::string tlType;
    std::string displayName;
    std::string serialNumber;
    std::function<std::string()> userName; // asked when it is wanted
    std::uint64_t ticksPerSecond = 1'000'000'000;

    const std::string& Id() const noexcept { return id; }
    // DevGetInfo and IFGetDeviceInfo.
    InfoValue Info(DEVICE_ACCESS_STATUS status, DEVICE_INFO_CMD command) const;
};

class RemoteDevice final : public Module
{
public:
    RemoteDevice(PortFacts facts, PortRegisters registers, Port::Gate gate)
        : port(std::move(facts), std::move(registers), std::move(gate))
    {}

    Port& ModulePort() override { return port; }

private:
    void OnClose() override {}

    Port port;
};

class Device : public Module
{
public:
    explicit Device(std::shared_ptr<Interface> parentInterface) : parent(std::move(parentInterface)) {}

    const std::shared_ptr<Interface>& Parent() const noexcept { return parent; }
    const std::shared_ptr<RemoteDevice>& Remote() const noexcept { return remote; }
    virtual const std::string& Id() const noexcept = 0;
    virtual InfoValue Info(DEVICE_INFO_CMD command) const = 0;
    virtual DEVICE_ACCESS_STATUS AccessStatus() const noexcept { return DEVICE_ACCESS_STATUS_OPEN_READWRITE; }

    // Throws GC_ERR_INVALID_INDEX.
    std::string StreamIdAt(std::uint32_t index) const;
    virtual std::uint32_t NumStreams() const noexcept { return 1; }
    std::shared_ptr<DataStream> OpenStream(const std::string& id);

protected:
    // Called once, when the device is complete and before anyone else sees it.
    virtual std::shared_ptr<RemoteDevice> MakeRemote() = 0;
    // Throws what an opening of a stream shall fail with at present.
    virtual void RequireStreamable() const {}
    virtual std::shared_ptr<DataStream> MakeStream(const std::string& id) = 0;
    void OnClose() final;
    // Of a close, in this order: before the streams are closed, between them and the remote device, at the end.
    virtual void OnClosing() {}
    virtual void OnStreamsClosed() {}
    virtual void OnRemoteClosed() {}

    // Null when it is not open.
    std::shared_ptr<DataStream> FindOpen(const std::string& id) const;

private:
    friend class DataStream;
    friend class Interface;
    void Connect();
    void Forget(const DataStream& stream);

    const std::shared_ptr<Interface> parent;
    std::shared_ptr<RemoteDevice> remote;
    ChildList<DataStream> open;
};

// The id of stream n of any device: "Stream0".
std::string StreamId(std::uint32_t index);

} // namespace koro::kit
