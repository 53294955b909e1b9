#include "producers/simulator/settings/fault_plan.h"

#include "producers/kit/failure.h"
#include "producers/simulator/kit.h"

#include <chrono>
#include <cstring>
#include <thread>
#include <utility>

namespace koro::simulator
{
namespace
{

std::size_t ScalarBytes(INFO_DATATYPE type)
{
    switch (type)
    {
    case INFO_DATATYPE_BOOL8:
        return 1;
    case INFO_DATATYPE_INT16:
    case INFO_DATATYPE_UINT16:
        return 2;
    case INFO_DATATYPE_INT32:
    case INFO_DATATYPE_UINT32:
        return 4;
    default:
        return 8;
    }
}

} // namespace

FaultPlan::FaultPlan(const Misbehaviour& misbehaviour) : infoFaults(misbehaviour.info)
{
    for (const CallFault& fault : misbehaviour.calls)
        callFaults.emplace_back().fault = fault;
}

const CallFault* FaultPlan::OnCall(std::string_view function)
{
    const CallFault* failure = nullptr;
    for (CountedFault& counted : callFaults)
    {
        if (counted.fault.function != function || !counted.fault.calls.Contains(++counted.calls)) continue;
        if (counted.fault.delay_ms > 0) std::this_thread::sleep_for(std::chrono::milliseconds(counted.fault.delay_ms));
        if (counted.fault.error != GC_ERR_SUCCESS && failure == nullptr) failure = &counted.fault;
    }
    return failure;
}

const InfoFault* FaultPlan::FindInfo(std::string_view function, std::int32_t command) const noexcept
{
    for (const InfoFault& fault : infoFaults)
        if (fault.function == function && fault.command == command) return &fault;
    return nullptr;
}

InfoValue Falsify(const InfoFault& fault, InfoValue truth)
{
    if (fault.error != GC_ERR_SUCCESS) throw Failure(fault.error, "an answer that the settings ask for");
    if (fault.type) truth.type = *fault.type;
    if (fault.bytes) truth.bytes = *fault.bytes;
    if (fault.number)
    {
        const std::int64_t number = *fault.number;
        truth.bytes.assign(reinterpret_cast<const char*>(&number), ScalarBytes(truth.type));
    }
    if (fault.size) truth.bytes.resize(*fault.size, '\0');
    return truth;
}

} // namespace koro::simulator
