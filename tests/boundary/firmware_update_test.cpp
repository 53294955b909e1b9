// Updates from end to end on a scripted camera: what is written and reported, and how each way of failing ends.
#include "tests/boundary/firmware_test.h"

#include <algorithm>
#include <gmock/gmock.h>

namespace koro::test
{

using namespace firmware;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{

class FirmwareUpdate : public FirmwareTest
{
protected:
    // The camera leaves when it is closed for its reset.
    void GoAwayAtReset()
    {
        producer->OnEntry("DevClose", [this] {
            EditDevices([this](Devices& devices) {
                if (away) return;
                away = devices.front();
                devices.erase(devices.begin());
            });
        });
    }
    void ComeBack()
    {
        EditDevices([this](Devices& devices) { devices.insert(devices.begin(), away); });
    }

    Error NotReopened(std::uint64_t timeout_ms) const
    {
        return {
            KORO_RETURN_CODE_TIMEOUT, "Device could not be reopened within " + std::to_string(timeout_ms) +
                                          " ms after reset (Device Key: " + key + ")!"};
    }

    bool IsDescriptorValid() const
    {
        KORO_Bool8 isOpenable = 0;
        const Error outcome = Outcome(KORO_DeviceDescriptor_GetIsOpenableExclusive(tree.deviceDescriptor, &isOpenable));
        return outcome != InvalidHandle("deviceDescriptorHandle");
    }

    std::string Buffer() const
    {
        std::string bytes;
        EditDevices([&](Devices& devices) {
            bytes = devices[0]->remotePort.registers.at(vendorAddress).substr(bufferAddress - vendorAddress);
        });
        return bytes;
    }

    // The second of two steps fails, since `end` has come between them. Nothing stays open.
    void ExpectNoEndBy(const std::function<void()>& end)
    {
        Strings openMeanwhile;
        observer.onReport = [&](const std::string& report) {
            if (report != "step 2 finished") return;
            end();
            openMeanwhile = producer->Open();
        };
        EXPECT_EQ(Apply(FileWithSteps(WriteGain("7") + WriteGain("8"))), Error{});
        EXPECT_EQ(observer.reports.back(), "finished");
        EXPECT_EQ(Gain(), 8u);
        EXPECT_THAT(openMeanwhile, Contains("system"));
        EXPECT_EQ(producer->Open(), Strings{});
    }

    const std::string key = GetText(KORO_DeviceDescriptor_GetKey, tree.deviceDescriptor);
    const Strings nothingOpen = {"if0", "system"};
    std::shared_ptr<scripted::Device> away;
};

} // namespace

TEST_F(FirmwareUpdate, StepsRunInTheirOrderAndAreTold)
{
    const UpdateFileOnDisk file = FileWithSteps(
        Step(
            "FeatureWrite",
            "<ExpectedDurationMs>5</ExpectedDurationMs><FeatureName>Gain</FeatureName><Value>7</Value>") +
            UploadStep("a.bin") + ResetStep(),
        {{"a.bin", std::string(bufferLength, 'x') + "rest"}});
    EXPECT_EQ(Apply(file), Error{});
    EXPECT_EQ(Gain(), 7u);
    EXPECT_EQ(Buffer(), "rest" + std::string(bufferLength - 4, 'x'));
    EXPECT_THAT(
        observer.reports,
        ElementsAre(
            "started 2.0, 25 ms", "step 0, 10 ms: ''", "step 0 finished", "step 1, 10 ms: ''", "step 1 finished",
            "step 2, 5 ms: 'FeatureWrite'", "step 2 finished", "step 5, 0 ms: 'FileUpload'", "step 5 at 100 %",
            "step 5 finished", "step 6, 0 ms: 'DeviceReset'", "step 6 finished", "finished"));
    EXPECT_THAT(
        Calls({"IFOpenDevice", "DevClose", "IFUpdateDeviceList"}),
        ElementsAre(
            "IFOpenDevice(if0, if0-dev0, 3)", "DevClose(if0-dev0)", "IFUpdateDeviceList(if0, 200)",
            "IFOpenDevice(if0, if0-dev0, 3)", "DevClose(if0-dev0)"));
    EXPECT_EQ(producer->Open(), nothingOpen);
    EXPECT_EQ(
        Calls({"GCWritePort"}),
        (Strings{
            Written(gainAddress), Written(selectorAddress), Written(openModeAddress), Written(operationAddress),
            Written(executeAddress), Written(selectorAddress), Written(operationAddress), Written(offsetAddress),
            Written(lengthAddress), Written(bufferAddress, bufferLength), Written(executeAddress),
            Written(offsetAddress), Written(lengthAddress), Written(bufferAddress, 4), Written(executeAddress),
            Written(selectorAddress), Written(operationAddress), Written(executeAddress), Written(resetAddress)}));
}

TEST_F(FirmwareUpdate, DescriptionsAreToldInEnglishIfThereIsSome)
{
    const std::string step = "<FeatureWrite><Description Lang=\"de\">Verstärken</Description>"
                             "<Description>Gain</Description><Description Lang=\"en\">Amplify</Description>"
                             "<FeatureName>Gain</FeatureName><Value>7</Value></FeatureWrite>";
    EXPECT_EQ(Apply(FileWithSteps(step)), Error{});
    EXPECT_THAT(observer.reports, Contains("step 2, 0 ms: 'Amplify'"));
}

TEST_F(FirmwareUpdate, WithoutAnObserverRunsWithoutReports)
{
    Require(CollectAll(FileWithSteps(WriteGain("1")).path));
    const UpdateFileOnDisk file = FileWithSteps(WriteGain("7"));
    Require(CollectAll(file.path));
    EXPECT_EQ(Outcome(KORO_FirmwareUpdater_UpdateDevice(updater, tree.deviceDescriptor, Found(), nullptr)), Error{});
    EXPECT_EQ(Gain(), 7u);
    EXPECT_THAT(observer.reports, ElementsAre());
}

TEST_F(FirmwareUpdate, HandlesAreCheckedOneAfterTheOther)
{
    Require(CollectAll(FileWithSteps("").path));
    const auto information = Found();
    const auto dead = observer.handle;
    Require(KORO_FirmwareUpdateProgressObserver_Destruct(dead));
    const auto update = [&](auto usedUpdater, auto descriptor, auto usedInformation) {
        const Error outcome =
            Outcome(KORO_FirmwareUpdater_UpdateDevice(usedUpdater, descriptor, usedInformation, dead));
        EXPECT_EQ(
            Outcome(
                KORO_FirmwareUpdater_UpdateDeviceWithResetTimeout(usedUpdater, descriptor, usedInformation, dead, 0)),
            outcome);
        return outcome;
    };
    EXPECT_EQ(update(nullptr, nullptr, nullptr), InvalidHandle("firmwareUpdaterHandle"));
    EXPECT_EQ(update(updater, nullptr, nullptr), InvalidHandle("deviceDescriptorHandle"));
    EXPECT_EQ(update(updater, tree.deviceDescriptor, nullptr), InvalidHandle("firmwareUpdateInformationHandle"));
    EXPECT_EQ(
        update(updater, tree.deviceDescriptor, information), InvalidHandle("firmwareUpdateProgressObserverHandle"));
    EXPECT_EQ(Calls({"IFOpenDevice"}), Strings());
}

TEST_F(FirmwareUpdate, InformationOfAnotherUpdaterOrOfAnotherTimeWillDo)
{
    const UpdateFileOnDisk file = FileWithSteps(WriteGain("7"));
    Require(CollectAll(file.path));
    const auto information = Found();
    Require(CollectAll(FileWithSteps("").path));
    KORO_FirmwareUpdaterHandle another = nullptr;
    Require(KORO_FirmwareUpdater_Construct(&another));
    EXPECT_EQ(
        Outcome(KORO_FirmwareUpdater_UpdateDevice(another, tree.deviceDescriptor, information, nullptr)), Error{});
    EXPECT_EQ(Gain(), 7u);
}

TEST_F(FirmwareUpdate, UpdaterIsFreeWhileItUpdates)
{
    EditDevices([](Devices& devices) { MakeUpdatable(*devices[1]); });
    const auto second = Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, tree.interface, std::size_t{1});
    const UpdateFileOnDisk another = FileWithSteps(WriteGain("8") + ResetStep());
    observer.onReport = [&](const std::string& report) {
        if (report != "step 2 finished") return;
        Require(CollectAll(another.path));
        EXPECT_EQ(Outcome(KORO_FirmwareUpdater_UpdateDevice(updater, second, Found(), nullptr)), Error{});
    };
    EXPECT_EQ(Apply(FileWithSteps(WriteGain("7") + ResetStep())), Error{});
    EXPECT_EQ(observer.reports.back(), "finished");
    EXPECT_EQ(Gain(), 7u);
    EXPECT_EQ(Gain(1), 8u);
    EXPECT_EQ(producer->Open(), nothingOpen);
}

