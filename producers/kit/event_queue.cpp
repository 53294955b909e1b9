#include "producers/kit/event_queue.h"

#include "producers/kit/buffer.h"
#include "producers/kit/module.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <utility>

namespace koro::kit
{
namespace
{

constexpr std::size_t maxTextBytes = 256;
constexpr std::size_t maxErrorBlock = sizeof(std::int32_t) + maxTextBytes;
constexpr std::size_t maxFeatureBlock = 2 * maxTextBytes;
constexpr std::size_t maxEntries = 1024;          // of types other than new-buffer, which the announced buffers bound
constexpr std::uint64_t endless_ms = 1ULL << 40U; // longer waits would overflow the clock

[[noreturn]] void RefuseBlock()
{
    throw Failure(GC_ERR_INVALID_PARAMETER, "the block is none that this event delivered");
}

// The texts of a block, each with its terminator.
std::string_view TextAt(std::string_view block, std::size_t offset)
{
    const std::size_t end = block.find('\0', offset);
    if (end == std::string_view::npos) RefuseBlock();
    return block.substr(offset, end - offset);
}

InfoValue ErrorInfo(std::string_view block, EVENT_DATA_INFO_CMD command)
{
    std::int32_t code = 0;
    if (block.size() <= sizeof code) RefuseBlock();
    std::memcpy(&code, block.data(), sizeof code);
    switch (command)
    {
    case EVENT_DATA_ID:
        return InfoValue::Int32(code);
    case EVENT_DATA_VALUE:
        return InfoValue::Text(TextAt(block, sizeof code));
    default:
        return InfoValue::UInt64(static_cast<std::uint64_t>(static_cast<std::int64_t>(code)));
    }
}

InfoValue NewBufferInfo(std::string_view block, EVENT_DATA_INFO_CMD command)
{
    EVENT_NEW_BUFFER_DATA data{};
    if (block.size() != sizeof data) RefuseBlock();
    std::memcpy(&data, block.data(), sizeof data);
    switch (command)
    {
    case EVENT_DATA_ID:
        return InfoValue::Pointer(data.BufferHandle);
    case EVENT_DATA_VALUE:
        return InfoValue::Pointer(data.pUserPointer);
    default:
        return InfoValue::UInt64(reinterpret_cast<std::uintptr_t>(data.BufferHandle));
    }
}

InfoValue FeatureInfo(EVENT_TYPE type, std::string_view block, EVENT_DATA_INFO_CMD command)
{
    const std::string_view name = TextAt(block, 0);
    if (command == EVENT_DATA_ID) return InfoValue::Text(name);
    if (command == EVENT_DATA_VALUE && type == EVENT_FEATURE_CHANGE)
        return InfoValue::Text(TextAt(block, name.size() + 1));
    throw Failure(GC_ERR_NOT_AVAILABLE, "feature events have no such information");
}

} // namespace

std::size_t UsualBlockBytes(EVENT_TYPE type) noexcept
{
    switch (type)
    {
    case EVENT_ERROR:
        return maxErrorBlock;
    case EVENT_NEW_BUFFER:
        return sizeof(EVENT_NEW_BUFFER_DATA);
    case EVENT_FEATURE_INVALIDATE:
    case EVENT_FEATURE_CHANGE:
        return maxFeatureBlock;
    default:
        return EventPackets::maxBytes;
    }
}

InfoValue ItemInfo(const ReceivedItem& item, EVENT_DATA_INFO_CMD command)
{
    char digits[8];
    switch (command)
    {
    case EVENT_DATA_ID:
        std::snprintf(digits, sizeof digits, "%04X", static_cast<unsigned>(item.id));
        return InfoValue::Text(digits);
    case EVENT_DATA_VALUE:
        return InfoValue::Bytes(item.bytes);
    default:
        return InfoValue::UInt64(item.id);
    }
}

std::string FeatureBlock(const std::string& text)
{
    return text.substr(0, maxTextBytes - 1) + '\0';
}

std::string ErrorBlock(GC_ERROR code, const std::string& text)
{
    std::string block(reinterpret_cast<const char*>(&code), sizeof code);
    block += text.substr(0, maxTextBytes - 1);
    block.push_back('\0');
    return block;
}

EventQueue::EventQueue(
    EVENT_TYPE type, std::shared_ptr<Module> owner, std::mutex& ownersMutex, BufferObserver* observer,
    std::size_t maxBlockBytes)
    : type(type), owner(std::move(owner)), observer(observer), maxBlockBytes(maxBlockBytes), mutex(ownersMutex)
{}

GC_ERROR EventQueue::Take(void* buffer, std::size_t* size, std::uint64_t timeout_ms)
{
    std::unique_lock lock(mutex);
    if (ended) return GC_ERR_INVALID_HANDLE;
    if (!HasReason() && timeout_ms > 0) Wait(lock, timeout_ms);
    return TakeLocked(buffer, size);
}

GC_ERROR EventQueue::TakeLocked(void* buffer, std::size_t* size)
{
    if (ended) return GC_ERR_ABORT;
    if (pendingKills > 0)
    {
        --pendingKills;
        return GC_ERR_ABORT;
    }
    if (entries.empty()) return GC_ERR_TIMEOUT;

    const EventEntry& head = entries.front();
    if (buffer != nullptr)
    {
        EVENT_NEW_BUFFER_DATA data{};
        std::string_view bytes = head.block;
        if (head.buffer)
        {
            data = {head.buffer->Handle(), head.buffer->UserPointer()};
            bytes = {reinterpret_cast<const char*>(&data), sizeof data};
        }
        if (*size < bytes.size()) return GC_ERR_BUFFER_TOO_SMALL;
        std::memcpy(buffer, bytes.data(), bytes.size());
        *size = bytes.size();
    }
    if (head.buffer) observer->OnTakenOff(*head.buffer, buffer != nullptr);
    entries.pop_front();
    return GC_ERR_SUCCESS;
}

void EventQueue::Wait(std::unique_lock<std::mutex>& lock, std::uint64_t timeout_ms)
{
    ++numWaiters;
    if (timeout_ms >= endless_ms)
        reason.wait(lock, [this] { return HasReason(); });
    else
        reason.wait_for(lock, std::chrono::milliseconds(timeout_ms), [this] { return HasReason(); });
    --numWaiters;
    if (ended) left.notify_all();
}

void EventQueue::Flush()
{
    const std::lock_guard lock(mutex);
    DiscardAll();
}

void EventQueue::Kill()
{
    const std::lock_guard lock(mutex);
    ++pendingKills;
    reason.notify_one();
}

void EventQueue::End()
{
    std::unique_lock lock(mutex);
    ended = true;
    DiscardAll();
    reason.notify_all();
    left.wait(lock, [this] { return numWaiters == 0; });
}

void EventQueue::Push(EventEntry entry)
{
    if (!entry.buffer && entries.size() >= maxEntries) return;
    entries.push_back(std::move(entry));
    ++numFired;
    if (numWaiters > 0) reason.notify_one();
}

void EventQueue::DiscardAll() noexcept
{
    for (const EventEntry& entry : entries)
        if (entry.buffer) observer->OnTakenOff(*entry.buffer, false);
    entries.clear();
}

InfoValue EventQueue::Info(EVENT_INFO_CMD command) const
{
    const std::lock_guard lock(mutex);
    switch (command)
    {
    case EVENT_EVENT_TYPE:
        return InfoValue::Int32(type);
    case EVENT_NUM_IN_QUEUE:
        return InfoValue::Size(entries.size());
    case EVENT_NUM_FIRED:
        return InfoValue::UInt64(numFired);
    case EVENT_SIZE_MAX:
        return InfoValue::Size(maxBlockBytes);
    case EVENT_INFO_DATA_SIZE_MAX:
        if (type == EVENT_FEATURE_INVALIDATE) throw Failure(GC_ERR_NOT_AVAILABLE, "this event carries no value");
        if (type == EVENT_NEW_BUFFER) return InfoValue::Size(sizeof(void*));
        return InfoValue::Size(type == EVENT_ERROR || type == EVENT_FEATURE_CHANGE ? maxTextBytes : maxBlockBytes);
    default:
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown event information");
    }
}

InfoValue EventQueue::DataInfo(const void* block, std::size_t size, EVENT_DATA_INFO_CMD command) const
{
    if (command < EVENT_DATA_ID || command > EVENT_DATA_NUMID)
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown event data information");
    const std::string_view bytes(static_cast<const char*>(block), size);
    switch (type)
    {
    case EVENT_ERROR:
        return ErrorInfo(bytes, command);
    case EVENT_NEW_BUFFER:
        return NewBufferInfo(bytes, command);
    case EVENT_FEATURE_INVALIDATE:
    case EVENT_FEATURE_CHANGE:
        return FeatureInfo(type, bytes, command);
    case EVENT_CUSTOM_ID:
        if (size > maxBlockBytes) RefuseBlock();
        return ItemInfo({EVENT_CUSTOM_ID, bytes}, command);
    default:
        return owner->PacketInfo(type, bytes, command);
    }
}

} // namespace koro::kit
