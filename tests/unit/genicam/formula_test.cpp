#include "formula/formula.h"

#include <cmath>
#include <gtest/gtest.h>
#include <stdint.h>
#include <string>
#include <vector>

namespace
{

using namespace GENAPI_NAMESPACE::runtime;

const std::vector<std::string_view> names = {"A", "B", "C"};

// Over A = 7, B = -3, C = 2.
int64_t Whole(std::string_view text)
{
    const int64_t values[] = {7, -3, 2};
    return Formula<int64_t>(text, names).Evaluate(values);
}

double Real(std::string_view text)
{
    const double values[] = {7, -3, 2};
    return Formula<double>(text, names).Evaluate(values);
}

TEST(Formula, OperatorsOfOneLevelGroupFromTheLeft)
{
    EXPECT_EQ(Whole("2**3**2"), 64);
    EXPECT_EQ(Whole("10-3-2"), 5);
    EXPECT_EQ(Whole("2+3<<1"), 8);
    EXPECT_EQ(Whole("-2**2"), 4);
    EXPECT_EQ(Whole("2*3&5"), 2);
    EXPECT_EQ(Whole("A=7&&B=-3"), 0);
    EXPECT_EQ(Whole("1||0&&0"), 0);
    EXPECT_EQ(Whole("1?2:3>2"), 0);
    EXPECT_EQ(Whole("0?1:0?2:3"), 3);
}

TEST(Formula, BranchInsideABranchNeedsBrackets)
{
    EXPECT_THROW(Whole("1?0?1:2:3"), FormulaError);
    EXPECT_EQ(Whole("1?(0?1:2):3"), 2);
}

TEST(Formula, BothBranchesAreComputed)
{
    EXPECT_THROW(Whole("1?5:1/0"), FormulaError);
    EXPECT_THROW(Whole("0&&1/0"), FormulaError);
}

TEST(Formula, IntegersWrapAndDivideTowardZero)
{
    EXPECT_EQ(Whole("9223372036854775807+1"), INT64_MIN);
    EXPECT_EQ(Whole("9223372036854775807*2"), -2);
    EXPECT_EQ(Whole("B/C"), -1);
    EXPECT_EQ(Whole("B%C"), -1);
    EXPECT_EQ(Whole("(-9223372036854775807-1)/-1"), INT64_MIN);
    EXPECT_EQ(Whole("(-9223372036854775807-1)%-1"), 0);
    EXPECT_EQ(Whole("3**39"), 4052555153018976267);
    EXPECT_EQ(Whole("2**-1"), 0);
    EXPECT_EQ(Whole("(-1)**-3"), -1);
}

TEST(Formula, ShiftCountsOfIntegersAreTakenModulo64)
{
    EXPECT_EQ(Whole("1<<64"), 1);
    EXPECT_EQ(Whole("1<<-1"), INT64_MIN);
    EXPECT_EQ(Whole("-8>>1"), -4);
}

TEST(Formula, LiteralsOfIntegersSaturate)
{
    EXPECT_EQ(Whole("0xFFFFFFFFFFFFFFFF"), INT64_MAX);
    EXPECT_EQ(Whole("99999999999999999999"), INT64_MAX);
    EXPECT_EQ(Whole("010"), 10);
    EXPECT_THROW(Whole("0X10"), FormulaError);
    EXPECT_THROW(Whole("4.0*A"), FormulaError);
    EXPECT_THROW(Whole("0x"), FormulaError);
}

TEST(Formula, LiteralsOfFloats)
{
    EXPECT_EQ(Real("1."), 1.0);
    EXPECT_EQ(Real("1.5e2"), 150.0);
    EXPECT_EQ(Real("0X1F"), 31.0);
    EXPECT_TRUE(std::isinf(Real("1e309")));
    EXPECT_EQ(Real("1e-400"), 0.0);
    EXPECT_THROW(Real(".5"), FormulaError);
    EXPECT_THROW(Real("1e"), FormulaError);
    EXPECT_THROW(Real("1..2"), FormulaError);
}

TEST(Formula, SignsMayFollowAnOperatorButNotASign)
{
    EXPECT_EQ(Whole("A*-B"), 21);
    EXPECT_EQ(Whole("-~A"), 8);
    EXPECT_EQ(Whole("A=7?1:-1"), 1);
    for (const char* text : {"A--B", "A+-B", "--A", "~~A", "A?-1:2", "ABS -3"})
    {
        EXPECT_THROW(Whole(text), FormulaError) << text;
    }
}

TEST(Formula, FunctionWithoutBracketTakesAllThatFollows)
{
    EXPECT_EQ(Real("SQRT 2+2"), 2.0);
    EXPECT_EQ(Real("SQRT(4)+2"), 4.0);
    EXPECT_EQ(Whole("NEG A=7"), -1);
}

TEST(Formula, FloatFunctionsAndConstantsWinOverVariables)
{
    EXPECT_DOUBLE_EQ(Real("pi()*2"), 2 * M_PI);
    EXPECT_DOUBLE_EQ(Real("LN E"), 1.0);
    EXPECT_EQ(Real("FRAC(-2.75)"), -0.75);
    EXPECT_EQ(Real("ROUND(2.345, 1)"), 2.3);
    EXPECT_EQ(Real("round(-2.5)"), -3.0);
    const double value = 5;
    EXPECT_DOUBLE_EQ(Formula<double>("E", {"E"}).Evaluate(&value), M_E);
    const int64_t number = 5;
    EXPECT_EQ(Formula<int64_t>("E", {"E"}).Evaluate(&number), 5);
}

TEST(Formula, IntegersKnowTwoFunctionsOnly)
{
    EXPECT_EQ(Whole("SGN(B)"), -1);
    EXPECT_EQ(Whole("neg(A)"), -7);
    EXPECT_THROW(Whole("ABS(B)"), FormulaError);
    EXPECT_THROW(Whole("PI"), FormulaError);
}

TEST(Formula, DivisorOfAFloatThatIsNextToZeroCountsAsZero)
{
    EXPECT_THROW(Real("A/0"), FormulaError);
    EXPECT_THROW(Real("A%0"), FormulaError);
    EXPECT_THROW(Real("A/6.5e-30"), FormulaError);
    EXPECT_THROW(Real("A/-6.5e-30"), FormulaError);
    EXPECT_DOUBLE_EQ(Real("A/1.0842021724855044e-13"), 7 / 1.0842021724855044e-13);
}

TEST(Formula, BitsOfFloatsAreThirtyTwo)
{
    EXPECT_EQ(Real("1<<31"), -2147483648.0);
    EXPECT_EQ(Real("6.9&3"), 2.0);
    EXPECT_THROW(Real("4294967296&1"), FormulaError);
}

TEST(Formula, BrokenFormulasAreRefused)
{
    for (const char* text :
         {"",   " ",   "(",   ")",   "()",   "A+",      "*A", "A B", "(A",    "A)",       "A==B", "A!=B",
          "!A", "A;B", "A,B", "A?1", "?1:2", "Unknown", "a",  "A.",  "SGN()", "SGN(A,B)", "A@B",  "\xe4"})
    {
        EXPECT_THROW(Whole(text), FormulaError) << text;
        EXPECT_THROW(Real(text), FormulaError) << text;
    }
}

TEST(Formula, SizeAndDepthAreBoundedByAnError)
{
    EXPECT_EQ(Whole(std::string(300, '(') + "A" + std::string(300, ')')), 7);
    EXPECT_THROW(Whole(std::string(10000, '(') + "A" + std::string(10000, ')')), FormulaError);
    std::string signs;
    for (int i = 0; i < 10000; ++i)
        signs += "-~";
    EXPECT_THROW(Whole(signs + "A"), FormulaError);
    std::string sum = "1";
    for (int i = 0; i < 5000; ++i)
        sum += "+1";
    EXPECT_EQ(Whole(sum), 5001);
    std::string nested = "1";
    for (int i = 0; i < 200; ++i)
        nested = "1+(" + nested + ")"; // a stack deeper than the usual one
    EXPECT_EQ(Whole(nested), 201);
}

} // namespace
