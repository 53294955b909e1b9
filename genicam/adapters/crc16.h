// The checksum of IIDC buffers: 16 bits, polynomial 0x1021, start 0, most significant bit first, nothing inverted.
#pragma once

#include <Base/GCNamespace.h>
#include <stddef.h>
#include <stdint.h>

namespace GENAPI_NAMESPACE::runtime
{

uint16_t Crc16(const uint8_t* bytes, size_t size);

} // namespace GENAPI_NAMESPACE::runtime
