/*
 * Reads firmware update files (GenICam firmware update, "*.guf") and applies an update to a camera.
 *
 * The handle comes from KORO_FirmwareUpdater_Construct and ends with KORO_FirmwareUpdater_Destruct. Any thread. Nothing
 * runs in the background: a collection and an update work on the calling thread until they are done.
 *
 * An update file is input of a stranger: what is wrong with it, or beyond the library's bounds, is refused with a text
 * that says what. The signature of a file is not checked.
 */
#ifndef KORO_FIRMWARE_UPDATER_H
#define KORO_FIRMWARE_UPDATER_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Makes an updater, which has found nothing yet.
 * @param[out] firmwareUpdaterHandle a new handle; end it with KORO_FirmwareUpdater_Destruct
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdater_Construct(KORO_FirmwareUpdaterHandle* firmwareUpdaterHandle);

/** Ends the handle and those of its information. An update that is running goes on. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdater_Destruct(KORO_FirmwareUpdaterHandle firmwareUpdaterHandle);

/**
 * Reads all updates of a file. What they tell replaces what was found before; a failure leaves it. Handles of
 * information that were handed out before stay valid in either case.
 * @param[in] updateFilePath, updateFilePathSize the path; the size counts the terminating zero
 * @return KORO_RETURN_CODE_ERROR when the file is not there, cannot be read or is no sound update file
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdater_CollectAllFirmwareUpdateInformation(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, const char* updateFilePath, size_t updateFilePathSize);

/**
 * Reads those updates of a file that fit a camera, by the conditions that each has. Opens the camera with
 * KORO_DEVICE_ACCESS_CONTROL and closes it again. Otherwise as
 * KORO_FirmwareUpdater_CollectAllFirmwareUpdateInformation; when nothing fits, nothing is found.
 * @return KORO_RETURN_CODE_BAD_ACCESS when the camera is open elsewhere, in this program too
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdater_CollectFirmwareUpdateInformation(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, const char* updateFilePath, size_t updateFilePathSize,
    KORO_DeviceDescriptorHandle deviceDescriptorHandle);

/**
 * Gives how many updates the last collection found.
 * @param[out] numFirmwareUpdateInformation 0 before the first one
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdater_GetNumFirmwareUpdateInformation(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, size_t* numFirmwareUpdateInformation);

/**
 * Gives what an update tells about itself, in the order of the file.
 * @param[out] firmwareUpdateInformationHandle ends with the updater; the same handle each time
 * @return KORO_RETURN_CODE_OUT_OF_RANGE beyond the last one
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdater_GetFirmwareUpdateInformation(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, size_t index,
    KORO_FirmwareUpdateInformationHandle* firmwareUpdateInformationHandle);

/** Does what KORO_FirmwareUpdater_UpdateDeviceWithResetTimeout does, with 60 seconds for each reset. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdater_UpdateDevice(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, KORO_DeviceDescriptorHandle deviceDescriptorHandle,
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle,
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle);

/**
 * Applies an update to a camera, from the first step to the last, and returns when it is done. Close the camera before:
 * it is opened here with KORO_DEVICE_ACCESS_CONTROL, and closed in the end. The file is read again; it must be the one
 * that was collected. Keep it, the camera's interface and everything above it until the call returns.
 *
 * After a reset the devices of the interface are listed anew, every 200 ms, until one with the same serial number can
 * be opened; a camera that has none is not updated, with the answer of KORO_DeviceDescriptor_GetSerialNumber, and its
 * observer is told nothing. These are updates of the list as KORO_Interface_UpdateDevices makes them: found and lost
 * callbacks run, on this thread, and the handle of the device descriptor ends when the camera is lost meanwhile. Fetch
 * a new one by KORO_Interface_GetDevice.
 *
 * A failure may leave the camera half updated; updating it again is the way out.
 *
 * @param[in] firmwareUpdateInformationHandle      of any updater; one that does not fit the camera is refused before
 *                                                 anything is written
 * @param[in] firmwareUpdateProgressObserverHandle is told how it goes, on this thread; null for nobody
 * @param[in] resetTimeout_ms                      milliseconds from each reset to the end of the search;
 *                                                 KORO_INFINITE searches until the camera is found. One search is made
 *                                                 in any case, and so is the pause before it for which the file may
 *                                                 ask: at most an hour, or as long as this time-out
 * @return KORO_RETURN_CODE_TIMEOUT when the camera does not come back after a reset;
 *         KORO_RETURN_CODE_BAD_ACCESS when it is open elsewhere, in this program too;
 *         KORO_RETURN_CODE_INVALID_ARGUMENT when the update does not fit it;
 *         KORO_RETURN_CODE_IO_ERROR when it is lost meanwhile;
 *         KORO_RETURN_CODE_ERROR when the file was changed, a feature is missing, or the camera refuses an upload, does
 *         not end a command or does not hold what is asserted; for a feature that cannot be written the code that
 *         its own export would give
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdater_UpdateDeviceWithResetTimeout(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, KORO_DeviceDescriptorHandle deviceDescriptorHandle,
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle,
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle, uint64_t resetTimeout_ms);

#ifdef __cplusplus
}
#endif

#endif
