#include "tests/unit/genicam/small_map.h"

#include <gtest/gtest.h>
#include <stdint.h>
#include <string>
#include <vector>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::IntReg;
using koro::test::SmallMap;

std::string Masked(
    const std::string& name, const std::string& bits, const std::string& order, const std::string& more = "")
{
    return "<MaskedIntReg Name=\"" + name +
           "\"><Address>0x10</Address><Length>4</Length><AccessMode>RW</AccessMode>"
           "<pPort>Device</pPort>" +
           more + bits + "<Endianess>" + order + "</Endianess></MaskedIntReg>";
}

TEST(Registers, BytesStandInTheOrderThatTheDescriptionSays)
{
    SmallMap map(
        IntReg("Little", "0") +
        "<IntReg Name=\"Big\"><Address>0</Address><Length>2</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
        "<Sign>Signed</Sign><Endianess>BigEndian</Endianess></IntReg>");
    map.port.bytes = {{0, 0xff}, {1, 0xfe}, {2, 3}, {3, 4}};
    EXPECT_EQ(map.Integer("Little")->GetValue(), 0x0403feff);
    EXPECT_EQ(map.Integer("Big")->GetValue(), -2);
    EXPECT_EQ(map.Integer("Big")->GetMin(), -32768);
    EXPECT_EQ(map.Integer("Big")->GetMax(), 32767);
}

TEST(Registers, FieldsCountTheirBitsByTheByteOrder)
{
    SmallMap map(
        Masked("Low", "<LSB>4</LSB><MSB>7</MSB>", "LittleEndian") +
        Masked("Top", "<LSB>3</LSB><MSB>0</MSB>", "BigEndian"));
    map.port.bytes = {{0x10, 0xab}};
    EXPECT_EQ(map.Integer("Low")->GetValue(), 0xa);
    EXPECT_EQ(map.Integer("Top")->GetValue(), 0xa) << "bit 0 is the highest of a big endian register";
    EXPECT_EQ(map.Integer("Low")->GetMax(), 15);
}

TEST(Registers, FieldsOfOneWordShareItsBytesAndKeepTheirNeighbours)
{
    SmallMap map(
        Masked("A", "<LSB>0</LSB><MSB>3</MSB>", "LittleEndian") +
        Masked("B", "<LSB>4</LSB><MSB>7</MSB>", "LittleEndian"));
    map.port.bytes = {{0x10, 0xab}, {0x11, 0xcd}};
    EXPECT_EQ(map.Integer("A")->GetValue(), 0xb);
    EXPECT_EQ(map.Integer("B")->GetValue(), 0xa);
    EXPECT_EQ(map.port.reads, 1);
    map.Integer("A")->SetValue(1);
    EXPECT_EQ(map.port.reads, 1);
    EXPECT_EQ(map.port.bytes[0x10], 0xa1);
    EXPECT_EQ(map.port.bytes[0x11], 0xcd);
}

TEST(Registers, FieldThatIsNotCachedReadsTheWordBeforeItWrites)
{
    SmallMap map(Masked("A", "<Bit>0</Bit>", "LittleEndian", "<Cachable>NoCache</Cachable>"));
    map.Integer("A")->GetValue();
    map.port.bytes[0x10] = 0xf0;
    map.Integer("A")->SetValue(1);
    EXPECT_EQ(map.port.bytes[0x10], 0xf1);
}

TEST(Registers, CachingModesTellWhenThePortIsAsked)
{
    SmallMap map(
        IntReg("Through", "0") + IntReg("Around", "4", "<Cachable>WriteAround</Cachable>") +
        IntReg("Never", "8", "<Cachable>NoCache</Cachable>"));
    const auto readsOf = [&](const char* name) {
        const int before = map.port.reads;
        map.Integer(name)->GetValue();
        return map.port.reads - before;
    };
    for (const char* name : {"Through", "Around", "Never"})
        EXPECT_EQ(readsOf(name), 1) << name;
    EXPECT_EQ(readsOf("Through"), 0);
    EXPECT_EQ(readsOf("Around"), 0);
    EXPECT_EQ(readsOf("Never"), 1);
    for (const char* name : {"Through", "Around", "Never"})
        map.Integer(name)->SetValue(5);
    EXPECT_EQ(readsOf("Through"), 0);
    EXPECT_EQ(readsOf("Around"), 1);
    EXPECT_EQ(readsOf("Never"), 1);
    map.Integer("Through")->GetValue(false, true);
    EXPECT_EQ(readsOf("Through"), 1);
    EXPECT_EQ(readsOf("Through"), 0);
}

TEST(Registers, InvalidatorDropsTheCache)
{
    SmallMap map(IntReg("R", "0", "<pInvalidator>I</pInvalidator>") + "<Integer Name=\"I\"><Value>0</Value></Integer>");
    EXPECT_EQ(map.Integer("R")->GetValue(), 0);
    map.port.bytes[0] = 9;
    EXPECT_EQ(map.Integer("R")->GetValue(), 0);
    map.Integer("I")->SetValue(0);
    EXPECT_EQ(map.Integer("R")->GetValue(), 9);
}

