#include "tools/koro/accidents.h"

#include "tools/koro/call_in_progress.h"
#include "tools/koro/exit_codes.h"
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
std::atomic<bool> exitIsExpected{false};
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
    line.WriteTo(STDERR_FILENO);
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

void ReportExit(int status, void*)
{
    if (exitIsExpected) return;
    const CallInProgress call = FindCallInProgress();
    if (reportPipe >= 0)
    {
        SendCall(call);
        _exit(status);
    }
    const char* const producer = ProducerOf(call);
    Line line;
    line << "koro: " << (producer ? producer : "A library") << " ended the process";
    AddPlace(line, call);
    line << ", with status " << status << ".\n";
    line.WriteTo(STDERR_FILENO);
    std::fflush(Output());
    _exit(exitFailure);
}

} // namespace

void WatchForAccidents()
{
    // A stack that has overflown can hold no handler.
    const stack_t stack = {.ss_sp = signalStack.data(), .ss_flags = 0, .ss_size = signalStack.size()};
    sigaltstack(&stack, nullptr);
    for (const int number : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGSYS})
        Handle(number, ReportAndCrash);
    on_exit(ReportExit, nullptr);
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
    on_exit(ReportExit, nullptr);
}

void ExpectExit()
{
    exitIsExpected = true;
}

} // namespace koro::tool
