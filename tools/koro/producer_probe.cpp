#include "tools/koro/producer_probe.h"

#include "tools/koro/camera_tree_json.h"
#include "tools/koro/tool_error.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace koro::tool
{

namespace
{

using nlohmann::json;
using Clock = std::chrono::steady_clock;

// A tree of 65,536 cameras fits; a producer that prints into the pipe does not fill the memory.
constexpr size_t maxReport = size_t{256} << 20;

ToolError SystemFailure(const std::string& action, int reason)
{
    return ToolError(action + " failed: " + std::generic_category().message(reason) + ".");
}

struct Descriptor
{
    int number = -1;

    Descriptor() = default;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { Close(); }
    void Close()
    {
        if (number >= 0) close(number);
        number = -1;
    }
};

struct Pipe
{
    Descriptor in;
    Descriptor out;

    Pipe()
    {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) throw SystemFailure("Making a pipe", errno);
        in.number = ends[0];
        out.number = ends[1];
    }
};

// How the child starts: silent, with the pipe as its only other descriptor, and with the usual signals.
class SpawnSettings
{
public:
    explicit SpawnSettings(int pipe)
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, pipe, probePipe);

        posix_spawnattr_init(&attributes);
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings()
    {
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
    }

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
};

pid_t StartChild(const std::string& path, int pipe)
{
    const SpawnSettings settings(pipe);
    std::string program = "koro";
    std::string command = "probe";
    std::string file = path;
    std::string endOfOptions = "--";
    char* const arguments[] = {program.data(), command.data(), endOfOptions.data(), file.data(), nullptr};
    pid_t child = -1;
    const int failure =
        posix_spawn(&child, "/proc/self/exe", &settings.actions, &settings.attributes, arguments, environ);
    if (failure != 0) throw SystemFailure("Starting a process for " + path, failure);
    return child;
}

// Lines that the child has written so far, and what they say.
class Report
{
public:
    explicit Report(ProbeResult& filled) : result(filled) {}

    bool IsFinished() const { return finished; }
    void Add(const char* bytes, size_t size)
    {
        pending.append(bytes, size);
        for (size_t end = pending.find('\n'); end != std::string::npos; end = pending.find('\n'))
        {
            ReadLine(pending.substr(0, end));
            pending.erase(0, end + 1);
        }
    }
    bool IsTooLong() const { return pending.size() > maxReport; }

private:
    // A producer that happens to write to the pipe must not confuse the parent: what makes no sense is skipped.
    void ReadLine(const std::string& line)
    {
        try
        {
            const json object = json::parse(line);
            if (object.contains("stage")) result.stage = object.at("stage").get<std::string>();
            if (object.contains("loader")) result.loaderTexts = object.at("loader").get<std::vector<std::string>>();
            if (object.contains("refused"))
            {
                result.outcome = ProbeOutcome::Refused;
                result.text = object.at("refused").get<std::string>();
                finished = true;
            }
            if (object.contains("producer"))
            {
                result.record = ProducerFromJSON(object.at("producer"));
                result.outcome = ProbeOutcome::Works;
                finished = true;
            }
        }
        catch (const json::exception&)
        {}
    }

    ProbeResult& result;
    std::string pending;
    bool finished = false;
};

int Remaining_ms(Clock::time_point deadline)
{
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return static_cast<int>(std::clamp<long long>(left, 0, 3600 * 1000));
}

// Reads until the child closes the pipe; false when the time is over first.
bool ReadReport(int pipe, Clock::time_point deadline, Report& report)
{
    std::array<char, 65536> bytes;
    for (;;)
    {
        pollfd waited{pipe, POLLIN, 0};
        const int ready = poll(&waited, 1, Remaining_ms(deadline));
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) return false;

        const ssize_t size = read(pipe, bytes.data(), bytes.size());
        if (size < 0 && errno == EINTR) continue;
        if (size <= 0) return true;
        report.Add(bytes.data(), static_cast<size_t>(size));
        if (report.IsTooLong()) return false;
    }
}

// Waits for the end; after the deadline the child is killed. True with the wait status when it ended by itself.
bool EndChild(pid_t child, Clock::time_point deadline, int& status)
{
    const timespec pause{0, 5 * 1000 * 1000};
    while (Remaining_ms(deadline) > 0)
    {
        if (waitpid(child, &status, WNOHANG) == child) return true;
        nanosleep(&pause, nullptr);
    }
    if (waitpid(child, &status, WNOHANG) == child) return true;
    kill(child, SIGKILL);
    while (waitpid(child, &status, 0) < 0 && errno == EINTR)
    {}
    return false;
}

std::string DescribeEnd(int status)
{
    if (WIFSIGNALED(status))
    {
        const int number = WTERMSIG(status);
        const char* name = sigabbrev_np(number);
        return "crashed by signal " + std::to_string(number) + (name ? std::string(" (SIG") + name + ")" : "");
    }
    return "ended the process with status " + std::to_string(WEXITSTATUS(status));
}

} // namespace

ProbeResult ProbeProducer(const std::string& path, uint64_t timeout_ms)
{
    ProbeResult result;
    result.path = path;
    Report report(result);
    const auto deadline = Clock::now() + std::chrono::milliseconds(std::min<uint64_t>(timeout_ms, 3600 * 1000));

    Pipe pipe;
    const pid_t child = StartChild(path, pipe.out.number);
    pipe.out.Close();
    const bool reportEnded = ReadReport(pipe.in.number, deadline, report);
    int status = 0;
    const bool endedByItself = EndChild(child, reportEnded ? deadline : Clock::now(), status);

    if (report.IsFinished()) return result;
    result.outcome = endedByItself ? ProbeOutcome::Crashed : ProbeOutcome::Hung;
    result.text = endedByItself ? DescribeEnd(status) : "no answer within " + std::to_string(timeout_ms) + " ms";
    return result;
}

} // namespace koro::tool
