#include "modules/data_stream_descriptor.h"

#include "base/expiring.h"
#include "modules/data_stream.h"
#include "modules/device.h"

namespace koro::internal
{

using namespace GenTL;

DataStreamDescriptor::DataStreamDescriptor(
    std::string streamID, const std::shared_ptr<Device>& device, const std::shared_ptr<const GenTLProxy>& proxy)
    : gentl(proxy), parent(device), key(ModuleKey(device->Key(), streamID)), id(std::move(streamID))
{}

std::shared_ptr<Device> DataStreamDescriptor::ParentDevice() const
{
    return LockOrThrow(parent);
}

std::shared_ptr<DataStream> DataStreamDescriptor::OpenDataStream() const
{
    return WithStandardExceptionsAsInternalErrors([&] {
        const auto device = ParentDevice();
        DS_HANDLE handle = GENTL_INVALID_HANDLE;
        gentl.Call<&GenTLProxy::DevOpenDataStream>(device->Handle(), id.c_str(), &handle);
        return MakeOwnerOf<&GenTLProxy::DSClose>(
            handle, gentl, [&] { return std::make_shared<DataStream>(handle, id, device, gentl.Proxy()); });
    });
}

} // namespace koro::internal
