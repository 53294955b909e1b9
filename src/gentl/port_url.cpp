#include "gentl/port_url.h"

#include "base/expiring.h"
#include "gentl/port.h"

namespace koro::internal
{

using namespace GenTL;

PortURL::PortURL(
    std::uint32_t urlIndex, const std::shared_ptr<Port>& parentPort, const std::shared_ptr<const GenTLProxy>& proxy)
    : TGenTLInfoAccessor(GenTLCaller(proxy)), parent(parentPort), index(urlIndex)
{}

std::string PortURL::URL() const
{
    return StringInfo(URL_INFO_URL);
}

std::int32_t PortURL::Scheme() const
{
    return NumericInfo<std::int32_t>(URL_INFO_SCHEME, INFO_DATATYPE_INT32);
}

std::string PortURL::FileName() const
{
    return StringInfo(URL_INFO_FILENAME);
}

std::uint64_t PortURL::FileRegisterAddress() const
{
    return NumericInfo<std::uint64_t>(URL_INFO_FILE_REGISTER_ADDRESS, INFO_DATATYPE_UINT64);
}

std::uint64_t PortURL::FileSize() const
{
    return NumericInfo<std::uint64_t>(URL_INFO_FILE_SIZE, INFO_DATATYPE_UINT64);
}

std::vector<std::uint8_t> PortURL::FileSHA1Hash() const
{
    return BufferInfo(URL_INFO_FILE_SHA1_HASH);
}

std::int32_t PortURL::FileVersionMajor() const
{
    return NumericInfo<std::int32_t>(URL_INFO_FILE_VER_MAJOR, INFO_DATATYPE_INT32);
}

std::int32_t PortURL::FileVersionMinor() const
{
    return NumericInfo<std::int32_t>(URL_INFO_FILE_VER_MINOR, INFO_DATATYPE_INT32);
}

std::int32_t PortURL::FileVersionSubminor() const
{
    return NumericInfo<std::int32_t>(URL_INFO_FILE_VER_SUBMINOR, INFO_DATATYPE_INT32);
}

std::int32_t PortURL::FileSchemaVersionMajor() const
{
    return NumericInfo<std::int32_t>(URL_INFO_SCHEMA_VER_MAJOR, INFO_DATATYPE_INT32);
}

std::int32_t PortURL::FileSchemaVersionMinor() const
{
    return NumericInfo<std::int32_t>(URL_INFO_SCHEMA_VER_MINOR, INFO_DATATYPE_INT32);
}

std::shared_ptr<Port> PortURL::ParentPort() const
{
    return LockOrThrow(parent);
}

GC_ERROR PortURL::QueryInfo(std::int32_t command, INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const
{
    const auto port = ParentPort();
    return gentl.Result<&GenTLProxy::GCGetPortURLInfo>(port->Handle(), index, command, dataType, buffer, size);
}

} // namespace koro::internal
