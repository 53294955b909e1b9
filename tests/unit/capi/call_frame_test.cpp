#include "base/exceptions.h"
#include "capi/call_frame.h"
#include "capi/last_error.h"
#include "nodes/translate_genapi_exceptions.h"

#include <GenICam.h>
#include <future>
#include <gtest/gtest.h>
#include <new>
#include <pthread.h>
#include <stdexcept>
#include <string>
#include <system_error>
#include <typeinfo>

namespace koro::internal
{
namespace
{

class CallFrame : public testing::Test
{
protected:
    CallFrame() { InitializeLibrary(); }
    ~CallFrame() override { CloseLibrary(); }

    // The returned code, which has to be the stored one, and the stored text.
    template <class Body>
    static std::string OutcomeOf(Body body)
    {
        const auto code = ExecuteAndMapExceptions(body);
        EXPECT_EQ(code, LastErrorCode());
        return std::to_string(code) + ": " + LastErrorText();
    }

    template <class Thrown>
    static std::string OutcomeOfThrowing(const Thrown& thrown)
    {
        return OutcomeOf([&]() -> KORO_ReturnCode { throw thrown; });
    }
};

TEST_F(CallFrame, EachExceptionHasItsCode)
{
    EXPECT_EQ(OutcomeOfThrowing(AbortedException("text")), "3: text");
    EXPECT_EQ(OutcomeOfThrowing(BadAccessException("text")), "4: text");
    EXPECT_EQ(OutcomeOfThrowing(BadAllocException("text")), "5: text");
    EXPECT_EQ(OutcomeOfThrowing(InternalErrorException("text")), "1: text");
    EXPECT_EQ(OutcomeOfThrowing(InvalidAddressException("text")), "7: text");
    EXPECT_EQ(OutcomeOfThrowing(InvalidArgumentException("text")), "8: text");
    EXPECT_EQ(OutcomeOfThrowing(IOException("text")), "17: text");
    EXPECT_EQ(OutcomeOfThrowing(NotAvailableException("text")), "14: text");
    EXPECT_EQ(OutcomeOfThrowing(NotFoundException("text")), "11: text");
    EXPECT_EQ(OutcomeOfThrowing(NotImplementedException("text")), "15: text");
    EXPECT_EQ(OutcomeOfThrowing(NotInitializedException("text")), "2: text");
    EXPECT_EQ(OutcomeOfThrowing(OutOfRangeException("text")), "12: text");
    EXPECT_EQ(OutcomeOfThrowing(TimeoutException("text")), "13: text");
    EXPECT_EQ(OutcomeOfThrowing(CTILoadingException("text")), "16: text");
    EXPECT_EQ(OutcomeOfThrowing(BufferTooSmallException("text")), "6: text");
    EXPECT_EQ(OutcomeOfThrowing(NoDataException("text")), "18: text");
    EXPECT_EQ(OutcomeOfThrowing(Exception("text")), "1: text");
}

struct ProducersAbort : AbortedException
{
    using AbortedException::AbortedException;
};

TEST_F(CallFrame, ChildOfAListedExceptionHasItsParentsCode)
{
    EXPECT_EQ(OutcomeOfThrowing(ProducersAbort("text")), "3: text");
}

// Both at once: the one that is caught first decides. The second base shows nothing about the order of the bases.
template <class First, class Second>
struct Both : Second, First
{
    Both() : Second("second"), First("first") {}
};

template <class First, class Second, class... Rest>
void ExpectCaughtInThisOrder()
{
    ExecuteAndMapExceptions([]() -> KORO_ReturnCode { throw Both<First, Second>(); });
    EXPECT_EQ(LastErrorText(), "first") << typeid(First).name() << " before " << typeid(Second).name();
    if constexpr (sizeof...(Rest) > 0) ExpectCaughtInThisOrder<Second, Rest...>();
}

TEST_F(CallFrame, ExceptionsAreCaughtInTheOrderOfTheList)
{
    ExpectCaughtInThisOrder<
        AbortedException, BadAccessException, BadAllocException, InternalErrorException, InvalidAddressException,
        InvalidArgumentException, IOException, NotAvailableException, NotFoundException, NotImplementedException,
        NotInitializedException, OutOfRangeException, TimeoutException, CTILoadingException, BufferTooSmallException,
        NoDataException>();
}

TEST_F(CallFrame, StandardExceptionsAreErrorsWithTheirText)
{
    EXPECT_EQ(OutcomeOfThrowing(std::runtime_error("text")), "1: text");
    EXPECT_EQ(OutcomeOfThrowing(std::bad_alloc()), "1: std::bad_alloc");
    EXPECT_EQ(OutcomeOfThrowing(std::future_error(std::future_errc::broken_promise)).substr(0, 3), "1: ");
    EXPECT_EQ(
        OutcomeOfThrowing(std::system_error(std::make_error_code(std::errc::io_error), "text")).substr(0, 7),
        "1: text");
}

TEST_F(CallFrame, ExceptionWithoutTextYieldsUnknownException)
{
    EXPECT_EQ(OutcomeOfThrowing(IOException(static_cast<const char*>(nullptr))), "17: Unknown exception");
}

TEST_F(CallFrame, ExceptionOfNoKnownTypeYieldsUnhandledException)
{
    EXPECT_EQ(OutcomeOfThrowing(5), "1: Unhandled exception!");
}

TEST_F(CallFrame, GenICamExceptionThatMetNoTranslationIsUnhandled)
{
    EXPECT_EQ(OutcomeOf([]() -> KORO_ReturnCode { throw LOGICAL_ERROR_EXCEPTION("text"); }), "1: Unhandled exception!");
}

TEST_F(CallFrame, GenICamLogicalErrorArrivesAsAnErrorWithItsText)
{
    const auto outcome = OutcomeOf([]() -> KORO_ReturnCode {
        return TranslateGenApiExceptions([]() -> KORO_ReturnCode { throw LOGICAL_ERROR_EXCEPTION("the reason"); });
    });
    EXPECT_EQ(outcome.substr(0, 3), "1: ");
    EXPECT_NE(outcome.find("the reason"), std::string::npos);
}

TEST_F(CallFrame, CodeOfTheBodyIsReturnedAsItIs)
{
    EXPECT_EQ(ExecuteAndMapExceptions([] { return success; }), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(OutcomeOf([] { return RecordLastError(KORO_RETURN_CODE_INVALID_CAST, "text"); }), "9: text");
}

TEST_F(CallFrame, SuccessLeavesTheLastError)
{
    RecordLastError(KORO_RETURN_CODE_IO_ERROR, "text");
    EXPECT_EQ(ExecuteAndMapExceptions([] { return success; }), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(LastErrorCode(), KORO_RETURN_CODE_IO_ERROR);
    EXPECT_EQ(LastErrorText(), "text");
}

TEST(CallFrameOutsideTheLibrarysLife, BodyDoesNotRunUnlessTheCheckIsSkipped)
{
    int runs = 0;
    const auto body = [&] {
        ++runs;
        return success;
    };
    EXPECT_EQ(ExecuteAndMapExceptions(body), KORO_RETURN_CODE_NOT_INITIALIZED);
    EXPECT_EQ(runs, 0);
    EXPECT_EQ(ExecuteAndMapExceptions(body, InitializationCheck::Skipped), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(runs, 1);
}

// Cancelling unwinds the thread by an exception; swallowed, it would end the process.
TEST_F(CallFrame, CancelledThreadUnwindsThroughTheFrame)
{
    struct Seen
    {
        bool unwound = false;
    } seen;
    pthread_t thread{};
    ASSERT_EQ(
        pthread_create(
            &thread, nullptr,
            [](void* context) -> void* {
                struct Guard
                {
                    ~Guard() { seen->unwound = true; }
                    Seen* seen;
                };
                ExecuteAndMapExceptions([&]() -> KORO_ReturnCode {
                    const Guard guard{static_cast<Seen*>(context)};
                    pthread_cancel(pthread_self());
                    pthread_testcancel();
                    return success;
                });
                return nullptr;
            },
            &seen),
        0);
    void* result = nullptr;
    ASSERT_EQ(pthread_join(thread, &result), 0);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    EXPECT_TRUE(seen.unwound);
}

} // namespace
} // namespace koro::internal
