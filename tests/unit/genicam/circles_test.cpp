// Nodes that lead back to themselves, over every kind of link: what is read or selected may not, the rest may.
#include "tests/unit/genicam/refusal.h"
#include "tests/unit/genicam/small_map.h"
#include "tests/unit/genicam/use_of_nodes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::Described;
using koro::test::Refusal;
using koro::test::SmallMap;
using testing::AnyOf;
using testing::HasSubstr;

// An element with NAME for its own name and LINK for the node that it names.
struct Case
{
    const char* name;
    const char* element;
};

std::string Made(const Case& shape, const std::string& name, const std::string& link)
{
    std::string text = shape.element;
    for (const auto& [mark, value] : {std::pair<std::string, std::string>("NAME", name), {"LINK", link}})
    {
        for (size_t place = text.find(mark); place != std::string::npos; place = text.find(mark, place + value.size()))
            text.replace(place, mark.size(), value);
    }
    return text;
}

const Case readLinks[] = {
    {"pIsImplemented", "<Integer Name='NAME'><pIsImplemented>LINK</pIsImplemented><Value>1</Value></Integer>"},
    {"pIsAvailable", "<Integer Name='NAME'><pIsAvailable>LINK</pIsAvailable><Value>1</Value></Integer>"},
    {"pIsLocked", "<Integer Name='NAME'><pIsLocked>LINK</pIsLocked><Value>1</Value></Integer>"},
    {"pBlockPolling", "<Integer Name='NAME'><pBlockPolling>LINK</pBlockPolling><Value>1</Value></Integer>"},
    {"pError", "<Integer Name='NAME'><pError>LINK</pError><Value>1</Value></Integer>"},
    {"pValue", "<Integer Name='NAME'><pValue>LINK</pValue></Integer>"},
    {"pValueCopy", "<Integer Name='NAME'><pValue>R</pValue><pValueCopy>LINK</pValueCopy></Integer>"},
    {"pMin", "<Integer Name='NAME'><Value>1</Value><pMin>LINK</pMin></Integer>"},
    {"pMax", "<Integer Name='NAME'><Value>1</Value><pMax>LINK</pMax></Integer>"},
    {"pInc", "<Integer Name='NAME'><Value>1</Value><pInc>LINK</pInc></Integer>"},
    {"pIndex", "<Integer Name='NAME'><pIndex>LINK</pIndex><ValueIndexed Index='0'>1</ValueIndexed>"
               "<ValueDefault>1</ValueDefault></Integer>"},
    {"pValueIndexed", "<Integer Name='NAME'><pIndex>R</pIndex><pValueIndexed Index='0'>LINK</pValueIndexed>"
                      "<ValueDefault>1</ValueDefault></Integer>"},
    {"pValueDefault", "<Integer Name='NAME'><pIndex>R</pIndex><ValueIndexed Index='0'>1</ValueIndexed>"
                      "<pValueDefault>LINK</pValueDefault></Integer>"},
    {"FloatValue", "<Float Name='NAME'><pValue>LINK</pValue></Float>"},
    {"FloatMax", "<Float Name='NAME'><Value>1</Value><pMax>LINK</pMax></Float>"},
    {"StringValue", "<String Name='NAME'><pValue>LINK</pValue></String>"},
    {"BooleanValue", "<Boolean Name='NAME'><pValue>LINK</pValue></Boolean>"},
    {"EnumerationValue", "<Enumeration Name='NAME'><EnumEntry Name='E'><Value>1</Value></EnumEntry>"
                         "<pValue>LINK</pValue></Enumeration>"},
    {"pVariable", "<IntSwissKnife Name='NAME'><pVariable Name='X'>LINK</pVariable><Formula>X</Formula>"
                  "</IntSwissKnife>"},
    {"VariableWithSuffix", "<SwissKnife Name='NAME'><pVariable Name='X.Max'>LINK</pVariable><Formula>X.Max</Formula>"
                           "</SwissKnife>"},
    {"ConverterValue", "<Converter Name='NAME'><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom>"
                       "<pValue>LINK</pValue></Converter>"},
    {"pAddress", "<IntReg Name='NAME'><pAddress>LINK</pAddress><Length>4</Length><AccessMode>RW</AccessMode>"
                 "<pPort>Device</pPort><Endianess>BigEndian</Endianess></IntReg>"},
    {"RegisterIndex", "<IntReg Name='NAME'><pIndex>LINK</pIndex><Length>4</Length><AccessMode>RW</AccessMode>"
                      "<pPort>Device</pPort><Endianess>BigEndian</Endianess></IntReg>"},
    {"pOffset", "<IntReg Name='NAME'><pIndex pOffset='LINK'>R</pIndex><Length>4</Length><AccessMode>RW</AccessMode>"
                "<pPort>Device</pPort><Endianess>BigEndian</Endianess></IntReg>"},
    {"pLength", "<IntReg Name='NAME'><Address>0</Address><pLength>LINK</pLength><AccessMode>RW</AccessMode>"
                "<pPort>Device</pPort><Endianess>BigEndian</Endianess></IntReg>"},
    {"StructEntry", "<StructReg Comment='c'><pAddress>LINK</pAddress><Length>4</Length><AccessMode>RW</AccessMode>"
                    "<pPort>Device</pPort><Endianess>BigEndian</Endianess><StructEntry Name='NAME'><Bit>1</Bit>"
                    "</StructEntry></StructReg>"},
    {"pFeature", "<Category Name='NAME'><pFeature>LINK</pFeature></Category>"},
};

