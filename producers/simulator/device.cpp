#include "producers/simulator/device.h"

#include "producers/simulator/data_stream.h"
#include "producers/simulator/interface.h"
#include "producers/simulator/producer_facts.h"

#include <cstring>
#include <utility>

namespace koro::simulator
{
namespace
{

constexpr std::uint64_t timestampTicksPerSecond = 1'000'000'000;

// Registers of the camera, as descriptions/koro_simulator_remoteDevice.xml names them.
constexpr std::uint64_t serialRegister = 0x200;
constexpr std::uint64_t userNameRegister = 0x240;
constexpr std::uint64_t widthRegister = 0x300;
constexpr std::uint64_t heightRegister = 0x304;
constexpr std::uint64_t pixelFormatRegister = 0x308;
constexpr std::uint64_t payloadSizeRegister = 0x310;
constexpr std::uint64_t paramsLockedRegister = 0x318;

PortFacts CameraFacts(const Camera& camera, const char* module, const char* name)
{
    const CameraSettings& settings = camera.Settings();
    return {camera.Id(), settings.vendor, settings.model, camera.TLType(), module, name, producerVersion};
}

bool IsZeroOrOne(std::span<const std::byte> bytes)
{
    std::uint32_t value = 0;
    std::memcpy(&value, bytes.data(), sizeof value);
    return value <= 1;
}

InfoValue TextIfAny(const std::string& text)
{
    if (text.empty()) throw Failure(GC_ERR_NOT_AVAILABLE, "the camera has none");
    return InfoValue::Text(text);
}

} // namespace

InfoValue DeviceInfo(const Camera& camera, DEVICE_ACCESS_STATUS status, DEVICE_INFO_CMD command)
{
    const CameraSettings& settings = camera.Settings();
    switch (command)
    {
    case DEVICE_INFO_ID:
        return InfoValue::Text(camera.Id());
    case DEVICE_INFO_VENDOR:
        return InfoValue::Text(settings.vendor);
    case DEVICE_INFO_MODEL:
        return InfoValue::Text(settings.model);
    case DEVICE_INFO_TLTYPE:
        return InfoValue::Text(camera.TLType());
    case DEVICE_INFO_DISPLAYNAME:
        return InfoValue::Text(camera.DisplayName());
    case DEVICE_INFO_ACCESS_STATUS:
        return InfoValue::Int32(status);
    case DEVICE_INFO_USER_DEFINED_NAME:
        return TextIfAny(settings.userName);
    case DEVICE_INFO_SERIAL_NUMBER:
        return InfoValue::Text(settings.serial);
    case DEVICE_INFO_VERSION:
        return InfoValue::Text(producerVersion);
    case DEVICE_INFO_TIMESTAMP_FREQUENCY:
        return InfoValue::UInt64(timestampTicksPerSecond);
    default:
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown device information");
    }
}

RemoteDevice::RemoteDevice(const Camera& camera, Port::Gate gate)
    : port(CameraFacts(camera, "Device", "Device"), &remoteDeviceDescription, std::move(gate))
{
    const ImageShape& shape = camera.Source().Shape();
    RegisterMap& map = port.Registers();
    map.AddText(serialRegister, textRegisterBytes, camera.Settings().serial, RegisterAccess::ReadOnly);
    map.AddText(userNameRegister, textRegisterBytes, camera.Settings().userName, RegisterAccess::ReadWrite);
    map.AddUnsigned(widthRegister, 4, shape.width, RegisterAccess::ReadOnly);
    map.AddUnsigned(heightRegister, 4, shape.height, RegisterAccess::ReadOnly);
    map.AddUnsigned(pixelFormatRegister, 4, shape.format->code, RegisterAccess::ReadOnly);
    map.AddUnsigned(payloadSizeRegister, 8, shape.PayloadBytes(), RegisterAccess::ReadOnly);
    map.AddUnsigned(paramsLockedRegister, 4, 0, RegisterAccess::ReadWrite, IsZeroOrOne);
}

Device::Device(
    std::shared_ptr<Interface> parentInterface, std::shared_ptr<Camera> openedCamera, DEVICE_ACCESS_FLAGS openedWith)
    : parent(std::move(parentInterface)), camera(std::move(openedCamera)), access(openedWith),
      port(CameraFacts(*camera, "TLDevice", "DevicePort"), &deviceDescription)
{
    const auto gate = [connectionLost = lost, readOnly = access == DEVICE_ACCESS_READONLY](bool write) {
        if (*connectionLost) throw Failure(GC_ERR_IO, "the camera is gone");
        if (write && readOnly) throw Failure(GC_ERR_ACCESS_DENIED, "the device is open for reading only");
    };
    remote = std::make_shared<RemoteDevice>(*camera, gate);
    Handles().Add(remote);
}

bool Device::SupportsEvent(EVENT_TYPE type) const noexcept
{
    return type >= EVENT_ERROR && type <= EVENT_MODULE && type != EVENT_NEW_BUFFER;
}

DEVICE_ACCESS_STATUS Device::AccessStatus() const noexcept
{
    if (*lost) return DEVICE_ACCESS_STATUS_NOACCESS;
    return access == DEVICE_ACCESS_READONLY ? DEVICE_ACCESS_STATUS_OPEN_READONLY : DEVICE_ACCESS_STATUS_OPEN_READWRITE;
}

void Device::RequireConnection() const
{
    if (*lost) throw Failure(GC_ERR_IO, "the camera is gone");
}

void Device::OnCameraLost()
{
    camera->Vanish();
    if (!lost->exchange(true)) RaiseEvent(EVENT_ERROR, ErrorBlock(GC_ERR_IO, "the camera is gone"));
}

std::shared_ptr<DataStream> Device::OpenStream(const std::string& id)
{
    if (id != DataStream::TheId()) throw Failure(GC_ERR_INVALID_ID, "there is no stream '" + id + "'");
    RequireConnection();
    return streams.Open(
        id, [this] { return std::make_shared<DataStream>(std::static_pointer_cast<Device>(shared_from_this())); });
}

void Device::OnClose()
{
    streams.CloseAll();
    remote->Close();
    parent->Forget(*this);
}

} // namespace koro::simulator
