// The features of a 3D camera: which parts it sends, in which formats, and how their numbers become places.
#include "producers/simulator/frames/surface.h"
#include "tests/unit/simulator/feature_map.h"

#include <GenApi/Persistence.h>
#include <gtest/gtest.h>

namespace koro::simulator::test
{
namespace
{

namespace GenApi = GENAPI_NAMESPACE;

std::string CameraOf(const std::string& tlType, const std::string& keys)
{
    return R"({"interfaces": [{"id": "I", "tlType": ")" + tlType +
           R"(", "cameras": [{"serial": "A", "width": 40, "height": 32, "startWithStream": true, "rate": 0)" + keys +
           "}]}]}";
}

class DepthCamera
{
public:
    explicit DepthCamera(const std::string& tlType, const std::string& keys = R"(, "scan3d": true)")
        : producer(CameraOf(tlType, keys)), tree(producer), map(producer, tree.remote)
    {}

    BUFFER_HANDLE Grab() const
    {
        const BUFFER_HANDLE buffer = tree.Announce();
        tree.Start(1);
        tree.Next();
        producer.DSStopAcquisition(tree.stream, ACQ_STOP_FLAGS_DEFAULT);
        return buffer;
    }
    template <typename T>
    T PartInfo(BUFFER_HANDLE buffer, std::uint32_t index, BUFFER_PART_INFO_CMD command) const
    {
        return producer.Get<T>(producer.DSGetBufferPartInfo, tree.stream, buffer, index, command);
    }
    void Enable(const std::string& component, const std::string& on) const
    {
        map.Set("ComponentSelector", component);
        map.Set("ComponentEnable", on);
    }
    double Coordinate(const std::string& axis, double number) const
    {
        map.Set("Scan3dCoordinateSelector", axis);
        return number * map.Float("Scan3dCoordinateScale").GetValue() + map.Float("Scan3dCoordinateOffset").GetValue();
    }

