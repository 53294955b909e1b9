// Events that cameras send: the packets of each transport byte by byte, what brings them, and the nodes they update.
#include "tests/unit/simulator/feature_map.h"

#include <GenApi/EventAdapterCL.h>
#include <GenApi/EventAdapterGEV.h>
#include <GenApi/EventAdapterGeneric.h>
#include <GenApi/EventAdapterU3V.h>
#include <gtest/gtest.h>
#include <map>

namespace koro::simulator::test
{
namespace
{

namespace GenApi = GENAPI_NAMESPACE;

std::string CameraOf(const std::string& tlType, const std::string& keys)
{
    return R"({"interfaces": [{"id": "I", "tlType": ")" + tlType +
           R"(", "cameras": [{"serial": "A", "width": 16, "height": 4, "rate": 0)" + keys + "}]}]}";
}

// Two hexadecimal digits a byte.
std::string Hex(const std::string& bytes)
{
    std::string text;
    for (const char byte : bytes)
    {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned>(static_cast<std::uint8_t>(byte)));
        text += digits;
    }
    return text;
}

// An open camera with its event registered. A camera at rate 0 has a virtual clock: frame n comes at n milliseconds.
struct Camera
{
    explicit Camera(const std::string& keys = "", const std::string& tlType = "GEV")
        : producer(CameraOf(tlType, keys)), tree(producer), map(producer, tree.remote)
    {
        Register();
    }

    void Register()
    {
        if (producer.GCRegisterEvent(tree.device, EVENT_REMOTE_DEVICE, &events) != GC_ERR_SUCCESS)
            throw std::runtime_error(producer.Last().text);
    }
    // An empty one when none is there.
    std::string TakePacket(bool waits = false) const
    {
        std::string packet(1024, '\0');
        std::size_t size = packet.size();
        if (producer.EventGetData(events, packet.data(), &size, waits ? 60000 : 0) != GC_ERR_SUCCESS) return {};
        packet.resize(size);
        return packet;
    }
    void Notify(const char* event, const char* value = "On") const
    {
        map.Set("EventSelector", event);
        map.Set("EventNotification", value);
    }
    // Its event is there when this returns.
    void TakeFrame() const
    {
        tree.Announce();
        if (tree.StreamInfo<bool8_t>(STREAM_INFO_IS_GRABBING) == 0)
        {
            tree.Start();
            map.Execute("AcquisitionStart");
        }
        tree.Next();
    }
    void SetLine0(bool isHigh) const
    {
        map.Set("LineSelector", "Line1");
        map.Set("LineInverter", isHigh ? "1" : "0");
    }
    std::string Info(const std::string& packet, EVENT_DATA_INFO_CMD command, INFO_DATATYPE expected) const
    {
        INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
        std::string bytes(1024, '\0');
        std::size_t size = bytes.size();
        EXPECT_EQ(
            producer.EventGetDataInfo(events, packet.data(), packet.size(), command, &type, bytes.data(), &size),
            GC_ERR_SUCCESS);
        EXPECT_EQ(type, expected);
        bytes.resize(size);
        return bytes;
    }

    Producer producer;
    Tree tree;
    FeatureMap map;
    EVENT_HANDLE events = nullptr;
};

// The nodes of an event, while an adapter shows them.
template <typename Adapter>
std::string NodesAfter(const Camera& camera, const std::string& packet, const std::string& event)
{
    Adapter adapter(&camera.map.Map());
    EXPECT_EQ(camera.map.Access(event), GenApi::NA) << "no such event came yet";
    adapter.DeliverMessage(
        reinterpret_cast<const std::uint8_t*>(packet.data()), static_cast<std::uint32_t>(packet.size()));
    std::string text;
    for (const char* const suffix : {"", "Timestamp", "FrameID"})
        text += camera.map.Text(event + suffix) + " ";
    return text;
}

