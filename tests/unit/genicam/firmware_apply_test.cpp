#include "tests/unit/genicam/firmware_camera.h"
#include "tests/unit/genicam/firmware_files.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace koro::test;
using namespace GENAPI_NAMESPACE;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::Not;

// A camera, its device object, an observer and an update file with one update whose procedure has the steps.
class ApplyUpdate : public testing::Test
{
protected:
    std::string Apply(const std::string& steps, const Files& files = {}, const char* language = nullptr)
    {
        const UpdateFileOnDisk file = WithControl(Control(Procedure(steps) + update), files);
        const auto infos = ReadAll(file);
        if (beforeApplying) beforeApplying(file);
        return Thrown([&] { CFirmwareUpdater().ApplyUpdate(&device, infos.at(0), told, language); });
    }

    // What happened between the two steps before the procedure and the end.
    Journal StepsOfJournal() const
    {
        const auto begin = std::find(journal.begin(), journal.end(), "step end 1 10");
        const auto end = std::find_if(
            journal.begin(), journal.end(), [](const std::string& line) { return line == "end" || line == "error"; });
        return begin == journal.end() ? Journal() : Journal(begin + 1, end);
    }

    Journal journal;
    FirmwareCamera camera{journal};
    UpdatableCamera device{camera};
    RecordingObserver observer{journal};
    IFirmwareUpdateProgressObserver* told = &observer;
    std::string update = Update();
    std::function<void(const UpdateFileOnDisk&)> beforeApplying;
};

std::string WriteGain(const std::string& value)
{
    return Step("FeatureWrite", "<FeatureName>Gain</FeatureName><Value>" + value + "</Value>");
}

std::string Upload(const std::string& name, const std::string& deviceFile = "Firmware")
{
    return Step("FileUpload", "<DeviceFileName>" + deviceFile + "</DeviceFileName><FileName>" + name + "</FileName>");
}

TEST_F(ApplyUpdate, CallsComeInTheirOrder)
{
    EXPECT_EQ(Apply(WriteGain("7")), "nothing");
    EXPECT_THAT(
        journal,
        ElementsAre(
            "GetDisplayName", "Prepare", "begin 2.0 20", "GetNodeMap", "step 0 10 ''", "step end 0 10", "step 1 10 ''",
            "step end 1 10", "step 2 0 'FeatureWrite'", "write Gain=7", "step end 2 0", "end", "Cleanup"));
}

TEST_F(ApplyUpdate, WithoutObserverTheSameCallsAreMade)
{
    told = nullptr;
    EXPECT_EQ(Apply(WriteGain("7")), "nothing");
    EXPECT_THAT(journal, ElementsAre("GetDisplayName", "Prepare", "GetNodeMap", "write Gain=7", "Cleanup"));
}

TEST_F(ApplyUpdate, InfoMayChangeWhileItIsApplied)
{
    const UpdateFileOnDisk file = WithControl(Control(Procedure(WriteGain("7")) + update));
    auto info = ReadAll(file).at(0);
    device.throwsAt = "Prepare";
    device.thrown = [&] { info = CFirmwareUpdateInfo(); };
    CFirmwareUpdater().ApplyUpdate(&device, info, told);
    EXPECT_FALSE(info.IsValid());
    EXPECT_THAT(journal, Contains("begin 2.0 20"));
    EXPECT_THAT(StepsOfJournal(), Contains("write Gain=7"));
}

TEST_F(ApplyUpdate, UnknownProcedureRunsNoSteps)
{
    update = Update(neededEntries, "<Condition Feature=\"DeviceVendorName\"/>", "Other");
    EXPECT_EQ(Apply(WriteGain("7")), "nothing");
    EXPECT_THAT(StepsOfJournal(), ElementsAre());
    EXPECT_EQ(journal.back(), "Cleanup");
}

TEST_F(ApplyUpdate, BeginTellsTheSumOfTheDurations)
{
    const std::string reset = Step("DeviceReset", "<ExpectedDurationMs>500</ExpectedDurationMs>");
    EXPECT_EQ(Apply(reset + WriteGain("1") + reset), "nothing");
    EXPECT_THAT(journal, Contains("begin 2.0 1020"));
}

TEST_F(ApplyUpdate, SumOfTheDurationsStaysAtItsLargestNumber)
{
    const std::string reset = Step("DeviceReset", "<ExpectedDurationMs>4294967295</ExpectedDurationMs>");
    EXPECT_EQ(Apply(reset + reset), "nothing");
    EXPECT_THAT(journal, Contains("begin 2.0 4294967295"));
    EXPECT_THAT(journal, Contains("step 6 4294967295 'DeviceReset'"));
}

