// Connection: whether an open device reaches its camera.
//
// Shared by the device, its port and its stream. Any thread.
#pragma once

#include "producers/kit/failure.h"
#include "producers/simulator/kit.h"

#include <atomic>

namespace koro::simulator
{

class Connection
{
public:
    // `code` is what calls fail with while there is none.
    explicit Connection(GC_ERROR code) : failure(code) {}

    bool IsUp() const noexcept { return state == State::Up; }
    // Permanently: a camera that comes back has to be opened again.
    bool IsLost() const noexcept { return state == State::Lost; }

    // Each returns whether it changed what a consumer sees.
    bool Interrupt() noexcept
    {
        State expected = State::Up;
        return state.compare_exchange_strong(expected, State::Interrupted);
    }
    bool Restore() noexcept
    {
        State expected = State::Interrupted;
        return state.compare_exchange_strong(expected, State::Up);
    }
    bool Lose() noexcept { return state.exchange(State::Lost) == State::Up; }

    GC_ERROR FailureCode() const noexcept { return failure; }
    void Require() const
    {
        if (!IsUp()) throw Failure(failure, "the camera is gone");
    }

private:
    enum class State
    {
        Up,
        Interrupted,
        Lost
    };

    const GC_ERROR failure;
    std::atomic<State> state{State::Up};
};

} // namespace koro::simulator
