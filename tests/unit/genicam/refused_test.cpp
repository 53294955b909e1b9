// What the loading of a description refuses, kind by kind, and what it accepts.
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
using koro::test::Load;
using koro::test::Refusal;
using koro::test::RefusalOf;
using koro::test::SmallMap;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

const std::string integer = "<Integer Name=\"A\"><Value>1</Value></Integer>";

// The text of the RuntimeException that elements raise.
std::string Refused(const std::string& elements)
{
    return Refusal<RuntimeException>(Described(elements));
}

std::string Replaced(std::string text, const std::string& from, const std::string& to)
{
    const size_t place = text.find(from);
    EXPECT_NE(place, std::string::npos) << from;
    return text.replace(place, from.size(), to);
}

TEST(Refused, FilesThatAreMissing)
{
    for (const EContentType_t type : {ContentType_Xml, ContentType_ZippedXml})
    {
        EXPECT_THAT(
            RefusalOf<RuntimeException>([type] { Load(CNodeMapFactory(type, "/no/such/camera.xml")); }),
            StartsWith("Failed to open the file '/no/such/camera.xml'"));
    }
}

TEST(Refused, NothingAtAllByTheConstructor)
{
    const auto refusal = [](auto make) { return RefusalOf<InvalidArgumentException>(make); };
    EXPECT_EQ(refusal([] { CNodeMapFactory(ContentType_Xml, ""); }), "The file name must not be empty");
    EXPECT_EQ(refusal([] { CNodeMapFactory(ContentType_Xml, "x", 0); }), "The camera description must not be empty");
    EXPECT_EQ(
        refusal([] { CNodeMapFactory(ContentType_ZippedXml, nullptr, 5); }), "The camera description must not be NULL");
    EXPECT_EQ(refusal([] { CNodeMapFactory(gcstring("")); }), "The camera description must not be empty");
}

TEST(Refused, AFactoryWithoutDescription)
{
    EXPECT_EQ(
        RefusalOf<LogicalErrorException>([] { Load(CNodeMapFactory()); }), "The factory has no camera description");
}

TEST(Refused, WhatIsNoXml)
{
    EXPECT_EQ(
        Refusal<RuntimeException>("no xml"), "Error while parsing XML stream at line 1 and column 1 : 'syntax error'");
    EXPECT_EQ(
        Refusal<RuntimeException>("<a>\n <b>\n</a>"),
        "Error while parsing XML stream at line 1 and column 1 : 'unexpected element encountered: 'a''");
    EXPECT_EQ(
        Refused("\n\n<Integer Name=\"A\"><Value>1</Integer>"),
        "Error while parsing XML stream at line 3 and column 29 : 'mismatched tag' in node 'A'");
    EXPECT_THAT(Refusal<RuntimeException>(Described(integer) + "behind"), HasSubstr("junk after document element"));
    EXPECT_THAT(
        Refused("<Integer Name=\"A\"><ToolTip>\xff\xfe</ToolTip><Value>1</Value></Integer>"),
        HasSubstr("not well-formed (invalid token)' in node 'A'"));
    EXPECT_THAT(
        Refusal<RuntimeException>("<?xml version=\"1.0\" encoding=\"KLINGON\"?>" + Described(integer)),
        HasSubstr("unknown encoding"));
}

TEST(Refused, WrongNameSpaces)
{
    EXPECT_THAT(
        Refusal<RuntimeException>(Replaced(Described(integer), "Version_1_1", "Version_2_0")),
        HasSubstr("unexpected element encountered: 'RegisterDescription'"));
    EXPECT_THAT(
        Refused("<x:Integer xmlns:x=\"urn:other\" Name=\"A\"><Value>1</Value></x:Integer>"),
        HasSubstr("unexpected element encountered: 'urn:other|Integer'"));
}

