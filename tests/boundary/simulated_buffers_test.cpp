// Chunks and parts of the simulated cameras, through the exports: what the features show is what the frame was taken
// with, and the ranges are the documented surface.
#include "producers/simulator/frames/surface.h"
#include "tests/support/boundary.h"
#include "tests/support/environment_variable.h"
#include "tests/support/scripted_producer.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

class SimulatedBuffers : public testing::Test
{
protected:
    // A built-in camera.
    void Open(std::size_t interface, std::size_t device)
    {
        settings = std::make_unique<EnvironmentVariable>("KORO_SIMULATOR_CONFIG", std::nullopt);
        Begin(interface, device);
    }
    // The only camera of these settings.
    void Open(const std::string& tlType, const std::string& camera, const std::string& extra)
    {
        const std::string path = folder.MakeFile(
            "settings.json", R"({"interfaces": [{"id": "Desk", "tlType": ")" + tlType +
                                 R"(", "cameras": [{"serial": "1", "width": 16, "height": 8, "rate": 0, )" + camera +
                                 "}]}]" + extra + "}");
        settings = std::make_unique<EnvironmentVariable>("KORO_SIMULATOR_CONFIG", path);
        Begin(0, 0);
    }
    void Begin(std::size_t interface, std::size_t device)
    {
        library = std::make_unique<KoroLibrary>();
        tree = std::make_unique<OpenTree>(BuiltProducer("zvr_koro_simulator"), interface, device);
        const auto module = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree->remoteDevice);
        map = Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0});
    }

    // Buffers of exactly the payload, and the camera started.
    void Start(std::size_t count)
    {
        tree->QueueBuffers(count, Get<std::size_t>(KORO_DataStream_GetPayloadSize, tree->stream));
        Require(KORO_DataStream_StartAcquisitionInfinite(tree->stream, KORO_ACQ_START_FLAGS_DEFAULT));
        Require(
            KORO_CommandNode_Execute(Get<KORO_CommandNodeHandle>(KORO_Node_ToCommandNode, Find("AcquisitionStart"))));
    }
    KORO_BufferHandle Next() const
    {
        return Get<KORO_BufferHandle>(KORO_DataStream_WaitForFinishedBuffer, tree->stream, patience_ms);
    }
    Error Update(KORO_BufferHandle buffer) const { return Outcome(KORO_NodeMap_UpdateChunkNodes(map, buffer)); }
    bool IsSupported(KORO_BufferHandle buffer) const
    {
        return Get<KORO_Bool8>(KORO_NodeMap_GetHasBufferSupportedChunks, map, buffer) != 0;
    }

    KORO_NodeHandle Find(const std::string& name) const
    {
        return Get<KORO_NodeHandle>(KORO_NodeMap_FindNode, map, name.c_str(), name.size() + 1);
    }
    std::int64_t Integer(const std::string& name) const
    {
        return Get<std::int64_t>(
            KORO_IntegerNode_GetValue, Get<KORO_IntegerNodeHandle>(KORO_Node_ToIntegerNode, Find(name)),
            static_cast<std::int32_t>(KORO_NODE_CACHE_POLICY_USE_CACHE));
    }
    double Float(const std::string& name) const
    {
        return Get<double>(
            KORO_FloatNode_GetValue, Get<KORO_FloatNodeHandle>(KORO_Node_ToFloatNode, Find(name)),
            static_cast<std::int32_t>(KORO_NODE_CACHE_POLICY_USE_CACHE));
    }

    // A run of frames, each of whose chunks say what the buffer says.
    void ExpectTrueChunks()
    {
        Start(3);
        std::size_t numSame = 0;
        std::uint64_t layout = 0;
        for (int frame = 0; frame < 6; ++frame)
        {
            const auto buffer = Next();
            ASSERT_TRUE(IsSupported(buffer));
            ASSERT_EQ(Update(buffer), Error{});
            EXPECT_EQ(Integer("ChunkFrameID"), Get<std::uint64_t>(KORO_Buffer_GetFrameID, buffer));
            EXPECT_EQ(Integer("ChunkTimestamp"), Get<std::uint64_t>(KORO_Buffer_GetTimestamp_ns, buffer));
            EXPECT_EQ(Integer("ChunkWidth"), Get<std::size_t>(KORO_Buffer_GetWidth, buffer));
            EXPECT_EQ(Float("ChunkExposureTime"), Float("ExposureTime"));
            const auto id = Get<std::uint64_t>(KORO_Buffer_GetChunkLayoutID, buffer);
            if (id == layout) ++numSame;
            layout = id;
            Require(KORO_DataStream_QueueBuffer(tree->stream, buffer));
        }
        EXPECT_EQ(numSame, 5U);
    }

    TemporaryFolder folder;
    std::unique_ptr<EnvironmentVariable> settings;
    std::unique_ptr<KoroLibrary> library;
    std::unique_ptr<OpenTree> tree;
    KORO_NodeMapHandle map = nullptr;
};

} // namespace