TEST_F(FirmwareUpdate, CameraTakesOneUpdateAtATime)
{
    const UpdateFileOnDisk file = FileWithSteps(WriteGain("7"));
    Error second;
    observer.onReport = [&](const std::string& report) {
        if (report != "step 2 finished") return;
        second = Outcome(KORO_FirmwareUpdater_UpdateDevice(updater, tree.deviceDescriptor, Found(), nullptr));
    };
    EXPECT_EQ(Apply(file), Error{});
    EXPECT_EQ(second, CallFailure("IFOpenDevice", ProducerErrorOf(GenTL::GC_ERR_RESOURCE_IN_USE)));
    EXPECT_EQ(observer.reports.back(), "finished");
    EXPECT_EQ(producer->Open(), nothingOpen);
}

TEST_F(FirmwareUpdate, MatchIsNotRepeatedHereButByTheRuntime)
{
    // Collected without a camera, so nothing has compared them yet. What decides are the conditions of the update.
    const UpdateFileOnDisk file = WithControl(
        Control(Procedure(WriteGain("7")) + UpdateOf("1", "Other") + Update(neededEntries, fittingCondition)));
    EXPECT_THAT(Apply(file).text, HasSubstr("The update does not match the device 'ZVR Scripted camera (if0-dev0)'"));
    EXPECT_EQ(LastError().code, KORO_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(Gain(), 0u);
    EXPECT_THAT(observer.reports.back(), StartsWith("failed: The update does not match the device"));
    EXPECT_EQ(producer->Open(), nothingOpen);

    EXPECT_EQ(Outcome(KORO_FirmwareUpdater_UpdateDevice(updater, tree.deviceDescriptor, Found(1), nullptr)), Error{});
    EXPECT_EQ(Gain(), 7u);
}

TEST_F(FirmwareUpdate, CameraThatIsOpenElsewhereIsRefused)
{
    producer->Answer("IFOpenDevice", GenTL::GC_ERR_RESOURCE_IN_USE);
    const Error refusal = CallFailure("IFOpenDevice", ProducerErrorOf(GenTL::GC_ERR_RESOURCE_IN_USE));
    EXPECT_EQ(Apply(FileWithSteps("")), refusal);
    EXPECT_THAT(observer.reports, ElementsAre("failed: " + refusal.text));
}

TEST_F(FirmwareUpdate, CameraWithoutASerialNumberIsRefusedBeforeItIsOpened)
{
    EditDevices([](Devices& devices) {
        devices[0]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER] = scripted::Failing(GenTL::GC_ERR_NOT_AVAILABLE);
    });
    const Error outcome = Apply(FileWithSteps(WriteGain("7")));
    EXPECT_NE(outcome.code, KORO_RETURN_CODE_SUCCESS);
    EXPECT_THAT(outcome.text, HasSubstr("GC_ERR_NOT_AVAILABLE"));
    EXPECT_THAT(observer.reports, ElementsAre());
    EXPECT_THAT(Calls({"IFOpenDevice"}), ElementsAre());
}

