#include "modules/buffer_part.h"

#include "capi/arguments.h"
#include "modules/buffer.h"
#include <koro/buffer_part.h>

using namespace koro::internal;

KORO_ReturnCode KORO_BufferPart_Destruct(KORO_BufferPartHandle bufferPartHandle)
{
    return Destruct(KORO_ARG(bufferPartHandle));
}

KORO_ReturnCode KORO_BufferPart_GetBasePtr(KORO_BufferPartHandle bufferPartHandle, void** basePtr)
{
    return GetScalar(KORO_ARG(bufferPartHandle), KORO_ARG(basePtr), &BufferPart::BasePtr);
}

KORO_ReturnCode KORO_BufferPart_GetSize(KORO_BufferPartHandle bufferPartHandle, size_t* size)
{
    return GetScalar(KORO_ARG(bufferPartHandle), KORO_ARG(size), &BufferPart::Size);
}

KORO_ReturnCode KORO_BufferPart_GetType(KORO_BufferPartHandle bufferPartHandle, int32_t* type)
{
    return GetScalar(KORO_ARG(bufferPartHandle), KORO_ARG(type), &BufferPart::Type);
}

KORO_ReturnCode KORO_BufferPart_GetFormat(KORO_BufferPartHandle bufferPartHandle, uint64_t* format)
{
    return GetScalar(KORO_ARG(bufferPartHandle), KORO_ARG(format), &BufferPart::Format);
}

KORO_ReturnCode KORO_BufferPart_GetFormatNamespace(KORO_BufferPartHandle bufferPartHandle, uint64_t* formatNamespace)
{
    return GetScalar(KORO_ARG(bufferPartHandle), KORO_ARG(formatNamespace), &BufferPart::FormatNamespace);
}

KORO_ReturnCode KORO_BufferPart_GetWidth(KORO_BufferPartHandle bufferPartHandle, size_t* width)
{
    return GetScalar(KORO_ARG(bufferPartHandle), KORO_ARG(width), &BufferPart::Width);
}

KORO_ReturnCode KORO_BufferPart_GetHeight(KORO_BufferPartHandle bufferPartHandle, size_t* height)
{
    return GetScalar(KORO_ARG(bufferPartHandle), KORO_ARG(height), &BufferPart::Height);
}

KORO_ReturnCode KORO_BufferPart_GetXOffset(KORO_BufferPartHandle bufferPartHandle, size_t* xOffset)
{
    return GetScalar(KORO_ARG(bufferPartHandle), KORO_ARG(xOffset), &BufferPart::XOffset);
}

KORO_ReturnCode KORO_BufferPart_GetYOffset(KORO_BufferPartHandle bufferPartHandle, size_t* yOffset)
{
    return GetScalar(KORO_ARG(bufferPartHandle), KORO_ARG(yOffset), &BufferPart::YOffset);
}

KORO_ReturnCode KORO_BufferPart_GetXPadding(KORO_BufferPartHandle bufferPartHandle, size_t* xPadding)
{
    return GetScalar(KORO_ARG(bufferPartHandle), KORO_ARG(xPadding), &BufferPart::XPadding);
}

KORO_ReturnCode KORO_BufferPart_GetSourceID(KORO_BufferPartHandle bufferPartHandle, uint64_t* sourceId)
{
    return GetScalar(KORO_ARG(bufferPartHandle), KORO_ARG(sourceId), &BufferPart::SourceID);
}

KORO_ReturnCode KORO_BufferPart_GetDeliveredImageHeight(
    KORO_BufferPartHandle bufferPartHandle, size_t* deliveredImageHeight)
{
    return GetScalar(KORO_ARG(bufferPartHandle), KORO_ARG(deliveredImageHeight), &BufferPart::DeliveredImageHeight);
}

KORO_ReturnCode KORO_BufferPart_GetInfo(
    KORO_BufferPartHandle bufferPartHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize)
{
    return GetRawInfo(KORO_ARG(bufferPartHandle), infoCommand, KORO_ARG(infoDataType), KORO_ARG(info), infoSize);
}

KORO_ReturnCode KORO_BufferPart_GetParentBuffer(KORO_BufferPartHandle bufferPartHandle, KORO_BufferHandle* bufferHandle)
{
    return GetParent(KORO_ARG(bufferPartHandle), KORO_ARG(bufferHandle), &BufferPart::ParentBuffer);
}
