// Descriptions that mean harm, or know no better: large, deep, circular, cut off, lying.
#include "tests/unit/genicam/elements.h"
#include "tests/unit/genicam/refusal.h"
#include "tests/unit/genicam/small_map.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::Described;
using koro::test::Integer;
using koro::test::IntReg;
using koro::test::Knife;
using koro::test::Numbered;
using koro::test::Refusal;
using koro::test::RefusalOf;
using koro::test::Repeated;
using koro::test::SmallMap;
using testing::HasSubstr;

TEST(HostileDescription, AHundredThousandNodesAreFine)
{
    const SmallMap map(Numbered(100000, "<Integer Name=\"N", "\"><Value>7</Value></Integer>"));
    EXPECT_EQ(map.map->GetNumNodes(), 100001u);
    EXPECT_EQ(map.Integer("N99999")->GetValue(), 7);
}

TEST(HostileDescription, MoreThanAMillionNodesAreRefused)
{
    EXPECT_THAT(
        Refusal<RuntimeException>(
            Described("<Category Name=\"Root\">" + Numbered(1100000, "<pFeature>", "</pFeature>") + "</Category>")),
        HasSubstr("more nodes than this runtime takes' in node 'Root'"));
}

TEST(HostileDescription, LongNamesAreNamesAndAreCutInMessages)
{
    const std::string name(1u << 20, 'n');
    const SmallMap map(Integer(name) + Integer("A", "<pValue>" + name + "</pValue>"));
    EXPECT_EQ(map.Integer("A")->GetValue(), 1);
    EXPECT_EQ(map.Node(name.c_str())->GetName().size(), name.size());
    for (const std::string& elements :
         {Integer(name) + Integer(name), Integer("A", "<pValue>" + name + "</pValue>"),
          Integer(name, "<pValue>" + name + "</pValue>"), Integer("_" + name),
          Integer(name, "<Broken>") + Integer(name),
          "<Boolean Name=\"" + name + "\"><Value>" + name + "</Value></Boolean>"})
    {
        const std::string refusal = Refusal<RuntimeException>(Described(elements));
        EXPECT_THAT(refusal, HasSubstr("nnn"));
        EXPECT_LE(refusal.size(), 2047u);
    }
}

TEST(HostileDescription, CirclesOfInvalidatorsAndAliasesAreFine)
{
    std::string ring;
    for (int i = 0; i < 1000; ++i)
    {
        const std::string next = "N" + std::to_string((i + 1) % 1000);
        ring += Integer(
            "N" + std::to_string(i), "<pAlias>" + next + "</pAlias><pCastAlias>" + next +
                                         "</pCastAlias><pInvalidator>" + next + "</pInvalidator><Value>1</Value>");
    }
    const SmallMap map(ring);
    map.Integer("N0")->SetValue(5);
    EXPECT_EQ(map.Integer("N0")->GetValue(), 5);
    map.Node("N500")->InvalidateNode();
    NodeList_t depending;
    map.Node("N0")->GetChildren(depending, ctDependingNodes);
    EXPECT_EQ(depending.size(), 999u);
    INode* node = map.Node("N0");
    for (int i = 0; i < 2000; ++i)
        node = node->GetAlias();
    EXPECT_EQ(node, map.Node("N0"));
}

TEST(HostileDescription, ALongCircleIsToldByItsBeginning)
{
    std::string ring;
    for (int i = 0; i < 100000; ++i)
        ring += Integer("N" + std::to_string(i), "<pValue>N" + std::to_string((i + 1) % 100000) + "</pValue>");
    EXPECT_THAT(
        Refusal<RuntimeException>(Described(ring)), HasSubstr("read cycle detected : N0 -> N1 -> N2 -> N3 -> "));
}

