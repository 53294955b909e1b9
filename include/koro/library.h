/*
 * Start and end of the library, its version, and the text of the last failure.
 *
 * Initialisation is counted, so that several users in one process can start and close it independently. Initialize,
 * Close, IsInitialized and GetLastError work at any time; every other export of the library answers
 * KORO_RETURN_CODE_NOT_INITIALIZED while the count is zero.
 */
#ifndef KORO_LIBRARY_H
#define KORO_LIBRARY_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Counts up; the first call makes the handle tables. No producer is searched or loaded, no thread is started. */
KORO_API KORO_ReturnCode KORO_Library_Initialize(void);

/**
 * Counts down; the last call ends every handle, children before parents, closes all modules and all producers.
 * The code of a producer that has started stays mapped: docs/ownership.md. Waits that are inside return
 * KORO_RETURN_CODE_ABORTED, and callbacks of changed information and of the producer's own reports are waited for. Any
 * other call on another thread is not: what it uses is closed when it returns, children before parents. One exception:
 * to revoke a buffer that is attached to a node map it takes the lock of that map, as KORO_DataStream_Destruct does,
 * and KORO_Library_Initialize and KORO_Library_Close on other threads wait with it. Closing what was never initialised
 * is a success.
 * During the last close, KORO_Library_Initialize and KORO_Library_Close give KORO_RETURN_CODE_ERROR to a callback that
 * it waits for, to a changed callback of a node, and to a thread that holds the lock of a node map.
 * @return KORO_RETURN_CODE_ERROR for the last call inside a callback that it would wait for: nothing ends then
 */
KORO_API KORO_ReturnCode KORO_Library_Close(void);

/**
 * Tells whether the library is initialised.
 * @param[out] isInitialized 1 while the count is above zero
 */
KORO_API KORO_ReturnCode KORO_Library_IsInitialized(KORO_Bool8* isInitialized);

/**
 * Gives the first number of the library's version.
 * @param[out] libraryVersionMajor 1
 */
KORO_API KORO_ReturnCode KORO_Library_GetVersionMajor(uint32_t* libraryVersionMajor);

/**
 * Gives the second number of the library's version.
 * @param[out] libraryVersionMinor 11
 */
KORO_API KORO_ReturnCode KORO_Library_GetVersionMinor(uint32_t* libraryVersionMinor);

/**
 * Gives the third number of the library's version.
 * @param[out] libraryVersionSubminor 1
 */
KORO_API KORO_ReturnCode KORO_Library_GetVersionSubminor(uint32_t* libraryVersionSubminor);

/**
 * Gives the most recent failure of the calling thread. Ask on the thread whose call failed, and only after a code
 * other than 0: nothing clears the record, neither reading it nor a later success. A failure of this function
 * replaces the record; a size query changes nothing.
 * @param[out] lastErrorCode                                  code of that failure, 0 if this thread never failed
 * @param[out] lastErrorDescription, lastErrorDescriptionSize its text
 */
KORO_API KORO_ReturnCode
KORO_Library_GetLastError(KORO_ReturnCode* lastErrorCode, char* lastErrorDescription, size_t* lastErrorDescriptionSize);

#ifdef __cplusplus
}
#endif

#endif
