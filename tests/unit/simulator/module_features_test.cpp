// Features of the system, interface, device and stream modules: what the standard demands, and that they mirror the C
// interface.
#include "tests/unit/simulator/feature_map.h"

#include <gtest/gtest.h>

namespace koro::simulator::test
{
namespace
{

namespace GenApi = GENAPI_NAMESPACE;

constexpr const char* twoInterfaces = R"({"interfaces": [
    {"id": "G", "displayName": "Gigabit", "tlType": "GEV", "cameras": [
        {"serial": "A", "userName": "left", "rate": 0, "startWithStream": true, "width": 16, "height": 4},
        {"serial": "B", "model": "Other"}]},
    {"id": "U", "tlType": "U3V"}]})";

struct Mandatory
{
    const char* name;
    GenApi::EInterfaceType type;
    GenApi::EAccessMode mode;
};

void CheckMandatory(const FeatureMap& map, const std::vector<Mandatory>& features)
{
    for (const Mandatory& feature : features)
    {
        ASSERT_TRUE(map.Has(feature.name)) << feature.name;
        EXPECT_EQ(map.Node(feature.name).GetPrincipalInterfaceType(), feature.type) << feature.name;
        EXPECT_EQ(map.Access(feature.name), feature.mode) << feature.name;
        EXPECT_TRUE(map.Node(feature.name).IsFeature() || feature.type == GenApi::intfIPort) << feature.name;
    }
}

class SimulatorModuleFeatures : public testing::Test
{
protected:
    const Producer producer{twoInterfaces};
    const Tree tree{producer, "G", "A"};
};

TEST_F(SimulatorModuleFeatures, SystemHasWhatTheStandardDemands)
{
    const FeatureMap map(producer, tree.system);
    CheckMandatory(
        map, {{"TLPort", GenApi::intfIPort, GenApi::RW},
              {"TLID", GenApi::intfIString, GenApi::RO},
              {"TLVendorName", GenApi::intfIString, GenApi::RO},
              {"TLModelName", GenApi::intfIString, GenApi::RO},
              {"TLVersion", GenApi::intfIString, GenApi::RO},
              {"TLPath", GenApi::intfIString, GenApi::RO},
              {"TLType", GenApi::intfIEnumeration, GenApi::RO},
              {"GenTLVersionMajor", GenApi::intfIInteger, GenApi::RO},
              {"GenTLVersionMinor", GenApi::intfIInteger, GenApi::RO},
              {"InterfaceUpdateList", GenApi::intfICommand, GenApi::WO},
              {"InterfaceSelector", GenApi::intfIInteger, GenApi::RW},
              {"InterfaceID", GenApi::intfIString, GenApi::RO},
              {"GevInterfaceMACAddress", GenApi::intfIInteger, GenApi::RO},
              {"GevInterfaceDefaultIPAddress", GenApi::intfIInteger, GenApi::RO},
              {"GevInterfaceDefaultSubnetMask", GenApi::intfIInteger, GenApi::RO}});
    const auto info = [&](TL_INFO_CMD command) { return producer.Get(producer.TLGetInfo, tree.system, command); };
    EXPECT_EQ(map.Text("TLID"), info(TL_INFO_ID));
    EXPECT_EQ(map.Text("TLVendorName"), info(TL_INFO_VENDOR));
    EXPECT_EQ(map.Text("TLModelName"), info(TL_INFO_MODEL));
    EXPECT_EQ(map.Text("TLVersion"), info(TL_INFO_VERSION));
    EXPECT_EQ(map.Text("TLPath"), info(TL_INFO_PATHNAME));
    EXPECT_EQ(map.Text("TLFileName"), info(TL_INFO_NAME));
    EXPECT_EQ(map.Text("TLDisplayName"), info(TL_INFO_DISPLAYNAME));
    EXPECT_EQ(map.Text("TLType"), "Mixed");
    EXPECT_EQ(map.Text("GenTLVersionMajor") + "." + map.Text("GenTLVersionMinor"), "1.5");
}

