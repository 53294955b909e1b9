#include "base/exceptions.h"
#include "gentl/gentl_error.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/gentl/bound_producer.h"
#include "tests/unit/gentl/entry_points.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

using namespace koro::internal;
using namespace koro::test;
using GenTL::GC_ERROR;

namespace
{

struct KnownCode
{
    GC_ERROR code;
    std::string name; // empty where the table has none
    std::function<ThrowsExactlyMatcher(const std::string&)> thrown;
};

const std::vector<KnownCode>& KnownCodes()
{
    static const std::vector<KnownCode> codes = {
        {-1001, "GC_ERR_ERROR", ThrowsExactly<InternalErrorException>},
        {-1002, "GC_ERR_NOT_INITIALIZED", ThrowsExactly<InternalErrorException>},
        {-1003, "GC_ERR_NOT_IMPLEMENTED", ThrowsExactly<NotImplementedException>},
        {-1004, "GC_ERR_RESOURCE_IN_USE", ThrowsExactly<BadAccessException>},
        {-1005, "GC_ERR_ACCESS_DENIED", ThrowsExactly<BadAccessException>},
        {-1006, "GC_ERR_INVALID_HANDLE", ThrowsExactly<InternalErrorException>},
        {-1007, "GC_ERR_INVALID_ID", ThrowsExactly<InternalErrorException>},
        {-1008, "GC_ERR_NO_DATA", ThrowsExactly<NoDataException>},
        {-1009, "GC_ERR_INVALID_PARAMETER", ThrowsExactly<InternalErrorException>},
        {-1010, "GC_ERR_IO", ThrowsExactly<IOException>},
        {-1011, "GC_ERR_TIMEOUT", ThrowsExactly<InternalErrorException>},
        {-1012, "GC_ERR_ABORT", ThrowsExactly<AbortedException>},
        {-1013, "GC_ERR_INVALID_BUFFER", ThrowsExactly<InternalErrorException>},
        {-1014, "GC_ERR_NOT_AVAILABLE", ThrowsExactly<NotAvailableException>},
        {-1015, "GC_ERR_INVALID_ADDRESS", ThrowsExactly<InvalidAddressException>},
        {-1016, "GC_ERR_BUFFER_TOO_SMALL", ThrowsExactly<BufferTooSmallException>},
        {-1017, "GC_ERR_INVALID_INDEX", ThrowsExactly<InternalErrorException>},
        {-1018, "GC_ERR_PARSING_CHUNK_DATA", ThrowsExactly<InternalErrorException>},
        {-1019, "GC_ERR_INVALID_VALUE", ThrowsExactly<OutOfRangeException>},
        {-1020, "GC_ERR_RESOURCE_EXHAUSTED", ThrowsExactly<InternalErrorException>},
        {-1021, "GC_ERR_OUT_OF_MEMORY", ThrowsExactly<InternalErrorException>},
        {-1022, "GC_ERR_BUSY", ThrowsExactly<BadAccessException>},
        {-10000, "GC_ERR_CUSTOM_ID", ThrowsExactly<InternalErrorException>},
        // Numbers without a name: of a later standard, a producer's own, and nonsense.
        {-1023, "", ThrowsExactly<InternalErrorException>},
        {-10001, "", ThrowsExactly<InternalErrorException>},
        {-123456, "", ThrowsExactly<InternalErrorException>},
        {42, "", ThrowsExactly<InternalErrorException>},
    };
    return codes;
}

std::string Message(const std::string& function, const KnownCode& known, const std::string& text)
{
    return "[Function: " + function + " | Error-Code: " + std::to_string(known.code) + " (" + known.name +
           ") | Error-Text: " + text + "]";
}

// A call that fails with `result`, under a last error that says something else.
void FailClose(const BoundProducer& bound, GC_ERROR result = GenTL::GC_ERR_ERROR)
{
    bound->AnswerOnce("TLClose", result);
    bound.gentl.Call<&GenTLProxy::TLClose>(nullptr);
}

} // namespace

