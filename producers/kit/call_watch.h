// CallWatch: looks at the calls of a consumer before the producer acts, and may answer in its place.
//
// For producers that misbehave on request or keep a journal; others have none. Called on the consumer's threads, with
// no lock held.
#pragma once

#include "producers/kit/info_value.h"

#include <cstdint>
#include <functional>

namespace koro::kit
{

class CallWatch
{
public:
    virtual ~CallWatch() = default;

    // May take its time, or throw Failure with which the call then ends.
    virtual void OnCall(const char* function) = 0;

    // Answers an info query, whose true answer `truth` makes when it is needed.
    virtual void Answer(
        const char* function, std::int32_t command, const InfoOutput& output, const std::function<InfoValue()>& truth)
    {
        static_cast<void>(function);
        static_cast<void>(command);
        output.Write(truth());
    }
};

} // namespace koro::kit