TEST_F(SimulatorModuleFeatures, SystemSelectsItsInterfaces)
{
    const FeatureMap map(producer, tree.system);
    EXPECT_EQ(map.Integer("InterfaceSelector").GetMax(), 1);
    EXPECT_EQ(map.Text("InterfaceID"), "G");
    EXPECT_EQ(map.Text("InterfaceDisplayName"), "Gigabit");
    EXPECT_EQ(map.Text("InterfaceType"), "GigEVision");
    EXPECT_EQ(map.Text("GevInterfaceDefaultIPAddress"), "10.0.0.1");
    EXPECT_EQ(map.Text("GevInterfaceMACAddress"), "02:00:00:00:00:00");
    map.Set("InterfaceSelector", "1");
    EXPECT_EQ(map.Text("InterfaceID"), "U");
    EXPECT_EQ(map.Text("InterfaceType"), "USB3Vision");
    EXPECT_EQ(map.Access("GevInterfaceMACAddress"), GenApi::NI);
    EXPECT_THROW(map.Set("InterfaceSelector", "2"), GENICAM_NAMESPACE::OutOfRangeException);
}

TEST_F(SimulatorModuleFeatures, InterfaceListIsEmptyBeforeItsUpdate)
{
    ASSERT_EQ(producer.TLClose(tree.system), GC_ERR_SUCCESS);
    TL_HANDLE system = nullptr;
    ASSERT_EQ(producer.TLOpen(&system), GC_ERR_SUCCESS);
    const FeatureMap map(producer, system);
    EXPECT_EQ(map.Access("InterfaceID"), GenApi::NA);
    EXPECT_EQ(map.Integer("InterfaceSelector").GetMax(), 0);
    char id[8];
    std::size_t size = sizeof id;
    EXPECT_EQ(producer.GCReadPort(system, 0x1200, id, &size), GC_ERR_NOT_AVAILABLE);
    map.Execute("InterfaceUpdateList");
    EXPECT_EQ(map.Text("InterfaceID"), "G");
    std::uint32_t number = 0;
    ASSERT_EQ(producer.TLGetNumInterfaces(system, &number), GC_ERR_SUCCESS);
    EXPECT_EQ(number, 2U) << "the command and the C function update one list";
}

TEST_F(SimulatorModuleFeatures, InterfaceHasWhatTheStandardDemands)
{
    const FeatureMap map(producer, tree.interface);
    CheckMandatory(
        map, {{"InterfacePort", GenApi::intfIPort, GenApi::RW},
              {"InterfaceID", GenApi::intfIString, GenApi::RO},
              {"InterfaceType", GenApi::intfIEnumeration, GenApi::RO},
              {"InterfaceTLVersionMajor", GenApi::intfIInteger, GenApi::RO},
              {"InterfaceTLVersionMinor", GenApi::intfIInteger, GenApi::RO},
              {"DeviceUpdateList", GenApi::intfICommand, GenApi::WO},
              {"DeviceSelector", GenApi::intfIInteger, GenApi::RW},
              {"DeviceID", GenApi::intfIString, GenApi::RO},
              {"DeviceVendorName", GenApi::intfIString, GenApi::RO},
              {"DeviceModelName", GenApi::intfIString, GenApi::RO},
              {"DeviceAccessStatus", GenApi::intfIEnumeration, GenApi::RO},
              {"DeviceTLVersionMajor", GenApi::intfIInteger, GenApi::RO},
              {"DeviceTLVersionMinor", GenApi::intfIInteger, GenApi::RO},
              {"GevInterfaceMACAddress", GenApi::intfIInteger, GenApi::RO},
              {"GevInterfaceGatewaySelector", GenApi::intfIInteger, GenApi::RW},
              {"GevInterfaceGateway", GenApi::intfIInteger, GenApi::RO},
              {"GevInterfaceSubnetSelector", GenApi::intfIInteger, GenApi::RW},
              {"GevInterfaceSubnetIPAddress", GenApi::intfIInteger, GenApi::RO},
              {"GevInterfaceSubnetMask", GenApi::intfIInteger, GenApi::RO},
              {"GevDeviceIPAddress", GenApi::intfIInteger, GenApi::RO},
              {"GevDeviceSubnetMask", GenApi::intfIInteger, GenApi::RO},
              {"GevDeviceMACAddress", GenApi::intfIInteger, GenApi::RO}});
    EXPECT_EQ(map.Text("InterfaceDisplayName"), "Gigabit");
    EXPECT_EQ(map.Text("GevInterfaceSubnetMask"), "255.255.0.0");
    EXPECT_EQ(map.Text("GevInterfaceGateway"), "10.0.0.254");
}

