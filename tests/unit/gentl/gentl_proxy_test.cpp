#include "base/exceptions.h"
#include "gentl/gentl_proxy.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/gentl/bound_producer.h"
#include "tests/unit/gentl/entry_points.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace koro::internal;
using namespace koro::test;
using GenTL::GC_ERROR;

namespace
{

// Accepts any number that the platform has for a missing symbol.
void ExpectBrokenClaim(const std::string& path, const std::string& function, const std::string& version)
{
    const std::string thrown = WhatIsThrownBy([&] { GenTLProxy proxy(path); });
    const std::string start =
        "std::runtime_error: Computing address for function " + function + " of cti " + path + " failed! Code: ";
    const std::string end = ". CTI claims to support GenTL " + version + ".";
    ASSERT_EQ(thrown.substr(0, start.size()), start);
    ASSERT_GT(thrown.size(), start.size() + end.size());
    EXPECT_EQ(thrown.substr(thrown.size() - end.size()), end);
}

std::string Refusal(const BoundProducer& bound, const std::string& function)
{
    return "The instrumented TL (" + bound.producer.Path() + ") does not implement " + function + "()!";
}

struct LastErrorAnswer
{
    GC_ERROR result = 0;
    GC_ERROR code = 4711;
    std::string text;
};

// The two calls of GCGetLastError, with the code left at a mark that shows whether it was written.
LastErrorAnswer AskForLastError(const GenTLProxy& proxy)
{
    LastErrorAnswer answer;
    std::size_t size = 0;
    answer.result = proxy.GCGetLastError(&answer.code, nullptr, &size);
    if (answer.result != GenTL::GC_ERR_SUCCESS) return answer;
    std::vector<char> text(size);
    answer.result = proxy.GCGetLastError(&answer.code, text.data(), &size);
    answer.text = text.data();
    return answer;
}

void ExpectBound(const GenTLProxy& proxy, const std::vector<BoundFunction>& functions, bool expected)
{
    for (const BoundFunction& function : functions)
    {
        EXPECT_EQ(function.isBound(proxy), expected) << function.name;
    }
}

} // namespace

TEST(GenTLProxy, ConstructionInitialisesAsksForTheVersionAndCloses)
{
    const ScriptedProducer producer;
    const GenTLProxy proxy(producer.Path());
    EXPECT_EQ(
        producer->Journal(),
        (std::vector<std::string>{"GCInitLib()", "GCGetInfo(9, data)", "GCGetInfo(10, data)", "GCCloseLib()"}));
    EXPECT_EQ(producer->InitCount(), 0);
}

TEST(GenTLProxy, PathIsKeptAsGiven)
{
    const ScriptedProducer producer;
    const std::string path = producer.Folder().Path().string() + "/./scripted_1_5.cti";
    EXPECT_EQ(GenTLProxy(path).CTIPath(), path);
}

// Versions.

struct Claim
{
    std::string variant;
    std::uint32_t major;
    std::uint32_t minor;
    std::string text;
    bool since1;
    bool since3;
    bool since4;
    bool since5;
};

class ClaimedVersion : public testing::TestWithParam<Claim>
{};

TEST_P(ClaimedVersion, DecidesWhichGroupsAreBound)
{
    const Claim& claim = GetParam();
    const BoundProducer bound(claim.variant);
    EXPECT_EQ(bound.proxy->GenTLVersionMajor(), claim.major);
    EXPECT_EQ(bound.proxy->GenTLVersionMinor(), claim.minor);
    EXPECT_EQ(bound.proxy->VersionText(), claim.text);
    ExpectBound(*bound.proxy, BootstrapFunctions(), true);
    ExpectBound(*bound.proxy, CoreFunctions(), true);
    ExpectBound(*bound.proxy, FunctionsSince(1), claim.since1);
    ExpectBound(*bound.proxy, FunctionsSince(3), claim.since3);
    ExpectBound(*bound.proxy, FunctionsSince(4), claim.since4);
    ExpectBound(*bound.proxy, FunctionsSince(5), claim.since5);
}

