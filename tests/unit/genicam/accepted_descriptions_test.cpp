// What a description may say in more than one way, and the nodes that are made of it.
#include "tests/unit/genicam/refusal.h"
#include "tests/unit/genicam/small_map.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::Described;
using koro::test::IntReg;
using koro::test::Refusal;
using koro::test::SmallMap;
using testing::HasSubstr;

struct Destroyer
{
    void operator()(INodeMap* map) const { CastToIDestroy(map)->Destroy(); }
};
using Map = std::unique_ptr<INodeMap, Destroyer>;

Map MapOf(const std::string& xml)
{
    return Map(CNodeMapFactory(ContentType_Xml, xml.data(), xml.size()).CreateNodeMap());
}

int64_t NumberIn(const std::string& xml)
{
    const Map map = MapOf(xml);
    return CIntegerPtr(map->GetNode("A"))->GetValue();
}

std::string Replaced(std::string text, const std::string& from, const std::string& to)
{
    const size_t start = text.find(from);
    return start == std::string::npos ? "no such part" : text.replace(start, from.size(), to);
}

std::string Names(const INodeMap& map)
{
    NodeList_t nodes;
    map.GetNodes(nodes);
    std::string names;
    for (INode* const node : nodes)
        names += std::string(names.empty() ? "" : " ") + node->GetName().c_str();
    return names;
}

std::string Integer(const std::string& value)
{
    return "<Integer Name=\"A\"><Value>" + value + "</Value></Integer>";
}

const std::string seven = Integer("7");

std::string Letters(const std::string& ascii, bool bigEndian)
{
    std::string wide = bigEndian ? "\xfe\xff" : "\xff\xfe";
    for (const char letter : ascii)
        wide += bigEndian ? std::string{'\0', letter} : std::string{letter, '\0'};
    return wide;
}

TEST(Documents, OfAnyEncodingAreRead)
{
    const std::string xml = Described(seven);
    EXPECT_EQ(NumberIn("\xef\xbb\xbf" + xml), 7) << "a byte order mark";
    EXPECT_EQ(NumberIn(Letters(xml, false)), 7);
    EXPECT_EQ(NumberIn(Letters(xml, true)), 7);
    const Map latin = MapOf(
        "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" +
        Described("<Integer Name=\"A\"><ToolTip>\xe4</ToolTip><Value>7</Value></Integer>"));
    EXPECT_STREQ(latin->GetNode("A")->GetToolTip().c_str(), "\xc3\xa4");
    EXPECT_THAT(
        Refusal<RuntimeException>(Described("<Integer Name=\"A\"><ToolTip>\xe4</ToolTip><Value>7</Value></Integer>")),
        HasSubstr("Error while parsing XML"));
}

TEST(Documents, MayHaveTypesPrefixesAndComments)
{
    const std::string xml = Described(seven);
    EXPECT_EQ(NumberIn("<!DOCTYPE RegisterDescription [<!ENTITY seven \"7\">]>" + Described(Integer("&seven;"))), 7);
    EXPECT_EQ(NumberIn("<?xml version=\"1.0\"?><!-- c --><?pi?>\n" + xml + "<!-- behind -->"), 7);
    std::string prefixed;
    for (const char letter : Replaced(xml, " xmlns=", " xmlns:g="))
    {
        const bool opens = !prefixed.empty() && prefixed.back() == '<';
        const bool closes = prefixed.size() > 1 && prefixed.substr(prefixed.size() - 2) == "</";
        if ((opens && letter != '/') || closes) prefixed += "g:";
        prefixed += letter;
    }
    EXPECT_EQ(NumberIn(prefixed), 7);
    EXPECT_THAT(
        Refusal<RuntimeException>(Described("text" + seven)), HasSubstr("unexpected characters encountered: 'text'"));
}

