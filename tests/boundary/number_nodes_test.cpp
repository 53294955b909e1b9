// Nodes with a number, a flag, a text or bytes: what they return, how they are read and written.
#include "tests/boundary/described_camera.h"
#include "tests/boundary/producer_errors.h"
#include "tests/support/in_thread.h"

#include <gmock/gmock.h>
#include <limits>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using testing::HasSubstr;

using Strings = std::vector<std::string>;

// `elements` stand in front of the register's own.
std::string Register(const std::string& type, const std::string& name, std::size_t address, const std::string& access)
{
    return "<" + type + " Name=\"" + name + "\"><Address>" + std::to_string(address) +
           "</Address><Length>8</Length><AccessMode>" + access + "</AccessMode><pPort>Device</pPort></" + type + ">";
}

std::string FloatRegister(const std::string& name, std::size_t address)
{
    return "<FloatReg Name=\"" + name + "\"><Address>" + std::to_string(address) +
           "</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
           "<Endianess>LittleEndian</Endianess></FloatReg>";
}

const std::string description =
    "<Integer Name=\"Width\"><pValue>WidthReg</pValue><Min>8</Min><Max>640</Max><Inc>4</Inc><Unit>px</Unit>"
    "<Representation>HexNumber</Representation></Integer>" +
    IntRegister("WidthReg", 0) +
    "<Integer Name=\"Choice\"><Value>10</Value><Min>5</Min><Max>40</Max>"
    "<ValidValueSet>1;10;20;40;80</ValidValueSet></Integer>"
    "<Integer Name=\"Plain\"><Value>1</Value></Integer>"
    "<Float Name=\"Exposure\"><pValue>ExposureReg</pValue><Min>0.5</Min><Max>100</Max><Inc>0.25</Inc><Unit>ms</Unit>"
    "<Representation>Logarithmic</Representation><DisplayNotation>Scientific</DisplayNotation>"
    "<DisplayPrecision>3</DisplayPrecision></Float>" +
    FloatRegister("ExposureReg", 8) +
    "<Float Name=\"Free\"><Value>2</Value></Float>"
    "<Boolean Name=\"Flag\"><pValue>FlagReg</pValue><OnValue>7</OnValue><OffValue>3</OffValue></Boolean>" +
    IntRegister("FlagReg", 16) + Register("StringReg", "Text", 24, "RW") + Register("Register", "Bytes", 32, "RW") +
    Register("Register", "Command", 40, "WO") + Register("Register", "Fixed", 48, "RO");

class ValueNode : public DescribedCamera
{
protected:
    template <class Handle>
    Handle As(const std::string& name, KORO_ReturnCode (*cast)(KORO_NodeHandle, Handle*)) const
    {
        return Get<Handle>(cast, Find(map, name));
    }
    KORO_IntegerNodeHandle Integer(const std::string& name) const { return As(name, KORO_Node_ToIntegerNode); }
    KORO_FloatNodeHandle Float(const std::string& name) const { return As(name, KORO_Node_ToFloatNode); }
    KORO_RegisterNodeHandle Bytes(const std::string& name) const { return As(name, KORO_Node_ToRegisterNode); }

    // Of a read with each policy in turn; the cache has been filled before.
    template <class Read>
    void ExpectThatOnlyTheSecondPolicyAsksTheDevice(const Read& read) const
    {
        read(KORO_NODE_CACHE_POLICY_USE_CACHE);
        for (const KORO_NodeCachePolicy policy : {0, 2, -1, std::numeric_limits<std::int32_t>::max()})
        {
            SCOPED_TRACE(policy);
            producer->ClearJournal();
            read(policy);
            EXPECT_EQ(Reads(), Strings{});
        }
        producer->ClearJournal();
        read(KORO_NODE_CACHE_POLICY_IGNORE_CACHE);
        EXPECT_EQ(Reads().size(), 1u);
    }

    // Whether the lock of the map is held while the register is written.
    template <class Write>
    void ExpectThatItIsWrittenUnderTheLock(const Write& write) const
    {
        int writes = 0;
        producer->OnEntry("GCWritePort", [&] {
            ++writes;
            EXPECT_FALSE(InThread([&] { return Get<KORO_Bool8>(KORO_NodeMap_TryLock, map) != 0; }));
        });
        EXPECT_EQ(Outcome(write()), Error{});
        producer->OnEntry("GCWritePort", {});
        EXPECT_EQ(writes, 1);
        EXPECT_TRUE(InThread([&] {
            const bool locked = Get<KORO_Bool8>(KORO_NodeMap_TryLock, map) != 0;
            if (locked) Require(KORO_NodeMap_Unlock(map));
            return locked;
        }));
    }

