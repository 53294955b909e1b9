#include "tests/unit/genicam/adapter_support.h"

#include <GenApi/EventAdapter1394.h>
#include <GenApi/EventAdapterCL.h>
#include <GenApi/EventAdapterGEV.h>
#include <GenApi/EventAdapterU3V.h>
#include <gtest/gtest.h>

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

// Registers of an event: its first two fields, its time, its first two bytes of data.
std::string EventElements(const std::string& id, int timeAt, int dataAt, const std::string& order)
{
    return PortElement("P" + id, "<EventID>" + id + "</EventID>") + PortRegister("Size" + id, "P" + id, "0", 2, order) +
           PortRegister("ID" + id, "P" + id, "2", 2, order) +
           PortRegister("Time" + id, "P" + id, std::to_string(timeAt), 8, order) +
           PortRegister("Data" + id, "P" + id, std::to_string(dataAt), 2, order);
}

template <class Adapter>
class Receiver
{
public:
    explicit Receiver(const std::string& elements) : map(elements), adapter(map.map) { ListenToAll(map, listener); }

    void Deliver(const Bytes& message)
    {
        const HeapBlock block(message);
        adapter.DeliverMessage(block.Data(), static_cast<uint32_t>(block.Size()));
    }
    std::string RefusalOf(const Bytes& message)
    {
        return Refusal<RuntimeException>([&] { Deliver(message); });
    }
    int64_t Value(const std::string& node) const { return map.Integer(node.c_str())->GetValue(); }
    EAccessMode Mode(const std::string& node) const { return ModeOf(map, node.c_str()); }
    // Each must be refused and reach no node; returns the last text.
    void ExpectMalformed(const Bytes& message, const std::string& text)
    {
        listener.Take();
        EXPECT_EQ(RefusalOf(message), "Malformed message: " + text);
        EXPECT_EQ(listener.Take(), "");
    }

    SmallMap map;
    Adapter adapter;
    Listener listener;
};

// GigE Vision

Bytes GigEVisionHeader(int flags, uint16_t command, size_t length)
{
    return Bytes{0x42, flags}.Big(command, 2).Big(length, 2).Big(77, 2);
}

Bytes GigEVisionMessage(int flags, uint16_t command, const Bytes& items)
{
    return GigEVisionHeader(flags, command, items.Size()).Add(items);
}

Bytes Item(uint16_t size, uint16_t id, uint64_t time)
{
    return Bytes().Big(size, 2).Big(id, 2).Big(0xffff, 2).Big(3, 2).Big(time, 8);
}

Bytes ExtendedItem(uint16_t size, uint16_t id, uint64_t time)
{
    return Bytes().Big(size, 2).Big(id, 2).Big(0xffff, 2).Big(0, 2).Big(5, 8).Big(time, 8);
}

const std::string gigEVisionEvents =
    EventElements("9001", 8, 16, "BigEndian") + EventElements("9002", 8, 16, "BigEndian");

class GigEVisionEvents : public testing::Test, public Receiver<CEventAdapterGEV>
{
protected:
    GigEVisionEvents() : Receiver(gigEVisionEvents) {}
};

TEST_F(GigEVisionEvents, EventIsReadByteByByte)
{
    Deliver(Bytes{0x42, 0x01, 0x00, 0xc0, 0x00, 0x10, 0x12, 0x34,   // header
                  0x00, 0x00, 0x90, 0x01, 0x00, 0x02, 0x00, 0x03,   // reserved, id, channel, block
                  0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08}); // time
    EXPECT_EQ(Value("ID9001"), 0x9001);
    EXPECT_EQ(Value("Time9001"), 0x0102030405060708);
    EXPECT_EQ(Value("Size9001"), 16) << "filled in where the wire has 0";
    EXPECT_EQ(Mode("P9001"), RO);
    EXPECT_EQ(Mode("P9002"), NA);
    EXPECT_THROW(Value("Data9001"), RuntimeException) << "an event without data";
}

TEST_F(GigEVisionEvents, EventWithDataHasAllThatFollows)
{
    Deliver(GigEVisionMessage(0, 0x00c2, Item(0, 0x9001, 5).Add({0xab, 0xcd, 0xef})));
    EXPECT_EQ(Value("Time9001"), 5);
    EXPECT_EQ(Value("Data9001"), 0xabcd);
    EXPECT_EQ(Value("Size9001"), 19);
}

