// Values that mean harm, or know no better: deep formulas, long chains, lengths that lie, ports that throw.
#include "tests/unit/genicam/elements.h"
#include "tests/unit/genicam/refusal.h"
#include "tests/unit/genicam/small_map.h"
#include "tests/unit/genicam/use_of_nodes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::Described;
using koro::test::Integer;
using koro::test::IntReg;
using koro::test::Knife;
using koro::test::MemoryPort;
using koro::test::Numbered;
using koro::test::RefusalOf;
using koro::test::Repeated;
using koro::test::SmallMap;
using koro::test::WholeRefusalOf;
using testing::AllOf;
using testing::HasSubstr;

TEST(HostileFormula, DeepNestingIsAnErrorWhenItIsRead)
{
    const std::string deep[] = {
        Repeated("(", 10000) + "1" + Repeated(")", 10000),
        Repeated("SGN(", 10000) + "1" + Repeated(")", 10000),
        Repeated("NEG ", 10000) + "1",
        Repeated("-~", 10000) + "1",
        Repeated("1?(", 10000) + "1" + Repeated("):0", 10000),
        Repeated("(", 10000)};
    for (const std::string& formula : deep)
    {
        const SmallMap map(Knife(formula));
        const std::string refusal = WholeRefusalOf<LogicalErrorException>([&] { map.Integer("K")->GetValue(); });
        EXPECT_THAT(refusal, AllOf(HasSubstr("'K'"), HasSubstr("nested too deep"))) << formula.substr(0, 10);
        EXPECT_LE(refusal.size(), 2047u);
        EXPECT_EQ(map.Integer("A")->GetValue(), 6);
    }
}

TEST(HostileFormula, LengthAloneIsFine)
{
    const SmallMap map(Knife("A" + Repeated("+1", 500000)));
    EXPECT_EQ(map.Integer("K")->GetValue(), 500006);
    const SmallMap chained(Knife("A" + Repeated("?2:3", 100000)));
    EXPECT_EQ(chained.Integer("K")->GetValue(), 2);
}

TEST(HostileFormula, ManyNamesAreFine)
{
    const SmallMap map(
        Integer("A") + "<IntSwissKnife Name='K'>" + Numbered(100000, "<pVariable Name='V", "'>A</pVariable>") +
        "<Formula>0" + Numbered(100000, "+V", "") + "</Formula></IntSwissKnife>");
    EXPECT_EQ(map.Integer("K")->GetValue(), 100000);
}

TEST(HostileFormula, LongNamesAreCutInMessages)
{
    const std::string name(1u << 20, 'n');
    for (const std::string& formula : {name, "1 " + name, name + "(", std::string(1u << 20, '1') + "x"})
    {
        const SmallMap map(Knife(formula));
        const std::string refusal = WholeRefusalOf<LogicalErrorException>([&] { map.Integer("K")->GetValue(); });
        EXPECT_THAT(refusal, HasSubstr("'K'"));
        EXPECT_LE(refusal.size(), 2047u);
    }
}

TEST(HostileFormula, DivisionByZeroIsAnError)
{
    const SmallMap map(
        Knife("A/(A-6)") + "<IntSwissKnife Name=\"R\"><Formula>1%0</Formula></IntSwissKnife>"
                           "<SwissKnife Name=\"F\"><Formula>1/0</Formula></SwissKnife>"
                           "<Integer Name=\"B\"><pValue>R</pValue></Integer>");
    for (const char* const name : {"K", "R", "F", "B"})
    {
        EXPECT_THAT(
            RefusalOf<LogicalErrorException>([&] { map.Value(name)->ToString(); }), HasSubstr("ivision by zero"))
            << name;
    }
    const SmallMap smallest(
        "<IntSwissKnife Name=\"K\"><Formula>(0-9223372036854775807-1)/(0-1)</Formula></IntSwissKnife>");
    EXPECT_EQ(smallest.Integer("K")->GetValue(), INT64_MIN);
}

// An element with a link to the one before it, for chains without end.
struct Chain
{
    const char* name;
    const char* first;  // the element N0
    const char* before; // what stands before, between and behind the two names of the others
    const char* between;
    const char* behind;
};

