// EventQueue: one registration of one event type on one module, with its queue, waiters and pending kills.
//
// Owned by its module until it is unregistered or the module closes. Shares the module's mutex, so that a stream's
// output queue and its new-buffer events cannot fall apart: the output queue is this queue. No lock is held while a
// waiter sleeps.
#pragma once

#include "producers/kit/event_packet.h"
#include "producers/kit/handle_registry.h"
#include "producers/kit/info_value.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <string>

namespace koro::kit
{

class Buffer;
class Module;

struct EventEntry
{
    std::string block;              // what EventGetData hands out; empty for new-buffer events
    std::shared_ptr<Buffer> buffer; // of new-buffer events
};

// Learns what became of the buffers in the queue. Called with the module's mutex held.
class BufferObserver
{
public:
    virtual ~BufferObserver() = default;
    virtual void OnTakenOff(Buffer& buffer, bool delivered) noexcept = 0;
};

class EventQueue final : public Object
{
public:
    // `observer` may be null; owner and observer are the same object or live and die together.
    EventQueue(
        EVENT_TYPE type, std::shared_ptr<Module> owner, std::mutex& ownersMutex, BufferObserver* observer,
        std::size_t maxBlockBytes);

    // EventGetData: success, GC_ERR_TIMEOUT, GC_ERR_ABORT, GC_ERR_BUFFER_TOO_SMALL or GC_ERR_INVALID_HANDLE after the
    // end.
    GC_ERROR Take(void* buffer, std::size_t* size, std::uint64_t timeout_ms);
    void Flush();
    void Kill();
    InfoValue Info(EVENT_INFO_CMD command) const;
    InfoValue DataInfo(const void* block, std::size_t size, EVENT_DATA_INFO_CMD command) const;

    // Ends all waits with GC_ERR_ABORT, takes everything off, returns when no waiter is inside any more.
    void End();

    // These three with the owner's mutex held.
    void Push(EventEntry entry);
    void DiscardAll() noexcept;
    std::size_t NumEntries() const noexcept { return entries.size(); }

private:
    GC_ERROR TakeLocked(void* buffer, std::size_t* size);
    void Wait(std::unique_lock<std::mutex>& lock, std::uint64_t timeout_ms);
    bool HasReason() const noexcept { return ended || pendingKills > 0 || !entries.empty(); }
    const EVENT_TYPE type;
    const std::shared_ptr<Module> owner;
    BufferObserver* const observer;
    const std::size_t maxBlockBytes;

    std::mutex& mutex; // the owner's; guards all below
    std::condition_variable reason;
    std::condition_variable left;
    std::deque<EventEntry> entries;
    std::uint64_t numFired = 0;
    std::uint64_t pendingKills = 0;
    std::size_t numWaiters = 0;
    bool ended = false;
};

// The longest block of a type of the standard.
std::size_t UsualBlockBytes(EVENT_TYPE type) noexcept;

// EventGetDataInfo of an event in a packet.
InfoValue ItemInfo(const ReceivedItem& item, EVENT_DATA_INFO_CMD command);

// A name or a value in the block of a feature event, with its terminator.
std::string FeatureBlock(const std::string& text);

// The block of EVENT_ERROR: code, then the text with its terminator.
std::string ErrorBlock(GC_ERROR code, const std::string& text);

} // namespace koro::kit
