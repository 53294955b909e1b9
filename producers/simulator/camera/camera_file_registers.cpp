// The registers of a camera's files, at the places that descriptions/camera/file_access_control.xml gives them.
//
// The command stands alone, so that no write over several registers can begin with it and fail behind it.
#include "producers/simulator/camera/camera_features.h"

#include <camera_register_names.h>
#include <utility>

namespace koro::simulator
{

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
    const auto add = [this](RegisterPlace place, auto get, void (DeviceFiles::*set)(std::uint64_t)) {
        map.AddInteger(
            place, [this, get] { return static_cast<std::uint64_t>(files.TheRegisters().*get); },
            [this, set](std::uint64_t value) { (files.*set)(value); });
    };
    using Registers = DeviceFiles::Registers;
    add(registers::FileSelectorReg, &Registers::file, &DeviceFiles::Select);
    add(registers::FileOperationSelectorReg, &Registers::operation, &DeviceFiles::SelectOperation);
    add(registers::FileOpenModeReg, &Registers::mode, &DeviceFiles::SelectMode);
    add(registers::FileAccessOffsetReg, &Registers::offset, &DeviceFiles::SetOffset);
    add(registers::FileAccessLengthReg, &Registers::length, &DeviceFiles::SetLength);

    map.AddInteger(
        registers::FileOperationStatusReg, [this] { return static_cast<std::uint64_t>(files.TheRegisters().status); });
    map.AddInteger(registers::FileOperationResult, [this] { return files.TheRegisters().result; });
    map.AddInteger(registers::FileSizeReg, [this] { return files.Size(); });
    map.AddInteger(registers::FileSizeMaximum, [this] { return files.MaxSize(); });
    map.AddInteger(registers::FileAccessBufferLength, files.BufferBytes());
    map.AddInteger(registers::FileOffersOpen, [this] { return files.Operations(); });
    map.AddInteger(registers::FileOpensForRead, [this] { return files.Modes(); });
    map.AddInteger(registers::HasUserFile, [this] { return files.AvailableFiles(); });
    map.AddInteger(
        registers::FileOperationExecuteReg,
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
        registers::FileAccessBuffer.address, files.BufferBytes(),
        [this](std::size_t at, std::span<std::byte> out) { files.ReadBuffer(at, out); },
        [this](std::size_t at, std::span<const std::byte> in) { files.WriteBuffer(at, in); });
}

} // namespace koro::simulator