TEST_F(ApplyUpdate, DescriptionComesInTheChosenLanguage)
{
    const std::string reset = "<DeviceReset><Description>neutral</Description><Description Lang=\"de\">deutsch"
                              "</Description><Description Lang=\"en\">english</Description></DeviceReset>";
    EXPECT_EQ(Apply(reset, {}, "de"), "nothing");
    EXPECT_THAT(journal, Contains("step 6 0 'deutsch'"));
    EXPECT_EQ(Apply(reset, {}, "it"), "nothing");
    EXPECT_THAT(journal, Contains("step 6 0 'english'"));
}

TEST_F(ApplyUpdate, StepsOfAllKindsAreTold)
{
    const std::string all = WriteGain("7") + Step("FeatureExecute", "<FeatureName>Activate</FeatureName>") +
                            Step("FeatureAssert", "<FeatureName>Gain</FeatureName><AssertPattern>^7$</AssertPattern>") +
                            Upload("a.bin") + Step("DeviceReset");
    EXPECT_EQ(Apply(all, {{"a.bin", "x"}}), "nothing");
    Journal steps;
    std::copy_if(journal.begin(), journal.end(), std::back_inserter(steps), [](const std::string& line) {
        return line.rfind("step", 0) == 0;
    });
    EXPECT_THAT(
        steps, ElementsAre(
                   "step 0 10 ''", "step end 0 10", "step 1 10 ''", "step end 1 10", "step 2 0 'FeatureWrite'",
                   "step end 2 0", "step 3 0 'FeatureExecute'", "step end 3 0", "step 4 0 'FeatureAssert'",
                   "step end 4 0", "step 5 0 'FileUpload'", "step end 5 0", "step 6 0 'DeviceReset'", "step end 6 0"));
    EXPECT_EQ(int(ProgressStepType_Invalid), 7);
}

TEST_F(ApplyUpdate, NullDeviceIsRefusedBeforeAnyCall)
{
    const auto infos = ReadAll(WithControl(Control(Procedure("") + Update())));
    EXPECT_EQ(
        Thrown([&] { CFirmwareUpdater().ApplyUpdate(nullptr, infos.at(0), &observer); }),
        "InvalidArgumentException: There is no device to apply an update to");
    EXPECT_THAT(journal, ElementsAre());
}

TEST_F(ApplyUpdate, InvalidInformationIsRefusedBeforeAnyCall)
{
    EXPECT_EQ(
        Thrown([&] { CFirmwareUpdater().ApplyUpdate(&device, CFirmwareUpdateInfo(), &observer); }),
        "InvalidArgumentException: The update to apply is not valid: it was read from no update file");
    EXPECT_THAT(journal, ElementsAre());
}

TEST_F(ApplyUpdate, UpdateForAnotherDeviceIsRefusedInTheFirstStep)
{
    camera.SetText(FirmwareCamera::Vendor, "Other");
    EXPECT_EQ(Apply(WriteGain("7")), "InvalidArgumentException: The update does not match the device 'Acme #7'");
    EXPECT_THAT(
        journal, ElementsAre("GetDisplayName", "Prepare", "begin 2.0 20", "GetNodeMap", "step 0 10 ''", "error"));
    EXPECT_EQ(observer.errorText, "The update does not match the device 'Acme #7'");
}

TEST_F(ApplyUpdate, DeviceWithoutNodeMapIsRefused)
{
    device.hasMap = false;
    EXPECT_EQ(Apply(""), "InvalidArgumentException: The device 'Acme #7' has no node map");
    EXPECT_EQ(journal.back(), "error");
}

TEST_F(ApplyUpdate, ChangedFileIsRefusedBeforeTheFirstStep)
{
    beforeApplying = [](const UpdateFileOnDisk& file) {
        file.Replace(Container(Package(Control(Procedure(WriteGain("9")) + Update()))));
    };
    EXPECT_EQ(Apply(WriteGain("7")), "RuntimeException: The update file 'update.guf' was changed since it was read");
    EXPECT_THAT(
        journal, ElementsAre(
                     "GetDisplayName", "Prepare", "begin 2.0 20", "GetNodeMap", "step 0 10 ''", "step end 0 10",
                     "step 1 10 ''", "error"));
}

