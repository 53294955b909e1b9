#include "modules/system.h"

#include "base/expiring.h"
#include "modules/producer_library.h"

namespace koro::internal
{

using namespace GenTL;

System::System(
    TL_HANDLE handle, std::string systemID, const std::weak_ptr<ProducerLibrary>& library,
    const std::shared_ptr<const GenTLProxy>& proxy)
    : SystemInformation(GenTLCaller(proxy)), TGenTLChildManager(GenTLCaller(proxy)),
      EventSupportingModule(handle, proxy), parent(library), key(ModuleKey(LockOrThrow(library)->Key(), systemID)),
      id(std::move(systemID))
{}

System::~System()
{
    connectionChangeListener.reset();
    gentl.CallIgnoringFailures<&GenTLProxy::TLClose>(Handle());
}

std::string System::ID() const
{
    const auto library = ParentLibrary();
    return id;
}

System::ConnectionChanges::Handle System::SubscribeConnectionChange(ConnectionChanges::Function function)
{
    connectionChangeListenerOnce.Run([this] {
        connectionChangeListener = std::make_unique<ConnectionChangeEventListener>(weak_from_this(), gentl.Proxy());
    });
    if (!connectionChangeListener->IsAvailable()) return nullptr;
    // The listener may have been created while the threads ended. Either the end has seen it, or this code sees the
    // end.
    if (hasEndedThreads) connectionChangeListener->Stop();
    return connectionChangeListener->Subscribe(std::move(function));
}

void System::UnsubscribeConnectionChange(ConnectionChanges::Handle handle)
{
    if (connectionChangeListenerOnce.IsDone()) connectionChangeListener->Unsubscribe(handle);
}

void System::RefuseEndInCallback() const
{
    if (connectionChangeListenerOnce.IsDone()) connectionChangeListener->RefuseInsideDelivery();
}

void System::EndThreads()
{
    hasEndedThreads = true;
    if (connectionChangeListenerOnce.IsDone()) connectionChangeListener->Stop();
}

std::shared_ptr<ProducerLibrary> System::ParentLibrary() const
{
    return LockOrThrow(parent);
}

GC_ERROR System::QueryInfo(std::int32_t command, INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const
{
    const auto library = ParentLibrary();
    return gentl.Result<&GenTLProxy::TLGetInfo>(Handle(), command, dataType, buffer, size);
}

GC_ERROR System::ProducerUpdateChildren(bool8_t* changed, std::uint64_t timeout_ms)
{
    return gentl.Result<&GenTLProxy::TLUpdateInterfaceList>(Handle(), changed, timeout_ms);
}

GC_ERROR System::ProducerNumChildren(std::uint32_t* count)
{
    return gentl.Result<&GenTLProxy::TLGetNumInterfaces>(Handle(), count);
}

GC_ERROR System::ProducerChildID(std::uint32_t index, std::string* childID)
{
    return QueryTextID(
        [&](char* text, std::size_t* size) {
            return gentl.Result<&GenTLProxy::TLGetInterfaceID>(Handle(), index, text, size);
        },
        ChildIDFunctionName(), childID);
}

std::shared_ptr<const void> System::HoldParent() const
{
    return ParentLibrary();
}

std::shared_ptr<System> System::SharedOwner()
{
    return std::static_pointer_cast<System>(shared_from_this());
}

} // namespace koro::internal
