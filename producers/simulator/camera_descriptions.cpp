#include "producers/simulator/camera_descriptions.h"

namespace koro::simulator
{
namespace
{

const Description& OwnDescription(const std::string& tlType)
{
    if (tlType == "GEV") return gevDescription;
    return tlType == "U3V" ? u3vDescription : plainDescription;
}

} // namespace

PortRegisters MakeCameraRegisters(const PortFacts& facts, const std::shared_ptr<CameraFeatures>& features)
{
    const Description& description = OwnDescription(facts.tlType);
    features->AddDescription(facts, description);
    return {features, {LocalURL(description)}, features->Order()};
}

} // namespace koro::simulator
