// ToolRun: one run of the finished tool, in a process of its own, with what it wrote and how it ended.
//
// Owned by the test; one thread. A run that is still going when the object goes is killed.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace koro::test
{

using Arguments = std::vector<std::string>;
// Variables of the run beside those of the test; without a value the variable is removed.
using Environment = std::map<std::string, std::optional<std::string>>;

// Exit statuses, as docs/tool.md lists them.
constexpr int success = 0;
constexpr int failure = 1;
constexpr int usage = 2;
constexpr int noSuchCamera = 3;
constexpr int noUsableCamera = 4;
constexpr int framesMissing = 5;
constexpr int noSuchFeature = 6;
constexpr int different = 7;
constexpr int interrupted = 130;
constexpr int brokenPipe = 141;

struct ToolResult
{
    int status = -1; // exit status; 128 + the signal's number when one ended it
    std::string out;
    std::string err; // without the notices
    // Lines of standard error that come and go with the machine's speed: that a producer is waited for.
    std::string notices;

    // What standard error got.
    void SortErrors(const std::string& written);
};

class ToolRun
{
public:
    // GENICAM_GENTL64_PATH is unset unless `environment` sets it.
    explicit ToolRun(const Arguments& arguments, const Environment& environment = {});
    ToolRun(const ToolRun&) = delete;
    ToolRun& operator=(const ToolRun&) = delete;
    ~ToolRun();

    // Each blocks until the tool has written this on standard output or on standard error; false when it ended
    // without.
    bool AwaitOutput(const std::string& text) { return Await(out, text); }
    bool AwaitError(const std::string& text) { return Await(err, text); }
    void Signal(int number) const;
    // Blocks until the end of the run.
    ToolResult Finish();

private:
    bool Await(const std::string& written, const std::string& text);
    bool ReadMore();
    void ReadFrom(int& pipe, std::string& written);

    pid_t child = -1;
    int outPipe = -1; // -1 when it has ended
    int errPipe = -1;
    std::string out;
    std::string err;
};

ToolResult RunTool(const Arguments& arguments, const Environment& environment = {});

// The built simulator, and the folder of the built test producers.
std::string SimulatorPath();
std::string ProducerFolder();

} // namespace koro::test
