// The six triggers of an observer, and the adapter by which the runtime fires them.
#include "firmware/firmware_update_information.h"
#include "firmware/firmware_update_progress_observer.h"
#include "firmware/genapi_firmware_update_progress_observer.h"
#include "tests/support/in_thread.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/genicam/firmware_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <system_error>

namespace koro::test
{

using namespace internal;
using namespace GENAPI_NAMESPACE;
using testing::ElementsAre;

namespace
{

class ProgressObserver : public testing::Test
{
protected:
    const std::shared_ptr<FirmwareUpdateProgressObserver> observer = std::make_shared<FirmwareUpdateProgressObserver>();
    GenApiFirmwareUpdateProgressObserver adapter{observer};
    // The runtime knows the interface alone.
    IFirmwareUpdateProgressObserver& runtime = adapter;
    std::vector<std::string> told;
};

constexpr auto upload = ProgressStepType_FileUpload;

std::string NumberOf(FirmwareUpdateStep step)
{
    return std::to_string(static_cast<int>(step));
}

} // namespace

TEST_F(ProgressObserver, EachReportFiresItsTriggerAlone)
{
    observer->updateStarted.RegisterCallback([&](const auto& information, std::uint32_t duration_ms) {
        told.push_back("started " + information->Version() + " " + std::to_string(duration_ms));
    });
    observer->updateStepStarted.RegisterCallback(
        [&](FirmwareUpdateStep step, std::uint32_t duration_ms, const std::string& description) {
            told.push_back("step " + NumberOf(step) + " " + std::to_string(duration_ms) + " " + description);
        });
    observer->updateStepProgressChanged.RegisterCallback([&](FirmwareUpdateStep step, double progress) {
        told.push_back("progress " + NumberOf(step) + " " + std::to_string(progress));
    });
    observer->updateStepFinished.RegisterCallback(
        [&](FirmwareUpdateStep step) { told.push_back("step finished " + NumberOf(step)); });
    observer->updateFinished.RegisterCallback([&] { told.push_back("finished"); });
    observer->updateFailed.RegisterCallback([&](const std::string& error) { told.push_back("failed " + error); });

    const auto info = ReadAll(WithControl(Control(Procedure("") + Update()))).at(0);
    runtime.OnFirmwareUpdateBegin(info, 4000000000u);
    EXPECT_THAT(told, ElementsAre("started 2.0 4000000000"));
    runtime.OnFirmwareUpdateProgressStepBegin(upload, 7, "Uploading");
    runtime.OnFirmwareUpdateProgressStepPartialProgress(upload, 12.5);
    runtime.OnFirmwareUpdateProgressStepEnd(upload, 7);
    runtime.OnFirmwareUpdateEnd();
    runtime.OnFirmwareUpdateError(GENICAM_NAMESPACE::GenericException("no more power", "file.cpp", 1));
    EXPECT_THAT(
        told, ElementsAre(
                  "started 2.0 4000000000", "step 5 7 Uploading", "progress 5 12.500000", "step finished 5", "finished",
                  "failed no more power"));
}

TEST_F(ProgressObserver, StepsThatNobodyKnowsAreHandedThrough)
{
    observer->updateStepFinished.RegisterCallback([&](FirmwareUpdateStep step) { told.push_back(NumberOf(step)); });
    for (const int step : {0, 7, 99, -1})
    {
        int number = step;
        runtime.OnFirmwareUpdateProgressStepEnd(reinterpret_cast<EFirmwareUpdateProgressStepType&>(number), 0);
    }
    EXPECT_THAT(told, ElementsAre("0", "7", "99", "-1"));
}

TEST_F(ProgressObserver, WithoutCallbacksIsToldForNothing)
{
    runtime.OnFirmwareUpdateBegin(CFirmwareUpdateInfo(), 0);
    runtime.OnFirmwareUpdateProgressStepBegin(upload, 0, "");
    runtime.OnFirmwareUpdateProgressStepPartialProgress(upload, 0);
    runtime.OnFirmwareUpdateProgressStepEnd(upload, 0);
    runtime.OnFirmwareUpdateEnd();
    runtime.OnFirmwareUpdateError(GENICAM_NAMESPACE::GenericException("", "", 0));
}

TEST_F(ProgressObserver, CallbacksOfOneReportGetTheSameInformation)
{
    std::vector<std::shared_ptr<FirmwareUpdateInformation>> informations;
    for (int i = 0; i < 2; ++i)
        observer->updateStarted.RegisterCallback(
            [&](const auto& information, std::uint32_t) { informations.push_back(information); });
    runtime.OnFirmwareUpdateBegin(CFirmwareUpdateInfo(), 0);
    ASSERT_EQ(informations.size(), 2u);
    EXPECT_EQ(informations[0], informations[1]);

    runtime.OnFirmwareUpdateBegin(CFirmwareUpdateInfo(), 0);
    EXPECT_NE(informations[0], informations[2]);
}

TEST_F(ProgressObserver, FailureOfACallbackEndsTheRoundAndGoesUp)
{
    int calls = 0;
    for (int i = 0; i < 2; ++i)
        observer->updateFinished.RegisterCallback([&] {
            ++calls;
            throw std::runtime_error("no");
        });
    EXPECT_THAT([&] { runtime.OnFirmwareUpdateEnd(); }, ThrowsExactly<std::runtime_error>("no"));
    EXPECT_EQ(calls, 1);
    EXPECT_THAT([&] { runtime.OnFirmwareUpdateEnd(); }, ThrowsExactly<std::runtime_error>("no"));
}

TEST_F(ProgressObserver, EmptyCallbackIsABadFunctionCall)
{
    observer->updateFinished.RegisterCallback({});
    EXPECT_THROW(runtime.OnFirmwareUpdateEnd(), std::bad_function_call);
}

TEST_F(ProgressObserver, TriggersHaveMutexesOfTheirOwn)
{
    observer->updateFinished.RegisterCallback([&] {
        EXPECT_THROW(observer->updateFinished.UnregisterCallback(nullptr), std::system_error);
        const auto other = observer->updateStepFinished.RegisterCallback([](FirmwareUpdateStep) {});
        // Neither does it block other threads there.
        InThread([&] { observer->updateStepFinished.UnregisterCallback(other); });
        told.push_back("finished");
    });
    runtime.OnFirmwareUpdateEnd();
    EXPECT_THAT(told, ElementsAre("finished"));
}

TEST_F(ProgressObserver, LivesAsLongAsItsAdapter)
{
    std::weak_ptr<FirmwareUpdateProgressObserver> weak;
    {
        auto own = std::make_shared<FirmwareUpdateProgressObserver>();
        weak = own;
        own->updateFinished.RegisterCallback([&] { told.push_back("finished"); });
        GenApiFirmwareUpdateProgressObserver keeping(own);
        own.reset();
        keeping.OnFirmwareUpdateEnd();
    }
    EXPECT_THAT(told, ElementsAre("finished"));
    EXPECT_TRUE(weak.expired());
}

} // namespace koro::test
