// Event messages. The first byte selects the transport layer; the rest is the message, in a heap block of its size. The
// data that reach the nodes are compared with a second parser of the message.
#include "fuzz/event_reading.h"
#include "fuzz/fuzz_target.h"

#include <GenApi/EventAdapter1394.h>
#include <GenApi/EventAdapterCL.h>
#include <GenApi/EventAdapterGEV.h>
#include <GenApi/EventAdapterGeneric.h>
#include <GenApi/EventAdapterU3V.h>
#include <GenApi/NodeMapFactory.h>
#include <GenApi/NodeMapRef.h>
#include <GenICam.h>
#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace GENAPI_NAMESPACE;
using GENICAM_NAMESPACE::RuntimeException;
using namespace koro::fuzz;

// The node map with a port for each id, and the nodes that its callbacks have reported.
class Watched
{
public:
    Watched()
    {
        std::string text = "<RegisterDescription ModelName=\"M\" VendorName=\"V\" StandardNameSpace=\"None\" "
                           "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" "
                           "MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" ProductGuid=\"p\" "
                           "VersionGuid=\"v\" xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">";
        for (const std::uint64_t id : ids)
        {
            char digits[20];
            std::snprintf(digits, sizeof digits, "%04llx", static_cast<unsigned long long>(id));
            text += std::string("<Port Name=\"P") + digits + "\"><EventID>" + digits + "</EventID></Port>";
        }
        CNodeMapFactory factory((text + "</RegisterDescription>").c_str());
        map = factory.CreateNodeMap();
        NodeList_t nodes;
        map->GetNodes(nodes);
        for (INode* const node : nodes)
            Register(node, *this, &Watched::Changed);
    }

    void Expect(const Events& events)
    {
        expected.clear();
        if (!events) return;
        for (const ReadEvent& event : *events)
        {
            if (IsKnown(event.id)) expected.push_back(event);
        }
        seen = 0;
    }
    void CheckAllSeen() const { Require(seen == expected.size(), "all events reach their nodes"); }

    INodeMap* map;

private:
    void Changed(INode* node)
    {
        Require(seen < expected.size(), "no event is made up");
        const ReadEvent& event = expected[seen++];
        const std::string id = node->GetEventID().c_str();
        Require(std::stoull(id, nullptr, 16) == event.id, "an event reaches the node of its id");
        IPort& port = *dynamic_cast<IPort*>(node);
        Bytes bytes(event.bytes.size());
        if (!bytes.empty()) port.Read(bytes.data(), 0, static_cast<std::int64_t>(bytes.size()));
        Require(bytes == event.bytes, "the port shows the bytes of the event");
        bool refused = false;
        try
        {
            std::uint8_t byte = 0;
            port.Read(&byte, static_cast<std::int64_t>(bytes.size()), 1);
        }
        catch (const RuntimeException&)
        {
            refused = true;
        }
        Require(refused, "nothing is read behind the event");
    }

    std::vector<ReadEvent> expected;
    std::size_t seen = 0;
};

void CheckDelivery(Watched& watched, const Events& events, const std::function<void()>& deliver)
{
    watched.Expect(events ? events : Events(std::vector<ReadEvent>()));
    bool refused = false;
    try
    {
        deliver();
    }
    catch (const RuntimeException& exception)
    {
        refused = true;
        Require(std::string(exception.GetDescription()).find("Malformed message: ") == 0, "a refusal says why");
    }
    Require(refused != events.has_value(), "the second reading agrees");
    watched.CheckAllSeen();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Watched watched; // lives as long as the process
    if (size == 0) return 0;
    const Bytes message(data + 1, data + size);
    const std::unique_ptr<std::uint8_t[]> block(new std::uint8_t[message.size()]);
    std::copy(message.begin(), message.end(), block.get());
    const std::uint32_t count = static_cast<std::uint32_t>(message.size());
    const auto check = [&](CEventAdapter& adapter, const Events& events) {
        CheckDelivery(watched, events, [&] { adapter.DeliverMessage(block.get(), count); });
    };
    switch (data[0] % 5)
    {
    case 0: {
        CEventAdapterGEV adapter(watched.map);
        check(adapter, ReadGigEVision(message));
        break;
    }
    case 1: {
        CEventAdapterU3V adapter(watched.map);
        check(adapter, ReadUSB3Vision(message));
        break;
    }
    case 2: {
        CEventAdapterCL adapter(watched.map);
        check(adapter, ReadCameraLink(message));
        break;
    }
    case 3: {
        CEventAdapter1394 adapter(watched.map);
        const bool good = !message.empty() && message[0] == 0;
        check(adapter, good ? Events(std::vector<ReadEvent>()) : std::nullopt);
        break;
    }
    default: {
        // The id as a number and as a text, then the bytes.
        CEventAdapterGeneric adapter(watched.map);
        const std::uint64_t id = data[0] / 5 % 2 ? 0x9001 : message.size();
        const Events event = std::vector<ReadEvent>{{id, message}};
        CheckDelivery(watched, event, [&] { adapter.DeliverMessage(block.get(), count, id); });
        char digits[20];
        std::snprintf(digits, sizeof digits, "%llX", static_cast<unsigned long long>(id));
        CheckDelivery(watched, event, [&] { adapter.DeliverMessage(block.get(), count, digits); });
        break;
    }
    }
    return 0;
}
