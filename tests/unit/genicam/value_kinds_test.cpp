// Values that are made of other values: fields, indexed numbers, strings, registers, and what is checked on the way.
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

std::string Field(const std::string& bits, const std::string& endianess, const std::string& sign = "")
{
    return "<MaskedIntReg "
           "Name=\"X\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>" +
           bits + sign + "<Endianess>" + endianess + "</Endianess></MaskedIntReg>";
}

int64_t ReadX(const std::string& elements, const std::vector<uint8_t>& bytes)
{
    SmallMap map(elements);
    for (size_t i = 0; i < bytes.size(); ++i)
        map.port.bytes[static_cast<int64_t>(i)] = bytes[i];
    return map.Integer("X")->GetValue();
}

TEST(Fields, CountBitsFromTheEndThatTheByteOrderSays)
{
    const std::vector<uint8_t> bytes = {0x80, 0x02, 0x03, 0x01};
    EXPECT_EQ(ReadX(Field("<Bit>0</Bit>", "BigEndian"), bytes), 1) << "the most significant";
    EXPECT_EQ(ReadX(Field("<Bit>31</Bit>", "BigEndian"), bytes), 1);
    EXPECT_EQ(ReadX(Field("<Bit>30</Bit>", "BigEndian"), bytes), 0);
    EXPECT_EQ(ReadX(Field("<LSB>15</LSB><MSB>8</MSB>", "BigEndian"), bytes), 2);
    EXPECT_EQ(ReadX(Field("<Bit>0</Bit>", "LittleEndian"), bytes), 0);
    EXPECT_EQ(ReadX(Field("<Bit>7</Bit>", "LittleEndian"), bytes), 1);
    EXPECT_EQ(ReadX(Field("<LSB>8</LSB><MSB>15</MSB>", "LittleEndian"), bytes), 2);
}

TEST(Fields, SignedOnesAreExtendedFromTheirTopBit)
{
    const std::string isSigned = "<Sign>Signed</Sign>";
    EXPECT_EQ(ReadX(Field("<LSB>0</LSB><MSB>3</MSB>", "LittleEndian", isSigned), {0x0f}), -1);
    EXPECT_EQ(ReadX(Field("<LSB>0</LSB><MSB>3</MSB>", "LittleEndian", isSigned), {0x07}), 7);
    const SmallMap bit(Field("<Bit>0</Bit>", "LittleEndian", isSigned));
    EXPECT_EQ(bit.Integer("X")->GetMin(), -1);
    EXPECT_EQ(bit.Integer("X")->GetMax(), 0);
    SmallMap map(Field("<LSB>4</LSB><MSB>7</MSB>", "LittleEndian", isSigned));
    map.Integer("X")->SetValue(-2);
    EXPECT_EQ(map.port.bytes[0], 0xe0);
    EXPECT_THROW(map.Integer("X")->SetValue(8), OutOfRangeException);
}

TEST(Fields, LargeUnsignedNumbersReadAsNegativeAndFailWhenVerified)
{
    SmallMap map("<IntReg "
                 "Name=\"X\"><Address>0</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</"
                 "pPort><Sign>Unsigned"
                 "</Sign><Endianess>LittleEndian</Endianess></IntReg>");
    for (int64_t i = 0; i < 8; ++i)
        map.port.bytes[i] = 0xff;
    EXPECT_EQ(map.Integer("X")->GetValue(), -1);
    EXPECT_THROW(map.Integer("X")->GetValue(true), OutOfRangeException);
}

TEST(Numbers, OnFloatsRoundHalfAwayFromZeroAndMustFit)
{
    const auto read = [](const std::string& value) {
        return SmallMap(
                   "<Float Name=\"F\"><Value>" + value +
                   "</Value></Float><Integer Name=\"X\"><pValue>F</pValue></Integer>")
            .Integer("X")
            ->GetValue();
    };
    EXPECT_EQ(read("2.5"), 3);
    EXPECT_EQ(read("-2.5"), -3);
    EXPECT_EQ(read("2.4"), 2);
    EXPECT_THROW(read("1e19"), RuntimeException);
    EXPECT_THROW(read("NaN"), RuntimeException);
}

TEST(Numbers, OnBooleansAreZeroOrNot)
{
    const SmallMap map(
        "<Boolean Name=\"B\"><Value>true</Value></Boolean><Integer Name=\"X\"><pValue>B</pValue></Integer>");
    EXPECT_EQ(map.Integer("X")->GetValue(), 1);
    map.Integer("X")->SetValue(0);
    EXPECT_FALSE(CBooleanPtr(map.Node("B"))->GetValue());
    map.Integer("X")->SetValue(-7);
    EXPECT_TRUE(CBooleanPtr(map.Node("B"))->GetValue());
}

