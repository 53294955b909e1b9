// Deflated data and checksums of zip archives.
#pragma once

#include <Base/GCNamespace.h>
#include <stddef.h>
#include <stdint.h>
#include <string>
#include <string_view>

namespace GENAPI_NAMESPACE::runtime
{

// Expands deflated data without a head. False when they are damaged, do not end, or expand to more than `maxSize`
// bytes. Memory grows with what was really expanded.
bool Inflate(std::string_view packed, size_t maxSize, std::string& expanded);

// CRC-32
uint32_t Checksum(std::string_view bytes);

} // namespace GENAPI_NAMESPACE::runtime
