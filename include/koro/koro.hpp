// The C++ face: owners for handles, exceptions for return codes, std::string and std::vector for size-query pairs.
//
// Header-only, C++17, over the exported C functions alone; it has no binary interface of its own.
//
// Ownership. Library, ProducerLibrary, System, Interface, Device, DataStream, EventController, Event, BufferPart,
// BufferChunk, FileAdapter, FirmwareUpdater and FirmwareUpdateProgressObserver own what they stand for: move-only,
// closed by their destructor or by Close(). SystemDescriptor, InterfaceDescriptor, DeviceDescriptor,
// DataStreamDescriptor, RemoteDevice, Buffer, Port, PortURL, NodeMap, all nodes and FirmwareUpdateInformation are
// views, free to copy: what they name belongs to its parent, and after the parent's end every call on them throws Error
// with KORO_RETURN_CODE_INVALID_HANDLE. Nothing here dangles.
//
// Order of destruction. GenTL wants the leaves closed first: Event, EventController, DataStream, Device, Interface,
// System, ProducerLibrary, Library. Variables declared from the library down end in this order by themselves. Another
// order is safe, but the producer then sees a parent close before its children. A Registration of a callback ends
// before the object it was made on, and so does memory that was announced to a stream: revoke it or close the stream
// first.
//
// Threads. Every call is as free as the C function behind it; one owner must not be moved or closed while another
// thread uses it, with one exception that the C functions make: KillWait() is there to be called from elsewhere.
#ifndef KORO_KORO_HPP
#define KORO_KORO_HPP

