#include "tools/koro/frame_taker.h"

#include "tools/koro/frame_object.h"
#include "tools/koro/producer_watch.h"
#include "tools/koro/report.h"
#include "tools/koro/tool_error.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>

namespace koro::tool
{

namespace
{

// How often a camera that may come and go, or the reader of the output, is looked for while no frame comes.
constexpr uint64_t lookInterval_ms = 250;
// How long the stream of a camera that is back may stay silent.
constexpr uint64_t patience_ms = 1000;

// The time-out in equal waits of about that interval or less.
uint64_t WaitOf(uint64_t timeout_ms)
{
    const uint64_t numWaits = (timeout_ms + lookInterval_ms - 1) / lookInterval_ms;
    return (timeout_ms + numWaits - 1) / numWaits;
}

// Of all points of the frame, how many lie beyond the limit.
uint64_t PointsLeftOut(const FrameFiles& files)
{
    uint64_t number = 0;
    for (const FrameFile& file : files)
    {
        if (const auto* points = std::get_if<PointCloud>(&file.content)) number += points->numLeftOut;
    }
    return number;
}

} // namespace

FrameTaker::FrameTaker(
    const RunningStream& from, const GrabSettings& wished, GrabOutput& target, const Interrupt& asked,
    CameraLink* cameraLink)
    : source(from), settings(wished), output(target), interrupt(asked), link(cameraLink),
      wait_ms(link || target.needsReader ? WaitOf(wished.timeout_ms) : wished.timeout_ms),
      numLossesSeen(from.numLossesBefore)
{}

GrabEnd FrameTaker::Run()
{
    while (output.numHanded < settings.numPictures && !interrupt.IsRequested() && output.IsWanted())
    {
        const std::optional<Buffer> buffer = Wait();
        if (interrupt.IsRequested()) break;
        if (buffer)
        {
            silent_ms = 0;
            timeoutsInRow = 0;
            hasVanished = false;
            if (link && output.cameraIsLost) numLossesSeen = link->NumReportedLosses();
            const bool useful = TakeFrame(*buffer);
            source.stream.QueueBuffer(*buffer);
            NoteProgress();
            uselessInRow = useful ? 0 : uselessInRow + 1;
            if (uselessInRow == maxUselessInRow) return GrabEnd::Useless;
            continue;
        }
        if (link && IsLostForGood()) return GrabEnd::Lost;
        if (output.cameraIsLost) continue;
        silent_ms += wait_ms;
        if (silent_ms < settings.timeout_ms) continue;
        silent_ms = 0;
        if (const auto end = EndAfterTimeout()) return *end;
    }
    return GrabEnd::Finished;
}

// A list may keep a camera that was unplugged, so one that may come and go is asked itself.
std::optional<GrabEnd> FrameTaker::EndAfterTimeout()
{
    if (link && !detail::Answers(source.camera))
    {
        output.NoteLoss();
        return GrabEnd::Lost;
    }
    ++output.statistics.numTimeouts;
    output.statistics.NoteSilence();
    if (++timeoutsInRow < maxTimeoutsInRow) return std::nullopt;
    return GrabEnd::Silent;
}

// Empty after a time-out, and after an interrupt whatever the producer calls it.
std::optional<Buffer> FrameTaker::Wait()
{
    const ExpectedWait wait;
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

// False for a frame that is not whole.
bool FrameTaker::TakeFrame(const Buffer& buffer)
{
    const auto found = source.memory.find(buffer.Get());
    if (found == source.memory.end()) throw ToolError("The producer delivered a buffer that it was not given.");

    DeliveredFrame frame =
        ReadFrame(buffer, found->second, {settings.format, settings.keepIncomplete, source.geometry}, questions);
    output.NoteFrame(frame);
    // A camera that has not sent one picture will not send another format.
    std::optional<ToolError> end;
    if (frame.isUnknownFormat && output.numHanded == 0)
        end.emplace(frame.problem, frame.hint);
    else
        output.NameProblem(frame);
    const bool isWhole = frame.state == FrameState::Whole;
    if (isWhole || !frame.files.empty() || output.describesFrames) SaveFrame(buffer, std::move(frame));
    if (end) throw ToolError(*end);
    return isWhole;
}

void FrameTaker::SaveFrame(const Buffer& buffer, DeliveredFrame frame)
{
    FrameNote note;
    note.isWhole = frame.state == FrameState::Whole;
    if (output.describesFrames) note.object = DescribeFrame(buffer, frame, output.statistics.numFrames);
    if (note.isWhole) ++output.numHanded;
    if (!frame.files.empty()) ++output.numFiled;
    if (note.isWhole && output.table) AddChunks(buffer, note);
    NotePointsLeftOut(frame.files, note);
    const ExpectedWait wait; // for the disk
    output.saver.Save(std::move(frame.files), std::move(note));
}

void FrameTaker::AddChunks(const Buffer& buffer, FrameNote& note)
{
    const uint64_t number = settings.format == FileFormat::None ? output.numHanded : output.numFiled;
    note.remark = output.table->Add(source.nodes, buffer, number);
    if (!note.object) return;
    nlohmann::json& chunks = (*note.object)["chunks"] = nlohmann::json::object();
    for (const auto& [name, value] : output.table->Values())
        chunks[name] = value;
}

void FrameTaker::NotePointsLeftOut(const FrameFiles& files, FrameNote& note)
{
    const uint64_t number = PointsLeftOut(files);
    if (note.object && settings.rangeLimit) (*note.object)["pointsLeftOut"] = number;
    if (number == 0) return;
    output.statistics.numPointsLeftOut += number;
    note.remark += (note.remark.empty() ? "" : ", ") + CountOf(number, "point") + " beyond the range limit";
}

} // namespace koro::tool
