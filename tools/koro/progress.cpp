#include "tools/koro/progress.h"

#include "tools/koro/standard_streams.h"

#include <algorithm>

namespace koro::tool
{

Progress::Progress(std::FILE* shownOn, ProgressForm shownAs, uint64_t expected)
    : stream(shownOn), form(shownAs), total(expected)
{}

Progress::~Progress()
{
    if (isDrawn) std::fputc('\n', stream);
}

void Progress::Saved(const std::vector<std::string>& files, const std::string& remark)
{
    const std::lock_guard<std::mutex> lock(mutex);
    ++done;
    const std::string count = std::to_string(done) + "/" + std::to_string(total) + " ";
    if (form != ProgressForm::Bar)
    {
        for (const std::string& file : files)
            ShowLine(count + file);
        if (!remark.empty()) ShowLine("    " + remark);
        return;
    }
    if (!remark.empty()) ShowLine(count + remark);
    DrawBar();
}

void Progress::Kept(const std::vector<std::string>& files)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (form == ProgressForm::Bar) return;
    for (const std::string& file : files)
        ShowLine("    " + file);
}

void Progress::ShowObject(const std::string& object)
{
    const std::lock_guard<std::mutex> lock(mutex);
    ShowLine(object);
}

void Progress::Warn(const std::string& line)
{
    const std::lock_guard<std::mutex> lock(mutex);
    // Away with the bar, which stands in the same line of the terminal.
    if (isDrawn) std::fputs("\r\33[K", stream);
    std::fflush(stream);
    std::fprintf(Errors(), "%s\n", line.c_str());
    lastDrawn = {};
    if (isDrawn) DrawBar();
}

void Progress::Say(const std::string& line)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (form == ProgressForm::Objects)
    {
        std::fprintf(Errors(), "%s\n", line.c_str());
        return;
    }
    ShowLine(line);
    if (form == ProgressForm::Bar) DrawBar();
}

// On a terminal the line takes the place of the bar, which has to be drawn anew.
void Progress::ShowLine(const std::string& line)
{
    if (form == ProgressForm::Bar)
    {
        std::fprintf(stream, "\r\33[K%s\n", line.c_str());
        lastDrawn = {};
    }
    else
    {
        std::fprintf(stream, "%s\n", line.c_str());
    }
    std::fflush(stream);
}

void Progress::DrawBar()
{
    // A terminal shows no more than this, and drawing costs time.
    const auto now = std::chrono::steady_clock::now();
    if (done < total && now - lastDrawn < std::chrono::milliseconds(50)) return;
    lastDrawn = now;
    isDrawn = true;
    std::fprintf(stream, "\r%s", ProgressBar(done, total).c_str());
    std::fflush(stream);
}

std::string ProgressBar(uint64_t done, uint64_t total)
{
    constexpr size_t width = 40;
    const double share = total == 0 ? 1.0 : std::min(1.0, static_cast<double>(done) / static_cast<double>(total));
    const auto filled = static_cast<size_t>(share * static_cast<double>(width));
    const std::string totalText = std::to_string(total);
    std::string doneText = std::to_string(done);
    doneText.insert(0, totalText.size() - std::min(totalText.size(), doneText.size()), ' ');
    return "[" + std::string(filled, '#') + std::string(width - filled, '.') + "] " + doneText + "/" + totalText;
}

} // namespace koro::tool
