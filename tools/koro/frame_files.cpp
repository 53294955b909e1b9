#include "tools/koro/frame_files.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <utility>

namespace koro::tool
{

namespace
{

const char* LabelOf(PartKind kind)
{
    switch (kind)
    {
    case PartKind::Image:
    case PartKind::JPEG:
    case PartKind::JPEG2000:
        return "image";
    case PartKind::Range:
        return "range";
    case PartKind::Confidence:
        return "confidence";
    case PartKind::Data:
        break;
    }
    return "data";
}

// What the label of its kind says already.
uint64_t UsualPurpose(PartKind kind)
{
    constexpr uint64_t intensity = 1;
    constexpr uint64_t range = 4;
    constexpr uint64_t confidence = 6;
    switch (kind)
    {
    case PartKind::Range:
        return range;
    case PartKind::Confidence:
        return confidence;
    default:
        return intensity;
    }
}

// "image-purpose8-region2", as far as the producer tags its parts.
std::string LabelOf(const char* kind, const FramePart& part)
{
    std::string label = kind;
    if (part.purpose && *part.purpose != UsualPurpose(part.kind)) label += "-purpose" + std::to_string(*part.purpose);
    if (part.region.value_or(0) != 0) label += "-region" + std::to_string(*part.region);
    return label;
}

const char* SuffixOf(PartKind kind)
{
    switch (kind)
    {
    case PartKind::JPEG:
        return ".jpg";
    case PartKind::JPEG2000:
        return ".jp2";
    default:
        return ".raw";
    }
}

const char* SuffixOf(FileFormat format)
{
    return format == FileFormat::TIFF ? ".tiff" : ".png";
}

Depth DepthOf(const FramePart& part)
{
    return part.isMeasurement || part.kind == PartKind::Range ? Depth::AsSent : Depth::Full;
}

bool IsTooShort(const FramePart& part)
{
    return HasPicture(part) && BytesNeeded(part.layout) > part.size;
}

// Known of sizes beyond reason too.
bool HasMorePixelsThanBytes(const FramePart& part)
{
    const FrameLayout& layout = part.layout;
    return HasPicture(part) && layout.height != 0 && layout.width > part.size / layout.height;
}

// The picture of each part that has one; empty when one of them is too short.
std::optional<std::vector<std::optional<Picture>>> PicturesOf(const std::vector<FramePart>& parts)
{
    std::vector<std::optional<Picture>> pictures;
    for (const FramePart& part : parts)
    {
        std::optional<Picture>& picture = pictures.emplace_back();
        if (IsTooShort(part)) return std::nullopt;
        if (!HasPicture(part)) continue;
        picture = ToPicture(part.layout, part.bytes, part.size, DepthOf(part));
    }
    return pictures;
}

// The first picture of that kind that has the size of the range part.
const Picture* Companion(
    const std::vector<FramePart>& parts, const std::vector<std::optional<Picture>>& pictures, PartKind kind,
    const FrameLayout& layout)
{
    for (size_t i = 0; i < parts.size(); ++i)
    {
        const bool fits = pictures[i] && pictures[i]->width == layout.width && pictures[i]->height == layout.height;
        if (parts[i].kind == kind && fits) return &*pictures[i];
    }
    return nullptr;
}

} // namespace

bool HasPicture(const FramePart& part)
{
    switch (part.kind)
    {
    case PartKind::Image:
    case PartKind::Range:
    case PartKind::Confidence:
        return FindPixelFormat(part.layout.pixelFormat) != nullptr;
    default:
        return false;
    }
}

bool IsShort(const std::vector<FramePart>& parts)
{
    // No pixel has less than a byte.
    return std::any_of(parts.begin(), parts.end(), [](const FramePart& part) {
        return HasMorePixelsThanBytes(part) || IsTooShort(part);
    });
}

FrameFiles ToRawFile(const uint8_t* bytes, size_t size)
{
    return {{"", ".raw", RawBytes(bytes, bytes + size)}};
}

FrameFiles ToPictureFiles(const FramePart& image, FileFormat format, const std::optional<Scan3D>& geometry)
{
    FrameFiles files;
    std::optional<PointCloud> points;
    if (geometry) points = ToPointCloud(image, *geometry, nullptr, nullptr);
    if (!points || HasPicture(image))
    {
        if (BytesNeeded(image.layout) > image.size) return {};
        files.push_back({"", SuffixOf(format), ToPicture(image.layout, image.bytes, image.size, DepthOf(image))});
    }
    if (points) files.push_back({"points", ".ply", std::move(*points)});
    return files;
}

FrameFiles ToPartFiles(const std::vector<FramePart>& parts, FileFormat format, const std::optional<Scan3D>& geometry)
{
    auto pictures = PicturesOf(parts);
    if (!pictures) return {};

    FrameFiles files;
    std::map<std::string, int> uses;
    const auto add = [&](const std::string& label, const char* suffix, auto content) {
        const int use = ++uses[label];
        const bool endsWithAnID = std::isdigit(static_cast<unsigned char>(label.back())) != 0;
        const std::string number = use > 1 ? (endsWithAnID ? "-" : "") + std::to_string(use) : "";
        files.push_back({label + number, suffix, std::move(content)});
    };
    for (const FramePart& part : parts)
    {
        if (part.kind != PartKind::Range || !geometry) continue;
        const Picture* colours = Companion(parts, *pictures, PartKind::Image, part.layout);
        const Picture* confidence = Companion(parts, *pictures, PartKind::Confidence, part.layout);
        auto points = ToPointCloud(part, *geometry, colours, confidence);
        if (points) add(LabelOf("points", part), ".ply", std::move(*points));
    }
    for (size_t i = 0; i < parts.size(); ++i)
    {
        const FramePart& part = parts[i];
        if ((*pictures)[i])
            add(LabelOf(LabelOf(part.kind), part), SuffixOf(format), std::move(*(*pictures)[i]));
        else
            add(LabelOf(LabelOf(part.kind), part), SuffixOf(part.kind), RawBytes(part.bytes, part.bytes + part.size));
    }
    return files;
}

} // namespace koro::tool