TEST(HostileDescription, EntitiesMayNotExplode)
{
    const auto laughs = [](const std::string& entities, const std::string& use) {
        return "<!DOCTYPE RegisterDescription [" + entities + "]>" +
               Described(Integer("A", "<ToolTip>" + use + "</ToolTip><Value>1</Value>"));
    };
    std::string billion = "<!ENTITY e0 \"ha\">";
    for (int i = 1; i < 30; ++i)
    {
        const std::string below = "&e" + std::to_string(i - 1) + ";";
        billion += "<!ENTITY e" + std::to_string(i) + " \"" + Repeated(below, 10) + "\">";
    }
    EXPECT_THAT(Refusal<RuntimeException>(laughs(billion, "&e29;")), HasSubstr("amplification"));
    const std::string large = "<!ENTITY e \"" + std::string(1u << 20, 'x') + "\">";
    EXPECT_THAT(Refusal<RuntimeException>(laughs(large, Repeated("&e;", 100))), HasSubstr("amplification"));
    EXPECT_THAT(
        Refusal<RuntimeException>(laughs(Numbered(1001, "<!ENTITY e", " \"x\">"), "&e0;")),
        HasSubstr("too many entities are declared"));
    EXPECT_THAT(
        Refusal<RuntimeException>(laughs("<!ENTITY a \"&b;\"><!ENTITY b \"&a;\">", "&a;")), HasSubstr("recursive"));
    EXPECT_EQ(Refusal<RuntimeException>(laughs("<!ENTITY e \"fine\">", "&e;")), "nothing thrown");
}

TEST(HostileDescription, EntitiesInsideEachOtherAreBounded)
{
    std::string chain = "<!ENTITY e0 \"x\">";
    for (int i = 1; i < 1000; ++i)
        chain += "<!ENTITY e" + std::to_string(i) + " \"&e" + std::to_string(i - 1) + ";\">";
    for (const char* const use : {"<ToolTip>&e999;</ToolTip><Value>1</Value>", "<Value Odd=\"&e999;\">1</Value>"})
    {
        const std::string xml = "<!DOCTYPE RegisterDescription [" + chain + "]>" + Described(Integer("A", use));
        EXPECT_EQ(Refusal<RuntimeException>(xml), "nothing thrown");
    }
}

TEST(HostileDescription, NothingIsFetchedFromOutside)
{
    const char* const doctypes[] = {
        "<!DOCTYPE r [<!ENTITY e SYSTEM \"file:///etc/passwd\">]>",
        "<!DOCTYPE r [<!ENTITY e PUBLIC \"x\" \"http://localhost/\">]>"};
    for (const char* const doctype : doctypes)
    {
        const std::string xml = doctype + Described(Integer("A", "<ToolTip>&e;</ToolTip><Value>1</Value>"));
        EXPECT_THAT(Refusal<RuntimeException>(xml), HasSubstr("error in processing external entity reference"));
    }
    // These are not read either, and without them nothing is missing.
    EXPECT_EQ(
        Refusal<RuntimeException>("<!DOCTYPE r SYSTEM \"/etc/passwd\">" + Described(Integer("A"))), "nothing thrown");
    EXPECT_EQ(
        Refusal<RuntimeException>("<!DOCTYPE r [<!ENTITY % p SYSTEM \"/etc/passwd\"> %p;]>" + Described(Integer("A"))),
        "nothing thrown");
}

TEST(HostileDescription, DepthIsBoundedAlsoInsideWhatIsLeftOut)
{
    EXPECT_THAT(
        Refusal<RuntimeException>(Described(Repeated("<Group Comment=\"c\">", 100000))),
        HasSubstr("elements are nested too deep"));
    EXPECT_THAT(
        Refusal<RuntimeException>(Described(Integer("A", "<Extension>" + Repeated("<x>", 100000)))),
        HasSubstr("elements are nested too deep' in node 'A'"));
}

// Of UTF-16 every second byte is zero.
std::string Wide(const std::string& text, bool big)
{
    std::string wide = big ? "\xfe\xff" : "\xff\xfe";
    for (const char letter : text)
    {
        wide += big ? '\0' : letter;
        wide += big ? letter : '\0';
    }
    return wide;
}

