/*
 * The types of the C interface: handles, callbacks, flags and the export macro.
 */
#ifndef KORO_TYPES_H
#define KORO_TYPES_H

#include <stddef.h>
#include <stdint.h>

/* Marks the exported functions. All other symbols of the library are hidden. */
#if defined(__GNUC__)
#define KORO_API __attribute__((visibility("default")))
#else
#define KORO_API
#endif

/* No limit, as a timeout or as a number of buffers. */
#define KORO_INFINITE UINT64_MAX

#ifdef __cplusplus
extern "C" {
#endif

/* A flag of one byte. 0 means false, any other value means true. The library writes only 0 or 1. */
typedef uint8_t KORO_Bool8;

/*
 * Handles. Each kind points to its own incomplete struct, so the compiler finds swapped arguments. The library looks
 * each handle up in its tables and never dereferences one that they do not contain. Null is never a valid handle.
 */

/* a loaded producer */
typedef struct KORO_ProducerLibrary_st* KORO_ProducerLibraryHandle;
/* a system before it is opened */
typedef struct KORO_SystemDescriptor_st* KORO_SystemDescriptorHandle;
/* an opened system */
typedef struct KORO_System_st* KORO_SystemHandle;
/* an interface before it is opened */
typedef struct KORO_InterfaceDescriptor_st* KORO_InterfaceDescriptorHandle;
/* an opened interface */
typedef struct KORO_Interface_st* KORO_InterfaceHandle;
/* a device before it is opened */
typedef struct KORO_DeviceDescriptor_st* KORO_DeviceDescriptorHandle;
/* an opened device */
typedef struct KORO_Device_st* KORO_DeviceHandle;
/* the camera behind an opened device */
typedef struct KORO_RemoteDevice_st* KORO_RemoteDeviceHandle;
/* a data stream before it is opened */
typedef struct KORO_DataStreamDescriptor_st* KORO_DataStreamDescriptorHandle;
/* an opened data stream */
typedef struct KORO_DataStream_st* KORO_DataStreamHandle;
/* an announced buffer */
typedef struct KORO_Buffer_st* KORO_BufferHandle;
/* a chunk of a buffer */
typedef struct KORO_BufferChunk_st* KORO_BufferChunkHandle;
/* a part of a buffer */
typedef struct KORO_BufferPart_st* KORO_BufferPartHandle;
/* the base type of all descriptors */
typedef struct KORO_ModuleDescriptor_st* KORO_ModuleDescriptorHandle;
/* the base type of all opened modules */
typedef struct KORO_Module_st* KORO_ModuleHandle;
/* the features of a module, as a map of nodes */
typedef struct KORO_NodeMap_st* KORO_NodeMapHandle;
/* a feature */
typedef struct KORO_Node_st* KORO_NodeHandle;
/* a feature with an integer value */
typedef struct KORO_IntegerNode_st* KORO_IntegerNodeHandle;
/* a feature that is on or off */
typedef struct KORO_BooleanNode_st* KORO_BooleanNodeHandle;
/* a feature that executes a command */
typedef struct KORO_CommandNode_st* KORO_CommandNodeHandle;
/* a feature with a floating-point value */
typedef struct KORO_FloatNode_st* KORO_FloatNodeHandle;
/* a feature with a text */
typedef struct KORO_StringNode_st* KORO_StringNodeHandle;
/* a feature with raw bytes */
typedef struct KORO_RegisterNode_st* KORO_RegisterNodeHandle;
/* a feature that groups others */
typedef struct KORO_CategoryNode_st* KORO_CategoryNodeHandle;
/* a feature whose value is one of a list of entries */
typedef struct KORO_EnumerationNode_st* KORO_EnumerationNodeHandle;
/* one entry of an enumeration */
typedef struct KORO_EnumerationEntryNode_st* KORO_EnumerationEntryNodeHandle;
/* access to the registers of a module */
typedef struct KORO_Port_st* KORO_PortHandle;
/* the location of a description file */
typedef struct KORO_PortURL_st* KORO_PortURLHandle;
/* the base type of all modules with events */
typedef struct KORO_EventSupportingModule_st* KORO_EventSupportingModuleHandle;
/* a registered event */
typedef struct KORO_EventController_st* KORO_EventControllerHandle;
/* an event taken from a controller */
typedef struct KORO_Event_st* KORO_EventHandle;
/* an updater of camera firmware */
typedef struct KORO_FirmwareUpdater_st* KORO_FirmwareUpdaterHandle;
/* a description of one update in an update file */
typedef struct KORO_FirmwareUpdateInformation_st* KORO_FirmwareUpdateInformationHandle;
/* an observer of firmware updates */
typedef struct KORO_FirmwareUpdateProgressObserver_st* KORO_FirmwareUpdateProgressObserverHandle;
/* a registered callback for changed device information */
typedef struct KORO_DeviceDescriptorInformationChangedCallback_st*
    KORO_DeviceDescriptorInformationChangedCallbackHandle;
/* a file on a device */
typedef struct KORO_FileAdapter_st* KORO_FileAdapterHandle;

/*
 * Data that the producer attaches to the notification that a device is connected again. The producer defines its
 * meaning.
 */
typedef struct KORO_DEVICE_RECONNECT_INFORMATION
{
    KORO_Bool8 reconnectFlag1; /* 0 or 1, like the next field */
    KORO_Bool8 reconnectFlag2;
    uint8_t reserved2[6]; /* reserved fields are zero */
    uint32_t reconnectValue;
    uint8_t reserved12[20];
} KORO_DEVICE_RECONNECT_INFORMATION;
#ifdef __cplusplus
static_assert(sizeof(KORO_DEVICE_RECONNECT_INFORMATION) == 32, "its layout is fixed");
#else
_Static_assert(sizeof(KORO_DEVICE_RECONNECT_INFORMATION) == 32, "its layout is fixed");
#endif

/*
 * Callbacks. The comment of each registration function names the thread that calls them. They must not throw. The last
 * argument is the context that was passed to the registration. Texts are valid only during the call; their sizes
 * include the terminating zero.
 */
typedef void (*KORO_InterfaceFoundCallback)(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, void* callbackContext);
typedef void (*KORO_InterfaceLostCallback)(const char* interfaceId, size_t interfaceIdSize, void* callbackContext);
typedef void (*KORO_DeviceFoundCallback)(KORO_DeviceDescriptorHandle deviceDescriptorHandle, void* callbackContext);
typedef void (*KORO_DeviceLostCallback)(const char* deviceId, size_t deviceIdSize, void* callbackContext);
typedef void (*KORO_DeviceListChangedCallback)(void* callbackContext);
/*
 * The handle is valid only if the application has fetched this descriptor before or has received it in a found
 * callback.
 */
typedef void (*KORO_DeviceDisconnectedCallback)(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, void* callbackContext);
/* The handle is valid under the same condition. `information` is valid only during the call. */
typedef void (*KORO_DeviceReconnectedCallback)(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, const KORO_DEVICE_RECONNECT_INFORMATION* information,
    void* callbackContext);
/* `roles` is valid only during the call. */
typedef void (*KORO_DeviceDescriptorInformationChangedCallback)(
    const int32_t* roles, size_t numRoles, void* callbackContext);
/* `buffer` and `userPtr` are the values that the producer returns; both are null if it returns none. */
typedef void (*KORO_BufferRevocationCallback)(void* buffer, void* userPtr, void* callbackContext);

/* Handles of registered callbacks. They serve only to unregister the callback. */
typedef struct KORO_InterfaceFoundCallback_st* KORO_InterfaceFoundCallbackHandle;
typedef struct KORO_InterfaceLostCallback_st* KORO_InterfaceLostCallbackHandle;
typedef struct KORO_DeviceFoundCallback_st* KORO_DeviceFoundCallbackHandle;
typedef struct KORO_DeviceLostCallback_st* KORO_DeviceLostCallbackHandle;
typedef struct KORO_DeviceListChangedCallback_st* KORO_DeviceListChangedCallbackHandle;
typedef struct KORO_DeviceDisconnectedCallback_st* KORO_DeviceDisconnectedCallbackHandle;
typedef struct KORO_DeviceReconnectedCallback_st* KORO_DeviceReconnectedCallbackHandle;

#ifdef __cplusplus
}
#endif

#endif
