/*
 * An opened data stream: the application announces and queues buffers, the producer fills them, and a wait returns
 * them.
 *
 * The usual order is: announce buffers, queue them, start the acquisition; wait for a buffer, use it and queue it
 * again; stop, flush, revoke. The library has no acquisition thread: a finished buffer is delivered on the thread that
 * waits. Several threads may wait. Image data is never copied. The handle ends with KORO_DataStream_Destruct, or with
 * its device. Each query except key and id calls the producer. Any thread may call these functions.
 */
#ifndef KORO_DATA_STREAM_H
#define KORO_DATA_STREAM_H

#include <koro/gentl_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Ends the handle, its Module and EventSupportingModule handles, and the handles of its buffers. Waits that are running
 * on the stream return KORO_RETURN_CODE_ABORTED. When no call uses the stream any more, the library stops it, discards
 * and revokes the remaining buffers and closes it. Destruct the stream before its device: the buffers of a stream whose
 * device ended first cannot be revoked.
 * To revoke a buffer that is attached to a node map (KORO_NodeMap_UpdateChunkNodes), the function takes the lock of
 * that map. It then waits for calls that use the map and for a thread that holds the lock.
 */
KORO_API KORO_ReturnCode KORO_DataStream_Destruct(KORO_DataStreamHandle dataStreamHandle);

/**
 * Announces memory of the application as a buffer of the stream. The buffer is not queued yet.
 * @param[in]  buffer             start of the memory; it must stay valid until the buffer is revoked or the device is
 *                                closed
 * @param[in]  bufferSize         size of the memory in bytes, all of which the producer may overwrite. Use at least the
 *                                payload size, or frames are incomplete. A larger size is allowed, for example to keep
 *                                the buffers when frames become smaller. KORO_Buffer_GetDeliveredDataSize returns how
 *                                many bytes a frame filled. Chunks are searched from the end of these bytes, or from
 *                                the end of the buffer if the producer does not report the number
 * @param[in]  userPtr            stored by the producer and returned by KORO_Buffer_GetUserPtr; may be null
 * @param[in]  revocationCallback called once when the buffer is revoked, on the thread that revokes it; null for none.
 *                                It must not revoke the same buffer. It is not called for a buffer that is never
 *                                revoked because its device ended before the stream or because the producer refused.
 *                                Nor is it called when this function fails, for example because another thread ends the
 *                                stream meanwhile; the memory may then be freed
 * @param[in]  callbackContext    passed to the callback unchanged; may be null
 * @param[out] bufferHandle       a new handle; ends with KORO_DataStream_RevokeBuffer or with the stream
 * @return KORO_RETURN_CODE_INVALID_ARGUMENT for a null buffer
 */
KORO_API KORO_ReturnCode KORO_DataStream_AnnounceBuffer(
    KORO_DataStreamHandle dataStreamHandle, void* buffer, size_t bufferSize, void* userPtr,
    KORO_BufferRevocationCallback revocationCallback, void* callbackContext, KORO_BufferHandle* bufferHandle);

/**
 * Lets the producer allocate and announce a buffer. The buffer is not queued yet.
 * @param[in]  bufferSize   bytes, as for KORO_DataStream_AnnounceBuffer
 * @param[in]  userPtr      stored by the producer and returned by KORO_Buffer_GetUserPtr; may be null
 * @param[out] bufferHandle a new handle; handle and memory end with KORO_DataStream_RevokeBuffer or with the stream
 * @return KORO_RETURN_CODE_BAD_ALLOC when the producer is out of memory
 */
KORO_API KORO_ReturnCode KORO_DataStream_AllocAndAnnounceBuffer(
    KORO_DataStreamHandle dataStreamHandle, size_t bufferSize, void* userPtr, KORO_BufferHandle* bufferHandle);

/**
 * Queues a buffer: the producer may fill it. Do not use its contents until a wait returns it.
 * @param[in] bufferHandle handle from the announcement or from the wait
 */
KORO_API KORO_ReturnCode
KORO_DataStream_QueueBuffer(KORO_DataStreamHandle dataStreamHandle, KORO_BufferHandle bufferHandle);

/**
 * Revokes a buffer from the stream that it was announced to; any stream of the same device may be passed. On success
 * the buffer's handle and its Module and EventSupportingModule handles end. If the producer refuses, nothing changes.
 * @param[in] bufferHandle handle from the announcement
 */
