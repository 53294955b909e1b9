#include "modules/device_descriptor.h"

#include "capi/arguments.h"
#include "modules/device.h"
#include "modules/interface.h"
#include <koro/device_descriptor.h>

#include <cstddef>
#include <cstdint>

using namespace koro::internal;

namespace
{

// The producer writes directly into the caller's buffer, by its own rules for sizes.
KORO_ReturnCode GetRawString(
    const NamedArgument<KORO_DeviceDescriptorHandle>& handle, std::int32_t command, const NamedArgument<char*>& output,
    std::size_t* size)
{
    return WithObject(handle, [&](const auto& descriptor) {
        if (!size) return RecordInvalidSizePointer(output.name);
        descriptor->RawStringInfo(command, output.value, size);
        return success;
    });
}

} // namespace

KORO_ReturnCode KORO_DeviceDescriptor_ToModuleDescriptor(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, KORO_ModuleDescriptorHandle* moduleDescriptorHandle)
{
    return CastTo(
        KORO_ARG(deviceDescriptorHandle), KORO_ARG(moduleDescriptorHandle), &DeviceDescriptor::ParentInterface);
}

KORO_ReturnCode KORO_DeviceDescriptor_GetKey(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* key, size_t* keySize)
{
    return GetString(KORO_ARG(deviceDescriptorHandle), KORO_ARG(key), keySize, &DeviceDescriptor::Key);
}

KORO_ReturnCode KORO_DeviceDescriptor_GetInfo(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info,
    size_t* infoSize)
{
    return GetRawInfo(KORO_ARG(deviceDescriptorHandle), infoCommand, KORO_ARG(infoDataType), KORO_ARG(info), infoSize);
}

KORO_ReturnCode KORO_DeviceDescriptor_GetDisplayName(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* displayName, size_t* displayNameSize)
{
    return GetRawString(
        KORO_ARG(deviceDescriptorHandle), GenTL::DEVICE_INFO_DISPLAYNAME, KORO_ARG(displayName), displayNameSize);
}

KORO_ReturnCode KORO_DeviceDescriptor_GetVendorName(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* vendorName, size_t* vendorNameSize)
{
    return GetRawString(
        KORO_ARG(deviceDescriptorHandle), GenTL::DEVICE_INFO_VENDOR, KORO_ARG(vendorName), vendorNameSize);
}

KORO_ReturnCode KORO_DeviceDescriptor_GetModelName(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* modelName, size_t* modelNameSize)
{
    return GetRawString(KORO_ARG(deviceDescriptorHandle), GenTL::DEVICE_INFO_MODEL, KORO_ARG(modelName), modelNameSize);
}

KORO_ReturnCode KORO_DeviceDescriptor_GetVersion(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* version, size_t* versionSize)
{
    return GetRawString(KORO_ARG(deviceDescriptorHandle), GenTL::DEVICE_INFO_VERSION, KORO_ARG(version), versionSize);
}

KORO_ReturnCode KORO_DeviceDescriptor_GetTLType(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* tlType, size_t* tlTypeSize)
{
    return GetRawString(KORO_ARG(deviceDescriptorHandle), GenTL::DEVICE_INFO_TLTYPE, KORO_ARG(tlType), tlTypeSize);
}

KORO_ReturnCode KORO_DeviceDescriptor_GetUserDefinedName(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* userDefinedName, size_t* userDefinedNameSize)
{
    return GetRawString(
        KORO_ARG(deviceDescriptorHandle), GenTL::DEVICE_INFO_USER_DEFINED_NAME, KORO_ARG(userDefinedName),
        userDefinedNameSize);
}

KORO_ReturnCode KORO_DeviceDescriptor_GetSerialNumber(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* serialNumber, size_t* serialNumberSize)
{
    return GetRawString(
        KORO_ARG(deviceDescriptorHandle), GenTL::DEVICE_INFO_SERIAL_NUMBER, KORO_ARG(serialNumber), serialNumberSize);
}

KORO_ReturnCode KORO_DeviceDescriptor_GetAccessStatus(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, int32_t* accessStatus)
{
    return GetScalar(KORO_ARG(deviceDescriptorHandle), KORO_ARG(accessStatus), &DeviceDescriptor::AccessStatus);
}

KORO_ReturnCode KORO_DeviceDescriptor_GetTimestampTickFrequency(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, uint64_t* timestampTickFrequency)
{
    return GetScalar(
        KORO_ARG(deviceDescriptorHandle), KORO_ARG(timestampTickFrequency), &DeviceDescriptor::TimestampTickFrequency);
}

