// What a description must not say, element by element: each case is whole but for one fault.
#include "tests/unit/genicam/refusal.h"
#include "tests/unit/genicam/small_map.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::Described;
using koro::test::Refusal;
using testing::HasSubstr;

const char* const accepted = "nothing thrown";

std::string Element(const std::string& kind, const std::string& children, const std::string& name = "X")
{
    return "<" + kind + " Name=\"" + name + "\">" + children + "</" + kind + ">";
}

// What the cases below link to.
const std::string neighbours = Element("Integer", "<Value>1</Value>", "I") + Element("Float", "<Value>1</Value>", "F") +
                               Element("String", "<Value>a</Value>", "S") + "<Category Name=\"C\"/>";

std::string RefusalOfNode(const std::string& element)
{
    return Refusal<RuntimeException>(Described(neighbours + element));
}

std::string Joined(const std::vector<std::string>& parts, size_t without = SIZE_MAX)
{
    std::string text;
    for (size_t i = 0; i < parts.size(); ++i)
        text += i == without ? "" : parts[i];
    return text;
}

std::string TagOf(const std::string& child)
{
    return child.substr(1, child.find_first_of(" >") - 1);
}

struct Mandatory
{
    const char* kind;
    std::vector<std::string> children;
};

const std::string place = "<Address>0</Address>";
const std::string length = "<Length>4</Length>";
const std::string mode = "<AccessMode>RW</AccessMode>";
const std::string port = "<pPort>Device</pPort>";
const std::string order = "<Endianess>BigEndian</Endianess>";
const std::string value = "<Value>1</Value>";
const std::string to = "<FormulaTo>FROM</FormulaTo>";
const std::string from = "<FormulaFrom>TO</FormulaFrom>";
const std::string entry = "<EnumEntry Name=\"E\"><Value>0</Value></EnumEntry>";

const Mandatory mandatory[] = {
    {"Integer", {value}},
    {"IntReg", {place, length, mode, port, order}},
    {"MaskedIntReg", {place, length, mode, port, "<Bit>0</Bit>", order}},
    {"Boolean", {"<Value>true</Value>"}},
    {"Command", {value, "<CommandValue>1</CommandValue>"}},
    {"Enumeration", {entry, value}},
    {"Float", {value}},
    {"FloatReg", {place, length, mode, port, order}},
    {"String", {value}},
    {"StringReg", {place, length, mode, port}},
    {"Register", {place, length, mode, port}},
    {"IntSwissKnife", {"<Formula>1</Formula>"}},
    {"SwissKnife", {"<Formula>1</Formula>"}},
    {"IntConverter", {to, from, "<pValue>I</pValue>"}},
    {"Converter", {to, from, "<pValue>I</pValue>"}},
    {"AdvFeatureLock", {place, length, mode, port}},
    {"SmartFeature", {"<FeatureID>a</FeatureID>", place, port}},
};

TEST(MandatoryChildren, EachIsMissedByItsName)
{
    for (const Mandatory& node : mandatory)
    {
        EXPECT_EQ(RefusalOfNode(Element(node.kind, Joined(node.children))), accepted) << node.kind;
        for (size_t i = 0; i < node.children.size(); ++i)
        {
            const std::string tag = TagOf(node.children[i]);
            EXPECT_THAT(
                RefusalOfNode(Element(node.kind, Joined(node.children, i))),
                HasSubstr("'expected element not encountered: '" + tag + "'' in node 'X'"))
                << node.kind;
        }
    }
}

