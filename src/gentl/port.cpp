#include "gentl/port.h"

namespace koro::internal
{

using namespace GenTL;

Port::Port(PORT_HANDLE portHandle, const std::shared_ptr<const GenTLProxy>& proxy)
    : TGenTLInfoAccessor(GenTLCaller(proxy)), TGenTLChildManager(GenTLCaller(proxy)), handle(portHandle)
{}

std::string Port::ID() const
{
    return StringInfo(PORT_INFO_ID);
}

std::string Port::VendorName() const
{
    return StringInfo(PORT_INFO_VENDOR);
}

std::string Port::ModelName() const
{
    return StringInfo(PORT_INFO_MODEL);
}

std::string Port::TLType() const
{
    return StringInfo(PORT_INFO_TLTYPE);
}

std::string Port::ModuleName() const
{
    return StringInfo(PORT_INFO_MODULE);
}

std::string Port::Version() const
{
    return StringInfo(PORT_INFO_VERSION);
}

std::string Port::Name() const
{
    return StringInfo(PORT_INFO_PORTNAME);
}

std::int32_t Port::DataEndianness() const
{
    return BooleanInfo(PORT_INFO_LITTLE_ENDIAN) || BooleanInfo(PORT_INFO_BIG_ENDIAN) ? 1 : 0;
}

bool Port::IsReadable() const
{
    return BooleanInfo(PORT_INFO_ACCESS_READ);
}

bool Port::IsWritable() const
{
    return BooleanInfo(PORT_INFO_ACCESS_WRITE);
}

bool Port::IsAvailable() const
{
    return !BooleanInfo(PORT_INFO_ACCESS_NA);
}

bool Port::IsImplemented() const
{
    return !BooleanInfo(PORT_INFO_ACCESS_NI);
}

std::vector<std::uint8_t> Port::Read(std::uint64_t address, std::size_t size) const
{
    return WithStandardExceptionsAsInternalErrors([&] {
        std::vector<std::uint8_t> bytes(size);
        Read(bytes.data(), address, size);
        return bytes;
    });
}

void Port::Read(void* buffer, std::uint64_t address, std::size_t size) const
{
    WithStandardExceptionsAsInternalErrors(
        [&] { gentl.Call<&GenTLProxy::GCReadPort>(handle, address, buffer, &size); });
}

void Port::Write(std::uint64_t address, const std::vector<std::uint8_t>& bytes) const
{
    Write(bytes.data(), address, bytes.size());
}

void Port::Write(const void* buffer, std::uint64_t address, std::size_t size) const
{
    WithStandardExceptionsAsInternalErrors(
        [&] { gentl.Call<&GenTLProxy::GCWritePort>(handle, address, buffer, &size); });
}

std::shared_ptr<const Port::ChildList> Port::URLs()
{
    return WithStandardExceptionsAsInternalErrors([&] {
        UpdateChildren(0);
        return Children();
    });
}

GC_ERROR Port::QueryInfo(std::int32_t command, INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const
{
    return gentl.Result<&GenTLProxy::GCGetPortInfo>(handle, command, dataType, buffer, size);
}

// The standard has no refresh for the URLs of a port.
GC_ERROR Port::ProducerUpdateChildren(bool8_t* changed, std::uint64_t)
{
    *changed = 0;
    return GC_ERR_SUCCESS;
}

GC_ERROR Port::ProducerNumChildren(std::uint32_t* count)
{
    return gentl.Result<&GenTLProxy::GCGetNumPortURLs>(handle, count);
}

// URLs have no id: the index is used instead.
GC_ERROR Port::ProducerChildID(std::uint32_t index, std::uint32_t* id)
{
    *id = index;
    return GC_ERR_SUCCESS;
}

} // namespace koro::internal