TEST_F(ApplyUpdate, RemovedFileIsRefusedBeforeTheFirstStep)
{
    beforeApplying = [](const UpdateFileOnDisk& file) { std::filesystem::remove(file.path); };
    EXPECT_EQ(Apply(WriteGain("7")), "FileNotFoundException: The update file 'update.guf' does not exist");
    EXPECT_THAT(journal, Not(Contains("write Gain=7")));
}

TEST_F(ApplyUpdate, CutFileIsRefusedBeforeTheFirstStep)
{
    beforeApplying = [](const UpdateFileOnDisk& file) {
        std::filesystem::resize_file(file.path, std::filesystem::file_size(file.path) - 30);
    };
    EXPECT_THAT(
        Apply(WriteGain("7")), testing::StartsWith("FileIOException: The update file 'update.guf' cannot be read"));
    EXPECT_THAT(journal, Not(Contains("write Gain=7")));
}

TEST_F(ApplyUpdate, SameFileWrittenAnewIsApplied)
{
    beforeApplying = [](const UpdateFileOnDisk& file) {
        ZipBuilder container;
        container.AddStored("META-INF/signature.p7s", "now signed");
        container.AddStored("package.zip", Package(Control(Procedure(WriteGain("7")) + Update())));
        file.Replace(container.Bytes());
    };
    EXPECT_EQ(Apply(WriteGain("7")), "nothing");
}

TEST_F(ApplyUpdate, FaultBehindTheChosenUpdateIsFoundBeforeTheFirstStep)
{
    const UpdateFileOnDisk file = WithControl(Control(Procedure(WriteGain("7")) + Update() + "<Oops/>"));
    CFirmwareUpdateDefaultInfoCollector collector;
    CFirmwareUpdater updater;
    EXPECT_THAT(Thrown([&] { updater.ReadFirmwareUpdateInfos(file.path.c_str(), collector); }), HasSubstr("Oops"));
    ASSERT_EQ(collector.firmwareUpdateInfoList.size(), 1u);
    EXPECT_THAT(
        Thrown([&] { updater.ApplyUpdate(&device, collector.firmwareUpdateInfoList[0], &observer); }),
        testing::StartsWith("RuntimeException: Error while parsing XML stream"));
    EXPECT_THAT(journal, Not(Contains("write Gain=7")));
}

TEST_F(ApplyUpdate, MissingUploadIsFoundBeforeTheFirstStep)
{
    EXPECT_EQ(
        Apply(WriteGain("7") + Upload("b.bin"), {{"a.bin", "x"}}),
        "FileNotFoundException: The update file 'update.guf' has no file 'b.bin' in its package");
    EXPECT_THAT(journal, Not(Contains("write Gain=7")));
    EXPECT_EQ(journal.back(), "error");
}

TEST_F(ApplyUpdate, UploadNamesNoFileOutsideThePackage)
{
    EXPECT_EQ(
        Apply(Upload("/etc/passwd")),
        "FileNotFoundException: The update file 'update.guf' has no file '/etc/passwd' in its package");
}

TEST_F(ApplyUpdate, FolderIsNoUpload)
{
    EXPECT_EQ(
        Apply(Upload("folder/"), {{"folder/", ""}}),
        "FileNotFoundException: The update file 'update.guf' has no file 'folder/' in its package");
}

TEST_F(ApplyUpdate, ExplodingUploadIsFoundBeforeTheFirstStep)
{
    EXPECT_THAT(
        Apply(WriteGain("7") + Upload("a.bin"), {{"a.bin", std::string(8u << 20, '\0')}}),
        HasSubstr("to 8388608 bytes, more than 200 times"));
    EXPECT_THAT(journal, Not(Contains("write Gain=7")));
}

TEST_F(ApplyUpdate, FeatureWriteOfACommandExecutesIt)
{
    EXPECT_EQ(Apply(Step("FeatureWrite", "<FeatureName>Activate</FeatureName><Value>1</Value>")), "nothing");
    EXPECT_THAT(journal, Contains("write Activate=1"));
}

TEST_F(ApplyUpdate, FeatureWriteIsVerified)
{
    EXPECT_THAT(Apply(WriteGain("99999999999")), testing::StartsWith("OutOfRangeException: "));
    EXPECT_THAT(StepsOfJournal(), ElementsAre("step 2 0 'FeatureWrite'"));
    EXPECT_THAT(
        Apply(Step("FeatureWrite", "<FeatureName>DeviceVendorName</FeatureName><Value>x</Value>")),
        testing::StartsWith("AccessException: "));
}