KORO_API KORO_ReturnCode
KORO_DataStream_RevokeBuffer(KORO_DataStreamHandle dataStreamHandle, KORO_BufferHandle bufferHandle);

/**
 * Waits on the calling thread for the next finished buffer. The library holds no lock meanwhile.
 * @param[in]  timeout_ms   milliseconds; KORO_INFINITE for no limit
 * @param[out] bufferHandle the existing handle from its announcement
 * @return KORO_RETURN_CODE_TIMEOUT when no buffer was finished in time; KORO_RETURN_CODE_ABORTED after
 *         KORO_DataStream_KillWait, and when the stream or one of its parents ends meanwhile: a frame that arrives then
 *         is lost
 */
KORO_API KORO_ReturnCode KORO_DataStream_WaitForFinishedBuffer(
    KORO_DataStreamHandle dataStreamHandle, uint64_t timeout_ms, KORO_BufferHandle* bufferHandle);

/**
 * Ends one running wait for a finished buffer, or the next wait if no thread is waiting. Any thread may call it, but
 * not a signal handler: the function takes locks, allocates memory and calls the producer. A signal handler can set a
 * flag or write to a pipe instead, so that a thread calls this function.
 */
KORO_API KORO_ReturnCode KORO_DataStream_KillWait(KORO_DataStreamHandle dataStreamHandle);

/**
 * Discards kills that no wait has received, and the finished buffers that no wait has taken. Call it while no thread
 * waits, and not before the first start, wait or kill of the stream.
 * @return KORO_RETURN_CODE_ERROR before the first start, wait or kill
 */
KORO_API KORO_ReturnCode KORO_DataStream_FlushPendingKillWaits(KORO_DataStreamHandle dataStreamHandle);

/**
 * Starts the acquisition on the host. The camera is started separately, by its features.
 * @param[in] startMode    KORO_ACQ_START_FLAGS_...
 * @param[in] numToAcquire number of buffers after which the stream stops by itself; KORO_INFINITE for no limit
 * @return KORO_RETURN_CODE_BAD_ACCESS when the acquisition is already running
 */
KORO_API KORO_ReturnCode
KORO_DataStream_StartAcquisition(KORO_DataStreamHandle dataStreamHandle, int32_t startMode, uint64_t numToAcquire);

/**
 * Starts the acquisition on the host without a limit on the number of buffers.
 * @param[in] startMode KORO_ACQ_START_FLAGS_...
 * @return KORO_RETURN_CODE_BAD_ACCESS when the acquisition is already running
 */
KORO_API KORO_ReturnCode
KORO_DataStream_StartAcquisitionInfinite(KORO_DataStreamHandle dataStreamHandle, int32_t startMode);

/**
 * Stops the acquisition on the host.
 * @param[in] stopMode KORO_ACQ_STOP_FLAGS_...
 */
KORO_API KORO_ReturnCode KORO_DataStream_StopAcquisition(KORO_DataStreamHandle dataStreamHandle, int32_t stopMode);

/**
 * Moves buffers between the producer's queues, or discards them.
 * @param[in] flushMode KORO_ACQ_QUEUE_...
 */
KORO_API KORO_ReturnCode KORO_DataStream_Flush(KORO_DataStreamHandle dataStreamHandle, int32_t flushMode);

/** Returns the key: the device's key, "|" and the id. Does not call the producer. */
KORO_API KORO_ReturnCode KORO_DataStream_GetKey(KORO_DataStreamHandle dataStreamHandle, char* key, size_t* keySize);

/** Returns the stream's id. Does not call the producer. */
KORO_API KORO_ReturnCode KORO_DataStream_GetID(KORO_DataStreamHandle dataStreamHandle, char* id, size_t* idSize);

/**
 * Returns any information about the stream as raw bytes.
 * @param[in]  infoCommand    KORO_STREAM_INFO_... or a producer-specific number
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the information; also set when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_DataStream_GetInfo(
    KORO_DataStreamHandle dataStreamHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info,
    size_t* infoSize);

/** Returns the transport layer type of the stream, such as "GEV" or "U3V". */
KORO_API KORO_ReturnCode
KORO_DataStream_GetTLType(KORO_DataStreamHandle dataStreamHandle, char* tlType, size_t* tlTypeSize);

/** Returns the number of announced buffers. */
KORO_API KORO_ReturnCode
KORO_DataStream_GetNumBuffersAnnounced(KORO_DataStreamHandle dataStreamHandle, size_t* numBuffersAnnounced);