TEST(Documents, AreKnownByTheNameSpaceWhateverTheSchemaNumbers)
{
    const std::string xml = Described(seven);
    for (const char* const minor : {"0", "1", "2", "99"})
        EXPECT_EQ(
            NumberIn(Replaced(xml, "SchemaMinorVersion=\"1\"", "SchemaMinorVersion=\"" + std::string(minor) + "\"")),
            7);
    EXPECT_EQ(NumberIn(Replaced(xml, "SchemaMajorVersion=\"1\"", "SchemaMajorVersion=\"2\"")), 7);
    EXPECT_EQ(NumberIn(Replaced(xml, "Version_1_1", "Version_1_0")), 7);
    EXPECT_EQ(NumberIn(Replaced(xml, " xmlns=\"http://www.genicam.org/GenApi/Version_1_1\"", "")), 7);
    EXPECT_THAT(
        Refusal<RuntimeException>(Replaced(xml, "Version_1_1", "Version_1_2")), HasSubstr("unexpected element"));
    EXPECT_THAT(
        Refusal<RuntimeException>(Described("<Integer xmlns=\"http://other\" Name=\"A\"><Value>1</Value></Integer>")),
        HasSubstr("unexpected element"));
}

TEST(Documents, OfTheFirstSchemaMayUseElementsOfTheSecondAndLoneEntries)
{
    const std::string lone = "<EnumEntry Name=\"Alone\"><Value>3</Value></EnumEntry>";
    const std::string old = Replaced(
        Described(
            lone + "<String Name=\"S\"><Streamable>Yes</Streamable><Value>a</Value></String>"
                   "<Integer Name=\"I\"><Value>0</Value></Integer><Integer Name=\"A\"><pIndex>I</pIndex>"
                   "<ValueIndexed Index=\"0\">7</ValueIndexed><ValueDefault>1</ValueDefault></Integer>"),
        "Version_1_1", "Version_1_0");
    EXPECT_EQ(NumberIn(old), 7);
    const Map map = MapOf(old);
    EXPECT_STREQ(CValuePtr(map->GetNode("Alone"))->ToString().c_str(), "3");
    NodeList_t parents;
    map->GetNode("Alone")->GetParents(parents);
    EXPECT_TRUE(parents.empty()) << "it belongs to no enumeration";
    EXPECT_THAT(Refusal<RuntimeException>(Described(lone)), HasSubstr("forbidden otherwise"));
}

TEST(Documents, MayLackARootAndNodes)
{
    EXPECT_EQ(MapOf(Replaced(Described(""), "<Port Name=\"Device\"/>", ""))->GetNumNodes(), 0u);
    const SmallMap map("<Category Name=\"Other\"><pFeature>A</pFeature></Category>" + seven);
    EXPECT_FALSE(map.Node("A")->IsFeature());
    const SmallMap integer("<Integer Name=\"Root\"><Value>1</Value></Integer>");
    EXPECT_FALSE(integer.Node("Root")->IsFeature()) << "no category";
}

TEST(Groups, VanishAndTheirNodesStayInPlace)
{
    const SmallMap map("<Node Name=\"First\"/><Group Comment=\"c\"><Node Name=\"Second\"/><Group Comment=\"\"><Node "
                       "Name=\"Third\"/></Group><Group Comment=\"empty\"/></Group><Node Name=\"Fourth\"/>");
    EXPECT_EQ(Names(*map.map), "First Second Third Fourth Device");
}

TEST(Extensions, AreLeftOutWithAllTheyHold)
{
    const SmallMap map(
        "<Extension><Integer Name=\"A\"><Value>1</Value></Integer></Extension><Integer Name=\"A\"><Extension>"
        "<x:Own xmlns:x=\"http://own\" Name=\"A\">any "
        "text<Value>3</Value></x:Own></Extension><Value>7</Value></Integer>");
    EXPECT_EQ(map.Integer("A")->GetValue(), 7);
    EXPECT_EQ(Names(*map.map), "A Device");
    const SmallMap unknown("<Foreign>any text</Foreign>");
    EXPECT_EQ(Names(*unknown.map), "Device");
}

TEST(Texts, JoinWhatStandsBetweenCommentsAndKeepTheirBlanks)
{
    const SmallMap map("<Integer Name=\"A\"><ToolTip> a<!-- c -->b<![CDATA[<c>]]><?pi?>&lt;\n </ToolTip><Value>1<!-- c "
                       "-->2<![CDATA[3]]>"
                       "</Value></Integer>");
    EXPECT_STREQ(map.Node("A")->GetToolTip().c_str(), " ab<c><\n ");
    EXPECT_EQ(map.Integer("A")->GetValue(), 123);
}

