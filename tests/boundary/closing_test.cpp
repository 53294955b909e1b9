// Ends while calls are inside the producer: nobody waits for them, and the last one out closes in order.
#include "tests/boundary/described_camera.h"
#include "tests/boundary/file_camera.h"
#include "tests/boundary/firmware_test.h"
#include "tests/boundary/stream_test.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <thread>

namespace koro::test
{

namespace
{

using Strings = std::vector<std::string>;
using testing::IsEmpty;

const Strings fromTheLeaves = {
    "DSClose(if0-dev0-stream0)", "DevClose(if0-dev0)", "IFClose(if0)", "TLClose(system)", "GCCloseLib()"};

// A call that is held at a gate inside the producer.
class CallAtAGate
{
public:
    CallAtAGate(const ScriptedProducer& calledProducer, const std::string& function) : producer(calledProducer)
    {
        producer->OnEntry(function, [this, function] {
            producer->OnEntry(function, nullptr);
            entered.set_value();
            gate.get_future().wait();
        });
    }
    ~CallAtAGate()
    {
        if (call.valid()) Leave();
    }
    CallAtAGate(const CallAtAGate&) = delete;
    CallAtAGate& operator=(const CallAtAGate&) = delete;

    void Enter(const std::function<KORO_ReturnCode()>& body)
    {
        call = std::async(std::launch::async, [body] { return Outcome(body()); });
        entered.get_future().wait();
    }
    Error Leave()
    {
        gate.set_value();
        return call.get();
    }

private:
    const ScriptedProducer& producer;
    std::promise<void> entered;
    std::promise<void> gate;
    std::future<Error> call;
};

class Closing : public StreamTest
{
protected:
    Closing()
    {
        remoteModule = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice);
        producer->ClearJournal();
    }

    Strings Closes() const { return CallsOf({"TLClose", "IFClose", "DevClose", "DSClose", "GCCloseLib"}); }
    KORO_PortHandle RemotePort() const { return Get<KORO_PortHandle>(KORO_Module_GetPort, remoteModule); }

    KORO_ModuleHandle remoteModule = nullptr;
};

// A kind of object, a call on it that goes to the producer, and what an end may close before that call comes back.
struct Inside
{
    const char* kind;
    const char* function;
    std::function<std::function<KORO_ReturnCode()>(const ScriptedProducer&, OpenTree&)> prepare;
    std::size_t numClosedMeanwhile;

    friend std::ostream& operator<<(std::ostream& stream, const Inside& inside) { return stream << inside.kind; }
};

template <class Handle>
std::function<KORO_ReturnCode()> InfoOf(
    KORO_ReturnCode (*getInfo)(Handle, std::int32_t, std::int32_t*, std::uint8_t*, std::size_t*), Handle handle,
    std::int32_t command = 0)
{
    return [=] {
        std::int32_t type = 0;
        std::size_t size = 0;
        return getInfo(handle, command, &type, nullptr, &size);
    };
}

std::function<KORO_ReturnCode()> ReadOf(KORO_PortHandle port)
{
    return [=] {
        std::uint8_t bytes[4];
        return KORO_Port_Read(port, 0, bytes, sizeof bytes);
    };
}

KORO_PortHandle PortOf(KORO_ModuleHandle module)
{
    return Get<KORO_PortHandle>(KORO_Module_GetPort, module);
}

KORO_EventControllerHandle ControllerOf(const OpenTree& tree)
{
    const auto module = Get<KORO_EventSupportingModuleHandle>(KORO_Device_ToEventSupportingModule, tree.device);
    return Get<KORO_EventControllerHandle>(
        KORO_EventSupportingModule_EnableEvents, module, std::int32_t{GenTL::EVENT_REMOTE_DEVICE});
}

template <class Value, class Handle>
std::function<KORO_ReturnCode()> CallOf(KORO_ReturnCode (*get)(Handle, Value*), Handle handle)
{
    return [=] {
        Value value{};
        return get(handle, &value);
    };
}

// A buffer with one chunk and one part.
KORO_BufferHandle FilledBuffer(const ScriptedProducer& producer, OpenTree& tree)
{
    Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
    tree.QueueBuffers(1);
    producer->Deliver(
        "if0-dev0-stream0",
        {.parts = {{{GenTL::BUFFER_PART_INFO_DATA_SIZE, scripted::Size(8)}}}, .chunks = {{1, 0, 4}}});
    return Get<KORO_BufferHandle>(KORO_DataStream_WaitForFinishedBuffer, tree.stream, std::uint64_t{KORO_INFINITE});
}

void Describe(const std::string& nodes, const ScriptedProducer& producer)
{
    producer->Edit([&](scripted::Tree& edited) {
        scripted::Port& port = edited.interfaces[0]->devices[0]->remotePort;
        DescribePort(port, DescriptionOf(nodes));
        port.registers[0] = DeviceFiles::Registers();
    });
}

// The descriptions of a camera are fetched when it is opened.
void Reopen(OpenTree& tree)
{
    Require(KORO_Device_Destruct(tree.device));
    tree.device =
        Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, tree.deviceDescriptor, OpenTree::exclusiveAccess);
    tree.remoteDevice = Get<KORO_RemoteDeviceHandle>(KORO_Device_GetRemoteDevice, tree.device);
    tree.streamDescriptor =
        Get<KORO_DataStreamDescriptorHandle>(KORO_Device_GetDataStream, tree.device, std::size_t{0});
    tree.stream = Get<KORO_DataStreamHandle>(KORO_DataStreamDescriptor_OpenDataStream, tree.streamDescriptor);
}

KORO_NodeMapHandle OpenWith(const std::string& nodes, const ScriptedProducer& producer, OpenTree& tree)
{
    Describe(nodes, producer);
    Reopen(tree);
    const auto module = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice);
    return Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0});
}

