#include "modules/interface.h"

#include "base/expiring.h"
#include "modules/system.h"

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
    gentl.CallIgnoringFailures<&GenTLProxy::IFClose>(Handle());
}

std::string Interface::ID() const
{
    const auto system = ParentSystem();
    return id;
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