TEST(MandatoryChildren, OfParts)
{
    const std::string inside = place + length + mode + port + order;
    const auto structure = [&](const std::string& children) {
        return RefusalOfNode("<StructReg Comment=\"c\">" + children + "</StructReg>");
    };
    const std::string bit = "<StructEntry Name=\"X\"><Bit>0</Bit></StructEntry>";
    EXPECT_EQ(structure(inside + bit), accepted);
    EXPECT_THAT(structure(inside + "<StructEntry Name=\"X\"/>"), HasSubstr("'Bit'"));
    EXPECT_THAT(structure(inside + "<StructEntry Name=\"X\"><LSB>0</LSB></StructEntry>"), HasSubstr("'MSB'"));
    EXPECT_THAT(structure(place + length + mode + port + bit), HasSubstr("'Endianess'"));
    EXPECT_THAT(RefusalOfNode(Element("Enumeration", "<EnumEntry Name=\"E\"/>" + value)), HasSubstr("'Value'"));
    EXPECT_THAT(
        RefusalOfNode(Element("MaskedIntReg", place + length + mode + port + "<MSB>0</MSB>" + order)),
        HasSubstr("'Bit'"));

    const std::string index = "<pIndex>I</pIndex>";
    const std::string indexed = "<ValueIndexed Index=\"1\">5</ValueIndexed>";
    const std::string otherwise = "<ValueDefault>6</ValueDefault>";
    for (const char* const kind : {"Integer", "Float"})
    {
        EXPECT_EQ(RefusalOfNode(Element(kind, index + indexed + otherwise)), accepted);
        EXPECT_THAT(RefusalOfNode(Element(kind, index + indexed)), HasSubstr("'ValueDefault'"));
        EXPECT_THAT(RefusalOfNode(Element(kind, index + otherwise)), HasSubstr("'ValueIndexed'"));
    }
}

TEST(MandatoryChildren, OldListsOfEntriesAreNone)
{
    EXPECT_THAT(RefusalOfNode(Element("Enumeration", "<pEnumEntry>I</pEnumEntry>" + value)), HasSubstr("'EnumEntry'"));
}

TEST(MandatoryAttributes, EachIsMissedByItsName)
{
    const auto missed = [](const char* name) {
        return HasSubstr(std::string("expected attribute not encountered: '") + name + "'");
    };
    EXPECT_THAT(RefusalOfNode("<Integer><Value>1</Value></Integer>"), missed("Name"));
    EXPECT_THAT(RefusalOfNode("<Group><Node Name=\"X\"/></Group>"), missed("Comment"));
    EXPECT_THAT(
        RefusalOfNode("<StructReg>" + place + length + mode + port + order + "</StructReg>"), missed("Comment"));
    const auto knife = [](const std::string& children) {
        return RefusalOfNode(Element("IntSwissKnife", children + "<Formula>1</Formula>"));
    };
    EXPECT_THAT(knife("<pVariable>I</pVariable>"), missed("Name"));
    EXPECT_THAT(knife("<Constant>1</Constant>"), missed("Name"));
    EXPECT_THAT(knife("<Expression>1</Expression>"), missed("Name"));
    EXPECT_THAT(
        RefusalOfNode(
            Element("Integer", "<pIndex>I</pIndex><ValueIndexed>5</ValueIndexed><ValueDefault>6</ValueDefault>")),
        missed("Index"));
}

std::string Without(std::string text, const std::string& part)
{
    const size_t start = text.find(part);
    return start == std::string::npos ? "no such part" : text.erase(start, part.size());
}

TEST(MandatoryAttributes, OfTheRoot)
{
    const std::string xml = Described("");
    EXPECT_EQ(Refusal<RuntimeException>(xml), accepted);
    for (const std::string attribute :
         {" ModelName=\"M\"", " VendorName=\"V\"", " StandardNameSpace=\"None\"", " SchemaMajorVersion=\"1\"",
          " SchemaMinorVersion=\"1\"", " SchemaSubMinorVersion=\"0\"", " MajorVersion=\"1\"", " MinorVersion=\"2\"",
          " SubMinorVersion=\"3\"", " ProductGuid=\"p\"", " VersionGuid=\"v\""})
    {
        EXPECT_THAT(Refusal<RuntimeException>(Without(xml, attribute)), HasSubstr("expected attribute not encountered"))
            << attribute;
    }
}

