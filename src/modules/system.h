// System: the opened system module of one producer, with the list of its interfaces.
//
// Owned by the handle table; holds its ProducerLibrary weakly. Every operation except Key() throws
// InternalErrorException after the library has ended. Thread-safe. The destructor ends the thread for connection
// changes and closes the producer's system.
#pragma once

#include "base/once.h"
#include "gentl/child_manager.h"
#include "modules/connection_change_event_listener.h"
#include "modules/event_supporting_module.h"
#include "modules/interface_descriptor.h"
#include "modules/system_information.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace koro::internal
{

class ProducerLibrary;

class System final : public SystemInformation,
                     public TGenTLChildManager<InterfaceDescriptor, std::string, std::uint32_t, System>,
                     public EventSupportingModule
{
public:
    System(
        GenTL::TL_HANDLE handle, std::string systemID, const std::weak_ptr<ProducerLibrary>& library,
        const std::shared_ptr<const GenTLProxy>& proxy);
    ~System() override;

    const std::string& Key() const { return key; }
    std::string ID() const;

    // Unsolicited notifications of the producer that a device was disconnected or connected, for the interfaces.
    // Returns an empty handle if the producer does not have the event. Each subscriber receives all records of the
    // system. The listener documents the failures.
    using ConnectionChanges = ConnectionChangeEventListener::Subscribers;
    ConnectionChanges::Handle SubscribeConnectionChange(ConnectionChanges::Function function);
    void UnsubscribeConnectionChange(ConnectionChanges::Handle handle);
    // Refuses in a callback of a connection change.
    void RefuseEndInCallback() const override;
    // Waits for a running delivery; afterwards none runs and no subscription succeeds.
    void EndThreads() override;

    std::shared_ptr<ProducerLibrary> ParentLibrary() const;
    std::shared_ptr<Module> ParentModule() const override { return nullptr; }

private:
    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override;
    const char* QueryName() const override { return gentl.Proxy()->TLGetInfo.Name(); }

    GenTL::GC_ERROR ProducerUpdateChildren(GenTL::bool8_t* changed, std::uint64_t timeout_ms) override;
    GenTL::GC_ERROR ProducerNumChildren(std::uint32_t* count) override;
    GenTL::GC_ERROR ProducerChildID(std::uint32_t index, std::string* childID) override;
    const char* UpdateFunctionName() const override { return gentl.Proxy()->TLUpdateInterfaceList.Name(); }
    const char* NumChildrenFunctionName() const override { return gentl.Proxy()->TLGetNumInterfaces.Name(); }
    const char* ChildIDFunctionName() const override { return gentl.Proxy()->TLGetInterfaceID.Name(); }
    std::shared_ptr<const void> HoldParent() const override;
    std::shared_ptr<System> SharedOwner() override;
    bool IsOwnerEnded() const override { return HasEnded(); }

    const std::weak_ptr<ProducerLibrary> parent;
    const std::string key;
    const std::string id;
    std::atomic<bool> hasEndedThreads{false};
    Once connectionChangeListenerOnce;
    std::unique_ptr<ConnectionChangeEventListener> connectionChangeListener; // empty until the first subscription
};

} // namespace koro::internal
