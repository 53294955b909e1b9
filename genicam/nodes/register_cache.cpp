#include "nodes/register_cache.h"

#include <algorithm>

namespace GENAPI_NAMESPACE::runtime
{

RegisterCache::Block* RegisterCache::Acquire(const Place& place, Node& user)
{
    const auto [entry, isNew] = blocks.try_emplace(place);
    Block& block = entry->second;
    if (isNew)
    {
        block.place = place;
        if (place.length > narrow) wideBlocks.push_back(&block);
    }
    block.users.push_back(&user);
    return &block;
}

void RegisterCache::Release(Block* block, Node& user)
{
    if (ended) return;
    block->users.erase(std::find(block->users.begin(), block->users.end(), &user));
    if (!block->users.empty()) return;
    wideBlocks.erase(std::remove(wideBlocks.begin(), wideBlocks.end(), block), wideBlocks.end());
    blocks.erase(block->place);
}

} // namespace GENAPI_NAMESPACE::runtime
