// Image writers: a picture or the bytes of a frame into a file, whole or not at all. Any thread.
#pragma once

#include "tools/koro/picture.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace koro::tool
{

// Each throws ToolError with the reason of the system or of the image library.
void WritePNG(const Picture& picture, const std::filesystem::path& path);
void WriteTIFF(const Picture& picture, const std::filesystem::path& path);
void WriteRaw(const uint8_t* bytes, size_t size, const std::filesystem::path& path);

} // namespace koro::tool