TEST(HostileDescription, OtherEncodingsLoadAndWrongOnesAreRefused)
{
    const std::string xml = Described(Integer("A", "<ToolTip>\xc3\xa4</ToolTip><Value>1</Value>"));
    const std::string plain = Described(Integer("A"));
    for (const bool big : {false, true})
    {
        const std::string wide = Wide(plain, big);
        for (const size_t padding : {0u, 1u, 2u, 3u, 500u})
        {
            EXPECT_EQ(Refusal<RuntimeException>(wide + std::string(padding, '\0')), "nothing thrown")
                << big << " " << padding;
        }
        EXPECT_THAT(
            Refusal<RuntimeException>(wide.substr(0, wide.size() - 1)), HasSubstr("Error while parsing XML stream"));
        EXPECT_THAT(
            Refusal<RuntimeException>("<?xml version='1.0' encoding='UTF-8'?>" + wide),
            HasSubstr("Error while parsing XML stream"));
    }
    EXPECT_THAT(Refusal<RuntimeException>(Wide(plain, true).substr(1)), HasSubstr("Error while parsing XML stream"));
    EXPECT_EQ(Refusal<RuntimeException>(xml), "nothing thrown");
    for (const char* const encoding : {"UTF-16", "US-ASCII", "KLINGON"})
    {
        EXPECT_THAT(
            Refusal<RuntimeException>("<?xml version='1.0' encoding='" + std::string(encoding) + "'?>" + xml),
            HasSubstr("Error while parsing XML stream"))
            << encoding;
    }
    for (const char* const bytes : {"\xff", "\xc3", "\xc0\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xef\xbf\xbf"})
    {
        const std::string text = "<ToolTip>" + std::string(bytes) + "</ToolTip><Value>1</Value>";
        EXPECT_THAT(
            Refusal<RuntimeException>(Described(Integer("A", text))), HasSubstr("(invalid token)' in node 'A'"));
    }
}

TEST(HostileDescription, ZerosInsideAreRefused)
{
    const std::string zero(1, '\0');
    for (const std::string& children :
         {"<ToolTip>a" + zero + "b</ToolTip><Value>1</Value>", "<Value>1" + zero + "</Value>",
          std::string("<ToolTip>&#0;</ToolTip><Value>1</Value>"),
          std::string("<ToolTip>&#x0;</ToolTip><Value>1</Value>"), "<pValue>B" + zero + "</pValue>"})
    {
        EXPECT_THAT(
            Refusal<RuntimeException>(Described(Integer("A", children) + Integer("B"))),
            HasSubstr("Error while parsing XML stream"));
    }
    EXPECT_THAT(Refusal<RuntimeException>(Described(Integer("A" + zero))), HasSubstr("Error while parsing XML stream"));
    EXPECT_THAT(
        Refusal<RuntimeException>(Described(Integer("A")) + zero + "<!-- behind -->"),
        HasSubstr("Error while parsing XML stream"));
    EXPECT_THAT(Refusal<RuntimeException>(std::string(1000, '\0')), HasSubstr("Error while parsing XML stream"));
}

TEST(HostileDescription, EveryTruncationIsRefused)
{
    const std::string xml = Described(
        "<Category Name=\"Root\"><pFeature>A</pFeature></Category>" + Knife("A*2") + IntReg("R", "0x10") +
        "<Enumeration Name=\"E\"><EnumEntry Name=\"X\"><Value>1</Value></EnumEntry><pValue>R</pValue></Enumeration>");
    ASSERT_EQ(Refusal<RuntimeException>(xml), "nothing thrown");
    for (size_t size = 1; size < xml.size(); ++size)
    {
        EXPECT_THAT(Refusal<RuntimeException>(xml.substr(0, size)), HasSubstr("Error while parsing XML stream"))
            << size;
    }
}

TEST(HostileDescription, EveryChangedByteLoadsOrIsRefused)
{
    const std::string xml = Described(Knife("A*2") + IntReg("R", "0x10"));
    for (size_t place = 0; place < xml.size(); ++place)
    {
        for (const char letter : {'\0', '<', '"', '0', '\xff'})
        {
            std::string changed = xml;
            changed[place] = letter;
            EXPECT_NE(
                RefusalOf<GenericException>(
                    [&] { koro::test::Load(CNodeMapFactory(gcstring(changed.data(), changed.size()))); }),
                "");
        }
    }
}