INSTANTIATE_TEST_SUITE_P(
    GenTLProxy, ClaimedVersion,
    testing::Values(
        Claim{"scripted_1_0", 1, 0, "V1.0", false, false, false, false},
        Claim{"scripted_1_2", 1, 2, "V1.2", true, false, false, false},
        Claim{"scripted_1_5", 1, 5, "V1.5", true, true, true, true},
        Claim{"scripted_1_6", 1, 6, "V1.6", true, true, true, true},
        Claim{"scripted_0_9", 0, 9, "V0.9", false, false, false, false},
        Claim{"scripted_2_0", 2, 0, "V2.0", false, false, false, false},
        Claim{"scripted_no_version", 0, 0, "V (query not implemented)", true, true, true, false}),
    [](const auto& test) { return test.param.variant; });

TEST(GenTLProxy, EachMinorNumberOpensItsGroup)
{
    for (std::uint32_t minor = 0; minor <= 6; ++minor)
    {
        const ScriptedProducer producer;
        producer->SetInfo("GCGetInfo", GenTL::TL_INFO_GENTL_VER_MINOR, scripted::UInt32(minor));
        const GenTLProxy proxy(producer.Path());
        ExpectBound(proxy, FunctionsSince(1), minor >= 1);
        ExpectBound(proxy, FunctionsSince(3), minor >= 3);
        ExpectBound(proxy, FunctionsSince(4), minor >= 4);
        ExpectBound(proxy, FunctionsSince(5), minor >= 5);
    }
}

TEST(GenTLProxy, BothNumbersAreTestedSeparately)
{
    const ScriptedProducer producer;
    producer->SetInfo("GCGetInfo", GenTL::TL_INFO_GENTL_VER_MAJOR, scripted::UInt32(2));
    producer->SetInfo("GCGetInfo", GenTL::TL_INFO_GENTL_VER_MINOR, scripted::UInt32(3));
    const GenTLProxy proxy(producer.Path());
    ExpectBound(proxy, FunctionsSince(3), true);
    ExpectBound(proxy, FunctionsSince(4), false);
}

TEST(GenTLProxy, InvalidParameterToTheVersionQueryAlsoMeansUnknown)
{
    const ScriptedProducer producer;
    producer->Answer("GCGetInfo", GenTL::GC_ERR_INVALID_PARAMETER);
    const GenTLProxy proxy(producer.Path());
    EXPECT_EQ(proxy.VersionText(), "V (query not implemented)");
    EXPECT_EQ(proxy.GenTLVersionMajor(), 0u);
    EXPECT_EQ(proxy.GenTLVersionMinor(), 0u);
}

TEST(GenTLProxy, OneFailingVersionQueryMakesTheVersionUnknown)
{
    const ScriptedProducer withoutMajor;
    withoutMajor->SetInfo(
        "GCGetInfo", GenTL::TL_INFO_GENTL_VER_MAJOR, scripted::Failing(GenTL::GC_ERR_NOT_IMPLEMENTED));
    const ScriptedProducer withoutMinor;
    withoutMinor->SetInfo(
        "GCGetInfo", GenTL::TL_INFO_GENTL_VER_MINOR, scripted::Failing(GenTL::GC_ERR_NOT_IMPLEMENTED));

    for (const ScriptedProducer* producer : {&withoutMajor, &withoutMinor})
    {
        const GenTLProxy proxy(producer->Path());
        EXPECT_EQ(proxy.VersionText(), "V (query not implemented)");
        ExpectBound(proxy, FunctionsSince(4), true);
        ExpectBound(proxy, FunctionsSince(5), false);
    }
}

// Construction that fails.

class MissingFunction : public testing::TestWithParam<std::string>
{};

TEST_P(MissingFunction, BreaksTheClaimAndStaysMappedAsItHasStarted)
{
    ScriptedProducer producer("scripted_1_5", {GetParam()});
    ExpectBrokenClaim(producer.Path(), GetParam(), "V1.5");
    EXPECT_EQ(producer->InitCount(), 0);
    EXPECT_TRUE(producer.IsLoadedByOthers());
}