TEST_F(ApplyUpdate, MissingFeatureIsALogicalError)
{
    const std::string missing = "<FeatureName>Missing</FeatureName>";
    const std::string refusal = "LogicalErrorException: The device has no feature 'Missing'";
    EXPECT_EQ(Apply(Step("FeatureWrite", missing + "<Value>1</Value>")), refusal);
    EXPECT_EQ(Apply(Step("FeatureExecute", missing)), refusal);
    EXPECT_EQ(Apply(Step("FeatureAssert", missing + "<AssertPattern/>")), refusal);
    EXPECT_EQ(observer.errorText, "The device has no feature 'Missing'");
}

TEST_F(ApplyUpdate, FeatureWithoutValueIsALogicalError)
{
    EXPECT_EQ(
        Apply(Step("FeatureWrite", "<FeatureName>Device</FeatureName><Value>1</Value>")),
        "LogicalErrorException: The device has no feature 'Device'");
}

TEST_F(ApplyUpdate, FeatureExecuteTakesCommandsOnly)
{
    EXPECT_EQ(
        Apply(Step("FeatureExecute", "<FeatureName>Gain</FeatureName>")),
        "LogicalErrorException: The feature 'Gain' of the device 'Acme #7' is no command");
}

TEST_F(ApplyUpdate, FeatureExecuteWaitsUntilTheDeviceIsDone)
{
    camera.polls = 3;
    EXPECT_EQ(Apply(Step("FeatureExecute", "<FeatureName>Activate</FeatureName>") + WriteGain("1")), "nothing");
    EXPECT_THAT(
        StepsOfJournal(), ElementsAre(
                              "step 3 0 'FeatureExecute'", "write Activate=1", "step end 3 0",
                              "step 2 0 'FeatureWrite'", "write Gain=1", "step end 2 0"));
}

TEST_F(ApplyUpdate, FeatureExecuteEndsByItsLimit)
{
    camera.polls = 1 << 30;
    EXPECT_EQ(
        Apply(Step(
            "FeatureExecute", "<FeatureName>Activate</FeatureName>"
                              "<MaximumExecutionTimeoutMs>1</MaximumExecutionTimeoutMs>")),
        "RuntimeException: The device 'Acme #7' did not finish the command 'Activate' within 1 ms");
    EXPECT_EQ(journal.back(), "error");
}

TEST_F(ApplyUpdate, FeatureAssertNeedsAMatchWithinTheText)
{
    const auto assertion = [](const std::string& pattern) {
        return Step(
            "FeatureAssert",
            "<FeatureName>DeviceFirmwareVersion</FeatureName><AssertPattern>" + pattern + "</AssertPattern>");
    };
    EXPECT_EQ(Apply(assertion("1\\.2")), "nothing");
    EXPECT_EQ(Apply(assertion("")), "nothing");
    EXPECT_EQ(
        Apply(assertion("^1")), "RuntimeException: The feature 'DeviceFirmwareVersion' of the device 'Acme #7' is "
                                "'V1.2', which does not match '^1'");
    EXPECT_EQ(
        Apply(assertion("(")), "RuntimeException: The pattern '(' is broken at byte 1: missing closing parenthesis");
}

TEST_F(ApplyUpdate, FeatureAssertTellsItsMessage)
{
    const std::string start = "<FeatureName>Gain</FeatureName><AssertPattern>9</AssertPattern>";
    EXPECT_EQ(
        Apply(Step("FeatureAssert", start + "<Message>100 % wrong %s</Message>")), "RuntimeException: 100 % wrong %s");
    EXPECT_EQ(observer.errorText, "100 % wrong %s");
    EXPECT_EQ(
        Apply(Step("FeatureAssert", start + "<Message></Message>")),
        "RuntimeException: The feature 'Gain' of the device 'Acme #7' is '0', which does not match '9'");
}

TEST_F(ApplyUpdate, UnreadableFeatureFailsItsAssertion)
{
    EXPECT_THAT(
        Apply(Step("FeatureAssert", "<FeatureName>Secret</FeatureName><AssertPattern/>")),
        testing::StartsWith("AccessException: "));
}

