/*
 * Start and end of the library, its version, and the text of the last error.
 *
 * Initialisation is counted, so several users in one process can initialise and close the library independently.
 * KORO_Library_Initialize, KORO_Library_Close, KORO_Library_IsInitialized and KORO_Library_GetLastError work at any
 * time; all other functions return KORO_RETURN_CODE_NOT_INITIALIZED while the count is zero.
 */
#ifndef KORO_LIBRARY_H
#define KORO_LIBRARY_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Increments the count; the first call creates the handle tables. It does not search for producers, load them or start
 * a thread.
 */
KORO_API KORO_ReturnCode KORO_Library_Initialize(void);

/**
 * Decrements the count. The last call ends every handle, children before parents, and closes all modules and all
 * producers. The code of a producer that has started stays mapped: see docs/ownership.md. Closing a library that was
 * never initialised is a success.
 * Waits that are running return KORO_RETURN_CODE_ABORTED. The last call waits for running callbacks of changed device
 * information and of notifications from the producer. It does not wait for other calls on other threads: each closes
 * the objects that it uses when it returns, children before parents. There is one exception: to revoke a buffer that is
 * attached to a node map it takes the lock of that map, as KORO_DataStream_Destruct does, and KORO_Library_Initialize
 * and KORO_Library_Close on other threads wait as long.
 * During the last close KORO_Library_Initialize and KORO_Library_Close return KORO_RETURN_CODE_ERROR when they are
 * called in a callback that the close waits for, in a changed callback of a node, or on a thread that holds the lock of
 * a node map.
 * @return KORO_RETURN_CODE_ERROR for the last call inside a callback that it would wait for; nothing ends then
 */
KORO_API KORO_ReturnCode KORO_Library_Close(void);

/**
 * Reports whether the library is initialised.
 * @param[out] isInitialized 1 while the count is above zero
 */
KORO_API KORO_ReturnCode KORO_Library_IsInitialized(KORO_Bool8* isInitialized);

/**
 * Returns the major number of the library's version.
 * @param[out] libraryVersionMajor 1
 */
KORO_API KORO_ReturnCode KORO_Library_GetVersionMajor(uint32_t* libraryVersionMajor);

/**
 * Returns the minor number of the library's version.
 * @param[out] libraryVersionMinor 11
 */
KORO_API KORO_ReturnCode KORO_Library_GetVersionMinor(uint32_t* libraryVersionMinor);

/**
 * Returns the subminor number of the library's version.
 * @param[out] libraryVersionSubminor 1
 */
KORO_API KORO_ReturnCode KORO_Library_GetVersionSubminor(uint32_t* libraryVersionSubminor);

/**
 * Returns the most recent failure of the calling thread. Call it on the thread whose call failed, and only after a code
 * other than 0: the record is cleared neither by reading it nor by a later success. A failure of this function replaces
 * the record; a size query does not change it.
 * @param[out] lastErrorCode                                  code of that failure; 0 if no call has failed on this
 *                                                            thread
 * @param[out] lastErrorDescription, lastErrorDescriptionSize its text
 */
KORO_API KORO_ReturnCode
KORO_Library_GetLastError(KORO_ReturnCode* lastErrorCode, char* lastErrorDescription, size_t* lastErrorDescriptionSize);

#ifdef __cplusplus
}
#endif

#endif
