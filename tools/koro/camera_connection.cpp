#include "tools/koro/camera_connection.h"

#include "tools/koro/read_producer.h"
#include "tools/koro/tool_error.h"

#include <algorithm>

namespace koro::tool
{

namespace
{

template <typename Descriptor>
Descriptor FindByID(const std::vector<Descriptor>& descriptors, const std::string& id)
{
    const auto found = std::find_if(
        descriptors.begin(), descriptors.end(), [&](const Descriptor& descriptor) { return descriptor.ID() == id; });
    if (found != descriptors.end()) return *found;
    throw ToolError(id + " has gone since it was listed.", "Check its cable and power, then look at `koro list`.");
}

} // namespace

CameraConnection::CameraConnection(const CameraChoice& choice, const ModuleSettings& settings)
    : library(Library::Initialize()), producer(choice.producer->path), system(producer.System().OpenSystem())
{
    settings.ApplyTo(system);
    system.UpdateInterfaces(updateTimeout_ms);
    cameraInterface = FindByID(system.Interfaces(), choice.interfaceRecord->id).OpenInterface();
    settings.ApplyTo(cameraInterface);
    cameraInterface.UpdateDevices(updateTimeout_ms);
    descriptor = FindByID(cameraInterface.Devices(), choice.camera->id);
}

} // namespace koro::tool