const std::vector<Inside> kinds = {
    {"SystemDescriptor", "GCGetInfo",
     [](const ScriptedProducer&, OpenTree& tree) {
         return InfoOf(KORO_SystemDescriptor_GetInfo, tree.systemDescriptor);
     },
     4},
    {"System", "TLGetInfo",
     [](const ScriptedProducer&, OpenTree& tree) { return InfoOf(KORO_System_GetInfo, tree.system); }, 3},
    {"SystemAsModule", "GCReadPort",
     [](const ScriptedProducer&, OpenTree& tree) {
         return ReadOf(PortOf(Get<KORO_ModuleHandle>(KORO_System_ToModule, tree.system)));
     },
     3},
    {"SystemThatUpdates", "TLUpdateInterfaceList",
     [](const ScriptedProducer&, OpenTree& tree) {
         return [&tree] { return KORO_System_UpdateInterfaces(tree.system, 0); };
     },
     3},
    {"InterfaceDescriptor", "TLGetInterfaceInfo",
     [](const ScriptedProducer&, OpenTree& tree) {
         return InfoOf(KORO_InterfaceDescriptor_GetInfo, tree.interfaceDescriptor);
     },
     3},
    {"Interface", "IFGetInfo",
     [](const ScriptedProducer&, OpenTree& tree) { return InfoOf(KORO_Interface_GetInfo, tree.interface); }, 2},
    {"DeviceDescriptor", "IFGetDeviceInfo",
     [](const ScriptedProducer&, OpenTree& tree) {
         return InfoOf(KORO_DeviceDescriptor_GetInfo, tree.deviceDescriptor);
     },
     2},
    {"Device", "DevGetInfo",
     [](const ScriptedProducer&, OpenTree& tree) { return InfoOf(KORO_Device_GetInfo, tree.device); }, 1},
    {"PortOfTheRemoteDevice", "GCReadPort",
     [](const ScriptedProducer&, OpenTree& tree) {
         return ReadOf(PortOf(Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice)));
     },
     1},
    {"InfoOfAPort", "GCGetPortInfo",
     [](const ScriptedProducer&, OpenTree& tree) {
         return InfoOf(
             KORO_Port_GetInfo, PortOf(Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice)));
     },
     1},
    {"EventController", "EventGetInfo",
     [](const ScriptedProducer&, OpenTree& tree) { return InfoOf(KORO_EventController_GetInfo, ControllerOf(tree)); },
     1},
    {"DataStreamThatOpens", "DevOpenDataStream",
     [](const ScriptedProducer&, OpenTree& tree) {
         Require(KORO_DataStream_Destruct(tree.stream));
         return [&tree] {
             KORO_DataStreamHandle stream = nullptr;
             return KORO_DataStreamDescriptor_OpenDataStream(tree.streamDescriptor, &stream);
         };
     },
     0},
    {"DataStream", "DSGetInfo",
     [](const ScriptedProducer&, OpenTree& tree) { return InfoOf(KORO_DataStream_GetInfo, tree.stream); }, 0},
    {"DataStreamThatStarts", "DSStartAcquisition",
     [](const ScriptedProducer&, OpenTree& tree) {
         return [&tree] { return KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0); };
     },
     0},
    {"Buffer", "DSGetBufferInfo",
     [](const ScriptedProducer&, OpenTree& tree) { return InfoOf(KORO_Buffer_GetInfo, tree.QueueBuffers(1).front()); },
     0},
    {"DataStreamThatIsWaitedAt", "EventGetData",
     [](const ScriptedProducer&, OpenTree& tree) {
         Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
         return [&tree] {
             KORO_BufferHandle buffer = nullptr;
             return KORO_DataStream_WaitForFinishedBuffer(tree.stream, KORO_INFINITE, &buffer);
         };
     },
     0},
    {"Chunk", "DSGetBufferInfo",
     [](const ScriptedProducer& producer, OpenTree& tree) {
         const auto buffer = FilledBuffer(producer, tree);
         Require(KORO_Buffer_UpdateChunks(buffer));
         return CallOf<void*>(
             KORO_BufferChunk_GetBasePtr, Get<KORO_BufferChunkHandle>(KORO_Buffer_GetChunk, buffer, std::size_t{0}));
     },
     0},
    {"BufferThatListsItsChunks", "DSGetBufferChunkData",
     [](const ScriptedProducer& producer, OpenTree& tree) {
         return [buffer = FilledBuffer(producer, tree)] { return KORO_Buffer_UpdateChunks(buffer); };
     },
     0},
    {"Part", "DSGetBufferPartInfo",
     [](const ScriptedProducer& producer, OpenTree& tree) {
         const auto buffer = FilledBuffer(producer, tree);
         Require(KORO_Buffer_UpdateParts(buffer));
         return CallOf<std::size_t>(
             KORO_BufferPart_GetSize, Get<KORO_BufferPartHandle>(KORO_Buffer_GetPart, buffer, std::size_t{0}));
     },
     0},
    {"Event", "EventGetDataInfo",
     [](const ScriptedProducer& producer, OpenTree& tree) {
         const auto controller = ControllerOf(tree);
         producer->Fire("if0-dev0", GenTL::EVENT_REMOTE_DEVICE, "block");
         const auto event =
             Get<KORO_EventHandle>(KORO_EventController_WaitForEvent, controller, std::uint64_t{KORO_INFINITE});
         return CallOf<std::uint64_t>(KORO_Event_GetID, event);
     },
     1},
    {"URL", "GCGetPortURLInfo",
     [](const ScriptedProducer& producer, OpenTree& tree) {
         OpenWith(IntRegister("Number", 0), producer, tree);
         const auto module = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice);
         return CallOf<std::uint64_t>(
             KORO_PortURL_GetFileSize, Get<KORO_PortURLHandle>(KORO_Port_GetURL, PortOf(module), std::size_t{0}));
     },
     1},
    {"Node", "GCReadPort",
     [](const ScriptedProducer& producer, OpenTree& tree) {
         const auto map = OpenWith(IntRegister("Number", 0), producer, tree);
         const auto node = Get<KORO_NodeHandle>(KORO_NodeMap_FindNode, map, "Number", std::size_t{7});
         return [number = Get<KORO_IntegerNodeHandle>(KORO_Node_ToIntegerNode, node)] {
             std::int64_t value = 0;
             return KORO_IntegerNode_GetValue(number, KORO_NODE_CACHE_POLICY_IGNORE_CACHE, &value);
         };
     },
     1},
    {"FileAdapter", "GCReadPort",
     [](const ScriptedProducer& producer, OpenTree& tree) {
         std::string nodes;
         for (const auto& [name, node] : FileNodes())
             nodes += node;
         const auto map = OpenWith(nodes, producer, tree);
         return CallOf<std::uint64_t>(
             KORO_FileAdapter_GetSize,
             Get<KORO_FileAdapterHandle>(KORO_FileAdapter_Construct, map, "User", std::size_t{5}));
     },
     1},
};

