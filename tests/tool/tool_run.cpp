#include "tests/tool/tool_run.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace koro::test
{

namespace
{

std::string Required(const char* name)
{
    const char* value = std::getenv(name);
    if (!value) throw std::runtime_error(std::string(name) + " is not set: run this test by ctest");
    return value;
}

// As NAME=value texts.
std::vector<std::string> Merge(Environment changes)
{
    changes.emplace("GENICAM_GENTL64_PATH", std::nullopt);
    std::vector<std::string> merged;
    for (char** entry = environ; *entry; ++entry)
    {
        const std::string text = *entry;
        if (!changes.contains(text.substr(0, text.find('=')))) merged.push_back(text);
    }
    for (const auto& [name, value] : changes)
    {
        if (value) merged.push_back(name + "=" + *value);
    }
    return merged;
}

std::vector<char*> Pointers(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

bool IsNotice(const std::string& line)
{
    return line.starts_with("koro: waiting for /") || line == "koro: closing, the camera does not answer\n";
}

// Each with its end, which the last one may lack.
std::vector<std::string> LinesOf(const std::string& text)
{
    std::vector<std::string> lines;
    for (size_t begin = 0; begin < text.size(); begin += lines.back().size())
        lines.push_back(text.substr(begin, text.find('\n', begin) - begin + 1));
    return lines;
}

struct Pipe
{
    int in = -1;
    int out = -1;

    Pipe()
    {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        in = ends[0];
        out = ends[1];
    }
};

} // namespace

ToolRun::ToolRun(const Arguments& arguments, const Environment& environment)
{
    const Pipe outEnds;
    const Pipe errEnds;
    outPipe = outEnds.in;
    errPipe = errEnds.in;

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, outEnds.out, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errEnds.out, STDERR_FILENO);

    std::vector<std::string> command{Required("KORO_TEST_TOOL")};
    command.insert(command.end(), arguments.begin(), arguments.end());
    std::vector<std::string> variables = Merge(environment);
    const int spawnError = posix_spawn(
        &child, command.front().c_str(), &actions, nullptr, Pointers(command).data(), Pointers(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    close(outEnds.out);
    close(errEnds.out);
    if (spawnError != 0) throw std::runtime_error("cannot start " + command.front() + ": " + std::strerror(spawnError));
}

ToolRun::~ToolRun()
{
    if (child > 0)
    {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }
    if (outPipe >= 0) close(outPipe);
    if (errPipe >= 0) close(errPipe);
}

bool ToolRun::Await(const std::string& written, const std::string& text)
{
    while (written.find(text) == std::string::npos)
    {
        if (!ReadMore()) return false;
    }
    return true;
}

// False when both streams have ended.
bool ToolRun::ReadMore()
{
    if (outPipe < 0 && errPipe < 0) return false;
    // A negative descriptor is left out by poll.
    pollfd waited[] = {{outPipe, POLLIN, 0}, {errPipe, POLLIN, 0}};
    if (poll(waited, 2, -1) <= 0) return true;
    if (waited[0].revents != 0) ReadFrom(outPipe, out);
    if (waited[1].revents != 0) ReadFrom(errPipe, err);
    return true;
}

void ToolRun::ReadFrom(int& pipe, std::string& written)
{
    std::array<char, 4096> bytes;
    const ssize_t size = read(pipe, bytes.data(), bytes.size());
    if (size < 0 && errno == EINTR) return;
    if (size > 0)
    {
        written.append(bytes.data(), static_cast<size_t>(size));
        return;
    }
    close(pipe);
    pipe = -1;
}

void ToolRun::Signal(int number) const
{
    kill(child, number);
}

ToolResult ToolRun::Finish()
{
    while (ReadMore())
    {}
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR)
    {}
    child = -1;
    ToolResult result{WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), out, {}, {}};
    result.SortErrors(err);
    return result;
}

void ToolResult::SortErrors(const std::string& written)
{
    for (const std::string& line : LinesOf(written))
        (IsNotice(line) ? notices : err) += line;
}

ToolResult RunTool(const Arguments& arguments, const Environment& environment)
{
    return ToolRun(arguments, environment).Finish();
}

std::string ProducerFolder()
{
    return Required("KORO_TEST_PRODUCERS");
}

std::string SimulatorPath()
{
    return ProducerFolder() + "/zvr_koro_simulator.cti";
}

} // namespace koro::test
