// Update packages: files of the GenICam firmware update standard, made from a control file and what it uploads.
//
// Any thread.
#pragma once

#include <filesystem>
#include <vector>

namespace koro::tool
{

// Writes an update file with `control` as its Control.xml and the files beside it under their own names. The file shows
// up when it is whole. Throws ToolError for files that cannot be read, two of one name, and what the disk refuses.
void WriteUpdateFile(
    const std::filesystem::path& output, const std::filesystem::path& control,
    const std::vector<std::filesystem::path>& files);

} // namespace koro::tool