TEST(Refused, MissingElementsAndAttributes)
{
    EXPECT_THAT(
        Refused("\n<Integer Name=\"A\"/>"),
        AllOf(HasSubstr("line 2"), HasSubstr("'expected element not encountered: 'Value'' in node 'A'")));
    EXPECT_THAT(
        Refused("<Integer><Value>1</Value></Integer>"), HasSubstr("expected attribute not encountered: 'Name'"));
    EXPECT_THAT(
        Refusal<RuntimeException>(Replaced(Described(integer), "ModelName=\"M\"", "")),
        HasSubstr("expected attribute not encountered: 'ModelName'"));
    EXPECT_THAT(
        Refused(Replaced(IntReg("R", "0"), "<pPort>Device</pPort>", "")),
        HasSubstr("'expected element not encountered: 'pPort'' in node 'R'"));
    EXPECT_THAT(Refused("<Group/>"), HasSubstr("expected attribute not encountered: 'Comment'"));
    EXPECT_THAT(
        Refused("<Enumeration Name=\"E\"><Value>1</Value></Enumeration>"),
        HasSubstr("expected element not encountered: 'EnumEntry'"));
}

TEST(Refused, WordsOutsideTheirList)
{
    EXPECT_THAT(
        Refused(Replaced(IntReg("R", "0"), ">RW<", ">RX<")),
        HasSubstr("'value is not in enumeration: 'RX'' in node 'R'"));
    EXPECT_THAT(
        Refused(Replaced(IntReg("R", "0"), ">RW<", "> RW <")), HasSubstr("value is not in enumeration: ' RW '"));
    EXPECT_THAT(
        Refused("<Boolean Name=\"B\"><Value>True</Value></Boolean>"), HasSubstr("invalid boolean value: 'True'"));
    EXPECT_THAT(
        Refused("<Integer Name=\"A\" NameSpace=\"Mine\"><Value>1</Value></Integer>"),
        HasSubstr("value is not in enumeration: 'Mine'"));
    EXPECT_THAT(
        Refusal<RuntimeException>(Replaced(Described(integer), "\"None\"", "\"XYZ\"")),
        HasSubstr("value is not in enumeration: 'XYZ'"));
}

TEST(Refused, DuplicateNames)
{
    EXPECT_THAT(Refused(integer + "\n" + integer), AllOf(HasSubstr("line 2"), HasSubstr("duplicate node 'A'")));
    EXPECT_THAT(
        Refused("<Enumeration Name=\"E\"><EnumEntry Name=\"X\"><Value>1</Value></EnumEntry>\n<EnumEntry Name=\"X\">"
                "<Value>2</Value></EnumEntry><Value>1</Value></Enumeration>"),
        AllOf(HasSubstr("line 2"), HasSubstr("duplicate node 'EnumEntry_E_X'' in node 'E'")));
}

TEST(Refused, LinksToNothing)
{
    EXPECT_EQ(
        Refused("\n<Integer Name=\"A\"><pValue>Gone</pValue></Integer>"),
        "Error in XML stream : dangling node reference in Node 'A' at line 2 : pValue names 'Gone'");
    EXPECT_THAT(
        Refused(integer + "<Integer Name=\"B\"><pValue> A </pValue></Integer>"),
        HasSubstr("dangling node reference in Node 'B' at line 1 : pValue names ' A '"));
    EXPECT_THAT(Refused(Replaced(IntReg("R", "0"), ">Device<", "><")), HasSubstr("pPort names ''"));
}

TEST(Refused, LinksToNodesOfUnusableType)
{
    EXPECT_EQ(
        Refused("<String Name=\"S\"><Value>x</Value></String>\n<Integer Name=\"A\"><pValue>S</pValue></Integer>"),
        "Node 'A' at line 2 : pValue needs a number, an enumeration or a boolean, 'S' is none");
}

