// DeviceDescriptor: a device that an interface reports, opened or not.
//
// Held by the child list of its Interface, which it holds weakly; stays alive while a handle or the application holds
// it. Every operation except Key() throws InternalErrorException after the interface has ended. Thread-safe.
#pragma once

#include "modules/device_information.h"
#include "modules/module.h"
#include "modules/role_based_property_monitor.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

namespace koro::internal
{

class Device;
class Interface;

class DeviceDescriptor final : public DeviceInformation, public ModuleDescriptor
{
public:
    DeviceDescriptor(
        std::string deviceID, const std::shared_ptr<Interface>& interface,
        const std::shared_ptr<const GenTLProxy>& proxy);

    const std::string& Key() const { return key; }
    std::string ID() const override;

    // Passes the caller's buffer and size directly to the producer, whose size rules apply: a null buffer queries the
    // size in bytes, including the terminating zero. `size` must not be null.
    void RawStringInfo(std::int32_t command, char* buffer, std::size_t* size) const;

    std::string DisplayName() const { return StringInfo(GenTL::DEVICE_INFO_DISPLAYNAME); }
    std::string SerialNumber() const { return StringInfo(GenTL::DEVICE_INFO_SERIAL_NUMBER); }

    // Whether the current access status allows opening with the access type (DEVICE_ACCESS_FLAGS of the standard). A
    // type other than read-only, control and exclusive returns false without a query.
    bool IsOpenable(std::uint32_t accessType) const;
    // Whether it allows any opening.
    bool IsOpenable() const { return IsOpenable(GenTL::DEVICE_ACCESS_READONLY); }
    // Intentionally returns the same as for read-only access.
    bool IsOpenableExclusive() const;

    std::shared_ptr<Interface> ParentInterface() const;

    // The access type is passed to the producer unchanged. The GVCP command length test runs at once, so the remote
    // device and both descriptions are fetched: a device without a remote device cannot be opened.
    std::shared_ptr<Device> OpenDevice(std::uint32_t accessType);
    // The device that was opened last; empty when there is none or it has ended.
    std::shared_ptr<Device> OpenedDevice();

    // Monitors the information of the device. Initial roles: access status, user-defined name, timestamp frequency.
    using InformationMonitor = TRoleBasedPropertyMonitor<DeviceDescriptor, int, void*>;
    InformationMonitor& Monitor() noexcept { return monitor; }

private:
    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override;
    const char* QueryName() const override { return gentl.Proxy()->IFGetDeviceInfo.Name(); }

    const std::weak_ptr<Interface> parent;
    const std::string key;
    const std::string id;
    std::mutex openedDeviceMutex;
    std::weak_ptr<Device> openedDevice; // the device opened last; guarded by openedDeviceMutex
    InformationMonitor monitor;         // destroyed first, and with it the thread that queries this object
};

// A registration at the monitor of a descriptor, which it keeps alive. While the monitor's thread runs there is a
// registration, and its end waits for the thread: so the thread never releases the descriptor itself. The end of the
// interface ends the thread but not the registration. Do not end it inside the monitor's callbacks.
class DeviceDescriptorInformationChangedCallback final : public Instance
{
public:
    DeviceDescriptorInformationChangedCallback(
        std::shared_ptr<DeviceDescriptor> monitoredDescriptor,
        DeviceDescriptor::InformationMonitor::ChangedCallback callback);
    ~DeviceDescriptorInformationChangedCallback() override;

    // Afterwards the callback does not run any more, even if another thread has unregistered it. Throws the standard
    // deadlock error inside a callback of the monitor; the registration then stays.
    void Unregister();

private:
    const std::shared_ptr<DeviceDescriptor> descriptor;
    std::mutex endMutex;    // never taken on the monitor's thread: its holder may be waiting for that thread
    void* handle = nullptr; // null after it was unregistered; guarded by endMutex
};

} // namespace koro::internal