TEST_F(GigEVisionEvents, SeveralEventsStandInOneMessage)
{
    Deliver(GigEVisionMessage(0, 0x00c0, Item(0, 0x9001, 5).Add(Item(0, 0x7777, 6)).Add(Item(0, 0x9002, 7))));
    EXPECT_EQ(Value("Time9001"), 5);
    EXPECT_EQ(Value("Time9002"), 7);
}

TEST_F(GigEVisionEvents, SizeFieldTellsWhereTheNextEventStarts)
{
    for (const uint16_t command : std::initializer_list<uint16_t>{0x00c0, 0x00c2})
    {
        Deliver(GigEVisionMessage(
            0, command, Item(18, 0x9001, command).Add({0x12, 0x34}).Add(Item(20, 0x9002, 8)).Add({5, 6, 7, 8})));
        EXPECT_EQ(Value("Time9001"), command);
        EXPECT_EQ(Value("Size9001"), 18);
        EXPECT_EQ(Value("Data9001"), 0x1234);
        EXPECT_EQ(Value("Time9002"), 8);
        EXPECT_EQ(Value("Size9002"), 20);
    }
    Deliver(GigEVisionMessage(0, 0x00c2, Item(16, 0x9001, 1).Add(Item(0, 0x9002, 2)).Add({9, 9, 9})));
    EXPECT_EQ(Value("Size9001"), 16);
    EXPECT_EQ(Value("Size9002"), 19) << "the last one without a size has the rest";
}

TEST_F(GigEVisionEvents, ExtendedIDsMakeTheEventLonger)
{
    Receiver<CEventAdapterGEV> extended(
        EventElements("9001", 16, 24, "BigEndian") + EventElements("9002", 16, 24, "BigEndian"));
    extended.Deliver(GigEVisionMessage(0x10, 0x00c0, ExtendedItem(0, 0x9001, 5).Add(ExtendedItem(0, 0x9002, 6))));
    EXPECT_EQ(extended.Value("Time9001"), 5);
    EXPECT_EQ(extended.Value("Size9001"), 24);
    EXPECT_EQ(extended.Value("Time9002"), 6);
    extended.Deliver(GigEVisionMessage(0x11, 0x00c2, ExtendedItem(0, 0x9001, 7).Add({0x12, 0x34})));
    EXPECT_EQ(extended.Value("Time9001"), 7);
    EXPECT_EQ(extended.Value("Data9001"), 0x1234);
    EXPECT_EQ(extended.Value("Size9001"), 26);
}

TEST_F(GigEVisionEvents, RestTooShortForAnEventEndsTheMessage)
{
    const Bytes two = Item(0, 0x9001, 5).Add(Item(0, 0x9002, 6));
    for (size_t size = 16; size < 32; ++size)
    {
        Receiver<CEventAdapterGEV> one(gigEVisionEvents);
        one.Deliver(GigEVisionMessage(0, 0x00c0, two.First(size)));
        EXPECT_EQ(one.Value("Time9001"), 5) << size;
        EXPECT_EQ(one.Mode("P9002"), NA) << size;
    }
    for (size_t size = 0; size < 16; ++size)
    {
        for (const uint16_t command : std::initializer_list<uint16_t>{0x00c0, 0x00c2})
            Deliver(GigEVisionMessage(0, command, two.First(size)));
        EXPECT_EQ(Mode("P9001"), NA) << size;
    }
    for (size_t size = 0; size < 24; ++size)
    {
        Deliver(GigEVisionMessage(0x10, 0x00c0, two.First(size)));
        EXPECT_EQ(Mode("P9001"), NA) << size;
    }
}

TEST_F(GigEVisionEvents, SizeFieldOutsideOfTheMessageEndsIt)
{
    const Bytes good = Item(18, 0x9001, 5).Add({1, 2});
    for (const uint16_t wrong : std::initializer_list<uint16_t>{1, 2, 15, 17, 0xffff})
    {
        for (const uint16_t command : std::initializer_list<uint16_t>{0x00c0, 0x00c2})
        {
            Receiver<CEventAdapterGEV> one(gigEVisionEvents);
            one.Deliver(GigEVisionMessage(0, command, Bytes(good).Add(Item(wrong, 0x9002, 6))));
            EXPECT_EQ(one.Value("Time9001"), 5) << wrong;
            EXPECT_EQ(one.Mode("P9002"), NA) << wrong;
        }
    }
}

