// FrameFacts: what a fill left in a buffer, as the consumer may ask for it. A plain value.
#pragma once

#include "producers/kit/info_value.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace koro::kit
{

// The picture of a frame, or of one part of it.
struct ImageFacts
{
    std::uint64_t pixelFormat = 0; // of the PFNC
    std::size_t width = 0;
    std::size_t height = 0;
    std::size_t offsetX = 0;
    std::size_t offsetY = 0;
    std::size_t deliveredLines = 0;
};

struct PartFacts
{
    ImageFacts image;
    std::size_t offset = 0; // from the start of the buffer
    std::size_t bytes = 0;  // delivered
    std::size_t dataType = PART_DATATYPE_2D_IMAGE;
    std::uint64_t purpose = 0;
};

struct FrameFacts
{
    std::uint64_t frameId = 0;
    std::uint64_t timestamp_ns = 0;
    std::size_t sizeFilled = 0; // bytes
    std::size_t dataSize = 0;   // bytes that were meant to come
    bool incomplete = false;
    bool largerThanBuffer = false;
    ImageFacts image; // of a frame without parts
    bool isMultiPart = false;
    std::vector<PartFacts> parts; // of a multi-part frame
    // Of its chunks; 0 where none came.
    std::uint64_t chunkLayoutId = 0;
    std::size_t chunkBytes = 0; // behind the image

    bool HasChunks() const noexcept { return chunkLayoutId != 0; }

    // DSGetBufferInfo of a buffer that holds this frame. Throws GC_ERR_NO_DATA and GC_ERR_NOT_IMPLEMENTED.
    InfoValue Info(BUFFER_INFO_CMD command) const;
    // DSGetBufferPartInfo; `base` is the address of the buffer. Throws GC_ERR_INVALID_INDEX too.
    InfoValue PartInfo(const std::byte* base, std::uint32_t index, BUFFER_PART_INFO_CMD command) const;
};

} // namespace koro::kit
