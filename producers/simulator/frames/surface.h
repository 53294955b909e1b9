// Surface: what a simulated 3D camera measures, as formulas of sensor column x, sensor line y, frame id n and the size
// of the sensor. Whole numbers throughout, so that everyone who computes them gets the same.
//
// A plane that leads away to the right and comes nearer downwards; a dome stands on it that grows for ten frames and
// begins again; to the right of the dome a crescent lies in its shadow, where nothing is measured.
// docs/simulator.md documents these formulas; tests compute the expected ranges with them. Depends on nothing.
#pragma once

#include <algorithm>
#include <cstdint>

namespace koro::simulator
{

// From the number of a Coord3D_C16 pixel to the distance; of Scan3dCoordinateScale and Scan3dCoordinateOffset.
inline constexpr double rangeScale_mm = 0.01;
inline constexpr double rangeOffset_mm = 800;
inline constexpr std::uint16_t noRange = 0;
// Of neighbouring sensor pixels, in both directions; the middle of the sensor is at 0.
inline constexpr double pixelPitch_mm = 0.5;

inline constexpr std::uint64_t surfaceLength = 10; // frames, then they repeat

struct DomePlace
{
    std::int64_t distance; // from the middle, in half pixels, squared
    std::int64_t radius;   // squared too
};

constexpr DomePlace DomeAt(std::uint64_t x, std::uint64_t y, std::uint64_t width, std::uint64_t height)
{
    const auto dx = 2 * static_cast<std::int64_t>(x) - static_cast<std::int64_t>(width);
    const auto dy = 2 * static_cast<std::int64_t>(y) - static_cast<std::int64_t>(height);
    const auto radius = static_cast<std::int64_t>(std::max<std::uint64_t>(2 * std::min(width, height) / 3, 1));
    return {dx * dx + dy * dy, radius * radius};
}

constexpr bool IsInShadow(std::uint64_t x, std::uint64_t y, std::uint64_t width, std::uint64_t height)
{
    const DomePlace dome = DomeAt(x, y, width, height);
    return 2 * x > width && dome.distance >= dome.radius && 16 * dome.distance < 25 * dome.radius;
}

// A pixel of Coord3D_C16.
constexpr std::uint16_t RangeValue(
    std::uint64_t x, std::uint64_t y, std::uint64_t n, std::uint64_t width, std::uint64_t height)
{
    if (IsInShadow(x, y, width, height)) return noRange;
    const auto plane = static_cast<std::int64_t>(20000 + 10000 * x / width - 5000 * y / height);
    const DomePlace dome = DomeAt(x, y, width, height);
    if (dome.distance >= dome.radius) return static_cast<std::uint16_t>(plane);
    const auto peak = static_cast<std::int64_t>(6000 + 600 * (n % surfaceLength));
    return static_cast<std::uint16_t>(plane - peak * (dome.radius - dome.distance) / dome.radius);
}

// A pixel of Confidence8: less towards the corners, 0 where nothing is measured.
constexpr std::uint8_t ConfidenceValue(std::uint64_t x, std::uint64_t y, std::uint64_t width, std::uint64_t height)
{
    if (IsInShadow(x, y, width, height)) return 0;
    const std::int64_t most = DomeAt(0, 0, width, height).distance;
    return static_cast<std::uint8_t>(255 - 155 * DomeAt(x, y, width, height).distance / most);
}

// The surface as an 8-bit picture: the nearer, the brighter; black in the shadow.
constexpr std::uint8_t SurfaceValue(
    std::uint64_t x, std::uint64_t y, std::uint64_t n, std::uint64_t width, std::uint64_t height)
{
    const std::uint16_t range = RangeValue(x, y, n, width, height);
    return range == noRange ? 0 : static_cast<std::uint8_t>(255 - range / 128);
}

} // namespace koro::simulator
