#include <Base/GCBase.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <type_traits>

namespace
{

using namespace GENICAM_NAMESPACE;
using testing::EndsWith;
using testing::StartsWith;

TEST(GenericException, TextOfDescriptionFileAndLine)
{
    const GenericException exception("It broke", "a.cpp", 12);
    EXPECT_STREQ(exception.what(), "It broke (file 'a.cpp', line 12)");
}

TEST(GenericException, TextNamesTheTypeBehindAColon)
{
    const RuntimeException exception("It broke", "a.cpp", 12, "RuntimeException");
    EXPECT_STREQ(exception.what(), "It broke : RuntimeException thrown (file 'a.cpp', line 12)");
}

TEST(GenericException, TextNamesTheNodeWithoutEntryPoint)
{
    const RuntimeException exception("It broke", "a.cpp", 12, "", "Gain", "RuntimeException");
    EXPECT_STREQ(exception.what(), "It broke : RuntimeException thrown in node 'Gain' (file 'a.cpp', line 12)");
}

TEST(GenericException, TextNamesTheEntryPointWithoutNode)
{
    const RuntimeException exception("It broke", "a.cpp", 12, "Gain.GetValue()", "", "RuntimeException");
    EXPECT_STREQ(
        exception.what(), "It broke : RuntimeException thrown while calling 'Gain.GetValue()' (file 'a.cpp', line 12)");
}

TEST(GenericException, TextNamesTypeNodeAndEntryPoint)
{
    const RuntimeException exception("It broke", "a.cpp", 12, "Gain.GetValue()", "GainReg", "RuntimeException");
    EXPECT_STREQ(
        exception.what(), "It broke : RuntimeException thrown in node 'GainReg' while calling 'Gain.GetValue()' "
                          "(file 'a.cpp', line 12)");
}

TEST(GenericException, EmptyFileNameStillGivesThePlace)
{
    EXPECT_STREQ(GenericException("", "", 0).what(), " (file '', line 0)");
}

TEST(GenericException, FolderOfTheSourceFileIsCutOffAtEitherSlash)
{
    EXPECT_THAT(GenericException("D", "/x/y/z.cpp", 1).what(), EndsWith("(file 'z.cpp', line 1)"));
    EXPECT_THAT(GenericException("D", "C:\\x\\z.cpp", 1).what(), EndsWith("(file 'z.cpp', line 1)"));
    EXPECT_THAT(GenericException("D", "C:\\x/y\\z.cpp", 1).what(), EndsWith("(file 'z.cpp', line 1)"));
    EXPECT_THAT(GenericException("D", "/x/", 1).what(), EndsWith("(file '', line 1)"));
}

TEST(GenericException, GettersAnswerWhatTheConstructorGot)
{
    const AccessException exception("It broke", "/x/a.cpp", 12, "AccessException");
    EXPECT_STREQ(exception.GetDescription(), "It broke");
    EXPECT_STREQ(exception.GetSourceFileName(), "/x/a.cpp");
    EXPECT_EQ(exception.GetSourceLine(), 12u);
}

TEST(GenericException, CopiesAreIndependentOfTheirSource)
{
    GenericException copy("first", "a.cpp", 1);
    {
        const GenericException source("second", "b.cpp", 2);
        copy = source;
    }
    EXPECT_STREQ(copy.what(), "second (file 'b.cpp', line 2)");
}

TEST(GenericException, IsNoStandardException)
{
    EXPECT_FALSE((std::is_base_of<std::exception, GenericException>::value));
}

template <class E>
std::string TextOf(const GenericException& exception)
{
    EXPECT_NE(dynamic_cast<const E*>(&exception), nullptr);
    return exception.what();
}

TEST(ExceptionMacros, GenericExceptionHasNoTypeText)
{
    const unsigned int line = __LINE__ + 1;
    const GenericException exception = GENERIC_EXCEPTION("%s is %d", "x", 3);
    EXPECT_EQ(exception.what(), "x is 3 (file 'exceptions_test.cpp', line " + std::to_string(line) + ")");
}

TEST(ExceptionMacros, EachMacroMakesItsClassAndNamesItInTheText)
{
    EXPECT_THAT(TextOf<BadAllocException>(BAD_ALLOC_EXCEPTION("D")), StartsWith("D : BadAllocException thrown ("));
    EXPECT_THAT(
        TextOf<InvalidArgumentException>(INVALID_ARGUMENT_EXCEPTION("D")),
        StartsWith("D : InvalidArgumentException thrown ("));
    EXPECT_THAT(
        TextOf<OutOfRangeException>(OUT_OF_RANGE_EXCEPTION("D")), StartsWith("D : OutOfRangeException thrown ("));
    EXPECT_THAT(TextOf<PropertyException>(PROPERTY_EXCEPTION("D")), StartsWith("D : PropertyException thrown ("));
    EXPECT_THAT(TextOf<RuntimeException>(RUNTIME_EXCEPTION("D")), StartsWith("D : RuntimeException thrown ("));
    EXPECT_THAT(
        TextOf<LogicalErrorException>(LOGICAL_ERROR_EXCEPTION("D")), StartsWith("D : LogicalErrorException thrown ("));
    EXPECT_THAT(TextOf<AccessException>(ACCESS_EXCEPTION("D")), StartsWith("D : AccessException thrown ("));
    EXPECT_THAT(TextOf<TimeoutException>(TIMEOUT_EXCEPTION("D")), StartsWith("D : TimeoutException thrown ("));
    EXPECT_THAT(
        TextOf<DynamicCastException>(DYNAMICCAST_EXCEPTION("D")), StartsWith("D : DynamicCastException thrown ("));
}

TEST(ExceptionMacros, LongTextIsCutAt2047Bytes)
{
    const std::string text(5000, 'x');
    EXPECT_EQ(std::string(RUNTIME_EXCEPTION("%s", text.c_str()).GetDescription()), std::string(2047, 'x'));
}

TEST(ExceptionMacros, StringsAndStreamsAreTakenLiterallyAndWhole)
{
    std::stringstream stream;
    stream << "100 %s of " << 7;
    EXPECT_STREQ(RUNTIME_EXCEPTION(std::string("100 %s")).GetDescription(), "100 %s");
    EXPECT_STREQ(RUNTIME_EXCEPTION(stream).GetDescription(), "100 %s of 7");
    EXPECT_EQ(std::string(RUNTIME_EXCEPTION(std::string(5000, 'x')).GetDescription()), std::string(5000, 'x'));
}

TEST(ExceptionMacros, NothingReportedGivesAnEmptyDescription)
{
    EXPECT_STREQ(RUNTIME_EXCEPTION().GetDescription(), "");
}

TEST(RangeMacros, IntegerWithinTheRangeAndOnTheGridPasses)
{
    EXPECT_NO_THROW(CHECK_RANGE_I64(7, 1, 10, 3));
    EXPECT_NO_THROW(CHECK_RANGE_I64(GC_INT64_MAX, GC_INT64_MIN, GC_INT64_MAX, 1));
    EXPECT_NO_THROW(
        CHECK_RANGE_I64(GC_INT64_MAX, GC_INT64_MIN, GC_INT64_MAX, 5)); // the distance 2^64-1 is a multiple of 5
}

TEST(RangeMacros, IntegerOutsideTheRangeOrOffTheGridIsOutOfRange)
{
    EXPECT_THROW(CHECK_RANGE_I64(0, 1, 10, 3), OutOfRangeException);
    EXPECT_THROW(CHECK_RANGE_I64(11, 1, 10, 3), OutOfRangeException);
    EXPECT_THROW(CHECK_RANGE_I64(8, 1, 10, 3), OutOfRangeException);
}

TEST(RangeMacros, IncrementOfZeroIsALogicalErrorBehindTheRangeCheck)
{
    EXPECT_THROW(CHECK_RANGE_I64(5, 1, 10, 0), LogicalErrorException);
    EXPECT_THROW(CHECK_RANGE_I64(11, 1, 10, 0), OutOfRangeException);
}

TEST(RangeMacros, FloatOutsideTheRangeIsOutOfRange)
{
    EXPECT_NO_THROW(CHECK_RANGE_FLT(1.5, 1.5, 2.5));
    EXPECT_NO_THROW(CHECK_RANGE_FLT(2.5, 1.5, 2.5));
    EXPECT_THROW(CHECK_RANGE_FLT(1.4, 1.5, 2.5), OutOfRangeException);
    EXPECT_THROW(CHECK_RANGE_FLT(2.6, 1.5, 2.5), OutOfRangeException);
}

TEST(RangeMacros, NullPointerIsALogicalError)
{
    const int number = 0;
    const int* const nothing = nullptr;
    EXPECT_NO_THROW(CHECK_DYNAMIC_CAST_POINTER(&number));
    EXPECT_THROW(CHECK_DYNAMIC_CAST_POINTER(nothing), LogicalErrorException);
}

} // namespace