TEST(Children, StandOnceUnlessTheyAreAList)
{
    const std::string integers[] = {
        "<ToolTip>a</ToolTip>",
        "<Description>a</Description>",
        "<DisplayName>a</DisplayName>",
        "<Visibility>Guru</Visibility>",
        "<DocuURL>http://a</DocuURL>",
        "<IsDeprecated>No</IsDeprecated>",
        "<EventID>01</EventID>",
        "<pIsImplemented>I</pIsImplemented>",
        "<pIsAvailable>I</pIsAvailable>",
        "<pIsLocked>I</pIsLocked>",
        "<pBlockPolling>I</pBlockPolling>",
        "<ImposedAccessMode>RO</ImposedAccessMode>",
        "<pAlias>I</pAlias>",
        "<pCastAlias>I</pCastAlias>",
        "<Streamable>Yes</Streamable>",
        "<Min>0</Min>",
        "<pMax>I</pMax>",
        "<Inc>1</Inc>",
        "<Unit>m</Unit>",
        "<Representation>Linear</Representation>",
        "<ValidValueSet>1</ValidValueSet>"};
    for (const std::string& child : integers)
    {
        EXPECT_EQ(RefusalOfNode(Element("Integer", value + child)), accepted) << child;
        EXPECT_THAT(
            RefusalOfNode(Element("Integer", value + child + child)), HasSubstr("'" + TagOf(child) + "' stands twice"));
    }
    for (const std::string child : {"<pError>I</pError>", "<pInvalidator>I</pInvalidator>", "<pSelected>I</pSelected>"})
    {
        EXPECT_EQ(RefusalOfNode(Element("Integer", value + child + child)), accepted) << child;
    }
}

TEST(Children, OfOneChoiceDoNotStandTogether)
{
    const auto beside = [](const std::string& first, const std::string& second, const std::string& rest = "") {
        EXPECT_THAT(RefusalOfNode(Element("Integer", first + second + rest)), HasSubstr("beside")) << first << second;
    };
    beside(value, "<pValue>I</pValue>");
    beside(value, "<pIndex>I</pIndex>", "<ValueIndexed Index=\"0\">1</ValueIndexed><ValueDefault>1</ValueDefault>");
    beside("<Min>0</Min>", "<pMin>I</pMin>", value);
    beside("<Max>0</Max>", "<pMax>I</pMax>", value);
    beside("<Inc>1</Inc>", "<pInc>I</pInc>", value);
    EXPECT_THAT(
        RefusalOfNode(Element("Command", value + "<CommandValue>1</CommandValue><pCommandValue>I</pCommandValue>")),
        HasSubstr("beside"));
    EXPECT_THAT(
        RefusalOfNode(Element("Register", place + length + "<pLength>I</pLength>" + mode + port)), HasSubstr("beside"));
    EXPECT_THAT(RefusalOfNode(Element("Port", "<ChunkID>01</ChunkID><pChunkID>S</pChunkID>")), HasSubstr("beside"));
}

TEST(Children, FieldHasNoLengthOfANode)
{
    EXPECT_THAT(
        RefusalOfNode(Element("MaskedIntReg", place + "<pLength>I</pLength>" + mode + port + "<Bit>0</Bit>" + order)),
        HasSubstr("'Length'"));
}

struct Words
{
    const char* kind;
    const char* child;
    std::string rest;
    std::vector<std::string> words;
};

const std::vector<std::string> yesNo = {"Yes", "No"};
const std::string registers = place + length + mode + port;

const Words listed[] = {
    {"Integer", "Visibility", value, {"Beginner", "Expert", "Guru", "Invisible"}},
    {"Integer", "IsDeprecated", value, yesNo},
    {"Integer", "Streamable", value, yesNo},
    {"Integer", "ImposedAccessMode", value, {"RO", "WO", "RW"}},
    {"Integer",
     "Representation",
     value,
     {"Linear", "Logarithmic", "Boolean", "PureNumber", "HexNumber", "IPV4Address", "MACAddress"}},
    {"Float", "Representation", value, {"Linear", "Logarithmic", "PureNumber"}},
    {"Float", "DisplayNotation", value, {"Automatic", "Fixed", "Scientific"}},
    {"Register", "AccessMode", place + length + port, {"RO", "WO", "RW"}},
    {"Register", "Cachable", registers, {"NoCache", "WriteThrough", "WriteAround"}},
    {"IntReg", "Sign", registers + order, {"Signed", "Unsigned"}},
    {"IntReg", "Endianess", registers, {"LittleEndian", "BigEndian"}},
    {"IntConverter", "Slope", to + from + "<pValue>I</pValue>", {"Increasing", "Decreasing", "Varying", "Automatic"}},
    {"Converter", "IsLinear", to + from + "<pValue>I</pValue>", yesNo},
    {"Port", "SwapEndianess", "", yesNo},
    {"Port", "CacheChunkData", "", yesNo},
    {"Boolean", "Value", "", {"true", "false", "1", "0"}},
};

