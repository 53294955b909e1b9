// RegisterCache: the bytes of registers by port, address and length, shared by all nodes at that address.
//
// Owned by the node map, used while its lock is held.
#pragma once

#include "map/filled_caches.h"

#include <Base/GCNamespace.h>
#include <map>
#include <stdint.h>
#include <tuple>
#include <vector>

namespace GENAPI_NAMESPACE::runtime
{

class RegisterCache
{
public:
    struct Place
    {
        const void* port;
        int64_t address;
        int64_t length;
        bool operator==(const Place& other) const = default;
        bool operator<(const Place& other) const
        {
            return std::tie(port, address, length) < std::tie(other.port, other.address, other.length);
        }
    };
    struct Block
    {
        Place place;
        bool valid = false;
        FilledCaches::Sharers users;
        std::vector<uint8_t> bytes;
    };

    explicit RegisterCache(FilledCaches& filled) : filled(filled) {}
    // Returns the block of a place; creates it for the first user. A node uses one block at a time.
    Block* Acquire(const Place& place, NodeIndex user);
    void Release(Block* block, NodeIndex user);
    // The bytes are now in the cache for all users.
    void Fill(Block& block);
    // Reports that all users end now: the lists need not be maintained from here on.
    void End() { ended = true; }

    // Calls `act` with each block that overlaps the place, including its own.
    template <class Act>
    void ForEachOverlapping(const Place& place, const Act& act) const
    {
        const int64_t end = End(place);
        const int64_t first = place.address < lowest + narrow ? lowest : place.address - narrow;
        const auto touch = [&](Block& block) {
            if (block.place.port == place.port && block.place.address < end && End(block.place) > place.address)
            {
                act(block);
            }
        };
        auto near = blocks.lower_bound({place.port, first, 0});
        for (; near != blocks.end() && near->first.port == place.port && near->first.address < end; ++near)
        {
            if (near->first.length <= narrow) touch(const_cast<Block&>(near->second));
        }
        for (Block* const block : wideBlocks)
            touch(*block);
    }

private:
    static constexpr int64_t narrow = 64; // bytes; few registers are longer
    static constexpr int64_t lowest = INT64_MIN;

    static int64_t End(const Place& place)
    {
        return place.address > INT64_MAX - place.length ? INT64_MAX : place.address + place.length;
    }

    FilledCaches& filled;
    std::map<Place, Block> blocks; // the blocks do not move in memory
    std::vector<Block*> wideBlocks;
    bool ended = false;
};

} // namespace GENAPI_NAMESPACE::runtime