TEST(Numbers, IndexedOnesUseTheFirstElementOfAnIndexElseTheDefault)
{
    const SmallMap map("<Float Name=\"I\"><Value>1.4</Value></Float><Integer "
                       "Name=\"Target\"><Value>50</Value><Min>0</Min><Max>60</Max></Integer>"
                       "<Integer Name=\"X\"><pIndex>I</pIndex><ValueIndexed Index=\"1\">10</ValueIndexed><ValueIndexed "
                       "Index=\"1\">11</ValueIndexed>"
                       "<pValueIndexed Index=\"2\">Target</pValueIndexed><ValueDefault>99</ValueDefault></Integer>");
    EXPECT_EQ(map.Integer("X")->GetValue(), 10) << "an index is rounded";
    EXPECT_EQ(map.Integer("X")->GetMax(), INT64_MAX);
    map.Float("I")->SetValue(2);
    EXPECT_EQ(map.Integer("X")->GetValue(), 50);
    EXPECT_EQ(map.Integer("X")->GetMax(), 60) << "the limits of the chosen one";
    map.Integer("X")->SetValue(51);
    EXPECT_EQ(map.Integer("Target")->GetValue(), 51);
    EXPECT_THROW(map.Integer("X")->SetValue(61), OutOfRangeException);
    map.Float("I")->SetValue(77);
    EXPECT_EQ(map.Integer("X")->GetValue(), 99);
    map.Integer("X")->SetValue(98);
    EXPECT_EQ(map.Integer("X")->GetValue(), 98);
}

TEST(Numbers, CopiesAreWrittenInTheOrderOfTheFileAndTheMainOneIsRead)
{
    SmallMap map(
        IntReg("A", "0") + IntReg("B", "4") + IntReg("C", "8") +
        "<Integer Name=\"X\"><pValueCopy>B</pValueCopy><pValue>A</pValue><pValueCopy>C</pValueCopy></Integer>");
    std::vector<int> order;
    map.port.onWrite = [&] {
        int written = 0;
        for (const int64_t address : {0, 4, 8})
            written = written * 2 + (map.port.bytes[address] ? 1 : 0);
        order.push_back(written);
    };
    map.Integer("X")->SetValue(5);
    EXPECT_EQ(order, (std::vector<int>{0, 2, 6})) << "what was there before each write: nothing, B, A and B";
    map.port.bytes[4] = 9;
    map.map->InvalidateNodes();
    EXPECT_EQ(map.Integer("X")->GetValue(), 5);
}

std::string StringReg(const std::string& mode, const std::string& length = "4")
{
    return "<StringReg Name=\"X\"><Address>0</Address><Length>" + length + "</Length><AccessMode>" + mode +
           "</AccessMode><pPort>Device</pPort></StringReg>";
}

TEST(Strings, MaximumLengthIsTheRegistersOrTheTexts)
{
    SmallMap writable(StringReg("RW"));
    EXPECT_EQ(CStringPtr(writable.Node("X"))->GetMaxLength(), 4);
    SmallMap readOnly(StringReg("RO"));
    readOnly.port.bytes = {{0, 'a'}, {1, 'b'}};
    EXPECT_EQ(CStringPtr(readOnly.Node("X"))->GetMaxLength(), 2);
    const SmallMap constant(
        "<String Name=\"X\"><Value>abc</Value></String><String Name=\"Y\"><pValue>X</pValue></String>");
    EXPECT_GT(CStringPtr(constant.Node("X"))->GetMaxLength(), 1 << 24);
    CStringPtr(constant.Node("Y"))->SetValue("through");
    EXPECT_STREQ(CStringPtr(constant.Node("X"))->GetValue().c_str(), "through");
}

TEST(Strings, AreReadInOneTransferAndCutAtTheFirstZero)
{
    SmallMap map(StringReg("RW"));
    map.port.bytes = {{0, 'a'}, {1, 0}, {2, 'b'}, {3, 'c'}};
    EXPECT_STREQ(CStringPtr(map.Node("X"))->GetValue().c_str(), "a");
    EXPECT_EQ(map.port.reads, 1);
    map.port.bytes[1] = '-';
    map.map->InvalidateNodes();
    EXPECT_STREQ(CStringPtr(map.Node("X"))->GetValue().c_str(), "a-bc") << "the whole length";
}

