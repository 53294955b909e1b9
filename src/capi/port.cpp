#include "gentl/port.h"

#include "capi/arguments.h"
#include <koro/port.h>

using namespace koro::internal;

KORO_ReturnCode KORO_Port_GetInfo(
    KORO_PortHandle portHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize)
{
    return GetRawInfo(KORO_ARG(portHandle), infoCommand, KORO_ARG(infoDataType), KORO_ARG(info), infoSize);
}

KORO_ReturnCode KORO_Port_GetID(KORO_PortHandle portHandle, char* id, size_t* idSize)
{
    return GetString(KORO_ARG(portHandle), KORO_ARG(id), idSize, &Port::ID);
}

KORO_ReturnCode KORO_Port_GetName(KORO_PortHandle portHandle, char* name, size_t* nameSize)
{
    return GetString(KORO_ARG(portHandle), KORO_ARG(name), nameSize, &Port::Name);
}

KORO_ReturnCode KORO_Port_GetVendorName(KORO_PortHandle portHandle, char* vendorName, size_t* vendorNameSize)
{
    return GetString(KORO_ARG(portHandle), KORO_ARG(vendorName), vendorNameSize, &Port::VendorName);
}

KORO_ReturnCode KORO_Port_GetModelName(KORO_PortHandle portHandle, char* modelName, size_t* modelNameSize)
{
    return GetString(KORO_ARG(portHandle), KORO_ARG(modelName), modelNameSize, &Port::ModelName);
}

KORO_ReturnCode KORO_Port_GetVersion(KORO_PortHandle portHandle, char* version, size_t* versionSize)
{
    return GetString(KORO_ARG(portHandle), KORO_ARG(version), versionSize, &Port::Version);
}

KORO_ReturnCode KORO_Port_GetTLType(KORO_PortHandle portHandle, char* tlType, size_t* tlTypeSize)
{
    return GetString(KORO_ARG(portHandle), KORO_ARG(tlType), tlTypeSize, &Port::TLType);
}

KORO_ReturnCode KORO_Port_GetModuleName(KORO_PortHandle portHandle, char* moduleName, size_t* moduleNameSize)
{
    return GetString(KORO_ARG(portHandle), KORO_ARG(moduleName), moduleNameSize, &Port::ModuleName);
}

KORO_ReturnCode KORO_Port_GetDataEndianness(KORO_PortHandle portHandle, int32_t* dataEndianness)
{
    return GetScalar(KORO_ARG(portHandle), KORO_ARG(dataEndianness), &Port::DataEndianness);
}

KORO_ReturnCode KORO_Port_GetIsReadable(KORO_PortHandle portHandle, KORO_Bool8* isReadable)
{
    return GetScalar(KORO_ARG(portHandle), KORO_ARG(isReadable), &Port::IsReadable);
}

KORO_ReturnCode KORO_Port_GetIsWritable(KORO_PortHandle portHandle, KORO_Bool8* isWritable)
{
    return GetScalar(KORO_ARG(portHandle), KORO_ARG(isWritable), &Port::IsWritable);
}

KORO_ReturnCode KORO_Port_GetIsAvailable(KORO_PortHandle portHandle, KORO_Bool8* isAvailable)
{
    return GetScalar(KORO_ARG(portHandle), KORO_ARG(isAvailable), &Port::IsAvailable);
}

KORO_ReturnCode KORO_Port_GetIsImplemented(KORO_PortHandle portHandle, KORO_Bool8* isImplemented)
{
    return GetScalar(KORO_ARG(portHandle), KORO_ARG(isImplemented), &Port::IsImplemented);
}

KORO_ReturnCode KORO_Port_Read(
    KORO_PortHandle portHandle, uint64_t address, uint8_t* bytesToRead, size_t bytesToReadSize)
{
    return WithObject(KORO_ARG(portHandle), [&](const auto& port) {
        if (!bytesToRead) return InvalidPointer(KORO_ARG(bytesToRead));
        port->Read(bytesToRead, address, bytesToReadSize);
        return success;
    });
}

KORO_ReturnCode KORO_Port_Write(
    KORO_PortHandle portHandle, uint64_t address, const uint8_t* bytesToWrite, size_t bytesToWriteSize)
{
    return WithObject(KORO_ARG(portHandle), [&](const auto& port) {
        if (!bytesToWrite) return InvalidPointer(KORO_ARG(bytesToWrite));
        port->Write(bytesToWrite, address, bytesToWriteSize);
        return success;
    });
}

KORO_ReturnCode KORO_Port_GetNumURLs(KORO_PortHandle portHandle, size_t* numUrls)
{
    return GetScalar(KORO_ARG(portHandle), KORO_ARG(numUrls), [](auto& port) { return port.URLs()->size(); });
}

KORO_ReturnCode KORO_Port_GetURL(KORO_PortHandle portHandle, size_t index, KORO_PortURLHandle* portUrlHandle)
{
    return GetIndexed(
        KORO_ARG(portHandle), index, KORO_ARG(portUrlHandle), &Port::URLs,
        [](const auto& port, const auto& url) { return Table<PortURL>().Add(url, port); });
}
