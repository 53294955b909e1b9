/*
 * An interface that a system lists, before it is opened.
 *
 * The handle comes from KORO_System_GetInterface or a found callback. It ends when an update no longer finds the
 * interface, or with the system. Each query except the key calls the producer. Any thread may call these functions.
 */
#ifndef KORO_INTERFACE_DESCRIPTOR_H
#define KORO_INTERFACE_DESCRIPTOR_H

#include <koro/gentl_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Returns the descriptor as a ModuleDescriptor, its base type. Each call returns the same handle.
 * @param[out] moduleDescriptorHandle ends with the system; stays valid when the interface is lost
 */
KORO_API KORO_ReturnCode KORO_InterfaceDescriptor_ToModuleDescriptor(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, KORO_ModuleDescriptorHandle* moduleDescriptorHandle);

/** Returns the key: the system's key, "|" and the id. Does not call the producer. */
KORO_API KORO_ReturnCode
KORO_InterfaceDescriptor_GetKey(KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, char* key, size_t* keySize);

/**
 * Returns any information about the interface as raw bytes.
 * @param[in]  infoCommand    KORO_INTERFACE_INFO_... or a producer-specific number
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the information; also set when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_InterfaceDescriptor_GetInfo(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info,
    size_t* infoSize);

/** Returns the display name, a text for people. */
KORO_API KORO_ReturnCode KORO_InterfaceDescriptor_GetDisplayName(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, char* displayName, size_t* displayNameSize);

/** Returns the transport layer type of the interface, such as "GEV" or "U3V". */
KORO_API KORO_ReturnCode KORO_InterfaceDescriptor_GetTLType(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, char* tlType, size_t* tlTypeSize);

/**
 * Returns the system of the descriptor.
 * @param[out] systemHandle the existing handle from its opening; do not destruct it separately
 */
KORO_API KORO_ReturnCode KORO_InterfaceDescriptor_GetParentSystem(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, KORO_SystemHandle* systemHandle);

/**
 * Opens the interface.
 * @param[out] interfaceHandle a new handle; end it with KORO_Interface_Destruct
 * @return the code that corresponds to the producer's error (docs/errors.md): KORO_RETURN_CODE_BAD_ACCESS when the
 *         interface is in use, busy or denied, KORO_RETURN_CODE_ERROR when it no longer exists or the producer does not
 *         know it. The producer decides whether the interface can be opened a second time; if so, there are two
 *         interfaces, each with its own handle
 */
KORO_API KORO_ReturnCode KORO_InterfaceDescriptor_OpenInterface(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, KORO_InterfaceHandle* interfaceHandle);

#ifdef __cplusplus
}
#endif

#endif