TEST_F(GigEVisionEvents, BytesBehindTheLengthOfTheHeaderAreNotRead)
{
    Deliver(GigEVisionHeader(0, 0x00c0, 16).Add(Item(0, 0x9001, 5)).Add(Item(0, 0x9002, 6)));
    EXPECT_EQ(Value("Time9001"), 5);
    EXPECT_EQ(Mode("P9002"), NA);
}

TEST_F(GigEVisionEvents, LengthOneTooLargeIsMalformedOneTooSmallLosesTheEvent)
{
    ExpectMalformed(GigEVisionHeader(0, 0x00c0, 17).Add(Item(0, 0x9001, 5)), "shorter than its header says");
    ExpectMalformed(GigEVisionHeader(0, 0x00c0, 0xffff).Add(Item(0, 0x9001, 5)), "shorter than its header says");
    Deliver(GigEVisionHeader(0, 0x00c0, 15).Add(Item(0, 0x9001, 5)));
    EXPECT_EQ(Mode("P9001"), NA);
    Deliver(GigEVisionHeader(0, 0x00c0, 0));
    EXPECT_EQ(Mode("P9001"), NA) << "a message without events is no error";
}

TEST_F(GigEVisionEvents, MessageCutAtEveryByteIsMalformed)
{
    const Bytes whole = GigEVisionMessage(0, 0x00c2, Item(0, 0x9001, 5).Add({1, 2}));
    for (size_t size = 0; size < whole.Size(); ++size)
        ExpectMalformed(whole.First(size), size < 8 ? "too short for its header" : "shorter than its header says");
    EXPECT_EQ(Mode("P9001"), NA);
}

TEST_F(GigEVisionEvents, WrongHeaderIsMalformed)
{
    const Bytes good = GigEVisionMessage(0, 0x00c0, Item(0, 0x9001, 5));
    ExpectMalformed(Bytes(good).SetBig(0, 0x43, 1), "wrong magic");
    for (const uint16_t command : std::initializer_list<uint16_t>{0x00c1, 0x00c3, 0x0000, 0xc000, 0x01c0})
        ExpectMalformed(Bytes(good).SetBig(2, command, 2), "unknown command");
    ExpectMalformed(Bytes(good).Fill(0xffff, 0), "longer than any message");
    EXPECT_EQ(Refusal<RuntimeException>([&] { adapter.DeliverMessage(nullptr, 24); }), "Malformed message: no bytes");
    EXPECT_EQ(Refusal<RuntimeException>([&] { adapter.DeliverMessage(nullptr, 0); }), "Malformed message: no bytes");
    EXPECT_EQ(Mode("P9001"), NA);
}

TEST_F(GigEVisionEvents, LargestMessageIsTaken)
{
    Deliver(GigEVisionMessage(0, 0x00c2, Item(0, 0x9001, 5).Fill(0xffff - 16, 7)));
    EXPECT_EQ(Value("Size9001"), 0xffff);
    EXPECT_EQ(Value("Data9001"), 0x0707);
}

TEST_F(GigEVisionEvents, MalformedMessageLeavesTheNodes)
{
    Deliver(GigEVisionMessage(0, 0x00c0, Item(0, 0x9001, 5)));
    EXPECT_NE(RefusalOf(GigEVisionHeader(0, 0x00c0, 17).Add(Item(0, 0x9001, 6))), "");
    EXPECT_EQ(map.Integer("Time9001")->GetValue(false, true), 5);
}

template <class Structure>
void DeliverAs(CEventAdapterGEV& adapter, const Bytes& message)
{
    const HeapBlock block(message);
    adapter.DeliverEventMessage(reinterpret_cast<const Structure*>(block.Data()));
}

