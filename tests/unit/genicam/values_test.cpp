#include "tests/unit/genicam/small_map.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::IntReg;
using koro::test::SmallMap;

TEST(Integers, CheckRangeAndGridWhenVerified)
{
    const SmallMap map("<Integer Name=\"A\"><Value>5</Value><Min>1</Min><Max>10</Max><Inc>2</Inc></Integer>");
    const CIntegerPtr a = map.Integer("A");
    EXPECT_THROW(a->SetValue(0), OutOfRangeException);
    EXPECT_THROW(a->SetValue(11), OutOfRangeException);
    EXPECT_THROW(a->SetValue(4), OutOfRangeException);
    EXPECT_EQ(a->GetValue(), 5);
    a->SetValue(4, false);
    EXPECT_EQ(a->GetValue(), 4);
    EXPECT_THROW(a->GetValue(true), OutOfRangeException);
    a->ImposeMax(7);
    EXPECT_EQ(a->GetMax(), 7);
}

TEST(Integers, WriteReachesEveryCopyInTheOrderOfTheFile)
{
    const SmallMap map(
        "<Integer Name=\"A\"><Value>0</Value><Max>50</Max></Integer><Integer Name=\"B\"><Value>0</Value><Max>20</Max>"
        "</Integer><Integer Name=\"C\"><pValueCopy>B</pValueCopy><pValue>A</pValue></Integer>");
    map.Integer("C")->SetValue(7);
    EXPECT_EQ(map.Integer("A")->GetValue(), 7);
    EXPECT_EQ(map.Integer("B")->GetValue(), 7);
    EXPECT_EQ(map.Integer("C")->GetMax(), 20);
}

TEST(Integers, IndexChoosesTheValue)
{
    const SmallMap map(
        "<Integer Name=\"I\"><Value>1</Value></Integer><Integer Name=\"V\"><pIndex>I</pIndex><ValueIndexed "
        "Index=\"1\">10</ValueIndexed><ValueIndexed "
        "Index=\"2\">20</ValueIndexed><ValueDefault>99</ValueDefault></Integer>");
    EXPECT_EQ(map.Integer("V")->GetValue(), 10);
    map.Integer("V")->SetValue(11);
    map.Integer("I")->SetValue(2);
    EXPECT_EQ(map.Integer("V")->GetValue(), 20);
    map.Integer("I")->SetValue(3);
    EXPECT_EQ(map.Integer("V")->GetValue(), 99);
    map.Integer("I")->SetValue(1);
    EXPECT_EQ(map.Integer("V")->GetValue(), 11);
}

TEST(Integers, TextFollowsTheRepresentation)
{
    const auto shown = [](const std::string& representation, const std::string& value) {
        const SmallMap map(
            "<Integer Name=\"A\"><Value>" + value + "</Value><Representation>" + representation +
            "</Representation></Integer>");
        return std::string(map.Value("A")->ToString());
    };
    EXPECT_EQ(shown("Linear", "-12"), "-12");
    EXPECT_EQ(shown("HexNumber", "255"), "0xff");
    EXPECT_EQ(shown("HexNumber", "0"), "0");
    EXPECT_EQ(shown("IPV4Address", "0xC0A80001"), "192.168.0.1");
    EXPECT_EQ(shown("MACAddress", "0x0123456789ab"), "01:23:45:67:89:ab");
    EXPECT_EQ(shown("Boolean", "5"), "true");
}

TEST(Integers, TextIsReadUpToTheFirstOtherLetter)
{
    const SmallMap map("<Integer Name=\"A\"><Value>0</Value></Integer>");
    map.Value("A")->FromString("7.9");
    EXPECT_EQ(map.Integer("A")->GetValue(), 7);
    map.Value("A")->FromString("0x1F");
    EXPECT_EQ(map.Integer("A")->GetValue(), 31);
    EXPECT_THROW(map.Value("A")->FromString("x"), InvalidArgumentException);
}

