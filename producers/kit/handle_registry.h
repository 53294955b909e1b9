// HandleRegistry: which handle stands for which living object.
//
// Values are counted up and never used twice, so a dead handle answers GC_ERR_INVALID_HANDLE and can never reach a
// later object. Any thread; sixteen shards keep streams in different threads apart.
#pragma once

#include "producers/kit/failure.h"
#include "producers/kit/gentl.h"

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace koro::kit
{

// What has a handle.
class Object
{
public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;

    // Null before the registration.
    void* Handle() const noexcept { return handle; }

private:
    friend class HandleRegistry;
    void* handle = nullptr; // set once, before anyone else sees the object
};

class HandleRegistry
{
public:
    void Add(const std::shared_ptr<Object>& object);

    // From now on the handle is dead; false if it was already.
    bool Remove(void* handle) noexcept;

    void Clear() noexcept;

    // Null for a null or dead handle and for one of another kind.
    template <typename T>
    std::shared_ptr<T> TryFind(void* handle) const
    {
        return std::dynamic_pointer_cast<T>(Lookup(handle));
    }

    // Throws GC_ERR_INVALID_HANDLE in place of null.
    template <typename T>
    std::shared_ptr<T> Find(void* handle) const
    {
        auto object = TryFind<T>(handle);
        if (!object) throw Failure(deadHandleCode, "the handle is null, closed or of another kind");
        return object;
    }

    // The answer to dead handles; the standard's until the settings say otherwise.
    void SetDeadHandleCode(GC_ERROR code) noexcept { deadHandleCode = code; }

private:
    struct alignas(64) Shard
    {
        mutable std::mutex mutex;
        std::unordered_map<void*, std::shared_ptr<Object>> objects; // guarded by mutex
    };

    std::shared_ptr<Object> Lookup(void* handle) const;
    Shard& ShardOf(void* handle) noexcept;
    const Shard& ShardOf(void* handle) const noexcept;

    std::atomic<std::uintptr_t> next{0x51000000};
    std::atomic<GC_ERROR> deadHandleCode{GC_ERR_INVALID_HANDLE};
    std::array<Shard, 16> shards;
};

// The one of this loaded file.
HandleRegistry& Handles() noexcept;

} // namespace koro::kit