TEST(Strings, RegisterOfNoLengthIsEmptyAndTakesNothing)
{
    SmallMap map(StringReg("RW", "0"));
    EXPECT_STREQ(CStringPtr(map.Node("X"))->GetValue().c_str(), "");
    EXPECT_THROW(CStringPtr(map.Node("X"))->SetValue("a"), OutOfRangeException);
    EXPECT_EQ(map.port.reads + map.port.writes, 0);
}

TEST(RawRegisters, TakeAndGiveTheLeadingBytes)
{
    SmallMap map(
        "<Register "
        "Name=\"X\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>");
    const CRegisterPtr reg(map.Node("X"));
    const uint8_t bytes[5] = {1, 2, 3, 4, 5};
    uint8_t read[5] = {};
    reg->Set(bytes, 2);
    EXPECT_EQ(map.port.bytes.size(), 2u) << "just these bytes";
    reg->Get(read, 1);
    EXPECT_EQ(read[0], 1);
    EXPECT_EQ(read[1], 0);
    EXPECT_THROW(reg->Get(read, 5), OutOfRangeException);
    EXPECT_THROW(reg->Set(bytes, 5), OutOfRangeException);
    EXPECT_THROW(reg->Set(nullptr, 0), LogicalErrorException);
    EXPECT_THROW(reg->Get(nullptr, 4), LogicalErrorException);
    const int transfers = map.port.reads + map.port.writes;
    reg->Set(bytes, 0);
    reg->Get(read, 0);
    EXPECT_EQ(map.port.reads + map.port.writes, transfers);
    EXPECT_EQ(reg->GetLength(), 4);
    EXPECT_EQ(reg->GetAddress(), 0);
}

TEST(RawRegisters, NestedKnivesAndSeveralPartsMakeTheAddress)
{
    SmallMap map("<Integer Name=\"I\"><Value>2</Value></Integer><Integer "
                 "Name=\"Step\"><Value>10</Value></Integer><Register Name=\"X\">"
                 "<Address>1</Address><IntSwissKnife Name=\"K\"><pVariable "
                 "Name=\"I\">I</pVariable><Formula>I*100</Formula></IntSwissKnife>"
                 "<pIndex pOffset=\"Step\">I</pIndex><pIndex "
                 "Offset=\"1000\">I</pIndex><pIndex>I</pIndex><Length>4</Length><AccessMode>RW</AccessMode>"
                 "<pPort>Device</pPort></Register>");
    EXPECT_EQ(CRegisterPtr(map.Node("X"))->GetAddress(), 1 + 200 + 20 + 2000 + 8);
    EXPECT_NE(map.Node("_X_K"), nullptr);
    map.Integer("Step")->SetValue(-1000);
    EXPECT_EQ(CRegisterPtr(map.Node("X"))->GetAddress(), 1 + 200 - 2000 + 2000 + 8);
    map.Integer("I")->SetValue(-1);
    EXPECT_EQ(CRegisterPtr(map.Node("X"))->GetAddress(), 1 - 100 + 1000 - 1000 - 4) << "sums may be negative";
}

TEST(ErrorNodes, FailVerifiedReadingAndWritingAndLeaveTheRest)
{
    SmallMap map(
        "<Enumeration Name=\"Error\"><EnumEntry Name=\"Bad\"><ToolTip>it "
        "burns</ToolTip><DisplayName>Fire</DisplayName><Value>3</Value></EnumEntry>"
        "<EnumEntry Name=\"Fine\"><Value>0</Value></EnumEntry><pValue>State</pValue></Enumeration><Integer "
        "Name=\"State\"><Value>3</Value></Integer>"
        "<Integer Name=\"X\"><pError>Error</pError><pValue>R</pValue></Integer>" +
        IntReg("R", "0"));
    int calls = 0;
    Register(map.Node("X"), std::function<void(INode*)>([&](INode*) { ++calls; }));
    try
    {
        map.Integer("X")->SetValue(5);
        FAIL() << "nothing thrown";
    }
    catch (const RuntimeException& exception)
    {
        EXPECT_STREQ(exception.GetDescription(), "Fire : it burns");
    }
    EXPECT_EQ(map.port.bytes[0], 5) << "what was written stays";
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(map.Integer("X")->GetValue(), 5);
    EXPECT_THROW(map.Integer("X")->GetValue(true), RuntimeException);
    map.Integer("X")->SetValue(6, false);
    EXPECT_EQ(calls, 1);
    map.Integer("State")->SetValue(0);
    EXPECT_EQ(map.Integer("X")->GetValue(true), 6);
    map.Integer("State")->SetValue(8);
    EXPECT_THROW(map.Integer("X")->GetValue(true), LogicalErrorException) << "no entry for the number";
}