    const Producer producer;
    const Tree tree;
    const FeatureMap map;
};

class SimulatorScan3d : public testing::TestWithParam<const char*>
{};

INSTANTIATE_TEST_SUITE_P(
    OnEveryTransport, SimulatorScan3d, testing::Values("GEV", "U3V", "IIDC", "Custom"),
    [](const testing::TestParamInfo<const char*>& tested) { return std::string(tested.param); });

TEST_P(SimulatorScan3d, EveryNodeReadsAndTakesItsValueBack)
{
    const DepthCamera camera(GetParam());
    CheckEveryNode(camera.map);
    WriteEveryNodeBack(camera.map);
    camera.map.Set("ComponentSelector", "Range");
    CheckCaches(camera.map, "choosing the ranges");
}

TEST_P(SimulatorScan3d, ComponentsHaveTheirFormats)
{
    const DepthCamera camera(GetParam());
    const auto formats = [&camera](const std::string& component) {
        camera.map.Set("ComponentSelector", component);
        GenApi::StringList_t names;
        camera.map.Enumeration("PixelFormat").GetSymbolics(names);
        std::string available;
        for (const auto& name : names)
            if (GenApi::IsAvailable(camera.map.Enumeration("PixelFormat").GetEntryByName(name)))
                available += (available.empty() ? "" : " ") + std::string(name.c_str());
        return camera.map.Text("PixelFormat") + ": " + available + ", " + camera.map.Text("ComponentIDValue");
    };
    EXPECT_EQ(formats("Range"), "Coord3D_C16: Coord3D_C16, 4");
    EXPECT_EQ(formats("Confidence"), "Confidence8: Confidence8, 6");
    EXPECT_EQ(formats("Intensity"), "Mono8: Mono8 Mono10 Mono10Packed Mono10p Mono12 Mono12Packed Mono12p Mono16, 1");
    camera.map.Set("PixelFormat", "Mono16");
    camera.map.Set("ComponentSelector", "Range");
    camera.map.Set("PixelFormat", "Coord3D_C16");
    EXPECT_THROW(camera.map.Set("PixelFormat", "Mono8"), GENICAM_NAMESPACE::GenericException);
    camera.map.Set("ComponentSelector", "Intensity");
    EXPECT_EQ(camera.map.Text("PixelFormat"), "Mono16");
    const BUFFER_HANDLE buffer = camera.Grab();
    EXPECT_EQ(camera.PartInfo<std::uint64_t>(buffer, 0, BUFFER_PART_INFO_DATA_FORMAT), 0x01100007U);
    EXPECT_EQ(camera.PartInfo<std::uint64_t>(buffer, 1, BUFFER_PART_INFO_DATA_FORMAT), 0x011000B8U);
}

TEST_P(SimulatorScan3d, EnabledComponentsAreSentAlone)
{
    const DepthCamera camera(GetParam());
    EXPECT_EQ(camera.map.Text("PayloadSize"), std::to_string(40 * 32 * 4));
    camera.Enable("Intensity", "0");
    EXPECT_EQ(camera.map.Text("PayloadSize"), std::to_string(40 * 32 * 3));
    EXPECT_EQ(camera.tree.StreamInfo<std::size_t>(STREAM_INFO_PAYLOAD_SIZE), 40U * 32 * 3);
    const BUFFER_HANDLE buffer = camera.Grab();
    std::uint32_t number = 0;
    ASSERT_EQ(camera.producer.DSGetNumBufferParts(camera.tree.stream, buffer, &number), GC_ERR_SUCCESS);
    ASSERT_EQ(number, 2U);
    EXPECT_EQ(camera.PartInfo<std::size_t>(buffer, 0, BUFFER_PART_INFO_DATA_TYPE), std::size_t{PART_DATATYPE_3D_IMAGE});
    camera.Enable("Range", "0");
    EXPECT_THROW(camera.Enable("Confidence", "0"), PortFailure);
    EXPECT_EQ(camera.map.Text("PayloadSize"), std::to_string(40 * 32));
}

TEST_P(SimulatorScan3d, IntensityAloneIsAnImage)
{
    const DepthCamera camera(GetParam());
    camera.Enable("Range", "0");
    camera.Enable("Confidence", "0");
    const BUFFER_HANDLE buffer = camera.Grab();
    EXPECT_EQ(camera.tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_PAYLOADTYPE), std::size_t{PAYLOAD_TYPE_IMAGE});
    EXPECT_EQ(camera.tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_WIDTH), 40U);
    std::uint32_t number = 0;
    EXPECT_EQ(camera.producer.DSGetNumBufferParts(camera.tree.stream, buffer, &number), GC_ERR_NO_DATA);
}

TEST_P(SimulatorScan3d, NumbersBecomePlacesWhateverTheRegion)
{
    const DepthCamera camera(GetParam());
    camera.map.Set("BinningHorizontal", "2");
    camera.map.Set("ReverseX", "1");
    camera.map.Set("Width", "8");
    camera.map.Set("OffsetX", "4");
    camera.map.Set("Height", "10");
    camera.map.Set("OffsetY", "6");
    const BUFFER_HANDLE buffer = camera.Grab();
    const auto* const ranges = camera.PartInfo<const std::uint8_t*>(buffer, 1, BUFFER_PART_INFO_BASE);
    const std::size_t column = 3;
    const std::size_t line = 5;
    const std::size_t sensorColumn = (40 / 2 - 1 - (4 + column)) * 2;
    const std::size_t sensorLine = 6 + line;
    EXPECT_DOUBLE_EQ(camera.Coordinate("CoordinateA", column), (static_cast<double>(sensorColumn) - 20) * 0.5);
    EXPECT_DOUBLE_EQ(camera.Coordinate("CoordinateB", line), (static_cast<double>(sensorLine) - 16) * 0.5);
    const std::size_t at = 2 * (line * 8 + column);
    const unsigned range = ranges[at] | static_cast<unsigned>(ranges[at + 1]) << 8;
    EXPECT_EQ(range, RangeValue(sensorColumn, sensorLine, 1, 40, 32));
    EXPECT_DOUBLE_EQ(camera.Coordinate("CoordinateC", range), 800 + 0.01 * range);
    EXPECT_EQ(camera.map.Text("Scan3dInvalidDataFlag"), "1");
    EXPECT_EQ(camera.map.Float("Scan3dInvalidDataValue").GetValue(), noRange);
    camera.map.Set("Scan3dCoordinateSelector", "CoordinateA");
    EXPECT_EQ(camera.map.Text("Scan3dInvalidDataFlag"), "0");
    EXPECT_EQ(camera.map.Text("Scan3dDistanceUnit"), "Millimeter");
}