TEST(Refused, CirclesOverWhatIsRead)
{
    const auto one = [](const char* name, const char* link, const char* target) {
        return "<Integer Name=\"" + std::string(name) + "\"><" + link + ">" + target + "</" + link +
               "><Value>1</Value></Integer>\n";
    };
    EXPECT_EQ(
        Refused("<Integer Name=\"A\"><pValue>B</pValue></Integer>\n<Integer Name=\"B\"><pValue>A</pValue></Integer>"),
        "ERROR : read cycle detected : A -> B -> A (Node 'A' at line 1)");
    EXPECT_THAT(
        Refused(one("A", "pIsLocked", "B") + one("B", "pMax", "C") + one("C", "pIsAvailable", "A")),
        HasSubstr("read cycle detected : A -> B -> C -> A"));
    EXPECT_THAT(
        Refused("<Category Name=\"Root\"><pFeature>More</pFeature></Category><Category "
                "Name=\"More\"><pFeature>Root</pFeature></Category>"),
        HasSubstr("read cycle detected : Root -> More -> Root"));
    EXPECT_THAT(Refused(one("A", "pMin", "A")), HasSubstr("read cycle detected : A -> A"));
}

TEST(Refused, CirclesOfSelectors)
{
    EXPECT_EQ(
        Refused("<Integer Name=\"A\"><Value>1</Value><pSelected>B</pSelected></Integer>"
                "<Integer Name=\"B\"><Value>1</Value><pSelected>A</pSelected></Integer>"),
        "ERROR : pSelected cycle detected : A -> B -> A (Node 'A' at line 1)");
}

TEST(Refused, EmptyTextsAndOddNames)
{
    for (const char* const element : {"ToolTip", "Description", "DisplayName"})
    {
        EXPECT_THAT(
            Refused("<Integer Name=\"A\"><" + std::string(element) + "></" + element + "><Value>1</Value></Integer>"),
            HasSubstr("length is less than minimum allowed' in node 'A'"))
            << element;
    }
    EXPECT_THAT(Refused(Replaced(integer, "\"A\"", "\"_A\"")), HasSubstr("Invalid node name '_A'"));
    EXPECT_THAT(Refused(Replaced(integer, "\"A\"", "\"\xc3\xa4\"")), HasSubstr("Invalid node name"));
    EXPECT_THAT(Refused(Replaced(integer, "\"A\"", "\"\"")), HasSubstr("Invalid node name ''"));
}

TEST(Refused, NumbersThatDoNotConvert)
{
    EXPECT_EQ(
        Refusal<PropertyException>(Described("\n<Integer Name=\"A\"><Value>1</Value><Min>one</Min></Integer>")),
        "Error in property of type 'Min' at line 2 in node 'A': cannot convert 'one' to int64_t");
    for (const char* const number : {"", " 1", "1 ", "-0x1", "0xFFFFFFFFFFFFFFFF", "9223372036854775808", "1.0"})
    {
        EXPECT_THAT(
            Refusal<PropertyException>(Described(Replaced(integer, ">1<", ">" + std::string(number) + "<"))),
            HasSubstr("property of type 'Value'"))
            << number;
    }
    EXPECT_THAT(
        Refused("<Float Name=\"F\"><Value>1,5</Value></Float>"), HasSubstr("invalid double value: '1,5'' in node 'F'"));
}

TEST(Refused, BitsThatLieOutsideOrTheWrongWayRound)
{
    const auto masked = [](const char* bits, const char* order) {
        return "\n<MaskedIntReg "
               "Name=\"M\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device"
               "</pPort>" +
               std::string(bits) + "<Endianess>" + order + "</Endianess></MaskedIntReg>";
    };
    EXPECT_EQ(Refused(masked("<Bit>32</Bit>", "LittleEndian")), "Node 'M' at line 2 : a bit lies outside the register");
    EXPECT_EQ(
        Refused(masked("<LSB>4</LSB><MSB>3</MSB>", "LittleEndian")),
        "Node 'M' at line 2 : LSB and MSB stand the wrong way round for its byte order");
    EXPECT_THAT(Refused(masked("<LSB>3</LSB><MSB>4</MSB>", "BigEndian")), HasSubstr("the wrong way round"));
    EXPECT_THAT(Refused(masked("<LSB>-1</LSB><MSB>4</MSB>", "LittleEndian")), HasSubstr("outside the register"));
}

