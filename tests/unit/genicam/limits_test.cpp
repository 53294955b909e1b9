// The limits and increments of numbers.
#include "tests/unit/genicam/small_map.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::SmallMap;

const std::string constant = "<Value>1</Value>";

std::string Integer(const std::string& name, const std::string& before, const std::string& after = "")
{
    return "<Integer Name=\"" + name + "\">" + before + constant + after + "</Integer>";
}

std::string Register(const std::string& name, const std::string& length, const std::string& sign)
{
    return "<IntReg Name=\"" + name + "\"><Address>0</Address><Length>" + length +
           "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>" + sign +
           "<Endianess>BigEndian</Endianess></IntReg>";
}

using Range = std::pair<int64_t, int64_t>;

TEST(Limits, OfRegistersFollowLengthAndSign)
{
    const auto range = [](const std::string& length, const std::string& sign) {
        const SmallMap map(Register("R", length, sign));
        EXPECT_EQ(map.Integer("R")->GetInc(), 1);
        return Range(map.Integer("R")->GetMin(), map.Integer("R")->GetMax());
    };
    const std::string isSigned = "<Sign>Signed</Sign>";
    EXPECT_EQ(range("1", ""), Range(0, 255)) << "without a sign";
    EXPECT_EQ(range("3", "<Sign>Unsigned</Sign>"), Range(0, 0xffffff));
    EXPECT_EQ(range("8", "<Sign>Unsigned</Sign>"), Range(0, INT64_MAX));
    EXPECT_EQ(range("1", isSigned), Range(-128, 127));
    EXPECT_EQ(range("8", isSigned), Range(INT64_MIN, INT64_MAX));
}

TEST(Limits, OfConstantsKnivesAndVaryingConvertersAreTheWholeRange)
{
    const SmallMap map(
        Integer("I", "") +
        "<Float Name=\"F\"><Value>1</Value></Float><IntSwissKnife Name=\"K\"><Formula>1</Formula></IntSwissKnife>"
        "<SwissKnife Name=\"S\"><Formula>1</Formula></SwissKnife><IntConverter "
        "Name=\"C\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO"
        "</FormulaFrom><pValue>I</pValue><Slope>Varying</Slope></IntConverter>"
        "<Boolean Name=\"B\"><Value>true</Value></Boolean><Integer Name=\"OnB\"><pValue>B</pValue></Integer>");
    for (const char* const name : {"I", "K", "C", "OnB"})
    {
        EXPECT_EQ(map.Integer(name)->GetMin(), INT64_MIN) << name;
        EXPECT_EQ(map.Integer(name)->GetMax(), INT64_MAX) << name;
        EXPECT_EQ(map.Integer(name)->GetInc(), 1) << name;
        EXPECT_EQ(map.Integer(name)->GetIncMode(), fixedIncrement) << name;
    }
    for (const char* const name : {"F", "S"})
    {
        EXPECT_EQ(map.Float(name)->GetMin(), -std::numeric_limits<double>::max()) << name;
        EXPECT_EQ(map.Float(name)->GetMax(), std::numeric_limits<double>::max()) << name;
        EXPECT_FALSE(map.Float(name)->HasInc()) << name;
        EXPECT_EQ(map.Float(name)->GetIncMode(), noIncrement) << name;
        EXPECT_THROW(map.Float(name)->GetInc(), RuntimeException) << name;
    }
}

TEST(Limits, WrittenOnesReplaceThoseOfTheValueWhichStillChecksItsOwn)
{
    const SmallMap map("<Integer Name=\"T\"><Value>5</Value><Min>0</Min><Max>10</Max><Inc>5</Inc></Integer>"
                       "<Integer Name=\"Same\"><pValue>T</pValue></Integer><Integer "
                       "Name=\"Wider\"><pValue>T</pValue><Min>-100</Min><Max>100</Max><Inc>1</Inc></Integer>");
    EXPECT_EQ(map.Integer("Same")->GetMax(), 10);
    EXPECT_EQ(map.Integer("Same")->GetInc(), 5);
    EXPECT_EQ(map.Integer("Wider")->GetMin(), -100);
    EXPECT_EQ(map.Integer("Wider")->GetMax(), 100);
    EXPECT_THROW(map.Integer("Wider")->SetValue(50), OutOfRangeException);
    EXPECT_THROW(map.Integer("Wider")->SetValue(7), OutOfRangeException);
    map.Integer("Wider")->SetValue(10);
    EXPECT_EQ(map.Integer("T")->GetValue(), 10);
}