TEST_F(FirmwareUpdate, CameraThatIsLostDuringTheTransferEndsIt)
{
    int blocks = 0;
    producer->OnEntry("GCWritePort", [&] {
        if (producer->Journal().back() != Written(bufferAddress, bufferLength) || ++blocks < 3) return;
        GoAwayAtReset();
        for (const auto* function : {"GCWritePort", "GCReadPort"})
            producer->Answer(function, GenTL::GC_ERR_IO);
    });
    const Error lost = CallFailure("GCWritePort", ProducerErrorOf(GenTL::GC_ERR_IO));
    EXPECT_EQ(
        Apply(FileWithSteps(UploadStep("a.bin") + ResetStep(), {{"a.bin", std::string(10 * bufferLength, 'x')}})),
        lost);
    EXPECT_EQ(blocks, 3);
    EXPECT_EQ(observer.reports.back(), "failed: " + lost.text);
    EXPECT_THAT(observer.reports, Not(Contains("step 5 finished")));
    EXPECT_THAT(Calls({"IFUpdateDeviceList"}), ElementsAre());
    EXPECT_EQ(producer->Open(), nothingOpen);

    // Back again, it can be updated: nothing of the failed update is left.
    ASSERT_TRUE(away);
    for (const auto* function : {"GCWritePort", "GCReadPort"})
        producer->AnswerAsUsual(function);
    producer->OnEntry("GCWritePort", {});
    producer->OnEntry("DevClose", {});
    ComeBack();
    EXPECT_EQ(Apply(FileWithSteps(WriteGain("7"))), Error{});
    EXPECT_EQ(Gain(), 7u);
}

