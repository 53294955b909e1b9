/*
 * The information in an update file about one of its updates. A file may contain several updates.
 *
 * The handle comes from KORO_FirmwareUpdater_GetFirmwareUpdateInformation and ends with the updater, or it comes from
 * the update started callback and ends with the observer. There is no function to destruct it. The information is a
 * copy: neither changes to the file nor later collections of the updater change it. Any thread may call these
 * functions.
 *
 * Texts are returned as they are in the file. Of several languages English is chosen, otherwise the text without a
 * language, otherwise the first one. An entry that is missing in the file is an empty text.
 */
#ifndef KORO_FIRMWARE_UPDATE_INFORMATION_H
#define KORO_FIRMWARE_UPDATE_INFORMATION_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* How versions are written. */
typedef int32_t KORO_FirmwareUpdateVersionStyle;
enum KORO_FirmwareUpdateVersionStyles
{
    KORO_FIRMWARE_UPDATE_VERSION_STYLE_DOTTED = 0,
    KORO_FIRMWARE_UPDATE_VERSION_STYLE_SEMVER = 1
};

/* Whether a camera keeps its stored settings during the update. */
typedef int32_t KORO_FirmwareUpdatePersistence;
enum KORO_FirmwareUpdatePersistences
{
    KORO_FIRMWARE_UPDATE_PERSISTENCE_NONE = 0,
    KORO_FIRMWARE_UPDATE_PERSISTENCE_FULL = 1
};

/**
 * Reports whether the information was read from a file.
 * @param[out] isValid 1 if it was
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetIsValid(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, KORO_Bool8* isValid);

/** Returns the path of the update file, as it was passed to the updater. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetFileName(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* fileName, size_t* fileNameSize);

/** Returns the name of the update, a text for people. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetDescription(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* description, size_t* descriptionSize);

/** Returns the version of the firmware that the update installs. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetVersion(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* version, size_t* versionSize);

/**
 * Returns the regular expression that extracts the installed version from the camera's feature "DeviceFirmwareVersion".
 * The version is the first group of the match, or the whole match if there are no groups.
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetVersionExtractionPattern(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* versionExtractionPattern,
    size_t* versionExtractionPatternSize);

/**
 * Returns the style of version numbers. This function and the two persistence functions always return their first
 * number, regardless of the file, because the entries are not evaluated yet. Do not rely on them.
 * @param[out] versionStyle KORO_FIRMWARE_UPDATE_VERSION_STYLE_DOTTED
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetVersionStyle(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle,
    KORO_FirmwareUpdateVersionStyle* versionStyle);

/** Returns the release notes, a text for people. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetReleaseNotes(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* releaseNotes, size_t* releaseNotesSize);

/** Returns the address of further information. It is taken from the file unchecked. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetReleaseNotesURL(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* releaseNotesUrl,
    size_t* releaseNotesUrlSize);

/**
 * Reports whether the camera keeps its user sets.
 * @param[out] userSetPersistence KORO_FIRMWARE_UPDATE_PERSISTENCE_NONE; see
 *                                KORO_FirmwareUpdateInformation_GetVersionStyle
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetUserSetPersistence(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle,
    KORO_FirmwareUpdatePersistence* userSetPersistence);

/**
 * Reports whether the camera keeps its sequencer sets.
 * @param[out] sequencerSetPersistence KORO_FIRMWARE_UPDATE_PERSISTENCE_NONE; see
 *                                     KORO_FirmwareUpdateInformation_GetVersionStyle
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetSequencerSetPersistence(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle,
    KORO_FirmwareUpdatePersistence* sequencerSetPersistence);

#ifdef __cplusplus
}
#endif

#endif
