#include "firmware/firmware_update_information.h"

#include "base/exceptions.h"

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

bool FirmwareUpdateInformation::IsValid() const
{
    return WithStandardExceptionsAsInternalErrors([&] { return info.IsValid(); });
}

std::string FirmwareUpdateInformation::FileName() const
{
    return WithStandardExceptionsAsInternalErrors([&] { return std::string(info.GetUpdateFilename()); });
}

std::string FirmwareUpdateInformation::Description() const
{
    return Text(FirmwareUpdateInfoKey_Description);
}

std::string FirmwareUpdateInformation::Version() const
{
    return Text(FirmwareUpdateInfoKey_Version);
}

std::string FirmwareUpdateInformation::VersionExtractionPattern() const
{
    return Text(FirmwareUpdateInfoKey_VersionExtractionPattern);
}

std::string FirmwareUpdateInformation::ReleaseNotes() const
{
    return Text(FirmwareUpdateInfoKey_ReleaseNotes);
}

std::string FirmwareUpdateInformation::ReleaseNotesURL() const
{
    return Text(FirmwareUpdateInfoKey_ReleaseNotesURL);
}

// This function and the persistence functions intentionally compare addresses instead of texts. The runtime returns
// texts of the file, which are never these constants, so the result is always 0, regardless of the file. Applications
// rely on this: do not compare the texts.
FirmwareUpdateVersionStyle FirmwareUpdateInformation::VersionStyle() const
{
    return WithStandardExceptionsAsInternalErrors([&] {
        const char* const style = info.GetInfo(FirmwareUpdateInfoKey_VersionStyle);
        if (style == FirmwareUpdateInfoValue_VersionStyle_Dotted) return FirmwareUpdateVersionStyle::Dotted;
        if (style == FirmwareUpdateInfoValue_VersionStyle_SemVer) return FirmwareUpdateVersionStyle::SemVer;
        return FirmwareUpdateVersionStyle::Dotted;
    });
}

FirmwareUpdatePersistence FirmwareUpdateInformation::UserSetPersistence() const
{
    return Persistence(FirmwareUpdateInfoKey_UserSetPersistence);
}

FirmwareUpdatePersistence FirmwareUpdateInformation::SequencerSetPersistence() const
{
    return Persistence(FirmwareUpdateInfoKey_SequencerSetPersistence);
}

std::string FirmwareUpdateInformation::Text(const char* key) const
{
    return WithStandardExceptionsAsInternalErrors([&] { return std::string(info.GetInfo(key)); });
}

FirmwareUpdatePersistence FirmwareUpdateInformation::Persistence(const char* key) const
{
    return WithStandardExceptionsAsInternalErrors([&] {
        const char* const persistence = info.GetInfo(key);
        if (persistence == FirmwareUpdateInfoKey_PersistenceSupport_None) return FirmwareUpdatePersistence::None;
        if (persistence == FirmwareUpdateInfoKey_PersistenceSupport_Full) return FirmwareUpdatePersistence::Full;
        return FirmwareUpdatePersistence::None;
    });
}

} // namespace koro::internal
