// IfKnown: a value that a producer need not know.
#pragma once

#include <koro/koro.hpp>

#include <optional>

namespace koro::tool
{

// Runs `read`; empty when the producer refuses the question, for whatever reason it names.
template <typename Read>
auto IfKnown(const Read& read) -> std::optional<decltype(read())>
{
    try
    {
        return read();
    }
    catch (const Error&)
    {
        return std::nullopt;
    }
}

} // namespace koro::tool