    const KORO_NodeMapHandle map = Describe(description);
};

template <class Export>
void ExpectFailure(KORO_ReturnCode code, const std::string& text, const Export& call)
{
    const Error outcome = Outcome(call());
    EXPECT_EQ(outcome.code, code) << outcome;
    EXPECT_THAT(outcome.text, HasSubstr(text));
}

} // namespace

TEST_F(ValueNode, IntegerTellsItsLimitsIncrementUnitAndRepresentation)
{
    const auto node = Integer("Width");
    ExpectScalarOut<KORO_IntegerNodeHandle, std::int64_t>("minimum", 8, KORO_IntegerNode_GetMinimum, node);
    ExpectScalarOut<KORO_IntegerNodeHandle, std::int64_t>("maximum", 640, KORO_IntegerNode_GetMaximum, node);
    ExpectScalarOut<KORO_IntegerNodeHandle, std::int64_t>("increment", 4, KORO_IntegerNode_GetIncrement, node);
    ExpectScalarOut<KORO_IntegerNodeHandle, KORO_NodeIncrementType>(
        "incrementType", KORO_NODE_INCREMENT_TYPE_FIXED, KORO_IntegerNode_GetIncrementType, node);
    ExpectScalarOut<KORO_IntegerNodeHandle, KORO_NodeRepresentation>(
        "representation", KORO_NODE_REPRESENTATION_HEX_NUMBER, KORO_IntegerNode_GetRepresentation, node);
    ExpectTextOut("unit", "px", KORO_IntegerNode_GetUnit, node);
}

TEST_F(ValueNode, ValidValuesAreGivenWithinTheLimitsAndTheirSizeCountsBytes)
{
    const auto node = Integer("Choice");
    EXPECT_EQ(Get<KORO_NodeIncrementType>(KORO_IntegerNode_GetIncrementType, node), KORO_NODE_INCREMENT_TYPE_LIST);

    std::size_t size = 0;
    EXPECT_EQ(Outcome(KORO_IntegerNode_GetValidValues(node, nullptr, &size)), Error{});
    EXPECT_EQ(size, 24u);
    std::vector<std::int64_t> values(4, -1);
    size = 23;
    EXPECT_EQ(Outcome(KORO_IntegerNode_GetValidValues(node, values.data(), &size)), TooSmall("validValues"));
    EXPECT_EQ(size, 23u);
    EXPECT_EQ(values, (std::vector<std::int64_t>{-1, -1, -1, -1}));
    size = 32;
    EXPECT_EQ(Outcome(KORO_IntegerNode_GetValidValues(node, values.data(), &size)), Error{});
    EXPECT_EQ(size, 24u);
    EXPECT_EQ(values, (std::vector<std::int64_t>{10, 20, 40, -1}));
    EXPECT_EQ(Outcome(KORO_IntegerNode_GetValidValues(node, values.data(), nullptr)), NullPointer("validValuesSize"));
}

TEST_F(ValueNode, NodeWithoutAListHasNoValidValues)
{
    std::size_t size = 99;
    EXPECT_EQ(Outcome(KORO_IntegerNode_GetValidValues(Integer("Plain"), nullptr, &size)), Error{});
    EXPECT_EQ(size, 0u);
    double none = -1;
    EXPECT_EQ(Outcome(KORO_FloatNode_GetValidValues(Float("Exposure"), &none, &size)), Error{});
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(none, -1);
}

TEST_F(ValueNode, IntegerIsReadFromTheCacheUnlessThePolicyIsOne)
{
    SetRegister(0, 320);
    const auto node = Integer("Width");
    ExpectThatOnlyTheSecondPolicyAsksTheDevice([&](KORO_NodeCachePolicy policy) {
        EXPECT_EQ(Get<std::int64_t>(KORO_IntegerNode_GetValue, node, policy), 320);
    });
    EXPECT_EQ(Outcome(KORO_IntegerNode_GetValue(node, 0, nullptr)), NullPointer("value"));
}

