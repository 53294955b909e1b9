// HandleTable: the handles of one kind, each with a hold of its object.
//
// The entry keeps the object alive on behalf of the application; a call through the handle shares the entry's hold. An
// entry with a parent ends with the parent object. Thread-safe. The table is divided into shards, so threads that use
// different objects rarely wait for each other; no hold is released while a shard's mutex is held. The address of an
// object whose entry was removed is not used again for a while: see base/ended_objects.h.
//
// Lock order: the mutex of a shard before that of an Instance.
#pragma once

#include "base/ended_objects.h"
#include "base/ending_scope.h"
#include "base/exceptions.h"
#include "base/hold.h"
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

    // Shared by an entry and the calls through its handle.
    class Held final : public Hold, public std::enable_shared_from_this<Held>
    {
    public:
        Held(
            HandleTable& entryTable, std::shared_ptr<T> heldObject, std::weak_ptr<Hold> holdOfParent,
            bool hasEntryOfItsOwn)
            : table(entryTable), heldAbove(std::move(holdOfParent)), outlivesParent(hasEntryOfItsOwn),
              object(std::move(heldObject))
        {}
        ~Held() override
        {
            if (!wasEntry) return;
            const std::weak_ptr<const void> shell = object;
            const void* const address = object.get();
            object.reset();
            table.endedObjects.Add(shell, address, sizeof(T));
        }

        const std::shared_ptr<T>& Get() const noexcept { return object; }

        Instance& Object() const override { return *object; }
        std::shared_ptr<Hold> HoldAbove() const override { return heldAbove.lock(); }
        bool HideEntry() override { return table.HideEntryOf(*this); }
        bool HideEntryWithParent() override
        {
            return outlivesParent ? table.RenewEntryOf(*this) : table.HideEntryOf(*this);
        }
        void RemoveEntry() override
        {
            table.RemoveIf(Key(HandleFor(object)), [this](const auto& held) { return held.get() == this; });
        }

    private:
        HandleTable& table;
        const std::weak_ptr<Hold> heldAbove;
        const bool outlivesParent;
        std::shared_ptr<T> object; // constant to the end
        bool wasEntry = false;     // the last entry of its object; written under the mutex of the shard
        friend class HandleTable;
    };

    // Enters an object without a parent. An existing entry stays, with its reference.
    Handle Add(const std::shared_ptr<T>& object)
    {
        Insert(object, nullptr, true);
        return HandleFor(object);
    }

    // Does the same for an object whose calls use `parent` but whose entry outlives it: the end of `parent` finds the
    // running calls.
    Handle AddBeside(const std::shared_ptr<T>& object, const std::shared_ptr<Instance>& parent)
    {
        Insert(object, parent.get(), true);
        return HandleFor(object);
    }

    // Enters an object whose entry ends with `parent`. `isNew` reports whether there was no entry before. Throws
    // InternalErrorException when the parent has been ended.
    Handle Add(const std::shared_ptr<T>& object, const std::shared_ptr<Instance>& parent, bool* isNew = nullptr)
    {
        const bool inserted = Insert(object, parent.get(), false);
        if (isNew) *isNew = inserted;
        return HandleFor(object);
    }

    // Does the same for an additional handle of an object that has one. Also throws when the object itself has been
    // ended.
    Handle AddFurther(const std::shared_ptr<T>& object, const std::shared_ptr<Instance>& parent)
    {
        Insert(object, parent.get(), false, true);
        return HandleFor(object);
    }

    // Empty when there is no entry. While the hold exists the object is alive and none of its parents is closed.
    std::shared_ptr<Held> Find(Handle handle) const
    {
        const Key key(handle);
        auto& shard = ShardOf(key);
        const std::lock_guard lock(shard.mutex);
        const auto entry = shard.entries.find(key);
        if (entry == shard.entries.end()) return nullptr;
        if (entry->second.isHidden && !EndingScope::IsInEndOf(*entry->second.held->Get())) return nullptr;
        return entry->second.held;
    }

    void Remove(Handle handle)
    {
        RemoveIf(Key(handle), [](const auto&) { return true; });
    }

    // Removes the entry of this object, but not that of another object which has got the same address.
    void RemoveEntryOf(Handle handle, const std::weak_ptr<T>& object)
    {
        RemoveIf(Key(handle), [&](const auto& held) {
            return !held->Get().owner_before(object) && !object.owner_before(held->Get());
        });
    }

    // Looks while holding the mutex, so that it creates no reference whose end could close a module.
    template <class Predicate>
    bool AnyOf(Predicate&& predicate) const
    {
        return std::any_of(shards.begin(), shards.end(), [&](Shard& shard) {
            const std::lock_guard lock(shard.mutex);
            return std::any_of(shard.entries.begin(), shard.entries.end(), [&](const auto& entry) {
                return predicate(*entry.second.held->Get());
            });
        });
    }

    // The holds of all entries.
    Instance::Holds All() const
    {
        Instance::Holds all;
        for (auto& shard : shards)
        {
            const std::lock_guard lock(shard.mutex);
            for (const auto& [key, entry] : shard.entries)
                all.push_back(entry.held);
        }
        return all;
    }

    // Accepts entries; a new table is open.
    void Open()
    {
        for (auto& shard : shards)
        {
            const std::lock_guard lock(shard.mutex);
            shard.isOpen = true;
        }
    }

    // Refuses entries from now on, so that a call that overlaps the library's end leaves nothing behind. Releases all
    // references except those that an end on another thread is about to release.
    void Close()
    {
        for (auto& shard : shards)
        {
            Entries dropped;
            const std::lock_guard lock(shard.mutex);
            shard.isOpen = false;
            dropped.swap(shard.entries);
            for (auto entry = dropped.begin(); entry != dropped.end();)
            {
                const auto left = entry++;
                if (left->second.held->IsLeftToObjectAbove()) shard.entries.insert(dropped.extract(left));
            }
        }
    }

