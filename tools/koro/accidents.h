// Accidents: a producer that crashes the process or ends it. The tool says which producer it was and in which call.
//
// One state for the process. The functions are called on the main thread; the reports come on any thread.
#pragma once

#include <string>

namespace koro::tool
{

// To be called first: from then on a crash is reported before it ends the process as it would, and so is an exit that
// the tool did not ask for, which ends the process with exitFailure. Processes forked from this one are left alone.
void WatchForAccidents();
// Reports go to this pipe instead, as a line of JSON that names the call: {"call": "GCInitLib"}. An exit keeps its
// status.
void ReportAccidentsTo(int pipe);
// To be called before and behind each load of a producer: an exit is reported before the producer's own handlers run,
// which may fall over while it is open.
void NoteProducer(const std::string& path);
// The tool ends with this status: an exit is none of the producer's, and none of its exits changes the status.
void ExpectExit(int status);
// What _exit() and _Exit() do when somebody else than the tool calls them. Safe in a signal handler.
[[noreturn]] void EndForOthers(int status) noexcept;

} // namespace koro::tool
