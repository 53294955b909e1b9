// OtherProcess: a copy of the test's process that does its part beside it, and can be killed.
//
// Owned by the test; killed with the object. To be made before the test loads a producer, and without threads.
#pragma once

#include <csignal>
#include <cstdlib>
#include <exception>
#include <functional>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace koro::simulator::test
{

class OtherProcess
{
public:
    // What the part uses to keep in step with the test.
    class Steps
    {
    public:
        Steps(int in, int out) : inPipe(in), outPipe(out) {}

        // The step before is done.
        void Done() const
        {
            const char byte = 1;
            if (write(outPipe, &byte, 1) != 1) throw std::runtime_error("the test has gone");
        }
        void AwaitNext() const
        {
            char byte = 0;
            if (read(inPipe, &byte, 1) != 1) throw std::runtime_error("the test has gone");
        }

    private:
        int inPipe;
        int outPipe;
    };

    explicit OtherProcess(const std::function<void(const Steps&)>& part)
    {
        int toPart[2];
        int fromPart[2];
        if (pipe(toPart) != 0 || pipe(fromPart) != 0) throw std::runtime_error("no pipe");
        std::signal(SIGPIPE, SIG_IGN); // the result reports a process that has ended
        process = fork();
        if (process < 0) throw std::runtime_error("no process");
        if (process == 0)
        {
            close(toPart[1]);
            close(fromPart[0]);
            _exit(Play(part, Steps(toPart[0], fromPart[1])));
        }
        close(toPart[0]);
        close(fromPart[1]);
        out = toPart[1];
        in = fromPart[0];
    }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;
    ~OtherProcess()
    {
        Kill();
        close(in);
        close(out);
    }

    // False when it ended before the step was done.
    bool AwaitDone() const
    {
        char byte = 0;
        return read(in, &byte, 1) == 1;
    }
    // Lets it begin the next step.
    bool Start() const
    {
        const char byte = 1;
        return write(out, &byte, 1) == 1;
    }
    bool Next() const { return Start() && AwaitDone(); }
    // Until it is gone.
    void Kill() { End(SIGKILL); }
    // Blocks; whether it went well.
    bool Finish()
    {
        End(0);
        return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
    }

private:
    static int Play(const std::function<void(const Steps&)>& part, const Steps& steps) noexcept
    {
        try
        {
            part(steps);
            return EXIT_SUCCESS;
        }
        catch (const std::exception&)
        {
            return EXIT_FAILURE;
        }
    }
    void End(int signal)
    {
        if (process < 0) return;
        if (signal != 0) kill(process, signal);
        waitpid(process, &status, 0);
        process = -1;
    }

    pid_t process = -1;
    int status = 0;
    int in = -1;
    int out = -1;
};

} // namespace koro::simulator::test
