#include "tools/koro/frame_files.h"

#include <algorithm>
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

bool IsTooShort(const FramePart& part)
{
    return HasPicture(part) && BytesNeeded(part.layout) > part.size;
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
        picture = ToPicture(part.layout, part.bytes, part.size);
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

bool IsShort(const std::vector<FramePart>& parts)
{
    return std::any_of(parts.begin(), parts.end(), IsTooShort);
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
        files.push_back({"", SuffixOf(format), ToPicture(image.layout, image.bytes, image.size)});
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
    const auto add = [&](const char* label, const char* suffix, auto content) {
        const int use = ++uses[label];
        files.push_back({label + (use > 1 ? std::to_string(use) : std::string()), suffix, std::move(content)});
    };
    for (const FramePart& part : parts)
    {
        if (part.kind != PartKind::Range || !geometry) continue;
        const Picture* colours = Companion(parts, *pictures, PartKind::Image, part.layout);
        const Picture* confidence = Companion(parts, *pictures, PartKind::Confidence, part.layout);
        auto points = ToPointCloud(part, *geometry, colours, confidence);
        if (points) add("points", ".ply", std::move(*points));
    }
    for (size_t i = 0; i < parts.size(); ++i)
    {
        const FramePart& part = parts[i];
        if ((*pictures)[i])
            add(LabelOf(part.kind), SuffixOf(format), std::move(*(*pictures)[i]));
        else
            add(LabelOf(part.kind), SuffixOf(part.kind), RawBytes(part.bytes, part.bytes + part.size));
    }
    return files;
}

} // namespace koro::tool
