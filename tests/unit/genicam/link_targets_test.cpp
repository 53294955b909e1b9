// Which node each link of a description may name, pair by pair.
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
using koro::test::IntReg;
using koro::test::Refusal;
using koro::test::SmallMap;
using testing::HasSubstr;

const std::string accepted = "nothing thrown";
const std::string place = "<Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>";
const std::string formulas = "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>Integer</pValue>";

// One node of each kind, under the name of the kind.
const std::string oneOfEach =
    "<Integer Name=\"Integer\"><Value>1</Value></Integer>" + IntReg("IntReg", "0") +
    "<MaskedIntReg Name=\"MaskedIntReg\">" + place +
    "<Bit>0</Bit><Endianess>BigEndian</Endianess></MaskedIntReg><StructReg Comment=\"c\">" + place +
    "<Endianess>BigEndian</Endianess><StructEntry Name=\"StructEntry\"><Bit>0</Bit></StructEntry></StructReg>"
    "<IntSwissKnife Name=\"IntSwissKnife\"><Formula>1</Formula></IntSwissKnife><IntConverter Name=\"IntConverter\">" +
    formulas + "</IntConverter><AdvFeatureLock Name=\"AdvFeatureLock\">" + place +
    "<FeatureID>1</FeatureID></AdvFeatureLock><SmartFeature Name=\"SmartFeature\"><FeatureID>a</FeatureID>"
    "<Address>0</Address><pPort>Device</pPort></SmartFeature><IntKey Name=\"IntKey\"><p1212Parser>ConfRom</p1212Parser>"
    "<Key>1</Key></IntKey><Float Name=\"Float\"><Value>1</Value></Float><FloatReg Name=\"FloatReg\">" +
    place +
    "<Endianess>BigEndian</Endianess></FloatReg><SwissKnife Name=\"SwissKnife\"><Formula>1</Formula></SwissKnife>"
    "<Converter Name=\"Converter\">" +
    formulas +
    "</Converter><Boolean Name=\"Boolean\"><Value>true</Value></Boolean><Enumeration Name=\"Enumeration\">"
    "<EnumEntry Name=\"E\"><Value>1</Value></EnumEntry><Value>1</Value></Enumeration><String Name=\"String\">"
    "<Value>a</Value></String><StringReg Name=\"StringReg\">" +
    place +
    "</StringReg><TextDesc Name=\"TextDesc\"><p1212Parser>ConfRom</p1212Parser><Key>2</Key></TextDesc>"
    "<Register Name=\"Register\">" +
    place +
    "</Register><Command Name=\"Command\"><Value>0</Value><CommandValue>1</CommandValue></Command>"
    "<Category Name=\"Category\"/><Node Name=\"Node\"/><Port Name=\"Port\"/><ConfRom Name=\"ConfRom\">"
    "<Unit>0</Unit><Address>0</Address><Length>64</Length><pPort>Port</pPort></ConfRom>";

using Kinds = std::vector<std::string>;

const Kinds integers = {"Integer",      "IntReg",         "MaskedIntReg", "StructEntry", "IntSwissKnife",
                        "IntConverter", "AdvFeatureLock", "SmartFeature", "IntKey"};
const Kinds floats = {"Float", "FloatReg", "SwissKnife", "Converter"};
const Kinds strings = {"String", "StringReg", "TextDesc"};
const Kinds others = {"Register", "Command", "Category", "Node", "Port", "EnumEntry_Enumeration_E"};