#include <koro/cpp/buffer_contents.hpp>
#include <koro/cpp/files.hpp>
#include <koro/cpp/firmware.hpp>
#include <koro/cpp/nodes.hpp>
#include <koro/cpp/support.hpp>
#include <koro/koro.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace koro
{

// Time-outs are milliseconds; this one has no end. As a number of frames: without end.
constexpr uint64_t infinite = ~uint64_t{0};

enum class AccessType : uint32_t
{
    ReadOnly = 2,
    Control = 3,
    Exclusive = 4,
};

enum class FlushMode : int32_t
{
    InputToOutput = 0,
    OutputDiscard = 1,
    AllToInput = 2,
    UnqueuedToInput = 3,
    AllDiscard = 4,
};

// One count of the library's initialisation. Keep it until everything else of this header has gone.
class Library
{
public:
    [[nodiscard]] static Library Initialize()
    {
        detail::Check(KORO_Library_Initialize());
        return Library();
    }
    Library(Library&& other) noexcept : counted(std::exchange(other.counted, false)) {}
    Library& operator=(Library&& other) noexcept
    {
        if (this != &other)
        {
            Close();
            counted = std::exchange(other.counted, false);
        }
        return *this;
    }
    ~Library() { Close(); }

    void Close() noexcept
    {
        if (std::exchange(counted, false)) KORO_Library_Close();
    }
    static bool IsInitialized()
    {
        KORO_Bool8 initialized = 0;
        detail::Check(KORO_Library_IsInitialized(&initialized));
        return initialized != 0;
    }
    // As "1.11.1".
    static std::string Version()
    {
        uint32_t major = 0;
        uint32_t minor = 0;
        uint32_t subminor = 0;
        detail::Check(KORO_Library_GetVersionMajor(&major));
        detail::Check(KORO_Library_GetVersionMinor(&minor));
        detail::Check(KORO_Library_GetVersionSubminor(&subminor));
        return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(subminor);
    }

private:
    Library() = default;

    bool counted = true;
};

// The producers that GENICAM_GENTL64_PATH leads to. The list belongs to the process and outlives the library's end.
class EnvironmentInspector
{
public:
    // Loads every new candidate once to see whether it works.
    static void Update() { detail::Check(KORO_EnvironmentInspector_UpdateCTIPaths()); }
    // The list of the latest update.
    static std::vector<std::string> CTIPaths()
    {
        size_t count = 0;
        detail::Check(KORO_EnvironmentInspector_GetNumCTIPaths(&count));
        std::vector<std::string> paths;
        for (size_t index = 0; index < count; ++index)
        {
            paths.push_back(detail::FetchText([index](char* buffer, size_t* size) {
                return KORO_EnvironmentInspector_GetCTIPath(index, buffer, size);
            }));
        }
        return paths;
    }
};

// One place where the description of a module's features lies.
class PortURL : public detail::View<KORO_PortURLHandle>
{
public:
    using View::View;

    std::string URL() const { return detail::Text(KORO_PortURL_GetURL, Get()); }
    int32_t Scheme() const { return detail::Get(KORO_PortURL_GetScheme, Get()); }
    std::string FileName() const { return detail::Text(KORO_PortURL_GetFileName, Get()); }
    uint64_t FileRegisterAddress() const { return detail::Get(KORO_PortURL_GetFileRegisterAddress, Get()); }
    uint64_t FileSize() const { return detail::Get(KORO_PortURL_GetFileSize, Get()); }
    std::vector<uint8_t> FileSHA1Hash() const { return detail::Bytes(KORO_PortURL_GetFileSHA1Hash, Get()); }
    int32_t FileVersionMajor() const { return detail::Get(KORO_PortURL_GetFileVersionMajor, Get()); }
    int32_t FileVersionMinor() const { return detail::Get(KORO_PortURL_GetFileVersionMinor, Get()); }
    int32_t FileVersionSubminor() const { return detail::Get(KORO_PortURL_GetFileVersionSubminor, Get()); }
    int32_t FileSchemaVersionMajor() const { return detail::Get(KORO_PortURL_GetFileSchemaVersionMajor, Get()); }
    int32_t FileSchemaVersionMinor() const { return detail::Get(KORO_PortURL_GetFileSchemaVersionMinor, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_PortURL_GetInfo, Get(), command); }
};

// Register access of a module.
class Port : public detail::View<KORO_PortHandle>
{
public:
    using View::View;

    std::string ID() const { return detail::Text(KORO_Port_GetID, Get()); }
    std::string Name() const { return detail::Text(KORO_Port_GetName, Get()); }
    std::string VendorName() const { return detail::Text(KORO_Port_GetVendorName, Get()); }
    std::string ModelName() const { return detail::Text(KORO_Port_GetModelName, Get()); }
    std::string Version() const { return detail::Text(KORO_Port_GetVersion, Get()); }
    std::string TLType() const { return detail::Text(KORO_Port_GetTLType, Get()); }
    std::string ModuleName() const { return detail::Text(KORO_Port_GetModuleName, Get()); }
    int32_t DataEndianness() const { return detail::Get(KORO_Port_GetDataEndianness, Get()); }
    bool IsReadable() const { return detail::Flag(KORO_Port_GetIsReadable, Get()); }
    bool IsWritable() const { return detail::Flag(KORO_Port_GetIsWritable, Get()); }
    bool IsAvailable() const { return detail::Flag(KORO_Port_GetIsAvailable, Get()); }
    bool IsImplemented() const { return detail::Flag(KORO_Port_GetIsImplemented, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_Port_GetInfo, Get(), command); }

    std::vector<uint8_t> Read(uint64_t address, size_t size) const
    {
        std::vector<uint8_t> bytes(size);
        detail::Check(KORO_Port_Read(Get(), address, bytes.data(), bytes.size()));
        return bytes;
    }
    void Write(uint64_t address, const std::vector<uint8_t>& bytes) const
    {
        detail::Check(KORO_Port_Write(Get(), address, bytes.data(), bytes.size()));
    }
    std::vector<PortURL> URLs() const
    {
        std::vector<PortURL> urls(detail::Get(KORO_Port_GetNumURLs, Get()));
        for (size_t i = 0; i < urls.size(); ++i)
            urls[i] = PortURL(detail::GetAt(KORO_Port_GetURL, Get(), i));
        return urls;
    }
};

class Event : public detail::Owner<KORO_EventHandle, KORO_Event_Destruct>
{
public:
    using Owner::Owner;

    uint64_t ID() const { return detail::Get(KORO_Event_GetID, Get()); }
    int32_t Type() const { return detail::Get(KORO_Event_GetType, Get()); }
    std::vector<uint8_t> Data() const { return detail::Bytes(KORO_Event_GetData, Get()); }
    std::vector<uint8_t> RawData() const { return detail::Bytes(KORO_Event_GetRawData, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_Event_GetInfo, Get(), command); }
};

class EventController : public detail::Owner<KORO_EventControllerHandle, KORO_EventController_Destruct>
{
public:
    using Owner::Owner;

    // Throws Error with KORO_RETURN_CODE_TIMEOUT when none came, KORO_RETURN_CODE_ABORTED after KillWait().
    Event WaitForEvent(uint64_t timeout_ms = infinite) const
    {
        KORO_EventHandle event{};
        detail::Check(KORO_EventController_WaitForEvent(Get(), timeout_ms, &event));
        return Event(event);
    }
    void KillWait() const { detail::Check(KORO_EventController_KillWait(Get())); }
    void FlushPendingKillWaits() const { detail::Check(KORO_EventController_FlushPendingKillWaits(Get())); }
    void FlushEvents() const { detail::Check(KORO_EventController_FlushEvents(Get())); }

    int32_t ControlledEventType() const { return detail::Get(KORO_EventController_GetControlledEventType, Get()); }
    size_t NumEventsInQueue() const { return detail::Get(KORO_EventController_GetNumEventsInQueue, Get()); }
    uint64_t NumEventsFired() const { return detail::Get(KORO_EventController_GetNumEventsFired, Get()); }
    size_t EventMaxSize() const { return detail::Get(KORO_EventController_GetEventMaxSize, Get()); }
    size_t EventDataMaxSize() const { return detail::Get(KORO_EventController_GetEventDataMaxSize, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_EventController_GetInfo, Get(), command); }
};

namespace detail
{

// The features of a module as each of its descriptions tells them.
template <typename Handle>
std::vector<NodeMap> NodeMapsOf(KORO_ReturnCode (*toModule)(Handle, KORO_ModuleHandle*), Handle handle)
{
    return Children<NodeMap>(KORO_Module_GetNumNodeMaps, KORO_Module_GetNodeMap, Get(toModule, handle));
}

template <typename Handle>
NodeMap NodeMapOf(KORO_ReturnCode (*toModule)(Handle, KORO_ModuleHandle*), Handle handle, size_t index)
{
    return NodeMap(GetAt(KORO_Module_GetNodeMap, Get(toModule, handle), index));
}

template <typename Handle>
Port PortOf(KORO_ReturnCode (*toModule)(Handle, KORO_ModuleHandle*), Handle handle)
{
    return Port(Get(KORO_Module_GetPort, Get(toModule, handle)));
}

template <typename Handle>
EventController EnableEvents(
    KORO_ReturnCode (*toEventSupporting)(Handle, KORO_EventSupportingModuleHandle*), Handle handle, int32_t type)
{
    KORO_EventControllerHandle controller{};
    Check(KORO_EventSupportingModule_EnableEvents(Get(toEventSupporting, handle), type, &controller));
    return EventController(controller);
}

} // namespace detail

// Memory known to a data stream. A view: the stream revokes it at its own end. Every answer is the producer's at the
// moment of the call; what a producer does not know throws.
class Buffer : public detail::View<KORO_BufferHandle>
{
public:
    using View::View;

    // Image bytes: of whoever announced them, readable until the buffer is queued again or revoked.
    void* BasePtr() const { return detail::Get(KORO_Buffer_GetBasePtr, Get()); }
    size_t Size() const { return detail::Get(KORO_Buffer_GetSize, Get()); }
    void* UserPtr() const { return detail::Get(KORO_Buffer_GetUserPtr, Get()); }
    uint64_t Timestamp_ticks() const { return detail::Get(KORO_Buffer_GetTimestamp_ticks, Get()); }
    uint64_t Timestamp_ns() const { return detail::Get(KORO_Buffer_GetTimestamp_ns, Get()); }
    bool HasNewData() const { return detail::Flag(KORO_Buffer_GetHasNewData, Get()); }
    bool IsQueued() const { return detail::Flag(KORO_Buffer_GetIsQueued, Get()); }
    bool IsAcquiring() const { return detail::Flag(KORO_Buffer_GetIsAcquiring, Get()); }
    bool IsIncomplete() const { return detail::Flag(KORO_Buffer_GetIsIncomplete, Get()); }
    std::string TLType() const { return detail::Text(KORO_Buffer_GetTLType, Get()); }
    size_t ExpectedDataSize() const { return detail::Get(KORO_Buffer_GetExpectedDataSize, Get()); }
    size_t DeliveredDataSize() const { return detail::Get(KORO_Buffer_GetDeliveredDataSize, Get()); }
    size_t Width() const { return detail::Get(KORO_Buffer_GetWidth, Get()); }
    size_t Height() const { return detail::Get(KORO_Buffer_GetHeight, Get()); }
    size_t XOffset() const { return detail::Get(KORO_Buffer_GetXOffset, Get()); }
    size_t YOffset() const { return detail::Get(KORO_Buffer_GetYOffset, Get()); }
    size_t XPadding() const { return detail::Get(KORO_Buffer_GetXPadding, Get()); }
    size_t YPadding() const { return detail::Get(KORO_Buffer_GetYPadding, Get()); }
    uint64_t FrameID() const { return detail::Get(KORO_Buffer_GetFrameID, Get()); }
    bool HasImage() const { return detail::Flag(KORO_Buffer_GetHasImage, Get()); }
    size_t ImageOffset() const { return detail::Get(KORO_Buffer_GetImageOffset, Get()); }
    int32_t PayloadType() const { return detail::Get(KORO_Buffer_GetPayloadType, Get()); }
    uint64_t PixelFormat() const { return detail::Get(KORO_Buffer_GetPixelFormat, Get()); }
    int32_t PixelFormatNamespace() const { return detail::Get(KORO_Buffer_GetPixelFormatNamespace, Get()); }
    int32_t PixelEndianness() const { return detail::Get(KORO_Buffer_GetPixelEndianness, Get()); }
    size_t DeliveredImageHeight() const { return detail::Get(KORO_Buffer_GetDeliveredImageHeight, Get()); }
    size_t DeliveredChunkPayloadSize() const { return detail::Get(KORO_Buffer_GetDeliveredChunkPayloadSize, Get()); }
    uint64_t ChunkLayoutID() const { return detail::Get(KORO_Buffer_GetChunkLayoutID, Get()); }
    std::string FileName() const { return detail::Text(KORO_Buffer_GetFileName, Get()); }
    bool HasChunks() const { return detail::Flag(KORO_Buffer_GetHasChunks, Get()); }
    // Both are read anew, for the image that lies in the buffer now; empty where the producer says that it has none.
    std::vector<BufferPart> Parts() const
    {
        return detail::UpdatedChildren<BufferPart>(
            KORO_Buffer_UpdateParts, KORO_Buffer_GetNumParts, KORO_Buffer_GetPart, Get());
    }
    std::vector<BufferChunk> Chunks() const
    {
        return detail::UpdatedChildren<BufferChunk>(
            KORO_Buffer_UpdateChunks, KORO_Buffer_GetNumChunks, KORO_Buffer_GetChunk, Get());
    }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_Buffer_GetInfo, Get(), command); }
    koro::Port Port() const { return detail::PortOf(KORO_Buffer_ToModule, Get()); }
    std::vector<koro::NodeMap> NodeMaps() const { return detail::NodeMapsOf(KORO_Buffer_ToModule, Get()); }
    koro::NodeMap NodeMap(size_t index = 0) const { return detail::NodeMapOf(KORO_Buffer_ToModule, Get(), index); }
    EventController EnableEvents(int32_t eventType) const
    {
        return detail::EnableEvents(KORO_Buffer_ToEventSupportingModule, Get(), eventType);
    }
};

