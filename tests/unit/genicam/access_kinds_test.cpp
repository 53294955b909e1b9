// What each kind of node makes of the access modes behind it.
#include "tests/unit/genicam/small_map.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::IntReg;
using koro::test::SmallMap;

std::string Constant(const std::string& name, const std::string& conditions = "", const std::string& value = "1")
{
    return "<Integer Name=\"" + name + "\">" + conditions + "<Value>" + value + "</Value></Integer>";
}

// One number of each mode.
const std::string sources = Constant("Yes") + Constant("No", "", "0") +
                            Constant("OfNI", "<pIsImplemented>No</pIsImplemented>") +
                            Constant("OfNA", "<pIsAvailable>No</pIsAvailable>") +
                            Constant("OfWO", "<ImposedAccessMode>WO</ImposedAccessMode>") +
                            Constant("OfRO", "<ImposedAccessMode>RO</ImposedAccessMode>") + Constant("OfRW");

EAccessMode ModeOfX(const std::string& elements)
{
    return SmallMap(sources + elements).Node("X")->GetAccessMode();
}

std::string Link(const std::string& link, const std::string& target)
{
    return "<" + link + ">" + target + "</" + link + ">";
}

std::string Integer(const std::string& children)
{
    return "<Integer Name=\"X\">" + children + "</Integer>";
}

std::string Register(
    const std::string& places, const std::string& mode = "RW", const std::string& length = "<Length>4</Length>")
{
    return "<Register Name=\"X\">" + places + length + "<AccessMode>" + mode +
           "</AccessMode><pPort>Device</pPort></Register>";
}

TEST(AccessConditions, UnreadableOnesCountByTheirOwnMode)
{
    for (const char* const condition : {"pIsImplemented", "pIsAvailable", "pIsLocked"})
    {
        EXPECT_EQ(ModeOfX(Constant("X", Link(condition, "OfNI"))), NI) << condition;
        EXPECT_EQ(ModeOfX(Constant("X", Link(condition, "OfNA"))), NA) << condition;
        EXPECT_EQ(ModeOfX(Constant("X", Link(condition, "OfWO"))), NA) << condition;
    }
}

TEST(AccessConditions, LockTakesWritingAway)
{
    const auto locked = [](const char* mode) {
        return ModeOfX(Constant("X", Link("pIsLocked", "Yes") + Link("ImposedAccessMode", mode)));
    };
    EXPECT_EQ(locked("RW"), RO);
    EXPECT_EQ(locked("RO"), RO);
    EXPECT_EQ(locked("WO"), NA);
    EXPECT_EQ(ModeOfX(Constant("X", Link("pIsLocked", "No"))), RW);
}

TEST(AccessConditions, NotImplementedWinsOverNotAvailable)
{
    EXPECT_EQ(ModeOfX(Constant("X", Link("pIsImplemented", "No") + Link("pIsAvailable", "No"))), NI);
    EXPECT_EQ(ModeOfX(Integer(Link("pIsAvailable", "No") + Link("pValue", "OfNI"))), NI);
}

TEST(AccessConditions, AnythingButZeroIsTrue)
{
    const std::string kinds = Constant("Five", "", "5") +
                              "<Boolean Name=\"False\"><Value>false</Value></Boolean>"
                              "<Enumeration Name=\"Numbered\"><EnumEntry "
                              "Name=\"A\"><Value>2</Value><NumericValue>0</NumericValue></EnumEntry>"
                              "<Value>2</Value></Enumeration>"
                              "<Enumeration Name=\"WithoutEntry\"><EnumEntry "
                              "Name=\"A\"><Value>2</Value></EnumEntry><Value>3</Value></Enumeration>";
    EXPECT_EQ(ModeOfX(kinds + Constant("X", Link("pIsAvailable", "Five"))), RW);
    EXPECT_EQ(ModeOfX(kinds + Constant("X", Link("pIsAvailable", "False"))), NA);
    EXPECT_EQ(ModeOfX(kinds + Constant("X", Link("pIsAvailable", "Numbered"))), RW)
        << "the number, not the numeric value";
    EXPECT_EQ(ModeOfX(kinds + Constant("X", Link("pIsAvailable", "WithoutEntry"))), RW);
}

TEST(AccessConditions, FailingOneIsToldByItsEntryPoint)
{
    SmallMap map(
        IntReg("Condition", "0", "<Cachable>NoCache</Cachable>") + Constant("X", Link("pIsAvailable", "Condition")) +
        "<IntSwissKnife Name=\"Broken\"><Formula>1/0</Formula></IntSwissKnife>" +
        Constant("Y", Link("pIsAvailable", "Broken")));
    map.port.onRead = [] { throw std::domain_error("the wire is cut"); };
    EXPECT_THROW(map.Node("X")->GetAccessMode(), std::domain_error);
    try
    {
        map.Node("Y")->GetAccessMode();
        FAIL() << "nothing thrown";
    }
    catch (const LogicalErrorException& exception)
    {
        EXPECT_NE(
            std::string(exception.what()).find("thrown in node 'Broken' while calling 'Y.GetAccessMode()'"),
            std::string::npos)
            << exception.what();
    }
}

