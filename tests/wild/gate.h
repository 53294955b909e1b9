// Gate: where a producer waits in a call until the test lets it go on; see KORO_WILD_GATE.
//
// Owned by the test; one thread. A gate that goes lets everybody pass.
#pragma once

#include "tests/support/temporary_folder.h"

#include <chrono>
#include <fcntl.h>
#include <future>
#include <poll.h>
#include <string>
#include <sys/stat.h>
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
        auto opened = std::async(std::launch::async, [this] { return open(path.c_str(), O_WRONLY | O_CLOEXEC); });
        const bool isWaitedAt = opened.wait_for(patience) == std::future_status::ready;
        const int other = isWaitedAt ? -1 : open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); // in place of nobody
        pipe = opened.get();
        if (other >= 0) close(other);
        return isWaitedAt;
    }
    // After Await(): whether who waited is gone, with the gate closed; who is about to go gets ten seconds.
    bool IsLeft() const
    {
        pollfd waited = {pipe, 0, 0};
        return poll(&waited, 1, static_cast<int>(std::chrono::milliseconds(patience).count())) == 1;
    }
    void Open()
    {
        if (pipe >= 0) close(pipe);
        pipe = -1;
    }

private:
    static constexpr std::chrono::seconds patience{10};

    const std::string path;
    int pipe = -1;
};

} // namespace koro::test::wild