class ReadCircle : public testing::TestWithParam<Case>
{};

TEST_P(ReadCircle, IsRefusedWithItsPath)
{
    const std::string more = "<Integer Name='R'><Value>0</Value></Integer>";
    const Case& shape = GetParam();
    EXPECT_THAT(
        Refusal<RuntimeException>(Described(more + Made(shape, "A", "B") + Made(shape, "B", "A"))),
        AnyOf(HasSubstr("cycle detected : A -> B -> A"), HasSubstr("cycle detected : B -> A -> B")));
    EXPECT_THAT(
        Refusal<RuntimeException>(Described(more + Made(shape, "A", "A"))), HasSubstr("cycle detected : A -> A"));
}

INSTANTIATE_TEST_SUITE_P(Links, ReadCircle, testing::ValuesIn(readLinks), [](const testing::TestParamInfo<Case>& link) {
    return std::string(link.param.name);
});

TEST(Circle, OverDifferentReadLinksIsRefused)
{
    EXPECT_THAT(
        Refusal<RuntimeException>(Described(
            "<Integer Name='A'><Value>1</Value><pMin>K</pMin></Integer>"
            "<IntSwissKnife Name='K'><pVariable Name='X'>R</pVariable><Formula>X</Formula></IntSwissKnife>"
            "<IntReg Name='R'><IntSwissKnife Name='Place'><pVariable Name='X'>A</pVariable><Formula>X</Formula>"
            "</IntSwissKnife><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
            "<Endianess>BigEndian</Endianess></IntReg>")),
        HasSubstr("read cycle detected : A -> K -> R -> _R_Place -> A"));
    EXPECT_THAT(
        Refusal<RuntimeException>(Described(
            "<Port Name='P'><pChunkID>S</pChunkID></Port><StringReg Name='S'><Address>0</Address><Length>4</Length>"
            "<AccessMode>RW</AccessMode><pPort>P</pPort></StringReg>")),
        HasSubstr("read cycle detected"));
}

TEST(Circle, OfSelectorsIsRefused)
{
    const Case selector = {"", "<Integer Name='NAME'><Value>1</Value><pSelected>LINK</pSelected></Integer>"};
    EXPECT_THAT(
        Refusal<RuntimeException>(
            Described(Made(selector, "A", "B") + Made(selector, "B", "C") + Made(selector, "C", "A"))),
        HasSubstr("pSelected cycle detected : A -> B -> C -> A"));
    EXPECT_THAT(
        Refusal<RuntimeException>(Described(Made(selector, "A", "A"))), HasSubstr("pSelected cycle detected : A -> A"));
}

TEST(Circle, OverLinksThatAreNotReadIsFine)
{
    const Case shapes[] = {
        {"pAlias", "<Integer Name='NAME'><pAlias>LINK</pAlias><Value>1</Value></Integer>"},
        {"pCastAlias", "<Integer Name='NAME'><pCastAlias>LINK</pCastAlias><Value>1</Value></Integer>"},
        {"pInvalidator", "<Integer Name='NAME'><pInvalidator>LINK</pInvalidator><Value>1</Value></Integer>"}};
    for (const Case& shape : shapes)
    {
        const SmallMap map(Made(shape, "A", "B") + Made(shape, "B", "A") + Made(shape, "C", "C"));
        for (const char* const name : {"A", "B", "C"})
        {
            koro::test::UseNode(map.Node(name));
            EXPECT_EQ(map.Integer(name)->GetValue(), 1) << shape.name;
        }
    }
}

TEST(Circle, OfAReadLinkAndAnotherKindIsFine)
{
    const SmallMap map(
        "<Integer Name='A'><pInvalidator>B</pInvalidator><Value>1</Value></Integer>"
        "<Integer Name='B'><pValue>A</pValue></Integer>"
        "<Integer Name='Reader'><pValue>Selector</pValue></Integer>"
        "<Integer Name='Selector'><Value>2</Value><pSelected>Reader</pSelected></Integer>"
        "<Enumeration Name='E'><EnumEntry Name='X'><pIsAvailable>E</pIsAvailable><Value>1</Value></EnumEntry>"
        "<Value>1</Value></Enumeration>");
    for (const char* const name : {"A", "B", "Reader", "Selector", "E", "EnumEntry_E_X"})
        koro::test::UseNode(map.Node(name));
    EXPECT_EQ(map.Integer("B")->GetValue(), 1);
    EXPECT_EQ(map.Integer("Reader")->GetValue(), 1); // written by UseNode
    EXPECT_EQ(map.Enumeration("E")->GetIntValue(), 1);
}

TEST(Circle, OfAnExpressionIsAnErrorWhenItIsRead)
{
    const SmallMap map("<IntSwissKnife Name='K'><Expression Name='X'>X+1</Expression><Formula>X</Formula>"
                       "</IntSwissKnife><Integer Name='A'><Value>3</Value></Integer>");
    EXPECT_THROW(map.Integer("K")->GetValue(), LogicalErrorException);
    EXPECT_EQ(map.Integer("A")->GetValue(), 3);
}

} // namespace