inline bool NodeMap::HasBufferSupportedChunks(const Buffer& buffer) const
{
    KORO_Bool8 has = 0;
    detail::Check(KORO_NodeMap_GetHasBufferSupportedChunks(Get(), buffer.Get(), &has));
    return has != 0;
}
inline void NodeMap::UpdateChunkNodes(const Buffer& buffer) const
{
    detail::Check(KORO_NodeMap_UpdateChunkNodes(Get(), buffer.Get()));
}
inline bool NodeMap::HasEventSupportedData(const Event& event) const
{
    KORO_Bool8 has = 0;
    detail::Check(KORO_NodeMap_GetHasEventSupportedData(Get(), event.Get(), &has));
    return has != 0;
}
inline void NodeMap::UpdateEventNodes(const Event& event) const
{
    detail::Check(KORO_NodeMap_UpdateEventNodes(Get(), event.Get()));
}

// An open stream. Its end stops, discards and revokes; it happens on the thread that ends it.
class DataStream : public detail::Owner<KORO_DataStreamHandle, KORO_DataStream_Destruct>
{
public:
    using RevocationFunction = std::function<void(void* buffer, void* userPtr)>;

    DataStream() = default;
    explicit DataStream(KORO_DataStreamHandle stream) noexcept : Owner(stream) {}
    DataStream(DataStream&&) noexcept = default;
    DataStream& operator=(DataStream&& other) noexcept
    {
        // The stream that is replaced calls its revocation functions while it closes: they go after it.
        Owner::operator=(std::move(other));
        revocationFunctions = std::move(other.revocationFunctions);
        return *this;
    }
    ~DataStream() { Close(); }

