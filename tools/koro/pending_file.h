// PendingFile: a file that shows up under its name only when it is whole.
//
// Owned by one writer; move-less. What was not committed is removed by the destructor. Not synchronised.
#pragma once

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <string>

namespace koro::tool
{

class PendingFile
{
public:
    // Opens a hidden neighbour of `path`, or of what it links to, for writing. Its name is its own: another program may
    // save to the same path. Throws ToolError with the system's
    // reason, and when a device or a pipe is there.
    explicit PendingFile(const std::filesystem::path& path);
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;
    ~PendingFile();

    std::FILE* Stream() const noexcept { return stream; }
    // The neighbour, for what reads or writes its files itself.
    const std::filesystem::path& Path() const noexcept { return pendingPath; }
    // The path that it will have, for messages.
    const std::filesystem::path& FinalPath() const noexcept { return finalPath; }
    // Puts the bytes at the end of the file, and leaves none in the stream. Throws ToolError with the system's reason.
    void Write(const void* bytes, size_t size);
    // Writes out and closes, so that only the name is missing; the stream is gone. Throws ToolError with the system's
    // reason, and when a folder has the name.
    void Complete();
    // Completes what is not, and renames; an older file of that name is replaced. What replaces one is on the disk
    // afterwards, file and folder. Throws ToolError with the system's reason.
    void Commit();
    // Removes the file that was committed, if it was, under its name.
    void Withdraw() noexcept;

private:
    [[noreturn]] void Fail(const char* action, int reason) const;

    std::filesystem::path finalPath;
    std::filesystem::path pendingPath;
    std::FILE* stream;
    bool replaces = false; // an older file
    bool isCommitted = false;
};

} // namespace koro::tool
