// Similar names: what somebody may have meant who wrote a name that there is not. Any thread.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace koro::tool
{

// How many letters have to be put in, left out, replaced or swapped with their neighbours to make one text the other,
// whatever their case. More than `most` is most + 1.
size_t EditDistance(const std::string& left, const std::string& right, size_t most);

// Of these names those that look like the wish, the nearest first, at most `number` of them: names with few wrong
// letters, then those that hold the wish or are held by it.
std::vector<std::string> SimilarNames(const std::vector<std::string>& names, const std::string& wish, size_t number);

} // namespace koro::tool
