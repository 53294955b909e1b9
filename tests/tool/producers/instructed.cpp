// The scripted producer with instructions in a file: the tests cannot reach into the process that loads it.
//
// The file has the producer's path with ".do" behind; copies of the producer have instructions of their own. A line is
// FUNCTION ACTION [ARGUMENT]: what happens at the first entry of the function in a process.
#include "producers/scripted/script.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

extern "C" scripted::Script* KoroScript();

namespace
{

using Action = std::function<void(const std::string& argument)>;

// Blocks until the test has opened the named pipe for writing and closed it again.
void WaitAtGate(const std::string& pipe)
{
    const int gate = open(pipe.c_str(), O_RDONLY | O_CLOEXEC);
    char byte;
    while (read(gate, &byte, 1) > 0)
    {}
    close(gate);
}

// A process that holds all descriptors of this one until the gate opens.
void LeaveAnOrphan(const std::string& pipe)
{
    if (fork() != 0) return;
    WaitAtGate(pipe);
    _exit(0);
}

// A helper process that ends as many do, once by each of the ways that leave a program.
void StartHelpers(const std::string&)
{
    for (const auto leave : std::initializer_list<void (*)(int)>{std::exit, std::quick_exit, _exit})
    {
        const pid_t helper = fork();
        if (helper == 0) leave(0);
        waitpid(helper, nullptr, 0);
    }
}

// By a write to memory that cannot be written.
void Crash(const std::string&)
{
    void* const page = mmap(nullptr, 1, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    *static_cast<volatile char*>(page) = 1;
}

// As a producer does that was written for a terminal of its own.
void Print(const std::string& text)
{
    std::printf("%s\n", text.c_str());
    std::fflush(stdout);
    const std::string line = text + "\n";
    if (write(STDOUT_FILENO, line.data(), line.size()) < 0) std::abort();
}

// Adds the calls so far to a file, with the process in front.
void WriteJournal(const std::string& path)
{
    std::ofstream file(path, std::ios::app);
    for (const std::string& call : KoroScript()->Journal())
        file << getpid() << ' ' << call << '\n';
}

// Every text that is shown of the first camera has that many bytes.
void LengthenTexts(const std::string& size)
{
    KoroScript()->Edit([&](scripted::Tree& tree) {
        auto& info = tree.interfaces.front()->devices.front()->info;
        for (const auto command :
             {GenTL::DEVICE_INFO_VENDOR, GenTL::DEVICE_INFO_MODEL, GenTL::DEVICE_INFO_DISPLAYNAME})
            info[command] = scripted::Text(std::string(std::strtoull(size.c_str(), nullptr, 10), 'x'));
    });
}

const std::map<std::string, Action> actions = {
    {"abort", [](const std::string&) { std::abort(); }},
    {"chdir",
     [](const std::string& folder) {
         if (chdir(folder.c_str()) != 0) std::abort();
     }},
    {"closefrom", [](const std::string& first) { closefrom(std::atoi(first.c_str())); }},
    {"crash", Crash},
    {"_exit", [](const std::string& status) { _exit(std::atoi(status.c_str())); }},
    {"_Exit", [](const std::string& status) { std::_Exit(std::atoi(status.c_str())); }},
    {"exit", [](const std::string& status) { std::exit(std::atoi(status.c_str())); }},
    {"gate", WaitAtGate},
    {"helpers", StartHelpers},
    {"journal", WriteJournal},
    {"orphan", LeaveAnOrphan},
    {"print", Print},
    {"quick_exit", [](const std::string& status) { std::quick_exit(std::atoi(status.c_str())); }},
    {"texts", LengthenTexts},
    {"throw", [](const std::string& text) { throw std::runtime_error(text); }},
};

std::string OwnPath()
{
    Dl_info info;
    return dladdr(reinterpret_cast<void*>(&WaitAtGate), &info) != 0 ? info.dli_fname : "";
}

[[maybe_unused]] const bool instructed = [] {
    std::ifstream file(OwnPath() + ".do");
    for (std::string line; std::getline(file, line);)
    {
        std::istringstream words(line);
        std::string function;
        std::string action;
        std::string argument;
        words >> function >> action >> std::ws;
        std::getline(words, argument);
        const Action& act = actions.at(action);
        KoroScript()->OnEntry(function, [&act, argument, done = std::make_shared<bool>(false)] {
            if (!std::exchange(*done, true)) act(argument);
        });
    }
    return true;
}();

} // namespace
