// DeviceDescriptor: a device that an interface reports, opened or not.
//
// Held by the child list of its Interface, which it holds weakly; lives on while a handle or an application holds
// it. Everything but Key() throws InternalErrorException once the interface has gone. Any thread.
#pragma once

#include "modules/device_information.h"
#include "modules/module.h"

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

    // Hands the caller's buffer and size straight to the producer, whose size rules apply: a null buffer asks for
    // the size in bytes with the terminating zero. `size` must not be null.
    void RawStringInfo(std::int32_t command, char* buffer, std::size_t* size) const;

    // Whether the present access status allows an opening with the access type (DEVICE_ACCESS_FLAGS of the
    // standard). A type other than read-only, control and exclusive is false without a query.
    bool IsOpenable(std::uint32_t accessType) const;
    // Answers as for read-only access, on purpose.
    bool IsOpenableExclusive() const;

    std::shared_ptr<Interface> ParentInterface() const;

    // The access type goes to the producer unchanged. The remote device is fetched at once: a device without one
    // does not open.
    std::shared_ptr<Device> OpenDevice(std::uint32_t accessType);

private:
    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override;
    const char* QueryName() const override { return gentl.Proxy()->IFGetDeviceInfo.Name(); }

    const std::weak_ptr<Interface> parent;
    const std::string key;
    const std::string id;
    std::mutex openedDeviceMutex;
    std::weak_ptr<Device> openedDevice; // the one opened last; guarded by openedDeviceMutex
};

} // namespace koro::internal