    // The caller's memory, which must live until the revocation. `revoked` runs once, at the revocation, on the
    // thread that revokes; it must not throw.
    Buffer AnnounceBuffer(void* memory, size_t size, void* userPtr = nullptr, RevocationFunction revoked = nullptr)
    {
        std::unique_ptr<RevocationFunction> kept;
        if (revoked) kept = std::make_unique<RevocationFunction>(std::move(revoked));
        KORO_BufferHandle buffer{};
        detail::Check(KORO_DataStream_AnnounceBuffer(
            Get(), memory, size, userPtr, kept ? CallRevoked : nullptr, kept.get(), &buffer));
        if (kept) revocationFunctions[buffer] = std::move(kept);
        return Buffer(buffer);
    }
    Buffer AllocAndAnnounceBuffer(size_t size, void* userPtr = nullptr)
    {
        KORO_BufferHandle buffer{};
        detail::Check(KORO_DataStream_AllocAndAnnounceBuffer(Get(), size, userPtr, &buffer));
        return Buffer(buffer);
    }
    void QueueBuffer(Buffer buffer) const { detail::Check(KORO_DataStream_QueueBuffer(Get(), buffer.Get())); }
    // When the producer refuses, the buffer stays announced and valid.
    void RevokeBuffer(Buffer buffer)
    {
        detail::Check(KORO_DataStream_RevokeBuffer(Get(), buffer.Get()));
        revocationFunctions.erase(buffer.Get());
    }

