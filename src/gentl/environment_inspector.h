// EnvironmentInspector: the producers in the directories of GENICAM_GENTL64_PATH.
//
// There is one object per process. It is never destroyed, and closing the library does not change it. Thread-safe; a
// producer that calls it while being tested gets the standard deadlock error.
#pragma once

#include "base/checked_mutex.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace koro::internal
{

class EnvironmentInspector
{
public:
    // Returns whether the producer at a path can be used; any exception means that it cannot.
    using UsabilityTest = std::function<bool(const std::string& ctiPath)>;

    static EnvironmentInspector& Shared();

    // Reads the folders of the variable and updates the list: entries that still exist stay first, in their order; new
    // ones follow, sorted. Only new ones are tested, one after the other, while the lock is held. Throws
    // NotFoundException when the variable is not set.
    void UpdateCTIPaths(const UsabilityTest& isUsable);

    // A copy of the list, which is empty before the first update.
    std::vector<std::string> CTIPaths() const;

private:
    mutable CheckedMutex mutex;
    std::vector<std::string> ctiPaths;
};

// The non-empty pieces between the separators ':' and ';'.
std::vector<std::string> SplitProducerFolders(std::string_view variable);

// Several slashes in a row become one, except exactly two before a name.
std::string StoredPathForm(std::string_view path);

// The canonical paths of the plain files directly in `folder` whose names end in ".cti", in no defined order. None for
// a folder that does not exist, is unreadable or has a path of 258 characters or more. Throws the file system's error
// for an entry without canonical form.
std::vector<std::string> ListProducerFiles(const std::string& folder);

} // namespace koro::internal
