#include "producers/scripted/wild/steering.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <thread>
#include <unistd.h>
#include <utility>

namespace scripted::wild
{

std::uint64_t NumberOf(const char* variable, std::uint64_t otherwise)
{
    const char* const text = std::getenv(variable);
    return text ? std::strtoull(text, nullptr, 10) : otherwise;
}

void At(Producer& producer, const std::string& otherwise, std::function<void()> action)
{
    const char* const steered = std::getenv("KORO_WILD_CALL");
    const std::string call = steered ? steered : otherwise;
    const std::size_t colon = call.find(':');
    const std::uint64_t number = colon == std::string::npos ? 1 : std::strtoull(&call[colon + 1], nullptr, 10);
    const auto calls = std::make_shared<std::atomic<std::uint64_t>>(0);
    producer.script.Intercept(
        call.substr(0, colon),
        [=, action = std::move(action)](const std::vector<std::string>&) -> std::optional<GenTL::GC_ERROR> {
            if (++*calls == number) action();
            return std::nullopt;
        });
}

void WaitAtGate()
{
    const char* const gate = std::getenv("KORO_WILD_GATE");
    if (!gate) return;
    int pipe = -1;
    do
    {
        pipe = open(gate, O_RDONLY | O_CLOEXEC); // until somebody opens it for writing
    } while (pipe < 0 && errno == EINTR);
    if (pipe < 0) return;
    char byte;
    while (read(pipe, &byte, 1) > 0 || errno == EINTR)
        errno = 0;
    close(pipe);
}

void TakeTime(std::uint64_t milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

} // namespace scripted::wild
