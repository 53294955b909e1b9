// Events as nodes: to which map an event belongs, which adapter reads it, and what reaches the nodes.
#include "tests/boundary/event_nodes_test.h"

#include "tests/boundary/lock_elsewhere.h"
#include "tests/support/in_thread.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace koro::test
{

namespace
{

using namespace GenTL;
using testing::HasSubstr;

class EventNodes : public EventNodesTest
{
protected:
    KORO_NodeMapHandle LocalMap() const
    {
        const auto module = Get<KORO_ModuleHandle>(KORO_Device_ToModule, tree.device);
        return Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0});
    }
    static std::string EventOf(const std::string& tlType, std::uint32_t value)
    {
        if (tlType == "U3V") return U3VEvent(0x9001, LittleEndian(value, 4));
        if (tlType == "CL") return CLEvent(0x9001, BigEndian(value, 4));
        return GEVEvent(0x9001, BigEndian(value, 4));
    }
    static const std::string& FeaturesOf(const std::string& tlType)
    {
        return tlType == "U3V" ? u3vFeatures : tlType == "CL" ? clFeatures : gevFeatures;
    }
    void OnChange(const std::string& feature, std::function<void()> function)
    {
        callback = std::move(function);
        KORO_NodeChangedCallbackHandle ignored = nullptr;
        Require(KORO_Node_RegisterChangedCallback(
            Find(map, feature), [](KORO_NodeHandle, void* context) { static_cast<EventNodes*>(context)->callback(); },
            this, &ignored));
    }
    std::function<void()> callback;
};

} // namespace

TEST_F(EventNodes, EventOfTheCameraBelongsToTheMapOfTheRemoteDeviceAndNotToThatOfTheLocalOne)
{
    const auto event = Take(EventOf("GEV", 7));
    EXPECT_TRUE(IsSupported(map, event));
    EXPECT_FALSE(IsSupported(LocalMap(), event));
    EXPECT_EQ(Outcome(KORO_NodeMap_UpdateEventNodes(LocalMap(), event)), notSupported);
    EXPECT_EQ(Update(event), Error{});
    EXPECT_EQ(Value("Exposure"), 7);
}

TEST_F(EventNodes, EveryMapOfTheRemoteDeviceTakesItsEvents)
{
    producer->Edit([](scripted::Tree& edited) {
        scripted::Port& port = RemotePort(edited);
        port.urls.push_back(port.urls[0]);
    });
    Reopen();
    controller = Enable(deviceID, EVENT_REMOTE_DEVICE);
    const auto event = Take(EventOf("GEV", 7));
    for (const std::size_t index : {0u, 1u})
    {
        map = NodeMapOf(tree.remoteDevice, index);
        EXPECT_TRUE(IsSupported(map, event));
        EXPECT_EQ(Value("Exposure"), std::nullopt);
        EXPECT_EQ(Update(event), Error{});
        EXPECT_EQ(Value("Exposure"), 7);
    }
}

TEST_F(EventNodes, EventOfOneCameraIsNotThatOfAnother)
{
    const auto descriptor = Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, tree.interface, std::size_t{1});
    const auto other = Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, descriptor, OpenTree::exclusiveAccess);
    const auto otherMap = NodeMapOf(Get<KORO_RemoteDeviceHandle>(KORO_Device_GetRemoteDevice, other));
    EXPECT_FALSE(IsSupported(otherMap, Take(EventOf("GEV", 7))));
}

TEST_F(EventNodes, EventOfTheCameraFromAnotherModuleThanADeviceViolatesTheStandard)
{
    const Error violation{KORO_RETURN_CODE_ERROR, "Violation of GenTL remote device event specification detected!"};
    for (const std::string module : {"system", "if0", "if0-dev0-stream0"})
    {
        SCOPED_TRACE(module);
        const auto event = Take(Enable(module, EVENT_REMOTE_DEVICE), module, EVENT_REMOTE_DEVICE, EventOf("GEV", 7));
        EXPECT_EQ(OutcomeOfSupport(event), violation);
        EXPECT_EQ(Update(event), violation);
    }
    EXPECT_EQ(Value("Exposure"), std::nullopt);
}

TEST_F(EventNodes, EventWhoseControllerHasGoneHasExpired)
{
    // At the exports only during a call: the handle of the event ends with its controller.
    const auto event = Take(EventOf("GEV", 7));
    producer->OnEntry("GCGetPortInfo", [&] { KORO_EventController_Destruct(controller); });
    EXPECT_EQ(OutcomeOfSupport(event), parentExpired);
    producer->OnEntry("GCGetPortInfo", {});
    EXPECT_EQ(OutcomeOfSupport(event), InvalidHandle("eventHandle"));
    EXPECT_EQ(Update(event), InvalidHandle("eventHandle"));
}

