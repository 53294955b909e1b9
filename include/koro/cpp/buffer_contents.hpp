// The contents of a finished buffer other than a single image: parts of a multi-part buffer, and chunks.
//
// Programs include <koro/koro.hpp>, which includes this header.
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

// One part of a buffer, identified by its index. Each query calls the producer. Owns its handle, which ends at the
// latest with the buffer.
class BufferPart : public detail::Owner<KORO_BufferPartHandle, KORO_BufferPart_Destruct>
{
public:
    using Owner::Owner;

    // Points into the buffer's memory, unless the producer reports a wrong address.
    void* BasePtr() const { return detail::Get(KORO_BufferPart_GetBasePtr, Get()); }
    size_t Size() const { return detail::Get(KORO_BufferPart_GetSize, Get()); }
    // A number of the GenTL list PART_DATATYPE.
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

// One chunk of a buffer, as it was when the list was read. Owns its handle, which ends at the latest with the buffer.
class BufferChunk : public detail::Owner<KORO_BufferChunkHandle, KORO_BufferChunk_Destruct>
{
public:
    using Owner::Owner;

    uint64_t ID() const { return detail::Get(KORO_BufferChunk_GetID, Get()); }
    // The buffer's base address plus the offset that the producer reported. The library does not check that it lies in
    // the buffer.
    void* BasePtr() const { return detail::Get(KORO_BufferChunk_GetBasePtr, Get()); }
    size_t Size() const { return detail::Get(KORO_BufferChunk_GetSize, Get()); }
    Buffer ParentBuffer() const;
};

namespace detail
{

// Reads a list of the buffer from the producer; empty when the producer reports that there is none.
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
