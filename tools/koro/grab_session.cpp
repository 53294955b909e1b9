#include "tools/koro/grab_session.h"

#include "tools/koro/assignments.h"
#include "tools/koro/if_known.h"
#include "tools/koro/tool_error.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace koro::tool
{

namespace
{

constexpr size_t usualBuffers = 8;
constexpr size_t maxBuffers = 256;
constexpr size_t maxPayloadSize = size_t{1} << 30;
constexpr size_t maxMemory = size_t{4} << 30;
// A camera that is silent this often in a row, or sends this many useless frames in a row, is given up.
constexpr int maxTimeoutsInRow = 3;
constexpr int maxUselessInRow = 64;

DataStream OpenFirstStream(const Device& device)
{
    const auto streams = device.DataStreams();
    if (streams.empty()) throw ToolError("The camera has no data stream.");
    return streams.front().OpenDataStream();
}

size_t PayloadSize(const DataStream& stream, const NodeMap& nodes, size_t wished)
{
    size_t size = wished;
    if (size == 0) size = IfKnown([&] { return FrameSize(stream, nodes); }).value_or(0);
    if (size == 0)
    {
        throw ToolError(
            "Neither the stream nor the camera tells the size of a frame.",
            "Give the camera's PayloadSize in bytes with --payload-size.");
    }
    if (size <= maxPayloadSize) return size;
    throw ToolError(
        "A frame of " + std::to_string(size) + " bytes is beyond the limit of " + std::to_string(maxPayloadSize) +
        " bytes.");
}

size_t NumBuffers(const DataStream& stream, size_t payloadSize)
{
    const size_t required = IfKnown([&] { return stream.NumBuffersAnnouncedMinRequired(); }).value_or(1);
    const size_t number = std::max(required, usualBuffers);
    if (number <= maxBuffers && number <= std::max<size_t>(maxMemory / payloadSize, 1)) return number;
    if (required <= maxBuffers && required <= maxMemory / payloadSize) return std::max<size_t>(required, 1);
    throw ToolError(
        "The producer asks for " + std::to_string(required) + " buffers of " + std::to_string(payloadSize) +
        " bytes, which is beyond the limit.");
}

} // namespace

GrabSession::GrabSession(const DeviceDescriptor& camera, const GrabSettings& wished)
    : settings(wished), device(camera.OpenDevice(AccessType::Control)), stream(OpenFirstStream(device))
{
    FindNodes();
    if (!settings.settings.empty())
        Apply(nodes, device.RemoteDevice().Port(), ParseAssignments(settings.settings), "remote device");
    geometry = ReadScan3D(nodes);
    AnnounceBuffers();
}

// A camera streams without its features too, unless some are to be set.
void GrabSession::FindNodes()
{
    try
    {
        const std::vector<NodeMap> maps = device.RemoteDevice().NodeMaps();
        if (maps.empty()) throw ToolError("The camera has no description that can be fetched.");
        maps.front().HasNode("Root"); // the first use tells whether the description is any good
        nodes = maps.front();
    }
    catch (const std::runtime_error& error)
    {
        if (!settings.settings.empty()) throw;
        std::fprintf(stderr, "koro: No features of the camera are used: %s\n", error.what());
    }
}

void GrabSession::AnnounceBuffers()
{
    const size_t size = PayloadSize(stream, nodes, settings.payloadSize);
    const size_t alignment = IfKnown([&] { return stream.BufferAlignment(); }).value_or(1);
    for (size_t number = NumBuffers(stream, size); number > 0; --number)
    {
        FrameMemory block(size, alignment);
        const Buffer buffer = stream.AnnounceBuffer(block.Data(), block.Size());
        memory.emplace(buffer.Get(), std::move(block));
        stream.QueueBuffer(buffer);
    }
}

std::string GrabSession::DescribeBuffers() const
{
    return std::to_string(memory.size()) + " buffers of " + std::to_string(memory.begin()->second.Size()) + " bytes";
}

void GrabSession::Run(Interrupt& interrupt, PictureSaver& saver)
{
    const Interrupt::WakeUp wakeUp(interrupt, [this] {
        // The wait may have ended meanwhile; then there is nothing to wake.
        KORO_DataStream_KillWait(stream.Get());
    });
    Acquisition acquisition(stream, nodes);
    try
    {
        TakeFrames(interrupt, saver);
    }
    catch (...)
    {
        const auto failure = std::current_exception();
        IfKnown([&] { return Stop(acquisition), true; });
        std::rethrow_exception(failure);
    }
    Stop(acquisition);
}

void GrabSession::TakeFrames(const Interrupt& interrupt, PictureSaver& saver)
{
    uint64_t numHanded = 0;
    int timeoutsInRow = 0;
    int uselessInRow = 0;
    while (numHanded < settings.numPictures && !interrupt.IsRequested())
    {
        const std::optional<Buffer> buffer = Wait(interrupt);
        if (interrupt.IsRequested()) return;
        if (!buffer)
        {
            if (++timeoutsInRow == maxTimeoutsInRow) return;
            continue;
        }
        timeoutsInRow = 0;
        const bool useful = SaveFrame(*buffer, saver);
        stream.QueueBuffer(*buffer);
        numHanded += useful ? 1 : 0;
        uselessInRow = useful ? 0 : uselessInRow + 1;
        if (uselessInRow == maxUselessInRow) return;
    }
}

// Empty after a time-out, and after an interrupt whatever the producer calls it.
std::optional<Buffer> GrabSession::Wait(const Interrupt& interrupt)
{
    try
    {
        return stream.WaitForFinishedBuffer(settings.timeout_ms);
    }
    catch (const Error& error)
    {
        if (interrupt.IsRequested()) return std::nullopt;
        if (error.Code() != KORO_RETURN_CODE_TIMEOUT) throw;
        ++statistics.numTimeouts;
        return std::nullopt;
    }
}

// Hands the frame over to the saver; false when there is no picture in it.
bool GrabSession::SaveFrame(const Buffer& buffer, PictureSaver& saver)
{
    const auto found = memory.find(buffer.Get());
    if (found == memory.end()) throw ToolError("The producer delivered a buffer that it was not given.");
    const size_t capacity = found->second.Size();
    const size_t size = std::min(IfKnown([&] { return buffer.DeliveredDataSize(); }).value_or(capacity), capacity);

    Count(size);
    const bool incomplete = IfKnown([&] { return buffer.IsIncomplete(); }).value_or(false);
    const bool filled = IfKnown([&] { return buffer.HasNewData(); }).value_or(true) && size > 0;
    FrameFiles files;
    if (filled) files = FilesOf(buffer, {found->second.Data(), size});
    const bool useful = !files.empty();
    if (useful) saver.Save(std::move(files));
    if (incomplete || !useful) ++statistics.numIncomplete;
    return useful;
}

FrameFiles GrabSession::FilesOf(const Buffer& buffer, const FrameBytes& bytes) const
{
    if (settings.format == FileFormat::Raw) return ToRawFile(bytes.data, bytes.size);
    if (IsMultiPart(buffer)) return ToPartFiles(ReadParts(buffer, bytes), settings.format, geometry);
    return ToPictureFiles(ReadImage(buffer, bytes), settings.format, geometry);
}

void GrabSession::Count(size_t size)
{
    const Clock::time_point now = Clock::now();
    if (statistics.numFrames == 0) firstFrame = now;
    ++statistics.numFrames;
    statistics.numBytes += size;
    statistics.seconds = std::chrono::duration<double>(now - firstFrame).count();
}

void GrabSession::Stop(Acquisition& acquisition)
{
    acquisition.Stop();
    statistics.numUnderruns = IfKnown([&] { return stream.NumUnderruns(); });
    stream.Flush(FlushMode::AllDiscard);
}

} // namespace koro::tool
