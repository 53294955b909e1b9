// Interface: an opened GenTL interface, with the list of its devices.
//
// Owned by the handle table; holds its System weakly. Every operation except Key() throws InternalErrorException after
// the system has ended. Thread-safe; found and lost callbacks run on the thread of the update, callbacks of connection
// changes on the system's listener thread. The destructor ends the latter callbacks and closes the producer's
// interface.
#pragma once

#include "base/callback_registry.h"
#include "gentl/child_manager.h"
#include "modules/connection_change_event_listener.h"
#include "modules/device_descriptor.h"
#include "modules/event_supporting_module.h"
#include "modules/interface_information.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace koro::internal
{

class Device;
class System;

// Data that the producer attaches to the notification that a device is connected again. It is passed on without
// evaluation.
struct ReconnectInformation
{
    bool reconnectFlag1;
    bool reconnectFlag2;
    std::uint32_t reconnectValue;
};

class Interface final : public InterfaceInformation,
                        public TGenTLChildManager<DeviceDescriptor, std::string, std::uint32_t, Interface>,
                        public EventSupportingModule
{
public:
    Interface(
        GenTL::IF_HANDLE handle, std::string interfaceID, const std::weak_ptr<System>& system,
        const std::shared_ptr<const GenTLProxy>& proxy);
    ~Interface() override;

    const std::string& Key() const { return key; }
    std::string ID() const;

    // Callbacks for connection changes, which the producer reports unsolicited. They run on the system's thread, one
    // after the other, and do not change the list. They are never called if the producer does not have that event.
    using ListChangedCallbacks = TCallbackManager<>;
    using DisconnectedCallbacks = TCallbackManager<std::shared_ptr<DeviceDescriptor>>;
    using ReconnectedCallbacks = TCallbackManager<std::shared_ptr<DeviceDescriptor>, ReconnectInformation>;
    ListChangedCallbacks& ListChanged();
    DisconnectedCallbacks& Disconnected();
    ReconnectedCallbacks& Reconnected();

    // The last step of opening.
    void SubscribeToConnectionChanges();
    // Adds a descriptor whose information is monitored: the end of the interface ends its monitor, even if an update
    // has lost the descriptor meanwhile. Throws InternalErrorException after that end.
    void AddMonitored(const std::shared_ptr<DeviceDescriptor>& descriptor);

    // Refuses in a callback of a connection change, and in one of a monitor of its descriptors.
    void RefuseEndInCallback() const override;
    // Waits for a running delivery and for the monitors; none runs afterwards.
    void EndThreads() override;

    std::shared_ptr<System> ParentSystem() const;
    std::shared_ptr<Module> ParentModule() const override;

private:
    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override;
    const char* QueryName() const override { return gentl.Proxy()->IFGetInfo.Name(); }

    GenTL::GC_ERROR ProducerUpdateChildren(GenTL::bool8_t* changed, std::uint64_t timeout_ms) override;
    GenTL::GC_ERROR ProducerNumChildren(std::uint32_t* count) override;
    GenTL::GC_ERROR ProducerChildID(std::uint32_t index, std::string* childID) override;
    const char* UpdateFunctionName() const override { return gentl.Proxy()->IFUpdateDeviceList.Name(); }
    const char* NumChildrenFunctionName() const override { return gentl.Proxy()->IFGetNumDevices.Name(); }
    const char* ChildIDFunctionName() const override { return gentl.Proxy()->IFGetDeviceID.Name(); }
    std::shared_ptr<const void> HoldParent() const override;
    std::shared_ptr<Interface> SharedOwner() override;
    bool IsOwnerEnded() const override { return HasEnded(); }

    void EndConnectionChanges();
    std::vector<std::shared_ptr<DeviceDescriptor>> Monitored() const;

    using Record = ConnectionChangeEventListener::Record;
    void OnConnectionChange(const Record& record);
    void OnReconnect(const std::shared_ptr<DeviceDescriptor>& descriptor, const Record& record);
    static void Refresh(std::shared_ptr<Device> opened);
    std::shared_ptr<DeviceDescriptor> FindListed(const std::string& deviceID) const;

    const std::weak_ptr<System> parent;
    const std::string key;
    const std::string id;
    ListChangedCallbacks listChangedCallbacks;
    DisconnectedCallbacks disconnectedCallbacks;
    ReconnectedCallbacks reconnectedCallbacks;
    std::atomic<ConnectionChangeEventListener::Subscribers::Handle> connectionChangeSubscription{nullptr};
    mutable std::mutex monitoredMutex; // guards the next two fields; nothing is called under it
    std::vector<std::weak_ptr<DeviceDescriptor>> monitored;
    bool hasEndedMonitors = false;
};

} // namespace koro::internal
