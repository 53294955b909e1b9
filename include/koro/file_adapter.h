/*
 * A file on a device, such as firmware, user data or a table. The entries of the node "FileSelector" list the files.
 *
 * The application ends a handle with KORO_FileAdapter_Destruct. The handle does not keep the node map: after the map
 * has ended every function except KORO_FileAdapter_Destruct returns KORO_RETURN_CODE_ERROR. Any thread may call these
 * functions. Each function selects the file and holds the lock of the map while it runs, so other threads that use the
 * map wait for the whole transfer. Use one file at a time. Files are transferred through registers, in blocks whose
 * size the device determines, so transfers are slow.
 *
 * An operation that is not allowed now returns KORO_RETURN_CODE_BAD_ACCESS, also when a node is missing or an entry is
 * not available. Unlike elsewhere, pointers are checked before handles, and the node map handle of
 * KORO_FileAdapter_Construct counts as a pointer: null is answered with KORO_RETURN_CODE_INVALID_ARGUMENT.
 */
#ifndef KORO_FILE_ADAPTER_H
#define KORO_FILE_ADAPTER_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Creates an adapter for one file. It does not open the file on the device.
 * @param[in]  nodeMapHandle     the node map of a remote device
 * @param[in]  fileName          symbolic value of an entry of "FileSelector", available or not; need not be
 *                               zero-terminated
 * @param[in]  fileNameSize      number of bytes including a terminating zero, strlen + 1; the last byte is not read
 * @param[out] fileAdapterHandle a new handle for each call; end it with KORO_FileAdapter_Destruct
 * @return KORO_RETURN_CODE_NOT_AVAILABLE when the device has no such file
 */
KORO_API KORO_ReturnCode KORO_FileAdapter_Construct(
    KORO_NodeMapHandle nodeMapHandle, const char* fileName, size_t fileNameSize,
    KORO_FileAdapterHandle* fileAdapterHandle);

/** Ends the handle. A transfer that is running on another thread continues to its end. */
KORO_API KORO_ReturnCode KORO_FileAdapter_Destruct(KORO_FileAdapterHandle fileAdapter);

/** Returns the size of the file in bytes: the value of the node "FileSize". */
KORO_API KORO_ReturnCode KORO_FileAdapter_GetSize(KORO_FileAdapterHandle fileAdapter, uint64_t* size);

/** Returns the maximum size of the file in bytes: the maximum of the node "FileSize". */
KORO_API KORO_ReturnCode KORO_FileAdapter_GetMaxSize(KORO_FileAdapterHandle fileAdapter, uint64_t* maxSize);

/**
 * Reads a part of the file: opens it, reads, closes it.
 * @param[in]  size     number of bytes to read
 * @param[in]  offset   offset of the first byte in the file
 * @param[out] data     room for `size` bytes
 * @param[out] dataSize number of bytes that were read, also when there are fewer than requested; unchanged when the
 *                      read could not be attempted
 * @return KORO_RETURN_CODE_OUT_OF_RANGE when the file ends earlier; KORO_RETURN_CODE_ERROR when the device delivered
 *         fewer bytes than the file has, or refused to open the file. The file size distinguishes these cases; if it
 *         cannot be read, the code is that of this failure. In each case `data` contains the bytes that were read
 */
KORO_API KORO_ReturnCode KORO_FileAdapter_Read(
    KORO_FileAdapterHandle fileAdapter, uint64_t size, uint64_t offset, uint8_t* data, uint64_t* dataSize);

/**
 * Writes a part of the file: opens it, writes, closes it.
 * @param[in] data   `size` bytes
 * @param[in] size   number of bytes
 * @param[in] offset offset of the first byte in the file
 * @return KORO_RETURN_CODE_OUT_OF_RANGE when the bytes exceed the maximum size of the file, or when the device does not
 *         accept the offset, in which case nothing is written. KORO_RETURN_CODE_ERROR when the device accepted fewer
 *         bytes or refused to open the file; only in this case the last error of the thread is not updated
 */
KORO_API KORO_ReturnCode
KORO_FileAdapter_Write(KORO_FileAdapterHandle fileAdapter, const uint8_t* data, uint64_t size, uint64_t offset);

/** Deletes the file or its contents, depending on the device. Returns success even if the device refuses. */
KORO_API KORO_ReturnCode KORO_FileAdapter_Delete(KORO_FileAdapterHandle fileAdapter);

#ifdef __cplusplus
}
#endif

#endif
