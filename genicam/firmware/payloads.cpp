#include "firmware/payloads.h"

namespace GENAPI_NAMESPACE::runtime
{

Payloads ReadPayloads(const UpdateFile& file, const std::vector<Step>& steps, size_t maxSize)
{
    Payloads payloads;
    size_t room = maxSize;
    for (const Step& step : steps)
    {
        if (step.type != ProgressStepType_FileUpload || payloads.count(step.file) > 0) continue;
        const std::string& content = payloads[step.file] = file.Payload(step.file, room);
        room -= content.size();
    }
    return payloads;
}

void VerifyPayloads(const UpdateFile& file, const Procedures& procedures, size_t maxSize)
{
    std::vector<Step> steps;
    for (const auto& [id, procedure] : procedures)
        steps.insert(steps.end(), procedure.steps.begin(), procedure.steps.end());
    ReadPayloads(file, steps, maxSize);
}

} // namespace GENAPI_NAMESPACE::runtime
