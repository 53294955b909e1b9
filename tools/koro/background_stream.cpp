#include "tools/koro/background_stream.h"

#include "tools/koro/if_known.h"

#include <algorithm>

namespace koro::tool
{

namespace
{

constexpr size_t usualBuffers = 4;
constexpr size_t maxBuffers = 256;
// A wait ends by itself too, for a producer that refuses to end it.
constexpr uint64_t longestWait_ms = 500;

} // namespace

BackgroundStream::BackgroundStream(const DataStream& stream, const NodeMap& nodes) : stream(stream)
{
    const size_t size = FrameSize(stream, nodes);
    const size_t required = IfKnown([&] { return stream.NumBuffersAnnouncedMinRequired(); }).value_or(1);
    for (size_t number = std::clamp(required, usualBuffers, maxBuffers); number > 0; --number)
        stream.QueueBuffer(stream.AllocAndAnnounceBuffer(size));
    acquisition.emplace(stream, nodes);
    worker = std::thread([this] { GiveBack(); });
}

BackgroundStream::~BackgroundStream()
{
    ending = true;
    KORO_DataStream_KillWait(stream.Get());
    worker.join();
    acquisition.reset();
    IfKnown([&] { return stream.Flush(FlushMode::AllDiscard), true; });
}

void BackgroundStream::GiveBack() noexcept
{
    while (!ending)
    {
        KORO_BufferHandle buffer{};
        const KORO_ReturnCode code = KORO_DataStream_WaitForFinishedBuffer(stream.Get(), longestWait_ms, &buffer);
        if (code == KORO_RETURN_CODE_TIMEOUT) continue;
        // What ends the stream also ends the wait for its events, where it is told.
        if (code != KORO_RETURN_CODE_SUCCESS) return;
        if (KORO_DataStream_QueueBuffer(stream.Get(), buffer) != KORO_RETURN_CODE_SUCCESS) return;
    }
}

} // namespace koro::tool