TEST(Refusals, SayValueAndLimit)
{
    const SmallMap map("<Integer Name=\"I\"><Value>5</Value><Min>0</Min><Max>10</Max><Inc>5</Inc></Integer><Float "
                       "Name=\"F\"><Value>5</Value><Min>0</Min>"
                       "<Max>10</Max></Float>");
    const auto told = [](const auto& act) -> std::string {
        try
        {
            act();
        }
        catch (const OutOfRangeException& exception)
        {
            return exception.GetDescription();
        }
        return "nothing thrown";
    };
    EXPECT_EQ(told([&] { map.Integer("I")->SetValue(-1); }), "Value = -1 must be greater than or equal to Min = 0.");
    EXPECT_EQ(told([&] { map.Integer("I")->SetValue(11); }), "Value = 11 must be smaller than or equal to Max = 10.");
    EXPECT_EQ(told([&] { map.Integer("I")->SetValue(7); }), "Value = 7 is not on the grid of Min = 0 and Inc = 5.");
    EXPECT_EQ(
        told([&] { map.Float("F")->SetValue(-1); }),
        "Value = -1.000000 must be greater than or equal to Min = 0.000000.");
    EXPECT_EQ(
        told([&] { map.Float("F")->SetValue(10.5); }),
        "Value = 10.500000 must be smaller than or equal to Max = 10.000000.");
    map.Integer("I")->SetValue(7, false);
    map.Float("F")->SetValue(99, false);
    EXPECT_EQ(map.Integer("I")->GetValue(), 7) << "without verification nothing is checked";
    EXPECT_EQ(map.Float("F")->GetValue(), 99);
    EXPECT_THROW(map.Float("F")->GetValue(true), OutOfRangeException);
}

TEST(Refusals, OfTextsSayTheText)
{
    const SmallMap map(
        "<Integer Name=\"I\"><Value>5</Value></Integer><Float Name=\"F\"><Value>5</Value></Float><Boolean Name=\"B\">"
        "<Value>true</Value></Boolean><Enumeration Name=\"E\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry>"
        "<Value>0</Value></Enumeration><Command Name=\"C\"><Value>0</Value><CommandValue>1</CommandValue></Command>"
        "<Register Name=\"R\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
        "</Register>");
    const std::pair<const char*, const char*> texts[] = {
        {"I", "The text 'no text' is no integer value."},        {"F", "The text 'no text' is no float value."},
        {"B", "The text 'no text' is no truth value."},          {"E", "There is no entry 'no text'."},
        {"C", "The text 'no text' does not execute a command."}, {"R", "The text 'no text' is no list of hex digits."}};
    for (const auto& [name, text] : texts)
    {
        try
        {
            map.Value(name)->FromString("no text");
            FAIL() << "nothing thrown by " << name;
        }
        catch (const InvalidArgumentException& exception)
        {
            EXPECT_STREQ(exception.GetDescription(), text);
            EXPECT_NE(
                std::string(exception.what())
                    .find("thrown in node '" + std::string(name) + "' while calling '" + name + ".FromString()'"),
                std::string::npos)
                << exception.what();
        }
    }
}

TEST(Refusals, OfAccessRemainWithoutVerification)
{
    const SmallMap map(
        "<Integer Name=\"RO\"><ImposedAccessMode>RO</ImposedAccessMode><Value>5</Value></Integer><Integer "
        "Name=\"WO\"><ImposedAccessMode>WO"
        "</ImposedAccessMode><Value>5</Value></Integer>");
    EXPECT_THROW(map.Integer("RO")->SetValue(1, false), AccessException);
    EXPECT_THROW(map.Integer("WO")->GetValue(), AccessException);
    EXPECT_THROW(map.Value("WO")->ToString(), AccessException);
    EXPECT_THROW(map.Value("RO")->FromString("1", false), AccessException);
}

TEST(Refusals, NameTheNodeWhereTheyAroseAndTheOperationOfTheApplication)
{
    const SmallMap map("<Integer Name=\"Inner\"><Value>5</Value><Max>10</Max></Integer><Integer "
                       "Name=\"Outer\"><pValue>Inner</pValue><Max>100</Max></Integer>");
    try
    {
        map.Integer("Outer")->SetValue(50);
        FAIL() << "nothing thrown";
    }
    catch (const OutOfRangeException& exception)
    {
        EXPECT_NE(
            std::string(exception.what())
                .find("OutOfRangeException thrown in node 'Inner' while calling 'Outer.SetValue()'"),
            std::string::npos)
            << exception.what();
    }
}

} // namespace
