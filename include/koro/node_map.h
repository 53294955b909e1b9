/*
 * The features of a module, as one description defines them: a map of nodes, accessible by index and by name. A handle
 * comes from KORO_Module_GetNodeMap and ends with the module; there is no function to destruct it.
 *
 * The description is parsed when a function first needs it, so the first call on a map may take long, and it reports
 * errors of the description. The next call after a failure tries again. After that the set of nodes never changes:
 * names and handles stay valid for the life of the map.
 *
 * Every map has one recursive lock. Functions that write, invalidate or poll hold it while they run, and callbacks of
 * nodes are called while it is held. Any thread may call these functions.
 */
#ifndef KORO_NODE_MAP_H
#define KORO_NODE_MAP_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Reports whether the map has a node with this name. Names are case-sensitive.
 * @param[in]  nodeName     name without namespace; need not be zero-terminated
 * @param[in]  nodeNameSize number of bytes including a terminating zero, strlen + 1; the last byte is not read
 * @param[out] hasNode      1 if there is one
 */
KORO_API KORO_ReturnCode KORO_NodeMap_GetHasNode(
    KORO_NodeMapHandle nodeMapHandle, const char* nodeName, size_t nodeNameSize, KORO_Bool8* hasNode);

/**
 * Returns a node by its name. Each call returns the same handle. Only the first use of the map calls the producer.
 * @param[in]  nodeName     name without namespace; need not be zero-terminated
 * @param[in]  nodeNameSize number of bytes including a terminating zero, strlen + 1; the last byte is not read
 * @param[out] nodeHandle   ends with the map
 * @return KORO_RETURN_CODE_NOT_FOUND when there is no such node
 */
KORO_API KORO_ReturnCode KORO_NodeMap_FindNode(
    KORO_NodeMapHandle nodeMapHandle, const char* nodeName, size_t nodeNameSize, KORO_NodeHandle* nodeHandle);

/**
 * Returns a node by its name; a missing node is not a failure.
 * @param[in]  nodeName     name without namespace; need not be zero-terminated
 * @param[in]  nodeNameSize number of bytes including a terminating zero, strlen + 1; the last byte is not read
 * @param[out] nodeHandle   ends with the map; null when there is no such node
 */
KORO_API KORO_ReturnCode KORO_NodeMap_TryFindNode(
    KORO_NodeMapHandle nodeMapHandle, const char* nodeName, size_t nodeNameSize, KORO_NodeHandle* nodeHandle);

/** Returns the number of all nodes, including those that are not features. */
KORO_API KORO_ReturnCode KORO_NodeMap_GetNumNodes(KORO_NodeMapHandle nodeMapHandle, size_t* numNodes);

/**
 * Returns one node. Each call returns the same handle.
 * @param[in]  index      0 to the number of nodes minus 1
 * @param[out] nodeHandle ends with the map
 * @return KORO_RETURN_CODE_ERROR for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_NodeMap_GetNode(KORO_NodeMapHandle nodeMapHandle, size_t index, KORO_NodeHandle* nodeHandle);

/**
 * Reports whether the chunks of a buffer can be read as nodes of this map. This requires that the buffer's bytes form a
 * complete chain of chunks in the layout of the transport layer. The bytes are those that the frame filled
 * (KORO_Buffer_GetDeliveredDataSize), or all announced bytes if the producer does not report the number. For a buffer
 * without chunks the result is 0. The first buffer with chunks that is passed for a map determines the layout, by its
 * transport layer type, for the life of the map: layouts exist for "GEV", "U3V" and "IIDC". Takes the lock.
 * @param[out] hasSupportedChunks 1 when KORO_NodeMap_UpdateChunkNodes accepts the buffer
 * @return KORO_RETURN_CODE_ERROR for a transport layer type that has no chunk layout
 */
KORO_API KORO_ReturnCode KORO_NodeMap_GetHasBufferSupportedChunks(
    KORO_NodeMapHandle nodeMapHandle, KORO_BufferHandle bufferHandle, KORO_Bool8* hasSupportedChunks);

/**
 * Attaches a buffer: from now on the chunk nodes of the map read and write the memory of this buffer, until the next
 * update or until the buffer is revoked. After the revocation they are not available. Read them before the buffer is
 * queued again, since the producer then overwrites what they read. Nodes of chunks that the buffer does not contain are
 * not available. For a buffer without chunks the function succeeds and changes nothing.
 * The function takes the lock; the changed callbacks of chunk nodes run on the calling thread before it returns.
 * Meanwhile no other thread may revoke a buffer that was attached to this map. Revoking the attached buffer takes the
 * lock too, also when the end of the stream revokes it. If the producer reports the same chunk layout id as for the
 * previous buffer, the buffer is attached without a check of its bytes.
 * @return KORO_RETURN_CODE_ERROR when the layout or the checksum of the buffer is wrong, or when its transport layer
 *         type has no chunk layout. The nodes then keep reading the previous buffer
 */
KORO_API KORO_ReturnCode
KORO_NodeMap_UpdateChunkNodes(KORO_NodeMapHandle nodeMapHandle, KORO_BufferHandle bufferHandle);

