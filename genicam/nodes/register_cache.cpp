#include "nodes/register_cache.h"

#include <algorithm>

namespace GENAPI_NAMESPACE::runtime
{

RegisterCache::Block* RegisterCache::Acquire(const Place& place, NodeIndex user)
{
    const auto [entry, isNew] = blocks.try_emplace(place);
    Block& block = entry->second;
    if (isNew)
    {
        block.place = place;
        if (place.length > narrow) wideBlocks.push_back(&block);
    }
    filled.Share(block.users, user);
    return &block;
}

void RegisterCache::Release(Block* block, NodeIndex user)
{
    if (ended) return;
    filled.Unshare(user);
    if (!block->users.IsEmpty()) return;
    wideBlocks.erase(std::remove(wideBlocks.begin(), wideBlocks.end(), block), wideBlocks.end());
    blocks.erase(block->place);
}

void RegisterCache::Fill(Block& block)
{
    block.valid = true;
    filled.AddSharers(block.users);
}

} // namespace GENAPI_NAMESPACE::runtime