class EndWithACallInside : public Closing, public testing::WithParamInterface<Inside>
{
protected:
    void ExpectOrder(const std::function<KORO_ReturnCode()>& end)
    {
        const Inside& inside = GetParam();
        const auto body = inside.prepare(producer, tree);
        producer->ClearJournal();
        CallAtAGate call(producer, inside.function);
        call.Enter(body);

        EXPECT_EQ(Outcome(end()), Error{}); // and does not wait
        EXPECT_EQ(
            Closes(),
            Strings(fromTheLeaves.begin(), fromTheLeaves.begin() + static_cast<long>(inside.numClosedMeanwhile)));
        EXPECT_EQ(producer->InitCount(), 1);

        call.Leave();
        EXPECT_EQ(Closes(), fromTheLeaves);
        EXPECT_EQ(producer->Journal().back(), "GCCloseLib()");
        EXPECT_THAT(producer->Open(), IsEmpty());
        EXPECT_EQ(producer->InitCount(), 0);
    }
};

} // namespace

TEST_P(EndWithACallInside, OfTheProducerLibraryIsClosedByTheLastOneOut)
{
    ExpectOrder([&] { return KORO_ProducerLibrary_Destruct(tree.producerLibrary); });
}

// The stream that a racing opening made had no handle, so it was closed when the open came back.
INSTANTIATE_TEST_SUITE_P(Closing, EndWithACallInside, testing::ValuesIn(kinds), [](const auto& kind) {
    return kind.param.kind;
});

TEST_F(Closing, OfTheWholeLibraryIsFinishedByTheLastOneOut)
{
    CallAtAGate call(producer, "DevGetInfo");
    call.Enter(InfoOf(KORO_Device_GetInfo, tree.device));
    EXPECT_EQ(Outcome(KORO_Library_Close()), Error{});
    EXPECT_EQ(Closes(), Strings{fromTheLeaves[0]});
    call.Leave();
    EXPECT_EQ(Closes(), fromTheLeaves);
    EXPECT_EQ(producer->Journal().back(), "GCCloseLib()");
    Require(KORO_Library_Initialize());
}

TEST_F(Closing, OfAProducerLibraryIsMadeByItsOwnCallThatIsInside)
{
    Require(KORO_ProducerLibrary_Destruct(tree.producerLibrary));
    const auto& path = producer.Path();
    Require(KORO_ProducerLibrary_Construct(path.c_str(), path.size() + 1, &tree.producerLibrary));
    producer->ClearJournal();
    CallAtAGate call(producer, "GCGetInfo");
    call.Enter([&] { return KORO_ProducerLibrary_GetSystem(tree.producerLibrary, &tree.systemDescriptor); });
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(tree.producerLibrary)), Error{});
    EXPECT_THAT(Closes(), IsEmpty());
    EXPECT_EQ(call.Leave(), parentExpired);
    EXPECT_EQ(producer->Journal().back(), "GCCloseLib()");
    EXPECT_EQ(producer->InitCount(), 0);
}

TEST_F(Closing, EndsOfAChildAndThenOfItsParentsKeepTheOrder)
{
    CallAtAGate call(producer, "DSGetInfo");
    call.Enter(InfoOf(KORO_DataStream_GetInfo, tree.stream));
    EXPECT_EQ(Outcome(KORO_Device_Destruct(tree.device)), Error{});
    EXPECT_EQ(Outcome(KORO_Interface_Destruct(tree.interface)), Error{});
    EXPECT_EQ(Outcome(KORO_System_Destruct(tree.system)), Error{});
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(tree.producerLibrary)), Error{});
    EXPECT_THAT(Closes(), IsEmpty());
    EXPECT_EQ(call.Leave(), parentExpired); // it asks twice, and the device was ended in between
    EXPECT_EQ(Closes(), fromTheLeaves);
}

// The thread that is closing is inside the producer, too.
TEST_F(Closing, EndOfTheParentsWaitsInOrderForACloseThatIsRunning)
{
    CallAtAGate close(producer, "IFClose");
    close.Enter([&] { return KORO_Interface_Destruct(tree.interface); });
    producer->ClearJournal();
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(tree.producerLibrary)), Error{});
    EXPECT_THAT(Closes(), IsEmpty());
    EXPECT_EQ(close.Leave(), Error{});
    EXPECT_EQ(Closes(), (Strings{"DevClose(dead)", "TLClose(system)", "GCCloseLib()"}));
}

TEST_F(Closing, TwoCallsInsideAreBothAwaited)
{
    CallAtAGate onStream(producer, "DSGetInfo");
    CallAtAGate onSystem(producer, "TLGetInfo");
    onStream.Enter(InfoOf(KORO_DataStream_GetInfo, tree.stream));
    onSystem.Enter(InfoOf(KORO_System_GetInfo, tree.system));
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(tree.producerLibrary)), Error{});
    onStream.Leave();
    EXPECT_EQ(Closes(), Strings(fromTheLeaves.begin(), fromTheLeaves.begin() + 3));
    onSystem.Leave();
    EXPECT_EQ(Closes(), fromTheLeaves);
}

TEST_F(Closing, HandlesBelowEndWithTheEndAlsoWhileACallKeepsTheObject)
{
    producer->Edit([&](scripted::Tree& scriptedTree) {
        auto& device = *scriptedTree.interfaces[0]->devices[0];
        DescribePort(device.remotePort, DescriptionOf(IntRegister("Number", 0)));
    });
    Require(KORO_Device_Destruct(tree.device));
    tree.device =
        Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, tree.deviceDescriptor, OpenTree::exclusiveAccess);
    tree.remoteDevice = Get<KORO_RemoteDeviceHandle>(KORO_Device_GetRemoteDevice, tree.device);
    remoteModule = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice);
    const auto nodeMap = Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, remoteModule, std::size_t{0});
    const auto port = RemotePort();

    CallAtAGate call(producer, "DevGetInfo");
    call.Enter(InfoOf(KORO_Device_GetInfo, tree.device));
    EXPECT_EQ(Outcome(KORO_Device_Destruct(tree.device)), Error{});
    KORO_DeviceHandle device = nullptr;
    EXPECT_EQ(Outcome(KORO_NodeMap_Lock(nodeMap)), InvalidHandle("nodeMapHandle"));
    EXPECT_EQ(Outcome(ReadOf(port)()), InvalidHandle("portHandle"));
    EXPECT_EQ(
        Outcome(KORO_RemoteDevice_GetLocalDevice(tree.remoteDevice, &device)), InvalidHandle("remoteDeviceHandle"));
    EXPECT_EQ(call.Leave(), Error{});
}

