// Parts: what a camera measures besides an image, and where each of it lies in a payload.
//
// Plain values. The numbers are those of the enumeration ComponentSelector of the descriptions.
#pragma once

#include "producers/kit/gentl.h"
#include "producers/simulator/frames/image_shape.h"
#include "producers/simulator/kit.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace koro::simulator
{

enum class PartKind : std::uint32_t
{
    Intensity, // the image
    Range,
    Confidence
};

inline constexpr std::size_t numPartKinds = 3;

// Bit n stands for kind n.
using PartSet = std::uint64_t;
inline constexpr PartSet intensityPart = 1;
inline constexpr PartSet allParts = 7;

// Of the parts that have one format only.
const PixelFormat& FormatOf(PartKind kind);
std::size_t DataTypeOf(PartKind kind) noexcept; // a PARTDATATYPE_ID
// The value of ComponentIDValue.
std::uint64_t PurposeOf(PartKind kind) noexcept;

struct Part
{
    PartKind kind = PartKind::Intensity;
    ImageShape shape{nullptr, 0, 0};
    std::size_t offset = 0; // from the start of the payload
};

// The parts of a payload, in the order of their kinds; all have the size of the image, and each begins on eight bytes.
class PartLayout
{
public:
    PartLayout() = default;
    PartLayout(PartSet kinds, const ImageShape& image);

    std::span<const Part> Parts() const noexcept { return {parts.data(), number}; }
    std::size_t Bytes() const noexcept; // to the end of the last one

private:
    std::array<Part, numPartKinds> parts;
    std::size_t number = 0;
};

} // namespace koro::simulator