TEST(Floats, WriteTheNearestStepOfAnInteger)
{
    const SmallMap map("<Integer Name=\"I\"><Value>0</Value><Min>-21</Min><Max>21</Max><Inc>6</Inc></Integer>"
                       "<Float Name=\"F\"><pValue>I</pValue></Float>");
    const auto written = [&](double value) {
        map.Float("F")->SetValue(value);
        return map.Integer("I")->GetValue();
    };
    EXPECT_EQ(written(0), -3) << "half way goes down";
    EXPECT_EQ(written(0.5), 3) << "rounded to an integer first, not cut";
    EXPECT_EQ(written(6.375), 3) << "rounded to 6 first, which lies half way";
    EXPECT_EQ(written(21), 21);
    EXPECT_TRUE(map.Float("F")->HasInc());
    EXPECT_EQ(map.Float("F")->GetInc(), 6.0);
}

TEST(Floats, IntegerWithoutStepsRoundsHalfAwayFromZero)
{
    const SmallMap map("<Integer Name=\"I\"><Value>0</Value></Integer><Float Name=\"F\"><pValue>I</pValue></Float>");
    const auto written = [&](double value) {
        map.Float("F")->SetValue(value);
        return map.Integer("I")->GetValue();
    };
    EXPECT_EQ(written(0.5), 1);
    EXPECT_EQ(written(127.5), 128);
    EXPECT_EQ(written(-0.5), -1);
    EXPECT_EQ(written(-2.4), -2);
    EXPECT_THROW(written(1e19), OutOfRangeException);
}

TEST(Floats, TextFollowsNotationAndPrecision)
{
    const SmallMap map("<Float Name=\"F\"><Value>1234567.5</Value></Float><Float Name=\"Fixed\"><Value>2.345</Value>"
                       "<DisplayNotation>Fixed</DisplayNotation><DisplayPrecision>1</DisplayPrecision></Float>");
    EXPECT_STREQ(map.Value("F")->ToString().c_str(), "1.23457e+06");
    EXPECT_STREQ(map.Value("Fixed")->ToString().c_str(), "2.3");
    map.Value("F")->FromString("1e-3");
    EXPECT_EQ(map.Float("F")->GetValue(), 1e-3);
    EXPECT_THROW(map.Value("F")->FromString("inf"), InvalidArgumentException);
}

TEST(Floats, IntegerOverAFloatWithoutLimitsHasNone)
{
    const SmallMap map("<Float Name=\"F\"><Value>2.5</Value></Float><Integer Name=\"I\"><pValue>F</pValue></Integer>");
    EXPECT_EQ(map.Integer("I")->GetValue(), 3);
    EXPECT_THROW(map.Integer("I")->GetMax(), RuntimeException);
}

TEST(Converters, ComputeBothWaysAndExchangeLimitsOfAFallingSlope)
{
    const SmallMap map("<Integer Name=\"I\"><Value>10</Value><Min>0</Min><Max>100</Max></Integer><Converter Name=\"C\">"
                       "<FormulaTo>50-FROM*2</FormulaTo><FormulaFrom>(50-TO)/2</FormulaFrom><pValue>I</"
                       "pValue><Slope>Decreasing</Slope>"
                       "</Converter>");
    EXPECT_EQ(map.Float("C")->GetValue(), 20.0);
    EXPECT_EQ(map.Float("C")->GetMin(), -25.0);
    EXPECT_EQ(map.Float("C")->GetMax(), 25.0);
    map.Float("C")->SetValue(5);
    EXPECT_EQ(map.Integer("I")->GetValue(), 40);
}

