// What lies in a finished buffer beside one image: parts of a multi-part buffer, and chunks.
//
// Included by <koro/koro.hpp>, which is the header for programs.
#ifndef KORO_CPP_BUFFER_CONTENTS_HPP
#define KORO_CPP_BUFFER_CONTENTS_HPP

#include <koro/cpp/support.hpp>
#include <koro/koro.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace koro
{

class Buffer;

// One part of a buffer, by its index: every answer is the producer's at the moment of the call. Owns its handle, which
// the buffer's end ends too.
class BufferPart : public detail::Owner<KORO_BufferPartHandle, KORO_BufferPart_Destruct>
{
public:
    using Owner::Owner;

    // Inside the buffer's memory, if the producer tells the truth.
    void* BasePtr() const { return detail::Get(KORO_BufferPart_GetBasePtr, Get()); }
    size_t Size() const { return detail::Get(KORO_BufferPart_GetSize, Get()); }
    // A value of the GenTL list PART_DATATYPE.
    int32_t Type() const { return detail::Get(KORO_BufferPart_GetType, Get()); }
    uint64_t Format() const { return detail::Get(KORO_BufferPart_GetFormat, Get()); }
    uint64_t FormatNamespace() const { return detail::Get(KORO_BufferPart_GetFormatNamespace, Get()); }
    size_t Width() const { return detail::Get(KORO_BufferPart_GetWidth, Get()); }
    size_t Height() const { return detail::Get(KORO_BufferPart_GetHeight, Get()); }
    size_t DeliveredImageHeight() const { return detail::Get(KORO_BufferPart_GetDeliveredImageHeight, Get()); }
    size_t XOffset() const { return detail::Get(KORO_BufferPart_GetXOffset, Get()); }
    size_t YOffset() const { return detail::Get(KORO_BufferPart_GetYOffset, Get()); }
    size_t XPadding() const { return detail::Get(KORO_BufferPart_GetXPadding, Get()); }
    uint64_t SourceID() const { return detail::Get(KORO_BufferPart_GetSourceID, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_BufferPart_GetInfo, Get(), command); }
    Buffer ParentBuffer() const;
};

// One chunk of a buffer, as it lay there when the list was made. Owns its handle, which the buffer's end ends too.
class BufferChunk : public detail::Owner<KORO_BufferChunkHandle, KORO_BufferChunk_Destruct>
{
public:
    using Owner::Owner;

    uint64_t ID() const { return detail::Get(KORO_BufferChunk_GetID, Get()); }
    // The buffer's base and the offset that the producer told; nothing compares it with the buffer's memory.
    void* BasePtr() const { return detail::Get(KORO_BufferChunk_GetBasePtr, Get()); }
    size_t Size() const { return detail::Get(KORO_BufferChunk_GetSize, Get()); }
    Buffer ParentBuffer() const;
};

namespace detail
{

// Reads a list of the buffer anew; empty where the producer says that there is none.
template <typename Child, typename ChildHandle>
std::vector<Child> UpdatedChildren(
    KORO_ReturnCode (*update)(KORO_BufferHandle), KORO_ReturnCode (*getNum)(KORO_BufferHandle, size_t*),
    KORO_ReturnCode (*getChild)(KORO_BufferHandle, size_t, ChildHandle*), KORO_BufferHandle buffer)
{
    const KORO_ReturnCode code = update(buffer);
    if (code == KORO_RETURN_CODE_NO_DATA) return {};
    Check(code);
    return Children<Child>(getNum, getChild, buffer);
}

} // namespace detail

} // namespace koro

#endif
