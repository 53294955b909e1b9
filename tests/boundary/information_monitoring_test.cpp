#include "tests/boundary/tree_test.h"
#include "tests/support/num_threads.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace koro::test
{

namespace
{

using Roles = std::vector<std::int32_t>;
using CallbackHandle = KORO_DeviceDescriptorInformationChangedCallbackHandle;

constexpr std::int32_t accessStatus = GenTL::DEVICE_INFO_ACCESS_STATUS;
constexpr std::int32_t userDefinedName = GenTL::DEVICE_INFO_USER_DEFINED_NAME;
constexpr std::int32_t timestampFrequency = GenTL::DEVICE_INFO_TIMESTAMP_FREQUENCY;
const Roles initialRoles{accessStatus, userDefinedName, timestampFrequency};

const Error deadlock{KORO_RETURN_CODE_ERROR, std::make_error_code(std::errc::resource_deadlock_would_occur).message()};

// The reports of one callback, in the order of their coming; the roles of each are sorted.
class Reports
{
public:
    static void Report(const std::int32_t* roles, std::size_t numRoles, void* context)
    {
        auto& reports = *static_cast<Reports*>(context);
        Roles sorted(roles, roles + numRoles);
        std::sort(sorted.begin(), sorted.end());
        if (reports.onReport) reports.onReport();
        const std::lock_guard lock(reports.mutex);
        reports.received.push_back(std::move(sorted));
        reports.changed.notify_all();
    }

    Roles Next()
    {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return received.size() > taken; });
        return received[taken++];
    }

    // Those that nobody asked for by Next.
    std::size_t NumUnread()
    {
        const std::lock_guard lock(mutex);
        return received.size() - taken;
    }

    std::function<void()> onReport;

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<Roles> received;
    std::size_t taken = 0;
};

class InformationMonitoring : public TreeTest
{
protected:
    // With a thread that has started: a race detector starts one of its own beside the first.
    static void SetUpTestSuite()
    {
        std::promise<void> end;
        std::thread first([waiting = end.get_future()] { waiting.wait(); });
        idle = NumThreads() - 1;
        end.set_value();
        first.join();
    }

    InformationMonitoring()
    {
        AwaitNumThreads(idle);
        SetInfo(accessStatus, scripted::Int32(GenTL::DEVICE_ACCESS_STATUS_READWRITE));
        SetInfo(userDefinedName, scripted::Text("first"));
        SetInfo(timestampFrequency, scripted::UInt64(1000));
        Require(KORO_DeviceDescriptor_SetMonitoringUpdateInterval(descriptor, 1));
    }

    void SetInfo(std::int32_t role, const scripted::Info& info) const
    {
        producer->SetInfo("IFGetDeviceInfo", role, info);
    }

    CallbackHandle Register(Reports& reports) const
    {
        return Get<CallbackHandle>(
            KORO_DeviceDescriptor_RegisterInformationChangedCallback, descriptor, &Reports::Report,
            static_cast<void*>(&reports));
    }

    KORO_ReturnCode Unregister(CallbackHandle handle) const
    {
        return KORO_DeviceDescriptor_UnregisterInformationChangedCallback(descriptor, handle);
    }

    bool IsMonitored(std::int32_t role) const
    {
        return Get<KORO_Bool8>(KORO_DeviceDescriptor_IsInformationRoleMonitored, descriptor, role) != 0;
    }

    void AddRole(std::int32_t role) const
    {
        Require(KORO_DeviceDescriptor_AddInformationRoleToMonitoring(descriptor, role));
    }

    void RemoveRole(std::int32_t role) const
    {
        Require(KORO_DeviceDescriptor_RemoveInformationRoleFromMonitoring(descriptor, role));
    }

    // Returns after so many whole readings that began later.
    void AwaitReadings(std::size_t count) const
    {
        // Two queries a role and at most four roles; the first reading may have been under way.
        struct Queries
        {
            std::size_t awaited;
            std::promise<void> made;
        };
        const auto queries = std::make_shared<Queries>();
        queries->awaited = (count + 1) * 8;
        producer->OnEntry("IFGetDeviceInfo", [queries] {
            if (queries->awaited > 0 && --queries->awaited == 0) queries->made.set_value();
        });
        queries->made.get_future().wait();
        producer->OnEntry("IFGetDeviceInfo", {}); // the hook may still be running
    }

