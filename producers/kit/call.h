// Call: the frame around every exported function: initialised, watched, version, exceptions, last error.
#pragma once

#include "producers/kit/failure.h"
#include "producers/kit/info_value.h"
#include "producers/kit/runtime.h"

#include <type_traits>

namespace koro::kit
{

// Turns the exception being handled into a result, and stores it.
GC_ERROR RecordException(const char* function) noexcept;
// For results that are too ordinary for an exception.
GC_ERROR RecordResult(GC_ERROR code, const char* function) noexcept;

void RequireInitialised();
// Shows the call to the producer's watch, if it has one.
void Watch(const char* function);
// Throws GC_ERR_NOT_IMPLEMENTED when the producer claims a version before that one.
void RequireVersion(GenTLVersion since);

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
        Watch(function);
        return body();
    });
}

// The same, for a function that came after version 1.0.
template <typename Body>
GC_ERROR CallSince(GenTLVersion since, const char* function, const Body& body) noexcept
{
    return Call(function, [&] {
        RequireVersion(since);
        return body();
    });
}

template <typename T>
std::shared_ptr<T> Find(void* handle)
{
    return Handles().Find<T>(handle);
}

// Writes what `truth` answers for the command, or what the producer's watch puts in its place.
template <typename Truth>
void Answer(const char* function, std::int32_t command, const InfoOutput& output, const Truth& truth)
{
    output.Require();
    if (const auto watch = Runtime::Instance().Watch())
        watch->Answer(function, command, output, truth);
    else
        output.Write(truth());
}

} // namespace koro::kit
