// A firmware image, as the file Firmware takes it. Numbers are little-endian.
//
//   0  "KOROFWIM"
//   8  four bytes: length of the content
//  12  four bytes: CRC-32 of the content, that of zip archives
//  16  the content: the version, a line feed, anything
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace koro::simulator
{

// The version of a whole image, 1 to 63 printable characters; nothing for other bytes.
std::optional<std::string> FirmwareVersionIn(std::span<const std::byte> image);

} // namespace koro::simulator
