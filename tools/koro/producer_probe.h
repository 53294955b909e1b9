// Producer probe: candidate files tried in a process each, all at the same time, so that a crash or a hang stays there.
//
// The parent starts this program again with the hidden command "probe"; the child writes one line of JSON per step to
// a pipe and its result last. A probe ends when its child does.
#pragma once

#include "tools/koro/camera_tree.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace koro::tool
{

enum class ProbeOutcome
{
    Works,   // loaded; what it offers is in the record
    Refused, // the library reported an error
    Crashed, // ended without a result
    Hung,    // no result within the time, killed
};

struct ProbeResult
{
    std::string path;
    ProbeOutcome outcome = ProbeOutcome::Crashed;
    std::string stage = "start";          // what it was doing last: "load", "open", "list"
    std::string call;                     // the function of the producer that crashed or ended the process, if known
    std::string text;                     // why, for all but Works
    std::vector<std::string> loaderTexts; // what the system's loader says about the file and about missing functions
    std::vector<std::string> lacks;       // those functions by name
    bool closesDescriptors = false;       // of the process, when it is started
    std::string producerText;             // what the producer says of its failure to start
    std::optional<ProducerRecord> record; // for Works
};

// Time that a candidate has from start to result.
constexpr uint64_t probeTimeout_ms = 30000;

struct ProbeSettings
{
    uint64_t timeout_ms = probeTimeout_ms;
    // The name of the camera that is looked for: its producer need not list for the whole time. Empty: all cameras.
    std::string wanted{};
    // Called once when the probes take long, with the paths of those that are not done. May be empty.
    std::function<void(const std::vector<std::string>& waitedFor)> onWait{};
};

// The results in the order of the paths. Throws ToolError when no process can be started, and after an interrupt.
std::vector<ProbeResult> ProbeProducers(const std::vector<std::string>& paths, const ProbeSettings& settings);

// The pipe's number in the child, and the status of a child whose pipe the producer has closed.
constexpr int probePipe = 3;
constexpr int exitPipeClosed = 213;

// The child's side: probes `path` and writes to the pipe. Does not return: nothing of the producer is to run behind its
// result.
[[noreturn]] void RunProbe(const std::string& path, const std::string& wanted);

} // namespace koro::tool