TEST(SimulatorCameraEvents, DefaultCameraTellsTheEndOfEachExposure)
{
    const Producer producer;
    const Tree tree(producer, "SimGEV", "mono");
    const FeatureMap map(producer, tree.remote);
    EVENT_HANDLE events = nullptr;
    ASSERT_EQ(producer.GCRegisterEvent(tree.device, EVENT_REMOTE_DEVICE, &events), GC_ERR_SUCCESS);
    const BUFFER_HANDLE buffers[] = {tree.Announce(), tree.Announce()};
    tree.Start(2);
    map.Execute("AcquisitionStart");
    GenApi::CEventAdapterGEV adapter(&map.Map());
    for (const BUFFER_HANDLE buffer : buffers)
    {
        ASSERT_EQ(tree.Next().BufferHandle, buffer);
        std::uint8_t packet[576];
        std::size_t size = sizeof packet;
        ASSERT_EQ(producer.EventGetData(events, packet, &size, 0), GC_ERR_SUCCESS) << "it comes before its image";
        adapter.DeliverMessage(packet, static_cast<std::uint32_t>(size));
        EXPECT_EQ(map.Integer("EventExposureEnd").GetValue(), 0x9001);
        EXPECT_EQ(
            static_cast<std::uint64_t>(map.Integer("EventExposureEndFrameID").GetValue()),
            tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_FRAMEID));
        EXPECT_EQ(
            static_cast<std::uint64_t>(map.Integer("EventExposureEndTimestamp").GetValue()),
            tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_TIMESTAMP_NS));
    }
}

TEST(SimulatorCameraEvents, PacketOfGigEVisionIsAsTheTransportSaysIt)
{
    const Camera camera;
    camera.TakeFrame();
    const std::string packet = camera.TakePacket();
    EXPECT_EQ(
        Hex(packet), "420000C000100001"
                     "0000900100000001"
                     "00000000000F4240");
    EXPECT_EQ(NodesAfter<GenApi::CEventAdapterGEV>(camera, packet, "EventExposureEnd"), "0x9001 1000000 1 ");
    EXPECT_EQ(camera.map.Text("GevGVSPExtendedIDMode"), "Off");
    camera.TakeFrame();
    EXPECT_EQ(Hex(camera.TakePacket()).substr(12, 4), "0002") << "requests are counted";
}

TEST(SimulatorCameraEvents, PacketOfGigEVisionCanHaveLongIds)
{
    const Camera camera(R"(, "extendedEventIds": true)");
    camera.TakeFrame();
    const std::string packet = camera.TakePacket();
    EXPECT_EQ(
        Hex(packet), "421000C000180001"
                     "0000900100000000"
                     "0000000000000001"
                     "00000000000F4240");
    EXPECT_EQ(NodesAfter<GenApi::CEventAdapterGEV>(camera, packet, "EventExposureEnd"), "0x9001 1000000 1 ");
    EXPECT_EQ(camera.map.Text("GevGVSPExtendedIDMode"), "On");
}

TEST(SimulatorCameraEvents, PacketOfUSB3VisionIsAsTheTransportSaysIt)
{
    const Camera camera("", "U3V");
    camera.TakeFrame();
    const std::string packet = camera.TakePacket();
    EXPECT_EQ(
        Hex(packet), "55335645"
                     "0000000C14000100"
                     "00000190"
                     "40420F0000000000"
                     "0100000000000000");
    EXPECT_EQ(NodesAfter<GenApi::CEventAdapterU3V>(camera, packet, "EventExposureEnd"), "0x9001 1000000 1 ");
    EXPECT_FALSE(camera.map.Has("GevGVSPExtendedIDMode"));
}

TEST(SimulatorCameraEvents, PacketOfCameraLinkIsAsTheTransportSaysIt)
{
    const Camera camera("", "CL");
    camera.TakeFrame();
    const std::string packet = camera.TakePacket();
    EXPECT_EQ(
        Hex(packet), "01000000000000000000"
                     "0C0000140001"
                     "00009001"
                     "00000000000F4240"
                     "0000000000000001");
    EXPECT_EQ(NodesAfter<GenApi::CEventAdapterCL>(camera, packet, "EventExposureEnd"), "0x9001 1000000 1 ");
}

TEST(SimulatorCameraEvents, TransportsWithoutALayoutSendTheItemAlone)
{
    const Camera camera("", "CXP");
    camera.TakeFrame();
    const std::string packet = camera.TakePacket();
    EXPECT_EQ(
        Hex(packet), "00000190"
                     "40420F0000000000"
                     "0100000000000000");
    GenApi::CEventAdapterGeneric adapter(&camera.map.Map());
    adapter.DeliverMessage(
        reinterpret_cast<const std::uint8_t*>(packet.data()), static_cast<std::uint32_t>(packet.size()),
        std::uint64_t{0x9001});
    EXPECT_EQ(camera.map.Text("EventExposureEndFrameID"), "1");
}

