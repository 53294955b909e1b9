#include "tests/unit/genicam/adapter_support.h"

#include <GenApi/EventAdapterGEV.h>
#include <GenApi/EventAdapterGeneric.h>
#include <gtest/gtest.h>
#include <optional>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::Bytes;
using koro::test::HeapBlock;
using koro::test::Listener;
using koro::test::ListenToAll;
using koro::test::ModeOf;
using koro::test::PortElement;
using koro::test::PortRegister;
using koro::test::Refusal;
using koro::test::SmallMap;

// A port with a register and a feature above it; a node of the same id without bytes; a second event.
const std::string elements = PortElement("P", "<EventID>9001</EventID>") + PortRegister("A", "P") +
                             "<Integer Name=\"AboveA\"><pValue>A</pValue></Integer>"
                             "<Integer Name=\"Named\"><EventID>9001</EventID><Value>0x9001</Value></Integer>"
                             "<Integer Name=\"AboveNamed\"><pValue>Named</pValue></Integer>" +
                             PortElement("Q", "<EventID>9002</EventID>") + PortRegister("B", "Q") +
                             "<Integer Name=\"Lone\"><Value>1</Value></Integer>";

void Deliver(CEventAdapterGeneric& adapter, const Bytes& bytes, uint64_t id)
{
    const HeapBlock block(bytes);
    adapter.DeliverMessage(block.Data(), static_cast<uint32_t>(block.Size()), id);
}

Bytes Number(uint32_t value)
{
    return Bytes().Little(value, 4);
}

TEST(EventAdapter, PortsAreNotConnectedThenNotAvailableThenReadOnly)
{
    const SmallMap map(elements);
    EXPECT_EQ(ModeOf(map, "P"), NI);
    {
        CEventAdapterGeneric adapter(map.map);
        EXPECT_EQ(ModeOf(map, "P"), NA);
        EXPECT_EQ(ModeOf(map, "A"), NA);
        EXPECT_EQ(ModeOf(map, "AboveA"), NA);
        EXPECT_EQ(ModeOf(map, "Named"), RW) << "only ports depend on bytes";
        Deliver(adapter, Number(5), 0x9001);
        EXPECT_EQ(ModeOf(map, "P"), RO);
        EXPECT_EQ(ModeOf(map, "A"), RO);
        EXPECT_EQ(map.Integer("AboveA")->GetValue(), 5);
        EXPECT_THROW(map.Integer("A")->SetValue(1), AccessException);
        EXPECT_EQ(ModeOf(map, "Q"), NA);
    }
    EXPECT_EQ(ModeOf(map, "P"), NI);
    EXPECT_EQ(ModeOf(map, "A"), NI);
}

TEST(EventAdapter, BytesStayUntilTheNextEventOfTheID)
{
    const SmallMap map(elements);
    CEventAdapterGeneric adapter(map.map);
    Deliver(adapter, Number(5), 0x9001);
    Deliver(adapter, Number(6), 0x9002);
    EXPECT_EQ(map.Integer("A")->GetValue(false, true), 5);
    Deliver(adapter, Number(7), 0x9001);
    EXPECT_EQ(map.Integer("A")->GetValue(), 7) << "the value of before was cached";
    EXPECT_EQ(map.Integer("B")->GetValue(false, true), 6);
    Deliver(adapter, Bytes{1, 2}, 0x9001);
    EXPECT_EQ(
        Refusal<RuntimeException>([&] { map.Integer("A")->GetValue(); }),
        "The access to 4 bytes at 0 is outside of the data, 2 bytes at 0.");
}

TEST(EventAdapter, DeliveryFiresTheNodesOfTheIDAndTheirDependents)
{
    const SmallMap map(elements);
    Listener listener;
    ListenToAll(map, listener);
    CEventAdapterGeneric adapter(map.map);
    EXPECT_EQ(listener.Take(), "");
    Deliver(adapter, Number(5), 0x9001);
    EXPECT_EQ(listener.Take(), "A AboveA AboveNamed Named P");
    Deliver(adapter, Number(5), 0x9001);
    EXPECT_EQ(listener.Take(), "A AboveA AboveNamed Named P") << "bytes are not compared";
    Deliver(adapter, Number(5), 0x9002);
    EXPECT_EQ(listener.Take(), "B Q");
    adapter.DetachNodeMap();
    EXPECT_EQ(listener.Take(), "") << "a port that is not connected any more tells nobody";
}

