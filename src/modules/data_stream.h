// DataStream: an opened data stream. Buffers are announced to it, and finished buffers are taken from it.
//
// It has no thread and no queue: finished buffers come from the producer's new-buffer event, on the caller's thread.
// Image data is never copied, and only the producer knows which buffers are queued. Owned by the handle table; holds
// its Device weakly. Every operation except Key() throws InternalErrorException after the device has ended: a stream
// that outlives its device can no longer be used, not even to stop or close it. Thread-safe.
#pragma once

#include "base/expiring.h"
#include "base/once.h"
#include "gentl/info_accessor.h"
#include "modules/event_supporting_module.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace koro::internal
{

class Buffer;
class Device;
class EventController;

class DataStream final : public TGenTLInfoAccessor<GenTL::STREAM_INFO_CMD_LIST>, public EventSupportingModule
{
public:
    using RevocationCallback = std::function<void(GenTL::BUFFER_HANDLE handle, void* base, void* userPtr)>;

    DataStream(
        GenTL::DS_HANDLE handle, std::string streamID, const std::weak_ptr<Device>& device,
        const std::shared_ptr<const GenTLProxy>& proxy);
    // Stops a running acquisition, discards and revokes all buffers, closes. A failure on the way leaves the
    // producer's stream open.
    ~DataStream() override;

    const std::string& Key() const { return key; }
    std::string ID() const;

    std::string TLType() const;
    std::size_t NumBuffersAnnounced() const;
    std::size_t NumBuffersAnnouncedMinRequired() const;
    std::size_t NumBuffersAwaitDelivery() const;
    std::size_t NumBuffersQueued() const;
    std::uint64_t NumBuffersDelivered() const;
    std::uint64_t NumBuffersStarted() const;
    std::uint64_t NumUnderruns() const;
    std::size_t NumChunksPerBufferMax() const;
    std::size_t BufferAlignment() const; // bytes
    std::size_t PayloadSize() const;     // bytes
    bool DefinesPayloadSize() const;
    bool IsGrabbing() const;

    // The memory belongs to the caller and must stay valid until the buffer is revoked; `onRevocation` then runs, on
    // the revoking thread.
    std::shared_ptr<Buffer> AnnounceBuffer(
        void* buffer, std::size_t bufferSize, void* userPtr, RevocationCallback onRevocation);
    std::shared_ptr<Buffer> AllocAndAnnounceBuffer(std::size_t bufferSize, void* userPtr);
    void QueueBuffer(const std::shared_ptr<Buffer>& buffer);
    // Uses the stream that the buffer was announced to. If the producer refuses, the buffer stays announced.
    void RevokeBuffer(const std::shared_ptr<Buffer>& buffer);
    // Undoes an announcement that failed after the producer had accepted it, even on a stream that has been ended
    // meanwhile. The revocation callback does not run.
    void Withdraw(const std::shared_ptr<Buffer>& buffer) noexcept;

    // Returns the announced buffer that the producer finished. For a buffer that other code than the library announced
    // it returns a new object that nothing else holds.
    std::shared_ptr<Buffer> WaitForFinishedBuffer(std::uint64_t timeout_ms);
    void KillWait();
    // Ends the running waits, as kills do; later waits end at once.
    void EndWaits() noexcept override;
    // Requires a start, wait or kill before; otherwise throws InternalErrorException.
    void FlushPendingKillWaits();

    // Modes are the flags of the standard and are passed on unchanged.
    void StartAcquisition(std::int32_t startMode, std::uint64_t numToAcquire);
    void StopAcquisition(std::int32_t stopMode);
    void Flush(std::int32_t flushMode);

    std::shared_ptr<Device> ParentDevice() const;
    std::shared_ptr<Module> ParentModule() const override;

private:
    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override;
    const char* QueryName() const override { return gentl.Proxy()->DSGetInfo.Name(); }

    std::size_t SizeInfo(std::int32_t command) const;
    std::uint64_t CountInfo(std::int32_t command) const;
    template <class Operation>
    decltype(auto) WithDevice(Operation&& operation) const;
    // Registers the new-buffer event at the first start, wait or kill; before a start, so that no buffer is missed.
    EventController& NewBufferEvents();
    template <class Announce>
    std::shared_ptr<Buffer> Announced(Announce&& announce);
    bool HasEndReached() const noexcept { return haveWaitsEnded || HasEnded(); }
    std::shared_ptr<Buffer> FindOrWrap(GenTL::BUFFER_HANDLE handle);
    // Releases a buffer of this stream.
    void Release(const std::shared_ptr<Buffer>& buffer);
    void StopAndReleaseAll();

    const std::weak_ptr<Device> parent;
    const std::string key;
    const std::string id;

    Once newBufferEventsOnce;
    std::shared_ptr<EventController> newBufferEvents;
    std::atomic<bool> haveWaitsEnded{false};

    std::mutex buffersLock; // guards the two fields below; never held during a call of the producer or a callback
    std::vector<std::shared_ptr<Buffer>> buffers; // in the order of announcement
    std::unordered_map<GenTL::BUFFER_HANDLE, std::shared_ptr<Buffer>> buffersByHandle;
};

} // namespace koro::internal
