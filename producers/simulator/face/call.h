// Call: the frame around every exported function: initialised, misbehaviour, exceptions, last error.
#pragma once

#include "producers/kit/failure.h"
#include "producers/kit/info_value.h"
#include "producers/simulator/face/runtime.h"

#include <type_traits>

namespace koro::simulator
{

// A failure that the settings ask for: the call's result and the stored code may differ.
class InjectedFailure : public Failure
{
public:
    explicit InjectedFailure(const CallFault& fault)
        : Failure(fault.error, fault.text), lastErrorCode(fault.lastErrorCode)
    {}

    GC_ERROR LastErrorCode() const noexcept { return lastErrorCode; }

private:
    GC_ERROR lastErrorCode;
};

// Turns the exception being handled into a result, and stores it.
GC_ERROR RecordException(const char* function) noexcept;
// For results that are too ordinary for an exception.
GC_ERROR RecordResult(GC_ERROR code, const char* function) noexcept;

void RequireInitialised();
// Throws what the settings ask for, after the delay they ask for.
void Misbehave(const char* function);

// Runs `body`, which answers nothing or a GC_ERROR. Nothing is thrown.
template <typename Body>
GC_ERROR CallAnyTime(const char* function, const Body& body) noexcept
{
    try
    {
        if constexpr (std::is_void_v<decltype(body())>)
        {
            body();
            return GC_ERR_SUCCESS;
        }
        else
            return RecordResult(body(), function);
    }
    catch (...)
    {
        return RecordException(function);
    }
}

// The same, between GCInitLib and GCCloseLib only.
template <typename Body>
GC_ERROR Call(const char* function, const Body& body) noexcept
{
    return CallAnyTime(function, [&] {
        RequireInitialised();
        Misbehave(function);
        return body();
    });
}

template <typename T>
std::shared_ptr<T> Find(void* handle)
{
    return Handles().Find<T>(handle);
}

// Writes what `truth` answers for the command, or what the settings put in its place.
template <typename Truth>
void Answer(const char* function, std::int32_t command, const InfoOutput& output, const Truth& truth)
{
    output.Require();
    const auto faults = Runtime::Instance().CallFaults();
    const InfoFault* fault = faults ? faults->FindInfo(function, command) : nullptr;
    if (fault == nullptr) return output.Write(truth());

    const bool needsTruth = fault->error == GC_ERR_SUCCESS && (!fault->type || !(fault->bytes || fault->number));
    output.Write(Falsify(*fault, needsTruth ? truth() : InfoValue{}));
    if (fault->claimedSize && output.buffer == nullptr) *output.size = *fault->claimedSize;
}

} // namespace koro::simulator
