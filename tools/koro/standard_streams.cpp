#include "tools/koro/standard_streams.h"

#include <cstdarg>
#include <fcntl.h>
#include <initializer_list>
#include <pthread.h>
#include <unistd.h>

namespace koro::tool
{

namespace
{

// Null until the output is kept. Never closed.
std::FILE* keptOutput = nullptr;

// In a child: whoever reads the output waits until nobody has it open, and a child that a producer leaves behind may
// live long. The number stays in use, or what this process has not written yet would arrive in the child's next file.
void LeaveOutputToParent()
{
    const int kept = fileno(keptOutput);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0)
        close(kept);
    else
        dup3(nowhere, kept, O_CLOEXEC);
    if (nowhere >= 0) close(nowhere);
}

} // namespace

void OpenMissingDescriptors()
{
    // open() takes the lowest number that is free. Output that is lost is to be noticed, so it is opened for reading.
    for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    {
        if (fcntl(number, F_GETFD) >= 0) continue;
        if (open("/dev/null", number == STDERR_FILENO ? O_WRONLY : O_RDONLY) < 0) return;
    }
}

void KeepOutput()
{
    std::fflush(stdout);
    // Beyond the numbers on which a process started by this one has its streams.
    constexpr int firstNumber = 10;
    const int copy = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, firstNumber);
    keptOutput = copy < 0 ? nullptr : fdopen(copy, "w");
    if (!keptOutput) return;
    dup2(STDERR_FILENO, STDOUT_FILENO);
    pthread_atfork(nullptr, nullptr, LeaveOutputToParent);
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
