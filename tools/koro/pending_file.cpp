#include "tools/koro/pending_file.h"

#include "tools/koro/tool_error.h"

#include <cerrno>
#include <system_error>

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

} // namespace

PendingFile::PendingFile(const std::filesystem::path& path)
    : finalPath(PlaceOf(path)), pendingPath(finalPath.parent_path() / ("." + finalPath.filename().string() + ".part")),
      stream(std::fopen(pendingPath.c_str(), "w+b"))
{
    if (!stream) Fail("create", errno);
}

PendingFile::~PendingFile()
{
    if (stream) std::fclose(stream);
    std::error_code ignored;
    if (!pendingPath.empty()) std::filesystem::remove(pendingPath, ignored);
}

void PendingFile::Commit()
{
    const bool written = std::fflush(stream) == 0 && std::ferror(stream) == 0;
    const int reason = errno;
    const bool closed = std::fclose(stream) == 0;
    stream = nullptr;
    if (!written) Fail("write", reason);
    if (!closed) Fail("write", errno);

    std::error_code failure;
    std::filesystem::rename(pendingPath, finalPath, failure);
    if (failure) Fail("rename", failure.value());
    pendingPath.clear();
}

void PendingFile::Fail(const char* action, int reason) const
{
    throw ToolError(
        "Cannot " + std::string(action) + " " + finalPath.string() + ": " +
            std::error_code(reason, std::generic_category()).message() + ".",
        "Check that the folder exists, is writable and has room.");
}

} // namespace koro::tool
