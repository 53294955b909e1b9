#include "tools/koro/camera_connection.h"

#include <utility>

namespace koro::tool
{

namespace
{

std::shared_ptr<OpenedProducer> OpenAgain(const std::string& path)
{
    const auto producer = std::make_shared<OpenedProducer>(path);
    producer->Open();
    return producer;
}

} // namespace

CameraConnection::CameraConnection(
    const Discovery& discovery, const CameraChoice& choice, const ModuleSettings& settings)
    : producer(discovery.opened ? discovery.opened : OpenAgain(choice.producer->path)),
      interfaceID(choice.interfaceRecord->id)
{
    const koro::Interface* applied = nullptr;
    // The search has opened interfaces; they are to be opened after the settings of the system.
    if (!settings.IsEmpty()) producer->CloseInterfaces();
    settings.ApplyTo(producer->System());
    descriptor = producer->Camera(interfaceID, choice.camera->id, [&](const koro::Interface& opened) {
        if (std::exchange(applied, &opened) != &opened) settings.ApplyTo(opened);
    });
}

} // namespace koro::tool