TEST(Converters, AutomaticSlopeIsFoundOnceAndStays)
{
    const SmallMap map(
        "<Float Name=\"K\"><Value>2</Value></Float><Integer "
        "Name=\"I\"><Value>1</Value><Min>-4</Min><Max>8</Max></Integer>"
        "<Converter Name=\"C\"><pVariable Name=\"K\">K</pVariable><FormulaTo>FROM*K</FormulaTo><FormulaFrom>TO/K"
        "</FormulaFrom><pValue>I</pValue><Slope>Automatic</Slope></Converter>");
    EXPECT_EQ(map.Float("C")->GetMin(), -2.0);
    EXPECT_EQ(map.Float("C")->GetMax(), 4.0);
    map.Float("K")->SetValue(-2);
    EXPECT_EQ(map.Float("C")->GetMin(), 2.0);
    EXPECT_EQ(map.Float("C")->GetMax(), -4.0);
    EXPECT_THROW(map.Float("C")->SetValue(0), OutOfRangeException);

    const SmallMap falling(
        "<Integer Name=\"I\"><Value>1</Value><Min>-4</Min><Max>8</Max></Integer><IntConverter Name=\"C\"><FormulaTo>"
        "10-FROM</FormulaTo><FormulaFrom>10-TO</FormulaFrom><pValue>I</pValue><Slope>Automatic</Slope></IntConverter>");
    EXPECT_EQ(falling.Integer("C")->GetMin(), 2);
    EXPECT_EQ(falling.Integer("C")->GetMax(), 14);
}

TEST(Knives, FailWithNodeAndFormula)
{
    const SmallMap map(
        "<Integer Name=\"Z\"><Value>0</Value></Integer><IntSwissKnife Name=\"K\"><pVariable Name=\"V\">Z</pVariable>"
        "<Formula>1/V</Formula></IntSwissKnife><IntSwissKnife Name=\"Broken\"><Formula>1+</Formula></IntSwissKnife>");
    try
    {
        map.Integer("K")->GetValue();
        FAIL() << "nothing thrown";
    }
    catch (const LogicalErrorException& exception)
    {
        EXPECT_STREQ(exception.GetDescription(), "Error while computing the formula '1/V' : division by zero");
    }
    gcstring_vector errors;
    EXPECT_FALSE(map.map->ParseSwissKnifes(&errors));
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_STREQ(errors[0].c_str(), "Error while parsing the formula '1+' : the formula ends too early");
    map.Integer("Z")->SetValue(2);
    EXPECT_EQ(map.Integer("K")->GetValue(), 0);
}

TEST(Booleans, ReadingThatIsNeitherIsALogicalErrorAndWritingMendsIt)
{
    const SmallMap map("<Integer Name=\"I\"><Value>7</Value></Integer><Boolean Name=\"B\"><pValue>I</pValue>"
                       "<OnValue>5</OnValue><OffValue>4</OffValue></Boolean>");
    const CBooleanPtr boolean(map.Node("B"));
    EXPECT_THROW(boolean->GetValue(), LogicalErrorException);
    boolean->SetValue(true);
    EXPECT_EQ(map.Integer("I")->GetValue(), 5);
    boolean->FromString("false");
    EXPECT_FALSE(boolean->GetValue());
    EXPECT_THROW(boolean->FromString("no"), InvalidArgumentException);
}

const std::string colours =
    "<Integer Name=\"No\"><Value>0</Value></Integer><Integer Name=\"I\"><Value>1</Value></Integer>"
    "<Enumeration Name=\"E\"><EnumEntry Name=\"Red\"><Value>1</Value></EnumEntry><EnumEntry Name=\"Green\">"
    "<pIsAvailable>No</pIsAvailable><Value>2</Value></EnumEntry><EnumEntry Name=\"Blue\"><Value>3</Value>"
    "<NumericValue>7.5</NumericValue></EnumEntry><pValue>I</pValue></Enumeration>";

TEST(Enumerations, ListAvailableNamesAndFindAllEntries)
{
    const SmallMap map(colours);
    StringList_t names;
    NodeList_t entries;
    map.Enumeration("E")->GetSymbolics(names);
    map.Enumeration("E")->GetEntries(entries);
    EXPECT_EQ(names.size(), 2u);
    EXPECT_EQ(entries.size(), 3u);
    EXPECT_NE(map.Enumeration("E")->GetEntryByName("Green"), nullptr);
    EXPECT_EQ(map.Enumeration("E")->GetEntry(9), nullptr);
    EXPECT_STREQ(map.Enumeration("E")->GetCurrentEntry()->GetSymbolic().c_str(), "Red");
}

