// The library's own threads: monitors and listeners. Ending an object waits for the threads that serve it, and so for a
// callback of the application that runs on such a thread. That callback must not wait in turn.
#pragma once

namespace koro::internal
{

bool IsOnOwnThread() noexcept;

// Marks the calling thread while the object exists.
class OwnThread
{
public:
    OwnThread() noexcept;
    ~OwnThread();
    OwnThread(const OwnThread&) = delete;
    OwnThread& operator=(const OwnThread&) = delete;
};

// Whether the thread is in a changed callback of a node, or holds the lock of a node map between calls. The end of a
// stream may wait for such a lock, see docs/threading.md: such a thread must not wait for the library's close.
bool HoldsMapLock() noexcept;

// Marks the thread as such while the object exists; counted.
class MapLockHolder
{
public:
    MapLockHolder() noexcept;
    ~MapLockHolder();
    MapLockHolder(const MapLockHolder&) = delete;
    MapLockHolder& operator=(const MapLockHolder&) = delete;
};

} // namespace koro::internal
