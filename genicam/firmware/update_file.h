// UpdateFile: an update file in memory: the container, the package inside it, the files inside the package.
//
// Constant after construction. Throws FileNotFoundException, FileIOException (the file cannot be read) and
// FormatException (it is not an update file); each text begins with the error and contains the path.
#pragma once

#include "archive/archive.h"

#include <optional>

namespace GENAPI_NAMESPACE::runtime
{

// Identifies a package: equal packages have equal fingerprints.
struct Fingerprint
{
    size_t size = 0;
    uint32_t checksum = 0;

    bool operator==(const Fingerprint&) const = default;
};

class UpdateFile
{
public:
    explicit UpdateFile(const std::string& path);
    // The file's bytes, already read; the path is for messages.
    UpdateFile(const std::string& path, std::string givenBytes);
    UpdateFile(const UpdateFile&) = delete;
    UpdateFile& operator=(const UpdateFile&) = delete;

    Archive::Place Package() const { return packagePlace; }
    Archive::Place Signature() const { return signaturePlace; } // 0 and 0: none
    const Fingerprint& PackageFingerprint() const { return fingerprint; }

    std::string ControlFile() const;
    bool Has(const std::string& name) const;
    // A file of the package, of at most `maxSize` bytes.
    std::string Payload(const std::string& name, size_t maxSize) const;

private:
    void CheckNames(const Archive& checked, const char* which) const;
    Archive::Place PlaceOfStored(const Archive::Entry& entry) const;
    std::string Expand(const Archive::Entry& entry, size_t maxSize) const;

    const std::string path;
    const std::string bytes;
    std::optional<Archive> container;
    std::optional<Archive> package;
    Archive::Place packagePlace = {0, 0};
    Archive::Place signaturePlace = {0, 0};
    Fingerprint fingerprint;
};

} // namespace GENAPI_NAMESPACE::runtime
