#include "producers/scripted/call.h"

#include "producers/kit/last_error.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace scripted
{

using namespace GenTL;

namespace
{

template <class Map>
typename Map::mapped_type FindOr(const Map& map, const std::string& function)
{
    const auto found = map.find(function);
    return found == map.end() ? typename Map::mapped_type() : found->second;
}

std::optional<GC_ERROR> FirstAnswer(
    const std::vector<Interceptor>& interceptors, const std::vector<std::string>& arguments)
{
    for (const Interceptor& interceptor : interceptors)
    {
        if (const auto answer = interceptor(arguments)) return answer;
    }
    return std::nullopt;
}

bool NeedsInitialisation(std::string_view function)
{
    return function != "GCInitLib" && function != "GCGetLastError";
}

} // namespace

std::string Say(Handle handle)
{
    return State::Get().live.Name(handle);
}

std::string Say(const char* text)
{
    return text ? text : "null";
}

std::string Say(std::int32_t number)
{
    return std::to_string(number);
}

std::string Say(std::uint32_t number)
{
    return std::to_string(number);
}

std::string Say(std::uint64_t number)
{
    return number == GENTL_INFINITE ? "infinite" : std::to_string(number);
}

std::string Say(Half half)
{
    return half.buffer ? "data" : "size";
}

std::optional<GC_ERROR> Enter(
    State& state, Lock& lock, const char* function, std::initializer_list<std::string> arguments)
{
    state.Record(function, arguments);
    // Copies: a hook may replace itself.
    const auto hook = FindOr(state.answers.hooks, function);
    const auto interceptors = FindOr(state.answers.interceptors, function);
    if (!hook && interceptors.empty()) return std::nullopt;
    lock.unlock();
    if (hook) hook();
    const auto answer = FirstAnswer(interceptors, arguments);
    lock.lock();
    return answer;
}

std::optional<GC_ERROR> SetResult(State& state, const char* function)
{
    if (const auto set = state.answers.NextResult(function)) return set;
    if (state.live.initCount == 0 && NeedsInitialisation(function)) return GC_ERR_NOT_INITIALIZED;
    return std::nullopt;
}

GC_ERROR Leave(const char* function, GC_ERROR result)
{
    if (result != GC_ERR_SUCCESS && std::string_view(function) != "GCGetLastError")
        koro::kit::RecordLastError(result, (std::string("scripted failure of ") + function).c_str());
    return result;
}

GC_ERROR AnswerInfo(const Info& info, INFO_DATATYPE* type, void* buffer, std::size_t* size)
{
    if (!size) return GC_ERR_INVALID_PARAMETER;
    if (const GC_ERROR result = buffer ? info.dataResult : info.sizeResult) return result;
    if (type && info.writesType) *type = info.type;
    const std::size_t room = *size;
    if (!buffer)
    {
        if (info.writesSize) *size = info.claimedSize.value_or(info.bytes.size());
        return GC_ERR_SUCCESS;
    }
    if (room < info.bytes.size() && !info.deliveredSize) return GC_ERR_BUFFER_TOO_SMALL;
    std::memcpy(buffer, info.bytes.data(), std::min(room, info.bytes.size()));
    if (info.writesSize) *size = info.deliveredSize.value_or(info.bytes.size());
    return GC_ERR_SUCCESS;
}

Info Choose(const State& state, const char* function, const Infos& infos, std::int32_t number, std::uint32_t index)
{
    if (const Info* set = state.answers.FindInfo(function, number, index)) return *set;
    const auto found = infos.find(number);
    return found == infos.end() ? Failing(GC_ERR_NOT_IMPLEMENTED) : found->second;
}

GC_ERROR AnswerID(
    const State& state, const char* function, std::uint32_t index, const std::string* id, char* text, std::size_t* size)
{
    const Info* set = state.answers.FindInfo(function, static_cast<std::int32_t>(index));
    if (set) return AnswerInfo(*set, nullptr, text, size);
    if (!id) return GC_ERR_INVALID_INDEX;
    return AnswerInfo(Text(*id), nullptr, text, size);
}

GC_ERROR AnswerCount(const State& state, const char* function, std::size_t count, std::uint32_t* output)
{
    if (!output) return GC_ERR_INVALID_PARAMETER;
    const auto set = state.answers.counts.find(function);
    *output = set == state.answers.counts.end() ? static_cast<std::uint32_t>(count) : set->second;
    return GC_ERR_SUCCESS;
}

} // namespace scripted
