// CFirmwareUpdateInfo: the information of an update file about one of its updates.
//
// A value; copies share their data and outlive the reader. Constant after construction: safe to read from any thread.
// All texts are valid as long as one of the copies exists.
#pragma once

#include <Base/GCLinkage.h>
#include <Base/GCString.h>
#include <memory>
#include <stddef.h>

namespace GENAPI_NAMESPACE
{

namespace runtime
{
struct UpdateRecord;
class InfoAccess;
} // namespace runtime

static const char* const FirmwareUpdateInfoKey_Description = "Description";
static const char* const FirmwareUpdateInfoKey_Version = "Version";
static const char* const FirmwareUpdateInfoKey_VersionStyle = "VersionStyle";
static const char* const FirmwareUpdateInfoValue_VersionStyle_Dotted = "dotted";
static const char* const FirmwareUpdateInfoValue_VersionStyle_SemVer = "semver";
static const char* const FirmwareUpdateInfoKey_VersionExtractionPattern = "VersionExtractionPattern";
static const char* const FirmwareUpdateInfoKey_ReleaseNotes = "ReleaseNotes";
static const char* const FirmwareUpdateInfoKey_ReleaseNotesURL = "ReleaseNotesURL";
static const char* const FirmwareUpdateInfoKey_UserSetPersistence = "UserSetPersistence";
static const char* const FirmwareUpdateInfoKey_SequencerSetPersistence = "SequencerSetPersistence";
static const char* const FirmwareUpdateInfoKey_PersistenceSupport_None = "none";
static const char* const FirmwareUpdateInfoKey_PersistenceSupport_Full = "full";

class GENFW_DECL CFirmwareUpdateInfo
{
public:
    CFirmwareUpdateInfo(); // not valid: has no file and no entries
    CFirmwareUpdateInfo(const CFirmwareUpdateInfo& other);
    CFirmwareUpdateInfo& operator=(const CFirmwareUpdateInfo& other);
    ~CFirmwareUpdateInfo();
    // The same update of the same file, read in the same language.
    bool operator==(const CFirmwareUpdateInfo& other) const;

    bool IsValid() const;
    // As it was passed to the reader; empty when not valid.
    const char* GetUpdateFilename() const;

    // Never null: a missing key has an empty value or the default.
    const char* GetInfo(const char* InfoKey) const;
    const char* GetInfo(const char* InfoKey, const char* pDefaultValueIfNotAvailable) const;
    // Empty for a text that is for all languages.
    const char* GetInfoLanguageCode(const char* InfoKey) const;

    // In the order of the file. Throws InvalidArgumentException beyond the end.
    size_t GetCountOfInfos() const;
    const char* GetInfoKey(size_t Index) const;
    const char* GetInfo(size_t Index) const;

    // Extracts the version from the value of the feature DeviceFirmwareVersion. Throws RuntimeException when the
    // pattern does not match, LogicalErrorException when the update has no pattern.
    GENICAM_NAMESPACE::gcstring ExtractVersionFromDeviceFirmwareVersion(
        const GENICAM_NAMESPACE::gcstring& DeviceFirmwareVersion) const;

private:
    friend class runtime::InfoAccess;

    std::shared_ptr<const runtime::UpdateRecord> record; // null: not valid
};

} // namespace GENAPI_NAMESPACE
