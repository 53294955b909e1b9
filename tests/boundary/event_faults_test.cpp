// Events as nobody should send them: refused as a whole, or without a node for them, and never more than that.
#include "tests/boundary/event_nodes_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace koro::test
{

namespace
{

using testing::HasSubstr;
using testing::StartsWith;

struct Transport
{
    const char* tlType;
    const std::string& features;
    std::string (*message)(std::uint16_t, const std::string&, std::uint64_t);
    std::string (*number)(std::uint64_t, std::size_t);
    std::size_t headerSize;
    std::size_t lengthOffset;
};

class EventFaults : public EventNodesTest
{
protected:
    const Transport transports[3] = {
        {"GEV", gevFeatures, GEVEvent, BigEndian, 8, 4},
        {"U3V", u3vFeatures, U3VEvent, LittleEndian, 12, 8},
        {"CL", clFeatures, CLEvent, BigEndian, 16, 12}};

    // The camera, with 7 in the node.
    void Open(const Transport& transport)
    {
        OpenAs(transport.tlType, transport.features);
        Require(KORO_NodeMap_UpdateEventNodes(map, Take(transport.message(0x9001, transport.number(7, 4), 0))));
    }
    void ExpectMalformed(const std::string& block, const std::string& reason = "")
    {
        const Error outcome = Update(Take(block));
        EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
        EXPECT_THAT(outcome.text, StartsWith("Malformed message: " + reason));
        EXPECT_EQ(Value("Exposure"), 7);
    }
    static std::string WithLength(std::string message, const Transport& transport, std::size_t length)
    {
        return message.replace(transport.lengthOffset, 2, transport.number(length, 2));
    }
};

} // namespace

TEST_F(EventFaults, MessageCutAtAnyByteChangesNothing)
{
    for (const Transport& transport : transports)
    {
        SCOPED_TRACE(transport.tlType);
        Open(transport);
        const std::string message = transport.message(0x9001, transport.number(9, 4), 0);
        for (std::size_t size = 0; size < message.size(); ++size)
            ExpectMalformed(message.substr(0, size));
        EXPECT_EQ(Update(Take(message)), Error{});
        EXPECT_EQ(Value("Exposure"), 9);
    }
}

TEST_F(EventFaults, EmptyMessageIsRefused)
{
    for (const Transport& transport : transports)
    {
        Open(transport);
        EXPECT_TRUE(IsSupported(map, Take("")));
        ExpectMalformed("");
    }
}

TEST_F(EventFaults, LengthBeyondTheMessageIsRefused)
{
    for (const Transport& transport : transports)
    {
        SCOPED_TRACE(transport.tlType);
        Open(transport);
        const std::string message = transport.message(0x9001, transport.number(9, 4), 0);
        const std::size_t payload = message.size() - transport.headerSize;
        for (const std::size_t length : {payload + 1, std::size_t{0x7fff}, std::size_t{0xffff}})
            ExpectMalformed(WithLength(message, transport, length), "shorter than its header says");
    }
}

TEST_F(EventFaults, LengthTooShortForAnEventDeliversNone)
{
    for (const Transport& transport : transports)
    {
        SCOPED_TRACE(transport.tlType);
        Open(transport);
        const std::string message = transport.message(0x9001, transport.number(9, 4), 0);
        for (const std::size_t length : {0u, 1u, 11u})
        {
            EXPECT_EQ(Update(Take(WithLength(message, transport, length))), Error{});
            EXPECT_EQ(Value("Exposure"), 7);
        }
    }
}

// The item is there, without the data that the node reads.
TEST_F(EventFaults, ReadBehindTheDataIsAFailureOfGenApi)
{
    for (const Transport& transport : transports)
    {
        SCOPED_TRACE(transport.tlType);
        Open(transport);
        EXPECT_EQ(Update(Take(transport.message(0x9001, "abc", 0))), Error{});
        const auto exposure = Get<KORO_IntegerNodeHandle>(KORO_Node_ToIntegerNode, Find(map, "Exposure"));
        std::int64_t value = 0;
        const Error outcome = Outcome(KORO_IntegerNode_GetValue(exposure, KORO_NODE_CACHE_POLICY_USE_CACHE, &value));
        EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
        EXPECT_THAT(outcome.text, HasSubstr("is outside of the data"));
    }
}

TEST_F(EventFaults, UnknownIdIsNoFailureAndChangesNothing)
{
    for (const Transport& transport : transports)
    {
        SCOPED_TRACE(transport.tlType);
        Open(transport);
        for (const std::uint16_t id : std::initializer_list<std::uint16_t>{0, 1, 0x9000, 0x9003, 0x0190, 0xffff})
        {
            EXPECT_EQ(Update(Take(transport.message(id, transport.number(9, 4), 0))), Error{});
            EXPECT_EQ(Value("Exposure"), 7);
            EXPECT_EQ(Value("Line"), std::nullopt);
        }
    }
}

TEST_F(EventFaults, MessageOfAnotherTransportLayerIsRefused)
{
    for (const Transport& transport : transports)
    {
        Open(transport);
        for (const Transport& other : transports)
        {
            SCOPED_TRACE(std::string(transport.tlType) + " takes " + other.tlType);
            const std::string message = other.message(0x9001, other.number(9, 4), 0);
            if (&other == &transport) continue;
            ExpectMalformed(message);
        }
    }
}

TEST_F(EventFaults, ItemWhoseSizeRunsPastTheMessageEndsItQuietly)
{
    Open(transports[0]);
    std::string message = GEVEvent(0x9001, BigEndian(9, 4));
    for (const std::size_t size : {1u, 15u, 21u, 0xffffu}) // the item has 20 bytes
    {
        EXPECT_EQ(Update(Take(message.replace(8, 2, BigEndian(size, 2)))), Error{});
        EXPECT_EQ(Value("Exposure"), 7);
    }
}

} // namespace koro::test