const Chain chains[] = {
    {"Integer", "<Integer Name='N0'><Value>1</Value></Integer>", "<Integer Name='N", "'><pValue>N",
     "</pValue></Integer>"},
    {"Float", "<Float Name='N0'><Value>1</Value></Float>", "<Float Name='N", "'><pValue>N", "</pValue></Float>"},
    {"String", "<String Name='N0'><Value>x</Value></String>", "<String Name='N", "'><pValue>N", "</pValue></String>"},
    {"Boolean", "<Boolean Name='N0'><Value>true</Value></Boolean>", "<Boolean Name='N", "'><pValue>N",
     "</pValue></Boolean>"},
    {"Enumeration",
     "<Enumeration Name='N0'><EnumEntry Name='X'><Value>1</Value></EnumEntry><Value>1</Value></Enumeration>",
     "<Enumeration Name='N", "'><EnumEntry Name='X'><Value>1</Value></EnumEntry><pValue>N", "</pValue></Enumeration>"},
    {"Limits", "<Integer Name='N0'><Value>1</Value></Integer>", "<Integer Name='N", "'><Value>1</Value><pMax>N",
     "</pMax></Integer>"},
    {"Increments", "<Integer Name='N0'><Value>1</Value></Integer>", "<Integer Name='N", "'><Value>1</Value><pInc>N",
     "</pInc></Integer>"},
    {"Conditions", "<Integer Name='N0'><Value>1</Value></Integer>", "<Integer Name='N", "'><pIsAvailable>N",
     "</pIsAvailable><Value>1</Value></Integer>"},
    {"Errors", "<Integer Name='N0'><Value>1</Value></Integer>", "<Integer Name='N", "'><pError>N",
     "</pError><Value>1</Value></Integer>"},
    {"Knives", "<Integer Name='N0'><Value>1</Value></Integer>", "<IntSwissKnife Name='N", "'><pVariable Name='X'>N",
     "</pVariable><Formula>X</Formula></IntSwissKnife>"},
    {"LimitsOfVariables", "<Float Name='N0'><Value>1</Value></Float>", "<SwissKnife Name='N",
     "'><pVariable Name='X.Max'>N", "</pVariable><Formula>X.Max</Formula></SwissKnife>"},
    {"Converters", "<Float Name='N0'><Value>1</Value></Float>", "<Converter Name='N",
     "'><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><IsLinear>Yes</IsLinear><pValue>N",
     "</pValue></Converter>"},
    {"Addresses", "<Integer Name='N0'><Value>1</Value></Integer>", "<IntReg Name='N", "'><pAddress>N",
     "</pAddress><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>BigEndian</Endianess>"
     "</IntReg>"},
    {"Categories", "<Category Name='N0'><pFeature>Device</pFeature></Category>", "<Category Name='N", "'><pFeature>N",
     "</pFeature></Category>"},
    {"Invalidators", "<Integer Name='N0'><Value>1</Value></Integer>", "<Integer Name='N", "'><pInvalidator>N",
     "</pInvalidator><Value>1</Value></Integer>"},
    {"Selectors", "<Integer Name='N0'><Value>1</Value></Integer>", "<Integer Name='N", "'><Value>1</Value><pSelected>N",
     "</pSelected></Integer>"},
};

std::string Elements(const Chain& chain, int count)
{
    std::string text = chain.first;
    for (int i = 1; i < count; ++i)
        text += chain.before + std::to_string(i) + chain.between + std::to_string(i - 1) + chain.behind;
    return text;
}

class HostileChain : public testing::TestWithParam<Chain>
{};

TEST_P(HostileChain, EndsInAnErrorWhereverItIsEntered)
{
    const int count = 50000;
    const SmallMap map(Elements(GetParam(), count));
    koro::test::UseNode(map.Node(("N" + std::to_string(count - 1)).c_str()));
    // From the other end each node finds the access mode of the one before it known.
    NodeList_t nodes;
    map.map->GetNodes(nodes);
    nodes.resize(static_cast<size_t>(count) - 1000); // those above met the end of the depth
    for (INode* const node : nodes)
    {
        koro::test::Survives([&] { node->GetAccessMode(); });
        koro::test::Survives([&] { node->GetCachingMode(); });
        koro::test::Survives([&] { node->IsAccessModeCacheable(); });
    }
    koro::test::UseNode(map.Node(("N" + std::to_string(count - 1)).c_str()));
    EXPECT_NO_THROW(CValuePtr(map.Node("N0"))->ToString());
    EXPECT_NO_THROW(CValuePtr(map.Node("N9"))->ToString());
}

INSTANTIATE_TEST_SUITE_P(
    Links, HostileChain, testing::ValuesIn(chains),
    [](const testing::TestParamInfo<Chain>& chain) { return std::string(chain.param.name); });

