// Endurance: trees opened and closed again and again, and a great many frames through one stream, on the unpaced
// simulator. Memory has to stay flat. The whole: 10,000 trees and 1,000,000 frames.
#include "tests/endurance/growth.h"
#include "tests/support/boundary.h"
#include "tests/support/environment_variable.h"
#include "tests/support/scripted_producer.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <string>

using namespace koro::test;

namespace
{

class Endurance : public testing::Test
{
protected:
    const TemporaryFolder folder;
    const EnvironmentVariable settings{
        "KORO_SIMULATOR_CONFIG",
        folder.MakeFile(
            "simulator.json", R"({"allCameras": {"rate": 0, "width": 64, "height": 48, "startWithStream": true}})")};
    const std::string simulator = BuiltProducer("zvr_koro_simulator");
    const KoroLibrary library;
};

KORO_BufferHandle NextFrame(const OpenTree& tree)
{
    return Get<KORO_BufferHandle>(KORO_DataStream_WaitForFinishedBuffer, tree.stream, KORO_INFINITE);
}

void CountRevocation(void*, void*, void* count)
{
    ++*static_cast<std::uint64_t*>(count);
}

} // namespace

TEST_F(Endurance, TreesThatComeAndGoLeaveNothingBehind)
{
    constexpr std::uint64_t warmUp = 20;
    const std::uint64_t trees = 100 * Factor();
    std::uint64_t frames = 0;
    std::uint64_t revocations = 0;
    std::vector<char> memory(std::size_t{64} * 48 * 3);
    const auto runTree = [&](std::uint64_t number) {
        OpenTree tree(simulator, number % 2, number / 2 % 2);
        Get<KORO_ModuleHandle>(KORO_DataStream_ToModule, tree.stream);
        KORO_BufferHandle announced = nullptr;
        Require(KORO_DataStream_AnnounceBuffer(
            tree.stream, memory.data(), memory.size(), nullptr, CountRevocation, &revocations, &announced));
        Require(KORO_DataStream_QueueBuffer(tree.stream, announced));
        Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, KORO_ACQ_START_FLAGS_DEFAULT));
        if (NextFrame(tree) == announced) ++frames;
        // Both ways of an end: from the leaf, and all with the library.
        if (number % 3 == 0) Require(KORO_DataStream_Destruct(tree.stream));
        Require(KORO_ProducerLibrary_Destruct(tree.producerLibrary));
    };
    FillStoresOfEndedObjects();
    for (std::uint64_t number = 0; number < warmUp; ++number)
        runTree(number);
    Growth growth;
    for (std::uint64_t number = 0; number < trees; ++number)
        runTree(number);
    growth.Report(std::to_string(trees) + " trees");
    EXPECT_EQ(frames, warmUp + trees);
    // A stream that goes after its device is not asked to revoke any more.
    EXPECT_EQ(revocations, (warmUp + 2) / 3 + (trees + 2) / 3);
}

TEST_F(Endurance, FramesThroughOneStreamLeaveNothingBehind)
{
    constexpr std::uint64_t warmUp = 1000;
    const std::uint64_t frames = 10'000 * Factor();
    OpenTree tree(simulator);
    tree.QueueBuffers(4, Get<std::size_t>(KORO_DataStream_GetPayloadSize, tree.stream));
    Require(KORO_DataStream_StartAcquisition(tree.stream, KORO_ACQ_START_FLAGS_DEFAULT, warmUp + frames));
    std::uint64_t last = 0;
    const auto runFrames = [&](std::uint64_t count) {
        for (std::uint64_t frame = 0; frame < count; ++frame)
        {
            const auto buffer = NextFrame(tree);
            const auto number = Get<std::uint64_t>(KORO_Buffer_GetFrameID, buffer);
            ASSERT_EQ(number, last + 1); // none is lost on an unpaced camera
            last = number;
            Require(KORO_DataStream_QueueBuffer(tree.stream, buffer));
        }
    };
    runFrames(warmUp);
    Growth growth;
    runFrames(frames);
    growth.Report(std::to_string(frames) + " frames");
    EXPECT_EQ(Get<std::uint64_t>(KORO_DataStream_GetNumBuffersDelivered, tree.stream), warmUp + frames);
    EXPECT_EQ(Get<std::uint64_t>(KORO_DataStream_GetNumUnderruns, tree.stream), 0u);
    KORO_BufferHandle buffer = nullptr;
    EXPECT_EQ(Outcome(KORO_DataStream_WaitForFinishedBuffer(tree.stream, 0, &buffer)).code, KORO_RETURN_CODE_TIMEOUT);
}
