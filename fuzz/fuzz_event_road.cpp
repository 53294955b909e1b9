// Event messages as an application uses them: received from the local device and passed to the map of the camera. The
// first byte selects the transport layer. Then come messages, each with a length of two bytes. The answers of the
// exports and the values of the nodes are compared with a second parser of the messages.
#include "fuzz/camera_road.h"
#include "fuzz/event_reading.h"
#include "fuzz/fuzz_target.h"

#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace
{

using namespace koro::fuzz;

const char* const tlTypes[] = {"GEV", "U3V", "CL", "1394"};
constexpr std::size_t maxMessages = 6;
constexpr std::size_t addresses[] = {0, 2, 12, 16};

std::string NameOf(std::uint64_t id, std::size_t address)
{
    return "I" + std::to_string(id) + "At" + std::to_string(address);
}

// For each id a port and two bytes at some offsets of its item.
std::string Nodes()
{
    std::string text;
    for (const std::uint64_t id : ids)
    {
        char digits[20];
        std::snprintf(digits, sizeof digits, "%04llx", static_cast<unsigned long long>(id));
        text += std::string("<Port Name=\"P") + digits + "\"><EventID>" + digits + "</EventID></Port>";
        for (const std::size_t address : addresses)
        {
            text += "<IntReg Name=\"" + NameOf(id, address) + "\"><Address>" + std::to_string(address) +
                    "</Address><Length>2</Length><AccessMode>RO</AccessMode><pPort>P" + digits +
                    "</pPort><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>";
        }
    }
    return text;
}

Events Read(std::size_t layer, const Bytes& message)
{
    switch (layer)
    {
    case 0:
        return ReadGigEVision(message);
    case 1:
        return ReadUSB3Vision(message);
    case 2:
        return ReadCameraLink(message);
    default:
        if (message.empty() || message[0] != 0) return std::nullopt;
        return std::vector<ReadEvent>();
    }
}

// A camera and the latest event of each id, which the nodes keep from one input to the next.
struct Receiver
{
    const RoadCamera& camera;
    const std::size_t layer;
    std::map<std::uint64_t, Bytes> latest;

    void Deliver(scripted::Script& producer, const Bytes& message)
    {
        const std::string block(message.begin(), message.end());
        Require(producer.Fire(camera.id, GenTL::EVENT_REMOTE_DEVICE, block), "the event is fired");
        KORO_EventHandle event = nullptr;
        RequireSuccess(KORO_EventController_WaitForEvent(camera.controller, 0, &event));
        KORO_Bool8 isSupported = 0;
        RequireSuccess(KORO_NodeMap_GetHasEventSupportedData(camera.map, event, &isSupported));
        Require(isSupported == 1, "an event of the camera is supported, whatever it says");

        const Events events = Read(layer, message);
        const KORO_ReturnCode code = KORO_NodeMap_UpdateEventNodes(camera.map, event);
        Require(code == (events ? KORO_RETURN_CODE_SUCCESS : KORO_RETURN_CODE_ERROR), "the second reading agrees");
        RequireSuccess(KORO_Event_Destruct(event)); // the nodes keep the data
        for (const ReadEvent& found : events.value_or(std::vector<ReadEvent>()))
            latest[found.id] = found.bytes;
        CheckNodes();
    }

    void CheckNodes() const
    {
        for (const std::uint64_t id : ids)
        {
            for (const std::size_t address : addresses)
                CheckNode(id, address);
        }
    }
    void CheckNode(std::uint64_t id, std::size_t address) const
    {
        const RoadNode& node = camera.Node(NameOf(id, address));
        KORO_NodeAccessStatus status = KORO_NODE_ACCESS_STATUS_UNDEFINED;
        RequireSuccess(KORO_Node_GetAccessStatus(node.node, &status));
        const auto event = latest.find(id);
        const bool isDelivered = event != latest.end();
        Require((status == KORO_NODE_ACCESS_STATUS_READ_ONLY) == isDelivered, "a node is there with its event");
        if (!isDelivered) return;
        std::int64_t value = 0;
        const KORO_ReturnCode code = KORO_IntegerNode_GetValue(node.integer, KORO_NODE_CACHE_POLICY_USE_CACHE, &value);
        const Bytes& bytes = event->second;
        if (bytes.size() < address + 2)
        {
            Require(code == KORO_RETURN_CODE_ERROR, "nothing is read behind the event");
            return;
        }
        Require(code == KORO_RETURN_CODE_SUCCESS, "a node over its event is read");
        Require(static_cast<std::uint64_t>(value) == NumberAt(bytes, address, 2, true), "nodes see the event");
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const CameraRoad& road = *new CameraRoad({std::begin(tlTypes), std::end(tlTypes)}, Nodes());
    static std::vector<Receiver>& receivers = *[] {
        auto* const made = new std::vector<Receiver>;
        for (std::size_t layer = 0; layer < std::size(tlTypes); ++layer)
            made->push_back({road.Cameras()[layer], layer, {}});
        road.Producer().SetInfo("EventGetInfo", GenTL::EVENT_SIZE_MAX, scripted::Size(0x10000));
        return made;
    }();
    const std::size_t layer = CameraRoad::Number(data, size, 1) % std::size(tlTypes);
    for (std::size_t message = 0; message < maxMessages && size > 0; ++message)
        receivers[layer].Deliver(road.Producer(), CameraRoad::Piece(data, size));
    return 0;
}