TEST(SimulatorCameraEvents, DataInformationTellsIdAndItem)
{
    const std::map<std::string, std::size_t> heads{{"GEV", 8}, {"U3V", 12}, {"CL", 16}, {"CXP", 0}};
    for (const auto& [tlType, headBytes] : heads)
    {
        SCOPED_TRACE(tlType);
        const Camera camera("", tlType);
        camera.TakeFrame();
        const std::string packet = camera.TakePacket();
        EXPECT_EQ(camera.Info(packet, EVENT_DATA_ID, INFO_DATATYPE_STRING), std::string("9001", 5));
        EXPECT_EQ(camera.Info(packet, EVENT_DATA_VALUE, INFO_DATATYPE_BUFFER), packet.substr(headBytes));
        EXPECT_EQ(Hex(camera.Info(packet, EVENT_DATA_NUMID, INFO_DATATYPE_UINT64)), "0190000000000000");
        for (const std::string& block : {packet.substr(0, headBytes + 11), std::string(577, '\0')})
            EXPECT_EQ(
                camera.producer.Result(
                    camera.producer.EventGetDataInfo, camera.events, block.data(), block.size(), EVENT_DATA_ID),
                GC_ERR_INVALID_PARAMETER);
    }
}

TEST(SimulatorCameraEvents, EventsThatAreOffAreNotSent)
{
    const Camera camera;
    camera.Notify("ExposureEnd", "Off");
    camera.TakeFrame();
    camera.SetLine0(true);
    EXPECT_EQ(camera.TakePacket(), "");
    camera.Notify("ExposureEnd");
    camera.TakeFrame();
    EXPECT_NE(camera.TakePacket(), "");
}

TEST(SimulatorCameraEvents, WhatHappensBeforeTheRegistrationIsNotSent)
{
    Camera camera(R"(, "eventsPerPacket": 2)");
    camera.TakeFrame();
    ASSERT_EQ(camera.producer.GCUnregisterEvent(camera.tree.device, EVENT_REMOTE_DEVICE), GC_ERR_SUCCESS);
    camera.TakeFrame();
    camera.Register();
    camera.TakeFrame();
    EXPECT_EQ(camera.TakePacket(), "") << "the first of two";
    camera.TakeFrame();
    const std::string packet = camera.TakePacket();
    ASSERT_EQ(packet.size(), 40U);
    EXPECT_EQ(Hex(packet.substr(14, 2)), "0003");
    EXPECT_EQ(Hex(packet.substr(30, 2)), "0004");
}

TEST(SimulatorCameraEvents, TriggersAreToldWithTheFrameTheyBring)
{
    const Camera camera;
    camera.Notify("ExposureEnd", "Off");
    camera.Notify("FrameTrigger");
    camera.map.Set("TriggerMode", "On");
    camera.map.Execute("TriggerSoftware");
    EXPECT_EQ(camera.TakePacket(), "") << "nothing waits for it";
    camera.tree.Announce();
    camera.tree.Start();
    camera.map.Execute("AcquisitionStart");
    for (const char* const frame : {"1", "2"})
    {
        camera.map.Execute("TriggerSoftware");
        const std::string packet = camera.TakePacket();
        ASSERT_EQ(packet.size(), 24U);
        EXPECT_EQ(camera.Info(packet, EVENT_DATA_ID, INFO_DATATYPE_STRING), std::string("9002", 5));
        GenApi::CEventAdapterGEV adapter(&camera.map.Map());
        adapter.DeliverMessage(reinterpret_cast<const std::uint8_t*>(packet.data()), 24);
        EXPECT_EQ(camera.map.Text("EventFrameTriggerFrameID"), frame);
        EXPECT_GT(camera.map.Integer("EventFrameTriggerTimestamp").GetValue(), 0);
    }
}

