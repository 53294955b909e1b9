// Call: the frame of every entry point: journal, hook, set answer, then the producer's own behaviour.
#pragma once

#include "producers/scripted/state.h"

#include <initializer_list>
#include <mutex>
#include <string>

namespace scripted
{

using Lock = std::unique_lock<std::mutex>;

// How an argument reads in the journal; the lock is held.
std::string Say(Handle handle);
std::string Say(const char* text);
std::string Say(std::int32_t number);
std::string Say(std::uint32_t number);
std::string Say(std::uint64_t number);

// Distinguishes the two halves of a query.
struct Half
{
    const void* buffer;
};
std::string Say(Half half);

// Records the call, then runs hook and interceptors with the lock given up. Empty when none of them has answered.
std::optional<GenTL::GC_ERROR> Enter(
    State& state, Lock& lock, const char* function, std::initializer_list<std::string> arguments);
// Empty when the producer is to act.
std::optional<GenTL::GC_ERROR> SetResult(State& state, const char* function);
// Keeps a failure as the thread's last one.
GenTL::GC_ERROR Leave(const char* function, GenTL::GC_ERROR result);

// `behaviour` is GC_ERROR(State&, Lock&) and runs under the lock.
template <class Behaviour, class... Arguments>
GenTL::GC_ERROR Call(const char* function, const Behaviour& behaviour, const Arguments&... arguments)
{
    State& state = State::Get();
    Lock lock(state.mutex);
    auto set = Enter(state, lock, function, {Say(arguments)...});
    if (!set) set = SetResult(state, function);
    return Leave(function, set ? *set : behaviour(state, lock));
}

// The same for a function of one open module, which is its first argument: GC_ERROR(State&, Module&).
template <class Behaviour, class... Arguments>
GenTL::GC_ERROR CallOn(
    Kind kind, const char* function, Handle handle, const Behaviour& behaviour, const Arguments&... arguments)
{
    const auto onModule = [&](State& state, Lock&) -> GenTL::GC_ERROR {
        Module* module = state.live.Find(handle, kind);
        return module ? behaviour(state, *module) : GenTL::GC_ERR_INVALID_HANDLE;
    };
    return Call(function, onModule, handle, arguments...);
}

// Answers by the rule of size queries. `type` may be null for functions that deliver text alone.
GenTL::GC_ERROR AnswerInfo(const Info& info, GenTL::INFO_DATATYPE* type, void* buffer, std::size_t* size);

// What the test set, else what is in `infos`, else the failure of an unknown command.
Info Choose(const State& state, const char* function, const Infos& infos, std::int32_t number, std::uint32_t index = 0);

// Answers a query of an id by index.
GenTL::GC_ERROR AnswerID(
    const State& state, const char* function, std::uint32_t index, const std::string* id, char* text,
    std::size_t* size);

// Answers a count: what the test set, else `count`.
GenTL::GC_ERROR AnswerCount(const State& state, const char* function, std::size_t count, std::uint32_t* output);

} // namespace scripted
