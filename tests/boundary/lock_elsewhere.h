// LockElsewhere: the lock of a node map, held by another thread for the length of a scope.
#pragma once

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

} // namespace koro::test