TEST_F(FirmwareUpdate, FailingStepHasTheCodeOfItsCause)
{
    const auto outcomeOf = [&](const std::string& feature, const std::string& value) {
        const std::string content = "<FeatureName>" + feature + "</FeatureName><Value>" + value + "</Value>";
        const Error outcome = Apply(FileWithSteps(Step("FeatureWrite", content) + WriteGain("7")));
        EXPECT_THAT(observer.reports.back(), StartsWith("failed: "));
        EXPECT_THAT(observer.reports, Not(Contains("step 2 finished")));
        return outcome;
    };
    EXPECT_EQ(outcomeOf("Gain", "much").code, KORO_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(outcomeOf("Gain", "4294967296").code, KORO_RETURN_CODE_OUT_OF_RANGE);
    EXPECT_EQ(outcomeOf("DeviceVendorName", "Other").code, KORO_RETURN_CODE_BAD_ACCESS);
    const Error missing = outcomeOf("Nothing", "1");
    EXPECT_EQ(missing.code, KORO_RETURN_CODE_ERROR);
    EXPECT_THAT(missing.text, HasSubstr("The device has no feature 'Nothing'"));
    EXPECT_EQ(Gain(), 0u);
}

TEST_F(FirmwareUpdate, StepThatFailsHalfWayClosesTheFileAndEndsIt)
{
    // The third operation is the second block.
    int operations = 0;
    producer->OnEntry("GCWritePort", [&] {
        if (producer->Journal().back() != Written(executeAddress) || ++operations != 3) return;
        EditDevices([](Devices& devices) {
            devices[0]->remotePort.registers.at(vendorAddress).at(statusAddress - vendorAddress) = 1;
        });
    });
    const Error outcome =
        Apply(FileWithSteps(UploadStep("a.bin") + WriteGain("7"), {{"a.bin", std::string(3 * bufferLength, 'x')}}));
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
    const std::string reason = "The device answered 'Failure' to the operation 'Write' on its file 'Firmware'";
    EXPECT_THAT(outcome.text, HasSubstr(reason));
    EXPECT_EQ(observer.reports.back(), "failed: " + reason);
    EXPECT_EQ(operations, 4); // the last one closes
    EXPECT_EQ(Gain(), 0u);
    EXPECT_EQ(producer->Open(), nothingOpen);
}

TEST_F(FirmwareUpdate, CameraThatComesBackIsUpdatedToTheEnd)
{
    GoAwayAtReset();
    int updates = 0;
    producer->OnEntry("IFUpdateDeviceList", [&] {
        if (++updates == 2) ComeBack();
    });
    const UpdateFileOnDisk file = FileWithSteps(ResetStep() + WriteGain("7"));
    EXPECT_EQ(Apply(file, 60000), Error{});
    EXPECT_EQ(updates, 2);
    EXPECT_EQ(observer.reports.back(), "finished");
    EXPECT_EQ(Gain(), 7u);

    // The list of the interface has lost it meanwhile, and has a new descriptor of it.
    EXPECT_FALSE(IsDescriptorValid());
    tree.deviceDescriptor = Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, tree.interface, std::size_t{0});
    EXPECT_EQ(Outcome(KORO_FirmwareUpdater_UpdateDevice(updater, tree.deviceDescriptor, Found(), nullptr)), Error{});
}