TEST(Limits, CopyThatRefusesLeavesTheMainValueWrittenAndTellsNobody)
{
    const SmallMap map(
        "<Integer Name=\"A\"><Value>0</Value></Integer><Integer Name=\"B\"><Value>0</Value><Max>20</Max></Integer>"
        "<Integer Name=\"C\"><pValue>A</pValue><pValueCopy>B</pValueCopy><Max>1000</Max></Integer>");
    int calls = 0;
    for (const char* const name : {"A", "B", "C"})
        Register(map.Node(name), std::function<void(INode*)>([&](INode*) { ++calls; }));
    EXPECT_THROW(map.Integer("C")->SetValue(30), OutOfRangeException);
    EXPECT_EQ(map.Integer("A")->GetValue(), 30);
    EXPECT_EQ(map.Integer("B")->GetValue(), 0);
    EXPECT_EQ(calls, 0);
}

TEST(Limits, ImposedOnesNarrowAndNeverWiden)
{
    const SmallMap map("<Integer Name=\"I\"><Value>5</Value><Min>0</Min><Max>10</Max></Integer>"
                       "<Float Name=\"F\"><Value>5</Value><Min>0</Min><Max>10</Max></Float>");
    map.Integer("I")->ImposeMin(-5);
    map.Integer("I")->ImposeMax(20);
    map.Float("F")->ImposeMin(-5);
    map.Float("F")->ImposeMax(20);
    EXPECT_EQ(map.Integer("I")->GetMin(), 0);
    EXPECT_EQ(map.Integer("I")->GetMax(), 10);
    EXPECT_EQ(map.Float("F")->GetMin(), 0);
    EXPECT_EQ(map.Float("F")->GetMax(), 10);
    map.Integer("I")->ImposeMin(2);
    map.Float("F")->ImposeMin(2);
    EXPECT_EQ(map.Integer("I")->GetMin(), 2);
    EXPECT_EQ(map.Float("F")->GetMin(), 2);
}

TEST(Limits, IncrementThatIsNotAboveZeroFailsAWriteWithinTheLimits)
{
    const SmallMap map("<Integer Name=\"I\"><Value>5</Value><Min>0</Min><Max>10</Max><Inc>0</Inc></Integer>"
                       "<Float Name=\"F\"><Value>5</Value><Inc>0</Inc></Float>");
    EXPECT_EQ(map.Integer("I")->GetInc(), 0);
    EXPECT_THROW(map.Integer("I")->SetValue(5), LogicalErrorException);
    EXPECT_THROW(map.Integer("I")->SetValue(11), OutOfRangeException);
    map.Float("F")->SetValue(0.3);
    EXPECT_EQ(map.Float("F")->GetValue(), 0.3) << "increments of floats are not checked";
}

TEST(Limits, ValidValuesAreListedAndNotChecked)
{
    const SmallMap map("<Integer Name=\"I\"><Value>1</Value><Min>0</Min><Max>10</Max><ValidValueSet>8; 2;20 "
                       ";4;x;6</ValidValueSet></Integer>"
                       "<Integer Name=\"J\"><pValue>I</pValue></Integer>");
    for (const char* const name : {"I", "J"})
    {
        EXPECT_EQ(map.Integer(name)->GetIncMode(), listIncrement) << name;
        const int64_autovector_t bounded = map.Integer(name)->GetListOfValidValues();
        ASSERT_EQ(bounded.size(), 3u) << name;
        EXPECT_EQ(bounded[0], 2);
        EXPECT_EQ(bounded[1], 4);
        EXPECT_EQ(bounded[2], 8);
        EXPECT_EQ(map.Integer(name)->GetListOfValidValues(false).size(), 4u) << name;
    }
    map.Integer("I")->SetValue(3);
    EXPECT_EQ(map.Integer("I")->GetValue(), 3);
}

