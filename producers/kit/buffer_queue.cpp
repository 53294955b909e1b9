#include "producers/kit/buffer_queue.h"

#include <algorithm>
#include <utility>

namespace koro::kit
{

void BufferQueue::Announce(std::shared_ptr<Buffer> buffer)
{
    for (const auto& other : announced)
        if (other->Memory().data() == buffer->Memory().data())
            throw Failure(GC_ERR_RESOURCE_IN_USE, "this memory is announced already");
    buffer->announcedTo = this;
    announced.push_back(std::move(buffer));
}

std::shared_ptr<Buffer> BufferQueue::Revoke(Buffer& buffer)
{
    const auto found =
        std::find_if(announced.begin(), announced.end(), [&](const auto& entry) { return entry.get() == &buffer; });
    if (found == announced.end()) throw Failure(GC_ERR_INVALID_HANDLE, "the buffer is not announced to this stream");
    if (buffer.place != Place::Idle) throw Failure(GC_ERR_BUSY, "the buffer is queued or being filled");
    auto revoked = std::move(*found);
    announced.erase(found);
    buffer.announcedTo = nullptr;
    return revoked;
}

std::vector<std::shared_ptr<Buffer>> BufferQueue::RevokeAll() noexcept
{
    input.clear();
    for (const auto& buffer : announced)
        buffer->announcedTo = nullptr;
    return std::exchange(announced, {});
}

std::shared_ptr<Buffer> BufferQueue::At(std::size_t index) const
{
    if (index >= announced.size())
        throw Failure(GC_ERR_INVALID_INDEX, std::to_string(announced.size()) + " buffers are announced");
    return announced[index];
}

void BufferQueue::PutToInput(const std::shared_ptr<Buffer>& buffer)
{
    input.push_back(buffer);
    buffer->place = Place::Input;
    buffer->hasNewData = false;
}

void BufferQueue::PutToOutput(const std::shared_ptr<Buffer>& buffer, bool hasNewData)
{
    buffer->hasNewData = hasNewData;
    buffer->place = Place::Idle;
    if (output == nullptr) return;
    output->Push({{}, buffer});
    buffer->place = Place::Output;
}

void BufferQueue::QueueInput(Buffer& buffer)
{
    if (buffer.place != Place::Idle) throw Failure(GC_ERR_RESOURCE_IN_USE, "the buffer is in a queue already");
    PutToInput(std::static_pointer_cast<Buffer>(buffer.shared_from_this()));
}

void BufferQueue::Flush(ACQ_QUEUE_TYPE operation)
{
    const auto discardOutput = [this] {
        if (output != nullptr) output->DiscardAll();
    };
    const auto queueIdle = [this] {
        for (const auto& buffer : announced)
            if (buffer->place == Place::Idle) PutToInput(buffer);
    };
    switch (operation)
    {
    case ACQ_QUEUE_INPUT_TO_OUTPUT:
        for (const auto& buffer : std::exchange(input, {}))
            PutToOutput(buffer, false);
        return;
    case ACQ_QUEUE_OUTPUT_DISCARD:
        return discardOutput();
    case ACQ_QUEUE_ALL_TO_INPUT:
        discardOutput();
        return queueIdle();
    case ACQ_QUEUE_UNQUEUED_TO_INPUT:
        return queueIdle();
    case ACQ_QUEUE_ALL_DISCARD:
        for (const auto& buffer : std::exchange(input, {}))
            buffer->place = Place::Idle;
        return discardOutput();
    default:
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown flush operation");
    }
}

std::shared_ptr<Buffer> BufferQueue::BeginFill()
{
    if (input.empty())
    {
        ++counters.underruns;
        return nullptr;
    }
    auto buffer = std::move(input.front());
    input.pop_front();
    buffer->place = Place::Filling;
    ++numFilling;
    ++counters.started;
    return buffer;
}

void BufferQueue::EndFill(const std::shared_ptr<Buffer>& buffer, FrameFacts frame)
{
    --numFilling;
    buffer->frame = std::move(frame);
    PutToOutput(buffer, true);
}

void BufferQueue::CancelFill(Buffer& buffer) noexcept
{
    --numFilling;
    buffer.place = Place::Idle;
}

void BufferQueue::OnTakenOff(Buffer& buffer, bool delivered) noexcept
{
    buffer.place = Place::Idle;
    if (delivered) ++counters.delivered;
}

} // namespace koro::kit
