/*
 * An opened data stream: buffers are announced, queued, filled by the producer and taken by a wait.
 *
 * The usual order: announce buffers, queue them, start, then wait, use and queue again; stop, flush, revoke. There
 * is no acquisition thread: a finished buffer is taken on the thread that waits, several threads may wait, and no
 * image byte is ever copied. The handle ends with KORO_DataStream_Destruct, or with its device. Every query but key
 * and id asks the producer anew. Any thread.
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
 * Ends the handle, with its Module and EventSupportingModule handles, and the buffers' handles. Waits on the stream
 * that are inside return KORO_RETURN_CODE_ABORTED. When the last use of the stream ends, it stops, discards and revokes
 * what is left and is closed. Destruct before the device: a stream whose device went first can only be dropped.
 * To revoke a buffer that is attached to a node map (KORO_NodeMap_UpdateChunkNodes) it takes the lock of that map: it
 * waits for a call that is inside the map, and for a thread that holds the lock.
 */
KORO_API KORO_ReturnCode KORO_DataStream_Destruct(KORO_DataStreamHandle dataStreamHandle);

/**
 * Makes memory of the application known to the stream. It is not queued by this.
 * @param[in]  buffer             the memory; it must stay valid until the buffer is revoked or the device is closed
 * @param[in]  bufferSize         its size in bytes: what the producer may write. At least the payload size, or frames
 *                                come back incomplete; it may be larger, as when buffers are kept while the frames get
 *                                smaller. How many bytes of it a frame filled is KORO_Buffer_GetDeliveredDataSize; the
 *                                chunks end there, and at the end of the buffer for a producer that does not know
 * @param[in]  userPtr            kept by the producer and given back by KORO_Buffer_GetUserPtr; may be null
 * @param[in]  revocationCallback called once, when the buffer is revoked, on the thread that does it; null for
 *                                none. It must not revoke the same buffer. Not called for a buffer that is never
 *                                revoked: its device ended before the stream, or the producer refused. Not called
 *                                either when this function fails, as when the stream is ended on another thread
 *                                meanwhile; the memory is free again then
 * @param[in]  callbackContext    passed to the callback as it is; may be null
 * @param[out] bufferHandle       a new handle; ends with KORO_DataStream_RevokeBuffer or the stream
 * @return KORO_RETURN_CODE_INVALID_ARGUMENT for a null buffer
 */
KORO_API KORO_ReturnCode KORO_DataStream_AnnounceBuffer(
    KORO_DataStreamHandle dataStreamHandle, void* buffer, size_t bufferSize, void* userPtr,
    KORO_BufferRevocationCallback revocationCallback, void* callbackContext, KORO_BufferHandle* bufferHandle);

/**
 * Lets the producer allocate a buffer and announce it. It is not queued by this.
 * @param[in]  bufferSize   bytes, as for KORO_DataStream_AnnounceBuffer
 * @param[in]  userPtr      kept by the producer and given back by KORO_Buffer_GetUserPtr; may be null
 * @param[out] bufferHandle a new handle; ends with KORO_DataStream_RevokeBuffer or the stream, and the memory with
 *                          it
 * @return KORO_RETURN_CODE_BAD_ALLOC when the producer has no memory left
 */
KORO_API KORO_ReturnCode KORO_DataStream_AllocAndAnnounceBuffer(
    KORO_DataStreamHandle dataStreamHandle, size_t bufferSize, void* userPtr, KORO_BufferHandle* bufferHandle);

/**
 * Hands a buffer to the producer to be filled. Its contents belong to the producer until the wait returns it.
 * @param[in] bufferHandle from the announcement or the wait
 */
KORO_API KORO_ReturnCode
KORO_DataStream_QueueBuffer(KORO_DataStreamHandle dataStreamHandle, KORO_BufferHandle bufferHandle);