TEST_F(SimulatedBuffers, ChunksOfTheGigEVisionCameraAreTrue)
{
    Open(0, 2);
    EXPECT_EQ(GetText(KORO_Device_GetSerialNumber, tree->device), "KS0005");
    ExpectTrueChunks();
}

TEST_F(SimulatedBuffers, ChunksOfTheIIDCCameraAreTrue)
{
    Open(2, 0);
    EXPECT_EQ(GetText(KORO_Device_GetSerialNumber, tree->device), "KS0007");
    ExpectTrueChunks();
}

TEST_F(SimulatedBuffers, ChunksOfAUSB3VisionCameraAreTrue)
{
    Open("U3V", R"("chunks": "all")", "");
    ExpectTrueChunks();
}

TEST_F(SimulatedBuffers, ChunkListLeadsToTheChunks)
{
    Open(0, 2);
    Start(1);
    const auto buffer = Next();
    Require(KORO_Buffer_UpdateChunks(buffer));
    ASSERT_EQ(Get<std::size_t>(KORO_Buffer_GetNumChunks, buffer), 13U);
    const auto chunk = Get<KORO_BufferChunkHandle>(KORO_Buffer_GetChunk, buffer, std::size_t{1});
    EXPECT_EQ(Get<std::uint64_t>(KORO_BufferChunk_GetID, chunk), 0x4B530001U);
    EXPECT_EQ(Get<std::size_t>(KORO_BufferChunk_GetSize, chunk), 8U);
    const auto* const bytes = static_cast<const std::uint8_t*>(Get<void*>(KORO_BufferChunk_GetBasePtr, chunk));
    EXPECT_EQ(bytes[0], Get<std::uint64_t>(KORO_Buffer_GetFrameID, buffer));
}

TEST_F(SimulatedBuffers, ProducerWithoutLayoutIdsShowsEachFrameToo)
{
    Open(
        "GEV", R"("chunks": ["FrameID"])",
        R"(, "misbehaviour": {"info": [{"function": "DSGetBufferInfo", "command": 24, "error": "GC_ERR_NOT_IMPLEMENTED"}]})");
    Start(3);
    for (std::int64_t frame = 1; frame <= 3; ++frame)
    {
        ASSERT_EQ(Update(Next()), Error{});
        EXPECT_EQ(Integer("ChunkFrameID"), frame);
    }
}

TEST_F(SimulatedBuffers, WrongChecksumLeavesTheNodesAtTheFrameBefore)
{
    Open(
        "IIDC", R"("chunks": "all")",
        R"(, "misbehaviour": {"frames": [{"camera": "1", "at": 2, "chunks": "wrongChecksum"}]})");
    Start(3);
    ASSERT_EQ(Update(Next()), Error{});
    EXPECT_EQ(Update(Next()), (Error{KORO_RETURN_CODE_ERROR, "CChunkAdapterDcam CRC check failed!"}));
    EXPECT_EQ(Integer("ChunkFrameID"), 1);
    ASSERT_EQ(Update(Next()), Error{});
    EXPECT_EQ(Integer("ChunkFrameID"), 3);
}

