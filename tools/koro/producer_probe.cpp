#include "tools/koro/producer_probe.h"

#include "tools/koro/camera_tree_json.h"
#include "tools/koro/exit_codes.h"
#include "tools/koro/interrupt.h"
#include "tools/koro/tool_error.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

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
        // One end alone: the child writes and waits as usual.
        fcntl(in.number, F_SETFL, O_NONBLOCK);
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

pid_t StartChild(const std::string& path, const std::string& wanted, int pipe)
{
    const SpawnSettings settings(pipe);
    std::vector<std::string> texts = {"koro", "probe"};
    if (!wanted.empty()) texts.push_back("--wanted=" + wanted);
    texts.insert(texts.end(), {"--", path});
    std::vector<char*> arguments;
    for (std::string& text : texts)
        arguments.push_back(text.data());
    arguments.push_back(nullptr);
    pid_t child = -1;
    const int failure =
        posix_spawn(&child, "/proc/self/exe", &settings.actions, &settings.attributes, arguments.data(), environ);
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
        received += size;
        for (const char* const last = bytes + size; bytes != last;)
        {
            const char* const end = std::find(bytes, last, '\n');
            pending.append(bytes, end);
            if (end == last) return;
            ReadLine(pending);
            pending.clear();
            bytes = end + 1;
        }
    }
    bool IsTooLong() const { return received > maxReport; }

