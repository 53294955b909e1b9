#include "tests/unit/genicam/refusal.h"
#include "tests/unit/genicam/small_map.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::Described;
using koro::test::IntReg;
using koro::test::Refusal;
using koro::test::SmallMap;
using testing::HasSubstr;

std::string Names(const INodeMap& map)
{
    NodeList_t nodes;
    map.GetNodes(nodes);
    std::string names;
    for (INode* const node : nodes)
        names += std::string(names.empty() ? "" : " ") + node->GetName().c_str();
    return names;
}

const std::string integer = "<Integer Name=\"A\"><Value>1</Value></Integer>";

TEST(Loading, NodesStandInTheOrderOfTheirFirstMention)
{
    const SmallMap map(
        "<Category Name=\"Root\"><pFeature>Late</pFeature><pFeature>E</pFeature></Category>"
        "<Integer Name=\"Early\"><Value>1</Value></Integer>"
        "<Enumeration Name=\"E\"><EnumEntry "
        "Name=\"On\"><pIsAvailable>Condition</pIsAvailable><Value>1</Value></EnumEntry>"
        "<Value>1</Value></Enumeration>"
        "<Integer Name=\"Condition\"><Value>1</Value></Integer><Integer Name=\"Late\"><Value>1</Value></Integer>");
    EXPECT_EQ(Names(*map.map), "Root Late E Early EnumEntry_E_On Condition Device");
    EXPECT_EQ(map.map->GetNumNodes(), 7u);
}

TEST(Loading, FormulasMakeNodesOfTheirOwn)
{
    const SmallMap map(
        integer +
        "<IntConverter Name=\"K\"><pVariable Name=\"V\">A</pVariable><Constant Name=\"C\">3</Constant><Expression "
        "Name=\"X\">V*C</Expression><FormulaTo>FROM*X</FormulaTo><FormulaFrom>TO/X</FormulaFrom><pValue>A</pValue>"
        "</IntConverter>" +
        IntReg("R", "0</Address><IntSwissKnife Name=\"N\"><Formula>4</Formula></IntSwissKnife><Address>0"));
    EXPECT_EQ(Names(*map.map), "A K _K_C _K_X K_ConvertTo K_ConvertFrom R _R_N Device");
}

TEST(Loading, NamesAreFoundWithAndWithoutTheirNameSpace)
{
    const SmallMap map("<Integer Name=\"A\" NameSpace=\"Standard\"><Value>1</Value></Integer>");
    EXPECT_NE(map.Node("A"), nullptr);
    EXPECT_EQ(map.Node("Std::A"), map.Node("A"));
    EXPECT_EQ(map.Node("Cust::A"), nullptr);
    EXPECT_EQ(map.Node("B"), nullptr);
    EXPECT_STREQ(map.Node("A")->GetName(true).c_str(), "Std::A");
}

TEST(Loading, DeviceInformationComesFromTheRootElement)
{
    const SmallMap map(integer);
    const CDeviceInfoPtr info(map.map);
    Version_t version;
    info->GetDeviceVersion(version);
    EXPECT_STREQ(info->GetModelName().c_str(), "M");
    EXPECT_EQ(version.SubMinor, 3);
    EXPECT_STREQ(map.map->GetDeviceName().c_str(), "Device");
}

TEST(Loading, WhatIsNoDescriptionIsRefusedWithThePlace)
{
    EXPECT_THAT(Refusal<RuntimeException>("no xml"), HasSubstr("line 1"));
    EXPECT_THAT(Refusal<RuntimeException>("<Other/>"), HasSubstr("unexpected element encountered: 'Other'"));
    EXPECT_THAT(Refusal<RuntimeException>(Described(integer) + "behind"), HasSubstr("Error while parsing XML"));
    EXPECT_THAT(
        Refusal<RuntimeException>(Described("<!-- \n\n --><Integer Name=\"A\"></Integer>")),
        HasSubstr("line 3 and column 23 : 'expected element not encountered: 'Value''"));
    EXPECT_EQ(Refusal<InvalidArgumentException>(""), "The camera description must not be empty");
}

TEST(Loading, DuplicateAndDanglingNamesAreRefused)
{
    EXPECT_THAT(Refusal<RuntimeException>(Described(integer + integer)), HasSubstr("duplicate node 'A'"));
    EXPECT_THAT(
        Refusal<RuntimeException>(Described("<Integer Name=\"A\"><pValue>Gone</pValue></Integer>")),
        HasSubstr("dangling node reference in Node 'A' at line 1 : pValue names 'Gone'"));
}

TEST(Loading, CirclesOfReadLinksAreRefusedWithTheirPath)
{
    EXPECT_THAT(
        Refusal<RuntimeException>(Described(
            "<Integer Name=\"A\"><pValue>B</pValue></Integer><Integer Name=\"B\"><pValue>A</pValue></Integer>")),
        HasSubstr("read cycle detected : A -> B -> A"));
    EXPECT_THAT(
        Refusal<RuntimeException>(Described("<Integer Name=\"A\"><Value>1</Value><pSelected>B</pSelected></Integer>"
                                            "<Integer Name=\"B\"><Value>1</Value><pSelected>A</pSelected></Integer>")),
        HasSubstr("pSelected cycle detected : A -> B -> A"));
}

