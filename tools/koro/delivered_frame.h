// DeliveredFrame: what one delivered buffer is worth, and the files that it becomes.
//
// Read from the tool's own memory and never beyond it, regardless of what the producer claims. One thread at a time.
#pragma once

#include "tools/koro/frame_files.h"
#include "tools/koro/frame_memory.h"
#include "tools/koro/frame_questions.h"
#include "tools/koro/grab_statistics.h"
#include "tools/koro/point_cloud.h"
#include <koro/koro.hpp>

#include <cstddef>
#include <optional>
#include <string>

namespace koro::tool
{

// What to make of frames.
struct FrameWish
{
    FileFormat format;
    bool keepIncomplete; // they get files too, as far as they have bytes
    const std::optional<Scan3D>& geometry;
};

struct DeliveredFrame
{
    FrameState state = FrameState::Whole;
    size_t size = 0;              // bytes that are filled
    FrameFiles files;             // none for what is not to be saved
    std::string problem;          // why the frame cannot be read; empty where the producer only calls it incomplete
    std::string hint;             // what to try against it
    bool isUnknownFormat = false; // the problem is the format of the frames, so the next will have it too
};

// No answer of the producer makes this fail: what it refuses or gets wrong becomes the state of the frame.
// Every format asks the same questions; only a frame that cannot become a picture is incomplete where it is to be one,
// and whole elsewhere.
DeliveredFrame ReadFrame(
    const Buffer& buffer, const FrameMemory& memory, const FrameWish& wish, FrameQuestions& questions);

} // namespace koro::tool
