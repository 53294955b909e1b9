#include "modules/interface.h"

#include "capi/child_descriptors.h"
#include "modules/device_descriptor.h"
#include "modules/system.h"
#include <koro/interface.h>

using namespace koro::internal;

KORO_ReturnCode KORO_Interface_Destruct(KORO_InterfaceHandle interfaceHandle)
{
    return DestructModule(KORO_ARG(interfaceHandle));
}

KORO_ReturnCode KORO_Interface_GetKey(KORO_InterfaceHandle interfaceHandle, char* key, size_t* keySize)
{
    return GetString(KORO_ARG(interfaceHandle), KORO_ARG(key), keySize, &Interface::Key);
}

KORO_ReturnCode KORO_Interface_GetID(KORO_InterfaceHandle interfaceHandle, char* id, size_t* idSize)
{
    return GetString(KORO_ARG(interfaceHandle), KORO_ARG(id), idSize, &Interface::ID);
}

KORO_ReturnCode KORO_Interface_GetInfo(
    KORO_InterfaceHandle interfaceHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize)
{
    return GetRawInfo(KORO_ARG(interfaceHandle), infoCommand, KORO_ARG(infoDataType), KORO_ARG(info), infoSize);
}

KORO_ReturnCode KORO_Interface_GetDisplayName(
    KORO_InterfaceHandle interfaceHandle, char* displayName, size_t* displayNameSize)
{
    return GetString(KORO_ARG(interfaceHandle), KORO_ARG(displayName), displayNameSize, &Interface::DisplayName);
}

KORO_ReturnCode KORO_Interface_GetTLType(KORO_InterfaceHandle interfaceHandle, char* tlType, size_t* tlTypeSize)
{
    return GetString(KORO_ARG(interfaceHandle), KORO_ARG(tlType), tlTypeSize, &Interface::TLType);
}

KORO_ReturnCode KORO_Interface_UpdateDevices(KORO_InterfaceHandle interfaceHandle, uint64_t timeout_ms)
{
    return Perform(KORO_ARG(interfaceHandle), [&](auto& interface) { interface.UpdateChildren(timeout_ms); });
}

KORO_ReturnCode KORO_Interface_GetNumDevices(KORO_InterfaceHandle interfaceHandle, size_t* numDevices)
{
    return GetScalar(KORO_ARG(interfaceHandle), KORO_ARG(numDevices), [](const auto& interface) {
        return interface.Children().size();
    });
}

KORO_ReturnCode KORO_Interface_GetDevice(
    KORO_InterfaceHandle interfaceHandle, size_t index, KORO_DeviceDescriptorHandle* deviceDescriptorHandle)
{
    return GetIndexed(
        KORO_ARG(interfaceHandle), index, KORO_ARG(deviceDescriptorHandle), &Interface::Children,
        EnterDescriptor<Interface, DeviceDescriptor>);
}

KORO_ReturnCode KORO_Interface_RegisterDeviceFoundCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceFoundCallback callback, void* callbackContext,
    KORO_DeviceFoundCallbackHandle* callbackHandle)
{
    return RegisterFound(KORO_ARG(interfaceHandle), KORO_ARG(callback), callbackContext, KORO_ARG(callbackHandle));
}

KORO_ReturnCode KORO_Interface_UnregisterDeviceFoundCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceFoundCallbackHandle callbackHandle)
{
    return Perform(
        KORO_ARG(interfaceHandle), [&](auto& interface) { interface.UnregisterFoundCallback(callbackHandle); });
}

KORO_ReturnCode KORO_Interface_RegisterDeviceLostCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceLostCallback callback, void* callbackContext,
    KORO_DeviceLostCallbackHandle* callbackHandle)
{
    return RegisterLost(KORO_ARG(interfaceHandle), KORO_ARG(callback), callbackContext, KORO_ARG(callbackHandle));
}

KORO_ReturnCode KORO_Interface_UnregisterDeviceLostCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceLostCallbackHandle callbackHandle)
{
    return Perform(
        KORO_ARG(interfaceHandle), [&](auto& interface) { interface.UnregisterLostCallback(callbackHandle); });
}

KORO_ReturnCode KORO_Interface_GetParentSystem(KORO_InterfaceHandle interfaceHandle, KORO_SystemHandle* systemHandle)
{
    return GetParent(KORO_ARG(interfaceHandle), KORO_ARG(systemHandle), &Interface::ParentSystem);
}

KORO_ReturnCode KORO_Interface_ToModule(KORO_InterfaceHandle interfaceHandle, KORO_ModuleHandle* moduleHandle)
{
    return CastTo(KORO_ARG(interfaceHandle), KORO_ARG(moduleHandle), &Interface::ParentSystem);
}

KORO_ReturnCode KORO_Interface_ToEventSupportingModule(
    KORO_InterfaceHandle interfaceHandle, KORO_EventSupportingModuleHandle* eventSupportingModuleHandle)
{
    return CastTo(KORO_ARG(interfaceHandle), KORO_ARG(eventSupportingModuleHandle), &Interface::ParentSystem);
}
