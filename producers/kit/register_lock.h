// RegisterLock: the lock of a register map. What the registers show may be shared with other processes; then taking the
// lock fetches it, and giving the lock back lets the others at it.
//
// Owned by its map. Any thread; works with std::lock_guard.
#pragma once

#include <mutex>

namespace koro::kit
{

class RegisterLock
{
public:
    class Sharing
    {
    public:
        virtual ~Sharing() = default;

        // Called with the lock held. Throws Failure when what is shared cannot be reached: the lock is not taken then.
        virtual void Enter() = 0;
        // Throws Failure too; what was not saved is gone with the next Enter.
        virtual void Save() = 0;
        virtual void Leave() noexcept = 0;
    };

    // To be called before anyone else sees the map. `shared` lives as long as the lock.
    void ShareBy(Sharing& shared) noexcept { sharing = &shared; }

    void lock() // NOLINT(readability-identifier-naming): the name that std::lock_guard asks for
    {
        mutex.lock();
        if (sharing == nullptr) return;
        try
        {
            sharing->Enter();
        }
        catch (...)
        {
            mutex.unlock();
            throw;
        }
    }
    // With the lock held: after each change, which the others see once the lock is given back.
    void Save()
    {
        if (sharing != nullptr) sharing->Save();
    }
    void unlock() noexcept // NOLINT(readability-identifier-naming): as lock
    {
        if (sharing != nullptr) sharing->Leave();
        mutex.unlock();
    }

private:
    std::mutex mutex;
    Sharing* sharing = nullptr;
};

} // namespace koro::kit
