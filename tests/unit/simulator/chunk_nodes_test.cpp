// Chunks as features: the camera's description switches them, the adapters of the GenICam runtime read them.
#include "tests/unit/simulator/feature_map.h"

#include <GenApi/ChunkAdapterDcam.h>
#include <GenApi/ChunkAdapterGEV.h>
#include <GenApi/ChunkAdapterU3V.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

namespace koro::simulator::test
{
namespace
{

namespace GenApi = GENAPI_NAMESPACE;

const std::vector<std::string> chunkNodes = {
    "ChunkImage",      "ChunkFrameID",      "ChunkTimestamp",    "ChunkExposureTime", "ChunkGain",
    "ChunkBlackLevel", "ChunkCounterValue", "ChunkOffsetX",      "ChunkOffsetY",      "ChunkWidth",
    "ChunkHeight",     "ChunkPixelFormat",  "ChunkLineStatusAll"};

std::string CameraOf(const std::string& tlType, const std::string& keys = R"("chunks": "all")")
{
    return R"({"interfaces": [{"id": "I", "tlType": ")" + tlType +
           R"(", "cameras": [{"serial": "A", "width": 32, "height": 8, "rate": 0, )" + keys + "}]}]}";
}

std::unique_ptr<GenApi::CChunkAdapter> MakeAdapter(const std::string& tlType, GenApi::INodeMap& map)
{
    if (tlType == "GEV") return std::make_unique<GenApi::CChunkAdapterGEV>(&map, -1);
    if (tlType == "IIDC") return std::make_unique<GenApi::CChunkAdapterDcam>(&map, -1);
    return std::make_unique<GenApi::CChunkAdapterU3V>(&map, -1);
}

class Camera
{
public:
    explicit Camera(const std::string& tlType, const std::string& keys = R"("chunks": "all")")
        : producer(CameraOf(tlType, keys)), tree(producer), map(producer, tree.remote),
          adapter(MakeAdapter(tlType, map.Map()))
    {}

    std::uint8_t* Base(BUFFER_HANDLE buffer) const { return tree.BufferInfo<std::uint8_t*>(buffer, BUFFER_INFO_BASE); }
    void Attach(BUFFER_HANDLE buffer) const
    {
        adapter->AttachBuffer(
            Base(buffer), static_cast<std::int64_t>(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_SIZE_FILLED)));
    }
    // One software trigger, one frame.
    void Trigger() const
    {
        map.Execute("TriggerSoftware");
        tree.Next();
    }
    std::size_t Payload() const { return tree.StreamInfo<std::size_t>(STREAM_INFO_PAYLOAD_SIZE); }

    const Producer producer;
    const Tree tree;
    const FeatureMap map;
    const std::unique_ptr<GenApi::CChunkAdapter> adapter;
};

class SimulatorChunkNodes : public testing::TestWithParam<const char*>
{};

INSTANTIATE_TEST_SUITE_P(
    OnEveryTransport, SimulatorChunkNodes, testing::Values("GEV", "U3V", "IIDC"),
    [](const testing::TestParamInfo<const char*>& tested) { return std::string(tested.param); });

