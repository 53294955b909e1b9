// Unloading leaves no mapping and no thread behind, and any number of threads may use the tree meanwhile.
#include "tests/unit/simulator/producer.h"

#include <atomic>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <future>
#include <gtest/gtest.h>
#include <thread>

namespace koro::simulator::test
{
namespace
{

bool IsMapped()
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find("zvr_koro_simulator.cti") != std::string::npos) return true;
    return false;
}

std::ptrdiff_t NumThreads()
{
    using Iterator = std::filesystem::directory_iterator;
    return std::distance(Iterator("/proc/self/task"), Iterator());
}

// A thread that lives with its object. The first thread of a program may bring a helper of the run-time environment,
// which stays: with this one running before the count, nothing but the simulator's threads comes and goes afterwards.
class Company
{
public:
    ~Company()
    {
        leave.set_value();
        thread.join();
    }

private:
    std::promise<void> leave;
    std::thread thread{[this] { leave.get_future().wait(); }};
};

// A joined thread may stand in the kernel's list a moment longer.
bool ThreadsAre(std::ptrdiff_t number)
{
    return Eventually([&] { return NumThreads() == number; });
}

TEST(SimulatorUnload, ClosingTheLibraryEndsItsThreadsAndUnloadingTakesTheFileOut)
{
    const Company company;
    const std::ptrdiff_t before = NumThreads();
    {
        const Producer producer(PacedCamera(1000));
        const Tree tree(producer);
        tree.Announce();
        tree.Start();
        tree.Next();
        EXPECT_EQ(NumThreads(), before + 1);
        EXPECT_TRUE(IsMapped());
        ASSERT_EQ(producer.GCCloseLib(), GC_ERR_SUCCESS);
        EXPECT_TRUE(ThreadsAre(before));
    }
    EXPECT_FALSE(IsMapped());
}

TEST(SimulatorUnload, AThreadThatFailedACallDoesNotPinTheFile)
{
    Producer* producer = new Producer(OneCamera());
    EXPECT_EQ(producer->TLClose(nullptr), GC_ERR_INVALID_HANDLE);
    delete producer;
    EXPECT_FALSE(IsMapped());
}

TEST(SimulatorUnload, UnloadingAnOpenLibraryStopsItsThreads)
{
    const Company company;
    const std::ptrdiff_t before = NumThreads();
    {
        const Producer producer(
            R"({"allCameras": {"startWithStream": true},
                "misbehaviour": {"calls": [{"function": "GCCloseLib", "count": "every", "error": "GC_ERR_BUSY"}]}})");
        const Tree tree(producer, "SimGEV", "KS0001");
        tree.Announce();
        tree.Start();
        tree.Next();
        EXPECT_EQ(NumThreads(), before + 1);
    } // the close fails, so the file goes with the stream running
    EXPECT_FALSE(IsMapped());
    EXPECT_TRUE(ThreadsAre(before));
}

TEST(SimulatorThreads, OpenAndCloseFromSeveralThreadsAtOnce)
{
    const Producer producer;
    TL_HANDLE system = nullptr;
    ASSERT_EQ(producer.TLOpen(&system), GC_ERR_SUCCESS);
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index)
        threads.emplace_back([&, index] {
            for (int round = 0; round < 50; ++round)
            {
                IF_HANDLE interface = nullptr;
                const GC_ERROR result =
                    producer.TLOpenInterface(system, index % 2 == 0 ? "SimGEV" : "SimU3V", &interface);
                ASSERT_TRUE(result == GC_ERR_SUCCESS || result == GC_ERR_RESOURCE_IN_USE) << result;
                if (result != GC_ERR_SUCCESS) continue;
                ASSERT_EQ(producer.IFUpdateDeviceList(interface, nullptr, 0), GC_ERR_SUCCESS);
                DEV_HANDLE device = nullptr;
                const char* camera = index % 2 == 0 ? "KS0001" : "KS0003";
                ASSERT_EQ(producer.IFOpenDevice(interface, camera, DEVICE_ACCESS_CONTROL, &device), GC_ERR_SUCCESS);
                ASSERT_EQ(producer.IFClose(interface), GC_ERR_SUCCESS);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST(SimulatorThreads, BufferOfOneStreamIsQueuedOnAnotherWhileTheFirstRevokesIt)
{
    const Producer producer(
        R"({"interfaces": [{"id": "I", "tlType": "GEV", "cameras": [{"serial": "A"}, {"serial": "B"}]}]})");
    const Tree tree(producer);
    DEV_HANDLE device = nullptr;
    DS_HANDLE other = nullptr;
    ASSERT_EQ(producer.IFOpenDevice(tree.interface, "B", DEVICE_ACCESS_EXCLUSIVE, &device), GC_ERR_SUCCESS);
    ASSERT_EQ(producer.DevOpenDataStream(device, "Stream0", &other), GC_ERR_SUCCESS);
    std::atomic<BUFFER_HANDLE> announced{nullptr};
    std::atomic<bool> done{false};
    std::thread stranger([&] {
        while (!done)
            EXPECT_EQ(producer.DSQueueBuffer(other, announced), GC_ERR_INVALID_HANDLE);
    });
    for (int round = 0; round < 2000; ++round)
    {
        const BUFFER_HANDLE buffer = tree.Announce(false, 64);
        announced = buffer;
        EXPECT_EQ(producer.DSRevokeBuffer(tree.stream, buffer, nullptr, nullptr), GC_ERR_SUCCESS);
    }
    done = true;
    stranger.join();
}

TEST(SimulatorThreads, QueriesFlushesAndKillsRunBesideTheStream)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    std::vector<BUFFER_HANDLE> buffers;
    for (int index = 0; index < 6; ++index)
        buffers.push_back(tree.Announce());
    tree.Start();
    std::atomic<bool> done{false};
    std::thread consumer([&] {
        for (int frame = 0; frame < 2000; ++frame)
        {
            EVENT_NEW_BUFFER_DATA data{};
            std::size_t size = sizeof data;
            const GC_ERROR result = producer.EventGetData(tree.event, &data, &size, GENTL_INFINITE);
            ASSERT_TRUE(result == GC_ERR_SUCCESS || result == GC_ERR_ABORT) << result;
            if (result == GC_ERR_SUCCESS) producer.DSQueueBuffer(tree.stream, data.BufferHandle);
        }
        done = true;
    });
    for (int round = 0; !done; ++round)
    {
        tree.StreamInfo<std::size_t>(STREAM_INFO_NUM_QUEUED);
        producer.Result(
            producer.DSGetBufferInfo, tree.stream, buffers[static_cast<std::size_t>(round % 6)], BUFFER_INFO_FRAMEID);
        // What the flush takes from the consumer goes back to the engine.
        EXPECT_EQ(
            producer.DSFlushQueue(tree.stream, round % 2 == 0 ? ACQ_QUEUE_ALL_TO_INPUT : ACQ_QUEUE_UNQUEUED_TO_INPUT),
            GC_ERR_SUCCESS);
        if (round % 8 == 0) producer.EventKill(tree.event);
    }
    consumer.join();
    EXPECT_EQ(producer.DSStopAcquisition(tree.stream, ACQ_STOP_FLAGS_KILL), GC_ERR_SUCCESS);
}

} // namespace
} // namespace koro::simulator::test