// Where the work may grow with the square of the numbers, these take minutes instead of a moment.
TEST(HostileDescription, ManyOfOneKindAreFine)
{
    const int count = 100000;
    const std::string numbers = Numbered(count, "<Integer Name='N", "'><Value>1</Value></Integer>");
    {
        const SmallMap map(
            "<Category Name='Root'>" + Numbered(count, "<pFeature>N", "</pFeature>") + "</Category>" + numbers);
        NodeList_t children;
        map.Node("Root")->GetChildren(children, ctReadingChildren);
        EXPECT_EQ(children.size(), static_cast<size_t>(count));
    }
    {
        const SmallMap map(
            Numbered(count, "<Boolean Name='N", "'><pInvalidator>I</pInvalidator><Value>true</Value></Boolean>") +
            "<Integer Name='I'><pInvalidator>N0</pInvalidator><Value>1</Value></Integer>");
        EXPECT_TRUE(CBooleanPtr(map.Node("N7"))->GetValue());
    }
    const std::string rom = "<ConfRom Name='" + std::string(1u << 20, 'n') +
                            "'><Address>0</Address><Length>4</Length><pPort>Device</pPort>" +
                            Numbered(count, "<TextDesc Name='N", "'>1</TextDesc>") + "</ConfRom>";
    EXPECT_EQ(Refusal<RuntimeException>(Described(rom)), "nothing thrown");
    const std::string place = "'><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
                              "<Endianess>BigEndian</Endianess></IntReg>";
    const SmallMap map(Numbered(count, "<IntReg Name='N", place));
    for (int i = 0; i < count; ++i)
        EXPECT_EQ(map.Integer(("N" + std::to_string(i)).c_str())->GetValue(), 0);
    map.Integer("N0")->SetValue(5);
    EXPECT_EQ(map.Integer("N99999")->GetValue(), 5);
}

// As the table of names computes it.
uint32_t Hashed(uint32_t hash, const std::string& name)
{
    for (const char letter : name)
        hash = (hash ^ static_cast<unsigned char>(letter)) * 16777619u;
    return hash;
}

// Two parts of a name that lead from one hash to the same next one.
std::pair<std::string, std::string> Colliding(uint32_t& hash)
{
    std::unordered_map<uint32_t, std::string> known;
    for (uint64_t number = 1;; ++number)
    {
        const std::string part = std::to_string(number * 11400714819323198485u);
        const auto [place, isNew] = known.try_emplace(Hashed(hash, part), part);
        if (isNew) continue;
        hash = place->first;
        return {place->second, part};
    }
}

TEST(HostileDescription, NamesThatAreMeantToCollideAreRefused)
{
    std::vector<std::string> names = {"n"};
    uint32_t hash = Hashed(2166136261u, "n");
    while (names.size() < 2048)
    {
        const auto [one, other] = Colliding(hash);
        const size_t count = names.size();
        for (size_t i = 0; i < count; ++i)
        {
            names.push_back(names[i] + other);
            names[i] += one;
        }
    }
    std::string elements;
    for (const std::string& name : names)
        elements += Integer(name);
    EXPECT_THAT(Refusal<RuntimeException>(Described(elements)), HasSubstr("too many names are alike"));
}

TEST(HostileDescription, WhatIsCopiedIntoEachEntryIsBounded)
{
    const std::string shared = Integer("A") +
                               "<StructReg Comment=\"c\"><Address>0</Address><Length>4</Length>"
                               "<AccessMode>RW</AccessMode><pPort>Device</pPort>" +
                               Repeated("<pInvalidator>A</pInvalidator>", 4200) + "<Endianess>BigEndian</Endianess>";
    const std::string entries = Numbered(4200, "<StructEntry Name=\"E", "\"><Bit>1</Bit></StructEntry>");
    EXPECT_THAT(
        Refusal<RuntimeException>(Described(shared + entries + "</StructReg>")),
        HasSubstr("more properties than this runtime takes"));
    EXPECT_THAT(
        Refusal<RuntimeException>(Described(
            "<IntSwissKnife Name=\"K\">" + Numbered(4500, "<Expression Name=\"X", "\">1</Expression>") +
            "<Formula>1</Formula></IntSwissKnife>")),
        HasSubstr("more properties than this runtime takes' in node 'K'"));
}

TEST(HostileDescription, WhatSelectorsSelectIsBounded)
{
    // Each of many selectors selects a register that many nodes read.
    const std::string readers = Numbered(6000, "<Integer Name=\"N", "\"><pValue>R</pValue></Integer>");
    const std::string selectors =
        Numbered(6000, "<Integer Name=\"S", "\"><Value>1</Value><pSelected>R</pSelected></Integer>");
    EXPECT_EQ(
        Refusal<RuntimeException>(Described(IntReg("R", "0") + readers + selectors)),
        "Node 'R' at line 1 : more nodes are selected than this runtime follows");
}

} // namespace