TEST_P(SimulatorChunkNodes, SayWhatTheFrameWasTakenWith)
{
    const Camera camera(GetParam());
    camera.map.Set("Width", "20");
    camera.map.Set("OffsetX", "6");
    camera.map.Set("Height", "5");
    camera.map.Set("OffsetY", "2");
    camera.map.Set("PixelFormat", "Mono12p");
    camera.map.Set("TriggerMode", "On");
    camera.map.Set("CounterEventSource", "FrameStart");
    const BUFFER_HANDLE first = camera.tree.Announce();
    const BUFFER_HANDLE second = camera.tree.Announce();
    camera.tree.Start();
    camera.map.Execute("AcquisitionStart");
    camera.map.Set("ExposureTime", "4321");
    camera.map.Set("GainSelector", "DigitalAll");
    camera.map.Set("Gain", "-1.5");
    camera.map.Set("BlackLevel", "3.25");
    camera.Trigger();
    camera.map.Set("ExposureTime", "8000");
    camera.map.Set("Gain", "2");
    camera.map.Set("OffsetX", "8");
    camera.map.Set("LineInverter", "1");
    camera.Trigger();

    camera.Attach(first);
    EXPECT_EQ(camera.map.Text("ChunkFrameID"), "1");
    EXPECT_EQ(
        static_cast<std::uint64_t>(camera.map.Integer("ChunkTimestamp").GetValue()),
        camera.tree.BufferInfo<std::uint64_t>(first, BUFFER_INFO_TIMESTAMP));
    EXPECT_EQ(camera.map.Float("ChunkExposureTime").GetValue(), 4321);
    EXPECT_EQ(camera.map.Float("ChunkGain").GetValue(), 0);
    camera.map.Set("ChunkGainSelector", "DigitalAll");
    EXPECT_EQ(camera.map.Float("ChunkGain").GetValue(), -1.5);
    EXPECT_EQ(camera.map.Float("ChunkBlackLevel").GetValue(), 3.25);
    EXPECT_EQ(camera.map.Text("ChunkCounterValue"), "1");
    EXPECT_EQ(camera.map.Text("ChunkOffsetX"), "6");
    EXPECT_EQ(camera.map.Text("ChunkOffsetY"), "2");
    EXPECT_EQ(camera.map.Text("ChunkWidth"), "20");
    EXPECT_EQ(camera.map.Text("ChunkHeight"), "5");
    EXPECT_EQ(camera.map.Text("ChunkPixelFormat"), "Mono12p");
    EXPECT_EQ(camera.map.Integer("ChunkLineStatusAll").GetValue(), 0);

    camera.Attach(second);
    EXPECT_EQ(camera.map.Text("ChunkFrameID"), "2");
    EXPECT_EQ(
        static_cast<std::uint64_t>(camera.map.Integer("ChunkTimestamp").GetValue()),
        camera.tree.BufferInfo<std::uint64_t>(second, BUFFER_INFO_TIMESTAMP));
    EXPECT_EQ(camera.map.Float("ChunkExposureTime").GetValue(), 8000);
    EXPECT_EQ(camera.map.Float("ChunkGain").GetValue(), 2);
    EXPECT_EQ(camera.map.Text("ChunkCounterValue"), "2");
    camera.map.Set("ChunkCounterSelector", "Counter1");
    EXPECT_EQ(camera.map.Text("ChunkCounterValue"), "0");
    EXPECT_EQ(camera.map.Text("ChunkOffsetX"), "8");
    EXPECT_EQ(camera.map.Integer("ChunkLineStatusAll").GetValue(), camera.map.Integer("LineStatusAll").GetValue());
    EXPECT_NE(camera.map.Integer("ChunkLineStatusAll").GetValue(), 0);
}

TEST_P(SimulatorChunkNodes, ShowTheImage)
{
    const Camera camera(GetParam());
    const BUFFER_HANDLE buffer = camera.tree.Announce();
    camera.tree.Start();
    camera.map.Execute("AcquisitionStart");
    camera.tree.Next();
    camera.Attach(buffer);
    auto& image = dynamic_cast<GenApi::IRegister&>(camera.map.Node("ChunkImage"));
    std::vector<std::uint8_t> shown(static_cast<std::size_t>(image.GetLength()));
    ASSERT_EQ(shown.size(), 32U * 8U);
    image.Get(shown.data(), static_cast<std::int64_t>(shown.size()));
    EXPECT_EQ(shown, std::vector<std::uint8_t>(camera.Base(buffer), camera.Base(buffer) + shown.size()));
}

TEST_P(SimulatorChunkNodes, AreThereWhenTheirChunkIs)
{
    const Camera camera(GetParam(), R"("chunks": ["Width", "LineStatusAll"])");
    const BUFFER_HANDLE buffer = camera.tree.Announce();
    for (const std::string& name : chunkNodes)
        EXPECT_FALSE(GenApi::IsReadable(camera.map.Access(name))) << name;
    camera.tree.Start();
    camera.map.Execute("AcquisitionStart");
    camera.tree.Next();
    camera.Attach(buffer);
    for (const std::string& name : chunkNodes)
    {
        const bool isSent = name == "ChunkImage" || name == "ChunkWidth" || name == "ChunkLineStatusAll";
        EXPECT_EQ(GenApi::IsReadable(camera.map.Access(name)), isSent) << name;
    }
    CheckEveryNode(camera.map);
}

TEST_P(SimulatorChunkNodes, PayloadSizeGrowsWithEachChunk)
{
    const Camera camera(GetParam(), R"("vendor": "zvr")");
    const std::size_t trailer = GetParam() == std::string("IIDC") ? 24 : 8;
    const std::size_t checksum = GetParam() == std::string("IIDC") ? 4 : 0;
    const auto expect = [&](std::size_t bytes) {
        EXPECT_EQ(camera.Payload(), bytes);
        EXPECT_EQ(camera.map.Text("PayloadSize"), std::to_string(bytes));
    };
    std::size_t bytes = 32 * 8;
    expect(bytes);
    camera.map.Set("ChunkSelector", "Gain");
    camera.map.Set("ChunkEnable", "1");
    expect(bytes); // the mode is off
    camera.map.Set("ChunkModeActive", "1");
    expect(bytes += trailer + checksum + 16 + trailer);
    camera.map.Set("ChunkSelector", "Width");
    camera.map.Set("ChunkEnable", "1");
    expect(bytes += 4 + trailer);
    camera.map.Set("ChunkSelector", "Gain");
    camera.map.Set("ChunkEnable", "0");
    expect(bytes -= 16 + trailer);
    camera.map.Set("ChunkModeActive", "0");
    expect(32 * 8);
}

