#include "producers/simulator/frames/parts.h"

namespace koro::simulator
{
namespace
{

constexpr std::size_t alignment = 8;

} // namespace

const PixelFormat& FormatOf(PartKind kind)
{
    static const PixelFormat range{"Coord3D_C16", 0x011000B8, Colours::Mono, 16, Packing::Words};
    static const PixelFormat confidence{"Confidence8", 0x010800C6, Colours::Mono, 8, Packing::Bytes};
    return kind == PartKind::Range ? range : confidence;
}

std::size_t DataTypeOf(PartKind kind) noexcept
{
    switch (kind)
    {
    case PartKind::Range:
        return PART_DATATYPE_3D_IMAGE;
    case PartKind::Confidence:
        return PART_DATATYPE_CONFIDENCE_MAP;
    case PartKind::Intensity:
        break;
    }
    return PART_DATATYPE_2D_IMAGE;
}

std::uint64_t PurposeOf(PartKind kind) noexcept
{
    switch (kind)
    {
    case PartKind::Range:
        return 4;
    case PartKind::Confidence:
        return 6;
    case PartKind::Intensity:
        break;
    }
    return 1;
}

PartLayout::PartLayout(PartSet kinds, const ImageShape& image)
{
    for (std::uint32_t index = 0; index < numPartKinds; ++index)
    {
        if ((kinds >> index & 1) == 0) continue;
        const auto kind = static_cast<PartKind>(index);
        const std::size_t start = (Bytes() + alignment - 1) / alignment * alignment;
        Part& part = parts[number++];
        part.kind = kind;
        part.shape = image;
        if (kind != PartKind::Intensity) part.shape.format = &FormatOf(kind);
        part.offset = start;
    }
}

std::size_t PartLayout::Bytes() const noexcept
{
    if (number == 0) return 0;
    const Part& last = parts[number - 1];
    return last.offset + last.shape.ImageBytes();
}

} // namespace koro::simulator
