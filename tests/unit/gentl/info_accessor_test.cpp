#include "base/exceptions.h"
#include "gentl/info_accessor.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/gentl/bound_producer.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

using namespace koro::internal;
using namespace koro::test;

namespace
{

// The information of a producer without a system, as the library and system descriptors read it.
class LibraryInfo : public TGenTLInfoAccessor<GenTL::TL_INFO_CMD_LIST>
{
public:
    using TGenTLInfoAccessor::BooleanInfo;
    using TGenTLInfoAccessor::BufferInfo;
    using TGenTLInfoAccessor::NumericInfo;
    using TGenTLInfoAccessor::StringInfo;
    explicit LibraryInfo(const GenTLCaller& caller) : TGenTLInfoAccessor(caller) {}

private:
    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override
    {
        return gentl.Result<&GenTLProxy::GCGetInfo>(command, dataType, buffer, size);
    }
    const char* QueryName() const override { return "GCGetInfo"; }
};

class InfoAccessorTest : public testing::Test
{
protected:
    InfoAccessorTest()
    {
        producer.gentl.Call<&GenTLProxy::GCInitLib>();
        producer->ClearJournal();
    }

    void Set(const scripted::Info& answer) { producer->SetInfo("GCGetInfo", command, answer); }
    std::uint64_t Number() { return info.NumericInfo<std::uint64_t>(command, GenTL::INFO_DATATYPE_UINT64); }
    std::string Text() { return info.StringInfo(command); }

    // What stands in front of each message's own end.
    const std::string start = "[Function: GCGetInfo | Info-Command: 3 (TL_INFO_VERSION)";

    static constexpr std::int32_t command = GenTL::TL_INFO_VERSION;
    BoundProducer producer;
    LibraryInfo info{producer.gentl};
};

// The answer of the three-way rule, independent of the table of the standard check.
ThrowsExactlyMatcher ThrownForInfo(GenTL::GC_ERROR code, const std::string& text)
{
    if (code == GenTL::GC_ERR_IO) return ThrowsExactly<IOException>(text);
    if (code == GenTL::GC_ERR_INVALID_ID) return ThrowsExactly<NotFoundException>(text);
    return ThrowsExactly<InternalErrorException>(text);
}

const std::vector<GenTL::GC_ERROR> allCodes = {-1001, -1002, -1003, -1004, -1005, -1006,  -1007,  -1008,   -1009,
                                               -1010, -1011, -1012, -1013, -1014, -1015,  -1016,  -1017,   -1018,
                                               -1019, -1020, -1021, -1022, -1023, -10000, -10001, -123456, 42};

} // namespace

// Raw.

TEST_F(InfoAccessorTest, RawQueryDeliversTypeAndBytesUnchecked)
{
    Set(scripted::Bytes(4711, std::string("a\0b", 3)));
    const RawInfo raw = info.Info(command);
    EXPECT_EQ(raw.dataType, 4711);
    EXPECT_EQ(raw.bytes, (std::vector<std::uint8_t>{'a', 0, 'b'}));
    EXPECT_EQ(producer->Journal(), (std::vector<std::string>{"GCGetInfo(3, size)", "GCGetInfo(3, data)"}));
}

TEST_F(InfoAccessorTest, RawQueryTakesACustomCommand)
{
    producer->SetInfo("GCGetInfo", 1234, scripted::Bytes(GenTL::INFO_DATATYPE_BUFFER, "custom"));
    EXPECT_EQ(info.Info(1234).bytes.size(), 6u);
}

TEST_F(InfoAccessorTest, RawQueryIgnoresTheTypeOfTheSizeQuery)
{
    auto answer = scripted::Text("x");
    answer.writesType = false;
    Set(answer);
    EXPECT_EQ(info.Info(command).dataType, GenTL::INFO_DATATYPE_UNKNOWN);
}

TEST_F(InfoAccessorTest, NothingIsCached)
{
    Set(scripted::UInt64(1));
    EXPECT_EQ(Number(), 1u);
    Set(scripted::UInt64(2));
    EXPECT_EQ(Number(), 2u);
    EXPECT_EQ(producer->Journal().size(), 4u);
}

