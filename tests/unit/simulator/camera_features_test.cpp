// Features of the simulated cameras, read and written through the GenICam runtime.
#include "tests/unit/simulator/feature_map.h"

#include <cmath>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace koro::simulator::test
{
namespace
{

namespace GenApi = GENAPI_NAMESPACE;
using GENICAM_NAMESPACE::AccessException;
using GENICAM_NAMESPACE::InvalidArgumentException;
using GENICAM_NAMESPACE::OutOfRangeException;
using testing::HasSubstr;

// 64 x 32 pixels by default.
std::string Sized(const std::string& keys)
{
    return keys.find("width") == std::string::npos ? R"(, "width": 64, "height": 32)" + keys : keys;
}

std::string CameraOn(const std::string& tlType, const std::string& keys = "")
{
    return R"({"interfaces": [{"id": "I", "tlType": ")" + tlType +
           R"(", "cameras": [{"serial": "A", "userName": "left", "rate": 0)" + Sized(keys) + "}]}]}";
}

// One camera, opened, with its features.
struct Scene
{
    explicit Scene(const std::string& keys = "", const std::string& tlType = "GEV")
        : producer(CameraOn(tlType, keys)), tree(producer), map(producer, tree.remote)
    {}

    Producer producer;
    Tree tree;
    FeatureMap map;
};

class SimulatorCamera : public testing::TestWithParam<const char*>
{};

INSTANTIATE_TEST_SUITE_P(
    OnEveryTransport, SimulatorCamera, testing::Values("GEV", "U3V", "Custom"),
    [](const auto& parameter) { return std::string(parameter.param); });

TEST_P(SimulatorCamera, EveryNodeReadsAndTakesItsValueBack)
{
    for (const char* const format : {"Mono8", "BayerRG12Packed", "RGB8"})
    {
        const Scene scene(R"(, "pixelFormat": ")" + std::string(format) + "\"", GetParam());
        CheckEveryNode(scene.map);
        WriteEveryNodeBack(scene.map);
        CheckCaches(scene.map, "writing everything back");
    }
}