TEST_F(GigEVisionEvents, StructuresAreTakenForWhatTheirHeaderSays)
{
    EXPECT_EQ(sizeof(GVCP_REQUEST_HEADER), 8u);
    EXPECT_EQ(sizeof(GVCP_EVENT_ITEM), 16u);
    EXPECT_EQ(sizeof(GVCP_EVENT_ITEM_EXTENDED_ID), 24u);
    const Bytes event = GigEVisionMessage(0, 0x00c0, Item(0, 0x9002, 1).Add(Item(0, 0x9001, 5)));
    const Bytes data = GigEVisionMessage(0, 0x00c2, Item(0, 0x9001, 6).Add({1, 2}));
    const Bytes extendedEvent = GigEVisionMessage(0x10, 0x00c0, ExtendedItem(0, 0x9001, 7));
    const Bytes extendedData = GigEVisionMessage(0x10, 0x00c2, ExtendedItem(0, 0x9001, 8).Add({1, 2}));
    DeliverAs<GVCP_EVENT_REQUEST>(adapter, event);
    EXPECT_EQ(Value("Time9001"), 5);
    DeliverAs<GVCP_EVENTDATA_REQUEST>(adapter, data);
    EXPECT_EQ(Value("Data9001"), 0x0102);
    DeliverAs<GVCP_EVENT_REQUEST_EXTENDED_ID>(adapter, extendedEvent);
    EXPECT_EQ(Value("Size9001"), 24);
    DeliverAs<GVCP_EVENTDATA_REQUEST_EXTENDED_ID>(adapter, extendedData);
    EXPECT_EQ(Value("Size9001"), 26);

    EXPECT_THROW(DeliverAs<GVCP_EVENT_REQUEST>(adapter, data), RuntimeException);
    EXPECT_THROW(DeliverAs<GVCP_EVENT_REQUEST>(adapter, extendedEvent), RuntimeException);
    EXPECT_THROW(DeliverAs<GVCP_EVENTDATA_REQUEST_EXTENDED_ID>(adapter, data), RuntimeException);
    EXPECT_THROW(DeliverAs<GVCP_EVENT_REQUEST>(adapter, Bytes(event).SetBig(0, 0, 1)), RuntimeException);
    const GVCP_EVENT_REQUEST* const none = nullptr;
    EXPECT_THROW(adapter.DeliverEventMessage(none), RuntimeException);
    EXPECT_EQ(Value("Size9001"), 26);
}

// USB3 Vision

Bytes USB3VisionHeader(size_t length)
{
    return Bytes{'U', '3', 'V', 'E'}.Little(0x4000, 2).Little(0x0c00, 2).Little(length, 2).Little(77, 2);
}

Bytes USB3VisionMessage(const Bytes& event)
{
    return USB3VisionHeader(event.Size()).Add(event);
}

Bytes GenCPEvent(bool big, uint16_t size, uint16_t id, uint64_t time)
{
    if (big) return Bytes().Big(size, 2).Big(id, 2).Big(time, 8);
    return Bytes().Little(size, 2).Little(id, 2).Little(time, 8);
}

const std::string usb3VisionEvents =
    EventElements("9001", 4, 12, "LittleEndian") + EventElements("9002", 4, 12, "LittleEndian");

class USB3VisionEvents : public testing::Test, public Receiver<CEventAdapterU3V>
{
protected:
    USB3VisionEvents() : Receiver(usb3VisionEvents) {}
};

TEST_F(USB3VisionEvents, EventIsReadByteByByte)
{
    Deliver(Bytes{0x55, 0x33, 0x56, 0x45, 0x00, 0x00, 0x00, 0x0c, 0x0e, 0x00, 0x12, 0x34, // header
                  0x00, 0x00, 0x01, 0x90, 0x08, 0x07, 0x06, 0x05, 0x04, 0x03, 0x02, 0x01, // reserved, id, time
                  0xcd, 0xab});
    EXPECT_EQ(Value("Size9001"), 0) << "the first field stays as it came";
    EXPECT_EQ(Value("ID9001"), 0x9001);
    EXPECT_EQ(Value("Time9001"), 0x0102030405060708);
    EXPECT_EQ(Value("Data9001"), 0xabcd);
    EXPECT_EQ(Mode("P9001"), RO);
}

TEST_F(USB3VisionEvents, AllBehindTheHeaderBelongsToOneEvent)
{
    Deliver(USB3VisionMessage(GenCPEvent(false, 12, 0x9001, 5).Add(GenCPEvent(false, 12, 0x9002, 6))));
    EXPECT_EQ(Value("Time9001"), 5);
    EXPECT_EQ(Value("Data9001"), 12) << "whatever the first field says";
    EXPECT_EQ(Mode("P9002"), NA);
}

TEST_F(USB3VisionEvents, LengthOneTooLargeIsMalformedOneTooSmallLosesTheEvent)
{
    ExpectMalformed(USB3VisionHeader(13).Add(GenCPEvent(false, 0, 0x9001, 5)), "shorter than its header says");
    Deliver(USB3VisionHeader(11).Add(GenCPEvent(false, 0, 0x9001, 5)));
    Deliver(USB3VisionHeader(0));
    EXPECT_EQ(Mode("P9001"), NA);
    Deliver(USB3VisionHeader(12).Add(GenCPEvent(false, 0, 0x9001, 5)).Add({1, 2}));
    EXPECT_EQ(Value("Time9001"), 5);
    EXPECT_THROW(Value("Data9001"), RuntimeException) << "what stands behind the length is not the event's";
}

