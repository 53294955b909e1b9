#include "tools/koro/accidents.h"

#include "tools/koro/call_in_progress.h"
#include "tools/koro/exit_codes.h"
#include "tools/koro/process_end.h"
#include "tools/koro/standard_streams.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace koro::tool
{

namespace
{

// Never destroyed: handlers run to the very end of the process.
std::atomic<pid_t> toolProcess{0};
constexpr int notExpected = -1;
std::atomic<int> expectedStatus{notExpected};
std::atomic<int> reportPipe{-1}; // -1: standard error
std::array<char, 4096> lastProducer{};
std::array<char, 65536> signalStack{};

// A text put together without memory from the heap.
class Line
{
public:
    Line& operator<<(const char* more)
    {
        const size_t added = std::min(std::strlen(more), text.size() - size);
        std::memcpy(text.data() + size, more, added);
        size += added;
        return *this;
    }
    Line& operator<<(int number)
    {
        std::array<char, 12> digits{};
        size_t at = digits.size() - 1;
        const bool isNegative = number < 0;
        do
        {
            digits[--at] = static_cast<char>('0' + std::abs(number % 10));
            number /= 10;
        } while (number != 0);
        if (isNegative) *this << "-";
        return *this << &digits[at];
    }
    void WriteTo(int descriptor) const
    {
        if (write(descriptor, text.data(), size) < 0)
        { // nobody is left to report it to
        }
    }

private:
    std::array<char, 8192> text;
    size_t size = 0;
};

// A process that was forked from the tool's has this code and these handlers too.
bool IsToolProcess()
{
    return getpid() == toolProcess;
}

void SendCall(const CallInProgress& call)
{
    if (!call.function) return;
    Line line;
    line << "{\"call\": \"" << call.function << "\"}\n";
    line.WriteTo(reportPipe);
}

const char* ProducerOf(const CallInProgress& call)
{
    if (call.producer) return call.producer;
    return call.libraryFunction && lastProducer[0] != '\0' ? lastProducer.data() : nullptr;
}

// " in GCGetInfo", of the producer or at least of the library.
void AddPlace(Line& line, const CallInProgress& call)
{
    const char* const function = call.function ? call.function : call.libraryFunction;
    if (function) line << " in " << function;
}

void ReportCrash(int number, const CallInProgress& call)
{
    if (!IsToolProcess()) return;
    if (reportPipe >= 0) return SendCall(call);
    const char* const producer = ProducerOf(call);
    const char* const name = sigabbrev_np(number);
    Line line;
    line << "koro: " << (producer ? producer : "The tool") << " crashed";
    AddPlace(line, call);
    line << ": signal " << number << " (SIG" << (name ? name : "?") << ").\n";
    if (producer)
        line << "hint: `koro doctor` checks the producers. A camera that was open is free again when it notices the "
                "end.\n";
    line.WriteTo(KeptErrors());
}

// The look at a broken stack crashed as well.
void ReportWithoutCall(int number)
{
    CallInProgress unknown;
    unknown.producer = lastProducer[0] != '\0' ? lastProducer.data() : nullptr;
    ReportCrash(number, unknown);
    std::signal(number, SIG_DFL);
    raise(number);
}

void Handle(int number, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    // The default is back, and the signal not blocked, while the handler runs.
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER | SA_ONSTACK);
    sigaction(number, &action, nullptr);
}

void ReportAndCrash(int number)
{
    for (const int another : {SIGSEGV, SIGBUS, SIGILL})
        Handle(another, ReportWithoutCall);
    ReportCrash(number, FindCallInProgress());
    std::signal(number, SIG_DFL);
    raise(number);
}

// Unless another thread is writing: then it may be the one that never ends.
void WriteOutWhatThereIs()
{
    std::FILE* const output = Output();
    if (ftrylockfile(output) != 0) return;
    std::fflush(output);
    funlockfile(output);
}

// `status` is null when it is not known.
void ReportEnd(const CallInProgress& call, const int* status)
{
    const char* const producer = ProducerOf(call);
    Line line;
    line << "koro: " << (producer ? producer : "A library") << " ended the process";
    AddPlace(line, call);
    if (status) line << ", with status " << *status;
    line << ".\n";
    line.WriteTo(KeptErrors());
    WriteOutWhatThereIs();
}

// Somebody else than the tool ends the process.
[[noreturn]] void EndByAccident(int status)
{
    const CallInProgress call = FindCallInProgress();
    if (reportPipe >= 0)
    {
        SendCall(call);
        EndNow(status);
    }
    ReportEnd(call, &status);
    EndNow(exitFailure);
}

void OnExit(int status, void*)
{
    if (!IsToolProcess() || status == expectedStatus) return;
    if (expectedStatus != notExpected) EndNow(expectedStatus);
    EndByAccident(status);
}

// The status of a quick_exit cannot be asked for.
void OnQuickExit()
{
    if (!IsToolProcess()) return;
    if (expectedStatus != notExpected) EndNow(expectedStatus);
    const CallInProgress call = FindCallInProgress();
    if (reportPipe >= 0) return SendCall(call);
    ReportEnd(call, nullptr);
    EndNow(exitFailure);
}

void NoticeExits()
{
    on_exit(OnExit, nullptr);
    std::at_quick_exit(OnQuickExit);
}

} // namespace

void WatchForAccidents()
{
    // A stack that has overflown can hold no handler.
    const stack_t stack = {.ss_sp = signalStack.data(), .ss_flags = 0, .ss_size = signalStack.size()};
    sigaltstack(&stack, nullptr);
    for (const int number : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGSYS})
        Handle(number, ReportAndCrash);
    toolProcess = getpid();
    NoticeExits();
    FindCallInProgress(); // the first walk loads what the later ones need
}

void ReportAccidentsTo(int pipe)
{
    reportPipe = pipe;
}

void NoteProducer(const std::string& path)
{
    lastProducer.fill('\0');
    path.copy(lastProducer.data(), lastProducer.size() - 1);
    NoticeExits();
}

void ExpectExit(int status)
{
    expectedStatus = status;
}

void EndForOthers(int status) noexcept
{
    if (!IsToolProcess()) EndNow(status);
    if (expectedStatus != notExpected) EndNow(expectedStatus);
    EndByAccident(status);
}

} // namespace koro::tool
