// The lock of a map when applications hold it from one call to another.
#include "base/own_threads.h"
#include "nodes/node_map.h"

#include <memory>
#include <utility>

namespace koro::internal
{

namespace
{

// A lock that the thread has taken and not given back. They are a list without a destructor, which would keep the
// library mapped to the thread's end.
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

// Gives one lock back; false when the thread holds none. The map goes last.
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
    if (!GiveBack(this)) GenApiLock().Unlock(); // not its own: for GenApi to ignore
}

void NodeMap::UnlockEnded(const void* address) noexcept
{
    try
    {
        GiveBack(address);
    }
    catch (...) // of the end of the map
    {}
}

void NodeMap::EndWaits() noexcept
{
    const auto held = weak_from_this().lock(); // at least to here
    try
    {
        while (GiveBack(this))
        {}
    }
    catch (...)
    {}
}

} // namespace koro::internal
