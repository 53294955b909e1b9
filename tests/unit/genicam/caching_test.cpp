// Caching modes of every kind of node, and when the port is asked.
#include "tests/unit/genicam/small_map.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::IntReg;
using koro::test::SmallMap;

std::string Link(const std::string& link, const std::string& target)
{
    return "<" + link + ">" + target + "</" + link + ">";
}

std::string Element(const std::string& kind, const std::string& name, const std::string& children)
{
    return "<" + kind + " Name=\"" + name + "\">" + children + "</" + kind + ">";
}

std::string Masked(const std::string& name, const std::string& bits, const std::string& mode = "RW")
{
    return "<MaskedIntReg Name=\"" + name + "\"><Address>0x10</Address><Length>4</Length><AccessMode>" + mode +
           "</AccessMode><pPort>Device</pPort>" + bits + "<Endianess>LittleEndian</Endianess></MaskedIntReg>";
}

// A register of each caching mode.
const std::string registers = IntReg("Through", "0") + IntReg("Around", "4", "<Cachable>WriteAround</Cachable>") +
                              IntReg("Never", "8", "<Cachable>NoCache</Cachable>");
const std::vector<std::pair<const char*, ECachingMode>> modes = {
    {"Through", WriteThrough}, {"Around", WriteAround}, {"Never", NoCache}};

ECachingMode ModeOfX(const std::string& elements)
{
    return SmallMap(registers + elements).Node("X")->GetCachingMode();
}

TEST(CachingModes, OfRegistersAreAsWritten)
{
    const SmallMap map(
        registers + "<FloatReg Name=\"F\"><Address>12</Address><Length>4</Length><AccessMode>RW</AccessMode>"
                    "<pPort>Device</pPort><Endianess>LittleEndian</Endianess></FloatReg>");
    for (const auto& [name, mode] : modes)
    {
        EXPECT_EQ(map.Node(name)->GetCachingMode(), mode) << name;
        EXPECT_EQ(map.Node(name)->IsCachable(), mode != NoCache) << name;
    }
    EXPECT_EQ(map.Node("F")->GetCachingMode(), WriteAround) << "a float register without a word";
}

TEST(CachingModes, RegisterWithAPlaceThatIsNotCachedIsNotCached)
{
    for (const std::string link : {"pAddress", "pIndex"})
    {
        EXPECT_EQ(ModeOfX(IntReg("X", "16</Address>" + Link(link, "Never") + "<Address>0")), NoCache) << link;
        EXPECT_EQ(ModeOfX(IntReg("X", "16</Address>" + Link(link, "Through") + "<Address>0")), WriteThrough) << link;
    }
}

TEST(CachingModes, OfNumbersAreThoseOfTheValue)
{
    for (const auto& [name, mode] : modes)
    {
        const ECachingMode around = mode == WriteThrough ? WriteAround : mode;
        const std::string value = Link("pValue", name);
        const std::string formulas = "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom>" + value;
        EXPECT_EQ(ModeOfX(Element("Integer", "X", value)), mode) << name;
        EXPECT_EQ(ModeOfX(Element("Boolean", "X", value)), mode) << name;
        EXPECT_EQ(ModeOfX(Element("Command", "X", value + "<CommandValue>1</CommandValue>")), mode) << name;
        EXPECT_EQ(ModeOfX(Element("Float", "X", value)), around) << name;
        EXPECT_EQ(ModeOfX(Element("Converter", "X", formulas)), around) << name;
        EXPECT_EQ(ModeOfX(Element("IntConverter", "X", formulas)), around) << name;
    }
    EXPECT_EQ(ModeOfX(Element("Integer", "X", Link("pValue", "Through") + Link("pValueCopy", "Never"))), NoCache);
    EXPECT_EQ(
        ModeOfX(Element(
            "Integer", "X",
            Link("pIndex", "Never") + "<ValueIndexed Index=\"0\">1</ValueIndexed><ValueDefault>2</ValueDefault>")),
        NoCache);
}

TEST(CachingModes, OfConstantsAndTheRest)
{
    EXPECT_EQ(ModeOfX(Element("Integer", "X", "<Value>1</Value>")), WriteThrough);
    EXPECT_EQ(ModeOfX(Element("Float", "X", "<Value>1</Value>")), WriteAround);
    EXPECT_EQ(ModeOfX(Element("String", "X", "<Value>a</Value>")), WriteThrough);
    EXPECT_EQ(ModeOfX(Element("Category", "X", Link("pFeature", "Never"))), WriteThrough);
    EXPECT_EQ(ModeOfX("<Node Name=\"X\"/>"), WriteThrough);
}

TEST(CachingModes, OfKnivesFollowTheirVariables)
{
    for (const auto& [name, mode] : modes)
    {
        const std::string formula = "<pVariable Name=\"V\">" + std::string(name) + "</pVariable><Formula>V</Formula>";
        EXPECT_EQ(ModeOfX(Element("IntSwissKnife", "X", formula)), mode == NoCache ? NoCache : WriteThrough) << name;
        EXPECT_EQ(ModeOfX(Element("SwissKnife", "X", formula)), mode == NoCache ? NoCache : WriteAround) << name;
    }
}

