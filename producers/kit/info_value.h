// InfoValue: the answer of an info query, and the rule by which every size-returning function hands its bytes out.
#pragma once

#include "producers/kit/gentl.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace koro::kit
{

// Scalars fit into the string's own memory, so making one allocates nothing.
struct InfoValue
{
    INFO_DATATYPE type;
    std::string bytes;

    static InfoValue Text(std::string_view text); // with terminator
    static InfoValue Bool(bool value);
    static InfoValue Int32(std::int32_t value);
    static InfoValue UInt32(std::uint32_t value);
    static InfoValue UInt64(std::uint64_t value);
    static InfoValue Size(std::size_t value);
    static InfoValue Pointer(const void* value);
    static InfoValue Bytes(std::string_view bytes);
};

// Size query, copy or GC_ERR_BUFFER_TOO_SMALL.
void CopyOut(std::string_view bytes, void* buffer, std::size_t* size);

// Where an info query wants its answer. Checked before the command is looked at.
struct InfoOutput
{
    INFO_DATATYPE* type;
    void* buffer;
    std::size_t* size;

    void Require() const;
    void Write(const InfoValue& value) const;
};

} // namespace koro::kit
