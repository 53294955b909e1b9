// Size queries, error codes and the last error: what holds for all functions.
#include "tests/unit/simulator/producer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace koro::simulator::test
{
namespace
{

void* AllBitsSet()
{
    return reinterpret_cast<void*>(UINTPTR_MAX); // NOLINT(performance-no-int-to-ptr)
}

TEST(SimulatorInfo, NullBufferAsksForTheSizeWithTerminatorAndTheType)
{
    const Producer producer(OneCamera());
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    std::size_t size = 0;
    ASSERT_EQ(producer.GCGetInfo(TL_INFO_VENDOR, &type, nullptr, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(size, sizeof "zvr");
    EXPECT_EQ(type, INFO_DATATYPE_STRING);
}

TEST(SimulatorInfo, ExactBufferIsFilledAndNothingBehindIt)
{
    const Producer producer(OneCamera());
    char text[6] = {'#', '#', '#', '#', '#', '#'};
    std::size_t size = 4;
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    ASSERT_EQ(producer.GCGetInfo(TL_INFO_VENDOR, &type, text, &size), GC_ERR_SUCCESS);
    EXPECT_STREQ(text, "zvr");
    EXPECT_EQ(text[4], '#');
    EXPECT_EQ(size, 4U);
}

TEST(SimulatorInfo, ShortBufferIsRefusedAndLeftAlone)
{
    const Producer producer(OneCamera());
    char text[4] = {'#', '#', '#', '#'};
    std::size_t size = 3;
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    EXPECT_EQ(producer.GCGetInfo(TL_INFO_VENDOR, &type, text, &size), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(text[0], '#');
}

TEST(SimulatorInfo, NullOrAllBitsSetOutputsAreInvalidParameters)
{
    const Producer producer(OneCamera());
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    std::size_t size = 0;
    EXPECT_EQ(producer.GCGetInfo(TL_INFO_VENDOR, nullptr, nullptr, &size), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(producer.GCGetInfo(TL_INFO_VENDOR, &type, nullptr, nullptr), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(
        producer.GCGetInfo(TL_INFO_VENDOR, &type, nullptr, static_cast<std::size_t*>(AllBitsSet())),
        GC_ERR_INVALID_PARAMETER);
    size = 100;
    EXPECT_EQ(producer.GCGetInfo(TL_INFO_VENDOR, &type, AllBitsSet(), &size), GC_ERR_INVALID_PARAMETER);
}

TEST(SimulatorInfo, UnknownCommandIsNotImplementedInEveryInfoFunction)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce(false);
    EXPECT_EQ(producer.Result(producer.GCGetInfo, 99), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(producer.Result(producer.TLGetInfo, tree.system, 99), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(producer.Result(producer.TLGetInterfaceInfo, tree.system, "I", 99), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(producer.Result(producer.IFGetInfo, tree.interface, -1), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(producer.Result(producer.IFGetDeviceInfo, tree.interface, "A", 99), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(producer.Result(producer.DevGetInfo, tree.device, 1000), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(producer.Result(producer.DSGetInfo, tree.stream, 1000), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(producer.Result(producer.DSGetBufferInfo, tree.stream, buffer, 1000), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(producer.Result(producer.GCGetPortInfo, tree.remote, 1000), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(producer.Result(producer.GCGetPortURLInfo, tree.remote, 0U, 1000), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(producer.Result(producer.EventGetInfo, tree.event, 1000), GC_ERR_NOT_IMPLEMENTED);
}

TEST(SimulatorInfo, EveryCommandHasTheListedTypeAndSize)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    struct Row
    {
        STREAM_INFO_CMD command;
        INFO_DATATYPE type;
        std::size_t size;
    };
    const Row rows[] = {
        {STREAM_INFO_NUM_DELIVERED, INFO_DATATYPE_UINT64, 8},
        {STREAM_INFO_NUM_UNDERRUN, INFO_DATATYPE_UINT64, 8},
        {STREAM_INFO_NUM_ANNOUNCED, INFO_DATATYPE_SIZET, 8},
        {STREAM_INFO_NUM_QUEUED, INFO_DATATYPE_SIZET, 8},
        {STREAM_INFO_NUM_AWAIT_DELIVERY, INFO_DATATYPE_SIZET, 8},
        {STREAM_INFO_NUM_STARTED, INFO_DATATYPE_UINT64, 8},
        {STREAM_INFO_PAYLOAD_SIZE, INFO_DATATYPE_SIZET, 8},
        {STREAM_INFO_IS_GRABBING, INFO_DATATYPE_BOOL8, 1},
        {STREAM_INFO_DEFINES_PAYLOADSIZE, INFO_DATATYPE_BOOL8, 1},
        {STREAM_INFO_NUM_CHUNKS_MAX, INFO_DATATYPE_SIZET, 8},
        {STREAM_INFO_BUF_ANNOUNCE_MIN, INFO_DATATYPE_SIZET, 8},
        {STREAM_INFO_BUF_ALIGNMENT, INFO_DATATYPE_SIZET, 8},
        {STREAM_INFO_TLTYPE, INFO_DATATYPE_STRING, 4},
        {STREAM_INFO_ID, INFO_DATATYPE_STRING, 8},
    };
    for (const Row& row : rows)
    {
        INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
        std::size_t size = 0;
        ASSERT_EQ(producer.DSGetInfo(tree.stream, row.command, &type, nullptr, &size), GC_ERR_SUCCESS) << row.command;
        EXPECT_EQ(type, row.type) << row.command;
        EXPECT_EQ(size, row.size) << row.command;
    }
}

TEST(SimulatorLastError, IsNoErrorAsLongAsNothingFailedOnTheThread)
{
    const Producer producer(OneCamera());
    EXPECT_EQ(producer.TLOpen(nullptr), GC_ERR_INVALID_PARAMETER);
    LastError other{-1, ""};
    std::thread([&] { other = producer.Last(); }).join();
    EXPECT_EQ(other.code, GC_ERR_SUCCESS);
    EXPECT_EQ(other.text, "No Error");
    EXPECT_EQ(producer.Last().code, GC_ERR_INVALID_PARAMETER);
}

TEST(SimulatorLastError, StaysAfterSuccessAndAfterReading)
{
    const Producer producer(OneCamera());
    EXPECT_EQ(producer.TLClose(nullptr), GC_ERR_INVALID_HANDLE);
    TL_HANDLE system = nullptr;
    ASSERT_EQ(producer.TLOpen(&system), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.Last().code, GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.Last().text, "TLClose: the handle is null, closed or of another kind");
}

TEST(SimulatorLastError, OwnFailureIsNotStored)
{
    const Producer producer(OneCamera());
    EXPECT_EQ(producer.TLClose(nullptr), GC_ERR_INVALID_HANDLE);
    std::size_t size = 1;
    GC_ERROR code = GC_ERR_SUCCESS;
    char text[1];
    EXPECT_EQ(producer.GCGetLastError(&code, text, &size), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(producer.GCGetLastError(nullptr, nullptr, &size), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(producer.GCGetLastError(&code, nullptr, nullptr), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(producer.Last().code, GC_ERR_INVALID_HANDLE);
}

TEST(SimulatorLastError, SizeQueryWritesTheCodeToo)
{
    const Producer producer(OneCamera());
    EXPECT_EQ(producer.TLClose(nullptr), GC_ERR_INVALID_HANDLE);
    GC_ERROR code = GC_ERR_SUCCESS;
    std::size_t size = 0;
    ASSERT_EQ(producer.GCGetLastError(&code, nullptr, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(code, GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(size, sizeof "TLClose: the handle is null, closed or of another kind");
}

TEST(SimulatorLibrary, EveryFunctionButInitAnswersNotInitializedBefore)
{
    const Producer producer(OneCamera(), false);
    TL_HANDLE system = nullptr;
    std::size_t size = 0;
    GC_ERROR code = GC_ERR_SUCCESS;
    std::thread([&] {
        EXPECT_EQ(producer.GCGetLastError(&code, nullptr, &size), GC_ERR_NOT_INITIALIZED);
        EXPECT_EQ(producer.TLOpen(&system), GC_ERR_NOT_INITIALIZED);
        EXPECT_EQ(producer.GCCloseLib(), GC_ERR_NOT_INITIALIZED);
        EXPECT_EQ(producer.Result(producer.GCGetInfo, TL_INFO_ID), GC_ERR_NOT_INITIALIZED);
        EXPECT_EQ(producer.DSClose(nullptr), GC_ERR_NOT_INITIALIZED);
        EXPECT_EQ(producer.EventKill(nullptr), GC_ERR_NOT_INITIALIZED);
    }).join();
}

TEST(SimulatorLibrary, CountsInitUnlessStrict)
{
    const Producer producer(OneCamera());
    EXPECT_EQ(producer.GCInitLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.GCCloseLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.Get(producer.GCGetInfo, TL_INFO_VENDOR), "zvr");
    EXPECT_EQ(producer.GCCloseLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.GCCloseLib(), GC_ERR_NOT_INITIALIZED);
}

TEST(SimulatorLibrary, StrictInitFailsTheSecondTimeAndOneCloseEndsIt)
{
    const Producer producer(OneCamera(R"(, "strictInit": true)"));
    EXPECT_EQ(producer.GCInitLib(), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(producer.GCCloseLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.GCCloseLib(), GC_ERR_NOT_INITIALIZED);
    EXPECT_EQ(producer.GCInitLib(), GC_ERR_SUCCESS);
}

TEST(SimulatorLibrary, ClaimsOneFiveUnlessToldOtherwise)
{
    {
        const Producer producer(OneCamera());
        EXPECT_EQ(producer.Get<std::uint32_t>(producer.GCGetInfo, TL_INFO_GENTL_VER_MAJOR), 1U);
        EXPECT_EQ(producer.Get<std::uint32_t>(producer.GCGetInfo, TL_INFO_GENTL_VER_MINOR), 5U);
    }
    {
        const Producer producer(OneCamera(R"(, "claimedVersion": "1.6")"));
        EXPECT_EQ(producer.Get<std::uint32_t>(producer.GCGetInfo, TL_INFO_GENTL_VER_MINOR), 6U);
    }
    const Producer producer(OneCamera(R"(, "claimedVersion": "1.4")"));
    EXPECT_EQ(producer.Result(producer.GCGetInfo, TL_INFO_GENTL_VER_MINOR), GC_ERR_NOT_IMPLEMENTED);
}

TEST(SimulatorLibrary, TellsItsFileAndTheSameFromTheSystem)
{
    const Producer producer(OneCamera());
    TL_HANDLE system = nullptr;
    ASSERT_EQ(producer.TLOpen(&system), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.Get(producer.GCGetInfo, TL_INFO_NAME), "zvr_koro_simulator.cti");
    const std::string path = producer.Get(producer.GCGetInfo, TL_INFO_PATHNAME);
    EXPECT_EQ(path.front(), '/');
    EXPECT_THAT(path, testing::EndsWith("/zvr_koro_simulator.cti"));
    for (TL_INFO_CMD command = TL_INFO_ID; command <= TL_INFO_DISPLAYNAME; ++command)
        EXPECT_EQ(producer.Get(producer.GCGetInfo, command), producer.Get(producer.TLGetInfo, system, command));
}

} // namespace
} // namespace koro::simulator::test
