// Cables are pulled and events sent while images come, devices open and close, and the system goes.
#include "tests/unit/simulator/producer.h"

#include <atomic>
#include <gtest/gtest.h>

namespace koro::simulator::test
{
namespace
{

constexpr std::uint64_t unplugRegister = 0x1D0;
constexpr std::uint64_t replugRegister = 0x1D4;

constexpr const char* settings = R"({"interfaces": [{"id": "I", "tlType": "U3V", "cameras": [
    {"serial": "A", "width": 16, "height": 4, "startWithStream": true, "rate": 0, "eventsPerPacket": 2}]}])";

GC_ERROR Write(const Producer& producer, void* port, std::uint64_t address)
{
    const std::uint32_t one = 1;
    std::size_t size = sizeof one;
    return producer.GCWritePort(port, address, &one, &size);
}

// Takes everything that arrives until it is stopped, and counts it.
class Taker
{
public:
    Taker(const Producer& loaded, void* module, EVENT_TYPE type) : producer(loaded)
    {
        EXPECT_EQ(producer.GCRegisterEvent(module, type, &event), GC_ERR_SUCCESS);
        thread = std::thread([this] {
            char block[1024];
            for (std::size_t size = sizeof block; producer.EventGetData(event, block, &size, GENTL_INFINITE) == 0;
                 size = sizeof block)
                ++number;
        });
    }
    ~Taker() { thread.join(); }
    std::uint64_t Number() const { return number; }
    void Kill() const { EXPECT_EQ(producer.EventKill(event), GC_ERR_SUCCESS); }

private:
    const Producer& producer;
    EVENT_HANDLE event = nullptr;
    std::atomic<std::uint64_t> number{0};
    std::thread thread;
};

TEST(SimulatorCableThreads, CableIsPulledAgainAndAgainUnderARunningStream)
{
    const Producer producer(std::string(settings) + "}");
    const Tree tree(producer);
    for (int index = 0; index < 3; ++index)
        tree.Announce();
    const Taker records(producer, tree.system, EVENT_CUSTOM_ID);
    const Taker exposures(producer, tree.device, EVENT_REMOTE_DEVICE);
    tree.Start();
    constexpr std::uint64_t rounds = 100;
    std::thread puller([&] {
        for (std::uint64_t round = 0; round < rounds; ++round)
            for (const std::uint64_t action : {unplugRegister, replugRegister})
                EXPECT_EQ(Write(producer, tree.system, action), GC_ERR_SUCCESS);
    });
    std::uint64_t last = 0;
    for (int frame = 0; frame < 300; ++frame)
    {
        const BUFFER_HANDLE buffer = tree.Next().BufferHandle;
        const auto id = tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_FRAMEID);
        EXPECT_GT(id, last);
        last = id;
        ASSERT_EQ(producer.DSQueueBuffer(tree.stream, buffer), GC_ERR_SUCCESS);
    }
    puller.join();
    EXPECT_TRUE(Eventually([&] { return records.Number() == 2 * rounds; }));
    EXPECT_TRUE(Eventually([&] { return exposures.Number() > 0; }));
    records.Kill();
    exposures.Kill();
}

TEST(SimulatorCableThreads, CableIsPulledAgainAndAgainWhileTheCameraIsWritten)
{
    constexpr std::uint64_t blackLevelRegister = 0x508;
    const Producer producer(std::string(settings) + "}");
    const Tree tree(producer);
    std::atomic<bool> done{false};
    std::atomic<std::uint64_t> numWrites{0};
    std::thread writer([&] {
        while (!done)
        {
            const GC_ERROR written = Write(producer, tree.remote, blackLevelRegister);
            EXPECT_TRUE(written == GC_ERR_SUCCESS || written == GC_ERR_IO) << written;
            if (written == GC_ERR_SUCCESS) ++numWrites;
        }
    });
    for (int round = 0; round < 300 && !testing::Test::HasFailure(); ++round)
    {
        for (const std::uint64_t action : {unplugRegister, replugRegister})
            EXPECT_EQ(Write(producer, tree.system, action), GC_ERR_SUCCESS);
        const std::uint64_t before = numWrites;
        EXPECT_TRUE(Eventually([&] { return numWrites != before; })) << "round " << round;
    }
    done = true;
    writer.join();
}

TEST(SimulatorCableThreads, DevicesOpenAndCloseWhileAScriptPullsTheirCable)
{
    const Producer producer(std::string(settings) + R"(, "connection": {"repeat": 200, "script": [
        {"camera": "A", "do": "unplug"}, {"camera": "A", "do": "send", "module": "stream", "event": "error"},
        {"camera": "A", "do": "replug", "after_ms": 1}]}})");
    TL_HANDLE system = nullptr;
    ASSERT_EQ(producer.TLOpen(&system), GC_ERR_SUCCESS);
    for (int round = 0; round < 30; ++round)
    {
        IF_HANDLE interface = nullptr;
        ASSERT_EQ(producer.TLOpenInterface(system, "I", &interface), GC_ERR_SUCCESS);
        producer.IFUpdateDeviceList(interface, nullptr, 0);
        DEV_HANDLE device = nullptr;
        const GC_ERROR opened = producer.IFOpenDevice(interface, "A", DEVICE_ACCESS_CONTROL, &device);
        EXPECT_TRUE(opened == GC_ERR_SUCCESS || opened == GC_ERR_IO || opened == GC_ERR_INVALID_ID) << opened;
        DS_HANDLE stream = nullptr;
        if (opened == GC_ERR_SUCCESS && producer.DevOpenDataStream(device, "Stream0", &stream) == GC_ERR_SUCCESS)
        {
            BUFFER_HANDLE buffer = nullptr;
            EXPECT_EQ(producer.DSAllocAndAnnounceBuffer(stream, 64, nullptr, &buffer), GC_ERR_SUCCESS);
            EXPECT_EQ(producer.DSQueueBuffer(stream, buffer), GC_ERR_SUCCESS);
            const GC_ERROR started = producer.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE);
            EXPECT_TRUE(started == GC_ERR_SUCCESS || started == GC_ERR_IO) << started;
        }
        EXPECT_EQ(producer.IFClose(interface), GC_ERR_SUCCESS);
    }
    EXPECT_EQ(producer.TLClose(system), GC_ERR_SUCCESS);
}

} // namespace
} // namespace koro::simulator::test