private:
    // The hash is stored with the value, since it selects both the shard and the bucket.
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
        std::shared_ptr<Held> held;
        bool isHidden = false;
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

    bool Insert(const std::shared_ptr<T>& object, Instance* parent, bool outlivesParent, bool isFurther = false)
    {
        const Key key(HandleFor(object));
        auto& shard = ShardOf(key);
        if (HasEntry(shard, key)) return false; // by far the most frequent case; it costs no hold
        const auto above = parent ? parent->OwnHolds() : Instance::Holds();
        const auto held =
            std::make_shared<Held>(*this, object, above.empty() ? nullptr : above.front(), outlivesParent);
        const std::lock_guard lock(shard.mutex);
        CheckOpen(shard);
        const auto [entry, inserted] = shard.entries.try_emplace(key, Entry{held});
        if (!inserted) return false;
        try
        {
            if (isFurther)
                object->AddFurtherHold(held);
            else
                object->AddHold(held);
            if (parent) parent->AddHoldBelow(held);
        }
        catch (...)
        {
            shard.entries.erase(entry); // `held` is released after the lock
            throw;
        }
        held->wasEntry = true;
        return true;
    }

    static void CheckOpen(const Shard& shard)
    {
        if (!shard.isOpen) throw NotInitializedException("The library has been closed meanwhile!");
    }
    static bool HasEntry(const Shard& shard, const Key& key)
    {
        const std::lock_guard lock(shard.mutex);
        CheckOpen(shard);
        return shard.entries.find(key) != shard.entries.end();
    }

    bool HideEntryOf(const Held& held)
    {
        const Key key(HandleFor(held.Get()));
        auto& shard = ShardOf(key);
        const std::lock_guard lock(shard.mutex);
        const auto entry = shard.entries.find(key);
        if (entry == shard.entries.end() || entry->second.held.get() != &held) return true;
        entry->second.isHidden = true;
        return entry->second.held.use_count() > 2;
    }

    // The entry gets a new hold for later calls, which find the parent ended; this one is left to running calls.
    bool RenewEntryOf(Held& held)
    {
        const auto renewed = std::make_shared<Held>(*this, held.Get(), std::weak_ptr<Hold>(), true);
        const Key key(HandleFor(held.Get()));
        auto& shard = ShardOf(key);
        const std::lock_guard lock(shard.mutex);
        const auto entry = shard.entries.find(key);
        if (entry == shard.entries.end() || entry->second.held.get() != &held) return true;
        held.Get()->AddHold(renewed);
        entry->second.held = renewed; // the caller has a reference to the former one
        renewed->wasEntry = std::exchange(held.wasEntry, false);
        return held.weak_from_this().use_count() > 1;
    }

    template <class Condition>
    void RemoveIf(const Key& key, Condition&& condition)
    {
        auto& shard = ShardOf(key);
        typename Entries::node_type removed; // dropped after the lock
        const std::lock_guard lock(shard.mutex);
        const auto entry = shard.entries.find(key);
        if (entry == shard.entries.end() || !condition(entry->second.held)) return;
        removed = shard.entries.extract(entry);
    }

    mutable EndedObjects endedObjects;
    mutable std::array<Shard, std::size_t{1} << shardBits> shards;
};

} // namespace koro::internal