TEST_F(SimulatorModuleFeatures, InterfaceSelectsItsCamerasAndTellsWhoIsOpen)
{
    const FeatureMap map(producer, tree.interface);
    EXPECT_EQ(map.Text("DeviceID"), "SimulatedCamera_A");
    EXPECT_EQ(map.Text("DeviceSerialNumber"), "A");
    EXPECT_EQ(map.Text("DeviceUserID"), "left");
    EXPECT_EQ(map.Text("DeviceAccessStatus"), "OpenReadWrite");
    EXPECT_EQ(map.Text("GevDeviceIPAddress"), "10.0.1.1");
    map.Set("DeviceSelector", "1");
    EXPECT_EQ(map.Text("DeviceID"), "Other_B");
    EXPECT_EQ(map.Text("DeviceModelName"), "Other");
    EXPECT_EQ(map.Text("DeviceAccessStatus"), "ReadWrite");
    EXPECT_EQ(map.Text("GevDeviceIPAddress"), "10.0.1.2");
    EXPECT_THROW(map.Set("DeviceSelector", "2"), GENICAM_NAMESPACE::OutOfRangeException);
    const std::uint32_t two = 2;
    std::size_t size = sizeof two;
    EXPECT_EQ(producer.GCWritePort(tree.interface, 0x168, &two, &size), GC_ERR_INVALID_VALUE);
}

TEST_F(SimulatorModuleFeatures, InterfaceOfAnotherTypeHasNoGigEVisionFeatures)
{
    IF_HANDLE other = nullptr;
    ASSERT_EQ(producer.TLOpenInterface(tree.system, "U", &other), GC_ERR_SUCCESS);
    const FeatureMap map(producer, other);
    EXPECT_EQ(map.Text("InterfaceType"), "USB3Vision");
    EXPECT_EQ(map.Access("GevInterfaceMACAddress"), GenApi::NI);
    EXPECT_EQ(map.Access("GevDeviceIPAddress"), GenApi::NI);
    EXPECT_EQ(map.Access("DeviceID"), GenApi::NA) << "no camera is there";
    map.Execute("DeviceUpdateList");
    EXPECT_EQ(map.Access("DeviceID"), GenApi::NA);
}

TEST(SimulatorModules, UpdateCommandFindsWhatTheFunctionFinds)
{
    const Producer producer(
        OneCamera(R"(, "misbehaviour": {"devices": [{"camera": "A", "vanishAtUpdate": 2, "missingUpdates": 1}]})"));
    const Tree tree(producer);
    const FeatureMap map(producer, tree.interface);
    map.Execute("DeviceUpdateList");
    EXPECT_EQ(map.Access("DeviceID"), GenApi::NA);
    std::uint32_t number = 1;
    ASSERT_EQ(producer.IFGetNumDevices(tree.interface, &number), GC_ERR_SUCCESS);
    EXPECT_EQ(number, 0U);
    map.Execute("DeviceUpdateList");
    EXPECT_EQ(map.Text("DeviceID"), "SimulatedCamera_A");
}

TEST_F(SimulatorModuleFeatures, DeviceHasWhatTheStandardDemands)
{
    const FeatureMap map(producer, tree.device);
    CheckMandatory(
        map, {{"DevicePort", GenApi::intfIPort, GenApi::RW},
              {"DeviceID", GenApi::intfIString, GenApi::RO},
              {"DeviceVendorName", GenApi::intfIString, GenApi::RO},
              {"DeviceModelName", GenApi::intfIString, GenApi::RO},
              {"DeviceType", GenApi::intfIEnumeration, GenApi::RO},
              {"DeviceAccessStatus", GenApi::intfIEnumeration, GenApi::RO},
              {"StreamSelector", GenApi::intfIInteger, GenApi::RW},
              {"StreamID", GenApi::intfIString, GenApi::RO},
              {"GevDeviceMACAddress", GenApi::intfIInteger, GenApi::RO},
              {"GevDeviceIPAddress", GenApi::intfIInteger, GenApi::RO},
              {"GevDeviceSubnetMask", GenApi::intfIInteger, GenApi::RO},
              {"GevDeviceGateway", GenApi::intfIInteger, GenApi::RO},
              {"DeviceEndianessMechanism", GenApi::intfIEnumeration, GenApi::RO}});
    const auto info = [&](DEVICE_INFO_CMD command) { return producer.Get(producer.DevGetInfo, tree.device, command); };
    EXPECT_EQ(map.Text("DeviceID"), info(DEVICE_INFO_ID));
    EXPECT_EQ(map.Text("DeviceVendorName"), info(DEVICE_INFO_VENDOR));
    EXPECT_EQ(map.Text("DeviceModelName"), info(DEVICE_INFO_MODEL));
    EXPECT_EQ(map.Text("DeviceSerialNumber"), info(DEVICE_INFO_SERIAL_NUMBER));
    EXPECT_EQ(map.Text("DeviceVersion"), info(DEVICE_INFO_VERSION));
    EXPECT_EQ(map.Text("DeviceDisplayName"), info(DEVICE_INFO_DISPLAYNAME));
    EXPECT_EQ(map.Text("DeviceAccessStatus"), "OpenReadWrite");
    EXPECT_EQ(map.Text("StreamID"), "Stream0");
    EXPECT_EQ(map.Text("DeviceType"), "GigEVision");
}