// The three-way rule.

TEST_F(InfoAccessorTest, FailingQueriesFollowTheThreeWayRule)
{
    for (const auto code : allCodes)
    {
        const std::string text =
            start + " | Error-Code: " + DescribeError(code) + " | Error-Text: scripted failure of GCGetInfo]";
        scripted::Info inTheSizeQuery = scripted::Text("x");
        inTheSizeQuery.sizeResult = code;
        Set(inTheSizeQuery);
        EXPECT_THAT([&] { info.Info(command); }, ThrownForInfo(code, text));
        EXPECT_THAT([&] { Number(); }, ThrownForInfo(code, text));
        EXPECT_THAT([&] { Text(); }, ThrownForInfo(code, text));

        scripted::Info inTheDataQuery = scripted::Text("x");
        inTheDataQuery.dataResult = code;
        Set(inTheDataQuery);
        EXPECT_THAT([&] { info.Info(command); }, ThrownForInfo(code, text));
        EXPECT_THAT([&] { Number(); }, ThrownForInfo(code, text));
        EXPECT_THAT([&] { Text(); }, ThrownForInfo(code, text));
    }
}

TEST_F(InfoAccessorTest, FailingSizeQueryAsksForNoData)
{
    Set(scripted::Failing(GenTL::GC_ERR_NOT_AVAILABLE));
    EXPECT_ANY_THROW(info.Info(command));
    EXPECT_EQ(
        producer->Journal(),
        (std::vector<std::string>{"GCGetInfo(3, size)", "GCGetLastError(size)", "GCGetLastError(data)"}));
}

TEST_F(InfoAccessorTest, FetchedCodeDecidesAndNotTheResult)
{
    Set(scripted::Failing(GenTL::GC_ERR_NOT_IMPLEMENTED));
    producer->SetLastError({.code = GenTL::GC_ERR_INVALID_ID, .text = "unknown command"});
    EXPECT_THAT(
        [&] { info.Info(command); },
        ThrowsExactly<NotFoundException>(
            start + " | Error-Code: -1007 (GC_ERR_INVALID_ID) | Error-Text: unknown command]"));
}

TEST_F(InfoAccessorTest, FetchedCodeZeroIsAnInternalError)
{
    Set(scripted::Failing(GenTL::GC_ERR_IO));
    producer->SetLastError({.code = GenTL::GC_ERR_SUCCESS, .text = "No Error"});
    EXPECT_THAT(
        [&] { info.Info(command); },
        ThrowsExactly<InternalErrorException>(start + " | Error-Code: 0 (GC_ERR_SUCCESS) | Error-Text: No Error]"));
}

TEST_F(InfoAccessorTest, FailingLastErrorTakesThePlaceOfTheFailedQuery)
{
    Set(scripted::Failing(GenTL::GC_ERR_IO));
    producer->Answer("GCGetLastError", GenTL::GC_ERR_NOT_INITIALIZED);
    EXPECT_THAT(
        [&] { info.Info(command); }, ThrowsExactly<InternalErrorException>(
                                         "[Function: GCGetLastError | Error-Code: -1002 (GC_ERR_NOT_INITIALIZED)]"));
}

TEST_F(InfoAccessorTest, CommandOutsideTheListHasAnEmptyName)
{
    EXPECT_THAT(
        [&] { info.Info(4711); },
        ThrowsExactly<InternalErrorException>(
            "[Function: GCGetInfo | Info-Command: 4711 () | Error-Code: -1003 (GC_ERR_NOT_IMPLEMENTED) | "
            "Error-Text: scripted failure of GCGetInfo]"));
}

// Numbers.