TEST_F(USB3VisionEvents, MessageCutAtEveryByteIsMalformed)
{
    const Bytes whole = USB3VisionMessage(GenCPEvent(false, 0, 0x9001, 5).Add({1, 2}));
    for (size_t size = 0; size < whole.Size(); ++size)
        ExpectMalformed(whole.First(size), size < 12 ? "too short for its header" : "shorter than its header says");
    EXPECT_EQ(Mode("P9001"), NA);
}

TEST_F(USB3VisionEvents, WrongHeaderIsMalformed)
{
    const Bytes good = USB3VisionMessage(GenCPEvent(false, 0, 0x9001, 5));
    ExpectMalformed(Bytes(good).SetLittle(0, 0x43563355, 4), "wrong prefix");
    ExpectMalformed(Bytes(good).SetLittle(6, 0x000c, 2), "unknown command");
    ExpectMalformed(Bytes(good).SetLittle(6, 0x0c01, 2), "unknown command");
    ExpectMalformed(Bytes(good).Fill(0xffff, 0), "longer than any message");
    EXPECT_THROW(adapter.DeliverMessage(nullptr, 24), RuntimeException);
    EXPECT_EQ(Mode("P9001"), NA);
}

TEST_F(USB3VisionEvents, StructureIsTakenForWhatItsHeaderSays)
{
    EXPECT_EQ(sizeof(U3V_COMMAND_HEADER), 12u);
    EXPECT_EQ(sizeof(U3V_EVENT_DATA), 12u);
    EXPECT_EQ(sizeof(U3V_EVENT_MESSAGE), 24u);
    const HeapBlock block(USB3VisionMessage(GenCPEvent(false, 0, 0x9001, 5).Add({1, 2})));
    adapter.DeliverEventMessage(reinterpret_cast<const U3V_EVENT_MESSAGE*>(block.Data()));
    EXPECT_EQ(Value("Data9001"), 0x0201);
    EXPECT_THROW(adapter.DeliverEventMessage(nullptr), RuntimeException);
}

// Camera Link

Bytes CameraLinkHeader(size_t length)
{
    return Bytes().Big(0x0100, 2).Big(0xdead, 2).Big(0xbeef, 2).Big(0, 2).Big(0, 2).Big(0x0c00, 2).Big(length, 2).Big(
        77, 2);
}

Bytes CameraLinkMessage(const Bytes& events)
{
    return CameraLinkHeader(events.Size()).Add(events);
}

const std::string cameraLinkEvents =
    EventElements("9001", 4, 12, "BigEndian") + EventElements("9002", 4, 12, "BigEndian");

class CameraLinkEvents : public testing::Test, public Receiver<CEventAdapterCL>
{
protected:
    CameraLinkEvents() : Receiver(cameraLinkEvents) {}
};

TEST_F(CameraLinkEvents, EventIsReadByteByByte)
{
    Deliver(Bytes{0x01, 0x00, 0xaa, 0xaa, 0xbb, 0xbb, 0x00, 0x00, 0x00, 0x00, 0x0c, 0x00,
                  0x00, 0x0e, 0x12, 0x34,                                                 // header
                  0x00, 0x00, 0x90, 0x01, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, // id, time
                  0xab, 0xcd});
    EXPECT_EQ(Value("Size9001"), 0);
    EXPECT_EQ(Value("ID9001"), 0x9001);
    EXPECT_EQ(Value("Time9001"), 0x0102030405060708);
    EXPECT_EQ(Value("Data9001"), 0xabcd);
}

