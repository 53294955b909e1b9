// Update packages: files of the GenICam firmware update standard, made from a control file and what it uploads.
//
// Any thread.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace koro::tool
{

// The bytes of an update file with `control` as its Control.xml and the files beside it under their own names. Throws
// ToolError for files that cannot be read, and for two of one name.
std::vector<uint8_t> PackUpdateFile(
    const std::filesystem::path& control, const std::vector<std::filesystem::path>& files);

// Throws ToolError when a procedure of the control file, which the library has accepted, uploads a file that is neither
// this control file nor among the files.
void RequireUploads(const std::filesystem::path& control, const std::vector<std::filesystem::path>& files);

} // namespace koro::tool
