/*
 * A loaded GenTL producer: one .cti file, the root of its module tree.
 *
 * The handle ends with KORO_ProducerLibrary_Destruct or with the last KORO_Library_Close, together with all handles
 * below it. The producer is closed when none of its modules is in use any more. Some producers leave threads running,
 * so the code of a producer that has started stays mapped until the process ends. If the .cti file is replaced
 * meanwhile, the new file takes effect in the next process.
 */
#ifndef KORO_PRODUCER_LIBRARY_H
#define KORO_PRODUCER_LIBRARY_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Loads a producer and initialises it. The path is used as given, without a search.
 * @param[in]  ctiPath               path of the .cti file; need not be zero-terminated
 * @param[in]  ctiPathSize           number of bytes including a terminating zero, strlen + 1; the last byte is not read
 * @param[out] producerLibraryHandle a new handle; end it with KORO_ProducerLibrary_Destruct
 * @return KORO_RETURN_CODE_CTI_LOADING_ERROR when the file cannot be loaded; KORO_RETURN_CODE_ERROR when it lacks
 *         functions that its GenTL version demands or fails to start
 */
KORO_API KORO_ReturnCode KORO_ProducerLibrary_Construct(
    const char* ctiPath, size_t ctiPathSize, KORO_ProducerLibraryHandle* producerLibraryHandle);

/**
 * Ends the handle and every handle below it, and closes the producer. To close the modules in the order that GenTL
 * recommends, destruct them from the leaves: streams, devices, interfaces, system, library.
 * The function does not wait for other threads that are inside a call of this producer: each closes the objects that it
 * uses when it returns, and the producer is closed last. Waits that are running return KORO_RETURN_CODE_ABORTED. It
 * does wait for running callbacks of changed device information and of notifications from the producer; no such
 * callback runs after it. If another thread is inside a call, streams that no call uses are closed first, and this may
 * wait as KORO_DataStream_Destruct does.
 * @return KORO_RETURN_CODE_ERROR inside a callback that it would wait for; nothing ends then
 */
KORO_API KORO_ReturnCode KORO_ProducerLibrary_Destruct(KORO_ProducerLibraryHandle producerLibraryHandle);

/**
 * Returns the key: the path that was passed to KORO_ProducerLibrary_Construct. Does not call the producer.
 * @param[out] key, keySize the path
 */
KORO_API KORO_ReturnCode
KORO_ProducerLibrary_GetKey(KORO_ProducerLibraryHandle producerLibraryHandle, char* key, size_t* keySize);

/**
 * Returns the producer's only system, not yet opened. Each call returns the same handle.
 * @param[out] systemDescriptorHandle ends with the library; do not destruct it
 */
KORO_API KORO_ReturnCode KORO_ProducerLibrary_GetSystem(
    KORO_ProducerLibraryHandle producerLibraryHandle, KORO_SystemDescriptorHandle* systemDescriptorHandle);

#ifdef __cplusplus
}
#endif

#endif