/**
 * Takes a buffer back from the stream that it was announced to, regardless of which stream of the device is named. On
 * success its handle and its Module and EventSupportingModule handles end;
 * if the producer refuses, everything stays as it was.
 * @param[in] bufferHandle from the announcement
 */
KORO_API KORO_ReturnCode
KORO_DataStream_RevokeBuffer(KORO_DataStreamHandle dataStreamHandle, KORO_BufferHandle bufferHandle);

/**
 * Waits on the calling thread for the next finished buffer. No lock is held meanwhile.
 * @param[in]  timeout_ms   milliseconds; KORO_INFINITE waits without end
 * @param[out] bufferHandle the handle from the announcement: nothing new to destruct
 * @return KORO_RETURN_CODE_TIMEOUT when none came; KORO_RETURN_CODE_ABORTED after KORO_DataStream_KillWait
 *         and when the stream, or what it is opened from, is ended meanwhile: a frame that came then is lost
 */
KORO_API KORO_ReturnCode KORO_DataStream_WaitForFinishedBuffer(
    KORO_DataStreamHandle dataStreamHandle, uint64_t timeout_ms, KORO_BufferHandle* bufferHandle);

/**
 * Ends one wait for a finished buffer, or the next one if nobody waits. Any thread, but no signal handler: it takes
 * locks, allocates memory and calls the producer. Let the handler set a flag or write to a pipe, and kill from a thread.
 */
KORO_API KORO_ReturnCode KORO_DataStream_KillWait(KORO_DataStreamHandle dataStreamHandle);

/**
 * Drops kills that found no waiter, and the finished buffers that nobody has taken. Not while another thread waits,
 * and not before the first start, wait or kill of the stream.
 * @return KORO_RETURN_CODE_ERROR before the first start, wait or kill
 */
KORO_API KORO_ReturnCode KORO_DataStream_FlushPendingKillWaits(KORO_DataStreamHandle dataStreamHandle);

/**
 * Starts the acquisition on the host. The camera is started by its own features.
 * @param[in] startMode    KORO_ACQ_START_FLAGS_...
 * @param[in] numToAcquire number of buffers after which the stream stops by itself; KORO_INFINITE for no end
 * @return KORO_RETURN_CODE_BAD_ACCESS when it is started already
 */
KORO_API KORO_ReturnCode
KORO_DataStream_StartAcquisition(KORO_DataStreamHandle dataStreamHandle, int32_t startMode, uint64_t numToAcquire);

/**
 * Starts the acquisition on the host, without an end.
 * @param[in] startMode KORO_ACQ_START_FLAGS_...
 * @return KORO_RETURN_CODE_BAD_ACCESS when it is started already
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

/** Gives the key: the device's key, "|", the id. No producer call. */
KORO_API KORO_ReturnCode KORO_DataStream_GetKey(KORO_DataStreamHandle dataStreamHandle, char* key, size_t* keySize);

/** Gives the stream's id. No producer call. */
KORO_API KORO_ReturnCode KORO_DataStream_GetID(KORO_DataStreamHandle dataStreamHandle, char* id, size_t* idSize);

/**
 * Gives any information of the stream as raw bytes.
 * @param[in]  infoCommand    KORO_STREAM_INFO_... or a number of the producer's own
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the answer; valid also when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_DataStream_GetInfo(
    KORO_DataStreamHandle dataStreamHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info,
    size_t* infoSize);

/** Gives the transport layer type of the stream, such as "GEV" or "U3V". */
KORO_API KORO_ReturnCode
KORO_DataStream_GetTLType(KORO_DataStreamHandle dataStreamHandle, char* tlType, size_t* tlTypeSize);

/** Gives the number of announced buffers. */
KORO_API KORO_ReturnCode
KORO_DataStream_GetNumBuffersAnnounced(KORO_DataStreamHandle dataStreamHandle, size_t* numBuffersAnnounced);

/** Gives the fewest buffers with which the acquisition can start. */
KORO_API KORO_ReturnCode KORO_DataStream_GetNumBuffersAnnouncedMinRequired(
    KORO_DataStreamHandle dataStreamHandle, size_t* numBuffersAnnouncedMinRequired);

