// Opening and closing the module tree, lists, handles.
#include "tests/unit/simulator/producer.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace koro::simulator::test
{
namespace
{

TEST(SimulatorTree, DefaultsAreTheDocumentedCameras)
{
    struct Kind
    {
        const char* interface;
        const char* tlType;
        std::vector<std::string> cameras;
    };
    const std::vector<Kind> kinds = {
        {"SimGEV", "GEV", {"GevMono_KS0001", "GevBayer_KS0002", "GevChunks_KS0005"}},
        {"SimU3V", "U3V", {"UsbColour_KS0003", "UsbPlayer_KS0004", "UsbDepth_KS0006"}},
        {"SimIIDC", "IIDC", {"IidcChunks_KS0007"}}};
    const Producer producer;
    TL_HANDLE system = nullptr;
    ASSERT_EQ(producer.TLOpen(&system), GC_ERR_SUCCESS);
    bool8_t changed = 0;
    ASSERT_EQ(producer.TLUpdateInterfaceList(system, &changed, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(changed, 1);
    std::uint32_t number = 0;
    ASSERT_EQ(producer.TLGetNumInterfaces(system, &number), GC_ERR_SUCCESS);
    EXPECT_EQ(number, kinds.size());
    EXPECT_EQ(producer.Get(producer.TLGetInfo, system, TL_INFO_TLTYPE), "Mixed");
    for (const Kind& kind : kinds)
    {
        EXPECT_EQ(
            producer.Get(producer.TLGetInterfaceInfo, system, kind.interface, INTERFACE_INFO_TLTYPE), kind.tlType);
        IF_HANDLE interface = nullptr;
        ASSERT_EQ(producer.TLOpenInterface(system, kind.interface, &interface), GC_ERR_SUCCESS);
        ASSERT_EQ(producer.IFUpdateDeviceList(interface, nullptr, 0), GC_ERR_SUCCESS);
        ASSERT_EQ(producer.IFGetNumDevices(interface, &number), GC_ERR_SUCCESS);
        ASSERT_EQ(number, kind.cameras.size());
        for (std::uint32_t index = 0; index < number; ++index)
        {
            char id[64] = {};
            std::size_t size = sizeof id;
            EXPECT_EQ(producer.IFGetDeviceID(interface, index, id, &size), GC_ERR_SUCCESS);
            EXPECT_EQ(id, kind.cameras[index]);
        }
    }
}

TEST(SimulatorTree, ListsAreEmptyUntilTheFirstUpdateAndThenUnchanged)
{
    const Producer producer(OneCamera());
    TL_HANDLE system = nullptr;
    ASSERT_EQ(producer.TLOpen(&system), GC_ERR_SUCCESS);
    std::uint32_t number = 7;
    ASSERT_EQ(producer.TLGetNumInterfaces(system, &number), GC_ERR_SUCCESS);
    EXPECT_EQ(number, 0U);
    bool8_t changed = 0;
    ASSERT_EQ(producer.TLUpdateInterfaceList(system, &changed, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(changed, 1);
    ASSERT_EQ(producer.TLUpdateInterfaceList(system, &changed, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(changed, 0);
    IF_HANDLE interface = nullptr;
    ASSERT_EQ(producer.TLOpenInterface(system, "I", &interface), GC_ERR_SUCCESS);
    ASSERT_EQ(producer.IFGetNumDevices(interface, &number), GC_ERR_SUCCESS);
    EXPECT_EQ(number, 0U);
    ASSERT_EQ(producer.IFUpdateDeviceList(interface, &changed, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(changed, 1);
}

TEST(SimulatorTree, IndexBehindTheListIsInvalid)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    char text[64];
    std::size_t size = sizeof text;
    EXPECT_EQ(producer.TLGetInterfaceID(tree.system, 1, text, &size), GC_ERR_INVALID_INDEX);
    EXPECT_EQ(producer.IFGetDeviceID(tree.interface, 1, text, &size), GC_ERR_INVALID_INDEX);
    EXPECT_EQ(producer.DevGetDataStreamID(tree.device, 1, text, &size), GC_ERR_INVALID_INDEX);
    EXPECT_EQ(producer.IFGetDeviceID(tree.interface, 0, text, &size), GC_ERR_SUCCESS);
    EXPECT_STREQ(text, "SimulatedCamera_A");
}

TEST(SimulatorTree, SecondOpenIsInUseAndReopeningWorks)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    void* handle = nullptr;
    EXPECT_EQ(producer.TLOpen(&handle), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(producer.TLOpenInterface(tree.system, "I", &handle), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(producer.IFOpenDevice(tree.interface, "A", DEVICE_ACCESS_CONTROL, &handle), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(producer.DevOpenDataStream(tree.device, "Stream0", &handle), GC_ERR_RESOURCE_IN_USE);
    ASSERT_EQ(producer.DevClose(tree.device), GC_ERR_SUCCESS);
    ASSERT_EQ(producer.IFOpenDevice(tree.interface, "A", DEVICE_ACCESS_CONTROL, &handle), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.DevOpenDataStream(handle, "Stream0", &handle), GC_ERR_SUCCESS);
}

TEST(SimulatorTree, UnknownIdIsInvalidIdAndNullIdInvalidParameter)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    void* handle = nullptr;
    EXPECT_EQ(producer.TLOpenInterface(tree.system, "none", &handle), GC_ERR_INVALID_ID);
    EXPECT_EQ(producer.IFOpenDevice(tree.interface, "none", DEVICE_ACCESS_CONTROL, &handle), GC_ERR_INVALID_ID);
    EXPECT_EQ(producer.DevOpenDataStream(tree.device, "none", &handle), GC_ERR_INVALID_ID);
    EXPECT_EQ(producer.Result(producer.IFGetDeviceInfo, tree.interface, "none", DEVICE_INFO_ID), GC_ERR_INVALID_ID);
    EXPECT_EQ(producer.TLOpenInterface(tree.system, nullptr, &handle), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(producer.TLOpenInterface(tree.system, "I", nullptr), GC_ERR_INVALID_PARAMETER);
}

TEST(SimulatorTree, FailedOpenForWantOfAnOutputOpensNothing)
{
    const Producer producer(OneCamera());
    EXPECT_EQ(producer.TLOpen(nullptr), GC_ERR_INVALID_PARAMETER);
    TL_HANDLE system = nullptr;
    EXPECT_EQ(producer.TLOpen(&system), GC_ERR_SUCCESS);
}

TEST(SimulatorTree, DeviceOpensByIdSerialNumberAndUserNameAndReportsItsId)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    for (const char* name : {"SimulatedCamera_A", "A", "left"})
    {
        producer.DevClose(tree.device);
        DEV_HANDLE device = nullptr;
        ASSERT_EQ(producer.IFOpenDevice(tree.interface, name, DEVICE_ACCESS_CONTROL, &device), GC_ERR_SUCCESS) << name;
        EXPECT_EQ(producer.Get(producer.DevGetInfo, device, DEVICE_INFO_ID), "SimulatedCamera_A");
        ASSERT_EQ(producer.DevClose(device), GC_ERR_SUCCESS);
    }
}

TEST(SimulatorTree, AccessFlagsAreChecked)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    ASSERT_EQ(producer.DevClose(tree.device), GC_ERR_SUCCESS);
    void* handle = nullptr;
    EXPECT_EQ(producer.IFOpenDevice(tree.interface, "A", DEVICE_ACCESS_UNKNOWN, &handle), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(producer.IFOpenDevice(tree.interface, "A", DEVICE_ACCESS_NONE, &handle), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(producer.IFOpenDevice(tree.interface, "A", 17, &handle), GC_ERR_INVALID_PARAMETER);
}

TEST(SimulatorTree, AccessStatusTellsOpenAndClosed)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    const auto status = [&] {
        return producer.Get<std::int32_t>(producer.IFGetDeviceInfo, tree.interface, "A", DEVICE_INFO_ACCESS_STATUS);
    };
    EXPECT_EQ(status(), DEVICE_ACCESS_STATUS_OPEN_READWRITE);
    ASSERT_EQ(producer.DevClose(tree.device), GC_ERR_SUCCESS);
    EXPECT_EQ(status(), DEVICE_ACCESS_STATUS_READWRITE);
    DEV_HANDLE device = nullptr;
    ASSERT_EQ(producer.IFOpenDevice(tree.interface, "A", DEVICE_ACCESS_READONLY, &device), GC_ERR_SUCCESS);
    EXPECT_EQ(status(), DEVICE_ACCESS_STATUS_OPEN_READONLY);
    EXPECT_EQ(producer.Get<std::int32_t>(producer.DevGetInfo, device, DEVICE_INFO_ACCESS_STATUS), status());
}

TEST(SimulatorTree, DeviceInformationIsTheSameOpenAndById)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    for (const DEVICE_INFO_CMD command :
         {DEVICE_INFO_ID, DEVICE_INFO_VENDOR, DEVICE_INFO_MODEL, DEVICE_INFO_TLTYPE, DEVICE_INFO_DISPLAYNAME,
          DEVICE_INFO_USER_DEFINED_NAME, DEVICE_INFO_SERIAL_NUMBER, DEVICE_INFO_VERSION})
        EXPECT_EQ(
            producer.Get(producer.DevGetInfo, tree.device, command),
            producer.Get(producer.IFGetDeviceInfo, tree.interface, "A", command));
    EXPECT_EQ(
        producer.Get(producer.DevGetInfo, tree.device, DEVICE_INFO_DISPLAYNAME),
        "zvr SimulatedCamera (SimulatedCamera_A)");
    EXPECT_EQ(
        producer.Get<std::uint64_t>(producer.DevGetInfo, tree.device, DEVICE_INFO_TIMESTAMP_FREQUENCY), 1000000000U);
}

TEST(SimulatorTree, CameraWithoutUserNameAnswersNotAvailable)
{
    const Producer producer(R"({"interfaces": [{"id": "I", "cameras": [{"serial": "A"}]}]})");
    const Tree tree(producer);
    EXPECT_EQ(producer.Result(producer.DevGetInfo, tree.device, DEVICE_INFO_USER_DEFINED_NAME), GC_ERR_NOT_AVAILABLE);
}

TEST(SimulatorTree, ParentsAreTheHandlesThatOpenedThem)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    void* parent = nullptr;
    ASSERT_EQ(producer.IFGetParentTL(tree.interface, &parent), GC_ERR_SUCCESS);
    EXPECT_EQ(parent, tree.system);
    ASSERT_EQ(producer.DevGetParentIF(tree.device, &parent), GC_ERR_SUCCESS);
    EXPECT_EQ(parent, tree.interface);
    ASSERT_EQ(producer.DSGetParentDev(tree.stream, &parent), GC_ERR_SUCCESS);
    EXPECT_EQ(parent, tree.device);
}

TEST(SimulatorTree, HandlesOfAnotherKindAreInvalid)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    std::uint32_t number = 0;
    EXPECT_EQ(producer.TLClose(tree.stream), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.IFGetNumDevices(tree.system, &number), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.DevClose(tree.remote), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.EventKill(tree.stream), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.GCGetNumPortURLs(tree.event, &number), GC_ERR_INVALID_HANDLE);
    int stranger = 0;
    EXPECT_EQ(producer.DSClose(&stranger), GC_ERR_INVALID_HANDLE);
}

TEST(SimulatorTree, ClosingTheSystemKillsEveryHandleBelow)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    ASSERT_EQ(producer.TLClose(tree.system), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.IFClose(tree.interface), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.DevClose(tree.device), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.DSStopAcquisition(tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.DSFlushQueue(tree.stream, ACQ_QUEUE_ALL_DISCARD), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.DSRevokeBuffer(tree.stream, buffer, nullptr, nullptr), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.DSClose(tree.stream), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.GCUnregisterEvent(tree.stream, EVENT_NEW_BUFFER), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.EventKill(tree.event), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(tree.TryNext(), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.Result(producer.GCGetPortInfo, tree.remote, PORT_INFO_ID), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.TLClose(tree.system), GC_ERR_INVALID_HANDLE);
}

TEST(SimulatorTree, ClosingTheLibraryKillsTheTreeAndHandlesAreNotReused)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    ASSERT_EQ(producer.GCCloseLib(), GC_ERR_SUCCESS);
    ASSERT_EQ(producer.GCInitLib(), GC_ERR_SUCCESS);
    const Tree again(producer);
    EXPECT_EQ(producer.DSClose(tree.stream), GC_ERR_INVALID_HANDLE);
    EXPECT_NE(tree.stream, again.stream);
}

} // namespace
} // namespace koro::simulator::test
