// PictureSaver: writes the files of frames on a thread of its own, so that encoding does not hold up the camera.
//
// Owned by one grab. Save() and Finish() on one thread; it waits when too many frames stand in line.
#pragma once

#include "tools/koro/frame_files.h"
#include "tools/koro/progress.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <filesystem>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <thread>

namespace koro::tool
{

// What goes with the files of a frame.
struct FrameNote
{
    std::string remark = {}; // shown beside them
    bool isWhole = true;     // else their names say that it is incomplete
    // What is known of the frame, to be printed with the names of the files in place of them.
    std::optional<nlohmann::json> object = {};
};

class PictureSaver
{
public:
    // Files are named <folder>/<prefix>-<six digits>[-incomplete][-<label>]<suffix>, the frames counted from 1.
    PictureSaver(std::filesystem::path folder, std::string prefix, Progress& progress);
    PictureSaver(const PictureSaver&) = delete;
    PictureSaver& operator=(const PictureSaver&) = delete;
    // Frames that still stand in line are written.
    ~PictureSaver();

    // Takes the files of the next frame, which are written together or not at all, or none of a frame that is only
    // counted or described. Throws what an earlier write failed with; nothing is taken after that.
    void Save(FrameFiles files, FrameNote note = {});
    // Waits for the last file. Throws what a write failed with.
    void Finish();
    // Whole frames that are done.
    uint64_t NumSaved() const;
    uint64_t NumFiles() const;

private:
    struct Frame
    {
        FrameFiles files;
        FrameNote note;
    };

    void Work();
    void WriteOne(Frame& frame, uint64_t number);
    void End() noexcept;

    const std::filesystem::path folder;
    const std::string prefix;
    Progress& progress;

    mutable std::mutex mutex; // guards all below but the thread
    std::condition_variable changed;
    std::deque<Frame> waiting;
    std::exception_ptr failure;
    uint64_t numWritten = 0; // frames with files, whole or not
    uint64_t numSaved = 0;
    uint64_t numFiles = 0;
    bool ending = false;
    std::thread worker; // last: it uses everything above
};

} // namespace koro::tool
