// CheckedMutex: a plain, non-recursive mutex that knows its owner.
//
// A second lock by the owning thread throws the standard deadlock error instead of waiting forever. Used for locks that
// are held while callbacks of the application run.
#pragma once

#include <atomic>
#include <mutex>
#include <thread>

namespace koro::internal
{

class CheckedMutex
{
public:
    CheckedMutex() = default;
    CheckedMutex(const CheckedMutex&) = delete;
    CheckedMutex& operator=(const CheckedMutex&) = delete;

    // Throws std::system_error (resource_deadlock_would_occur) on the owning thread.
    void lock();
    // Throws like lock(); returns false when another thread holds it.
    bool try_lock();
    void unlock();
    // Throws like lock(), but does not take the lock.
    void RefuseOwner() const;

private:
    std::mutex mutex;
    std::atomic<std::thread::id> owner{};
};

} // namespace koro::internal
