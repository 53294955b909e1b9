// What nodes say about themselves, and the limits of numbers.
#include "tests/unit/genicam/small_map.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::IntReg;
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

TEST(Attributes, ThatAreNotWrittenHaveTheirDefaults)
{
    const SmallMap map(Integer("A", ""));
    INode* const node = map.Node("A");
    EXPECT_STREQ(node->GetDisplayName().c_str(), "A");
    EXPECT_STREQ(node->GetToolTip().c_str(), "");
    EXPECT_STREQ(node->GetDescription().c_str(), "");
    EXPECT_STREQ(node->GetEventID().c_str(), "");
    EXPECT_STREQ(node->GetDocuURL().c_str(), "");
    EXPECT_EQ(node->GetVisibility(), Beginner);
    EXPECT_EQ(node->GetNameSpace(), Custom);
    EXPECT_EQ(node->GetPollingTime(), -1);
    EXPECT_FALSE(node->IsStreamable());
    EXPECT_FALSE(node->IsDeprecated());
    EXPECT_FALSE(node->IsFeature());
    EXPECT_EQ(node->GetAlias(), nullptr);
    EXPECT_EQ(node->GetCastAlias(), nullptr);
    EXPECT_EQ(map.Integer("A")->GetRepresentation(), PureNumber);
    EXPECT_STREQ(map.Integer("A")->GetUnit().c_str(), "");
}

TEST(Attributes, AreAsWritten)
{
    const SmallMap map(
        "<Integer Name=\"A\" "
        "NameSpace=\"Standard\"><ToolTip>tip</ToolTip><Description>more</Description><DisplayName>An A"
        "</DisplayName><Visibility>Guru</Visibility><DocuURL>http://a</DocuURL><IsDeprecated>Yes</IsDeprecated>"
        "<EventID>9001</EventID><pAlias>B</pAlias><pCastAlias>C</pCastAlias><Streamable>Yes</Streamable><Value>1</"
        "Value>"
        "<Unit>mm</Unit><Representation>HexNumber</Representation></Integer>" +
        Integer("B", "") + Integer("C", ""));
    INode* const node = map.Node("A");
    EXPECT_STREQ(node->GetDisplayName().c_str(), "An A");
    EXPECT_STREQ(node->GetToolTip().c_str(), "tip");
    EXPECT_STREQ(node->GetDescription().c_str(), "more");
    EXPECT_STREQ(node->GetEventID().c_str(), "9001");
    EXPECT_STREQ(node->GetDocuURL().c_str(), "http://a");
    EXPECT_STREQ(node->GetName(true).c_str(), "Std::A");
    EXPECT_EQ(node->GetVisibility(), Guru);
    EXPECT_EQ(node->GetNameSpace(), Standard);
    EXPECT_TRUE(node->IsStreamable());
    EXPECT_TRUE(node->IsDeprecated());
    EXPECT_EQ(node->GetAlias(), map.Node("B"));
    EXPECT_EQ(node->GetCastAlias(), map.Node("C"));
    EXPECT_EQ(map.Integer("A")->GetRepresentation(), HexNumber);
    EXPECT_STREQ(map.Integer("A")->GetUnit().c_str(), "mm");
    EXPECT_EQ(map.map->GetNode("Std::A"), node);
    EXPECT_EQ(map.map->GetNode("Cust::A"), nullptr);
}

TEST(Attributes, TipAndDescriptionDoNotStandInForEachOther)
{
    const SmallMap map(Integer("A", "<ToolTip>tip</ToolTip>") + Integer("B", "<Description>more</Description>"));
    EXPECT_STREQ(map.Node("A")->GetDescription().c_str(), "");
    EXPECT_STREQ(map.Node("B")->GetToolTip().c_str(), "");
}

TEST(Attributes, EntryIsShownByDisplayNameElseSymbolicElseName)
{
    const SmallMap map(
        "<Enumeration Name=\"E\"><EnumEntry Name=\"A\"><DisplayName>An A</DisplayName><Value>0</Value>"
        "<Symbolic>SymA</Symbolic></EnumEntry><EnumEntry Name=\"B\"><Value>1</Value><Symbolic>SymB</Symbolic>"
        "</EnumEntry><EnumEntry Name=\"C\"><Value>2</Value></EnumEntry><Value>0</Value></Enumeration>");
    EXPECT_STREQ(map.Node("EnumEntry_E_A")->GetDisplayName().c_str(), "An A");
    EXPECT_STREQ(map.Node("EnumEntry_E_B")->GetDisplayName().c_str(), "SymB");
    EXPECT_STREQ(map.Node("EnumEntry_E_C")->GetDisplayName().c_str(), "C");
}

TEST(Attributes, CategoryIsAsVisibleAsItsFeatures)
{
    const SmallMap map(
        Integer("Expert", "<Visibility>Expert</Visibility>") + Integer("Guru", "<Visibility>Guru</Visibility>") +
        "<Category "
        "Name=\"C\"><Visibility>Beginner</Visibility><pFeature>Guru</pFeature><pFeature>Expert</pFeature></Category>"
        "<Category Name=\"Empty\"><Visibility>Expert</Visibility></Category><Category Name=\"Bare\"/>");
    EXPECT_EQ(map.Node("C")->GetVisibility(), Expert) << "its own element does not count";
    EXPECT_EQ(map.Node("Empty")->GetVisibility(), Expert);
    EXPECT_EQ(map.Node("Bare")->GetVisibility(), Invisible);
    map.Node("Expert")->ImposeVisibility(Invisible);
    EXPECT_EQ(map.Node("Expert")->GetVisibility(), Invisible);
    EXPECT_EQ(map.Node("C")->GetVisibility(), Guru);
    map.Node("Guru")->ImposeVisibility(Beginner);
    EXPECT_EQ(map.Node("Guru")->GetVisibility(), Guru) << "the higher of both";
}

