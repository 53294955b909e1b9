#include "base/own_threads.h"

namespace koro::internal
{

namespace
{

constinit thread_local bool isOwn = false;
constinit thread_local int numMapLocks = 0;

} // namespace

bool IsOnOwnThread() noexcept
{
    return isOwn;
}

OwnThread::OwnThread() noexcept
{
    isOwn = true;
}

OwnThread::~OwnThread()
{
    isOwn = false;
}

bool HoldsMapLock() noexcept
{
    return numMapLocks > 0;
}

MapLockHolder::MapLockHolder() noexcept
{
    ++numMapLocks;
}

MapLockHolder::~MapLockHolder()
{
    --numMapLocks;
}

} // namespace koro::internal
