// Picture: one decoded image file (PNG or binary PGM/PPM), for the cameras that play a folder.
#pragma once

#include "producers/simulator/frames/pattern.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace koro::simulator
{

struct Picture
{
    std::size_t width = 0;
    std::size_t height = 0;
    std::size_t channels = 0;           // 1 grey or 3 red, green, blue
    std::vector<std::uint16_t> samples; // full 16-bit range, regardless of the depth in the file

    // Black outside the picture; grey pictures give every component the same, colour ones a luminance for Mono.
    std::uint16_t ValueAt(Component component, std::size_t x, std::size_t y) const noexcept;
};

inline constexpr std::size_t maxPictures = 256;
inline constexpr std::size_t maxPictureSide = 16384;
inline constexpr std::size_t maxFolderSamples = std::size_t{1} << 27; // of all pictures of a folder together

// The pictures of a folder in the order of their names. Throws Failure that names the file and what is wrong with it.
std::vector<Picture> LoadFolder(const std::filesystem::path& folder);

} // namespace koro::simulator
