// File prefix: the beginning of the names of a camera's files. Pure functions. Any thread.
#pragma once

#include "tools/koro/camera_selection.h"

#include <string>
#include <vector>

namespace koro::tool
{

// The serial number, or the id where there is none or another camera of `listed` shares it, so that two cameras do not
// write the same files. Always the same for the same camera in the same list.
std::string FilePrefix(const CameraChoice& camera, const std::vector<CameraChoice>& listed);

// A text that is safe as the beginning of a file name: letters, digits, ".", "_" and "-", at most 64, not empty.
std::string FileNamePrefix(const std::string& text);

} // namespace koro::tool
