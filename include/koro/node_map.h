/*
 * The features of a module, as one description tells them: a map of nodes by list and by name. A handle comes from
 * KORO_Module_GetNodeMap and ends with the module; there is nothing to destruct.
 *
 * A description is read when the first function needs it, so the first call on a map may take long, and tells what is
 * wrong with the description. A call after a failure tries again. Nodes never change afterwards: names and handles stay
 * for the life of the map.
 *
 * Every map has one lock, which is recursive. Functions that write, invalidate or poll take it for their own length;
 * callbacks of nodes run while it is held. Any thread may call any function.
 */
#ifndef KORO_NODE_MAP_H
#define KORO_NODE_MAP_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Tells whether the map has a node. The letter case of names counts.
 * @param[in]  nodeName     name without name space; need not be terminated
 * @param[in]  nodeNameSize its size in bytes, with a terminating zero counted: strlen + 1
 * @param[out] hasNode      1 if there is one
 */
KORO_API KORO_ReturnCode KORO_NodeMap_GetHasNode(
    KORO_NodeMapHandle nodeMapHandle, const char* nodeName, size_t nodeNameSize, KORO_Bool8* hasNode);

/**
 * Gives a node by its name. The same handle each time. No call of the producer but for the first use of the map.
 * @param[in]  nodeName     name without name space; need not be terminated
 * @param[in]  nodeNameSize its size in bytes, with a terminating zero counted
 * @param[out] nodeHandle   ends with the map
 * @return KORO_RETURN_CODE_NOT_FOUND when there is no such node
 */
KORO_API KORO_ReturnCode KORO_NodeMap_FindNode(
    KORO_NodeMapHandle nodeMapHandle, const char* nodeName, size_t nodeNameSize, KORO_NodeHandle* nodeHandle);

/**
 * Gives a node by its name; one that is missing is no failure.
 * @param[in]  nodeName     name without name space; need not be terminated
 * @param[in]  nodeNameSize its size in bytes, with a terminating zero counted
 * @param[out] nodeHandle   ends with the map; null when there is no such node
 */
KORO_API KORO_ReturnCode KORO_NodeMap_TryFindNode(
    KORO_NodeMapHandle nodeMapHandle, const char* nodeName, size_t nodeNameSize, KORO_NodeHandle* nodeHandle);

/** Gives the number of nodes, those that are no features included. */
KORO_API KORO_ReturnCode KORO_NodeMap_GetNumNodes(KORO_NodeMapHandle nodeMapHandle, size_t* numNodes);

/**
 * Gives one node. The same handle each time.
 * @param[in]  index      0 to the number of nodes less 1
 * @param[out] nodeHandle ends with the map
 * @return KORO_RETURN_CODE_ERROR for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_NodeMap_GetNode(KORO_NodeMapHandle nodeMapHandle, size_t index, KORO_NodeHandle* nodeHandle);

/**
 * Tells whether the chunks of a buffer can be read as nodes of this map: whether the bytes of the buffer are a
 * whole chain of chunks in the form of the transport layer: those that the frame filled
 * (KORO_Buffer_GetDeliveredDataSize), or all that were announced where the producer does not know. Takes the lock. A
 * buffer without chunks has none that are supported. The first buffer with chunks that a map is asked about decides the
 * form, by its transport layer type, for the life of the map: "GEV", "U3V" and "IIDC" have one.
 * @param[out] hasSupportedChunks 1 when KORO_NodeMap_UpdateChunkNodes can take the buffer
 * @return KORO_RETURN_CODE_ERROR for a transport layer type without a form of chunks
 */
KORO_API KORO_ReturnCode KORO_NodeMap_GetHasBufferSupportedChunks(
    KORO_NodeMapHandle nodeMapHandle, KORO_BufferHandle bufferHandle, KORO_Bool8* hasSupportedChunks);

/**
 * Attaches a buffer: from now on the chunk nodes of the map read, and write, the memory of this buffer itself, until
 * the next update, or until the buffer is revoked, after which they are not available. So read them before the buffer
 * is queued again: the producer fills it while they look. Nodes of chunks that the buffer does not have are not
 * available. A buffer without chunks succeeds and changes nothing. Takes the lock; the changed callbacks of chunk nodes
 * run within, on this thread. Meanwhile no other thread may revoke a buffer that was given to this map. The revocation
 * of the attached buffer takes the lock, at the end of the stream too. A buffer whose
 * producer tells the same chunk layout id as for the buffer before is attached without a look at its bytes.
 * @return KORO_RETURN_CODE_ERROR when the layout or the checksum of the buffer is broken, or when its transport layer
 *         type has no form of chunks. The nodes then read what they read before
 */
KORO_API KORO_ReturnCode
KORO_NodeMap_UpdateChunkNodes(KORO_NodeMapHandle nodeMapHandle, KORO_BufferHandle bufferHandle);

