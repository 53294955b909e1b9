// What reading and writing values allocates: this program counts every operator new.
#include "tests/unit/genicam/counted_new.h"
#include "tests/unit/genicam/small_map.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::IntReg;
using koro::test::SmallMap;

// Memory that allocates nothing itself.
class PlainPort : public IPort
{
public:
    void Read(void* buffer, int64_t address, int64_t length) override { memcpy(buffer, bytes + address, Size(length)); }
    void Write(const void* buffer, int64_t address, int64_t length) override
    {
        memcpy(bytes + address, buffer, Size(length));
    }
    EAccessMode GetAccessMode() const override { return RW; }

private:
    static std::size_t Size(int64_t length) { return static_cast<std::size_t>(length); }

    uint8_t bytes[256] = {};
};

template <class Act>
std::size_t AllocationsOf(const Act& act)
{
    act(); // the first time fills caches and compiles formulas
    const std::size_t before = koro::test::AllocationsSoFar().calls;
    for (int i = 0; i < 10; ++i)
        act();
    return koro::test::AllocationsSoFar().calls - before;
}

const std::string uncached = "<Cachable>NoCache</Cachable>";
const std::string camera =
    IntReg("Cached", "0") + IntReg("Uncached", "4", uncached) +
    IntReg("Selected", "16</Address><pIndex>Format</pIndex><Address>0", uncached) +
    "<MaskedIntReg "
    "Name=\"Masked\"><Address>8</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>" +
    uncached +
    "<LSB>4</LSB><MSB>15</MSB><Endianess>LittleEndian</Endianess></MaskedIntReg>"
    "<FloatReg Name=\"Real\"><Address>12</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>" +
    uncached +
    "<Endianess>LittleEndian</Endianess></FloatReg>"
    "<Integer Name=\"Value\"><pIsAvailable>Cached</pIsAvailable><pValue>Uncached</pValue></Integer>"
    "<IntSwissKnife Name=\"Knife\"><pVariable Name=\"A\">Masked</pVariable><pVariable Name=\"B\">Uncached</pVariable>"
    "<Formula>(A &gt; 3) ? A * 2 : B - 1</Formula></IntSwissKnife>"
    "<Converter Name=\"Scaled\"><FormulaTo>FROM*10</FormulaTo><FormulaFrom>TO/10</FormulaFrom><pValue>Uncached</pValue>"
    "<Slope>Increasing</Slope></Converter>"
    "<Boolean Name=\"Switch\"><pValue>Uncached</pValue></Boolean>"
    "<Enumeration Name=\"Format\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry><EnumEntry Name=\"B\"><Value>1"
    "</Value></EnumEntry><Value>0</Value></Enumeration>";

class Allocations : public testing::Test
{
protected:
    Allocations() : map(camera)
    {
        map.map->Connect(&port);
        map.Integer("Cached")->SetValue(1);
        map.Integer("Masked")->SetValue(1);
    }

    PlainPort port;
    SmallMap map;
};

TEST_F(Allocations, AreCounted)
{
    EXPECT_EQ(AllocationsOf([] { delete new int; }), 10u);
}

TEST_F(Allocations, ReadingANumberMakesNone)
{
    for (const char* const name : {"Cached", "Uncached", "Masked", "Value", "Knife", "Selected"})
    {
        const CIntegerPtr node = map.Integer(name);
        EXPECT_EQ(AllocationsOf([&] { node->GetValue(); }), 0u) << name;
        EXPECT_EQ(AllocationsOf([&] { node->GetValue(true); }), 0u) << name << ", verified";
        EXPECT_EQ(AllocationsOf([&] { node->GetValue(false, true); }), 0u) << name << ", past the caches";
        EXPECT_EQ(AllocationsOf([&] { node->GetMax(); }), 0u) << name << ", its maximum";
    }
    for (const char* const name : {"Real", "Scaled"})
    {
        const CFloatPtr node = map.Float(name);
        EXPECT_EQ(AllocationsOf([&] { node->GetValue(); }), 0u) << name;
    }
    const CBooleanPtr boolean(map.Node("Switch"));
    EXPECT_EQ(AllocationsOf([&] { boolean->GetValue(); }), 0u);
    const CEnumerationPtr enumeration = map.Enumeration("Format");
    EXPECT_EQ(AllocationsOf([&] { enumeration->GetIntValue(); }), 0u);
    EXPECT_EQ(AllocationsOf([&] { enumeration->GetCurrentEntry(); }), 0u);
}

TEST_F(Allocations, AccessModesAndInvalidationsMakeNone)
{
    INode* const node = map.Node("Value");
    EXPECT_EQ(AllocationsOf([&] { node->GetAccessMode(); }), 0u);
    EXPECT_EQ(
        AllocationsOf([&] {
            map.Node("Cached")->InvalidateNode();
            node->GetAccessMode();
        }),
        0u);
}

TEST_F(Allocations, WritingANumberMakesNoneWithoutListeners)
{
    for (const char* const name : {"Cached", "Uncached", "Masked", "Value"})
    {
        const CIntegerPtr node = map.Integer(name);
        EXPECT_EQ(AllocationsOf([&] { node->SetValue(1); }), 0u) << name;
    }
    EXPECT_EQ(AllocationsOf([&] { map.Float("Scaled")->SetValue(0.5); }), 0u);
    const CEnumerationPtr enumeration = map.Enumeration("Format");
    EXPECT_EQ(AllocationsOf([&] { enumeration->SetIntValue(1); }), 0u);
}

} // namespace
