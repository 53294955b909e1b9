// Threads: a group of threads that start together and are joined before their test goes on.
//
// Owned by the test. What a thread throws ends the test's Join, so that a failed preparation is not silent.
#pragma once

#include <exception>
#include <functional>
#include <future>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace koro::test
{

class Threads
{
public:
    ~Threads() { JoinAll(); }

    // The body gets the number of its thread and begins at Start.
    void Add(std::size_t count, const std::function<void(std::size_t)>& body)
    {
        for (std::size_t number = 0; number < count; ++number)
            threads.emplace_back([this, body, number] { Run(body, number); });
    }

    void Start()
    {
        if (!std::exchange(started, true)) gate.set_value();
    }

    void Join()
    {
        JoinAll();
        if (failure) std::rethrow_exception(failure);
    }

private:
    void Run(const std::function<void(std::size_t)>& body, std::size_t number)
    {
        opened.wait();
        try
        {
            body(number);
        }
        catch (...)
        {
            const std::lock_guard lock(mutex);
            failure = std::current_exception();
        }
    }

    void JoinAll()
    {
        Start();
        for (auto& thread : threads)
            thread.join();
        threads.clear();
    }

    std::promise<void> gate;
    std::shared_future<void> opened = gate.get_future().share();
    bool started = false;
    std::mutex mutex;
    std::exception_ptr failure; // guarded by mutex until all are joined
    std::vector<std::thread> threads;
};

} // namespace koro::test