TEST_P(SimulatorScan3d, UncalibratedNumbersStayAsTheyAre)
{
    const DepthCamera camera(GetParam());
    EXPECT_EQ(camera.map.Text("Scan3dOutputMode"), "RectifiedC");
    camera.map.Set("Scan3dOutputMode", "UncalibratedC");
    for (const char* axis : {"CoordinateA", "CoordinateB", "CoordinateC"})
        EXPECT_EQ(camera.Coordinate(axis, 1234), 1234);
}

TEST_P(SimulatorScan3d, SwitchesAreLockedWhileImagesAreTaken)
{
    const DepthCamera camera(GetParam());
    camera.map.Set("TLParamsLocked", "1");
    for (const char* name : {"ComponentEnable", "Scan3dOutputMode", "PixelFormat"})
        EXPECT_FALSE(GenApi::IsWritable(camera.map.Access(name))) << name;
    EXPECT_TRUE(GenApi::IsWritable(camera.map.Access("ComponentSelector")));
}

TEST_P(SimulatorScan3d, WhatIsSentCanBeStoredAndLoaded)
{
    for (const char* keys : {"", R"(, "scan3d": true)"})
    {
        const bool isDepth = *keys != '\0';
        SCOPED_TRACE(isDepth);
        const DepthCamera camera(GetParam(), keys);
        if (isDepth) camera.Enable("Confidence", "0");
        if (isDepth) camera.map.Set("ComponentSelector", "Intensity");
        camera.map.Set("PixelFormat", "Mono16");
        camera.map.Set("ChunkModeActive", "1");
        camera.map.Set("ChunkSelector", "Gain");
        camera.map.Set("ChunkEnable", "1");
        const std::string payload = camera.map.Text("PayloadSize");
        GenApi::CFeatureBag bag;
        bag.StoreToBag(&camera.map.Map());
        camera.map.Execute("UserSetLoad");
        EXPECT_NE(camera.map.Text("PayloadSize"), payload);
        GENICAM_NAMESPACE::gcstring_vector errors;
        EXPECT_TRUE(bag.LoadFromBag(&camera.map.Map(), true, &errors));
        for (const auto& error : errors)
            ADD_FAILURE() << error.c_str();
        EXPECT_EQ(camera.map.Text("PayloadSize"), payload);
        EXPECT_EQ(camera.map.Text("PixelFormat"), "Mono16");
        camera.map.Set("ChunkSelector", "Gain");
        EXPECT_EQ(camera.map.Text("ChunkEnable"), "1");
    }
}

TEST_P(SimulatorScan3d, OtherCamerasHaveNoneOfIt)
{
    const DepthCamera camera(GetParam(), "");
    for (const char* name : {"ComponentSelector", "ComponentEnable", "Scan3dControl", "Scan3dCoordinateScale"})
        EXPECT_EQ(camera.map.Access(name), GenApi::NI) << name;
    EXPECT_EQ(camera.map.Text("PixelFormat"), "Mono8");
    camera.map.Set("PixelFormat", "Mono12");
    EXPECT_EQ(camera.map.Text("PayloadSize"), std::to_string(40 * 32 * 2));
}

} // namespace
} // namespace koro::simulator::test
