#include "tools/koro/output.h"

#include "tools/koro/exit_codes.h"
#include "tools/koro/standard_streams.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <poll.h>
#include <string>
#include <system_error>
#include <unistd.h>

namespace koro::tool
{

namespace
{

// Asked of the system, since the reason of an earlier failure is not kept.
bool HasLostItsReader(int descriptor)
{
    pollfd pipe{descriptor, POLLOUT, 0};
    return poll(&pipe, 1, 0) == 1 && (pipe.revents & POLLERR) != 0;
}

// Some file systems report a full disk only in a close. Of a copy, since what a producer left running may still print.
bool CloseCopy(int descriptor)
{
    const int copy = dup(descriptor);
    return copy < 0 || close(copy) == 0; // what was closed before is missed when something is written
}

// The stream only keeps that something failed. The output is broken anyway, so one more byte does no harm.
int ReasonOfEarlierFailure()
{
    std::clearerr(Output());
    errno = 0;
    return std::fputc('\n', Output()) == EOF || std::fflush(Output()) != 0 ? errno : 0;
}

} // namespace

void IgnoreLostReaders()
{
    std::signal(SIGPIPE, SIG_IGN);
}

void IgnoreFileSizeLimit()
{
    std::signal(SIGXFSZ, SIG_IGN);
}

bool WriteOut()
{
    return std::fflush(Output()) == 0 && std::ferror(Output()) == 0;
}

bool OutputHasReader()
{
    return !HasLostItsReader(fileno(Output()));
}

int FinishOutput(int status)
{
    errno = 0;
    const bool written = WriteOut() && CloseCopy(fileno(Output()));
    if (written) return status;
    // Differences are a result, which is lost with the output, and no failure before it.
    const bool hasFailed = status != exitSuccess && status != exitDifferent;
    const int reason = errno != 0 ? errno : ReasonOfEarlierFailure();
    if (reason == EPIPE || HasLostItsReader(fileno(Output()))) return hasFailed ? status : exitBrokenPipe;
    const std::string text = reason == 0 ? "a part is lost" : std::generic_category().message(reason);
    std::fprintf(
        Errors(), "koro: Cannot write the output: %s.\nhint: Check that the disk has room and the output is open.\n",
        text.c_str());
    return hasFailed ? status : exitFailure;
}

} // namespace koro::tool
