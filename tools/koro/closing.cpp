#include "tools/koro/closing.h"

#include <stdexcept>

namespace koro::tool
{

bool ClosingReport::Attempt(const std::function<void()>& step)
{
    try
    {
        step();
        return true;
    }
    catch (const std::runtime_error& error)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        failures.emplace_back(error.what());
        return false;
    }
}

void ClosingReport::AddUnderruns(uint64_t number)
{
    const std::lock_guard<std::mutex> lock(mutex);
    numUnderruns = numUnderruns.value_or(0) + number;
}

void ClosingReport::ForgetFailures()
{
    const std::lock_guard<std::mutex> lock(mutex);
    failures.clear();
}

std::vector<std::string> ClosingReport::Failures() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return failures;
}

std::optional<uint64_t> ClosingReport::NumUnderruns() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return numUnderruns;
}

} // namespace koro::tool
