#include "tools/koro/picture_saver.h"

#include "tools/koro/camera_tree_json.h"
#include "tools/koro/image_writer.h"
#include "tools/koro/pending_file.h"

#include <cinttypes>
#include <cstdio>
#include <utility>

namespace koro::tool
{

namespace
{

// Bounds the memory when the disk is slower than the camera.
constexpr size_t maxWaiting = 8;

void Write(const FrameFile& file, PendingFile& target)
{
    if (const auto* picture = std::get_if<Picture>(&file.content))
        file.suffix == ".tiff" ? WriteTIFF(*picture, target) : WritePNG(*picture, target);
    else if (const auto* points = std::get_if<PointCloud>(&file.content))
        WritePLY(*points, target);
    else if (const auto* bytes = std::get_if<RawBytes>(&file.content))
        WriteRaw(bytes->data(), bytes->size(), target);
    target.Complete(); // a frame may have more parts than a process has descriptors
}

void CommitAll(std::deque<PendingFile>& files)
{
    try
    {
        for (PendingFile& file : files)
            file.Commit();
    }
    catch (...)
    {
        for (PendingFile& file : files)
            file.Withdraw();
        throw;
    }
}

} // namespace

PictureSaver::PictureSaver(std::filesystem::path target, std::string name, Progress& shown)
    : folder(std::move(target)), prefix(std::move(name)), progress(shown), worker([this] { Work(); })
{}

PictureSaver::~PictureSaver()
{
    End();
}

void PictureSaver::Save(FrameFiles files, FrameNote note)
{
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait(lock, [this] { return waiting.size() < maxWaiting || failure; });
    if (failure) std::rethrow_exception(failure);
    waiting.push_back({std::move(files), std::move(note)});
    changed.notify_all();
}

void PictureSaver::Finish()
{
    End();
    if (failure) std::rethrow_exception(failure);
}

uint64_t PictureSaver::NumSaved() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return numSaved;
}

uint64_t PictureSaver::NumFiles() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return numFiles;
}

void PictureSaver::End() noexcept
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        ending = true;
        changed.notify_all();
    }
    if (worker.joinable()) worker.join();
}

void PictureSaver::Work()
{
    std::unique_lock<std::mutex> lock(mutex);
    for (;;)
    {
        changed.wait(lock, [this] { return ending || !waiting.empty(); });
        if (waiting.empty()) return;
        Frame frame = std::move(waiting.front());
        waiting.pop_front();
        const uint64_t number = numWritten + 1;
        changed.notify_all();

        lock.unlock();
        std::exception_ptr problem;
        try
        {
            WriteOne(frame, number);
        }
        catch (...)
        {
            problem = std::current_exception();
        }
        lock.lock();
        if (problem)
        {
            failure = problem;
            changed.notify_all();
            return;
        }
        if (!frame.files.empty()) ++numWritten;
        if (frame.note.isWhole) ++numSaved;
        numFiles += frame.files.size();
    }
}

void PictureSaver::WriteOne(Frame& frame, uint64_t number)
{
    char digits[64];
    std::snprintf(digits, sizeof digits, "-%06" PRIu64 "%s", number, frame.note.isWhole ? "" : "-incomplete");
    std::vector<std::string> paths;
    std::deque<PendingFile> pending;
    for (const FrameFile& file : frame.files)
    {
        const std::string label = file.label.empty() ? "" : "-" + file.label;
        const std::filesystem::path path = folder / (prefix + digits + label + file.suffix);
        Write(file, pending.emplace_back(path));
        paths.push_back(path.string());
    }
    CommitAll(pending);
    if (frame.note.object)
    {
        (*frame.note.object)["files"] = paths;
        progress.ShowObject(Dump(*frame.note.object));
    }
    else if (frame.note.isWhole)
        progress.Saved(paths, frame.note.remark);
    else
        progress.Kept(paths);
}

} // namespace koro::tool
