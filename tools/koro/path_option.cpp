#include "tools/koro/path_option.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>
#include <system_error>

namespace koro::tool
{

namespace
{

std::string Absolute(const std::string& path)
{
    if (path.empty() || path == "-") return path;
    std::error_code failure;
    const std::filesystem::path absolute = std::filesystem::absolute(path, failure);
    return failure ? path : absolute.string();
}

} // namespace

CLI::Option* TakesPath(CLI::Option* option)
{
    return option->transform(Absolute, "", "");
}

} // namespace koro::tool
