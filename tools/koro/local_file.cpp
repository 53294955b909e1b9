#include "tools/koro/local_file.h"

#include "tools/koro/tool_error.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <system_error>

namespace koro::tool
{

std::string ReadLocalFile(const std::filesystem::path& path)
{
    constexpr std::uintmax_t maxSize = std::uintmax_t{256} << 20;
    const auto refuse = [&](const std::error_code& reason) {
        throw ToolError("Cannot read " + path.string() + ": " + reason.message() + ".");
    };

    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(path, failure);
    if (failure) refuse(failure);
    if (size > maxSize) throw ToolError(path.string() + " has " + std::to_string(size) + " bytes, which is too much.");

    std::string content(static_cast<size_t>(size), '\0');
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    if (!file) refuse({errno, std::generic_category()});
    errno = 0;
    const size_t count = std::fread(content.data(), 1, content.size(), file);
    const int reason = errno;
    std::fclose(file);
    if (count != content.size() && reason != 0) refuse({reason, std::generic_category()});
    if (count != content.size()) throw ToolError(path.string() + " became shorter while it was read.");
    return content;
}

} // namespace koro::tool
