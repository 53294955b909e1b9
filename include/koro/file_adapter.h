/*
 * A file on a device: firmware, user data, tables. Which files there are tell the entries of the node "FileSelector".
 *
 * A handle belongs to the application, which ends it by KORO_FileAdapter_Destruct. It does not keep its node map: once
 * that has gone every function but the destruction answers KORO_RETURN_CODE_ERROR. Any thread. Each function selects
 * the file and takes the lock of the map for its own length, so other threads that work on the map wait for a whole
 * transfer; one file should be used at a time. Files move in blocks of the device's choice, through registers: they are
 * slow.
 *
 * What may not be used now is answered with KORO_RETURN_CODE_BAD_ACCESS, a missing node and an entry that is not
 * available included. Pointers are tested before handles, unlike elsewhere, and the node map of the construction counts
 * as one: null is KORO_RETURN_CODE_INVALID_ARGUMENT.
 */
#ifndef KORO_FILE_ADAPTER_H
#define KORO_FILE_ADAPTER_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Makes an adapter for one file. Opens nothing on the device.
 * @param[in]  nodeMapHandle     the features of a remote device
 * @param[in]  fileName          symbolic value of an entry of "FileSelector", available or not; need not be terminated
 * @param[in]  fileNameSize      its size in bytes, with a terminating zero counted
 * @param[out] fileAdapterHandle ends by KORO_FileAdapter_Destruct; a new one each time
 * @return KORO_RETURN_CODE_NOT_AVAILABLE when the device has no such file
 */
KORO_API KORO_ReturnCode KORO_FileAdapter_Construct(
    KORO_NodeMapHandle nodeMapHandle, const char* fileName, size_t fileNameSize,
    KORO_FileAdapterHandle* fileAdapterHandle);

/** Ends the adapter. A transfer that is running on another thread finishes. */
KORO_API KORO_ReturnCode KORO_FileAdapter_Destruct(KORO_FileAdapterHandle fileAdapter);

/** Gives the size of the file in bytes, as the node "FileSize" tells it. */
KORO_API KORO_ReturnCode KORO_FileAdapter_GetSize(KORO_FileAdapterHandle fileAdapter, uint64_t* size);

/** Gives the size that the file can have in bytes: the maximum of the node "FileSize". */
KORO_API KORO_ReturnCode KORO_FileAdapter_GetMaxSize(KORO_FileAdapterHandle fileAdapter, uint64_t* maxSize);

/**
 * Reads a part of the file: opens it, reads, closes it.
 * @param[in]  size     bytes to be read
 * @param[in]  offset   of the first byte in the file
 * @param[out] data     room for `size` bytes
 * @param[out] dataSize bytes that were read, also when these are too few; left as it is when nothing could be tried
 * @return KORO_RETURN_CODE_OUT_OF_RANGE when the file ends earlier, KORO_RETURN_CODE_ERROR when the device gave less
 *         than it has, or refused to open the file; in both cases what was read is there, and also when the size of the
 *         file, which then decides, cannot be told
 */
KORO_API KORO_ReturnCode KORO_FileAdapter_Read(
    KORO_FileAdapterHandle fileAdapter, uint64_t size, uint64_t offset, uint8_t* data, uint64_t* dataSize);

/**
 * Writes a part of the file: opens it, writes, closes it.
 * @param[in] data   `size` bytes
 * @param[in] size   number of bytes
 * @param[in] offset of the first byte in the file
 * @return KORO_RETURN_CODE_OUT_OF_RANGE when that is more than the file can have, also when the device takes no such
 *         offset, before anything moves then. KORO_RETURN_CODE_ERROR when the device took fewer bytes or refused to
 *         open the file; this one answer leaves the last error of the thread as it was
 */
KORO_API KORO_ReturnCode
KORO_FileAdapter_Write(KORO_FileAdapterHandle fileAdapter, const uint8_t* data, uint64_t size, uint64_t offset);

/** Deletes the file's contents or the file, as the device has it. Succeeds whatever the device answers. */
KORO_API KORO_ReturnCode KORO_FileAdapter_Delete(KORO_FileAdapterHandle fileAdapter);

#ifdef __cplusplus
}
#endif

#endif
