#include "modules/interface_descriptor.h"

#include "capi/arguments.h"
#include "modules/interface.h"
#include "modules/system.h"
#include <koro/interface_descriptor.h>

using namespace koro::internal;

KORO_ReturnCode KORO_InterfaceDescriptor_ToModuleDescriptor(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, KORO_ModuleDescriptorHandle* moduleDescriptorHandle)
{
    return CastTo(
        KORO_ARG(interfaceDescriptorHandle), KORO_ARG(moduleDescriptorHandle), &InterfaceDescriptor::ParentSystem);
}

KORO_ReturnCode KORO_InterfaceDescriptor_GetKey(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, char* key, size_t* keySize)
{
    return GetString(KORO_ARG(interfaceDescriptorHandle), KORO_ARG(key), keySize, &InterfaceDescriptor::Key);
}

KORO_ReturnCode KORO_InterfaceDescriptor_GetInfo(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info,
    size_t* infoSize)
{
    return GetRawInfo(
        KORO_ARG(interfaceDescriptorHandle), infoCommand, KORO_ARG(infoDataType), KORO_ARG(info), infoSize);
}

KORO_ReturnCode KORO_InterfaceDescriptor_GetDisplayName(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, char* displayName, size_t* displayNameSize)
{
    return GetString(
        KORO_ARG(interfaceDescriptorHandle), KORO_ARG(displayName), displayNameSize, &InterfaceDescriptor::DisplayName);
}

KORO_ReturnCode KORO_InterfaceDescriptor_GetTLType(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, char* tlType, size_t* tlTypeSize)
{
    return GetString(KORO_ARG(interfaceDescriptorHandle), KORO_ARG(tlType), tlTypeSize, &InterfaceDescriptor::TLType);
}

KORO_ReturnCode KORO_InterfaceDescriptor_GetParentSystem(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, KORO_SystemHandle* systemHandle)
{
    return GetParent(KORO_ARG(interfaceDescriptorHandle), KORO_ARG(systemHandle), &InterfaceDescriptor::ParentSystem);
}

KORO_ReturnCode KORO_InterfaceDescriptor_OpenInterface(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, KORO_InterfaceHandle* interfaceHandle)
{
    return GetHandle(KORO_ARG(interfaceDescriptorHandle), KORO_ARG(interfaceHandle), [&](const auto& descriptor) {
        const auto system = descriptor->ParentSystem();
        return Table<Interface>().Add(descriptor->OpenInterface(), system);
    });
}
