// FaultyCalls: calls and info queries that fail or lie, because the settings ask for it. Any thread.
#pragma once

#include "producers/kit/call_watch.h"
#include "producers/simulator/kit.h"
#include "producers/simulator/settings/fault_plan.h"

#include <functional>

namespace koro::simulator
{

class FaultyCalls final : public CallWatch
{
public:
    explicit FaultyCalls(const Misbehaviour& misbehaviour) : faults(misbehaviour) {}

    // False: nothing needs to be watched.
    bool ConcernsCalls() const noexcept { return faults.ConcernsCalls(); }

    void OnCall(const char* function) override;
    void Answer(
        const char* function, std::int32_t command, const InfoOutput& output,
        const std::function<InfoValue()>& truth) override;

private:
    FaultPlan faults;
};

} // namespace koro::simulator
