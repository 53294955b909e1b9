#include "firmware/firmware_update_information.h"

#include "capi/arguments.h"
#include <koro/firmware_update_information.h>

using namespace koro::internal;

KORO_ReturnCode KORO_FirmwareUpdateInformation_GetIsValid(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, KORO_Bool8* isValid)
{
    return GetScalar(KORO_ARG(firmwareUpdateInformationHandle), KORO_ARG(isValid), &FirmwareUpdateInformation::IsValid);
}

KORO_ReturnCode KORO_FirmwareUpdateInformation_GetFileName(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* fileName, size_t* fileNameSize)
{
    return GetString(
        KORO_ARG(firmwareUpdateInformationHandle), KORO_ARG(fileName), fileNameSize,
        &FirmwareUpdateInformation::FileName);
}

KORO_ReturnCode KORO_FirmwareUpdateInformation_GetDescription(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* description, size_t* descriptionSize)
{
    return GetString(
        KORO_ARG(firmwareUpdateInformationHandle), KORO_ARG(description), descriptionSize,
        &FirmwareUpdateInformation::Description);
}

KORO_ReturnCode KORO_FirmwareUpdateInformation_GetVersion(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* version, size_t* versionSize)
{
    return GetString(
        KORO_ARG(firmwareUpdateInformationHandle), KORO_ARG(version), versionSize, &FirmwareUpdateInformation::Version);
}

KORO_ReturnCode KORO_FirmwareUpdateInformation_GetVersionExtractionPattern(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* versionExtractionPattern,
    size_t* versionExtractionPatternSize)
{
    return GetString(
        KORO_ARG(firmwareUpdateInformationHandle), KORO_ARG(versionExtractionPattern), versionExtractionPatternSize,
        &FirmwareUpdateInformation::VersionExtractionPattern);
}

KORO_ReturnCode KORO_FirmwareUpdateInformation_GetVersionStyle(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, KORO_FirmwareUpdateVersionStyle* versionStyle)
{
    return GetScalar(
        KORO_ARG(firmwareUpdateInformationHandle), KORO_ARG(versionStyle), &FirmwareUpdateInformation::VersionStyle);
}

KORO_ReturnCode KORO_FirmwareUpdateInformation_GetReleaseNotes(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* releaseNotes, size_t* releaseNotesSize)
{
    return GetString(
        KORO_ARG(firmwareUpdateInformationHandle), KORO_ARG(releaseNotes), releaseNotesSize,
        &FirmwareUpdateInformation::ReleaseNotes);
}

KORO_ReturnCode KORO_FirmwareUpdateInformation_GetReleaseNotesURL(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* releaseNotesUrl,
    size_t* releaseNotesUrlSize)
{
    return GetString(
        KORO_ARG(firmwareUpdateInformationHandle), KORO_ARG(releaseNotesUrl), releaseNotesUrlSize,
        &FirmwareUpdateInformation::ReleaseNotesURL);
}

KORO_ReturnCode KORO_FirmwareUpdateInformation_GetUserSetPersistence(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle,
    KORO_FirmwareUpdatePersistence* userSetPersistence)
{
    return GetScalar(
        KORO_ARG(firmwareUpdateInformationHandle), KORO_ARG(userSetPersistence),
        &FirmwareUpdateInformation::UserSetPersistence);
}

KORO_ReturnCode KORO_FirmwareUpdateInformation_GetSequencerSetPersistence(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle,
    KORO_FirmwareUpdatePersistence* sequencerSetPersistence)
{
    return GetScalar(
        KORO_ARG(firmwareUpdateInformationHandle), KORO_ARG(sequencerSetPersistence),
        &FirmwareUpdateInformation::SequencerSetPersistence);
}
