// The lists of linked nodes, and selectors.
#include "tests/unit/genicam/small_map.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::IntReg;
using koro::test::SmallMap;

std::string Joined(std::vector<std::string> names)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : " ") + name;
    return text;
}

std::vector<std::string> Names(const SmallMap& map, const char* node, ELinkType type)
{
    NodeList_t nodes;
    map.Node(node)->GetChildren(nodes, type);
    std::vector<std::string> names;
    for (const INode* const child : nodes)
        names.push_back(child->GetName().c_str());
    return names;
}

// In the order of the list.
std::string Direct(const SmallMap& map, const char* node, ELinkType type)
{
    return Joined(Names(map, node, type));
}

std::string Sorted(const SmallMap& map, const char* node, ELinkType type)
{
    std::vector<std::string> names = Names(map, node, type);
    std::sort(names.begin(), names.end());
    return Joined(names);
}

std::string Constant(const std::string& name, const std::string& after = "")
{
    return "<Integer Name=\"" + name + "\"><Value>1</Value>" + after + "</Integer>";
}

const std::string everything =
    "<Category Name=\"Root\"><pFeature>A</pFeature><pFeature>C</pFeature></Category>"
    "<Integer "
    "Name=\"A\"><pIsImplemented>Condition</pIsImplemented><pBlockPolling>Block</pBlockPolling><pError>Error</pError>"
    "<pAlias>Alias</pAlias><pCastAlias>Alias</pCastAlias><pInvalidator>Invalidator</pInvalidator><pValue>R</"
    "pValue><pValueCopy>Copy</pValueCopy>"
    "<Min>0</Min><pMax>Max</pMax></Integer>" +
    Constant("Condition") + Constant("Block") + Constant("Alias") + Constant("Invalidator") + Constant("Copy") +
    Constant("Max") + Constant("Base") + Constant("Index") +
    IntReg("R", "0</Address><pAddress>Base</pAddress><pIndex>Index</pIndex><Address>0") +
    "<Enumeration Name=\"Error\"><EnumEntry Name=\"None\"><Value>0</Value></EnumEntry><EnumEntry "
    "Name=\"Bad\"><Value>1</Value></EnumEntry>"
    "<pValue>R</pValue></Enumeration>"
    "<IntConverter Name=\"C\"><pVariable Name=\"V\">Base</pVariable><Constant "
    "Name=\"K\">3</Constant><FormulaTo>FROM*K*V</FormulaTo>"
    "<FormulaFrom>TO/K/V</FormulaFrom><pValue>A</pValue><Slope>Increasing</Slope></IntConverter>"
    "<IntSwissKnife Name=\"Knife\"><pVariable Name=\"V\">Base</pVariable><Constant "
    "Name=\"K\">3</Constant><Formula>V*K</Formula></IntSwissKnife>"
    "<Integer Name=\"Chosen\"><pIndex>Index</pIndex><pValueIndexed "
    "Index=\"1\">Copy</pValueIndexed><pValueDefault>Max</pValueDefault></Integer>";

TEST(Links, ReadingChildrenAreWhatIsRead)
{
    const SmallMap map(everything);
    EXPECT_EQ(Direct(map, "A", ctReadingChildren), "Condition Block Error R Copy Max");
    EXPECT_EQ(Direct(map, "R", ctReadingChildren), "Base Index Device");
    EXPECT_EQ(Direct(map, "Root", ctReadingChildren), "A C");
    EXPECT_EQ(Direct(map, "Error", ctReadingChildren), "R") << "entries are not read";
    EXPECT_EQ(Sorted(map, "C", ctReadingChildren), "A C_ConvertFrom C_ConvertTo");
    EXPECT_EQ(Sorted(map, "C_ConvertTo", ctReadingChildren), "Base _C_K") << "the formulas read the variables";
    EXPECT_EQ(Direct(map, "Knife", ctReadingChildren), "Base _Knife_K");
    EXPECT_EQ(Direct(map, "Base", ctReadingChildren), "");
}

