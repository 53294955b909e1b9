// Producer places: where on this computer .cti files lie that nobody has named. Any thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace koro::tool
{

// How far a search goes.
struct PlaceBounds
{
    int depth = 8; // folders below a root
    size_t numEntries = 500000;
    std::chrono::milliseconds time{3000};
};

struct ProducerPlaces
{
    std::vector<std::string> folders; // those that hold a .cti file, sorted
    bool isWhole = true;              // false when a bound ended the search
};

// Where makers install their producers: /opt, /usr/lib, /usr/local/lib.
extern const std::vector<std::string> usualPlaces;

// Looks through the roots, which need not exist. Links to folders are not followed; what cannot be read is passed over.
ProducerPlaces FindProducerPlaces(const std::vector<std::string>& roots, const PlaceBounds& bounds);

} // namespace koro::tool
