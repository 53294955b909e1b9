#include "archive/archive.h"

#include "archive/inflate.h"
#include "archive/read_file.h"

#include <Base/GCException.h>
#include <algorithm>
#include <stdarg.h>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

// Layout of the three records, all numbers little endian.
const std::string_view endSignature("PK\5\6", 4);
const std::string_view directorySignature("PK\1\2", 4);
const std::string_view headerSignature("PK\3\4", 4);
const size_t endSize = 22;
const size_t directoryEntrySize = 46;
const size_t headerSize = 30;
const size_t longestComment = 65535;

const unsigned encryptedFlags = 0x0001 | 0x0040 | 0x2000; // weak, strong, directory
const uint16_t storedMethod = 0;
const uint16_t deflatedMethod = 8;

GENICAM_NAMESPACE::RuntimeException Invalid(const char* format, ...) __attribute__((format(printf, 1, 2)));
GENICAM_NAMESPACE::RuntimeException Invalid(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string reason = GENICAM_NAMESPACE::FormatExceptionText(format, arguments);
    va_end(arguments);
    return RUNTIME_EXCEPTION("Invalid zip archive: %s", reason.c_str());
}

uint16_t Number16(std::string_view record, size_t offset)
{
    const auto byte = [&](size_t place) { return static_cast<unsigned>(static_cast<unsigned char>(record[place])); };
    return static_cast<uint16_t>(byte(offset) | byte(offset + 1) << 8);
}

uint32_t Number32(std::string_view record, size_t offset)
{
    return Number16(record, offset) | static_cast<uint32_t>(Number16(record, offset + 2)) << 16;
}

// A name for a message: of any length, of any bytes.
std::string Shown(const std::string& name)
{
    std::string shown = name.substr(0, 200);
    for (char& letter : shown)
    {
        if (static_cast<unsigned char>(letter) < ' ' || letter == 0x7f) letter = '?';
    }
    return shown;
}

// The record at the end of the archive: the last one whose comment fits.
size_t FindEnd(std::string_view bytes)
{
    const size_t searched = std::min(bytes.size(), endSize + longestComment);
    const std::string_view tail = bytes.substr(bytes.size() - searched);
    for (size_t place = tail.rfind(endSignature); place != std::string_view::npos;
         place = place == 0 ? std::string_view::npos : tail.rfind(endSignature, place - 1))
    {
        if (tail.size() - place < endSize) continue;
        const size_t comment = Number16(tail, place + 20);
        if (comment <= tail.size() - place - endSize) return bytes.size() - searched + place;
    }
    throw Invalid("it has no end record");
}

} // namespace

Archive::Archive(std::string_view bytes) : bytes(bytes)
{
    ReadDirectory();
}

Archive::Archive(std::shared_ptr<const std::string> ownedBytes) : owned(std::move(ownedBytes)), bytes(*owned)
{
    ReadDirectory();
}

Archive Archive::FromFile(const std::string& path)
{
    return Archive(std::make_shared<const std::string>(ReadFile(path, maxArchiveSize)));
}

