// The files of a package that an update procedure uploads.
#pragma once

#include "firmware/bounds.h"
#include "firmware/control_file.h"
#include "firmware/update_file.h"

namespace GENAPI_NAMESPACE::runtime
{

using Payloads = std::unordered_map<std::string, std::string>; // bytes by the name in the package

// Each file once. FileNotFoundException: one is not there; FormatException: one cannot be read, or they have more than
// `maxSize` bytes together.
Payloads ReadPayloads(const UpdateFile& file, const std::vector<Step>& steps, size_t maxSize = maxUploadSize);
// The same for all procedures together, however many of them name a file: a small update file has no long verification.
void VerifyPayloads(const UpdateFile& file, const Procedures& procedures, size_t maxSize = maxUploadSize);

} // namespace GENAPI_NAMESPACE::runtime