TEST_F(SimulatorModuleFeatures, CommandSettingsOfTheDeviceHaveTheirLimits)
{
    const FeatureMap map(producer, tree.device);
    map.Set("GevGVCPCMDLength", "1060");
    EXPECT_EQ(map.Integer("GevGVCPCMDLength").GetValue(false, true), 1060);
    EXPECT_THROW(map.Set("GevGVCPCMDLength", "35"), GENICAM_NAMESPACE::OutOfRangeException);
    map.Set("ControlChannelNumRetriesOnTimeout", "7");
    EXPECT_EQ(map.Integer("LinkCommandRetryCount").GetValue(), 7) << "two names of one number";
    EXPECT_THROW(map.Set("LinkCommandTimeout", "999"), GENICAM_NAMESPACE::OutOfRangeException);
}

TEST_F(SimulatorModuleFeatures, StreamHasWhatTheStandardDemandsAndMirrorsItsCounters)
{
    const FeatureMap map(producer, tree.stream);
    CheckMandatory(
        map, {{"StreamPort", GenApi::intfIPort, GenApi::RW},
              {"StreamID", GenApi::intfIString, GenApi::RO},
              {"StreamType", GenApi::intfIEnumeration, GenApi::RO},
              {"StreamAnnouncedBufferCount", GenApi::intfIInteger, GenApi::RO},
              {"StreamAnnounceBufferMinimum", GenApi::intfIInteger, GenApi::RO},
              {"StreamBufferHandlingMode", GenApi::intfIEnumeration, GenApi::RO}});
    EXPECT_EQ(map.Text("StreamBufferHandlingMode"), "OldestFirst");
    EXPECT_EQ(map.Text("PayloadSize"), "64");
    for (int index = 0; index < 3; ++index)
        tree.Announce();
    EXPECT_EQ(map.Text("StreamAnnouncedBufferCount"), "3");
    EXPECT_EQ(map.Text("StreamInputBufferCount"), "3");
    EXPECT_EQ(map.Text("StreamIsGrabbing"), "0");
    tree.Start(2);
    tree.Next();
    ASSERT_TRUE(Eventually([&] { return map.Text("StreamOutputBufferCount") == "1"; }));
    EXPECT_EQ(map.Text("StreamDeliveredFrameCount"), "1");
    EXPECT_EQ(map.Text("StreamStartedFrameCount"), "2");
    EXPECT_EQ(map.Text("StreamLostFrameCount"), "0");
}

TEST_F(SimulatorModuleFeatures, EveryNodeReadsAndTakesItsValueBack)
{
    for (void* const port : {tree.system, tree.interface, tree.device, tree.stream})
    {
        const FeatureMap map(producer, port);
        CheckEveryNode(map);
        WriteEveryNodeBack(map);
        CheckCaches(map, "writing everything back");
    }
}

TEST(SimulatorModules, LongNamesAreNotCut)
{
    const std::string id(255, 'i');
    const std::string serial(63, 's');
    const std::string model(63, 'm');
    const Producer producer(
        R"({"interfaces": [{"id": ")" + id + R"(", "cameras": [{"serial": ")" + serial + R"(", "model": ")" + model +
        "\"}]}]}");
    const Tree tree(producer, id, serial);
    EXPECT_EQ(FeatureMap(producer, tree.interface).Text("InterfaceID"), id);
    EXPECT_EQ(FeatureMap(producer, tree.interface).Text("DeviceID"), model + "_" + serial);
    EXPECT_EQ(FeatureMap(producer, tree.system).Text("InterfaceID"), id);
    EXPECT_EQ(FeatureMap(producer, tree.device).Text("DeviceID"), model + "_" + serial);
}

} // namespace
} // namespace koro::simulator::test
