#include "producers/simulator/face/device.h"

#include "producers/simulator/camera/descriptions.h"
#include "producers/simulator/camera/producer_facts.h"
#include "producers/simulator/face/data_stream.h"
#include "producers/simulator/face/interface.h"
#include "producers/simulator/face/library.h"
#include "producers/simulator/face/system.h"

#include <device_register_names.h>
#include <utility>

namespace koro::simulator
{
namespace
{

constexpr std::uint64_t timestampTicksPerSecond = 1'000'000'000;

constexpr std::uint64_t standardEndianess = 1; // of DeviceEndianessMechanism

// A number that nothing follows from.
void AddSetting(RegisterMap& map, const NumberRegister& place, std::uint64_t& value)
{
    map.AddInteger(
        place, [&value] { return value; },
        [&value, place](std::uint64_t wanted) {
            if (!place.Allows(wanted)) RefuseValue("the value is out of range");
            value = wanted;
        });
}

// A camera's registers while it is open: the device learns of each write.
class WatchedRegisters final : public RegisterSpace
{
public:
    WatchedRegisters(std::shared_ptr<Camera> openedCamera, const std::shared_ptr<Device>& openDevice)
        : camera(std::move(openedCamera)), device(openDevice)
    {}

    void Read(std::uint64_t address, std::span<std::byte> out) const override
    {
        camera->Registers().space->Read(address, out);
    }
    void Write(std::uint64_t address, std::span<const std::byte> in) override
    {
        camera->Registers().space->Write(address, in);
        if (const auto open = device.lock()) open->OnCameraWritten();
    }

private:
    const std::shared_ptr<Camera> camera;
    const std::weak_ptr<Device> device; // it owns these registers
};

std::unique_ptr<CameraClaim> Claim(const Camera& camera, DEVICE_ACCESS_FLAGS access)
{
    const auto& memory = camera.Features().Memory();
    if (!memory) return nullptr;
    auto claim = std::make_unique<CameraClaim>(memory, access);
    // What a process that was killed left running.
    if (access != DEVICE_ACCESS_READONLY) camera.Features().OnRelease();
    return claim;
}

} // namespace

DeviceFacts FactsOf(const Camera& camera, const std::string& id)
{
    const CameraSettings& settings = camera.Settings();
    return {
        id,
        settings.vendor,
        settings.model,
        producerVersion,
        camera.TLType(),
        camera.DisplayNameUnder(id),
        settings.serial,
        [&camera] { return camera.UserName(); },
        timestampTicksPerSecond};
}

InfoValue Device::Info(DEVICE_INFO_CMD command) const
{
    return FactsOf(*camera, id).Info(AccessStatus(), command);
}

Device::Device(
    std::shared_ptr<Interface> parentInterface, std::shared_ptr<Camera> openedCamera, DEVICE_ACCESS_FLAGS access)
    : kit::Device(parentInterface), interface(std::move(parentInterface)), camera(std::move(openedCamera)),
      id(camera->Id()), access(access), claim(Claim(*camera, access)),
      connection(std::make_shared<Connection>(interface->TheSystem().TheLibrary().Connection().deadCameraError)),
      port(camera->Facts("TLDevice", "DevicePort"), MakeRegisters())
{}

std::shared_ptr<RemoteDevice> Device::MakeRemote()
{
    const auto gate = [link = connection, readOnly = access == DEVICE_ACCESS_READONLY](bool write) {
        link->Require();
        if (write && readOnly) throw Failure(GC_ERR_ACCESS_DENIED, "the device is open for reading only");
    };
    PortRegisters registers = camera->Registers();
    registers.space = std::make_shared<WatchedRegisters>(camera, std::static_pointer_cast<Device>(shared_from_this()));
    camera->Features().Events().Attach(
        [open = std::weak_ptr(std::static_pointer_cast<Device>(shared_from_this()))](std::string packet) {
            const auto device = open.lock();
            if (device && device->connection->IsUp()) device->RaiseEvent(EVENT_REMOTE_DEVICE, std::move(packet));
        });
    return std::make_shared<RemoteDevice>(camera->Facts("Device", "Device"), std::move(registers), gate);
}

PortRegisters Device::MakeRegisters()
{
    auto map = std::make_shared<RegisterMap>();
    const NetworkAddress& network = camera->Network();
    AddCommonRegisters(*map, camera->Facts("TLDevice", "DevicePort"), deviceDescription);
    map->AddText(registers::device::DeviceSerialNumber, camera->Settings().serial);
    map->AddInteger(registers::device::DeviceTypeReg, TransportTypeNumber(camera->TLType()));
    map->AddInteger(
        registers::device::DeviceAccessStatusReg, [this] { return static_cast<std::uint64_t>(AccessStatus()); });
    map->AddInteger(registers::device::DeviceTimestampFrequency, timestampTicksPerSecond);
    map->AddInteger(registers::device::DeviceIsGigEVision, camera->TLType() == "GEV" ? 1 : 0);
    map->AddInteger(registers::device::DeviceEndianessMechanismReg, standardEndianess);
    map->AddInteger(registers::device::GevDeviceMACAddress, network.mac);
    map->AddInteger(registers::device::GevDeviceIPAddress, network.ip);
    map->AddInteger(registers::device::GevDeviceSubnetMask, network.mask);
    map->AddInteger(registers::device::GevDeviceGateway, network.gateway);
    AddSetting(*map, registers::device::LinkCommandTimeoutReg, commandTimeout_us);
    AddRetries(*map);
    AddSetting(*map, registers::device::GevGVCPCMDLengthReg, commandLength);
    map->AddText(registers::device::StreamID, StreamId(0));
    map->AddText(registers::device::DeviceDisplayName, camera->DisplayNameUnder(id));
    AddEventRegisters(*map, camera->TLType());
    return {map, {LocalURL(deviceDescription)}};
}

void Device::AddRetries(RegisterMap& map)
{
    const CommandRetries& retries = camera->Settings().retries;
    commandRetries = retries.number;
    if (retries.isReadOnly)
        map.AddInteger(registers::device::LinkCommandRetryCountReg, commandRetries);
    else
        AddSetting(map, {registers::device::LinkCommandRetryCountReg, 0, retries.maximum, 1}, commandRetries);
    map.AddInteger(registers::device::LinkCommandRetryMaximum, retries.maximum);
    map.AddInteger(
        registers::device::LinkCommandRetriesAreThere,
        (retries.isImplemented ? 1U : 0U) | (retries.isReadOnly ? 2U : 0U));
}

bool Device::SupportsEvent(EVENT_TYPE type) const noexcept
{
    return type >= EVENT_ERROR && type <= EVENT_MODULE && type != EVENT_NEW_BUFFER;
}

void Device::OnRegistration(EVENT_TYPE type, EventQueue* registration) noexcept
{
    if (type == EVENT_REMOTE_DEVICE) camera->Features().Events().SetWanted(registration != nullptr);
}

InfoValue Device::PacketInfo(EVENT_TYPE type, std::string_view block, EVENT_DATA_INFO_CMD command) const
{
    if (type != EVENT_REMOTE_DEVICE) return Module::PacketInfo(type, block, command);
    return ItemInfo(camera->Features().Events().Packets().First(block), command);
}

DEVICE_ACCESS_STATUS Device::AccessStatus() const noexcept
{
    if (!connection->IsUp()) return DEVICE_ACCESS_STATUS_NOACCESS;
    return access == DEVICE_ACCESS_READONLY ? DEVICE_ACCESS_STATUS_OPEN_READONLY : DEVICE_ACCESS_STATUS_OPEN_READWRITE;
}

void Device::RequireStreamAccess() const
{
    if (claim && access == DEVICE_ACCESS_READONLY)
        throw Failure(GC_ERR_ACCESS_DENIED, "the device is open for reading only");
}

void Device::OnCameraLost()
{
    camera->Vanish();
    if (connection->Lose()) RaiseCameraGone();
}

void Device::RaiseCameraGone()
{
    RaiseEvent(EVENT_ERROR, ErrorBlock(connection->FailureCode(), "the camera is gone"));
}

void Device::SilenceStream()
{
    if (const auto stream = FindOpenStream()) stream->CutOff();
}

std::shared_ptr<DataStream> Device::FindOpenStream() const
{
    return std::static_pointer_cast<DataStream>(FindOpen(StreamId(0)));
}

void Device::OnInterruption()
{
    if (!connection->Interrupt()) return;
    SilenceStream();
    RaiseCameraGone();
}

void Device::OnRestoration()
{
    if (connection->Restore()) camera->Features().Announce();
}

void Device::OnCameraWritten()
{
    camera->VanishAfterReset();
    // A cable may have been pulled while the write was under way; that alone does not end the connection for good.
    if (camera->IsGone()) OnCameraLost();
}

std::shared_ptr<kit::DataStream> Device::MakeStream(const std::string&)
{
    return std::make_shared<DataStream>(std::static_pointer_cast<Device>(shared_from_this()));
}

void Device::OnClosing()
{
    camera->Features().Events().Detach();
}

void Device::OnStreamsClosed()
{
    if (!connection->IsLost() && access != DEVICE_ACCESS_READONLY) camera->Features().OnRelease();
}

} // namespace koro::simulator