TEST(Links, WritingChildrenAreWhatIsWritten)
{
    const SmallMap map(everything);
    EXPECT_EQ(Direct(map, "A", ctWritingChildren), "R Copy");
    EXPECT_EQ(Direct(map, "Chosen", ctWritingChildren), "Copy Max") << "not the index";
    EXPECT_EQ(Sorted(map, "C", ctWritingChildren), "A C_ConvertFrom C_ConvertTo");
    EXPECT_EQ(Direct(map, "R", ctWritingChildren), "");
    EXPECT_EQ(Direct(map, "Knife", ctWritingChildren), "");
}

TEST(Links, InvalidatingChildrenAddEntriesInvalidatorsAndSelectors)
{
    const SmallMap map(everything + Constant("Selector", "<pSelected>Selected</pSelected>") + Constant("Selected"));
    EXPECT_EQ(Direct(map, "A", ctInvalidatingChildren), "Condition Block Error Invalidator R Copy Max");
    EXPECT_EQ(Direct(map, "Error", ctInvalidatingChildren), "EnumEntry_Error_None EnumEntry_Error_Bad R");
    EXPECT_EQ(Direct(map, "Selected", ctInvalidatingChildren), "Selector");
    EXPECT_EQ(Direct(map, "Selector", ctInvalidatingChildren), "");
}

TEST(Links, ParentsAreWhoReadsTheNode)
{
    const SmallMap map(everything + Constant("Selector", "<pSelected>Selected</pSelected>") + Constant("Selected"));
    EXPECT_EQ(Sorted(map, "R", ctParentNodes), "A Error");
    EXPECT_EQ(Sorted(map, "A", ctParentNodes), "C Root");
    EXPECT_EQ(Sorted(map, "EnumEntry_Error_Bad", ctParentNodes), "Error");
    EXPECT_EQ(Sorted(map, "Device", ctParentNodes), "R");
    EXPECT_EQ(Sorted(map, "Invalidator", ctParentNodes), "") << "an invalidator is no child that is read";
    EXPECT_EQ(Sorted(map, "Selected", ctParentNodes), "");
    EXPECT_EQ(Sorted(map, "Alias", ctParentNodes), "");
    NodeList_t parents;
    map.Node("EnumEntry_Error_Bad")->GetParents(parents);
    ASSERT_EQ(parents.size(), 1u);
    EXPECT_EQ(parents[0], map.Node("Error"));
}

TEST(Links, DependingNodesAreAllThatIsReachedUpwards)
{
    const SmallMap map(everything);
    EXPECT_EQ(Sorted(map, "Invalidator", ctDependingNodes), "A C Root");
    EXPECT_EQ(Sorted(map, "R", ctDependingNodes), "A C Error Root");
    EXPECT_EQ(Sorted(map, "Alias", ctDependingNodes), "");
    EXPECT_EQ(Sorted(map, "Device", ctDependingNodes), "A C Error R Root");
}

TEST(Links, CirclesOfInvalidatorsEnd)
{
    const SmallMap map("<Integer Name=\"A\"><pInvalidator>B</pInvalidator><Value>1</Value></Integer>"
                       "<Integer Name=\"B\"><pInvalidator>A</pInvalidator><Value>1</Value></Integer>");
    EXPECT_EQ(Sorted(map, "A", ctDependingNodes), "B");
    EXPECT_EQ(Sorted(map, "B", ctDependingNodes), "A");
    map.Integer("A")->SetValue(5);
    EXPECT_EQ(map.Integer("A")->GetValue(), 5);
}

TEST(Links, TerminalsAreTheEndsOfTheWriting)
{
    const SmallMap map(everything);
    EXPECT_EQ(Sorted(map, "A", ctTerminalNodes), "Copy R");
    EXPECT_EQ(Sorted(map, "C", ctTerminalNodes), "Copy R");
    EXPECT_EQ(Sorted(map, "R", ctTerminalNodes), "R") << "its own terminal";
    EXPECT_EQ(Sorted(map, "Base", ctTerminalNodes), "Base");
    for (const char* const none : {"Knife", "Root", "Device"})
        EXPECT_EQ(Sorted(map, none, ctTerminalNodes), "") << none;
}

