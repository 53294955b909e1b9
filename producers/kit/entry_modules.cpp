// TL..., IF... and Dev...: the module tree.
#include "producers/kit/call.h"
#include "producers/kit/data_stream.h"
#include "producers/kit/device.h"
#include "producers/kit/system.h"

#include <string>

namespace GenTL
{

using namespace koro::kit; // NOLINT(google-build-using-namespace): entry points are thin wrappers over it

namespace
{

// Hands out what `open` made.
template <typename Open>
void HandOut(void** handle, const Open& open)
{
    RequirePointer(handle, "the output handle");
    *handle = open()->Handle();
}

std::string RequireId(const char* id)
{
    RequirePointer(id, "the id");
    return id;
}

void HandOutText(const std::string& text, char* out, size_t* size)
{
    CopyOut({text.c_str(), text.size() + 1}, out, size);
}

// Null is allowed and not written.
void HandOutChanged(bool changed, bool8_t* out)
{
    if (out != nullptr) *out = changed ? 1 : 0;
}

template <typename T>
GC_ERROR CloseModule(const char* function, void* handle)
{
    return Call(function, [=] {
        if (!Find<T>(handle)->Close()) throw Failure(GC_ERR_INVALID_HANDLE, "the module was closed meanwhile");
    });
}

} // namespace

GC_ERROR TLOpen(TL_HANDLE* phSystem)
{
    return Call(__func__, [=] {
        const auto producer = Runtime::Instance().TheProducer();
        HandOut(phSystem, [&] { return producer->OpenSystem(); });
    });
}

GC_ERROR TLClose(TL_HANDLE hSystem)
{
    return CloseModule<System>(__func__, hSystem);
}

GC_ERROR TLGetInfo(TL_HANDLE hSystem, TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return Call(__func__, [=, function = __func__] {
        const auto system = Find<System>(hSystem);
        Answer(function, iInfoCmd, {piType, pBuffer, piSize}, [&] { return system->Info(iInfoCmd); });
    });
}

GC_ERROR TLGetNumInterfaces(TL_HANDLE hSystem, uint32_t* piNumIfaces)
{
    return Call(__func__, [=] {
        const auto system = Find<System>(hSystem);
        RequirePointer(piNumIfaces, "piNumIfaces");
        *piNumIfaces = static_cast<uint32_t>(system->NumInterfaces());
    });
}

GC_ERROR TLGetInterfaceID(TL_HANDLE hSystem, uint32_t iIndex, char* sIfaceID, size_t* piSize)
{
    return Call(__func__, [=] {
        const auto system = Find<System>(hSystem);
        RequirePointer(piSize, "piSize");
        HandOutText(system->InterfaceIdAt(iIndex), sIfaceID, piSize);
    });
}

GC_ERROR TLGetInterfaceInfo(
    TL_HANDLE hSystem, const char* sIfaceID, INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
    size_t* piSize)
{
    return Call(__func__, [=, function = __func__] {
        const auto system = Find<System>(hSystem);
        const InfoOutput output{piType, pBuffer, piSize};
        output.Require();
        const auto model = system->FindInterface(RequireId(sIfaceID));
        Answer(function, iInfoCmd, output, [&] { return model->Info(iInfoCmd); });
    });
}

GC_ERROR TLOpenInterface(TL_HANDLE hSystem, const char* sIfaceID, IF_HANDLE* phIface)
{
    return Call(__func__, [=] {
        const auto system = Find<System>(hSystem);
        const std::string id = RequireId(sIfaceID);
        HandOut(phIface, [&] { return system->OpenInterface(id); });
    });
}

GC_ERROR TLUpdateInterfaceList(TL_HANDLE hSystem, bool8_t* pbChanged, uint64_t iTimeout)
{
    return Call(__func__, [=] { HandOutChanged(Find<System>(hSystem)->UpdateInterfaces(iTimeout), pbChanged); });
}

GC_ERROR IFClose(IF_HANDLE hIface)
{
    return CloseModule<Interface>(__func__, hIface);
}

GC_ERROR IFGetInfo(IF_HANDLE hIface, INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return Call(__func__, [=, function = __func__] {
        const auto interface = Find<Interface>(hIface);
        Answer(function, iInfoCmd, {piType, pBuffer, piSize}, [&] { return interface->Info(iInfoCmd); });
    });
}

GC_ERROR IFGetParentTL(IF_HANDLE hIface, TL_HANDLE* phSystem)
{
    return CallSince({1, 4}, __func__, [=] {
        const auto interface = Find<Interface>(hIface);
        HandOut(phSystem, [&] { return interface->Parent(); });
    });
}

GC_ERROR IFGetNumDevices(IF_HANDLE hIface, uint32_t* piNumDevices)
{
    return Call(__func__, [=] {
        const auto interface = Find<Interface>(hIface);
        RequirePointer(piNumDevices, "piNumDevices");
        *piNumDevices = static_cast<uint32_t>(interface->NumDevices());
    });
}

GC_ERROR IFGetDeviceID(IF_HANDLE hIface, uint32_t iIndex, char* sDeviceID, size_t* piSize)
{
    return Call(__func__, [=] {
        const auto interface = Find<Interface>(hIface);
        RequirePointer(piSize, "piSize");
        HandOutText(interface->DeviceIdAt(iIndex), sDeviceID, piSize);
    });
}

GC_ERROR IFUpdateDeviceList(IF_HANDLE hIface, bool8_t* pbChanged, uint64_t iTimeout)
{
    return Call(__func__, [=] { HandOutChanged(Find<Interface>(hIface)->UpdateDevices(iTimeout), pbChanged); });
}

GC_ERROR IFGetDeviceInfo(
    IF_HANDLE hIface, const char* sDeviceID, DEVICE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
    size_t* piSize)
{
    return Call(__func__, [=, function = __func__] {
        const auto interface = Find<Interface>(hIface);
        const std::string id = RequireId(sDeviceID);
        const auto info = [&] { return interface->DeviceInfoOf(id, iInfoCmd); };
        Answer(function, iInfoCmd, {piType, pBuffer, piSize}, info);
    });
}

GC_ERROR IFOpenDevice(IF_HANDLE hIface, const char* sDeviceID, DEVICE_ACCESS_FLAGS iOpenFlag, DEV_HANDLE* phDevice)
{
    return Call(__func__, [=] {
        const auto interface = Find<Interface>(hIface);
        const std::string id = RequireId(sDeviceID);
        HandOut(phDevice, [&] { return interface->OpenDevice(id, iOpenFlag); });
    });
}

GC_ERROR DevClose(DEV_HANDLE hDevice)
{
    return CloseModule<Device>(__func__, hDevice);
}

GC_ERROR DevGetInfo(DEV_HANDLE hDevice, DEVICE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return Call(__func__, [=, function = __func__] {
        const auto device = Find<Device>(hDevice);
        Answer(function, iInfoCmd, {piType, pBuffer, piSize}, [&] { return device->Info(iInfoCmd); });
    });
}

GC_ERROR DevGetParentIF(DEV_HANDLE hDevice, IF_HANDLE* phIface)
{
    return CallSince({1, 4}, __func__, [=] {
        const auto device = Find<Device>(hDevice);
        HandOut(phIface, [&] { return device->Parent(); });
    });
}

GC_ERROR DevGetPort(DEV_HANDLE hDevice, PORT_HANDLE* phRemoteDev)
{
    return Call(__func__, [=] {
        const auto device = Find<Device>(hDevice);
        HandOut(phRemoteDev, [&] { return device->Remote(); });
    });
}

GC_ERROR DevGetNumDataStreams(DEV_HANDLE hDevice, uint32_t* piNumDataStreams)
{
    return Call(__func__, [=] {
        const auto device = Find<Device>(hDevice);
        RequirePointer(piNumDataStreams, "piNumDataStreams");
        *piNumDataStreams = device->NumStreams();
    });
}

GC_ERROR DevGetDataStreamID(DEV_HANDLE hDevice, uint32_t iIndex, char* sDataStreamID, size_t* piSize)
{
    return Call(__func__, [=] {
        const auto device = Find<Device>(hDevice);
        RequirePointer(piSize, "piSize");
        HandOutText(device->StreamIdAt(iIndex), sDataStreamID, piSize);
    });
}

GC_ERROR DevOpenDataStream(DEV_HANDLE hDevice, const char* sDataStreamID, DS_HANDLE* phDataStream)
{
    return Call(__func__, [=] {
        const auto device = Find<Device>(hDevice);
        const std::string id = RequireId(sDataStreamID);
        HandOut(phDataStream, [&] { return device->OpenStream(id); });
    });
}

GC_ERROR DSClose(DS_HANDLE hDataStream)
{
    return CloseModule<DataStream>(__func__, hDataStream);
}

GC_ERROR DSGetParentDev(DS_HANDLE hDataStream, DEV_HANDLE* phDevice)
{
    return CallSince({1, 4}, __func__, [=] {
        const auto stream = Find<DataStream>(hDataStream);
        HandOut(phDevice, [&] { return stream->Parent(); });
    });
}

} // namespace GenTL
