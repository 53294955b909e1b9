// PerThread: an object that each thread has for itself, created on first use and destroyed with the thread.
//
// Declare it constinit thread_local. Unlike a plain thread_local object it may be used until the very end: code that
// runs after the thread's own objects were destroyed, such as static objects and exit handlers on the main thread, gets
// a new object instead of a destroyed one. While it exists the library stays mapped.
#pragma once

#include <cstddef>
#include <cxxabi.h>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

// The compiler's name for the library or program that this code is linked into.
// NOLINTNEXTLINE(bugprone-reserved-identifier): nobody may choose another one
extern "C" __attribute__((visibility("hidden"))) void* __dso_handle;

namespace koro::internal
{

template <class T>
class PerThread
{
public:
    T& Get() noexcept
    {
        static_assert(std::is_nothrow_default_constructible_v<T>);
        if (!object)
        {
            object = new (storage) T;
            abi::__cxa_thread_atexit(&End, this, &__dso_handle);
        }
        return *object;
    }

private:
    static void End(void* self) { std::destroy_at(std::exchange(static_cast<PerThread*>(self)->object, nullptr)); }

    alignas(T) std::byte storage[sizeof(T)] = {};
    T* object = nullptr;
};

} // namespace koro::internal
