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
    Take(id);
}

void Instance::RunDestructionCallback(DestructionCallbackID id)
{
    if (const auto callback = Take(id)) (*callback)();
}

// Empty for an unknown id. To be run or freed outside the lock.
std::unique_ptr<Instance::DestructionCallback> Instance::Take(DestructionCallbackID id)
{
    const std::lock_guard lock(destructionMutex);
    const auto found = destructionCallbacks.find(id);
    if (found == destructionCallbacks.end()) return nullptr;
    auto callback = std::move(found->second);
    destructionCallbacks.erase(found);
    return callback;
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
