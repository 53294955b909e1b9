// Frame reader: what a delivered buffer holds, read from the tool's own memory and never beyond it, regardless of what
// the producer claims. One thread at a time.
#pragma once

#include "tools/koro/frame_part.h"
#include "tools/koro/frame_questions.h"
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

// What the producer is asked passes through `questions`: each of these throws BrokenFrame when it refuses what it has
// answered before.

bool IsMultiPart(const Buffer& buffer, FrameQuestions& questions);
// Whether its pixels lie there line by line, as width, height and format say; assumed where the producer does not say.
bool HasPlainImage(const Buffer& buffer, FrameQuestions& questions);
// The image of a buffer that holds one. Throws koro::Error, UnknownPixelFormat for a payload type without pixels and
// for a list of pixel formats that is not known, and ToolError where the producer states that there is no image.
FramePart ReadImage(const Buffer& buffer, const FrameBytes& bytes, FrameQuestions& questions);
// The parts of a multi-part buffer. Throws koro::Error, or BrokenFrame for a part that lies outside the memory.
std::vector<FramePart> ReadParts(const Buffer& buffer, const FrameBytes& bytes, FrameQuestions& questions);

// How a 3D camera measures; empty for a camera without the features. Walks Scan3dCoordinateSelector and sets it back.
std::optional<Scan3D> ReadScan3D(const NodeMap& nodes);

} // namespace koro::tool
