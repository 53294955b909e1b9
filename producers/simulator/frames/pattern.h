// Pattern: what the simulated cameras see and what their electronics make of it, as formulas of sensor column x, sensor
// line y and frame id n (the first frame of a start is 1).
//
// docs/simulator.md documents these formulas; tests compute the expected pixels with them. Depends on nothing.
#pragma once

#include <algorithm>
#include <cmath>
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

// Numbers as in the enumeration TestPattern of the descriptions.
enum class TestPattern
{
    Off,
    Black,
    White,
    GreyHorizontalRamp,
    GreyVerticalRamp,
    GreyHorizontalRampMoving,
    GreyVerticalRampMoving,
    ColorBar
};

// Eight bars of equal width: white, yellow, cyan, green, magenta, red, blue, black; grey steps for Mono.
constexpr std::uint8_t ColorBarValue(Component component, std::uint64_t x, std::uint64_t width)
{
    const std::uint64_t bar = x * 8 / width;
    switch (component)
    {
    case Component::Red:
        return bar == 0 || bar == 1 || bar == 4 || bar == 5 ? 255 : 0;
    case Component::Green:
        return bar < 4 ? 255 : 0;
    case Component::Blue:
        return bar % 2 == 0 ? 255 : 0;
    case Component::Mono:
        break;
    }
    return static_cast<std::uint8_t>((7 - bar) * 36);
}

// In 8 bits; not for TestPattern::Off.
constexpr std::uint8_t TestPatternValue(
    TestPattern pattern, Component component, std::uint64_t x, std::uint64_t y, std::uint64_t n, std::uint64_t width)
{
    switch (pattern)
    {
    case TestPattern::White:
        return 255;
    case TestPattern::GreyHorizontalRamp:
        return static_cast<std::uint8_t>(x);
    case TestPattern::GreyVerticalRamp:
        return static_cast<std::uint8_t>(y);
    case TestPattern::GreyHorizontalRampMoving:
        return static_cast<std::uint8_t>(x + n);
    case TestPattern::GreyVerticalRampMoving:
        return static_cast<std::uint8_t>(y + n);
    case TestPattern::ColorBar:
        return ColorBarValue(component, x, width);
    default:
        return 0;
    }
}

// What a camera's electronics do to a sample of `depth` bits.
struct Analog
{
    double factor = 1;     // exposure by the neutral exposure, times all gains
    double blackLevel = 0; // in steps of an 8-bit image
    double gamma = 1;
};

inline std::uint16_t AnalogValue(std::uint16_t sample, unsigned depth, const Analog& analog)
{
    const double most = (1U << depth) - 1;
    const double lit = std::clamp(sample * analog.factor + analog.blackLevel * (1U << (depth - 8)), 0.0, most);
    return static_cast<std::uint16_t>(std::floor(most * std::pow(lit / most, analog.gamma) + 0.5));
}

// The table changes the upper eight bits.
constexpr std::uint16_t TableValue(std::uint16_t sample, unsigned depth, const std::uint8_t* table)
{
    const unsigned extra = depth - 8;
    const unsigned low = sample & ((1U << extra) - 1);
    return static_cast<std::uint16_t>(static_cast<unsigned>(table[sample >> extra]) << extra | low);
}

} // namespace koro::simulator
