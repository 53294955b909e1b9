// FramePart: one image or block of data of a frame, where it lies in the tool's memory and what the producer says of
// it.
//
// A value over the frame's bytes, which it does not own. Not synchronised.
#pragma once

#include "tools/koro/pixel_conversion.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace koro::tool
{

enum class PartKind
{
    Image,
    Range,      // places in space: a picture of distances, or points
    Confidence, // how much each place of a range part is worth, 0 for nothing
    JPEG,
    JPEG2000,
    Data, // what has no picture
};

struct FramePart
{
    PartKind kind = PartKind::Image;
    FrameLayout layout;
    std::optional<uint64_t> purpose; // of the data, by the camera's count of components
    std::optional<uint64_t> region;
    bool isMeasurement = false; // its numbers mean something, such as disparities, and stay as they are
    std::optional<size_t> receivedLines; // of the layout's height, as far as the producer states it
    const uint8_t* bytes = nullptr;
    size_t size = 0;
};

} // namespace koro::tool