TEST_F(EventNodes, EventOfAModuleBelongsToItsOwnMapByItsType)
{
    const std::pair<std::int32_t, bool> types[] = {
        {EVENT_ERROR, false},
        {EVENT_FEATURE_INVALIDATE, true},
        {EVENT_FEATURE_CHANGE, true},
        {EVENT_MODULE, true},
        {6, false},
        {999, false},
        {EVENT_CUSTOM_ID, true},
        {1001, true},
        {0x7fffffff, true},
        {-1, false}};
    map = LocalMap();
    for (const auto& [type, isSupported] : types)
    {
        SCOPED_TRACE(type);
        const auto event = Take(Enable(deviceID, type), deviceID, type, EventOf("GEV", 7));
        EXPECT_EQ(IsSupported(map, event), isSupported);
        EXPECT_EQ(Update(event), isSupported ? Error{} : notSupported);
    }
}

TEST_F(EventNodes, ErrorAndNewBufferAreNeverSupported)
{
    const std::string stream = "if0-dev0-stream0";
    const auto module = ModuleOf(stream);
    for (const std::int32_t type : {EVENT_ERROR, EVENT_NEW_BUFFER})
    {
        SCOPED_TRACE(type);
        const auto from = Get<KORO_EventControllerHandle>(KORO_EventSupportingModule_EnableEvents, module, type);
        const auto event = Take(from, stream, type, std::string(16, '\0'));
        EXPECT_FALSE(IsSupported(map, event));
        EXPECT_EQ(Update(event), notSupported);
    }
}

TEST_F(EventNodes, EventOfAnotherModuleIsNotSupported)
{
    for (const std::string module : {"system", "if0", "if0-dev0", "if0-dev0-stream0"})
    {
        SCOPED_TRACE(module);
        const auto event = Take(Enable(module, EVENT_CUSTOM_ID), module, EVENT_CUSTOM_ID, EventOf("GEV", 7));
        EXPECT_FALSE(IsSupported(map, event));
        EXPECT_EQ(Update(event), notSupported);
        EXPECT_EQ(IsSupported(LocalMap(), event), module == deviceID);
    }
}

TEST_F(EventNodes, EventsOfEachTransportLayerWithAnAdapterAreRead)
{
    for (const std::string tlType : {"GEV", "U3V", "CL"})
    {
        SCOPED_TRACE(tlType);
        OpenAs(tlType, FeaturesOf(tlType));
        const auto event = Take(EventOf(tlType, 7));
        EXPECT_TRUE(IsSupported(map, event));
        EXPECT_EQ(Value("Exposure"), std::nullopt);
        EXPECT_EQ(Update(event), Error{});
        EXPECT_EQ(Value("Exposure"), 7);
    }
}

TEST_F(EventNodes, EventsOf1394AreTakenAndUpdateNothing)
{
    OpenAs("1394", gevFeatures);
    EXPECT_TRUE(IsSupported(map, Take("block")));
    EXPECT_EQ(Update(Take(std::string(16, '\0'))), Error{});
    EXPECT_EQ(Value("Exposure"), std::nullopt);
    EXPECT_THAT(Update(Take("block")).text, HasSubstr("Malformed message: corrupted"));
}

TEST_F(EventNodes, EveryOtherTransportLayerIsRefusedByItsText)
{
    for (const std::string tlType : {"IIDC", "CXP", "CLHS", "UVC", "Mixed", "Custom", "gev", "1394 ", ""})
    {
        SCOPED_TRACE(tlType);
        OpenAs(tlType, gevFeatures);
        const auto event = Take(EventOf("GEV", 7));
        const Error refusal{KORO_RETURN_CODE_ERROR, "Event adapter for TLType " + tlType + " not supported!"};
        EXPECT_EQ(OutcomeOfSupport(event), refusal);
        EXPECT_EQ(Update(event), refusal);
    }
}

TEST_F(EventNodes, UnsupportedTransportLayerIsToldBeforeAnythingOfTheEvent)
{
    OpenAs("IIDC", gevFeatures);
    const auto event = Take(Enable("system", EVENT_REMOTE_DEVICE), "system", EVENT_REMOTE_DEVICE, "block");
    EXPECT_THAT(OutcomeOfSupport(event).text, HasSubstr("Event adapter for TLType IIDC"));
}

