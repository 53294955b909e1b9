// What chunk and event ports have in common: a piece of memory that is read and written as registers.
#pragma once

#include <Base/GCNamespace.h>
#include <stdint.h>

namespace GENAPI_NAMESPACE::runtime
{

class PortNode;

// Throws RuntimeException, with both ranges, unless the access is within `size` bytes. `node` may be null.
void CheckWithin(const PortNode* node, int64_t address, int64_t length, int64_t size);

// The bytes of one access; `turned`: the last byte first.
void CopyAccess(void* to, const void* from, int64_t length, bool turned);

} // namespace GENAPI_NAMESPACE::runtime
