#include "modules/data_stream_descriptor.h"

#include "capi/arguments.h"
#include "modules/data_stream.h"
#include "modules/device.h"
#include <koro/data_stream_descriptor.h>

using namespace koro::internal;

KORO_ReturnCode KORO_DataStreamDescriptor_ToModuleDescriptor(
    KORO_DataStreamDescriptorHandle dataStreamDescriptorHandle, KORO_ModuleDescriptorHandle* moduleDescriptorHandle)
{
    return CastTo(
        KORO_ARG(dataStreamDescriptorHandle), KORO_ARG(moduleDescriptorHandle), &DataStreamDescriptor::ParentDevice);
}

KORO_ReturnCode KORO_DataStreamDescriptor_GetKey(
    KORO_DataStreamDescriptorHandle dataStreamDescriptorHandle, char* key, size_t* keySize)
{
    return GetString(KORO_ARG(dataStreamDescriptorHandle), KORO_ARG(key), keySize, &DataStreamDescriptor::Key);
}

KORO_ReturnCode KORO_DataStreamDescriptor_GetParentDevice(
    KORO_DataStreamDescriptorHandle dataStreamDescriptorHandle, KORO_DeviceHandle* deviceHandle)
{
    return GetParent(KORO_ARG(dataStreamDescriptorHandle), KORO_ARG(deviceHandle), &DataStreamDescriptor::ParentDevice);
}

KORO_ReturnCode KORO_DataStreamDescriptor_OpenDataStream(
    KORO_DataStreamDescriptorHandle dataStreamDescriptorHandle, KORO_DataStreamHandle* dataStreamHandle)
{
    return GetHandle(KORO_ARG(dataStreamDescriptorHandle), KORO_ARG(dataStreamHandle), [&](const auto& descriptor) {
        const auto device = descriptor->ParentDevice();
        return Table<DataStream>().Add(descriptor->OpenDataStream(), device);
    });
}
