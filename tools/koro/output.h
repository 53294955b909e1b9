// Output: whether what the tool has written on standard output has arrived. One thread at a time.
#pragma once

namespace koro::tool
{

// From then on a reader that has gone is a failure to write, and no signal that ends the process with cameras open.
void IgnoreLostReaders();

// From then on a file that would get longer than its limit is a failure to write too, so that nothing half-written is
// left.
void IgnoreFileSizeLimit();

// Writes out what is buffered. False when anything that was written so far is lost: then a command that would go on
// for ever ends. The failure is reported by FinishOutput.
bool WriteOut();

// Whether somebody may still read the output. A command that waits for what may never come asks now and then, since only
// a write would fail.
bool OutputHasReader();

// To be called last. Writes out. Returns `status`; when output was lost, exitFailure after
// a message, or exitBrokenPipe without one when it was a pipe whose reader has gone.
int FinishOutput(int status);

} // namespace koro::tool
