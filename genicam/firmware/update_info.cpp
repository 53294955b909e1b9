#include "firmware/pattern.h"
#include "firmware/update_record.h"

#include <Base/GCException.h>

namespace GENAPI_NAMESPACE
{

using GENICAM_NAMESPACE::gcstring;

namespace
{

const runtime::UpdateRecord::Entry* Find(const runtime::UpdateRecord* record, const char* key)
{
    return record && key ? record->Find(key) : nullptr;
}

} // namespace

CFirmwareUpdateInfo::CFirmwareUpdateInfo() = default;
CFirmwareUpdateInfo::CFirmwareUpdateInfo(const CFirmwareUpdateInfo& other) = default;
CFirmwareUpdateInfo& CFirmwareUpdateInfo::operator=(const CFirmwareUpdateInfo& other) = default;
CFirmwareUpdateInfo::~CFirmwareUpdateInfo() = default;

bool CFirmwareUpdateInfo::operator==(const CFirmwareUpdateInfo& other) const
{
    return record == other.record || (record && other.record && *record == *other.record);
}

bool CFirmwareUpdateInfo::IsValid() const
{
    return record != nullptr;
}

const char* CFirmwareUpdateInfo::GetUpdateFilename() const
{
    return record ? record->path.c_str() : "";
}

const char* CFirmwareUpdateInfo::GetInfo(const char* InfoKey) const
{
    return GetInfo(InfoKey, "");
}

const char* CFirmwareUpdateInfo::GetInfo(const char* InfoKey, const char* pDefaultValueIfNotAvailable) const
{
    const auto* const entry = Find(record.get(), InfoKey);
    return entry ? entry->text.text.c_str() : pDefaultValueIfNotAvailable;
}

const char* CFirmwareUpdateInfo::GetInfoLanguageCode(const char* InfoKey) const
{
    const auto* const entry = Find(record.get(), InfoKey);
    return entry ? entry->text.language.c_str() : "";
}

size_t CFirmwareUpdateInfo::GetCountOfInfos() const
{
    return record ? record->entries.size() : 0;
}

const char* CFirmwareUpdateInfo::GetInfoKey(size_t Index) const
{
    if (Index < GetCountOfInfos()) return record->entries[Index].key.c_str();
    throw INVALID_ARGUMENT_EXCEPTION("There is no entry %zu; there are %zu", Index, GetCountOfInfos());
}

const char* CFirmwareUpdateInfo::GetInfo(size_t Index) const
{
    if (Index < GetCountOfInfos()) return record->entries[Index].text.text.c_str();
    throw INVALID_ARGUMENT_EXCEPTION("There is no entry %zu; there are %zu", Index, GetCountOfInfos());
}

gcstring CFirmwareUpdateInfo::ExtractVersionFromDeviceFirmwareVersion(const gcstring& DeviceFirmwareVersion) const
{
    const auto* const entry = Find(record.get(), FirmwareUpdateInfoKey_VersionExtractionPattern);
    if (!entry)
    {
        throw LOGICAL_ERROR_EXCEPTION("The update has no entry '%s'", FirmwareUpdateInfoKey_VersionExtractionPattern);
    }
    const std::string_view text(DeviceFirmwareVersion.c_str(), DeviceFirmwareVersion.size());
    const auto version = runtime::Pattern(entry->text.text).Extract(text);
    if (!version)
    {
        throw RUNTIME_EXCEPTION(
            "The pattern '%s' finds no version in '%s'", runtime::Shown(entry->text.text).c_str(),
            runtime::Shown(text).c_str());
    }
    return gcstring(version->data(), version->size());
}

} // namespace GENAPI_NAMESPACE