TEST_F(ValueNode, IntegerOutsideItsLimitsIsStillRead)
{
    SetRegister(0, 5000);
    EXPECT_EQ(Get<std::int64_t>(KORO_IntegerNode_GetValue, Integer("Width"), 0), 5000);
}

TEST_F(ValueNode, IntegerIsWrittenUnderTheLockAfterACheck)
{
    const auto node = Integer("Width");
    ExpectThatItIsWrittenUnderTheLock([&] { return KORO_IntegerNode_SetValue(node, 480); });
    EXPECT_EQ(Get<std::int64_t>(KORO_IntegerNode_GetValue, node, KORO_NODE_CACHE_POLICY_IGNORE_CACHE), 480);

    producer->ClearJournal();
    for (const std::int64_t refused : {4, 644, 10, -8})
    {
        SCOPED_TRACE(refused);
        ExpectFailure(KORO_RETURN_CODE_OUT_OF_RANGE, "Width", [&] { return KORO_IntegerNode_SetValue(node, refused); });
    }
    EXPECT_EQ(CallsOf(producer->Journal(), {"GCWritePort"}), Strings{});
}

TEST_F(ValueNode, FloatTellsItsLimitsIncrementUnitAndFormat)
{
    const auto node = Float("Exposure");
    ExpectScalarOut<KORO_FloatNodeHandle, double>("minimum", 0.5, KORO_FloatNode_GetMinimum, node);
    ExpectScalarOut<KORO_FloatNodeHandle, double>("maximum", 100, KORO_FloatNode_GetMaximum, node);
    ExpectScalarOut<KORO_FloatNodeHandle, KORO_Bool8>(
        "hasConstantIncrement", 1, KORO_FloatNode_GetHasConstantIncrement, node);
    ExpectScalarOut<KORO_FloatNodeHandle, double>("increment", 0.25, KORO_FloatNode_GetIncrement, node);
    ExpectScalarOut<KORO_FloatNodeHandle, KORO_NodeIncrementType>(
        "incrementType", KORO_NODE_INCREMENT_TYPE_FIXED, KORO_FloatNode_GetIncrementType, node);
    ExpectScalarOut<KORO_FloatNodeHandle, KORO_NodeRepresentation>(
        "representation", KORO_NODE_REPRESENTATION_LOGARITHMIC, KORO_FloatNode_GetRepresentation, node);
    ExpectTextOut("unit", "ms", KORO_FloatNode_GetUnit, node);
    ExpectScalarOut<KORO_FloatNodeHandle, KORO_NodeDisplayNotation>(
        "displayNotation", KORO_NODE_DISPLAY_NOTATION_SCIENTIFIC, KORO_FloatNode_GetDisplayNotation, node);
    ExpectScalarOut<KORO_FloatNodeHandle, std::int64_t>(
        "displayPrecision", 3, KORO_FloatNode_GetDisplayPrecision, node);
}

TEST_F(ValueNode, FloatWithoutAnIncrementSaysSo)
{
    const auto node = Float("Free");
    EXPECT_EQ(Get<KORO_Bool8>(KORO_FloatNode_GetHasConstantIncrement, node), 0);
    EXPECT_EQ(Get<KORO_NodeIncrementType>(KORO_FloatNode_GetIncrementType, node), KORO_NODE_INCREMENT_TYPE_NONE);
    double increment = -1;
    ExpectFailure(KORO_RETURN_CODE_ERROR, "Free", [&] { return KORO_FloatNode_GetIncrement(node, &increment); });
    EXPECT_EQ(increment, -1);
}

TEST_F(ValueNode, FloatIsReadFromTheCacheUnlessThePolicyIsOneAndWrittenUnderTheLock)
{
    const auto node = Float("Exposure");
    ExpectThatItIsWrittenUnderTheLock([&] { return KORO_FloatNode_SetValue(node, 12.5); });
    ExpectThatOnlyTheSecondPolicyAsksTheDevice(
        [&](KORO_NodeCachePolicy policy) { EXPECT_EQ(Get<double>(KORO_FloatNode_GetValue, node, policy), 12.5); });
    for (const double refused : {0.25, 100.5})
        ExpectFailure(
            KORO_RETURN_CODE_OUT_OF_RANGE, "Exposure", [&] { return KORO_FloatNode_SetValue(node, refused); });
    EXPECT_EQ(Outcome(KORO_FloatNode_SetValue(node, 12.6)), Error{}); // between two increments
    EXPECT_EQ(Outcome(KORO_FloatNode_GetValue(node, 0, nullptr)), NullPointer("value"));
}

