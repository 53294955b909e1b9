/*
 * A data stream of a device before it is opened. The handle comes from KORO_Device_GetDataStream and ends with the
 * device. Any thread may call these functions.
 */
#ifndef KORO_DATA_STREAM_DESCRIPTOR_H
#define KORO_DATA_STREAM_DESCRIPTOR_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Returns the descriptor as a ModuleDescriptor, its base type. Each call returns the same handle.
 * @param[out] moduleDescriptorHandle ends with the device
 */
KORO_API KORO_ReturnCode KORO_DataStreamDescriptor_ToModuleDescriptor(
    KORO_DataStreamDescriptorHandle dataStreamDescriptorHandle, KORO_ModuleDescriptorHandle* moduleDescriptorHandle);

/** Returns the key: the device's key, "|" and the id. Does not call the producer. */
KORO_API KORO_ReturnCode KORO_DataStreamDescriptor_GetKey(
    KORO_DataStreamDescriptorHandle dataStreamDescriptorHandle, char* key, size_t* keySize);

/**
 * Returns the device of the descriptor.
 * @param[out] deviceHandle the existing handle from its opening; do not destruct it separately
 */
KORO_API KORO_ReturnCode KORO_DataStreamDescriptor_GetParentDevice(
    KORO_DataStreamDescriptorHandle dataStreamDescriptorHandle, KORO_DeviceHandle* deviceHandle);

/**
 * Opens the data stream.
 * @param[out] dataStreamHandle a new handle; end it with KORO_DataStream_Destruct
 * @return KORO_RETURN_CODE_BAD_ACCESS when the producer refuses, for example because the stream is open already
 */
KORO_API KORO_ReturnCode KORO_DataStreamDescriptor_OpenDataStream(
    KORO_DataStreamDescriptorHandle dataStreamDescriptorHandle, KORO_DataStreamHandle* dataStreamHandle);

#ifdef __cplusplus
}
#endif

#endif
