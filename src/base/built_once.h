// BuiltOnce: a value that is built on first use and never changes afterwards.
//
// No lock is held during the build, so a build may take any lock. Callers that arrive at the same time each build a
// value; one result is kept and the others are discarded. After a failure the next caller builds again. For a value
// that must not be built twice see Once.
#pragma once

#include <atomic>
#include <memory>

namespace koro::internal
{

template <class T>
class BuiltOnce
{
public:
    BuiltOnce() = default;
    BuiltOnce(const BuiltOnce&) = delete;
    BuiltOnce& operator=(const BuiltOnce&) = delete;
    ~BuiltOnce() { delete kept.load(std::memory_order_acquire); }

    // Thread-safe. The value lives as long as this object.
    template <class Build>
    const T& Get(Build&& build)
    {
        if (const T* const value = IfBuilt()) return *value;
        auto built = std::make_unique<const T>(build());
        const T* winner = nullptr;
        if (!kept.compare_exchange_strong(winner, built.get(), std::memory_order_acq_rel)) return *winner;
        return *built.release();
    }

    // Null before the first build.
    const T* IfBuilt() const { return kept.load(std::memory_order_acquire); }

private:
    std::atomic<const T*> kept{nullptr};
};

} // namespace koro::internal