TEST(Numbers, OfIntegersHaveTheseForms)
{
    const std::vector<std::pair<const char*, int64_t>> forms = {
        {"7", 7},
        {"+7", 7},
        {"-7", -7},
        {"007", 7},
        {"-0", 0},
        {"0x1F", 31},
        {"0X1f", 31},
        {"0x0", 0},
        {"0x7FFFFFFFFFFFFFFF", INT64_MAX},
        {"-9223372036854775808", INT64_MIN},
        {"9223372036854775807", INT64_MAX}};
    for (const auto& [text, number] : forms)
        EXPECT_EQ(NumberIn(Described(Integer(text))), number) << text;
    for (const std::string text : {"+-7", "0x-1", "1e3", "7.", "0x1G", "1 2"})
        EXPECT_THAT(Refusal<PropertyException>(Described(Integer(text))), HasSubstr("cannot convert '" + text + "'"));
}

TEST(Numbers, OfFloatsHaveTheseForms)
{
    const auto read = [](const std::string& text) {
        return SmallMap("<Float Name=\"F\"><Value>" + text + "</Value></Float>").Float("F")->GetValue();
    };
    const double infinity = std::numeric_limits<double>::infinity();
    const std::vector<std::pair<const char*, double>> forms = {
        {".5", 0.5}, {"5.", 5},    {"+2.5", 2.5},     {"-2.5e-1", -0.25}, {"1E3", 1000},
        {"7", 7},    {"0x1F", 31}, {"INF", infinity}, {"-INF", -infinity}};
    for (const auto& [text, number] : forms)
        EXPECT_EQ(read(text), number) << text;
    EXPECT_TRUE(std::isnan(read("NaN")));
}

TEST(Names, AreQualifiedByTheNameSpace)
{
    const SmallMap map(
        "<Enumeration Name=\"E\" NameSpace=\"Standard\"><EnumEntry Name=\"Own\"><Value>0</Value></EnumEntry>"
        "<EnumEntry Name=\"Std\" NameSpace=\"Standard\"><Value>1</Value></EnumEntry><Value>0</Value>"
        "</Enumeration>");
    EXPECT_STREQ(map.Node("E")->GetName(true).c_str(), "Std::E");
    EXPECT_STREQ(map.Node("EnumEntry_E_Own")->GetName(true).c_str(), "Cust::EnumEntry_E_Own");
    EXPECT_STREQ(map.Node("EnumEntry_E_Std")->GetName(true).c_str(), "Std::EnumEntry_E_Std");
    EXPECT_EQ(map.Node("Cust::EnumEntry_E_Own"), map.Node("EnumEntry_E_Own"));
    EXPECT_EQ(map.Node("Std::EnumEntry_E_Own"), nullptr);
}

TEST(MadeUpNodes, HaveTheDefaultAttributes)
{
    const SmallMap map(
        seven + "<IntConverter Name=\"K\" NameSpace=\"Standard\"><ToolTip>tip</ToolTip><Visibility>Guru</Visibility>"
                "<ImposedAccessMode>RO</ImposedAccessMode><Streamable>Yes</Streamable><Constant Name=\"C\">3</Constant>"
                "<Expression "
                "Name=\"X\">C</Expression><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>A</pValue>"
                "</IntConverter>");
    for (const char* const name : {"_K_C", "_K_X", "K_ConvertTo", "K_ConvertFrom"})
    {
        INode* const node = map.Node(name);
        ASSERT_NE(node, nullptr) << name;
        EXPECT_EQ(node->GetNameSpace(), Custom) << name;
        EXPECT_EQ(node->GetVisibility(), Beginner) << name;
        EXPECT_STREQ(node->GetToolTip().c_str(), "") << name;
        EXPECT_FALSE(node->IsStreamable()) << name;
        EXPECT_FALSE(node->IsFeature()) << name;
        EXPECT_EQ(node->GetPrincipalInterfaceType(), intfIInteger) << name;
    }
    const SmallMap floats(
        "<SwissKnife Name=\"K\"><Constant Name=\"C\">3.5</Constant><Expression Name=\"X\">C</Expression>"
        "<Formula>X</Formula></SwissKnife>");
    EXPECT_EQ(floats.Float("_K_C")->GetValue(), 3.5);
    EXPECT_EQ(floats.Float("_K_X")->GetValue(), 3.5);
}

