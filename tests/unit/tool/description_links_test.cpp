#include "tools/koro/description_links.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace
{

using koro::tool::DescriptionLinks;
using koro::tool::NodeLinks;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(DescriptionLinks, NodeSaysWhatDecidesAboutIt)
{
    const DescriptionLinks links(
        "<RegisterDescription><Group Comment=\"a\"><Integer Name=\"Width\">"
        "<pIsImplemented>A</pIsImplemented><pIsAvailable> B\n</pIsAvailable><pIsLocked>C</pIsLocked>"
        "<ImposedAccessMode>RO</ImposedAccessMode><pInvalidator>D</pInvalidator><pValue>WidthReg</pValue>"
        "</Integer></Group><IntReg Name=\"WidthReg\"><AccessMode>RW</AccessMode></IntReg></RegisterDescription>");
    const NodeLinks* const width = links.Of("Width");
    ASSERT_NE(width, nullptr);
    EXPECT_EQ(width->element, "Integer");
    EXPECT_THAT(width->implementedBy, ElementsAre("A"));
    EXPECT_THAT(width->availableBy, ElementsAre("B"));
    EXPECT_THAT(width->lockedBy, ElementsAre("C"));
    EXPECT_EQ(width->imposedMode, "RO");
    EXPECT_THAT(width->inputs, ElementsAre("D"));
    EXPECT_THAT(width->values, ElementsAre("WidthReg"));
    EXPECT_EQ(links.Of("WidthReg")->accessMode, "RW");
    EXPECT_THAT(links.ShownBy("WidthReg"), ElementsAre("Width"));
    EXPECT_EQ(links.Of("Height"), nullptr);
}

TEST(DescriptionLinks, ConditionsOfAnEntryAreNotThoseOfItsEnumeration)
{
    const DescriptionLinks links(
        "<RegisterDescription><Enumeration Name=\"Mode\"><EnumEntry Name=\"On\"><pIsAvailable>A</pIsAvailable>"
        "</EnumEntry><pIsLocked>B</pIsLocked></Enumeration></RegisterDescription>");
    EXPECT_THAT(links.Of("Mode")->availableBy, IsEmpty());
    EXPECT_THAT(links.Of("Mode")->lockedBy, ElementsAre("B"));
    EXPECT_EQ(links.Of("On"), nullptr);
}

TEST(DescriptionLinks, VariablesAreInputsAndNoNodes)
{
    const DescriptionLinks links(
        "<RegisterDescription><IntSwissKnife Name=\"Limit\"><pVariable Name=\"X\">Most</pVariable>"
        "<Formula>X</Formula></IntSwissKnife></RegisterDescription>");
    EXPECT_THAT(links.Of("Limit")->inputs, ElementsAre("Most"));
    EXPECT_EQ(links.Of("X"), nullptr);
}

TEST(DescriptionLinks, PartsOfARegisterHaveItsAccess)
{
    const DescriptionLinks links(
        "<RegisterDescription><StructReg Comment=\"s\"><AccessMode>RO</AccessMode><StructEntry Name=\"Low\"/>"
        "<StructEntry Name=\"High\"><AccessMode>RW</AccessMode></StructEntry></StructReg></RegisterDescription>");
    EXPECT_EQ(links.Of("Low")->accessMode, "RO");
    EXPECT_EQ(links.Of("High")->accessMode, "RW");
}

TEST(DescriptionLinks, WhatIsNoXMLEndsTheReading)
{
    EXPECT_EQ(DescriptionLinks("").Of("Width"), nullptr);
    EXPECT_EQ(DescriptionLinks("PK\x03\x04").Of("Width"), nullptr);
    const DescriptionLinks cut("<RegisterDescription><Integer Name=\"Width\"><pIsLocked>A</pIsLocked></Integer><Int");
    EXPECT_THAT(cut.Of("Width")->lockedBy, ElementsAre("A"));
}

// The parser expands entities inside entities by recursion: some 25,000 of them would end the stack.
TEST(DescriptionLinks, EntitiesInsideEachOtherEndTheReading)
{
    std::string entities = "<!ENTITY e0 \"x\">";
    for (int i = 1; i < 25000; ++i)
        entities += "<!ENTITY e" + std::to_string(i) + " \"&e" + std::to_string(i - 1) + ";\">";
    const DescriptionLinks links(
        "<!DOCTYPE RegisterDescription [" + entities +
        "]><RegisterDescription><Integer "
        "Name=\"Width\"><pIsLocked>&e24999;</pIsLocked></Integer></RegisterDescription>");
    EXPECT_EQ(links.Of("Width"), nullptr);
}

} // namespace