TEST_F(SimulatedBuffers, SpoiltTrailersAreNotSupported)
{
    for (const char* const tlType : {"GEV", "U3V", "IIDC"})
        for (const char* const spoil : {"tooLong", "zeroLength", "truncated", "leftOver"})
        {
            SCOPED_TRACE(std::string(tlType) + ' ' + spoil);
            Open(
                tlType, R"("chunks": "all")",
                R"(, "misbehaviour": {"frames": [{"camera": "1", "chunks": ")" + std::string(spoil) + "\"}]}");
            Start(2);
            const auto spoilt = Next();
            EXPECT_FALSE(IsSupported(spoilt));
            EXPECT_NE(Update(spoilt), Error{});
            const auto sound = Next();
            EXPECT_TRUE(IsSupported(sound));
            EXPECT_EQ(Update(sound), Error{});
            EXPECT_EQ(Integer("ChunkFrameID"), 2);
            tree.reset();
            library.reset();
            settings.reset();
        }
}

TEST_F(SimulatedBuffers, PartsOfThe3DCameraAreTheSurface)
{
    constexpr std::size_t width = 320;
    constexpr std::size_t height = 240;
    Open(1, 2);
    EXPECT_EQ(GetText(KORO_Device_GetSerialNumber, tree->device), "KS0006");
    Start(2);
    for (int frame = 0; frame < 3; ++frame)
    {
        const auto buffer = Next();
        const auto number = Get<std::uint64_t>(KORO_Buffer_GetFrameID, buffer);
        EXPECT_EQ(Get<KORO_Bool8>(KORO_Buffer_GetHasParts, buffer), 1);
        EXPECT_EQ(Get<std::int32_t>(KORO_Buffer_GetPayloadType, buffer), KORO_PAYLOAD_TYPE_MULTI_PART);
        Require(KORO_Buffer_UpdateParts(buffer));
        ASSERT_EQ(Get<std::size_t>(KORO_Buffer_GetNumParts, buffer), 3U);
        const auto part = [buffer](std::size_t index) {
            return Get<KORO_BufferPartHandle>(KORO_Buffer_GetPart, buffer, index);
        };
        EXPECT_EQ(Get<std::int32_t>(KORO_BufferPart_GetType, part(0)), KORO_PART_DATATYPE_2D_IMAGE);
        EXPECT_EQ(Get<std::int32_t>(KORO_BufferPart_GetType, part(1)), KORO_PART_DATATYPE_3D_IMAGE);
        EXPECT_EQ(Get<std::int32_t>(KORO_BufferPart_GetType, part(2)), KORO_PART_DATATYPE_CONFIDENCE_MAP);
        EXPECT_EQ(Get<std::uint64_t>(KORO_BufferPart_GetFormat, part(1)), 0x011000B8U);
        EXPECT_EQ(Get<std::size_t>(KORO_BufferPart_GetWidth, part(1)), width);
        EXPECT_EQ(Get<std::size_t>(KORO_BufferPart_GetHeight, part(1)), height);
        ASSERT_EQ(Get<std::size_t>(KORO_BufferPart_GetSize, part(1)), width * height * 2);
        const auto* const ranges = static_cast<const std::uint8_t*>(Get<void*>(KORO_BufferPart_GetBasePtr, part(1)));
        bool isSurface = true;
        for (std::size_t y = 0; y < height; ++y)
            for (std::size_t x = 0; x < width; ++x)
            {
                const std::size_t at = 2 * (y * width + x);
                const unsigned range = ranges[at] | static_cast<unsigned>(ranges[at + 1]) << 8;
                isSurface = isSurface && range == simulator::RangeValue(x, y, number, width, height);
            }
        EXPECT_TRUE(isSurface) << "frame " << number;
        Require(KORO_DataStream_QueueBuffer(tree->stream, buffer));
    }
    EXPECT_EQ(Float("Scan3dCoordinateScale"), simulator::rangeScale_mm);
    EXPECT_EQ(Float("Scan3dCoordinateOffset"), simulator::rangeOffset_mm);
}

} // namespace koro::test
