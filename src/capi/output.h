// The four functions that write results to the caller's memory.
//
// `name` is the name of the parameter; all messages contain it. A null buffer is a size query. A buffer that is too
// small is not changed, nor is its size.
#pragma once

#include "capi/last_error.h"
#include "gentl/info_accessor.h"
#include <koro/return_codes.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace koro::internal
{

KORO_ReturnCode RecordInvalidPointer(const char* name);
// For the size of the result `name`.
KORO_ReturnCode RecordInvalidSizePointer(const char* name);

template <class Value>
KORO_ReturnCode CopyScalarOut(Value value, Value* pointer, const char* name)
{
    if (!pointer) return RecordInvalidPointer(name);
    *pointer = value;
    return KORO_RETURN_CODE_SUCCESS;
}

// Sizes include the terminating zero.
KORO_ReturnCode CopyStringOut(const std::string& text, char* buffer, std::size_t* size, const char* name);

KORO_ReturnCode CopyBlockOut(const void* block, std::size_t needed, void* buffer, std::size_t* size, const char* name);

// Sizes count bytes, also of arrays of wider values.
template <class Element>
KORO_ReturnCode CopyBytesOut(const std::vector<Element>& elements, Element* buffer, std::size_t* size, const char* name)
{
    return CopyBlockOut(elements.data(), elements.size() * sizeof(Element), buffer, size, name);
}

KORO_ReturnCode CopyInfoOut(const RawInfo& information, std::uint8_t* buffer, std::size_t* size, const char* name);

} // namespace koro::internal
