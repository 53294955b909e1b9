// NameTable: node names to node indices, by open addressing. The texts lie elsewhere and are handed in for comparison.
#pragma once

#include <Base/GCNamespace.h>
#include <stdint.h>
#include <string_view>
#include <vector>

namespace GENAPI_NAMESPACE::runtime
{

class NameTable
{
public:
    NameTable() : slots(256) {}

    // The slot of the name: its value is 0 when the name is new, else the index plus one. `nameOf` tells the name of an
    // index.
    template <class NameOf>
    uint32_t Find(std::string_view name, const NameOf& nameOf) const
    {
        const uint32_t hash = Hash(name);
        for (size_t position = hash & Mask();; position = (position + 1) & Mask())
        {
            const Slot& slot = slots[position];
            if (slot.indexPlusOne == 0) return 0;
            if (slot.hash == hash && nameOf(slot.indexPlusOne - 1) == name) return slot.indexPlusOne;
        }
    }

    // The name must not be there yet.
    void Add(std::string_view name, uint32_t index)
    {
        if (++count * 2 > slots.size()) Grow();
        Put({Hash(name), index + 1});
    }

private:
    struct Slot
    {
        uint32_t hash = 0;
        uint32_t indexPlusOne = 0;
    };

    size_t Mask() const { return slots.size() - 1; }

    static uint32_t Hash(std::string_view name)
    {
        uint32_t hash = 2166136261u;
        for (const char letter : name)
            hash = (hash ^ static_cast<unsigned char>(letter)) * 16777619u;
        return hash ^ hash >> 15;
    }

    void Put(Slot added)
    {
        size_t position = added.hash & Mask();
        while (slots[position].indexPlusOne != 0)
            position = (position + 1) & Mask();
        slots[position] = added;
    }

    void Grow()
    {
        const std::vector<Slot> old(std::move(slots));
        slots.assign(old.size() * 2, Slot());
        for (const Slot& slot : old)
        {
            if (slot.indexPlusOne != 0) Put(slot);
        }
    }

    std::vector<Slot> slots; // a power of two, at least half empty
    size_t count = 0;
};

} // namespace GENAPI_NAMESPACE::runtime
