// Registering at an observer, by updates of a camera that do next to nothing.
#include "tests/boundary/firmware_test.h"
#include "tests/support/in_thread.h"

#include <gmock/gmock.h>
#include <thread>

namespace koro::test
{

namespace
{

using testing::ElementsAre;

using Observer = KORO_FirmwareUpdateProgressObserverHandle;

class FirmwareUpdateProgressObserver : public FirmwareTest
{
protected:
    FirmwareUpdateProgressObserver() { Require(KORO_FirmwareUpdateProgressObserver_Construct(&plain)); }

    // An update without steps.
    Error Update(Observer told) const
    {
        Require(CollectAll(file.path));
        return Outcome(KORO_FirmwareUpdater_UpdateDevice(updater, tree.deviceDescriptor, Found(), told));
    }

    // Counts the ends of updates.
    KORO_FirmwareUpdateFinishedCallbackHandle RegisterCounter(int& count) const
    {
        return Get<KORO_FirmwareUpdateFinishedCallbackHandle>(
            KORO_FirmwareUpdateProgressObserver_RegisterUpdateFinishedCallback, plain,
            +[](void* context) { ++*static_cast<int*>(context); }, static_cast<void*>(&count));
    }
    Error Unregister(KORO_FirmwareUpdateFinishedCallbackHandle callback) const
    {
        return Outcome(KORO_FirmwareUpdateProgressObserver_UnregisterUpdateFinishedCallback(plain, callback));
    }

    const UpdateFileOnDisk file = FileWithSteps("");
    Observer plain = nullptr; // without callbacks
};

// The pair of exports of one report, with a callback that does nothing.
template <class Callback, class CallbackHandle>
struct Pair
{
    using Register = KORO_ReturnCode (*)(Observer, Callback, void*, CallbackHandle*);
    using Unregister = KORO_ReturnCode (*)(Observer, CallbackHandle);

    Register registerCallback;
    Unregister unregisterCallback;
    Callback nothing;
};

template <class Try>
void ForEachPair(const Try& attempt)
{
    attempt(Pair<KORO_FirmwareUpdateStartedCallback, KORO_FirmwareUpdateStartedCallbackHandle>{
        KORO_FirmwareUpdateProgressObserver_RegisterUpdateStartedCallback,
        KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStartedCallback,
        [](KORO_FirmwareUpdateInformationHandle, std::uint32_t, void*) {}});
    attempt(Pair<KORO_FirmwareUpdateStepStartedCallback, KORO_FirmwareUpdateStepStartedCallbackHandle>{
        KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepStartedCallback,
        KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStepStartedCallback,
        [](KORO_FirmwareUpdateStep, std::uint32_t, const char*, std::size_t, void*) {}});
    attempt(Pair<KORO_FirmwareUpdateStepProgressChangedCallback, KORO_FirmwareUpdateStepProgressChangedCallbackHandle>{
        KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepProgressChangedCallback,
        KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStepProgressChangedCallback,
        [](KORO_FirmwareUpdateStep, double, void*) {}});
    attempt(Pair<KORO_FirmwareUpdateStepFinishedCallback, KORO_FirmwareUpdateStepFinishedCallbackHandle>{
        KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepFinishedCallback,
        KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStepFinishedCallback,
        [](KORO_FirmwareUpdateStep, void*) {}});
    attempt(Pair<KORO_FirmwareUpdateFinishedCallback, KORO_FirmwareUpdateFinishedCallbackHandle>{
        KORO_FirmwareUpdateProgressObserver_RegisterUpdateFinishedCallback,
        KORO_FirmwareUpdateProgressObserver_UnregisterUpdateFinishedCallback, [](void*) {}});
    attempt(Pair<KORO_FirmwareUpdateFailedCallback, KORO_FirmwareUpdateFailedCallbackHandle>{
        KORO_FirmwareUpdateProgressObserver_RegisterUpdateFailedCallback,
        KORO_FirmwareUpdateProgressObserver_UnregisterUpdateFailedCallback, [](const char*, std::size_t, void*) {}});
}

} // namespace

TEST_F(FirmwareUpdateProgressObserver, ConstructionNeedsAPlaceForItsHandle)
{
    EXPECT_EQ(
        Outcome(KORO_FirmwareUpdateProgressObserver_Construct(nullptr)),
        NullPointer("firmwareUpdateProgressObserverHandle"));
}

TEST_F(FirmwareUpdateProgressObserver, EveryRegistrationChecksItsPointers)
{
    ForEachPair([&](const auto& pair) {
        EXPECT_EQ(Outcome(pair.registerCallback(plain, nullptr, nullptr, nullptr)), NullPointer("callback"));
        EXPECT_EQ(Outcome(pair.registerCallback(plain, pair.nothing, nullptr, nullptr)), NullPointer("callbackHandle"));
    });
}

TEST_F(FirmwareUpdateProgressObserver, UnregisteringTwiceIsNoFailure)
{
    ForEachPair([&]<class Callback, class Handle>(const Pair<Callback, Handle>& pair) {
        Handle first = nullptr;
        Handle second = nullptr;
        EXPECT_EQ(Outcome(pair.registerCallback(plain, pair.nothing, nullptr, &first)), Error{});
        EXPECT_EQ(Outcome(pair.registerCallback(plain, pair.nothing, nullptr, &second)), Error{});
        EXPECT_NE(first, nullptr);
        EXPECT_NE(first, second);
        EXPECT_EQ(Outcome(pair.unregisterCallback(plain, first)), Error{});
        EXPECT_EQ(Outcome(pair.unregisterCallback(plain, first)), Error{});
        EXPECT_EQ(Outcome(pair.unregisterCallback(plain, nullptr)), Error{});
        EXPECT_EQ(Outcome(pair.unregisterCallback(plain, second)), Error{});
    });
}

TEST_F(FirmwareUpdateProgressObserver, TwoCallbacksAreBothCalledForEachReport)
{
    int first = 0;
    int second = 0;
    EXPECT_NE(RegisterCounter(first), RegisterCounter(second));
    for (int update = 1; update <= 2; ++update)
    {
        EXPECT_EQ(Update(plain), Error{});
        EXPECT_EQ(first, update);
        EXPECT_EQ(second, update);
    }
}

TEST_F(FirmwareUpdateProgressObserver, UnregisteredCallbackIsCalledNoMore)
{
    int first = 0;
    int second = 0;
    const auto callback = RegisterCounter(first);
    RegisterCounter(second);
    EXPECT_EQ(Update(plain), Error{});
    EXPECT_EQ(Unregister(callback), Error{});
    EXPECT_EQ(Update(plain), Error{});
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 2);
}

