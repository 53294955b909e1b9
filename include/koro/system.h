/*
 * The opened system of a producer, which lists the producer's interfaces.
 *
 * The handle ends with KORO_System_Destruct, or with its library. Once the library has gone while a call is
 * running, the call fails with KORO_RETURN_CODE_ERROR, "Pointer has expired!". Every query but key and id asks the
 * producer anew. Any thread.
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
 * Ends the handle, with its Module and EventSupportingModule handles, and all handles below it. The system is
 * closed when its last use ends. Waits inside return KORO_RETURN_CODE_ABORTED; callbacks of changed information and of
 * the producer's own reports are waited for, and there is none after it. Where another call is inside below it, its
 * idle streams end first, which may wait as KORO_DataStream_Destruct does. Nothing else is waited for.
 * @return KORO_RETURN_CODE_ERROR inside a callback that it would wait for: nothing ends then
 */
KORO_API KORO_ReturnCode KORO_System_Destruct(KORO_SystemHandle systemHandle);

/** Gives the key: the library's key, "|", the id. No producer call. */
KORO_API KORO_ReturnCode KORO_System_GetKey(KORO_SystemHandle systemHandle, char* key, size_t* keySize);

/** Gives the system's id. */
KORO_API KORO_ReturnCode KORO_System_GetID(KORO_SystemHandle systemHandle, char* id, size_t* idSize);

/**
 * Gives any information of the system as raw bytes.
 * @param[in]  infoCommand    KORO_TL_INFO_... or a number of the producer's own
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the answer; valid also when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_System_GetInfo(
    KORO_SystemHandle systemHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize);

/** Gives the name to show to a person. */
KORO_API KORO_ReturnCode
KORO_System_GetDisplayName(KORO_SystemHandle systemHandle, char* displayName, size_t* displayNameSize);

/** Gives the vendor of the producer. */
KORO_API KORO_ReturnCode
KORO_System_GetVendorName(KORO_SystemHandle systemHandle, char* vendorName, size_t* vendorNameSize);

/** Gives the producer's model name. */
KORO_API KORO_ReturnCode
KORO_System_GetModelName(KORO_SystemHandle systemHandle, char* modelName, size_t* modelNameSize);

/** Gives the producer's version. */
KORO_API KORO_ReturnCode KORO_System_GetVersion(KORO_SystemHandle systemHandle, char* version, size_t* versionSize);

/** Gives the transport layer type, such as "GEV", "U3V" or "Mixed". */
KORO_API KORO_ReturnCode KORO_System_GetTLType(KORO_SystemHandle systemHandle, char* tlType, size_t* tlTypeSize);

/** Gives the name of the .cti file. */
KORO_API KORO_ReturnCode
KORO_System_GetCTIFileName(KORO_SystemHandle systemHandle, char* ctiFileName, size_t* ctiFileNameSize);

/** Gives the name of the .cti file with its path. */
KORO_API KORO_ReturnCode
KORO_System_GetCTIFullPath(KORO_SystemHandle systemHandle, char* ctiFullPath, size_t* ctiFullPathSize);

/** Gives the first number of the GenTL version that the producer implements. */
KORO_API KORO_ReturnCode KORO_System_GetGenTLVersionMajor(KORO_SystemHandle systemHandle, uint32_t* gentlVersionMajor);

/** Gives the second number of the GenTL version that the producer implements. */
KORO_API KORO_ReturnCode KORO_System_GetGenTLVersionMinor(KORO_SystemHandle systemHandle, uint32_t* gentlVersionMinor);

/**
 * Gives the encoding of the producer's strings.
 * @param[out] characterEncoding KORO_TL_CHAR_ENCODING_...
 */
KORO_API KORO_ReturnCode KORO_System_GetCharacterEncoding(KORO_SystemHandle systemHandle, int32_t* characterEncoding);

/**
 * Lets the producer search for interfaces, takes over the new list, then calls the lost and the found callbacks on
 * this thread.
 * Inside such a callback the update returns before its own reports are delivered: they follow those that are under way,
 * and for one interface the report that it was found comes before its loss. A callback that updates at each report,
 * where each search finds something, gets KORO_RETURN_CODE_ERROR in the end. An update that finds something waits for
 * the reports of another thread's.
 * When a callback has ended the system, or what is above it, no further found or lost callback of the system is called,
 * and the update succeeds. What KORO_Interface_UpdateDevices says about ends in such callbacks holds here too.
 * The first update always reads the list. An interface that stayed keeps its descriptor and handle.
 * @param[in] timeout_ms milliseconds for the producer's search; KORO_INFINITE waits without end
 */
