// The work of loading grows with the description, not faster. Work is counted in bytes that are asked for, never in
// time.
#include "tests/unit/genicam/counted_new.h"
#include "tests/unit/genicam/elements.h"
#include "tests/unit/genicam/small_map.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace GENAPI_NAMESPACE;
using koro::test::Described;
using koro::test::IntReg;
using koro::test::Numbered;

typedef std::string (*Shape)(int size);

size_t WorkOf(Shape shape, int size)
{
    const std::string xml = Described(shape(size));
    const size_t before = koro::test::AllocationsSoFar().bytes;
    CNodeMapFactory factory(ContentType_Xml, xml.data(), xml.size());
    INodeMap* const map = factory.CreateNodeMap();
    const size_t after = koro::test::AllocationsSoFar().bytes;
    CastToIDestroy(map)->Destroy();
    return after - before;
}

std::string Constants(int size)
{
    return Numbered(size, "<Integer Name=\"N", "\"><Value>1</Value></Integer>");
}

std::string Chain(int size)
{
    std::string text = "<Integer Name=\"N0\"><Value>1</Value></Integer>";
    for (int i = 1; i < size; ++i)
    {
        text +=
            "<Integer Name=\"N" + std::to_string(i) + "\"><pValue>N" + std::to_string(i - 1) + "</pValue></Integer>";
    }
    return text;
}

std::string ReadersOfOne(int size)
{
    return IntReg("R", "0") + Numbered(size, "<Integer Name=\"N", "\"><pValue>R</pValue></Integer>");
}

std::string Invalidators(int size)
{
    std::string text;
    for (int i = 0; i < size; ++i)
    {
        text += "<Integer Name=\"N" + std::to_string(i) + "\"><pInvalidator>N" + std::to_string((i + 1) % size) +
                "</pInvalidator><Value>1</Value></Integer>";
    }
    return text;
}

std::string OneCategory(int size)
{
    return "<Category Name=\"Root\">" + Numbered(size, "<pFeature>N", "</pFeature>") + "</Category>" + Constants(size);
}

std::string OneEnumeration(int size)
{
    return "<Enumeration Name=\"E\">" + Numbered(size, "<EnumEntry Name=\"X", "\"><Value>1</Value></EnumEntry>") +
           "<Value>1</Value></Enumeration>";
}

std::string Entries(int size)
{
    return "<StructReg Comment=\"c\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device"
           "</pPort><Endianess>BigEndian</Endianess>" +
           Numbered(size, "<StructEntry Name=\"N", "\"><Bit>1</Bit></StructEntry>") + "</StructReg>";
}

std::string Selected(int size)
{
    return "<Integer Name=\"S\"><Value>1</Value>" + Numbered(size, "<pSelected>N", "</pSelected>") + "</Integer>" +
           Constants(size);
}

std::string Knives(int size)
{
    return "<Integer Name=\"A\"><Value>1</Value></Integer>" +
           Numbered(
               size, "<IntSwissKnife Name=\"K",
               "\"><pVariable Name=\"A\">A</pVariable><Constant Name=\"C\">1</Constant><Formula>A+C</Formula>"
               "</IntSwissKnife>");
}

struct Case
{
    const char* name;
    Shape shape;
};

class Growth : public testing::TestWithParam<Case>
{};

TEST_P(Growth, FourTimesTheNodesAreFourTimesTheWork)
{
    const size_t small = WorkOf(GetParam().shape, 5000);
    const size_t large = WorkOf(GetParam().shape, 20000);
    EXPECT_LT(large, small * 6) << "tables double, so four times may look like a little more";
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, Growth,
    testing::Values(
        Case{"Constants", Constants}, Case{"Chain", Chain}, Case{"ReadersOfOne", ReadersOfOne},
        Case{"Invalidators", Invalidators}, Case{"OneCategory", OneCategory}, Case{"OneEnumeration", OneEnumeration},
        Case{"Entries", Entries}, Case{"Selected", Selected}, Case{"Knives", Knives}),
    [](const testing::TestParamInfo<Case>& shape) { return std::string(shape.param.name); });

} // namespace
