// What a grab is asked for, and where its frames go, through one session with the camera or several.
//
// Owned by `koro grab`; one thread at a time.
#pragma once

#include "tools/koro/chunk_table.h"
#include "tools/koro/delivered_frame.h"
#include "tools/koro/frame_files.h"
#include "tools/koro/picture_saver.h"
#include "tools/koro/progress.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace koro::tool
{

struct GrabSettings
{
    uint64_t numPictures = 1;
    uint64_t timeout_ms = 5000;
    size_t payloadSize = 0;            // 0 takes what stream or camera say
    std::vector<std::string> settings; // NAME=VALUE, written before the size of a frame is asked for
    FileFormat format = FileFormat::PNG;
    bool keepIncomplete = false; // saves incomplete frames too
    bool chunks = false;         // switches the chunks of the camera on, and reads them
};

struct GrabStatistics
{
    uint64_t numFrames = 0; // delivered, whole or not
    uint64_t numIncomplete = 0;
    uint64_t numTimeouts = 0;
    std::optional<uint64_t> numUnderruns; // the producer's own count of each session, if it keeps one
    uint64_t numBytes = 0;
    uint64_t numReconnects = 0;
    double longestOutage_s = 0; // from the last frame before to the first after

    // A frame of that many bytes has come.
    void Count(size_t size);
    // From the first frame to the last.
    double Seconds() const;
    double SecondsSinceLastFrame() const;

private:
    using Clock = std::chrono::steady_clock;

    Clock::time_point firstFrame;
    Clock::time_point lastFrame = Clock::now();
};

struct GrabOutput
{
    PictureSaver& saver;
    Progress& progress;
    ChunkTable* table; // null without chunks
    GrabStatistics statistics = {};
    uint64_t numHanded = 0;      // whole frames handed to the saver
    uint64_t numFiled = 0;       // frames handed to the saver, whole or not
    bool cameraIsLost = false;   // the next frame ends the outage
    bool problemIsNamed = false; // of frames that cannot be read

    // The camera has gone; once until the next frame.
    void NoteLoss();
    // A frame of that many bytes has come.
    void NoteFrame(size_t size);
    // Why a frame cannot be read; the first reason is shown.
    void NoteProblem(const DeliveredFrame& frame);
};

} // namespace koro::tool