TEST(Links, ValueChangingChildrenAreValuesAndVariables)
{
    const SmallMap map(everything);
    EXPECT_EQ(Direct(map, "A", ctValueChangingChildren), "R Copy");
    EXPECT_EQ(Direct(map, "Chosen", ctValueChangingChildren), "Copy Max") << "without the index";
    EXPECT_EQ(Direct(map, "Knife", ctValueChangingChildren), "Base") << "without the constants";
    EXPECT_EQ(Sorted(map, "C", ctValueChangingChildren), "A Base");
    EXPECT_EQ(Direct(map, "R", ctValueChangingChildren), "");
}

std::string Selected(const SmallMap& map, const char* node)
{
    FeatureList_t features;
    CSelectorPtr(map.Node(node))->GetSelectedFeatures(features);
    std::vector<std::string> names;
    for (IValue* const feature : features)
        names.push_back(feature->GetNode()->GetName().c_str());
    return Joined(names);
}

std::string Selecting(const SmallMap& map, const char* node)
{
    FeatureList_t features;
    CSelectorPtr(map.Node(node))->GetSelectingFeatures(features);
    std::vector<std::string> names;
    for (IValue* const feature : features)
        names.push_back(feature->GetNode()->GetName().c_str());
    return Joined(names);
}

TEST(Selectors, ListTheirFeaturesInTheOrderOfTheFile)
{
    const SmallMap map(
        Constant("S", "<pSelected>B</pSelected><pSelected>A</pSelected>") + Constant("A") + Constant("B"));
    EXPECT_TRUE(CSelectorPtr(map.Node("S"))->IsSelector());
    EXPECT_FALSE(CSelectorPtr(map.Node("A"))->IsSelector());
    EXPECT_EQ(Selected(map, "S"), "B A");
    EXPECT_EQ(Selecting(map, "A"), "S");
    EXPECT_EQ(Selecting(map, "S"), "");
}

TEST(Selectors, OfSelectorsReachWhatDependsOnTheInnerOne)
{
    const SmallMap map(
        Constant("A", "<pSelected>B</pSelected>") + Constant("B", "<pSelected>V</pSelected>") +
        "<IntSwissKnife Name=\"Place\"><pVariable Name=\"B\">B</pVariable><Formula>B*4</Formula></IntSwissKnife>" +
        IntReg("VReg", "0</Address><pAddress>Place</pAddress><Address>0") +
        "<Integer Name=\"V\"><pValue>VReg</pValue></Integer>"
        "<Category Name=\"Root\"><pFeature>B</pFeature><pFeature>V</pFeature></Category>");
    EXPECT_EQ(Selected(map, "A"), "B Place VReg V") << "categories are not among them";
    EXPECT_EQ(Selected(map, "B"), "V");
    EXPECT_EQ(Selecting(map, "V"), "B A");
    EXPECT_EQ(Selecting(map, "B"), "A");
}

TEST(Selectors, MakeTheirFeaturesDependents)
{
    const SmallMap map(Constant("S", "<pSelected>F</pSelected>") + Constant("F"));
    EXPECT_EQ(Sorted(map, "S", ctDependingNodes), "F");
    EXPECT_EQ(Direct(map, "F", ctInvalidatingChildren), "S");
}

TEST(Selectors, MayBeIntegersEnumerationsAndBooleans)
{
    const SmallMap map(
        Constant("F") + Constant("I", "<pSelected>F</pSelected>") +
        "<Boolean Name=\"B\"><Value>true</Value><pSelected>F</pSelected></Boolean>"
        "<Enumeration Name=\"E\"><EnumEntry "
        "Name=\"X\"><Value>0</Value></EnumEntry><Value>0</Value><pSelected>F</pSelected></Enumeration>");
    EXPECT_EQ(Selecting(map, "F"), "I B E");
}

TEST(Selectors, OfACategorySelectTheCategoryItself)
{
    const SmallMap map(
        Constant("S", "<pSelected>C</pSelected>") + Constant("F") +
        "<Category Name=\"C\"><pFeature>F</pFeature></Category>");
    EXPECT_EQ(Selected(map, "S"), "C");
    EXPECT_EQ(Selecting(map, "C"), "S");
    EXPECT_EQ(Selecting(map, "F"), "");
}

} // namespace
