// Frame reader: what a delivered buffer holds, read from the tool's own memory and never beyond it, regardless of what
// the producer claims. One thread at a time.
#pragma once

#include "tools/koro/frame_part.h"
#include "tools/koro/point_cloud.h"
#include <koro/koro.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace koro::tool
{

// The memory of a buffer, as far as it was filled.
struct FrameBytes
{
    const uint8_t* data;
    size_t size;
};

bool IsMultiPart(const Buffer& buffer);
// Whether its pixels lie there line by line, as width, height and format say; assumed where the producer does not say.
bool HasPlainImage(const Buffer& buffer);
// The image of a buffer that holds one. Throws koro::Error, or ToolError for a list of pixel formats that is not known.
FramePart ReadImage(const Buffer& buffer, const FrameBytes& bytes);
// The parts of a multi-part buffer. Throws koro::Error, or ToolError for a part that lies outside the memory.
std::vector<FramePart> ReadParts(const Buffer& buffer, const FrameBytes& bytes);

// How a 3D camera measures; empty for a camera without the features. Walks Scan3dCoordinateSelector and sets it back.
std::optional<Scan3D> ReadScan3D(const NodeMap& nodes);

} // namespace koro::tool
