#include "tools/koro/delivered_frame.h"

#include "tools/koro/frame_reader.h"
#include "tools/koro/if_known.h"
#include "tools/koro/tool_error.h"

#include <algorithm>
#include <stdexcept>

namespace koro::tool
{

namespace
{

size_t FilledSize(const Buffer& buffer, size_t capacity)
{
    return std::min(IfKnown([&] { return buffer.DeliveredDataSize(); }).value_or(capacity), capacity);
}

bool IsLargerThanBuffer(const Buffer& buffer)
{
    const auto info = IfKnown([&] { return buffer.Info(KORO_BUFFER_INFO_DATA_LARGER_THAN_BUFFER); });
    return info && !info->bytes.empty() && info->bytes.front() != 0;
}

bool IsCalledBroken(const Buffer& buffer)
{
    return IfKnown([&] { return buffer.IsIncomplete(); }).value_or(false) || IsLargerThanBuffer(buffer);
}

FrameFiles PicturesOf(const Buffer& buffer, const FrameBytes& bytes, const FrameWish& wish)
{
    if (IsMultiPart(buffer)) return ToPartFiles(ReadParts(buffer, bytes), wish.format, wish.geometry);
    return ToPictureFiles(ReadImage(buffer, bytes), wish.format, wish.geometry);
}

// Whether a frame that is saved as it came would be too short for its picture, as far as that can be known.
bool IsKnownToBeShort(const Buffer& buffer, const FrameBytes& bytes)
{
    try
    {
        if (IsMultiPart(buffer)) return IsShort(ReadParts(buffer, bytes));
        return HasPlainImage(buffer) && IsShort({ReadImage(buffer, bytes)});
    }
    catch (const std::runtime_error&)
    {
        return false;
    }
}

void ReadWhole(const Buffer& buffer, const FrameBytes& bytes, const FrameWish& wish, DeliveredFrame& frame)
{
    const bool asItCame = wish.format == FileFormat::Raw || wish.format == FileFormat::None;
    if (!asItCame) frame.files = PicturesOf(buffer, bytes, wish);
    if (asItCame ? IsKnownToBeShort(buffer, bytes) : frame.files.empty())
        frame.state = FrameState::Incomplete;
    else if (wish.format == FileFormat::Raw)
        frame.files = ToRawFile(bytes.data, bytes.size);
}

void TryToReadWhole(const Buffer& buffer, const FrameBytes& bytes, const FrameWish& wish, DeliveredFrame& frame)
{
    try
    {
        return ReadWhole(buffer, bytes, wish, frame);
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

// A picture where the frame can be read, black where bytes are missing at its end; else its bytes.
FrameFiles FilesOfBroken(const Buffer& buffer, const FrameMemory& memory, size_t size, const FrameWish& wish)
{
    if (wish.format != FileFormat::Raw)
    {
        try
        {
            memory.Blank(size);
            const std::optional<Scan3D> noPoints;
            FrameFiles files =
                PicturesOf(buffer, {memory.Data(), memory.Size()}, {wish.format, wish.keepIncomplete, noPoints});
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

DeliveredFrame ReadFrame(const Buffer& buffer, const FrameMemory& memory, const FrameWish& wish)
{
    DeliveredFrame frame;
    frame.size = FilledSize(buffer, memory.Size());
    const bool hasNewData = IfKnown([&] { return buffer.HasNewData(); }).value_or(true);
    if (!hasNewData || frame.size == 0)
    {
        frame.state = FrameState::Empty;
        return frame;
    }
    if (IsCalledBroken(buffer))
        frame.state = FrameState::Incomplete;
    else
        TryToReadWhole(buffer, {memory.Data(), frame.size}, wish, frame);
    const bool keep = wish.keepIncomplete && wish.format != FileFormat::None;
    if (frame.state == FrameState::Incomplete && keep) frame.files = FilesOfBroken(buffer, memory, frame.size, wish);
    return frame;
}

} // namespace koro::tool
