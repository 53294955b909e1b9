#include "base/exceptions.h"
#include "gentl/gentl_caller.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/gentl/bound_producer.h"
#include "tests/unit/gentl/entry_points.h"

#include <gtest/gtest.h>
#include <string>

using namespace koro::internal;
using namespace koro::test;

TEST(GenTLCaller, ResultPassesCodesOfTheStandardThrough)
{
    const BoundProducer bound;
    bound->Answer("DSAllocAndAnnounceBuffer", GenTL::GC_ERR_OUT_OF_MEMORY);
    EXPECT_EQ(
        bound.gentl.Result<&GenTLProxy::DSAllocAndAnnounceBuffer>(nullptr, std::size_t{1}, nullptr, nullptr),
        GenTL::GC_ERR_OUT_OF_MEMORY);
}

TEST(GenTLCaller, CallReturnsOnSuccess)
{
    const BoundProducer bound;
    EXPECT_NO_THROW(bound.gentl.Call<&GenTLProxy::GCInitLib>());
    EXPECT_EQ(bound->InitCount(), 1);
}

TEST(GenTLCaller, RefusedCallThrowsTheBaseClassWithTheNameAndTheRefusal)
{
    const BoundProducer bound("scripted_1_0");
    for (const int minor : {1, 3, 4, 5})
    {
        for (const BoundFunction& function : FunctionsSince(minor))
        {
            EXPECT_THAT(
                [&] { function.call(bound.gentl); },
                ThrowsExactly<Exception>(
                    "[Function: " + function.name + " | Error: The instrumented TL (" + bound.producer.Path() +
                    ") does not implement " + function.name + "()!]"));
        }
    }
    EXPECT_TRUE(bound->Journal().empty());
}

TEST(GenTLCaller, ProducersOwnAnswerOfThatNumberIsARefusalOfOptionalFunctionsAlone)
{
    const BoundProducer bound;
    bound.gentl.Call<&GenTLProxy::GCInitLib>();
    bound->Answer("GCGetNumPortURLs", notImplementedCode);
    EXPECT_THAT(
        [&] { bound.gentl.Call<&GenTLProxy::GCGetNumPortURLs>(nullptr, nullptr); },
        ThrowsExactly<Exception>("[Function: GCGetNumPortURLs | Error: scripted failure of GCGetNumPortURLs]"));
    bound->Answer("TLClose", notImplementedCode);
    EXPECT_THAT(
        [&] { bound.gentl.Call<&GenTLProxy::TLClose>(nullptr); },
        ThrowsExactly<InternalErrorException>(
            "[Function: TLClose | Error-Code: -2147483648 () | Error-Text: scripted failure of TLClose]"));
}

TEST(GenTLCaller, CallForDestructorsSwallowsFailuresAndExceptions)
{
    const BoundProducer bound;
    bound->Answer("TLClose", GenTL::GC_ERR_IO);
    bound.gentl.CallIgnoringFailures<&GenTLProxy::TLClose>(nullptr);
    bound->OnEntry("TLClose", [] { throw 5; });
    bound.gentl.CallIgnoringFailures<&GenTLProxy::TLClose>(nullptr);
    EXPECT_EQ(bound->Journal().back(), "TLClose(null)");
}

TEST(GenTLCaller, ChecksAResultThatWasLookedAtBefore)
{
    const BoundProducer bound;
    bound->Answer("EventGetData", GenTL::GC_ERR_ABORT);
    std::size_t size = 0;
    const auto result = bound.gentl.Result<&GenTLProxy::EventGetData>(nullptr, nullptr, &size, std::uint64_t{0});
    EXPECT_THAT(
        [&] { bound.gentl.Check<&GenTLProxy::EventGetData>(result); },
        ThrowsExactly<AbortedException>("[Function: EventGetData | Error-Code: -1012 (GC_ERR_ABORT) | "
                                        "Error-Text: scripted failure of EventGetData]"));
    EXPECT_NO_THROW(bound.gentl.Check<&GenTLProxy::EventGetData>(GenTL::GC_ERR_SUCCESS));
}
