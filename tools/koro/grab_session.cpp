#include "tools/koro/grab_session.h"

#include "tools/koro/description_bytes.h"
#include "tools/koro/first_stream.h"
#include "tools/koro/frame_reader.h"
#include "tools/koro/if_known.h"
#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"
#include "tools/koro/tool_error.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace koro::tool
{

namespace
{

constexpr size_t usualBuffers = 8;
constexpr size_t mostByThemselves = 256;
constexpr size_t maxMemory = size_t{4} << 30;

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

// What the user asked for, or fails.
size_t WishedBuffers(size_t wished, size_t required, size_t payloadSize)
{
    if (wished < required)
    {
        throw ToolError(
            "The producer needs at least " + CountOf(required, "buffer") + ".", "Raise --buffers, or leave it out.");
    }
    if (wished <= maxMemory / payloadSize) return wished;
    throw ToolError(
        CountOf(wished, "buffer") + " of " + std::to_string(payloadSize) + " bytes are beyond the limit of " +
        std::to_string(maxMemory) + " bytes.");
}

size_t NumBuffers(const DataStream& stream, size_t payloadSize, size_t wished)
{
    const size_t required = IfKnown([&] { return stream.NumBuffersAnnouncedMinRequired(); }).value_or(1);
    if (wished != 0) return WishedBuffers(wished, required, payloadSize);
    const size_t number = std::max(required, usualBuffers);
    if (number <= mostByThemselves && number <= std::max<size_t>(maxMemory / payloadSize, 1)) return number;
    if (required <= mostByThemselves && required <= maxMemory / payloadSize) return std::max<size_t>(required, 1);
    throw ToolError(
        "The producer asks for " + CountOf(required, "buffer") + " of " + std::to_string(payloadSize) +
        " bytes, which is beyond the limit.");
}

} // namespace

GrabSession::GrabSession(const DeviceDescriptor& camera, const GrabSettings& wished, CameraLink* cameraLink)
    : settings(wished), link(cameraLink), numLossesBefore(link ? link->NumReportedLosses() : 0),
      modules(settings.settings, ModuleKind::Remote), device(camera.OpenDevice(AccessType::Control))
{
    FindNodes();
    const auto openStream = [this]() -> const DataStream& {
        if (!stream) stream = OpenFirstStream(device);
        return stream;
    };
    // Those above the camera were written when these modules were opened.
    modules.ApplyTo(device, openStream);
    openStream();
    if (settings.chunks)
    {
        chunkMode.emplace(nodes);
        chunkMode->Switch("ChunkModeActive", "true");
        chunkMode->SwitchAllEntries("ChunkSelector", "ChunkEnable", "true");
    }
    geometry = ReadScan3D(nodes);
    if (geometry) geometry->rangeLimit = settings.rangeLimit;
    AnnounceBuffers();
}

// A camera streams without its features too, unless some are to be set.
void GrabSession::FindNodes()
{
    try
    {
        const std::vector<NodeMap> maps = device.RemoteDevice().NodeMaps();
        if (maps.empty()) throw NoDescription("The camera", device.RemoteDevice().Port());
        maps.front().HasNode("Root"); // the first use tells whether the description is any good
        nodes = maps.front();
    }
    catch (const std::runtime_error& error)
    {
        // One that is not back yet has its features later.
        if (link && !detail::Answers(device.RemoteDevice())) throw Error(KORO_RETURN_CODE_IO_ERROR, error.what());
        if (modules.NeedCamera() || settings.chunks) throw;
        std::fprintf(Errors(), "koro: No features of the camera are used: %s\n", PrintableLines(error.what()).c_str());
    }
}

void GrabSession::AnnounceBuffers()
{
    const size_t size = PayloadSize(stream, nodes, settings.payloadSize);
    const size_t alignment = IfKnown([&] { return stream.BufferAlignment(); }).value_or(1);
    for (size_t number = NumBuffers(stream, size, settings.numBuffers); number > 0; --number)
    {
        FrameMemory block(size, alignment);
        const Buffer buffer = stream.AnnounceBuffer(block.Data(), block.Size());
        memory.emplace(buffer.Get(), std::move(block));
        stream.QueueBuffer(buffer);
    }
}

std::string GrabSession::DescribeBuffers() const
{
    return CountOf(memory.size(), "buffer") + " of " + CountOf(memory.begin()->second.Size(), "byte");
}

GrabEnd GrabSession::Run(Interrupt& interrupt, GrabOutput& output)
{
    if (output.table) output.table->FindChunks(nodes);
    if (!link) return Stream(interrupt, output);
    try
    {
        return Stream(interrupt, output);
    }
    catch (const Error& error)
    {
        if (output.numHanded >= settings.numPictures) return GrabEnd::Finished;
        // What cannot be had from a camera that was there all the time is no matter of its connection.
        const bool wasLost = output.cameraIsLost || link->NumReportedLosses() != numLossesBefore;
        if (!wasLost && link->Find() && detail::Answers(device.RemoteDevice())) throw;
        output.NoteLoss();
        return GrabEnd::Lost;
    }
}

GrabEnd GrabSession::Stream(Interrupt& interrupt, GrabOutput& output)
{
    const Interrupt::WakeUp wakeUp(interrupt, [this] {
        // The wait may have ended meanwhile; then there is nothing to wake.
        KORO_DataStream_KillWait(stream.Get());
    });
    acquisition.emplace(stream, nodes);
    return FrameTaker(
               {device.RemoteDevice(), stream, nodes, memory, geometry, numLossesBefore}, settings, output, interrupt,
               link)
        .Run();
}

bool GrabSession::CameraAnswers() const
{
    return detail::Answers(device.RemoteDevice());
}

void GrabSession::Stop(ClosingReport& report)
{
    if (!acquisition) return;
    const bool isStopped = report.Attempt([this] { acquisition->Stop(); });
    acquisition.reset();
    if (!isStopped && chunkMode) chunkMode->Forget();
    if (const auto underruns = IfKnown([&] { return stream.NumUnderruns(); })) report.AddUnderruns(*underruns);
    report.Attempt([this] { stream.Flush(FlushMode::AllDiscard); });
}

} // namespace koro::tool
