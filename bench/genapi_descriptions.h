// Generated descriptions for the bench of the GenICam runtime, which so runs without any file.
#pragma once

#include <cstddef>
#include <string>

namespace koro::bench
{

// A camera of `features` features with registers, conditions, invalidators, entries and formulas in about the mixture
// of large real descriptions. Each feature makes about nine nodes.
std::string GeneratedDescription(std::size_t features);

// The nodes that the rows of single operations use.
std::string DescriptionOfSingleNodes();

// As many features "F0" and so on in one category, selected by the node "Selector", and as many entries "E0" and so on
// of the enumeration "Long".
std::string DescriptionOfLongLists(std::size_t count);

constexpr int dependants = 200; // of the node "Invalidated"
constexpr int entries = 30;     // of the enumeration "Format", "Entry0" and so on
constexpr int channels = 8;     // entries of "Channel", which selects "Level"

} // namespace koro::bench
