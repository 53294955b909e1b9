// Measures the cost of looking up a handle in an export, on one, two and four threads, with a separate handle for each
// thread and with one handle for all. Beside it an export without a handle, and a plain map with one mutex.
#include "bench/measure.h"
#include "bench/producer_access.h"

#include <cstdio>
#include <memory>
#include <mutex>
#include <unordered_map>

using namespace koro::bench;

namespace
{

using Steps = std::vector<std::function<void()>>;

// The simplest possible table: the cost of an export with one handle on it.
class PlainTable
{
public:
    explicit PlainTable(std::size_t count)
    {
        for (std::size_t key = 0; key < count; ++key)
            objects.emplace(key, std::make_shared<int>(0));
    }
    std::shared_ptr<int> Find(std::size_t key)
    {
        const std::lock_guard lock(mutex);
        const auto found = objects.find(key);
        return found == objects.end() ? nullptr : found->second;
    }

private:
    std::mutex mutex;
    std::unordered_map<std::size_t, std::shared_ptr<int>> objects;
};

void PrintRow(const Effort& effort, const char* name, const std::function<Steps(std::size_t)>& stepsFor)
{
    std::printf("%-40s", name);
    for (const std::size_t threads : {1u, 2u, 4u})
    {
        std::vector<double> times;
        for (std::size_t round = 0; round < effort.rounds; ++round)
        {
            times.push_back(NanosecondsPerCallOnThreads(effort.iterations, stepsFor(threads)));
        }
        std::printf(" %10.1f", Median(times));
    }
    std::printf("\n");
}

template <class MakeStep>
std::function<Steps(std::size_t)> ForEachThread(MakeStep makeStep)
{
    return [makeStep](std::size_t threads) {
        Steps steps;
        for (std::size_t index = 0; index < threads; ++index)
            steps.emplace_back(makeStep(index));
        return steps;
    };
}

} // namespace

int main(int argc, char** argv)
{
    const Effort effort = EffortFromArguments(argc, argv);
    constexpr std::size_t maxThreads = 4;
    Tree tree;
    std::vector<KORO_DataStreamHandle> streams;
    for (std::size_t index = 0; index < maxThreads; ++index)
        streams.push_back(tree.OpenStream(index));
    PlainTable plain(maxThreads);

    // The key of a stream is a stored text: its size query does not call the producer.
    const auto keySize = [](KORO_DataStreamHandle stream) {
        std::size_t size = 0;
        KORO_DataStream_GetKey(stream, nullptr, &size);
    };

    std::printf("%-40s %10s %10s %10s\n", "ns per call, threads:", "1", "2", "4");
    PrintRow(effort, "export without a handle", ForEachThread([](std::size_t) {
                 return [] {
                     std::uint32_t version = 0;
                     KORO_Library_GetVersionMajor(&version);
                 };
             }));
    PrintRow(effort, "export, one handle for each thread", ForEachThread([&](std::size_t index) {
                 return [&, index] { keySize(streams[index]); };
             }));
    PrintRow(effort, "export, one handle for all threads", ForEachThread([&](std::size_t) {
                 return [&] { keySize(streams[0]); };
             }));
    PrintRow(effort, "plain map, one key for each thread", ForEachThread([&](std::size_t index) {
                 return [&, index] { plain.Find(index); };
             }));
    return 0;
}
