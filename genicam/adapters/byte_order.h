// Reads numbers from bytes at any alignment. The caller has checked that the bytes exist.
#pragma once

#include <Base/GCNamespace.h>
#include <stdint.h>

namespace GENAPI_NAMESPACE::runtime
{

enum class ByteOrder
{
    Big,
    Little
};

inline uint16_t Big16(const uint8_t* bytes)
{
    return static_cast<uint16_t>(bytes[0] << 8 | bytes[1]);
}

inline uint32_t Big32(const uint8_t* bytes)
{
    return static_cast<uint32_t>(Big16(bytes)) << 16 | Big16(bytes + 2);
}

inline uint16_t Little16(const uint8_t* bytes)
{
    return static_cast<uint16_t>(bytes[1] << 8 | bytes[0]);
}

inline uint32_t Little32(const uint8_t* bytes)
{
    return static_cast<uint32_t>(Little16(bytes + 2)) << 16 | Little16(bytes);
}

inline uint64_t Little64(const uint8_t* bytes)
{
    return static_cast<uint64_t>(Little32(bytes + 4)) << 32 | Little32(bytes);
}

} // namespace GENAPI_NAMESPACE::runtime