TEST_F(ApplyUpdate, UploadOpensWritesBlocksAndCloses)
{
    const std::string content = std::string(64, 'a') + "tail";
    EXPECT_EQ(Apply(Upload("a.bin"), {{"a.bin", content}}), "nothing");
    EXPECT_EQ(camera.file, content);
    EXPECT_THAT(
        StepsOfJournal(),
        ElementsAre(
            "step 5 0 'FileUpload'", "write FileSelector=1", "write OpenMode=1", "write Operation=0", "write Execute=1",
            "read Status", "write FileSelector=1", "write Operation=3", "write Offset=0", "write Length=64",
            "write Buffer[64]", "write Execute=1", "read Result", "read Status", "write Offset=64", "write Length=4",
            "write Buffer[4]", "write Execute=1", "read Result", "read Status", "progress 5 100",
            "write FileSelector=1", "write Operation=1", "write Execute=1", "read Status", "step end 5 0"));
}

TEST_F(ApplyUpdate, UploadGoesOnBehindWhatTheDeviceTook)
{
    camera.takes = 10;
    const std::string content = "0123456789abcdefghijklmnop";
    EXPECT_EQ(Apply(Upload("a.bin"), {{"a.bin", content}}), "nothing");
    EXPECT_EQ(camera.file, content);
    EXPECT_THAT(journal, Contains("write Offset=20"));
}

// Descriptions that let the answers of an operation be cached are wrong, and in the field.
TEST_F(ApplyUpdate, UploadAsksForEachAnswerAnew)
{
    std::string elements = camera.Elements();
    for (const char* const answer : {"FileOperationStatusReg", "FileOperationResult"})
    {
        const std::string uncached = "NoCache";
        const size_t node = elements.find("Name=\"" + std::string(answer) + "\"");
        elements.replace(elements.find(uncached, node), uncached.size(), "WriteThrough");
    }
    camera.Describe(elements);
    camera.takes = 10;
    const std::string content = "0123456789abcdefghijklmnop";
    EXPECT_EQ(Apply(Upload("a.bin"), {{"a.bin", content}}), "nothing");
    EXPECT_EQ(camera.file, content);
    camera.refusesFrom = 20;
    EXPECT_THAT(Apply(Upload("a.bin"), {{"a.bin", content}}), HasSubstr("The device answered 'Failure'"));
}

TEST_F(ApplyUpdate, UploadWaitsForEachOperation)
{
    camera.polls = 2;
    EXPECT_EQ(Apply(Upload("a.bin"), {{"a.bin", "xyz"}}), "nothing");
    EXPECT_EQ(camera.file, "xyz");
}

TEST_F(ApplyUpdate, EmptyUploadReportsNoProgress)
{
    EXPECT_EQ(Apply(Upload("a.bin"), {{"a.bin", ""}}), "nothing");
    EXPECT_THAT(journal, Not(Contains("write Execute=1").Times(testing::Gt(2))));
    EXPECT_THAT(journal, Not(Contains(testing::StartsWith("progress"))));
    EXPECT_THAT(journal, Contains("write Operation=1"));
}

TEST_F(ApplyUpdate, OneFileMayBeUploadedTwice)
{
    EXPECT_EQ(Apply(Upload("a.bin") + Upload("a.bin", "UserFile"), {{"a.bin", "xyz"}}), "nothing");
    EXPECT_THAT(journal, Contains("write FileSelector=0"));
    EXPECT_EQ(camera.file, "xyz");
}

TEST_F(ApplyUpdate, UnknownDeviceFileIsAnArgumentError)
{
    EXPECT_THAT(
        Apply(Upload("a.bin", "Bootloader"), {{"a.bin", "x"}}), testing::StartsWith("InvalidArgumentException: "));
    EXPECT_THAT(journal, Not(Contains("write Execute=1")));
}

TEST_F(ApplyUpdate, RefusedOpenEndsTheUpload)
{
    camera.failingOperation = FirmwareCamera::Open;
    EXPECT_EQ(
        Apply(Upload("a.bin"), {{"a.bin", "x"}}),
        "RuntimeException: The device answered 'Failure' to the operation 'Open' on its file 'Firmware'");
    EXPECT_THAT(journal, Not(Contains("write Operation=3")));
}

TEST_F(ApplyUpdate, RefusedCloseFailsTheUpload)
{
    camera.failingOperation = FirmwareCamera::Close;
    EXPECT_EQ(
        Apply(Upload("a.bin"), {{"a.bin", "x"}}),
        "RuntimeException: The device answered 'Failure' to the operation 'Close' on its file 'Firmware'");
    EXPECT_THAT(journal, Not(Contains("step end 5 0")));
}

