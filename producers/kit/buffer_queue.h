// BufferQueue: the announced buffers of a stream and where each of them is.
//
//            queue              begin fill            end fill              EventGetData
//     Idle ---------> Input ----------------> Filling ----------> Output ------------------> Idle
//
// The output queue is the stream's new-buffer event queue; while that event is not registered a filled buffer goes
// idle. Owned by its stream; everything runs with the stream's mutex held.
#pragma once

#include "producers/kit/buffer.h"
#include "producers/kit/event_queue.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <vector>

namespace koro::kit
{

struct StreamCounters
{
    std::uint64_t delivered = 0; // since the last start
    std::uint64_t underruns = 0; // since open, as the next
    std::uint64_t started = 0;
};

class BufferQueue final : public BufferObserver
{
public:
    void SetOutput(EventQueue* newBufferEvents) noexcept { output = newBufferEvents; }

    void Announce(std::shared_ptr<Buffer> buffer);
    // GC_ERR_BUSY unless idle.
    std::shared_ptr<Buffer> Revoke(Buffer& buffer);
    std::shared_ptr<Buffer> At(std::size_t index) const;
    bool Owns(const Buffer& buffer) const noexcept { return buffer.announcedTo == this; }
    std::vector<std::shared_ptr<Buffer>> RevokeAll() noexcept;

    // GC_ERR_RESOURCE_IN_USE unless idle.
    void QueueInput(Buffer& buffer);
    // Nothing is being filled when this is called for an operation that touches such a buffer.
    void Flush(ACQ_QUEUE_TYPE operation);

    bool HasInput() const noexcept { return !input.empty(); }
    // Null, and an underrun counted, without an input buffer.
    std::shared_ptr<Buffer> BeginFill();
    void EndFill(const std::shared_ptr<Buffer>& buffer, FrameFacts frame);
    // Idle again, as if nothing had begun.
    void CancelFill(Buffer& buffer) noexcept;

    std::size_t NumAnnounced() const noexcept { return announced.size(); }
    std::size_t NumQueued() const noexcept { return input.size() + numFilling; }
    std::size_t NumAwaitingDelivery() const noexcept { return output == nullptr ? 0 : output->NumEntries(); }
    StreamCounters counters;

private:
    void OnTakenOff(Buffer& buffer, bool delivered) noexcept override;
    void PutToOutput(const std::shared_ptr<Buffer>& buffer, bool hasNewData);
    void PutToInput(const std::shared_ptr<Buffer>& buffer);

    EventQueue* output = nullptr;                   // the module's registration; null while there is none
    std::vector<std::shared_ptr<Buffer>> announced; // in the order of announcement
    std::deque<std::shared_ptr<Buffer>> input;
    std::size_t numFilling = 0;
};

} // namespace koro::kit
