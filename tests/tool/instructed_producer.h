// Copies of a producer that behaves as its file of instructions says, and the named pipes at which it waits.
#pragma once

#include "tests/support/temporary_folder.h"
#include "tests/tool/tool_run.h"

#include <cerrno>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace koro::test
{

// The path of a copy; each line of the instructions is FUNCTION ACTION [ARGUMENT], see producers/instructed.cpp.
inline std::string MakeInstructedProducer(
    const TemporaryFolder& folder, const std::string& name, const std::string& instructions)
{
    folder.MakeFile(name + ".do", instructions);
    return folder.MakeCopy(ProducerFolder() + "/tool_instructed.cti", name);
}

// A named pipe at which a producer waits. The destructor opens it.
class Gate
{
public:
    Gate(const TemporaryFolder& folder, const std::string& name) : path(folder.File(name))
    {
        if (mkfifo(path.c_str(), 0600) != 0) throw std::runtime_error("no named pipe");
    }
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;
    ~Gate() { Open(); }

    const std::string& Path() const { return path; }
    // Blocks until the producer is there.
    void AwaitProducer()
    {
        do
        {
            end = open(path.c_str(), O_WRONLY | O_CLOEXEC);
        } while (end < 0 && errno == EINTR);
    }
    // Lets the producer go on, if it is there.
    void Open()
    {
        if (end >= 0) close(end);
        end = -1;
    }

private:
    std::string path;
    int end = -1;
};

} // namespace koro::test
