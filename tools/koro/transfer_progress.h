// TransferProgress: how far a transfer of bytes has come. A bar on a terminal, nothing elsewhere; a closing line on
// both. One thread at a time.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>

namespace koro::tool
{

class TransferProgress
{
public:
    // The stream belongs to the caller and outlives this object.
    TransferProgress(std::FILE* stream, bool isTerminal, uint64_t totalBytes);
    TransferProgress(const TransferProgress&) = delete;
    TransferProgress& operator=(const TransferProgress&) = delete;
    // Ends the bar's line.
    ~TransferProgress();

    void Reached(uint64_t bytes);
    // "16777216 bytes in 1.20 s, 14.0 MB/s".
    void Finish();

private:
    void EndBar();

    std::FILE* const stream;
    const bool isTerminal;
    const uint64_t total;
    const std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point lastDrawn;
    bool isDrawn = false;
};

} // namespace koro::tool