/** Returns the smallest number of announced buffers with which the acquisition can start. */
KORO_API KORO_ReturnCode KORO_DataStream_GetNumBuffersAnnouncedMinRequired(
    KORO_DataStreamHandle dataStreamHandle, size_t* numBuffersAnnouncedMinRequired);

/** Returns the number of finished buffers that no wait has taken yet. */
KORO_API KORO_ReturnCode
KORO_DataStream_GetNumBuffersAwaitDelivery(KORO_DataStreamHandle dataStreamHandle, size_t* numBuffersAwaitDelivery);

/** Returns the number of buffers that are queued or being filled. */
KORO_API KORO_ReturnCode
KORO_DataStream_GetNumBuffersQueued(KORO_DataStreamHandle dataStreamHandle, size_t* numBuffersQueued);

/** Returns the number of buffers that were delivered since the last start. */
KORO_API KORO_ReturnCode
KORO_DataStream_GetNumBuffersDelivered(KORO_DataStreamHandle dataStreamHandle, uint64_t* numBuffersDelivered);

/** Returns the number of buffers that the producer has begun to fill since the stream was opened. */
KORO_API KORO_ReturnCode
KORO_DataStream_GetNumBuffersStarted(KORO_DataStreamHandle dataStreamHandle, uint64_t* numBuffersStarted);

/** Returns the number of frames that were lost because no buffer was queued. */
KORO_API KORO_ReturnCode
KORO_DataStream_GetNumUnderruns(KORO_DataStreamHandle dataStreamHandle, uint64_t* numUnderruns);

/** Returns the largest number of chunks that a buffer can hold. */
KORO_API KORO_ReturnCode
KORO_DataStream_GetNumChunksPerBufferMax(KORO_DataStreamHandle dataStreamHandle, size_t* numChunksPerBufferMax);

/**
 * Returns the alignment that the producer requires for the memory of buffers.
 * @param[out] bufferAlignment bytes; 1 if any address is allowed
 */
KORO_API KORO_ReturnCode
KORO_DataStream_GetBufferAlignment(KORO_DataStreamHandle dataStreamHandle, size_t* bufferAlignment);

/**
 * Returns the size that a buffer needs, if the stream defines it (KORO_DataStream_GetDefinesPayloadSize).
 * @param[out] payloadSize bytes
 */
KORO_API KORO_ReturnCode KORO_DataStream_GetPayloadSize(KORO_DataStreamHandle dataStreamHandle, size_t* payloadSize);

/**
 * Reports which module defines the payload size.
 * @param[out] definesPayloadSize 1: the stream, see KORO_DataStream_GetPayloadSize; 0: the camera, by its feature
 *                                PayloadSize
 */
KORO_API KORO_ReturnCode
KORO_DataStream_GetDefinesPayloadSize(KORO_DataStreamHandle dataStreamHandle, KORO_Bool8* definesPayloadSize);

/** Reports whether the acquisition is running. */
KORO_API KORO_ReturnCode KORO_DataStream_GetIsGrabbing(KORO_DataStreamHandle dataStreamHandle, KORO_Bool8* isGrabbing);

/**
 * Returns the device of the stream.
 * @param[out] deviceHandle the existing handle from its opening; do not destruct it separately
 */
KORO_API KORO_ReturnCode
KORO_DataStream_GetParentDevice(KORO_DataStreamHandle dataStreamHandle, KORO_DeviceHandle* deviceHandle);

/**
 * Returns the stream as a Module, which has a port and features. Each call returns the same handle.
 * @param[out] moduleHandle ends with the stream's handle
 */
KORO_API KORO_ReturnCode
KORO_DataStream_ToModule(KORO_DataStreamHandle dataStreamHandle, KORO_ModuleHandle* moduleHandle);

/**
 * Returns the stream as an EventSupportingModule, which registers events. Each call returns the same handle. The
 * library itself registers KORO_EVENT_NEW_BUFFER of a stream.
 * @param[out] eventSupportingModuleHandle ends with the stream's handle
 */
KORO_API KORO_ReturnCode KORO_DataStream_ToEventSupportingModule(
    KORO_DataStreamHandle dataStreamHandle, KORO_EventSupportingModuleHandle* eventSupportingModuleHandle);

#ifdef __cplusplus
}
#endif

#endif
