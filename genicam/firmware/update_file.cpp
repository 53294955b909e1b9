#include "firmware/update_file.h"

#include "archive/inflate.h"
#include "archive/read_file.h"
#include "firmware/bounds.h"
#include "firmware/texts.h"

#include <FirmwareUpdate/FirmwareUpdateExceptions.h>
#include <algorithm>
#include <filesystem>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const char* const packageName = "package.zip";
const char* const signatureName = "META-INF/signature.p7s";
const char* const controlName = "control.xml"; // in any case

std::string ReadUpdateFile(const std::string& path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found)
    {
        throw GENFW_FILE_NOT_FOUND_EXCEPTION("The update file '%s' does not exist", ShownPath(path).c_str());
    }
    if (!error && status.type() != std::filesystem::file_type::regular)
    {
        throw GENFW_FILE_IO_EXCEPTION("The update file '%s' is no file", ShownPath(path).c_str());
    }
    const auto size = std::filesystem::file_size(path, error);
    if (!error && size > maxUpdateFileSize)
    {
        throw GENFW_FILE_IO_EXCEPTION(
            "The update file '%s' has %llu bytes; at most %zu are taken", ShownPath(path).c_str(),
            static_cast<unsigned long long>(size), maxUpdateFileSize);
    }
    try
    {
        return ReadFile(path, maxUpdateFileSize); // a file that grows meanwhile is refused as well
    }
    catch (const GENICAM_NAMESPACE::RuntimeException& exception)
    {
        throw GENFW_FILE_IO_EXCEPTION("%s", exception.GetDescription());
    }
}

bool IsControlFile(const Archive::Entry& entry)
{
    const std::string_view name(controlName);
    const auto same = [](char a, char b) { return (a >= 'A' && a <= 'Z' ? char(a - 'A' + 'a') : a) == b; };
    return std::equal(entry.name.begin(), entry.name.end(), name.begin(), name.end(), same);
}

// A name that would leave the folder into which an archive is unpacked.
bool PointsOutside(std::string_view name)
{
    const bool absolute = !name.empty() && (name[0] == '/' || name[0] == '\\');
    const bool drive = name.size() > 1 && name[1] == ':';
    if (absolute || drive) return true;
    for (size_t begin = 0; begin <= name.size();)
    {
        const size_t end = std::min(name.find_first_of("/\\", begin), name.size());
        if (name.substr(begin, end - begin) == "..") return true;
        begin = end + 1;
    }
    return false;
}

} // namespace

UpdateFile::UpdateFile(const std::string& path) : UpdateFile(path, ReadUpdateFile(path)) {}

UpdateFile::UpdateFile(const std::string& path, std::string givenBytes) : path(path), bytes(std::move(givenBytes))
{
    if (bytes.empty()) throw GENFW_FILE_IO_EXCEPTION("The update file '%s' is empty", ShownPath(path).c_str());
    try
    {
        container.emplace(bytes);
    }
    catch (const GENICAM_NAMESPACE::RuntimeException& exception)
    {
        throw GENFW_FILE_IO_EXCEPTION(
            "The update file '%s' cannot be read: %s", ShownPath(path).c_str(), exception.GetDescription());
    }
    CheckNames(*container, "update file");
    for (const Archive::Entry& entry : container->Entries())
    {
        if (entry.method == 0) continue;
        throw GENFW_FORMAT_EXCEPTION(
            "The entry '%s' of the update file '%s' is not stored as it is", Shown(entry.name).c_str(),
            ShownPath(path).c_str());
    }
    const Archive::Entry* const packageEntry = container->Find(packageName);
    if (!packageEntry)
    {
        throw GENFW_FORMAT_EXCEPTION("The update file '%s' has no entry '%s'", ShownPath(path).c_str(), packageName);
    }
    packagePlace = PlaceOfStored(*packageEntry);
    if (const Archive::Entry* const signature = container->Find(signatureName))
    {
        signaturePlace = PlaceOfStored(*signature);
    }

    const std::string_view packageBytes(bytes.data() + packagePlace.offset, packagePlace.size);
    fingerprint = {packageBytes.size(), Checksum(packageBytes)};
    if (fingerprint.checksum != packageEntry->checksum)
    {
        throw GENFW_FILE_IO_EXCEPTION(
            "The update file '%s' is damaged: the check sum of the entry '%s' is wrong", ShownPath(path).c_str(),
            packageName);
    }
    try
    {
        package.emplace(packageBytes);
    }
    catch (const GENICAM_NAMESPACE::RuntimeException& exception)
    {
        throw GENFW_FORMAT_EXCEPTION(
            "The package of the update file '%s' cannot be read: %s", ShownPath(path).c_str(),
            exception.GetDescription());
    }
    CheckNames(*package, "package of the update file");
}

