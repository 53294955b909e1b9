#include "base/instance.h"

#include <utility>

namespace koro::internal
{

Instance::~Instance()
{
    RunDestructionCallbacks();
}

Instance::DestructionCallbackID Instance::AddDestructionCallback(DestructionCallback callback)
{
    auto stored = std::make_unique<DestructionCallback>(std::move(callback));
    const auto id = reinterpret_cast<DestructionCallbackID>(stored.get());
    const std::lock_guard lock(destructionMutex);
    destructionCallbacks.emplace(id, std::move(stored));
    return id;
}

void Instance::RemoveDestructionCallback(DestructionCallbackID id)
{
    std::unique_ptr<DestructionCallback> removed; // freed after the lock
    const std::lock_guard lock(destructionMutex);
    const auto found = destructionCallbacks.find(id);
    if (found == destructionCallbacks.end()) return;
    removed = std::move(found->second);
    destructionCallbacks.erase(found);
}

void Instance::RunDestructionCallbacks()
{
    decltype(destructionCallbacks) callbacks;
    {
        const std::lock_guard lock(destructionMutex);
        callbacks.swap(destructionCallbacks);
    }
    for (const auto& [id, callback] : callbacks)
    {
        (*callback)();
    }
}

} // namespace koro::internal