namespace
{

std::vector<std::string> NamesBehindTheVersionQuery()
{
    std::vector<std::string> names;
    for (const BoundFunction& function : CoreFunctions())
        names.push_back(function.name);
    for (const int minor : {1, 3, 4, 5})
    {
        for (const BoundFunction& function : FunctionsSince(minor))
            names.push_back(function.name);
    }
    return names;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(
    GenTLProxy, MissingFunction, testing::ValuesIn(NamesBehindTheVersionQuery()),
    [](const auto& test) { return test.param; });

TEST(GenTLProxy, ClaimOfOneFiveWithoutPartFunctionsFailsToLoad)
{
    const ScriptedProducer producer("scripted_1_5_without_parts");
    ExpectBrokenClaim(producer.Path(), "DSGetNumBufferParts", "V1.5");
}

TEST(GenTLProxy, ClaimWithoutACoreFunctionFailsToLoad)
{
    const ScriptedProducer producer("scripted_lacks_core");
    ExpectBrokenClaim(producer.Path(), "TLOpen", "V1.5");
}

TEST(GenTLProxy, FirstMissingFunctionInTheOrderOfBindingIsTheOneNamed)
{
    const ScriptedProducer producer("scripted_1_5", {"DSGetBufferPartInfo", "DSGetBufferInfo", "GCReadPort"});
    ExpectBrokenClaim(producer.Path(), "GCReadPort", "V1.5");
    const ScriptedProducer later("scripted_1_5", {"DSGetBufferPartInfo", "DSGetBufferChunkData"});
    ExpectBrokenClaim(later.Path(), "DSGetBufferChunkData", "V1.5");
}

TEST(GenTLProxy, FunctionsBeyondTheClaimMayBeMissing)
{
    const BoundProducer bound("scripted_1_2", {"DSGetBufferChunkData", "IFGetParentTL", "DSGetNumBufferParts"});
    EXPECT_EQ(bound.proxy->VersionText(), "V1.2");
}

TEST(GenTLProxy, FileThatCannotBeLoadedIsACTILoadingError)
{
    const TemporaryFolder folder;
    const std::string path = folder.MakeFile("text.cti", "no producer");
    EXPECT_THROW(GenTLProxy proxy(path), CTILoadingException);
}

TEST(GenTLProxy, FileWithoutTheFunctionsNamesTheFirstThatIsCalled)
{
    const std::string path = BuiltProducer("scripted_not_gentl");
    EXPECT_THAT(
        [&] { GenTLProxy proxy(path); },
        ThrowsExactly<InternalErrorException>("The instrumented TL (" + path + ") does not implement GCInitLib()!"));
}

TEST(GenTLProxy, FailingInitialisationUnloads)
{
    ScriptedProducer producer("scripted_init_fails");
    EXPECT_THAT(
        [&] { GenTLProxy proxy(producer.Path()); },
        ThrowsExactly<std::runtime_error>("Initializing " + producer.Path() + " failed! Code: -1001."));
    EXPECT_EQ(producer->Journal(), std::vector<std::string>{"GCInitLib()"});
    EXPECT_FALSE(producer.IsLoadedByOthers());
}

TEST(GenTLProxy, FailingQueryOfTheMajorNumberClosesAndLeavesTheFileMapped)
{
    ScriptedProducer producer("scripted_version_fails");
    EXPECT_THAT(
        [&] { GenTLProxy proxy(producer.Path()); },
        ThrowsExactly<std::runtime_error>(
            "Querying " + producer.Path() + " for TL_INFO_GENTL_VER_MAJOR failed! Code: -1010."));
    EXPECT_EQ(producer->Journal(), (std::vector<std::string>{"GCInitLib()", "GCGetInfo(9, data)", "GCCloseLib()"}));
    EXPECT_TRUE(producer.IsLoadedByOthers());
}

TEST(GenTLProxy, FailingQueryOfTheMinorNumberCloses)
{
    ScriptedProducer producer;
    producer->SetInfo("GCGetInfo", GenTL::TL_INFO_GENTL_VER_MINOR, scripted::Failing(GenTL::GC_ERR_BUSY));
    EXPECT_THAT(
        [&] { GenTLProxy proxy(producer.Path()); },
        ThrowsExactly<std::runtime_error>(
            "Querying " + producer.Path() + " for TL_INFO_GENTL_VER_MINOR failed! Code: -1022."));
    EXPECT_EQ(producer->Journal().back(), "GCCloseLib()");
}

TEST(GenTLProxy, FailingCloseAfterAFailingQueryIsIgnored)
{
    const ScriptedProducer producer("scripted_version_fails");
    producer->Answer("GCCloseLib", GenTL::GC_ERR_ERROR);
    EXPECT_THAT(
        [&] { GenTLProxy proxy(producer.Path()); },
        ThrowsExactly<std::runtime_error>(
            "Querying " + producer.Path() + " for TL_INFO_GENTL_VER_MAJOR failed! Code: -1010."));
}

TEST(GenTLProxy, FailingCloseLeavesTheFileMapped)
{
    ScriptedProducer producer("scripted_close_fails");
    EXPECT_THAT(
        [&] { GenTLProxy proxy(producer.Path()); },
        ThrowsExactly<std::runtime_error>("Closing " + producer.Path() + " failed! Code: -1022."));
    EXPECT_TRUE(producer.IsLoadedByOthers());
}

TEST(GenTLProxy, ThrowingInitialisationUnloads)
{
    ScriptedProducer producer;
    producer->OnEntry("GCInitLib", [] { throw std::logic_error("no licence"); });
    EXPECT_THAT([&] { GenTLProxy proxy(producer.Path()); }, ThrowsExactly<InternalErrorException>("no licence"));
    EXPECT_FALSE(producer.IsLoadedByOthers());
}

TEST(GenTLProxy, ThrowingVersionQueryCloses)
{
    ScriptedProducer producer;
    producer->OnEntry("GCGetInfo", [] { throw 5; });
    EXPECT_THAT(
        [&] { GenTLProxy proxy(producer.Path()); }, ThrowsExactly<InternalErrorException>("Unhandled exception!"));
    EXPECT_EQ(producer->InitCount(), 0);
}

// Life of the file.

TEST(GenTLProxy, ProducerThatHasStartedStaysMappedBeyondTheLastReference)
{
    BoundProducer bound;
    auto last = bound.proxy;
    bound.proxy.reset();
    bound.gentl = GenTLCaller(nullptr);
    last.reset();
    EXPECT_TRUE(bound.producer.IsLoadedByOthers());
}

TEST(GenTLProxy, AnyReferenceKeepsTheFileLoaded)
{
    BoundProducer bound;
    bound.proxy.reset();
    EXPECT_TRUE(bound.producer.IsLoadedByOthers());
}

TEST(GenTLProxy, TwoProxiesOverOneFileShareIt)
{
    const BoundProducer first;
    const GenTLProxy second(first.producer.Path());
    EXPECT_EQ(second.VersionText(), "V1.5");
}

TEST(GenTLProxy, StrictProducerInUseRefusesASecondProxyButNotACopyOfItsFile)
{
    const BoundProducer first;
    first->SetStrictInit(true);
    first.gentl.Call<&GenTLProxy::GCInitLib>();
    EXPECT_THAT(
        [&] { GenTLProxy second(first.producer.Path()); },
        ThrowsExactly<std::runtime_error>("Initializing " + first.producer.Path() + " failed! Code: -1004."));
    EXPECT_EQ(first->InitCount(), 1);

    const std::string copy = first.producer.Folder().MakeCopy(first.producer.Path(), "copy.cti");
    EXPECT_NO_THROW(GenTLProxy proxy(copy));
}

// Calls.

TEST(GenTLProxy, CallsArriveWithTheirArgumentsAndResults)
{
    const OpenProducer open;
    GenTL::bool8_t changed = 0;
    EXPECT_EQ(open.proxy->TLUpdateInterfaceList(open.system, &changed, 25), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(changed, 1);
    std::uint32_t count = 0;
    EXPECT_EQ(open.proxy->TLGetNumInterfaces(open.system, &count), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(open.proxy->TLClose(nullptr), GenTL::GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(
        open->Journal(),
        (std::vector<std::string>{"TLUpdateInterfaceList(system, 25)", "TLGetNumInterfaces(system)", "TLClose(null)"}));
}

TEST(GenTLProxy, AbsentVersionFunctionAnswersTheCodeOutsideTheStandard)
{
    const BoundProducer bound("scripted_1_2");
    EXPECT_EQ(bound.proxy->DSGetBufferChunkData(nullptr, nullptr, nullptr, nullptr), notImplementedCode);
    EXPECT_EQ(static_cast<std::uint32_t>(notImplementedCode), 0x80000000u);
    EXPECT_TRUE(bound->Journal().empty());
}

TEST(GenTLProxy, EachRefusalNamesItsFunction)
{
    const BoundProducer bound("scripted_2_0");
    for (const int minor : {1, 3, 4, 5})
    {
        for (const BoundFunction& function : FunctionsSince(minor))
        {
            EXPECT_THROW(function.call(bound.gentl), Exception) << function.name;
            EXPECT_EQ(AskForLastError(*bound.proxy).text, Refusal(bound, function.name));
        }
    }
}

TEST(GenTLProxy, CoreFunctionThatAProducerOfUnknownVersionLacksIsNamed)
{
    const BoundProducer bound("scripted_no_version_core_only");
    EXPECT_THAT(
        [&] { bound.proxy->DSGetBufferID(nullptr, 0, nullptr); },
        ThrowsExactly<InternalErrorException>(Refusal(bound, "DSGetBufferID")));
    EXPECT_THAT(
        [&] { bound.proxy->EventGetDataInfo(nullptr, nullptr, 0, GenTL::EVENT_DATA_ID, nullptr, nullptr, nullptr); },
        ThrowsExactly<InternalErrorException>(Refusal(bound, "EventGetDataInfo")));
    ExpectBound(*bound.proxy, FunctionsSince(1), false);
    ExpectBound(*bound.proxy, FunctionsSince(4), false);
}

TEST(GenTLProxy, MissingLastErrorFunctionIsNamedOnlyWhenItIsNeeded)
{
    const BoundProducer bound("scripted_1_5", {"GCGetLastError"});
    EXPECT_THAT(
        [&] { bound.gentl.Call<&GenTLProxy::TLClose>(nullptr); },
        ThrowsExactly<InternalErrorException>(Refusal(bound, "GCGetLastError")));
}

// The last error after a refusal.

TEST(GenTLProxyRefusal, LastErrorAnswersForTheProducerWithoutWritingTheCode)
{
    const BoundProducer bound("scripted_1_2");
    bound.proxy->DSGetBufferChunkData(nullptr, nullptr, nullptr, nullptr);
    const LastErrorAnswer answer = AskForLastError(*bound.proxy);
    EXPECT_EQ(answer.result, GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(answer.code, 4711);
    EXPECT_EQ(answer.text, Refusal(bound, "DSGetBufferChunkData"));
    EXPECT_TRUE(bound->Journal().empty());
}

TEST(GenTLProxyRefusal, LastErrorTestsItsArguments)
{
    const BoundProducer bound("scripted_1_2");
    bound.proxy->DSGetBufferChunkData(nullptr, nullptr, nullptr, nullptr);
    GC_ERROR code = 0;
    std::size_t size = 0;
    EXPECT_EQ(bound.proxy->GCGetLastError(nullptr, nullptr, &size), GenTL::GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(bound.proxy->GCGetLastError(&code, nullptr, nullptr), GenTL::GC_ERR_INVALID_PARAMETER);
}

TEST(GenTLProxyRefusal, LastErrorKeepsToTheSizeRule)
{
    const BoundProducer bound("scripted_1_2");
    bound.proxy->DSGetBufferChunkData(nullptr, nullptr, nullptr, nullptr);
    const std::string text = Refusal(bound, "DSGetBufferChunkData");

    GC_ERROR code = 0;
    std::vector<char> buffer(text.size() + 2, '#');
    std::size_t size = text.size();
    EXPECT_EQ(bound.proxy->GCGetLastError(&code, buffer.data(), &size), GenTL::GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(buffer[0], '#');

    size = text.size() + 1;
    EXPECT_EQ(bound.proxy->GCGetLastError(&code, buffer.data(), &size), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(size, text.size() + 1);
    EXPECT_EQ(std::string(buffer.data()), text);
    EXPECT_EQ(buffer.back(), '#');

    // A size of zero with a buffer counts as large enough.
    size = 0;
    EXPECT_EQ(bound.proxy->GCGetLastError(&code, buffer.data(), &size), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(size, text.size() + 1);
}

TEST(GenTLProxyRefusal, NextCoreCallEndsIt)
{
    const BoundProducer bound("scripted_1_2");
    bound.gentl.Call<&GenTLProxy::GCInitLib>();
    bound.proxy->DSGetBufferChunkData(nullptr, nullptr, nullptr, nullptr);
    bound.proxy->TLClose(nullptr);
    const LastErrorAnswer answer = AskForLastError(*bound.proxy);
    EXPECT_EQ(answer.code, GenTL::GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(answer.text, "scripted failure of TLClose");
}

TEST(GenTLProxyRefusal, CallOfABoundVersionFunctionLeavesIt)
{
    const BoundProducer bound("scripted_1_2");
    bound.gentl.Call<&GenTLProxy::GCInitLib>();
    bound.proxy->DSGetBufferChunkData(nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(bound.proxy->GCGetNumPortURLs(nullptr, nullptr), GenTL::GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(AskForLastError(*bound.proxy).text, Refusal(bound, "DSGetBufferChunkData"));
}

TEST(GenTLProxyRefusal, BelongsToItsThread)
{
    const BoundProducer bound("scripted_1_2");
    bound.gentl.Call<&GenTLProxy::GCInitLib>();
    bound.proxy->TLClose(nullptr);
    std::thread([&] {
        bound.proxy->DSGetBufferChunkData(nullptr, nullptr, nullptr, nullptr);
        EXPECT_EQ(AskForLastError(*bound.proxy).text, Refusal(bound, "DSGetBufferChunkData"));
    }).join();
    EXPECT_EQ(AskForLastError(*bound.proxy).text, "scripted failure of TLClose");
}

TEST(GenTLProxyRefusal, IsSharedByAllProxiesOfTheThread)
{
    const BoundProducer old("scripted_1_2");
    const BoundProducer other;
    old.proxy->DSGetBufferChunkData(nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(AskForLastError(*other.proxy).text, Refusal(old, "DSGetBufferChunkData"));
}

TEST(GenTLProxyRefusal, ConstructionOfAProxyEndsIt)
{
    const BoundProducer bound("scripted_1_2");
    bound.proxy->DSGetBufferChunkData(nullptr, nullptr, nullptr, nullptr);
    const BoundProducer other;
    EXPECT_EQ(AskForLastError(*bound.proxy).text, "No Error");
}

// Producers that throw.

TEST(GenTLProxy, StandardExceptionOfAProducerBecomesAnInternalErrorWithItsText)
{
    const BoundProducer bound;
    bound->OnEntry("TLOpen", [] { throw std::out_of_range("vector::at"); });
    bound->OnEntry("IFGetParentTL", [] { throw std::bad_alloc(); });
    GenTL::TL_HANDLE system = nullptr;
    EXPECT_THAT([&] { bound.proxy->TLOpen(&system); }, ThrowsExactly<InternalErrorException>("vector::at"));
    EXPECT_THAT(
        [&] { bound.proxy->IFGetParentTL(nullptr, &system); },
        ThrowsExactly<InternalErrorException>(std::bad_alloc().what()));
}

TEST(GenTLProxy, OtherExceptionOfAProducerBecomesUnhandledException)
{
    const BoundProducer bound;
    bound->OnEntry("TLOpen", [] { throw 5; });
    GenTL::TL_HANDLE system = nullptr;
    EXPECT_THAT([&] { bound.proxy->TLOpen(&system); }, ThrowsExactly<InternalErrorException>("Unhandled exception!"));
}

TEST(GenTLProxy, ExceptionOfAProducerNeverPassesForOneOfOurs)
{
    const BoundProducer bound;
    bound->OnEntry("TLOpen", [] { throw TimeoutException("not from the library"); });
    GenTL::TL_HANDLE system = nullptr;
    EXPECT_THAT([&] { bound.proxy->TLOpen(&system); }, ThrowsExactly<InternalErrorException>("not from the library"));
}

TEST(GenTLProxy, ProducerThatThrewCanBeCalledAgain)
{
    const OpenProducer open;
    open->OnEntry("TLGetNumInterfaces", [] { throw 5; });
    std::uint32_t count = 0;
    EXPECT_ANY_THROW(open.proxy->TLGetNumInterfaces(open.system, &count));
    open->OnEntry("TLGetNumInterfaces", nullptr);
    EXPECT_EQ(open.proxy->TLGetNumInterfaces(open.system, &count), GenTL::GC_ERR_SUCCESS);
}

TEST(GenTLProxy, ThrowingLastErrorQueryIsAnInternalError)
{
    const BoundProducer bound;
    bound->OnEntry("GCGetLastError", [] { throw 5; });
    EXPECT_THAT(
        [&] { bound.gentl.Call<&GenTLProxy::TLClose>(nullptr); },
        ThrowsExactly<InternalErrorException>("Unhandled exception!"));
}