TEST_F(FirmwareUpdate, CameraThatNeverReturnsEndsWithItsKey)
{
    GoAwayAtReset();
    EXPECT_EQ(Apply(FileWithSteps(WriteGain("7") + ResetStep() + WriteGain("8"))), NotReopened(0));
    EXPECT_EQ(observer.reports.back(), "failed: " + NotReopened(0).text);
    EXPECT_THAT(observer.reports, Not(Contains("step 6 finished")));
    EXPECT_THAT(
        Calls({"IFUpdateDeviceList", "IFOpenDevice"}),
        ElementsAre("IFOpenDevice(if0, if0-dev0, 3)", "IFUpdateDeviceList(if0, 200)"));
    EXPECT_EQ(producer->Open(), nothingOpen);
    EXPECT_FALSE(IsDescriptorValid());
}

TEST_F(FirmwareUpdate, InterfacesEndMeanwhileIsNoEndOfIt)
{
    observer.onReport = [&](const std::string& report) {
        if (report == "step 1 finished") Require(KORO_Interface_Destruct(tree.interface));
    };
    EXPECT_EQ(Apply(FileWithSteps(WriteGain("7") + ResetStep() + WriteGain("8"))), Error{});
    EXPECT_EQ(Gain(), 8u);
    EXPECT_EQ(observer.reports.back(), "finished");
    EXPECT_FALSE(IsDescriptorValid());
    EXPECT_EQ(producer->Open(), Strings{"system"});
}

TEST_F(FirmwareUpdate, EndOfTheSystemMeanwhileIsNoEndOfIt)
{
    ExpectNoEndBy([this] { Require(KORO_System_Destruct(tree.system)); });
}

TEST_F(FirmwareUpdate, EndOfTheProducerMeanwhileIsNoEndOfIt)
{
    ExpectNoEndBy([this] { Require(KORO_ProducerLibrary_Destruct(tree.producerLibrary)); });
}

TEST_F(FirmwareUpdate, FoundAndLostCallbacksRunDuringTheSearch)
{
    Strings events;
    KORO_DeviceLostCallbackHandle lost = nullptr;
    Require(KORO_Interface_RegisterDeviceLostCallback(
        tree.interface,
        [](const char* id, std::size_t size, void* context) {
            static_cast<Strings*>(context)->push_back("lost " + TextOf(id, size));
        },
        &events, &lost));
    GoAwayAtReset();
    Apply(FileWithSteps(ResetStep()));
    EXPECT_THAT(events, ElementsAre("lost if0-dev0"));
}

TEST_F(FirmwareUpdate, FileThatWasChangedSinceIsRefusedBeforeTheFirstStep)
{
    const UpdateFileOnDisk file = FileWithSteps(WriteGain("7"));
    Require(CollectAll(file.path));
    file.Replace(Container(Package(Control(Procedure(WriteGain("8")) + UpdateOf("2.0")))));
    const Error outcome = Outcome(KORO_FirmwareUpdater_UpdateDevice(updater, tree.deviceDescriptor, Found(), nullptr));
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
    EXPECT_THAT(outcome.text, HasSubstr("was changed since it was read"));
    EXPECT_EQ(Gain(), 0u);
    EXPECT_EQ(producer->Open(), nothingOpen);
}

TEST_F(FirmwareUpdate, ForeignExceptionOfTheProducerEndsItAsUnhandled)
{
    producer->OnEntry("GCWritePort", [] { throw 5; });
    EXPECT_EQ(Apply(FileWithSteps(WriteGain("7"))), (Error{KORO_RETURN_CODE_ERROR, "Unhandled exception!"}));
    EXPECT_EQ(producer->Open(), nothingOpen);
}

} // namespace koro::test
