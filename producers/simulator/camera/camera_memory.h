// CameraMemory: a file that holds the state of one camera for all processes that open it, and who has the camera.
//
// The file: a head that identifies the camera, and two slots, each a state with a number and a check sum. A change goes
// into the older slot, so one that is cut off leaves the one before it. It is read and written, not mapped: a file that
// somebody cuts short is then a failure and not a signal.
//
// Locks on bytes behind the content serialise the changes and hold who has the camera. The kernel takes them back from
// a process that ends, however it ends.
//
// Shared by the camera and its device. Lock to Unlock is one thread at a time, the rest any thread.
#pragma once

#include "producers/kit/gentl.h"
#include "producers/simulator/kit.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace koro::simulator
{

// A serial number as the beginning of a file's name, different ones as different names.
std::string MemoryNameOf(const std::string& serial);

class CameraMemory
{
public:
    static constexpr std::size_t maxStateBytes = 4080;

    // Opens the file of that serial number; where there is none it is made, with `initial`. `identity` contains
    // all settings that the state depends on. Throws Failure (GC_ERR_ERROR), also for a file that is not of this
    // camera, which is never touched.
    CameraMemory(
        const std::filesystem::path& folder, const std::string& serial, std::string_view identity,
        std::span<const std::byte> initial);
    CameraMemory(const CameraMemory&) = delete;
    CameraMemory& operator=(const CameraMemory&) = delete;
    ~CameraMemory();

    // Waits for other processes: seconds at most, then GC_ERR_TIMEOUT.
    void Lock();
    void Unlock() noexcept;

    // With the lock held. The state when it is another one than at the last Fetch or Save, else nothing. GC_ERR_IO when
    // the file is not what it was.
    std::span<const std::byte> Fetch();
    // GC_ERR_IO when it cannot be written; the next Fetch then brings the state before.
    void Save(std::span<const std::byte> state);
    [[noreturn]] void RefuseState() const;

    // GC_ERR_ACCESS_DENIED when another process has the camera in a way that excludes this one. One process reads and
    // writes, others may read meanwhile unless it wants the camera for itself.
    void Claim(DEVICE_ACCESS_FLAGS access);
    void Release() noexcept;
    // Whether any process can write to the camera at present.
    bool IsControlled() const noexcept;
    // What is left of it for this process, which has not opened it.
    DEVICE_ACCESS_STATUS Status() const noexcept;

private:
    static constexpr std::size_t slotBytes = 4096;
    static constexpr std::size_t fileBytes = 3 * slotBytes; // the head has a slot's room
    using Image = std::array<std::byte, fileBytes>;

    Image MakeImage(std::span<const std::byte> initial) const;
    void Open(std::span<const std::byte> initial);
    void Create(const Image& whole) const;
    void CheckKind() const;
    void ReadImage(GC_ERROR code);
    void WriteSlot(
        std::size_t slot, std::span<std::byte> out, std::uint64_t number, std::span<const std::byte> state) const;
    std::uint64_t NumberIn(std::size_t slot) const;
    bool IsWhole(std::size_t slot) const;
    bool TryLock(std::size_t byte, short type) const;
    bool IsLockedElsewhere(std::size_t byte) const noexcept;
    [[noreturn]] void Refuse(GC_ERROR code, const std::string& why) const;

    const std::filesystem::path path;
    const std::uint64_t identityNumber;
    const std::size_t stateBytes;
    int file = -1;
    std::atomic<bool> hasControl{false};

    // Guarded by Lock.
    Image image{};
    std::size_t currentSlot = 0;
    std::uint64_t currentNumber = 0; // 0: nothing was fetched yet
};

// A device's claim, from opening to close.
class CameraClaim
{
public:
    CameraClaim(std::shared_ptr<CameraMemory> claimed, DEVICE_ACCESS_FLAGS access) : memory(std::move(claimed))
    {
        memory->Claim(access);
    }
    CameraClaim(const CameraClaim&) = delete;
    CameraClaim& operator=(const CameraClaim&) = delete;
    ~CameraClaim() { memory->Release(); }

private:
    const std::shared_ptr<CameraMemory> memory;
};

} // namespace koro::simulator