// Each knife reads the one before it twice, and nothing may be kept: at the top that is 2^60 readings.
TEST(HostileFan, ReadingsThatDoubleAreBounded)
{
    std::string elements = IntReg("N0", "0", "<Cachable>NoCache</Cachable>");
    for (int i = 1; i <= 60; ++i)
    {
        const std::string before = "N" + std::to_string(i - 1);
        elements += "<IntSwissKnife Name='N" + std::to_string(i) + "'><pVariable Name='X'>" + before +
                    "</pVariable><pVariable Name='Y'>" + before + "</pVariable><Formula>X+Y</Formula></IntSwissKnife>";
    }
    SmallMap map(elements);
    map.port.bytes[0] = 1;
    EXPECT_THAT(
        RefusalOf<RuntimeException>([&] { map.Integer("N60")->GetValue(); }),
        HasSubstr("Too many nodes are read for one value"));
    EXPECT_LE(map.port.reads, 1 << 20);
    EXPECT_EQ(map.Integer("N5")->GetValue(), 32);
}

TEST(HostileFan, CategoriesThatDoubleAreBounded)
{
    std::string elements = "<Category Name='N0'><pFeature>Device</pFeature></Category>";
    for (int i = 1; i <= 60; ++i)
    {
        const std::string before = "<pFeature>N" + std::to_string(i - 1) + "</pFeature>";
        elements += "<Category Name='N" + std::to_string(i) + "'>" + before + before + "</Category>";
    }
    const SmallMap map(elements);
    EXPECT_THAT(
        RefusalOf<RuntimeException>([&] { map.Node("N60")->GetVisibility(); }),
        HasSubstr("Too many nodes are read for one value"));
    EXPECT_EQ(map.Node("N5")->GetVisibility(), Beginner);
}

std::string Register(const std::string& element, const std::string& length, const std::string& more = "")
{
    return "<" + element + " Name=\"R\"><Address>0</Address>" + length +
           "<AccessMode>RW</AccessMode><pPort>Device</pPort>" + more + "</" + element + ">";
}

TEST(HostileLength, RegistersThatDoNotFitTheirNodeLoadAndAreErrorsWhenUsed)
{
    const std::string order = "<Endianess>LittleEndian</Endianess>";
    for (const char* const length : {"0", "9", "1099511627776", "9223372036854775807", "-1"})
    {
        const std::string element = "<Length>" + std::string(length) + "</Length>";
        const SmallMap whole(Register("IntReg", element, order));
        EXPECT_THROW(whole.Integer("R")->GetValue(), OutOfRangeException) << length;
        EXPECT_THROW(whole.Integer("R")->SetValue(1), GenericException) << length;
        EXPECT_EQ(whole.port.reads + whole.port.writes, 0);
        const SmallMap real(Register("FloatReg", element, order));
        EXPECT_THROW(real.Float("R")->GetValue(), OutOfRangeException) << length;
    }
}

TEST(HostileLength, HugeRegistersAreNeverFetchedWhole)
{
    for (const std::string& length :
         {std::string("<Length>1099511627776</Length>"), std::string("<Length>9223372036854775807</Length>"),
          std::string("<pLength>L</pLength>")})
    {
        const std::string more = Integer("L", "<Value>1099511627776</Value>");
        const SmallMap text(more + Register("StringReg", length));
        EXPECT_THROW(CStringPtr(text.Node("R"))->GetValue(), RuntimeException);
        EXPECT_THROW(CStringPtr(text.Node("R"))->SetValue("x"), RuntimeException);
        EXPECT_THROW(text.Value("R")->ToString(), RuntimeException);
        const SmallMap raw(more + Register("Register", length));
        EXPECT_THROW(raw.Value("R")->ToString(), RuntimeException);
        EXPECT_EQ(text.port.reads + text.port.writes + raw.port.reads, 0);
        uint8_t bytes[4] = {};
        CRegisterPtr(raw.Node("R"))->Get(bytes, sizeof bytes);
        EXPECT_EQ(raw.port.reads, 1);
    }
}

TEST(HostileLength, FieldsThatLieOutsideOfWhatANodeTellsAreErrors)
{
    for (const char* const order : {"BigEndian", "LittleEndian"})
    {
        const SmallMap map(
            Integer("L", "<Value>1</Value>") +
            "<StructReg Comment='c'><Address>0</Address><pLength>L</pLength><AccessMode>RW</AccessMode>"
            "<pPort>Device</pPort><Endianess>" +
            order + "</Endianess><StructEntry Name='Far'><Bit>40</Bit></StructEntry>" +
            "<StructEntry Name='Near'><Bit>7</Bit></StructEntry></StructReg>");
        EXPECT_THROW(map.Integer("Far")->GetValue(), OutOfRangeException) << order;
        EXPECT_THROW(map.Integer("Far")->SetValue(0, false), OutOfRangeException) << order;
        EXPECT_EQ(map.Integer("Near")->GetValue(), 0) << order;
    }
}