TEST_F(FirmwareUpdateProgressObserver, WithoutCallbacksIsAValidObserver)
{
    EXPECT_EQ(Update(plain), Error{});
}

TEST_F(FirmwareUpdateProgressObserver, CallbackThatComesBackToItsReportGetsTheDeadlockErrorAndStays)
{
    std::vector<KORO_ReturnCode> codes;
    observer.onReport = [&](const std::string& report) {
        if (report != "finished") return;
        codes.push_back(
            KORO_FirmwareUpdateProgressObserver_UnregisterUpdateFinishedCallback(observer.handle, observer.finished));
        // Another kind of report is free, and so is another observer.
        KORO_FirmwareUpdateFailedCallbackHandle failed = nullptr;
        codes.push_back(KORO_FirmwareUpdateProgressObserver_RegisterUpdateFailedCallback(
            observer.handle, [](const char*, std::size_t, void*) {}, nullptr, &failed));
        codes.push_back(KORO_FirmwareUpdateProgressObserver_UnregisterUpdateFailedCallback(observer.handle, failed));
        codes.push_back(Unregister(nullptr).code);
    };
    EXPECT_EQ(Update(observer.handle), Error{});
    EXPECT_THAT(codes, ElementsAre(KORO_RETURN_CODE_ERROR, 0, 0, 0));
    EXPECT_EQ(Update(observer.handle), Error{});
    EXPECT_EQ(codes.size(), 8u);
}

TEST_F(FirmwareUpdateProgressObserver, EveryReportRefusesRegistrationsFromItsOwnCallback)
{
    // The report that each kind of callback gives is the one that the pair belongs to.
    const std::vector<std::string> starts = {"started",         "step 5,",  "step 5 at",
                                             "step 5 finished", "finished", "failed"};
    std::size_t kind = 0;
    ForEachPair([&]<class Callback, class Handle>(const Pair<Callback, Handle>& pair) {
        const std::string& start = starts.at(kind++);
        std::vector<KORO_ReturnCode> codes;
        observer.onReport = [&](const std::string& report) {
            if (report.rfind(start, 0) != 0) return;
            Handle another = nullptr;
            codes.push_back(pair.registerCallback(observer.handle, pair.nothing, nullptr, &another));
            codes.push_back(pair.unregisterCallback(observer.handle, another));
        };
        if (start == "failed") producer->Answer("DevGetPort", GenTL::GC_ERR_IO);
        Apply(FileWithSteps(firmware::UploadStep("a.bin"), {{"a.bin", "abc"}}));
        EXPECT_THAT(codes, ElementsAre(KORO_RETURN_CODE_ERROR, KORO_RETURN_CODE_ERROR)) << start;
    });
}