TEST(MadeUpNodes, StandWhereTheyAreMade)
{
    const std::string registers =
        "<Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><pInvalidator>Inv</pInvalidator>"
        "<Endianess>BigEndian</Endianess>";
    const SmallMap map(
        "<StructReg Comment=\"c\"><pIsAvailable>Common</pIsAvailable><IntSwissKnife Name=\"Inner\"><Formula>4</Formula>"
        "</IntSwissKnife>" +
        registers +
        "<StructEntry Name=\"S\"><Bit>0</Bit></StructEntry><StructEntry "
        "Name=\"T\"><Bit>1</Bit></StructEntry></StructReg>"
        "<IntReg Name=\"R\"><IntSwissKnife Name=\"Inner\"><Formula>8</Formula></IntSwissKnife>" +
        registers + "</IntReg><Node Name=\"Inv\"/><Integer Name=\"Common\"><Value>1</Value></Integer>");
    EXPECT_EQ(Names(*map.map), "Common Inner Device Inv S T R _R_Inner") << "the structure itself is no node";
    EXPECT_EQ(CRegisterPtr(map.Node("T"))->GetAddress(), 4);
    EXPECT_EQ(CRegisterPtr(map.Node("R"))->GetAddress(), 8);
}

// What a knife, a converter or a register of the names has in common with all its kind.
struct Kind
{
    const char* element;
    std::string children;
    EInterfaceType principal;
};

const std::string place = "<Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>";
const std::string ordered = place + "<Endianess>BigEndian</Endianess>";
const std::string formulas = "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>A</pValue>";

const Kind kinds[] = {
    {"Node", "", intfIValue},
    {"Category", "", intfICategory},
    {"Integer", "<Value>1</Value>", intfIInteger},
    {"IntReg", ordered, intfIInteger},
    {"MaskedIntReg", ordered + "<Bit>0</Bit>", intfIInteger},
    {"IntSwissKnife", "<Formula>1</Formula>", intfIInteger},
    {"IntConverter", formulas, intfIInteger},
    {"AdvFeatureLock", place + "<FeatureID>1</FeatureID>", intfIInteger},
    {"SmartFeature", "<FeatureID>a</FeatureID><Address>0</Address><pPort>Device</pPort>", intfIInteger},
    {"Boolean", "<Value>true</Value>", intfIBoolean},
    {"Command", "<Value>0</Value><CommandValue>1</CommandValue>", intfICommand},
    {"Float", "<Value>1</Value>", intfIFloat},
    {"FloatReg", ordered, intfIFloat},
    {"SwissKnife", "<Formula>1</Formula>", intfIFloat},
    {"Converter", formulas, intfIFloat},
    {"String", "<Value>a</Value>", intfIString},
    {"StringReg", place, intfIString},
    {"Register", place, intfIRegister},
    {"Enumeration", "<EnumEntry Name=\"E\"><Value>1</Value></EnumEntry><Value>1</Value>", intfIEnumeration},
    {"Port", "", intfIPort},
};

TEST(Kinds, HaveOnePrincipalInterfaceAndRegistersASecond)
{
    for (const Kind& kind : kinds)
    {
        const std::string element = kind.element;
        const SmallMap map(seven + "<" + element + " Name=\"X\">" + kind.children + "</" + element + ">");
        INode* const node = map.Node("X");
        EXPECT_EQ(node->GetPrincipalInterfaceType(), kind.principal) << element;
        const std::string name = element;
        const bool isRegister =
            name.find("Reg") != std::string::npos || name == "AdvFeatureLock" || name == "SmartFeature";
        EXPECT_EQ(CRegisterPtr(node).IsValid(), isRegister) << element;
        EXPECT_EQ(CIntegerPtr(node).IsValid(), kind.principal == intfIInteger) << element;
        EXPECT_EQ(CFloatPtr(node).IsValid(), kind.principal == intfIFloat) << element;
        EXPECT_EQ(CStringPtr(node).IsValid(), kind.principal == intfIString) << element;
        EXPECT_EQ(CValuePtr(node).IsValid(), kind.principal != intfIPort) << element;
    }
}

