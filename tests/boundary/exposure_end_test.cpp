// The end of an exposure on the simulator's default cameras: waited for, passed to the node map, and reported to
// callbacks.
#include "tests/support/boundary.h"
#include "tests/support/environment_variable.h"
#include "tests/support/scripted_producer.h"

#include <gtest/gtest.h>
#include <string>

using namespace koro::test;

namespace
{

constexpr std::int32_t remoteDeviceEvent = 4;

struct Camera
{
    const char* name;
    std::size_t interface; // GigE Vision, USB3 Vision
};

class ExposureEnd : public testing::TestWithParam<Camera>
{
protected:
    ExposureEnd()
    {
        Require(KORO_Node_RegisterChangedCallback(
            Find("EventExposureEndFrameID"),
            [](KORO_NodeHandle, void* context) { ++static_cast<ExposureEnd*>(context)->numChanges; }, this, &callback));
    }

    KORO_NodeHandle Find(const std::string& feature) const
    {
        return Get<KORO_NodeHandle>(KORO_NodeMap_FindNode, map, feature.c_str(), feature.size() + 1);
    }
    std::uint64_t Value(const std::string& feature) const
    {
        const auto integer = Get<KORO_IntegerNodeHandle>(KORO_Node_ToIntegerNode, Find(feature));
        return static_cast<std::uint64_t>(Get<std::int64_t>(
            KORO_IntegerNode_GetValue, integer, static_cast<std::int32_t>(KORO_NODE_CACHE_POLICY_USE_CACHE)));
    }
    void Start(std::uint64_t number) const
    {
        Require(KORO_DataStream_StartAcquisition(tree.stream, KORO_ACQ_START_FLAGS_DEFAULT, number));
        Require(
            KORO_CommandNode_Execute(Get<KORO_CommandNodeHandle>(KORO_Node_ToCommandNode, Find("AcquisitionStart"))));
    }

    const EnvironmentVariable noSettings{"KORO_SIMULATOR_CONFIG", std::nullopt};
    const KoroLibrary library;
    const OpenTree tree{BuiltProducer("zvr_koro_simulator"), GetParam().interface, 0};
    const KORO_NodeMapHandle map = Get<KORO_NodeMapHandle>(
        KORO_Module_GetNodeMap, Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice), std::size_t{0});
    const KORO_EventControllerHandle events = Get<KORO_EventControllerHandle>(
        KORO_EventSupportingModule_EnableEvents,
        Get<KORO_EventSupportingModuleHandle>(KORO_Device_ToEventSupportingModule, tree.device), remoteDeviceEvent);
    KORO_NodeChangedCallbackHandle callback = nullptr;
    int numChanges = 0;
};

INSTANTIATE_TEST_SUITE_P(
    Cameras, ExposureEnd, testing::Values(Camera{"GigEVision", 0}, Camera{"USB3Vision", 1}),
    [](const auto& camera) { return camera.param.name; });

} // namespace

TEST_P(ExposureEnd, ReachesCallbacksAndNodesWithTheNumberAndTheTimeOfItsImage)
{
    EXPECT_NE(
        Get<KORO_NodeAccessStatus>(KORO_Node_GetAccessStatus, Find("EventExposureEndFrameID")),
        KORO_NODE_ACCESS_STATUS_READ_ONLY)
        << "none came yet";
    constexpr std::uint64_t numFrames = 3;
    for (std::uint64_t frame = 0; frame < numFrames; ++frame)
        Require(KORO_DataStream_QueueBuffer(
            tree.stream,
            Get<KORO_BufferHandle>(
                KORO_DataStream_AllocAndAnnounceBuffer, tree.stream,
                Get<std::size_t>(KORO_DataStream_GetPayloadSize, tree.stream), static_cast<void*>(nullptr))));
    Start(numFrames);
    for (std::uint64_t frame = 1; frame <= numFrames; ++frame)
    {
        const auto buffer = Get<KORO_BufferHandle>(KORO_DataStream_WaitForFinishedBuffer, tree.stream, patience_ms);
        const auto event = Get<KORO_EventHandle>(KORO_EventController_WaitForEvent, events, patience_ms);
        EXPECT_EQ(Get<std::uint64_t>(KORO_Event_GetID, event), 0x9001u);
        EXPECT_NE(Get<KORO_Bool8>(KORO_NodeMap_GetHasEventSupportedData, map, event), 0);
        numChanges = 0;
        Require(KORO_NodeMap_UpdateEventNodes(map, event));
        EXPECT_GE(numChanges, 1);
        EXPECT_EQ(Value("EventExposureEnd"), 0x9001u);
        EXPECT_EQ(Value("EventExposureEndFrameID"), Get<std::uint64_t>(KORO_Buffer_GetFrameID, buffer));
        EXPECT_EQ(Value("EventExposureEndTimestamp"), Get<std::uint64_t>(KORO_Buffer_GetTimestamp_ns, buffer));
        Require(KORO_Event_Destruct(event));
    }
}
