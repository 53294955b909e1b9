// NameTable: maps node names to node indices, by open addressing. The texts are stored elsewhere and passed in for
// comparison.
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

    // The slot of the name: its value is 0 when the name is new, otherwise the index plus one. `nameOf` returns the
    // name of an index.
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

    // Adds a name, which must be new. Returns false when so many names share its hash that it must be intentional: the
    // work would grow with the square of their number.
    bool Add(std::string_view name, uint32_t index)
    {
        if (++count * 2 > slots.size()) Grow();
        return Put({Hash(name), index + 1}) <= longestWay;
    }

private:
    struct Slot
    {
        uint32_t hash = 0;
        uint32_t indexPlusOne = 0;
    };

    static constexpr size_t longestWay = 1000; // slots; by chance there are a few dozen

    size_t Mask() const { return slots.size() - 1; }

    static uint32_t Hash(std::string_view name)
    {
        uint32_t hash = 2166136261u;
        for (const char letter : name)
            hash = (hash ^ static_cast<unsigned char>(letter)) * 16777619u;
        return hash ^ hash >> 15;
    }

    // Returns the distance between the slot and its preferred place.
    size_t Put(Slot added)
    {
        const size_t wanted = added.hash & Mask();
        size_t position = wanted;
        while (slots[position].indexPlusOne != 0)
            position = (position + 1) & Mask();
        slots[position] = added;
        return (position - wanted) & Mask();
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
