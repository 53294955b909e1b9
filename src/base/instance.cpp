#include "base/instance.h"

#include "base/exceptions.h"
#include "base/hold.h"

#include <algorithm>
#include <utility>

namespace koro::internal
{

namespace
{

void Prune(std::vector<std::weak_ptr<Hold>>& holds)
{
    std::erase_if(holds, [](const auto& hold) { return hold.expired(); });
}

} // namespace

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
    decltype(destructionCallbacks)::node_type removed; // freed after the lock
    const std::lock_guard lock(destructionMutex);
    removed = destructionCallbacks.extract(id);
}

void Instance::AddHold(const std::shared_ptr<Hold>& hold)
{
    const std::lock_guard lock(destructionMutex);
    Prune(ownHolds);
    ownHolds.push_back(hold);
}

void Instance::AddFurtherHold(const std::shared_ptr<Hold>& hold)
{
    const std::lock_guard lock(destructionMutex);
    CheckNotEnded();
    Prune(ownHolds);
    ownHolds.push_back(hold);
}

Instance::Holds Instance::OwnHolds() const
{
    const std::lock_guard lock(destructionMutex);
    return Living(ownHolds);
}

// Removes ended entries whenever the list has doubled, so adding a child costs the same for any number of earlier
// children.
void Instance::AddHoldBelow(const std::shared_ptr<Hold>& hold)
{
    const std::lock_guard lock(destructionMutex);
    CheckNotEnded();
    if (holdsBelow.size() >= numHoldsToPrune)
    {
        Prune(holdsBelow);
        numHoldsToPrune = std::max<std::size_t>(16, 2 * holdsBelow.size());
    }
    holdsBelow.push_back(hold);
}

Instance::Holds Instance::HoldsBelow() const
{
    const std::lock_guard lock(destructionMutex);
    return Living(holdsBelow);
}

void Instance::MarkEnded(const EndingScope& end)
{
    const std::lock_guard lock(destructionMutex);
    if (!HasEnded()) endedBy = end.Number();
}

void Instance::CheckNotEnded() const
{
    if (HasEnded()) throw InternalErrorException("Pointer has expired!");
}

void Instance::KeepUntilItsEnd(std::shared_ptr<Hold> ended)
{
    const std::lock_guard lock(destructionMutex);
    holdsBelow.clear();
    endedBelow.push_back(std::move(ended));
}

Instance::Holds Instance::Living(const WeakHolds& holds)
{
    Holds living;
    living.reserve(holds.size());
    for (const auto& hold : holds)
    {
        if (auto one = hold.lock()) living.push_back(std::move(one));
    }
    return living;
}

void Instance::RunDestructionCallbacks()
{
    RunStoredCallbacks();
    EndHoldsBelow();
}

void Instance::RunStoredCallbacks()
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

void Instance::EndHoldsBelow()
{
    Holds ended;
    {
        const std::lock_guard lock(destructionMutex);
        ended = std::exchange(endedBelow, {});
        for (auto& hold : Living(std::exchange(holdsBelow, {})))
            ended.push_back(std::move(hold));
    }
    for (auto& hold : ended)
    {
        hold->RemoveEntry();
        hold.reset();
    }
}

} // namespace koro::internal
