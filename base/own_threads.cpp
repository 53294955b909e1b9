#include "base/own_threads.h"

namespace koro::internal
{

namespace
{

constinit thread_local bool isOwn = false;

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

} // namespace koro::internal
