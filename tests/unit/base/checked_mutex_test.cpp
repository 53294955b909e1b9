#include "base/checked_mutex.h"

#include <gtest/gtest.h>
#include <mutex>
#include <system_error>
#include <thread>

using koro::internal::CheckedMutex;

TEST(CheckedMutex, SecondLockByTheOwnerThrowsTheStandardDeadlockError)
{
    CheckedMutex mutex;
    const std::lock_guard lock(mutex);
    try
    {
        mutex.lock();
        FAIL() << "the second lock went through";
    }
    catch (const std::system_error& error)
    {
        EXPECT_EQ(error.code(), std::errc::resource_deadlock_would_occur);
    }
}

TEST(CheckedMutex, CanBeLockedAgainAfterItsRelease)
{
    CheckedMutex mutex;
    mutex.lock();
    mutex.unlock();
    mutex.lock();
    mutex.unlock();
}

TEST(CheckedMutex, TryTakesItWhenItIsFreeAndThrowsOnTheOwningThread)
{
    CheckedMutex mutex;
    ASSERT_TRUE(mutex.try_lock());
    EXPECT_THROW(static_cast<void>(mutex.try_lock()), std::system_error);
    std::thread([&] { EXPECT_FALSE(mutex.try_lock()); }).join();
    mutex.unlock();
    std::thread([&] {
        EXPECT_TRUE(mutex.try_lock());
        mutex.unlock();
    }).join();
}

TEST(CheckedMutex, RefusedSecondLockLeavesTheFirstOneInPlace)
{
    CheckedMutex mutex;
    mutex.lock();
    EXPECT_THROW(mutex.lock(), std::system_error);
    int value = 0;
    std::thread other([&] {
        const std::lock_guard lock(mutex);
        EXPECT_EQ(value, 1);
        value = 2;
    });
    value = 1;
    mutex.unlock();
    other.join();
    EXPECT_EQ(value, 2);
}

TEST(CheckedMutex, RefusesItsOwnerAloneAndTakesNothing)
{
    CheckedMutex mutex;
    EXPECT_NO_THROW(mutex.RefuseOwner());
    mutex.lock();
    EXPECT_THROW(mutex.RefuseOwner(), std::system_error);
    std::thread([&] { EXPECT_NO_THROW(mutex.RefuseOwner()); }).join();
    mutex.unlock();
    EXPECT_NO_THROW(mutex.RefuseOwner());
}

TEST(CheckedMutex, ExcludesOtherThreads)
{
    CheckedMutex mutex;
    int counter = 0;
    const auto count = [&] {
        for (int round = 0; round < 10'000; ++round)
        {
            const std::lock_guard lock(mutex);
            ++counter;
        }
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(counter, 20'000);
}