TEST(AccessOfRegisters, IsCutByThePort)
{
    const auto mode = [](const char* own, EAccessMode port) {
        SmallMap map(Register("<Address>0</Address>", own));
        map.port.mode = port;
        map.map->Connect(&map.port);
        return map.Node("X")->GetAccessMode();
    };
    EXPECT_EQ(mode("RW", RW), RW);
    EXPECT_EQ(mode("RW", RO), RO);
    EXPECT_EQ(mode("RW", WO), WO);
    EXPECT_EQ(mode("RO", WO), NA);
    EXPECT_EQ(mode("RO", RO), RO);
    EXPECT_EQ(mode("RW", NA), NA);
    EXPECT_EQ(mode("RW", NI), NI);
}

TEST(AccessOfRegisters, NeedsWhatTheirPlaceIsMadeOf)
{
    for (const std::string link : {"pAddress", "pIndex"})
    {
        EXPECT_EQ(ModeOfX(Register(Link(link, "OfNI"))), NI) << link;
        EXPECT_EQ(ModeOfX(Register(Link(link, "OfNA"))), NA) << link;
        EXPECT_EQ(ModeOfX(Register(Link(link, "OfWO"))), RW) << link;
    }
    EXPECT_EQ(ModeOfX(Register("<Address>0</Address>", "RW", Link("pLength", "OfNI"))), NI);
    EXPECT_EQ(ModeOfX(Register("<Address>0</Address>", "RW", Link("pLength", "OfNA"))), NA);
    const SmallMap map(sources + Register(Link("pAddress", "OfWO")));
    uint8_t byte = 0;
    EXPECT_THROW(CRegisterPtr(map.Node("X"))->Get(&byte, 1), AccessException) << "the address cannot be read";
}

TEST(AccessOfNumbers, IsThatOfTheValueAndItsCopies)
{
    for (const auto& [target, mode] : {std::pair("OfNI", NI), {"OfNA", NA}, {"OfWO", WO}, {"OfRO", RO}, {"OfRW", RW}})
        EXPECT_EQ(ModeOfX(Integer(Link("pValue", target))), mode) << target;
    for (const auto& [copy, mode] : {std::pair("OfNI", NI), {"OfNA", NA}, {"OfWO", RW}, {"OfRO", RO}, {"OfRW", RW}})
        EXPECT_EQ(ModeOfX(Integer(Link("pValue", "OfRW") + Link("pValueCopy", copy))), mode) << copy;
}

TEST(AccessOfNumbers, IsThatOfTheChosenElement)
{
    const auto indexed = [](const std::string& index) {
        return ModeOfX(Integer(
            Link("pIndex", index) +
            "<pValueIndexed Index=\"0\">OfRO</pValueIndexed><ValueIndexed Index=\"1\">5</ValueIndexed>"
            "<pValueIndexed Index=\"2\">OfNI</pValueIndexed><pValueDefault>OfNA</pValueDefault>"));
    };
    EXPECT_EQ(indexed("No"), RO);
    EXPECT_EQ(indexed("Yes"), RW) << "what is not chosen does no harm";
    EXPECT_EQ(indexed("OfNI"), NI);
    EXPECT_EQ(indexed("OfNA"), NA);
    EXPECT_EQ(indexed("OfWO"), NA);
}

TEST(AccessOfNumbers, NeedsItsLimitsAndErrorNodes)
{
    for (const std::string limit : {"pMin", "pMax", "pInc"})
    {
        EXPECT_EQ(ModeOfX(Integer("<Value>1</Value>" + Link(limit, "OfNI"))), NI) << limit;
        EXPECT_EQ(ModeOfX(Integer("<Value>1</Value>" + Link(limit, "OfNA"))), NA) << limit;
        EXPECT_EQ(ModeOfX(Integer("<Value>1</Value>" + Link(limit, "OfWO"))), RW) << limit << ": need not be readable";
    }
    const std::string error = "<Enumeration Name=\"Error\"><pIsAvailable>No</pIsAvailable><EnumEntry Name=\"None\">"
                              "<Value>0</Value></EnumEntry><Value>0</Value></Enumeration>";
    EXPECT_EQ(ModeOfX(error + Integer(Link("pError", "Error") + "<Value>1</Value>")), NA);
}

