// FrameTaker: takes the finished buffers of a running stream until the grab is over.
//
// Lives while one stream runs, which outlives it like everything it is given; one thread.
#pragma once

#include "tools/koro/camera_link.h"
#include "tools/koro/delivered_frame.h"
#include "tools/koro/frame_memory.h"
#include "tools/koro/frame_questions.h"
#include "tools/koro/grab_output.h"
#include "tools/koro/interrupt.h"
#include <koro/koro.hpp>

#include <cstdint>
#include <map>
#include <optional>

namespace koro::tool
{

// A camera that is silent this often in a row, or sends this many frames in a row of which none is whole, is given up.
constexpr int maxTimeoutsInRow = 3;
constexpr int maxUselessInRow = 64;

enum class GrabEnd
{
    Finished, // all pictures are taken, the user interrupts, or the reader of the output has gone
    Silent,   // the camera sends nothing
    Useless,  // the camera sends nothing that is whole
    Lost,     // the camera has gone
};

struct RunningStream
{
    const RemoteDevice camera;
    const DataStream& stream;
    const NodeMap& nodes; // may be empty
    const std::map<KORO_BufferHandle, FrameMemory>& memory;
    const std::optional<Scan3D>& geometry;
    uint64_t numLossesBefore; // that the link had heard of when the camera was opened
};

class FrameTaker
{
public:
    // `link` may be null: then a camera that is lost is a failure.
    FrameTaker(
        const RunningStream& from, const GrabSettings& settings, GrabOutput& output, const Interrupt& interrupt,
        CameraLink* link);

    // Throws koro::Error, and what saving failed with.
    GrabEnd Run();

private:
    std::optional<Buffer> Wait();
    bool IsLostForGood();
    std::optional<GrabEnd> EndAfterTimeout();
    bool TakeFrame(const Buffer& buffer);
    void SaveFrame(const Buffer& buffer, DeliveredFrame frame);
    void AddChunks(const Buffer& buffer, FrameNote& note);
    void NotePointsLeftOut(const FrameFiles& files, FrameNote& note);

    const RunningStream source;
    const GrabSettings& settings;
    GrabOutput& output;
    const Interrupt& interrupt;
    CameraLink* const link;
    const uint64_t wait_ms;
    FrameQuestions questions;

    uint64_t silent_ms = 0; // since the last frame or time-out
    int timeoutsInRow = 0;
    int uselessInRow = 0;
    uint64_t numLossesSeen;
    bool hasVanished = false; // from the device list, since the last frame
    uint64_t back_ms = 0;     // since a lost camera is back
};

} // namespace koro::tool
