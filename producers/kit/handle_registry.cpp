#include "producers/kit/handle_registry.h"

#include <utility>

namespace koro::kit
{
namespace
{

constexpr std::uintptr_t handleStride = 16; // values look like aligned addresses

} // namespace

void HandleRegistry::Add(const std::shared_ptr<Object>& object)
{
    void* const handle = reinterpret_cast<void*>(next.fetch_add(handleStride)); // NOLINT(performance-no-int-to-ptr)
    object->handle = handle;
    Shard& shard = ShardOf(handle);
    const std::lock_guard lock(shard.mutex);
    shard.objects.emplace(handle, object);
}

bool HandleRegistry::Remove(void* handle) noexcept
{
    std::shared_ptr<Object> last; // released behind the lock: destructors may come back here
    Shard& shard = ShardOf(handle);
    const std::lock_guard lock(shard.mutex);
    const auto found = shard.objects.find(handle);
    if (found == shard.objects.end()) return false;
    last = std::move(found->second);
    shard.objects.erase(found);
    return true;
}

void HandleRegistry::Clear() noexcept
{
    for (Shard& shard : shards)
    {
        std::unordered_map<void*, std::shared_ptr<Object>> objects;
        const std::lock_guard lock(shard.mutex);
        objects.swap(shard.objects);
    }
}

std::shared_ptr<Object> HandleRegistry::Lookup(void* handle) const
{
    const Shard& shard = ShardOf(handle);
    const std::lock_guard lock(shard.mutex);
    const auto found = shard.objects.find(handle);
    return found == shard.objects.end() ? nullptr : found->second;
}

HandleRegistry::Shard& HandleRegistry::ShardOf(void* handle) noexcept
{
    return shards[reinterpret_cast<std::uintptr_t>(handle) / handleStride % shards.size()];
}

const HandleRegistry::Shard& HandleRegistry::ShardOf(void* handle) const noexcept
{
    return shards[reinterpret_cast<std::uintptr_t>(handle) / handleStride % shards.size()];
}

} // namespace koro::kit
