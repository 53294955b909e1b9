// RegisterCache: the bytes of registers by port, address and length, shared by all nodes that lie there.
//
// Owned by the node map, used with its lock held.
#pragma once

#include <Base/GCNamespace.h>
#include <stdint.h>
#include <unordered_map>
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
        bool operator==(const Place& other) const
        {
            return port == other.port && address == other.address && length == other.length;
        }
    };
    struct Block
    {
        Place place;
        unsigned users = 0;
        bool valid = false;
        std::vector<uint8_t> bytes;
    };

    // The block of a place, made when it is the first. Each call is one use, to be released.
    Block* Acquire(const Place& place)
    {
        Block& block = blocks[place];
        block.place = place;
        ++block.users;
        return &block;
    }
    void Release(Block* block)
    {
        if (--block->users == 0) blocks.erase(block->place);
    }

private:
    struct Hash
    {
        size_t operator()(const Place& place) const
        {
            const uint64_t mixed = static_cast<uint64_t>(place.address) * 0x9E3779B97F4A7C15u ^
                                   static_cast<uint64_t>(place.length) ^ reinterpret_cast<uintptr_t>(place.port);
            return static_cast<size_t>(mixed ^ mixed >> 29);
        }
    };

    std::unordered_map<Place, Block, Hash> blocks; // blocks stay where they are
};

} // namespace GENAPI_NAMESPACE::runtime
