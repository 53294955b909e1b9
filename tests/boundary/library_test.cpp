// Start and end of the library, its version, and the last error.

#include "tests/support/boundary.h"
#include "tests/support/journal.h"
#include "tests/support/scripted_producer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace
{

using namespace koro::test;

bool IsInitialized()
{
    return Get<KORO_Bool8>(KORO_Library_IsInitialized) == 1;
}

const Error notInitialized{
    KORO_RETURN_CODE_NOT_INITIALIZED,
    "ZVR koro genericAPI library not initialized. Call koro::Library::Initialize() / KORO_Library_Initialize() before "
    "anything else."};

// The outcome on a thread of its own, which begins without a last error.
template <class Function>
auto OnFreshThread(Function function)
{
    decltype(function()) result{};
    std::thread([&] { result = function(); }).join();
    return result;
}

TEST(Library, CloseWithoutInitializeIsASuccess)
{
    EXPECT_EQ(KORO_Library_Close(), KORO_RETURN_CODE_SUCCESS);
    EXPECT_FALSE(IsInitialized());
}

TEST(Library, InitializedTwiceAndClosedOnceItIsStillUsable)
{
    const ScriptedProducer producer;
    Require(KORO_Library_Initialize());
    Require(KORO_Library_Initialize());
    const OpenTree tree(producer.Path());
    Require(KORO_Library_Close());

    EXPECT_TRUE(IsInitialized());
    EXPECT_EQ(GetText(KORO_System_GetID, tree.system), "scripted producer");

    Require(KORO_Library_Close());
    EXPECT_FALSE(IsInitialized());
    std::size_t size = 0;
    EXPECT_EQ(Outcome(KORO_System_GetID(tree.system, nullptr, &size)), notInitialized);
}

TEST(Library, AfterTheLastCloseOnlyTheExemptFunctionsWork)
{
    Require(KORO_Library_Initialize());
    Require(KORO_Library_Close());

    std::uint32_t major = 0;
    EXPECT_EQ(Outcome(KORO_Library_GetVersionMajor(&major)), notInitialized);
    EXPECT_FALSE(IsInitialized());
    EXPECT_EQ(LastError(), notInitialized);
}

TEST(Library, LastCloseEndsEverythingAndLeavesTheProducerMapped)
{
    ScriptedProducer producer;
    {
        const KoroLibrary library;
        OpenTree tree(producer.Path());
        tree.QueueBuffers(2);
    }
    EXPECT_EQ(producer->Open(), std::vector<std::string>{});
    EXPECT_EQ(producer->InitCount(), 0);
    EXPECT_TRUE(producer.IsLoadedByOthers());
}

TEST(Library, LastCloseClosesChildrenBeforeParents)
{
    const ScriptedProducer producer;
    {
        const KoroLibrary library;
        OpenTree tree(producer.Path());
        tree.QueueBuffers(1);
        const auto source = Get<KORO_EventSupportingModuleHandle>(KORO_System_ToEventSupportingModule, tree.system);
        Get<KORO_EventControllerHandle>(
            KORO_EventSupportingModule_EnableEvents, source, std::int32_t{KORO_EVENT_MODULE});
        producer->ClearJournal();
    }
    EXPECT_THAT(
        CallsOf(
            producer->Journal(),
            {"GCUnregisterEvent", "DSRevokeBuffer", "DSClose", "DevClose", "IFClose", "TLClose", "GCCloseLib"}),
        testing::ElementsAre(
            "GCUnregisterEvent(system, 5)", testing::StartsWith("DSRevokeBuffer("), "DSClose(if0-dev0-stream0)",
            "DevClose(if0-dev0)", "IFClose(if0)", "TLClose(system)", "GCCloseLib()"));
}

TEST(Library, HandlesFromBeforeAFullCloseAreUnknown)
{
    const ScriptedProducer producer;
    Require(KORO_Library_Initialize());
    const OpenTree tree(producer.Path());
    Require(KORO_Library_Close());

    const KoroLibrary library;
    std::size_t size = 0;
    EXPECT_EQ(
        Outcome(KORO_System_GetID(tree.system, nullptr, &size)),
        (Error{KORO_RETURN_CODE_INVALID_HANDLE, "systemHandle is invalid!"}));
}

TEST(Library, VersionIsOneElevenOne)
{
    const KoroLibrary library;
    EXPECT_EQ(Get<std::uint32_t>(KORO_Library_GetVersionMajor), 1u);
    EXPECT_EQ(Get<std::uint32_t>(KORO_Library_GetVersionMinor), 11u);
    EXPECT_EQ(Get<std::uint32_t>(KORO_Library_GetVersionSubminor), 1u);
}

TEST(Library, InitializeLoadsNoProducer)
{
    ScriptedProducer producer;
    const KoroLibrary library;
    EXPECT_EQ(producer->Journal(), std::vector<std::string>{});
    EXPECT_FALSE(producer.IsLoadedByOthers());
}

// A callback that runs while the library closes comes back into it.
TEST(Library, CloseFromACallbackOfTheClosingItselfIsRefusedInsteadOfHanging)
{
    const ScriptedProducer producer;
    struct Seen
    {
        Error start, end, other;
    } seen;
    Require(KORO_Library_Initialize());
    const OpenTree tree(producer.Path());
    char memory[8] = {};
    KORO_BufferHandle buffer = nullptr;
    Require(KORO_DataStream_AnnounceBuffer(
        tree.stream, memory, sizeof memory, nullptr,
        [](void*, void*, void* context) {
            auto& outcomes = *static_cast<Seen*>(context);
            outcomes.start.code = KORO_Library_Initialize();
            outcomes.end.code = KORO_Library_Close();
            std::uint32_t major = 0;
            outcomes.other = Outcome(KORO_Library_GetVersionMajor(&major));
        },
        &seen, &buffer));
    Require(KORO_Library_Close());

    EXPECT_EQ(seen.start.code, KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(seen.end.code, KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(seen.other, notInitialized);
    EXPECT_FALSE(IsInitialized());
}

TEST(LastError, ThreadThatNeverFailedHasCodeZeroAndAnEmptyTextOfSizeOne)
{
    const auto size = OnFreshThread([] {
        KORO_ReturnCode code = KORO_RETURN_CODE_ERROR;
        std::size_t needed = 0;
        EXPECT_EQ(KORO_Library_GetLastError(&code, nullptr, &needed), KORO_RETURN_CODE_SUCCESS);
        EXPECT_EQ(code, KORO_RETURN_CODE_SUCCESS);
        return needed;
    });
    EXPECT_EQ(size, 1u);
    EXPECT_EQ(OnFreshThread([] { return LastError(); }), Error{});
}

TEST(LastError, LaterSuccessLeavesTheFailure)
{
    const KoroLibrary library;
    const Error failure = Outcome(KORO_System_Destruct(nullptr));
    Require(KORO_Library_Initialize());
    Require(KORO_Library_Close());
    EXPECT_EQ(LastError(), failure);
}

TEST(LastError, FailureOfOneThreadIsNotSeenOnAnother)
{
    const KoroLibrary library;
    KORO_System_Destruct(nullptr);
    EXPECT_EQ(OnFreshThread([] { return LastError(); }), Error{});
    EXPECT_EQ(LastError(), (Error{KORO_RETURN_CODE_INVALID_HANDLE, "systemHandle is invalid!"}));
}

TEST(LastError, TextFromBeforeTheCloseIsReadableAfterIt)
{
    Require(KORO_Library_Initialize());
    KORO_Interface_Destruct(nullptr);
    Require(KORO_Library_Close());
    EXPECT_EQ(LastError(), (Error{KORO_RETURN_CODE_INVALID_HANDLE, "interfaceHandle is invalid!"}));
}

TEST(LastError, NullCodeIsAFailureThatReplacesTheStoredOne)
{
    const KoroLibrary library;
    KORO_System_Destruct(nullptr);
    std::size_t size = 0;
    EXPECT_EQ(KORO_Library_GetLastError(nullptr, nullptr, &size), KORO_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(LastError(), (Error{KORO_RETURN_CODE_INVALID_ARGUMENT, "lastErrorCode is not a valid pointer!"}));
}

TEST(LastError, TooSmallABufferDeliversTheOldCodeAndReplacesTheRecord)
{
    const KoroLibrary library;
    KORO_System_Destruct(nullptr);
    KORO_ReturnCode code = KORO_RETURN_CODE_SUCCESS;
    char text[4] = {'a', 'b', 'c', 'd'};
    std::size_t size = sizeof text;
    EXPECT_EQ(KORO_Library_GetLastError(&code, text, &size), KORO_RETURN_CODE_BUFFER_TOO_SMALL);
    EXPECT_EQ(code, KORO_RETURN_CODE_INVALID_HANDLE);
    EXPECT_EQ(std::string(text, sizeof text), "abcd");
    EXPECT_EQ(LastError(), (Error{KORO_RETURN_CODE_BUFFER_TOO_SMALL, "lastErrorDescription is too small!"}));
}

TEST(LastError, SizeQueryChangesNothing)
{
    const KoroLibrary library;
    KORO_System_Destruct(nullptr);
    KORO_ReturnCode code = KORO_RETURN_CODE_SUCCESS;
    std::size_t size = 0;
    EXPECT_EQ(KORO_Library_GetLastError(&code, nullptr, &size), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(size, sizeof "systemHandle is invalid!");
    EXPECT_EQ(LastError(), (Error{KORO_RETURN_CODE_INVALID_HANDLE, "systemHandle is invalid!"}));
}

} // namespace
