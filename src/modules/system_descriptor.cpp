#include "modules/system_descriptor.h"

#include "base/expiring.h"
#include "modules/producer_library.h"
#include "modules/system.h"

namespace koro::internal
{

using namespace GenTL;

SystemDescriptor::SystemDescriptor(
    std::string systemID, const std::shared_ptr<ProducerLibrary>& library,
    const std::shared_ptr<const GenTLProxy>& proxy)
    : SystemInformation(GenTLCaller(proxy)), parent(library), key(ModuleKey(library->Key(), systemID)),
      id(std::move(systemID))
{}

std::shared_ptr<ProducerLibrary> SystemDescriptor::ParentLibrary() const
{
    return LockOrThrow(parent);
}

std::shared_ptr<System> SystemDescriptor::OpenSystem() const
{
    return WithStandardExceptionsAsInternalErrors([&] {
        const auto library = ParentLibrary();
        TL_HANDLE handle = GENTL_INVALID_HANDLE;
        gentl.Call<&GenTLProxy::TLOpen>(&handle);
        return MakeOwnerOf<&GenTLProxy::TLClose>(
            handle, gentl, [&] { return std::make_shared<System>(handle, id, library, gentl.Proxy()); });
    });
}

GC_ERROR SystemDescriptor::QueryInfo(
    std::int32_t command, INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const
{
    const auto library = ParentLibrary();
    return gentl.Result<&GenTLProxy::GCGetInfo>(command, dataType, buffer, size);
}

} // namespace koro::internal
