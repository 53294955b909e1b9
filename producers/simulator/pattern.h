// Pattern: what the simulated cameras see, as formulas of column x, line y and frame id n (the first frame of a start
// is 1).
//
// docs/simulator.md documents these formulas; tests compute the expected pixels with them. Depends on nothing.
#pragma once

#include <cstdint>

namespace koro::simulator
{

enum class Component
{
    Mono,
    Red,
    Green,
    Blue
};

// The moving test pattern in 8 bits: diagonal ramp, ramp along x, ramp along y, and the diagonal ramp upside down.
constexpr std::uint8_t PatternValue(Component component, std::uint64_t x, std::uint64_t y, std::uint64_t n)
{
    switch (component)
    {
    case Component::Red:
        return static_cast<std::uint8_t>(x + n);
    case Component::Green:
        return static_cast<std::uint8_t>(y + n);
    case Component::Blue:
        return static_cast<std::uint8_t>(255 - (x + y + n) % 256);
    case Component::Mono:
        break;
    }
    return static_cast<std::uint8_t>(x + y + n);
}

inline constexpr std::uint64_t sequenceLength = 10;

// The built-in sequence: ten images that repeat; a bright square walks over a checkerboard, one tenth of the width a
// frame.
constexpr std::uint8_t SequenceValue(
    Component component, std::uint64_t x, std::uint64_t y, std::uint64_t n, std::uint64_t width, std::uint64_t height)
{
    const std::uint64_t left = n % sequenceLength * width / sequenceLength;
    const std::uint64_t top = height * 3 / 8;
    const std::uint64_t side = height / 4;
    if (x >= left && x < left + side && y >= top && y < top + side) return component == Component::Blue ? 64 : 240;
    return (x / 32 + y / 32) % 2 == 0 ? 48 : 96;
}

// An 8-bit value as a sample of `depth` bits: the value on top, the low bits of the column below it, so that a decoder
// that loses or swaps low bits is found out.
constexpr std::uint16_t Deepen(std::uint8_t value, unsigned depth, std::uint64_t x)
{
    const unsigned extra = depth - 8;
    const std::uint64_t low = x & ((std::uint64_t{1} << extra) - 1);
    return static_cast<std::uint16_t>(static_cast<std::uint64_t>(value) << extra | low);
}

} // namespace koro::simulator