TEST_F(ApplyUpdate, UploadThatFailsHalfWayClosesTheFileAndEndsTheUpdate)
{
    camera.refusesFrom = 64;
    EXPECT_EQ(
        Apply(Upload("a.bin") + WriteGain("7"), {{"a.bin", std::string(200, 'a')}}),
        "RuntimeException: The device answered 'Failure' to the operation 'Write' on its file 'Firmware'");
    const Journal tail(journal.end() - 5, journal.end());
    EXPECT_THAT(
        tail, ElementsAre("write FileSelector=1", "write Operation=1", "write Execute=1", "read Status", "error"));
    EXPECT_THAT(journal, Not(Contains("progress 5 100")));
    EXPECT_THAT(journal, Not(Contains("write Gain=7")));
}

TEST_F(ApplyUpdate, DeviceThatTakesNothingOrTooMuchFailsTheUpload)
{
    camera.takes = 0;
    EXPECT_EQ(
        Apply(Upload("a.bin"), {{"a.bin", "xyz"}}),
        "RuntimeException: The device took 0 of 3 bytes at 0 of its file 'Firmware'");
    camera.takes = 3;
    camera.claims = 2;
    EXPECT_EQ(
        Apply(Upload("a.bin"), {{"a.bin", "xyz"}}),
        "RuntimeException: The device took 5 of 3 bytes at 0 of its file 'Firmware'");
}

TEST_F(ApplyUpdate, FailingPortWithinAnUploadIsTold)
{
    camera.failingWrite = FirmwareCamera::Buffer;
    EXPECT_EQ(Apply(Upload("a.bin"), {{"a.bin", "xyz"}}), "std::exception: the port does not write");
    EXPECT_EQ(observer.errorText, "the port does not write");
}

TEST_F(ApplyUpdate, DeviceWithoutFileFeaturesFailsTheUpload)
{
    std::string elements = camera.Elements();
    elements.replace(elements.find("FileOpenMode"), 12, "FileOpenMood");
    camera.Describe(elements);
    EXPECT_EQ(
        Apply(Upload("a.bin"), {{"a.bin", "x"}}),
        "LogicalErrorException: The device has no feature 'FileOpenMode' to access its files with");
}

TEST(ApplyUpdateProgress, LargeUploadsTellTheirProgressAsTheyGoOn)
{
    Journal journal;
    FirmwareCamera camera(journal, 16384);
    UpdatableCamera device(camera);
    RecordingObserver observer(journal);
    std::string content;
    for (uint32_t value = 1; content.size() < 200000; value = value * 69069 + 1)
        content += static_cast<char>(value >> 24);
    const UpdateFileOnDisk file = WithControl(Control(Procedure(Upload("a.bin")) + Update()), {{"a.bin", content}});
    EXPECT_EQ(Thrown([&] { CFirmwareUpdater().ApplyUpdate(&device, ReadAll(file).at(0), &observer); }), "nothing");
    EXPECT_EQ(camera.file, content);
    Journal progress;
    std::copy_if(journal.begin(), journal.end(), std::back_inserter(progress), [](const std::string& line) {
        return line.rfind("progress", 0) == 0;
    });
    EXPECT_THAT(progress, ElementsAre("progress 5 32.768", "progress 5 65.536", "progress 5 98.304", "progress 5 100"));
}

TEST_F(ApplyUpdate, ResetIsTheDevicesAndGivesTheMapOfTheNextSteps)
{
    FirmwareCamera after(journal);
    FirmwareCamera* const before = &camera;
    device.onReset = [&] { before->failingWrite = FirmwareCamera::Gain; };
    class Resetting : public UpdatableCamera
    {
    public:
        Resetting(FirmwareCamera& used, FirmwareCamera& next) : UpdatableCamera(used), other(next) {}
        INodeMap* DeviceResetWhileUpdatingFirmware(unsigned int duration_ms, unsigned int delay_ms) override
        {
            UpdatableCamera::DeviceResetWhileUpdatingFirmware(duration_ms, delay_ms);
            return other.map;
        }
        FirmwareCamera& other;
    };
    Resetting resetting(camera, after);
    const UpdateFileOnDisk file = WithControl(Control(
        Procedure(
            Step(
                "DeviceReset", "<ExpectedDurationMs>30</ExpectedDurationMs>"
                               "<DeviceDiscoveryDelayMs>40</DeviceDiscoveryDelayMs>") +
            WriteGain("7")) +
        Update()));
    EXPECT_EQ(Thrown([&] { CFirmwareUpdater().ApplyUpdate(&resetting, ReadAll(file).at(0), &observer); }), "nothing");
    EXPECT_THAT(journal, Contains("Reset(30, 40)"));
    EXPECT_EQ(after.Number(FirmwareCamera::Gain), 7u);
    EXPECT_EQ(camera.Number(FirmwareCamera::Gain), 0u);
}