TEST(CachingModes, LimitsAndConditionsDoNotMatter)
{
    for (const std::string link : {"pIsAvailable", "pIsLocked"})
        EXPECT_EQ(ModeOfX(Element("Integer", "X", Link(link, "Never") + "<Value>1</Value>")), WriteThrough) << link;
    EXPECT_EQ(ModeOfX(Element("Integer", "X", "<Value>1</Value>" + Link("pMin", "Never"))), WriteThrough);
}

TEST(Caches, ReadingAsksThePortOnceUntilTheyAreDropped)
{
    SmallMap map(registers + Element("Integer", "A", Link("pValue", "Through")));
    map.Integer("A")->GetValue();
    EXPECT_TRUE(map.Integer("A")->IsValueCacheValid());
    map.Integer("A")->GetValue();
    map.Integer("Through")->GetValue();
    EXPECT_EQ(map.port.reads, 1);
    map.map->InvalidateNodes();
    EXPECT_FALSE(map.Integer("A")->IsValueCacheValid());
    EXPECT_EQ(map.port.reads, 1) << "nothing is read by an invalidation";
    map.Integer("A")->GetValue();
    EXPECT_EQ(map.port.reads, 2);
}

TEST(Caches, VerifyUsesTheBytesAndIgnoreCacheDoesNot)
{
    SmallMap map(
        registers + Element("Integer", "A", Link("pValue", "Through")) +
        "<Register "
        "Name=\"Raw\"><Address>0x20</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></"
        "Register>");
    map.Integer("A")->GetValue();
    map.Integer("A")->GetValue(true);
    EXPECT_EQ(map.port.reads, 1);
    map.port.bytes[0] = 9;
    EXPECT_EQ(map.Integer("A")->GetValue(), 0);
    EXPECT_EQ(map.Integer("A")->GetValue(false, true), 9);
    EXPECT_EQ(map.port.reads, 2);
    EXPECT_EQ(map.Integer("Through")->GetValue(), 9) << "the reading passed through it";
    EXPECT_EQ(map.port.reads, 3) << "and left nothing in the cache";

    uint8_t bytes[4] = {};
    CRegisterPtr(map.Node("Raw"))->Get(bytes, 4);
    CRegisterPtr(map.Node("Raw"))->Get(bytes, 4, true);
    EXPECT_EQ(map.port.reads, 4);
    CRegisterPtr(map.Node("Raw"))->Get(bytes, 4, false, true);
    EXPECT_EQ(map.port.reads, 5);
}

TEST(Caches, FailedWriteDropsTheValue)
{
    SmallMap map(registers);
    map.Integer("Through")->GetValue();
    map.port.onWrite = [] { throw 1; };
    EXPECT_THROW(map.Integer("Through")->SetValue(5), int);
    map.port.onWrite = nullptr;
    EXPECT_FALSE(map.Integer("Through")->IsValueCacheValid());
    const int reads = map.port.reads;
    EXPECT_EQ(map.Integer("Through")->GetValue(), 0);
    EXPECT_EQ(map.port.reads, reads + 1);
}

TEST(Caches, FieldIsReadBeforeItIsWrittenOnlyWhenItsWordIsUnknown)
{
    SmallMap map(Masked("A", "<LSB>0</LSB><MSB>3</MSB>") + Masked("B", "<LSB>4</LSB><MSB>7</MSB>"));
    map.port.bytes[0x10] = 0xff;
    map.Integer("A")->SetValue(0);
    EXPECT_EQ(map.port.reads, 1);
    EXPECT_EQ(map.port.bytes[0x10], 0xf0);
    map.Integer("B")->SetValue(1);
    EXPECT_EQ(map.port.reads, 1);
    EXPECT_EQ(map.port.bytes[0x10], 0x10);
    EXPECT_EQ(map.port.writes, 2);
}

TEST(Caches, FieldOfAWriteOnlyWordCannotBeWritten)
{
    SmallMap map(Masked("A", "<Bit>0</Bit>", "WO"));
    EXPECT_EQ(map.Node("A")->GetAccessMode(), WO);
    EXPECT_THROW(map.Integer("A")->SetValue(1), AccessException);
    EXPECT_EQ(map.port.writes, 0);
}

TEST(Caches, AreDroppedWhenAPortIsConnectedAndNobodyIsTold)
{
    SmallMap map(registers);
    int calls = 0;
    Register(map.Node("Through"), std::function<void(INode*)>([&](INode*) { ++calls; }));
    map.Integer("Through")->GetValue();
    map.port.bytes[0] = 3;
    EXPECT_TRUE(map.map->Connect(&map.port, "Device"));
    EXPECT_EQ(map.Integer("Through")->GetValue(), 3);
    EXPECT_EQ(calls, 0);
    EXPECT_FALSE(map.map->Connect(&map.port, "Through")) << "no port";
}

