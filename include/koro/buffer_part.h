/*
 * One part of a buffer that holds several images or data blocks.
 *
 * The handle comes from KORO_Buffer_GetPart and ends with KORO_BufferPart_Destruct, or with the buffer. It stands for
 * an index: each query calls the producer and describes the current contents of the buffer. It fails with
 * KORO_RETURN_CODE_ERROR if the producer does not have the information or if there is no such part any more; the error
 * text contains the producer's code. Any thread may call these functions.
 */
#ifndef KORO_BUFFER_PART_H
#define KORO_BUFFER_PART_H

#include <koro/gentl_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Ends the handle. The list of the buffer does not change: KORO_Buffer_GetPart returns the part again. */
KORO_API KORO_ReturnCode KORO_BufferPart_Destruct(KORO_BufferPartHandle bufferPartHandle);

/**
 * Returns the start of the part's data.
 * @param[out] basePtr inside the buffer's memory
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetBasePtr(KORO_BufferPartHandle bufferPartHandle, void** basePtr);

/**
 * Returns the size of the part's data.
 * @param[out] size bytes
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetSize(KORO_BufferPartHandle bufferPartHandle, size_t* size);

/**
 * Reports what the part holds.
 * @param[out] type KORO_PART_DATATYPE_...
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetType(KORO_BufferPartHandle bufferPartHandle, int32_t* type);

/** Returns the format of the data; for an image this is the pixel format. */
KORO_API KORO_ReturnCode KORO_BufferPart_GetFormat(KORO_BufferPartHandle bufferPartHandle, uint64_t* format);

/**
 * Reports the namespace of the format: the list that defines its number.
 * @param[out] formatNamespace KORO_PIXELFORMAT_NAMESPACE_...
 */
KORO_API KORO_ReturnCode
KORO_BufferPart_GetFormatNamespace(KORO_BufferPartHandle bufferPartHandle, uint64_t* formatNamespace);

/**
 * Returns the width of the image.
 * @param[out] width pixels
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetWidth(KORO_BufferPartHandle bufferPartHandle, size_t* width);

/**
 * Returns the configured height of the image.
 * @param[out] height lines
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetHeight(KORO_BufferPartHandle bufferPartHandle, size_t* height);

/**
 * Returns the horizontal offset of the image on the sensor.
 * @param[out] xOffset pixels
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetXOffset(KORO_BufferPartHandle bufferPartHandle, size_t* xOffset);

/**
 * Returns the vertical offset of the image on the sensor.
 * @param[out] yOffset lines
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetYOffset(KORO_BufferPartHandle bufferPartHandle, size_t* yOffset);

/**
 * Returns the padding at the end of each line.
 * @param[out] xPadding pixels according to the GenTL standard, unlike KORO_Buffer_GetXPadding, which is in bytes; the
 *                      number comes from the producer, and some producers report bytes here, too
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetXPadding(KORO_BufferPartHandle bufferPartHandle, size_t* xPadding);

/** Returns the source id of the part: parts with the same id are views of one scene. */
KORO_API KORO_ReturnCode KORO_BufferPart_GetSourceID(KORO_BufferPartHandle bufferPartHandle, uint64_t* sourceId);

/**
 * Returns the number of lines that were delivered.
 * @param[out] deliveredImageHeight lines
 */
KORO_API KORO_ReturnCode
KORO_BufferPart_GetDeliveredImageHeight(KORO_BufferPartHandle bufferPartHandle, size_t* deliveredImageHeight);

/**
 * Returns any information about the part as raw bytes.
 * @param[in]  infoCommand    KORO_BUFFER_PART_INFO_... or a producer-specific number
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the information; also set when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_BufferPart_GetInfo(
    KORO_BufferPartHandle bufferPartHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info,
    size_t* infoSize);

/**
 * Returns the buffer of the part.
 * @param[out] bufferHandle the existing handle from its announcement
 */
KORO_API KORO_ReturnCode
KORO_BufferPart_GetParentBuffer(KORO_BufferPartHandle bufferPartHandle, KORO_BufferHandle* bufferHandle);

#ifdef __cplusplus
}
#endif

#endif
