/*
 * The opened system of a producer. It lists the producer's interfaces.
 *
 * The handle ends with KORO_System_Destruct, or with its library. If the library ends while a call is running, the call
 * fails with KORO_RETURN_CODE_ERROR and the text "Pointer has expired!". Each query except key and id calls the
 * producer. Any thread may call these functions.
 */
#ifndef KORO_SYSTEM_H
#define KORO_SYSTEM_H

#include <koro/gentl_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Ends the handle, its Module and EventSupportingModule handles, and all handles below it. The system is closed when no
 * call uses it any more. Waits that are running below it return KORO_RETURN_CODE_ABORTED. The function waits for
 * running callbacks of changed device information and of notifications from the producer; no such callback runs after
 * it. If another thread is inside a call below the system, streams that no call uses are closed first, and this may
 * wait as KORO_DataStream_Destruct does. The function waits for nothing else.
 * @return KORO_RETURN_CODE_ERROR inside a callback that it would wait for; nothing ends then
 */
KORO_API KORO_ReturnCode KORO_System_Destruct(KORO_SystemHandle systemHandle);

/** Returns the key: the library's key, "|" and the id. Does not call the producer. */
KORO_API KORO_ReturnCode KORO_System_GetKey(KORO_SystemHandle systemHandle, char* key, size_t* keySize);

/** Returns the system's id. */
KORO_API KORO_ReturnCode KORO_System_GetID(KORO_SystemHandle systemHandle, char* id, size_t* idSize);

/**
 * Returns any information about the system as raw bytes.
 * @param[in]  infoCommand    KORO_TL_INFO_... or a producer-specific number
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the information; also set when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_System_GetInfo(
    KORO_SystemHandle systemHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize);

/** Returns the display name, a text for people. */
KORO_API KORO_ReturnCode
KORO_System_GetDisplayName(KORO_SystemHandle systemHandle, char* displayName, size_t* displayNameSize);

/** Returns the vendor of the producer. */
KORO_API KORO_ReturnCode
KORO_System_GetVendorName(KORO_SystemHandle systemHandle, char* vendorName, size_t* vendorNameSize);

/** Returns the producer's model name. */
KORO_API KORO_ReturnCode
KORO_System_GetModelName(KORO_SystemHandle systemHandle, char* modelName, size_t* modelNameSize);

/** Returns the producer's version. */
KORO_API KORO_ReturnCode KORO_System_GetVersion(KORO_SystemHandle systemHandle, char* version, size_t* versionSize);

/** Returns the transport layer type, such as "GEV", "U3V" or "Mixed". */
KORO_API KORO_ReturnCode KORO_System_GetTLType(KORO_SystemHandle systemHandle, char* tlType, size_t* tlTypeSize);

/** Returns the name of the .cti file. */
KORO_API KORO_ReturnCode
KORO_System_GetCTIFileName(KORO_SystemHandle systemHandle, char* ctiFileName, size_t* ctiFileNameSize);

/** Returns the name of the .cti file with its path. */
KORO_API KORO_ReturnCode
KORO_System_GetCTIFullPath(KORO_SystemHandle systemHandle, char* ctiFullPath, size_t* ctiFullPathSize);

/** Returns the major number of the GenTL version that the producer implements. */
KORO_API KORO_ReturnCode KORO_System_GetGenTLVersionMajor(KORO_SystemHandle systemHandle, uint32_t* gentlVersionMajor);

/** Returns the minor number of the GenTL version that the producer implements. */
KORO_API KORO_ReturnCode KORO_System_GetGenTLVersionMinor(KORO_SystemHandle systemHandle, uint32_t* gentlVersionMinor);

/**
 * Returns the encoding of the producer's strings.
 * @param[out] characterEncoding KORO_TL_CHAR_ENCODING_...
 */
KORO_API KORO_ReturnCode KORO_System_GetCharacterEncoding(KORO_SystemHandle systemHandle, int32_t* characterEncoding);

/**
 * Lets the producer search for interfaces and takes over the new list, then calls the lost callbacks and the found
 * callbacks on the calling thread. The first update always reads the list. An interface that stays in the list keeps
 * its descriptor and its handle.
 * A callback may call this function again. That inner update returns before its own callbacks are called: they follow
 * the callbacks that are already due, and for each interface found comes before lost. A callback that starts an update
 * at each call, where each search finds something, gets KORO_RETURN_CODE_ERROR in the end. An update that has something
 * to report waits until the callbacks of an update on another thread have returned.
 * When a callback ends the system or its library, no further found or lost callback of the system is called, and the
 * update succeeds. The restrictions that KORO_Interface_UpdateDevices documents for such callbacks apply here too.
 * @param[in] timeout_ms milliseconds for the search of the producer; KORO_INFINITE for no limit
 */
