// What the endurance programs share: the factor of their work, and the growth of the resident memory during it.
//
// KORO_ENDURANCE is the factor; 1 by default, 100 for the whole.
#pragma once

#include "tests/support/boundary.h"
#include "tests/support/scripted_producer.h"

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <stdexcept>
#include <string>

namespace koro::test
{

inline std::uint64_t Factor()
{
    const char* factor = std::getenv("KORO_ENDURANCE");
    return factor ? std::strtoull(factor, nullptr, 10) : 1;
}

// A line of /proc/self/status in KiB.
inline std::int64_t Status_KiB(const std::string& name)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
    {
        if (line.rfind(name + ":", 0) == 0) return std::stoll(line.substr(name.size() + 1));
    }
    throw std::runtime_error("/proc/self/status has no " + name);
}

// At the whole, a hundred bytes left by each tree or two by each frame are above it. A sanitizer keeps what was freed,
// and has a leak check of its own.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr std::int64_t bound_KiB = 512 * 1024;
#else
inline constexpr std::int64_t bound_KiB = 1024;
#endif

// The library keeps the memory of the last 4,096 objects of each kind that ended: these are there afterwards.
inline void FillStoresOfEndedObjects()
{
    const ScriptedProducer producer;
    producer->KeepJournal(false);
    for (int round = 0; round < 4096; ++round)
    {
        OpenTree tree(producer.Path());
        Get<KORO_ModuleHandle>(KORO_DataStream_ToModule, tree.stream);
        tree.QueueBuffers(1);
        Require(KORO_ProducerLibrary_Destruct(tree.producerLibrary));
    }
}

// Resident memory from here on. What the work needs at all is there before: it begins after a warm-up.
class Growth
{
public:
    void Report(const std::string& work)
    {
        const auto growth_KiB = Status_KiB("VmRSS") - start_KiB;
        std::cout << work << ": resident memory " << start_KiB << " KiB after the warm-up, growth " << growth_KiB
                  << " KiB, peak " << Status_KiB("VmHWM") << " KiB" << std::endl;
        EXPECT_LT(growth_KiB, bound_KiB);
    }

private:
    const std::int64_t start_KiB = Status_KiB("VmRSS");
};

} // namespace koro::test
