// Feature bags at work while other threads use the nodes.
#include "tests/unit/genicam/persistence_bag.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace
{

using namespace GENAPI_NAMESPACE;
using koro::test::Features;
using koro::test::Fill;
using koro::test::IntegerSelector;
using koro::test::KeptFor;
using koro::test::Records;
using koro::test::SmallMap;

// Each transfer of the port is a place where another thread goes on, if nothing holds it back.
const char* const uncached = "<Cachable>NoCache</Cachable>";

TEST(PersistenceThreads, BagsHoldNoHalfOfAChange)
{
    SmallMap map(Features("A B") + KeptFor("A", "0", "", uncached) + KeptFor("B", "1", "", uncached));
    map.port.onRead = map.port.onWrite = std::this_thread::yield;
    std::atomic<bool> over{false};
    std::thread writer([&] {
        const CIntegerPtr a = map.Integer("A");
        const CIntegerPtr b = map.Integer("B");
        for (int64_t value = 1; !over; value = value % 9 + 1)
        {
            const AutoLock held(map.map->GetLock());
            a->SetValue(value);
            b->SetValue(value);
        }
    });
    int mixed = 0;
    for (int i = 0; i < 200; ++i)
    {
        CFeatureBag bag;
        bag.StoreToBag(map.map);
        const std::string records = Records(bag);
        const std::string value(1, records.at(2));
        if (records != "A\t" + value + "\nB\t" + value + "\n") ++mixed;
    }
    over = true;
    writer.join();
    EXPECT_EQ(mixed, 0);
}

TEST(PersistenceThreads, WalksOverOneSelectorDoNotMeet)
{
    SmallMap map(
        IntegerSelector("S", "2", "<Min>0</Min><Max>3</Max>", "G") + Features("G") + KeptFor("G", "0", "S", uncached));
    const std::string records = "G\t{S=0}\t10\nG\t{S=1}\t11\nG\t{S=2}\t12\nG\t{S=3}\t13\nS\t2\n";
    CFeatureBag filled;
    Fill(filled, records);
    ASSERT_TRUE(filled.LoadFromBag(map.map));
    map.port.onRead = map.port.onWrite = std::this_thread::yield;
    std::atomic<int> wrong{0};
    const auto store = [&] {
        for (int i = 0; i < 100; ++i)
        {
            CFeatureBag bag;
            bag.StoreToBag(map.map);
            if (Records(bag) != records) ++wrong;
        }
    };
    const auto load = [&] {
        for (int i = 0; i < 100; ++i)
        {
            if (!filled.LoadFromBag(map.map)) ++wrong;
        }
    };
    std::thread first(store), second(store), third(load), fourth(load);
    first.join();
    second.join();
    third.join();
    fourth.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(map.Integer("S")->GetValue(), 2);
}

} // namespace
