// Trees that are ended from any level while calls, waits, updates and a monitor are inside.
//
// KORO_ENDURANCE is the factor of the rounds; 100 for the whole, which is 10,000.
#include "tests/boundary/stream_test.h"
#include "tests/threads/threads.h"

#include <atomic>
#include <cstdlib>
#include <functional>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <list>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

using namespace koro::test;
using testing::IsEmpty;

namespace
{

int Rounds()
{
    const char* const factor = std::getenv("KORO_ENDURANCE");
    return 100 * (factor ? std::atoi(factor) : 1);
}

// Calls until the handle has ended, or the library.
void AskUntilEnded(const std::function<KORO_ReturnCode()>& ask)
{
    for (;;)
    {
        const auto code = ask();
        if (code == KORO_RETURN_CODE_INVALID_HANDLE || code == KORO_RETURN_CODE_NOT_INITIALIZED) return;
    }
}

// Who is inside which module, seen from the entry of a call for a few turns of other threads, and what comes over them:
// closes of the module or of one above, and calls on a module that has been closed.
class Insiders
{
public:
    explicit Insiders(const ScriptedProducer& producer)
    {
        for (const char* function :
             {"DSClose", "DevClose", "IFClose", "TLClose", "GCCloseLib", "EventKill", "DSGetInfo", "DSFlushQueue",
              "DSStopAcquisition", "DSRevokeBuffer", "DevGetInfo", "DevGetPort", "GCReadPort", "IFGetDeviceInfo",
              "IFUpdateDeviceList", "IFGetInfo", "TLGetInfo"})
            producer->Intercept(function, [this, function](const std::vector<std::string>& arguments) {
                Visit({function, arguments.empty() ? "" : arguments.front()});
                return std::optional<GenTL::GC_ERROR>();
            });
    }

    void BeginRound() { endHasBegun = false; }
    // The end of the first wait, or where none is ended what comes after the end.
    void AwaitBeginOfEnd() const { endHasBegun.wait(false); }
    void NoteBeginOfEnd()
    {
        endHasBegun = true;
        endHasBegun.notify_all();
    }

    std::vector<std::string> Overtaken() const
    {
        const std::lock_guard lock(mutex);
        return overtaken;
    }

private:
    struct Visitor
    {
        std::string function;
        std::string module; // empty for the producer

        bool Closes() const { return function.find("Close") != std::string::npos; }
        bool EndsWaits() const { return function == "EventKill"; }
        // A close may: where nobody is inside, a module closes before its children.
        bool ComesTooLate() const { return module == "dead" && !Closes(); }
        std::string Text() const { return function + "(" + module + ")"; }
        // By their ids, which begin with those of the modules above.
        bool IsInside(const std::string& closed) const
        {
            if (closed.empty() || module == closed) return true;
            if (closed == "system" && module.rfind("if", 0) == 0) return true;
            return module.rfind(closed + "-", 0) == 0 || module.rfind(closed + ":", 0) == 0;
        }
    };

    void Visit(const Visitor& visitor)
    {
        if (visitor.EndsWaits()) NoteBeginOfEnd();
        const auto place = Enter(visitor);
        for (int turn = visitor.Closes() || visitor.EndsWaits() ? 10 : 1; turn > 0; --turn)
            std::this_thread::yield();
        const std::lock_guard lock(mutex);
        inside.erase(place);
    }
    std::list<Visitor>::iterator Enter(const Visitor& visitor)
    {
        const std::lock_guard lock(mutex);
        if (visitor.ComesTooLate()) overtaken.push_back(visitor.Text());
        for (const auto& other : inside)
        {
            if (visitor.Closes() && other.IsInside(visitor.module))
                overtaken.push_back(visitor.Text() + " while inside " + other.Text());
        }
        return inside.insert(inside.end(), visitor);
    }