/**
 * Tells whether an event has data for nodes of this map. Events of the camera, KORO_EVENT_REMOTE_DEVICE, are taken from
 * the local device and belong to the maps of its remote device. KORO_EVENT_FEATURE_INVALIDATE,
 * KORO_EVENT_FEATURE_CHANGE, KORO_EVENT_MODULE and events of the producer's own belong to the maps of the module that
 * they were taken from. Takes the lock.
 * The form of the events is that of the transport layer type of the map's port: "GEV", "U3V", "CL" and "1394" have one.
 * @param[out] hasSupportedData 1 when KORO_NodeMap_UpdateEventNodes can take the event
 * @return KORO_RETURN_CODE_ERROR for a transport layer type without a form of events
 */
KORO_API KORO_ReturnCode KORO_NodeMap_GetHasEventSupportedData(
    KORO_NodeMapHandle nodeMapHandle, KORO_EventHandle eventHandle, KORO_Bool8* hasSupportedData);

/**
 * Delivers an event: the nodes with its id change, and the event nodes of the map read its data until the next event of
 * that id. The bytes are copied, so the event may be destructed. An id that no node has changes nothing.
 * Takes the lock; the changed callbacks of those nodes run within, on this thread.
 * @return KORO_RETURN_CODE_INVALID_ARGUMENT when the event has no data for this map; KORO_RETURN_CODE_ERROR when its
 *         bytes are no message of the transport layer. The nodes then read what they read before
 */
KORO_API KORO_ReturnCode KORO_NodeMap_UpdateEventNodes(KORO_NodeMapHandle nodeMapHandle, KORO_EventHandle eventHandle);

/**
 * Writes the values of the features to a text file: all that are streamable and can be read and written now, those
 * with selectors at each combination of these. Selectors are moved for this and set back. A file that is there is
 * emptied first, so a failure leaves it without features.
 * @param[in] filePath     in UTF-8; need not be terminated. The folder must be there
 * @param[in] filePathSize its size in bytes, with a terminating zero counted
 * @return KORO_RETURN_CODE_INVALID_ARGUMENT when the file cannot be opened, KORO_RETURN_CODE_IO_ERROR when it cannot be
 *         written to its end; what a feature refuses arrives with the text of that feature
 */
KORO_API KORO_ReturnCode
KORO_NodeMap_StoreToFile(KORO_NodeMapHandle nodeMapHandle, const char* filePath, size_t filePathSize);

/**
 * Writes the values of such a file back to the device, in the order of the file, and then compares what can be read
 * with the file. All that can be written is written, whatever values are refused; a failed transfer ends the loading.
 * Nothing is set back after a failure. Takes the lock; the file is read before that. Changed callbacks run within, on
 * this thread.
 * @param[in] filePath     in UTF-8; need not be terminated
 * @param[in] filePathSize its size in bytes, with a terminating zero counted
 * @return KORO_RETURN_CODE_INVALID_ARGUMENT when the file cannot be opened, KORO_RETURN_CODE_ERROR when it is no
 *         feature file, then nothing is written, and when a value was refused or is read back as another one: the text
 *         is that of the first such feature; the code of a failed transfer
 */
KORO_API KORO_ReturnCode
KORO_NodeMap_LoadFromFile(KORO_NodeMapHandle nodeMapHandle, const char* filePath, size_t filePathSize);

/**
 * Drops everything that the nodes remember of the registers, so that the next reads ask the producer. Takes the lock.
 * The changed callbacks of all nodes run within, on this thread.
 */
KORO_API KORO_ReturnCode KORO_NodeMap_InvalidateNodes(KORO_NodeMapHandle nodeMapHandle);

/**
 * Tells the nodes that time has passed: those whose polling time is over drop what they remember, and their changed
 * callbacks run, on this thread. Takes the lock. The library has no thread that polls: call it regularly.
 * @param[in] elapsedTime_ms milliseconds since the last call
 */
KORO_API KORO_ReturnCode KORO_NodeMap_PollNodes(KORO_NodeMapHandle nodeMapHandle, int64_t elapsedTime_ms);

/**
 * Takes the lock for several calls that belong together, such as choosing by a selector and setting what it selects.
 * Waits without end while another thread holds it. Each success needs one KORO_NodeMap_Unlock on the same thread,
 * before the module ends. When that ends meanwhile, the lock is given back at the latest by the unlock, which then
 * answers KORO_RETURN_CODE_INVALID_HANDLE.
 * A thread that ends before its unlock never gives the lock back: who needs it waits for ever, and the map is not freed.
 */
KORO_API KORO_ReturnCode KORO_NodeMap_Lock(KORO_NodeMapHandle nodeMapHandle);

/** Gives back one KORO_NodeMap_Lock. On a thread that does not hold the lock it changes nothing. */
KORO_API KORO_ReturnCode KORO_NodeMap_Unlock(KORO_NodeMapHandle nodeMapHandle);

/**
 * Takes the lock if no other thread holds it, without waiting.
 * @param[out] locked 1 when the lock was taken, then give it back by KORO_NodeMap_Unlock; 0 when it was not
 */
KORO_API KORO_ReturnCode KORO_NodeMap_TryLock(KORO_NodeMapHandle nodeMapHandle, KORO_Bool8* locked);

#ifdef __cplusplus
}
#endif

#endif
