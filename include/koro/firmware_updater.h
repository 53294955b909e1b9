/*
 * Reads firmware update files (GenICam firmware update, "*.guf") and applies an update to a camera.
 *
 * The handle comes from KORO_FirmwareUpdater_Construct and ends with KORO_FirmwareUpdater_Destruct. Any thread may call
 * these functions. Nothing runs in the background: reading a file and updating a camera are done on the calling thread
 * before the function returns.
 *
 * Update files are untrusted input: a file that is malformed or exceeds the bounds of the library is refused with a
 * text that states the reason. The signature of a file is not checked.
 */
#ifndef KORO_FIRMWARE_UPDATER_H
#define KORO_FIRMWARE_UPDATER_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Creates an updater. Its list of updates is empty.
 * @param[out] firmwareUpdaterHandle a new handle; end it with KORO_FirmwareUpdater_Destruct
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdater_Construct(KORO_FirmwareUpdaterHandle* firmwareUpdaterHandle);

/** Ends the handle and the handles of its update information. An update that is running continues. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdater_Destruct(KORO_FirmwareUpdaterHandle firmwareUpdaterHandle);

/**
 * Reads all updates of a file. They replace the list of the updater; a failure does not change it. Handles of update
 * information that were returned before stay valid in both cases.
 * @param[in] updateFilePath, updateFilePathSize path and its size, including the terminating zero
 * @return KORO_RETURN_CODE_ERROR when the file does not exist, cannot be read or is not a valid update file
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdater_CollectAllFirmwareUpdateInformation(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, const char* updateFilePath, size_t updateFilePathSize);

/**
 * Reads the updates of a file whose conditions the camera meets. Opens the camera with KORO_DEVICE_ACCESS_CONTROL and
 * closes it again. Otherwise the function works like KORO_FirmwareUpdater_CollectAllFirmwareUpdateInformation. If no
 * update fits the camera, the list is empty.
 * @param[in] updateFilePath, updateFilePathSize the path; the size includes the terminating zero
 * @param[in] deviceDescriptorHandle             the camera, which must not be open
 * @return KORO_RETURN_CODE_BAD_ACCESS when the camera is open elsewhere, which includes this program
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdater_CollectFirmwareUpdateInformation(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, const char* updateFilePath, size_t updateFilePathSize,
    KORO_DeviceDescriptorHandle deviceDescriptorHandle);

/**
 * Returns the number of updates in the list.
 * @param[out] numFirmwareUpdateInformation the number of updates; 0 before a file was read
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdater_GetNumFirmwareUpdateInformation(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, size_t* numFirmwareUpdateInformation);

/**
 * Returns the information about one update, in the order of the file.
 * @param[in]  index                           from 0, less than the number of updates that were found
 * @param[out] firmwareUpdateInformationHandle ends with the updater; the same handle each time
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdater_GetFirmwareUpdateInformation(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, size_t index,
    KORO_FirmwareUpdateInformationHandle* firmwareUpdateInformationHandle);

/** Calls KORO_FirmwareUpdater_UpdateDeviceWithResetTimeout with a timeout of 60 seconds for each reset. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdater_UpdateDevice(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, KORO_DeviceDescriptorHandle deviceDescriptorHandle,
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle,
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle);

/**
 * Applies an update to a camera and returns when it is done. Close the camera before the call: the function opens it
 * with KORO_DEVICE_ACCESS_CONTROL and closes it at the end. The file is read again, and its contents must be the same
 * as when the updates were collected. Keep the file, the camera's interface and all parents of the interface until the
 * call returns.
 *
 * After a reset the function updates the device list of the interface every 200 ms until a device with the same serial
 * number can be opened. These updates work like KORO_Interface_UpdateDevices: found and lost callbacks run on the
 * calling thread, and the handle of the device descriptor ends when the camera disappears from the list. Get a new
 * handle by KORO_Interface_GetDevice. A camera without a serial number is not updated: the function returns the code of
 * KORO_DeviceDescriptor_GetSerialNumber and calls no callback of the observer.
 *
 * A failure may leave the camera partly updated. To recover, update it again.
 *
 * @param[in] firmwareUpdateInformationHandle      information from any updater; an update that does not fit the camera
 *                                                 is refused before anything is written
 * @param[in] firmwareUpdateProgressObserverHandle receives the progress, on the calling thread; null means no progress
 *                                                 reports
 * @param[in] resetTimeout_ms                      milliseconds from each reset to the end of the search; KORO_INFINITE
 *                                                 for no limit. At least one search is made. The update file may
 *                                                 request a pause before the search, which is kept too: at most one
 *                                                 hour, or at most this timeout if it is longer
 * @return KORO_RETURN_CODE_TIMEOUT when the camera does not return after a reset; KORO_RETURN_CODE_BAD_ACCESS when it
 *         is open elsewhere, which includes this program; KORO_RETURN_CODE_INVALID_ARGUMENT when the update does not
 *         fit it; KORO_RETURN_CODE_IO_ERROR when the connection is lost; KORO_RETURN_CODE_ERROR when the file has
 *         changed, a feature is missing, or the camera refuses an upload, does not finish a command or does not have an
 *         asserted value; for a feature that cannot be written, the code that the function which writes this feature
 *         returns
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdater_UpdateDeviceWithResetTimeout(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, KORO_DeviceDescriptorHandle deviceDescriptorHandle,
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle,
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle, uint64_t resetTimeout_ms);

#ifdef __cplusplus
}
#endif

#endif
