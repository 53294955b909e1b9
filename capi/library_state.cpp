#include "capi/library_state.h"

#include "base/checked_mutex.h"
#include "capi/handle_tables.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <utility>

namespace koro::internal
{

namespace
{

CheckedMutex stateMutex; // held for the whole of a start or a close
std::atomic<std::uint64_t> initializations{0};

// Published by the counter. Emptied at each close and kept, since a call may be running that has passed the
// initialisation test.
HandleTables* tables = nullptr;

// At unload after the last close, frees the empty tables. Objects that were never closed stay as they are: no
// producer is called at unload.
struct UnloadGuard
{
    ~UnloadGuard()
    {
        if (!IsLibraryInitialized()) delete std::exchange(tables, nullptr); // an exit handler may start anew
    }
} unloadGuard;

} // namespace

bool IsLibraryInitialized() noexcept
{
    return initializations.load(std::memory_order_acquire) != 0;
}

void InitializeLibrary()
{
    const std::lock_guard lock(stateMutex);
    if (!IsLibraryInitialized())
    {
        if (!tables) tables = new HandleTables;
        tables->Open();
    }
    initializations.fetch_add(1, std::memory_order_release);
}

void CloseLibrary()
{
    const std::lock_guard lock(stateMutex);
    if (!IsLibraryInitialized()) return;
    // Before the tables go: from here on the frame refuses new calls.
    if (initializations.fetch_sub(1, std::memory_order_acq_rel) == 1) tables->Close();
}

HandleTables& Tables() noexcept
{
    return *tables;
}

} // namespace koro::internal
