#include "base/ended_objects.h"

#include <utility>

#if defined(__SANITIZE_ADDRESS__)
#define KORO_POISONS_ENDED_OBJECTS
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KORO_POISONS_ENDED_OBJECTS
#endif
#endif

#ifdef KORO_POISONS_ENDED_OBJECTS
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) (static_cast<void>(address), static_cast<void>(size))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) (static_cast<void>(address), static_cast<void>(size))
#endif

namespace koro::internal
{

namespace
{

constinit std::mutex endedCallbacksMutex;
constinit EndedObjects* endedCallbacks = nullptr; // guarded by endedCallbacksMutex

} // namespace

EndedObjects& EndedCallbacks()
{
    const std::lock_guard lock(endedCallbacksMutex);
    if (!endedCallbacks) endedCallbacks = new EndedObjects;
    return *endedCallbacks;
}

void FreeEndedCallbacks() noexcept
{
    const std::lock_guard lock(endedCallbacksMutex);
    delete std::exchange(endedCallbacks, nullptr);
}

EndedObjects::~EndedObjects()
{
    for (auto& shell : shells)
        Release(shell);
}

void EndedObjects::Add(std::weak_ptr<const void> object, const void* address, std::size_t size) noexcept
try
{
    Shell oldest{};
    {
        const std::lock_guard lock(mutex);
        if (object.expired()) ASAN_POISON_MEMORY_REGION(address, size);
        shells.push_back({std::move(object), address, size});
        if (shells.size() <= maxObjects && shells.size() * size <= maxBytes) return;
        oldest = std::move(shells.front());
        shells.pop_front();
    }
    Release(oldest);
}
catch (...)
{
    // Out of memory: the address may be used again at once.
}

void EndedObjects::Release(Shell& shell) noexcept
{
    if (shell.object.expired()) ASAN_UNPOISON_MEMORY_REGION(shell.address, shell.size);
    shell.object.reset();
}

} // namespace koro::internal
