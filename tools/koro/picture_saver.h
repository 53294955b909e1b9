// PictureSaver: writes pictures to files on a thread of its own, so that encoding does not hold up the camera.
//
// Owned by one grab. Save() and Finish() on one thread; it waits when too many pictures stand in line.
#pragma once

#include "tools/koro/picture.h"
#include "tools/koro/progress.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <variant>
#include <vector>

namespace koro::tool
{

enum class FileFormat
{
    PNG,
    TIFF,
    Raw,
};

// The bytes of a frame as they came, for FileFormat::Raw.
using RawFrame = std::vector<uint8_t>;

class PictureSaver
{
public:
    // Files are named <folder>/<prefix>-<six digits>.<suffix of the format>, counted from 1.
    PictureSaver(std::filesystem::path folder, std::string prefix, FileFormat format, Progress& progress);
    PictureSaver(const PictureSaver&) = delete;
    PictureSaver& operator=(const PictureSaver&) = delete;
    // Pictures that still stand in line are written.
    ~PictureSaver();

    // Throws what an earlier write failed with; nothing is taken after that.
    void Save(std::variant<Picture, RawFrame> content);
    // Waits for the last file. Throws what a write failed with.
    void Finish();
    uint64_t NumSaved() const;

private:
    void Work();
    void WriteOne(const std::variant<Picture, RawFrame>& content, uint64_t number);
    void End() noexcept;

    const std::filesystem::path folder;
    const std::string prefix;
    const FileFormat format;
    Progress& progress;

    mutable std::mutex mutex; // guards all below but the thread
    std::condition_variable changed;
    std::deque<std::variant<Picture, RawFrame>> waiting;
    std::exception_ptr failure;
    uint64_t numSaved = 0;
    bool ending = false;
    std::thread worker; // last: it uses everything above
};

// A text that is safe as the beginning of a file name: letters, digits, ".", "_" and "-", at most 64, not empty.
std::string FileNamePrefix(const std::string& text);

} // namespace koro::tool
