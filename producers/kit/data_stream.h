// DataStream: a stream of an open device: announced buffers, queues, acquisition engine, new-buffer event.
//
// A producer derives from it and brings the engine. `control` serialises what starts, stops or steers the engine and
// may wait for it; queueing, event waits and queries need only `mutex` and go on meanwhile.
#pragma once

#include "producers/kit/buffer_queue.h"
#include "producers/kit/module.h"
#include "producers/kit/stream_engine.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace koro::kit
{

class Device;

class DataStream : public Module
{
public:
    // `bufferFacts` are those of the buffers, without their ids.
    DataStream(std::shared_ptr<Device> parentDevice, std::string streamId, PortFacts bufferFacts);

    const std::string& Id() const noexcept { return id; }
    const std::shared_ptr<Device>& Parent() const noexcept { return parent; }
    InfoValue Info(STREAM_INFO_CMD command) const;

    std::shared_ptr<Buffer> Announce(void* memory, std::size_t bytes, void* userPointer);
    std::shared_ptr<Buffer> AllocAndAnnounce(std::size_t bytes, void* userPointer);
    std::shared_ptr<Buffer> BufferAt(std::uint32_t index) const;
    void Revoke(Buffer& buffer);
    void Queue(Buffer& buffer);
    void Flush(ACQ_QUEUE_TYPE operation);
    void Start(ACQ_START_FLAGS flags, std::uint64_t number);
    void Stop(ACQ_STOP_FLAGS flags);
    // What is being filled is delivered as it is; once this returns, nothing of the time before comes any more.
    void CutOff();

    // Throws GC_ERR_INVALID_HANDLE for a buffer of another stream.
    InfoValue BufferInfo(const Buffer& buffer, BUFFER_INFO_CMD command) const;
    // As they lie in the buffer now; throws for a buffer without.
    std::vector<SINGLE_CHUNK_DATA> Chunks(const Buffer& buffer) const;
    // These throw for a buffer that is no multi-part one.
    std::uint32_t NumParts(const Buffer& buffer) const;
    InfoValue PartInfo(const Buffer& buffer, std::uint32_t index, BUFFER_PART_INFO_CMD command) const;
    InfoValue SegmentInfo(const Buffer& buffer, std::uint32_t index, SEGMENT_INFO_CMD command) const;
    void RequireBuffer(const Buffer& buffer) const;

protected:
    // The engine works with `mutex` and `queue` and belongs to the derived class.
    virtual StreamEngine& Engine() noexcept = 0;
    // Of one frame, as things stand; with `mutex` held.
    virtual std::size_t PayloadBytes() const = 0;
    virtual std::size_t MaxChunks() const noexcept { return 0; }
    // Where chunks lie in a payload. Throws GC_ERR_PARSING_CHUNK_DATA.
    virtual std::vector<SINGLE_CHUNK_DATA> ChunksIn(std::span<const std::byte> payload) const;

    // Around an acquisition, with `control` held: throws what a start fails with at present; before the engine starts
    // (OnStop undoes it, also when the start fails); when it runs, and when it has stopped.
    virtual void RequireStart() const {}
    virtual void OnStart() {}
    virtual void OnStop() noexcept {}
    virtual void OnRunning(bool runs) { static_cast<void>(runs); }

    bool SupportsEvent(EVENT_TYPE type) const noexcept override;
    void OnClose() final;

    BufferQueue queue; // guarded by mutex

private:
    void OnRegistration(EVENT_TYPE type, EventQueue* registration) noexcept final;
    BufferObserver* Observer() noexcept final { return &queue; }
    const StreamEngine& Engine() const noexcept { return const_cast<DataStream*>(this)->Engine(); }
    void StopEngine(bool kill); // control held
    std::shared_ptr<Buffer> Add(std::shared_ptr<Buffer> buffer);
    void RequireBufferLocked(const Buffer& buffer) const;
    const FrameFacts& PartsLocked(const Buffer& buffer) const;

    const std::shared_ptr<Device> parent;
    const std::string id;
    const PortFacts factsOfBuffers;
    std::mutex control;
};

} // namespace koro::kit