// Every function of the table under every code.

class EveryFunction : public testing::TestWithParam<BoundFunction>
{};

TEST_P(EveryFunction, FailsWithTheExceptionAndWholeTextOfEveryCode)
{
    const BoundFunction& function = GetParam();
    const BoundProducer bound;
    for (const KnownCode& known : KnownCodes())
    {
        bound->AnswerOnce(function.name, known.code);
        EXPECT_THAT(
            [&] { function.call(bound.gentl); },
            known.thrown(Message(function.name, known, "scripted failure of " + function.name)));
    }
    EXPECT_EQ(bound.proxy->GCInitLib(), GenTL::GC_ERR_SUCCESS);
}

INSTANTIATE_TEST_SUITE_P(GenTLError, EveryFunction, testing::ValuesIn(AllFunctions()), [](const auto& test) {
    return test.param.name;
});

TEST(GenTLError, TableHoldsAllFunctionsOfTheStandardUpToOneFive)
{
    EXPECT_EQ(AllFunctions().size(), 56u); // and GCGetLastError
}

// Names.

TEST(GenTLError, NamesOfCodesAreTheStandards)
{
    EXPECT_STREQ(ErrorName(0), "GC_ERR_SUCCESS");
    for (const KnownCode& known : KnownCodes())
        EXPECT_EQ(ErrorName(known.code), known.name);
    EXPECT_EQ(DescribeError(-1010), "-1010 (GC_ERR_IO)");
    EXPECT_EQ(DescribeError(-10001), "-10001 ()");
}

TEST(GenTLError, NamesOfDataTypesAreTheStandards)
{
    const std::vector<std::string> names = {"INFO_DATATYPE_UNKNOWN", "INFO_DATATYPE_STRING", "INFO_DATATYPE_STRINGLIST",
                                            "INFO_DATATYPE_INT16",   "INFO_DATATYPE_UINT16", "INFO_DATATYPE_INT32",
                                            "INFO_DATATYPE_UINT32",  "INFO_DATATYPE_INT64",  "INFO_DATATYPE_UINT64",
                                            "INFO_DATATYPE_FLOAT64", "INFO_DATATYPE_PTR",    "INFO_DATATYPE_BOOL8",
                                            "INFO_DATATYPE_SIZET",   "INFO_DATATYPE_BUFFER"};
    for (std::size_t index = 0; index < names.size(); ++index)
    {
        EXPECT_EQ(DataTypeName(static_cast<GenTL::INFO_DATATYPE>(index)), names[index]);
    }
    EXPECT_STREQ(DataTypeName(1000), "INFO_DATATYPE_CUSTOM_ID");
    EXPECT_STREQ(DataTypeName(14), "");
    EXPECT_STREQ(DataTypeName(-1), "");
}

// Fetching the producer's error.

TEST(GenTLError, FetchingAsksForTheSizeAndThenForTheText)
{
    const BoundProducer bound;
    EXPECT_ANY_THROW(FailClose(bound));
    EXPECT_EQ(
        bound->Journal(), (std::vector<std::string>{"TLClose(null)", "GCGetLastError(size)", "GCGetLastError(data)"}));
}

TEST(GenTLError, SuccessAsksForNothing)
{
    const BoundProducer bound;
    bound->Answer("TLClose", GenTL::GC_ERR_SUCCESS);
    bound.gentl.Call<&GenTLProxy::TLClose>(nullptr);
    EXPECT_EQ(bound->Journal(), std::vector<std::string>{"TLClose(null)"});
}

TEST(GenTLError, FetchedCodeDecidesAndNotTheResult)
{
    const BoundProducer bound;
    for (const KnownCode& known : KnownCodes())
    {
        bound->SetLastError({.code = known.code, .text = "told otherwise"});
        EXPECT_THAT([&] { FailClose(bound); }, known.thrown(Message("TLClose", known, "told otherwise")));
    }
}

