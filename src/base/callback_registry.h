// TCallbackManager: the registry of callbacks of one kind and one owner.
//
// Its mutex is held while callbacks run. A callback that calls the registry that is calling it gets the standard
// deadlock error (CheckedMutex); other threads wait until all callbacks have been called.
#pragma once

#include "base/checked_mutex.h"
#include "base/ended_objects.h"

#include <functional>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace koro::internal
{

template <class... Arguments>
class TCallbackManager
{
public:
    using Function = std::function<void(Arguments...)>;
    // Address of the stored copy: unique while it is registered, and for a while afterwards.
    using Handle = const void*;

    TCallbackManager() = default;
    TCallbackManager(const TCallbackManager&) = delete;
    TCallbackManager& operator=(const TCallbackManager&) = delete;
    ~TCallbackManager()
    {
        for (auto& [handle, function] : callbacks)
            EndCallback(std::move(function));
    }

    // An empty function is stored too; a call of all functions that reaches it ends with std::bad_function_call.
    Handle RegisterCallback(Function function)
    {
        auto stored = std::make_shared<Function>(std::move(function));
        const Handle handle = stored.get();
        const std::lock_guard lock(mutex);
        callbacks.emplace(handle, std::move(stored));
        return handle;
    }

    // An unknown handle is ignored.
    void UnregisterCallback(Handle handle)
    {
        if (auto removed = Take(handle)) EndCallback(std::move(removed));
    }

    // Calls every function, in no defined order, on this thread. An exception ends the loop.
    void TriggerCallback(const Arguments&... arguments)
    {
        TriggerCallbackWhile([] { return true; }, arguments...);
    }
    // Does the same while `isWanted` returns true; it is called before each function.
    template <class Predicate>
    void TriggerCallbackWhile(Predicate&& isWanted, const Arguments&... arguments)
    {
        const std::lock_guard lock(mutex);
        for (const auto& [handle, function] : callbacks)
        {
            if (!isWanted()) return;
            (*function)(arguments...);
        }
    }

    // Throws the standard deadlock error inside a callback of this registry.
    void RefuseInCallback() const { mutex.RefuseOwner(); }

    bool IsEmpty()
    {
        const std::lock_guard lock(mutex);
        return callbacks.empty();
    }

private:
    std::shared_ptr<Function> Take(Handle handle)
    {
        const std::lock_guard lock(mutex);
        const auto found = callbacks.find(handle);
        if (found == callbacks.end()) return nullptr;
        auto taken = std::move(found->second);
        callbacks.erase(found);
        return taken;
    }

    CheckedMutex mutex;
    std::unordered_map<Handle, std::shared_ptr<Function>> callbacks;
};

} // namespace koro::internal
