#include "tools/koro/pending_file.h"

#include "tools/koro/tool_error.h"

#include <cerrno>
#include <fcntl.h>
#include <random>
#include <string>
#include <system_error>
#include <unistd.h>

namespace koro::tool
{

namespace
{

// A link stays one. A device or a pipe is nothing that a file could replace; a folder the system refuses in renaming.
std::filesystem::path PlaceOf(const std::filesystem::path& path)
{
    std::error_code failure;
    const auto status = std::filesystem::status(path, failure);
    const bool isLink = std::filesystem::is_symlink(path, failure);
    if (!std::filesystem::exists(status) || (std::filesystem::is_directory(status) && !isLink)) return path;
    if (!std::filesystem::is_regular_file(status))
        throw ToolError("Cannot write " + path.string() + ": it is there, and no regular file.");
    return isLink ? std::filesystem::canonical(path) : path;
}

// Whether the file is on the disk; a file system that cannot say so does not fail.
bool Sync(int file)
{
    return fsync(file) == 0 || errno == EINVAL || errno == ENOTSUP;
}

bool SyncFolder(const std::filesystem::path& folder)
{
    const int opened = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0) return errno == EACCES; // a folder that can be written, but not read
    const bool synced = Sync(opened);
    const int reason = errno;
    close(opened);
    errno = reason;
    return synced;
}

std::string RandomLetters()
{
    constexpr char letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device random;
    std::string text;
    for (int i = 0; i < 8; ++i)
        text += letters[random() % (sizeof letters - 1)];
    return text;
}

} // namespace

PendingFile::PendingFile(const std::filesystem::path& path) : finalPath(PlaceOf(path)), stream(nullptr)
{
    // Shorter than the name, which may have the full length that a file system takes.
    constexpr size_t mostOfName = 200;
    const std::string start = "." + finalPath.filename().string().substr(0, mostOfName) + ".";
    int file = -1;
    for (int attempt = 0; file < 0 && attempt < 100; ++attempt)
    {
        pendingPath = finalPath.parent_path() / (start + RandomLetters() + ".part");
        // Another program may be saving to the same path.
        file = open(pendingPath.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (file < 0 && errno != EEXIST) break;
    }
    if (file < 0) Fail("create", errno);
    stream = fdopen(file, "w+b");
    if (stream) return;
    const int reason = errno;
    close(file);
    unlink(pendingPath.c_str());
    Fail("create", reason);
}

PendingFile::~PendingFile()
{
    if (stream) std::fclose(stream);
    std::error_code ignored;
    if (!pendingPath.empty()) std::filesystem::remove(pendingPath, ignored);
}

void PendingFile::Write(const void* bytes, size_t size)
{
    if (std::fwrite(bytes, 1, size, stream) != size || std::fflush(stream) != 0) Fail("write", errno);
}

void PendingFile::Complete()
{
    std::error_code failure;
    if (std::filesystem::is_directory(std::filesystem::symlink_status(finalPath, failure)))
        throw ToolError("Cannot write " + finalPath.string() + ": it is a folder.", "Give the name of a file.");
    // Without this the new name could reach the disk before the new content, and a loss of power would take both.
    replaces = std::filesystem::exists(finalPath, failure);
    const bool written = std::fflush(stream) == 0 && std::ferror(stream) == 0 && (!replaces || Sync(fileno(stream)));
    const int reason = errno;
    const bool closed = std::fclose(stream) == 0;
    stream = nullptr;
    if (!written) Fail("write", reason);
    if (!closed) Fail("write", errno);
}

void PendingFile::Commit()
{
    if (stream) Complete();
    std::error_code failure;
    std::filesystem::rename(pendingPath, finalPath, failure);
    if (failure) Fail("rename", failure.value());
    pendingPath.clear();
    isCommitted = true;
    if (replaces && !SyncFolder(finalPath.parent_path())) Fail("keep", errno);
}

void PendingFile::Withdraw() noexcept
{
    std::error_code ignored;
    if (isCommitted) std::filesystem::remove(finalPath, ignored);
    isCommitted = false;
}

void PendingFile::Fail(const char* action, int reason) const
{
    throw ToolError(
        "Cannot " + std::string(action) + " " + finalPath.string() + ": " +
            std::error_code(reason, std::generic_category()).message() + ".",
        "Check that the folder exists, is writable and has room.");
}

} // namespace koro::tool