struct Order
{
    void Inside(INode*) { text += 'i'; }
    void Outside(INode*) { text += 'o'; }
    std::string text;
};

TEST(EventAdapter, EachEventOfAMessageHasItsRoundOfCallbacks)
{
    const SmallMap map(elements);
    CEventAdapterGEV adapter(map.map);
    Order order;
    std::vector<int64_t> seen;
    Register(map.Node("P"), order, &Order::Outside, cbPostOutsideLock);
    Register(map.Node("P"), order, &Order::Inside, cbPostInsideLock);
    const SmallMap timed(PortElement("P", "<EventID>9001</EventID>") + PortRegister("Time", "P", "12", 4, "BigEndian"));
    CEventAdapterGEV timedAdapter(timed.map);
    const std::function<void(INode*)> lookAtTime = [&](INode*) { seen.push_back(timed.Integer("Time")->GetValue()); };
    Register(timed.Node("P"), lookAtTime);

    Bytes message = Bytes{0x42, 0}.Big(0x00c0, 2).Big(32, 2).Big(1, 2);
    for (const int time : {5, 6})
        message.Big(0, 2).Big(0x9001, 2).Fill(4, 0).Big(static_cast<uint64_t>(time), 8);
    const HeapBlock block(message);
    adapter.DeliverMessage(block.Data(), static_cast<uint32_t>(block.Size()));
    EXPECT_EQ(order.text, "ioio");
    timedAdapter.DeliverMessage(block.Data(), static_cast<uint32_t>(block.Size()));
    EXPECT_EQ(seen, (std::vector<int64_t>{5, 6})) << "two events of one id are both seen";
}

TEST(EventAdapter, UnknownIDsDoNothing)
{
    const SmallMap map(elements);
    Listener listener;
    ListenToAll(map, listener);
    CEventAdapterGeneric adapter(map.map);
    for (const uint64_t id : {uint64_t{0}, uint64_t{0x9003}, uint64_t{0x90010}, uint64_t{0x100009001}, ~uint64_t{0}})
        Deliver(adapter, Number(5), id);
    EXPECT_EQ(listener.Take(), "");
}

TEST(EventAdapter, IDsAreNumbers)
{
    const char* const good[] = {"9c40", "9C40", "00009C40", "0x9c40"};
    const char* const bad[] = {"XYZ", "9c4", "19c40", "9c40h"};
    for (const char* const id : good)
    {
        const SmallMap map(PortElement("P", std::string("<EventID>") + id + "</EventID>"));
        CEventAdapterGeneric adapter(map.map);
        Deliver(adapter, Number(5), 0x9c40);
        EXPECT_EQ(ModeOf(map, "P"), RO) << id;
    }
    for (const char* const id : bad)
    {
        const SmallMap map(PortElement("P", std::string("<EventID>") + id + "</EventID>"));
        CEventAdapterGeneric adapter(map.map);
        Deliver(adapter, Number(5), 0x9c40);
        Deliver(adapter, Number(5), 0);
        EXPECT_EQ(ModeOf(map, "P"), NA) << id;
    }
}

TEST(EventAdapter, IDsMayBeTextsOfAnyLength)
{
    const SmallMap map(
        PortElement("P", "<EventID>0123456789abcdef</EventID>") + PortRegister("A", "P") +
        PortElement("Q", "<EventID>ffeeddccbbaa99887766554433221100</EventID>") + PortRegister("B", "Q"));
    CEventAdapterGeneric adapter(map.map);
    const HeapBlock block(Number(5));
    Deliver(adapter, Number(4), 0x0123456789abcdef);
    EXPECT_EQ(map.Integer("A")->GetValue(), 4);
    adapter.DeliverMessage(block.Data(), 4, "123456789ABCDEF");
    EXPECT_EQ(map.Integer("A")->GetValue(), 5);
    adapter.DeliverMessage(block.Data(), 4, "7766554433221100");
    EXPECT_EQ(ModeOf(map, "B"), NA) << "the right half of an id is another id";
    adapter.DeliverMessage(block.Data(), 4, "00FFEEDDCCBBAA99887766554433221100");
    EXPECT_EQ(map.Integer("B")->GetValue(), 5);
    EXPECT_NO_THROW(adapter.DeliverMessage(block.Data(), 4, "no id"));
    EXPECT_NO_THROW(adapter.DeliverMessage(block.Data(), 4, ""));
}

