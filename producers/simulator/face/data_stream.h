// DataStream: the one stream of an open device: announced buffers, queues, acquisition engine, new-buffer event.
//
// `control` serialises what starts, stops or steers the engine and may wait for it; queueing, event waits and queries
// need only `mutex` and go on meanwhile.
#pragma once

#include "producers/simulator/camera/camera.h"
#include "producers/simulator/face/buffer_queue.h"
#include "producers/simulator/face/module.h"
#include "producers/simulator/face/stream_engine.h"

#include <atomic>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace koro::simulator
{

class Device;

class DataStream final : public Module
{
public:
    explicit DataStream(std::shared_ptr<Device> parentDevice);

    static const std::string& TheId(); // every device has one stream
    const std::string& Id() const noexcept { return TheId(); }
    const std::shared_ptr<Device>& Parent() const noexcept { return parent; }
    Port& ModulePort() override { return port; }
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

private:
    bool SupportsEvent(EVENT_TYPE type) const noexcept override;
    void OnRegistration(EVENT_TYPE type, EventQueue* registration) noexcept override;
    BufferObserver* Observer() noexcept override { return &queue; }
    void OnClose() override;

    PortRegisters MakeRegisters();
    void StopEngine(bool kill); // control held
    void TellLock(const char* value);
    std::shared_ptr<Buffer> Add(std::shared_ptr<Buffer> buffer);
    void RequireBufferLocked(const Buffer& buffer) const;
    std::span<const Part> PartsLocked(const Buffer& buffer) const;
    InfoValue FilledBufferInfo(const Buffer& buffer, BUFFER_INFO_CMD command) const;

    const std::shared_ptr<Device> parent;
    const std::shared_ptr<Camera> camera;
    Port port;

    std::mutex control;
    BufferQueue queue; // guarded by mutex
    StreamEngine engine;
};

} // namespace koro::simulator
