// Image writers: a picture, points or the bytes of a frame into a file, whole or not at all. Any thread.
#pragma once

#include "tools/koro/pending_file.h"
#include "tools/koro/picture.h"
#include "tools/koro/point_cloud.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace koro::tool
{

// Each throws ToolError with the reason of the system or of the image library.
void WritePNG(const Picture& picture, const std::filesystem::path& path);
void WriteTIFF(const Picture& picture, const std::filesystem::path& path);
// The binary form of PLY: x, y and z as float, then red, green and blue if the points have colours.
void WritePLY(const PointCloud& points, const std::filesystem::path& path);
void WriteRaw(const uint8_t* bytes, size_t size, const std::filesystem::path& path);

// The same into a file that the caller commits, for what belongs to other files.
void WritePNG(const Picture& picture, PendingFile& file);
void WriteTIFF(const Picture& picture, PendingFile& file);
void WritePLY(const PointCloud& points, PendingFile& file);
void WriteRaw(const uint8_t* bytes, size_t size, PendingFile& file);

} // namespace koro::tool
