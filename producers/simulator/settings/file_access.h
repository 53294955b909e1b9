// The words of file access: which files a camera has, what can be done with them, what an operation ends with.
// Numbers are those of descriptions/camera/file_access_control.xml.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace koro::simulator
{

enum class FileName : std::size_t
{
    UserFile,
    FactoryData,
    CalibrationData,
    MemoryCard,
    Firmware
};
inline constexpr std::array<std::string_view, 5> fileNames = {
    "UserFile", "FactoryData", "CalibrationData", "MemoryCard", "Firmware"};

enum class FileOperation : std::size_t
{
    Open,
    Close,
    Read,
    Write,
    Delete
};
inline constexpr std::array<std::string_view, 5> fileOperations = {"Open", "Close", "Read", "Write", "Delete"};

enum class FileMode : std::size_t
{
    Read,
    Write,
    ReadWrite
};
inline constexpr std::size_t numFileModes = 3;

enum class FileStatus : std::uint64_t
{
    Success,
    Failure,
    Overflow, // the file has no room for all of it
    FileNotAvailable,
    FileNotValid, // its content is not what it has to be
    FileNotOpen,
    FileAlreadyOpen,
    AccessDenied
};
inline constexpr std::array<std::string_view, 8> fileStatuses = {"Success",          "Failure",      "Overflow",
                                                                 "FileNotAvailable", "FileNotValid", "FileNotOpen",
                                                                 "FileAlreadyOpen",  "AccessDenied"};

// Nothing for a word that is none of them.
template <typename Number, std::size_t count>
std::optional<Number> FindWord(const std::array<std::string_view, count>& words, std::string_view word) noexcept
{
    for (std::size_t index = 0; index < count; ++index)
        if (words[index] == word) return static_cast<Number>(index);
    return std::nullopt;
}

} // namespace koro::simulator
