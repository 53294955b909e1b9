// Device: an opened GenTL device, the transport layer's side of a camera.
//
// Owned by the handle table; owns its RemoteDevice, holds its Interface weakly. Every operation except Key() throws
// InternalErrorException after the interface has ended. Only the handle tables know which of its streams are open. It
// does not react when it is reported lost: its calls still go to the producer and fail there. Thread-safe. The
// destructor closes the producer's device.
#pragma once

#include "base/once.h"
#include "gentl/child_manager.h"
#include "modules/data_stream_descriptor.h"
#include "modules/device_information.h"
#include "modules/event_supporting_module.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace koro::internal
{

class Interface;
class RemoteDevice;

class Device final : public DeviceInformation,
                     private TGenTLChildManager<DataStreamDescriptor, std::string, std::uint32_t, Device>,
                     public EventSupportingModule
{
public:
    Device(
        GenTL::DEV_HANDLE handle, std::string deviceID, const std::weak_ptr<Interface>& interface,
        const std::shared_ptr<const GenTLProxy>& proxy);
    ~Device() override;

    const std::string& Key() const { return key; }
    std::string ID() const;

    std::string DisplayName() const;
    std::string VendorName() const;
    std::string ModelName() const;
    std::string Version() const;
    std::string TLType() const;
    std::string UserDefinedName() const;
    std::string SerialNumber() const;

    // Read from the producer once in the life of the device.
    std::shared_ptr<const ChildList> DataStreams();

    // Returns the same object at each call; after a failure the next call tries again.
    std::shared_ptr<RemoteDevice> GetRemoteDevice();
    // The remote device that the opening has fetched, even if the interface has ended; empty if there is none.
    std::shared_ptr<RemoteDevice> FetchedRemoteDevice() const
    {
        return remoteDeviceOnce.IsDone() ? remoteDevice : nullptr;
    }

    std::shared_ptr<Interface> ParentInterface() const;
    std::shared_ptr<Module> ParentModule() const override;

private:
    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override;
    const char* QueryName() const override { return gentl.Proxy()->DevGetInfo.Name(); }

    GenTL::GC_ERROR ProducerUpdateChildren(GenTL::bool8_t* changed, std::uint64_t timeout_ms) override;
    GenTL::GC_ERROR ProducerNumChildren(std::uint32_t* count) override;
    GenTL::GC_ERROR ProducerChildID(std::uint32_t index, std::string* childID) override;
    const char* UpdateFunctionName() const override { return ""; }
    const char* NumChildrenFunctionName() const override { return gentl.Proxy()->DevGetNumDataStreams.Name(); }
    const char* ChildIDFunctionName() const override { return gentl.Proxy()->DevGetDataStreamID.Name(); }
    std::shared_ptr<const void> HoldParent() const override;
    std::shared_ptr<Device> SharedOwner() override;
    bool IsOwnerEnded() const override { return HasEnded(); }

    std::shared_ptr<RemoteDevice> remoteDevice;
    const std::weak_ptr<Interface> parent;
    const std::string key;
    const std::string id;
    Once remoteDeviceOnce;
};

} // namespace koro::internal
