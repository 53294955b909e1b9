// Entry points of events.
#define GENTL_PRODUCER
#include "producers/scripted/call.h"

#include <chrono>
#include <cstdio>
#include <cstring>

using namespace GenTL;
using namespace scripted;

namespace
{

// A function of one registration: `behaviour` is GC_ERROR(State&, Event&, Lock&).
template <class Behaviour, class... Arguments>
GC_ERROR CallOnEvent(
    const char* function, EVENT_HANDLE handle, const Behaviour& behaviour, const Arguments&... arguments)
{
    const auto onEvent = [&](State& state, Lock& lock) -> GC_ERROR {
        const auto event = state.live.FindEvent(handle);
        return event ? behaviour(state, *event, lock) : GC_ERR_INVALID_HANDLE;
    };
    return Call(function, onEvent, handle, arguments...);
}

// Waits until there is something to say; false when the time ran out.
bool Wait(State& state, const Event& event, Lock& lock, std::uint64_t timeout_ms)
{
    const auto ready = [&] { return event.ended || event.kills > 0 || !event.queue.empty(); };
    ++state.waiters;
    state.happened.notify_all();
    bool isReady = true;
    if (timeout_ms == GENTL_INFINITE)
    {
        state.happened.wait(lock, ready);
    }
    else
    {
        isReady = state.happened.wait_for(lock, std::chrono::milliseconds(timeout_ms), ready);
    }
    --state.waiters;
    return isReady;
}

// The kill comes first, then an entry, then the wait.
GC_ERROR Take(State& state, Event& event, Lock& lock, void* output, std::size_t* size, std::uint64_t timeout_ms)
{
    if (!size) return GC_ERR_INVALID_PARAMETER;
    if (event.kills == 0 && event.queue.empty() && !Wait(state, event, lock, timeout_ms)) return GC_ERR_TIMEOUT;
    if (event.ended) return GC_ERR_ABORT;
    if (event.kills > 0)
    {
        --event.kills;
        return GC_ERR_ABORT;
    }
    const EventEntry& entry = event.queue.front();
    if (output && *size < entry.block.size()) return GC_ERR_BUFFER_TOO_SMALL;
    if (output) std::memcpy(output, entry.block.data(), entry.block.size());
    *size = entry.block.size();
    if (entry.buffer)
    {
        entry.buffer->place = Place::Idle;
        ++state.live.Find(event.source, Kind::Stream)->delivered;
    }
    event.queue.pop_front();
    return GC_ERR_SUCCESS;
}

Infos EventInfos(const Event& event)
{
    const std::size_t largest = event.type == EVENT_NEW_BUFFER ? sizeof(EVENT_NEW_BUFFER_DATA) : 1024;
    return {
        {EVENT_EVENT_TYPE, Int32(event.type)},     {EVENT_NUM_IN_QUEUE, Size(event.queue.size())},
        {EVENT_NUM_FIRED, UInt64(event.fired)},    {EVENT_SIZE_MAX, Size(largest)},
        {EVENT_INFO_DATA_SIZE_MAX, Size(largest)},
    };
}

// A new-buffer block as the standard says; any other block begins with two bytes of id, least significant first.
Infos BlockInfos(const Event& event, const std::string& block)
{
    if (event.type == EVENT_NEW_BUFFER && block.size() == sizeof(EVENT_NEW_BUFFER_DATA))
    {
        EVENT_NEW_BUFFER_DATA data;
        std::memcpy(&data, block.data(), sizeof data);
        return {
            {EVENT_DATA_ID, Pointer(data.BufferHandle)},
            {EVENT_DATA_VALUE, Pointer(data.pUserPointer)},
            {EVENT_DATA_NUMID, UInt64(reinterpret_cast<std::uintptr_t>(data.BufferHandle))},
        };
    }
    if (block.size() < 2) return {};
    const auto byteAt = [&](std::size_t index) {
        return static_cast<unsigned>(static_cast<std::uint8_t>(block[index]));
    };
    const unsigned id = byteAt(0) | byteAt(1) << 8;
    char digits[16];
    std::snprintf(digits, sizeof digits, "%04X", id);
    return {
        {EVENT_DATA_ID, Text(digits)},
        {EVENT_DATA_VALUE, Bytes(INFO_DATATYPE_BUFFER, block.substr(2))},
        {EVENT_DATA_NUMID, UInt64(id)},
    };
}

} // namespace