TEST_F(FirmwareUpdateProgressObserver, UpdateWithinAReportNeedsAnotherObserver)
{
    EditDevices([](Devices& devices) { firmware::MakeUpdatable(*devices[1]); });
    const auto second = Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, tree.interface, std::size_t{1});
    // The reports of steps are lost, those of the start and the end fail the inner update.
    for (const auto& within : std::vector<std::pair<std::string, KORO_ReturnCode>>{
             {"started", KORO_RETURN_CODE_ERROR},
             {"step 0 finished", KORO_RETURN_CODE_SUCCESS},
             {"finished", KORO_RETURN_CODE_ERROR}})
    {
        SCOPED_TRACE(within.first);
        ToldObserver outer;
        std::vector<KORO_ReturnCode> codes;
        outer.onReport = [&](const std::string& report) {
            if (!codes.empty() || report.rfind(within.first, 0) != 0) return;
            codes = {0}; // begun
            codes = {
                KORO_FirmwareUpdater_UpdateDevice(updater, second, Found(), outer.handle),
                KORO_FirmwareUpdater_UpdateDevice(updater, second, Found(), plain)};
        };
        EXPECT_EQ(Update(outer.handle), Error{});
        EXPECT_THAT(codes, ElementsAre(within.second, 0));
    }
}

TEST_F(FirmwareUpdateProgressObserver, InformationOfTheStartEndsWithTheObserver)
{
    EXPECT_EQ(Update(observer.handle), Error{});
    const auto first = observer.information;
    EXPECT_NE(first, Found());
    EXPECT_EQ(Update(observer.handle), Error{});
    EXPECT_NE(first, observer.information);
    Require(KORO_FirmwareUpdater_Destruct(updater));
    EXPECT_EQ(GetText(KORO_FirmwareUpdateInformation_GetFileName, first), file.path);

    Require(KORO_FirmwareUpdateProgressObserver_Destruct(observer.handle));
    KORO_Bool8 isValid = 0;
    EXPECT_EQ(
        Outcome(KORO_FirmwareUpdateInformation_GetIsValid(first, &isValid)),
        InvalidHandle("firmwareUpdateInformationHandle"));
}

TEST_F(FirmwareUpdateProgressObserver, DestructDuringAnUpdateDoesNotEndItsReports)
{
    observer.onReport = [&](const std::string& report) {
        if (report.rfind("started", 0) != 0) return;
        EXPECT_EQ(Outcome(KORO_FirmwareUpdateProgressObserver_Destruct(observer.handle)), Error{});
        // The observer goes on with the update; its handle and that of the information end here.
        KORO_Bool8 isValid = 0;
        EXPECT_EQ(
            Outcome(KORO_FirmwareUpdateInformation_GetIsValid(observer.information, &isValid)),
            InvalidHandle("firmwareUpdateInformationHandle"));
    };
    EXPECT_EQ(Update(observer.handle), Error{});
    EXPECT_EQ(observer.reports.front(), "started 2.0, 20 ms");
    EXPECT_EQ(observer.reports.back(), "finished");
    EXPECT_EQ(
        Outcome(KORO_FirmwareUpdateProgressObserver_Destruct(observer.handle)),
        InvalidHandle("firmwareUpdateProgressObserverHandle"));
}

TEST_F(FirmwareUpdateProgressObserver, ReportsComeOnTheThreadThatUpdates)
{
    std::vector<std::thread::id> threads;
    observer.onReport = [&](const std::string&) { threads.push_back(std::this_thread::get_id()); };
    const auto updating = InThread([&] {
        EXPECT_EQ(Update(observer.handle), Error{});
        return std::this_thread::get_id();
    });
    EXPECT_EQ(threads, std::vector<std::thread::id>(observer.reports.size(), updating));
    EXPECT_FALSE(threads.empty());
}

TEST_F(FirmwareUpdateProgressObserver, CallbackMayEndTheUpdaterAndItsInformation)
{
    observer.onReport = [&](const std::string& report) {
        if (report.rfind("started", 0) == 0) Require(KORO_FirmwareUpdater_Destruct(updater));
    };
    EXPECT_EQ(Update(observer.handle), Error{});
    EXPECT_EQ(observer.reports.back(), "finished");
}

} // namespace koro::test
