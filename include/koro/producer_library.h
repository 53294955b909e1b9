/*
 * A GenTL producer in use: one loaded .cti file, the root of the module tree.
 *
 * The handle ends with KORO_ProducerLibrary_Destruct or the last KORO_Library_Close, and all handles below it end
 * with it. The producer is closed when nothing of it is in use any more. Its code stays mapped to the end of the
 * process once it has started, since some producers leave threads behind: a file that is replaced on the disk meanwhile
 * takes effect in the next process.
 */
#ifndef KORO_PRODUCER_LIBRARY_H
#define KORO_PRODUCER_LIBRARY_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Loads a producer and initialises it. The file is found by the path as given, without a search.
 * @param[in]  ctiPath               path of the .cti file; need not be terminated
 * @param[in]  ctiPathSize           its size in bytes, with a terminating zero counted: strlen + 1
 * @param[out] producerLibraryHandle a new handle; end it with KORO_ProducerLibrary_Destruct
 * @return KORO_RETURN_CODE_CTI_LOADING_ERROR when the file cannot be loaded; KORO_RETURN_CODE_ERROR when it lacks
 *         functions that its GenTL version demands or fails to start
 */
KORO_API KORO_ReturnCode KORO_ProducerLibrary_Construct(
    const char* ctiPath, size_t ctiPathSize, KORO_ProducerLibraryHandle* producerLibraryHandle);

/**
 * Ends the handle and every handle below it, and closes the producer. To have the modules closed in GenTL's order,
 * destruct from the leaves: streams, devices, interfaces, system, library. A call that is inside the producer is not
 * waited for: what it uses is closed when it returns, and the producer last. Waits inside return
 * KORO_RETURN_CODE_ABORTED; callbacks of changed information and of the producer's own reports are waited for, and
 * there is none after it. Where a call is inside, idle streams end first, which may wait as KORO_DataStream_Destruct
 * does.
 * @return KORO_RETURN_CODE_ERROR inside a callback that it would wait for: nothing ends then
 */
KORO_API KORO_ReturnCode KORO_ProducerLibrary_Destruct(KORO_ProducerLibraryHandle producerLibraryHandle);

/**
 * Gives the key: the path given at the construction. No producer call.
 * @param[out] key, keySize the path
 */
KORO_API KORO_ReturnCode
KORO_ProducerLibrary_GetKey(KORO_ProducerLibraryHandle producerLibraryHandle, char* key, size_t* keySize);

/**
 * Gives the producer's one system, not yet opened. Each call gives the same handle.
 * @param[out] systemDescriptorHandle ends with the library; there is nothing to destruct
 */
KORO_API KORO_ReturnCode KORO_ProducerLibrary_GetSystem(
    KORO_ProducerLibraryHandle producerLibraryHandle, KORO_SystemDescriptorHandle* systemDescriptorHandle);

#ifdef __cplusplus
}
#endif

#endif
