#include "adapters/port_memory.h"

#include "nodes/errors.h"
#include "nodes/port_node.h"

#include <algorithm>
#include <string.h>
#include <string>

namespace GENAPI_NAMESPACE::runtime
{

void CheckWithin(const PortNode* node, int64_t address, int64_t length, int64_t size)
{
    if (address >= 0 && address <= size && length >= 0 && length <= size - address) return;
    const std::string text = "The access to " + std::to_string(length) + " bytes at " + std::to_string(address) +
                             " is outside of the data, " + std::to_string(size) + " bytes at 0.";
    if (node) throw RuntimeError(*node, text);
    throw RUNTIME_EXCEPTION(text);
}

void CopyAccess(void* to, const void* from, int64_t length, bool turned)
{
    if (length == 0) return;
    const uint8_t* const bytes = static_cast<const uint8_t*>(from);
    if (turned)
        std::reverse_copy(bytes, bytes + length, static_cast<uint8_t*>(to));
    else
        memcpy(to, from, static_cast<size_t>(length));
}

} // namespace GENAPI_NAMESPACE::runtime