TEST(EventAdapter, GenericMessageWithoutAnIDReachesNoNode)
{
    const SmallMap map(elements + PortElement("Zero", "<EventID>0</EventID>"));
    Listener listener;
    ListenToAll(map, listener);
    CEventAdapterGeneric adapter(map.map);
    const HeapBlock block(Number(5));
    adapter.DeliverMessage(block.Data(), 4);
    EXPECT_EQ(listener.Take(), "");
    EXPECT_EQ(ModeOf(map, "Zero"), NA);
}

TEST(EventAdapter, GenericEventMayHaveNoBytes)
{
    const SmallMap map(elements);
    Listener listener;
    ListenToAll(map, listener);
    CEventAdapterGeneric adapter(map.map);
    adapter.DeliverMessage(nullptr, 0, 0x9001);
    EXPECT_EQ(listener.Take(), "A AboveA AboveNamed Named P");
    EXPECT_EQ(ModeOf(map, "P"), RO);
    EXPECT_THROW(map.Integer("A")->GetValue(), RuntimeException);
    EXPECT_THROW(adapter.DeliverMessage(nullptr, 1, 0x9001), RuntimeException);
    EXPECT_THROW(adapter.DeliverMessage(nullptr, 1, "9001"), RuntimeException);
    EXPECT_THROW(adapter.DeliverMessage(nullptr, 1), RuntimeException);
    EXPECT_EQ(listener.Take(), "");
}

TEST(EventAdapter, AccessOutsideOfTheEventIsRefused)
{
    const SmallMap map(
        PortElement("P", "<EventID>1</EventID>") + PortRegister("Last", "P", "4") + PortRegister("TooFar", "P", "5") +
        PortRegister("Negative", "P", "-4") + PortRegister("Far", "P", "0x7fffffffffffffff", 8));
    CEventAdapterGeneric adapter(map.map);
    Deliver(adapter, Bytes{1, 2, 3, 4, 5, 6, 7, 8}, 1);
    EXPECT_EQ(map.Integer("Last")->GetValue(), 0x08070605);
    for (const char* const node : {"TooFar", "Negative", "Far"})
        EXPECT_THROW(map.Integer(node)->GetValue(), RuntimeException) << node;
}

TEST(EventAdapter, SwappingPortTurnsEachAccessAround)
{
    const SmallMap map(
        PortElement("P", "<EventID>1</EventID><SwapEndianess>Yes</SwapEndianess>") + PortRegister("A", "P"));
    CEventAdapterGeneric adapter(map.map);
    Deliver(adapter, Bytes{1, 2, 3, 4}, 1);
    EXPECT_EQ(map.Integer("A")->GetValue(), 0x01020304);
}

TEST(EventAdapter, ChangesItsMap)
{
    const SmallMap first(elements);
    const SmallMap second(elements);
    CEventAdapterGeneric adapter;
    Deliver(adapter, Number(5), 0x9001);
    adapter.DetachNodeMap();
    EXPECT_THROW(adapter.AttachNodeMap(nullptr), InvalidArgumentException);
    adapter.AttachNodeMap(first.map);
    Deliver(adapter, Number(5), 0x9001);
    EXPECT_EQ(first.Integer("A")->GetValue(), 5);
    adapter.AttachNodeMap(second.map);
    EXPECT_EQ(ModeOf(first, "A"), NI);
    EXPECT_EQ(ModeOf(second, "A"), NA);
    Deliver(adapter, Number(6), 0x9001);
    EXPECT_EQ(second.Integer("A")->GetValue(), 6);
    adapter.AttachNodeMap(second.map);
    EXPECT_EQ(ModeOf(second, "A"), NA) << "attached anew, without an event";
    adapter.DetachNodeMap();
    Deliver(adapter, Number(6), 0x9001);
    EXPECT_EQ(ModeOf(second, "A"), NI);
}

