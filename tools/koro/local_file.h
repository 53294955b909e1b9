// Files of the computer, read as a whole. Any thread.
#pragma once

#include <filesystem>
#include <string>

namespace koro::tool
{

// Throws ToolError with the system's reason, and for a file of more than 256 MiB.
std::string ReadLocalFile(const std::filesystem::path& path);

} // namespace koro::tool
