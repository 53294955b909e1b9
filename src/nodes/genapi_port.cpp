#include "nodes/genapi_port.h"

#include "base/exceptions.h"
#include "gentl/port.h"

#include <utility>

namespace koro::internal
{

namespace
{

size_t CheckedLength(int64_t length)
{
    if (length < 0) throw InvalidArgumentException("A register cannot be " + std::to_string(length) + " bytes long");
    return static_cast<size_t>(length);
}

} // namespace

GenApiPort::GenApiPort(std::shared_ptr<Port> port) : port(std::move(port)) {}

GenApiPort::~GenApiPort() = default;

std::string GenApiPort::Name() const
{
    return port->Name();
}

void GenApiPort::Read(void* buffer, int64_t address, int64_t length)
{
    port->Read(buffer, static_cast<uint64_t>(address), CheckedLength(length));
}

void GenApiPort::Write(const void* buffer, int64_t address, int64_t length)
{
    port->Write(buffer, static_cast<uint64_t>(address), CheckedLength(length));
}

GENAPI_NAMESPACE::EAccessMode GenApiPort::GetAccessMode() const
{
    const bool readable = port->IsReadable();
    const bool writable = port->IsWritable(); // queried even when the first result is false
    if (readable) return writable ? GENAPI_NAMESPACE::RW : GENAPI_NAMESPACE::RO;
    if (writable) return GENAPI_NAMESPACE::WO;
    if (!port->IsImplemented()) return GENAPI_NAMESPACE::NI;
    return port->IsAvailable() ? GENAPI_NAMESPACE::_UndefinedAccesMode : GENAPI_NAMESPACE::NA;
}

} // namespace koro::internal