    static inline std::size_t idle = 0; // the number of threads of a program that monitors nothing
    const KORO_DeviceDescriptorHandle& descriptor = tree.deviceDescriptor;
};

} // namespace

TEST_F(InformationMonitoring, IntervalIsAThousandMillisecondsUnlessSet)
{
    const auto other = Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, tree.interface, std::size_t{1});
    ExpectScalarOut<KORO_DeviceDescriptorHandle, std::uint64_t>(
        "monitoringUpdateInterval_ms", 1000, KORO_DeviceDescriptor_GetMonitoringUpdateInterval, other);

    for (const auto interval : {std::uint64_t{0}, std::uint64_t{250}, KORO_INFINITE})
    {
        Require(KORO_DeviceDescriptor_SetMonitoringUpdateInterval(other, interval));
        EXPECT_EQ(Get<std::uint64_t>(KORO_DeviceDescriptor_GetMonitoringUpdateInterval, other), interval);
    }
}

TEST_F(InformationMonitoring, ThreeRolesAreMonitoredFromTheStart)
{
    for (std::int32_t role = -1; role <= 1000; ++role)
    {
        const bool expected = std::count(initialRoles.begin(), initialRoles.end(), role) > 0;
        EXPECT_EQ(IsMonitored(role), expected) << role;
    }
}

TEST_F(InformationMonitoring, RolesAreAddedAndRemovedAndNeitherTwiceIsAnError)
{
    for (int round = 0; round < 2; ++round)
    {
        AddRole(1234);
        EXPECT_TRUE(IsMonitored(1234));
    }
    for (int round = 0; round < 2; ++round)
    {
        RemoveRole(1234);
        EXPECT_FALSE(IsMonitored(1234));
    }
}

TEST_F(InformationMonitoring, WithoutACallbackThereIsNoThreadAndNoQuery)
{
    producer->ClearJournal();
    Require(KORO_DeviceDescriptor_SetMonitoringUpdateInterval(descriptor, 0));
    AddRole(GenTL::DEVICE_INFO_VENDOR);
    EXPECT_TRUE(IsMonitored(GenTL::DEVICE_INFO_VENDOR));
    EXPECT_EQ(NumThreads(), idle);
    EXPECT_EQ(producer->Journal(), std::vector<std::string>());
}

TEST_F(InformationMonitoring, FirstReportHoldsEveryRoleAndLaterOnesWhatChanged)
{
    Reports reports;
    const auto handle = Register(reports);
    EXPECT_EQ(reports.Next(), initialRoles);

    SetInfo(accessStatus, scripted::Int32(GenTL::DEVICE_ACCESS_STATUS_READONLY));
    EXPECT_EQ(reports.Next(), Roles{accessStatus});
    SetInfo(userDefinedName, scripted::Text("second"));
    EXPECT_EQ(reports.Next(), Roles{userDefinedName});
    SetInfo(userDefinedName, scripted::Text("longer than the second"));
    EXPECT_EQ(reports.Next(), Roles{userDefinedName});

    EXPECT_EQ(Outcome(Unregister(handle)), Error{});
    EXPECT_EQ(reports.NumUnread(), 0u);
}

TEST_F(InformationMonitoring, BytesAreComparedAndTheirTypeIsNot)
{
    Reports reports;
    const auto handle = Register(reports);
    reports.Next();

    SetInfo(accessStatus, scripted::UInt32(GenTL::DEVICE_ACCESS_STATUS_READWRITE));
    AwaitReadings(2);
    SetInfo(userDefinedName, scripted::Text("second"));
    EXPECT_EQ(reports.Next(), Roles{userDefinedName});
    EXPECT_EQ(Outcome(Unregister(handle)), Error{});
}

TEST_F(InformationMonitoring, RoleThatIsAddedIsReportedWithItsFirstValue)
{
    Reports reports;
    const auto handle = Register(reports);
    EXPECT_EQ(reports.Next(), initialRoles);

    AddRole(GenTL::DEVICE_INFO_VENDOR);
    EXPECT_EQ(reports.Next(), Roles{GenTL::DEVICE_INFO_VENDOR});
    AddRole(GenTL::DEVICE_INFO_VENDOR); // keeps its last value
    AwaitReadings(2);
    EXPECT_EQ(reports.NumUnread(), 0u);
    RemoveRole(GenTL::DEVICE_INFO_VENDOR);
    AddRole(GenTL::DEVICE_INFO_VENDOR); // starts over
    EXPECT_EQ(reports.Next(), Roles{GenTL::DEVICE_INFO_VENDOR});

    EXPECT_EQ(Outcome(Unregister(handle)), Error{});
    EXPECT_EQ(reports.NumUnread(), 0u);
}

