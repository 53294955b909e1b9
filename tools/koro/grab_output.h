// What a grab is asked for, and where its frames go, through one session with the camera or several.
//
// Owned by `koro grab`; one thread at a time.
#pragma once

#include "tools/koro/chunk_table.h"
#include "tools/koro/delivered_frame.h"
#include "tools/koro/frame_files.h"
#include "tools/koro/grab_statistics.h"
#include "tools/koro/picture_saver.h"
#include "tools/koro/progress.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace koro::tool
{

constexpr size_t maxBuffers = 4096;
constexpr size_t maxPayloadSize = size_t{1} << 30; // bytes

struct GrabSettings
{
    uint64_t numPictures = 1;
    uint64_t timeout_ms = 5000;
    size_t payloadSize = 0;            // 0 takes what stream or camera say
    std::vector<std::string> settings; // NAME=VALUE, written before the size of a frame is asked for
    size_t numBuffers = 0;             // 0 takes the usual number
    FileFormat format = FileFormat::PNG;
    std::optional<double> rangeLimit; // of points, in the camera's unit of distance
    bool keepIncomplete = false;      // saves incomplete frames too
    bool chunks = false;              // switches the chunks of the camera on, and reads them
};

struct GrabOutput
{
    PictureSaver& saver;
    Progress& progress;
    ChunkTable* table;            // null without chunks
    bool describesFrames = false; // as JSON, those that are not saved too
    bool needsReader = false;     // what is printed is the result: without a reader the grab has no purpose
    GrabStatistics statistics{};
    uint64_t numHanded = 0;      // whole frames handed to the saver
    uint64_t numFiled = 0;       // frames handed to the saver, whole or not
    bool cameraIsLost = false;   // the next frame ends the outage
    bool problemIsNamed = false; // of a frame that cannot be read

    // False when the reader of what is printed has gone, and the grab needs one.
    bool IsWanted() const;
    // The camera has gone; once until the next frame.
    void NoteLoss();
    // Counts a frame that has come.
    void NoteFrame(const DeliveredFrame& frame);
    // Shows why the frame that was counted last cannot be read, for the first such frame.
    void NameProblem(const DeliveredFrame& frame);
};

} // namespace koro::tool
