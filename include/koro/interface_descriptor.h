/*
 * An interface that a system lists, before it is opened.
 *
 * The handle comes from KORO_System_GetInterface or a found callback. It ends when an update loses the interface,
 * or with the system. Every query but the key asks the producer anew. Any thread.
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
 * Gives the descriptor as its base kind. The same handle each time.
 * @param[out] moduleDescriptorHandle ends with the system; it outlasts the loss of the interface
 */
KORO_API KORO_ReturnCode KORO_InterfaceDescriptor_ToModuleDescriptor(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, KORO_ModuleDescriptorHandle* moduleDescriptorHandle);

/** Gives the key: the system's key, "|", the id. No producer call. */
KORO_API KORO_ReturnCode
KORO_InterfaceDescriptor_GetKey(KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, char* key, size_t* keySize);

/**
 * Gives any information of the interface as raw bytes.
 * @param[in]  infoCommand    KORO_INTERFACE_INFO_... or a number of the producer's own
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the answer; valid also when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_InterfaceDescriptor_GetInfo(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info,
    size_t* infoSize);

/** Gives the name to show to a person. */
KORO_API KORO_ReturnCode KORO_InterfaceDescriptor_GetDisplayName(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, char* displayName, size_t* displayNameSize);

/** Gives the transport layer type of the interface, such as "GEV" or "U3V". */
KORO_API KORO_ReturnCode KORO_InterfaceDescriptor_GetTLType(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, char* tlType, size_t* tlTypeSize);

/**
 * Gives the system of the descriptor.
 * @param[out] systemHandle the handle from the opening: nothing new to destruct
 */
KORO_API KORO_ReturnCode KORO_InterfaceDescriptor_GetParentSystem(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, KORO_SystemHandle* systemHandle);

/**
 * Opens the interface.
 * @param[out] interfaceHandle a new handle; end it with KORO_Interface_Destruct
 * @return what the producer's error becomes (docs/errors.md): KORO_RETURN_CODE_BAD_ACCESS when the interface is in use,
 *         busy or denied, KORO_RETURN_CODE_ERROR when it has gone or the producer does not know it. Opening it a second
 *         time is the producer's to allow; if it does, there are two interfaces, each with a handle
 */
KORO_API KORO_ReturnCode KORO_InterfaceDescriptor_OpenInterface(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, KORO_InterfaceHandle* interfaceHandle);

#ifdef __cplusplus
}
#endif

#endif
