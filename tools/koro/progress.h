// Progress: how far a grab has come. A bar on a terminal, one line a file elsewhere. Any thread.
#pragma once

#include <chrono>
#include <cstdio>
#include <mutex>
#include <string>
#include <vector>

namespace koro::tool
{

enum class ProgressForm
{
    Lines,   // one for each file
    Bar,     // on a terminal
    Objects, // of JSON, and what a person reads on standard error
};

class Progress
{
public:
    // `total` frames are to come. The stream belongs to the caller and outlives this object.
    Progress(std::FILE* stream, ProgressForm form, uint64_t total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    // Ends the bar's line.
    ~Progress();

    // The files of the next frame are there. A remark is shown everywhere, on a terminal above the bar.
    void Saved(const std::vector<std::string>& files, const std::string& remark = {});
    // The files of a frame that does not count.
    void Kept(const std::vector<std::string>& files);
    // One frame in the form Objects.
    void ShowObject(const std::string& object);
    // A line between two frames.
    void Say(const std::string& line);
    // The same on standard error, for what went wrong.
    void Warn(const std::string& line);

private:
    void ShowLine(const std::string& line);
    void DrawBar();

    std::FILE* const stream;
    const ProgressForm form;
    const uint64_t total;

    std::mutex mutex; // guards all below
    uint64_t done = 0;
    bool isDrawn = false;
    std::chrono::steady_clock::time_point lastDrawn;
};

// The bar's text without carriage return: "[#####.....]  5/10".
std::string ProgressBar(uint64_t done, uint64_t total);

} // namespace koro::tool