TEST(Registers, AddressIsTheSumOfItsParts)
{
    SmallMap map(
        "<Integer Name=\"Base\"><Value>0x100</Value></Integer><Integer Name=\"I\"><Value>3</Value></Integer>" +
        IntReg(
            "R", "1</Address><pAddress>Base</pAddress><pIndex Offset=\"16\">I</pIndex><pIndex>I</pIndex><Address>2"));
    EXPECT_EQ(CRegisterPtr(map.Node("R"))->GetAddress(), 1 + 2 + 0x100 + 48 + 3 * 4);
    map.Integer("I")->SetValue(-1);
    EXPECT_EQ(CRegisterPtr(map.Node("R"))->GetAddress(), 3 + 0x100 - 16 - 4);
}

TEST(Registers, LengthThatFitsNoIntegerIsOutOfRangeAtUse)
{
    SmallMap map(
        "<IntReg Name=\"R\"><Address>0</Address><Length>9</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
        "<Endianess>LittleEndian</Endianess></IntReg>");
    EXPECT_THROW(map.Integer("R")->GetValue(), OutOfRangeException);
    EXPECT_THROW(map.Integer("R")->GetMax(), OutOfRangeException);
    EXPECT_EQ(map.port.reads, 0);
}

TEST(Registers, RawBytesAreBoundedByTheLength)
{
    SmallMap map("<Register Name=\"R\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
                 "<pPort>Device</pPort></Register>");
    const CRegisterPtr reg(map.Node("R"));
    const std::vector<uint8_t> bytes = {1, 2, 3, 4, 5};
    std::vector<uint8_t> read(5);
    EXPECT_THROW(reg->Set(bytes.data(), 5), OutOfRangeException);
    EXPECT_THROW(reg->Get(read.data(), 5), OutOfRangeException);
    EXPECT_THROW(reg->Get(read.data(), -1), OutOfRangeException);
    EXPECT_THROW(reg->Get(nullptr, 0), LogicalErrorException);
    reg->Set(bytes.data(), 2);
    reg->Get(read.data(), 4);
    EXPECT_EQ(read, (std::vector<uint8_t>{1, 2, 0, 0, 0}));
    EXPECT_STREQ(reg->ToString().c_str(), "0x01020000");
    reg->FromString("ff");
    EXPECT_STREQ(reg->ToString().c_str(), "0xff020000");
    EXPECT_THROW(reg->FromString("0xf"), InvalidArgumentException);
}

TEST(Registers, TextEndsAtTheFirstZeroAndIsFilledWithZeros)
{
    SmallMap map("<StringReg Name=\"S\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
                 "<pPort>Device</pPort></StringReg>");
    const CStringPtr text(map.Node("S"));
    map.port.bytes = {{0, 'a'}, {1, 'b'}, {2, 0}, {3, 'x'}};
    EXPECT_STREQ(text->GetValue().c_str(), "ab");
    text->SetValue("c");
    EXPECT_EQ(map.port.bytes[3], 0);
    text->SetValue("four");
    EXPECT_STREQ(text->GetValue().c_str(), "four");
    const int writes = map.port.writes;
    EXPECT_THROW(text->SetValue("five5"), OutOfRangeException);
    EXPECT_EQ(map.port.writes, writes);
    EXPECT_EQ(text->GetMaxLength(), 4);
}

TEST(Registers, HugeLengthsDoNotAllocateThem)
{
    SmallMap map("<StringReg Name=\"S\"><Address>0</Address><Length>0x10000000000</Length><AccessMode>RW</AccessMode>"
                 "<pPort>Device</pPort></StringReg>");
    EXPECT_THROW(CStringPtr(map.Node("S"))->GetValue(), RuntimeException);
}

std::string Reg(const std::string& name, const std::string& address, const std::string& length, const std::string& more)
{
    return "<IntReg Name=\"" + name + "\"><Address>" + address + "</Address><Length>" + length +
           "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>" + more +
           "<Endianess>LittleEndian</Endianess></IntReg>";
}

