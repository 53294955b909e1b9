// The lock of a map when applications hold it from one call to another.
#include "base/own_threads.h"
#include "nodes/node_map.h"

#include <memory>
#include <utility>

namespace koro::internal
{

namespace
{

// A lock that the thread has taken and not released. The list has no destructor, which would keep the library mapped
// until the thread ends.
struct HeldLock
{
    std::shared_ptr<NodeMap> nodeMap;
    HeldLock* next = nullptr;
    MapLockHolder holder{};
};
constinit thread_local HeldLock* heldLocks = nullptr;

std::unique_ptr<HeldLock> NewHeldLock(std::shared_ptr<NodeMap> nodeMap)
{
    auto lock = std::make_unique<HeldLock>();
    lock->nodeMap = std::move(nodeMap);
    return lock;
}

void Push(std::unique_ptr<HeldLock> lock) noexcept
{
    lock->next = heldLocks;
    heldLocks = lock.release();
}

// Releases one lock; returns false when the thread holds none. The map is released last.
bool GiveBack(const void* address)
{
    HeldLock** place = &heldLocks;
    while (*place && (*place)->nodeMap.get() != address)
        place = &(*place)->next;
    const std::unique_ptr<HeldLock> lock(*place);
    if (!lock) return false;
    *place = lock->next;
    lock->nodeMap->GenApiLock().Unlock();
    return true;
}

} // namespace

void NodeMap::LockForApplication()
{
    auto lock = NewHeldLock(shared_from_this());
    GenApiLock().Lock();
    Push(std::move(lock));
}

bool NodeMap::TryLockForApplication()
{
    auto lock = NewHeldLock(shared_from_this());
    if (!GenApiLock().TryLock()) return false;
    Push(std::move(lock));
    return true;
}

void NodeMap::UnlockForApplication()
{
    if (!GiveBack(this)) GenApiLock().Unlock(); // not locked by this thread: GenApi ignores it
}

void NodeMap::UnlockEnded(const void* address) noexcept
{
    try
    {
        GiveBack(address);
    }
    catch (...) // from the end of the map
    {}
}

void NodeMap::EndWaits() noexcept
{
    const auto held = weak_from_this().lock(); // keeps the map until the end of this function
    try
    {
        while (GiveBack(this))
        {}
    }
    catch (...)
    {}
}

} // namespace koro::internal
