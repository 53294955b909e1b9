#include "base/checked_mutex.h"

#include <system_error>

namespace koro::internal
{

void CheckedMutex::lock()
{
    RefuseOwner();
    mutex.lock();
    owner.store(std::this_thread::get_id(), std::memory_order_relaxed);
}

bool CheckedMutex::try_lock()
{
    RefuseOwner();
    if (!mutex.try_lock()) return false;
    owner.store(std::this_thread::get_id(), std::memory_order_relaxed);
    return true;
}

void CheckedMutex::unlock()
{
    owner.store(std::thread::id(), std::memory_order_relaxed);
    mutex.unlock();
}

void CheckedMutex::RefuseOwner() const
{
    // Relaxed is enough: a thread can only meet its own id here if it wrote it itself.
    if (owner.load(std::memory_order_relaxed) == std::this_thread::get_id())
    {
        throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
    }
}

} // namespace koro::internal
