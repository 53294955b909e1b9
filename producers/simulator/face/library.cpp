#include "producers/simulator/face/library.h"

#include "producers/kit/runtime.h"
#include "producers/simulator/camera/producer_facts.h"
#include "producers/simulator/frames/pixel_format.h"

namespace koro::simulator
{
namespace
{

// One type if all interfaces have it.
std::string CommonType(const std::vector<InterfaceSettings>& interfaces)
{
    if (interfaces.empty()) return "Custom";
    for (const InterfaceSettings& interface : interfaces)
        if (interface.tlType != interfaces.front().tlType) return "Mixed";
    return interfaces.front().tlType;
}

// All functions are answered, regardless of the version that the settings claim.
ProducerFacts FactsOf(const Settings& settings)
{
    return {
        "zvr_koro_simulator",
        vendorName,
        modelName,
        producerVersion,
        CommonType(settings.interfaces),
        {settings.versionMajor, settings.versionMinor},
        true};
}

// A picture that cannot be read is reported with the camera that wants it.
std::shared_ptr<Camera> MakeCamera(
    const CameraSettings& settings, const CameraConnection& connection, const Misbehaviour& misbehaviour)
{
    try
    {
        return std::make_shared<Camera>(settings, connection, misbehaviour);
    }
    catch (const Failure& failure)
    {
        throw Failure(failure.Code(), "camera '" + settings.serial + "': " + failure.what());
    }
}

// Running threads use this static, so it is made before the runtime and goes after it.
[[maybe_unused]] const PixelFormat* const madeFirst = FindPixelFormat("");
Runtime runtime([] { return std::make_shared<Library>(LoadSettings()); });

} // namespace

Library::Library(const Settings& settings)
    : Producer(FactsOf(settings)), strictInit(settings.strictInit),
      portWriteLimit(settings.misbehaviour.portWriteLimit), deadHandleCode(settings.misbehaviour.deadHandleError),
      connection(settings.connection), faults(std::make_shared<FaultyCalls>(settings.misbehaviour))
{
    for (const InterfaceSettings& interface : settings.interfaces)
    {
        const auto index = static_cast<std::uint32_t>(interfaces.size());
        auto model = std::make_shared<InterfaceModel>();
        *model = {{interface.id, interface.displayName, interface.tlType}, NetworkAddress::OfInterface(index), {}};
        for (const CameraSettings& camera : interface.cameras)
        {
            const auto place = static_cast<std::uint32_t>(model->cameras.size());
            model->cameras.push_back(
                MakeCamera(camera, {interface.tlType, NetworkAddress::OfCamera(index, place)}, settings.misbehaviour));
        }
        interfaces.push_back(model);
    }
}

std::shared_ptr<CallWatch> Library::Watch() const
{
    return faults->ConcernsCalls() ? faults : nullptr;
}

std::shared_ptr<kit::System> Library::MakeSystem()
{
    return std::make_shared<System>(std::static_pointer_cast<Library>(shared_from_this()));
}

void Library::OnOpened(kit::System& system)
{
    static_cast<System&>(system).Plugs().Start();
}

} // namespace koro::simulator
