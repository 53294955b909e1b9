/*
 * One event that a wait on an event controller returned. The handle ends with KORO_Event_Destruct, or with the
 * controller. The raw data and the type stay readable as long as the handle is valid. Any thread may call these
 * functions.
 */
#ifndef KORO_EVENT_H
#define KORO_EVENT_H

#include <koro/gentl_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Ends the handle. */
KORO_API KORO_ReturnCode KORO_Event_Destruct(KORO_EventHandle eventHandle);

/** Returns the id of the event. Each call queries the producer. */
KORO_API KORO_ReturnCode KORO_Event_GetID(KORO_EventHandle eventHandle, uint64_t* id);

/**
 * Returns the data of the event as the producer decodes it. The first call queries the producer; later calls return the
 * stored result.
 * @param[out] data, dataSize the bytes
 */
KORO_API KORO_ReturnCode KORO_Event_GetData(KORO_EventHandle eventHandle, uint8_t* data, size_t* dataSize);

/**
 * Returns the raw data block that the producer delivered. Does not call the producer.
 * @param[out] rawData, rawDataSize the bytes
 */
KORO_API KORO_ReturnCode KORO_Event_GetRawData(KORO_EventHandle eventHandle, uint8_t* rawData, size_t* rawDataSize);

/**
 * Returns the type of the event. Does not call the producer.
 * @param[out] type KORO_EVENT_...
 */
KORO_API KORO_ReturnCode KORO_Event_GetType(KORO_EventHandle eventHandle, int32_t* type);

/**
 * Returns any information that the producer can decode from the event, as raw bytes.
 * @param[in]  infoCommand    KORO_EVENT_DATA_... or a producer-specific number
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the information; also set when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_Event_GetInfo(
    KORO_EventHandle eventHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize);

#ifdef __cplusplus
}
#endif

#endif
