#include "producers/simulator/camera/camera_memory.h"

#include "producers/kit/failure.h"
#include "producers/simulator/kit.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace koro::simulator
{
namespace
{

constexpr char magic[8] = {'K', 'O', 'R', 'O', 'C', 'A', 'M', '\n'};
constexpr std::uint32_t layoutVersion = 2;

struct Head
{
    char magic[8];
    std::uint32_t version;
    std::uint32_t stateBytes;
    std::uint64_t identity;
};

struct SlotHead
{
    std::uint64_t number; // counts the changes
    std::uint64_t check;  // of number and state
};

// Locked bytes, behind the content of the file.
constexpr std::size_t changeByte = 1U << 20;
constexpr std::size_t controlByte = changeByte + 1; // exclusively: by who may write
constexpr std::size_t readingByte = changeByte + 2; // shared: by readers; exclusively: by who wants no readers

constexpr auto longestWait = std::chrono::seconds(5);
constexpr auto shortestPause = std::chrono::microseconds(20);
constexpr auto longestPause = std::chrono::milliseconds(2);

constexpr std::uint64_t checkStart = 0xCBF29CE484222325;

// FNV-1a.
std::uint64_t Check(std::span<const std::byte> bytes, std::uint64_t check = checkStart) noexcept
{
    for (const std::byte byte : bytes)
        check = (check ^ static_cast<std::uint64_t>(byte)) * 0x100000001B3;
    return check;
}

std::uint64_t CheckOf(std::uint64_t number, std::span<const std::byte> state) noexcept
{
    return Check(state, Check(std::as_bytes(std::span(&number, 1))));
}

std::string ReasonOf(int number)
{
    return std::generic_category().message(number);
}

flock LockOf(std::size_t byte, short type) noexcept
{
    flock range{};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = static_cast<off_t>(byte);
    range.l_len = 1;
    return range;
}

bool WriteAll(int file, std::span<const std::byte> bytes, std::size_t place) noexcept
{
    while (!bytes.empty())
    {
        const ssize_t written = pwrite(file, bytes.data(), bytes.size(), static_cast<off_t>(place));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(written));
        place += static_cast<std::size_t>(written);
    }
    return true;
}

std::size_t ReadAll(int file, std::span<std::byte> bytes) noexcept
{
    std::size_t done = 0;
    while (done < bytes.size())
    {
        const ssize_t got = pread(file, bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

} // namespace

std::string MemoryNameOf(const std::string& serial)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string name;
    for (const char letter : serial)
    {
        const auto code = static_cast<unsigned char>(letter);
        const bool isPlain = (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z') ||
                             (letter >= '0' && letter <= '9') || letter == '-' || letter == '_';
        if (isPlain)
            name += letter;
        else
            name = name + '%' + digits[code >> 4] + digits[code & 15];
    }
    return name;
}

CameraMemory::CameraMemory(
    const std::filesystem::path& folder, const std::string& serial, std::string_view identity,
    std::span<const std::byte> initial)
    : path(folder / (MemoryNameOf(serial) + ".memory")), identityNumber(Check(std::as_bytes(std::span(identity)))),
      stateBytes(initial.size())
{
    static_assert(sizeof(SlotHead) + maxStateBytes == slotBytes);
    if (stateBytes > maxStateBytes) throw std::logic_error("the state of a camera outgrew its slot");
    std::error_code error;
    std::filesystem::create_directory(folder, error);
    if (error) throw Failure(GC_ERR_ERROR, "memory '" + folder.string() + "': " + error.message());
    Open(initial);
    try
    {
        CheckKind();
        ReadImage(GC_ERR_ERROR);
    }
    catch (...)
    {
        close(file);
        throw;
    }
}

CameraMemory::~CameraMemory()
{
    close(file);
}

void CameraMemory::Refuse(GC_ERROR code, const std::string& why) const
{
    throw Failure(code, "memory '" + path.string() + "': " + why);
}

void CameraMemory::Open(std::span<const std::byte> initial)
{
    constexpr int maxAttempts = 10; // somebody may make and remove it at the same time
    for (int attempt = 0; attempt < maxAttempts; ++attempt)
    {
        // A FIFO must not hang the caller.
        file = open(path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
        if (file >= 0) return;
        if (errno != ENOENT) Refuse(GC_ERR_ERROR, "cannot be opened: " + ReasonOf(errno));
        Create(MakeImage(initial));
    }
    Refuse(GC_ERR_ERROR, "cannot be made");
}

CameraMemory::Image CameraMemory::MakeImage(std::span<const std::byte> initial) const
{
    Image made{};
    Head head{};
    std::copy(std::begin(magic), std::end(magic), head.magic);
    head.version = layoutVersion;
    head.stateBytes = static_cast<std::uint32_t>(stateBytes);
    head.identity = identityNumber;
    std::memcpy(made.data(), &head, sizeof head);
    WriteSlot(0, made, 1, initial);
    return made;
}

// Under a name of its own until it is whole. Of several processes that make it one wins, the others take what it made.
void CameraMemory::Create(const Image& whole) const
{
    std::string temporary = path.string() + ".XXXXXX";
    const int made = mkostemp(temporary.data(), O_CLOEXEC);
    if (made < 0) Refuse(GC_ERR_ERROR, "cannot be made: " + ReasonOf(errno));
    const bool isWritten = WriteAll(made, whole, 0);
    int reason = isWritten ? 0 : errno;
    close(made);
    if (isWritten && link(temporary.c_str(), path.c_str()) != 0 && errno != EEXIST) reason = errno;
    unlink(temporary.c_str());
    if (reason != 0) Refuse(GC_ERR_ERROR, "cannot be made: " + ReasonOf(reason));
}

void CameraMemory::CheckKind() const
{
    struct stat status = {};
    if (fstat(file, &status) != 0) Refuse(GC_ERR_ERROR, "cannot be read: " + ReasonOf(errno));
    if (!S_ISREG(status.st_mode)) Refuse(GC_ERR_ERROR, "is no regular file");
    if (status.st_size != static_cast<off_t>(fileBytes))
        Refuse(
            GC_ERR_ERROR, "has " + std::to_string(status.st_size) + " bytes instead of " + std::to_string(fileBytes) +
                              "; remove it to begin anew");
}

void CameraMemory::ReadImage(GC_ERROR code)
{
    if (ReadAll(file, image) != image.size()) Refuse(code, "cannot be read whole");
    Head head{};
    std::memcpy(&head, image.data(), sizeof head);
    if (!std::equal(std::begin(magic), std::end(magic), head.magic)) Refuse(code, "is no memory of a simulated camera");
    if (head.version != layoutVersion || head.stateBytes != stateBytes)
        Refuse(code, "is of another version of the simulator; remove it to begin anew");
    if (head.identity != identityNumber) Refuse(code, "is of a camera with other settings; remove it to begin anew");
}

void CameraMemory::WriteSlot(
    std::size_t slot, std::span<std::byte> out, std::uint64_t number, std::span<const std::byte> state) const
{
    const SlotHead head{number, CheckOf(number, state)};
    std::byte* const place = out.data() + (slot + 1) * slotBytes;
    std::memcpy(place, &head, sizeof head);
    std::memcpy(place + sizeof head, state.data(), state.size());
}

std::uint64_t CameraMemory::NumberIn(std::size_t slot) const
{
    SlotHead head{};
    std::memcpy(&head, image.data() + (slot + 1) * slotBytes, sizeof head);
    return head.number;
}

bool CameraMemory::IsWhole(std::size_t slot) const
{
    const std::byte* const place = image.data() + (slot + 1) * slotBytes;
    SlotHead head{};
    std::memcpy(&head, place, sizeof head);
    return head.number > 0 && head.number < UINT64_MAX &&
           head.check == CheckOf(head.number, {place + sizeof head, stateBytes});
}

void CameraMemory::Lock()
{
    const auto end = std::chrono::steady_clock::now() + longestWait;
    std::chrono::microseconds pause = shortestPause;
    while (!TryLock(changeByte, F_WRLCK))
    {
        if (std::chrono::steady_clock::now() > end) Refuse(GC_ERR_TIMEOUT, "another process does not give it back");
        std::this_thread::sleep_for(pause);
        pause = std::min<std::chrono::microseconds>(2 * pause, longestPause);
    }
}

void CameraMemory::Unlock() noexcept
{
    flock range = LockOf(changeByte, F_UNLCK);
    fcntl(file, F_OFD_SETLK, &range);
}

std::span<const std::byte> CameraMemory::Fetch()
{
    ReadImage(GC_ERR_IO);
    const auto isCurrent = [this](std::size_t slot) {
        return currentNumber > 0 && slot == currentSlot && NumberIn(slot) == currentNumber;
    };
    std::size_t slot = NumberIn(0) > NumberIn(1) ? 0 : 1;
    if (isCurrent(slot)) return {};
    if (!IsWhole(slot)) slot = 1 - slot; // a change that was cut off
    if (isCurrent(slot)) return {};
    if (!IsWhole(slot)) RefuseState();
    currentSlot = slot;
    currentNumber = NumberIn(slot);
    return {image.data() + (slot + 1) * slotBytes + sizeof(SlotHead), stateBytes};
}

void CameraMemory::RefuseState() const
{
    Refuse(GC_ERR_IO, "is damaged; remove it to begin anew");
}

void CameraMemory::Save(std::span<const std::byte> state)
{
    const std::size_t slot = 1 - currentSlot;
    WriteSlot(slot, image, currentNumber + 1, state);
    const std::size_t place = (slot + 1) * slotBytes;
    if (!WriteAll(file, std::span(image).subspan(place, sizeof(SlotHead) + stateBytes), place))
    {
        const int reason = errno;
        currentNumber = 0;
        Refuse(GC_ERR_IO, "cannot be written: " + ReasonOf(reason));
    }
    currentSlot = slot;
    ++currentNumber;
}

bool CameraMemory::TryLock(std::size_t byte, short type) const
{
    flock range = LockOf(byte, type);
    if (fcntl(file, F_OFD_SETLK, &range) == 0) return true;
    if (errno != EAGAIN && errno != EACCES && errno != EINTR) Refuse(GC_ERR_IO, "cannot be locked: " + ReasonOf(errno));
    return false;
}

bool CameraMemory::IsLockedElsewhere(std::size_t byte) const noexcept
{
    flock range = LockOf(byte, F_RDLCK);
    return fcntl(file, F_OFD_GETLK, &range) == 0 && range.l_type != F_UNLCK;
}

void CameraMemory::Claim(DEVICE_ACCESS_FLAGS access)
{
    if (access == DEVICE_ACCESS_READONLY)
    {
        if (!TryLock(readingByte, F_RDLCK))
            throw Failure(GC_ERR_ACCESS_DENIED, "another process has the camera for itself");
        return;
    }
    if (!TryLock(controlByte, F_WRLCK)) throw Failure(GC_ERR_ACCESS_DENIED, "another process controls the camera");
    if (access == DEVICE_ACCESS_EXCLUSIVE && !TryLock(readingByte, F_WRLCK))
    {
        Release();
        throw Failure(GC_ERR_ACCESS_DENIED, "another process reads the camera");
    }
    hasControl = true;
}

void CameraMemory::Release() noexcept
{
    hasControl = false;
    for (const std::size_t byte : {controlByte, readingByte})
    {
        flock range = LockOf(byte, F_UNLCK);
        fcntl(file, F_OFD_SETLK, &range);
    }
}

bool CameraMemory::IsControlled() const noexcept
{
    return hasControl || IsLockedElsewhere(controlByte);
}

DEVICE_ACCESS_STATUS CameraMemory::Status() const noexcept
{
    if (IsLockedElsewhere(readingByte)) return DEVICE_ACCESS_STATUS_BUSY;
    return IsLockedElsewhere(controlByte) ? DEVICE_ACCESS_STATUS_READONLY : DEVICE_ACCESS_STATUS_READWRITE;
}

} // namespace koro::simulator