TEST(Kinds, TakeTheCommonPart)
{
    for (const Kind& kind : kinds)
    {
        const std::string element = kind.element;
        if (element == "SmartFeature") continue; // has none
        const SmallMap map(
            seven + "<" + element +
            " Name=\"X\" NameSpace=\"Standard\"><ToolTip>t</ToolTip><Description>d</Description><DisplayName>n"
            "</DisplayName><Visibility>Expert</Visibility><DocuURL>http://u</DocuURL><IsDeprecated>Yes</IsDeprecated>"
            "<EventID>AB</EventID><pIsImplemented>Zero</pIsImplemented><pAlias>A</pAlias><pCastAlias>Zero</pCastAlias>"
            "<pInvalidator>A</pInvalidator>" +
            kind.children + "</" + element + "><Integer Name=\"Zero\"><Value>0</Value></Integer>");
        INode* const node = map.Node("X");
        EXPECT_STREQ(node->GetToolTip().c_str(), "t") << element;
        EXPECT_STREQ(node->GetDescription().c_str(), "d") << element;
        EXPECT_STREQ(node->GetDisplayName().c_str(), "n") << element;
        EXPECT_EQ(node->GetVisibility(), Expert) << element;
        EXPECT_STREQ(node->GetDocuURL().c_str(), "http://u") << element;
        EXPECT_TRUE(node->IsDeprecated()) << element;
        EXPECT_STREQ(node->GetEventID().c_str(), "AB") << element;
        EXPECT_EQ(node->GetAccessMode(), NI) << element;
        EXPECT_EQ(node->GetAlias(), map.Node("A")) << element;
        EXPECT_EQ(node->GetCastAlias(), map.Node("Zero")) << element;
        EXPECT_EQ(node->GetNameSpace(), Standard) << element;
        int told = 0;
        Register(node, std::function<void(INode*)>([&](INode*) { ++told; }));
        map.Integer("A")->SetValue(5);
        EXPECT_EQ(told, 1) << element << " depends on its invalidator";
    }
}

TEST(BusKinds, ReadWhatTheyAreAndTakeNothing)
{
    SmallMap map(
        "<AdvFeatureLock Name=\"Lock\">" + place +
        "<FeatureID>0x123</FeatureID><Timeout>10</Timeout></AdvFeatureLock>"
        "<SmartFeature Name=\"Smart\"><FeatureID>some guid</FeatureID><Address>0x20</Address><pPort>Device</pPort>"
        "</SmartFeature>");
    EXPECT_EQ(map.Integer("Lock")->GetValue(), 1);
    EXPECT_THROW(map.Integer("Lock")->SetValue(1), AccessException);
    map.port.bytes = {{0x30, 1}, {0x33, 2}, {0x34, 3}, {0x37, 4}}; // 16 and 20 bytes behind the start
    EXPECT_EQ(map.Integer("Smart")->GetValue(), 0x0300000401000002);
    EXPECT_EQ(CRegisterPtr(map.Node("Smart"))->GetLength(), 24);
    EXPECT_THROW(map.Integer("Smart")->SetValue(1), AccessException);
}

TEST(BusKinds, RomLoadsAndRefusesAPort)
{
    const std::string xml = Described(
        "<ConfRom Name=\"Rom\"><Unit>0</Unit><Address>0x400</Address><Length>64</Length><pPort>Device</pPort><TextDesc "
        "Name=\"Text\">0x81</TextDesc><IntKey Name=\"Key\">0x12</IntKey></ConfRom><TextDesc "
        "Name=\"Far\"><p1212Parser>Rom"
        "</p1212Parser><Key>0x82</Key></TextDesc>");
    const Map map = MapOf(xml);
    EXPECT_EQ(map->GetNode("Rom")->GetPrincipalInterfaceType(), intfIRegister);
    EXPECT_EQ(map->GetNode("Text")->GetPrincipalInterfaceType(), intfIString);
    EXPECT_EQ(map->GetNode("Key")->GetPrincipalInterfaceType(), intfIInteger);
    EXPECT_THROW(CStringPtr(map->GetNode("Far"))->GetValue(), RuntimeException);
    EXPECT_THROW(CIntegerPtr(map->GetNode("Key"))->GetValue(), RuntimeException);
    koro::test::MemoryPort port;
    EXPECT_THROW(map->Connect(&port), RuntimeException);
}

TEST(UnknownOnes, OfAllElementsAreLeftOut)
{
    for (const Kind& kind : kinds)
    {
        const std::string element = kind.element;
        const SmallMap map(
            seven + "<" + element + " Name=\"X\" ExposeStatic=\"Yes\" Own=\"1\"><Own><ToolTip/></Own>" + kind.children +
            "</" + element + ">");
        EXPECT_NE(map.Node("X"), nullptr) << element;
    }
}

} // namespace
