// BufferPart: one image or data block of a buffer that holds several, identified by its index. Every query calls the
// producer.
//
// Owned by the list of its Buffer and by the handle table; holds the buffer weakly. A part that was removed from the
// list still answers queries about its index, for the current contents of the buffer. Every operation throws
// InternalErrorException after the buffer or its stream has ended. Thread-safe.
#pragma once

#include "base/instance.h"
#include "gentl/info_accessor.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace koro::internal
{

class Buffer;

class BufferPart final : public TGenTLInfoAccessor<GenTL::BUFFER_PART_INFO_CMD_LIST>, public Instance
{
public:
    BufferPart(
        std::uint32_t partIndex, const std::weak_ptr<Buffer>& buffer, const std::shared_ptr<const GenTLProxy>& proxy);

    void* BasePtr() const;
    std::size_t Size() const; // bytes
    std::int32_t Type() const;
    std::uint64_t Format() const;
    std::uint64_t FormatNamespace() const;
    std::size_t Width() const; // pixels, like the next three
    std::size_t Height() const;
    std::size_t XOffset() const;
    std::size_t YOffset() const;
    std::size_t XPadding() const; // bytes for each line
    std::uint64_t SourceID() const;
    std::size_t DeliveredImageHeight() const;

    std::shared_ptr<Buffer> ParentBuffer() const;

private:
    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override;
    const char* QueryName() const override { return gentl.Proxy()->DSGetBufferPartInfo.Name(); }

    std::size_t SizeInfo(std::int32_t command) const;
    std::uint64_t NumberInfo(std::int32_t command) const;

    const std::weak_ptr<Buffer> parent;
    const std::uint32_t index;
};

} // namespace koro::internal