TEST_F(EventNodes, TransportLayerIsAskedUntilItIsKnownAndThenNoMore)
{
    const auto event = Take(EventOf("GEV", 7));
    const auto asked = [&] {
        const auto calls = CallsOf(producer->Journal(), {"GCGetPortInfo"});
        return std::count(calls.begin(), calls.end(), "GCGetPortInfo(if0-dev0-remote, 3, size)");
    };
    Find(map, "Exposure"); // so that the map is there
    producer->SetInfo("GCGetPortInfo", PORT_INFO_TLTYPE, scripted::Failing(GC_ERR_IO));
    EXPECT_EQ(Update(event).code, KORO_RETURN_CODE_IO_ERROR);
    producer->SetInfo("GCGetPortInfo", PORT_INFO_TLTYPE, scripted::Text("GEV"));
    producer->ClearJournal();
    for (int time = 0; time < 3; ++time)
        EXPECT_EQ(Update(event), Error{});
    EXPECT_EQ(asked(), 1);
    producer->SetInfo("GCGetPortInfo", PORT_INFO_TLTYPE, scripted::Text("U3V"));
    EXPECT_EQ(Update(event), Error{});
    EXPECT_EQ(asked(), 1);
}

TEST_F(EventNodes, NodesKeepTheDataAfterTheEventAndUntilTheNextOfItsId)
{
    const auto event = Take(EventOf("GEV", 7));
    Require(KORO_NodeMap_UpdateEventNodes(map, event));
    Require(KORO_Event_Destruct(event));
    Require(KORO_EventController_Destruct(controller));
    Require(KORO_NodeMap_InvalidateNodes(map));
    EXPECT_EQ(Value("Exposure"), 7);

    controller = Enable(deviceID, EVENT_REMOTE_DEVICE);
    Require(KORO_NodeMap_UpdateEventNodes(map, Take(GEVEvent(0x9002, BigEndian(9, 4)))));
    EXPECT_EQ(Value("Exposure"), 7);
    EXPECT_EQ(Value("Line"), 9);
    Require(KORO_NodeMap_UpdateEventNodes(map, Take(EventOf("GEV", 8))));
    EXPECT_EQ(Value("Exposure"), 8);
}

TEST_F(EventNodes, CallbacksRunInTheCallOnItsThreadWithTheLockHeld)
{
    std::vector<std::thread::id> toldOn;
    OnChange("Exposure", [&] {
        toldOn.push_back(std::this_thread::get_id());
        EXPECT_FALSE(InThread([&] { return Get<KORO_Bool8>(KORO_NodeMap_TryLock, map) != 0; }));
    });
    const auto event = Take(EventOf("GEV", 7));
    const auto caller = InThread([&] {
        Require(KORO_NodeMap_UpdateEventNodes(map, event));
        return std::this_thread::get_id();
    });
    EXPECT_EQ(toldOn, std::vector{caller});
    EXPECT_TRUE(InThread([&] {
        const bool isFree = Get<KORO_Bool8>(KORO_NodeMap_TryLock, map) != 0;
        if (isFree) Require(KORO_NodeMap_Unlock(map));
        return isFree;
    }));
}

TEST_F(EventNodes, CallbackMayDeliverTheNextEvent)
{
    const auto next = Take(EventOf("GEV", 8));
    bool isFirstCall = true;
    OnChange("Exposure", [&] {
        if (std::exchange(isFirstCall, false)) Require(KORO_NodeMap_UpdateEventNodes(map, next));
    });
    EXPECT_EQ(Update(Take(EventOf("GEV", 7))), Error{});
    EXPECT_EQ(Value("Exposure"), 8);
}

TEST_F(EventNodes, EndOfTheMapCallsNobodyAndEndsThoughItsLockIsHeld)
{
    Require(KORO_NodeMap_UpdateEventNodes(map, Take(EventOf("GEV", 7))));
    bool isCalled = false;
    OnChange("Exposure", [&] { isCalled = true; });
    const LockElsewhere lock(map);
    EXPECT_EQ(Outcome(KORO_Device_Destruct(tree.device)), Error{});
    EXPECT_FALSE(isCalled);
}

TEST_F(EventNodes, DeadHandlesAndNullOutputsAreReported)
{
    const auto event = Take(EventOf("GEV", 7));
    EXPECT_EQ(
        Outcome(KORO_NodeMap_GetHasEventSupportedData(nullptr, nullptr, nullptr)), InvalidHandle("nodeMapHandle"));
    EXPECT_EQ(Outcome(KORO_NodeMap_GetHasEventSupportedData(map, nullptr, nullptr)), InvalidHandle("eventHandle"));
    EXPECT_EQ(Outcome(KORO_NodeMap_GetHasEventSupportedData(map, event, nullptr)), NullPointer("hasSupportedData"));
    EXPECT_EQ(Outcome(KORO_NodeMap_UpdateEventNodes(nullptr, event)), InvalidHandle("nodeMapHandle"));
    EXPECT_EQ(Outcome(KORO_NodeMap_UpdateEventNodes(map, nullptr)), InvalidHandle("eventHandle"));
}

} // namespace koro::test