TEST(ListedWords, AreTheOnlyOnesAndHaveNoBlanks)
{
    for (const Words& property : listed)
    {
        const auto refusal = [&](const std::string& word) {
            const std::string tag = property.child;
            return RefusalOfNode(Element(property.kind, property.rest + "<" + tag + ">" + word + "</" + tag + ">"));
        };
        for (const std::string& word : property.words)
        {
            EXPECT_EQ(refusal(word), accepted) << property.child << ' ' << word;
            EXPECT_NE(refusal(" " + word), accepted) << property.child << " with a blank before " << word;
            EXPECT_NE(refusal(word + " "), accepted) << property.child << " with a blank behind " << word;
        }
        EXPECT_NE(refusal("Other"), accepted) << property.child;
    }
    EXPECT_THAT(
        RefusalOfNode(Element("Integer", "<Visibility>expert</Visibility>" + value)),
        HasSubstr("value is not in enumeration: 'expert'"));
    EXPECT_THAT(RefusalOfNode(Element("Boolean", "<Value>True</Value>")), HasSubstr("invalid boolean value: 'True'"));
    for (const char* const word : {"Boolean", "HexNumber", "IPV4Address", "MACAddress"})
    {
        EXPECT_NE(RefusalOfNode(Element("Float", value + "<Representation>" + word + "</Representation>")), accepted)
            << word;
    }
}

TEST(ListedWords, OfAttributes)
{
    EXPECT_THAT(
        RefusalOfNode("<Integer Name=\"X\" NameSpace=\"Own\"><Value>1</Value></Integer>"),
        HasSubstr("value is not in enumeration: 'Own'"));
    EXPECT_THAT(
        RefusalOfNode("<Integer Name=\"X\" MergePriority=\"1\"><Value>1</Value></Integer>"),
        HasSubstr("value is not in enumeration: '1'"));
    const std::string xml = Described("");
    const std::string none = "StandardNameSpace=\"None\"";
    for (const std::string word : {"None", "IIDC", "GEV", "CL", "USB"})
    {
        std::string other = xml;
        EXPECT_EQ(
            Refusal<RuntimeException>(other.replace(xml.find(none), none.size(), "StandardNameSpace=\"" + word + "\"")),
            accepted)
            << word;
    }
    std::string other = xml;
    EXPECT_THAT(
        Refusal<RuntimeException>(other.replace(xml.find(none), none.size(), "StandardNameSpace=\"none\"")),
        HasSubstr("value is not in enumeration: 'none'"));
}

TEST(Texts, OfDocumentationAreNotEmpty)
{
    for (const std::string tag : {"ToolTip", "Description", "DisplayName"})
    {
        const auto with = [&](const std::string& text) {
            return RefusalOfNode(Element("Integer", "<" + tag + ">" + text + "</" + tag + ">" + value));
        };
        EXPECT_THAT(with(""), HasSubstr("length is less than minimum allowed")) << tag;
        EXPECT_EQ(with(" "), accepted) << "one blank is enough";
    }
    EXPECT_EQ(RefusalOfNode(Element("String", "<Value></Value>")), accepted);
    EXPECT_EQ(RefusalOfNode(Element("IntSwissKnife", "<Formula></Formula>")), accepted) << "it fails when it is used";
    EXPECT_EQ(
        RefusalOfNode(Element("Integer", "<DocuURL>no url</DocuURL><EventID>no hex</EventID>" + value)), accepted);
}

TEST(Numbers, OfFloatsAreRefusedWithTheText)
{
    for (const std::string number : {"", " 1", "1 ", "a", "1,5", "inf", "nan", "Infinity", "1e", "--1"})
    {
        EXPECT_THAT(
            RefusalOfNode(Element("Float", "<Value>" + number + "</Value>")),
            HasSubstr("invalid double value: '" + number + "'"));
    }
}

