// The modules of a producer: libraries, systems, interfaces, devices, and the descriptors of modules that are not open.
//
// Programs include <koro/koro.hpp>, which includes this header. Any thread may call these functions.
#ifndef KORO_CPP_TREE_HPP
#define KORO_CPP_TREE_HPP

#include <koro/cpp/callbacks.hpp>
#include <koro/cpp/events.hpp>
#include <koro/cpp/library.hpp>
#include <koro/cpp/nodes.hpp>
#include <koro/cpp/ports.hpp>
#include <koro/cpp/streams.hpp>
#include <koro/cpp/support.hpp>
#include <koro/koro.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace koro
{

class InterfaceView;
class SystemView;
class ProducerLibraryView;

enum class AccessType : uint32_t
{
    ReadOnly = 2,
    Control = 3,
    Exclusive = 4,
};

enum class DeviceAccessStatus : int32_t
{
    Unknown = 0,
    ReadWrite = 1, // can be opened for reading and writing
    ReadOnly = 2,  // can be opened for reading
    NoAccess = 3,
    Busy = 4, // open elsewhere
    OpenReadWrite = 5,
    OpenReadOnly = 6,
};

// The remote device: the camera itself, as opposed to the device of the transport layer. A view: the device owns it.
class RemoteDevice : public detail::View<KORO_RemoteDeviceHandle>
{
public:
    using View::View;

    DeviceView LocalDevice() const;
    koro::Port Port() const { return detail::PortOf(KORO_RemoteDevice_ToModule, Get()); }
    std::vector<koro::NodeMap> NodeMaps() const { return detail::NodeMapsOf(KORO_RemoteDevice_ToModule, Get()); }
    koro::NodeMap NodeMap(size_t index = 0) const
    {
        return detail::NodeMapOf(KORO_RemoteDevice_ToModule, Get(), index);
    }
};

namespace detail
{

template <typename Base>
class DeviceCalls : public Base
{
public:
    using Base::Base;
    using Base::Get;

    std::string Key() const { return detail::Text(KORO_Device_GetKey, Get()); }
    std::string ID() const { return detail::Text(KORO_Device_GetID, Get()); }
    std::string DisplayName() const { return detail::Text(KORO_Device_GetDisplayName, Get()); }
    std::string VendorName() const { return detail::Text(KORO_Device_GetVendorName, Get()); }
    std::string ModelName() const { return detail::Text(KORO_Device_GetModelName, Get()); }
    std::string Version() const { return detail::Text(KORO_Device_GetVersion, Get()); }
    std::string TLType() const { return detail::Text(KORO_Device_GetTLType, Get()); }
    std::string UserDefinedName() const { return detail::Text(KORO_Device_GetUserDefinedName, Get()); }
    std::string SerialNumber() const { return detail::Text(KORO_Device_GetSerialNumber, Get()); }
    DeviceAccessStatus AccessStatus() const
    {
        return detail::GetEnumeration<DeviceAccessStatus>(KORO_Device_GetAccessStatus, Get());
    }
    uint64_t TimestampTickFrequency() const { return detail::Get(KORO_Device_GetTimestampTickFrequency, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_Device_GetInfo, Get(), command); }
    koro::RemoteDevice RemoteDevice() const
    {
        return koro::RemoteDevice(detail::Get(KORO_Device_GetRemoteDevice, Get()));
    }
    // The streams as listed at the first call.
    std::vector<DataStreamDescriptor> DataStreams() const
    {
        return detail::Children<DataStreamDescriptor>(KORO_Device_GetNumDataStreams, KORO_Device_GetDataStream, Get());
    }
    koro::Port Port() const { return detail::PortOf(KORO_Device_ToModule, Get()); }
    std::vector<koro::NodeMap> NodeMaps() const { return detail::NodeMapsOf(KORO_Device_ToModule, Get()); }
    koro::NodeMap NodeMap(size_t index = 0) const { return detail::NodeMapOf(KORO_Device_ToModule, Get(), index); }
    EventController EnableEvents(EventType eventType) const
    {
        return detail::EnableEvents(KORO_Device_ToEventSupportingModule, Get(), eventType);
    }
    InterfaceView ParentInterface() const;
};

} // namespace detail

// A view of an object that a Device owns; it can be copied.
class DeviceView : public detail::DeviceCalls<detail::View<KORO_DeviceHandle>>
{
public:
    using DeviceCalls::DeviceCalls;
};

// An open device: the transport layer's side of a camera.
class Device : public detail::DeviceCalls<detail::Owner<KORO_DeviceHandle, KORO_Device_Destruct>>
{
public:
    using DeviceCalls::DeviceCalls;

    operator DeviceView() const& noexcept { return DeviceView(Get()); }
    operator DeviceView() const&& = delete; // the object ends at once
};

class DeviceDescriptor : public detail::View<KORO_DeviceDescriptorHandle>
{
public:
    using View::View;

    std::string Key() const { return detail::Text(KORO_DeviceDescriptor_GetKey, Get()); }
    std::string ID() const { return detail::DescriptorID(KORO_DeviceDescriptor_ToModuleDescriptor, Get()); }
    std::string DisplayName() const { return detail::Text(KORO_DeviceDescriptor_GetDisplayName, Get()); }
    std::string VendorName() const { return detail::Text(KORO_DeviceDescriptor_GetVendorName, Get()); }
    std::string ModelName() const { return detail::Text(KORO_DeviceDescriptor_GetModelName, Get()); }
    std::string Version() const { return detail::Text(KORO_DeviceDescriptor_GetVersion, Get()); }
    std::string TLType() const { return detail::Text(KORO_DeviceDescriptor_GetTLType, Get()); }
    std::string UserDefinedName() const { return detail::Text(KORO_DeviceDescriptor_GetUserDefinedName, Get()); }
    std::string SerialNumber() const { return detail::Text(KORO_DeviceDescriptor_GetSerialNumber, Get()); }
    DeviceAccessStatus AccessStatus() const
    {
        return detail::GetEnumeration<DeviceAccessStatus>(KORO_DeviceDescriptor_GetAccessStatus, Get());
    }
    uint64_t TimestampTickFrequency() const
    {
        return detail::Get(KORO_DeviceDescriptor_GetTimestampTickFrequency, Get());
    }
    bool IsOpenable(AccessType accessType) const
    {
        KORO_Bool8 openable = 0;
        detail::Check(KORO_DeviceDescriptor_GetIsOpenable(Get(), static_cast<uint32_t>(accessType), &openable));
        return openable != 0;
    }
    // Returns whether it can be opened for reading. The name is that of the C function.
    bool IsOpenableExclusive() const { return detail::Flag(KORO_DeviceDescriptor_GetIsOpenableExclusive, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_DeviceDescriptor_GetInfo, Get(), command); }
    Device OpenDevice(AccessType accessType = AccessType::Control) const
    {
        KORO_DeviceHandle device{};
        detail::Check(KORO_DeviceDescriptor_OpenDevice(Get(), static_cast<uint32_t>(accessType), &device));
        return Device(detail::Opened(device));
    }
    InterfaceView ParentInterface() const;

    // Monitoring: while a callback is registered, the library queries these roles, KORO_DEVICE_INFO_..., at an
    // interval.
    void AddInformationRoleToMonitoring(int32_t role) const
    {
        detail::Check(KORO_DeviceDescriptor_AddInformationRoleToMonitoring(Get(), role));
    }
    void RemoveInformationRoleFromMonitoring(int32_t role) const
    {
        detail::Check(KORO_DeviceDescriptor_RemoveInformationRoleFromMonitoring(Get(), role));
    }
    bool IsInformationRoleMonitored(int32_t role) const
    {
        KORO_Bool8 monitored = 0;
        detail::Check(KORO_DeviceDescriptor_IsInformationRoleMonitored(Get(), role, &monitored));
        return monitored != 0;
    }
    uint64_t MonitoringUpdateInterval_ms() const
    {
        return detail::Get(KORO_DeviceDescriptor_GetMonitoringUpdateInterval, Get());
    }
    void SetMonitoringUpdateInterval(uint64_t interval_ms) const
    {
        detail::Check(KORO_DeviceDescriptor_SetMonitoringUpdateInterval(Get(), interval_ms));
    }
    // The function receives the roles that have changed, on a thread of this descriptor. It must not register or
    // unregister callbacks of this descriptor and must not close the library. The registration may end after the
    // descriptor.
    [[nodiscard]] Registration OnInformationChanged(
        std::function<void(const std::vector<int32_t>& roles)> changed) const
    {
        return detail::Register(
            KORO_DeviceDescriptor_RegisterInformationChangedCallback,
            KORO_DeviceDescriptor_UnregisterInformationChangedCallback, Get(), &detail::CallInformationChanged,
            std::move(changed));
    }
};

namespace detail
{

template <typename Base>
class InterfaceCalls : public Base
{
public:
    using Base::Base;
    using Base::Get;

    std::string Key() const { return detail::Text(KORO_Interface_GetKey, Get()); }
    std::string ID() const { return detail::Text(KORO_Interface_GetID, Get()); }
    std::string DisplayName() const { return detail::Text(KORO_Interface_GetDisplayName, Get()); }
    std::string TLType() const { return detail::Text(KORO_Interface_GetTLType, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_Interface_GetInfo, Get(), command); }
    void UpdateDevices(uint64_t timeout_ms) const { detail::Check(KORO_Interface_UpdateDevices(Get(), timeout_ms)); }
    // Returns the list of the last update.
    std::vector<DeviceDescriptor> Devices() const
    {
        return detail::Children<DeviceDescriptor>(KORO_Interface_GetNumDevices, KORO_Interface_GetDevice, Get());
    }
    [[nodiscard]] Registration OnDeviceFound(std::function<void(DeviceDescriptor)> found) const
    {
        return detail::Register(
            KORO_Interface_RegisterDeviceFoundCallback, KORO_Interface_UnregisterDeviceFoundCallback, Get(),
            &detail::CallFound<DeviceDescriptor, KORO_DeviceDescriptorHandle>, std::move(found));
    }
    [[nodiscard]] Registration OnDeviceLost(std::function<void(const std::string& id)> lost) const
    {
        return detail::Register(
            KORO_Interface_RegisterDeviceLostCallback, KORO_Interface_UnregisterDeviceLostCallback, Get(),
            &detail::CallLost, std::move(lost));
    }
    // Unsolicited notifications, if the producer sends them. They do not change the list. Registration documents the
    // thread.
    [[nodiscard]] Registration OnDeviceListChanged(std::function<void()> changed) const
    {
        return detail::Register(
            KORO_Interface_RegisterDeviceListChangedCallback, KORO_Interface_UnregisterDeviceListChangedCallback, Get(),
            &detail::CallListChanged, std::move(changed));
    }
    // The descriptor is valid only if Devices() or OnDeviceFound() has returned it before; otherwise its calls throw
    // Error with KORO_RETURN_CODE_INVALID_HANDLE. The same applies to the next function.
    [[nodiscard]] Registration OnDeviceDisconnected(std::function<void(DeviceDescriptor)> disconnected) const
    {
        return detail::Register(
            KORO_Interface_RegisterDeviceDisconnectedCallback, KORO_Interface_UnregisterDeviceDisconnectedCallback,
            Get(), &detail::CallFound<DeviceDescriptor, KORO_DeviceDescriptorHandle>, std::move(disconnected));
    }
    [[nodiscard]] Registration OnDeviceReconnected(
        std::function<void(DeviceDescriptor, const KORO_DEVICE_RECONNECT_INFORMATION&)> reconnected) const
    {
        return detail::Register(
            KORO_Interface_RegisterDeviceReconnectedCallback, KORO_Interface_UnregisterDeviceReconnectedCallback, Get(),
            &detail::CallReconnected<DeviceDescriptor>, std::move(reconnected));
    }
    koro::Port Port() const { return detail::PortOf(KORO_Interface_ToModule, Get()); }
    std::vector<koro::NodeMap> NodeMaps() const { return detail::NodeMapsOf(KORO_Interface_ToModule, Get()); }
    koro::NodeMap NodeMap(size_t index = 0) const { return detail::NodeMapOf(KORO_Interface_ToModule, Get(), index); }
    EventController EnableEvents(EventType eventType) const
    {
        return detail::EnableEvents(KORO_Interface_ToEventSupportingModule, Get(), eventType);
    }
    SystemView ParentSystem() const;
};

} // namespace detail

// A view of an object that a Interface owns; it can be copied.
class InterfaceView : public detail::InterfaceCalls<detail::View<KORO_InterfaceHandle>>
{
public:
    using InterfaceCalls::InterfaceCalls;
};

class Interface : public detail::InterfaceCalls<detail::Owner<KORO_InterfaceHandle, KORO_Interface_Destruct>>
{
public:
    using InterfaceCalls::InterfaceCalls;

    operator InterfaceView() const& noexcept { return InterfaceView(Get()); }
    operator InterfaceView() const&& = delete; // the object ends at once
};

class InterfaceDescriptor : public detail::View<KORO_InterfaceDescriptorHandle>
{
public:
    using View::View;

    std::string Key() const { return detail::Text(KORO_InterfaceDescriptor_GetKey, Get()); }
    std::string ID() const { return detail::DescriptorID(KORO_InterfaceDescriptor_ToModuleDescriptor, Get()); }
    std::string DisplayName() const { return detail::Text(KORO_InterfaceDescriptor_GetDisplayName, Get()); }
    std::string TLType() const { return detail::Text(KORO_InterfaceDescriptor_GetTLType, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_InterfaceDescriptor_GetInfo, Get(), command); }
    Interface OpenInterface() const
    {
        return Interface(detail::Opened(detail::Get(KORO_InterfaceDescriptor_OpenInterface, Get())));
    }
    SystemView ParentSystem() const;
};

namespace detail
{

template <typename Base>
class SystemCalls : public Base
{
public:
    using Base::Base;
    using Base::Get;

    std::string Key() const { return detail::Text(KORO_System_GetKey, Get()); }
    std::string ID() const { return detail::Text(KORO_System_GetID, Get()); }
    std::string DisplayName() const { return detail::Text(KORO_System_GetDisplayName, Get()); }
    std::string VendorName() const { return detail::Text(KORO_System_GetVendorName, Get()); }
    std::string ModelName() const { return detail::Text(KORO_System_GetModelName, Get()); }
    std::string Version() const { return detail::Text(KORO_System_GetVersion, Get()); }
    std::string TLType() const { return detail::Text(KORO_System_GetTLType, Get()); }
    std::string CTIFileName() const { return detail::Text(KORO_System_GetCTIFileName, Get()); }
    std::string CTIFullPath() const { return detail::Text(KORO_System_GetCTIFullPath, Get()); }
    uint32_t GenTLVersionMajor() const { return detail::Get(KORO_System_GetGenTLVersionMajor, Get()); }
    uint32_t GenTLVersionMinor() const { return detail::Get(KORO_System_GetGenTLVersionMinor, Get()); }
    int32_t CharacterEncoding() const { return detail::Get(KORO_System_GetCharacterEncoding, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_System_GetInfo, Get(), command); }
    void UpdateInterfaces(uint64_t timeout_ms) const { detail::Check(KORO_System_UpdateInterfaces(Get(), timeout_ms)); }
    // Returns the list of the last update.
    std::vector<InterfaceDescriptor> Interfaces() const
    {
        return detail::Children<InterfaceDescriptor>(KORO_System_GetNumInterfaces, KORO_System_GetInterface, Get());
    }
    [[nodiscard]] Registration OnInterfaceFound(std::function<void(InterfaceDescriptor)> found) const
    {
        return detail::Register(
            KORO_System_RegisterInterfaceFoundCallback, KORO_System_UnregisterInterfaceFoundCallback, Get(),
            &detail::CallFound<InterfaceDescriptor, KORO_InterfaceDescriptorHandle>, std::move(found));
    }
    [[nodiscard]] Registration OnInterfaceLost(std::function<void(const std::string& id)> lost) const
    {
        return detail::Register(
            KORO_System_RegisterInterfaceLostCallback, KORO_System_UnregisterInterfaceLostCallback, Get(),
            &detail::CallLost, std::move(lost));
    }
    koro::Port Port() const { return detail::PortOf(KORO_System_ToModule, Get()); }
    std::vector<koro::NodeMap> NodeMaps() const { return detail::NodeMapsOf(KORO_System_ToModule, Get()); }
    koro::NodeMap NodeMap(size_t index = 0) const { return detail::NodeMapOf(KORO_System_ToModule, Get(), index); }
    EventController EnableEvents(EventType eventType) const
    {
        return detail::EnableEvents(KORO_System_ToEventSupportingModule, Get(), eventType);
    }
    ProducerLibraryView ParentLibrary() const;
};

} // namespace detail

// A view of an object that a System owns; it can be copied.
class SystemView : public detail::SystemCalls<detail::View<KORO_SystemHandle>>
{
public:
    using SystemCalls::SystemCalls;
};

class System : public detail::SystemCalls<detail::Owner<KORO_SystemHandle, KORO_System_Destruct>>
{
public:
    using SystemCalls::SystemCalls;

    operator SystemView() const& noexcept { return SystemView(Get()); }
    operator SystemView() const&& = delete; // the object ends at once
};

class SystemDescriptor : public detail::View<KORO_SystemDescriptorHandle>
{
public:
    using View::View;

    std::string Key() const { return detail::Text(KORO_SystemDescriptor_GetKey, Get()); }
    std::string ID() const { return detail::DescriptorID(KORO_SystemDescriptor_ToModuleDescriptor, Get()); }
    std::string DisplayName() const { return detail::Text(KORO_SystemDescriptor_GetDisplayName, Get()); }
    std::string VendorName() const { return detail::Text(KORO_SystemDescriptor_GetVendorName, Get()); }
    std::string ModelName() const { return detail::Text(KORO_SystemDescriptor_GetModelName, Get()); }
    std::string Version() const { return detail::Text(KORO_SystemDescriptor_GetVersion, Get()); }
    std::string TLType() const { return detail::Text(KORO_SystemDescriptor_GetTLType, Get()); }
    std::string CTIFileName() const { return detail::Text(KORO_SystemDescriptor_GetCTIFileName, Get()); }
    std::string CTIFullPath() const { return detail::Text(KORO_SystemDescriptor_GetCTIFullPath, Get()); }
    uint32_t GenTLVersionMajor() const { return detail::Get(KORO_SystemDescriptor_GetGenTLVersionMajor, Get()); }
    uint32_t GenTLVersionMinor() const { return detail::Get(KORO_SystemDescriptor_GetGenTLVersionMinor, Get()); }
    int32_t CharacterEncoding() const { return detail::Get(KORO_SystemDescriptor_GetCharacterEncoding, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_SystemDescriptor_GetInfo, Get(), command); }
    System OpenSystem() const { return System(detail::Opened(detail::Get(KORO_SystemDescriptor_OpenSystem, Get()))); }
    ProducerLibraryView ParentLibrary() const;
};

namespace detail
{

template <typename Base>
class ProducerLibraryCalls : public Base
{
public:
    using Base::Base;
    using Base::Get;

    std::string Key() const { return detail::Text(KORO_ProducerLibrary_GetKey, Get()); }
    SystemDescriptor System() const { return SystemDescriptor(detail::Get(KORO_ProducerLibrary_GetSystem, Get())); }
};

} // namespace detail

// A view of an object that a ProducerLibrary owns; it can be copied.
class ProducerLibraryView : public detail::ProducerLibraryCalls<detail::View<KORO_ProducerLibraryHandle>>
{
public:
    using ProducerLibraryCalls::ProducerLibraryCalls;
};

// A loaded and initialised producer, the root of its modules. Some producers fail when the same file is loaded twice.
class ProducerLibrary
    : public detail::ProducerLibraryCalls<detail::Owner<KORO_ProducerLibraryHandle, KORO_ProducerLibrary_Destruct>>
{
public:
    using ProducerLibraryCalls::ProducerLibraryCalls;
    explicit ProducerLibrary(const std::string& ctiPath) : ProducerLibraryCalls(Construct(ctiPath)) {}

    operator ProducerLibraryView() const& noexcept { return ProducerLibraryView(Get()); }
    operator ProducerLibraryView() const&& = delete; // the object ends at once

private:
    static KORO_ProducerLibraryHandle Construct(const std::string& ctiPath)
    {
        KORO_ProducerLibraryHandle library{};
        detail::Check(KORO_ProducerLibrary_Construct(ctiPath.c_str(), ctiPath.size() + 1, &library));
        try
        {
            detail::ClosingAtExit::OfProcess().FileLoaded(ctiPath);
        }
        catch (...)
        {
            KORO_ProducerLibrary_Destruct(library);
            throw;
        }
        return library;
    }
};

inline DeviceView RemoteDevice::LocalDevice() const
{
    return DeviceView(detail::Get(KORO_RemoteDevice_GetLocalDevice, Get()));
}
inline DeviceView DataStreamDescriptor::ParentDevice() const
{
    return DeviceView(detail::Get(KORO_DataStreamDescriptor_GetParentDevice, Get()));
}
inline InterfaceView DeviceDescriptor::ParentInterface() const
{
    return InterfaceView(detail::Get(KORO_DeviceDescriptor_GetParentInterface, Get()));
}
inline SystemView InterfaceDescriptor::ParentSystem() const
{
    return SystemView(detail::Get(KORO_InterfaceDescriptor_GetParentSystem, Get()));
}
inline ProducerLibraryView SystemDescriptor::ParentLibrary() const
{
    return ProducerLibraryView(detail::Get(KORO_SystemDescriptor_GetParentLibrary, Get()));
}

namespace detail
{

template <typename Base>
DeviceView StreamCalls<Base>::ParentDevice() const
{
    return DeviceView(detail::Get(KORO_DataStream_GetParentDevice, Get()));
}
template <typename Base>
InterfaceView DeviceCalls<Base>::ParentInterface() const
{
    return InterfaceView(detail::Get(KORO_Device_GetParentInterface, Get()));
}
template <typename Base>
SystemView InterfaceCalls<Base>::ParentSystem() const
{
    return SystemView(detail::Get(KORO_Interface_GetParentSystem, Get()));
}
template <typename Base>
ProducerLibraryView SystemCalls<Base>::ParentLibrary() const
{
    return ProducerLibraryView(detail::Get(KORO_System_GetParentLibrary, Get()));
}

} // namespace detail

} // namespace koro

#endif