TEST_F(InfoAccessorTest, NumbersOfAllWidthsAreReadFromTheStart)
{
    Set(scripted::Number<std::int32_t>(GenTL::INFO_DATATYPE_INT32, -7));
    EXPECT_EQ(info.NumericInfo<std::int32_t>(command, GenTL::INFO_DATATYPE_INT32), -7);
    Set(scripted::UInt32(0xFFFFFFFF));
    EXPECT_EQ(info.NumericInfo<std::uint32_t>(command, GenTL::INFO_DATATYPE_UINT32), 0xFFFFFFFFu);
    Set(scripted::UInt64(0x0102030405060708));
    EXPECT_EQ(Number(), 0x0102030405060708u);
    Set(scripted::Size(99));
    EXPECT_EQ(info.NumericInfo<std::size_t>(command, GenTL::INFO_DATATYPE_SIZET), 99u);
    Set(scripted::Number(GenTL::INFO_DATATYPE_FLOAT64, 0.5));
    EXPECT_EQ(info.NumericInfo<double>(command, GenTL::INFO_DATATYPE_FLOAT64), 0.5);
    Set(scripted::Pointer(&info));
    EXPECT_EQ(info.NumericInfo<void*>(command, GenTL::INFO_DATATYPE_PTR), &info);
}

TEST_F(InfoAccessorTest, BooleanTakesAnyValueButZeroForTrue)
{
    for (const int value : {0, 1, 2, 255})
    {
        Set(scripted::Number(GenTL::INFO_DATATYPE_BOOL8, static_cast<std::uint8_t>(value)));
        EXPECT_EQ(info.BooleanInfo(command), value != 0);
    }
}

TEST_F(InfoAccessorTest, WrongTypeTellsBothTypes)
{
    Set(scripted::Number<std::int64_t>(GenTL::INFO_DATATYPE_INT64, 1));
    EXPECT_THAT(
        [&] { Number(); }, ThrowsExactly<InternalErrorException>(
                               start + " | Error: expectedDataType 8 (INFO_DATATYPE_UINT64) != "
                                       "deliveredDataType 7 (INFO_DATATYPE_INT64)]"));
}

TEST_F(InfoAccessorTest, WrongTypeWithoutANameTellsTheNumber)
{
    Set(scripted::Number<std::uint64_t>(14, 1));
    EXPECT_THAT(
        [&] { Number(); },
        ThrowsExactly<InternalErrorException>(
            start + " | Error: expectedDataType 8 (INFO_DATATYPE_UINT64) != deliveredDataType 14 ()]"));
}

TEST_F(InfoAccessorTest, WrongTypeIsToldBeforeTheWrongSize)
{
    Set(scripted::UInt32(1));
    EXPECT_THAT(
        [&] { Number(); }, ThrowsExactly<InternalErrorException>(
                               start + " | Error: expectedDataType 8 (INFO_DATATYPE_UINT64) != "
                                       "deliveredDataType 6 (INFO_DATATYPE_UINT32)]"));
}

TEST_F(InfoAccessorTest, UnknownTypeOfTheRightSizePasses)
{
    Set(scripted::Number<std::uint64_t>(GenTL::INFO_DATATYPE_UNKNOWN, 12));
    EXPECT_EQ(Number(), 12u);
    auto unwritten = scripted::UInt64(13);
    unwritten.writesType = false;
    Set(unwritten);
    EXPECT_EQ(Number(), 13u);
}

TEST_F(InfoAccessorTest, WrongSizeTellsBothSizes)
{
    Set(scripted::Number<std::uint32_t>(GenTL::INFO_DATATYPE_UINT64, 1));
    EXPECT_THAT(
        [&] { Number(); },
        ThrowsExactly<InternalErrorException>(start + " | Error: expectedDataSize (8) != deliveredDataSize (4)]"));
    Set(scripted::Bytes(GenTL::INFO_DATATYPE_UINT64, std::string(9, '\1')));
    EXPECT_THAT(
        [&] { Number(); },
        ThrowsExactly<InternalErrorException>(start + " | Error: expectedDataSize (8) != deliveredDataSize (9)]"));
    Set(scripted::Bytes(GenTL::INFO_DATATYPE_BOOL8, std::string(4, '\1')));
    EXPECT_THAT(
        [&] { info.BooleanInfo(command); },
        ThrowsExactly<InternalErrorException>(start + " | Error: expectedDataSize (1) != deliveredDataSize (4)]"));
}

