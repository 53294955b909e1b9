#include "modules/system_descriptor.h"

#include "capi/arguments.h"
#include "modules/producer_library.h"
#include "modules/system.h"
#include <koro/system_descriptor.h>

using namespace koro::internal;

KORO_ReturnCode KORO_SystemDescriptor_ToModuleDescriptor(
    KORO_SystemDescriptorHandle systemDescriptorHandle, KORO_ModuleDescriptorHandle* moduleDescriptorHandle)
{
    return CastTo(KORO_ARG(systemDescriptorHandle), KORO_ARG(moduleDescriptorHandle), &SystemDescriptor::ParentLibrary);
}

KORO_ReturnCode KORO_SystemDescriptor_GetKey(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* key, size_t* keySize)
{
    return GetString(KORO_ARG(systemDescriptorHandle), KORO_ARG(key), keySize, &SystemDescriptor::Key);
}

KORO_ReturnCode KORO_SystemDescriptor_GetInfo(
    KORO_SystemDescriptorHandle systemDescriptorHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info,
    size_t* infoSize)
{
    return GetRawInfo(KORO_ARG(systemDescriptorHandle), infoCommand, KORO_ARG(infoDataType), KORO_ARG(info), infoSize);
}

KORO_ReturnCode KORO_SystemDescriptor_GetDisplayName(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* displayName, size_t* displayNameSize)
{
    return GetString(
        KORO_ARG(systemDescriptorHandle), KORO_ARG(displayName), displayNameSize, &SystemDescriptor::DisplayName);
}

KORO_ReturnCode KORO_SystemDescriptor_GetVendorName(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* vendorName, size_t* vendorNameSize)
{
    return GetString(
        KORO_ARG(systemDescriptorHandle), KORO_ARG(vendorName), vendorNameSize, &SystemDescriptor::VendorName);
}

KORO_ReturnCode KORO_SystemDescriptor_GetModelName(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* modelName, size_t* modelNameSize)
{
    return GetString(
        KORO_ARG(systemDescriptorHandle), KORO_ARG(modelName), modelNameSize, &SystemDescriptor::ModelName);
}

KORO_ReturnCode KORO_SystemDescriptor_GetVersion(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* version, size_t* versionSize)
{
    return GetString(KORO_ARG(systemDescriptorHandle), KORO_ARG(version), versionSize, &SystemDescriptor::Version);
}

KORO_ReturnCode KORO_SystemDescriptor_GetTLType(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* tlType, size_t* tlTypeSize)
{
    return GetString(KORO_ARG(systemDescriptorHandle), KORO_ARG(tlType), tlTypeSize, &SystemDescriptor::TLType);
}

KORO_ReturnCode KORO_SystemDescriptor_GetCTIFileName(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* ctiFileName, size_t* ctiFileNameSize)
{
    return GetString(
        KORO_ARG(systemDescriptorHandle), KORO_ARG(ctiFileName), ctiFileNameSize, &SystemDescriptor::CTIFileName);
}

KORO_ReturnCode KORO_SystemDescriptor_GetCTIFullPath(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* ctiFullPath, size_t* ctiFullPathSize)
{
    return GetString(
        KORO_ARG(systemDescriptorHandle), KORO_ARG(ctiFullPath), ctiFullPathSize, &SystemDescriptor::CTIFullPath);
}

KORO_ReturnCode KORO_SystemDescriptor_GetGenTLVersionMajor(
    KORO_SystemDescriptorHandle systemDescriptorHandle, uint32_t* gentlVersionMajor)
{
    return GetScalar(
        KORO_ARG(systemDescriptorHandle), KORO_ARG(gentlVersionMajor), &SystemDescriptor::GenTLVersionMajor);
}

KORO_ReturnCode KORO_SystemDescriptor_GetGenTLVersionMinor(
    KORO_SystemDescriptorHandle systemDescriptorHandle, uint32_t* gentlVersionMinor)
{
    return GetScalar(
        KORO_ARG(systemDescriptorHandle), KORO_ARG(gentlVersionMinor), &SystemDescriptor::GenTLVersionMinor);
}

KORO_ReturnCode KORO_SystemDescriptor_GetCharacterEncoding(
    KORO_SystemDescriptorHandle systemDescriptorHandle, int32_t* characterEncoding)
{
    return GetScalar(
        KORO_ARG(systemDescriptorHandle), KORO_ARG(characterEncoding), &SystemDescriptor::CharacterEncoding);
}

KORO_ReturnCode KORO_SystemDescriptor_GetParentLibrary(
    KORO_SystemDescriptorHandle systemDescriptorHandle, KORO_ProducerLibraryHandle* producerLibraryHandle)
{
    return GetParent(
        KORO_ARG(systemDescriptorHandle), KORO_ARG(producerLibraryHandle), &SystemDescriptor::ParentLibrary);
}

KORO_ReturnCode KORO_SystemDescriptor_OpenSystem(
    KORO_SystemDescriptorHandle systemDescriptorHandle, KORO_SystemHandle* systemHandle)
{
    return GetHandle(KORO_ARG(systemDescriptorHandle), KORO_ARG(systemHandle), [&](const auto& descriptor) {
        const auto library = descriptor->ParentLibrary();
        return Table<System>().Add(descriptor->OpenSystem(), library);
    });
}
