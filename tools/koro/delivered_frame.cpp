#include "tools/koro/delivered_frame.h"

#include "tools/koro/frame_reader.h"
#include "tools/koro/tool_error.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace koro::tool
{

namespace
{

bool IsLargerThanBuffer(const Buffer& buffer, FrameQuestions& questions)
{
    constexpr int32_t command = KORO_BUFFER_INFO_DATA_LARGER_THAN_BUFFER;
    const auto info = questions.AskIfKnown({command}, [&] { return buffer.Info(command); });
    return info && !info->bytes.empty() && info->bytes.front() != 0;
}

// Which every frame of this size is.
BrokenFrame LargerThanBuffer(const Buffer& buffer, size_t bufferSize, FrameQuestions& questions)
{
    const auto meant = questions.AskIfKnown({KORO_BUFFER_INFO_DATA_SIZE}, [&] { return buffer.ExpectedDataSize(); });
    const std::string size = meant.value_or(0) > bufferSize ? " of " + std::to_string(*meant) + " bytes" : "";
    return BrokenFrame(
        "Its data" + size + " are larger than the buffer of " + std::to_string(bufferSize) + " bytes.",
        "Raise --payload-size, or leave it out.");
}

// What the producer says of the whole buffer. Fills in the size.
FrameState StatedState(const Buffer& buffer, FrameQuestions& questions, size_t& size)
{
    if (!questions.AskRequired({KORO_BUFFER_INFO_NEW_DATA}, [&] { return buffer.HasNewData(); }).value_or(true))
    {
        size = 0;
        return FrameState::Empty;
    }
    const size_t bufferSize = size;
    const auto filled =
        questions.AskIfKnown({KORO_BUFFER_INFO_SIZE_FILLED}, [&] { return buffer.DeliveredDataSize(); });
    size = std::min(filled.value_or(size), size);
    const bool isIncomplete =
        questions.AskRequired({KORO_BUFFER_INFO_IS_INCOMPLETE}, [&] { return buffer.IsIncomplete(); }).value_or(false);
    if (IsLargerThanBuffer(buffer, questions)) throw LargerThanBuffer(buffer, bufferSize, questions);
    if (isIncomplete) return FrameState::Incomplete;
    return size == 0 ? FrameState::Empty : FrameState::Whole;
}

struct FrameContents
{
    bool areParts;
    std::vector<FramePart> parts; // or the one image
};

FrameContents ReadContents(const Buffer& buffer, const FrameBytes& bytes, FrameQuestions& questions)
{
    if (IsMultiPart(buffer, questions)) return {true, ReadParts(buffer, bytes, questions)};
    return {false, {ReadImage(buffer, bytes, questions)}};
}

// Behind the lines that were received lies what an older frame left there. No line at all is no statement.
bool LacksLines(const FramePart& part)
{
    const size_t received = part.receivedLines.value_or(0);
    return received != 0 && received < part.layout.height;
}

void CheckLines(const FramePart& part)
{
    if (!LacksLines(part)) return;
    throw BrokenFrame(
        "Of " + std::to_string(part.layout.height) + " lines " + std::to_string(*part.receivedLines) +
        " were received.");
}

void CheckLines(const FrameContents& contents)
{
    std::for_each(contents.parts.begin(), contents.parts.end(), [](const FramePart& part) { CheckLines(part); });
}

FrameFiles PicturesOf(const FrameContents& contents, const FrameWish& wish)
{
    if (contents.areParts) return ToPartFiles(contents.parts, wish.format, wish.geometry);
    return ToPictureFiles(contents.parts.front(), wish.format, wish.geometry);
}

bool IsShorterThanMeant(const Buffer& buffer, size_t size, FrameQuestions& questions)
{
    const auto meant = questions.AskIfKnown({KORO_BUFFER_INFO_DATA_SIZE}, [&] { return buffer.ExpectedDataSize(); });
    return meant.value_or(0) > size;
}

// Whether a frame that needs no picture is too short for the one that it has, or for what was meant to come where it
// has none that is known.
bool IsKnownToBeShort(const Buffer& buffer, const FrameBytes& bytes, FrameQuestions& questions)
{
    if (!IsMultiPart(buffer, questions) && !HasPlainImage(buffer, questions)) return false;
    try
    {
        const FrameContents contents = ReadContents(buffer, bytes, questions);
        if (IsShort(contents.parts)) return true;
        CheckLines(contents);
        if (contents.areParts || HasPicture(contents.parts.front())) return false;
    }
    catch (const BrokenFrame&)
    {
        throw;
    }
    catch (const std::runtime_error&)
    {
        // No picture can be made of it, which is no fault of the frame.
    }
    return IsShorterThanMeant(buffer, bytes.size, questions);
}

void ReadWhole(
    const Buffer& buffer, const FrameBytes& bytes, const FrameWish& wish, FrameQuestions& questions,
    DeliveredFrame& frame)
{
    const bool asItCame = wish.format == FileFormat::Raw || wish.format == FileFormat::None;
    if (!asItCame)
    {
        const FrameContents contents = ReadContents(buffer, bytes, questions);
        FrameFiles files = PicturesOf(contents, wish);
        CheckLines(contents);
        frame.files = std::move(files);
    }
    if (asItCame ? IsKnownToBeShort(buffer, bytes, questions) : frame.files.empty())
        frame.state = FrameState::Incomplete;
    else if (wish.format == FileFormat::Raw)
        frame.files = ToRawFile(bytes.data, bytes.size);
}

// What is refused or wrong makes the frame incomplete.
void TryToRead(
    const Buffer& buffer, const FrameMemory& memory, const FrameWish& wish, FrameQuestions& questions,
    DeliveredFrame& frame)
{
    try
    {
        frame.state = StatedState(buffer, questions, frame.size);
        if (frame.state == FrameState::Whole) ReadWhole(buffer, {memory.Data(), frame.size}, wish, questions, frame);
        return;
    }
    catch (const UnknownPixelFormat& error)
    {
        frame.isUnknownFormat = true;
        frame.problem = error.what();
        frame.hint = error.Hint();
    }
    catch (const ToolError& error)
    {
        frame.problem = error.what();
        frame.hint = error.Hint();
    }
    catch (const Error& error)
    {
        frame.problem = error.what();
    }
    frame.state = FrameState::Incomplete;
}

void BlankMissingLines(const FrameMemory& memory, const FrameContents& contents)
{
    if (IsShort(contents.parts)) return; // no picture comes of it
    for (const FramePart& part : contents.parts)
    {
        if (!HasPicture(part) || !LacksLines(part)) continue;
        FrameLayout received = part.layout;
        received.height = *part.receivedLines;
        const auto start = static_cast<size_t>(part.bytes - memory.Data());
        memory.Blank(start + BytesNeeded(received), start + BytesNeeded(part.layout));
    }
}

// A picture where the frame can be read, black where bytes at its end or lines are missing; else its bytes.
FrameFiles FilesOfBroken(const Buffer& buffer, const FrameMemory& memory, size_t size, const FrameWish& wish)
{
    if (wish.format != FileFormat::Raw)
    {
        try
        {
            memory.Blank(size);
            const std::optional<Scan3D> noPoints;
            FrameQuestions questions; // nothing is held against it any more
            const FrameContents contents = ReadContents(buffer, {memory.Data(), memory.Size()}, questions);
            BlankMissingLines(memory, contents);
            FrameFiles files = PicturesOf(contents, {wish.format, wish.keepIncomplete, noPoints});
            if (!files.empty()) return files;
        }
        catch (const std::runtime_error&)
        {
            // It is kept as it came.
        }
    }
    return ToRawFile(memory.Data(), size);
}

} // namespace

DeliveredFrame ReadFrame(
    const Buffer& buffer, const FrameMemory& memory, const FrameWish& wish, FrameQuestions& questions)
{
    DeliveredFrame frame;
    frame.size = memory.Size();
    TryToRead(buffer, memory, wish, questions, frame);
    const bool keep = wish.keepIncomplete && wish.format != FileFormat::None && frame.size != 0;
    if (frame.state == FrameState::Incomplete && keep) frame.files = FilesOfBroken(buffer, memory, frame.size, wish);
    return frame;
}

} // namespace koro::tool
