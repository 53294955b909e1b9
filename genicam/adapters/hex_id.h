// HexId: the id of a chunk or an event, a number of any length.
//
// Its canonical form is its bytes in big endian order without leading zeros; ids from all sources are compared in this
// form.
#pragma once

#include <Base/GCString.h>
#include <stddef.h>
#include <stdint.h>
#include <string>
#include <string_view>

namespace GENAPI_NAMESPACE::runtime
{

// The canonical form of an id in memory, big endian.
std::string_view CanonicalId(const void* bigEndian, size_t size);

// The canonical form of a number; holds the bytes.
class NumberId
{
public:
    explicit NumberId(uint64_t number);
    std::string_view Canonical() const { return CanonicalId(bytes, sizeof bytes); }

private:
    uint8_t bytes[8];
};

class HexId
{
public:
    HexId() = default; // no id: equals no other id
    // Hexadecimal digits, also with "0x" in front and blanks around. Any other text is no id.
    explicit HexId(const GENICAM_NAMESPACE::gcstring& text);

    bool IsId() const { return width > 0; }
    // The number of bytes of the id as it is written.
    size_t Width() const { return width; }
    std::string_view Canonical() const { return bytes; }
    bool Is(std::string_view canonical) const { return IsId() && bytes == canonical; }

private:
    std::string bytes;
    size_t width = 0;
};

} // namespace GENAPI_NAMESPACE::runtime
