#include "modules/device.h"

#include "capi/arguments.h"
#include "modules/data_stream_descriptor.h"
#include "modules/interface.h"
#include "modules/remote_device.h"
#include <koro/device.h>

using namespace koro::internal;

KORO_ReturnCode KORO_Device_Destruct(KORO_DeviceHandle deviceHandle)
{
    return Destruct(KORO_ARG(deviceHandle));
}

KORO_ReturnCode KORO_Device_GetKey(KORO_DeviceHandle deviceHandle, char* key, size_t* keySize)
{
    return GetString(KORO_ARG(deviceHandle), KORO_ARG(key), keySize, &Device::Key);
}

KORO_ReturnCode KORO_Device_GetID(KORO_DeviceHandle deviceHandle, char* id, size_t* idSize)
{
    return GetString(KORO_ARG(deviceHandle), KORO_ARG(id), idSize, &Device::ID);
}

KORO_ReturnCode KORO_Device_GetInfo(
    KORO_DeviceHandle deviceHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize)
{
    return GetRawInfo(KORO_ARG(deviceHandle), infoCommand, KORO_ARG(infoDataType), KORO_ARG(info), infoSize);
}

KORO_ReturnCode KORO_Device_GetDisplayName(KORO_DeviceHandle deviceHandle, char* displayName, size_t* displayNameSize)
{
    return GetString(KORO_ARG(deviceHandle), KORO_ARG(displayName), displayNameSize, &Device::DisplayName);
}

KORO_ReturnCode KORO_Device_GetVendorName(KORO_DeviceHandle deviceHandle, char* vendorName, size_t* vendorNameSize)
{
    return GetString(KORO_ARG(deviceHandle), KORO_ARG(vendorName), vendorNameSize, &Device::VendorName);
}

KORO_ReturnCode KORO_Device_GetModelName(KORO_DeviceHandle deviceHandle, char* modelName, size_t* modelNameSize)
{
    return GetString(KORO_ARG(deviceHandle), KORO_ARG(modelName), modelNameSize, &Device::ModelName);
}

KORO_ReturnCode KORO_Device_GetVersion(KORO_DeviceHandle deviceHandle, char* version, size_t* versionSize)
{
    return GetString(KORO_ARG(deviceHandle), KORO_ARG(version), versionSize, &Device::Version);
}

KORO_ReturnCode KORO_Device_GetTLType(KORO_DeviceHandle deviceHandle, char* tlType, size_t* tlTypeSize)
{
    return GetString(KORO_ARG(deviceHandle), KORO_ARG(tlType), tlTypeSize, &Device::TLType);
}

KORO_ReturnCode KORO_Device_GetUserDefinedName(
    KORO_DeviceHandle deviceHandle, char* userDefinedName, size_t* userDefinedNameSize)
{
    return GetString(KORO_ARG(deviceHandle), KORO_ARG(userDefinedName), userDefinedNameSize, &Device::UserDefinedName);
}

KORO_ReturnCode KORO_Device_GetSerialNumber(
    KORO_DeviceHandle deviceHandle, char* serialNumber, size_t* serialNumberSize)
{
    return GetString(KORO_ARG(deviceHandle), KORO_ARG(serialNumber), serialNumberSize, &Device::SerialNumber);
}

KORO_ReturnCode KORO_Device_GetAccessStatus(KORO_DeviceHandle deviceHandle, int32_t* accessStatus)
{
    return GetScalar(KORO_ARG(deviceHandle), KORO_ARG(accessStatus), &Device::AccessStatus);
}

KORO_ReturnCode KORO_Device_GetTimestampTickFrequency(KORO_DeviceHandle deviceHandle, uint64_t* timestampTickFrequency)
{
    return GetScalar(KORO_ARG(deviceHandle), KORO_ARG(timestampTickFrequency), &Device::TimestampTickFrequency);
}

KORO_ReturnCode KORO_Device_GetNumDataStreams(KORO_DeviceHandle deviceHandle, size_t* numDataStreams)
{
    return GetScalar(
        KORO_ARG(deviceHandle), KORO_ARG(numDataStreams), [](auto& device) { return device.DataStreams()->size(); });
}

KORO_ReturnCode KORO_Device_GetDataStream(
    KORO_DeviceHandle deviceHandle, size_t index, KORO_DataStreamDescriptorHandle* dataStreamDescriptorHandle)
{
    // The only export that uses another name for its handle in the message; kept for compatibility.
    return GetIndexed(
        Named(deviceHandle, "interfaceHandle"), index, KORO_ARG(dataStreamDescriptorHandle), &Device::DataStreams,
        [](const auto& device, const auto& descriptor) {
            return Table<DataStreamDescriptor>().Add(descriptor, device);
        });
}

KORO_ReturnCode KORO_Device_GetRemoteDevice(KORO_DeviceHandle deviceHandle, KORO_RemoteDeviceHandle* remoteDeviceHandle)
{
    return GetHandle(KORO_ARG(deviceHandle), KORO_ARG(remoteDeviceHandle), [](const auto& device) {
        return Table<RemoteDevice>().Add(device->GetRemoteDevice(), device);
    });
}

KORO_ReturnCode KORO_Device_GetParentInterface(KORO_DeviceHandle deviceHandle, KORO_InterfaceHandle* interfaceHandle)
{
    return GetParent(KORO_ARG(deviceHandle), KORO_ARG(interfaceHandle), &Device::ParentInterface);
}

KORO_ReturnCode KORO_Device_ToModule(KORO_DeviceHandle deviceHandle, KORO_ModuleHandle* moduleHandle)
{
    return CastTo(KORO_ARG(deviceHandle), KORO_ARG(moduleHandle), &Device::ParentInterface);
}

KORO_ReturnCode KORO_Device_ToEventSupportingModule(
    KORO_DeviceHandle deviceHandle, KORO_EventSupportingModuleHandle* eventSupportingModuleHandle)
{
    return CastTo(KORO_ARG(deviceHandle), KORO_ARG(eventSupportingModuleHandle), &Device::ParentInterface);
}