TEST(Enumerations, TakeKnownEntriesOnly)
{
    const SmallMap map(colours);
    const CEnumerationPtr e = map.Enumeration("E");
    EXPECT_THROW(e->FromString("Purple"), InvalidArgumentException);
    EXPECT_THROW(e->FromString("Green"), AccessException);
    EXPECT_THROW(e->SetIntValue(9), InvalidArgumentException);
    e->FromString("Blue");
    EXPECT_EQ(map.Integer("I")->GetValue(), 3);
    map.Integer("I")->SetValue(9);
    EXPECT_EQ(e->GetIntValue(), 9);
    EXPECT_EQ(e->GetCurrentEntry(), nullptr);
    EXPECT_THROW(e->ToString(), InvalidArgumentException);
}

TEST(Enumerations, NumberBehindAPointerSetsTheNearestEntry)
{
    const SmallMap map(colours + "<Float Name=\"F\"><pValue>E</pValue></Float>");
    map.Float("F")->SetValue(6);
    EXPECT_STREQ(map.Value("E")->ToString().c_str(), "Blue");
    map.map->InvalidateNodes();
    EXPECT_EQ(map.Float("F")->GetValue(), 7.5);
}

TEST(Commands, AreDoneWhenTheCommandValueIsGone)
{
    SmallMap map(
        IntReg("R", "0", "<Cachable>NoCache</Cachable>") +
        "<Command Name=\"C\"><pValue>R</pValue><CommandValue>1</CommandValue></Command>");
    const CCommandPtr command(map.Node("C"));
    EXPECT_TRUE(command->IsDone());
    EXPECT_EQ(map.port.reads, 0);
    command->Execute();
    EXPECT_FALSE(command->IsDone());
    EXPECT_STREQ(command->ToString().c_str(), "1");
    map.port.bytes[0] = 0;
    EXPECT_TRUE(command->IsDone());
    EXPECT_THROW(command->FromString("0"), InvalidArgumentException);
}

TEST(ErrorNodes, TellOfAnErrorAfterTheWriteThatStays)
{
    const SmallMap map("<Integer Name=\"A\"><pError>E</pError><Value>1</Value></Integer><Enumeration "
                       "Name=\"E\"><EnumEntry Name=\"Bad\">"
                       "<ToolTip>too hot</ToolTip><Value>1</Value></EnumEntry><Value>1</Value></Enumeration>");
    try
    {
        map.Integer("A")->SetValue(5);
        FAIL() << "nothing thrown";
    }
    catch (const RuntimeException& exception)
    {
        EXPECT_STREQ(exception.GetDescription(), "Bad : too hot");
    }
    EXPECT_EQ(map.Integer("A")->GetValue(), 5);
}

TEST(Categories, AreAsVisibleAsTheirMostVisibleFeature)
{
    const SmallMap map(
        "<Category Name=\"Root\"><DisplayName>All</DisplayName><Visibility>Guru</Visibility><pFeature>A</pFeature>"
        "</Category><Integer Name=\"A\"><Visibility>Expert</Visibility><Value>1</Value></Integer>");
    EXPECT_EQ(map.Node("Root")->GetVisibility(), Expert);
    EXPECT_STREQ(map.Value("Root")->ToString().c_str(), "All");
    EXPECT_TRUE(map.Node("A")->IsFeature());
    EXPECT_FALSE(map.Node("Device")->IsFeature());
}

TEST(ErrorNodes, OfACommandAreAskedWhenItIsDone)
{
    SmallMap map(
        "<Enumeration Name=\"E\"><EnumEntry Name=\"Bad\"><Value>1</Value></EnumEntry><Value>1</Value></Enumeration>"
        "<Command Name=\"Long\"><pError>E</pError><pValue>R</pValue><CommandValue>1</CommandValue></Command>"
        "<Command Name=\"Short\"><pError>E</pError><Value>0</Value><CommandValue>1</CommandValue></Command>" +
        IntReg("R", "0"));
    EXPECT_NO_THROW(CCommandPtr(map.Node("Long"))->Execute());
    EXPECT_FALSE(CCommandPtr(map.Node("Long"))->IsDone(false));
    EXPECT_THROW(CCommandPtr(map.Node("Long"))->IsDone(), RuntimeException);
    EXPECT_THROW(CCommandPtr(map.Node("Short"))->Execute(), RuntimeException);
}

} // namespace
