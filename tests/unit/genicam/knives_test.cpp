// Formulas in their nodes: variables, constants, expressions and the nodes that are made for them.
#include "tests/unit/genicam/small_map.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::IntReg;
using koro::test::SmallMap;

const std::string sources =
    "<Integer Name=\"I\"><Visibility>Guru</Visibility><Value>6</Value><Min>2</Min><Max>40</Max><Inc>2</Inc></Integer>"
    "<Float Name=\"F\"><Value>2.5</Value></Float><Enumeration Name=\"E\"><EnumEntry "
    "Name=\"One\"><Value>1</Value><NumericValue>7.5</NumericValue></EnumEntry>"
    "<EnumEntry Name=\"Two\"><Value>2</Value></EnumEntry><Value>1</Value></Enumeration>";

std::string Knife(const std::string& kind, const std::string& variables, const std::string& formula)
{
    return "<" + kind + " Name=\"X\">" + variables + "<Formula>" + formula + "</Formula></" + kind + ">";
}

std::string Variable(const std::string& name, const std::string& node)
{
    return "<pVariable Name=\"" + name + "\">" + node + "</pVariable>";
}

int64_t Whole(const std::string& variables, const std::string& formula)
{
    return SmallMap(sources + Knife("IntSwissKnife", variables, formula)).Integer("X")->GetValue();
}

double Real(const std::string& variables, const std::string& formula)
{
    return SmallMap(sources + Knife("SwissKnife", variables, formula)).Float("X")->GetValue();
}

TEST(Variables, MayNameAnAspectOfTheirNode)
{
    EXPECT_EQ(Whole(Variable("V.Value", "I"), "V.Value"), 6);
    EXPECT_EQ(Whole(Variable("V.Min", "I"), "V.Min"), 2);
    EXPECT_EQ(Whole(Variable("V.Max", "I"), "V.Max"), 40);
    EXPECT_EQ(Whole(Variable("V.Inc", "I"), "V.Inc"), 2);
    EXPECT_EQ(Whole(Variable("V.AccessMode", "I"), "V.AccessMode"), RW);
    EXPECT_EQ(Whole(Variable("V.Visibility", "I"), "V.Visibility"), Guru);
    EXPECT_EQ(Whole(Variable("V.CachingMode", "F"), "V.CachingMode"), WriteAround);
    EXPECT_EQ(Whole(Variable("V.Entry.Two", "E"), "V.Entry.Two"), 2);
    EXPECT_EQ(Real(Variable("V.Entry.One", "E"), "V.Entry.One"), 1) << "the number, not the numeric value";
    EXPECT_EQ(Real(Variable("V.Max", "I"), "V.Max/100"), 0.4);
}

TEST(Variables, OtherAspectsFailAtUse)
{
    for (const char* const suffix : {"Enum.One", "Nothing", "Entry.Three", "value"})
        EXPECT_THROW(Whole(Variable(std::string("V.") + suffix, "E"), "1"), RuntimeException) << suffix;
    EXPECT_THROW(Whole(Variable("V.Entry.One", "I"), "1"), RuntimeException) << "no enumeration";
}

TEST(Variables, AreAllReadUsedOrNot)
{
    const SmallMap map(
        sources + "<Integer Name=\"W\"><ImposedAccessMode>WO</ImposedAccessMode><Value>1</Value></Integer>" +
        Knife("IntSwissKnife", Variable("V", "W") + Variable("I", "I"), "I"));
    EXPECT_THROW(map.Integer("X")->GetValue(), AccessException);
}

TEST(Variables, FirstOfOneNameCountsAndWinsOverAConstant)
{
    EXPECT_EQ(Whole(Variable("V", "I") + Variable("V", "F"), "V"), 6);
    EXPECT_EQ(Whole(Variable("V", "I") + "<Constant Name=\"V\">99</Constant>", "V"), 6);
}

TEST(Variables, OfFloatsAreRoundedInIntegerFormulas)
{
    EXPECT_EQ(Whole(Variable("V", "F"), "V"), 3);
    EXPECT_EQ(Real(Variable("V", "F"), "V"), 2.5);
}

TEST(Variables, MayBeCalledAsConstantsOfFloatsInIntegerFormulasOnly)
{
    EXPECT_EQ(Whole(Variable("E", "I") + Variable("PI", "F"), "E+PI"), 9);
    EXPECT_DOUBLE_EQ(Real(Variable("E", "I"), "E"), 2.718281828459045);
    EXPECT_THROW(Whole(Variable("SGN", "I"), "SGN"), LogicalErrorException);
    EXPECT_EQ(Whole(Variable("FROM", "I") + Variable("TO", "I"), "FROM+TO"), 12);
}

TEST(Variables, NamesAreWholeWordsWithTheirCase)
{
    EXPECT_THROW(Whole(Variable("V", "I"), "v"), LogicalErrorException);
    EXPECT_THROW(Whole(Variable("V", "I"), "VV"), LogicalErrorException);
    EXPECT_EQ(Whole(Variable("V", "I") + Variable("VV", "F"), "VV"), 3);
}