TEST_F(ApplyUpdate, ResetWithoutDelayWaitsForNothing)
{
    EXPECT_EQ(Apply(Step("DeviceReset")), "nothing");
    EXPECT_THAT(StepsOfJournal(), ElementsAre("step 6 0 'DeviceReset'", "Reset(0, 0)", "step end 6 0"));
}

TEST_F(ApplyUpdate, DeviceThatStaysAwayEndsTheUpdate)
{
    device.throwsAt = "Reset(0, 0)";
    EXPECT_EQ(Apply(Step("DeviceReset") + WriteGain("7")), "std::exception: the device is gone");
    EXPECT_EQ(journal.back(), "error");

    device.throwsAt = "";
    device.hasMapAfterReset = false;
    EXPECT_EQ(
        Apply(Step("DeviceReset") + WriteGain("7")),
        "RuntimeException: The device 'Acme #7' has no node map after its reset");
    EXPECT_THAT(journal, Not(Contains("write Gain=7")));
}

TEST_F(ApplyUpdate, FailureIsToldOnceAndLeavesNoEndAndNoCleanup)
{
    EXPECT_EQ(Apply(WriteGain("1") + WriteGain("one") + WriteGain("2")).substr(0, 9), "InvalidAr");
    EXPECT_THAT(
        StepsOfJournal(),
        ElementsAre("step 2 0 'FeatureWrite'", "write Gain=1", "step end 2 0", "step 2 0 'FeatureWrite'"));
    EXPECT_EQ(journal.back(), "error");
    EXPECT_EQ(std::count(journal.begin(), journal.end(), "error"), 1);
    EXPECT_THAT(journal, Not(Contains("Cleanup")));
}

TEST_F(ApplyUpdate, FailuresOfTheDeviceGoThroughUnchanged)
{
    for (const std::string call : {"GetDisplayName", "Prepare", "GetNodeMap"})
    {
        journal.clear();
        device.throwsAt = call;
        EXPECT_EQ(Apply(""), "std::exception: the device is gone");
        EXPECT_EQ(observer.errorText, "the device is gone");
        EXPECT_EQ(journal.back(), "error");
    }
    device.thrown = [] { throw TIMEOUT_EXCEPTION("not found again"); };
    EXPECT_EQ(Apply(""), "another GenericException: not found again");
    EXPECT_EQ(observer.errorText, "not found again");
    EXPECT_EQ(journal.back(), "error");
    device.thrown = [] { throw 5; };
    EXPECT_EQ(Apply(""), "something else");
    EXPECT_EQ(observer.errorText, "Unknown exception");
    EXPECT_EQ(journal.back(), "error");
}

TEST_F(ApplyUpdate, FailureWithoutObserverGoesUp)
{
    told = nullptr;
    device.throwsAt = "Prepare";
    EXPECT_EQ(Apply(""), "std::exception: the device is gone");
    EXPECT_THAT(journal, ElementsAre("GetDisplayName", "Prepare"));
}

TEST_F(ApplyUpdate, FailingCleanupGoesUpBehindTheEndReport)
{
    device.throwsAt = "Cleanup";
    EXPECT_EQ(Apply(""), "std::exception: the device is gone");
    EXPECT_EQ(journal[journal.size() - 2], "end");
    EXPECT_EQ(journal.back(), "Cleanup");
}

TEST_F(ApplyUpdate, ObserverThatThrowsAtTheBeginAbortsTheUpdate)
{
    observer.throwsAt = "begin";
    EXPECT_EQ(Apply(WriteGain("7")), "std::exception: the observer gives up at begin");
    EXPECT_THAT(journal, ElementsAre("GetDisplayName", "Prepare", "begin 2.0 20", "error"));
}

TEST_F(ApplyUpdate, ObserverThatThrowsAtTheEndFailsTheUpdate)
{
    observer.throwsAt = "end";
    EXPECT_EQ(Apply(WriteGain("7")), "std::exception: the observer gives up at end");
    EXPECT_EQ(journal.back(), "error");
    EXPECT_THAT(journal, Not(Contains("Cleanup")));
}

