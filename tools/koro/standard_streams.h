// Standard streams: the first three descriptors of the process, and what the tool itself writes as its result.
#pragma once

#include <cstdio>

namespace koro::tool
{

// To be called before anything is opened: a daemon's process starts with descriptors 0 to 2 closed, and the next pipe
// or file would land there. Reading then finds the end, writing to standard output fails, and messages are lost.
void OpenMissingDescriptors();

// To be called before a producer is loaded: from then on only the tool writes on standard output. What a producer
// prints there arrives on standard error and cannot break the result, and processes that it forks do not keep the output
// open.
void KeepOutput();

// A copy under a number that the loops of producers which close "all" descriptors do not reach, as far as the limits of
// the process allow one. Is closed by exec. -1 when there is no room.
int CopyBeyondReach(int descriptor);

enum class Descriptors
{
    Untouched,
    Restored, // the first three were closed and are open again
    Lost,     // the one of the output is closed, so nothing can be written any more
};
// To be called after a producer was started: what has become of the descriptors of the tool. Those up to 2 are open
// when it returns, so that no file that is opened later takes their place.
Descriptors RestoreDescriptors();

// The descriptor of a copy of the standard error, which outlives a producer that closes descriptors. May be called in a
// signal handler.
int KeptErrors();

// The tool's messages, in place of stderr, on that copy. Any thread.
std::FILE* Errors();
// The tool's standard output, in place of stdout. Any thread.
std::FILE* Output();
bool OutputIsTerminal();
// As std::printf, to Output().
[[gnu::format(printf, 1, 2)]] void PrintOut(const char* format, ...);

} // namespace koro::tool
