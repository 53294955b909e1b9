#include <Base/GCBase.h>
#include <gtest/gtest.h>
#include <stdint.h>

namespace
{

using namespace GENICAM_NAMESPACE;

TEST(IntegralCast, ValueThatFitsSurvives)
{
    EXPECT_EQ(INTEGRAL_CAST<int32_t>(-5), -5);
    EXPECT_EQ(INTEGRAL_CAST<uint64_t>(INT64_MAX), static_cast<uint64_t>(INT64_MAX));
    EXPECT_EQ((INTEGRAL_CAST2<uint8_t, uint32_t>(255)), 255);
}

TEST(IntegralCast, ValueThatDoesNotFitIsARuntimeException)
{
    EXPECT_THROW(INTEGRAL_CAST<int32_t>(int64_t(1) << 31), RuntimeException);
    EXPECT_THROW(INTEGRAL_CAST<uint64_t>(-1), RuntimeException);
    EXPECT_THROW((INTEGRAL_CAST2<int64_t, uint64_t>(UINT64_MAX)), RuntimeException);
    EXPECT_THROW((INTEGRAL_CAST2<uint8_t, uint32_t>(256)), RuntimeException);
}

TEST(FormatOfSixtyFourBits, PrintsTheOutermostNumbers)
{
    EXPECT_STREQ(RUNTIME_EXCEPTION("%" FMT_I64 "d", INT64_MIN).GetDescription(), "-9223372036854775808");
}

TEST(SmallMacros, CountTheElementsOfAnArray)
{
    const int numbers[7] = {};
    GC_UNUSED(numbers);
    GENICAM_UNUSED(numbers);
    EXPECT_EQ(GC_COUNTOF(numbers), 7u);
}

} // namespace