    // Throws Error with KORO_RETURN_CODE_TIMEOUT when none came, KORO_RETURN_CODE_ABORTED after KillWait().
    Buffer WaitForFinishedBuffer(uint64_t timeout_ms = infinite) const
    {
        KORO_BufferHandle buffer{};
        detail::Check(KORO_DataStream_WaitForFinishedBuffer(Get(), timeout_ms, &buffer));
        return Buffer(buffer);
    }
    // Ends one wait: the running one, or else the next.
    void KillWait() const { detail::Check(KORO_DataStream_KillWait(Get())); }
    void FlushPendingKillWaits() const { detail::Check(KORO_DataStream_FlushPendingKillWaits(Get())); }
    // `startMode` and `stopMode` are values of the GenTL lists ACQ_START_FLAGS and ACQ_STOP_FLAGS.
    void StartAcquisition(uint64_t numToAcquire = infinite, int32_t startMode = 0) const
    {
        detail::Check(KORO_DataStream_StartAcquisition(Get(), startMode, numToAcquire));
    }
    void StopAcquisition(int32_t stopMode = 0) const
    {
        detail::Check(KORO_DataStream_StopAcquisition(Get(), stopMode));
    }
    void Flush(FlushMode mode) const { detail::Check(KORO_DataStream_Flush(Get(), static_cast<int32_t>(mode))); }

