// FirmwareUpdateInformation: the information of an update file about one of its updates.
//
// A copy of the runtime's record, so it needs neither the file nor the updater that read it. Shared by the handle table
// and the updater or observer. Constant. Standard exceptions leave as InternalErrorException; exceptions of the runtime
// are not translated.
#pragma once

#include "base/instance.h"

#include <FirmwareUpdate/FirmwareUpdateInfo.h>
#include <cstdint>
#include <string>

namespace koro::internal
{

enum class FirmwareUpdateVersionStyle : std::int32_t
{
    Dotted = 0,
    SemVer = 1
};

enum class FirmwareUpdatePersistence : std::int32_t
{
    None = 0,
    Full = 1
};

class FirmwareUpdateInformation final : public Instance
{
public:
    explicit FirmwareUpdateInformation(const GENAPI_NAMESPACE::CFirmwareUpdateInfo& copied) : info(copied) {}

    bool IsValid() const;
    std::string FileName() const; // as it was passed to the reader

    // An entry that the file does not have is empty.
    std::string Description() const;
    std::string Version() const;
    std::string VersionExtractionPattern() const;
    std::string ReleaseNotes() const;
    std::string ReleaseNotesURL() const;

    // Always the first of their numbers; see the source.
    FirmwareUpdateVersionStyle VersionStyle() const;
    FirmwareUpdatePersistence UserSetPersistence() const;
    FirmwareUpdatePersistence SequencerSetPersistence() const;

    const GENAPI_NAMESPACE::CFirmwareUpdateInfo& GenApiInformation() const { return info; }

private:
    std::string Text(const char* key) const;
    FirmwareUpdatePersistence Persistence(const char* key) const;

    const GENAPI_NAMESPACE::CFirmwareUpdateInfo info;
};

} // namespace koro::internal
