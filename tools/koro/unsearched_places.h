// Unsearched places: folders with producers in which no command looks, in the words of `koro doctor`. Any thread.
#pragma once

#include "tools/koro/producer_places.h"

#include <string>
#include <vector>

namespace koro::tool
{

// A line for each folder below the roots that holds .cti files and none of the candidates, and the line for a shell
// that has them searched too. `searched` is the present value of the variable, null when it is not set. Empty when
// there is no such folder.
std::string DescribeUnsearchedPlaces(
    const std::vector<std::string>& roots, const PlaceBounds& bounds, const std::vector<std::string>& candidates,
    const char* searched);

} // namespace koro::tool
