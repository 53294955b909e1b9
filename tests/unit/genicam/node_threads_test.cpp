// One map that several threads read, write, poll, invalidate and listen to at once.
#include "tests/unit/genicam/small_map.h"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace
{

using namespace GENAPI_NAMESPACE;
using koro::test::IntReg;
using koro::test::SmallMap;

std::string Field(const std::string& name, const std::string& first, const std::string& last)
{
    return "<MaskedIntReg Name=\"" + name +
           "\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><LSB>" + first +
           "</LSB><MSB>" + last + "</MSB><Endianess>LittleEndian</Endianess></MaskedIntReg>";
}

TEST(NodeThreads, ReadWritePollAndInvalidateOneMap)
{
    SmallMap map(
        Field("Low", "0", "7") + Field("High", "8", "15") +
        IntReg("Polled", "4", "<Cachable>NoCache</Cachable><PollingTime>1</PollingTime>") +
        "<IntSwissKnife Name=\"Word\"><pVariable Name=\"L\">Low</pVariable><pVariable Name=\"H\">High</pVariable>"
        "<Formula>H*256+L</Formula></IntSwissKnife>"
        "<Enumeration Name=\"Choice\"><EnumEntry Name=\"None\"><Value>0</Value></EnumEntry><EnumEntry Name=\"Some\">"
        "<Value>1</Value><pIsAvailable>Low</pIsAvailable></EnumEntry><pValue>Polled</pValue></Enumeration>");
    map.port.onRead = map.port.onWrite = std::this_thread::yield;
    const int rounds = 300;
    std::atomic<int> wrong{0};
    std::atomic<int> calls{0};
    const auto write = [&](const char* name) {
        const CIntegerPtr field = map.Integer(name);
        for (int i = 0; i < rounds; ++i)
        {
            field->SetValue(i % 256);
            if (field->GetValue() != i % 256) ++wrong; // nobody else writes this field
        }
    };
    const auto read = [&] {
        for (int i = 0; i < rounds; ++i)
        {
            const int64_t word = map.Integer("Word")->GetValue();
            if (word < 0 || word > 0xffff) ++wrong;
            if (map.Value("Choice")->ToString() != "None") ++wrong;
            if (!IsImplemented(map.Node("Choice")->GetAccessMode())) ++wrong;
        }
    };
    const auto outdate = [&] {
        for (int i = 0; i < rounds; ++i)
        {
            map.map->Poll(1);
            map.Node("Low")->InvalidateNode();
            map.map->InvalidateNodes();
        }
    };
    const auto listen = [&] {
        for (int i = 0; i < rounds; ++i)
        {
            const CallbackHandleType handle = Register(
                map.Node("Word"), std::function<void(INode*)>([&](INode*) { ++calls; }),
                i % 2 == 0 ? cbPostInsideLock : cbPostOutsideLock);
            map.Node("High")->InvalidateNode();
            Deregister(handle);
        }
    };
    std::vector<std::thread> threads;
    threads.emplace_back(write, "Low");
    threads.emplace_back(write, "High");
    threads.emplace_back(read);
    threads.emplace_back(outdate);
    threads.emplace_back(listen);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_GE(calls, rounds) << "each listener hears its own invalidation at least";
    const int64_t last = (rounds - 1) % 256;
    EXPECT_EQ(map.Integer("Word")->GetValue(), last * 256 + last);
}

} // namespace