KORO_ReturnCode KORO_DeviceDescriptor_GetIsOpenable(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, uint32_t accessType, KORO_Bool8* isAccessTypeAvailable)
{
    return GetScalar(KORO_ARG(deviceDescriptorHandle), KORO_ARG(isAccessTypeAvailable), [&](const auto& descriptor) {
        return descriptor.IsOpenable(accessType);
    });
}

KORO_ReturnCode KORO_DeviceDescriptor_GetIsOpenableExclusive(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, KORO_Bool8* isAccessTypeAvailable)
{
    return GetScalar(
        KORO_ARG(deviceDescriptorHandle), KORO_ARG(isAccessTypeAvailable), &DeviceDescriptor::IsOpenableExclusive);
}

KORO_ReturnCode KORO_DeviceDescriptor_GetParentInterface(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, KORO_InterfaceHandle* interfaceHandle)
{
    return GetParent(KORO_ARG(deviceDescriptorHandle), KORO_ARG(interfaceHandle), &DeviceDescriptor::ParentInterface);
}

KORO_ReturnCode KORO_DeviceDescriptor_OpenDevice(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, uint32_t accessType, KORO_DeviceHandle* deviceHandle)
{
    return GetHandle(KORO_ARG(deviceDescriptorHandle), KORO_ARG(deviceHandle), [&](const auto& descriptor) {
        const auto interface = descriptor->ParentInterface();
        return Table<Device>().Add(descriptor->OpenDevice(accessType), interface);
    });
}

KORO_ReturnCode KORO_DeviceDescriptor_AddInformationRoleToMonitoring(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, int32_t role)
{
    return Perform(KORO_ARG(deviceDescriptorHandle), [&](auto& descriptor) { descriptor.Monitor().AddRole(role); });
}

KORO_ReturnCode KORO_DeviceDescriptor_RemoveInformationRoleFromMonitoring(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, int32_t role)
{
    return Perform(KORO_ARG(deviceDescriptorHandle), [&](auto& descriptor) { descriptor.Monitor().RemoveRole(role); });
}

KORO_ReturnCode KORO_DeviceDescriptor_IsInformationRoleMonitored(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, int32_t role, KORO_Bool8* isInformationRoleMonitored)
{
    return GetScalar(KORO_ARG(deviceDescriptorHandle), KORO_ARG(isInformationRoleMonitored), [&](auto& descriptor) {
        return descriptor.Monitor().IsRoleMonitored(role);
    });
}

KORO_ReturnCode KORO_DeviceDescriptor_GetMonitoringUpdateInterval(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, uint64_t* monitoringUpdateInterval_ms)
{
    return GetScalar(KORO_ARG(deviceDescriptorHandle), KORO_ARG(monitoringUpdateInterval_ms), [](auto& descriptor) {
        return descriptor.Monitor().UpdateInterval_ms();
    });
}

KORO_ReturnCode KORO_DeviceDescriptor_SetMonitoringUpdateInterval(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, uint64_t monitoringUpdateInterval_ms)
{
    return Perform(KORO_ARG(deviceDescriptorHandle), [&](auto& descriptor) {
        descriptor.Monitor().SetUpdateInterval_ms(monitoringUpdateInterval_ms);
    });
}

KORO_ReturnCode KORO_DeviceDescriptor_RegisterInformationChangedCallback(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, KORO_DeviceDescriptorInformationChangedCallback callback,
    void* callbackContext, KORO_DeviceDescriptorInformationChangedCallbackHandle* callbackHandle)
{
    return WithObject(KORO_ARG(deviceDescriptorHandle), [&](const auto& descriptor) {
        if (!callback) return InvalidPointer(KORO_ARG(callback));
        if (!callbackHandle) return InvalidPointer(KORO_ARG(callbackHandle));
        const auto registration = std::make_shared<DeviceDescriptorInformationChangedCallback>(
            descriptor,
            [callback, callbackContext](const auto& roles) { callback(roles.data(), roles.size(), callbackContext); });
        *callbackHandle = Table<DeviceDescriptorInformationChangedCallback>().Add(registration);
        return success;
    });
}

KORO_ReturnCode KORO_DeviceDescriptor_UnregisterInformationChangedCallback(
    KORO_DeviceDescriptorHandle, KORO_DeviceDescriptorInformationChangedCallbackHandle callbackHandle)
{
    return WithObject(KORO_ARG(callbackHandle), [&](const auto& registration) {
        registration->Unregister();
        Remove(callbackHandle);
        return success;
    });
}