TEST_F(Closing, CallInsideGetsNoNewHandleOfAnEndedParent)
{
    CallAtAGate call(producer, "DevGetNumDataStreams");
    Require(KORO_Device_Destruct(tree.device));
    tree.device =
        Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, tree.deviceDescriptor, OpenTree::exclusiveAccess);
    KORO_DataStreamDescriptorHandle descriptor = nullptr;
    call.Enter([&] { return KORO_Device_GetDataStream(tree.device, 0, &descriptor); });
    EXPECT_EQ(Outcome(KORO_Device_Destruct(tree.device)), Error{});
    EXPECT_EQ(call.Leave(), parentExpired);
    EXPECT_EQ(descriptor, nullptr);
}

// The device's module is a second handle of the device.
TEST_F(Closing, EndWithACallInsideHasTheOrderOfOneWithoutAlsoWhereAnObjectHasSeveralHandles)
{
    Get<KORO_ModuleHandle>(KORO_Device_ToModule, tree.device);
    StartWithBuffers(1);
    CallAtAGate call(producer, "IFGetInfo");
    call.Enter(InfoOf(KORO_Interface_GetInfo, tree.interface));
    EXPECT_EQ(Outcome(KORO_Interface_Destruct(tree.interface)), Error{});
    call.Leave();
    EXPECT_EQ(
        CallsOf({"IFClose", "DevClose", "DSClose", "DSGetInfo", "DSStopAcquisition", "DSFlushQueue"}),
        (Strings{"IFClose(if0)", "DevClose(dead)"}));
}

// A map with one integer, locked by this thread, and a reader that waits for the lock or comes too late.
class EndOfALockedMap : public Closing
{
protected:
    EndOfALockedMap()
    {
        producer->Edit([&](scripted::Tree& scriptedTree) {
            auto& scriptedDevice = *scriptedTree.interfaces[0]->devices[1];
            DescribePort(scriptedDevice.remotePort, DescriptionOf(IntRegister("Number", 0)));
        });
        const auto descriptor =
            Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, tree.interface, std::size_t{1});
        device = Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, descriptor, OpenTree::exclusiveAccess);
        const auto remoteDevice = Get<KORO_RemoteDeviceHandle>(KORO_Device_GetRemoteDevice, device);
        const auto module = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, remoteDevice);
        nodeMap = Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0});
        const auto node = Get<KORO_NodeHandle>(KORO_NodeMap_FindNode, nodeMap, "Number", std::size_t{7});
        number = Get<KORO_IntegerNodeHandle>(KORO_Node_ToIntegerNode, node);
    }

    std::future<KORO_ReturnCode> Write() const
    {
        std::promise<void> started;
        auto isStarted = started.get_future();
        auto writer = std::async(std::launch::async, [this, started = std::move(started)]() mutable {
            started.set_value();
            return KORO_IntegerNode_SetValue(number, 1);
        });
        isStarted.wait();
        for (int turn = 0; turn < 1000; ++turn)
            std::this_thread::yield(); // it is most likely inside by then
        return writer;
    }

    KORO_DeviceHandle device = nullptr;
    KORO_NodeMapHandle nodeMap = nullptr;
    KORO_IntegerNodeHandle number = nullptr;
};

TEST_F(EndOfALockedMap, OnAnotherThreadLetsTheUnlockGiveItUp)
{
    Require(KORO_NodeMap_Lock(nodeMap));
    Require(KORO_NodeMap_Lock(nodeMap));
    auto writer = Write();
    EXPECT_EQ(std::async(std::launch::async, [&] { return Outcome(KORO_Device_Destruct(device)); }).get(), Error{});
    EXPECT_EQ(Outcome(KORO_NodeMap_Unlock(nodeMap)), InvalidHandle("nodeMapHandle"));
    EXPECT_EQ(Outcome(KORO_NodeMap_Unlock(nodeMap)), InvalidHandle("nodeMapHandle"));
    const auto code = writer.get(); // and does not hang
    EXPECT_TRUE(code == KORO_RETURN_CODE_SUCCESS || code == KORO_RETURN_CODE_INVALID_HANDLE) << code;
}

TEST_F(EndOfALockedMap, OnItsOwnThreadGivesItUpAtOnce)
{
    Require(KORO_NodeMap_Lock(nodeMap));
    auto writer = Write();
    EXPECT_EQ(Outcome(KORO_Device_Destruct(device)), Error{});
    const auto code = writer.get();
    EXPECT_TRUE(code == KORO_RETURN_CODE_SUCCESS || code == KORO_RETURN_CODE_INVALID_HANDLE) << code;
    EXPECT_EQ(Outcome(KORO_NodeMap_Unlock(nodeMap)), InvalidHandle("nodeMapHandle"));
}

TEST_F(EndOfALockedMap, WithTheLibraryLetsTheUnlockGiveItUp)
{
    Require(KORO_NodeMap_Lock(nodeMap));
    auto writer = Write();
    EXPECT_EQ(std::async(std::launch::async, [] { return Outcome(KORO_Library_Close()); }).get(), Error{});
    EXPECT_EQ(KORO_NodeMap_Unlock(nodeMap), KORO_RETURN_CODE_NOT_INITIALIZED);
    writer.get();
    EXPECT_EQ(producer->InitCount(), 0);
    Require(KORO_Library_Initialize());
}