TEST(SimulatorCameraEvents, ExposureOfATriggeredFrameEndsTheExposureTimeAfterItsTrigger)
{
    const Camera camera(R"(, "rate": 1000)");
    camera.Notify("FrameTrigger");
    camera.map.Set("TriggerMode", "On");
    camera.map.Set("ExposureTime", "30000");
    camera.tree.Announce();
    camera.tree.Start();
    camera.map.Execute("AcquisitionStart");
    camera.map.Execute("TriggerSoftware");
    const auto taken = camera.tree.Next().BufferHandle;
    GenApi::CEventAdapterGEV adapter(&camera.map.Map());
    for (const char* const event : {"its trigger", "the end of its exposure"})
    {
        const std::string packet = camera.TakePacket();
        ASSERT_EQ(packet.size(), 24U) << event;
        adapter.DeliverMessage(reinterpret_cast<const std::uint8_t*>(packet.data()), 24);
    }
    const auto exposureEnd = camera.map.Integer("EventExposureEndTimestamp").GetValue();
    EXPECT_EQ(exposureEnd - camera.map.Integer("EventFrameTriggerTimestamp").GetValue(), 30'000'000);
    EXPECT_EQ(
        camera.tree.BufferInfo<std::uint64_t>(taken, BUFFER_INFO_TIMESTAMP_NS),
        static_cast<std::uint64_t>(exposureEnd));
}

TEST(SimulatorCameraEvents, EdgesOfTheLineAreToldWithTheLevels)
{
    const Camera camera;
    camera.Notify("Line0RisingEdge");
    camera.Notify("Line0FallingEdge");
    camera.SetLine0(true);
    const std::string up = camera.TakePacket();
    EXPECT_EQ(
        Hex(up.substr(0, 16)), "420000C200140001"
                               "0000900300000000");
    EXPECT_EQ(Hex(up.substr(24)), "00000003");
    camera.SetLine0(true);
    EXPECT_EQ(camera.TakePacket(), "") << "no edge";
    camera.SetLine0(false);
    const std::string down = camera.TakePacket();
    EXPECT_EQ(camera.Info(down, EVENT_DATA_ID, INFO_DATATYPE_STRING), std::string("9004", 5));
    EXPECT_EQ(Hex(down.substr(24)), "00000000");
    GenApi::CEventAdapterGEV adapter(&camera.map.Map());
    adapter.DeliverMessage(reinterpret_cast<const std::uint8_t*>(up.data()), static_cast<std::uint32_t>(up.size()));
    EXPECT_EQ(camera.map.Text("EventLine0RisingEdgeLineStatusAll"), "0x3");
}

TEST(SimulatorCameraEvents, LevelsReachTheNodesOfEachTransport)
{
    {
        const Camera camera(R"(, "extendedEventIds": true)");
        camera.Notify("Line0RisingEdge");
        camera.SetLine0(true);
        GenApi::CEventAdapterGEV adapter(&camera.map.Map());
        const std::string packet = camera.TakePacket();
        adapter.DeliverMessage(
            reinterpret_cast<const std::uint8_t*>(packet.data()), static_cast<std::uint32_t>(packet.size()));
        EXPECT_EQ(camera.map.Text("EventLine0RisingEdgeLineStatusAll"), "0x3");
    }
    const Camera camera("", "U3V");
    camera.Notify("Line0RisingEdge");
    camera.SetLine0(true);
    GenApi::CEventAdapterU3V adapter(&camera.map.Map());
    const std::string packet = camera.TakePacket();
    adapter.DeliverMessage(
        reinterpret_cast<const std::uint8_t*>(packet.data()), static_cast<std::uint32_t>(packet.size()));
    EXPECT_EQ(camera.map.Text("EventLine0RisingEdgeLineStatusAll"), "0x3");
}

TEST(SimulatorCameraEvents, SeveralEventsOfOneLengthShareAPacketWithoutSizes)
{
    const Camera camera(R"(, "eventsPerPacket": 3)");
    for (int frame = 0; frame < 3; ++frame)
    {
        EXPECT_EQ(camera.TakePacket(), "");
        camera.TakeFrame();
    }
    const std::string packet = camera.TakePacket();
    EXPECT_EQ(
        Hex(packet), "420000C000300001"
                     "000090010000000100000000000F4240"
                     "000090010000000200000000001E8480"
                     "000090010000000300000000002DC6C0");
    EXPECT_EQ(camera.Info(packet, EVENT_DATA_VALUE, INFO_DATATYPE_BUFFER), packet.substr(8, 16)) << "the first one";
    EXPECT_EQ(NodesAfter<GenApi::CEventAdapterGEV>(camera, packet, "EventExposureEnd"), "0x9001 3000000 3 ");
}