KORO_API KORO_ReturnCode KORO_System_UpdateInterfaces(KORO_SystemHandle systemHandle, uint64_t timeout_ms);

/** Gives the number of interfaces at the last update, 0 before it. Does not update. */
KORO_API KORO_ReturnCode KORO_System_GetNumInterfaces(KORO_SystemHandle systemHandle, size_t* numInterfaces);

/**
 * Gives one interface of the list, not yet opened. The same handle each time.
 * @param[in]  index                     0 to the number of interfaces less 1
 * @param[out] interfaceDescriptorHandle ends when an update loses the interface, or with the system; there is
 *                                       nothing to destruct
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode KORO_System_GetInterface(
    KORO_SystemHandle systemHandle, size_t index, KORO_InterfaceDescriptorHandle* interfaceDescriptorHandle);

/**
 * Calls the application for each interface that an update finds, on the thread that runs
 * KORO_System_UpdateInterfaces.
 * The callback must not throw, and must not register or unregister a found callback of this system. The handle that
 * it gets ends when the interface is lost.
 * @param[in]  callback        called as callback(interfaceDescriptorHandle, callbackContext)
 * @param[in]  callbackContext passed to the callback as it is; may be null
 * @param[out] callbackHandle  for unregistering; ends with the system
 */
KORO_API KORO_ReturnCode KORO_System_RegisterInterfaceFoundCallback(
    KORO_SystemHandle systemHandle, KORO_InterfaceFoundCallback callback, void* callbackContext,
    KORO_InterfaceFoundCallbackHandle* callbackHandle);

/**
 * Ends the calls of a found callback. An unknown callback handle is ignored.
 * Waits for a call that is under way on another thread.
 * @param[in] callbackHandle from the registration
 */
KORO_API KORO_ReturnCode KORO_System_UnregisterInterfaceFoundCallback(
    KORO_SystemHandle systemHandle, KORO_InterfaceFoundCallbackHandle callbackHandle);

/**
 * Calls the application for each interface that is gone at an update, on the thread that runs
 * KORO_System_UpdateInterfaces, before any found callback.
 * The callback must not throw, must not register or unregister a lost callback of this system, and cannot rely on
 * the handle of the lost interface's descriptor being valid.
 * KORO_System_GetInterface fails in it with KORO_RETURN_CODE_ERROR for an interface that has no handle yet.
 * @param[in]  callback        called as callback(interfaceId, interfaceIdSize, callbackContext)
 * @param[in]  callbackContext passed to the callback as it is; may be null
 * @param[out] callbackHandle  for unregistering; ends with the system
 */
KORO_API KORO_ReturnCode KORO_System_RegisterInterfaceLostCallback(
    KORO_SystemHandle systemHandle, KORO_InterfaceLostCallback callback, void* callbackContext,
    KORO_InterfaceLostCallbackHandle* callbackHandle);

/**
 * Ends the calls of a lost callback. An unknown callback handle is ignored.
 * Waits for a call that is under way on another thread.
 * @param[in] callbackHandle from the registration
 */
KORO_API KORO_ReturnCode KORO_System_UnregisterInterfaceLostCallback(
    KORO_SystemHandle systemHandle, KORO_InterfaceLostCallbackHandle callbackHandle);

/**
 * Gives the library of the system.
 * @param[out] producerLibraryHandle the handle from the construction: nothing new to destruct
 */
KORO_API KORO_ReturnCode
KORO_System_GetParentLibrary(KORO_SystemHandle systemHandle, KORO_ProducerLibraryHandle* producerLibraryHandle);

/**
 * Gives the system as a module, for its port. The same handle each time.
 * @param[out] moduleHandle ends with the system's handle
 */
KORO_API KORO_ReturnCode KORO_System_ToModule(KORO_SystemHandle systemHandle, KORO_ModuleHandle* moduleHandle);

/**
 * Gives the system as a module with events. The same handle each time.
 * @param[out] eventSupportingModuleHandle ends with the system's handle
 */
KORO_API KORO_ReturnCode KORO_System_ToEventSupportingModule(
    KORO_SystemHandle systemHandle, KORO_EventSupportingModuleHandle* eventSupportingModuleHandle);

#ifdef __cplusplus
}
#endif

#endif