KORO_API KORO_ReturnCode KORO_System_UpdateInterfaces(KORO_SystemHandle systemHandle, uint64_t timeout_ms);

/** Returns the number of interfaces at the last update; 0 before the first update. Does not update the list. */
KORO_API KORO_ReturnCode KORO_System_GetNumInterfaces(KORO_SystemHandle systemHandle, size_t* numInterfaces);

/**
 * Returns one interface of the list, not yet opened. Each call returns the same handle.
 * @param[in]  index                     0 to the number of interfaces minus 1
 * @param[out] interfaceDescriptorHandle ends when an update loses the interface, or with the system; do not destruct it
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode KORO_System_GetInterface(
    KORO_SystemHandle systemHandle, size_t index, KORO_InterfaceDescriptorHandle* interfaceDescriptorHandle);

/**
 * Registers a callback for each interface that an update finds. It runs on the thread that runs
 * KORO_System_UpdateInterfaces.
 * The callback must not throw, and must not register or unregister a found callback of this system. The handle that it
 * receives ends when the interface is lost.
 * @param[in]  callback        called as callback(interfaceDescriptorHandle, callbackContext)
 * @param[in]  callbackContext passed to the callback unchanged; may be null
 * @param[out] callbackHandle  handle for unregistering; ends with the system
 */
KORO_API KORO_ReturnCode KORO_System_RegisterInterfaceFoundCallback(
    KORO_SystemHandle systemHandle, KORO_InterfaceFoundCallback callback, void* callbackContext,
    KORO_InterfaceFoundCallbackHandle* callbackHandle);

/**
 * Unregisters a found callback. An unknown callback handle is ignored.
 * Waits while another thread is inside the callback.
 * @param[in] callbackHandle the handle that the registration returned
 */
KORO_API KORO_ReturnCode KORO_System_UnregisterInterfaceFoundCallback(
    KORO_SystemHandle systemHandle, KORO_InterfaceFoundCallbackHandle callbackHandle);

/**
 * Registers a callback for each interface that an update no longer finds. It runs on the thread that runs
 * KORO_System_UpdateInterfaces, before any found callback.
 * The callback must not throw, must not register or unregister a lost callback of this system. The handle of the lost
 * interface's descriptor may have ended already.
 * In this callback KORO_System_GetInterface fails with KORO_RETURN_CODE_ERROR for an interface that has no handle yet.
 * @param[in]  callback        called as callback(interfaceId, interfaceIdSize, callbackContext)
 * @param[in]  callbackContext passed to the callback unchanged; may be null
 * @param[out] callbackHandle  handle for unregistering; ends with the system
 */
KORO_API KORO_ReturnCode KORO_System_RegisterInterfaceLostCallback(
    KORO_SystemHandle systemHandle, KORO_InterfaceLostCallback callback, void* callbackContext,
    KORO_InterfaceLostCallbackHandle* callbackHandle);

/**
 * Unregisters a lost callback. An unknown callback handle is ignored.
 * Waits while another thread is inside the callback.
 * @param[in] callbackHandle the handle that the registration returned
 */
KORO_API KORO_ReturnCode KORO_System_UnregisterInterfaceLostCallback(
    KORO_SystemHandle systemHandle, KORO_InterfaceLostCallbackHandle callbackHandle);

/**
 * Returns the library of the system.
 * @param[out] producerLibraryHandle the existing handle from its construction; do not destruct it separately
 */
KORO_API KORO_ReturnCode
KORO_System_GetParentLibrary(KORO_SystemHandle systemHandle, KORO_ProducerLibraryHandle* producerLibraryHandle);

/**
 * Returns the system as a Module, which has a port and features. Each call returns the same handle.
 * @param[out] moduleHandle ends with the system's handle
 */
KORO_API KORO_ReturnCode KORO_System_ToModule(KORO_SystemHandle systemHandle, KORO_ModuleHandle* moduleHandle);

/**
 * Returns the system as an EventSupportingModule, which registers events. Each call returns the same handle.
 * @param[out] eventSupportingModuleHandle ends with the system's handle
 */
KORO_API KORO_ReturnCode KORO_System_ToEventSupportingModule(
    KORO_SystemHandle systemHandle, KORO_EventSupportingModuleHandle* eventSupportingModuleHandle);

#ifdef __cplusplus
}
#endif

#endif
