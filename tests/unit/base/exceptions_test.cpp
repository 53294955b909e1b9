#include "base/exceptions.h"
#include "tests/support/throws_exactly.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <type_traits>

using namespace koro::internal;
using koro::test::ThrowsExactly;

namespace
{

template <class T>
class ExceptionFamily : public testing::Test
{};

using Children = testing::Types<
    AbortedException, BadAccessException, BadAllocException, BufferTooSmallException, CTILoadingException,
    InternalErrorException, InvalidAddressException, InvalidArgumentException, IOException, NoDataException,
    NotAvailableException, NotFoundException, NotImplementedException, NotInitializedException, OutOfRangeException,
    TimeoutException>;
TYPED_TEST_SUITE(ExceptionFamily, Children);

// Whether `Child` derives from `Base` with nothing in between cannot be asked directly; that no sibling stands in
// between can.
template <class Child, template <class...> class List, class... Others>
constexpr bool DerivesFromNoneOf(List<Others...>)
{
    return ((std::is_same_v<Child, Others> || !std::is_base_of_v<Others, Child>)&&...);
}

} // namespace

TYPED_TEST(ExceptionFamily, DerivesDirectlyFromException)
{
    EXPECT_TRUE((std::is_base_of_v<Exception, TypeParam>));
    EXPECT_TRUE(DerivesFromNoneOf<TypeParam>(Children{}));
    EXPECT_EQ(sizeof(TypeParam), sizeof(std::runtime_error));
}

TYPED_TEST(ExceptionFamily, AnswersExactlyTheTextOfAString)
{
    EXPECT_STREQ(TypeParam(std::string("composed by the thrower")).what(), "composed by the thrower");
    EXPECT_STREQ(TypeParam(std::string()).what(), "");
}

TYPED_TEST(ExceptionFamily, AnswersExactlyTheTextOfAPointer)
{
    EXPECT_STREQ(TypeParam("composed by the thrower").what(), "composed by the thrower");
}

TYPED_TEST(ExceptionFamily, AbsentTextAnswersUnknownException)
{
    EXPECT_STREQ(TypeParam(static_cast<const char*>(nullptr)).what(), "Unknown exception");
}

TYPED_TEST(ExceptionFamily, CopyCarriesTheText)
{
    const TypeParam original("text");
    const TypeParam copy(original);
    EXPECT_STREQ(copy.what(), "text");
}

TEST(Exceptions, BaseIsAStandardRuntimeErrorWithTheSameRules)
{
    EXPECT_TRUE((std::is_base_of_v<std::runtime_error, Exception>));
    EXPECT_STREQ(Exception("text").what(), "text");
    EXPECT_STREQ(Exception(static_cast<const char*>(nullptr)).what(), "Unknown exception");
}

TEST(Exceptions, WrapperLetsTheFamilyPassUntouched)
{
    EXPECT_THAT(
        [] { WithStandardExceptionsAsInternalErrors([] { throw IOException("ours"); }); },
        ThrowsExactly<IOException>("ours"));
    EXPECT_THAT(
        [] { WithStandardExceptionsAsInternalErrors([] { throw Exception("base"); }); },
        ThrowsExactly<Exception>("base"));
}

TEST(Exceptions, WrapperTurnsOtherStandardExceptionsIntoInternalErrors)
{
    EXPECT_THAT(
        [] { WithStandardExceptionsAsInternalErrors([] { throw std::length_error("too long"); }); },
        ThrowsExactly<InternalErrorException>("too long"));
}

TEST(Exceptions, WrapperReturnsTheResult)
{
    EXPECT_EQ(WithStandardExceptionsAsInternalErrors([] { return 42; }), 42);
}
