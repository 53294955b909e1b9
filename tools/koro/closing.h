// Closing: the end of the work with a camera that may not answer any more. One call at a time.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace koro::tool
{

struct ClosingLimits
{
    std::chrono::milliseconds notice{2000}; // until standard error says that it takes long
    // Dead cameras were seen to let each call wait for two seconds, and the close of the device for ten.
    std::chrono::milliseconds end{20000};
};

// Runs `close`, which throws nothing, on a thread of its own and waits for its end. False when that takes too long:
// then it still runs, so all that it uses has to stay, and the process can only be ended with EndProcess().
bool CloseWithin(const ClosingLimits& limits, std::function<void()> close);

// Ends the process without waiting for any other thread; what was written comes out first.
[[noreturn]] void EndProcess(int status);

// What came out of closing. Any thread, also while the closing goes on.
class ClosingReport
{
public:
    // Runs one step; its failure is noted. False when it failed.
    bool Attempt(const std::function<void()>& step);
    void AddUnderruns(uint64_t number);
    // Failures of a camera that has gone are no news.
    void ForgetFailures();

    std::vector<std::string> Failures() const;
    // Of all sessions; empty when none of them knows.
    std::optional<uint64_t> NumUnderruns() const;

private:
    mutable std::mutex mutex; // guards all below
    std::vector<std::string> failures;
    std::optional<uint64_t> numUnderruns;
};

} // namespace koro::tool