TEST_P(SimulatorChunkNodes, LayoutIdChangesWithTheLayoutAlone)
{
    const Camera camera(GetParam());
    const auto idOfNext = [&camera] {
        const BUFFER_HANDLE buffer = camera.tree.Announce();
        camera.tree.Start(1);
        camera.map.Execute("AcquisitionStart");
        camera.tree.Next();
        camera.map.Execute("AcquisitionStop");
        camera.producer.DSStopAcquisition(camera.tree.stream, ACQ_STOP_FLAGS_DEFAULT);
        return camera.tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_CHUNKLAYOUTID);
    };
    const std::uint64_t all = idOfNext();
    EXPECT_NE(all, 0U);
    camera.map.Set("ExposureTime", "20");
    EXPECT_EQ(idOfNext(), all);
    camera.map.Set("ChunkSelector", "FrameID");
    camera.map.Set("ChunkEnable", "0");
    const std::uint64_t fewer = idOfNext();
    EXPECT_NE(fewer, all);
    camera.map.Set("ChunkEnable", "1");
    EXPECT_EQ(idOfNext(), all);
    camera.map.Set("Height", "4"); // the same chunks, at other places
    EXPECT_NE(idOfNext(), all);
    camera.map.Set("ChunkModeActive", "0");
    EXPECT_EQ(idOfNext(), 0U);
}

TEST_P(SimulatorChunkNodes, SwitchesAreLockedWhileImagesAreTaken)
{
    const Camera camera(GetParam(), R"("vendor": "zvr")");
    camera.map.Set("ChunkSelector", "Width");
    EXPECT_TRUE(GenApi::IsWritable(camera.map.Access("ChunkEnable")));
    camera.map.Set("TLParamsLocked", "1");
    EXPECT_FALSE(GenApi::IsWritable(camera.map.Access("ChunkEnable")));
    EXPECT_FALSE(GenApi::IsWritable(camera.map.Access("ChunkModeActive")));
    const char one[4] = {1, 0, 0, 1}; // in either byte order not 0
    for (const std::uint64_t address : {0xC00U, 0xC44U})
    {
        std::size_t size = sizeof one;
        EXPECT_EQ(camera.producer.GCWritePort(camera.tree.remote, address, one, &size), GC_ERR_ACCESS_DENIED);
    }
}

TEST_P(SimulatorChunkNodes, OfTheImageCannotBeSwitchedOff)
{
    const Camera camera(GetParam(), R"("vendor": "zvr")");
    EXPECT_EQ(camera.map.Text("ChunkSelector"), "Image");
    EXPECT_EQ(camera.map.Text("ChunkEnable"), "1");
    EXPECT_FALSE(GenApi::IsWritable(camera.map.Access("ChunkEnable")));
    const char zero[4] = {};
    std::size_t size = sizeof zero;
    EXPECT_EQ(camera.producer.GCWritePort(camera.tree.remote, 0xC40, zero, &size), GC_ERR_INVALID_VALUE);
}

TEST_P(SimulatorChunkNodes, UserSetsKeepWhatIsSent)
{
    const Camera camera(GetParam(), R"("chunks": ["Gain"])");
    camera.map.Set("ChunkSelector", "Gain");
    camera.map.Set("ChunkEnable", "0");
    camera.map.Set("ChunkModeActive", "0");
    camera.map.Set("UserSetSelector", "Default");
    camera.map.Execute("UserSetLoad");
    EXPECT_EQ(camera.map.Text("ChunkEnable"), "1");
    EXPECT_EQ(camera.map.Text("ChunkModeActive"), "1");
    CheckCaches(camera.map, "loading a set");
}

TEST(SimulatorChunkAdapter, OfIIDCFindsTheChecksumRightUntilItIsSpoilt)
{
    const std::string settings =
        R"({"interfaces": [{"id": "I", "tlType": "IIDC", "cameras": [{"serial": "A", "width": 32, "height": 8,
        "startWithStream": true, "rate": 0, "chunks": "all"}]}], "misbehaviour": {"frames": [
        {"camera": "A", "at": 2, "chunks": "wrongChecksum"}]}})";
    const Producer producer(settings);
    const Tree tree(producer);
    const FeatureMap map(producer, tree.remote);
    GenApi::CChunkAdapterDcam adapter(&map.Map(), -1);
    const std::vector<BUFFER_HANDLE> buffers{tree.Announce(), tree.Announce(), tree.Announce()};
    tree.Start();
    for (const BUFFER_HANDLE buffer : buffers)
    {
        tree.Next();
        auto* const base = tree.BufferInfo<std::uint8_t*>(buffer, BUFFER_INFO_BASE);
        const auto size = static_cast<std::int64_t>(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_SIZE));
        EXPECT_TRUE(adapter.CheckBufferLayout(base, size));
        EXPECT_TRUE(adapter.HasCRC(base, size));
        EXPECT_EQ(adapter.CheckCRC(base, size), buffer != buffers[1]);
    }
}

} // namespace
} // namespace koro::simulator::test
