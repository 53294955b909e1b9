// Updates of the simulated cameras, which take new firmware, vanish with their reset and come back with it.
#include "tests/boundary/connection_changes.h"
#include "tests/boundary/firmware_test.h"
#include "tests/support/environment_variable.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <memory>

namespace koro::test
{

using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{

std::string FourBytes(std::size_t number)
{
    std::string bytes;
    for (int index = 0; index < 4; ++index, number >>= 8)
        bytes += static_cast<char>(number & 0xff);
    return bytes;
}

// As the simulated cameras take it.
std::string ImageOf(const std::string& version)
{
    std::string content = version + '\n';
    for (std::uint32_t value = 1; content.size() < 300'000; value = value * 69069 + 1)
        content += static_cast<char>(value >> 24);
    const auto checksum = crc32_z(0, reinterpret_cast<const Bytef*>(content.data()), content.size());
    return "KOROFWIM" + FourBytes(content.size()) + FourBytes(checksum) + content;
}

class SimulatedUpdate : public testing::Test
{
protected:
    // One camera with these settings.
    void Begin(const std::string& cameraSettings = "")
    {
        const std::string path = folder.MakeFile(
            "settings.json", R"({"interfaces": [{"id": "Desk", "tlType": "GEV", "cameras": [
                {"serial": "4711", "width": 16, "height": 4, "commandRetriesMaximum": 10, "commandRetries": 7)" +
                                 cameraSettings + "}]}]}");
        settings = std::make_unique<EnvironmentVariable>("KORO_SIMULATOR_CONFIG", path);
        library = std::make_unique<KoroLibrary>();
        tree = std::make_unique<OpenTree>(std::string(std::getenv("KORO_TEST_PRODUCERS")) + "/zvr_koro_simulator.cti");
        Require(KORO_Device_Destruct(tree->device));
        observer = std::make_unique<ToldObserver>();
        Require(KORO_FirmwareUpdater_Construct(&updater));
    }

    // Uploads the image, resets the camera and looks whether it runs the version.
    static UpdateFileOnDisk FileWith(const std::string& image, const std::string& delay_ms = "0")
    {
        return WithControl(
            Control(
                Procedure(
                    firmware::UploadStep("camera.bin") + firmware::ResetStep(delay_ms) +
                    Step(
                        "FeatureAssert", "<FeatureName>DeviceFirmwareVersion</FeatureName>"
                                         "<AssertPattern>^2\\.1\\.0$</AssertPattern>")) +
                Update(
                    Entry("Version", "2.1.0") + Entry("Description", "Simulated"),
                    "<Condition Feature=\"DeviceModelName\">^SimulatedCamera$</Condition>")),
            {{"camera.bin", image}});
    }

    Error Apply(const UpdateFileOnDisk& file, std::uint64_t resetTimeout_ms = 60000)
    {
        Require(KORO_FirmwareUpdater_CollectFirmwareUpdateInformation(
            updater, file.path.c_str(), file.path.size() + 1, tree->deviceDescriptor));
        const auto information = Get<KORO_FirmwareUpdateInformationHandle>(
            KORO_FirmwareUpdater_GetFirmwareUpdateInformation, updater, std::size_t{0});
        return Outcome(KORO_FirmwareUpdater_UpdateDeviceWithResetTimeout(
            updater, tree->deviceDescriptor, information, observer->handle, resetTimeout_ms));
    }

    std::size_t NumCameras() const
    {
        Require(KORO_Interface_UpdateDevices(tree->interface, 0));
        return Get<std::size_t>(KORO_Interface_GetNumDevices, tree->interface);
    }
    // What the camera says by itself, newly listed and opened.
    std::string VersionOfTheCamera()
    {
        EXPECT_EQ(NumCameras(), 1u);
        tree->deviceDescriptor =
            Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, tree->interface, std::size_t{0});
        const auto device = Get<KORO_DeviceHandle>(
            KORO_DeviceDescriptor_OpenDevice, tree->deviceDescriptor, std::uint32_t{KORO_DEVICE_ACCESS_CONTROL});
        const auto camera = Get<KORO_RemoteDeviceHandle>(KORO_Device_GetRemoteDevice, device);
        const auto version = GetText(
            KORO_StringNode_GetValue,
            Get<KORO_StringNodeHandle>(
                KORO_Node_ToStringNode,
                Find(Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, camera), "DeviceFirmwareVersion")),
            KORO_NodeCachePolicy{KORO_NODE_CACHE_POLICY_IGNORE_CACHE});
        Require(KORO_Device_Destruct(device));
        return version;
    }

    void ExecuteAtTheSystem(const std::string& command) const
    {
        const auto node = Find(Get<KORO_ModuleHandle>(KORO_System_ToModule, tree->system), command);
        Require(KORO_CommandNode_Execute(Get<KORO_CommandNodeHandle>(KORO_Node_ToCommandNode, node)));
    }

    static KORO_NodeHandle Find(KORO_ModuleHandle module, const std::string& name)
    {
        const auto map = Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0});
        return Get<KORO_NodeHandle>(KORO_NodeMap_FindNode, map, name.c_str(), name.size() + 1);
    }

    TemporaryFolder folder;
    std::unique_ptr<EnvironmentVariable> settings;
    std::unique_ptr<KoroLibrary> library;
    std::unique_ptr<OpenTree> tree;
    std::unique_ptr<ToldObserver> observer;
    KORO_FirmwareUpdaterHandle updater = nullptr;
};

} // namespace