TEST(Names, BeginWithAnAsciiLetterOrDigit)
{
    for (const std::string name : {"_x", "", "\xc3\x84", "a\xc3\xa4"})
        EXPECT_THAT(RefusalOfNode(Element("Node", "", name)), HasSubstr("Invalid node name '" + name + "'"));
    for (const char* const name : {"1", "9a", "A.b", "A-b", "A b", "A_"})
        EXPECT_EQ(RefusalOfNode(Element("Node", "", name)), accepted) << name;
}

TEST(Names, AreThereOnce)
{
    const std::string structure = "<StructReg Comment=\"c\">" + place + length + mode + port + order;
    const std::string bit = "<Bit>0</Bit>";
    EXPECT_THAT(
        RefusalOfNode(structure + Element("StructEntry", bit) + Element("StructEntry", bit) + "</StructReg>"),
        HasSubstr("duplicate node 'X'"));
    EXPECT_THAT(
        RefusalOfNode(Element("Enumeration", entry + entry + value)), HasSubstr("duplicate node 'EnumEntry_X_E'"));
    EXPECT_EQ(
        RefusalOfNode(Element("Enumeration", entry + value) + Element("Enumeration", entry + value, "Y")), accepted)
        << "entries of two enumerations may share a name";
    EXPECT_EQ(
        RefusalOfNode(Element("Enumeration", entry + "<EnumEntry Name=\"F\"><Value>0</Value></EnumEntry>" + value)),
        accepted)
        << "and those of one a number";
}

TEST(Fields, LieInsideOfTheirRegisterTheRightWayRound)
{
    const auto field = [](const std::string& bytes, const std::string& bits, const std::string& endianess) {
        return RefusalOfNode(Element(
            "MaskedIntReg", place + "<Length>" + bytes + "</Length>" + mode + port + bits + "<Endianess>" + endianess +
                                "</Endianess>"));
    };
    const auto range = [](int lsb, int msb) {
        return "<LSB>" + std::to_string(lsb) + "</LSB><MSB>" + std::to_string(msb) + "</MSB>";
    };
    EXPECT_EQ(field("2", range(0, 15), "LittleEndian"), accepted);
    EXPECT_EQ(field("2", range(15, 0), "BigEndian"), accepted);
    EXPECT_THAT(field("2", range(0, 16), "LittleEndian"), HasSubstr("Node 'X' at line 1 : a bit lies outside"));
    EXPECT_THAT(field("2", range(16, 0), "BigEndian"), HasSubstr("a bit lies outside"));
    EXPECT_THAT(field("1", "<Bit>8</Bit>", "BigEndian"), HasSubstr("a bit lies outside"));
    EXPECT_THAT(field("8", "<Bit>64</Bit>", "BigEndian"), HasSubstr("a bit lies outside"));
    EXPECT_THAT(field("4", "<Bit>-1</Bit>", "BigEndian"), HasSubstr("a bit lies outside"));
    EXPECT_THAT(field("4", range(5, 4), "LittleEndian"), HasSubstr("the wrong way round"));
    EXPECT_THAT(field("4", range(4, 5), "BigEndian"), HasSubstr("the wrong way round"));
}

TEST(Booleans, NeedTwoValues)
{
    for (const std::string same :
         {"<OnValue>0</OnValue>", "<OffValue>1</OffValue>", "<OnValue>7</OnValue><OffValue>7</OffValue>"})
    {
        EXPECT_THAT(
            RefusalOfNode(Element("Boolean", "<pValue>I</pValue>" + same)), HasSubstr("identical on and off value"));
    }
}

TEST(Extensions, HoldElementsOnly)
{
    const std::string text = "<Extension><Own>text</Own>text</Extension>";
    EXPECT_THAT(RefusalOfNode(text), HasSubstr("unexpected characters encountered: 'text'"));
    EXPECT_THAT(RefusalOfNode(Element("Integer", text + value)), HasSubstr("unexpected characters"));
    EXPECT_EQ(RefusalOfNode("<Extension> <Own>text</Own>\n</Extension>"), accepted);
}

} // namespace