TEST_P(SimulatorCamera, ByteOrderOfThePortIsThatOfTheTransport)
{
    const Scene scene("", GetParam());
    const bool isBig = std::string(GetParam()) == "GEV";
    const auto flag = [&](PORT_INFO_CMD command) {
        return scene.producer.Get<bool8_t>(scene.producer.GCGetPortInfo, scene.tree.remote, command) == 1;
    };
    EXPECT_EQ(flag(PORT_INFO_BIG_ENDIAN), isBig);
    EXPECT_EQ(flag(PORT_INFO_LITTLE_ENDIAN), !isBig);
    std::uint8_t width[4] = {};
    std::size_t size = sizeof width;
    ASSERT_EQ(scene.producer.GCReadPort(scene.tree.remote, 0x300, width, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(width[isBig ? 3 : 0], 64);
}

TEST_P(SimulatorCamera, NothingStaysStaleInACacheAfterAnyChange)
{
    const Scene scene("", GetParam());
    const auto set = [&](const char* name, const char* value) {
        ASSERT_NO_THROW(scene.map.Set(name, value)) << name;
        CheckCaches(scene.map, name);
    };
    CheckCaches(scene.map, "opening");
    set("PixelFormat", "Mono12p");
    set("Width", "32");
    set("OffsetX", "8");
    set("Height", "16");
    set("OffsetY", "4");
    set("BinningHorizontal", "2");
    set("BinningVertical", "3");
    set("PixelFormat", "Mono16");
    set("AcquisitionFrameRateEnable", "1");
    set("AcquisitionFrameRate", "12.5");
    set("ExposureTime", "200000");
    set("ExposureAuto", "Continuous");
    set("Gain", "6");
    set("GainSelector", "DigitalAll");
    set("Gain", "-6");
    set("ExposureAuto", "Once");
    set("TriggerSelector", "AcquisitionStart");
    set("TriggerSource", "Line0");
    set("LineSelector", "Line1");
    set("LineSource", "UserOutput0");
    set("UserOutputValue", "1");
    set("LUTIndex", "7");
    set("LUTValue", "9");
    set("LUTValueAll", ("0x" + std::string(512, '1')).c_str());
    set("LUTIndex", "200");
    set("UserSetSelector", "UserSet1");
    scene.map.Execute("UserSetSave");
    CheckCaches(scene.map, "UserSetSave");
    set("UserSetSelector", "Default");
    scene.map.Execute("UserSetLoad");
    CheckCaches(scene.map, "UserSetLoad");
    set("UserSetDefault", "UserSet1");
    set("TLParamsLocked", "1");
    scene.map.Execute("DeviceReset");
    CheckCaches(scene.map, "DeviceReset");
    EXPECT_EQ(scene.map.Text("PixelFormat"), "Mono16") << "from UserSet1";
}

TEST(SimulatorCameraControl, NamesTheCameraAndMeasuresIt)
{
    const Scene scene;
    EXPECT_EQ(scene.map.Text("DeviceVendorName"), "zvr");
    EXPECT_EQ(scene.map.Text("DeviceModelName"), "SimulatedCamera");
    EXPECT_EQ(scene.map.Text("DeviceSerialNumber"), "A");
    const double temperature = scene.map.Float("DeviceTemperature").GetValue();
    EXPECT_GE(temperature, 30);
    EXPECT_LT(temperature, 44);
    EXPECT_EQ(scene.map.Node("DeviceTemperatureReg").GetPollingTime(), 1000);
    scene.map.Set("DeviceTemperatureSelector", "Mainboard");
    EXPECT_LT(scene.map.Float("DeviceTemperature").GetValue(), temperature);
}

TEST(SimulatorCameraControl, UserNameIsKeptAndKnownEverywhere)
{
    const Scene scene;
    EXPECT_EQ(scene.map.Text("DeviceUserID"), "left");
    scene.map.Set("DeviceUserID", "right");
    const auto& producer = scene.producer;
    EXPECT_EQ(producer.Get(producer.DevGetInfo, scene.tree.device, DEVICE_INFO_USER_DEFINED_NAME), "right");
    EXPECT_EQ(FeatureMap(producer, scene.tree.interface).Text("DeviceUserID"), "right");
    ASSERT_EQ(producer.DevClose(scene.tree.device), GC_ERR_SUCCESS);
    DEV_HANDLE device = nullptr;
    EXPECT_EQ(producer.IFOpenDevice(scene.tree.interface, "left", DEVICE_ACCESS_CONTROL, &device), GC_ERR_INVALID_ID);
    ASSERT_EQ(producer.IFOpenDevice(scene.tree.interface, "right", DEVICE_ACCESS_CONTROL, &device), GC_ERR_SUCCESS);
    PORT_HANDLE remote = nullptr;
    ASSERT_EQ(producer.DevGetPort(device, &remote), GC_ERR_SUCCESS);
    const FeatureMap again(producer, remote);
    EXPECT_EQ(again.Text("DeviceUserID"), "right");
    again.Set("DeviceUserID", "");
    EXPECT_EQ(producer.Result(producer.DevGetInfo, device, DEVICE_INFO_USER_DEFINED_NAME), GC_ERR_NOT_AVAILABLE);
    EXPECT_THROW(again.Set("DeviceUserID", std::string(65, 'x')), OutOfRangeException);
}

TEST(SimulatorCameraControl, TimestampIsLatchedAndReset)
{
    const Scene scene;
    EXPECT_EQ(scene.map.Text("TimestampLatchValue"), "0");
    scene.map.Execute("TimestampLatch");
    const std::int64_t first = scene.map.Integer("TimestampLatchValue").GetValue();
    EXPECT_GT(first, 0);
    EXPECT_EQ(scene.map.Integer("TimestampLatchValue").GetValue(false, true), first) << "until the next latch";
    scene.map.Execute("TimestampLatch");
    EXPECT_GT(scene.map.Integer("TimestampLatchValue").GetValue(), first);
}

TEST(SimulatorCameraControl, ResetBringsBackTheDefaultSetAndEndsTheAcquisition)
{
    const Scene scene;
    scene.map.Set("DeviceUserID", "kept");
    scene.map.Set("Width", "32");
    scene.map.Set("TLParamsLocked", "1");
    scene.map.Execute("AcquisitionStart");
    scene.map.Execute("DeviceReset");
    EXPECT_EQ(scene.map.Text("Width"), "64");
    EXPECT_EQ(scene.map.Text("TLParamsLocked"), "0");
    scene.map.Set("AcquisitionStatusSelector", "AcquisitionActive");
    EXPECT_EQ(scene.map.Text("AcquisitionStatus"), "0");
    EXPECT_EQ(scene.map.Text("DeviceUserID"), "kept");
}

TEST(SimulatorCameraControl, ResetMayTakeTheCameraOffTheListForAWhile)
{
    const Scene scene(R"(, "resetMissingUpdates": 2)");
    const auto& producer = scene.producer;
    EVENT_HANDLE errors = nullptr;
    ASSERT_EQ(producer.GCRegisterEvent(scene.tree.device, EVENT_ERROR, &errors), GC_ERR_SUCCESS);
    scene.map.Set("Width", "32");
    scene.map.Execute("DeviceReset");
    char block[512];
    std::size_t size = sizeof block;
    EXPECT_EQ(producer.EventGetData(errors, block, &size, 0), GC_ERR_SUCCESS);
    std::uint32_t value = 0;
    size = sizeof value;
    EXPECT_EQ(producer.GCReadPort(scene.tree.remote, 0x300, &value, &size), GC_ERR_IO);
    ASSERT_EQ(producer.DevClose(scene.tree.device), GC_ERR_SUCCESS);
    for (const std::uint32_t expected : {0U, 0U, 1U})
    {
        std::uint32_t number = 9;
        ASSERT_EQ(producer.IFUpdateDeviceList(scene.tree.interface, nullptr, 0), GC_ERR_SUCCESS);
        ASSERT_EQ(producer.IFGetNumDevices(scene.tree.interface, &number), GC_ERR_SUCCESS);
        EXPECT_EQ(number, expected);
    }
    DEV_HANDLE device = nullptr;
    PORT_HANDLE remote = nullptr;
    ASSERT_EQ(producer.IFOpenDevice(scene.tree.interface, "A", DEVICE_ACCESS_CONTROL, &device), GC_ERR_SUCCESS);
    ASSERT_EQ(producer.DevGetPort(device, &remote), GC_ERR_SUCCESS);
    EXPECT_EQ(FeatureMap(producer, remote).Text("Width"), "64") << "it started anew";
}

TEST(SimulatorImageFormat, RegionKeepsToIncrementsAndMutualLimits)
{
    const Scene scene(R"(, "pixelFormat": "Mono10p")");
    GenApi::IInteger& width = scene.map.Integer("Width");
    GenApi::IInteger& offset = scene.map.Integer("OffsetX");
    EXPECT_EQ(width.GetMin(), 4);
    EXPECT_EQ(width.GetInc(), 4);
    EXPECT_EQ(width.GetMax(), 64);
    EXPECT_EQ(offset.GetMax(), 0);
    EXPECT_THROW(width.SetValue(30), OutOfRangeException);
    width.SetValue(40);
    EXPECT_EQ(offset.GetMax(), 24);
    offset.SetValue(6);
    EXPECT_EQ(width.GetMax(), 56) << "58 pixels are left, 56 of them whole steps";
    EXPECT_THROW(width.SetValue(60), OutOfRangeException);
    EXPECT_THROW(offset.SetValue(7), OutOfRangeException);
    EXPECT_EQ(scene.map.Integer("PayloadSize").GetValue(), 40 * 10 / 8 * 32);
    EXPECT_EQ(scene.tree.StreamInfo<std::size_t>(STREAM_INFO_PAYLOAD_SIZE), static_cast<std::size_t>(40 * 10 / 8 * 32));
}

TEST(SimulatorImageFormat, RegistersRefuseWhatTheNodesRefuse)
{
    const Scene scene;
    const auto write = [&](const char* name, std::int64_t value) -> GC_ERROR {
        try
        {
            scene.map.Integer(name).SetValue(value, false);
            return GC_ERR_SUCCESS;
        }
        catch (const PortFailure& failure)
        {
            return failure.code;
        }
    };
    for (const auto& [name, value] : std::vector<std::pair<const char*, std::int64_t>>{
             {"Width", 65},
             {"Width", 0},
             {"Height", 33},
             {"OffsetX", 2},
             {"OffsetY", 1},
             {"BinningHorizontal", 5},
             {"BinningVertical", 0},
             {"TLParamsLocked", 2},
             {"GevSCPSPacketSize", 577},
             {"AcquisitionFrameCount", 0}})
    {
        if (std::string(name) == "AcquisitionFrameCount") scene.map.Set("AcquisitionMode", "MultiFrame");
        EXPECT_EQ(write(name, value), GC_ERR_INVALID_VALUE) << name << " " << value;
    }
    const auto writeFloat = [&](const char* name, double value) -> GC_ERROR {
        try
        {
            scene.map.Float(name).SetValue(value, false);
            return GC_ERR_SUCCESS;
        }
        catch (const PortFailure& failure)
        {
            return failure.code;
        }
    };
    EXPECT_EQ(writeFloat("ExposureTime", 9), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(writeFloat("ExposureTime", std::nan("")), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(writeFloat("Gamma", 4.5), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(writeFloat("Gain", 24.5), GC_ERR_INVALID_VALUE);
}

TEST(SimulatorImageFormat, AccessOverSeveralRegistersHappensAsAWhole)
{
    const Scene scene("", "U3V");
    const auto write = [&](std::vector<std::uint32_t> values) {
        std::size_t size = values.size() * 4;
        return scene.producer.GCWritePort(scene.tree.remote, 0x300, values.data(), &size);
    };
    EXPECT_EQ(write({32, 33}), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(scene.map.Integer("Width").GetValue(), 64) << "the width was taken back";
    EXPECT_EQ(write({32, 16}), GC_ERR_SUCCESS);
    scene.map.Map().InvalidateNodes();
    EXPECT_EQ(scene.map.Text("Width") + "x" + scene.map.Text("Height"), "32x16");
    const std::uint8_t low = 48;
    std::size_t size = 1;
    EXPECT_EQ(scene.producer.GCWritePort(scene.tree.remote, 0x300, &low, &size), GC_ERR_SUCCESS)
        << "a part of a register leaves the rest";
    EXPECT_EQ(scene.map.Integer("Width").GetValue(false, true), 48);
}

TEST(SimulatorImageFormat, BinningLeavesARegionThatFits)
{
    const Scene scene;
    scene.map.Set("Width", "10");
    scene.map.Set("OffsetX", "8");
    scene.map.Set("BinningHorizontal", "3");
    EXPECT_EQ(scene.map.Text("WidthMax"), "21");
    EXPECT_EQ(scene.map.Text("Width"), "10");
    EXPECT_EQ(scene.map.Text("OffsetX"), "8");
    EXPECT_EQ(scene.map.Text("Height"), "32");
    EXPECT_EQ(scene.map.Text("SensorWidth"), "64");
    scene.map.Set("BinningHorizontal", "1");
    EXPECT_EQ(scene.map.Text("Width"), "10");
}

TEST(SimulatorImageFormat, BinningCutsARegionThatDoesNotFit)
{
    const Scene scene;
    scene.map.Set("Width", "40");
    scene.map.Set("OffsetX", "20");
    scene.map.Set("Height", "10");
    scene.map.Set("OffsetY", "20");
    scene.map.Set("BinningHorizontal", "2");
    EXPECT_EQ(scene.map.Text("Width"), "32");
    EXPECT_EQ(scene.map.Text("OffsetX"), "0");
    scene.map.Set("BinningVertical", "2");
    EXPECT_EQ(scene.map.Text("Height"), "10");
    EXPECT_EQ(scene.map.Text("OffsetY"), "6");
}

TEST(SimulatorImageFormat, FormatsAreThoseOfTheSensor)
{
    const auto offeredBy = [](const std::string& keys) {
        const Scene scene(keys);
        GenApi::StringList_t symbolics;
        scene.map.Enumeration("PixelFormat").GetSymbolics(symbolics);
        std::vector<std::string> names;
        for (const auto& symbolic : symbolics)
            names.emplace_back(symbolic.c_str());
        return names;
    };
    EXPECT_THAT(
        offeredBy(""),
        testing::ElementsAre(
            "Mono8", "Mono10", "Mono10Packed", "Mono10p", "Mono12", "Mono12Packed", "Mono12p", "Mono16"));
    EXPECT_THROW(Scene().map.Set("PixelFormat", "RGB8"), AccessException);
    EXPECT_THAT(offeredBy(R"(, "pixelFormat": "BGR8")"), testing::ElementsAre("Mono8", "RGB8", "BGR8"));
    EXPECT_THAT(
        offeredBy(R"(, "pixelFormat": "BayerGB8")"),
        testing::ElementsAre(
            "Mono8", "BayerGB8", "BayerGB10", "BayerGB10Packed", "BayerGB10p", "BayerGB12", "BayerGB12Packed",
            "BayerGB12p", "BayerGB16"));
}

TEST(SimulatorImageFormat, BayerFormatsNeedAnImageWithoutBinning)
{
    const Scene scene(R"(, "pixelFormat": "BayerGB8")");
    EXPECT_EQ(scene.map.Integer("BinningHorizontal").GetMax(), 1);
    scene.map.Set("PixelFormat", "Mono8");
    EXPECT_EQ(scene.map.Integer("BinningHorizontal").GetMax(), 4);
    scene.map.Set("BinningVertical", "2");
    EXPECT_EQ(scene.map.Access("EnumEntry_PixelFormat_BayerGB8"), GenApi::NA);
    EXPECT_EQ(scene.map.Access("EnumEntry_PixelFormat_BayerRG8"), GenApi::NI);
    EXPECT_THROW(scene.map.Set("PixelFormat", "BayerGB8"), AccessException);
    scene.map.Set("BinningVertical", "1");
    scene.map.Set("PixelFormat", "BayerGB8");
}

// One image of the largest sensor fills the bound in Mono8.
TEST(SimulatorImageFormat, ImagesAreBoundedHoweverTheyGrow)
{
    const Scene scene(R"(, "width": 16384, "height": 16384)", "U3V");
    const auto refused = [&](const char* name, std::int64_t value) {
        try
        {
            scene.map.Integer(name).SetValue(value, false);
        }
        catch (const PortFailure& failure)
        {
            EXPECT_THAT(failure.what(), HasSubstr("the image would be too large")) << name;
            return true;
        }
        return false;
    };
    const auto format = [&](const char* name) { return scene.map.Enumeration("PixelFormat").GetEntryByName(name); };
    EXPECT_TRUE(refused("PixelFormatReg", format("Mono16")->GetValue()));
    scene.map.Set("BinningHorizontal", "2");
    scene.map.Set("BinningVertical", "2");
    scene.map.Set("PixelFormat", "Mono16");
    EXPECT_FALSE(refused("BinningVertical", 1));
    EXPECT_FALSE(refused("BinningHorizontal", 1));
    scene.map.Set("Width", "16384");
    EXPECT_TRUE(refused("Height", 8193));
    scene.map.Set("Width", "8192");
    scene.map.Set("Height", "16384");
    EXPECT_TRUE(refused("Width", 8194));
    EXPECT_EQ(scene.map.Integer("PayloadSize").GetValue(), std::int64_t{1} << 28);
}

TEST(SimulatorImageFormat, ColourFeaturesAreNotThereOnMonoCameras)
{
    EXPECT_EQ(Scene().map.Access("BalanceRatio"), GenApi::NI);
    EXPECT_EQ(Scene(R"(, "pixelFormat": "RGB8")").map.Access("BalanceRatio"), GenApi::RW);
}

TEST(SimulatorLocks, TLParamsLockedLocksTheFormatAndNothingElse)
{
    const Scene scene;
    scene.map.Set("Width", "32");
    scene.map.Set("TLParamsLocked", "1");
    for (const char* const name :
         {"Width", "Height", "PixelFormat", "BinningHorizontal", "BinningVertical", "ReverseX", "ReverseY",
          "AcquisitionMode", "GevSCPSPacketSize"})
        EXPECT_EQ(scene.map.Access(name), GenApi::RO) << name;
    EXPECT_EQ(scene.map.Access("UserSetLoad"), GenApi::NA);
    for (const char* const name : {"OffsetX", "OffsetY", "ExposureTime", "Gain", "TestPattern", "AcquisitionFrameRate"})
        EXPECT_TRUE(scene.map.Access(name) == GenApi::RW || scene.map.Access(name) == GenApi::NA) << name;
    scene.map.Set("OffsetX", "4");
    EXPECT_THROW(scene.map.Set("Width", "16"), AccessException);
    const std::uint32_t width = __builtin_bswap32(16);
    std::size_t size = sizeof width;
    EXPECT_EQ(scene.producer.GCWritePort(scene.tree.remote, 0x300, &width, &size), GC_ERR_ACCESS_DENIED);
    scene.map.Set("TLParamsLocked", "0");
    scene.map.Set("Width", "16");
}

TEST(SimulatorLocks, ARunningAcquisitionLocksToo)
{
    const Scene scene;
    scene.tree.Announce();
    scene.tree.Start();
    scene.map.Execute("AcquisitionStart");
    EXPECT_EQ(scene.map.Access("Width"), GenApi::RO);
    EXPECT_EQ(scene.map.Text("TLParamsLocked"), "1") << "the camera set it";
    scene.map.Set("TLParamsLocked", "0");
    EXPECT_EQ(scene.map.Text("TLParamsLocked"), "1") << "images are still taken";
    scene.map.Execute("AcquisitionStop");
    EXPECT_EQ(scene.map.Access("Width"), GenApi::RW);
    EXPECT_EQ(scene.map.Text("TLParamsLocked"), "0");
}

TEST(SimulatorLocks, LockOfTheConsumerOutlivesTheAcquisition)
{
    const Scene scene;
    scene.map.Set("TLParamsLocked", "1");
    scene.map.Execute("AcquisitionStart");
    scene.map.Execute("AcquisitionStop");
    EXPECT_EQ(scene.map.Access("Width"), GenApi::RO);
}

TEST(SimulatorLocks, ThoseWhoWatchALockedFeatureAreTold)
{
    const Scene scene;
    int calls = 0;
    const std::function<void(GenApi::INode*)> count = [&calls](GenApi::INode*) { ++calls; };
    const auto handle = GenApi::Register(&scene.map.Node("Width"), count);
    const auto isTold = [&](auto act) {
        const int before = calls;
        act();
        return calls > before;
    };
    EXPECT_TRUE(isTold([&] { scene.map.Set("TLParamsLocked", "1"); }));
    EXPECT_TRUE(isTold([&] { scene.map.Set("TLParamsLocked", "0"); }));
    EXPECT_TRUE(isTold([&] { scene.map.Execute("AcquisitionStart"); }));
    EXPECT_TRUE(isTold([&] { scene.map.Execute("AcquisitionStop"); }));
    GenApi::Deregister(handle);
}

TEST(SimulatorLocks, ClosingTheDeviceGivesThemUp)
{
    const Scene scene;
    scene.map.Set("TLParamsLocked", "1");
    scene.map.Set("ExposureTime", "123");
    ASSERT_EQ(scene.producer.DevClose(scene.tree.device), GC_ERR_SUCCESS);
    DEV_HANDLE device = nullptr;
    PORT_HANDLE remote = nullptr;
    ASSERT_EQ(scene.producer.IFOpenDevice(scene.tree.interface, "A", DEVICE_ACCESS_CONTROL, &device), GC_ERR_SUCCESS);
    ASSERT_EQ(scene.producer.DevGetPort(device, &remote), GC_ERR_SUCCESS);
    const FeatureMap again(scene.producer, remote);
    EXPECT_EQ(again.Text("TLParamsLocked"), "0");
    EXPECT_EQ(again.Text("ExposureTime"), "123") << "the settings stay in the camera";
}

TEST(SimulatorExposure, AutomaticExposureMakesUpForTheGain)
{
    const Scene scene;
    const double neutral = scene.map.Float("ExposureTime").GetValue();
    EXPECT_EQ(neutral, 10000);
    scene.map.Set("Gain", "6.02");
    scene.map.Set("ExposureAuto", "Once");
    EXPECT_EQ(scene.map.Text("ExposureAuto"), "Off") << "it clears itself";
    EXPECT_NEAR(scene.map.Float("ExposureTime").GetValue(), neutral / std::pow(10, 0.301), 0.01);
    scene.map.Set("ExposureAuto", "Continuous");
    EXPECT_EQ(scene.map.Access("ExposureTime"), GenApi::RO);
    scene.map.Set("Gain", "0");
    EXPECT_EQ(scene.map.Float("ExposureTime").GetValue(), neutral);
}

TEST(SimulatorExposure, FrameRateComesOfRateAndExposure)
{
    const Scene scene;
    EXPECT_EQ(scene.map.Float("AcquisitionResultingFrameRate").GetValue(), 0) << "unpaced";
    EXPECT_EQ(scene.map.Access("AcquisitionFrameRate"), GenApi::NA);
    scene.map.Set("AcquisitionFrameRateEnable", "1");
    scene.map.Set("AcquisitionFrameRate", "40");
    EXPECT_EQ(scene.map.Float("AcquisitionResultingFrameRate").GetValue(), 40);
    scene.map.Set("ExposureTime", "50000");
    EXPECT_EQ(scene.map.Float("AcquisitionResultingFrameRate").GetValue(), 20);
}

TEST(SimulatorSelectors, EachSelectsItsOwnValue)
{
    const Scene scene(R"(, "pixelFormat": "RGB8")");
    const auto check = [&](const char* selector, const char* feature,
                           const std::vector<std::pair<const char*, const char*>>& values) {
        for (const auto& [entry, value] : values)
        {
            scene.map.Set(selector, entry);
            scene.map.Set(feature, value);
        }
        for (const auto& [entry, value] : values)
        {
            scene.map.Set(selector, entry);
            EXPECT_EQ(scene.map.Text(feature), value) << selector << " " << entry;
        }
        GenApi::FeatureList_t selected;
        dynamic_cast<GenApi::ISelector&>(scene.map.Node(selector)).GetSelectedFeatures(selected);
        EXPECT_FALSE(selected.empty());
    };
    check("GainSelector", "Gain", {{"AnalogAll", "12.00"}, {"DigitalAll", "-3.50"}});
    check("BalanceRatioSelector", "BalanceRatio", {{"Red", "1.5"}, {"Green", "0.5"}, {"Blue", "2"}});
    check("TriggerSelector", "TriggerMode", {{"FrameStart", "On"}, {"AcquisitionStart", "Off"}});
    check("CounterSelector", "CounterEventSource", {{"Counter0", "FrameStart"}, {"Counter1", "Line0"}});
    check("LineSelector", "LineInverter", {{"Line0", "1"}, {"Line1", "0"}});
    scene.map.Set("GainSelector", "AnalogAll");
    EXPECT_EQ(scene.map.Float("Gain").GetMin(), 0);
    scene.map.Set("GainSelector", "DigitalAll");
    EXPECT_EQ(scene.map.Float("Gain").GetMin(), -6);
}

TEST(SimulatorLines, Line1IsWiredToLine0)
{
    const Scene scene;
    const auto levels = [&] { return scene.map.Text("LineStatusAll"); };
    EXPECT_EQ(levels(), "0");
    scene.map.Set("LineSelector", "Line1");
    scene.map.Set("LineSource", "UserOutput0");
    scene.map.Set("UserOutputValue", "1");
    EXPECT_EQ(levels(), "0x3");
    scene.map.Set("LineSelector", "Line0");
    scene.map.Set("LineInverter", "1");
    EXPECT_EQ(levels(), "0x2");
    EXPECT_EQ(scene.map.Text("LineStatus"), "0");
    EXPECT_EQ(scene.map.Text("LineMode"), "Input");
    EXPECT_EQ(scene.map.Access("LineSource"), GenApi::NA) << "of an input";
}

TEST(SimulatorTimer, RunsOnceAndStops)
{
    const Scene scene;
    EXPECT_EQ(scene.map.Text("TimerStatus"), "TimerIdle");
    scene.map.Set("TimerDuration", "60000000");
    scene.map.Execute("TimerReset");
    EXPECT_EQ(scene.map.Text("TimerStatus"), "TimerActive");
    scene.map.Set("TimerDuration", "1");
    ASSERT_TRUE(Eventually([&] { return scene.map.Text("TimerStatus") == "TimerCompleted"; }));
    EXPECT_EQ(scene.map.Float("TimerValue").GetValue(), 1);
}

TEST(SimulatorUserSets, KeepAllSettingsButTheDefaultSetCannotBeSaved)
{
    const Scene scene;
    EXPECT_EQ(scene.map.Access("UserSetSave"), GenApi::NA);
    const std::uint32_t one = __builtin_bswap32(1);
    std::size_t size = sizeof one;
    EXPECT_EQ(scene.producer.GCWritePort(scene.tree.remote, 0x790, &one, &size), GC_ERR_INVALID_ADDRESS);
    scene.map.Set("Width", "48");
    scene.map.Set("LUTIndex", "5");
    scene.map.Set("LUTValue", "77");
    scene.map.Set("UserSetSelector", "UserSet0");
    scene.map.Execute("UserSetSave");
    scene.map.Set("UserSetSelector", "Default");
    scene.map.Execute("UserSetLoad");
    EXPECT_EQ(scene.map.Text("Width"), "64");
    EXPECT_EQ(scene.map.Text("LUTValue"), "5");
    scene.map.Set("UserSetSelector", "UserSet0");
    scene.map.Execute("UserSetLoad");
    EXPECT_EQ(scene.map.Text("Width"), "48");
    EXPECT_EQ(scene.map.Text("LUTValue"), "77");
}

TEST(SimulatorUserSets, AreNotLoadedWhileTheFormatIsLocked)
{
    const Scene scene;
    scene.map.Set("Width", "48");
    scene.map.Set("TLParamsLocked", "1");
    const std::uint32_t one = __builtin_bswap32(1);
    std::size_t size = sizeof one;
    EXPECT_EQ(scene.producer.GCWritePort(scene.tree.remote, 0x780, &one, &size), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(scene.map.Text("Width"), "48");
    scene.map.Set("TLParamsLocked", "0");
    scene.map.Execute("UserSetLoad");
    EXPECT_EQ(scene.map.Text("Width"), "64");
}

TEST(SimulatorUserSets, OutliveAResetThatLoadsTheDefault)
{
    const Scene scene;
    scene.map.Set("Width", "48");
    scene.map.Set("UserSetSelector", "UserSet1");
    scene.map.Execute("UserSetSave");
    scene.map.Set("Width", "32");
    scene.map.Set("UserSetSelector", "UserSet0");
    scene.map.Execute("UserSetSave");
    scene.map.Execute("DeviceReset");
    EXPECT_EQ(scene.map.Text("Width"), "64") << "from Default";
    scene.map.Execute("UserSetLoad");
    EXPECT_EQ(scene.map.Text("Width"), "32");
    scene.map.Set("UserSetSelector", "UserSet1");
    scene.map.Execute("UserSetLoad");
    EXPECT_EQ(scene.map.Text("Width"), "48");
    scene.map.Set("UserSetDefault", "UserSet0");
    scene.map.Execute("DeviceReset");
    EXPECT_EQ(scene.map.Text("Width"), "32");
}

TEST(SimulatorGigEVision, LongCommandsAreTestedOnTheCamerasMemory)
{
    const Scene scene(R"(, "longestCommand": 2048, "longestPassingCommand": 1000)");
    EXPECT_EQ(scene.map.Text("GevGVCPCMDLength"), "2048");
    auto& memory = dynamic_cast<GenApi::IRegister&>(scene.map.Node("GevGVCPCMDLengthTest"));
    const std::vector<std::uint8_t> payload(1001, '0');
    EXPECT_NO_THROW(memory.Set(payload.data(), 536));
    EXPECT_NO_THROW(memory.Set(payload.data(), 1000));
    try
    {
        memory.Set(payload.data(), 1001);
        ADD_FAILURE() << "the command passed";
    }
    catch (const PortFailure& failure)
    {
        EXPECT_EQ(failure.code, GC_ERR_TIMEOUT);
        EXPECT_THAT(failure.what(), HasSubstr("a command of 1001 bytes got no answer"));
    }
    std::vector<std::uint8_t> read(1000);
    memory.Get(read.data(), 1000);
    EXPECT_EQ(read, std::vector<std::uint8_t>(1000, '0'));
}

TEST(SimulatorGigEVision, SaysWhatTheStandardOfTheTransportSays)
{
    const Scene scene;
    EXPECT_EQ(scene.map.Text("GevVersionMajor") + "." + scene.map.Text("GevVersionMinor"), "2.2");
    EXPECT_EQ(scene.map.Text("GevDeviceModeIsBigEndian"), "1");
    EXPECT_EQ(scene.map.Text("GevDeviceModeCharacterSet"), "UTF8");
    EXPECT_EQ(scene.map.Text("GevCurrentIPAddress"), "10.0.1.1");
    EXPECT_EQ(
        scene.map.Text("GevMACAddress"), FeatureMap(scene.producer, scene.tree.device).Text("GevDeviceMACAddress"));
    scene.map.Set("GevHeartbeatTimeout", "5000");
    EXPECT_EQ(scene.map.Float("DeviceLinkHeartbeatTimeout").GetValue(), 5000000);
    scene.map.Set("GevSupportedOptionSelector", "PacketResend");
    EXPECT_EQ(scene.map.Text("GevSupportedOption"), "0");
}

TEST(SimulatorGigEVision, FeaturesOfItAreOnItsCamerasAlone)
{
    EXPECT_TRUE(Scene().map.Has("GevSCPSPacketSize"));
    EXPECT_FALSE(Scene("", "U3V").map.Has("GevSCPSPacketSize"));
    EXPECT_FALSE(Scene("", "Custom").map.Has("GevSCPSPacketSize"));
}

TEST(SimulatorUSB3Vision, TransfersAddUpToThePayload)
{
    const Scene scene(R"(, "width": 100, "height": 50)", "U3V");
    scene.map.Set("SIPayloadTransferSize", "2048");
    const auto number = [&](const char* name) { return scene.map.Integer(name).GetValue(); };
    EXPECT_EQ(number("SIRequiredPayloadSize"), 5000);
    EXPECT_EQ(number("SIPayloadTransferCount"), 2);
    EXPECT_EQ(number("SIPayloadFinalTransfer1Size"), 0);
    EXPECT_EQ(number("SIPayloadFinalTransfer2Size"), 1024);
    EXPECT_EQ(scene.map.Text("SIStreamEnable"), "0");
    scene.tree.Announce();
    scene.tree.Start();
    EXPECT_EQ(scene.map.Text("SIStreamEnable"), "1");
}

} // namespace
} // namespace koro::simulator::test
