#include "producers/simulator/device.h"

#include "producers/simulator/data_stream.h"
#include "producers/simulator/interface.h"
#include "producers/simulator/producer_facts.h"

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

constexpr std::uint64_t standardEndianess = 1; // of DeviceEndianessMechanism

// A number that nothing follows from.
void AddSetting(RegisterMap& map, std::uint64_t address, std::uint64_t& value, std::uint64_t least, std::uint64_t most)
{
    map.AddInteger(
        address, 4, [&value] { return value; },
        [&value, least, most](std::uint64_t wanted) {
            if (wanted < least || wanted > most) RefuseValue("the value is out of range");
            value = wanted;
        });
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
    : userName(camera.Settings().userName),
      port(CameraFacts(camera, "Device", "Device"), MakeRegisters(camera), std::move(gate))
{}

PortRegisters RemoteDevice::MakeRegisters(const Camera& camera)
{
    auto map = std::make_shared<RegisterMap>();
    const ImageShape& shape = camera.Source().Shape();
    AddCommonRegisters(*map, CameraFacts(camera, "Device", "Device"), remoteDeviceDescription);
    map->AddText(serialRegister, textRegisterBytes, camera.Settings().serial);
    map->AddText(
        userNameRegister, textRegisterBytes, [this] { return userName; },
        [this](std::string text) { userName = std::move(text); });
    map->AddInteger(widthRegister, 4, shape.width);
    map->AddInteger(heightRegister, 4, shape.height);
    map->AddInteger(pixelFormatRegister, 4, shape.format->code);
    map->AddInteger(payloadSizeRegister, 8, shape.PayloadBytes());
    AddSetting(*map, paramsLockedRegister, paramsLocked, 0, 1);
    return {map, {LocalURL(remoteDeviceDescription)}};
}

Device::Device(
    std::shared_ptr<Interface> parentInterface, std::shared_ptr<Camera> openedCamera, DEVICE_ACCESS_FLAGS openedWith)
    : parent(std::move(parentInterface)), camera(std::move(openedCamera)), access(openedWith),
      port(CameraFacts(*camera, "TLDevice", "DevicePort"), MakeRegisters())
{
    const auto gate = [connectionLost = lost, readOnly = access == DEVICE_ACCESS_READONLY](bool write) {
        if (*connectionLost) throw Failure(GC_ERR_IO, "the camera is gone");
        if (write && readOnly) throw Failure(GC_ERR_ACCESS_DENIED, "the device is open for reading only");
    };
    remote = std::make_shared<RemoteDevice>(*camera, gate);
    Handles().Add(remote);
}

PortRegisters Device::MakeRegisters()
{
    auto map = std::make_shared<RegisterMap>();
    const NetworkAddress& network = camera->Network();
    AddCommonRegisters(*map, CameraFacts(*camera, "TLDevice", "DevicePort"), deviceDescription);
    map->AddText(0x100, textRegisterBytes, camera->Settings().serial);
    map->AddInteger(0x140, 4, TransportTypeNumber(camera->TLType()));
    map->AddInteger(0x144, 4, [this] { return static_cast<std::uint64_t>(AccessStatus()); });
    map->AddInteger(0x148, 8, timestampTicksPerSecond);
    map->AddInteger(0x150, 4, camera->TLType() == "GEV" ? 1 : 0);
    map->AddInteger(0x154, 4, standardEndianess);
    map->AddInteger(0x180, 8, network.mac);
    map->AddInteger(0x188, 4, network.ip);
    map->AddInteger(0x18C, 4, network.mask);
    map->AddInteger(0x190, 4, network.gateway);
    AddSetting(*map, 0x1A0, commandTimeout_us, 1'000, 60'000'000);
    AddSetting(*map, 0x1A4, commandRetries, 0, 100);
    AddSetting(*map, 0x1B0, commandLength, 36, 65535);
    map->AddText(0x200, textRegisterBytes, DataStream::TheId());
    map->AddText(0x1100, 512, camera->DisplayName());
    return {map, {LocalURL(deviceDescription)}};
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