    std::string Key() const { return detail::Text(KORO_DataStream_GetKey, Get()); }
    std::string ID() const { return detail::Text(KORO_DataStream_GetID, Get()); }
    std::string TLType() const { return detail::Text(KORO_DataStream_GetTLType, Get()); }
    size_t NumBuffersAnnounced() const { return detail::Get(KORO_DataStream_GetNumBuffersAnnounced, Get()); }
    size_t NumBuffersAnnouncedMinRequired() const
    {
        return detail::Get(KORO_DataStream_GetNumBuffersAnnouncedMinRequired, Get());
    }
    size_t NumBuffersAwaitDelivery() const { return detail::Get(KORO_DataStream_GetNumBuffersAwaitDelivery, Get()); }
    size_t NumBuffersQueued() const { return detail::Get(KORO_DataStream_GetNumBuffersQueued, Get()); }
    uint64_t NumBuffersDelivered() const { return detail::Get(KORO_DataStream_GetNumBuffersDelivered, Get()); }
    uint64_t NumBuffersStarted() const { return detail::Get(KORO_DataStream_GetNumBuffersStarted, Get()); }
    uint64_t NumUnderruns() const { return detail::Get(KORO_DataStream_GetNumUnderruns, Get()); }
    size_t NumChunksPerBufferMax() const { return detail::Get(KORO_DataStream_GetNumChunksPerBufferMax, Get()); }
    size_t BufferAlignment() const { return detail::Get(KORO_DataStream_GetBufferAlignment, Get()); }
    size_t PayloadSize() const { return detail::Get(KORO_DataStream_GetPayloadSize, Get()); }
    bool DefinesPayloadSize() const { return detail::Flag(KORO_DataStream_GetDefinesPayloadSize, Get()); }
    bool IsGrabbing() const { return detail::Flag(KORO_DataStream_GetIsGrabbing, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_DataStream_GetInfo, Get(), command); }
    koro::Port Port() const { return detail::PortOf(KORO_DataStream_ToModule, Get()); }
    std::vector<koro::NodeMap> NodeMaps() const { return detail::NodeMapsOf(KORO_DataStream_ToModule, Get()); }
    koro::NodeMap NodeMap(size_t index = 0) const { return detail::NodeMapOf(KORO_DataStream_ToModule, Get(), index); }
    EventController EnableEvents(int32_t eventType) const
    {
        return detail::EnableEvents(KORO_DataStream_ToEventSupportingModule, Get(), eventType);
    }

private:
    static void CallRevoked(void* buffer, void* userPtr, void* context) noexcept
    {
        (*static_cast<RevocationFunction*>(context))(buffer, userPtr);
    }

    std::map<KORO_BufferHandle, std::unique_ptr<RevocationFunction>> revocationFunctions;
};

class DataStreamDescriptor : public detail::View<KORO_DataStreamDescriptorHandle>
{
public:
    using View::View;

