// Producer probe: one candidate file tried in a process of its own, so that a crash or a hang stays there.
//
// The parent starts this program again with the hidden command "probe"; the child writes one line of JSON per step to
// a pipe and its result last.
#pragma once

#include "tools/koro/camera_tree.h"

#include <cstdint>
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
    std::string text;                     // why, for all but Works
    std::vector<std::string> loaderTexts; // what the system's loader says about the file and about missing functions
    std::optional<ProducerRecord> record; // for Works
};

// Time that a candidate has from start to result.
constexpr uint64_t probeTimeout_ms = 30000;

ProbeResult ProbeProducer(const std::string& path, uint64_t timeout_ms);

// The pipe's number in the child.
constexpr int probePipe = 3;

// The child's side: probes `path` and writes to the pipe. Returns the process's exit status.
int RunProbe(const std::string& path);

} // namespace koro::tool
