#include "tools/koro/frame_taker.h"

#include "tools/koro/if_known.h"
#include "tools/koro/tool_error.h"

#include <algorithm>
#include <string>
#include <utility>

namespace koro::tool
{

namespace
{

// A camera that is silent this often in a row, or sends this many useless frames in a row, is given up.
constexpr int maxTimeoutsInRow = 3;
constexpr int maxUselessInRow = 64;
// How often a camera that may come and go is looked for while no frame comes.
constexpr uint64_t lookInterval_ms = 250;
// How long the stream of a camera that is back may stay silent.
constexpr uint64_t patience_ms = 1000;

} // namespace

FrameTaker::FrameTaker(
    const RunningStream& from, const GrabSettings& wished, GrabOutput& target, const Interrupt& asked,
    CameraLink* cameraLink)
    : source(from), settings(wished), output(target), interrupt(asked), link(cameraLink),
      wait_ms(link ? std::min(wished.timeout_ms, lookInterval_ms) : wished.timeout_ms),
      numLossesSeen(from.numLossesBefore)
{}

GrabEnd FrameTaker::Run()
{
    while (output.numHanded < settings.numPictures && !interrupt.IsRequested())
    {
        const std::optional<Buffer> buffer = Wait();
        if (interrupt.IsRequested()) break;
        if (buffer)
        {
            silent_ms = 0;
            timeoutsInRow = 0;
            hasVanished = false;
            if (link && output.cameraIsLost) numLossesSeen = link->NumReportedLosses();
            const bool useful = SaveFrame(*buffer);
            source.stream.QueueBuffer(*buffer);
            uselessInRow = useful ? 0 : uselessInRow + 1;
            if (uselessInRow == maxUselessInRow) break;
            continue;
        }
        if (link && IsLostForGood()) return GrabEnd::Lost;
        if (output.cameraIsLost) continue;
        silent_ms += wait_ms;
        if (silent_ms < settings.timeout_ms) continue;
        silent_ms = 0;
        ++output.statistics.numTimeouts;
        if (++timeoutsInRow == maxTimeoutsInRow) break;
    }
    return GrabEnd::Finished;
}

// Empty after a time-out, and after an interrupt whatever the producer calls it.
std::optional<Buffer> FrameTaker::Wait()
{
    try
    {
        return source.stream.WaitForFinishedBuffer(wait_ms);
    }
    catch (const Error& error)
    {
        if (interrupt.IsRequested() || error.Code() == KORO_RETURN_CODE_TIMEOUT) return std::nullopt;
        throw;
    }
}

// Whether a camera that sends nothing has to be opened anew. One that is away is waited for, since many streams go on
// by themselves when it is back; if this one does not, it has ended.
bool FrameTaker::IsLostForGood()
{
    const bool isListed = link->Find().has_value();
    const uint64_t numLosses = link->NumReportedLosses();
    // Of a camera that the list has lost nobody reports that it came back.
    const bool isReportedLost = link->IsReportedLost() && numLosses != source.numLossesBefore && !hasVanished;
    if (!isListed || isReportedLost)
    {
        numLossesSeen = numLosses;
        output.NoteLoss();
        hasVanished = hasVanished || !isListed;
        back_ms = 0;
        return false;
    }
    if (numLossesSeen != numLosses)
    {
        // It came back between two looks.
        numLossesSeen = numLosses;
        output.NoteLoss();
        back_ms = 0;
    }
    if (!output.cameraIsLost) return false;
    back_ms += wait_ms;
    return back_ms >= patience_ms;
}

// Hands the frame over to the saver; false when there is no picture in it.
bool FrameTaker::SaveFrame(const Buffer& buffer)
{
    const auto found = source.memory.find(buffer.Get());
    if (found == source.memory.end()) throw ToolError("The producer delivered a buffer that it was not given.");
    const size_t capacity = found->second.Size();
    const size_t size = std::min(IfKnown([&] { return buffer.DeliveredDataSize(); }).value_or(capacity), capacity);

    output.NoteFrame(size);
    const bool incomplete = IfKnown([&] { return buffer.IsIncomplete(); }).value_or(false);
    const bool filled = IfKnown([&] { return buffer.HasNewData(); }).value_or(true) && size > 0;
    FrameFiles files;
    if (filled) files = FilesOf(buffer, {found->second.Data(), size});
    const bool useful = !files.empty();
    if (useful)
    {
        std::string remark;
        if (output.table) remark = output.table->Add(source.nodes, buffer, output.numHanded + 1);
        output.saver.Save(std::move(files), std::move(remark));
        ++output.numHanded;
    }
    if (incomplete || !useful) ++output.statistics.numIncomplete;
    return useful;
}

FrameFiles FrameTaker::FilesOf(const Buffer& buffer, const FrameBytes& bytes) const
{
    if (settings.format == FileFormat::Raw) return ToRawFile(bytes.data, bytes.size);
    if (IsMultiPart(buffer)) return ToPartFiles(ReadParts(buffer, bytes), settings.format, source.geometry);
    return ToPictureFiles(ReadImage(buffer, bytes), settings.format, source.geometry);
}

} // namespace koro::tool