// Ordinary code that reconnects must not meet its old handles again.
TEST_F(Closing, HandlesOfEndedModulesDoNotComeBackSoon)
{
    std::set<const void*> handles;
    const auto expectNew = [&](const void* handle) { EXPECT_TRUE(handles.insert(handle).second); };
    producer->KeepJournal(false);
    for (int round = 0; round < 200; ++round)
    {
        expectNew(tree.stream);
        expectNew(tree.device);
        Require(KORO_Interface_Destruct(tree.interface));
        tree.interface = Get<KORO_InterfaceHandle>(KORO_InterfaceDescriptor_OpenInterface, tree.interfaceDescriptor);
        expectNew(tree.interface);
        Require(KORO_Interface_UpdateDevices(tree.interface, 0));
        tree.deviceDescriptor =
            Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, tree.interface, std::size_t{0});
        tree.device =
            Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, tree.deviceDescriptor, OpenTree::exclusiveAccess);
        tree.streamDescriptor =
            Get<KORO_DataStreamDescriptorHandle>(KORO_Device_GetDataStream, tree.device, std::size_t{0});
        tree.stream = Get<KORO_DataStreamHandle>(KORO_DataStreamDescriptor_OpenDataStream, tree.streamDescriptor);
    }
}

TEST_F(Closing, HandlesDoNotComeBackAfterTheLibraryWasClosed)
{
    std::set<const void*> handles;
    for (int round = 0; round < 50; ++round)
    {
        for (const void* handle :
             {static_cast<const void*>(tree.producerLibrary), static_cast<const void*>(tree.system),
              static_cast<const void*>(tree.device), static_cast<const void*>(tree.stream)})
            EXPECT_TRUE(handles.insert(handle).second);
        Require(KORO_Library_Close());
        Require(KORO_Library_Initialize());
        tree = OpenTree(producer.Path());
    }
}

TEST_F(Closing, HandlesOfEndedCallbacksDoNotComeBackSoon)
{
    std::set<const void*> handles;
    for (int round = 0; round < 1000; ++round)
    {
        KORO_DeviceFoundCallbackHandle handle = nullptr;
        const auto ignore = [](KORO_DeviceDescriptorHandle, void*) {};
        Require(KORO_Interface_RegisterDeviceFoundCallback(tree.interface, ignore, nullptr, &handle));
        Require(KORO_Interface_UnregisterDeviceFoundCallback(tree.interface, handle));
        EXPECT_TRUE(handles.insert(handle).second);
    }
}

// The waits end first, whichever object goes.
struct WaitEnd
{
    const char* name;
    KORO_ReturnCode (*end)(const OpenTree& tree);
};

class EndOfAWait : public Closing, public testing::WithParamInterface<WaitEnd>
{};