TEST_F(InformationMonitoring, RoleThatIsRemovedIsNotRead)
{
    RemoveRole(userDefinedName);
    Reports reports;
    const auto handle = Register(reports);
    EXPECT_EQ(reports.Next(), (Roles{accessStatus, timestampFrequency}));

    SetInfo(userDefinedName, scripted::Text("second"));
    AwaitReadings(2);
    SetInfo(accessStatus, scripted::Int32(GenTL::DEVICE_ACCESS_STATUS_READONLY));
    EXPECT_EQ(reports.Next(), Roles{accessStatus});
    EXPECT_EQ(Outcome(Unregister(handle)), Error{});
}

TEST_F(InformationMonitoring, RoleThatTheProducerDoesNotAnswerIsNeverReported)
{
    AddRole(4711);
    Reports reports;
    const auto handle = Register(reports);
    EXPECT_EQ(reports.Next(), initialRoles);
    AwaitReadings(2);
    SetInfo(accessStatus, scripted::Int32(GenTL::DEVICE_ACCESS_STATUS_READONLY));
    EXPECT_EQ(reports.Next(), Roles{accessStatus});
    EXPECT_TRUE(IsMonitored(4711));
    EXPECT_EQ(Outcome(Unregister(handle)), Error{});
}

TEST_F(InformationMonitoring, RoleWithTheSameValueAfterFailedReadsIsNotReported)
{
    Reports reports;
    const auto handle = Register(reports);
    EXPECT_EQ(reports.Next(), initialRoles);

    producer->Answer("IFGetDeviceInfo", GenTL::GC_ERR_IO);
    AwaitReadings(2);
    producer->AnswerAsUsual("IFGetDeviceInfo");
    AwaitReadings(2);
    SetInfo(timestampFrequency, scripted::UInt64(2000));
    EXPECT_EQ(reports.Next(), Roles{timestampFrequency});
    EXPECT_EQ(Outcome(Unregister(handle)), Error{});
    EXPECT_EQ(reports.NumUnread(), 0u);
}

TEST_F(InformationMonitoring, NewIntervalCountsForTheWaitThatIsRunning)
{
    Require(KORO_DeviceDescriptor_SetMonitoringUpdateInterval(descriptor, KORO_INFINITE));
    Reports reports;
    const auto handle = Register(reports);
    Require(KORO_DeviceDescriptor_SetMonitoringUpdateInterval(descriptor, 1));
    EXPECT_EQ(reports.Next(), initialRoles); // hangs unless it counts
    EXPECT_EQ(Outcome(Unregister(handle)), Error{});
}

TEST_F(InformationMonitoring, AllCallbacksOfADescriptorShareOneThreadUntilTheLastOneGoes)
{
    Reports first;
    const auto firstHandle = Register(first);
    Reports second;
    const auto secondHandle = Register(second);
    EXPECT_EQ(NumThreads(), idle + 1);
    EXPECT_NE(firstHandle, secondHandle);

    EXPECT_EQ(first.Next(), initialRoles);
    EXPECT_EQ(Outcome(Unregister(firstHandle)), Error{});
    EXPECT_EQ(NumThreads(), idle + 1);
    SetInfo(accessStatus, scripted::Int32(GenTL::DEVICE_ACCESS_STATUS_READONLY));
    while (second.Next() != Roles{accessStatus})
    {
        // The second callback may have come in time for the first report.
    }
    EXPECT_EQ(first.NumUnread(), 0u);

    EXPECT_EQ(Outcome(Unregister(secondHandle)), Error{});
    AwaitNumThreads(idle);
}

TEST_F(InformationMonitoring, LastValuesOutliveTheThread)
{
    Reports reports;
    auto handle = Register(reports);
    EXPECT_EQ(reports.Next(), initialRoles);
    EXPECT_EQ(Outcome(Unregister(handle)), Error{});

    SetInfo(userDefinedName, scripted::Text("second"));
    handle = Register(reports);
    EXPECT_EQ(reports.Next(), Roles{userDefinedName});
    EXPECT_EQ(Outcome(Unregister(handle)), Error{});
}

