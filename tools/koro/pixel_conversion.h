// Pixel conversion: from the bytes of a delivered frame to a picture. Pure functions. Any thread.
#pragma once

#include "tools/koro/picture.h"
#include "tools/koro/pixel_format.h"
#include "tools/koro/tool_error.h"

#include <cstddef>
#include <cstdint>

namespace koro::tool
{

// A frame as the producer describes it. All numbers come from outside: nothing here has been checked.
struct FrameLayout
{
    uint64_t pixelFormat = 0;
    size_t width = 0;
    size_t height = 0;
    size_t xPadding = 0;    // bytes behind each line
    size_t imageOffset = 0; // bytes in front of the first line
    bool bigEndian = false;
};

// The frame has no pixels, or pixels of a format that cannot become a picture. No other frame of the camera will do
// better.
class UnknownPixelFormat : public ToolError
{
public:
    using ToolError::ToolError;
};

// Bytes from the start of the frame to the end of the last line's pixels; the padding behind the last line may be
// absent. Throws ToolError when a size is beyond reason (a side over 1,000,000 pixels), and UnknownPixelFormat.
size_t BytesNeeded(const FrameLayout& layout);

enum class Depth
{
    Full,   // values of more than 8 bits are stretched to 16
    AsSent, // they stay the numbers that they are
};

// Throws ToolError for an empty picture and a frame that is longer than `size` bytes, and UnknownPixelFormat.
// Formats of more than 8 bits give 16 bits; a Bayer mosaic gives colours.
Picture ToPicture(const FrameLayout& layout, const uint8_t* frame, size_t size, Depth depth = Depth::Full);

} // namespace koro::tool