TEST(AccessOfFormulas, KnifeIsReadOnlyAndNeedsItsVariables)
{
    const auto knife = [](const std::string& kind, const std::string& variable) {
        return "<" + kind + " Name=\"X\"><pVariable Name=\"V\">" + variable + "</pVariable><Formula>V</Formula></" +
               kind + ">";
    };
    for (const std::string kind : {"IntSwissKnife", "SwissKnife"})
    {
        EXPECT_EQ(ModeOfX(knife(kind, "OfNI")), NI);
        EXPECT_EQ(ModeOfX(knife(kind, "OfNA")), NA);
        EXPECT_EQ(ModeOfX(knife(kind, "OfRW")), RO);
        EXPECT_EQ(ModeOfX(knife(kind, "OfWO")), RO);
        EXPECT_THROW(SmallMap(sources + knife(kind, "OfWO")).Value("X")->ToString(), AccessException);
    }
}

TEST(AccessOfFormulas, ConverterIsAsItsValueAndNeedsItsVariables)
{
    const auto converter = [](const std::string& variable, const std::string& value) {
        return "<IntConverter Name=\"X\"><pVariable Name=\"V\">" + variable +
               "</pVariable><FormulaTo>FROM</FormulaTo>"
               "<FormulaFrom>TO</FormulaFrom><pValue>" +
               value + "</pValue><Slope>Increasing</Slope></IntConverter>";
    };
    for (const auto& [value, mode] : {std::pair("OfNI", NI), {"OfNA", NA}, {"OfWO", WO}, {"OfRO", RO}, {"OfRW", RW}})
        EXPECT_EQ(ModeOfX(converter("OfRW", value)), mode) << value;
    for (const auto& [variable, mode] : {std::pair("OfNI", NI), {"OfNA", NA}, {"OfWO", RW}, {"OfRO", RW}})
        EXPECT_EQ(ModeOfX(converter(variable, "OfRW")), mode) << variable;
}

TEST(AccessOfEnumerations, NeedsAnEntry)
{
    const auto enumeration = [](const std::string& one, const std::string& two, const std::string& imposed = "") {
        return "<Enumeration Name=\"X\">" + imposed + "<EnumEntry Name=\"A\">" + one +
               "<Value>0</Value></EnumEntry><EnumEntry Name=\"B\">" + two +
               "<Value>1</Value></EnumEntry><Value>0</Value></Enumeration>";
    };
    const std::string missing = Link("pIsImplemented", "No");
    const std::string away = Link("pIsAvailable", "No");
    EXPECT_EQ(ModeOfX(enumeration("", "")), RW);
    EXPECT_EQ(ModeOfX(enumeration(missing, "")), RW);
    EXPECT_EQ(ModeOfX(enumeration(missing, missing)), NI);
    EXPECT_EQ(ModeOfX(enumeration(missing, away)), NA);
    EXPECT_EQ(ModeOfX(enumeration(away, away)), NA);
    const SmallMap map(sources + enumeration(missing, Link("ImposedAccessMode", "WO")));
    EXPECT_EQ(map.Node("EnumEntry_X_A")->GetAccessMode(), NI);
    EXPECT_EQ(map.Node("EnumEntry_X_B")->GetAccessMode(), NA) << "an entry is read only";
}

TEST(AccessOfCommands, IsThatOfTheTargetAndNeedsTheCommandValue)
{
    const auto command = [](const std::string& target, const std::string& value) {
        return "<Command Name=\"X\">" + Link("pValue", target) + value + "</Command>";
    };
    const std::string one = "<CommandValue>1</CommandValue>";
    for (const auto& [target, mode] : {std::pair("OfNI", NI), {"OfNA", NA}, {"OfWO", WO}, {"OfRO", RO}, {"OfRW", RW}})
        EXPECT_EQ(ModeOfX(command(target, one)), mode) << target;
    for (const auto& [value, mode] : {std::pair("OfNI", NI), {"OfNA", NA}, {"OfWO", NA}, {"OfRO", RW}})
        EXPECT_EQ(ModeOfX(command("OfRW", Link("pCommandValue", value))), mode) << value;
    const SmallMap map(sources + command("OfRO", one));
    EXPECT_THROW(CCommandPtr(map.Node("X"))->Execute(), AccessException);
}

