/*
 * One event, taken from an event controller. The handle ends with KORO_Event_Destruct, or with the controller. Its
 * raw data and type stay readable as long as the handle is valid. Any thread.
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

/** Gives the number of the event; asks the producer at each call. */
KORO_API KORO_ReturnCode KORO_Event_GetID(KORO_EventHandle eventHandle, uint64_t* id);

/**
 * Gives the data of the event as the producer decodes it; asked once, then kept.
 * @param[out] data, dataSize the bytes
 */
KORO_API KORO_ReturnCode KORO_Event_GetData(KORO_EventHandle eventHandle, uint8_t* data, size_t* dataSize);

/**
 * Gives the block that the producer delivered. No producer call.
 * @param[out] rawData, rawDataSize the bytes
 */
KORO_API KORO_ReturnCode KORO_Event_GetRawData(KORO_EventHandle eventHandle, uint8_t* rawData, size_t* rawDataSize);

/**
 * Gives the type of the event. No producer call.
 * @param[out] type KORO_EVENT_...
 */
KORO_API KORO_ReturnCode KORO_Event_GetType(KORO_EventHandle eventHandle, int32_t* type);

/**
 * Gives any information that the producer decodes from the event, as raw bytes.
 * @param[in]  infoCommand    KORO_EVENT_DATA_... or a number of the producer's own
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the answer; valid also when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_Event_GetInfo(
    KORO_EventHandle eventHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize);

#ifdef __cplusplus
}
#endif

#endif