TEST_F(InformationMonitoring, UnknownCallbackHandleIsInvalidAndTheDescriptorIsNotLookedAt)
{
    EXPECT_EQ(Outcome(Unregister(nullptr)), InvalidHandle("callbackHandle"));

    Reports reports;
    const auto handle = Register(reports);
    EXPECT_EQ(Outcome(KORO_DeviceDescriptor_UnregisterInformationChangedCallback(nullptr, handle)), Error{});
    EXPECT_EQ(Outcome(Unregister(handle)), InvalidHandle("callbackHandle"));
}

TEST_F(InformationMonitoring, CallbackThatChangesTheRegistrationsOfItsDescriptorGetsTheDeadlockError)
{
    Reports reports;
    std::atomic<CallbackHandle> own = nullptr;
    std::vector<Error> outcomes;
    Require(KORO_DeviceDescriptor_SetMonitoringUpdateInterval(descriptor, KORO_INFINITE));
    reports.onReport = [&] {
        if (!outcomes.empty()) return;
        outcomes.push_back(Outcome(Unregister(own)));
        CallbackHandle another = nullptr;
        outcomes.push_back(Outcome(
            KORO_DeviceDescriptor_RegisterInformationChangedCallback(descriptor, &Reports::Report, nullptr, &another)));
        EXPECT_EQ(another, nullptr);
    };
    own = Register(reports);
    Require(KORO_DeviceDescriptor_SetMonitoringUpdateInterval(descriptor, 1));
    EXPECT_EQ(reports.Next(), initialRoles);

    // The registration stands.
    SetInfo(accessStatus, scripted::Int32(GenTL::DEVICE_ACCESS_STATUS_READONLY));
    EXPECT_EQ(reports.Next(), Roles{accessStatus});
    EXPECT_EQ(Outcome(Unregister(own)), Error{});
    EXPECT_EQ(outcomes, (std::vector{deadlock, deadlock}));
}

