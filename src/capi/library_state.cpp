#include "capi/library_state.h"

#include "base/checked_mutex.h"
#include "base/ended_objects.h"
#include "base/hold.h"
#include "base/own_threads.h"
#include "capi/closing.h"
#include "capi/handle_tables.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace koro::internal
{

namespace
{

CheckedMutex stateMutex;           // held for the whole of a start or a close
std::atomic<bool> isEnding{false}; // during the last close
std::atomic<std::uint64_t> initializations{0};

// Published by the counter. Emptied at each close but not freed, since a call that has passed the initialisation check
// may be running.
HandleTables* tables = nullptr;

// At unload after the last close, frees the empty tables. Objects that were never closed stay: no producer is called at
// unload.
struct UnloadGuard
{
    ~UnloadGuard()
    {
        if (IsLibraryInitialized() || Hold::NumLiving() != 0) return; // a running call needs the tables
        delete std::exchange(tables, nullptr);                        // an exit handler may initialise again
        FreeEndedCallbacks();
    }
} unloadGuard;

struct Ending
{
    Ending() { isEnding = true; }
    ~Ending() { isEnding = false; }
    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;
};

// A callback on a thread of the library must not wait for an end that waits for that thread. A thread that holds the
// lock of a node map must not wait for an end that may wait for that lock.
std::unique_lock<CheckedMutex> LockState()
{
    if (!IsOnOwnThread() && !HoldsMapLock()) return std::unique_lock(stateMutex);
    std::unique_lock lock(stateMutex, std::defer_lock);
    while (!lock.try_lock())
    {
        if (isEnding) throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
        std::this_thread::yield();
    }
    return lock;
}

} // namespace

bool IsLibraryInitialized() noexcept
{
    return initializations.load(std::memory_order_acquire) != 0;
}

void InitializeLibrary()
{
    const auto lock = LockState();
    if (!IsLibraryInitialized())
    {
        if (!tables) tables = new HandleTables;
        tables->Open();
    }
    initializations.fetch_add(1, std::memory_order_release);
}

void CloseLibrary()
{
    const auto lock = LockState();
    const auto count = initializations.load(std::memory_order_acquire);
    if (count == 0) return;
    if (count > 1)
    {
        initializations.store(count - 1, std::memory_order_release);
        return;
    }
    const Ending ending;
    // At this point running callbacks may still call exports. A callback that comes here itself gets the deadlock
    // error, and the library stays open.
    EndActivity(tables->Roots());
    // Before the tables are emptied: from here on the call frame refuses new calls.
    initializations.store(0, std::memory_order_release);
    const EndOfAll endOfAll(tables->Roots());
    tables->Close();
}

HandleTables& Tables() noexcept
{
    return *tables;
}

} // namespace koro::internal