TEST(HostileLength, TextOfNoLengthIsEmptyAndTakesNothing)
{
    const SmallMap map(Register("StringReg", "<Length>0</Length>"));
    CStringPtr(map.Node("R"))->SetValue("", false);
    EXPECT_EQ(CStringPtr(map.Node("R"))->GetValue(), "");
    EXPECT_EQ(map.port.reads + map.port.writes, 0);
}

TEST(HostileLength, NegativeLengthsAreErrors)
{
    const SmallMap map(Integer("L", "<Value>-5</Value>") + Register("Register", "<pLength>L</pLength>"));
    uint8_t bytes[4] = {};
    EXPECT_THROW(CRegisterPtr(map.Node("R"))->Get(bytes, 4), GenericException);
    EXPECT_THROW(CRegisterPtr(map.Node("R"))->Get(bytes, -1), GenericException);
    EXPECT_THROW(map.Value("R")->ToString(), GenericException);
    EXPECT_EQ(map.port.reads, 0);
}

// Fails at its n-th call, whichever that is.
class FailingPort : public MemoryPort
{
public:
    void Read(void* buffer, int64_t address, int64_t length) override
    {
        Count();
        MemoryPort::Read(buffer, address, length);
    }
    void Write(const void* buffer, int64_t address, int64_t length) override
    {
        Count();
        MemoryPort::Write(buffer, address, length);
    }
    EAccessMode GetAccessMode() const override
    {
        Count();
        return RW;
    }

    mutable int untilFailure = -1; // never
    mutable bool failed = false;
    int kind = 0;

private:
    void Count() const
    {
        if (untilFailure < 0 || --untilFailure >= 0) return;
        failed = true;
        if (kind == 0) throw RUNTIME_EXCEPTION("the port fails");
        if (kind == 1) throw std::runtime_error("the port fails");
        throw 5;
    }
};

TEST(HostilePort, MayThrowAtAnyCall)
{
    const std::string nodes =
        "<Category Name=\"Root\"><pFeature>A</pFeature><pFeature>S</pFeature></Category>" + IntReg("R", "0") +
        IntReg("Locked", "4") + IntReg("Base", "8") +
        IntReg("Indirect", "16</Address><pAddress>Base</pAddress><Address>0") +
        "<Integer Name=\"A\"><pIsLocked>Locked</pIsLocked><pValue>R</pValue><pMax>Limit</pMax></Integer>" +
        Integer("Limit", "<Value>100</Value>") +
        "<Integer Name=\"S\"><pValue>Indirect</pValue><pSelected>A</pSelected></Integer>"
        "<IntConverter Name=\"C\"><FormulaTo>FROM+1</FormulaTo><FormulaFrom>TO-1</FormulaFrom><pValue>R</pValue>"
        "</IntConverter><Command Name=\"X\"><pValue>R</pValue><CommandValue>9</CommandValue></Command>";
    for (int kind = 0; kind < 3; ++kind)
    {
        bool failed = true;
        int calls = 0;
        for (; failed; ++calls)
        {
            CNodeMapRef map;
            map._LoadXMLFromString(Described(nodes).c_str());
            FailingPort port;
            port.kind = kind;
            port.untilFailure = calls;
            const auto use = [&] {
                map._InvalidateNodes();
                for (const char* const name : {"A", "S", "C"})
                {
                    const CIntegerPtr number(map._GetNode(name));
                    number->SetValue(number->GetValue() + 1);
                    CValuePtr(map._GetNode(name))->ToString();
                }
                CCommandPtr(map._GetNode("X"))->Execute();
                CCommandPtr(map._GetNode("X"))->IsDone();
                map._Poll(1000);
            };
            try
            {
                map._Connect(&port);
                use();
            }
            catch (const GenericException&)
            {
                EXPECT_EQ(kind, 0);
            }
            catch (const std::runtime_error&)
            {
                EXPECT_EQ(kind, 1);
            }
            catch (int)
            {
                EXPECT_EQ(kind, 2);
            }
            failed = port.failed;
            EXPECT_TRUE(map._Ptr->GetLock().TryLock());
            map._Ptr->GetLock().Unlock();
            // Afterwards all is as if nothing had been.
            port.untilFailure = -1;
            map._Connect(&port);
            port.bytes.clear();
            EXPECT_NO_THROW(use()) << "call " << calls;
            EXPECT_EQ(CIntegerPtr(map._GetNode("R"))->GetValue(), 9) << "call " << calls;
        }
        EXPECT_GT(calls, 10);
    }
}

} // namespace
