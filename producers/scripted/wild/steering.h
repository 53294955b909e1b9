// Steering: what the environment of the process says to a wild producer that no test can reach otherwise.
//
//   KORO_WILD_CALL    the call in which it happens, as DSQueueBuffer or, for the third one, DSQueueBuffer:3
//   KORO_WILD_GATE    a named pipe: what opens it for writing meets the producer there, and closing it opens the gate
//   KORO_WILD_FRAMES  pictures that the camera takes before it happens
//   KORO_WILD_MS      milliseconds that each slow call takes
#pragma once

#include "producers/scripted/wild/producer.h"

#include <cstdint>
#include <functional>
#include <string>

namespace scripted::wild
{

std::uint64_t NumberOf(const char* variable, std::uint64_t otherwise);

// Lets it happen in the call of KORO_WILD_CALL, else in `otherwise`, on the caller's thread and with no lock held.
void At(Producer& producer, const std::string& otherwise, std::function<void()> action);

// Waits at the gate until it is opened; without a gate, at once.
void WaitAtGate();

// Sleeps for the time that a slow call takes.
void TakeTime(std::uint64_t milliseconds);

} // namespace scripted::wild