TEST_P(EndOfAWait, ForABufferIsThatOfAKill)
{
    Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
    auto waiter = std::async(std::launch::async, [&] { return OutcomeOfWait(KORO_INFINITE); });
    auto another = std::async(std::launch::async, [&] { return OutcomeOfWait(KORO_INFINITE); });
    producer->AwaitWaiters(2);
    EXPECT_EQ(GetParam().end(tree), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(waiter.get(), aborted);
    EXPECT_EQ(another.get(), aborted);
    if (!Get<KORO_Bool8>(KORO_Library_IsInitialized)) Require(KORO_Library_Initialize());
}

TEST_P(EndOfAWait, IsThatOfAKillForEachOfSeveralWhereKillsDoNotAddUp)
{
    Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
    auto waiter = std::async(std::launch::async, [&] { return OutcomeOfWait(KORO_INFINITE); });
    auto another = std::async(std::launch::async, [&] { return OutcomeOfWait(KORO_INFINITE); });
    producer->AwaitWaiters(2);
    const auto kills = std::make_shared<std::atomic<int>>(0);
    producer->Intercept("EventKill", [kills](const auto&) {
        return ++*kills == 2 ? std::optional<GenTL::GC_ERROR>(GenTL::GC_ERR_SUCCESS) : std::nullopt;
    });
    EXPECT_EQ(GetParam().end(tree), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(waiter.get(), aborted);
    EXPECT_EQ(another.get(), aborted);
    if (!Get<KORO_Bool8>(KORO_Library_IsInitialized)) Require(KORO_Library_Initialize());
}

TEST_P(EndOfAWait, ForAnEventIsThatOfAKill)
{
    const auto controller = EnableEvents(GenTL::EVENT_ERROR);
    auto waiter = std::async(std::launch::async, [&] {
        KORO_EventHandle event = nullptr;
        return Outcome(KORO_EventController_WaitForEvent(controller, KORO_INFINITE, &event));
    });
    producer->AwaitWaiters(1);
    EXPECT_EQ(GetParam().end(tree), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(waiter.get(), aborted);
    if (!Get<KORO_Bool8>(KORO_Library_IsInitialized)) Require(KORO_Library_Initialize());
}

// The producer has the event for the waiter before it hears of the end.
TEST_P(EndOfAWait, IsThatOfAKillAlsoWhereAnEventHasCome)
{
    const auto controller = EnableEvents(GenTL::EVENT_ERROR);
    CallAtAGate wait(producer, "EventGetData");
    KORO_EventHandle event = nullptr;
    wait.Enter([&] { return KORO_EventController_WaitForEvent(controller, KORO_INFINITE, &event); });
    ASSERT_TRUE(producer->Fire(streamID, GenTL::EVENT_ERROR, "block"));
    producer->Intercept("EventKill", [](const auto&) { return GenTL::GC_ERR_SUCCESS; });
    EXPECT_EQ(GetParam().end(tree), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(wait.Leave().code, KORO_RETURN_CODE_ABORTED);
    EXPECT_EQ(event, nullptr);
    if (!Get<KORO_Bool8>(KORO_Library_IsInitialized)) Require(KORO_Library_Initialize());
}

TEST_P(EndOfAWait, IsThatOfAKillAlsoWhereAnEventIsTakenDuringTheEnd)
{
    const auto controller = EnableEvents(GenTL::EVENT_ERROR);
    CallAtAGate wait(producer, "EventGetData");
    KORO_EventHandle event = nullptr;
    wait.Enter([&] { return KORO_EventController_WaitForEvent(controller, KORO_INFINITE, &event); });
    ASSERT_TRUE(producer->Fire(streamID, GenTL::EVENT_ERROR, "block"));
    std::optional<KORO_ReturnCode> code;
    producer->Intercept("EventKill", [&](const auto&) {
        if (!code) code = wait.Leave().code;
        return GenTL::GC_ERR_SUCCESS;
    });
    EXPECT_EQ(GetParam().end(tree), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(code, KORO_RETURN_CODE_ABORTED);
    EXPECT_EQ(event, nullptr);
    if (!Get<KORO_Bool8>(KORO_Library_IsInitialized)) Require(KORO_Library_Initialize());
}

TEST_P(EndOfAWait, IsThatOfAKillAlsoWhereAFrameHasCome)
{
    StartWithBuffers(1);
    CallAtAGate wait(producer, "EventGetData");
    KORO_BufferHandle buffer = nullptr;
    wait.Enter([&] { return KORO_DataStream_WaitForFinishedBuffer(tree.stream, KORO_INFINITE, &buffer); });
    ASSERT_TRUE(Deliver());
    producer->Intercept("EventKill", [](const auto&) { return GenTL::GC_ERR_SUCCESS; });
    EXPECT_EQ(GetParam().end(tree), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(wait.Leave().code, KORO_RETURN_CODE_ABORTED);
    EXPECT_EQ(buffer, nullptr);
    if (!Get<KORO_Bool8>(KORO_Library_IsInitialized)) Require(KORO_Library_Initialize());
}

INSTANTIATE_TEST_SUITE_P(
    Closing, EndOfAWait,
    testing::Values(
        WaitEnd{"WithTheStream", [](const OpenTree& tree) { return KORO_DataStream_Destruct(tree.stream); }},
        WaitEnd{"WithTheDevice", [](const OpenTree& tree) { return KORO_Device_Destruct(tree.device); }},
        WaitEnd{"WithTheInterface", [](const OpenTree& tree) { return KORO_Interface_Destruct(tree.interface); }},
        WaitEnd{"WithTheSystem", [](const OpenTree& tree) { return KORO_System_Destruct(tree.system); }},
        WaitEnd{
            "WithTheProducerLibrary",
            [](const OpenTree& tree) { return KORO_ProducerLibrary_Destruct(tree.producerLibrary); }},
        WaitEnd{"WithTheLibrary", [](const OpenTree&) { return KORO_Library_Close(); }}),
    [](const auto& end) { return end.param.name; });

// A monitor of a device on the second interface that begins while the end waits for a monitor on the first one. The
// kill of the waiter says that the end has gathered what ends.
class MonitorDuringAnEnd : public Closing
{
protected:
    // Blocks until the monitor is at the gate.
    void Monitor(KORO_DeviceDescriptorHandle descriptor, std::promise<void>& gate) const
    {
        std::promise<void> entered;
        producer->OnEntry("IFGetDeviceInfo", [&] {
            producer->OnEntry("IFGetDeviceInfo", nullptr);
            auto leave = gate.get_future();
            entered.set_value();
            leave.wait();
        });
        KORO_DeviceDescriptorInformationChangedCallbackHandle handle = nullptr;
        Require(KORO_DeviceDescriptor_SetMonitoringUpdateInterval(descriptor, 0));
        Require(KORO_DeviceDescriptor_RegisterInformationChangedCallback(
            descriptor, [](const std::int32_t*, std::size_t, void*) {}, nullptr, &handle));
        entered.get_future().wait();
    }
    KORO_DeviceDescriptorHandle DeviceOfTheSecondInterface() const
    {
        const auto descriptor =
            Get<KORO_InterfaceDescriptorHandle>(KORO_System_GetInterface, tree.system, std::size_t{1});
        const auto interface = Get<KORO_InterfaceHandle>(KORO_InterfaceDescriptor_OpenInterface, descriptor);
        Require(KORO_Interface_UpdateDevices(interface, 0));
        return Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, interface, std::size_t{0});
    }

    void EndsBeforeTheEndReturns(KORO_ReturnCode (*end)(const OpenTree& tree));
};

void MonitorDuringAnEnd::EndsBeforeTheEndReturns(KORO_ReturnCode (*end)(const OpenTree& tree))
{
    Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
    auto waiter = std::async(std::launch::async, [&] { return OutcomeOfWait(KORO_INFINITE); });
    producer->AwaitWaiters(1);
    std::promise<void> killed;
    producer->OnEntry("EventKill", [&] { killed.set_value(); });
    std::promise<void> firstGate;
    Monitor(tree.deviceDescriptor, firstGate);
    auto ending = std::async(std::launch::async, [&] { return end(tree); });
    killed.get_future().wait();
    EXPECT_EQ(waiter.get(), aborted);
    std::promise<void> secondGate;
    Monitor(DeviceOfTheSecondInterface(), secondGate);

    firstGate.set_value();
    const auto hasEnded = [&] { return ending.wait_for(std::chrono::seconds(0)) == std::future_status::ready; };
    for (int turn = 0; turn < 10000 && !hasEnded(); ++turn)
        std::this_thread::yield();
    EXPECT_FALSE(hasEnded());
    EXPECT_THAT(CallsOf({"TLClose", "GCCloseLib"}), IsEmpty()); // the monitor is still inside the producer
    secondGate.set_value();
    EXPECT_EQ(ending.get(), KORO_RETURN_CODE_SUCCESS);
}

class MonitorThatBeginsDuringTheEnd : public MonitorDuringAnEnd, public testing::WithParamInterface<WaitEnd>
{};

TEST_P(MonitorThatBeginsDuringTheEnd, HasEndedWhenTheEndReturns)
{
    EndsBeforeTheEndReturns(GetParam().end);
    EXPECT_THAT(producer->Open(), IsEmpty());
    EXPECT_EQ(CallsOf({"IFClose"}).size(), 2u);
    if (!Get<KORO_Bool8>(KORO_Library_IsInitialized)) Require(KORO_Library_Initialize());
}

INSTANTIATE_TEST_SUITE_P(
    Closing, MonitorThatBeginsDuringTheEnd,
    testing::Values(
        WaitEnd{"OfTheSystem", [](const OpenTree& tree) { return KORO_System_Destruct(tree.system); }},
        WaitEnd{
            "OfTheProducerLibrary",
            [](const OpenTree& tree) { return KORO_ProducerLibrary_Destruct(tree.producerLibrary); }},
        WaitEnd{"OfTheLibrary", [](const OpenTree&) { return KORO_Library_Close(); }}),
    [](const auto& end) { return end.param.name; });

TEST_F(MonitorDuringAnEnd, HasEndedWhenTheEndReturnsAlsoWhereACallIsInsideTheEndedObject)
{
    CallAtAGate call(producer, "TLGetInfo");
    call.Enter(InfoOf(KORO_System_GetInfo, tree.system));
    EndsBeforeTheEndReturns([](const OpenTree& opened) { return KORO_System_Destruct(opened.system); });
    EXPECT_EQ(call.Leave(), Error{});
    EXPECT_EQ(Closes().front(), "TLClose(system)");
    EXPECT_EQ(Closes().size(), 4u);
}

struct EndAndCast
{
    const char* name;
    KORO_ReturnCode (*end)(const OpenTree& tree);
    KORO_ModuleHandle (*module)(const OpenTree& tree);
    KORO_ReturnCode (*reopen)(const OpenTree& tree);
};

class CastDuringAnEnd : public Closing, public testing::WithParamInterface<EndAndCast>
{};

// The end is held while it ends the wait of another thread.
TEST_P(CastDuringAnEnd, EndsWithItsObject)
{
    Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
    auto waiter = std::async(std::launch::async, [&] { return OutcomeOfWait(KORO_INFINITE); });
    producer->AwaitWaiters(1);
    CallAtAGate kill(producer, "EventKill");
    kill.Enter([&] { return GetParam().end(tree); });
    const auto module = GetParam().module(tree);
    const auto port = PortOf(module);
    EXPECT_EQ(kill.Leave(), Error{});
    EXPECT_EQ(waiter.get(), aborted);

    KORO_PortHandle again = nullptr;
    EXPECT_EQ(Outcome(KORO_Module_GetPort(module, &again)), InvalidHandle("moduleHandle"));
    EXPECT_EQ(Outcome(ReadOf(port)()), InvalidHandle("portHandle"));
    EXPECT_EQ(Outcome(GetParam().reopen(tree)), Error{}); // since the producer has it closed
}

INSTANTIATE_TEST_SUITE_P(
    Closing, CastDuringAnEnd,
    testing::Values(
        EndAndCast{
            "OfTheStream", [](const OpenTree& tree) { return KORO_DataStream_Destruct(tree.stream); },
            [](const OpenTree& tree) { return Get<KORO_ModuleHandle>(KORO_DataStream_ToModule, tree.stream); },
            [](const OpenTree& tree) {
                KORO_DataStreamHandle stream = nullptr;
                return KORO_DataStreamDescriptor_OpenDataStream(tree.streamDescriptor, &stream);
            }},
        EndAndCast{
            "OfTheDevice", [](const OpenTree& tree) { return KORO_Device_Destruct(tree.device); },
            [](const OpenTree& tree) { return Get<KORO_ModuleHandle>(KORO_Device_ToModule, tree.device); },
            [](const OpenTree& tree) {
                KORO_DeviceHandle device = nullptr;
                return KORO_DeviceDescriptor_OpenDevice(tree.deviceDescriptor, OpenTree::exclusiveAccess, &device);
            }},
        EndAndCast{
            "OfTheInterface", [](const OpenTree& tree) { return KORO_Interface_Destruct(tree.interface); },
            [](const OpenTree& tree) { return Get<KORO_ModuleHandle>(KORO_Interface_ToModule, tree.interface); },
            [](const OpenTree& tree) {
                KORO_InterfaceHandle interface = nullptr;
                return KORO_InterfaceDescriptor_OpenInterface(tree.interfaceDescriptor, &interface);
            }},
        EndAndCast{
            "OfTheSystem", [](const OpenTree& tree) { return KORO_System_Destruct(tree.system); },
            [](const OpenTree& tree) { return Get<KORO_ModuleHandle>(KORO_System_ToModule, tree.system); },
            [](const OpenTree& tree) {
                KORO_SystemHandle system = nullptr;
                return KORO_SystemDescriptor_OpenSystem(tree.systemDescriptor, &system);
            }}),
    [](const auto& end) { return end.param.name; });

// The library's close is inside DSClose, and the end that was begun before goes on beside it.
class EndBesideTheLibrarysClose : public Closing, public testing::WithParamInterface<WaitEnd>
{};

TEST_P(EndBesideTheLibrarysClose, DoesNotOvertakeIt)
{
    const auto controller = ControllerOf(tree);
    auto waiter = std::async(std::launch::async, [&] {
        KORO_EventHandle event = nullptr;
        return Outcome(KORO_EventController_WaitForEvent(controller, KORO_INFINITE, &event));
    });
    producer->AwaitWaiters(1);
    CallAtAGate kill(producer, "EventKill");
    producer->ClearJournal();
    kill.Enter([&] { return GetParam().end(tree); });
    CallAtAGate close(producer, "DSClose");
    close.Enter([] { return KORO_Library_Close(); });

    EXPECT_EQ(kill.Leave(), Error{});
    EXPECT_EQ(waiter.get(), aborted);
    EXPECT_EQ(Closes(), Strings{fromTheLeaves[0]});
    EXPECT_EQ(close.Leave(), Error{});
    EXPECT_EQ(Closes(), fromTheLeaves);
    EXPECT_EQ(producer->InitCount(), 0);
    Require(KORO_Library_Initialize());
}

INSTANTIATE_TEST_SUITE_P(
    Closing, EndBesideTheLibrarysClose,
    testing::Values(
        WaitEnd{"OfTheDevice", [](const OpenTree& tree) { return KORO_Device_Destruct(tree.device); }},
        WaitEnd{"OfTheInterface", [](const OpenTree& tree) { return KORO_Interface_Destruct(tree.interface); }},
        WaitEnd{"OfTheSystem", [](const OpenTree& tree) { return KORO_System_Destruct(tree.system); }},
        WaitEnd{
            "OfTheProducerLibrary",
            [](const OpenTree& tree) { return KORO_ProducerLibrary_Destruct(tree.producerLibrary); }}),
    [](const auto& end) { return end.param.name; });

TEST_F(Closing, OfTheWholeLibraryLeavesToAnEndThatIsRunningWhatThatHasBegun)
{
    CallAtAGate close(producer, "IFClose");
    close.Enter([&] { return KORO_Interface_Destruct(tree.interface); });
    EXPECT_EQ(Outcome(KORO_Library_Close()), Error{});
    EXPECT_EQ(Closes(), Strings{"IFClose(if0)"});
    EXPECT_EQ(close.Leave(), Error{});
    EXPECT_EQ(Closes(), (Strings{"IFClose(if0)", "DevClose(dead)", "TLClose(system)", "GCCloseLib()"}));
    EXPECT_EQ(producer->InitCount(), 0);
    Require(KORO_Library_Initialize());
}

TEST_F(Closing, WaitForAnEventEndsWithItsController)
{
    const auto controller = EnableEvents(GenTL::EVENT_ERROR);
    auto waiter = std::async(std::launch::async, [&] {
        KORO_EventHandle event = nullptr;
        return Outcome(KORO_EventController_WaitForEvent(controller, KORO_INFINITE, &event));
    });
    producer->AwaitWaiters(1);
    EXPECT_EQ(Outcome(KORO_EventController_Destruct(controller)), Error{});
    EXPECT_EQ(waiter.get(), aborted);
    EXPECT_EQ(CallsOf({"GCUnregisterEvent"}).size(), 1u);
}

TEST_F(Closing, AnnouncementThatFailsInAnEndedStreamIsTakenBackWithoutItsCallback)
{
    Memory memory{};
    std::atomic<int> numCalls{0};
    CallAtAGate announcement(producer, "DSAnnounceBuffer");
    announcement.Enter([&] {
        const auto count = [](void*, void*, void* calls) { ++*static_cast<std::atomic<int>*>(calls); };
        KORO_BufferHandle buffer = nullptr;
        return KORO_DataStream_AnnounceBuffer(
            tree.stream, memory.data(), memory.size(), nullptr, count, &numCalls, &buffer);
    });
    Require(KORO_DataStream_Destruct(tree.stream));
    EXPECT_EQ(announcement.Leave(), (Error{KORO_RETURN_CODE_ERROR, "Pointer has expired!"}));
    EXPECT_EQ(CallsOf({"DSRevokeBuffer"}).size(), 1u);
    EXPECT_EQ(numCalls, 0);
}

namespace
{

// Another producer's tree, which a thread is ending, and what a callback asks it that runs in an end of the first one.
struct QuestionToAnEndedTree
{
    const char* name;
    std::function<std::function<KORO_ReturnCode()>(const OpenTree&)> of;
    const char* handle;
};

const std::vector<QuestionToAnEndedTree> questions = {
    {"ReadsAPort",
     [](const OpenTree& tree) {
         return ReadOf(PortOf(Get<KORO_ModuleHandle>(KORO_Interface_ToModule, tree.interface)));
     },
     "portHandle"},
    {"AsksAModule", [](const OpenTree& tree) { return InfoOf(KORO_Device_GetInfo, tree.device); }, "deviceHandle"},
    {"EndsAnInterface",
     [](const OpenTree& tree) { return [handle = tree.interface] { return KORO_Interface_Destruct(handle); }; },
     "interfaceHandle"},
    {"EndsADevice",
     [](const OpenTree& tree) { return [handle = tree.device] { return KORO_Device_Destruct(handle); }; },
     "deviceHandle"},
    {"EndsAStream",
     [](const OpenTree& tree) { return [handle = tree.stream] { return KORO_DataStream_Destruct(handle); }; },
     "dataStreamHandle"},
};

// Nothing of the other tree answers, and its producer is not called, while `callback` asks. It runs inside TLClose.
void ExpectEndedForTheCallback(
    const QuestionToAnEndedTree& question, const std::function<void(const std::function<void()>&)>& runCallback)
{
    const ScriptedProducer other;
    const OpenTree otherTree(other.Path());
    const auto ask = question.of(otherTree);
    other->ClearJournal();
    CallAtAGate close(other, "TLClose");
    close.Enter([&] { return KORO_ProducerLibrary_Destruct(otherTree.producerLibrary); });

    std::optional<Error> answer;
    runCallback([&] { answer = Outcome(ask()); });
    EXPECT_EQ(answer, InvalidHandle(question.handle));
    EXPECT_THAT(CallsOf(other->Journal(), {"GCReadPort", "DevGetInfo", "IFClose", "DevClose", "DSClose"}), IsEmpty());
    EXPECT_EQ(close.Leave(), Error{});
    EXPECT_EQ(other->InitCount(), 0);
}

} // namespace

class RevocationDuringAnEndElsewhere : public Closing, public testing::WithParamInterface<QuestionToAnEndedTree>
{};

TEST_P(RevocationDuringAnEndElsewhere, FindsThatEnded)
{
    ExpectEndedForTheCallback(GetParam(), [&](const std::function<void()>& ask) {
        Memory memory{};
        const auto callback = [](void*, void*, void* context) {
            (*static_cast<const std::function<void()>*>(context))();
        };
        std::function<void()> function = ask;
        Announce(memory, callback, &function);
        Require(KORO_DataStream_Destruct(tree.stream));
    });
}

class UpdateDuringAnEndElsewhere : public FirmwareTest, public testing::WithParamInterface<QuestionToAnEndedTree>
{};

TEST_P(UpdateDuringAnEndElsewhere, FindsThatEndedInItsReports)
{
    ExpectEndedForTheCallback(GetParam(), [&](const std::function<void()>& ask) {
        observer.onReport = [&](const std::string& report) {
            if (report == "step 1 finished") ask();
        };
        EXPECT_EQ(Apply(FileWithSteps(firmware::WriteGain("7"))), Error{});
        observer.onReport = nullptr;
    });
    EXPECT_EQ(Gain(), 7u);
}

const auto nameOfQuestion = [](const auto& question) { return question.param.name; };
INSTANTIATE_TEST_SUITE_P(Closing, RevocationDuringAnEndElsewhere, testing::ValuesIn(questions), nameOfQuestion);
INSTANTIATE_TEST_SUITE_P(Closing, UpdateDuringAnEndElsewhere, testing::ValuesIn(questions), nameOfQuestion);

TEST_F(Closing, EndWithoutAWaiterKillsNothing)
{
    Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
    Require(KORO_Device_Destruct(tree.device));
    EXPECT_THAT(CallsOf({"EventKill"}), IsEmpty());
}

} // namespace koro::test