TEST(GenTLError, CodeZeroAfterAFailureIsAnInternalErrorWithTheStandardMessage)
{
    const BoundProducer bound;
    bound->SetLastError({.code = GenTL::GC_ERR_SUCCESS, .text = "No Error"});
    EXPECT_THAT(
        [&] { FailClose(bound, GenTL::GC_ERR_ABORT); },
        ThrowsExactly<InternalErrorException>(
            "[Function: TLClose | Error-Code: 0 (GC_ERR_SUCCESS) | Error-Text: No Error]"));
}

TEST(GenTLError, CodeThatIsNotWrittenStaysTheGeneralError)
{
    const BoundProducer bound;
    bound->SetLastError({.writesCode = false});
    EXPECT_THAT(
        [&] { FailClose(bound, GenTL::GC_ERR_BUSY); },
        ThrowsExactly<InternalErrorException>(
            "[Function: TLClose | Error-Code: -1001 (GC_ERR_ERROR) | Error-Text: scripted failure of TLClose]"));
}

TEST(GenTLError, EmptyTextLeavesItsPlaceEmpty)
{
    const BoundProducer bound;
    bound->SetLastError({.text = ""});
    EXPECT_THAT(
        [&] { FailClose(bound, GenTL::GC_ERR_IO); },
        ThrowsExactly<IOException>("[Function: TLClose | Error-Code: -1010 (GC_ERR_IO) | Error-Text: ]"));
}

TEST(GenTLError, TextEndsAtItsFirstZero)
{
    const BoundProducer bound;
    bound->SetLastError({.text = std::string("before\0behind", 13)});
    EXPECT_THAT(
        [&] { FailClose(bound); }, ThrowsExactly<InternalErrorException>(
                                       "[Function: TLClose | Error-Code: -1001 (GC_ERR_ERROR) | Error-Text: before]"));
}

TEST(GenTLError, TextWithoutTerminatorCountsWhole)
{
    const BoundProducer bound;
    bound->SetLastError({.text = "no end", .terminated = false});
    EXPECT_THAT(
        [&] { FailClose(bound); }, ThrowsExactly<InternalErrorException>(
                                       "[Function: TLClose | Error-Code: -1001 (GC_ERR_ERROR) | Error-Text: no end]"));
}

TEST(GenTLError, BytesThatAreNoUTF8PassAsTheyAre)
{
    const BoundProducer bound;
    bound->SetLastError({.text = "Ger\xe4t \xff"});
    EXPECT_THAT(
        [&] { FailClose(bound); },
        ThrowsExactly<InternalErrorException>(
            "[Function: TLClose | Error-Code: -1001 (GC_ERR_ERROR) | Error-Text: Ger\xe4t \xff]"));
}

TEST(GenTLError, ClaimedSizeZeroGivesAnEmptyText)
{
    const BoundProducer bound;
    bound->SetLastError({.text = "never fetched", .claimedSize = 0});
    EXPECT_THAT(
        [&] { FailClose(bound); },
        ThrowsExactly<InternalErrorException>("[Function: TLClose | Error-Code: -1001 (GC_ERR_ERROR) | Error-Text: ]"));
}

TEST(GenTLError, TextThatGrowsBetweenTheCallsIsAFailureOfTheQuery)
{
    const BoundProducer bound;
    bound->SetLastError({.text = "longer than four", .claimedSize = 4});
    EXPECT_THAT(
        [&] { FailClose(bound); }, ThrowsExactly<InternalErrorException>(
                                       "[Function: GCGetLastError | Error-Code: -1016 (GC_ERR_BUFFER_TOO_SMALL)]"));
}

TEST(GenTLError, TextThatShrinksBetweenTheCallsEndsAtItsTerminator)
{
    const BoundProducer bound;
    bound->SetLastError({.text = "short", .claimedSize = 1000});
    EXPECT_THAT(
        [&] { FailClose(bound); }, ThrowsExactly<InternalErrorException>(
                                       "[Function: TLClose | Error-Code: -1001 (GC_ERR_ERROR) | Error-Text: short]"));
}