/** Gives the number of finished buffers that no wait has taken yet. */
KORO_API KORO_ReturnCode
KORO_DataStream_GetNumBuffersAwaitDelivery(KORO_DataStreamHandle dataStreamHandle, size_t* numBuffersAwaitDelivery);

/** Gives the number of buffers that wait to be filled or are being filled. */
KORO_API KORO_ReturnCode
KORO_DataStream_GetNumBuffersQueued(KORO_DataStreamHandle dataStreamHandle, size_t* numBuffersQueued);

/** Gives the number of buffers delivered since the last start. */
KORO_API KORO_ReturnCode
KORO_DataStream_GetNumBuffersDelivered(KORO_DataStreamHandle dataStreamHandle, uint64_t* numBuffersDelivered);

/** Gives the number of buffers whose filling has begun since the stream was opened. */
KORO_API KORO_ReturnCode
KORO_DataStream_GetNumBuffersStarted(KORO_DataStreamHandle dataStreamHandle, uint64_t* numBuffersStarted);

/** Gives the number of frames that were lost for want of a queued buffer. */
KORO_API KORO_ReturnCode
KORO_DataStream_GetNumUnderruns(KORO_DataStreamHandle dataStreamHandle, uint64_t* numUnderruns);

/** Gives the largest number of chunks that a buffer can hold. */
KORO_API KORO_ReturnCode
KORO_DataStream_GetNumChunksPerBufferMax(KORO_DataStreamHandle dataStreamHandle, size_t* numChunksPerBufferMax);

/**
 * Gives the alignment that the producer wants for the memory of buffers.
 * @param[out] bufferAlignment bytes; 1 for any
 */
KORO_API KORO_ReturnCode
KORO_DataStream_GetBufferAlignment(KORO_DataStreamHandle dataStreamHandle, size_t* bufferAlignment);

/**
 * Gives the size that a buffer needs, if the stream defines it.
 * @param[out] payloadSize bytes
 */
KORO_API KORO_ReturnCode KORO_DataStream_GetPayloadSize(KORO_DataStreamHandle dataStreamHandle, size_t* payloadSize);

/**
 * Tells who knows the payload size.
 * @param[out] definesPayloadSize 1: KORO_DataStream_GetPayloadSize does; 0: the camera's feature PayloadSize
 */
KORO_API KORO_ReturnCode
KORO_DataStream_GetDefinesPayloadSize(KORO_DataStreamHandle dataStreamHandle, KORO_Bool8* definesPayloadSize);

/** Tells whether the acquisition is started. */
KORO_API KORO_ReturnCode KORO_DataStream_GetIsGrabbing(KORO_DataStreamHandle dataStreamHandle, KORO_Bool8* isGrabbing);

/**
 * Gives the device of the stream.
 * @param[out] deviceHandle the handle from the opening: nothing new to destruct
 */
KORO_API KORO_ReturnCode
KORO_DataStream_GetParentDevice(KORO_DataStreamHandle dataStreamHandle, KORO_DeviceHandle* deviceHandle);

/**
 * Gives the stream as a module, for its port. The same handle each time.
 * @param[out] moduleHandle ends with the stream's handle
 */
KORO_API KORO_ReturnCode
KORO_DataStream_ToModule(KORO_DataStreamHandle dataStreamHandle, KORO_ModuleHandle* moduleHandle);

/**
 * Gives the stream as a module with events. The same handle each time. The stream takes KORO_EVENT_NEW_BUFFER
 * itself.
 * @param[out] eventSupportingModuleHandle ends with the stream's handle
 */
KORO_API KORO_ReturnCode KORO_DataStream_ToEventSupportingModule(
    KORO_DataStreamHandle dataStreamHandle, KORO_EventSupportingModuleHandle* eventSupportingModuleHandle);

#ifdef __cplusplus
}
#endif

#endif
