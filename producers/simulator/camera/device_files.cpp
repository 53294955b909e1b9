#include "producers/simulator/camera/device_files.h"

#include "producers/kit/failure.h"
#include "producers/kit/register_map.h"
#include "producers/simulator/camera/camera_memory.h"
#include "producers/simulator/camera/firmware_image.h"
#include "producers/simulator/kit.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace koro::simulator
{
namespace
{

constexpr std::size_t calibrationBytes = 300'001;
constexpr std::uint64_t firmwareBytes = std::uint64_t{1} << 26;

std::string FactoryData(const CameraSettings& settings)
{
    return "vendor=" + settings.vendor + "\nmodel=" + settings.model + "\nserial=" + settings.serial + "\n";
}

std::vector<std::byte> BytesOf(const std::string& text)
{
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

std::vector<std::byte> CalibrationData()
{
    std::vector<std::byte> bytes(calibrationBytes);
    for (std::size_t index = 0; index < bytes.size(); ++index)
        bytes[index] = static_cast<std::byte>((index * 7 + index / 256) & 0xFF);
    return bytes;
}

bool Allows(FileMode mode, FileOperation operation) noexcept
{
    return mode == FileMode::ReadWrite || (mode == FileMode::Read) == (operation == FileOperation::Read);
}

template <typename Number>
std::uint64_t BitOf(Number number) noexcept
{
    return std::uint64_t{1} << static_cast<std::size_t>(number);
}

// A number that is none of the bits.
void RequireOffered(std::uint64_t offered, std::uint64_t number, std::size_t count, const char* why)
{
    if (number >= count || (offered & BitOf(number)) == 0) RefuseValue(why);
}

} // namespace

DeviceFiles::DeviceFiles(const CameraSettings& settings, const std::vector<FileFault>& fileFaults)
    : bufferBytes(settings.fileBufferBytes), factoryData(FactoryData(settings))
{
    registers.length = bufferBytes;
    Of(FileName::UserFile).capacity = settings.userFileBytes;
    Of(FileName::FactoryData).capacity = factoryData.size();
    Of(FileName::CalibrationData).capacity = calibrationBytes;
    for (const FileName name : {FileName::FactoryData, FileName::CalibrationData})
    {
        Of(name).canWrite = false;
        Of(name).canDelete = false;
    }
    Of(FileName::MemoryCard).isAvailable = settings.memoryCard;
    Of(FileName::MemoryCard).capacity = settings.userFileBytes;
    Of(FileName::Firmware).canRead = false;
    Of(FileName::Firmware).canDelete = false;
    Of(FileName::Firmware).capacity = firmwareBytes;
    if (!settings.memory.empty())
        for (const FileName name : {FileName::UserFile, FileName::MemoryCard})
            Of(name).kept = KeptFile(
                settings.memory /
                (MemoryNameOf(settings.serial) + "." + std::string(fileNames[static_cast<std::size_t>(name)])));
    for (const FileFault& fault : fileFaults)
        faults.push_back({fault});
}

std::uint64_t DeviceFiles::Size() const noexcept
{
    const File& file = Selected();
    if (!file.canWrite) return file.capacity;
    if (file.kept.Keeps() && !file.openFor) return std::min(file.kept.Size(), file.capacity);
    return file.content.size();
}

std::uint64_t DeviceFiles::Operations() const noexcept
{
    const File& file = Selected();
    std::uint64_t bits = BitOf(FileOperation::Open) | BitOf(FileOperation::Close);
    if (file.canRead) bits |= BitOf(FileOperation::Read);
    if (file.canWrite) bits |= BitOf(FileOperation::Write);
    if (file.canDelete) bits |= BitOf(FileOperation::Delete);
    return bits;
}

std::uint64_t DeviceFiles::Modes() const noexcept
{
    const File& file = Selected();
    std::uint64_t bits = 0;
    if (file.canRead) bits |= BitOf(FileMode::Read);
    if (file.canWrite) bits |= BitOf(FileMode::Write);
    if (file.canRead && file.canWrite) bits |= BitOf(FileMode::ReadWrite);
    return bits;
}

std::uint64_t DeviceFiles::AvailableFiles() const noexcept
{
    std::uint64_t bits = 0;
    for (std::size_t index = 0; index < files.size(); ++index)
        if (files[index].isAvailable) bits |= BitOf(index);
    return bits;
}

void DeviceFiles::RequireIdle() const
{
    if (pending) throw Failure(GC_ERR_BUSY, "a file operation goes on");
}

void DeviceFiles::Select(std::uint64_t file)
{
    RequireIdle();
    RequireOffered(AvailableFiles(), file, files.size(), "there is no such file");
    if (static_cast<FileName>(file) == registers.file) return;
    registers.file = static_cast<FileName>(file);
    registers.operation = FileOperation::Open;
    registers.mode = Selected().canRead ? FileMode::Read : FileMode::Write;
    registers.offset = 0;
}

void DeviceFiles::SelectOperation(std::uint64_t operation)
{
    RequireIdle();
    RequireOffered(Operations(), operation, fileOperations.size(), "the file does not offer the operation");
    registers.operation = static_cast<FileOperation>(operation);
}

void DeviceFiles::SelectMode(std::uint64_t mode)
{
    RequireIdle();
    RequireOffered(Modes(), mode, numFileModes, "the file cannot be opened so");
    registers.mode = static_cast<FileMode>(mode);
}

void DeviceFiles::SetOffset(std::uint64_t offset)
{
    RequireIdle();
    if (offset > MaxSize()) RefuseValue("the offset lies behind the end of the file");
    registers.offset = offset;
}

void DeviceFiles::SetLength(std::uint64_t length)
{
    RequireIdle();
    if (length > bufferBytes) RefuseValue("the buffer is shorter");
    registers.length = length;
}

void DeviceFiles::ReadBuffer(std::size_t at, std::span<std::byte> out) const
{
    if (buffer.empty())
        std::memset(out.data(), 0, out.size());
    else
        std::memcpy(out.data(), buffer.data() + at, out.size());
}

void DeviceFiles::WriteBuffer(std::size_t at, std::span<const std::byte> in)
{
    RequireIdle();
    std::memcpy(Buffer().data() + at, in.data(), in.size());
}

std::span<std::byte> DeviceFiles::Buffer()
{
    if (buffer.empty()) buffer.resize(bufferBytes);
    return buffer;
}

// The first fault that concerns this execution; all count it.
const FileFault* DeviceFiles::CountExecution()
{
    const FileFault* found = nullptr;
    for (CountedFault& counted : faults)
    {
        const FileFault& fault = counted.fault;
        const bool concerns = (!fault.file || *fault.file == registers.file) &&
                              (!fault.operation || *fault.operation == registers.operation);
        if (concerns && fault.executions.Contains(++counted.executions) && found == nullptr) found = &fault;
    }
    return found;
}

void DeviceFiles::Execute()
{
    RequireIdle();
    Pending started;
    if (const FileFault* fault = CountExecution())
    {
        if (fault->error != GC_ERR_SUCCESS) throw Failure(fault->error, "a failure that the settings ask for");
        started = {fault->busyPolls, fault->status, fault->movedBytes};
    }
    pending = started;
    if (started.polls == 0) Perform();
}

bool DeviceFiles::IsBusy()
{
    if (!pending) return false;
    if (pending->polls > 0)
    {
        --pending->polls;
        return true;
    }
    Perform();
    return false;
}

void DeviceFiles::Perform()
{
    registers.result = 0;
    registers.status = FileStatus::Failure; // of one that runs out of memory
    const bool moves = registers.operation == FileOperation::Read || registers.operation == FileOperation::Write;
    const FileStatus wanted = pending->status;
    // An operation that has to fail moves the bytes that the settings state, and does nothing else.
    FileStatus reached = wanted;
    try
    {
        if (wanted == FileStatus::Success || (moves && pending->mostBytes != UINT64_MAX)) reached = PerformSelected();
    }
    catch (...)
    {
        pending.reset();
        throw;
    }
    pending.reset();
    registers.status = wanted == FileStatus::Success ? reached : wanted;
}

FileStatus DeviceFiles::PerformSelected()
{
    switch (registers.operation)
    {
    case FileOperation::Open:
        return Open();
    case FileOperation::Close:
        return Close();
    case FileOperation::Read:
        return Read();
    case FileOperation::Write:
        return Write();
    case FileOperation::Delete:
        return Delete();
    }
    return FileStatus::Failure;
}

FileStatus DeviceFiles::Open()
{
    File& file = Selected();
    if (file.openFor) return FileStatus::FileAlreadyOpen;
    if (!Load(file)) return FileStatus::FileNotAvailable;
    file.openFor = registers.mode;
    return FileStatus::Success;
}

bool DeviceFiles::Load(File& file) const
{
    if (registers.file == FileName::FactoryData) file.content = BytesOf(factoryData);
    if (registers.file == FileName::CalibrationData) file.content = CalibrationData();
    if (!file.kept.Keeps()) return true;
    auto content = file.kept.Load(file.capacity);
    if (!content) return false;
    file.content = std::move(*content);
    file.isChanged = false;
    return true;
}

FileStatus DeviceFiles::Close()
{
    File& file = Selected();
    if (!file.openFor) return FileStatus::FileNotOpen;
    if (registers.file == FileName::Firmware) return InstallFirmware();
    if (!Save(file)) return FileStatus::Failure;
    file.openFor.reset();
    return FileStatus::Success;
}

bool DeviceFiles::Save(File& file)
{
    if (file.canWrite && !file.kept.Keeps()) return true;
    if (file.isChanged && !file.kept.Save(file.content)) return false;
    file.isChanged = false;
    file.content = {};
    return true;
}

// Closed in any case: a refused image has to be sent again.
FileStatus DeviceFiles::InstallFirmware()
{
    File& file = Selected();
    auto version = FirmwareVersionIn(file.content);
    file.content = {};
    file.openFor.reset();
    if (!version) return FileStatus::FileNotValid;
    newFirmware = std::move(version);
    return FileStatus::Success;
}

FileStatus DeviceFiles::Read()
{
    const File& file = Selected();
    if (!file.openFor) return FileStatus::FileNotOpen;
    if (!Allows(*file.openFor, FileOperation::Read)) return FileStatus::AccessDenied;
    const std::uint64_t rest = file.content.size() - std::min<std::uint64_t>(registers.offset, file.content.size());
    registers.result = std::min({registers.length, rest, pending->mostBytes});
    if (registers.result > 0) std::memcpy(Buffer().data(), file.content.data() + registers.offset, registers.result);
    return FileStatus::Success;
}

// A write behind the end leaves zeros before it.
FileStatus DeviceFiles::Write()
{
    File& file = Selected();
    if (!file.openFor) return FileStatus::FileNotOpen;
    if (!Allows(*file.openFor, FileOperation::Write)) return FileStatus::AccessDenied;
    const std::uint64_t room = file.capacity - registers.offset;
    const std::uint64_t moved = std::min({registers.length, room, pending->mostBytes});
    if (moved > 0)
    {
        const std::uint64_t end = registers.offset + moved;
        if (end > file.content.size()) file.content.resize(end);
        file.isChanged = true;
        std::memcpy(file.content.data() + registers.offset, Buffer().data(), moved);
    }
    registers.result = moved;
    return registers.length > room ? FileStatus::Overflow : FileStatus::Success;
}

FileStatus DeviceFiles::Delete()
{
    File& file = Selected();
    if (file.openFor) return FileStatus::FileAlreadyOpen;
    file.content = {};
    return !file.kept.Keeps() || file.kept.Save({}) ? FileStatus::Success : FileStatus::Failure;
}

void DeviceFiles::CloseAll()
{
    pending.reset();
    for (File& file : files)
    {
        if (file.openFor) Save(file); // nobody is there to hear that it failed
        file.openFor.reset();
    }
    Of(FileName::Firmware).content = {};
}

void DeviceFiles::Restart()
{
    CloseAll();
    registers = {};
    registers.length = bufferBytes;
    buffer = {};
}

} // namespace koro::simulator