TEST(Refused, BooleansThatCannotTell)
{
    EXPECT_EQ(
        Refused(integer + "<Boolean Name=\"B\"><pValue>A</pValue><OnValue>5</OnValue><OffValue>5</OffValue></Boolean>"),
        "Boolean Node 'B' at line 1 has identical on and off value");
}

TEST(Refused, EntriesOutsideOfEnumerations)
{
    const std::string entry = "<EnumEntry Name=\"X\"><Value>1</Value></EnumEntry>";
    EXPECT_THAT(Refused(entry), HasSubstr("ignored in schema v1.0 but forbidden otherwise"));
    EXPECT_EQ(Refusal<RuntimeException>(Replaced(Described(entry), "Version_1_1", "Version_1_0")), "nothing thrown");
}

TEST(Refused, WhatIsSaidToBeZippedAndIsNot)
{
    const std::string xml = Described(integer);
    EXPECT_THAT(
        RefusalOf<RuntimeException>([&] { Load(CNodeMapFactory(ContentType_ZippedXml, xml.data(), xml.size())); }),
        StartsWith("Invalid zip"));
}

TEST(Accepted, OddButHarmlessDescriptions)
{
    const std::string xml = Described(integer);
    const std::string bad[] = {
        "\xef\xbb\xbf" + xml,
        "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + Described("<!-- \xe4 -->" + integer),
        xml + "<!-- behind --><?pi?>",
        Described(""),
        Replaced(xml, "SchemaMinorVersion=\"1\"", "SchemaMinorVersion=\"0\""),
        Replaced(xml, "SchemaMajorVersion=\"1\"", "SchemaMajorVersion=\"2\""),
        Replaced(Described("<String Name=\"S\"><Streamable>Yes</Streamable><Value>x</Value></String>"), "1_1", "1_0"),
        Described(Replaced(integer, "\"A\"", "\"1.a-b c\"")),
        Described("<IntSwissKnife Name=\"K\"><Formula>broken(</Formula></IntSwissKnife>"),
        Described(Replaced(integer, "</Value>", "</Value><Inc>0</Inc>")),
        Described("<Enumeration Name=\"E\"><EnumEntry Name=\"X\"><Value>1</Value></EnumEntry><EnumEntry "
                  "Name=\"Y\"><Value>1</Value></EnumEntry><Value>1</Value></Enumeration>"),
        Described("<Extension><Integer Name=\"A\"/><x:y xmlns:x=\"urn:other\">text</x:y></Extension>" + integer),
    };
    for (const std::string& description : bad)
    {
        EXPECT_EQ(Refusal<RuntimeException>(description), "nothing thrown") << description;
    }
}

TEST(Accepted, TextsInAnyXmlForm)
{
    const SmallMap map("<Integer Name=\"A\"><ToolTip> a<![CDATA[<b>]]>&amp;<!-- c -->c\r\n </ToolTip><Value>"
                       "<!-- 1 -->1<![CDATA[2]]></Value></Integer>");
    EXPECT_EQ(map.Integer("A")->GetValue(), 12);
    EXPECT_STREQ(map.Node("A")->GetToolTip().c_str(), " a<b>&c\n ");
}

TEST(Accepted, NumbersInAllTheirForms)
{
    const std::pair<const char*, int64_t> numbers[] = {{"+5", 5},    {"-5", -5},   {"010", 10},
                                                       {"0x10", 16}, {"0X1f", 31}, {"0x7FFFFFFFFFFFFFFF", INT64_MAX}};
    for (const auto& [text, number] : numbers)
    {
        const SmallMap map("<Integer Name=\"A\"><Value>" + std::string(text) + "</Value></Integer>");
        EXPECT_EQ(map.Integer("A")->GetValue(), number) << text;
    }
    const std::pair<const char*, double> reals[] = {{".5", .5}, {"5.", 5}, {"+2.5", 2.5}, {"0x10", 16}, {"1e3", 1000}};
    for (const auto& [text, number] : reals)
    {
        const SmallMap map("<Float Name=\"F\"><Value>" + std::string(text) + "</Value></Float>");
        EXPECT_EQ(map.Float("F")->GetValue(), number) << text;
    }
}

} // namespace