    std::string Key() const { return detail::Text(KORO_DataStreamDescriptor_GetKey, Get()); }
    std::string ID() const { return detail::DescriptorID(KORO_DataStreamDescriptor_ToModuleDescriptor, Get()); }
    DataStream OpenDataStream() const
    {
        return DataStream(detail::Get(KORO_DataStreamDescriptor_OpenDataStream, Get()));
    }
};

// The camera's own side of a device. A view: the device owns it.
class RemoteDevice : public detail::View<KORO_RemoteDeviceHandle>
{
public:
    using View::View;

    KORO_DeviceHandle LocalDevice() const { return detail::Get(KORO_RemoteDevice_GetLocalDevice, Get()); }
    koro::Port Port() const { return detail::PortOf(KORO_RemoteDevice_ToModule, Get()); }
    std::vector<koro::NodeMap> NodeMaps() const { return detail::NodeMapsOf(KORO_RemoteDevice_ToModule, Get()); }
    koro::NodeMap NodeMap(size_t index = 0) const
    {
        return detail::NodeMapOf(KORO_RemoteDevice_ToModule, Get(), index);
    }
};

// An open device: the transport layer's view of a camera.
class Device : public detail::Owner<KORO_DeviceHandle, KORO_Device_Destruct>
{
public:
    using Owner::Owner;

    std::string Key() const { return detail::Text(KORO_Device_GetKey, Get()); }
    std::string ID() const { return detail::Text(KORO_Device_GetID, Get()); }
    std::string DisplayName() const { return detail::Text(KORO_Device_GetDisplayName, Get()); }
    std::string VendorName() const { return detail::Text(KORO_Device_GetVendorName, Get()); }
    std::string ModelName() const { return detail::Text(KORO_Device_GetModelName, Get()); }
    std::string Version() const { return detail::Text(KORO_Device_GetVersion, Get()); }
    std::string TLType() const { return detail::Text(KORO_Device_GetTLType, Get()); }
    std::string UserDefinedName() const { return detail::Text(KORO_Device_GetUserDefinedName, Get()); }
    std::string SerialNumber() const { return detail::Text(KORO_Device_GetSerialNumber, Get()); }
    int32_t AccessStatus() const { return detail::Get(KORO_Device_GetAccessStatus, Get()); }
    uint64_t TimestampTickFrequency() const { return detail::Get(KORO_Device_GetTimestampTickFrequency, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_Device_GetInfo, Get(), command); }
    koro::RemoteDevice RemoteDevice() const
    {
        return koro::RemoteDevice(detail::Get(KORO_Device_GetRemoteDevice, Get()));
    }
    // The streams as they were at the first call.
    std::vector<DataStreamDescriptor> DataStreams() const
    {
        std::vector<DataStreamDescriptor> streams(detail::Get(KORO_Device_GetNumDataStreams, Get()));
        for (size_t i = 0; i < streams.size(); ++i)
        {
            streams[i] = DataStreamDescriptor(detail::GetAt(KORO_Device_GetDataStream, Get(), i));
        }
        return streams;
    }
    koro::Port Port() const { return detail::PortOf(KORO_Device_ToModule, Get()); }
    std::vector<koro::NodeMap> NodeMaps() const { return detail::NodeMapsOf(KORO_Device_ToModule, Get()); }
    koro::NodeMap NodeMap(size_t index = 0) const { return detail::NodeMapOf(KORO_Device_ToModule, Get(), index); }
    EventController EnableEvents(int32_t eventType) const
    {
        return detail::EnableEvents(KORO_Device_ToEventSupportingModule, Get(), eventType);
    }
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
    int32_t AccessStatus() const { return detail::Get(KORO_DeviceDescriptor_GetAccessStatus, Get()); }
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
    RawInfo Info(int32_t command) const { return detail::Info(KORO_DeviceDescriptor_GetInfo, Get(), command); }
    Device OpenDevice(AccessType accessType = AccessType::Control) const
    {
        KORO_DeviceHandle device{};
        detail::Check(KORO_DeviceDescriptor_OpenDevice(Get(), static_cast<uint32_t>(accessType), &device));
        return Device(device);
    }
};

