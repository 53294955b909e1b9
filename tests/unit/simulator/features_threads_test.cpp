// Registers of every module are read and written while images come and devices open and close, of cameras with and
// without a memory.
#include "producers/simulator/frames/pattern.h"
#include "tests/support/temporary_folder.h"
#include "tests/unit/simulator/producer.h"

#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>

namespace koro::simulator::test
{
namespace
{

constexpr std::uint64_t blackLevelRegister = 0x508;
constexpr std::uint64_t offsetRegister = 0x330;
constexpr std::uint64_t startRegister = 0x404;
constexpr std::uint64_t stopRegister = 0x408;

class SimulatorThreads : public testing::TestWithParam<const char*>
{
protected:
    // A little-endian camera of 64 x 8 pixels.
    std::string Settings(int rate = 0) const
    {
        const std::string memory = std::string(GetParam()) == "WithMemory" ? folder.File("memory") : "";
        return R"({"memory": ")" + memory + R"(", "interfaces": [{"id": "I", "tlType": "U3V", "cameras": [
            {"serial": "A", "width": 64, "height": 8, "startWithStream": true, "rate": )" +
               std::to_string(rate) + "}]}]}";
    }

private:
    const koro::test::TemporaryFolder folder;
};

GC_ERROR Write(const Tree& tree, std::uint64_t address, std::uint32_t value)
{
    std::size_t size = sizeof value;
    return tree.producer.GCWritePort(tree.remote, address, &value, &size);
}

TEST_P(SimulatorThreads, RegistersAreUsedWhileImagesCome)
{
    const Producer producer(Settings());
    const Tree tree(producer);
    ASSERT_EQ(Write(tree, 0x300, 32), GC_ERR_SUCCESS);
    for (int index = 0; index < 4; ++index)
        tree.Announce();
    tree.Start();
    std::atomic<bool> done{false};

    std::thread writer([&] {
        for (std::uint32_t round = 0; !done; ++round)
        {
            EXPECT_EQ(Write(tree, offsetRegister, round % 16 * 2), GC_ERR_SUCCESS);
            EXPECT_EQ(Write(tree, blackLevelRegister, round % 2 * 160), GC_ERR_SUCCESS);
            EXPECT_EQ(Write(tree, 0x300, 16), GC_ERR_ACCESS_DENIED);
        }
    });
    std::thread reader([&] {
        std::vector<char> bytes(0x40);
        while (!done)
            for (void* const port : {tree.remote, tree.device, tree.interface, tree.system, tree.stream})
            {
                std::size_t size = bytes.size();
                EXPECT_EQ(producer.GCReadPort(port, 0xC0, bytes.data(), &size), GC_ERR_SUCCESS);
                size = 8;
                EXPECT_EQ(producer.GCReadPort(tree.stream, 0x1C0, bytes.data(), &size), GC_ERR_SUCCESS);
                EXPECT_EQ(producer.GCReadPort(tree.remote, 0x310, bytes.data(), &size), GC_ERR_SUCCESS);
            }
    });
    for (int frame = 0; frame < 300; ++frame)
    {
        const BUFFER_HANDLE buffer = tree.Next().BufferHandle;
        const auto pixels = tree.Pixels(buffer);
        const auto offset = tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_XOFFSET);
        const auto id = tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_FRAMEID);
        // Each image is of one state of the features, never half of another.
        const unsigned first = PatternValue(Component::Mono, offset, 0, id);
        const unsigned last = PatternValue(Component::Mono, offset + 31, 7, id);
        const bool isPlain = pixels.front() == first && pixels.back() == last;
        const bool isLifted =
            pixels.front() == std::min(first + 10, 255U) && pixels.back() == std::min(last + 10, 255U);
        EXPECT_TRUE(isPlain || isLifted) << "frame " << id;
        ASSERT_EQ(producer.DSQueueBuffer(tree.stream, buffer), GC_ERR_SUCCESS);
    }
    done = true;
    writer.join();
    reader.join();
}

TEST_P(SimulatorThreads, CameraIsStartedAndStoppedUnderARunningStream)
{
    const Producer producer(Settings());
    const Tree tree(producer);
    for (int index = 0; index < 3; ++index)
        tree.Announce();
    tree.Start();
    std::atomic<bool> done{false};
    std::thread switcher([&] {
        while (!done)
        {
            EXPECT_EQ(Write(tree, stopRegister, 1), GC_ERR_SUCCESS);
            EXPECT_EQ(Write(tree, startRegister, 1), GC_ERR_SUCCESS);
        }
    });
    for (int frame = 0; frame < 300; ++frame)
        ASSERT_EQ(producer.DSQueueBuffer(tree.stream, tree.Next().BufferHandle), GC_ERR_SUCCESS);
    done = true;
    switcher.join();
    EXPECT_EQ(producer.DSStopAcquisition(tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
}

TEST_P(SimulatorThreads, PacedImagesKeepTheirTimeWhileTheCameraIsWritten)
{
    const Producer producer(Settings(1000));
    const Tree tree(producer);
    tree.Announce();
    tree.Start();
    std::atomic<bool> done{false};
    const auto write = [&] {
        while (!done)
            EXPECT_EQ(Write(tree, blackLevelRegister, 0), GC_ERR_SUCCESS);
    };
    std::thread one(write);
    std::thread other(write);
    for (int frame = 0; frame < 50; ++frame)
        ASSERT_EQ(producer.DSQueueBuffer(tree.stream, tree.Next().BufferHandle), GC_ERR_SUCCESS);
    done = true;
    one.join();
    other.join();
}

TEST_P(SimulatorThreads, ListsAreUpdatedThroughRegistersWhileDevicesOpenAndClose)
{
    const Producer producer(Settings());
    const Tree tree(producer);
    ASSERT_EQ(producer.DevClose(tree.device), GC_ERR_SUCCESS);
    std::atomic<bool> done{false};
    std::thread updater([&] {
        const std::uint32_t one = 1;
        char id[256];
        while (!done)
        {
            std::size_t size = sizeof one;
            EXPECT_EQ(producer.GCWritePort(tree.interface, 0x160, &one, &size), GC_ERR_SUCCESS);
            size = 4;
            EXPECT_EQ(producer.GCReadPort(tree.interface, 0x174, id, &size), GC_ERR_SUCCESS);
        }
    });
    for (int round = 0; round < 200; ++round)
    {
        DEV_HANDLE device = nullptr;
        ASSERT_EQ(producer.IFOpenDevice(tree.interface, "A", DEVICE_ACCESS_CONTROL, &device), GC_ERR_SUCCESS);
        ASSERT_EQ(producer.DevClose(device), GC_ERR_SUCCESS);
    }
    done = true;
    updater.join();
}

INSTANTIATE_TEST_SUITE_P(
    Cameras, SimulatorThreads, testing::Values("WithMemory", "Alone"),
    [](const testing::TestParamInfo<const char*>& one) { return one.param; });

} // namespace
} // namespace koro::simulator::test
