// The library's own threads: monitors and listeners. Ending an object waits for the threads that serve it, and so for a
// callback of the application that runs on such a thread. That callback must not wait in turn.
#pragma once

namespace koro::internal
{

bool IsOnOwnThread() noexcept;

// Marks the calling thread for its life.
class OwnThread
{
public:
    OwnThread() noexcept;
    ~OwnThread();
    OwnThread(const OwnThread&) = delete;
    OwnThread& operator=(const OwnThread&) = delete;
};

// Whether the thread is in a changed callback of a node, or holds the lock of a node map from call to call. The end of
// a stream may wait for such a lock, see docs/threading.md: whoever has it must not wait for the library's close.
bool HoldsMapLock() noexcept;

// Says so for its life; counted.
class MapLockHolder
{
public:
    MapLockHolder() noexcept;
    ~MapLockHolder();
    MapLockHolder(const MapLockHolder&) = delete;
    MapLockHolder& operator=(const MapLockHolder&) = delete;
};

} // namespace koro::internal
