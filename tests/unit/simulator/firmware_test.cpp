// New firmware for the simulated cameras, and the resets that it takes.
#include "tests/unit/simulator/feature_map.h"

#include <GenApi/Filestream.h>
#include <gtest/gtest.h>
#include <memory>
#include <zlib.h>

namespace koro::simulator::test
{
namespace
{

namespace GenApi = GENAPI_NAMESPACE;

std::string CameraWith(const std::string& keys, const std::string& faults = "")
{
    return R"({"misbehaviour": {"files": [)" + faults +
           R"(]}, "interfaces": [{"id": "I", "tlType": "U3V", "cameras": [
        {"serial": "A", "model": "M", "width": 16, "height": 4, "rate": 0)" +
           keys + "}]}]}";
}

std::string Number(std::size_t number)
{
    std::string bytes;
    for (int index = 0; index < 4; ++index, number >>= 8)
        bytes += static_cast<char>(number & 0xFF);
    return bytes;
}

std::string ImageOf(const std::string& content)
{
    const auto check = crc32_z(0, reinterpret_cast<const Bytef*>(content.data()), content.size());
    return "KOROFWIM" + Number(content.size()) + Number(check) + content;
}

// One camera that can be opened again, with its features while it is open.
struct Updated
{
    explicit Updated(const std::string& keys = "", const std::string& faults = "")
        : producer(CameraWith(keys, faults)), tree(producer), map(std::make_unique<FeatureMap>(producer, tree.remote)),
          device(tree.device)
    {}

    std::string Version() const { return map->Text("DeviceFirmwareVersion"); }
    // False when the camera refuses it.
    bool Upload(const std::string& bytes) const
    {
        GenApi::FileProtocolAdapter adapter;
        if (!adapter.attach(&map->Map()) || !adapter.openFile("Firmware", std::ios_base::out)) return false;
        const auto size = static_cast<std::int64_t>(bytes.size());
        EXPECT_EQ(adapter.write(bytes.data(), 0, size, "Firmware"), size);
        return adapter.closeFile("Firmware");
    }
    std::string Status() const { return map->Text("FileOperationStatus"); }

    void Close()
    {
        map.reset();
        ASSERT_EQ(producer.DevClose(device), GC_ERR_SUCCESS);
    }
    GC_ERROR TryOpen(const char* name = "A")
    {
        const GC_ERROR result = producer.IFOpenDevice(tree.interface, name, DEVICE_ACCESS_CONTROL, &device);
        PORT_HANDLE remote = nullptr;
        if (result != GC_ERR_SUCCESS) return result;
        EXPECT_EQ(producer.DevGetPort(device, &remote), GC_ERR_SUCCESS);
        map = std::make_unique<FeatureMap>(producer, remote);
        return result;
    }
    // Updates the list first; empty when the camera is not on it.
    std::string ListedId() const
    {
        std::uint32_t number = 9;
        EXPECT_EQ(producer.IFUpdateDeviceList(tree.interface, nullptr, 0), GC_ERR_SUCCESS);
        EXPECT_EQ(producer.IFGetNumDevices(tree.interface, &number), GC_ERR_SUCCESS);
        return number == 0 ? "" : FirstId();
    }
    std::string FirstId() const
    {
        char id[256] = "";
        std::size_t size = sizeof id;
        EXPECT_EQ(producer.IFGetDeviceID(tree.interface, 0, id, &size), GC_ERR_SUCCESS);
        return id;
    }

