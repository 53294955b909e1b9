#include "base/exceptions.h"
#include "nodes/translate_genapi_exceptions.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <typeinfo>

namespace
{

using namespace koro::internal;

// Throws `source` through the wrapper: it must come out as exactly an `Expected` with the whole text.
template <class Expected, class Source>
void ExpectTranslation(const Source& source)
{
    try
    {
        TranslateGenApiExceptions([&] { throw source; });
        FAIL() << "nothing thrown";
    }
    catch (const Exception& exception)
    {
        EXPECT_EQ(typeid(exception), typeid(Expected));
        EXPECT_STREQ(exception.what(), source.what());
    }
}

TEST(TranslateGenApiExceptions, AccessBecomesBadAccess)
{
    ExpectTranslation<BadAccessException>(ACCESS_EXCEPTION("Node is not writable"));
}

TEST(TranslateGenApiExceptions, BadAllocBecomesBadAlloc)
{
    ExpectTranslation<BadAllocException>(BAD_ALLOC_EXCEPTION("no memory"));
}

TEST(TranslateGenApiExceptions, InvalidArgumentBecomesInvalidArgument)
{
    ExpectTranslation<InvalidArgumentException>(INVALID_ARGUMENT_EXCEPTION("no such entry"));
}

TEST(TranslateGenApiExceptions, OutOfRangeBecomesOutOfRange)
{
    ExpectTranslation<OutOfRangeException>(OUT_OF_RANGE_EXCEPTION("too large"));
}

TEST(TranslateGenApiExceptions, TimeoutBecomesTimeout)
{
    ExpectTranslation<TimeoutException>(TIMEOUT_EXCEPTION("too late"));
}

TEST(TranslateGenApiExceptions, AllOthersOfTheFamilyBecomeInternalErrors)
{
    ExpectTranslation<InternalErrorException>(GENERIC_EXCEPTION("generic"));
    ExpectTranslation<InternalErrorException>(PROPERTY_EXCEPTION("property"));
    ExpectTranslation<InternalErrorException>(RUNTIME_EXCEPTION("runtime"));
    ExpectTranslation<InternalErrorException>(LOGICAL_ERROR_EXCEPTION("logic"));
    ExpectTranslation<InternalErrorException>(DYNAMICCAST_EXCEPTION("cast"));
}

TEST(TranslateGenApiExceptions, TextCarriesTheSourceLocationBesideTheDescription)
{
    std::string text;
    try
    {
        TranslateGenApiExceptions(
            [] { throw GENICAM_NAMESPACE::RuntimeException("It broke", "/x/node.cpp", 7, "RuntimeException"); });
    }
    catch (const InternalErrorException& exception)
    {
        text = exception.what();
    }
    EXPECT_EQ(text, "It broke : RuntimeException thrown (file 'node.cpp', line 7)");
}

TEST(TranslateGenApiExceptions, OtherExceptionsPassUntouched)
{
    const NoDataException own("own");
    const Exception* passed = nullptr;
    try
    {
        TranslateGenApiExceptions([&]() -> int { throw own; });
    }
    catch (const NoDataException& exception)
    {
        passed = &exception;
        EXPECT_STREQ(exception.what(), "own");
    }
    EXPECT_NE(passed, nullptr);
    EXPECT_THROW(TranslateGenApiExceptions([] { throw std::logic_error("standard"); }), std::logic_error);
    EXPECT_THROW(TranslateGenApiExceptions([] { throw 7; }), int);
}

TEST(TranslateGenApiExceptions, ResultComesBackAsItIs)
{
    int number = 3;
    int& reference = TranslateGenApiExceptions([&]() -> int& { return number; });
    EXPECT_EQ(&reference, &number);
    EXPECT_EQ(TranslateGenApiExceptions([] { return std::string("text"); }), "text");
}

} // namespace
