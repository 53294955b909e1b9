#include "modules/event.h"

#include "capi/arguments.h"
#include <koro/event.h>

using namespace koro::internal;

KORO_ReturnCode KORO_Event_Destruct(KORO_EventHandle eventHandle)
{
    return Destruct(KORO_ARG(eventHandle));
}

KORO_ReturnCode KORO_Event_GetID(KORO_EventHandle eventHandle, uint64_t* id)
{
    return GetScalar(KORO_ARG(eventHandle), KORO_ARG(id), &Event::ID);
}

KORO_ReturnCode KORO_Event_GetData(KORO_EventHandle eventHandle, uint8_t* data, size_t* dataSize)
{
    return GetBytes(KORO_ARG(eventHandle), KORO_ARG(data), dataSize, &Event::Data);
}

KORO_ReturnCode KORO_Event_GetRawData(KORO_EventHandle eventHandle, uint8_t* rawData, size_t* rawDataSize)
{
    return GetBytes(KORO_ARG(eventHandle), KORO_ARG(rawData), rawDataSize, &Event::RawData);
}

KORO_ReturnCode KORO_Event_GetType(KORO_EventHandle eventHandle, int32_t* type)
{
    return GetScalar(KORO_ARG(eventHandle), KORO_ARG(type), &Event::Type);
}

KORO_ReturnCode KORO_Event_GetInfo(
    KORO_EventHandle eventHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize)
{
    return GetRawInfo(KORO_ARG(eventHandle), infoCommand, KORO_ARG(infoDataType), KORO_ARG(info), infoSize);
}