TEST(OverlappingRegisters, SeeWhatAnotherOneHasWritten)
{
    SmallMap map(
        Reg("Word", "0x10", "4", "") + Reg("Half", "0x12", "2", "") + Reg("Long", "0x0c", "8", "") +
        Masked("Field", "<LSB>0</LSB><MSB>3</MSB>", "LittleEndian") + Reg("Beside", "0x14", "4", "") +
        "<Integer Name=\"OverHalf\"><pValue>Half</pValue></Integer>"
        "<Register Name=\"Block\"><Address>0</Address><Length>256</Length><AccessMode>RW</AccessMode>"
        "<pPort>Device</pPort></Register>");
    uint8_t block[256] = {};
    for (const char* const name : {"Word", "OverHalf", "Long", "Field", "Beside"})
        EXPECT_EQ(map.Integer(name)->GetValue(), 0) << name;
    CRegisterPtr(map.Node("Block"))->Get(block, sizeof block);

    map.Integer("Word")->SetValue(0x12345678);
    EXPECT_EQ(map.Integer("Half")->GetValue(), 0x1234);
    EXPECT_EQ(map.Integer("OverHalf")->GetValue(), 0x1234);
    EXPECT_EQ(map.Integer("Long")->GetValue(), 0x1234567800000000);
    EXPECT_EQ(map.Integer("Field")->GetValue(), 8) << "lies at the same place";
    CRegisterPtr(map.Node("Block"))->Get(block, sizeof block);
    EXPECT_EQ(block[0x13], 0x12);

    const int reads = map.port.reads;
    EXPECT_EQ(map.Integer("Beside")->GetValue(), 0);
    EXPECT_EQ(map.port.reads, reads) << "a neighbour keeps what it knows";
}

TEST(OverlappingRegisters, FieldOfTheSamePlaceNeedsNoFurtherReading)
{
    SmallMap map(
        Masked("A", "<LSB>0</LSB><MSB>3</MSB>", "LittleEndian") +
        Masked("B", "<LSB>2</LSB><MSB>5</MSB>", "LittleEndian"));
    EXPECT_EQ(map.Integer("B")->GetValue(), 0);
    map.Integer("A")->SetValue(0xf);
    EXPECT_EQ(map.Integer("B")->GetValue(), 3);
    EXPECT_EQ(map.port.reads, 1);
}

TEST(OverlappingRegisters, OneThatIsNotCachedTellsTheOthersToo)
{
    SmallMap map(Reg("A", "0", "4", "<Cachable>NoCache</Cachable>") + Reg("B", "2", "4", ""));
    EXPECT_EQ(map.Integer("B")->GetValue(), 0);
    map.Integer("A")->SetValue(0x00050000);
    EXPECT_EQ(map.Integer("B")->GetValue(), 5);
}

TEST(OverlappingRegisters, EndsOfTheAddressSpaceAreNoPlaceToFall)
{
    SmallMap map(
        Reg("First", "-9223372036854775808", "8", "") + Reg("Last", "0x7FFFFFFFFFFFFFFF", "1", "") +
        Reg("Middle", "0", "8", ""));
    for (const char* const name : {"First", "Last", "Middle"})
    {
        map.Integer(name)->SetValue(7);
        EXPECT_EQ(map.Integer(name)->GetValue(), 7) << name;
    }
}

TEST(Registers, BytesSetPastTheNumberAreSeenByTheNumber)
{
    SmallMap map(Reg("R", "0", "4", "") + "<Integer Name=\"A\"><pValue>R</pValue></Integer>");
    EXPECT_EQ(map.Integer("A")->GetValue(), 0);
    const uint8_t bytes[] = {1, 2, 3, 4};
    CRegisterPtr(map.Node("R"))->Set(bytes, sizeof bytes);
    EXPECT_EQ(map.Integer("R")->GetValue(), 0x04030201);
    EXPECT_EQ(map.Integer("A")->GetValue(), 0x04030201);
    EXPECT_EQ(map.port.reads, 1);
}

// The length is a limit behind a knife: the knife is cached, what it is made of is not, and verifying asks it again.
TEST(Registers, LengthThatShrinksDuringAnAccessIsOutOfRange)
{
    SmallMap map(
        IntReg("Told", "0", "<Cachable>NoCache</Cachable>") +
        "<Integer Name=\"Limited\"><Value>0</Value><pMax>Told</pMax></Integer><IntSwissKnife "
        "Name=\"Length\"><pVariable "
        "Name=\"A.Max\">Limited</pVariable><Formula>A.Max</Formula></IntSwissKnife>"
        "<StringReg Name=\"Text\"><Address>0x100</Address><pLength>Length</pLength><AccessMode>RW</AccessMode>"
        "<pPort>Device</pPort></StringReg>" +
        IntReg("Word", "0x100"));
    const CStringPtr text = map.Node("Text");
    const auto shrink = [&] {
        map.map->InvalidateNodes();
        map.port.bytes = {{1, 0x10}};
        EXPECT_EQ(text->GetMaxLength(), 0x1000);
        map.Integer("Word")->GetValue(); // whose four bytes are cached then
        map.port.bytes = {{0, 4}};
    };
    shrink();
    EXPECT_THROW(text->GetValue(true), OutOfRangeException);
    shrink();
    EXPECT_THROW(text->SetValue(gcstring(2000, 'a')), OutOfRangeException);
    EXPECT_EQ(map.port.writes, 0);
    map.map->InvalidateNodes();
    text->SetValue("abcd");
    EXPECT_STREQ(text->GetValue(true).c_str(), "abcd");
}

} // namespace