TEST(Caches, OfAKnifeLiveAsLongAsItsVariables)
{
    SmallMap map(
        registers +
        "<IntSwissKnife Name=\"K\"><pVariable Name=\"V\">Through</pVariable><Formula>V*2</Formula></IntSwissKnife>");
    EXPECT_EQ(map.Integer("K")->GetValue(), 0);
    map.Integer("Through")->SetValue(4);
    EXPECT_EQ(map.Integer("K")->GetValue(), 8);
    EXPECT_EQ(map.Integer("K")->GetValue(), 8);
    EXPECT_EQ(map.port.reads, 1);
}

TEST(Caches, OfWhatAPortReadsDuringAWriteAreOutdatedByIt)
{
    for (const auto& [name, mode] : modes)
    {
        SmallMap map(
            registers + Element("Integer", "A", Link("pValue", name)) + Element("Integer", "B", Link("pValue", name)));
        EXPECT_EQ(map.Integer("B")->GetValue(), 0) << name;
        int64_t meanwhile = -1;
        map.port.onWrite = [&] { meanwhile = map.Integer("B")->GetValue(); };
        map.Integer("A")->SetValue(5);
        EXPECT_EQ(meanwhile, 0) << name;
        for (const char* const reader : {name, "A", "B"})
            EXPECT_EQ(map.Integer(reader)->GetValue(), 5) << reader << " on " << name;
    }
}

TEST(Caches, SurviveAPortThatMovesTheRegisterMeanwhile)
{
    SmallMap map(
        Element("Integer", "I", "<Value>0</Value>") +
        IntReg("R", "0</Address><pIndex Offset=\"16\">I</pIndex><Address>0"));
    int nested = 0;
    const auto move = [&] {
        if (nested > 0) return;
        ++nested;
        map.Integer("I")->SetValue(1);
        map.Integer("R")->GetValue();
        map.Integer("I")->SetValue(0);
        --nested;
    };
    map.port.bytes = {{0, 3}, {16, 4}};
    map.port.onRead = move;
    EXPECT_EQ(map.Integer("R")->GetValue(), 3);
    map.port.onRead = nullptr;
    map.port.onWrite = move;
    map.Integer("R")->SetValue(5);
    map.port.onWrite = nullptr;
    EXPECT_EQ(map.Integer("R")->GetValue(), 5);
    map.Integer("I")->SetValue(1);
    EXPECT_EQ(map.Integer("R")->GetValue(), 4);

    map.Integer("I")->SetValue(0);
    map.port.bytes[1] = 7;
    map.map->InvalidateNodes();
    EXPECT_EQ(map.Integer("R")->GetValue(), 0x705);
    map.port.onWrite = move;
    const uint8_t first = 6;
    CRegisterPtr(map.Node("R"))->Set(&first, 1);
    map.port.onWrite = nullptr;
    EXPECT_EQ(map.Integer("R")->GetValue(), 0x706) << "the bytes that were not written stay";
}

TEST(Ports, SwapNothingInTheNodes)
{
    for (const std::string swap : {"Yes", "No"})
    {
        const SmallMap map(
            "<Port Name=\"P\"><SwapEndianess>" + swap +
            "</SwapEndianess></Port><IntReg "
            "Name=\"R\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
            "<pPort>P</pPort><Endianess>BigEndian</Endianess></IntReg>");
        koro::test::MemoryPort port;
        port.bytes[3] = 7;
        map.map->Connect(&port, "P");
        EXPECT_EQ(map.Integer("R")->GetValue(), 7) << "that is the business of who moves the bytes";
    }
}

TEST(Caches, IgnoringThemReachesAddressesAndIndices)
{
    SmallMap map(
        IntReg("Where", "0") + IntReg("Which", "4") +
        "<IntReg Name=\"There\"><pAddress>Where</pAddress><Length>4</Length><AccessMode>RW</AccessMode>"
        "<pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>"
        "<Integer Name=\"Chosen\"><pIndex>Which</pIndex><ValueIndexed Index=\"0\">1</ValueIndexed>"
        "<ValueDefault>2</ValueDefault></Integer>");
    map.port.bytes = {{0, 0x10}, {0x10, 1}, {0x20, 2}};
    EXPECT_EQ(map.Integer("There")->GetValue(), 1);
    EXPECT_EQ(map.Integer("Chosen")->GetValue(), 1);
    map.port.bytes[0] = 0x20; // by the device itself
    map.port.bytes[4] = 1;
    EXPECT_EQ(map.Integer("There")->GetValue(), 1);
    EXPECT_EQ(map.Integer("There")->GetValue(false, true), 2);
    EXPECT_EQ(map.Integer("Chosen")->GetValue(false, true), 2);
}

} // namespace
