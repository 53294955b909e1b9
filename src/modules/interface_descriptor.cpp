#include "modules/interface_descriptor.h"

#include "base/expiring.h"
#include "modules/interface.h"
#include "modules/system.h"

namespace koro::internal
{

using namespace GenTL;

InterfaceDescriptor::InterfaceDescriptor(
    std::string interfaceID, const std::shared_ptr<System>& system, const std::shared_ptr<const GenTLProxy>& proxy)
    : InterfaceInformation(GenTLCaller(proxy)), parent(system), key(ModuleKey(system->Key(), interfaceID)),
      id(std::move(interfaceID))
{}

std::string InterfaceDescriptor::ID() const
{
    const auto system = ParentSystem();
    return id;
}

std::shared_ptr<System> InterfaceDescriptor::ParentSystem() const
{
    return LockOrThrow(parent);
}

std::shared_ptr<Interface> InterfaceDescriptor::OpenInterface() const
{
    return WithStandardExceptionsAsInternalErrors([&] {
        const auto system = ParentSystem();
        IF_HANDLE handle = GENTL_INVALID_HANDLE;
        gentl.Call<&GenTLProxy::TLOpenInterface>(system->Handle(), id.c_str(), &handle);
        auto interface = MakeOwnerOf<&GenTLProxy::IFClose>(
            handle, gentl, [&] { return std::make_shared<Interface>(handle, id, system, gentl.Proxy()); });
        interface->SubscribeToConnectionChanges();
        return interface;
    });
}

GC_ERROR InterfaceDescriptor::QueryInfo(
    std::int32_t command, INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const
{
    const auto system = ParentSystem();
    return gentl.Result<&GenTLProxy::TLGetInterfaceInfo>(system->Handle(), id.c_str(), command, dataType, buffer, size);
}

} // namespace koro::internal
