/*
 * What an update file says about one of its updates. A file may hold several.
 *
 * The handle comes from KORO_FirmwareUpdater_GetFirmwareUpdateInformation and ends with the updater, or from the
 * callback of a started update and ends with the observer. There is nothing to destruct. It is a copy: neither the
 * file nor what the updater collects later changes it. Any thread.
 *
 * Texts are as they stand in the file; of several languages English, else the one without a language, else the first.
 * An entry that the file does not have is an empty text.
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

/* Whether a camera keeps its stored settings over the update. */
typedef int32_t KORO_FirmwareUpdatePersistence;
enum KORO_FirmwareUpdatePersistences
{
    KORO_FIRMWARE_UPDATE_PERSISTENCE_NONE = 0,
    KORO_FIRMWARE_UPDATE_PERSISTENCE_FULL = 1
};

/**
 * Tells whether the information was read from a file.
 * @param[out] isValid 1 if it was
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetIsValid(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, KORO_Bool8* isValid);

/** Gives the path of the update file, as it was given to the updater. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetFileName(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* fileName, size_t* fileNameSize);

/** Gives the name of the update, for a person. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetDescription(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* description, size_t* descriptionSize);

/** Gives the version of the firmware that the update installs. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetVersion(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* version, size_t* versionSize);

/**
 * Gives the regular expression that finds the installed version in the camera's feature "DeviceFirmwareVersion": its
 * first group, or without groups the whole match.
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetVersionExtractionPattern(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* versionExtractionPattern,
    size_t* versionExtractionPatternSize);

/**
 * Gives how versions are written. This and the two persistences answer with their first number whatever the file says:
 * they are not told yet, and are not to be built upon.
 * @param[out] versionStyle KORO_FIRMWARE_UPDATE_VERSION_STYLE_DOTTED
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetVersionStyle(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle,
    KORO_FirmwareUpdateVersionStyle* versionStyle);

/** Gives what is new, for a person. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetReleaseNotes(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* releaseNotes, size_t* releaseNotesSize);

/** Gives where more about it can be read. The address is the file's; nobody has checked it. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetReleaseNotesURL(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, char* releaseNotesUrl,
    size_t* releaseNotesUrlSize);

/**
 * Gives whether the camera keeps its user sets.
 * @param[out] userSetPersistence KORO_FIRMWARE_UPDATE_PERSISTENCE_NONE; see the version style
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetUserSetPersistence(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle,
    KORO_FirmwareUpdatePersistence* userSetPersistence);

/**
 * Gives whether the camera keeps its sequencer sets.
 * @param[out] sequencerSetPersistence KORO_FIRMWARE_UPDATE_PERSISTENCE_NONE; see the version style
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateInformation_GetSequencerSetPersistence(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle,
    KORO_FirmwareUpdatePersistence* sequencerSetPersistence);

#ifdef __cplusplus
}
#endif

#endif
