// Answers: what the producer answers, as set by a test. Guarded by the mutex of State.
#pragma once

#include "producers/scripted/script.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace scripted
{

struct Answers
{
    struct Plan
    {
        std::optional<GenTL::GC_ERROR> always;
        std::map<std::uint64_t, GenTL::GC_ERROR> atCall; // counted from the first call on
        std::uint64_t calls = 0;
    };
    using InfoKey = std::tuple<std::string, std::int32_t, std::optional<std::uint32_t>>;

    std::map<std::string, Plan> plans;
    std::map<InfoKey, Info> infos;
    std::map<std::string, std::uint32_t> counts;
    std::map<std::string, std::optional<GenTL::bool8_t>> changed;
    std::map<std::string, std::function<void()>> hooks;
    std::map<std::string, std::vector<Interceptor>> interceptors;
    std::vector<std::shared_ptr<void>> kept;
    std::optional<LastError> lastError;
    bool strictInit = false;

    // Counts the call; empty when the producer is to act.
    std::optional<GenTL::GC_ERROR> NextResult(const std::string& function)
    {
        Plan& plan = plans[function];
        const auto once = plan.atCall.find(++plan.calls);
        return once == plan.atCall.end() ? plan.always : once->second;
    }

    // Null when the test has said nothing about this query.
    const Info* FindInfo(const std::string& function, std::int32_t number, std::uint32_t index = 0) const
    {
        auto found = infos.find({function, number, index});
        if (found == infos.end()) found = infos.find({function, number, std::nullopt});
        return found == infos.end() ? nullptr : &found->second;
    }
};

} // namespace scripted
