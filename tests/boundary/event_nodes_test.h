// EventNodesTest: a described camera, and events that its local device and other modules hand out.
#pragma once

#include "tests/boundary/described_camera.h"
#include "tests/boundary/producer_errors.h"
#include "tests/support/event_messages.h"

#include <cstdint>
#include <optional>
#include <string>

namespace koro::test
{

// A port for the event of this id, and an integer over the four bytes at `offset` in its item.
inline std::string EventFeature(
    const std::string& name, const std::string& id, std::size_t offset, const std::string& endianess)
{
    return "<Port Name=\"" + name + "Port\"><EventID>" + id + "</EventID></Port><IntReg Name=\"" + name +
           "\"><Address>" + std::to_string(offset) + "</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>" +
           name + "Port</pPort><Sign>Unsigned</Sign><Endianess>" + endianess + "</Endianess></IntReg>";
}

class EventNodesTest : public DescribedCamera
{
protected:
    static inline const std::string gevFeatures =
        EventFeature("Exposure", "9001", 16, "BigEndian") + EventFeature("Line", "9002", 16, "BigEndian");
    static inline const std::string u3vFeatures =
        EventFeature("Exposure", "9001", 12, "LittleEndian") + EventFeature("Line", "9002", 12, "LittleEndian");
    static inline const std::string clFeatures =
        EventFeature("Exposure", "9001", 12, "BigEndian") + EventFeature("Line", "9002", 12, "BigEndian");

    EventNodesTest() { OpenAs("GEV", gevFeatures); }

    // The camera with these nodes, on a port of this transport layer.
    void OpenAs(const std::string& tlType, const std::string& nodes)
    {
        producer->Edit(
            [&](scripted::Tree& edited) { RemotePort(edited).info[GenTL::PORT_INFO_TLTYPE] = scripted::Text(tlType); });
        map = Describe(nodes);
        controller = Enable(deviceID, GenTL::EVENT_REMOTE_DEVICE);
    }

    KORO_EventControllerHandle Enable(const std::string& moduleID, std::int32_t type) const
    {
        return Get<KORO_EventControllerHandle>(KORO_EventSupportingModule_EnableEvents, ModuleOf(moduleID), type);
    }
    KORO_EventSupportingModuleHandle ModuleOf(const std::string& moduleID) const
    {
        using Handle = KORO_EventSupportingModuleHandle;
        if (moduleID == "system") return Get<Handle>(KORO_System_ToEventSupportingModule, tree.system);
        if (moduleID == "if0") return Get<Handle>(KORO_Interface_ToEventSupportingModule, tree.interface);
        if (moduleID == deviceID) return Get<Handle>(KORO_Device_ToEventSupportingModule, tree.device);
        const auto descriptor =
            Get<KORO_DataStreamDescriptorHandle>(KORO_Device_GetDataStream, tree.device, std::size_t{0});
        return Get<Handle>(
            KORO_DataStream_ToEventSupportingModule,
            Get<KORO_DataStreamHandle>(KORO_DataStreamDescriptor_OpenDataStream, descriptor));
    }
    KORO_EventHandle Take(
        KORO_EventControllerHandle from, const std::string& moduleID, std::int32_t type, const std::string& block) const
    {
        if (!producer->Fire(moduleID, type, block)) throw std::runtime_error("nobody listens");
        return Get<KORO_EventHandle>(KORO_EventController_WaitForEvent, from, std::uint64_t{0});
    }
    // An event of the camera.
    KORO_EventHandle Take(const std::string& block) const
    {
        return Take(controller, deviceID, GenTL::EVENT_REMOTE_DEVICE, block);
    }

    bool IsSupported(KORO_NodeMapHandle by, KORO_EventHandle event) const
    {
        return Get<KORO_Bool8>(KORO_NodeMap_GetHasEventSupportedData, by, event) != 0;
    }
    Error OutcomeOfSupport(KORO_EventHandle event) const
    {
        KORO_Bool8 ignored = 0;
        return Outcome(KORO_NodeMap_GetHasEventSupportedData(map, event, &ignored));
    }
    Error Update(KORO_EventHandle event) const { return Outcome(KORO_NodeMap_UpdateEventNodes(map, event)); }

    // Empty when the node cannot be read.
    std::optional<std::int64_t> Value(const std::string& name) const
    {
        const auto node = Find(map, name);
        const auto status = Get<KORO_NodeAccessStatus>(KORO_Node_GetAccessStatus, node);
        if (status != KORO_NODE_ACCESS_STATUS_READ_ONLY && status != KORO_NODE_ACCESS_STATUS_READ_WRITE) return {};
        const auto integer = Get<KORO_IntegerNodeHandle>(KORO_Node_ToIntegerNode, node);
        return Get<std::int64_t>(
            KORO_IntegerNode_GetValue, integer, static_cast<std::int32_t>(KORO_NODE_CACHE_POLICY_USE_CACHE));
    }

    static inline const std::string deviceID = "if0-dev0";
    static inline const Error notSupported{KORO_RETURN_CODE_INVALID_ARGUMENT, "Event does not have supported data!"};
    KORO_NodeMapHandle map = nullptr;
    KORO_EventControllerHandle controller = nullptr;
};

} // namespace koro::test
