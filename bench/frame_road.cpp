// Measures the cost that the exports add to the producer's calls for a frame, side by side with the same calls made
// directly: first each step, then whole frames on one, two and four threads with one stream each.
#include "bench/measure.h"
#include "bench/producer_access.h"

#include <array>
#include <cstdio>
#include <memory>

using namespace koro::bench;
using namespace GenTL;

namespace
{

constexpr std::size_t maxThreads = 4;

struct Step
{
    const char* name;
    int producerCalls;
    std::function<void()> direct;
    std::function<void()> exported;
};

void PrintStep(const Effort& effort, const Step& step)
{
    std::vector<double> direct;
    std::vector<double> exported;
    for (std::size_t round = 0; round < effort.rounds; ++round)
    {
        direct.push_back(NanosecondsPerCall(effort.iterations, step.direct));
        exported.push_back(NanosecondsPerCall(effort.iterations, step.exported));
    }
    const double bare = Median(direct);
    const double whole = Median(exported);
    std::printf("%-28s %5d %10.1f %10.1f %10.1f\n", step.name, step.producerCalls, bare, whole, whole - bare);
}

template <class Streams>
std::vector<std::function<void()>> FramesOf(const Streams& streams, std::size_t count)
{
    std::vector<std::function<void()>> frames;
    for (std::size_t index = 0; index < count; ++index)
    {
        frames.emplace_back([&stream = *streams[index]] { stream.Frame(); });
    }
    return frames;
}

template <class Streams>
double FrameTime(const Effort& effort, const Streams& streams, std::size_t threads)
{
    return NanosecondsPerCallOnThreads(effort.iterations, FramesOf(streams, threads));
}

} // namespace

int main(int argc, char** argv)
{
    const Effort effort = EffortFromArguments(argc, argv);
    Tree tree;
    std::array<std::unique_ptr<DirectStream>, maxThreads> direct;
    std::array<std::unique_ptr<ExportedStream>, maxThreads> exported;
    for (std::uint32_t index = 0; index < maxThreads; ++index)
    {
        direct[index] = std::make_unique<DirectStream>(index);
        exported[index] = std::make_unique<ExportedStream>(tree, maxThreads + index);
    }

    const auto& bare = *direct[0];
    const auto& library = *exported[0];
    std::size_t width = 0;
    const Step steps[] = {
        {"getter (width)", 2, [&] { bare.Get(bare.AnyBuffer(), BUFFER_INFO_WIDTH); },
         [&] { KORO_Buffer_GetWidth(library.AnyBuffer(), &width); }},
        {"wait for finished buffer", 3, [&] { bare.Wait(); }, [&] { library.Wait(); }},
        {"queue buffer", 1, [&] { bare.Queue(bare.AnyBuffer()); }, [&] { library.Queue(library.AnyBuffer()); }},
    };
    std::printf("%-28s %5s %10s %10s %10s\n", "one thread, ns per call", "calls", "direct", "exports", "above");
    for (const auto& step : steps)
        PrintStep(effort, step);

    std::printf("\n%-28s %5s %10s %10s %10s\n", "frame: wait, 6 values, queue", "calls", "direct", "exports", "ratio");
    for (const std::size_t threads : {1u, 2u, 4u})
    {
        std::vector<double> bareTimes;
        std::vector<double> libraryTimes;
        for (std::size_t round = 0; round < effort.rounds; ++round)
        {
            bareTimes.push_back(FrameTime(effort, direct, threads));
            libraryTimes.push_back(FrameTime(effort, exported, threads));
        }
        std::printf(
            "%zu thread%-20s %5d %10.1f %10.1f %10.2f\n", threads, threads == 1 ? "" : "s", 16, Median(bareTimes),
            Median(libraryTimes), Median(libraryTimes) / Median(bareTimes));
    }
    return 0;
}
