// DeviceFiles: the files of a camera, and the operations on them that its registers start.
//
// An operation happens when the command says that it is done: at once, or after as many questions as the settings ask
// for. Its status reports refusals; only a busy device and what the settings ask for are failed accesses.
//
// With a memory, what the user's files hold is in files beside it: read when one is opened, saved when it is closed.
//
// Owned by the camera's features. Guarded by the lock of the registers.
#pragma once

#include "producers/simulator/camera/kept_file.h"
#include "producers/simulator/settings/fault_plan.h"
#include "producers/simulator/settings/file_access.h"
#include "producers/simulator/settings/settings.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace koro::simulator
{

class DeviceFiles
{
public:
    // The faults are those that concern this camera.
    DeviceFiles(const CameraSettings& settings, const std::vector<FileFault>& fileFaults);

    // What the registers say; a plain value.
    struct Registers
    {
        FileName file = FileName::UserFile;
        FileOperation operation = FileOperation::Open;
        FileMode mode = FileMode::Read;
        std::uint64_t offset = 0; // bytes
        std::uint64_t length = 0; // bytes
        FileStatus status = FileStatus::Success;
        std::uint64_t result = 0; // bytes that the last operation moved
    };
    const Registers& TheRegisters() const noexcept { return registers; }
    void SetRegisters(const Registers& before) noexcept { registers = before; }

    // These refuse what is out of range or not offered by the file, and everything while the device is busy
    // (GC_ERR_BUSY). Another file begins with Open in its first mode at offset 0.
    void Select(std::uint64_t file);
    void SelectOperation(std::uint64_t operation);
    void SelectMode(std::uint64_t mode);
    void SetOffset(std::uint64_t offset);
    void SetLength(std::uint64_t length);

    void Execute();
    // Whether the operation goes on; each question brings it nearer to its end.
    bool IsBusy();

    // Of the selected file.
    std::uint64_t Size() const noexcept;
    std::uint64_t MaxSize() const noexcept { return Selected().capacity; }
    // A bit for each number.
    std::uint64_t Operations() const noexcept;
    std::uint64_t Modes() const noexcept;
    std::uint64_t AvailableFiles() const noexcept;

    std::size_t BufferBytes() const noexcept { return bufferBytes; }
    void ReadBuffer(std::size_t at, std::span<std::byte> out) const;
    void WriteBuffer(std::size_t at, std::span<const std::byte> in);

    // The version of firmware that was taken since this was asked last.
    std::optional<std::string> TakeFirmware() noexcept { return std::exchange(newFirmware, std::nullopt); }

    // Nobody is there any more who uses them; what was written stays, but for half firmware.
    void CloseAll();
    // The device starts again.
    void Restart();

private:
    struct File
    {
        bool isAvailable = true;
        bool canRead = true;
        bool canWrite = true;
        bool canDelete = true;
        std::uint64_t capacity = 0;
        std::vector<std::byte> content; // of a kept or read-only file while it is open
        bool isChanged = false;         // since it was opened
        KeptFile kept;
        std::optional<FileMode> openFor;
    };
    struct CountedFault
    {
        FileFault fault;
        std::uint64_t executions = 0;
    };
    struct Pending
    {
        std::uint64_t polls = 0;
        FileStatus status = FileStatus::Success;
        std::uint64_t mostBytes = UINT64_MAX;
    };

    File& Of(FileName name) noexcept { return files[static_cast<std::size_t>(name)]; }
    File& Selected() noexcept { return Of(registers.file); }
    const File& Selected() const noexcept { return files[static_cast<std::size_t>(registers.file)]; }
    void RequireIdle() const;
    const FileFault* CountExecution();
    void Perform();
    FileStatus PerformSelected();
    std::span<std::byte> Buffer();
    bool Load(File& file) const;
    FileStatus Open();
    FileStatus Close();
    FileStatus Read();
    FileStatus Write();
    FileStatus Delete();
    FileStatus InstallFirmware();
    static bool Save(File& file);

    const std::size_t bufferBytes;
    const std::string factoryData;
    std::array<File, fileNames.size()> files;
    std::vector<std::byte> buffer; // empty until it is needed
    std::vector<CountedFault> faults;
    Registers registers;
    std::optional<Pending> pending;
    std::optional<std::string> newFirmware;
};

} // namespace koro::simulator
