// One row: the same work by plain calls of the producer, by the GenICam runtime without the library, and through the
// exports.
#pragma once

#include "bench/measure.h"

#include <cstdio>

namespace koro::bench
{

using Step = std::function<void()>;

inline void PrintRoads(const char* unit)
{
    std::printf("%-34s %10s %10s %10s %10s %7s\n", unit, "producer", "runtime", "export", "above", "ratio");
}

// All columns alternate. `nanoseconds` are per printed unit.
inline void PrintRow(
    const Effort& effort, const char* name, const Step& producer, const Step& runtime, const Step& exported,
    double nanoseconds = 1)
{
    std::vector<double> columns[3];
    for (std::size_t round = 0; round < effort.rounds; ++round)
    {
        columns[0].push_back(ProcessorNanosecondsPerCall(effort.iterations, producer));
        columns[1].push_back(ProcessorNanosecondsPerCall(effort.iterations, runtime));
        columns[2].push_back(ProcessorNanosecondsPerCall(effort.iterations, exported));
    }
    const double bare = Median(columns[0]) / nanoseconds;
    const double below = Median(columns[1]) / nanoseconds;
    const double whole = Median(columns[2]) / nanoseconds;
    std::printf("%-34s %10.1f %10.1f %10.1f %10.1f %7.2f\n", name, bare, below, whole, whole - below, whole / below);
}

} // namespace koro::bench