// No name twice, none that points outside: nothing is ever unpacked into a folder here, but another tool would.
void UpdateFile::CheckNames(const Archive& checked, const char* which) const
{
    std::vector<std::string_view> names;
    names.reserve(checked.Entries().size());
    for (const Archive::Entry& entry : checked.Entries())
    {
        if (PointsOutside(entry.name))
        {
            throw GENFW_FORMAT_EXCEPTION(
                "The entry '%s' of the %s '%s' points outside", Shown(entry.name).c_str(), which,
                ShownPath(path).c_str());
        }
        names.push_back(entry.name);
    }
    std::sort(names.begin(), names.end());
    const auto twice = std::adjacent_find(names.begin(), names.end());
    if (twice == names.end()) return;
    throw GENFW_FORMAT_EXCEPTION(
        "The entry '%s' of the %s '%s' is there twice", Shown(*twice).c_str(), which, ShownPath(path).c_str());
}

Archive::Place UpdateFile::PlaceOfStored(const Archive::Entry& entry) const
{
    if (entry.encrypted)
    {
        throw GENFW_FORMAT_EXCEPTION(
            "The entry '%s' of the update file '%s' is encrypted", Shown(entry.name).c_str(), ShownPath(path).c_str());
    }
    try
    {
        const Archive::Place place = container->PlaceOf(entry);
        if (place.size == entry.size) return place;
    }
    catch (const GENICAM_NAMESPACE::RuntimeException& exception)
    {
        throw GENFW_FILE_IO_EXCEPTION(
            "The update file '%s' cannot be read: %s", ShownPath(path).c_str(), exception.GetDescription());
    }
    throw GENFW_FORMAT_EXCEPTION(
        "The entry '%s' of the update file '%s' contradicts itself about its size", Shown(entry.name).c_str(),
        ShownPath(path).c_str());
}

std::string UpdateFile::ControlFile() const
{
    const Archive::Entry* found = nullptr;
    for (const Archive::Entry& entry : package->Entries())
    {
        if (!IsControlFile(entry)) continue;
        if (found)
        {
            throw GENFW_FORMAT_EXCEPTION("The update file '%s' has several control files", ShownPath(path).c_str());
        }
        found = &entry;
    }
    if (!found) throw GENFW_FORMAT_EXCEPTION("The update file '%s' has no control file", ShownPath(path).c_str());
    return Expand(*found, maxControlFileSize);
}

bool UpdateFile::Has(const std::string& name) const
{
    const Archive::Entry* const entry = package->Find(name);
    return entry && !entry->folder;
}

std::string UpdateFile::Payload(const std::string& name, size_t maxSize) const
{
    if (!Has(name))
    {
        throw GENFW_FILE_NOT_FOUND_EXCEPTION(
            "The update file '%s' has no file '%s' in its package", ShownPath(path).c_str(), Shown(name).c_str());
    }
    return Expand(*package->Find(name), maxSize);
}

std::string UpdateFile::Expand(const Archive::Entry& entry, size_t maxSize) const
{
    if (entry.size > smallEntrySize && entry.size / maxExpansion > entry.packedSize)
    {
        throw GENFW_FORMAT_EXCEPTION(
            "The entry '%s' of the update file '%s' expands from %llu to %llu bytes, more than %zu times",
            Shown(entry.name).c_str(), ShownPath(path).c_str(), static_cast<unsigned long long>(entry.packedSize),
            static_cast<unsigned long long>(entry.size), maxExpansion);
    }
    try
    {
        return package->Read(entry, maxSize);
    }
    catch (const GENICAM_NAMESPACE::RuntimeException& exception)
    {
        throw GENFW_FORMAT_EXCEPTION(
            "The package of the update file '%s' cannot be read: %s", ShownPath(path).c_str(),
            exception.GetDescription());
    }
}

} // namespace GENAPI_NAMESPACE::runtime
