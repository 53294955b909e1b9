#include "tools/koro/standard_streams.h"

#include <algorithm>
#include <cstdarg>
#include <fcntl.h>
#include <initializer_list>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

namespace koro::tool
{

namespace
{

// Null until the output is kept. Never closed.
std::FILE* keptOutput = nullptr;
// Likewise, without a buffer as stderr has none.
std::FILE* keptErrorStream = nullptr;
int keptErrors = -1;

bool IsOpen(int descriptor)
{
    return fcntl(descriptor, F_GETFD) >= 0;
}

// In a child: whoever reads the output waits until nobody has it open, and a child that a producer leaves behind may
// live long. The number stays in use, or what this process has not written yet would arrive in the child's next file.
void LeaveOutputToParent()
{
    const int kept = fileno(keptOutput);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    // No file is opened under a number above the limit, so that such a one can be closed.
    if (nowhere < 0 || dup3(nowhere, kept, O_CLOEXEC) < 0) close(kept);
    if (nowhere >= 0) close(nowhere);
    if (keptErrors >= 0) close(keptErrors);
}

// An output that was closed, or is open for reading only, is kept too: each write then fails, as it has to.
std::FILE* StreamOver(int descriptor)
{
    std::FILE* const stream = fdopen(descriptor, "w");
    return stream ? stream : fdopen(descriptor, "r");
}

} // namespace

void OpenMissingDescriptors()
{
    // open() takes the lowest number that is free. Output that is lost is to be noticed, so it is opened for reading.
    for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    {
        if (IsOpen(number)) continue;
        if (open("/dev/null", number == STDERR_FILENO ? O_WRONLY : O_RDONLY) < 0) return;
    }
}

void KeepOutput()
{
    std::fflush(stdout);
    keptErrors = CopyBeyondReach(STDERR_FILENO);
    keptErrorStream = keptErrors < 0 ? nullptr : StreamOver(keptErrors);
    if (keptErrorStream) std::setvbuf(keptErrorStream, nullptr, _IONBF, 0);
    const int copy = CopyBeyondReach(STDOUT_FILENO);
    keptOutput = copy < 0 ? nullptr : StreamOver(copy);
    if (!keptOutput) return;
    dup2(STDERR_FILENO, STDOUT_FILENO);
    pthread_atfork(nullptr, nullptr, LeaveOutputToParent);
}

int CopyBeyondReach(int descriptor)
{
    // Loops end at the limit, or at a number that was a usual limit once. The table of the system grows with the
    // largest number, so a high limit is not passed.
    constexpr rlim_t usualLimit = 4096;
    constexpr rlim_t mostNumbers = 65536;
    constexpr rlim_t room = 16;
    constexpr int otherwise = 10; // beyond the streams of processes that this one starts
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return fcntl(descriptor, F_DUPFD_CLOEXEC, otherwise);
    const rlimit raised{limit.rlim_cur + room, limit.rlim_max};
    if (limit.rlim_cur <= mostNumbers && raised.rlim_cur <= limit.rlim_max && setrlimit(RLIMIT_NOFILE, &raised) == 0)
    {
        const int copy = fcntl(descriptor, F_DUPFD_CLOEXEC, static_cast<int>(limit.rlim_cur));
        setrlimit(RLIMIT_NOFILE, &limit);
        if (copy >= 0) return copy;
    }
    const rlim_t last = std::min(limit.rlim_cur, usualLimit + room);
    return fcntl(descriptor, F_DUPFD_CLOEXEC, last > 2 * room ? static_cast<int>(last - room) : otherwise);
}

Descriptors RestoreDescriptors()
{
    // Asked first: without room for a copy the output is descriptor 1, and what takes its place below is another file.
    const bool isOutputOpen = IsOpen(fileno(Output()));
    bool wereOpen = true;
    for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    {
        if (IsOpen(number)) continue;
        wereOpen = false;
        // Output of producers goes where messages go.
        if (number == STDIN_FILENO || dup2(keptErrors, number) < 0) open("/dev/null", O_RDWR);
    }
    if (!isOutputOpen) return Descriptors::Lost;
    return wereOpen ? Descriptors::Untouched : Descriptors::Restored;
}

int KeptErrors()
{
    return IsOpen(keptErrors) ? keptErrors : STDERR_FILENO;
}

std::FILE* Errors()
{
    return keptErrorStream && IsOpen(keptErrors) ? keptErrorStream : stderr;
}

std::FILE* Output()
{
    return keptOutput ? keptOutput : stdout;
}

bool OutputIsTerminal()
{
    return isatty(fileno(Output())) != 0;
}

void PrintOut(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(Output(), format, arguments);
    va_end(arguments);
}

} // namespace koro::tool