TEST_F(ApplyUpdate, OtherReportsThatThrowAreSwallowed)
{
    for (const std::string report : {"step", "progress", "step end"})
    {
        journal.clear();
        observer.throwsAt = report;
        EXPECT_EQ(Apply(Upload("a.bin") + WriteGain("7"), {{"a.bin", "x"}}), "nothing");
        EXPECT_EQ(journal.back(), "Cleanup");
    }
    observer.throwsAt = "error";
    device.throwsAt = "Prepare";
    EXPECT_EQ(Apply(""), "std::exception: the device is gone");
}

TEST_F(ApplyUpdate, InformationMayGoWhileItIsApplied)
{
    const UpdateFileOnDisk file = WithControl(Control(Procedure(Step("DeviceReset") + WriteGain("7")) + Update()));
    auto infos = std::make_unique<std::vector<CFirmwareUpdateInfo>>(ReadAll(file));
    device.onReset = [&] { infos.reset(); };
    EXPECT_EQ(Thrown([&] { CFirmwareUpdater().ApplyUpdate(&device, infos->at(0), &observer); }), "nothing");
    EXPECT_EQ(camera.Number(FirmwareCamera::Gain), 7u);
}

// Conditions, by way of the question whether an update fits.
class FirmwareUpdateMatchesDevice : public testing::Test
{
protected:
    bool Match(const std::string& conditions)
    {
        const auto infos = ReadAll(WithControl(Control(Procedure("") + Update(neededEntries, conditions))));
        return CFirmwareUpdater().FirmwareUpdateMatchesDevice(camera.map, infos.at(0));
    }
    bool Match(const std::string& feature, const std::string& pattern)
    {
        return Match("<Condition Feature=\"" + feature + "\">" + pattern + "</Condition>");
    }

    Journal journal;
    FirmwareCamera camera{journal};
};

TEST_F(FirmwareUpdateMatchesDevice, PatternIsSearchedWithinTheText)
{
    EXPECT_TRUE(Match("DeviceVendorName", "me V"));
    EXPECT_TRUE(Match("DeviceVendorName", "^Acme Vision$"));
    EXPECT_FALSE(Match("DeviceVendorName", "^Vision"));
    EXPECT_FALSE(Match("DeviceVendorName", "acme"));
    EXPECT_TRUE(Match("DeviceVendorName", ""));
}

TEST_F(FirmwareUpdateMatchesDevice, EveryConditionHasToHold)
{
    const std::string vendor = "<Condition Feature=\"DeviceVendorName\">Acme</Condition>";
    EXPECT_TRUE(Match(vendor + "<Condition Feature=\"DeviceFirmwareVersion\">^V1</Condition>"));
    EXPECT_FALSE(Match(vendor + "<Condition Feature=\"DeviceFirmwareVersion\">^V2</Condition>"));
    EXPECT_FALSE(Match("<Condition Feature=\"DeviceFirmwareVersion\">^V2</Condition>" + vendor));
}

TEST_F(FirmwareUpdateMatchesDevice, NumbersMatchByTheirText)
{
    camera.SetNumber(FirmwareCamera::Gain, 42);
    EXPECT_TRUE(Match("Gain", "^42$"));
}

TEST_F(FirmwareUpdateMatchesDevice, MissingAndUnreadableFeaturesAreNoMatch)
{
    EXPECT_FALSE(Match("Missing", ""));
    EXPECT_FALSE(Match("Secret", ""));
    EXPECT_FALSE(Match("Device", ""));
    camera.failingRead = FirmwareCamera::Vendor;
    EXPECT_FALSE(Match("DeviceVendorName", ""));
}

TEST_F(FirmwareUpdateMatchesDevice, BrokenAndExplodingPatternsAreNoMatch)
{
    EXPECT_FALSE(Match("DeviceVendorName", "("));
    camera.SetText(FirmwareCamera::Vendor, std::string(60, 'a'));
    EXPECT_FALSE(Match("DeviceVendorName", "^(a+)+b"));
}

TEST_F(FirmwareUpdateMatchesDevice, NullMapIsAnArgumentError)
{
    EXPECT_EQ(
        Thrown([] { CFirmwareUpdater().FirmwareUpdateMatchesDevice(nullptr, CFirmwareUpdateInfo()); }),
        "InvalidArgumentException: There is no node map to match an update with");
}

TEST_F(FirmwareUpdateMatchesDevice, InformationWithoutConditionsMatches)
{
    EXPECT_TRUE(CFirmwareUpdater().FirmwareUpdateMatchesDevice(camera.map, CFirmwareUpdateInfo()));
}

} // namespace
