#include "modules/interface.h"

#include "capi/child_descriptors.h"
#include "modules/device_descriptor.h"
#include "modules/system.h"
#include <koro/interface.h>

#include <cstddef>

using namespace koro::internal;

static_assert(offsetof(KORO_DEVICE_RECONNECT_INFORMATION, reconnectFlag2) == 1);
static_assert(offsetof(KORO_DEVICE_RECONNECT_INFORMATION, reconnectValue) == 8);

KORO_ReturnCode KORO_Interface_Destruct(KORO_InterfaceHandle interfaceHandle)
{
    return Destruct(KORO_ARG(interfaceHandle));
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
        return interface.Children()->size();
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

KORO_ReturnCode KORO_Interface_RegisterDeviceListChangedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceListChangedCallback callback, void* callbackContext,
    KORO_DeviceListChangedCallbackHandle* callbackHandle)
{
    return RegisterCallback(
        KORO_ARG(interfaceHandle), KORO_ARG(callback), KORO_ARG(callbackHandle), [&](const auto& interface) {
            return interface->ListChanged().RegisterCallback(
                [callback, callbackContext] { callback(callbackContext); });
        });
}

KORO_ReturnCode KORO_Interface_UnregisterDeviceListChangedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceListChangedCallbackHandle callbackHandle)
{
    return Perform(KORO_ARG(interfaceHandle), [&](auto& interface) {
        interface.ListChanged().UnregisterCallback(callbackHandle);
    });
}

// For both kinds of callback the descriptor is not entered: a handle that the application has not fetched stays
// unknown.
KORO_ReturnCode KORO_Interface_RegisterDeviceDisconnectedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceDisconnectedCallback callback, void* callbackContext,
    KORO_DeviceDisconnectedCallbackHandle* callbackHandle)
{
    return RegisterCallback(
        KORO_ARG(interfaceHandle), KORO_ARG(callback), KORO_ARG(callbackHandle), [&](const auto& interface) {
            return interface->Disconnected().RegisterCallback([callback, callbackContext](const auto& descriptor) {
                callback(HandleFor(descriptor), callbackContext);
            });
        });
}

KORO_ReturnCode KORO_Interface_UnregisterDeviceDisconnectedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceDisconnectedCallbackHandle callbackHandle)
{
    return Perform(KORO_ARG(interfaceHandle), [&](auto& interface) {
        interface.Disconnected().UnregisterCallback(callbackHandle);
    });
}

KORO_ReturnCode KORO_Interface_RegisterDeviceReconnectedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceReconnectedCallback callback, void* callbackContext,
    KORO_DeviceReconnectedCallbackHandle* callbackHandle)
{
    return RegisterCallback(
        KORO_ARG(interfaceHandle), KORO_ARG(callback), KORO_ARG(callbackHandle), [&](const auto& interface) {
            return interface->Reconnected().RegisterCallback(
                [callback, callbackContext](const auto& descriptor, const ReconnectInformation& reported) {
                    KORO_DEVICE_RECONNECT_INFORMATION information{};
                    information.reconnectFlag1 = reported.reconnectFlag1;
                    information.reconnectFlag2 = reported.reconnectFlag2;
                    information.reconnectValue = reported.reconnectValue;
                    callback(HandleFor(descriptor), &information, callbackContext);
                });
        });
}

KORO_ReturnCode KORO_Interface_UnregisterDeviceReconnectedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceReconnectedCallbackHandle callbackHandle)
{
    return Perform(KORO_ARG(interfaceHandle), [&](auto& interface) {
        interface.Reconnected().UnregisterCallback(callbackHandle);
    });
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