TEST_F(InformationMonitoring, CallbackIsRefusedToUnregisterAlsoWhileAnotherThreadDoesIt)
{
    Reports reports;
    std::atomic<CallbackHandle> own = nullptr;
    std::vector<Error> others; // than the deadlock error
    std::future<Error> elsewhere;
    Require(KORO_DeviceDescriptor_SetMonitoringUpdateInterval(descriptor, KORO_INFINITE));
    reports.onReport = [&] {
        elsewhere = std::async(std::launch::async, [&] { return Outcome(Unregister(own)); });
        for (int attempt = 0; attempt < 20'000 && others.empty(); ++attempt)
        {
            const Error outcome = Outcome(Unregister(own));
            if (!(outcome == deadlock)) others.push_back(outcome);
        }
    };
    own = Register(reports);
    Require(KORO_DeviceDescriptor_SetMonitoringUpdateInterval(descriptor, 1));
    reports.Next();
    EXPECT_EQ(elsewhere.get(), Error{});
    EXPECT_EQ(others, std::vector<Error>{});
    AwaitNumThreads(idle);
}

TEST_F(InformationMonitoring, UnregisteringOnTwoThreadsEndsOnBothAfterTheLastCall)
{
    Reports reports;
    std::atomic<bool> isRunning = false;
    std::atomic<int> returned = 0;
    std::atomic<int> returnedTooEarly = 0;
    reports.onReport = [&] {
        isRunning = true;
        // Long enough for somebody who does not wait.
        for (int step = 0; step < 100'000 && returned == 0; ++step)
            std::this_thread::yield();
        isRunning = false;
    };
    const auto handle = Register(reports);
    while (!isRunning)
        std::this_thread::yield();
    const auto unregister = [&] {
        const Error outcome = Outcome(Unregister(handle));
        if (isRunning) ++returnedTooEarly;
        ++returned;
        return outcome;
    };
    auto first = std::async(std::launch::async, unregister);
    auto second = std::async(std::launch::async, unregister);
    for (const auto& outcome : {first.get(), second.get()})
        EXPECT_TRUE(outcome == Error{} || outcome == InvalidHandle("callbackHandle")) << outcome;
    EXPECT_EQ(returnedTooEarly, 0);
    AwaitNumThreads(idle);
}

TEST_F(InformationMonitoring, CallbackMayAskTheDescriptorAndChangeItsRoles)
{
    Reports reports;
    std::vector<std::string> names;
    reports.onReport = [&] {
        names.push_back(GetText(KORO_DeviceDescriptor_GetUserDefinedName, descriptor));
        EXPECT_TRUE(IsMonitored(accessStatus));
        RemoveRole(accessStatus);
        AddRole(accessStatus);
    };
    const auto handle = Register(reports);
    EXPECT_EQ(reports.Next(), initialRoles);
    EXPECT_EQ(reports.Next(), Roles{accessStatus}); // since it starts over
    EXPECT_EQ(Outcome(Unregister(handle)), Error{});
    EXPECT_EQ(names[0], "first");
}

TEST_F(InformationMonitoring, DescriptorThatIsLostIsMonitoredOn)
{
    Reports reports;
    const auto handle = Register(reports);
    EXPECT_EQ(reports.Next(), initialRoles);

    const auto lostDescriptor = descriptor;
    std::shared_ptr<scripted::Device> taken;
    producer->Edit([&](scripted::Tree& scriptedTree) {
        auto& devices = scriptedTree.interfaces[0]->devices;
        taken = devices.front();
        devices.erase(devices.begin());
    });
    Require(KORO_Interface_UpdateDevices(tree.interface, 0));
    ASSERT_EQ(
        Outcome(KORO_DeviceDescriptor_AddInformationRoleToMonitoring(lostDescriptor, 1)),
        InvalidHandle("deviceDescriptorHandle"));

    producer->Edit([&](scripted::Tree& scriptedTree) { scriptedTree.interfaces[0]->devices.push_back(taken); });
    SetInfo(accessStatus, scripted::Int32(GenTL::DEVICE_ACCESS_STATUS_READONLY));
    EXPECT_EQ(reports.Next(), Roles{accessStatus});
    EXPECT_EQ(Outcome(Unregister(handle)), Error{});
}

TEST_F(InformationMonitoring, EndOfAParentEndsTheThreadAndLeavesTheRegistration)
{
    Reports reports;
    const auto handle = Register(reports);
    EXPECT_EQ(reports.Next(), initialRoles);
    Require(KORO_ProducerLibrary_Destruct(tree.producerLibrary));
    AwaitNumThreads(idle);
    EXPECT_EQ(Outcome(Unregister(handle)), Error{});
    EXPECT_EQ(Outcome(Unregister(handle)), InvalidHandle("callbackHandle"));
    EXPECT_EQ(reports.NumUnread(), 0u);
}

// Each end of what a monitor asks, while it is inside the producer.
struct MonitorEnd
{
    const char* name;
    KORO_ReturnCode (*end)(const OpenTree& tree);
};

class EndWhileAMonitorAsks : public InformationMonitoring, public testing::WithParamInterface<MonitorEnd>
{
protected:
    // A reading that is still inside long after the end has begun.
    void HoldReading()
    {
        producer->OnEntry("IFGetDeviceInfo", [this] {
            if (isInside.exchange(true)) return;
            entered.set_value();
            while (!isEnding)
                std::this_thread::yield();
            for (int turn = 0; turn < 1000 && !hasEnded; ++turn)
                std::this_thread::yield();
            isOver = true;
        });
        entered.get_future().wait();
    }
    void ExpectEndToWait()
    {
        for (const auto* function : {"IFClose", "TLClose", "GCCloseLib"})
            producer->OnEntry(function, [this] { EXPECT_TRUE(isOver); });
        isEnding = true;
        EXPECT_EQ(Outcome(GetParam().end(tree)), Error{});
        hasEnded = true;
        EXPECT_TRUE(isOver);
        const auto open = producer->Open();
        EXPECT_EQ(std::count(open.begin(), open.end(), "if0"), 0);
        AwaitNumThreads(idle);
        producer->ClearJournal();
        for (int turn = 0; turn < 1000; ++turn)
            std::this_thread::yield();
        EXPECT_EQ(producer->Journal(), std::vector<std::string>());
        if (!Get<KORO_Bool8>(KORO_Library_IsInitialized)) Require(KORO_Library_Initialize());
    }

    std::promise<void> entered;
    std::atomic<bool> isInside{false};
    std::atomic<bool> isEnding{false};
    std::atomic<bool> hasEnded{false};
    std::atomic<bool> isOver{false};
};

TEST_P(EndWhileAMonitorAsks, WaitsForItAndClosesAfterwards)
{
    Reports reports;
    Register(reports);
    HoldReading();
    ExpectEndToWait();
}

TEST_P(EndWhileAMonitorAsks, WaitsAlsoForThatOfALostDescriptor)
{
    Reports reports;
    Register(reports);
    EXPECT_EQ(reports.Next(), initialRoles);
    producer->Edit([&](scripted::Tree& scriptedTree) {
        auto& devices = scriptedTree.interfaces[0]->devices;
        devices.erase(devices.begin());
    });
    Require(KORO_Interface_UpdateDevices(tree.interface, 0));
    HoldReading();
    ExpectEndToWait();
}

// The end of the producer library is asked for while the callback is inside it.
TEST_P(EndWhileAMonitorAsks, IsRefusedToACallbackOfTheMonitorAndNothingEnds)
{
    Reports reports;
    std::optional<Error> outcome;
    reports.onReport = [&] {
        if (!outcome) outcome = Outcome(GetParam().end(tree));
    };
    const auto handle = Register(reports);
    EXPECT_EQ(reports.Next(), initialRoles);
    EXPECT_EQ(outcome, deadlock);
    EXPECT_EQ(GetText(KORO_DeviceDescriptor_GetUserDefinedName, descriptor), "first");
    SetInfo(accessStatus, scripted::Int32(GenTL::DEVICE_ACCESS_STATUS_READONLY));
    EXPECT_EQ(reports.Next(), Roles{accessStatus});
    EXPECT_EQ(Outcome(Unregister(handle)), Error{});
}

INSTANTIATE_TEST_SUITE_P(
    InformationMonitoring, EndWhileAMonitorAsks,
    testing::Values(
        MonitorEnd{"OfTheInterface", [](const OpenTree& tree) { return KORO_Interface_Destruct(tree.interface); }},
        MonitorEnd{"OfTheSystem", [](const OpenTree& tree) { return KORO_System_Destruct(tree.system); }},
        MonitorEnd{
            "OfTheProducerLibrary",
            [](const OpenTree& tree) { return KORO_ProducerLibrary_Destruct(tree.producerLibrary); }},
        MonitorEnd{"OfTheLibrary", [](const OpenTree&) { return KORO_Library_Close(); }}),
    [](const auto& end) { return end.param.name; });

TEST_F(InformationMonitoring, CallbackThatTheLastCloseWaitsForIsRefusedToStartAndToCloseTheLibrary)
{
    Reports reports;
    std::promise<void> entered;
    std::promise<void> closing;
    std::vector<Error> outcomes;
    // What the close ends before it waits for the monitor.
    const auto module = Get<KORO_EventSupportingModuleHandle>(KORO_DataStream_ToEventSupportingModule, tree.stream);
    const auto controller =
        Get<KORO_EventControllerHandle>(KORO_EventSupportingModule_EnableEvents, module, std::int32_t{0});
    auto waiter = std::async(std::launch::async, [&] {
        KORO_EventHandle event = nullptr;
        return KORO_EventController_WaitForEvent(controller, KORO_INFINITE, &event);
    });
    producer->AwaitWaiters(1);
    producer->OnEntry("EventKill", [&] { closing.set_value(); });
    reports.onReport = [&] {
        if (!outcomes.empty()) return;
        entered.set_value();
        closing.get_future().wait();
        outcomes = {Outcome(KORO_Library_Initialize()), Outcome(KORO_Library_Close())};
    };
    Register(reports);
    entered.get_future().wait();
    EXPECT_EQ(Outcome(KORO_Library_Close()), Error{});
    EXPECT_EQ(waiter.get(), KORO_RETURN_CODE_ABORTED);
    EXPECT_EQ(outcomes, (std::vector{deadlock, deadlock}));
    EXPECT_EQ(producer->Open(), std::vector<std::string>());
    Require(KORO_Library_Initialize());
}

TEST_F(InformationMonitoring, CallbackMayGiveBackAnInitialisationThatIsNotTheLast)
{
    Reports reports;
    std::optional<Error> outcome;
    Require(KORO_Library_Initialize());
    reports.onReport = [&] {
        if (!outcome) outcome = Outcome(KORO_Library_Close());
    };
    const auto handle = Register(reports);
    EXPECT_EQ(reports.Next(), initialRoles);
    EXPECT_EQ(outcome, Error{});
    EXPECT_EQ(Outcome(Unregister(handle)), Error{});
}

TEST_F(InformationMonitoring, ClosingTheLibraryEndsTheThread)
{
    Reports reports;
    Register(reports);
    EXPECT_EQ(reports.Next(), initialRoles);
    Require(KORO_Library_Close());
    AwaitNumThreads(idle);
    EXPECT_EQ(producer->Open(), std::vector<std::string>());
    Require(KORO_Library_Initialize());
}

} // namespace koro::test
