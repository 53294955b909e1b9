// Compatibility.h: GUID, the identifier of a chunk of an IIDC camera.
#pragma once

#include <Base/GCNamespace.h>
#include <stdint.h>

namespace GENAPI_NAMESPACE
{

#pragma pack(push, 1)
struct GUID
{
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
};
#pragma pack(pop)

} // namespace GENAPI_NAMESPACE
