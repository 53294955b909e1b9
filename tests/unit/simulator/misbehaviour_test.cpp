// Each misbehaviour that the settings can ask for.
#include "tests/unit/simulator/producer.h"

#include <gtest/gtest.h>

namespace koro::simulator::test
{
namespace
{

std::string Misbehaving(const std::string& content)
{
    return OneCamera(R"(, "misbehaviour": {)" + content + "}");
}

TEST(SimulatorMisbehaviour, CallFailsFromTheNthTimeOnAsOftenAsAsked)
{
    const Producer producer(Misbehaving(
        R"("calls": [{"function": "TLOpen", "at": 2, "count": 2, "error": "GC_ERR_IO", "text": "pulled out"}])"));
    TL_HANDLE system = nullptr;
    ASSERT_EQ(producer.TLOpen(&system), GC_ERR_SUCCESS);
    ASSERT_EQ(producer.TLClose(system), GC_ERR_SUCCESS);
    for (int time = 0; time < 2; ++time)
    {
        EXPECT_EQ(producer.TLOpen(&system), GC_ERR_IO);
        EXPECT_EQ(producer.Last().code, GC_ERR_IO);
        EXPECT_EQ(producer.Last().text, "TLOpen: pulled out");
    }
    EXPECT_EQ(producer.TLOpen(&system), GC_ERR_SUCCESS);
}

TEST(SimulatorMisbehaviour, CallFailsEveryTimeWithACustomCode)
{
    const Producer producer(Misbehaving(R"("calls": [{"function": "GCGetInfo", "count": "every", "error": -12345}])"));
    for (int time = 0; time < 5; ++time)
        EXPECT_EQ(producer.Result(producer.GCGetInfo, TL_INFO_ID), -12345);
}

TEST(SimulatorMisbehaviour, LastErrorMayDifferFromTheResult)
{
    const Producer producer(
        Misbehaving(R"("calls": [{"function": "TLOpen", "error": "GC_ERR_IO", "lastError": "GC_ERR_BUSY"}])"));
    TL_HANDLE system = nullptr;
    EXPECT_EQ(producer.TLOpen(&system), GC_ERR_IO);
    EXPECT_EQ(producer.Last().code, GC_ERR_BUSY);
}

TEST(SimulatorMisbehaviour, InitAndCloseCanFail)
{
    const Producer producer(Misbehaving(
        R"("calls": [{"function": "GCInitLib", "at": 2, "error": "GC_ERR_ACCESS_DENIED"},
                         {"function": "GCCloseLib", "error": "GC_ERR_BUSY"}])"));
    EXPECT_EQ(producer.GCInitLib(), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(producer.GCCloseLib(), GC_ERR_BUSY);
    EXPECT_EQ(producer.GCCloseLib(), GC_ERR_SUCCESS);
}

TEST(SimulatorMisbehaviour, FirstInitCanFailAndLeavesNothing)
{
    const Producer producer(Misbehaving(R"("calls": [{"function": "GCInitLib", "error": "GC_ERR_IO"}])"), false);
    EXPECT_EQ(producer.GCInitLib(), GC_ERR_IO);
    TL_HANDLE system = nullptr;
    EXPECT_EQ(producer.TLOpen(&system), GC_ERR_NOT_INITIALIZED);
}

TEST(SimulatorMisbehaviour, DelayedCallStillSucceeds)
{
    const Producer producer(Misbehaving(R"("calls": [{"function": "TLOpen", "delay_ms": 30}])"));
    const auto before = std::chrono::steady_clock::now();
    TL_HANDLE system = nullptr;
    EXPECT_EQ(producer.TLOpen(&system), GC_ERR_SUCCESS);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(30));
}

TEST(SimulatorMisbehaviour, InfoAnswersAnotherType)
{
    const Producer producer(Misbehaving(R"("info": [{"function": "GCGetInfo", "command": 1, "type": 8}])"));
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    char text[64];
    std::size_t size = sizeof text;
    ASSERT_EQ(producer.GCGetInfo(TL_INFO_VENDOR, &type, text, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(type, INFO_DATATYPE_UINT64);
    EXPECT_STREQ(text, "zvr");
    ASSERT_EQ(producer.GCGetInfo(TL_INFO_MODEL, &type, text, &size), GC_ERR_BUFFER_TOO_SMALL);
}

TEST(SimulatorMisbehaviour, InfoAnswersAnotherSizeAndClaimsAThird)
{
    const Producer producer(
        Misbehaving(R"("info": [{"function": "GCGetInfo", "command": 1, "size": 2, "claimedSize": 1099511627776}])"));
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    char text[64];
    std::size_t size = 0;
    ASSERT_EQ(producer.GCGetInfo(TL_INFO_VENDOR, &type, nullptr, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(size, std::size_t{1} << 40);
    size = sizeof text;
    ASSERT_EQ(producer.GCGetInfo(TL_INFO_VENDOR, &type, text, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(size, 2U);
}

TEST(SimulatorMisbehaviour, InfoAnswersGivenValuesAndErrors)
{
    const Producer producer(Misbehaving(R"("info": [
        {"function": "TLGetInfo", "command": 1, "value": "other"},
        {"function": "TLGetInfo", "command": 2, "value": [65, 66]},
        {"function": "TLGetInfo", "command": 77, "type": 6, "value": 5},
        {"function": "TLGetInfo", "command": 9, "value": 3},
        {"function": "TLGetInfo", "command": 3, "error": "GC_ERR_NOT_AVAILABLE"}])"));
    TL_HANDLE system = nullptr;
    ASSERT_EQ(producer.TLOpen(&system), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.Get(producer.TLGetInfo, system, TL_INFO_VENDOR), "other");
    EXPECT_EQ(producer.Get<std::uint32_t>(producer.TLGetInfo, system, TL_INFO_GENTL_VER_MAJOR), 3U);
    EXPECT_EQ(producer.Get<std::uint32_t>(producer.TLGetInfo, system, 77), 5U);
    EXPECT_EQ(producer.Result(producer.TLGetInfo, system, TL_INFO_VERSION), GC_ERR_NOT_AVAILABLE);
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    std::size_t size = 0;
    ASSERT_EQ(producer.TLGetInfo(system, TL_INFO_MODEL, &type, nullptr, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(size, 2U) << "no terminator";
    EXPECT_EQ(producer.Get(producer.GCGetInfo, TL_INFO_VENDOR), "zvr") << "the other function tells the truth";
}

TEST(SimulatorMisbehaviour, IncompleteFramesHaveTheAskedLines)
{
    const Producer producer(Misbehaving(R"("frames": [{"camera": "A", "at": 2, "deliveredLines": 1}])"));
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    for (std::uint64_t frame = 1; frame <= 3; ++frame)
    {
        tree.Next();
        EXPECT_EQ(tree.Flag(buffer, BUFFER_INFO_IS_INCOMPLETE), frame == 2);
        EXPECT_EQ(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_SIZE_FILLED), frame == 2 ? 16U : 64U);
        EXPECT_EQ(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_DELIVERED_IMAGEHEIGHT), frame == 2 ? 1U : 4U);
        EXPECT_FALSE(tree.Flag(buffer, BUFFER_INFO_DATA_LARGER_THAN_BUFFER));
        ASSERT_EQ(producer.DSQueueBuffer(tree.stream, buffer), GC_ERR_SUCCESS);
    }
}

TEST(SimulatorMisbehaviour, LateFrameLetsAWaitTimeOut)
{
    const Producer producer(Misbehaving(R"("frames": [{"camera": "*", "late_ms": 60000}])"));
    const Tree tree(producer);
    tree.Announce();
    tree.Start();
    EXPECT_EQ(tree.TryNext(5), GC_ERR_TIMEOUT);
    EXPECT_EQ(producer.Last().text, "EventGetData: nothing came in time");
}

// Whether the list shows the camera after one more update.
bool IsFound(const Tree& tree)
{
    EXPECT_EQ(tree.producer.IFUpdateDeviceList(tree.interface, nullptr, 0), GC_ERR_SUCCESS);
    std::uint32_t number = 0;
    EXPECT_EQ(tree.producer.IFGetNumDevices(tree.interface, &number), GC_ERR_SUCCESS);
    return number == 1;
}

TEST(SimulatorMisbehaviour, CameraVanishesAtAFrameAndReturns)
{
    const Producer producer(Misbehaving(R"("devices": [{"camera": "A", "vanishAtFrame": 3, "missingUpdates": 2}])"));
    const Tree tree(producer);
    EVENT_HANDLE errors = nullptr;
    ASSERT_EQ(producer.GCRegisterEvent(tree.device, EVENT_ERROR, &errors), GC_ERR_SUCCESS);
    for (int index = 0; index < 4; ++index)
        tree.Announce();
    tree.Start();
    char block[512];
    std::size_t size = sizeof block;
    ASSERT_EQ(producer.EventGetData(errors, block, &size, 60000), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.Get<std::int32_t>(producer.EventGetDataInfo, errors, block, size, EVENT_DATA_ID), GC_ERR_IO);
    EXPECT_EQ(tree.TryNext(), GC_ERR_SUCCESS);
    EXPECT_EQ(tree.TryNext(), GC_ERR_SUCCESS);
    EXPECT_EQ(tree.TryNext(5), GC_ERR_TIMEOUT);

    std::uint32_t value = 0;
    size = sizeof value;
    EXPECT_EQ(producer.GCReadPort(tree.remote, 0x300, &value, &size), GC_ERR_IO);
    EXPECT_EQ(producer.Get<bool8_t>(producer.GCGetPortInfo, tree.remote, PORT_INFO_ACCESS_NA), 1);
    EXPECT_EQ(
        producer.Get<std::int32_t>(producer.DevGetInfo, tree.device, DEVICE_INFO_ACCESS_STATUS),
        DEVICE_ACCESS_STATUS_NOACCESS);
    EXPECT_FALSE(IsFound(tree));
    EXPECT_FALSE(IsFound(tree));
    EXPECT_TRUE(IsFound(tree));
    EXPECT_EQ(producer.GCReadPort(tree.remote, 0x300, &value, &size), GC_ERR_IO) << "the old handle stays dead";
    EXPECT_EQ(producer.DSStopAcquisition(tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.DSStartAcquisition(tree.stream, 0, 1), GC_ERR_IO);
    EXPECT_EQ(producer.DevClose(tree.device), GC_ERR_SUCCESS);
    DEV_HANDLE device = nullptr;
    PORT_HANDLE remote = nullptr;
    ASSERT_EQ(producer.IFOpenDevice(tree.interface, "A", DEVICE_ACCESS_CONTROL, &device), GC_ERR_SUCCESS);
    ASSERT_EQ(producer.DevGetPort(device, &remote), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.GCReadPort(remote, 0x300, &value, &size), GC_ERR_SUCCESS);
}

TEST(SimulatorMisbehaviour, CameraVanishesAtAListUpdate)
{
    const Producer producer(Misbehaving(R"("devices": [{"camera": "A", "vanishAtUpdate": 2, "missingUpdates": 1}])"));
    const Tree tree(producer); // the first update
    EXPECT_FALSE(IsFound(tree));
    DS_HANDLE stream = nullptr;
    ASSERT_EQ(producer.DSClose(tree.stream), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.DevOpenDataStream(tree.device, "Stream0", &stream), GC_ERR_IO);
    ASSERT_EQ(producer.DevClose(tree.device), GC_ERR_SUCCESS);
    DEV_HANDLE device = nullptr;
    EXPECT_EQ(producer.IFOpenDevice(tree.interface, "A", DEVICE_ACCESS_CONTROL, &device), GC_ERR_INVALID_ID);
    EXPECT_TRUE(IsFound(tree));
    EXPECT_EQ(producer.IFOpenDevice(tree.interface, "A", DEVICE_ACCESS_CONTROL, &device), GC_ERR_SUCCESS);
}

TEST(SimulatorMisbehaviour, CameraThatIsStillListedButGoneCannotBeOpened)
{
    const Producer producer(Misbehaving(R"("devices": [{"camera": "A", "vanishAtFrame": 1}])"));
    const Tree tree(producer);
    tree.Announce();
    tree.Start();
    ASSERT_TRUE(Eventually(
        [&] { return producer.Get<bool8_t>(producer.GCGetPortInfo, tree.remote, PORT_INFO_ACCESS_NA) == 1; }));
    ASSERT_EQ(producer.DevClose(tree.device), GC_ERR_SUCCESS);
    DEV_HANDLE device = nullptr;
    EXPECT_EQ(producer.IFOpenDevice(tree.interface, "A", DEVICE_ACCESS_CONTROL, &device), GC_ERR_IO);
    EXPECT_EQ(
        producer.Get<std::int32_t>(producer.IFGetDeviceInfo, tree.interface, "A", DEVICE_INFO_ACCESS_STATUS),
        DEVICE_ACCESS_STATUS_NOACCESS);
}

TEST(SimulatorMisbehaviour, PortRefusesLongWrites)
{
    const Producer producer(Misbehaving(R"("portWriteLimit": 4)"));
    const Tree tree(producer);
    const char text[8] = "1234567";
    std::size_t size = 5;
    EXPECT_EQ(producer.GCWritePort(tree.remote, 0x240, text, &size), GC_ERR_INVALID_PARAMETER);
    size = 4;
    EXPECT_EQ(producer.GCWritePort(tree.remote, 0x240, text, &size), GC_ERR_SUCCESS);
}

TEST(SimulatorMisbehaviour, DeadHandlesCanAnswerAnotherCode)
{
    const Producer producer(Misbehaving(R"("deadHandleError": "GC_ERR_NOT_INITIALIZED")"));
    EXPECT_EQ(producer.TLClose(nullptr), GC_ERR_NOT_INITIALIZED);
}

} // namespace
} // namespace koro::simulator::test
