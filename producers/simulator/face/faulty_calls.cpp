#include "producers/simulator/face/faulty_calls.h"

#include "producers/kit/failure.h"

namespace koro::simulator
{
namespace
{

// A failure that the settings ask for: the call's result and the stored code may differ.
class InjectedFailure final : public Failure
{
public:
    explicit InjectedFailure(const CallFault& fault)
        : Failure(fault.error, fault.text), lastErrorCode(fault.lastErrorCode)
    {}

    GC_ERROR RecordedCode() const noexcept override { return lastErrorCode; }

private:
    GC_ERROR lastErrorCode;
};

} // namespace

void FaultyCalls::OnCall(const char* function)
{
    if (const CallFault* fault = faults.OnCall(function)) throw InjectedFailure(*fault);
}

void FaultyCalls::Answer(
    const char* function, std::int32_t command, const InfoOutput& output, const std::function<InfoValue()>& truth)
{
    const InfoFault* fault = faults.FindInfo(function, command);
    if (fault == nullptr) return output.Write(truth());

    const bool needsTruth = fault->error == GC_ERR_SUCCESS && (!fault->type || !(fault->bytes || fault->number));
    output.Write(Falsify(*fault, needsTruth ? truth() : InfoValue{}));
    if (fault->claimedSize && output.buffer == nullptr) *output.size = *fault->claimedSize;
}

} // namespace koro::simulator
