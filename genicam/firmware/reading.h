// Reads the records of the updates in an update file.
#pragma once

#include "firmware/update_record.h"

namespace GENAPI_NAMESPACE::runtime
{

// False ends the reading.
using OnRecord = std::function<bool(UpdateRecord&&)>;

// Passes on each update as soon as it is read. The path is stored in the records. Returns the procedures that were
// read.
Procedures ReadUpdates(
    const UpdateFile& file, const std::string& path, std::string_view preferredLanguage, const OnRecord& onRecord);

} // namespace GENAPI_NAMESPACE::runtime
