// Closing: what fails at the end of the work with a camera that may not answer any more.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace koro::tool
{

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
