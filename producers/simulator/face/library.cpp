#include "producers/simulator/face/library.h"

#include "producers/simulator/camera/producer_facts.h"

#include <dlfcn.h>
#include <filesystem>

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

// A picture that cannot be read is told with the camera that wants it.
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

} // namespace

Library::Library(const Settings& settings)
    : tlType(CommonType(settings.interfaces)), versionMajor(settings.versionMajor), versionMinor(settings.versionMinor),
      strictInit(settings.strictInit), portWriteLimit(settings.misbehaviour.portWriteLimit),
      connection(settings.connection), faults(std::make_shared<FaultPlan>(settings.misbehaviour))
{
    for (const InterfaceSettings& interface : settings.interfaces)
    {
        const auto index = static_cast<std::uint32_t>(interfaces.size());
        auto model = std::make_shared<InterfaceModel>();
        *model = {interface.id, interface.displayName, interface.tlType, NetworkAddress::OfInterface(index), {}};
        for (const CameraSettings& camera : interface.cameras)
        {
            const auto place = static_cast<std::uint32_t>(model->cameras.size());
            model->cameras.push_back(
                MakeCamera(camera, {interface.tlType, NetworkAddress::OfCamera(index, place)}, settings.misbehaviour));
        }
        interfaces.push_back(model);
    }
}

std::string Library::PathName()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&vendorName), &info) == 0 || info.dli_fname == nullptr) return {};
    std::error_code error;
    const auto path = std::filesystem::absolute(info.dli_fname, error);
    return error ? info.dli_fname : path.lexically_normal().string();
}

InfoValue Library::Info(TL_INFO_CMD command) const
{
    switch (command)
    {
    case TL_INFO_ID:
        return InfoValue::Text(id);
    case TL_INFO_VENDOR:
        return InfoValue::Text(vendorName);
    case TL_INFO_MODEL:
        return InfoValue::Text(modelName);
    case TL_INFO_VERSION:
        return InfoValue::Text(producerVersion);
    case TL_INFO_TLTYPE:
        return InfoValue::Text(tlType);
    case TL_INFO_NAME:
        return InfoValue::Text(std::filesystem::path(PathName()).filename().string());
    case TL_INFO_PATHNAME:
        return InfoValue::Text(PathName());
    case TL_INFO_DISPLAYNAME:
        return InfoValue::Text(std::string(vendorName) + " " + modelName);
    case TL_INFO_CHAR_ENCODING:
        return InfoValue::Int32(TL_CHAR_ENCODING_UTF8);
    case TL_INFO_GENTL_VER_MAJOR:
        if (versionMinor >= 5) return InfoValue::UInt32(versionMajor);
        break;
    case TL_INFO_GENTL_VER_MINOR:
        if (versionMinor >= 5) return InfoValue::UInt32(versionMinor);
        break;
    default:
        break;
    }
    throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown information");
}

std::shared_ptr<System> Library::OpenSystem()
{
    auto system = systems.Open(id, [this] { return std::make_shared<System>(shared_from_this()); });
    try
    {
        system->Plugs().Start();
    }
    catch (...)
    {
        system->Close();
        throw;
    }
    return system;
}

} // namespace koro::simulator
