#include "tools/koro/picture_saver.h"

#include "tools/koro/image_writer.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <string_view>
#include <utility>

namespace koro::tool
{

namespace
{

// Bounds the memory when the disk is slower than the camera.
constexpr size_t maxWaiting = 8;

const char* SuffixOf(FileFormat format)
{
    switch (format)
    {
    case FileFormat::PNG:
        return ".png";
    case FileFormat::TIFF:
        return ".tiff";
    case FileFormat::Raw:
        return ".raw";
    }
    return "";
}

} // namespace

PictureSaver::PictureSaver(std::filesystem::path target, std::string name, FileFormat kind, Progress& shown)
    : folder(std::move(target)), prefix(std::move(name)), format(kind), progress(shown), worker([this] { Work(); })
{}

PictureSaver::~PictureSaver()
{
    End();
}

void PictureSaver::Save(std::variant<Picture, RawFrame> content)
{
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait(lock, [this] { return waiting.size() < maxWaiting || failure; });
    if (failure) std::rethrow_exception(failure);
    waiting.push_back(std::move(content));
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
        const auto content = std::move(waiting.front());
        waiting.pop_front();
        const uint64_t number = numSaved + 1;
        changed.notify_all();

        lock.unlock();
        std::exception_ptr problem;
        try
        {
            WriteOne(content, number);
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
        ++numSaved;
    }
}

void PictureSaver::WriteOne(const std::variant<Picture, RawFrame>& content, uint64_t number)
{
    char digits[32];
    std::snprintf(digits, sizeof digits, "-%06" PRIu64, number);
    const std::filesystem::path path = folder / (prefix + digits + SuffixOf(format));
    if (const auto* frame = std::get_if<RawFrame>(&content))
    {
        WriteRaw(frame->data(), frame->size(), path);
    }
    else if (format == FileFormat::TIFF)
    {
        WriteTIFF(std::get<Picture>(content), path);
    }
    else
    {
        WritePNG(std::get<Picture>(content), path);
    }
    progress.Saved(path.string());
}

std::string FileNamePrefix(const std::string& text)
{
    constexpr std::string_view allowed = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-";
    std::string name = text.substr(0, 64);
    std::replace_if(
        name.begin(), name.end(), [&](char c) { return allowed.find(c) == std::string_view::npos; }, '_');
    if (name.empty() || name.front() == '.') name.insert(0, "camera");
    return name;
}

} // namespace koro::tool
