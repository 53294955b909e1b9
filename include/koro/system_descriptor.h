/*
 * The system of a producer before it is opened: what the producer says of itself.
 *
 * The handle comes from KORO_ProducerLibrary_GetSystem and ends with its library. Every query but the key asks the
 * producer anew. Any thread.
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
 * Gives the descriptor as its base kind. The same handle each time.
 * @param[out] moduleDescriptorHandle ends with the library
 */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_ToModuleDescriptor(
    KORO_SystemDescriptorHandle systemDescriptorHandle, KORO_ModuleDescriptorHandle* moduleDescriptorHandle);

/** Gives the key: the library's key, "|", the id. No producer call. */
KORO_API KORO_ReturnCode
KORO_SystemDescriptor_GetKey(KORO_SystemDescriptorHandle systemDescriptorHandle, char* key, size_t* keySize);

/**
 * Gives any information of the producer as raw bytes.
 * @param[in]  infoCommand    KORO_TL_INFO_... or a number of the producer's own
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the answer; valid also when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetInfo(
    KORO_SystemDescriptorHandle systemDescriptorHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info,
    size_t* infoSize);

/** Gives the name to show to a person. */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetDisplayName(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* displayName, size_t* displayNameSize);

/** Gives the vendor of the producer. */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetVendorName(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* vendorName, size_t* vendorNameSize);

/** Gives the producer's model name. */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetModelName(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* modelName, size_t* modelNameSize);

/** Gives the producer's version. */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetVersion(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* version, size_t* versionSize);

/** Gives the transport layer type, such as "GEV", "U3V" or "Mixed". */
KORO_API KORO_ReturnCode
KORO_SystemDescriptor_GetTLType(KORO_SystemDescriptorHandle systemDescriptorHandle, char* tlType, size_t* tlTypeSize);

/** Gives the name of the .cti file. */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetCTIFileName(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* ctiFileName, size_t* ctiFileNameSize);

/** Gives the name of the .cti file with its path. */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetCTIFullPath(
    KORO_SystemDescriptorHandle systemDescriptorHandle, char* ctiFullPath, size_t* ctiFullPathSize);

/** Gives the first number of the GenTL version that the producer implements. */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetGenTLVersionMajor(
    KORO_SystemDescriptorHandle systemDescriptorHandle, uint32_t* gentlVersionMajor);

/** Gives the second number of the GenTL version that the producer implements. */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetGenTLVersionMinor(
    KORO_SystemDescriptorHandle systemDescriptorHandle, uint32_t* gentlVersionMinor);

/**
 * Gives the encoding of the producer's strings.
 * @param[out] characterEncoding KORO_TL_CHAR_ENCODING_...
 */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetCharacterEncoding(
    KORO_SystemDescriptorHandle systemDescriptorHandle, int32_t* characterEncoding);

/**
 * Gives the library of the descriptor.
 * @param[out] producerLibraryHandle the handle from the construction: nothing new to destruct
 */
KORO_API KORO_ReturnCode KORO_SystemDescriptor_GetParentLibrary(
    KORO_SystemDescriptorHandle systemDescriptorHandle, KORO_ProducerLibraryHandle* producerLibraryHandle);

/**
 * Opens the system.
 * @param[out] systemHandle a new handle; end it with KORO_System_Destruct
 * @return KORO_RETURN_CODE_BAD_ACCESS when the producer refuses, for instance since its system is open already
 */
KORO_API KORO_ReturnCode
KORO_SystemDescriptor_OpenSystem(KORO_SystemDescriptorHandle systemDescriptorHandle, KORO_SystemHandle* systemHandle);

#ifdef __cplusplus
}
#endif

#endif