TEST(Limits, OfIntegersOnFloatsAreRoundedAndMustFit)
{
    const SmallMap map(
        "<Float Name=\"F\"><Value>1</Value><Min>-2.5</Min><Max>7.5</Max></Float><Integer "
        "Name=\"I\"><pValue>F</pValue></Integer>"
        "<Float Name=\"Wide\"><Value>1</Value></Float><Integer Name=\"J\"><pValue>Wide</pValue></Integer>");
    EXPECT_EQ(map.Integer("I")->GetMin(), -3);
    EXPECT_EQ(map.Integer("I")->GetMax(), 8);
    EXPECT_THROW(map.Integer("J")->GetMin(), RuntimeException);
    EXPECT_THROW(map.Integer("J")->SetValue(1), RuntimeException);
    map.Integer("J")->SetValue(3, false);
    EXPECT_EQ(map.Float("Wide")->GetValue(), 3);
}

TEST(Limits, OfUnavailableNodesAreRefused)
{
    const SmallMap map(
        "<Integer Name=\"Zero\"><Value>0</Value></Integer>" + Integer("A", "<pIsAvailable>Zero</pIsAvailable>") +
        Integer("W", "<ImposedAccessMode>WO</ImposedAccessMode>"));
    EXPECT_THROW(map.Integer("A")->GetMin(), AccessException);
    EXPECT_THROW(map.Integer("A")->GetMax(), AccessException);
    EXPECT_THROW(map.Integer("A")->GetInc(), AccessException);
    EXPECT_EQ(map.Integer("W")->GetMin(), INT64_MIN) << "need not be readable";
}

TEST(Limits, OfLinearConvertersHaveTheIncrementThroughTheFormula)
{
    const auto converter = [](const std::string& slope, const std::string& from, const std::string& linear) {
        return "<Integer Name=\"I\"><Value>10</Value><Min>0</Min><Max>100</Max><Inc>5</Inc></Integer><Converter "
               "Name=\"C\"><FormulaTo>FROM"
               "</FormulaTo><FormulaFrom>" +
               from + "</FormulaFrom><pValue>I</pValue><Slope>" + slope + "</Slope>" + linear + "</Converter>";
    };
    const SmallMap rising(converter("Increasing", "TO*2", "<IsLinear>Yes</IsLinear>"));
    EXPECT_EQ(rising.Float("C")->GetInc(), 10);
    const SmallMap falling(converter("Decreasing", "50-TO", "<IsLinear>Yes</IsLinear>"));
    EXPECT_EQ(falling.Float("C")->GetInc(), -45) << "no offset is taken out";
    const SmallMap other(converter("Increasing", "TO*2", ""));
    EXPECT_FALSE(other.Float("C")->HasInc());
    EXPECT_THROW(other.Float("C")->GetInc(), RuntimeException);
}

TEST(Limits, OfConvertersThatFitNoSlopeStandTheWrongWayRound)
{
    const SmallMap map(
        "<Integer Name=\"I\"><Value>10</Value><Min>0</Min><Max>100</Max></Integer><IntConverter "
        "Name=\"C\"><FormulaTo>0-FROM"
        "</FormulaTo><FormulaFrom>0-TO</FormulaFrom><pValue>I</pValue><Slope>Increasing</Slope></IntConverter>"
        "<Integer Name=\"Zero\"><Value>1</Value><Min>0</Min><Max>4</Max></Integer><IntConverter "
        "Name=\"D\"><FormulaTo>8/FROM"
        "</FormulaTo><FormulaFrom>8/TO</FormulaFrom><pValue>Zero</pValue><Slope>Decreasing</Slope></IntConverter>");
    EXPECT_EQ(map.Integer("C")->GetMin(), 0);
    EXPECT_EQ(map.Integer("C")->GetMax(), -100);
    EXPECT_EQ(map.Integer("D")->GetMin(), 2);
    EXPECT_THROW(map.Integer("D")->GetMax(), LogicalErrorException) << "a limit that divides by zero fails alone";
}

TEST(Limits, OfFloatRegistersAreThoseOfTheirWidth)
{
    const auto reg = [](const std::string& length) {
        return "<FloatReg Name=\"F\"><Address>0</Address><Length>" + length +
               "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
               "<Endianess>LittleEndian</Endianess></FloatReg>";
    };
    EXPECT_EQ(SmallMap(reg("4")).Float("F")->GetMax(), static_cast<double>(std::numeric_limits<float>::max()));
    EXPECT_EQ(SmallMap(reg("8")).Float("F")->GetMin(), -std::numeric_limits<double>::max());
    const SmallMap odd(reg("3"));
    EXPECT_THROW(odd.Float("F")->GetMax(), OutOfRangeException);
    EXPECT_THROW(odd.Float("F")->GetValue(), OutOfRangeException);
}

