// EndedObjects: prevents the addresses of ended objects from being used again for a while, first in, first out.
//
// A handle is an address. If the next object of the kind received the address, an old handle would refer to the wrong
// object. EndedObjects keeps the memory that std::make_shared allocated, by a weak reference; everything that the
// object owned is freed. The address sanitizer sees this memory as poisoned. Thread-safe.
#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>

namespace koro::internal
{

class EndedObjects
{
public:
    static constexpr std::size_t maxObjects = 4096;
    static constexpr std::size_t maxBytes = std::size_t{1} << 20;

    EndedObjects() = default;
    EndedObjects(const EndedObjects&) = delete;
    EndedObjects& operator=(const EndedObjects&) = delete;
    ~EndedObjects();

    // The objects must be of about the same size. An object that is still alive is kept too, and ends later.
    void Add(std::weak_ptr<const void> object, const void* address, std::size_t size) noexcept;

private:
    struct Shell
    {
        std::weak_ptr<const void> object;
        const void* address;
        std::size_t size;
    };
    static void Release(Shell& shell) noexcept;

    std::mutex mutex;
    std::deque<Shell> shells;
};

// The ended objects of callback handles, which no handle table contains. Freed at unload; a later call creates a new
// one.
EndedObjects& EndedCallbacks();
void FreeEndedCallbacks() noexcept;

// Ends a callback whose address was its handle.
template <class Callback>
void EndCallback(std::shared_ptr<Callback> callback) noexcept
{
    const std::weak_ptr<const void> shell = callback;
    const void* const address = callback.get();
    callback.reset();
    EndedCallbacks().Add(shell, address, sizeof(Callback));
}

} // namespace koro::internal
