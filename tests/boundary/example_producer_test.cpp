// The producer of examples/producer, as a consumer of the library sees it.
#include "tests/support/boundary.h"
#include "tests/support/scripted_producer.h"

#include <gtest/gtest.h>
#include <string_view>
#include <vector>

using namespace koro::test;

namespace
{

class ExampleProducer : public testing::Test
{
protected:
    KORO_NodeHandle Node(std::string_view name) const
    {
        const auto module = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice);
        const auto features = Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0});
        return Get<KORO_NodeHandle>(KORO_NodeMap_FindNode, features, name.data(), name.size() + 1);
    }
    void Execute(std::string_view name) const
    {
        Require(KORO_CommandNode_Execute(Get<KORO_CommandNodeHandle>(KORO_Node_ToCommandNode, Node(name))));
    }

    const KoroLibrary library;
    const OpenTree tree{BuiltProducer("example_moving_bars"), 0, 0};
};

} // namespace

TEST_F(ExampleProducer, ShowsOneCamera)
{
    EXPECT_EQ(GetText(KORO_Device_GetSerialNumber, tree.device), "B-001");
    EXPECT_EQ(GetText(KORO_Device_GetTLType, tree.device), "Custom");
    EXPECT_EQ(Get<std::size_t>(KORO_DataStream_GetPayloadSize, tree.stream), 320U * 240U);
}

TEST_F(ExampleProducer, StreamsBarsThatMoveToTheLeft)
{
    for (int index = 0; index < 4; ++index)
    {
        const auto buffer = Get<KORO_BufferHandle>(
            KORO_DataStream_AllocAndAnnounceBuffer, tree.stream, std::size_t{320 * 240}, nullptr);
        Require(KORO_DataStream_QueueBuffer(tree.stream, buffer));
    }
    Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, KORO_ACQ_START_FLAGS_DEFAULT));
    Execute("AcquisitionStart");
    std::uint64_t last = 0;
    for (int count = 0; count < 8; ++count)
    {
        const auto buffer = Get<KORO_BufferHandle>(KORO_DataStream_WaitForFinishedBuffer, tree.stream, patience_ms);
        const auto frame = Get<std::uint64_t>(KORO_Buffer_GetFrameID, buffer);
        EXPECT_GT(frame, last);
        last = frame;
        EXPECT_EQ(Get<std::size_t>(KORO_Buffer_GetWidth, buffer), 320U);
        EXPECT_EQ(Get<std::uint64_t>(KORO_Buffer_GetPixelFormat, buffer), 0x01080001U);
        const auto* const pixels = static_cast<const std::uint8_t*>(Get<void*>(KORO_Buffer_GetBasePtr, buffer));
        for (std::uint64_t x = 0; x < 320; ++x)
            ASSERT_EQ(pixels[239 * 320 + x], (x + frame) / 16 * 16 % 256) << "column " << x << " of frame " << frame;
        Require(KORO_DataStream_QueueBuffer(tree.stream, buffer));
    }
    Execute("AcquisitionStop");
    Require(KORO_DataStream_StopAcquisition(tree.stream, KORO_ACQ_STOP_FLAGS_DEFAULT));
}
