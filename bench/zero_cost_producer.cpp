// A producer whose functions cost almost nothing, so that a bench measures the cost of the library.
//
// It has eight devices with one stream each. Every wait returns at once with the buffer that has been queued longest.
// Nothing is checked, and no two threads may use one stream: this is a lower bound to compare with, not a model of a
// producer.
//
// The cameras have features if the environment variable KORO_BENCH_DESCRIPTION names a description file when a device
// is opened: registers of plain memory, followed by the file. Every buffer reports chunks of GigE Vision; the bench
// provides its contents. Three registers have a meaning: see camera_registers.h.
#define GENTL_PRODUCER
#include "bench/camera_registers.h"
#include "gentl/api/gentl.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

using namespace GenTL;

namespace
{

constexpr std::uint32_t deviceCount = 8;

struct BufferRecord
{
    void* base;
    std::size_t size;
    void* userPtr;
};

// Separate cache lines for each stream, so that two threads on two streams do not slow each other down.
struct alignas(128) Stream
{
    std::vector<std::unique_ptr<BufferRecord>> buffers;
    std::size_t next = 0;
    std::uint64_t frameID = 0;
};

struct Device
{
    Stream stream;
    char port = 0; // its address is the remote device's handle
};

std::array<Device, deviceCount> devices;
char systemModule;
char interfaceModule;

GC_ERROR Deliver(
    std::int32_t type, const void* value, std::size_t valueSize, INFO_DATATYPE* dataType, void* buffer,
    std::size_t* size)
{
    *dataType = type;
    if (buffer) std::memcpy(buffer, value, valueSize);
    *size = valueSize;
    return GC_ERR_SUCCESS;
}

template <class Value>
GC_ERROR DeliverValue(std::int32_t type, Value value, INFO_DATATYPE* dataType, void* buffer, std::size_t* size)
{
    return Deliver(type, &value, sizeof value, dataType, buffer, size);
}

GC_ERROR DeliverText(std::string_view text, INFO_DATATYPE* dataType, void* buffer, std::size_t* size)
{
    const std::string terminated(text);
    return Deliver(INFO_DATATYPE_STRING, terminated.c_str(), terminated.size() + 1, dataType, buffer, size);
}

GC_ERROR DeliverID(std::string_view text, char* buffer, std::size_t* size)
{
    INFO_DATATYPE ignored = INFO_DATATYPE_UNKNOWN;
    return DeliverText(text, &ignored, buffer, size);
}

// What all cameras show through their ports.
constexpr std::uint64_t descriptionAddress = std::uint64_t{1} << 32;
std::string descriptionPath;
std::string description;
// Cameras use a large range of addresses: all addresses share these bytes.
constexpr std::uint64_t sharedBytes = 4096;
std::array<char, sharedBytes + 65536> registers;

void LoadDescription()
{
    const char* const path = std::getenv("KORO_BENCH_DESCRIPTION");
    if (!path || descriptionPath == path) return;
    std::ifstream file(path, std::ios::binary);
    description.assign(std::istreambuf_iterator<char>(file), {});
    descriptionPath = path;
}

bool IsRemotePort(void* port)
{
    for (const Device& device : devices)
    {
        if (port == &device.port) return true;
    }
    return false;
}

char* RegisterAt(std::uint64_t address)
{
    return registers.data() + address % sharedBytes;
}

void CountAttachment()
{
    std::uint64_t count = 0;
    std::memcpy(&count, RegisterAt(koro::bench::attachesRegister), sizeof count);
    ++count;
    std::memcpy(RegisterAt(koro::bench::attachesRegister), &count, sizeof count);
}

std::uint64_t ChunkLayoutOf(const Stream& stream)
{
    return *RegisterAt(koro::bench::layoutsChangeRegister) != 0 ? stream.frameID : 1;
}

Stream* AsStream(void* handle)
{
    return static_cast<Stream*>(handle);
}

} // namespace

