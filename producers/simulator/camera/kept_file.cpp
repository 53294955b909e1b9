#include "producers/simulator/camera/kept_file.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <system_error>
#include <unistd.h>

namespace koro::simulator
{
namespace
{

bool WriteAll(int file, std::span<const std::byte> bytes) noexcept
{
    while (!bytes.empty())
    {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return true;
}

// Whether it is on the disk; a file system that cannot say so does not fail.
bool Sync(int file) noexcept
{
    return fsync(file) == 0 || errno == EINVAL || errno == ENOTSUP;
}

bool SyncFolder(const std::filesystem::path& folder) noexcept
{
    const int opened = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0) return errno == EACCES; // a folder that can be written, but not read
    const bool isSynced = Sync(opened);
    close(opened);
    return isSynced;
}

} // namespace

std::uint64_t KeptFile::Size() const noexcept
{
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    return error ? 0 : size;
}

std::optional<std::vector<std::byte>> KeptFile::Load(std::uint64_t maxBytes) const
{
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found) return std::vector<std::byte>();
    if (status.type() != std::filesystem::file_type::regular) return std::nullopt; // a FIFO would hang
    const auto size = std::filesystem::file_size(path, error);
    if (error || size > maxBytes) return std::nullopt;
    std::vector<std::byte> content(size);
    std::ifstream in(path, std::ios::binary);
    if (!in.read(reinterpret_cast<char*>(content.data()), static_cast<std::streamsize>(size))) return std::nullopt;
    return content;
}

// Under a name of its own until it is whole. What replaces an older content is on the disk before it gets the name, and
// the name afterwards: a loss of power would take both otherwise.
bool KeptFile::Save(std::span<const std::byte> content) const
{
    std::string temporary = path.string() + ".XXXXXX";
    const int made = mkostemp(temporary.data(), O_CLOEXEC);
    if (made < 0) return false;
    std::error_code ignored;
    const bool replaces = std::filesystem::exists(path, ignored);
    const bool isWritten = WriteAll(made, content) && (!replaces || Sync(made));
    const bool isClosed = close(made) == 0;
    if (isWritten && isClosed && rename(temporary.c_str(), path.c_str()) == 0)
        return !replaces || SyncFolder(path.parent_path());
    unlink(temporary.c_str());
    return false;
}

} // namespace koro::simulator
