/*
 * One part of a buffer that holds several images or data blocks.
 *
 * The handle comes from KORO_Buffer_GetPart and ends with KORO_BufferPart_Destruct, or with the buffer. It stands for
 * an index: each query asks the producer at that moment, of what the buffer holds by then, and fails with
 * KORO_RETURN_CODE_ERROR where the producer has no answer or no such part any more; the text tells the producer's code.
 * Any thread.
 */
#ifndef KORO_BUFFER_PART_H
#define KORO_BUFFER_PART_H

#include <koro/gentl_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Ends the handle. The buffer's list is left as it is: KORO_Buffer_GetPart gives the part again. */
KORO_API KORO_ReturnCode KORO_BufferPart_Destruct(KORO_BufferPartHandle bufferPartHandle);

/**
 * Gives the start of the part's data.
 * @param[out] basePtr inside the buffer's memory
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetBasePtr(KORO_BufferPartHandle bufferPartHandle, void** basePtr);

/**
 * Gives the size of the part's data.
 * @param[out] size bytes
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetSize(KORO_BufferPartHandle bufferPartHandle, size_t* size);

/**
 * Tells what the part holds.
 * @param[out] type KORO_PART_DATATYPE_...
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetType(KORO_BufferPartHandle bufferPartHandle, int32_t* type);

/** Gives the format of the data: of an image, its pixel format. */
KORO_API KORO_ReturnCode KORO_BufferPart_GetFormat(KORO_BufferPartHandle bufferPartHandle, uint64_t* format);

/**
 * Tells what the number of the format means.
 * @param[out] formatNamespace KORO_PIXELFORMAT_NAMESPACE_...
 */
KORO_API KORO_ReturnCode
KORO_BufferPart_GetFormatNamespace(KORO_BufferPartHandle bufferPartHandle, uint64_t* formatNamespace);

/**
 * Gives the width of the image.
 * @param[out] width pixels
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetWidth(KORO_BufferPartHandle bufferPartHandle, size_t* width);

/**
 * Gives the configured height of the image.
 * @param[out] height lines
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetHeight(KORO_BufferPartHandle bufferPartHandle, size_t* height);

/**
 * Gives the horizontal offset of the image on the sensor.
 * @param[out] xOffset pixels
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetXOffset(KORO_BufferPartHandle bufferPartHandle, size_t* xOffset);

/**
 * Gives the vertical offset of the image on the sensor.
 * @param[out] yOffset lines
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetYOffset(KORO_BufferPartHandle bufferPartHandle, size_t* yOffset);

/**
 * Gives the padding behind each line.
 * @param[out] xPadding pixels by the GenTL standard, unlike KORO_Buffer_GetXPadding, which is in bytes; the number is
 *                      the producer's, and some give bytes here, too
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetXPadding(KORO_BufferPartHandle bufferPartHandle, size_t* xPadding);

/** Gives the number of the part's source: parts of one source are views of one scene. */
KORO_API KORO_ReturnCode KORO_BufferPart_GetSourceID(KORO_BufferPartHandle bufferPartHandle, uint64_t* sourceId);

/**
 * Gives the number of lines that were delivered.
 * @param[out] deliveredImageHeight lines
 */
KORO_API KORO_ReturnCode
KORO_BufferPart_GetDeliveredImageHeight(KORO_BufferPartHandle bufferPartHandle, size_t* deliveredImageHeight);

/**
 * Gives any information of the part as raw bytes.
 * @param[in]  infoCommand    KORO_BUFFER_PART_INFO_... or a number of the producer's own
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the answer; valid also when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetInfo(
    KORO_BufferPartHandle bufferPartHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info,
    size_t* infoSize);

/**
 * Gives the buffer of the part.
 * @param[out] bufferHandle the handle from the announcement: nothing new to end
 */
KORO_API KORO_ReturnCode
KORO_BufferPart_GetParentBuffer(KORO_BufferPartHandle bufferPartHandle, KORO_BufferHandle* bufferHandle);

#ifdef __cplusplus
}
#endif

#endif