TEST(SimulatorCameraEvents, SeveralEventsWithDataTellTheirSizes)
{
    const Camera camera(R"(, "eventsPerPacket": 2)");
    camera.Notify("Line0RisingEdge");
    camera.TakeFrame();
    camera.SetLine0(true);
    const std::string packet = camera.TakePacket();
    ASSERT_EQ(packet.size(), 44U);
    EXPECT_EQ(Hex(packet.substr(0, 12)), "420000C20024000100109001");
    EXPECT_EQ(Hex(packet.substr(24, 4)), "00149003");
    GenApi::CEventAdapterGEV adapter(&camera.map.Map());
    adapter.DeliverMessage(
        reinterpret_cast<const std::uint8_t*>(packet.data()), static_cast<std::uint32_t>(packet.size()));
    EXPECT_EQ(camera.map.Text("EventExposureEndFrameID"), "1");
    EXPECT_EQ(camera.map.Text("EventLine0RisingEdgeFrameID"), "1");
    EXPECT_EQ(camera.map.Text("EventLine0RisingEdgeLineStatusAll"), "0x3");
}

TEST(SimulatorCameraEvents, SeveralEventsOfCameraLinkTellTheirSizes)
{
    const Camera camera(R"(, "eventsPerPacket": 2)", "CL");
    camera.Notify("Line0RisingEdge");
    camera.SetLine0(true);
    camera.TakeFrame();
    const std::string packet = camera.TakePacket();
    EXPECT_EQ(Hex(packet.substr(16, 4)), "00189003");
    EXPECT_EQ(Hex(packet.substr(40, 4)), "00149001");
    GenApi::CEventAdapterCL adapter(&camera.map.Map());
    adapter.DeliverMessage(
        reinterpret_cast<const std::uint8_t*>(packet.data()), static_cast<std::uint32_t>(packet.size()));
    EXPECT_EQ(camera.map.Text("EventExposureEndFrameID"), "1");
    EXPECT_EQ(camera.map.Text("EventLine0RisingEdgeLineStatusAll"), "0x3");
}

TEST(SimulatorCameraEvents, FrameWithoutABufferIsExposedAllTheSame)
{
    const Producer producer(PacedCamera(1000));
    const Tree tree(producer);
    EVENT_HANDLE events = nullptr;
    ASSERT_EQ(producer.GCRegisterEvent(tree.device, EVENT_REMOTE_DEVICE, &events), GC_ERR_SUCCESS);
    tree.Announce(false);
    tree.Start();
    char packet[576];
    std::size_t size = sizeof packet;
    EXPECT_EQ(producer.EventGetData(events, packet, &size, 60000), GC_ERR_SUCCESS);
    EXPECT_TRUE(Eventually([&] { return tree.StreamInfo<std::uint64_t>(STREAM_INFO_NUM_UNDERRUN) > 0; }));
}

TEST(SimulatorCameraEvents, UserSetsKeepWhichEventsAreSent)
{
    const Camera camera;
    camera.Notify("FrameTrigger");
    camera.map.Execute("UserSetLoad");
    camera.map.Set("EventSelector", "FrameTrigger");
    EXPECT_EQ(camera.map.Text("EventNotification"), "Off");
    camera.map.Set("EventSelector", "ExposureEnd");
    EXPECT_EQ(camera.map.Text("EventNotification"), "On");
}

TEST(SimulatorCameraEvents, RegistersRefuseWhatTheirNodesRefuse)
{
    const Camera camera;
    const auto write = [&](std::uint64_t address, char last) {
        const char value[4] = {0, 0, 0, last};
        std::size_t size = sizeof value;
        return camera.producer.GCWritePort(camera.tree.remote, address, value, &size);
    };
    EXPECT_EQ(write(0xA0C, 1), GC_ERR_SUCCESS);
    EXPECT_EQ(write(0xA0C, 2), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(write(0xA10, 1), GC_ERR_INVALID_ADDRESS);
    EXPECT_EQ(write(0xA40, 1), GC_ERR_ACCESS_DENIED);
}

} // namespace
} // namespace koro::simulator::test