Kinds operator+(Kinds left, const Kinds& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

const Kinds conditions = integers + Kinds{"Enumeration", "Boolean"};
const Kinds numbers = conditions + floats;
const Kinds floatSources = integers + floats + Kinds{"Enumeration"};
const Kinds everything = numbers + strings + others + Kinds{"ConfRom"};

// An element named X whose children hold a link; % stands for the node that it names.
struct Owner
{
    const char* kind;
    std::string children;
};

std::string With(const Owner& owner, const std::string& target)
{
    std::string children = owner.children;
    children.replace(children.find('%'), 1, target);
    return Described(oneOfEach + "<" + owner.kind + " Name=\"X\">" + children + "</" + owner.kind + ">");
}

void ExpectTargets(const std::vector<Owner>& owners, const Kinds& usable)
{
    for (const Owner& owner : owners)
    {
        for (const std::string& kind : everything)
        {
            const std::string refusal = Refusal<RuntimeException>(With(owner, kind));
            if (std::find(usable.begin(), usable.end(), kind) != usable.end())
                EXPECT_EQ(refusal, accepted) << owner.kind << owner.children << " with " << kind;
            else
                EXPECT_THAT(refusal, HasSubstr("'" + kind + "' is none")) << owner.kind << owner.children;
        }
    }
}

const std::string constant = "<Value>1</Value>";

TEST(LinkTargets, OfConditionsAreIntegersEnumerationsAndBooleans)
{
    ExpectTargets(
        {{"Integer", "<pIsImplemented>%</pIsImplemented>" + constant},
         {"Integer", "<pIsAvailable>%</pIsAvailable>" + constant},
         {"Integer", "<pIsLocked>%</pIsLocked>" + constant},
         {"Integer", "<pBlockPolling>%</pBlockPolling>" + constant}},
        conditions);
}

TEST(LinkTargets, OfIntegersAreNumbers)
{
    const std::string entry = "<EnumEntry Name=\"A\"><Value>0</Value></EnumEntry>";
    const std::string formula = "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom>";
    ExpectTargets(
        {{"Integer", "<pValue>%</pValue>"},
         {"Boolean", "<pValue>%</pValue>"},
         {"Command", "<pValue>%</pValue><CommandValue>1</CommandValue>"},
         {"Command", "<Value>0</Value><pCommandValue>%</pCommandValue>"},
         {"Enumeration", entry + "<pValue>%</pValue>"},
         {"IntConverter", formula + "<pValue>%</pValue>"},
         {"Integer", "<pValue>Integer</pValue><pValueCopy>%</pValueCopy>"},
         {"Integer", "<pIndex>%</pIndex><ValueIndexed Index=\"0\">1</ValueIndexed><ValueDefault>1</ValueDefault>"},
         {"Integer",
          "<pIndex>Integer</pIndex><pValueIndexed Index=\"0\">%</pValueIndexed><ValueDefault>1</ValueDefault>"},
         {"Integer",
          "<pIndex>Integer</pIndex><ValueIndexed Index=\"0\">1</ValueIndexed><pValueDefault>%</pValueDefault>"},
         {"Integer", constant + "<pMin>%</pMin>"},
         {"Integer", constant + "<pMax>%</pMax>"},
         {"Integer", constant + "<pInc>%</pInc>"},
         {"IntSwissKnife", "<pVariable Name=\"V\">%</pVariable><Formula>1</Formula>"},
         {"IntConverter", "<pVariable Name=\"V\">%</pVariable>" + formulas}},
        numbers);
}

TEST(LinkTargets, OfFloatsAreNumbersButNoBooleans)
{
    const std::string formula = "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom>";
    ExpectTargets(
        {{"Float", "<pValue>%</pValue>"},
         {"Converter", formula + "<pValue>%</pValue>"},
         {"Float",
          "<pIndex>Integer</pIndex><pValueIndexed Index=\"0\">%</pValueIndexed><ValueDefault>1</ValueDefault>"},
         {"Float",
          "<pIndex>Integer</pIndex><ValueIndexed Index=\"0\">1</ValueIndexed><pValueDefault>%</pValueDefault>"},
         {"Float", constant + "<pMin>%</pMin>"},
         {"Float", constant + "<pMax>%</pMax>"},
         {"Float", constant + "<pInc>%</pInc>"},
         {"SwissKnife", "<pVariable Name=\"V\">%</pVariable><Formula>1</Formula>"},
         {"Converter", "<pVariable Name=\"V\">%</pVariable>" + formulas}},
        floatSources);
}

TEST(LinkTargets, OfAPlaceAreNumbers)
{
    const std::string rest = "<AccessMode>RW</AccessMode><pPort>Device</pPort>";
    ExpectTargets(
        {{"Register", "<pAddress>%</pAddress><Length>4</Length>" + rest},
         {"Register", "<pIndex>%</pIndex><Length>4</Length>" + rest},
         {"Register", "<pIndex pOffset=\"%\">Integer</pIndex><Length>4</Length>" + rest},
         {"Register", "<Address>0</Address><pLength>%</pLength>" + rest}},
        numbers);
}

TEST(LinkTargets, OfStringsAreStrings)
{
    ExpectTargets({{"String", "<pValue>%</pValue>"}, {"Port", "<pChunkID>%</pChunkID>"}}, strings);
}

TEST(LinkTargets, OfRomEntriesAreRoms)
{
    ExpectTargets(
        {{"TextDesc", "<p1212Parser>%</p1212Parser><Key>1</Key>"},
         {"IntKey", "<p1212Parser>%</p1212Parser><Key>1</Key>"}},
        {"ConfRom"});
}

TEST(LinkTargets, OfListsAliasesAndErrorsAreAnything)
{
    ExpectTargets(
        {{"Category", "<pFeature>%</pFeature>"},
         {"Integer", constant + "<pSelected>%</pSelected>"},
         {"Integer", "<pInvalidator>%</pInvalidator>" + constant},
         {"Integer", "<pAlias>%</pAlias>" + constant},
         {"Integer", "<pCastAlias>%</pCastAlias>" + constant},
         {"Integer", "<pError>%</pError>" + constant},
         {"Register", "<Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>%</pPort>"}},
        everything);
}

TEST(LinkTargets, RegisterOnWhatIsNoPortIsNotImplemented)
{
    const SmallMap map("<Integer Name=\"I\"><Value>1</Value></Integer><Register Name=\"X\"><Address>0</Address>"
                       "<Length>4</Length><AccessMode>RW</AccessMode><pPort>I</pPort></Register>");
    EXPECT_EQ(map.Node("X")->GetAccessMode(), NI);
    EXPECT_THROW(map.Value("X")->ToString(), AccessException);
}

TEST(LinkTargets, ErrorNodeThatIsNoEnumerationTellsOfNoError)
{
    const SmallMap map("<Integer Name=\"I\"><Value>7</Value></Integer><Integer Name=\"X\"><pError>I</pError>"
                       "<Value>1</Value></Integer>");
    map.Integer("X")->SetValue(2);
    EXPECT_EQ(map.Integer("X")->GetValue(true), 2);
}

TEST(LinkTargets, NamesThatNobodyHasAreRefusedWithTheLink)
{
    const Owner owners[] = {
        {"Integer", "<pIsAvailable>%</pIsAvailable>" + constant},
        {"Integer", "<pValue>%</pValue>"},
        {"Integer", constant + "<pSelected>%</pSelected>"},
        {"Integer", "<pInvalidator>%</pInvalidator>" + constant},
        {"Integer", "<pAlias>%</pAlias>" + constant},
        {"Category", "<pFeature>%</pFeature>"},
        {"IntSwissKnife", "<pVariable Name=\"V\">%</pVariable><Formula>1</Formula>"},
        {"Register", "<Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>%</pPort>"},
        {"Register",
         "<pIndex pOffset=\"%\">Integer</pIndex><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"}};
    for (const Owner& owner : owners)
    {
        for (const std::string name : {"Gone", " Integer", "Integer ", "integer", "Cust::Integer", ""})
        {
            EXPECT_THAT(
                Refusal<RuntimeException>(With(owner, name)),
                HasSubstr("dangling node reference in Node 'X' at line 1"))
                << owner.children << name;
        }
    }
}

} // namespace
