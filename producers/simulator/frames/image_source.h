// ImageSource: what a camera sees. Immutable once made, so any number of streams may draw from it.
#pragma once

#include "producers/simulator/frames/frame_plan.h"
#include "producers/simulator/frames/picture.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace koro::simulator
{

class ImageSource
{
public:
    ImageSource() = default;
    ImageSource(const ImageSource&) = delete;
    ImageSource& operator=(const ImageSource&) = delete;
    virtual ~ImageSource() = default;

    // Frames repeat after so many; 0: never.
    virtual std::size_t NumPictures() const noexcept = 0;

    // Writes as many whole lines of frame n as `memory` takes.
    void Draw(std::uint64_t n, const FramePlan& plan, std::span<std::byte> memory) const;

private:
    virtual void DrawScene(std::uint64_t n, const FramePlan& plan, std::span<std::byte> memory) const = 0;
};

// The moving test pattern, PatternValue.
std::unique_ptr<ImageSource> MakePatternSource();

// The built-in ten images, SequenceValue.
std::unique_ptr<ImageSource> MakeSequenceSource();

// What 3D cameras measure as a picture, SurfaceValue.
std::unique_ptr<ImageSource> MakeSurfaceSource();

// Frame n shows picture (n - 1) modulo their number; the upper left corner is shown where it is larger, black where it
// ends.
std::unique_ptr<ImageSource> MakePictureSource(std::vector<Picture> pictures);

} // namespace koro::simulator
