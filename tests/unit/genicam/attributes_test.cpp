// What nodes say about themselves.
#include "tests/unit/genicam/small_map.h"

#include <gtest/gtest.h>
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