TEST(Limits, ThatAreImposedAreNotCheckedByAWrite)
{
    const SmallMap map("<Integer Name=\"I\"><Value>5</Value><Min>0</Min><Max>10</Max></Integer>");
    map.Integer("I")->ImposeMin(4);
    map.Integer("I")->SetValue(3);
    EXPECT_EQ(map.Integer("I")->GetValue(true), 3);
}

TEST(Limits, OfIntegersOnEnumerationsAreTheWholeRange)
{
    const SmallMap map("<Enumeration Name=\"E\"><EnumEntry Name=\"A\"><Value>3</Value></EnumEntry><Value>3</Value>"
                       "</Enumeration><Integer Name=\"I\"><pValue>E</pValue></Integer>");
    EXPECT_EQ(map.Integer("I")->GetMin(), INT64_MIN);
    EXPECT_EQ(map.Integer("I")->GetMax(), INT64_MAX);
    EXPECT_EQ(map.Integer("I")->GetInc(), 1);
}

TEST(Limits, DoNotFollowTheRepresentation)
{
    for (const std::string representation : {"IPV4Address", "MACAddress", "Boolean", "HexNumber"})
    {
        const SmallMap map(Integer("I", "", "<Representation>" + representation + "</Representation>"));
        EXPECT_EQ(map.Integer("I")->GetMin(), INT64_MIN) << representation;
        EXPECT_EQ(map.Integer("I")->GetMax(), INT64_MAX) << representation;
    }
}

TEST(Limits, OfFloatsMayListTheValuesOfAnInteger)
{
    const SmallMap map(
        "<Integer Name=\"I\"><Value>1</Value><ValidValueSet>4;2</ValidValueSet></Integer>"
        "<Float Name=\"F\"><pValue>I</pValue></Float><Float Name=\"G\"><Value>1</Value><Inc>0.5</Inc></Float>");
    EXPECT_EQ(map.Float("F")->GetIncMode(), listIncrement);
    const double_autovector_t values = map.Float("F")->GetListOfValidValues();
    ASSERT_EQ(values.size(), 2u);
    EXPECT_EQ(values[0], 2.0);
    EXPECT_EQ(values[1], 4.0);
    EXPECT_EQ(map.Float("G")->GetIncMode(), fixedIncrement);
    EXPECT_EQ(map.Float("G")->GetInc(), 0.5);
    map.Float("G")->SetValue(0.3);
    EXPECT_EQ(map.Float("G")->GetValue(), 0.3) << "increments of floats are not checked";
}

TEST(Limits, OfConvertersWithoutASlopeAreSorted)
{
    for (const std::string kind : {"IntConverter", "Converter"})
    {
        const SmallMap map(
            "<Integer Name=\"I\"><Value>10</Value><Min>0</Min><Max>100</Max></Integer><" + kind +
            " Name=\"C\"><FormulaTo>0-FROM</FormulaTo><FormulaFrom>0-TO</FormulaFrom><pValue>I</pValue></" + kind +
            ">");
        map.Value("C")->FromString("-40");
        EXPECT_EQ(map.Integer("I")->GetValue(), 40) << kind;
        EXPECT_THROW(map.Value("C")->FromString("1"), OutOfRangeException) << kind;
        EXPECT_THROW(map.Value("C")->FromString("-101"), OutOfRangeException) << kind;
    }
}

TEST(Limits, OfConvertersStopAtTheLargestDouble)
{
    const SmallMap map("<Float Name=\"F\"><Value>1</Value></Float><Converter Name=\"C\"><FormulaTo>FROM/2</FormulaTo>"
                       "<FormulaFrom>TO*2</FormulaFrom><pValue>F</pValue><Slope>Increasing</Slope></Converter>");
    EXPECT_EQ(map.Float("C")->GetMin(), -std::numeric_limits<double>::max());
    EXPECT_EQ(map.Float("C")->GetMax(), std::numeric_limits<double>::max());
}

} // namespace
