// HandleTable: the handles of one kind, each with a strong reference to its object.
//
// The entry is what keeps an object alive on behalf of the application. An entry with a parent ends with the parent
// object. Any thread. Sharded, so that threads with different objects rarely meet; no reference is dropped and
// no destruction callback runs under a shard's mutex.
//
// Lock order: a shard's mutex, then the destruction mutex of an Instance.
#pragma once

#include "base/exceptions.h"
#include "base/instance.h"
#include "capi/handle_kinds.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

namespace koro::internal
{

// The handle of an object: its address viewed as a T. Touches no table.
template <class T>
HandleOf<T> HandleFor(const std::shared_ptr<T>& object) noexcept
{
    return reinterpret_cast<HandleOf<T>>(object.get());
}

// FNV-1a over the 8 bytes of the value, least significant byte first.
constexpr std::uint64_t HashHandleValue(std::uint64_t value) noexcept
{
    std::uint64_t hash = 0xcbf29ce484222325;
    for (int shift = 0; shift < 64; shift += 8)
    {
        hash = (hash ^ ((value >> shift) & 0xff)) * 0x100000001b3;
    }
    return hash;
}

template <class T>
class HandleTable
{
public:
    using Handle = HandleOf<T>;

    // Enters an object without a parent. An entry that exists stays, with its reference.
    Handle Add(const std::shared_ptr<T>& object)
    {
        Insert(object, [] { return Instance::DestructionCallbackID{0}; });
        return HandleFor(object);
    }

    // Enters an object whose entry ends with `parent`. `isNew` tells whether there was no entry before.
    template <class Parent>
    Handle Add(const std::shared_ptr<T>& object, const std::shared_ptr<Parent>& parent, bool* isNew = nullptr)
    {
        const bool inserted = Insert(object, [&] { return TieToParent(object, parent); });
        if (isNew) *isNew = inserted;
        return HandleFor(object);
    }

    // Empty when there is no entry.
    std::shared_ptr<T> Find(Handle handle) const
    {
        const Key key(handle);
        auto& shard = ShardOf(key);
        const std::lock_guard lock(shard.mutex);
        const auto entry = shard.entries.find(key);
        return entry == shard.entries.end() ? nullptr : entry->second.object;
    }

    void Remove(Handle handle)
    {
        RemoveIf(Key(handle), [](const auto&) { return true; });
    }

    // Removes the entry of this object, and not that of another one that came to lie at the same address.
    void RemoveEntryOf(Handle handle, const std::weak_ptr<T>& object)
    {
        RemoveIf(Key(handle), [&](const std::shared_ptr<T>& held) {
            return !held.owner_before(object) && !object.owner_before(held);
        });
    }

    // Looks under the mutex, so that no reference is made whose end could close a module.
    template <class Predicate>
    bool AnyOf(Predicate&& predicate) const
    {
        return std::any_of(shards.begin(), shards.end(), [&](Shard& shard) {
            const std::lock_guard lock(shard.mutex);
            return std::any_of(shard.entries.begin(), shard.entries.end(), [&](const auto& entry) {
                return predicate(*entry.second.object);
            });
        });
    }

    // References to the objects that the predicate picks; it is asked under the mutex, as above.
    template <class Predicate>
    std::vector<std::shared_ptr<T>> Select(Predicate&& predicate) const
    {
        std::vector<std::shared_ptr<T>> selected;
        for (auto& shard : shards)
        {
            const std::lock_guard lock(shard.mutex);
            for (const auto& [key, entry] : shard.entries)
            {
                if (predicate(*entry.object)) selected.push_back(entry.object);
            }
        }
        return selected;
    }

    // Admits entries; a table is open from the start.
    void Open()
    {
        for (auto& shard : shards)
        {
            const std::lock_guard lock(shard.mutex);
            shard.isOpen = true;
        }
    }

    // Refuses entries from now on, so that a call that overlaps the library's end leaves nothing behind, and drops
    // all references.
    void Close()
    {
        for (auto& shard : shards)
        {
            Entries dropped;
            const std::lock_guard lock(shard.mutex);
            shard.isOpen = false;
            dropped.swap(shard.entries);
        }
    }

private:
    // The hash travels with the value, since it picks both the shard and the bucket.
    struct Key
    {
        explicit Key(Handle handle) noexcept
            : value(reinterpret_cast<std::uintptr_t>(handle)), hash(HashHandleValue(value))
        {}
        bool operator==(const Key& other) const noexcept { return value == other.value; }

        std::uint64_t value;
        std::uint64_t hash;
    };
    struct KeyHash
    {
        std::size_t operator()(const Key& key) const noexcept { return key.hash; }
    };

    struct Entry
    {
        std::shared_ptr<T> object;
        Instance::DestructionCallbackID untie; // at the object; 0 without a parent
    };
    using Entries = std::unordered_map<Key, Entry, KeyHash>;

    // One cache line at least, so that shards do not slow each other down.
    struct alignas(64) Shard
    {
        mutable std::mutex mutex;
        Entries entries;
        bool isOpen = true;
    };
    static constexpr unsigned shardBits = 6;

    Shard& ShardOf(const Key& key) const noexcept { return shards[key.hash >> (64 - shardBits)]; }

    // `tie` runs under the mutex, for a new entry alone; when it fails the entry is taken out again.
    template <class Tie>
    bool Insert(const std::shared_ptr<T>& object, Tie&& tie)
    {
        const Key key(HandleFor(object));
        auto& shard = ShardOf(key);
        const std::lock_guard lock(shard.mutex);
        if (!shard.isOpen) throw NotInitializedException("The library has been closed meanwhile!");
        const auto [entry, inserted] = shard.entries.try_emplace(key, Entry{object, 0});
        if (!inserted) return false;
        try
        {
            entry->second.untie = tie();
        }
        catch (...)
        {
            shard.entries.erase(entry); // no end of the object: the caller holds it
            throw;
        }
        return true;
    }

    // The parent's end removes the entry, and the child's end takes back this arrangement. Neither link holds the
    // other object strongly. Gives the child's callback.
    template <class Parent>
    Instance::DestructionCallbackID TieToParent(const std::shared_ptr<T>& object, const std::shared_ptr<Parent>& parent)
    {
        const auto id =
            parent->AddDestructionCallback([this, handle = HandleFor(object), weakObject = std::weak_ptr<T>(object)] {
                RemoveEntryOf(handle, weakObject);
            });
        const auto untie = [weakParent = std::weak_ptr<Parent>(parent), id] {
            if (const auto livingParent = weakParent.lock()) livingParent->RemoveDestructionCallback(id);
        };
        try
        {
            return object->AddDestructionCallback(untie);
        }
        catch (...)
        {
            parent->RemoveDestructionCallback(id);
            throw;
        }
    }

    template <class Condition>
    void RemoveIf(const Key& key, Condition&& condition)
    {
        auto& shard = ShardOf(key);
        typename Entries::node_type removed; // dropped after the lock
        {
            const std::lock_guard lock(shard.mutex);
            const auto entry = shard.entries.find(key);
            if (entry == shard.entries.end() || !condition(entry->second.object)) return;
            removed = shard.entries.extract(entry);
        }
        // Not left to the end of the object, which may live on and be entered again any number of times.
        const auto& [object, untie] = removed.mapped();
        if (untie != 0) object->RunDestructionCallback(untie);
    }

    mutable std::array<Shard, std::size_t{1} << shardBits> shards;
};

} // namespace koro::internal