TEST(Loading, CirclesOfInvalidatorsAreFine)
{
    const SmallMap map("<Integer Name=\"A\"><pInvalidator>B</pInvalidator><Value>1</Value></Integer>"
                       "<Integer Name=\"B\"><pInvalidator>A</pInvalidator><Value>2</Value></Integer>");
    map.Integer("A")->SetValue(5);
    EXPECT_EQ(map.Integer("A")->GetValue(), 5);
}

TEST(Loading, UnusableTargetsAreRefused)
{
    EXPECT_THAT(
        Refusal<RuntimeException>(Described("<Float Name=\"F\"><Value>1</Value></Float><Integer "
                                            "Name=\"A\"><pIsAvailable>F</pIsAvailable><Value>1</Value></Integer>")),
        HasSubstr("pIsAvailable needs an integer, an enumeration or a boolean, 'F' is none"));
}

TEST(Loading, NumbersThatDoNotConvertArePropertyExceptions)
{
    for (const char* number : {"", " 5", "5.0", "abc", "0xFFFFFFFFFFFFFFFF", "9223372036854775808", "-0x10", "0x"})
    {
        const std::string xml = Described("<Integer Name=\"A\"><Value>" + std::string(number) + "</Value></Integer>");
        EXPECT_THAT(Refusal<PropertyException>(xml), HasSubstr("Error in property of type 'Value'")) << number;
    }
}

TEST(Loading, MoreLenientThanTheSchema)
{
    const SmallMap map("<Unknown><Integer Name=\"Inside\"/></Unknown><Integer Name=\"A\" Odd=\"1\"><Max>7</Max><Odd/>"
                       "<ToolTip>late</ToolTip><Value>1</Value></Integer>");
    EXPECT_EQ(map.Integer("A")->GetMax(), 7);
    EXPECT_EQ(map.Node("Inside"), nullptr);
}

// Little endian, with a byte order mark.
std::string Wide(const std::string& text)
{
    std::string wide = "\xff\xfe";
    for (const char letter : text)
        wide += {letter, '\0'};
    return wide;
}

TEST(Loading, PaddingBehindTheRootElementIsTaken)
{
    const std::string zeros(100, '\0');
    const std::string xml = Described(integer);
    for (const std::string& text :
         {xml, xml + "\n", xml + "\n" + zeros, xml + zeros + "\r\n", xml + "<!-- c -->" + zeros, Wide(xml),
          Wide(xml) + zeros, Wide(xml + "\n")})
    {
        EXPECT_EQ(Refusal<RuntimeException>(text), "nothing thrown") << text.size();
    }
    EXPECT_THAT(Refusal<RuntimeException>(xml + zeros + "x"), HasSubstr("Error while parsing XML stream"));
}

TEST(Loading, DepthOfElementsIsBounded)
{
    std::string deep;
    for (int i = 0; i < 1000; ++i)
        deep += "<Group Comment=\"c\">";
    EXPECT_THAT(Refusal<RuntimeException>(Described(deep)), HasSubstr("nested too deep"));
}

TEST(Loading, EntitiesFromOutsideAreRefused)
{
    const std::string xml = "<!DOCTYPE RegisterDescription [<!ENTITY outside SYSTEM \"/etc/passwd\">]>" +
                            Described("<Integer Name=\"A\"><ToolTip>&outside;</ToolTip><Value>1</Value></Integer>");
    EXPECT_THAT(Refusal<RuntimeException>(xml), HasSubstr("Error while parsing XML stream"));
}

TEST(Loading, LongChainsLoadAndAreAnErrorWhenRead)
{
    std::string chain;
    for (int i = 0; i < 20000; ++i)
    {
        const std::string next = "N" + std::to_string(i + 1);
        chain += "<Integer Name=\"N" + std::to_string(i) + "\"><pValue>" + next + "</pValue></Integer>";
    }
    const SmallMap map(chain + "<Integer Name=\"N20000\"><Value>1</Value></Integer>");
    EXPECT_THROW(map.Integer("N0")->GetValue(), RuntimeException);
    EXPECT_EQ(map.Integer("N19900")->GetValue(), 1);
    NodeList_t dependents;
    map.Node("N20000")->GetChildren(dependents, ctDependingNodes);
    EXPECT_EQ(dependents.size(), 20000u);
}

TEST(Loading, ReferenceCountsItsMapAndLoadsOnlyOnce)
{
    CNodeMapRef first;
    EXPECT_THROW(first._GetNode("A"), AccessException);
    first._LoadXMLFromString(Described(integer).c_str());
    EXPECT_THROW(first._LoadXMLFromString(Described(integer).c_str()), RuntimeException);
    {
        const CNodeMapRef second(first);
        EXPECT_EQ(second._Ptr, first._Ptr);
    }
    EXPECT_NE(first._GetNode("A"), nullptr);
}

} // namespace
