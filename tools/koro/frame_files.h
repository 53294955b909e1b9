// Frame files: what a frame becomes on the disk. Pure functions over the frame's memory. Any thread.
#pragma once

#include "tools/koro/frame_part.h"
#include "tools/koro/picture.h"
#include "tools/koro/point_cloud.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace koro::tool
{

enum class FileFormat
{
    PNG,
    TIFF,
    Raw,
    None, // frames are only counted
};

// Bytes as they came.
using RawBytes = std::vector<uint8_t>;

struct FrameFile
{
    std::string label;  // tells the files of one frame apart; empty when it has but one
    std::string suffix; // with its dot
    std::variant<Picture, PointCloud, RawBytes> content;
};

// The files of one frame.
using FrameFiles = std::vector<FrameFile>;

// Whether it is a part of pixels whose format is known.
bool HasPicture(const FramePart& part);
// Whether one of the parts that have a picture is too short for it. Throws ToolError for a picture beyond reason that
// may have come nevertheless.
bool IsShort(const std::vector<FramePart>& parts);

// The whole frame as it came.
FrameFiles ToRawFile(const uint8_t* bytes, size_t size);

// The picture of a frame of one image, and its points if it is a range and `geometry` knows them. Empty when the frame
// is too short for it. Throws ToolError for a pixel format that has neither, and for sizes beyond reason.
FrameFiles ToPictureFiles(const FramePart& image, FileFormat format, const std::optional<Scan3D>& geometry);

// A file for each part of a frame: "image", "range", "confidence", "data", with the ids of a purpose and a region that
// the part has beyond the usual, numbered from 2 on where a name returns, and "points" for each range whose places are known. What has no
// picture is kept as it came. Empty when a part is too short for its picture. Throws ToolError for sizes beyond reason.
FrameFiles ToPartFiles(const std::vector<FramePart>& parts, FileFormat format, const std::optional<Scan3D>& geometry);

} // namespace koro::tool