TEST(Expressions, UseVariablesConstantsAndTheExpressionsBefore)
{
    const std::string parts = Variable("V", "I") +
                              "<Constant Name=\"C\">10</Constant><Expression Name=\"S\">V+C</Expression>"
                              "<Expression Name=\"T\">S*2</Expression>";
    EXPECT_EQ(Whole(parts, "T"), 32);
    EXPECT_EQ(Whole(parts, "S*2"), 32) << "as if in brackets";
    EXPECT_THROW(
        Whole("<Expression Name=\"A\">B</Expression><Expression Name=\"B\">1</Expression>", "A"),
        LogicalErrorException);
    EXPECT_THROW(Whole("<Expression Name=\"A\">A</Expression>", "A"), LogicalErrorException);
}

TEST(Expressions, AndConstantsAreNodes)
{
    const SmallMap map(
        sources +
        Knife("IntSwissKnife", "<Constant Name=\"C\">10</Constant><Expression Name=\"S\">C*2</Expression>", "S+1"));
    EXPECT_EQ(map.Node("_X_C")->GetAccessMode(), RW);
    EXPECT_EQ(map.Node("_X_S")->GetAccessMode(), RO);
    EXPECT_EQ(map.Integer("_X_S")->GetValue(), 20);
    map.Integer("_X_C")->SetValue(1);
    EXPECT_EQ(map.Integer("X")->GetValue(), 3);
}

TEST(Knives, AreParsedAtTheirFirstUse)
{
    const SmallMap map(sources + Knife("IntSwissKnife", "", "1 +"));
    EXPECT_EQ(map.Node("X")->GetAccessMode(), RO);
    EXPECT_THROW(map.Integer("X")->GetValue(), LogicalErrorException);
    EXPECT_THROW(map.Integer("X")->GetValue(), LogicalErrorException) << "and fail at every use";
    EXPECT_THROW(map.Integer("X")->SetValue(1), AccessException);
}

std::string Converter(const std::string& kind, const std::string& to, const std::string& from)
{
    return "<" + kind + " Name=\"X\">" + Variable("V", "F") + "<FormulaTo>" + to + "</FormulaTo><FormulaFrom>" + from +
           "</FormulaFrom><pValue>I</pValue><Slope>Increasing</Slope></" + kind + ">";
}

TEST(ConverterFormulas, KnowTheirOwnInputOnly)
{
    EXPECT_EQ(SmallMap(sources + Converter("IntConverter", "FROM", "TO*V")).Integer("X")->GetValue(), 18);
    EXPECT_THROW(
        SmallMap(sources + Converter("IntConverter", "FROM", "FROM")).Integer("X")->GetValue(), LogicalErrorException);
    EXPECT_THROW(
        SmallMap(sources + Converter("IntConverter", "TO", "TO")).Integer("X")->SetValue(6), LogicalErrorException);
}

TEST(ConverterFormulas, FailWhereTheyAreNeeded)
{
    const SmallMap to(sources + Converter("Converter", "FROM +", "TO"));
    EXPECT_EQ(to.Float("X")->GetValue(), 6);
    EXPECT_EQ(to.Float("X")->GetMax(), 40);
    EXPECT_THROW(to.Float("X")->SetValue(6), LogicalErrorException);
    const SmallMap from(sources + Converter("Converter", "FROM", "TO +"));
    EXPECT_THROW(from.Float("X")->GetValue(), LogicalErrorException);
    EXPECT_THROW(from.Float("X")->GetMax(), LogicalErrorException);
    EXPECT_THROW(from.Float("X")->SetValue(6), LogicalErrorException) << "the limits are checked";
    from.Float("X")->SetValue(8, false);
    EXPECT_EQ(from.Integer("I")->GetValue(), 8);
}

TEST(ConverterFormulas, LiteralWithAPointFailsAnIntegerConverterAtEveryUse)
{
    const SmallMap map(sources + Converter("IntConverter", "FROM * 4.0", "TO / 4.0"));
    EXPECT_THROW(map.Integer("X")->GetValue(), LogicalErrorException);
    EXPECT_THROW(map.Integer("X")->GetMin(), LogicalErrorException);
}

TEST(ConverterFormulas, ReadByThemselvesHaveAnInputOfZero)
{
    const SmallMap map(sources + Converter("IntConverter", "FROM+5", "TO+7"));
    EXPECT_EQ(map.Integer("X_ConvertTo")->GetValue(), 5);
    EXPECT_EQ(map.Integer("X_ConvertFrom")->GetValue(), 7);
}

TEST(ConverterFormulas, UnlimitedIntegersWrapInTheRange)
{
    const SmallMap map("<Integer Name=\"I\"><Value>1</Value></Integer><IntConverter "
                       "Name=\"X\"><FormulaTo>FROM/2</FormulaTo><FormulaFrom>TO*2</FormulaFrom>"
                       "<pValue>I</pValue><Slope>Increasing</Slope></IntConverter>");
    EXPECT_EQ(map.Integer("X")->GetMin(), 0);
    EXPECT_EQ(map.Integer("X")->GetMax(), -2);
}

TEST(ConverterFormulas, TargetChecksItsOwnLimitsAndSteps)
{
    const SmallMap map(sources + Converter("IntConverter", "FROM+1", "TO-1"));
    EXPECT_THROW(map.Integer("X")->SetValue(4), OutOfRangeException) << "5 is off the steps of the target";
    map.Integer("X")->SetValue(3);
    EXPECT_EQ(map.Integer("I")->GetValue(), 4);
}

} // namespace