TEST(AccessOfCategories, IsReadOnlyWhileAnythingIsImplemented)
{
    const auto category = [](const std::string& children) {
        return "<Category Name=\"X\">" + children + "</Category>";
    };
    EXPECT_EQ(ModeOfX(category("")), NI);
    EXPECT_EQ(ModeOfX(category(Link("pFeature", "OfNI"))), NI);
    EXPECT_EQ(ModeOfX(category(Link("pFeature", "OfNI") + Link("pFeature", "OfNA"))), RO);
    EXPECT_EQ(ModeOfX(category(Link("pIsImplemented", "No") + Link("pFeature", "OfRW"))), NI);
    EXPECT_EQ(ModeOfX(category(Link("pIsAvailable", "No") + Link("pFeature", "OfRW"))), RO) << "does not count";
    EXPECT_EQ(ModeOfX(category(Link("pIsLocked", "Yes") + Link("pFeature", "OfRW"))), RO);
    EXPECT_EQ(ModeOfX(category(Link("ImposedAccessMode", "WO") + Link("pFeature", "OfRW"))), NA);
}

TEST(AccessOfOtherKinds, PlainNodesAreReadWriteAndBusKindsReadOnly)
{
    EXPECT_EQ(ModeOfX("<Node Name=\"X\"/>"), RW);
    EXPECT_EQ(ModeOfX("<Node Name=\"X\"><pIsAvailable>No</pIsAvailable></Node>"), NA);
    EXPECT_EQ(
        ModeOfX("<AdvFeatureLock Name=\"X\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
                "<pPort>Device</pPort><FeatureID>1</FeatureID></AdvFeatureLock>"),
        RO);
    EXPECT_EQ(
        ModeOfX("<SmartFeature "
                "Name=\"X\"><FeatureID>A</FeatureID><Address>0</Address><pPort>Device</pPort></SmartFeature>"),
        RO);
}

TEST(AccessOfPorts, IsThatOfThePortObject)
{
    SmallMap map("");
    for (const EAccessMode mode : {RO, WO, NA, NI, RW})
    {
        map.port.mode = mode;
        map.map->Connect(&map.port);
        EXPECT_EQ(map.Node("Device")->GetAccessMode(), mode);
    }
    map.map->Connect(static_cast<IPort*>(nullptr));
    EXPECT_EQ(map.Node("Device")->GetAccessMode(), NI);
}

TEST(AccessOfPorts, ReachesAllRegistersOnThem)
{
    const auto onPort = [](const std::string& children) {
        const SmallMap map(
            sources + "<Port Name=\"P\">" + children +
            "</Port><Register "
            "Name=\"X\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>P</pPort>"
            "</Register>");
        koro::test::MemoryPort port;
        map.map->Connect(&port, "P");
        return map.Node("X")->GetAccessMode();
    };
    EXPECT_EQ(onPort(""), RW);
    EXPECT_EQ(onPort("<SwapEndianess>Yes</SwapEndianess>"), RW);
    EXPECT_EQ(onPort(Link("pIsLocked", "Yes")), RO);
    EXPECT_EQ(onPort(Link("pIsAvailable", "No")), NA);
    EXPECT_EQ(onPort(Link("pIsImplemented", "No")), NI);
    EXPECT_EQ(onPort(Link("ImposedAccessMode", "WO")), WO);
}

TEST(AccessCache, KeepsTheModeUnlessAConditionIsNotCached)
{
    SmallMap map(
        IntReg("Cached", "0") + IntReg("Uncached", "4", "<Cachable>NoCache</Cachable>") +
        Constant("A", Link("pIsAvailable", "Cached")) + Constant("B", Link("pIsAvailable", "Uncached")) +
        "<Integer Name=\"OverB\"><pValue>B</pValue></Integer>");
    map.port.bytes = {{0, 1}, {4, 1}};
    for (const char* const name : {"A", "B", "OverB"})
        EXPECT_EQ(map.Node(name)->GetAccessMode(), RW) << name;
    EXPECT_EQ(map.Node("A")->IsAccessModeCacheable(), Yes);
    EXPECT_EQ(map.Node("B")->IsAccessModeCacheable(), No);
    EXPECT_EQ(map.Node("OverB")->IsAccessModeCacheable(), No);
    map.port.bytes = {{0, 0}, {4, 0}};
    EXPECT_EQ(map.Node("A")->GetAccessMode(), RW);
    EXPECT_EQ(map.Node("B")->GetAccessMode(), NA);
    EXPECT_EQ(map.Node("OverB")->GetAccessMode(), NA);
    map.Node("Cached")->InvalidateNode();
    EXPECT_EQ(map.Node("A")->GetAccessMode(), NA);
}

TEST(AccessImposed, AtRunTimeRestrictsAndTellsListeners)
{
    const SmallMap map(Constant("X"));
    int calls = 0;
    Register(map.Node("X"), std::function<void(INode*)>([&](INode*) { ++calls; }));
    map.Node("X")->ImposeAccessMode(RO);
    EXPECT_EQ(map.Node("X")->GetAccessMode(), RO);
    EXPECT_EQ(calls, 1);
    map.Node("X")->ImposeAccessMode(RW);
    EXPECT_EQ(map.Node("X")->GetAccessMode(), RW);
}

} // namespace
