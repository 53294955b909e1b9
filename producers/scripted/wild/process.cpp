// Behaviours of producers that do something to the process in which they are.
#include "producers/scripted/wild/producer.h"
#include "producers/scripted/wild/steering.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <iostream>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace scripted::wild
{

using namespace GenTL;

namespace
{

// Counts what has been started and not closed, beyond the end of the script.
std::atomic<int> starts{0};

void CountStarts(Producer& producer)
{
    producer.script.Intercept("GCInitLib", [](const auto&) -> std::optional<GC_ERROR> {
        ++starts;
        return std::nullopt;
    });
    producer.script.Intercept("GCCloseLib", [](const auto&) -> std::optional<GC_ERROR> {
        --starts;
        return std::nullopt;
    });
}

struct FallOver
{
    ~FallOver()
    {
        if (starts > 0) std::raise(SIGBUS);
    }
};

struct HangAtExit
{
    ~HangAtExit()
    {
        for (;;)
            pause();
    }
};

struct ExitAtExit
{
    ~ExitAtExit() { std::exit(0); }
};

class LastThread
{
public:
    ~LastThread()
    {
        ends = true;
        if (thread.joinable()) thread.join();
    }

    void Replace()
    {
        if (thread.joinable()) thread.detach();
        thread = std::thread([this] {
            while (!ends)
                TakeTime(1); // wakes up in the code of this file, again and again
        });
    }

private:
    std::atomic<bool> ends{false};
    std::thread thread;
};

// Every other descriptor of the process stays open in the child, as it is with programs that a producer starts.
[[noreturn]] void LiveAsOrphan()
{
    setsid();
    alarm(120); // also when the test has ended
    const int nowhere = open("/dev/null", O_RDWR);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(nowhere, standard);
    if (!std::getenv("KORO_WILD_GATE")) pause();
    WaitAtGate();
    _exit(0);
}

void CloseAll()
{
    const auto limit = static_cast<int>(NumberOf("KORO_WILD_LIMIT", 256));
    for (int number = 0; number < limit; ++number)
        close(number);
}

} // namespace

// Speaks on standard output, in each of the three ways, when it starts and whenever a feature is read.
void Prints(Producer& producer)
{
    for (const char* function : {"GCInitLib", "GCReadPort", "GCCloseLib"})
    {
        producer.script.Intercept(function, [](const auto&) -> std::optional<GC_ERROR> {
            const char text[] = "Exception: by write\n";
            const auto size = write(STDOUT_FILENO, text, sizeof text - 1);
            if (size > 0) std::printf("Exception: by printf\n");
            std::cout << "Exception: by a stream\n";
            return std::nullopt;
        });
    }
}

// A standard exception leaves a call.
void Throws(Producer& producer)
{
    At(producer, "DSStartAcquisition", [] { throw std::runtime_error("thrown by the producer"); });
}

// Something that is no standard exception leaves a call.
void ThrowsANumber(Producer& producer)
{
    At(producer, "DSStartAcquisition", [] { throw 42; });
}

// A call ends the process, with success.
void Exits(Producer& producer)
{
    At(producer, "DSStartAcquisition", [] { std::exit(0); });
}

// A call ends the process by a signal.
void Crashes(Producer& producer)
{
    At(producer, "DSStartAcquisition", [] { std::raise(SIGSEGV); });
}

// The size query of a number writes through the buffer that it does not have.
void WritesNull(Producer& producer)
{
    const auto number = std::to_string(TL_INFO_GENTL_VER_MAJOR);
    producer.script.Intercept("GCGetInfo", [number](const auto& arguments) -> std::optional<GC_ERROR> {
        if (arguments[0] == number && arguments[1] == "size") std::raise(SIGSEGV);
        return std::nullopt;
    });
}

// Its static destructors fall over when the process ends while it is started.
void FallsOverAtExit(Producer& producer)
{
    CountStarts(producer);
    static const FallOver atExit;
}

// Its static destructors never return.
void HangsAtExit(Producer&)
{
    static const HangAtExit atExit;
}

// Its static destructors end the process once more, with success.
void ExitsAtExit(Producer&)
{
    static const ExitAtExit atExit;
}

// Its start changes the working directory.
void ChangesDirectory(Producer& producer)
{
    At(producer, "GCInitLib", [] {
        if (chdir("/") != 0) std::abort();
    });
}

// Its start leaves a child process behind, which keeps the descriptors that it has inherited.
void ForksAnOrphan(Producer& producer)
{
    At(producer, "GCInitLib", [] {
        if (fork() == 0) LiveAsOrphan();
    });
}

// Its start closes all descriptors of the process, as programs do that become daemons. Their usual limit was 256 once.
void ClosesDescriptors(Producer& producer)
{
    At(producer, "GCInitLib", CloseAll);
}

// Its start leaves the descriptors as a daemon has them: closed, with the first three on nothing.
void BecomesADaemon(Producer& producer)
{
    At(producer, "GCInitLib", [] {
        CloseAll();
        const int first = open("/dev/null", O_RDWR);
        if (dup(first) < 0 || dup(first) < 0) std::abort();
    });
}

// Its start closes the descriptors and then ends the process: with success, or by a signal.
void ClosesAndEnds(Producer& producer)
{
    At(producer, "GCInitLib", [] {
        CloseAll();
        if (const auto signal = static_cast<int>(NumberOf("KORO_WILD_SIGNAL", 0))) std::raise(signal);
        std::exit(0);
    });
}

// Each start begins a thread that goes on after the close; only the last one is ever joined, by a static destructor.
void LeavesAThread(Producer& producer)
{
    static LastThread last;
    producer.script.Intercept("GCInitLib", [](const auto&) -> std::optional<GC_ERROR> {
        last.Replace();
        return std::nullopt;
    });
}

} // namespace scripted::wild
