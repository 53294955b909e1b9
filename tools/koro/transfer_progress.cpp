#include "tools/koro/transfer_progress.h"

#include "tools/koro/progress.h"
#include "tools/koro/report.h"

#include <algorithm>

namespace koro::tool
{

TransferProgress::TransferProgress(std::FILE* shownOn, bool onTerminal, uint64_t totalBytes)
    : stream(shownOn), isTerminal(onTerminal), total(totalBytes)
{}

TransferProgress::~TransferProgress()
{
    EndBar();
}

void TransferProgress::Reached(uint64_t bytes)
{
    if (!isTerminal) return;
    // A terminal shows no more than this, and drawing costs time.
    const auto now = std::chrono::steady_clock::now();
    if (bytes < total && now - lastDrawn < std::chrono::milliseconds(50)) return;
    lastDrawn = now;
    isDrawn = true;
    std::fprintf(stream, "\r%s", ProgressBar(std::min(bytes, total), total).c_str());
    std::fflush(stream);
}

void TransferProgress::Finish()
{
    Reached(total);
    EndBar();
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    std::fprintf(
        stream, "%s in %.2f s, %.1f MB/s\n", CountOf(total, "byte").c_str(), seconds,
        seconds > 0 ? static_cast<double>(total) / 1e6 / seconds : 0.0);
    std::fflush(stream);
}

void TransferProgress::EndBar()
{
    if (isDrawn) std::fputc('\n', stream);
    isDrawn = false;
}

} // namespace koro::tool