GC_ERROR GenTL::GCRegisterEvent(EVENTSRC_HANDLE hModule, EVENT_TYPE iEventID, EVENT_HANDLE* phEvent)
{
    return Call(
        "GCRegisterEvent",
        [&](State& state, Lock&) -> GC_ERROR {
            Module* module = state.live.FindModule(hModule);
            if (!module || module->kind == Kind::RemotePort) return GC_ERR_INVALID_HANDLE;
            if (!phEvent) return GC_ERR_INVALID_PARAMETER;
            if (iEventID == EVENT_NEW_BUFFER && module->kind != Kind::Stream) return GC_ERR_NOT_IMPLEMENTED;
            if (module->events.contains(iEventID)) return GC_ERR_RESOURCE_IN_USE;
            *phEvent = state.live.AddEvent(*module, iEventID)->handle;
            return GC_ERR_SUCCESS;
        },
        hModule, iEventID);
}

GC_ERROR GenTL::GCUnregisterEvent(EVENTSRC_HANDLE hModule, EVENT_TYPE iEventID)
{
    return Call(
        "GCUnregisterEvent",
        [&](State& state, Lock&) -> GC_ERROR {
            Module* module = state.live.FindModule(hModule);
            if (!module) return GC_ERR_INVALID_HANDLE;
            if (!module->events.contains(iEventID)) return GC_ERR_NOT_INITIALIZED;
            state.live.EndEvent(*module, iEventID);
            state.happened.notify_all();
            return GC_ERR_SUCCESS;
        },
        hModule, iEventID);
}

GC_ERROR GenTL::EventGetData(EVENT_HANDLE hEvent, void* pBuffer, size_t* piSize, uint64_t iTimeout)
{
    return CallOnEvent(
        "EventGetData", hEvent,
        [&](State& state, Event& event, Lock& lock) { return Take(state, event, lock, pBuffer, piSize, iTimeout); },
        iTimeout);
}

GC_ERROR GenTL::EventGetInfo(
    EVENT_HANDLE hEvent, EVENT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return CallOnEvent(
        "EventGetInfo", hEvent,
        [&](State& state, Event& event, Lock&) {
            return AnswerInfo(Choose(state, "EventGetInfo", EventInfos(event), iInfoCmd), piType, pBuffer, piSize);
        },
        iInfoCmd, Half{pBuffer});
}

GC_ERROR GenTL::EventGetDataInfo(
    EVENT_HANDLE hEvent, const void* pInBuffer, size_t iInSize, EVENT_DATA_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
    void* pOutBuffer, size_t* piOutSize)
{
    return CallOnEvent(
        "EventGetDataInfo", hEvent,
        [&](State& state, Event& event, Lock&) -> GC_ERROR {
            if (!pInBuffer || iInSize == 0) return GC_ERR_INVALID_PARAMETER;
            const std::string block(static_cast<const char*>(pInBuffer), iInSize);
            const Info info = Choose(state, "EventGetDataInfo", BlockInfos(event, block), iInfoCmd);
            return AnswerInfo(info, piType, pOutBuffer, piOutSize);
        },
        iInSize, iInfoCmd, Half{pOutBuffer});
}

GC_ERROR GenTL::EventFlush(EVENT_HANDLE hEvent)
{
    return CallOnEvent("EventFlush", hEvent, [](State&, Event& event, Lock&) {
        for (const EventEntry& entry : event.queue)
        {
            if (entry.buffer) entry.buffer->place = Place::Idle;
        }
        event.queue.clear();
        return GC_ERR_SUCCESS;
    });
}

GC_ERROR GenTL::EventKill(EVENT_HANDLE hEvent)
{
    return CallOnEvent("EventKill", hEvent, [](State& state, Event& event, Lock&) {
        ++event.kills;
        state.happened.notify_all();
        return GC_ERR_SUCCESS;
    });
}
