/*
 * The types of the boundary: handles, callbacks, flags and the export macro.
 */
#ifndef KORO_TYPES_H
#define KORO_TYPES_H

#include <stddef.h>
#include <stdint.h>

/* Everything that is not declared with this is hidden in the library. */
#if defined(__GNUC__)
#define KORO_API __attribute__((visibility("default")))
#else
#define KORO_API
#endif

/* A time-out or a number of buffers without end. */
#define KORO_INFINITE UINT64_MAX

#ifdef __cplusplus
extern "C" {
#endif

/* A flag of one byte: 0 is false. The library writes 0 or 1. */
typedef uint8_t KORO_Bool8;

/*
 * Handles. Each kind points to an incomplete struct of its own, so that the compiler sees a swapped argument. The
 * library never dereferences a handle that its tables do not hold; null is no handle.
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
/* any descriptor, as its base */
typedef struct KORO_ModuleDescriptor_st* KORO_ModuleDescriptorHandle;
/* any opened module, as its base */
typedef struct KORO_Module_st* KORO_ModuleHandle;
/* the features of a module */
typedef struct KORO_NodeMap_st* KORO_NodeMapHandle;
/* a feature */
typedef struct KORO_Node_st* KORO_NodeHandle;
/* a feature with a whole number */
typedef struct KORO_IntegerNode_st* KORO_IntegerNodeHandle;
/* a feature that is on or off */
typedef struct KORO_BooleanNode_st* KORO_BooleanNodeHandle;
/* a feature that does something */
typedef struct KORO_CommandNode_st* KORO_CommandNodeHandle;
/* a feature with a real number */
typedef struct KORO_FloatNode_st* KORO_FloatNodeHandle;
/* a feature with a text */
typedef struct KORO_StringNode_st* KORO_StringNodeHandle;
/* a feature with raw bytes */
typedef struct KORO_RegisterNode_st* KORO_RegisterNodeHandle;
/* a feature that groups others */
typedef struct KORO_CategoryNode_st* KORO_CategoryNodeHandle;
/* a feature with a choice */
typedef struct KORO_EnumerationNode_st* KORO_EnumerationNodeHandle;
/* one entry of a choice */
typedef struct KORO_EnumerationEntryNode_st* KORO_EnumerationEntryNodeHandle;
/* the registers of a module */
typedef struct KORO_Port_st* KORO_PortHandle;
/* a place of a description */
typedef struct KORO_PortURL_st* KORO_PortURLHandle;
/* any module with events, as its base */
typedef struct KORO_EventSupportingModule_st* KORO_EventSupportingModuleHandle;
/* a registered event */
typedef struct KORO_EventController_st* KORO_EventControllerHandle;
/* an event taken from a controller */
typedef struct KORO_Event_st* KORO_EventHandle;
/* an updater of cameras */
typedef struct KORO_FirmwareUpdater_st* KORO_FirmwareUpdaterHandle;
/* an update that a file offers */
typedef struct KORO_FirmwareUpdateInformation_st* KORO_FirmwareUpdateInformationHandle;
/* a listener to an update */
typedef struct KORO_FirmwareUpdateProgressObserver_st* KORO_FirmwareUpdateProgressObserverHandle;
/* a registered callback for changed information */
typedef struct KORO_DeviceDescriptorInformationChangedCallback_st*
    KORO_DeviceDescriptorInformationChangedCallbackHandle;
/* a file on a device */
typedef struct KORO_FileAdapter_st* KORO_FileAdapterHandle;

/* What the producer adds to the report that a device came back: its meaning is the producer's. */
typedef struct KORO_DEVICE_RECONNECT_INFORMATION
{
    KORO_Bool8 reconnectFlag1; /* 0 or 1, as the next */
    KORO_Bool8 reconnectFlag2;
    uint8_t reserved2[6]; /* zero, as all that is reserved */
    uint32_t reconnectValue;
    uint8_t reserved12[20];
} KORO_DEVICE_RECONNECT_INFORMATION;
#ifdef __cplusplus
static_assert(sizeof(KORO_DEVICE_RECONNECT_INFORMATION) == 32, "its layout is fixed");
#else
_Static_assert(sizeof(KORO_DEVICE_RECONNECT_INFORMATION) == 32, "its layout is fixed");
#endif

/*
 * Callbacks. They run on the thread that each registration names, must not throw, and get the context of their
 * registration as the last argument. Texts that they are given live for the length of the call; their sizes count
 * the terminating zero.
 */
typedef void (*KORO_InterfaceFoundCallback)(
    KORO_InterfaceDescriptorHandle interfaceDescriptorHandle, void* callbackContext);
typedef void (*KORO_InterfaceLostCallback)(const char* interfaceId, size_t interfaceIdSize, void* callbackContext);
typedef void (*KORO_DeviceFoundCallback)(KORO_DeviceDescriptorHandle deviceDescriptorHandle, void* callbackContext);
typedef void (*KORO_DeviceLostCallback)(const char* deviceId, size_t deviceIdSize, void* callbackContext);
typedef void (*KORO_DeviceListChangedCallback)(void* callbackContext);
/* The descriptor's handle is valid if the application has fetched it, or got it by a found callback; not otherwise. */
typedef void (*KORO_DeviceDisconnectedCallback)(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, void* callbackContext);
/* The same for the handle. `information` lives for the length of the call. */
typedef void (*KORO_DeviceReconnectedCallback)(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, const KORO_DEVICE_RECONNECT_INFORMATION* information,
    void* callbackContext);
/* `roles` lives for the length of the call. */
typedef void (*KORO_DeviceDescriptorInformationChangedCallback)(
    const int32_t* roles, size_t numRoles, void* callbackContext);
/* `buffer` and `userPtr` are what the producer gives back; null for both if it gives nothing. */
typedef void (*KORO_BufferRevocationCallback)(void* buffer, void* userPtr, void* callbackContext);

/* What a registration gives, for unregistering alone. */
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