TEST_F(ValueNode, BooleanIsReadFromTheCacheUnlessThePolicyIsOneAndWrittenUnderTheLock)
{
    const auto node = As("Flag", KORO_Node_ToBooleanNode);
    ExpectThatItIsWrittenUnderTheLock([&] { return KORO_BooleanNode_SetValue(node, 1); });
    EXPECT_EQ(Get<std::int64_t>(KORO_IntegerNode_GetValue, Integer("FlagReg"), 1), 7);
    ExpectThatOnlyTheSecondPolicyAsksTheDevice(
        [&](KORO_NodeCachePolicy policy) { EXPECT_EQ(Get<KORO_Bool8>(KORO_BooleanNode_GetValue, node, policy), 1); });

    Require(KORO_BooleanNode_SetValue(node, 0));
    EXPECT_EQ(Get<std::int64_t>(KORO_IntegerNode_GetValue, Integer("FlagReg"), 1), 3);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_BooleanNode_GetValue, node, 0), 0);
    Require(KORO_BooleanNode_SetValue(node, 255));
    EXPECT_EQ(Get<KORO_Bool8>(KORO_BooleanNode_GetValue, node, 0), 1);
    EXPECT_EQ(Outcome(KORO_BooleanNode_GetValue(node, 0, nullptr)), NullPointer("value"));
}

TEST_F(ValueNode, StringIsReadFromTheCacheUnlessThePolicyIsOneAndWrittenUnderTheLock)
{
    const auto node = As("Text", KORO_Node_ToStringNode);
    ExpectScalarOut<KORO_StringNodeHandle, std::int64_t>("maximumLength", 8, KORO_StringNode_GetMaximumLength, node);
    ExpectThatItIsWrittenUnderTheLock([&] { return KORO_StringNode_SetValue(node, "hello", 6); });
    ExpectThatOnlyTheSecondPolicyAsksTheDevice([&](KORO_NodeCachePolicy policy) {
        std::size_t size = 0;
        Require(KORO_StringNode_GetValue(node, policy, nullptr, &size));
        EXPECT_EQ(size, 6u);
    });
    ExpectBufferOut<char>("value", std::string("hello") + '\0', [&](char* buffer, std::size_t* size) {
        return KORO_StringNode_GetValue(node, KORO_NODE_CACHE_POLICY_USE_CACHE, buffer, size);
    });
    ExpectFailure(
        KORO_RETURN_CODE_OUT_OF_RANGE, "Text", [&] { return KORO_StringNode_SetValue(node, "nine bytes", 10); });
    EXPECT_EQ(Outcome(KORO_StringNode_SetValue(node, nullptr, 3)), NullPointer("value"));
}

TEST_F(ValueNode, SizeOfATextIsTakenAtItsWord)
{
    const auto node = As("Text", KORO_Node_ToStringNode);
    Require(KORO_StringNode_SetValue(node, "abcdef", 4));
    EXPECT_EQ(GetText(KORO_StringNode_GetValue, node, 0), "abc");
    Require(KORO_StringNode_SetValue(node, "abcdef", 0));
    EXPECT_EQ(GetText(KORO_StringNode_GetValue, node, 0), "");
}

TEST_F(ValueNode, RegisterTellsItsPlaceAndMovesBytes)
{
    const auto node = Bytes("Bytes");
    ExpectScalarOut<KORO_RegisterNodeHandle, std::uint64_t>("address", 32, KORO_RegisterNode_GetAddress, node);
    ExpectScalarOut<KORO_RegisterNodeHandle, std::size_t>("length", 8, KORO_RegisterNode_GetLength, node);

    const std::vector<std::uint8_t> written{1, 2, 0, 4, 5, 6, 7, 255};
    ExpectThatItIsWrittenUnderTheLock([&] { return KORO_RegisterNode_Write(node, written.data(), written.size()); });
    std::vector<std::uint8_t> read(8);
    Require(KORO_RegisterNode_Read(node, 0, read.data(), read.size()));
    EXPECT_EQ(read, written);
    EXPECT_EQ(Outcome(KORO_RegisterNode_Read(node, 0, nullptr, 8)), NullPointer("data"));
    EXPECT_EQ(Outcome(KORO_RegisterNode_Write(node, nullptr, 8)), NullPointer("data"));
}

