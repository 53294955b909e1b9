/*
 * The system of a producer before it is opened: the information that the producer reports about itself.
 *
 * The handle comes from KORO_ProducerLibrary_GetSystem and ends with its library. Each query except the key calls the
 * producer. Any thread may call these functions.
 */
#ifndef KORO_SYSTEM_DESCRIPTOR_H
#define KORO_SYSTEM_DESCRIPTOR_H

#include <koro/gentl_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Returns the descriptor as a ModuleDescriptor, its base type. Each call returns the same handle.
 * @param[out] moduleDescriptorHandle ends with the library
 */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_ToModuleDescriptor(
    KORO_SystemDescriptorHandle systemDescriptorHandle, KORO_ModuleDescriptorHandle* moduleDescriptorHandle);

/** Returns the key: the library's key, "|" and the id. Does not call the producer. */
KORO_API KORO_ReturnCode
KORO_SystemDescriptor_GetKey(KORO_SystemDescriptorHandle systemDescriptorHandle, char* key, size_t* keySize);

/**
 * Returns any information about the producer as raw bytes.
 * @param[in]  infoCommand    KORO_TL_INFO_... or a producer-specific number
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the information; also set when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetInfo(
    KORO_SystemDescriptorHandle systemDescriptorHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info,
    size_t* infoSize);

/** Returns the display name, a text for people. */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetDisplayName(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* displayName, size_t* displayNameSize);

/** Returns the vendor of the producer. */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetVendorName(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* vendorName, size_t* vendorNameSize);

/** Returns the producer's model name. */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetModelName(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* modelName, size_t* modelNameSize);

/** Returns the producer's version. */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetVersion(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* version, size_t* versionSize);

/** Returns the transport layer type, such as "GEV", "U3V" or "Mixed". */
KORO_API KORO_ReturnCode
KORO_SystemDescriptor_GetTLType(KORO_SystemDescriptorHandle systemDescriptorHandle, char* tlType, size_t* tlTypeSize);

/** Returns the name of the .cti file. */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetCTIFileName(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* ctiFileName, size_t* ctiFileNameSize);

/** Returns the name of the .cti file with its path. */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetCTIFullPath(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* ctiFullPath, size_t* ctiFullPathSize);

/** Returns the major number of the GenTL version that the producer implements. */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetGenTLVersionMajor(
    KORO_SystemDescriptorHandle systemDescriptorHandle, uint32_t* gentlVersionMajor);

/** Returns the minor number of the GenTL version that the producer implements. */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetGenTLVersionMinor(
    KORO_SystemDescriptorHandle systemDescriptorHandle, uint32_t* gentlVersionMinor);

/**
 * Returns the encoding of the producer's strings.
 * @param[out] characterEncoding KORO_TL_CHAR_ENCODING_...
 */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetCharacterEncoding(
    KORO_SystemDescriptorHandle systemDescriptorHandle, int32_t* characterEncoding);

/**
 * Returns the library of the descriptor.
 * @param[out] producerLibraryHandle the existing handle from its construction; do not destruct it separately
 */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetParentLibrary(
    KORO_SystemDescriptorHandle systemDescriptorHandle, KORO_ProducerLibraryHandle* producerLibraryHandle);

/**
 * Opens the system.
 * @param[out] systemHandle a new handle; end it with KORO_System_Destruct
 * @return KORO_RETURN_CODE_BAD_ACCESS when the producer refuses, for example because its system is open already
 */
KORO_API KORO_ReturnCode
KORO_SystemDescriptor_OpenSystem(KORO_SystemDescriptorHandle systemDescriptorHandle, KORO_SystemHandle* systemHandle);

#ifdef __cplusplus
}
#endif

#endif
