#include "modules/system.h"

#include "capi/child_descriptors.h"
#include "modules/interface_descriptor.h"
#include "modules/producer_library.h"
#include <koro/system.h>

using namespace koro::internal;

KORO_ReturnCode KORO_System_Destruct(KORO_SystemHandle systemHandle)
{
    return Destruct(KORO_ARG(systemHandle));
}

KORO_ReturnCode KORO_System_GetKey(KORO_SystemHandle systemHandle, char* key, size_t* keySize)
{
    return GetString(KORO_ARG(systemHandle), KORO_ARG(key), keySize, &System::Key);
}

KORO_ReturnCode KORO_System_GetID(KORO_SystemHandle systemHandle, char* id, size_t* idSize)
{
    return GetString(KORO_ARG(systemHandle), KORO_ARG(id), idSize, &System::ID);
}

KORO_ReturnCode KORO_System_GetInfo(
    KORO_SystemHandle systemHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize)
{
    return GetRawInfo(KORO_ARG(systemHandle), infoCommand, KORO_ARG(infoDataType), KORO_ARG(info), infoSize);
}

KORO_ReturnCode KORO_System_GetDisplayName(KORO_SystemHandle systemHandle, char* displayName, size_t* displayNameSize)
{
    return GetString(KORO_ARG(systemHandle), KORO_ARG(displayName), displayNameSize, &System::DisplayName);
}

KORO_ReturnCode KORO_System_GetVendorName(KORO_SystemHandle systemHandle, char* vendorName, size_t* vendorNameSize)
{
    return GetString(KORO_ARG(systemHandle), KORO_ARG(vendorName), vendorNameSize, &System::VendorName);
}

KORO_ReturnCode KORO_System_GetModelName(KORO_SystemHandle systemHandle, char* modelName, size_t* modelNameSize)
{
    return GetString(KORO_ARG(systemHandle), KORO_ARG(modelName), modelNameSize, &System::ModelName);
}

KORO_ReturnCode KORO_System_GetVersion(KORO_SystemHandle systemHandle, char* version, size_t* versionSize)
{
    return GetString(KORO_ARG(systemHandle), KORO_ARG(version), versionSize, &System::Version);
}

KORO_ReturnCode KORO_System_GetTLType(KORO_SystemHandle systemHandle, char* tlType, size_t* tlTypeSize)
{
    return GetString(KORO_ARG(systemHandle), KORO_ARG(tlType), tlTypeSize, &System::TLType);
}

KORO_ReturnCode KORO_System_GetCTIFileName(KORO_SystemHandle systemHandle, char* ctiFileName, size_t* ctiFileNameSize)
{
    return GetString(KORO_ARG(systemHandle), KORO_ARG(ctiFileName), ctiFileNameSize, &System::CTIFileName);
}

KORO_ReturnCode KORO_System_GetCTIFullPath(KORO_SystemHandle systemHandle, char* ctiFullPath, size_t* ctiFullPathSize)
{
    return GetString(KORO_ARG(systemHandle), KORO_ARG(ctiFullPath), ctiFullPathSize, &System::CTIFullPath);
}

KORO_ReturnCode KORO_System_GetGenTLVersionMajor(KORO_SystemHandle systemHandle, uint32_t* gentlVersionMajor)
{
    return GetScalar(KORO_ARG(systemHandle), KORO_ARG(gentlVersionMajor), &System::GenTLVersionMajor);
}

KORO_ReturnCode KORO_System_GetGenTLVersionMinor(KORO_SystemHandle systemHandle, uint32_t* gentlVersionMinor)
{
    return GetScalar(KORO_ARG(systemHandle), KORO_ARG(gentlVersionMinor), &System::GenTLVersionMinor);
}

KORO_ReturnCode KORO_System_GetCharacterEncoding(KORO_SystemHandle systemHandle, int32_t* characterEncoding)
{
    return GetScalar(KORO_ARG(systemHandle), KORO_ARG(characterEncoding), &System::CharacterEncoding);
}

KORO_ReturnCode KORO_System_UpdateInterfaces(KORO_SystemHandle systemHandle, uint64_t timeout_ms)
{
    return Perform(KORO_ARG(systemHandle), [&](auto& system) { system.UpdateChildren(timeout_ms); });
}

KORO_ReturnCode KORO_System_GetNumInterfaces(KORO_SystemHandle systemHandle, size_t* numInterfaces)
{
    return GetScalar(
        KORO_ARG(systemHandle), KORO_ARG(numInterfaces), [](const auto& system) { return system.Children()->size(); });
}

KORO_ReturnCode KORO_System_GetInterface(
    KORO_SystemHandle systemHandle, size_t index, KORO_InterfaceDescriptorHandle* interfaceDescriptorHandle)
{
    return GetIndexed(
        KORO_ARG(systemHandle), index, KORO_ARG(interfaceDescriptorHandle), &System::Children,
        EnterDescriptor<System, InterfaceDescriptor>);
}

KORO_ReturnCode KORO_System_RegisterInterfaceFoundCallback(
    KORO_SystemHandle systemHandle, KORO_InterfaceFoundCallback callback, void* callbackContext,
    KORO_InterfaceFoundCallbackHandle* callbackHandle)
{
    return RegisterFound(KORO_ARG(systemHandle), KORO_ARG(callback), callbackContext, KORO_ARG(callbackHandle));
}

KORO_ReturnCode KORO_System_UnregisterInterfaceFoundCallback(
    KORO_SystemHandle systemHandle, KORO_InterfaceFoundCallbackHandle callbackHandle)
{
    return Perform(KORO_ARG(systemHandle), [&](auto& system) { system.UnregisterFoundCallback(callbackHandle); });
}

KORO_ReturnCode KORO_System_RegisterInterfaceLostCallback(
    KORO_SystemHandle systemHandle, KORO_InterfaceLostCallback callback, void* callbackContext,
    KORO_InterfaceLostCallbackHandle* callbackHandle)
{
    return RegisterLost(KORO_ARG(systemHandle), KORO_ARG(callback), callbackContext, KORO_ARG(callbackHandle));
}

KORO_ReturnCode KORO_System_UnregisterInterfaceLostCallback(
    KORO_SystemHandle systemHandle, KORO_InterfaceLostCallbackHandle callbackHandle)
{
    return Perform(KORO_ARG(systemHandle), [&](auto& system) { system.UnregisterLostCallback(callbackHandle); });
}

KORO_ReturnCode KORO_System_GetParentLibrary(
    KORO_SystemHandle systemHandle, KORO_ProducerLibraryHandle* producerLibraryHandle)
{
    return GetParent(KORO_ARG(systemHandle), KORO_ARG(producerLibraryHandle), &System::ParentLibrary);
}

KORO_ReturnCode KORO_System_ToModule(KORO_SystemHandle systemHandle, KORO_ModuleHandle* moduleHandle)
{
    return CastTo(KORO_ARG(systemHandle), KORO_ARG(moduleHandle), &System::ParentLibrary);
}

KORO_ReturnCode KORO_System_ToEventSupportingModule(
    KORO_SystemHandle systemHandle, KORO_EventSupportingModuleHandle* eventSupportingModuleHandle)
{
    return CastTo(KORO_ARG(systemHandle), KORO_ARG(eventSupportingModuleHandle), &System::ParentLibrary);
}