TEST(EventAdapter, OutlivesItsMap)
{
    std::optional<SmallMap> map(elements);
    CEventAdapterGeneric adapter(map->map);
    Deliver(adapter, Number(5), 0x9001);
    map.reset();
    Deliver(adapter, Number(5), 0x9001);
    adapter.DetachNodeMap();
}

TEST(EventAdapter, SecondAdapterTakesThePortsAway)
{
    const SmallMap map(elements);
    auto first = std::make_unique<CEventAdapterGeneric>(map.map);
    CEventAdapterGeneric second(map.map);
    Deliver(*first, Number(5), 0x9001);
    EXPECT_EQ(ModeOf(map, "A"), NA);
    Deliver(second, Number(6), 0x9001);
    first.reset();
    EXPECT_EQ(map.Integer("A")->GetValue(), 6);
}

TEST(EventAdapter, CallbackMayEndTheAdapter)
{
    const SmallMap map(elements);
    auto adapter = std::make_unique<CEventAdapterGEV>(map.map);
    int calls = 0;
    const std::function<void(INode*)> end = [&](INode*) {
        ++calls;
        std::unique_ptr<CEventAdapterGEV>().swap(adapter);
    };
    Register(map.Node("P"), end);
    Bytes message = Bytes{0x42, 0}.Big(0x00c0, 2).Big(32, 2).Big(1, 2);
    for (int i = 0; i < 2; ++i)
        message.Big(0, 2).Big(0x9001, 2).Fill(12, 0);
    const HeapBlock block(message);
    adapter->DeliverMessage(block.Data(), static_cast<uint32_t>(block.Size()));
    EXPECT_EQ(calls, 1) << "the second event has no adapter any more";
    EXPECT_EQ(ModeOf(map, "P"), NI);
}

TEST(EventAdapter, CallbackMayDeliverAnotherEvent)
{
    const SmallMap map(elements);
    CEventAdapterGeneric adapter(map.map);
    const std::function<void(INode*)> next = [&](INode*) { Deliver(adapter, Number(6), 0x9002); };
    Register(map.Node("A"), next);
    Deliver(adapter, Number(5), 0x9001);
    EXPECT_EQ(map.Integer("A")->GetValue(), 5);
    EXPECT_EQ(map.Integer("B")->GetValue(), 6);
}

TEST(EventPortAlone, ServesANode)
{
    const SmallMap map(elements);
    CEventPort port;
    EXPECT_FALSE(port.AttachNode(nullptr));
    EXPECT_FALSE(port.AttachNode(map.Node("Lone")));
    ASSERT_TRUE(port.AttachNode(map.Node("P")));
    EXPECT_EQ(port.GetEventIDLength(), 2);
    EXPECT_TRUE(port.CheckEventID(0x9001));
    EXPECT_FALSE(port.CheckEventID(0x9002));
    uint8_t id[] = {0, 0x90, 0x01};
    EXPECT_TRUE(port.CheckEventID(id, 3));
    EXPECT_TRUE(port.CheckEventID(id + 1, 2));
    EXPECT_FALSE(port.CheckEventID(id, 2));
    EXPECT_FALSE(port.CheckEventID(id, 0));
    EXPECT_FALSE(port.CheckEventID(nullptr, 2));
    uint8_t bytes[] = {5, 0, 0, 0};
    port.AttachEvent(bytes, 4);
    bytes[0] = 9;
    port.InvalidateNode();
    EXPECT_EQ(map.Integer("A")->GetValue(), 5) << "a copy";
    EXPECT_THROW(port.Write(bytes, 0, 1), AccessException);
    EXPECT_THROW(port.AttachEvent(bytes, -1), InvalidArgumentException);
    EXPECT_THROW(port.AttachEvent(nullptr, 1), InvalidArgumentException);
    port.DetachEvent();
    port.InvalidateNode();
    EXPECT_EQ(ModeOf(map, "A"), NA);
    port.SetPortImpl(nullptr);
    EXPECT_EQ(ModeOf(map, "P"), NI);
    EXPECT_FALSE(CEventPort().CheckEventID(0));
}

} // namespace
