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

struct BinaryOperator
{
    const char* text;
    int level; // the lower binds the tighter
};

const BinaryOperator operators[] = {{"**", 2}, {"<<", 2}, {">>", 2}, {"&", 2},  {"|", 2}, {"^", 2},  {"*", 3},
                                    {"/", 3},  {"%", 3},  {"+", 4},  {"-", 4},  {"=", 5}, {"<>", 5}, {"<", 5},
                                    {">", 5},  {"<=", 5}, {">=", 5}, {"&&", 5}, {"||", 5}};

TEST(Formula, EachPairOfOperatorsGroupsByItsLevels)
{
    int told = 0; // pairs for which the grouping makes a difference
    for (const BinaryOperator& first : operators)
    {
        for (const BinaryOperator& second : operators)
        {
            for (const char* const values : {"7 3 2", "2 3 5", "9 0 1", "1 1 3", "5 2 2"})
            {
                const std::string a(1, values[0]);
                const std::string b(1, values[2]);
                const std::string c(1, values[4]);
                const std::string flat = a + first.text + b + second.text + c;
                const std::string left = "(" + a + first.text + b + ")" + second.text + c;
                const std::string right = a + first.text + "(" + b + second.text + c + ")";
                const auto result = [](const std::string& text) -> std::string {
                    try
                    {
                        return std::to_string(Whole(text));
                    }
                    catch (const FormulaError& error)
                    {
                        return error.reason;
                    }
                };
                EXPECT_EQ(result(flat), result(first.level <= second.level ? left : right)) << flat;
                if (result(left) != result(right)) ++told;
            }
        }
    }
    EXPECT_GT(told, 500);
}

TEST(Formula, OperatorsOfBothKinds)
{
    const struct
    {
        const char* text;
        int64_t whole;
        double real;
    } cases[] = {{"7+3", 10, 10},     {"7-3", 4, 4},    {"7*3", 21, 21},       {"7/2", 3, 3.5},   {"-7/2", -3, -3.5},
                 {"7%4", 3, 3},       {"-7%4", -3, -3}, {"2**10", 1024, 1024}, {"6&3", 2, 2},     {"6|3", 7, 7},
                 {"6^3", 5, 5},       {"~0", -1, -1},   {"1<<4", 16, 16},      {"16>>3", 2, 2},   {"-16>>3", -2, -2},
                 {"7=7", 1, 1},       {"7<>7", 0, 0},   {"7<8", 1, 1},         {"7>8", 0, 0},     {"7<=7", 1, 1},
                 {"7>=8", 0, 0},      {"7&&0", 0, 0},   {"7&&-1", 1, 1},       {"0||0", 0, 0},    {"0||9", 1, 1},
                 {"3?5:6", 5, 5},     {"0?5:6", 6, 6},  {"-1?5:6", 5, 5},      {"(1+2)*3", 9, 9}, {"2*-3", -6, -6},
                 {"2-~1", 4, 4},      {"0x1F", 31, 31}, {"SGN(-5)", -1, -1},   {"SGN(0)", 0, 0},  {"NEG(5)", -5, -5},
                 {" 1\t+\n2 ", 3, 3}, {"A+B*C", 1, 1}};
    for (const auto& each : cases)
    {
        EXPECT_EQ(Whole(each.text), each.whole) << each.text;
        EXPECT_EQ(Real(each.text), each.real) << each.text;
    }
    EXPECT_EQ(Real("0.5&&0.1"), 1) << "fractions are true";
    EXPECT_EQ(Real("0.5?2:3"), 2);
    EXPECT_EQ(Real("7.5%2"), 1.5);
    EXPECT_EQ(Real("2**-1"), 0.5);
}

TEST(Formula, FunctionsOfFloats)
{
    const std::pair<const char*, double> cases[] = {
        {"SGN(-2.5)", -1},
        {"NEG(2.5)", -2.5},
        {"ABS(-2.5)", 2.5},
        {"SQRT(6.25)", 2.5},
        {"SIN(1)", std::sin(1)},
        {"COS(1)", std::cos(1)},
        {"TAN(1)", std::tan(1)},
        {"ASIN(0.5)", std::asin(0.5)},
        {"ACOS(0.5)", std::acos(0.5)},
        {"ATAN(2)", std::atan(2)},
        {"EXP(2)", std::exp(2)},
        {"LN(2)", std::log(2)},
        {"LG(1000)", 3},
        {"TRUNC(-2.7)", -2},
        {"TRUNC(2.7)", 2},
        {"FLOOR(-2.1)", -3},
        {"CEIL(-2.9)", -2},
        {"FRAC(2.75)", 0.75},
        {"ROUND(2.5)", 3},
        {"ROUND(2.35, 1)", 2.4},
        {"ROUND(1250, -2)", 1300},
        {"sqrt(4)", 2},
        {"Abs(-1)", 1},
        {"E()", M_E}};
    for (const auto& [text, value] : cases)
        EXPECT_DOUBLE_EQ(Real(text), value) << text;
    for (const char* const text : {"MIN(1,2)", "MAX(1,2)", "POW(2,3)", "LOG(2)", "ATAN2(1,2)", "MOD(5,3)", "SINH(1)"})
        EXPECT_THROW(Real(text), FormulaError) << text;
}

TEST(Formula, FloatsGoOnWhereNumbersEnd)
{
    EXPECT_EQ(Real("LN(0)"), -INFINITY);
    EXPECT_TRUE(std::isnan(Real("SQRT(-1)")));
    EXPECT_EQ(Real("1e308*10"), INFINITY);
}

TEST(Formula, OfCamerasAreLong)
{
    EXPECT_EQ(Whole(std::string(3000, ' ') + "A"), 7);
    std::string chain = "0";
    for (int i = 0; i < 40; ++i)
        chain = "(A=" + std::to_string(i) + "?" + std::to_string(100 + i) + ":" + chain + ")";
    EXPECT_EQ(Whole(chain), 107);
    std::vector<std::string> texts;
    std::string sum = "0";
    for (int i = 0; i < 200; ++i)
    {
        texts.push_back("V" + std::to_string(i));
        sum += "+" + texts.back();
    }
    const std::vector<int64_t> values(texts.size(), 3);
    EXPECT_EQ(Formula<int64_t>(sum, {texts.begin(), texts.end()}).Evaluate(values.data()), 600);
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
    const std::string zeros(400, '0');
    EXPECT_EQ(Real("0." + zeros + "1"), 0.0);
    EXPECT_EQ(Real("0." + zeros + "1e5"), 0.0);
    EXPECT_EQ(Real("0e-999999999999999999999"), 0.0);
    EXPECT_EQ(Real("1e-999999999999999999999"), 0.0);
    EXPECT_TRUE(std::isinf(Real("1" + zeros)));
    EXPECT_TRUE(std::isinf(Real("1" + zeros + "e-5")));
    EXPECT_TRUE(std::isinf(Real("1e+999999999999999999999")));
    EXPECT_THROW(Real(".5"), FormulaError);
    EXPECT_THROW(Real("1e"), FormulaError);
    EXPECT_THROW(Real("1..2"), FormulaError);
}

TEST(Formula, SignsMayFollowAnOperatorButNotASign)
{
    EXPECT_EQ(Whole("A*-B"), 21);
    EXPECT_EQ(Whole("-~A"), 8);
    EXPECT_EQ(Whole("A=7?1:-1"), 1);
    EXPECT_EQ(Whole("A?-1:2"), -1);
    EXPECT_EQ(Whole("A?-A:2"), -7);
    for (const char* text : {"A--B", "A+-B", "--A", "~~A", "A?--1:2", "ABS -3"})
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
