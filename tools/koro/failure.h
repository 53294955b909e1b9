// Failure: how a command that has failed says so. Any thread.
#pragma once

#include <exception>

namespace koro
{
class Error;
}

namespace koro::tool
{

// Prints what went wrong and one hint on standard error. Returns the exit status. What is no std::exception leaves
// again.
int ReportFailure(const std::exception_ptr& failure);

// What to try after a failure of the library.
const char* HintFor(const koro::Error& error);

} // namespace koro::tool