class Interface : public detail::Owner<KORO_InterfaceHandle, KORO_Interface_Destruct>
{
public:
    using Owner::Owner;

    std::string Key() const { return detail::Text(KORO_Interface_GetKey, Get()); }
    std::string ID() const { return detail::Text(KORO_Interface_GetID, Get()); }
    std::string DisplayName() const { return detail::Text(KORO_Interface_GetDisplayName, Get()); }
    std::string TLType() const { return detail::Text(KORO_Interface_GetTLType, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_Interface_GetInfo, Get(), command); }
    void UpdateDevices(uint64_t timeout_ms) const { detail::Check(KORO_Interface_UpdateDevices(Get(), timeout_ms)); }
    // The list of the latest update.
    std::vector<DeviceDescriptor> Devices() const
    {
        std::vector<DeviceDescriptor> devices(detail::Get(KORO_Interface_GetNumDevices, Get()));
        for (size_t i = 0; i < devices.size(); ++i)
        {
            devices[i] = DeviceDescriptor(detail::GetAt(KORO_Interface_GetDevice, Get(), i));
        }
        return devices;
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
    // The producer's own news, if it tells any; they change no list. See Registration for the thread.
    [[nodiscard]] Registration OnDeviceListChanged(std::function<void()> changed) const
    {
        return detail::Register(
            KORO_Interface_RegisterDeviceListChangedCallback, KORO_Interface_UnregisterDeviceListChangedCallback, Get(),
            &detail::CallListChanged, std::move(changed));
    }
    // The descriptor is valid if it was fetched by Devices() or OnDeviceFound() before; else its calls throw Error with
    // KORO_RETURN_CODE_INVALID_HANDLE. The same for the next.
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
    EventController EnableEvents(int32_t eventType) const
    {
        return detail::EnableEvents(KORO_Interface_ToEventSupportingModule, Get(), eventType);
    }
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
    Interface OpenInterface() const { return Interface(detail::Get(KORO_InterfaceDescriptor_OpenInterface, Get())); }
};

class System : public detail::Owner<KORO_SystemHandle, KORO_System_Destruct>
{
public:
    using Owner::Owner;

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
    // The list of the latest update.
    std::vector<InterfaceDescriptor> Interfaces() const
    {
        std::vector<InterfaceDescriptor> interfaces(detail::Get(KORO_System_GetNumInterfaces, Get()));
        for (size_t i = 0; i < interfaces.size(); ++i)
        {
            interfaces[i] = InterfaceDescriptor(detail::GetAt(KORO_System_GetInterface, Get(), i));
        }
        return interfaces;
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
    EventController EnableEvents(int32_t eventType) const
    {
        return detail::EnableEvents(KORO_System_ToEventSupportingModule, Get(), eventType);
    }
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
    System OpenSystem() const { return System(detail::Get(KORO_SystemDescriptor_OpenSystem, Get())); }
};

// One loaded and initialised producer, the root of its tree. A second one of the same file fails on some producers.
class ProducerLibrary : public detail::Owner<KORO_ProducerLibraryHandle, KORO_ProducerLibrary_Destruct>
{
public:
    using Owner::Owner;
    explicit ProducerLibrary(const std::string& ctiPath) : Owner(Construct(ctiPath)) {}

    std::string Key() const { return detail::Text(KORO_ProducerLibrary_GetKey, Get()); }
    SystemDescriptor System() const { return SystemDescriptor(detail::Get(KORO_ProducerLibrary_GetSystem, Get())); }

private:
    static KORO_ProducerLibraryHandle Construct(const std::string& ctiPath)
    {
        KORO_ProducerLibraryHandle library{};
        detail::Check(KORO_ProducerLibrary_Construct(ctiPath.c_str(), ctiPath.size() + 1, &library));
        return library;
    }
};

} // namespace koro

#include <koro/cpp/acquisition.hpp> // IWYU pragma: export

#endif