void Archive::ReadDirectory()
{
    if (bytes.size() > maxArchiveSize)
    {
        throw Invalid("it has %zu bytes; at most %zu are taken", bytes.size(), maxArchiveSize);
    }
    const size_t endOffset = FindEnd(bytes);
    const std::string_view end = bytes.substr(endOffset, endSize);
    const size_t count = Number16(end, 10);
    const size_t size = Number32(end, 12);
    directoryOffset = Number32(end, 16);
    if (count == 0xffff || size == 0xffffffff || directoryOffset == 0xffffffff)
    {
        throw Invalid("the 64-bit form is not supported");
    }
    if (Number16(end, 4) != 0 || Number16(end, 6) != 0 || Number16(end, 8) != count)
    {
        throw Invalid("it is one of several parts");
    }
    if (count > maxArchiveEntries)
    {
        throw Invalid("it has %zu entries; at most %zu are taken", count, maxArchiveEntries);
    }
    if (size > endOffset || directoryOffset > endOffset - size)
    {
        throw Invalid("its directory lies outside");
    }
    if (count * directoryEntrySize > size) throw Invalid("its directory is too small for %zu entries", count);

    std::string_view rest = bytes.substr(directoryOffset, size);
    const size_t inFront = endOffset - size - directoryOffset;
    const bool displaced = inFront > 0 && rest.substr(0, directorySignature.size()) != directorySignature;
    if (displaced) throw Invalid("%zu bytes stand in front of it", inFront);

    entries.reserve(count);
    while (entries.size() < count)
    {
        const size_t number = entries.size() + 1;
        if (rest.size() < directoryEntrySize || rest.substr(0, directorySignature.size()) != directorySignature)
        {
            throw Invalid("entry %zu of its directory is damaged", number);
        }
        const size_t nameSize = Number16(rest, 28);
        const size_t entrySize = directoryEntrySize + nameSize + Number16(rest, 30) + Number16(rest, 32);
        if (entrySize > rest.size()) throw Invalid("entry %zu of its directory is cut off", number);
        Entry entry;
        entry.name = std::string(rest.substr(directoryEntrySize, nameSize));
        entry.packedSize = Number32(rest, 20);
        entry.size = Number32(rest, 24);
        entry.folder = !entry.name.empty() && entry.name.back() == '/';
        entry.encrypted = (Number16(rest, 8) & encryptedFlags) != 0;
        entry.method = Number16(rest, 10);
        entry.checksum = Number32(rest, 16);
        entry.headerOffset = Number32(rest, 42);
        entries.push_back(std::move(entry));
        rest.remove_prefix(entrySize);
    }
}

const Archive::Entry* Archive::Find(std::string_view name) const
{
    const auto found =
        std::find_if(entries.begin(), entries.end(), [name](const Entry& entry) { return entry.name == name; });
    return found == entries.end() ? nullptr : &*found;
}

Archive::Place Archive::PlaceOf(const Entry& entry) const
{
    const std::string name = Shown(entry.name);
    // Entries precede the directory.
    const std::string_view front = bytes.substr(0, directoryOffset);
    if (entry.headerOffset > front.size() || front.size() - entry.headerOffset < headerSize)
    {
        throw Invalid("the entry '%s' lies outside", name.c_str());
    }
    const std::string_view header = front.substr(entry.headerOffset);
    if (header.substr(0, headerSignature.size()) != headerSignature)
    {
        throw Invalid("the entry '%s' is not where the directory says", name.c_str());
    }
    const size_t offset = headerSize + Number16(header, 26) + Number16(header, 28);
    if (offset > header.size() || entry.packedSize > header.size() - offset)
    {
        throw Invalid("the entry '%s' is cut off", name.c_str());
    }
    return {entry.headerOffset + offset, static_cast<size_t>(entry.packedSize)};
}

std::string Archive::Read(const Entry& entry, size_t maxSize) const
{
    const std::string name = Shown(entry.name);
    const Place place = PlaceOf(entry);
    if (entry.folder) throw Invalid("the entry '%s' is a folder", name.c_str());
    if (entry.encrypted) throw Invalid("the entry '%s' is encrypted", name.c_str());
    if (entry.size > maxSize)
    {
        throw Invalid(
            "the entry '%s' claims %llu bytes; at most %zu are taken", name.c_str(),
            static_cast<unsigned long long>(entry.size), maxSize);
    }

    const std::string_view packed = bytes.substr(place.offset, place.size);
    std::string expanded;
    if (entry.method == storedMethod)
    {
        expanded = packed;
    }
    else if (entry.method != deflatedMethod)
    {
        throw Invalid("the entry '%s' is packed by the unknown method %u", name.c_str(), unsigned(entry.method));
    }
    else if (!Inflate(packed, static_cast<size_t>(entry.size), expanded))
    {
        throw Invalid("the data of the entry '%s' are damaged or longer than it claims", name.c_str());
    }
    if (expanded.size() != entry.size)
    {
        throw Invalid(
            "the entry '%s' has %zu bytes and claims %llu", name.c_str(), expanded.size(),
            static_cast<unsigned long long>(entry.size));
    }
    if (Checksum(expanded) != entry.checksum) throw Invalid("the check sum of the entry '%s' is wrong", name.c_str());
    return expanded;
}

} // namespace GENAPI_NAMESPACE::runtime
