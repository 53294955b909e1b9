#include "tools/koro/camera_link.h"

#include "tools/koro/if_known.h"

#include <utility>

namespace koro::tool
{

namespace
{

// Short: a search is repeated.
constexpr uint64_t searchTimeout_ms = 200;

} // namespace

CameraLink::CameraLink(const CameraConnection& connection, std::string cameraID, std::string cameraSerialNumber)
    : cameraInterface(connection.Interface()), id(std::move(cameraID)), serialNumber(std::move(cameraSerialNumber)),
      disconnected(cameraInterface.OnDeviceDisconnected([this](const DeviceDescriptor& device) {
          if (!IsTheCamera(device)) return;
          reportedLost = true;
          ++numReportedLosses;
      })),
      reconnected(cameraInterface.OnDeviceReconnected(
          [this](const DeviceDescriptor& device, const KORO_DEVICE_RECONNECT_INFORMATION&) {
              if (IsTheCamera(device)) reportedLost = false;
          }))
{}

std::optional<DeviceDescriptor> CameraLink::Find()
{
    return IfKnown([&]() -> std::optional<DeviceDescriptor> {
               cameraInterface.UpdateDevices(searchTimeout_ms);
               for (const DeviceDescriptor& device : cameraInterface.Devices())
               {
                   if (IsTheCamera(device)) return device;
               }
               return std::nullopt;
           })
        .value_or(std::nullopt);
}

bool CameraLink::IsTheCamera(const DeviceDescriptor& device) const
{
    if (IfKnown([&] { return device.ID(); }) != id) return false;
    if (serialNumber.empty()) return true;
    // A camera that is not fully back need not tell it.
    const auto number = IfKnown([&] { return device.SerialNumber(); });
    return !number || number->empty() || *number == serialNumber;
}

} // namespace koro::tool