TEST_F(CameraLinkEvents, SizeFieldTellsWhereTheNextEventStarts)
{
    Deliver(
        CameraLinkMessage(GenCPEvent(true, 14, 0x9001, 5).Add({1, 2}).Add(GenCPEvent(true, 0, 0x9002, 6)).Add({3, 4})));
    EXPECT_EQ(Value("Time9001"), 5);
    EXPECT_EQ(Value("Data9001"), 0x0102);
    EXPECT_EQ(Value("Time9002"), 6);
    EXPECT_EQ(Value("Data9002"), 0x0304);
    for (const uint16_t wrong : std::initializer_list<uint16_t>{1, 11, 15, 0xffff})
    {
        Receiver<CEventAdapterCL> one(cameraLinkEvents);
        one.Deliver(
            CameraLinkMessage(GenCPEvent(true, 12, 0x9001, 5).Add(GenCPEvent(true, wrong, 0x9002, 6)).Add({3, 4})));
        EXPECT_EQ(one.Value("Time9001"), 5) << wrong;
        EXPECT_EQ(one.Mode("P9002"), NA) << wrong;
    }
}

TEST_F(CameraLinkEvents, LittleEndianMessageIsMalformed)
{
    ExpectMalformed(
        Bytes().Little(0x0100, 2).Fill(8, 0).Little(0x0c00, 2).Little(12, 2).Fill(2, 0).Add(
            GenCPEvent(false, 0, 0x9001, 5)),
        "wrong preamble");
}

TEST_F(CameraLinkEvents, LengthsAreChecked)
{
    ExpectMalformed(CameraLinkHeader(13).Add(GenCPEvent(true, 0, 0x9001, 5)), "shorter than its header says");
    Deliver(CameraLinkHeader(11).Add(GenCPEvent(true, 0, 0x9001, 5)));
    Deliver(CameraLinkHeader(0));
    EXPECT_EQ(Mode("P9001"), NA);
    const Bytes whole = CameraLinkMessage(GenCPEvent(true, 0, 0x9001, 5).Add({1, 2}));
    for (size_t size = 0; size < whole.Size(); ++size)
        ExpectMalformed(whole.First(size), size < 16 ? "too short for its header" : "shorter than its header says");
    ExpectMalformed(Bytes(whole).SetBig(10, 0x0c01, 2), "unknown command");
    ExpectMalformed(Bytes(whole).Fill(0xffff, 0), "longer than any message");
    EXPECT_THROW(adapter.DeliverMessage(nullptr, 30), RuntimeException);
    EXPECT_EQ(Mode("P9001"), NA);
}

TEST_F(CameraLinkEvents, EventsComeWithoutTheHeaderToo)
{
    EXPECT_EQ(sizeof(CL_COMMAND_HEADER), 16u);
    EXPECT_EQ(sizeof(CL_EVENT_DATA), 12u);
    EXPECT_EQ(sizeof(CL_EVENT_MESSAGE), 28u);
    const Bytes events = GenCPEvent(true, 14, 0x9001, 5).Add({1, 2}).Add(GenCPEvent(true, 0, 0x9002, 6));
    const auto deliver = [&](const Bytes& bytes) {
        const HeapBlock block(bytes);
        adapter.DeliverEventData(
            reinterpret_cast<const CL_EVENT_DATA*>(block.Data()), static_cast<uint16_t>(block.Size()));
    };
    for (size_t size = 0; size < 14; ++size)
        deliver(events.First(size));
    EXPECT_EQ(Mode("P9001"), NA);
    deliver(events.First(25));
    EXPECT_EQ(Value("Data9001"), 0x0102);
    EXPECT_EQ(Mode("P9002"), NA);
    deliver(events);
    EXPECT_EQ(Value("Time9002"), 6);
    EXPECT_THROW(adapter.DeliverEventData(nullptr, 12), RuntimeException);
}

// 1394

TEST(IIDCEvents, BlockThatBeginsWithZeroIsTakenAndUpdatesNothing)
{
    Receiver<CEventAdapter1394> receiver(cameraLinkEvents);
    receiver.Deliver(Bytes().Fill(40, 0));
    receiver.Deliver(Bytes{0});
    EXPECT_EQ(receiver.listener.Take(), "");
    EXPECT_EQ(receiver.Mode("P9001"), NA);
    receiver.ExpectMalformed(Bytes{1, 0, 0}, "corrupted");
    receiver.ExpectMalformed(Bytes(), "no bytes");
    EXPECT_THROW(receiver.adapter.DeliverMessage(nullptr, 4), RuntimeException);
    const HeapBlock block(Bytes{0, 1, 2, 3});
    receiver.adapter.DeliverEventMessage(reinterpret_cast<EventData1394&>(*block.Data()), 4);
    EXPECT_THROW(
        receiver.adapter.DeliverEventMessage(reinterpret_cast<EventData1394&>(*block.Data()), 0), RuntimeException);
}

} // namespace