/**
 * Reports whether an event has data for nodes of this map. Events of the camera, KORO_EVENT_REMOTE_DEVICE, are received
 * from the local device and belong to the maps of its remote device. KORO_EVENT_FEATURE_INVALIDATE,
 * KORO_EVENT_FEATURE_CHANGE, KORO_EVENT_MODULE and producer-specific events belong to the maps of the module from which
 * they were received. The transport layer type of the map's port determines the layout of the events: layouts exist for
 * "GEV", "U3V", "CL" and "1394". Takes the lock.
 * @param[out] hasSupportedData 1 when KORO_NodeMap_UpdateEventNodes accepts the event
 * @return KORO_RETURN_CODE_ERROR for a transport layer type that has no event layout
 */
KORO_API KORO_ReturnCode KORO_NodeMap_GetHasEventSupportedData(
    KORO_NodeMapHandle nodeMapHandle, KORO_EventHandle eventHandle, KORO_Bool8* hasSupportedData);

/**
 * Delivers an event to the map: the event nodes with its id take its data, until the next event with that id. The bytes
 * are copied, so the event may be destructed. An id that belongs to no node changes nothing. Takes the lock; the
 * changed callbacks of those nodes run on the calling thread before the function returns.
 * @return KORO_RETURN_CODE_INVALID_ARGUMENT when the event has no data for this map; KORO_RETURN_CODE_ERROR when its
 *         bytes are not a message of the transport layer. The nodes then keep their values
 */
KORO_API KORO_ReturnCode KORO_NodeMap_UpdateEventNodes(KORO_NodeMapHandle nodeMapHandle, KORO_EventHandle eventHandle);

/**
 * Writes the values of the features to a text file: of all features that are streamable and can be read and written
 * now. Features with selectors are written for each combination of selector values; the selectors are changed for this
 * and restored. An existing file is cleared first, so after a failure it contains no features.
 * @param[in] filePath     path in UTF-8; need not be zero-terminated. The folder must exist
 * @param[in] filePathSize number of bytes including a terminating zero, strlen + 1; the last byte is not read
 * @return KORO_RETURN_CODE_INVALID_ARGUMENT when the file cannot be opened; KORO_RETURN_CODE_IO_ERROR when it cannot be
 *         written completely; if a feature fails, the code and the text of that failure
 */
KORO_API KORO_ReturnCode
KORO_NodeMap_StoreToFile(KORO_NodeMapHandle nodeMapHandle, const char* filePath, size_t filePathSize);

/**
 * Reads a file that KORO_NodeMap_StoreToFile wrote. Writes its values to the device, in the order of the file, and then
 * compares all readable values with the file. A value that the device refuses does not stop the loading; a failed
 * transfer does. After a failure nothing is restored. The function takes the lock after it has read the file. Changed
 * callbacks run on the calling thread before it returns.
 * @param[in] filePath     path in UTF-8; need not be zero-terminated
 * @param[in] filePathSize number of bytes including a terminating zero, strlen + 1; the last byte is not read
 * @return KORO_RETURN_CODE_INVALID_ARGUMENT when the file cannot be opened; KORO_RETURN_CODE_ERROR when it is not a
 *         feature file, in which case nothing is written, and when a value is refused or reads back differently, with
 *         the text of the first such feature; the code of a transfer that failed
 */
KORO_API KORO_ReturnCode
KORO_NodeMap_LoadFromFile(KORO_NodeMapHandle nodeMapHandle, const char* filePath, size_t filePathSize);

/**
 * Discards all cached register values, so that the next reads call the producer. Takes the lock. The changed callbacks
 * of all nodes run on the calling thread before the function returns.
 */
KORO_API KORO_ReturnCode KORO_NodeMap_InvalidateNodes(KORO_NodeMapHandle nodeMapHandle);

/**
 * Advances the polling clock of the map. Nodes whose polling time has expired discard their cached values, and their
 * changed callbacks run on the calling thread. Takes the lock. The library has no polling thread: call this function
 * regularly.
 * @param[in] elapsedTime_ms milliseconds since the last call
 */
KORO_API KORO_ReturnCode KORO_NodeMap_PollNodes(KORO_NodeMapHandle nodeMapHandle, int64_t elapsedTime_ms);

/**
 * Takes the lock for several calls that belong together, for example setting a selector and then the selected feature.
 * Waits without limit while another thread holds the lock. Each success requires one KORO_NodeMap_Unlock on the same
 * thread, before the module ends. If the module ends before that, the lock is released at the latest by the unlock,
 * which then returns KORO_RETURN_CODE_INVALID_HANDLE.
 * A thread that ends without unlocking never releases the lock: threads that need it wait forever, and the map is not
 * freed.
 */
KORO_API KORO_ReturnCode KORO_NodeMap_Lock(KORO_NodeMapHandle nodeMapHandle);

/** Releases one KORO_NodeMap_Lock. On a thread that does not hold the lock it changes nothing. */
KORO_API KORO_ReturnCode KORO_NodeMap_Unlock(KORO_NodeMapHandle nodeMapHandle);

/**
 * Takes the lock if no other thread holds it. Does not wait.
 * @param[out] locked 1 when the lock was taken and must be released by KORO_NodeMap_Unlock; 0 when it was not taken
 */
KORO_API KORO_ReturnCode KORO_NodeMap_TryLock(KORO_NodeMapHandle nodeMapHandle, KORO_Bool8* locked);

#ifdef __cplusplus
}
#endif

#endif
