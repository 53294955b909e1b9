#include "tests/unit/genicam/small_map.h"

#include <GenApi/PortImpl.h>
#include <GenApi/PortWriteList.h>
#include <GenApi/StructPort.h>
#include <gtest/gtest.h>
#include <limits>

namespace
{

using namespace GENAPI_NAMESPACE;
using namespace GENICAM_NAMESPACE;
using koro::test::IntReg;
using koro::test::MemoryPort;
using koro::test::SmallMap;

struct Registers
{
    uint32_t width;
    uint32_t height;
};

TEST(StructPort, NodesReadAndWriteTheFields)
{
    CTestPortStruct<Registers> port(0x1000);
    EXPECT_EQ(port.width, 0u);
    const SmallMap map(IntReg("Width", "0x1000") + IntReg("Height", "0x1004"));
    ASSERT_TRUE(map.map->Connect(&port));
    port.height = 480;
    EXPECT_EQ(map.Integer("Height")->GetValue(), 480);
    map.Integer("Width")->SetValue(640);
    EXPECT_EQ(port.width, 640u);
}

TEST(StructPort, RefusesWhatLiesBesideTheStructure)
{
    CTestPortStruct<Registers> port(0x1000);
    uint8_t bytes[16] = {};
    EXPECT_NO_THROW(port.Read(bytes, 0x1000, 8));
    EXPECT_NO_THROW(port.Write(bytes, 0x1008, 0));
    EXPECT_THROW(port.Read(bytes, 0x0fff, 1), OutOfRangeException);
    EXPECT_THROW(port.Read(bytes, 0x1001, 8), OutOfRangeException);
    EXPECT_THROW(port.Write(bytes, 0x1008, 1), OutOfRangeException);
    EXPECT_THROW(port.Write(bytes, 0x1000, -1), OutOfRangeException);
    EXPECT_THROW(port.Read(bytes, std::numeric_limits<int64_t>::min(), 8), OutOfRangeException);
    EXPECT_THROW(port.Read(bytes, 0x1000, std::numeric_limits<int64_t>::max()), OutOfRangeException);
}

TEST(PortImpl, PassesOnToThePortBehindIt)
{
    CPortImpl port;
    uint8_t byte = 0;
    EXPECT_EQ(port.GetAccessMode(), NI);
    EXPECT_THROW(port.Read(&byte, 0, 1), AccessException);
    EXPECT_THROW(port.Write(&byte, 0, 1), AccessException);
    EXPECT_EQ(port.GetSwapEndianess(), No);

    MemoryPort memory;
    memory.mode = RO;
    memory.bytes[3] = 7;
    port.SetPortImpl(&memory);
    EXPECT_EQ(port.GetAccessMode(), RO);
    port.Read(&byte, 3, 1);
    EXPECT_EQ(byte, 7);
    port.Write(&byte, 4, 1);
    EXPECT_EQ(memory.bytes[4], 7);
}

TEST(PortWriteList, PlaysItsWritesInTheirOrder)
{
    CPortWriteList list;
    uint8_t byte = 1;
    list.Write(&byte, 10, 1);
    byte = 2; // the list has its own copy
    list.Write(&byte, 11, 1);
    list.Write(&byte, 10, 0);
    list.SetCookie(-5);
    EXPECT_EQ(list.GetCookie(), -5);

    MemoryPort memory;
    list.Replay(&memory);
    EXPECT_EQ(memory.bytes[10], 1);
    EXPECT_EQ(memory.bytes[11], 2);
    EXPECT_EQ(memory.writes, 3);

    CPortImpl port;
    port.SetPortImpl(&memory);
    port.Replay(&list);
    EXPECT_EQ(memory.writes, 6) << "the list stays";
}

TEST(PortWriteList, RefusesWritesWithoutBytesAndNoPort)
{
    CPortWriteList list;
    uint8_t byte = 1;
    EXPECT_THROW(list.Write(nullptr, 0, 1), InvalidArgumentException);
    EXPECT_THROW(list.Write(&byte, 0, -1), InvalidArgumentException);
    EXPECT_THROW(list.Replay(nullptr), InvalidArgumentException);
    CPortImpl port;
    EXPECT_THROW(port.Replay(nullptr), InvalidArgumentException);
}

} // namespace