    Producer producer;
    Tree tree;
    std::unique_ptr<FeatureMap> map;
    DEV_HANDLE device;
};

TEST(SimulatorFirmware, RunsAfterTheReset)
{
    const Updated camera;
    EXPECT_EQ(camera.Version(), "1.0.0");
    ASSERT_TRUE(camera.Upload(ImageOf("2.1.0\nthe rest" + std::string(200'000, 'x'))));
    EXPECT_EQ(camera.Version(), "1.0.0");
    camera.map->Execute("DeviceReset");
    EXPECT_EQ(camera.Version(), "2.1.0");
    camera.map->Execute("DeviceReset");
    EXPECT_EQ(camera.Version(), "2.1.0");
}

TEST(SimulatorFirmware, BeginsWithTheVersionOfTheSettings)
{
    const Updated camera(R"(, "firmwareVersion": "0.9 beta")");
    EXPECT_EQ(camera.Version(), "0.9 beta");
}

TEST(SimulatorFirmware, LastUploadCounts)
{
    const Updated camera;
    ASSERT_TRUE(camera.Upload(ImageOf("2\n")));
    ASSERT_TRUE(camera.Upload(ImageOf("3\n")));
    EXPECT_FALSE(camera.Upload("4"));
    camera.map->Execute("DeviceReset");
    EXPECT_EQ(camera.Version(), "3");
}

TEST(SimulatorFirmware, ShorterImageReplacesALongerOne)
{
    const Updated camera;
    EXPECT_FALSE(camera.Upload(std::string(100'000, 'x')));
    EXPECT_TRUE(camera.Upload(ImageOf("2\n")));
}

TEST(SimulatorFirmware, IsRefusedWhenItIsNoImage)
{
    const std::string good = ImageOf("2.0\nrest");
    std::string otherMagic = good;
    otherMagic[0] = 'k';
    std::string otherByte = good;
    otherByte.back() = '?';
    std::string otherCheck = good;
    otherCheck[12] = static_cast<char>(otherCheck[12] + 1);
    const std::string cases[] = {
        "",
        "KOROFWIM",
        good.substr(0, 15),
        good.substr(0, good.size() - 1),
        good + "x",
        otherMagic,
        otherByte,
        otherCheck,
        ImageOf(""),
        ImageOf("\nno version"),
        ImageOf("no line feed"),
        ImageOf(std::string(64, '1') + "\n"),
        ImageOf("1\t2\n"),
        ImageOf(std::string("1\0\n", 3))};
    const Updated camera;
    for (const std::string& image : cases)
    {
        EXPECT_FALSE(camera.Upload(image)) << testing::PrintToString(image);
        EXPECT_EQ(camera.Status(), "FileNotValid") << testing::PrintToString(image);
    }
    camera.map->Execute("DeviceReset");
    EXPECT_EQ(camera.Version(), "1.0.0");
    EXPECT_TRUE(camera.Upload(good)) << "the refused ones were closed";
    EXPECT_TRUE(camera.Upload(ImageOf(std::string(63, '1') + "\n")));
}

TEST(SimulatorFirmware, UploadThatIsCutOffIsForgotten)
{
    Updated camera;
    const std::string image = ImageOf("2\nrest");
    GenApi::FileProtocolAdapter adapter;
    ASSERT_TRUE(adapter.attach(&camera.map->Map()));
    ASSERT_TRUE(adapter.openFile("Firmware", std::ios_base::out));
    EXPECT_EQ(adapter.write(image.data(), 0, 10, "Firmware"), 10);
    camera.map->Execute("DeviceReset");
    EXPECT_EQ(camera.Version(), "1.0.0");
    ASSERT_TRUE(adapter.openFile("Firmware", std::ios_base::out));
    const auto rest = static_cast<std::int64_t>(image.size()) - 10;
    EXPECT_EQ(adapter.write(image.data() + 10, 10, rest, "Firmware"), rest);
    EXPECT_FALSE(adapter.closeFile("Firmware")) << "the beginning is gone";
}

TEST(SimulatorFirmware, CannotBeReadOrDeleted)
{
    const Updated camera;
    GenApi::FileProtocolAdapter adapter;
    ASSERT_TRUE(adapter.attach(&camera.map->Map()));
    EXPECT_FALSE(adapter.openFile("Firmware", std::ios_base::in));
    EXPECT_FALSE(adapter.deleteFile("Firmware"));
    EXPECT_TRUE(GenApi::IsAvailable(camera.map->Enumeration("FileSelector").GetEntryByName("Firmware")));
    EXPECT_EQ(camera.map->Text("FileOpenMode"), "Write");
    EXPECT_EQ(camera.map->Integer("FileSize").GetMax(), 67'108'864);
}

TEST(SimulatorFirmware, BusyCloseIsFollowedByTheNewVersionToo)
{
    const Updated camera("", R"({"camera": "A", "file": "Firmware", "operation": "Close", "busyPolls": 5})");
    ASSERT_TRUE(camera.Upload(ImageOf("2\n")));
    camera.map->Execute("DeviceReset");
    EXPECT_EQ(camera.Version(), "2");
}

TEST(SimulatorFirmware, OutlivesTheOpeningOfTheDevice)
{
    Updated camera;
    ASSERT_TRUE(camera.Upload(ImageOf("2\n")));
    camera.Close();
    ASSERT_EQ(camera.TryOpen(), GC_ERR_SUCCESS);
    EXPECT_EQ(camera.Version(), "1.0.0");
    camera.map->Execute("DeviceReset");
    camera.Close();
    ASSERT_EQ(camera.TryOpen(), GC_ERR_SUCCESS);
    EXPECT_EQ(camera.Version(), "2");
}

TEST(SimulatorReset, TakesTheCameraAwayForATime)
{
    Updated camera(R"(, "resetAbsence_ms": 30)");
    ASSERT_TRUE(camera.Upload(ImageOf("2\n")));
    const auto start = std::chrono::steady_clock::now();
    camera.map->Execute("DeviceReset");
    EXPECT_THROW(camera.Version(), PortFailure);
    camera.Close();
    ASSERT_TRUE(Eventually([&] { return !camera.ListedId().empty(); }));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
    EXPECT_EQ(camera.ListedId(), "M_A");
    ASSERT_EQ(camera.TryOpen(), GC_ERR_SUCCESS);
    EXPECT_EQ(camera.Version(), "2");
}

TEST(SimulatorReset, TimeAndUpdatesHaveToPassBoth)
{
    Updated camera(R"(, "resetAbsence_ms": 1, "resetMissingUpdates": 3)");
    camera.map->Execute("DeviceReset");
    std::size_t missed = 0;
    ASSERT_TRUE(Eventually([&] { return !camera.ListedId().empty() || ++missed == 0; }));
    EXPECT_GE(missed, 3U);
}

// A second camera, which is reset later and returns, shows when the first one would have returned.
TEST(SimulatorReset, MayTakeTheCameraAwayForGood)
{
    const std::string absence = R"(, "resetAbsence_ms": 1, "resetMissingUpdates": 1)";
    Updated camera(
        absence + R"(, "resetReturns": false}, {"serial": "B", "model": "M", "width": 16, "height": 4, "rate": 0)" +
        absence);
    const auto& producer = camera.producer;
    DEV_HANDLE returning = GENTL_INVALID_HANDLE;
    PORT_HANDLE returningPort = GENTL_INVALID_HANDLE;
    ASSERT_EQ(producer.IFOpenDevice(camera.tree.interface, "B", DEVICE_ACCESS_CONTROL, &returning), GC_ERR_SUCCESS);
    ASSERT_EQ(producer.DevGetPort(returning, &returningPort), GC_ERR_SUCCESS);

    camera.map->Execute("DeviceReset");
    std::uint32_t width = 0;
    std::size_t size = sizeof width;
    EXPECT_EQ(producer.GCReadPort(camera.tree.remote, 0x300, &width, &size), GC_ERR_IO);
    camera.Close();
    FeatureMap(producer, returningPort).Execute("DeviceReset");
    ASSERT_EQ(producer.DevClose(returning), GC_ERR_SUCCESS);

    ASSERT_TRUE(Eventually([&] { return !camera.ListedId().empty(); }));
    EXPECT_EQ(camera.FirstId(), "M_B");
    std::uint32_t number = 0;
    EXPECT_EQ(producer.IFGetNumDevices(camera.tree.interface, &number), GC_ERR_SUCCESS);
    EXPECT_EQ(number, 1U);
    EXPECT_EQ(camera.TryOpen(), GC_ERR_INVALID_ID);
    ASSERT_EQ(camera.TryOpen("B"), GC_ERR_SUCCESS);
}

TEST(SimulatorReset, CameraMayReturnUnderAnotherId)
{
    Updated camera(R"(, "resetChangesId": true, "resetMissingUpdates": 1)");
    EXPECT_EQ(camera.ListedId(), "M_A");
    camera.map->Execute("DeviceReset");
    EXPECT_EQ(camera.FirstId(), "M_A") << "not updated";
    EXPECT_EQ(camera.ListedId(), "");
    EXPECT_EQ(camera.ListedId(), "M_A_2");
    const auto& producer = camera.producer;
    EXPECT_EQ(producer.Get(producer.DevGetInfo, camera.device, DEVICE_INFO_ID), "M_A") << "of the lost one";
    const auto serial = [&](const char* name) {
        return producer.Get(producer.IFGetDeviceInfo, camera.tree.interface, name, DEVICE_INFO_SERIAL_NUMBER);
    };
    EXPECT_EQ(serial("M_A_2"), "A");
    EXPECT_EQ(camera.TryOpen("M_A"), GC_ERR_INVALID_ID);

    const DEV_HANDLE before = camera.device;
    ASSERT_EQ(camera.TryOpen("A"), GC_ERR_SUCCESS) << "the lost one need not be closed";
    EXPECT_EQ(producer.Get(producer.DevGetInfo, camera.device, DEVICE_INFO_ID), "M_A_2");
    EXPECT_EQ(producer.Get(producer.GCGetPortInfo, camera.device, PORT_INFO_ID), "M_A_2");
    EXPECT_EQ(camera.map->Text("DeviceSerialNumber"), "A");
    camera.map->Execute("DeviceReset");
    EXPECT_EQ(camera.ListedId(), "");
    EXPECT_EQ(camera.ListedId(), "M_A_3");
    EXPECT_EQ(producer.DevClose(before), GC_ERR_SUCCESS);
    camera.Close();
    EXPECT_EQ(camera.TryOpen("M_A_3"), GC_ERR_SUCCESS);
}

TEST(SimulatorReset, AnotherIdTakesOneUpdateOfTheList)
{
    Updated camera(R"(, "resetChangesId": true)");
    camera.map->Execute("DeviceReset");
    EXPECT_THROW(camera.Version(), PortFailure);
    bool8_t changed = 0;
    EXPECT_EQ(camera.producer.IFUpdateDeviceList(camera.tree.interface, &changed, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(changed, 1);
    EXPECT_EQ(camera.FirstId(), "M_A_2");
    EXPECT_EQ(camera.producer.IFUpdateDeviceList(camera.tree.interface, &changed, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(changed, 0);
}

TEST(SimulatorRetries, AreLimitedAsTheSettingsSay)
{
    const Updated camera(R"(, "commandRetries": 1, "commandRetriesMaximum": 2)");
    const FeatureMap local(camera.producer, camera.tree.device);
    GenApi::IInteger& retries = local.Integer("ControlChannelNumRetriesOnTimeout");
    EXPECT_EQ(retries.GetValue(), 1);
    EXPECT_EQ(retries.GetMax(), 2);
    EXPECT_EQ(local.Integer("LinkCommandRetryCount").GetMax(), 2);
    retries.SetValue(2);
    EXPECT_EQ(local.Text("LinkCommandRetryCount"), "2");
    const std::uint32_t three = 3;
    std::size_t size = sizeof three;
    EXPECT_EQ(camera.producer.GCWritePort(camera.tree.device, 0x1A4, &three, &size), GC_ERR_INVALID_VALUE);
    CheckEveryNode(local);
    WriteEveryNodeBack(local);
}

TEST(SimulatorRetries, AreThreeOfAHundredAsARule)
{
    const Updated camera;
    const FeatureMap local(camera.producer, camera.tree.device);
    EXPECT_EQ(local.Text("ControlChannelNumRetriesOnTimeout"), "3");
    EXPECT_EQ(local.Integer("ControlChannelNumRetriesOnTimeout").GetMax(), 100);
    EXPECT_EQ(local.Access("ControlChannelNumRetriesOnTimeout"), GenApi::RW);
}

TEST(SimulatorRetries, CanBeForReadingOnly)
{
    const Updated camera(R"(, "commandRetriesAccess": "readOnly")");
    const FeatureMap local(camera.producer, camera.tree.device);
    EXPECT_EQ(local.Access("ControlChannelNumRetriesOnTimeout"), GenApi::RO);
    EXPECT_EQ(local.Access("LinkCommandRetryCount"), GenApi::RO);
    EXPECT_EQ(local.Text("ControlChannelNumRetriesOnTimeout"), "3");
    const std::uint32_t one = 1;
    std::size_t size = sizeof one;
    EXPECT_EQ(camera.producer.GCWritePort(camera.tree.device, 0x1A4, &one, &size), GC_ERR_ACCESS_DENIED);
}

TEST(SimulatorRetries, CanBeMissing)
{
    const Updated camera(R"(, "commandRetriesAccess": "none")");
    const FeatureMap local(camera.producer, camera.tree.device);
    EXPECT_EQ(local.Access("ControlChannelNumRetriesOnTimeout"), GenApi::NI);
    EXPECT_EQ(local.Access("LinkCommandRetryCount"), GenApi::NI);
    CheckEveryNode(local);
}

} // namespace
} // namespace koro::simulator::test
