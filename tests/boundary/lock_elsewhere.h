// The lock of a node map, seen from another thread: held there for the length of a scope, or tried there.
#pragma once

#include "tests/support/boundary.h"
#include "tests/support/in_thread.h"

#include <koro/koro.h>

#include <future>
#include <utility>

namespace koro::test
{

class LockElsewhere
{
public:
    explicit LockElsewhere(KORO_NodeMapHandle map)
    {
        std::promise<void> locked;
        auto isLocked = locked.get_future();
        thread = std::async(std::launch::async, [map, end = end.get_future(), locked = std::move(locked)]() mutable {
            KORO_NodeMap_Lock(map);
            locked.set_value();
            end.wait();
            KORO_NodeMap_Unlock(map); // the map may have ended
        });
        isLocked.wait();
    }
    ~LockElsewhere() { end.set_value(); }
    LockElsewhere(const LockElsewhere&) = delete;
    LockElsewhere& operator=(const LockElsewhere&) = delete;

private:
    std::future<void> thread; // goes after `end`, and waits
    std::promise<void> end;
};

inline bool TryLock(KORO_NodeMapHandle map)
{
    return Get<KORO_Bool8>(KORO_NodeMap_TryLock, map) == 1;
}

inline bool TryLockElsewhere(KORO_NodeMapHandle map)
{
    return InThread([map] {
        const bool locked = TryLock(map);
        if (locked) Require(KORO_NodeMap_Unlock(map));
        return locked;
    });
}

} // namespace koro::test
