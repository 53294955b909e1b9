#include "modules/interface.h"

#include "base/expiring.h"
#include "modules/device.h"
#include "modules/gvcp_command_length.h"
#include "modules/remote_device.h"
#include "modules/system.h"
#include "nodes/node_map.h"

#include <algorithm>
#include <cstring>

namespace koro::internal
{

using namespace GenTL;

Interface::Interface(
    IF_HANDLE handle, std::string interfaceID, const std::weak_ptr<System>& system,
    const std::shared_ptr<const GenTLProxy>& proxy)
    : InterfaceInformation(GenTLCaller(proxy)), TGenTLChildManager(GenTLCaller(proxy)),
      EventSupportingModule(handle, proxy), parent(system), key(ModuleKey(LockOrThrow(system)->Key(), interfaceID)),
      id(std::move(interfaceID))
{}

Interface::~Interface()
{
    try
    {
        EndConnectionChanges();
    }
    catch (...)
    {
        // On the listener's thread, when a callback was the last to hold this object: the subscription stays, but calls
        // nothing.
    }
    gentl.CallIgnoringFailures<&GenTLProxy::IFClose>(Handle());
}

std::string Interface::ID() const
{
    const auto system = ParentSystem();
    return id;
}

Interface::ListChangedCallbacks& Interface::ListChanged()
{
    const auto system = ParentSystem();
    return listChangedCallbacks;
}

Interface::DisconnectedCallbacks& Interface::Disconnected()
{
    const auto system = ParentSystem();
    return disconnectedCallbacks;
}

Interface::ReconnectedCallbacks& Interface::Reconnected()
{
    const auto system = ParentSystem();
    return reconnectedCallbacks;
}

void Interface::SubscribeToConnectionChanges()
{
    // Weak: the interface may end while a record is on its way.
    connectionChangeSubscription = ParentSystem()->SubscribeConnectionChange(
        [self = std::weak_ptr<Interface>(SharedOwner())](const Record* record) {
            if (const auto interface = self.lock()) interface->OnConnectionChange(*record);
        });
}

void Interface::AddMonitored(const std::shared_ptr<DeviceDescriptor>& descriptor)
{
    const std::lock_guard lock(monitoredMutex);
    if (hasEndedMonitors) throw InternalErrorException("Pointer has expired!");
    const auto isKnown = [&](const auto& known) {
        return !known.owner_before(descriptor) && !descriptor.owner_before(known);
    };
    std::erase_if(monitored, [](const auto& known) { return known.expired(); });
    if (std::none_of(monitored.begin(), monitored.end(), isKnown)) monitored.push_back(descriptor);
}

std::vector<std::shared_ptr<DeviceDescriptor>> Interface::Monitored() const
{
    std::vector<std::shared_ptr<DeviceDescriptor>> living;
    const std::lock_guard lock(monitoredMutex);
    for (const auto& weakDescriptor : monitored)
    {
        if (auto descriptor = weakDescriptor.lock()) living.push_back(std::move(descriptor));
    }
    return living;
}

void Interface::RefuseEndInCallback() const
{
    if (const auto system = parent.lock()) system->RefuseEndInCallback();
    for (const auto& descriptor : Monitored())
        descriptor->Monitor().RefuseInCallback();
}

void Interface::EndThreads()
{
    EndConnectionChanges();
    {
        const std::lock_guard lock(monitoredMutex);
        hasEndedMonitors = true;
    }
    for (const auto& descriptor : Monitored())
        descriptor->Monitor().End();
}

// Two threads may end the interface at the same time: the second one waits too and then finds no subscription.
void Interface::EndConnectionChanges()
{
    const auto subscription = connectionChangeSubscription.load();
    if (!subscription) return;
    const auto system = parent.lock();
    if (!system) return; // the listener has ended with it
    system->UnsubscribeConnectionChange(subscription);
    connectionChangeSubscription = nullptr;
}

// Every interface of the system receives every record.
void Interface::OnConnectionChange(const Record& record)
{
    constexpr std::uint16_t deviceCame = 1;
    if (record.interface != Handle()) return;
    if (record.deviceFlag == 0)
    {
        listChangedCallbacks.TriggerCallback();
        return;
    }
    const auto descriptor = FindListed(std::string(record.deviceID, strnlen(record.deviceID, sizeof record.deviceID)));
    if (!descriptor) return;
    if (record.changeKind == deviceCame)
        OnReconnect(descriptor, record);
    else
        disconnectedCallbacks.TriggerCallback(descriptor);
}

void Interface::OnReconnect(const std::shared_ptr<DeviceDescriptor>& descriptor, const Record& record)
{
    Refresh(descriptor->OpenedDevice());
    // The device is not held any more: a callback may close it and open it again.
    reconnectedCallbacks.TriggerCallback(
        descriptor, {record.reconnectFlag1 != 0, record.reconnectFlag2 != 0, record.reconnectValue});
}

// Uses the device like a call, by sharing its holds, which are released after the last use.
void Interface::Refresh(std::shared_ptr<Device> opened)
{
    const auto holds = opened ? opened->OwnHolds() : Instance::Holds();
    const auto device = std::move(opened);
    if (!device || device->HasEnded()) return;
    if (const auto remoteDevice = device->FetchedRemoteDevice())
    {
        for (const auto& nodeMap : remoteDevice->NodeMaps())
            nodeMap->InvalidateNodes();
    }
    if (!device->HasEnded()) TestGVCPCommandLength(*device);
}

// Compares keys, since the descriptor returns its key without locking this interface's system.
std::shared_ptr<DeviceDescriptor> Interface::FindListed(const std::string& deviceID) const
{
    const auto listed = ListedChildren();
    const std::string deviceKey = ModuleKey(key, deviceID);
    const auto found = std::find_if(
        listed->begin(), listed->end(), [&](const auto& descriptor) { return descriptor->Key() == deviceKey; });
    return found == listed->end() ? nullptr : *found;
}

std::shared_ptr<System> Interface::ParentSystem() const
{
    return LockOrThrow(parent);
}

std::shared_ptr<Module> Interface::ParentModule() const
{
    return ParentSystem();
}

GC_ERROR Interface::QueryInfo(std::int32_t command, INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const
{
    const auto system = ParentSystem();
    return gentl.Result<&GenTLProxy::IFGetInfo>(Handle(), command, dataType, buffer, size);
}

GC_ERROR Interface::ProducerUpdateChildren(bool8_t* changed, std::uint64_t timeout_ms)
{
    return gentl.Result<&GenTLProxy::IFUpdateDeviceList>(Handle(), changed, timeout_ms);
}

GC_ERROR Interface::ProducerNumChildren(std::uint32_t* count)
{
    return gentl.Result<&GenTLProxy::IFGetNumDevices>(Handle(), count);
}

GC_ERROR Interface::ProducerChildID(std::uint32_t index, std::string* childID)
{
    return QueryTextID(
        [&](char* text, std::size_t* size) {
            return gentl.Result<&GenTLProxy::IFGetDeviceID>(Handle(), index, text, size);
        },
        ChildIDFunctionName(), childID);
}

std::shared_ptr<const void> Interface::HoldParent() const
{
    return ParentSystem();
}

std::shared_ptr<Interface> Interface::SharedOwner()
{
    return std::static_pointer_cast<Interface>(shared_from_this());
}

} // namespace koro::internal
