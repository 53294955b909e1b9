// Timing for the benches: medians over rounds in which the compared variants alternate.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <latch>
#include <string_view>
#include <thread>
#include <time.h>
#include <vector>

namespace koro::bench
{

struct Effort
{
    std::size_t rounds;
    std::size_t iterations;
};

inline Effort EffortFromArguments(int argc, char** argv)
{
    const bool quick = argc > 1 && std::string_view(argv[1]) == "--quick";
    return quick ? Effort{1, 1000} : Effort{15, 200000};
}

inline double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// Nanoseconds for one of `iterations` calls of `step`.
template <class Step>
double NanosecondsPerCall(std::size_t iterations, Step&& step)
{
    const auto begin = std::chrono::steady_clock::now();
    for (std::size_t iteration = 0; iteration < iterations; ++iteration)
        step();
    const std::chrono::duration<double, std::nano> elapsed = std::chrono::steady_clock::now() - begin;
    return elapsed.count() / static_cast<double>(iterations);
}

// The same in processor time of this thread, which excludes other work of a busy machine.
template <class Step>
double ProcessorNanosecondsPerCall(std::size_t iterations, Step&& step)
{
    const auto now = [] {
        timespec time = {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return 1e9 * static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec);
    };
    const double begin = now();
    for (std::size_t iteration = 0; iteration < iterations; ++iteration)
        step();
    return (now() - begin) / static_cast<double>(iterations);
}

// Wall-clock time on several threads at once, each with its own step; the mean over the threads.
inline double NanosecondsPerCallOnThreads(std::size_t iterations, const std::vector<std::function<void()>>& steps)
{
    std::vector<double> results(steps.size());
    std::latch start(static_cast<std::ptrdiff_t>(steps.size()));
    std::vector<std::thread> threads;
    for (std::size_t index = 0; index < steps.size(); ++index)
    {
        threads.emplace_back([&, index] {
            start.arrive_and_wait();
            results[index] = NanosecondsPerCall(iterations, steps[index]);
        });
    }
    double sum = 0;
    for (std::size_t index = 0; index < steps.size(); ++index)
    {
        threads[index].join();
        sum += results[index];
    }
    return sum / static_cast<double>(steps.size());
}

} // namespace koro::bench
