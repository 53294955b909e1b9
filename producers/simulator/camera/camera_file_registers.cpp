// The registers of a camera's files, at the addresses that descriptions/camera/file_access_control.xml names.
//
// The command stands alone, so that no write over several registers can begin with it and fail behind it.
#include "producers/simulator/camera/camera_features.h"

#include <utility>

namespace koro::simulator
{
namespace
{

constexpr std::uint64_t bufferAddress = 0x1000'0000; // behind every description

} // namespace

// It runs from the next start on.
bool CameraFeatures::KeepFirmware()
{
    auto version = files.TakeFirmware();
    if (!version) return false;
    state.nextFirmware = std::move(*version);
    return true;
}

void CameraFeatures::AddFileAccess()
{
    const auto add =
        [this](std::uint64_t address, std::size_t bytes, auto get, void (DeviceFiles::*set)(std::uint64_t)) {
            map.AddInteger(
                address, bytes, [this, get] { return static_cast<std::uint64_t>(files.TheRegisters().*get); },
                [this, set](std::uint64_t value) { (files.*set)(value); });
        };
    using Registers = DeviceFiles::Registers;
    add(0xE00, 4, &Registers::file, &DeviceFiles::Select);
    add(0xE04, 4, &Registers::operation, &DeviceFiles::SelectOperation);
    add(0xE08, 4, &Registers::mode, &DeviceFiles::SelectMode);
    add(0xE10, 8, &Registers::offset, &DeviceFiles::SetOffset);
    add(0xE18, 4, &Registers::length, &DeviceFiles::SetLength);

    map.AddInteger(0xE20, 4, [this] { return static_cast<std::uint64_t>(files.TheRegisters().status); });
    map.AddInteger(0xE28, 8, [this] { return files.TheRegisters().result; });
    map.AddInteger(0xE30, 8, [this] { return files.Size(); });
    map.AddInteger(0xE38, 8, [this] { return files.MaxSize(); });
    map.AddInteger(0xE40, 4, files.BufferBytes());
    map.AddInteger(0xE44, 4, [this] { return files.Operations(); });
    map.AddInteger(0xE48, 4, [this] { return files.Modes(); });
    map.AddInteger(0xE4C, 4, [this] { return files.AvailableFiles(); });
    map.AddInteger(
        0xE60, 4,
        [this]() -> std::uint64_t {
            const bool isBusy = files.IsBusy();
            if (KeepFirmware()) map.Lock().Save(); // reading saves nothing by itself
            return isBusy ? 1 : 0;
        },
        [this](std::uint64_t value) {
            if (value > 1) RefuseValue("a command takes 1");
            if (value == 1) files.Execute();
            KeepFirmware();
        });
    map.AddMemory(
        bufferAddress, files.BufferBytes(),
        [this](std::size_t at, std::span<std::byte> out) { files.ReadBuffer(at, out); },
        [this](std::size_t at, std::span<const std::byte> in) { files.WriteBuffer(at, in); });
}

} // namespace koro::simulator