    mutable std::mutex mutex;
    std::list<Visitor> inside;          // guarded by mutex
    std::vector<std::string> overtaken; // guarded by mutex
    std::atomic<bool> endHasBegun{false};
};

// To handles that nobody has asked for before.
void Cast(const OpenTree& tree)
{
    KORO_ModuleHandle module = nullptr;
    KORO_EventSupportingModuleHandle events = nullptr;
    KORO_DataStream_ToModule(tree.stream, &module);
    KORO_Device_ToModule(tree.device, &module);
    KORO_Interface_ToModule(tree.interface, &module);
    KORO_System_ToModule(tree.system, &module);
    KORO_DataStream_ToEventSupportingModule(tree.stream, &events);
    KORO_Interface_ToEventSupportingModule(tree.interface, &events);
    KORO_System_ToEventSupportingModule(tree.system, &events);
}

void Monitor(KORO_DeviceDescriptorHandle descriptor)
{
    KORO_DeviceDescriptorInformationChangedCallbackHandle callback = nullptr;
    Require(KORO_DeviceDescriptor_SetMonitoringUpdateInterval(descriptor, 0));
    Require(KORO_DeviceDescriptor_RegisterInformationChangedCallback(
        descriptor, [](const std::int32_t*, std::size_t, void*) {}, nullptr, &callback));
}

void AddWaiter(Threads& threads, const OpenTree& tree)
{
    const auto events = Get<KORO_EventSupportingModuleHandle>(KORO_Device_ToEventSupportingModule, tree.device);
    const auto controller = Get<KORO_EventControllerHandle>(
        KORO_EventSupportingModule_EnableEvents, events, std::int32_t{GenTL::EVENT_ERROR});
    threads.Add(1, [controller](std::size_t) {
        AskUntilEnded([&] {
            KORO_EventHandle event = nullptr;
            return KORO_EventController_WaitForEvent(controller, KORO_INFINITE, &event);
        });
    });
}

// So that nothing is idle when the end comes; one of them waits.
void AddCrowd(Threads& threads, const OpenTree& tree)
{
    const auto module = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice);
    const auto port = Get<KORO_PortHandle>(KORO_Module_GetPort, module);
    const auto ask = [&](std::function<KORO_ReturnCode()> body) {
        threads.Add(1, [body](std::size_t) { AskUntilEnded(body); });
    };
    ask([device = tree.device] {
        std::uint64_t frequency = 0;
        return KORO_Device_GetTimestampTickFrequency(device, &frequency);
    });
    ask([port] {
        std::uint8_t byte = 0;
        return KORO_Port_Read(port, 0, &byte, 1);
    });
    ask([stream = tree.stream] {
        KORO_BufferHandle buffer = nullptr;
        return KORO_DataStream_WaitForFinishedBuffer(stream, KORO_INFINITE, &buffer);
    });
    ask([interface = tree.interface] { return KORO_Interface_UpdateDevices(interface, 0); });
}

// From the leaf, from the middle, from the top, and with the library only.
constexpr int numWays = 6;
void End(const OpenTree& tree, int way)
{
    if (way == 0) KORO_DataStream_Destruct(tree.stream);
    if (way <= 1) KORO_Device_Destruct(tree.device);
    if (way <= 2) KORO_Interface_Destruct(tree.interface);
    if (way <= 3) KORO_System_Destruct(tree.system);
    if (way <= 4) KORO_ProducerLibrary_Destruct(tree.producerLibrary);
}

// One way of many to end a tree.
struct Round
{
    int number;

    int Way() const { return number % numWays; }
    bool IsCrowded() const { return number % 4 < 2; }
    bool HasWaitersAtTheEnd() const { return number % 3 != 2; }
    // During the library's close; two of them begin at different levels.
    int NumEndsOnOtherThreads() const { return number % 5 % 3; }
    bool EndsBeforeTheLibrary() const { return NumEndsOnOtherThreads() == 0 && Way() < numWays - 1 && number % 7 < 4; }
};

void AddEndsOnOtherThreads(Threads& threads, const Round& round, const OpenTree& tree, std::shared_future<void> begin)
{
    for (int other = 0; other < round.NumEndsOnOtherThreads(); ++other)
    {
        threads.Add(1, [=](std::size_t) {
            begin.wait();
            End(tree, (round.Way() + 2 * other) % numWays);
        });
    }
}

// Calls and waits, and casts from the begin of the end on.
void AddGuests(Threads& threads, const Round& round, const OpenTree& tree, const Insiders& insiders)
{
    AddWaiter(threads, tree);
    if (round.IsCrowded()) AddCrowd(threads, tree);
    threads.Add(1, [&](std::size_t) {
        insiders.AwaitBeginOfEnd();
        Cast(tree);
    });
}

void EndTree(const Round& round, const ScriptedProducer& producer, Insiders& insiders)
{
    OpenTree tree(producer.Path());
    tree.QueueBuffers(1);
    Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
    Monitor(tree.deviceDescriptor);
    insiders.BeginRound();
    std::promise<void> begin;
    Threads threads;
    AddGuests(threads, round, tree, insiders);
    AddEndsOnOtherThreads(threads, round, tree, begin.get_future().share());
    threads.Start();
    if (round.HasWaitersAtTheEnd()) producer->AwaitWaiters(round.IsCrowded() ? 2 : 1);
    begin.set_value();
    if (round.NumEndsOnOtherThreads() == 0) End(tree, round.Way());
    if (round.EndsBeforeTheLibrary())
    {
        insiders.NoteBeginOfEnd();
        threads.Join();
        EXPECT_THAT(producer->Open(), IsEmpty());
    }
    const auto closed = KORO_Library_Close();
    insiders.NoteBeginOfEnd();
    threads.Join();
    Require(closed);
}

} // namespace

TEST(ClosingInThreads, LastOneOutClosesTheProducerLast)
{
    const ScriptedProducer producer;
    Insiders insiders(producer);
    for (int number = 0; number < Rounds() && !HasFailure(); ++number)
    {
        SCOPED_TRACE(number);
        Require(KORO_Library_Initialize());
        producer->ClearJournal();
        EndTree({number}, producer, insiders);
        EXPECT_EQ(producer->InitCount(), 0);
        EXPECT_THAT(producer->Open(), IsEmpty());
        EXPECT_EQ(producer->Journal().back(), "GCCloseLib()");
        EXPECT_THAT(insiders.Overtaken(), IsEmpty());
    }
}