TEST(Attributes, FeaturesAreWhatRootReachesThroughCategories)
{
    const SmallMap map(
        "<Category Name=\"Root\"><pFeature>Inner</pFeature><pFeature>A</pFeature></Category>"
        "<Category Name=\"Inner\"><pFeature>B</pFeature><pFeature>B</pFeature></Category><Category "
        "Name=\"Other\"><pFeature>C</pFeature></Category>"
        "<Integer Name=\"A\"><pValue>R</pValue></Integer>" +
        IntReg("R", "0") +
        "<Enumeration Name=\"B\"><EnumEntry Name=\"X\"><Value>0</Value></EnumEntry><Value>0</Value></Enumeration>" +
        Integer("C", ""));
    for (const char* const name : {"Root", "Inner", "A", "B"})
        EXPECT_TRUE(map.Node(name)->IsFeature()) << name;
    for (const char* const name : {"Other", "C", "R", "EnumEntry_B_X", "Device"})
        EXPECT_FALSE(map.Node(name)->IsFeature()) << name;
    FeatureList_t features;
    CCategoryPtr(map.Node("Inner"))->GetFeatures(features);
    EXPECT_EQ(features.size(), 2u) << "duplicates are kept";
}

TEST(Attributes, StructEntryTakesWhatItHasNotItself)
{
    const SmallMap map(
        Integer("No", "") + Integer("Inv", "") + Integer("Other", "") +
        "<StructReg Comment=\"c\"><ToolTip>of "
        "all</ToolTip><Visibility>Guru</Visibility><Address>8</Address><Length>4</Length>"
        "<AccessMode>RO</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable><PollingTime>50</PollingTime>"
        "<pInvalidator>Inv</pInvalidator><Endianess>LittleEndian</Endianess>"
        "<StructEntry Name=\"A\"><Bit>0</Bit></StructEntry>"
        "<StructEntry Name=\"B\"><ToolTip>mine</ToolTip><pInvalidator>Other</pInvalidator><AccessMode>RW</AccessMode>"
        "<Cachable>WriteThrough</Cachable><PollingTime>70</PollingTime><LSB>1</LSB><MSB>2</MSB><Sign>Signed</Sign></"
        "StructEntry>"
        "</StructReg>");
    EXPECT_STREQ(map.Node("A")->GetToolTip().c_str(), "of all");
    EXPECT_EQ(map.Node("A")->GetVisibility(), Guru);
    EXPECT_EQ(map.Node("A")->GetAccessMode(), RO);
    EXPECT_EQ(map.Node("A")->GetCachingMode(), NoCache);
    EXPECT_EQ(map.Node("A")->GetPollingTime(), 50);
    EXPECT_EQ(map.Integer("A")->GetMin(), 0);
    EXPECT_STREQ(map.Node("B")->GetToolTip().c_str(), "mine");
    EXPECT_EQ(map.Node("B")->GetVisibility(), Guru);
    EXPECT_EQ(map.Node("B")->GetAccessMode(), RW);
    EXPECT_EQ(map.Node("B")->GetCachingMode(), WriteThrough);
    EXPECT_EQ(map.Node("B")->GetPollingTime(), 70);
    EXPECT_EQ(map.Integer("B")->GetMin(), -2);
    NodeList_t invalidators;
    map.Node("B")->GetChildren(invalidators, ctInvalidatingChildren);
    for (INode* const node : invalidators)
        EXPECT_NE(node, map.Node("Inv")) << "its own list replaces the common one";
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
        "<Integer Name=\"Zero\"><Value>0</Value></Integer>" +
        Integer("A", "<pIsAvailable>Zero</pIsAvailable>") + Integer("W", "<ImposedAccessMode>WO</ImposedAccessMode>"));
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

TEST(Presentation, IsTakenFromTheValueWhereItIsNotWritten)
{
    const SmallMap map(
        "<Integer Name=\"I\"><Value>1</Value><Unit>us</Unit><Representation>Logarithmic</Representation></Integer>"
        "<Integer Name=\"J\"><pValue>I</pValue></Integer><Integer "
        "Name=\"K\"><pValue>I</pValue><Unit>s</Unit><Representation>Linear</Representation></Integer>"
        "<Float "
        "Name=\"F\"><Value>1</Value><DisplayNotation>Fixed</DisplayNotation><DisplayPrecision>3</DisplayPrecision></"
        "Float>"
        "<Float Name=\"G\"><pValue>F</pValue></Float><Float Name=\"H\"><pValue>I</pValue></Float>");
    EXPECT_STREQ(map.Integer("J")->GetUnit().c_str(), "us");
    EXPECT_EQ(map.Integer("J")->GetRepresentation(), Logarithmic);
    EXPECT_STREQ(map.Integer("K")->GetUnit().c_str(), "s");
    EXPECT_EQ(map.Integer("K")->GetRepresentation(), Linear);
    EXPECT_EQ(map.Float("G")->GetDisplayNotation(), fnFixed);
    EXPECT_EQ(map.Float("G")->GetDisplayPrecision(), 3);
    EXPECT_STREQ(map.Float("H")->GetUnit().c_str(), "us");
    EXPECT_EQ(map.Float("H")->GetDisplayNotation(), fnAutomatic);
    EXPECT_EQ(map.Float("H")->GetDisplayPrecision(), 6);
}

} // namespace
