#include "base/per_thread.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>

using koro::internal::PerThread;

namespace
{

struct Counted
{
    Counted() noexcept { ++living; }
    ~Counted() { --living; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

    int value = 0;
    static inline int living = 0;
};

constinit thread_local PerThread<Counted> counted;

struct LateUser
{
    ~LateUser()
    {
        const int value = counted.Get().value;
        *seen = std::to_string(value) + " of " + std::to_string(Counted::living);
    }
    std::string* seen = nullptr;
};

} // namespace

TEST(PerThread, EachThreadHasAnObjectOfItsOwnWhichEndsWithIt)
{
    std::thread([] {
        EXPECT_EQ(Counted::living, 0);
        counted.Get().value = 1;
        EXPECT_EQ(counted.Get().value, 1);
        EXPECT_EQ(Counted::living, 1);
    }).join();
    EXPECT_EQ(Counted::living, 0);
    std::thread([] { EXPECT_EQ(counted.Get().value, 0); }).join();
    EXPECT_EQ(Counted::living, 0);
}

// Destructors run in the reverse order of construction, so this user comes after the object has gone.
TEST(PerThread, UseAfterItsEndFindsANewObjectWhichEndsToo)
{
    std::string seen;
    std::thread([&] {
        thread_local LateUser user;
        user.seen = &seen;
        counted.Get().value = 1;
    }).join();
    EXPECT_EQ(seen, "0 of 1");
    EXPECT_EQ(Counted::living, 0);
}
