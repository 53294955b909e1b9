// Structured registers: what their entries take over, and the values of the entries.
#include "tests/unit/genicam/small_map.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::SmallMap;

std::string Constant(const std::string& name, const std::string& value = "1")
{
    return "<Integer Name=\"" + name + "\"><Value>" + value + "</Value></Integer>";
}

// The struct's children in front of its entries, with further ones before the place.
std::string Structure(const std::string& entries, const std::string& common = "", const std::string& mode = "RW")
{
    return "<StructReg Comment=\"c\">" + common + "<Address>8</Address><Length>4</Length><AccessMode>" + mode +
           "</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess>" + entries + "</StructReg>";
}

std::string Entry(const std::string& name, const std::string& children)
{
    return "<StructEntry Name=\"" + name + "\">" + children + "</StructEntry>";
}

TEST(StructEntries, TakeWhatTheyHaveNotThemselves)
{
    const SmallMap map(
        Constant("Inv") + Constant("Other") +
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

TEST(StructEntries, ReplaceConditionsTextsAndModesOneByOne)
{
    const SmallMap map(
        Constant("Yes") + Constant("No", "0") +
        Structure(
            Entry("A", "<Bit>0</Bit>") + Entry("B", "<pIsAvailable>Yes</pIsAvailable><Bit>1</Bit>") +
                Entry(
                    "C", "<DisplayName>of C</DisplayName><ImposedAccessMode>RW</ImposedAccessMode>"
                         "<pIsAvailable>Yes</pIsAvailable><Streamable>No</Streamable><Bit>2</Bit>"),
            "<Description>of all</Description><DisplayName>name</DisplayName><pIsAvailable>No</pIsAvailable>"
            "<pIsLocked>No</pIsLocked><ImposedAccessMode>RO</ImposedAccessMode><Streamable>Yes</Streamable>"));
    EXPECT_EQ(map.Node("A")->GetAccessMode(), NA);
    EXPECT_EQ(map.Node("B")->GetAccessMode(), RO);
    EXPECT_EQ(map.Node("C")->GetAccessMode(), RW);
    EXPECT_STREQ(map.Node("A")->GetDisplayName().c_str(), "name");
    EXPECT_STREQ(map.Node("C")->GetDisplayName().c_str(), "of C");
    EXPECT_STREQ(map.Node("C")->GetDescription().c_str(), "of all");
    EXPECT_TRUE(map.Node("A")->IsStreamable());
    EXPECT_FALSE(map.Node("C")->IsStreamable());
}

TEST(StructEntries, AreUnsignedUnlessTheySayOtherwise)
{
    SmallMap map(
        Structure(Entry("A", "<LSB>0</LSB><MSB>3</MSB>") + Entry("B", "<LSB>4</LSB><MSB>7</MSB><Sign>Signed</Sign>")));
    map.port.bytes[8] = 0xff;
    EXPECT_EQ(map.Integer("A")->GetValue(), 15);
    EXPECT_EQ(map.Integer("B")->GetValue(), -1);
    EXPECT_EQ(map.port.reads, 1) << "one word";
}

TEST(StructEntries, HaveUnitsRepresentationsAndSelectedNodes)
{
    const SmallMap map(
        Constant("F") + Structure(Entry(
                            "A", "<LSB>0</LSB><MSB>7</MSB><Unit>mm</Unit><Representation>HexNumber</Representation>"
                                 "<pSelected>F</pSelected>")));
    EXPECT_STREQ(map.Integer("A")->GetUnit().c_str(), "mm");
    EXPECT_EQ(map.Integer("A")->GetRepresentation(), HexNumber);
    EXPECT_TRUE(CSelectorPtr(map.Node("A"))->IsSelector());
}

TEST(StructEntries, LieAtTheAddressOfTheStruct)
{
    SmallMap map(
        Constant("I", "2") +
        Structure(
            Entry("A", "<Bit>0</Bit>") + Entry("B", "<Bit>1</Bit>"),
            "<pIndex Offset=\"16\">I</pIndex><IntSwissKnife Name=\"K\"><Formula>100</Formula></IntSwissKnife>"));
    for (const char* const name : {"A", "B"})
    {
        EXPECT_EQ(CRegisterPtr(map.Node(name))->GetAddress(), 8 + 32 + 100) << name;
        EXPECT_EQ(CRegisterPtr(map.Node(name))->GetLength(), 4) << name;
    }
}

TEST(StructEntries, BeyondALengthThatANodeTellsAreOutOfRange)
{
    for (const char* const order : {"LittleEndian", "BigEndian"})
    {
        SmallMap map(
            Constant("L", "1") +
            "<StructReg Comment=\"c\"><Address>0</Address><pLength>L</pLength><AccessMode>RW</AccessMode><pPort>Device"
            "</pPort><Endianess>" +
            order + "</Endianess>" + Entry("A", "<Bit>31</Bit>") + Entry("B", "<Bit>7</Bit>") + "</StructReg>");
        EXPECT_THROW(map.Integer("A")->GetValue(), OutOfRangeException) << order;
        EXPECT_THROW(map.Integer("A")->SetValue(1), OutOfRangeException) << order;
        EXPECT_EQ(map.port.writes, 0) << order;
        map.Integer("B")->SetValue(1);
        EXPECT_EQ(map.Integer("B")->GetValue(), 1) << order;
        map.Integer("L")->SetValue(4);
        map.Integer("A")->SetValue(1);
        EXPECT_EQ(map.Integer("A")->GetValue(), 1) << order;
    }
}

} // namespace
