#include "producers/simulator/frames/frame_plan.h"

namespace koro::simulator
{

std::vector<std::uint16_t> MakeResponse(unsigned depth, const Analog& analog, const std::uint8_t* table)
{
    const bool isNeutral = analog.factor == 1 && analog.blackLevel == 0 && analog.gamma == 1;
    if (isNeutral && table == nullptr) return {};
    std::vector<std::uint16_t> response;
    response.reserve(std::size_t{1} << depth);
    for (std::uint32_t sample = 0; sample < 1U << depth; ++sample)
    {
        const auto lit = AnalogValue(static_cast<std::uint16_t>(sample), depth, analog);
        response.push_back(table == nullptr ? lit : TableValue(lit, depth, table));
    }
    return response;
}

} // namespace koro::simulator