TEST(GenTLError, AbsurdSizeBreaksTheBound)
{
    const BoundProducer bound;
    bound->SetLastError({.text = "text", .claimedSize = std::size_t{1} << 40});
    EXPECT_THAT(
        [&] { FailClose(bound); },
        ThrowsExactly<InternalErrorException>(
            "[Function: GCGetLastError | Error: 1099511627776 text bytes exceed the bound of 16777216]"));
}

namespace
{

struct GroupedDigits : std::numpunct<char>
{
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

} // namespace

TEST(GenTLError, ProducerThatChangesTheLocaleDoesNotChangeTheText)
{
    const BoundProducer bound;
    const std::locale before;
    bound->OnEntry("TLClose", [] { std::locale::global(std::locale(std::locale(), new GroupedDigits)); });
    const std::string thrown = WhatIsThrownBy([&] { FailClose(bound, -123456); });
    std::locale::global(before);
    EXPECT_EQ(
        thrown, "koro::internal::InternalErrorException: [Function: TLClose | Error-Code: -123456 () | "
                "Error-Text: scripted failure of TLClose]");
}

class FailingLastError : public testing::TestWithParam<std::uint64_t>
{};

TEST_P(FailingLastError, TakesThePlaceOfTheFailedCall)
{
    const BoundProducer bound;
    for (const KnownCode& known : KnownCodes())
    {
        bound->AnswerAtCall("GCGetLastError", GetParam(), known.code);
        EXPECT_THAT(
            [&] { FailClose(bound, GenTL::GC_ERR_BUSY); },
            ThrowsExactly<InternalErrorException>(
                "[Function: GCGetLastError | Error-Code: " + std::to_string(known.code) + " (" + known.name + ")]"));
    }
}

INSTANTIATE_TEST_SUITE_P(GenTLError, FailingLastError, testing::Values(1u, 2u), [](const auto& test) {
    return test.param == 1 ? "InTheSizeQuery" : "InTheDataQuery";
});

TEST(GenTLError, StaleTextOfTheProducerIsTakenAsItIs)
{
    const BoundProducer bound;
    bound->AnswerOnce("IFClose", GenTL::GC_ERR_IO);
    EXPECT_THROW(bound.gentl.Call<&GenTLProxy::IFClose>(nullptr), IOException);
    bound->SetLastError({.code = GenTL::GC_ERR_IO, .text = "scripted failure of IFClose"});
    EXPECT_THAT(
        [&] { FailClose(bound, GenTL::GC_ERR_TIMEOUT); },
        ThrowsExactly<IOException>(
            "[Function: TLClose | Error-Code: -1010 (GC_ERR_IO) | Error-Text: scripted failure of IFClose]"));
}

TEST(GenTLError, EachThreadGetsItsOwnError)
{
    const BoundProducer bound;
    bound->Answer("TLClose", GenTL::GC_ERR_BUSY);
    bound->Answer("IFClose", GenTL::GC_ERR_IO);
    EXPECT_EQ(bound.proxy->TLClose(nullptr), GenTL::GC_ERR_BUSY);
    std::thread([&] { EXPECT_EQ(bound.proxy->IFClose(nullptr), GenTL::GC_ERR_IO); }).join();
    EXPECT_EQ(FetchProducerError(*bound.proxy).code, GenTL::GC_ERR_BUSY);
}

TEST(GenTLError, RefusedCallCarriesTheGeneralError)
{
    const BoundProducer bound("scripted_1_0");
    bound.proxy->DSGetNumBufferParts(nullptr, nullptr, nullptr);
    const ProducerError error = FetchProducerError(*bound.proxy);
    EXPECT_EQ(error.code, GenTL::GC_ERR_ERROR);
    EXPECT_EQ(
        error.text, "The instrumented TL (" + bound.producer.Path() + ") does not implement DSGetNumBufferParts()!");
}