TEST_F(ValueNode, RegisterMayBeReadFromTheCacheWhateverThePolicy)
{
    const auto node = Bytes("Bytes");
    std::uint8_t bytes[8];
    Require(KORO_RegisterNode_Read(node, 0, bytes, sizeof bytes));
    producer->ClearJournal();
    for (const KORO_NodeCachePolicy policy : {0, 1, 2})
        EXPECT_EQ(Outcome(KORO_RegisterNode_Read(node, policy, bytes, sizeof bytes)), Error{});
    EXPECT_EQ(Reads(), Strings{});
}

TEST_F(ValueNode, RegisterThatCannotBeAccessedIsRefusedBeforeTheDeviceIsAsked)
{
    std::uint8_t bytes[8] = {};
    producer->ClearJournal();
    ExpectFailure(KORO_RETURN_CODE_BAD_ACCESS, "Command", [&] {
        return KORO_RegisterNode_Read(Bytes("Command"), KORO_NODE_CACHE_POLICY_IGNORE_CACHE, bytes, sizeof bytes);
    });
    ExpectFailure(KORO_RETURN_CODE_BAD_ACCESS, "Fixed", [&] {
        return KORO_RegisterNode_Write(Bytes("Fixed"), bytes, sizeof bytes);
    });
    EXPECT_EQ(CallsOf(producer->Journal(), {"GCReadPort", "GCWritePort"}), Strings{});
}

TEST_F(ValueNode, LengthBeyondTheRegistersIsRefusedWithoutHarm)
{
    std::vector<std::uint8_t> bytes(16, 0xaa);
    for (const std::size_t size : {std::size_t{9}, std::size_t{16}, SIZE_MAX})
    {
        SCOPED_TRACE(size);
        const auto code = size == SIZE_MAX ? KORO_RETURN_CODE_INVALID_ARGUMENT : KORO_RETURN_CODE_OUT_OF_RANGE;
        EXPECT_EQ(KORO_RegisterNode_Read(Bytes("Bytes"), 0, bytes.data(), size), code);
        EXPECT_EQ(KORO_RegisterNode_Write(Bytes("Bytes"), bytes.data(), size), code);
    }
    EXPECT_EQ(bytes, std::vector<std::uint8_t>(16, 0xaa));
}

TEST_F(ValueNode, TypedHandleGivesThePlainNodeBack)
{
    const auto expectNode = [&](const std::string& name, auto cast, auto back) {
        SCOPED_TRACE(name);
        const auto typed = As(name, cast);
        ExpectScalarOut("nodeHandle", Find(map, name), back, typed);
    };
    expectNode("Width", KORO_Node_ToIntegerNode, KORO_IntegerNode_ToNode);
    expectNode("Exposure", KORO_Node_ToFloatNode, KORO_FloatNode_ToNode);
    expectNode("Flag", KORO_Node_ToBooleanNode, KORO_BooleanNode_ToNode);
    expectNode("Text", KORO_Node_ToStringNode, KORO_StringNode_ToNode);
    expectNode("Bytes", KORO_Node_ToRegisterNode, KORO_RegisterNode_ToNode);
}

TEST_F(ValueNode, ProducersFailureArrivesWithItsCodeAndTheNodeReadsOnAfterwards)
{
    const auto node = Integer("Width");
    for (const auto& [failure, code] :
         {std::pair{GenTL::GC_ERR_IO, KORO_RETURN_CODE_IO_ERROR},
          std::pair{GenTL::GC_ERR_ACCESS_DENIED, KORO_RETURN_CODE_BAD_ACCESS},
          std::pair{GenTL::GC_ERR_INVALID_ADDRESS, KORO_RETURN_CODE_INVALID_ADDRESS}})
    {
        SCOPED_TRACE(failure);
        producer->Answer("GCReadPort", failure);
        std::int64_t value = -1;
        ExpectFailure(code, "GCReadPort", [&] { return KORO_IntegerNode_GetValue(node, 1, &value); });
        EXPECT_EQ(value, -1);
        producer->AnswerAsUsual("GCReadPort");
        EXPECT_EQ(Outcome(KORO_IntegerNode_GetValue(node, 1, &value)), Error{});
    }
}