TEST_F(SimulatedUpdate, EndsWithTheNewVersionReported)
{
    Begin();
    EXPECT_EQ(VersionOfTheCamera(), "1.0.0");
    EXPECT_EQ(Apply(FileWith(ImageOf("2.1.0"))), Error{});
    EXPECT_EQ(VersionOfTheCamera(), "2.1.0");
    EXPECT_EQ(observer->reports.front(), "started 2.1.0, 20 ms");
    EXPECT_EQ(observer->reports.back(), "finished");
    EXPECT_THAT(observer->reports, Contains("step 5 at 100 %"));
}

TEST_F(SimulatedUpdate, WaitsForACameraThatIsAwayForATime)
{
    Begin(R"(, "resetAbsence_ms": 100, "resetMissingUpdates": 2)");
    EXPECT_EQ(Apply(FileWith(ImageOf("2.1.0"), "1")), Error{});
    EXPECT_EQ(VersionOfTheCamera(), "2.1.0");
}

TEST_F(SimulatedUpdate, KnowsTheCameraUnderAnotherIDByItsSerialNumber)
{
    Begin(R"(, "resetChangesId": true, "resetMissingUpdates": 1)");
    const std::string key = GetText(KORO_DeviceDescriptor_GetKey, tree->deviceDescriptor);
    EXPECT_EQ(Apply(FileWith(ImageOf("2.1.0"))), Error{});
    EXPECT_EQ(VersionOfTheCamera(), "2.1.0");
    EXPECT_NE(GetText(KORO_DeviceDescriptor_GetKey, tree->deviceDescriptor), key);
}

TEST_F(SimulatedUpdate, KnowsTheCameraThatOneUpdateOfTheListGivesAnotherID)
{
    Begin(R"(, "resetChangesId": true)");
    EXPECT_EQ(Apply(FileWith(ImageOf("2.1.0")), 0), Error{});
    EXPECT_EQ(VersionOfTheCamera(), "2.1.0");
}

TEST_F(SimulatedUpdate, CameraThatNeverReturnsEndsIt)
{
    Begin(R"(, "resetReturns": false)");
    const std::string key = GetText(KORO_DeviceDescriptor_GetKey, tree->deviceDescriptor);
    const Error stayedAway{
        KORO_RETURN_CODE_TIMEOUT, "Device could not be reopened within 10 ms after reset (Device Key: " + key + ")!"};
    EXPECT_EQ(Apply(FileWith(ImageOf("2.1.0")), 10), stayedAway);
    EXPECT_EQ(observer->reports.back(), "failed: " + stayedAway.text);
    EXPECT_EQ(NumCameras(), 0u);
}

TEST_F(SimulatedUpdate, CameraThatIsLostDuringTheUploadEndsItAndCanBeUpdatedLater)
{
    Begin();
    ConnectionReports reports(tree->interface);
    observer->onReport = [&](const std::string& report) {
        if (report.rfind("step 5 at", 0) != 0) return;
        observer->onReport = nullptr;
        ExecuteAtTheSystem("SimulatedCameraUnplug");
    };
    const UpdateFileOnDisk file = FileWith(ImageOf("2.1.0"));
    const Error outcome = Apply(file);
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_IO_ERROR);
    EXPECT_THAT(outcome.text, HasSubstr("GC_ERR_IO"));
    EXPECT_EQ(observer->reports.back(), "failed: " + outcome.text);
    EXPECT_THAT(observer->reports, Not(Contains("step 5 finished")));

    EXPECT_THAT(reports.Next(), StartsWith("disconnected "));
    ExecuteAtTheSystem("SimulatedCameraReplug");
    // The library looks at a camera that has come back, which keeps it open until the report.
    EXPECT_THAT(reports.Next(), StartsWith("reconnected "));
    EXPECT_EQ(VersionOfTheCamera(), "1.0.0");
    EXPECT_EQ(Apply(file), Error{});
    EXPECT_EQ(VersionOfTheCamera(), "2.1.0");
}

TEST_F(SimulatedUpdate, ImageThatTheCameraRefusesEndsIt)
{
    Begin();
    std::string damaged = ImageOf("2.1.0");
    damaged.back() ^= 1;
    const Error outcome = Apply(FileWith(damaged));
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
    EXPECT_THAT(
        outcome.text, HasSubstr("The device answered 'FileNotValid' to the operation 'Close' on its file 'Firmware'"));
    EXPECT_EQ(VersionOfTheCamera(), "1.0.0");
}

TEST_F(SimulatedUpdate, CameraThatRunsAnotherVersionAfterwardsFailsTheAssertion)
{
    Begin();
    EXPECT_THAT(Apply(FileWith(ImageOf("3.0"))).text, HasSubstr("is '3.0', which does not match '^2\\.1\\.0$'"));
    EXPECT_EQ(VersionOfTheCamera(), "3.0");
}

TEST_F(SimulatedUpdate, OpenCameraIsNotUpdated)
{
    Begin();
    const auto device = Get<KORO_DeviceHandle>(
        KORO_DeviceDescriptor_OpenDevice, tree->deviceDescriptor, std::uint32_t{KORO_DEVICE_ACCESS_CONTROL});
    const UpdateFileOnDisk file = FileWith(ImageOf("2.1.0"));
    EXPECT_EQ(
        Outcome(KORO_FirmwareUpdater_CollectFirmwareUpdateInformation(
                    updater, file.path.c_str(), file.path.size() + 1, tree->deviceDescriptor))
            .code,
        KORO_RETURN_CODE_BAD_ACCESS);
    Require(KORO_Device_Destruct(device));
    EXPECT_EQ(Apply(file), Error{});
}

} // namespace koro::test
