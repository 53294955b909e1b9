// Archive: the entries of a zip archive from a device or a file, and their bytes.
//
// The archive owns its bytes only if it was read from a file. Constant after construction: safe to read from any
// thread. Every error in an archive is a RuntimeException whose text begins with "Invalid zip archive".
#pragma once

#include <Base/GCNamespace.h>
#include <memory>
#include <stddef.h>
#include <stdint.h>
#include <string>
#include <string_view>
#include <vector>

namespace GENAPI_NAMESPACE::runtime
{

// The bounds beyond which an archive is refused.
const size_t maxArchiveSize = 1u << 30; // bytes
const size_t maxArchiveEntries = 10000;

class Archive
{
public:
    struct Entry
    {
        std::string name;
        uint64_t packedSize; // bytes in the archive
        uint64_t size;       // bytes when expanded, as the archive claims: Read holds it to that
        bool folder;
        bool encrypted;
        uint16_t method; // 0: stored, 8: deflated
        uint32_t checksum;
        uint32_t headerOffset; // of the entry's header
    };
    // The place of an entry's packed bytes.
    struct Place
    {
        size_t offset;
        size_t size;
    };

    // The bytes must outlive the archive. Bytes in front of the archive are refused, a few behind it are not: device
    // memory is padded.
    explicit Archive(std::string_view bytes);
    // Reads the whole file.
    static Archive FromFile(const std::string& path);

    // In the order of the archive's directory.
    const std::vector<Entry>& Entries() const { return entries; }
    // The first entry of that name, byte by byte; null when there is none.
    const Entry* Find(std::string_view name) const;
    // The entry's bytes. Refused are folders, encryption, methods but storing and deflating, more than `maxSize` bytes,
    // a size or check sum that is not the claimed one.
    std::string Read(const Entry& entry, size_t maxSize) const;
    // Throws when the place is outside the archive.
    Place PlaceOf(const Entry& entry) const;

private:
    Archive(std::shared_ptr<const std::string> ownedBytes);
    void ReadDirectory();

    std::shared_ptr<const std::string> owned; // null: the caller's
    std::string_view bytes;
    size_t directoryOffset = 0;
    std::vector<Entry> entries;
};

} // namespace GENAPI_NAMESPACE::runtime