extern "C" {

namespace GenTL
{

GC_ERROR GCInitLib(void)
{
    return GC_ERR_SUCCESS;
}

GC_ERROR GCCloseLib(void)
{
    return GC_ERR_SUCCESS;
}

GC_ERROR GCGetInfo(TL_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size)
{
    if (command == TL_INFO_GENTL_VER_MAJOR)
        return DeliverValue<std::uint32_t>(INFO_DATATYPE_UINT32, 1, type, buffer, size);
    if (command == TL_INFO_GENTL_VER_MINOR)
        return DeliverValue<std::uint32_t>(INFO_DATATYPE_UINT32, 1, type, buffer, size);
    return DeliverText("zero cost", type, buffer, size);
}

GC_ERROR GCGetLastError(GC_ERROR* code, char* text, size_t* size)
{
    *code = GC_ERR_ERROR;
    return DeliverID("a function that no bench needs", text, size);
}

GC_ERROR TLOpen(TL_HANDLE* handle)
{
    *handle = &systemModule;
    return GC_ERR_SUCCESS;
}

GC_ERROR TLGetInfo(TL_HANDLE, TL_INFO_CMD, INFO_DATATYPE* type, void* buffer, size_t* size)
{
    return DeliverText("zero cost", type, buffer, size); // the file, beside which descriptions are searched
}

GC_ERROR TLUpdateInterfaceList(TL_HANDLE, bool8_t* changed, uint64_t)
{
    *changed = 1;
    return GC_ERR_SUCCESS;
}

GC_ERROR TLGetNumInterfaces(TL_HANDLE, uint32_t* count)
{
    *count = 1;
    return GC_ERR_SUCCESS;
}

GC_ERROR TLGetInterfaceID(TL_HANDLE, uint32_t, char* id, size_t* size)
{
    return DeliverID("interface", id, size);
}

GC_ERROR TLOpenInterface(TL_HANDLE, const char*, IF_HANDLE* handle)
{
    *handle = &interfaceModule;
    return GC_ERR_SUCCESS;
}

GC_ERROR IFUpdateDeviceList(IF_HANDLE, bool8_t* changed, uint64_t)
{
    *changed = 1;
    return GC_ERR_SUCCESS;
}

GC_ERROR IFGetNumDevices(IF_HANDLE, uint32_t* count)
{
    *count = deviceCount;
    return GC_ERR_SUCCESS;
}

GC_ERROR IFGetDeviceID(IF_HANDLE, uint32_t index, char* id, size_t* size)
{
    return DeliverID(std::to_string(index), id, size);
}

GC_ERROR IFOpenDevice(IF_HANDLE, const char* id, DEVICE_ACCESS_FLAGS, DEV_HANDLE* handle)
{
    LoadDescription();
    *handle = &devices.at(std::stoul(id));
    return GC_ERR_SUCCESS;
}

GC_ERROR DevGetPort(DEV_HANDLE device, PORT_HANDLE* handle)
{
    *handle = &static_cast<Device*>(device)->port;
    return GC_ERR_SUCCESS;
}

GC_ERROR DevGetNumDataStreams(DEV_HANDLE, uint32_t* count)
{
    *count = 1;
    return GC_ERR_SUCCESS;
}

GC_ERROR DevGetDataStreamID(DEV_HANDLE, uint32_t, char* id, size_t* size)
{
    return DeliverID("stream", id, size);
}

GC_ERROR DevOpenDataStream(DEV_HANDLE device, const char*, DS_HANDLE* handle)
{
    *handle = &static_cast<Device*>(device)->stream;
    return GC_ERR_SUCCESS;
}

GC_ERROR GCRegisterEvent(EVENTSRC_HANDLE module, EVENT_TYPE, EVENT_HANDLE* handle)
{
    *handle = module;
    return GC_ERR_SUCCESS;
}

GC_ERROR EventGetInfo(EVENT_HANDLE, EVENT_INFO_CMD, INFO_DATATYPE* type, void* buffer, size_t* size)
{
    return DeliverValue<std::size_t>(INFO_DATATYPE_SIZET, sizeof(EVENT_NEW_BUFFER_DATA), type, buffer, size);
}

GC_ERROR EventGetData(EVENT_HANDLE event, void* buffer, size_t* size, uint64_t)
{
    auto* const stream = AsStream(event);
    BufferRecord* const record = stream->buffers[stream->next].get();
    stream->next = stream->next + 1 == stream->buffers.size() ? 0 : stream->next + 1;
    ++stream->frameID;
    const EVENT_NEW_BUFFER_DATA data{record, record->userPtr};
    std::memcpy(buffer, &data, sizeof data);
    *size = sizeof data;
    return GC_ERR_SUCCESS;
}

GC_ERROR DSAnnounceBuffer(DS_HANDLE stream, void* buffer, size_t size, void* userPtr, BUFFER_HANDLE* handle)
{
    auto record = std::make_unique<BufferRecord>(BufferRecord{buffer, size, userPtr});
    *handle = record.get();
    AsStream(stream)->buffers.push_back(std::move(record));
    return GC_ERR_SUCCESS;
}

GC_ERROR DSRevokeBuffer(DS_HANDLE stream, BUFFER_HANDLE buffer, void** base, void** userPtr)
{
    auto* const record = static_cast<BufferRecord*>(buffer);
    *base = record->base;
    *userPtr = record->userPtr;
    std::erase_if(AsStream(stream)->buffers, [&](const auto& held) { return held.get() == record; });
    return GC_ERR_SUCCESS;
}

GC_ERROR DSQueueBuffer(DS_HANDLE, BUFFER_HANDLE)
{
    return GC_ERR_SUCCESS;
}

GC_ERROR DSStartAcquisition(DS_HANDLE, ACQ_START_FLAGS, uint64_t)
{
    return GC_ERR_SUCCESS;
}

GC_ERROR DSStopAcquisition(DS_HANDLE, ACQ_STOP_FLAGS)
{
    return GC_ERR_SUCCESS;
}

GC_ERROR DSFlushQueue(DS_HANDLE, ACQ_QUEUE_TYPE)
{
    return GC_ERR_SUCCESS;
}

GC_ERROR DSGetInfo(DS_HANDLE, STREAM_INFO_CMD, INFO_DATATYPE* type, void* buffer, size_t* size)
{
    return DeliverValue<bool8_t>(INFO_DATATYPE_BOOL8, 0, type, buffer, size); // only "is grabbing" is queried
}

GC_ERROR DSGetBufferInfo(
    DS_HANDLE stream, BUFFER_HANDLE buffer, BUFFER_INFO_CMD command, INFO_DATATYPE* type, void* out, size_t* size)
{
    switch (command)
    {
    case BUFFER_INFO_BASE:
        return DeliverValue(INFO_DATATYPE_PTR, static_cast<BufferRecord*>(buffer)->base, type, out, size);
    case BUFFER_INFO_FRAMEID:
    case BUFFER_INFO_TIMESTAMP:
        return DeliverValue(INFO_DATATYPE_UINT64, AsStream(stream)->frameID, type, out, size);
    case BUFFER_INFO_SIZE:
    case BUFFER_INFO_SIZE_FILLED:
        return DeliverValue(INFO_DATATYPE_SIZET, static_cast<BufferRecord*>(buffer)->size, type, out, size);
    case BUFFER_INFO_CONTAINS_CHUNKDATA:
        return DeliverValue<bool8_t>(INFO_DATATYPE_BOOL8, 1, type, out, size);
    case BUFFER_INFO_CHUNKLAYOUTID:
        return DeliverValue(INFO_DATATYPE_UINT64, ChunkLayoutOf(*AsStream(stream)), type, out, size);
    case BUFFER_INFO_TLTYPE:
        return DeliverText("GEV", type, out, size);
    default:
        return DeliverValue<std::size_t>(INFO_DATATYPE_SIZET, 640, type, out, size);
    }
}

GC_ERROR GCReadPort(PORT_HANDLE, uint64_t address, void* buffer, size_t* size)
{
    if (address == koro::bench::chunkIDRegister) CountAttachment();
    const bool isDescription = address >= descriptionAddress;
    std::memcpy(
        buffer, isDescription ? description.data() + (address - descriptionAddress) : RegisterAt(address), *size);
    return GC_ERR_SUCCESS;
}

GC_ERROR GCWritePort(PORT_HANDLE, uint64_t address, const void* buffer, size_t* size)
{
    std::memcpy(RegisterAt(address), buffer, *size);
    return GC_ERR_SUCCESS;
}

GC_ERROR GCGetNumPortURLs(PORT_HANDLE port, uint32_t* count)
{
    *count = !description.empty() && IsRemotePort(port) ? 1 : 0;
    return GC_ERR_SUCCESS;
}

GC_ERROR GCGetPortURLInfo(PORT_HANDLE, uint32_t, URL_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size)
{
    if (command != URL_INFO_URL) return GC_ERR_NOT_IMPLEMENTED; // the URL contains the rest
    char text[64];
    std::snprintf(text, sizeof text, "local:bench.xml;%llX;%zX", 0ULL + descriptionAddress, description.size());
    return DeliverText(text, type, buffer, size);
}

GC_ERROR GCGetPortInfo(PORT_HANDLE, PORT_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size)
{
    switch (command)
    {
    case PORT_INFO_PORTNAME:
        return DeliverText("Device", type, buffer, size);
    case PORT_INFO_ACCESS_READ:
    case PORT_INFO_ACCESS_WRITE:
        return DeliverValue<bool8_t>(INFO_DATATYPE_BOOL8, 1, type, buffer, size);
    default:
        return GC_ERR_NOT_IMPLEMENTED;
    }
}

// What no bench calls, or only while it closes.
// clang-format off
GC_ERROR GCGetPortURL(PORT_HANDLE, char*, size_t*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_ERROR GCReadPortStacked(PORT_HANDLE, PORT_REGISTER_STACK_ENTRY*, size_t*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_ERROR GCWritePortStacked(PORT_HANDLE, PORT_REGISTER_STACK_ENTRY*, size_t*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_ERROR GCUnregisterEvent(EVENTSRC_HANDLE, EVENT_TYPE) { return GC_ERR_SUCCESS; }
GC_ERROR EventGetDataInfo(EVENT_HANDLE, const void*, size_t, EVENT_DATA_INFO_CMD, INFO_DATATYPE*, void*, size_t*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_ERROR EventFlush(EVENT_HANDLE) { return GC_ERR_SUCCESS; }
GC_ERROR EventKill(EVENT_HANDLE) { return GC_ERR_SUCCESS; }
GC_ERROR TLClose(TL_HANDLE) { return GC_ERR_SUCCESS; }
GC_ERROR TLGetInterfaceInfo(TL_HANDLE, const char*, INTERFACE_INFO_CMD, INFO_DATATYPE*, void*, size_t*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_ERROR IFClose(IF_HANDLE) { return GC_ERR_SUCCESS; }
GC_ERROR IFGetInfo(IF_HANDLE, INTERFACE_INFO_CMD, INFO_DATATYPE*, void*, size_t*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_ERROR IFGetDeviceInfo(IF_HANDLE, const char*, DEVICE_INFO_CMD, INFO_DATATYPE*, void*, size_t*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_ERROR DevGetInfo(DEV_HANDLE, DEVICE_INFO_CMD, INFO_DATATYPE*, void*, size_t*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_ERROR DevClose(DEV_HANDLE) { return GC_ERR_SUCCESS; }
GC_ERROR DSAllocAndAnnounceBuffer(DS_HANDLE, size_t, void*, BUFFER_HANDLE*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_ERROR DSGetBufferID(DS_HANDLE, uint32_t, BUFFER_HANDLE*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_ERROR DSClose(DS_HANDLE) { return GC_ERR_SUCCESS; }
// clang-format on

} // namespace GenTL

} // extern "C"