TEST_F(ValueNode, EveryFailureOfTheProducerArrivesWithItsCodeAndTextAndLeavesTheOutputAlone)
{
    const auto integer = Integer("Width");
    const auto text = As("Text", KORO_Node_ToStringNode);
    std::uint8_t data[8] = {};
    for (const auto& error : producerErrors)
    {
        SCOPED_TRACE(error.code);
        producer->Answer("GCReadPort", error.code);
        Require(KORO_NodeMap_InvalidateNodes(map));
        std::int64_t value = -1;
        EXPECT_EQ(Outcome(KORO_IntegerNode_GetValue(integer, 0, &value)), CallFailure("GCReadPort", error));
        EXPECT_EQ(value, -1);
        char letters[16] = "untouched";
        std::size_t size = sizeof letters;
        EXPECT_EQ(Outcome(KORO_StringNode_GetValue(text, 0, letters, &size)), CallFailure("GCReadPort", error));
        EXPECT_EQ(size, sizeof letters);
        EXPECT_STREQ(letters, "untouched");
        EXPECT_EQ(
            Outcome(KORO_RegisterNode_Read(Bytes("Bytes"), 0, data, sizeof data)), CallFailure("GCReadPort", error));
        producer->AnswerAsUsual("GCReadPort");

        producer->Answer("GCWritePort", error.code);
        EXPECT_EQ(Outcome(KORO_IntegerNode_SetValue(integer, 64)), CallFailure("GCWritePort", error));
        EXPECT_EQ(Outcome(KORO_StringNode_SetValue(text, "a", 2)), CallFailure("GCWritePort", error));
        EXPECT_EQ(
            Outcome(KORO_RegisterNode_Write(Bytes("Bytes"), data, sizeof data)), CallFailure("GCWritePort", error));
        producer->AnswerAsUsual("GCWritePort");
        EXPECT_EQ(Get<std::int64_t>(KORO_IntegerNode_GetValue, integer, 0), 0); // nothing of the write is remembered
    }
    EXPECT_EQ(Outcome(KORO_IntegerNode_SetValue(integer, 64)), Error{});
}

TEST_F(ValueNode, FewerBytesThanTheRegisterHasAreItsFirst)
{
    const std::uint8_t written[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    Require(KORO_RegisterNode_Write(Bytes("Bytes"), written, sizeof written));
    const std::uint8_t fewer[2] = {9, 9};
    Require(KORO_RegisterNode_Write(Bytes("Bytes"), fewer, sizeof fewer));
    std::vector<std::uint8_t> read(4, 0xaa);
    Require(KORO_RegisterNode_Read(Bytes("Bytes"), 0, read.data(), 3));
    EXPECT_EQ(read, (std::vector<std::uint8_t>{9, 9, 3, 0xaa}));
    EXPECT_EQ(Outcome(KORO_RegisterNode_Read(Bytes("Bytes"), 0, read.data(), 0)), Error{});
    EXPECT_EQ(Outcome(KORO_RegisterNode_Write(Bytes("Bytes"), fewer, 0)), Error{});
}

TEST_F(ValueNode, DeviceThatIsEndedDuringAnAccessClosesBehindItAndEndsTheHandles)
{
    const auto integer = Integer("Width");
    producer->OnEntry("GCReadPort", [&] { Require(KORO_Device_Destruct(tree.device)); });
    std::int64_t value = -1;
    EXPECT_EQ(Outcome(KORO_IntegerNode_GetValue(integer, 1, &value)), Error{});
    producer->OnEntry("GCReadPort", {});
    EXPECT_EQ(value, 0);
    EXPECT_EQ(Outcome(KORO_IntegerNode_GetValue(integer, 1, &value)), InvalidHandle("integerNodeHandle"));
    EXPECT_EQ(Outcome(KORO_NodeMap_InvalidateNodes(map)), InvalidHandle("nodeMapHandle"));
}

TEST_F(ValueNode, HandlesEndWithTheDevice)
{
    const auto node = Integer("Width");
    Require(KORO_Device_Destruct(tree.device));
    std::int64_t value = 0;
    EXPECT_EQ(Outcome(KORO_IntegerNode_GetValue(node, 0, &value)), InvalidHandle("integerNodeHandle"));
}

} // namespace koro::test
