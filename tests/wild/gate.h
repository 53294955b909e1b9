// Gate: where a producer waits in a call until the test lets it go on; see KORO_WILD_GATE.
//
// Owned by the test; one thread. A gate that goes lets everybody pass.
#pragma once

#include "tests/support/temporary_folder.h"

#include <chrono>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace koro::test::wild
{

class Gate
{
public:
    explicit Gate(const TemporaryFolder& folder) : path(folder.File("gate")) { mkfifo(path.c_str(), 0600); }
    ~Gate() { Open(); }
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;

    std::string Variable() const { return "KORO_WILD_GATE=" + path; }

    // Blocks until somebody waits at the gate.
    void Await() { pipe = open(path.c_str(), O_WRONLY | O_CLOEXEC); }
    // Whether somebody waits; who has been started but has not come yet gets ten seconds.
    bool IsWaitedAt()
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        do
        {
            pipe = open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK);
            if (pipe < 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        } while (pipe < 0 && std::chrono::steady_clock::now() < deadline);
        return pipe >= 0;
    }
    void Open()
    {
        if (pipe >= 0) close(pipe);
        pipe = -1;
    }

private:
    const std::string path;
    int pipe = -1;
};

} // namespace koro::test::wild