TEST_F(InfoAccessorTest, LargeAnswerToANumericQueryTellsItsSize)
{
    Set(scripted::Bytes(GenTL::INFO_DATATYPE_UINT64, std::string(100'000, '\1')));
    EXPECT_THAT(
        [&] { Number(); },
        ThrowsExactly<InternalErrorException>(start + " | Error: expectedDataSize (8) != deliveredDataSize (100000)]"));
}

TEST_F(InfoAccessorTest, EmptyAnswerToANumericQueryTellsSizeZero)
{
    Set(scripted::Bytes(GenTL::INFO_DATATYPE_UINT64, ""));
    EXPECT_THAT(
        [&] { Number(); },
        ThrowsExactly<InternalErrorException>(start + " | Error: expectedDataSize (8) != deliveredDataSize (0)]"));
}

TEST_F(InfoAccessorTest, NumberThatShrinksBetweenTheCallsTellsTheDeliveredSize)
{
    auto answer = scripted::Number<std::uint32_t>(GenTL::INFO_DATATYPE_UINT64, 1);
    answer.claimedSize = 8;
    Set(answer);
    EXPECT_THAT(
        [&] { Number(); },
        ThrowsExactly<InternalErrorException>(start + " | Error: expectedDataSize (8) != deliveredDataSize (4)]"));
}

// Texts.

TEST_F(InfoAccessorTest, TextEndsAtItsFirstZero)
{
    Set(scripted::Bytes(GenTL::INFO_DATATYPE_STRING, std::string("one\0two\0", 8)));
    EXPECT_EQ(Text(), "one");
}

TEST_F(InfoAccessorTest, TextWithoutTerminatorCountsWhole)
{
    Set(scripted::Bytes(GenTL::INFO_DATATYPE_STRING, "no end"));
    EXPECT_EQ(Text(), "no end");
}

TEST_F(InfoAccessorTest, TextOfNoBytesIsEmpty)
{
    Set(scripted::Bytes(GenTL::INFO_DATATYPE_STRING, ""));
    EXPECT_EQ(Text(), "");
    Set(scripted::Text(""));
    EXPECT_EQ(Text(), "");
}

TEST_F(InfoAccessorTest, TextOfAnotherTypeTellsBothTypes)
{
    Set(scripted::Bytes(GenTL::INFO_DATATYPE_STRINGLIST, std::string("a\0\0", 3)));
    EXPECT_THAT(
        [&] { Text(); }, ThrowsExactly<InternalErrorException>(
                             start + " | Error: expectedDataType 1 (INFO_DATATYPE_STRING) != "
                                     "deliveredDataType 2 (INFO_DATATYPE_STRINGLIST)]"));
}

TEST_F(InfoAccessorTest, TextOfUnknownTypePasses)
{
    Set(scripted::Bytes(GenTL::INFO_DATATYPE_UNKNOWN, "text"));
    EXPECT_EQ(Text(), "text");
}

TEST_F(InfoAccessorTest, BytesKeepTheirZerosAndHaveTheirType)
{
    Set(scripted::Bytes(GenTL::INFO_DATATYPE_BUFFER, std::string("a\0b", 3)));
    EXPECT_EQ(info.BufferInfo(command), (std::vector<std::uint8_t>{'a', 0, 'b'}));
    Set(scripted::Text("a"));
    EXPECT_THAT(
        [&] { info.BufferInfo(command); }, ThrowsExactly<InternalErrorException>(
                                               start + " | Error: expectedDataType 13 (INFO_DATATYPE_BUFFER) != "
                                                       "deliveredDataType 1 (INFO_DATATYPE_STRING)]"));
}

// Sizes that do not fit together.

TEST_F(InfoAccessorTest, AnswerThatShrinksKeepsTheDeliveredBytes)
{
    auto answer = scripted::Bytes(GenTL::INFO_DATATYPE_STRING, "short");
    answer.claimedSize = 1000;
    Set(answer);
    EXPECT_EQ(info.Info(command).bytes.size(), 5u);
    EXPECT_EQ(Text(), "short");
}

TEST_F(InfoAccessorTest, AnswerThatGrowsWithinTheRulesIsTooSmallABuffer)
{
    auto answer = scripted::Text("longer than claimed");
    answer.claimedSize = 4;
    Set(answer);
    EXPECT_THAT(
        [&] { Text(); }, ThrowsExactly<InternalErrorException>(
                             start + " | Error-Code: -1016 (GC_ERR_BUFFER_TOO_SMALL) | "
                                     "Error-Text: scripted failure of GCGetInfo]"));
}

TEST_F(InfoAccessorTest, AnswerThatClaimsMoreThanTheBufferHoldsEndsWithTheBuffer)
{
    auto answer = scripted::Bytes(GenTL::INFO_DATATYPE_STRING, "full");
    answer.claimedSize = 4;
    answer.deliveredSize = std::size_t{1} << 40;
    Set(answer);
    EXPECT_EQ(info.Info(command).bytes.size(), 4u);
    EXPECT_EQ(Text(), "full");
}

TEST_F(InfoAccessorTest, UnwrittenSizeOfTheSizeQueryIsAnEmptyAnswer)
{
    auto answer = scripted::Text("never seen");
    answer.writesSize = false;
    Set(answer);
    EXPECT_EQ(Text(), "");
}

TEST_F(InfoAccessorTest, AbsurdSizeBreaksTheBoundBeforeAnythingIsAllocated)
{
    auto answer = scripted::Text("x");
    answer.claimedSize = std::size_t{1} << 40;
    Set(answer);
    const std::string text =
        "[Function: GCGetInfo | Error: 1099511627776 information bytes exceed the bound of 16777216]";
    EXPECT_THAT([&] { info.Info(command); }, ThrowsExactly<InternalErrorException>(text));
    EXPECT_THAT([&] { Text(); }, ThrowsExactly<InternalErrorException>(text));
    EXPECT_THAT([&] { Number(); }, ThrowsExactly<InternalErrorException>(text));
    EXPECT_EQ(
        producer->Journal(),
        (std::vector<std::string>{"GCGetInfo(3, size)", "GCGetInfo(3, size)", "GCGetInfo(3, size)"}));
}

TEST_F(InfoAccessorTest, AnswerOfExactlyTheBoundPasses)
{
    Set(scripted::Bytes(GenTL::INFO_DATATYPE_STRING, std::string(16u << 20, 'x')));
    EXPECT_EQ(Text().size(), 16u << 20);
}

TEST_F(InfoAccessorTest, ProducerThatThrowsIsAnInternalError)
{
    producer->OnEntry("GCGetInfo", [] { throw 5; });
    EXPECT_THAT([&] { Number(); }, ThrowsExactly<InternalErrorException>("Unhandled exception!"));
}

// Threads.

TEST_F(InfoAccessorTest, TwoThreadsReachTheProducerEachForItself)
{
    Set(scripted::UInt64(1));
    std::thread other([&] { EXPECT_EQ(Number(), 1u); });
    EXPECT_EQ(Number(), 1u);
    other.join();
    EXPECT_EQ(producer->Journal().size(), 4u);
}

// A function of a later version.

namespace
{

class URLInfo : public TGenTLInfoAccessor<GenTL::URL_INFO_CMD_LIST>
{
public:
    explicit URLInfo(const GenTLCaller& caller) : TGenTLInfoAccessor(caller) {}

private:
    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override
    {
        return gentl.Result<&GenTLProxy::GCGetPortURLInfo>(nullptr, std::uint32_t{0}, command, dataType, buffer, size);
    }
    const char* QueryName() const override { return "GCGetPortURLInfo"; }
};

} // namespace

TEST(InfoAccessor, RefusedQueryThrowsTheBaseClass)
{
    const BoundProducer bound("scripted_1_0");
    const URLInfo info(bound.gentl);
    EXPECT_THAT(
        [&] { info.Info(GenTL::URL_INFO_URL); },
        ThrowsExactly<Exception>(
            "[Function: GCGetPortURLInfo | Error: The instrumented TL (" + bound.producer.Path() +
            ") does not implement GCGetPortURLInfo()!]"));
}