private:
    // A producer that happens to write to the pipe must not confuse the parent: what makes no sense is skipped.
    void ReadLine(const std::string& line)
    {
        try
        {
            const json object = json::parse(line);
            if (object.contains("stage")) result.stage = object.at("stage").get<std::string>();
            if (object.contains("call")) result.call = object.at("call").get<std::string>();
            if (object.contains("lacks")) result.lacks = object.at("lacks").get<std::vector<std::string>>();
            if (object.contains("closes")) result.closesDescriptors = true;
            if (object.contains("producerText")) result.producerText = object.at("producerText").get<std::string>();
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
    size_t received = 0;
    bool finished = false;
};

int Remaining_ms(Clock::time_point deadline)
{
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return static_cast<int>(std::clamp<long long>(left, 0, 3600 * 1000));
}

std::string DescribeEnd(int status, const std::string& call)
{
    const std::string place = call.empty() ? call : " in " + call;
    if (WIFSIGNALED(status))
    {
        const int number = WTERMSIG(status);
        const char* name = sigabbrev_np(number);
        return "crashed" + place + " by signal " + std::to_string(number) +
               (name ? std::string(" (SIG") + name + ")" : "");
    }
    return "ended the process" + place + " with status " + std::to_string(WEXITSTATUS(status));
}

bool HasLostItsPipe(int status)
{
    return WIFEXITED(status) && WEXITSTATUS(status) == exitPipeClosed;
}

// One child from its start to its end. The child's end is the end of the probe, not the end of the pipe: another
// process that the producer has started may hold that for ever.
class Probe
{
public:
    Probe(const std::string& path, const ProbeSettings& settings) : timeout_ms(settings.timeout_ms), report(result)
    {
        result.path = path;
        child = StartChild(path, settings.wanted, pipe.out.number);
        childEnd.number = static_cast<int>(syscall(SYS_pidfd_open, child, 0)); // is closed at exec
        pipe.out.Close();
    }
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;
    ~Probe()
    {
        if (IsRunning()) Kill();
    }

    bool IsRunning() const { return child > 0; }
    const std::string& Path() const { return result.path; }
    ProbeResult TakeResult() { return std::move(result); }

    // What to wait for: descriptors of -1 are passed over by poll.
    std::array<pollfd, 2> Waited() const
    {
        return {pollfd{pipe.in.number, POLLIN, 0}, pollfd{childEnd.number, POLLIN, 0}};
    }
    // Old kernels and strict surroundings have no descriptor for a child.
    bool MustBeAsked() const { return childEnd.number < 0; }

    // Takes what there is; at the end of the child or of the time the probe ends.
    void Continue(Clock::time_point now)
    {
        // In this order: what the child has written is in the pipe when it has ended.
        int status = 0;
        const bool hasEnded = waitpid(child, &status, WNOHANG) == child;
        Read();
        if (hasEnded)
        {
            child = -1;
            if (HasLostItsPipe(status))
                Finish(ProbeOutcome::Refused, "has closed all descriptors of the process, so that it cannot answer");
            else
                Finish(ProbeOutcome::Crashed, DescribeEnd(status, result.call));
        }
        else if (now >= deadline || report.IsTooLong())
        {
            Kill();
            Finish(ProbeOutcome::Hung, "no answer within " + std::to_string(timeout_ms) + " ms");
        }
    }

    Clock::time_point Deadline() const { return deadline; }

private:
    void Read()
    {
        std::array<char, 65536> bytes;
        while (pipe.in.number >= 0 && !report.IsTooLong())
        {
            const ssize_t size = read(pipe.in.number, bytes.data(), bytes.size());
            if (size < 0 && errno == EINTR) continue;
            if (size < 0 && errno == EAGAIN) return;
            if (size <= 0) return pipe.in.Close();
            report.Add(bytes.data(), static_cast<size_t>(size));
        }
    }
    void Kill()
    {
        kill(child, SIGKILL);
        while (waitpid(child, nullptr, 0) < 0 && errno == EINTR)
        {}
        child = -1;
    }
    void Finish(ProbeOutcome outcome, const std::string& text)
    {
        if (report.IsFinished()) return;
        result.outcome = outcome;
        result.text = text;
    }

    const uint64_t timeout_ms;
    ProbeResult result;
    Report report;
    Pipe pipe;
    Descriptor childEnd;
    pid_t child = -1; // while it runs
    const Clock::time_point deadline =
        Clock::now() + std::chrono::milliseconds(std::min<uint64_t>(timeout_ms, 3600 * 1000));
};

// People begin to wonder.
constexpr std::chrono::milliseconds patience(1500);
// For children whose end is no event.
constexpr int pollInterval_ms = 20;
// For requests to end, which are none either.
constexpr int longestPoll_ms = 100;

using Probes = std::vector<std::unique_ptr<Probe>>;

// Until something comes from a child, one of them ends, or `until`.
void Await(const Probes& probes, Clock::time_point until)
{
    std::vector<pollfd> waited;
    int timeout_ms = std::min(Remaining_ms(until), longestPoll_ms);
    for (const auto& probe : probes)
    {
        if (!probe->IsRunning()) continue;
        for (const pollfd& one : probe->Waited())
            waited.push_back(one);
        if (probe->MustBeAsked()) timeout_ms = std::min(timeout_ms, pollInterval_ms);
    }
    poll(waited.data(), waited.size(), timeout_ms);
}

std::vector<std::string> Running(const Probes& probes)
{
    std::vector<std::string> paths;
    for (const auto& probe : probes)
    {
        if (probe->IsRunning()) paths.push_back(probe->Path());
    }
    return paths;
}

} // namespace

std::vector<ProbeResult> ProbeProducers(const std::vector<std::string>& paths, const ProbeSettings& settings)
{
    Probes probes;
    for (const std::string& path : paths)
        probes.push_back(std::make_unique<Probe>(path, settings));

    const Clock::time_point impatient = Clock::now() + patience;
    bool hasReported = !settings.onWait;
    for (auto running = Running(probes); !running.empty(); running = Running(probes))
    {
        if (!hasReported && Clock::now() >= impatient)
        {
            settings.onWait(running);
            hasReported = true;
        }
        Clock::time_point until = hasReported ? Clock::time_point::max() : impatient;
        for (const auto& probe : probes)
        {
            if (probe->IsRunning()) until = std::min(until, probe->Deadline());
        }
        Await(probes, until);
        if (Interrupt::IsAnyRequested()) throw ToolError("Interrupted.", {}, exitInterrupted);
        for (const auto& probe : probes)
        {
            if (probe->IsRunning()) probe->Continue(Clock::now());
        }
    }

    std::vector<ProbeResult> results;
    for (const auto& probe : probes)
        results.push_back(probe->TakeResult());
    return results;
}

} // namespace koro::tool
