// ImageSource: where a camera's pictures come from. Immutable once made, so any number of streams may draw from it.
#pragma once

#include "producers/simulator/picture.h"
#include "producers/simulator/pixel_format.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace koro::simulator
{

struct ImageShape
{
    const PixelFormat* format; // lives as long as the library
    std::size_t width;         // pixels
    std::size_t height;        // lines

    std::size_t LineBytes() const noexcept { return format->LineBytes(width); }
    std::size_t PayloadBytes() const noexcept { return LineBytes() * height; }
};

class ImageSource
{
public:
    explicit ImageSource(const ImageShape& imageShape) : shape(imageShape) {}
    ImageSource(const ImageSource&) = delete;
    ImageSource& operator=(const ImageSource&) = delete;
    virtual ~ImageSource() = default;

    const ImageShape& Shape() const noexcept { return shape; }

    // Writes as many whole lines of frame n as `memory` takes.
    virtual void Draw(std::uint64_t n, std::span<std::byte> memory) const = 0;

private:
    ImageShape shape;
};

// The moving test pattern, PatternValue.
std::unique_ptr<ImageSource> MakePatternSource(const ImageShape& shape);

// The built-in ten images, SequenceValue.
std::unique_ptr<ImageSource> MakeSequenceSource(const ImageShape& shape);

// Frame n shows picture (n - 1) modulo their number; the upper left corner is shown where it is larger, black where it
// ends.
std::unique_ptr<ImageSource> MakePictureSource(const ImageShape& shape, const std::vector<Picture>& pictures);

} // namespace koro::simulator
