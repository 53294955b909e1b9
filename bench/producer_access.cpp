#include "bench/producer_access.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <string>

namespace koro::bench
{

using namespace GenTL;

namespace
{

constexpr std::size_t bufferCount = 4;
constexpr std::size_t bufferSize = 4096;

// The producer's functions, looked up as an application without the library would.
struct Functions
{
    decltype(&GenTL::IFOpenDevice) openDevice;
    decltype(&GenTL::DevGetPort) getPort;
    decltype(&GenTL::GCReadPort) readPort;
    decltype(&GenTL::GCWritePort) writePort;
    decltype(&GenTL::DevOpenDataStream) openStream;
    decltype(&GenTL::GCRegisterEvent) registerEvent;
    decltype(&GenTL::DSAnnounceBuffer) announce;
    decltype(&GenTL::EventGetInfo) eventInfo;
    decltype(&GenTL::EventGetData) eventData;
    decltype(&GenTL::DSGetBufferInfo) bufferInfo;
    decltype(&GenTL::DSQueueBuffer) queue;
};

template <class Function>
void LookUp(void* producer, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(dlsym(producer, name));
    if (!function) std::abort();
}

Functions LoadFunctions()
{
    void* const producer = dlopen(ZERO_COST_PRODUCER, RTLD_NOW | RTLD_LOCAL);
    Functions functions{};
    LookUp(producer, "IFOpenDevice", functions.openDevice);
    LookUp(producer, "DevGetPort", functions.getPort);
    LookUp(producer, "GCReadPort", functions.readPort);
    LookUp(producer, "GCWritePort", functions.writePort);
    LookUp(producer, "DevOpenDataStream", functions.openStream);
    LookUp(producer, "GCRegisterEvent", functions.registerEvent);
    LookUp(producer, "DSAnnounceBuffer", functions.announce);
    LookUp(producer, "EventGetInfo", functions.eventInfo);
    LookUp(producer, "EventGetData", functions.eventData);
    LookUp(producer, "DSGetBufferInfo", functions.bufferInfo);
    LookUp(producer, "DSQueueBuffer", functions.queue);
    return functions;
}

const Functions& Direct()
{
    static const Functions functions = LoadFunctions();
    return functions;
}

constexpr BUFFER_INFO_CMD frameCommands[] = {BUFFER_INFO_BASE,   BUFFER_INFO_SIZE_FILLED, BUFFER_INFO_WIDTH,
                                             BUFFER_INFO_HEIGHT, BUFFER_INFO_FRAMEID,     BUFFER_INFO_TIMESTAMP};

} // namespace

void Require(KORO_ReturnCode code)
{
    if (code == KORO_RETURN_CODE_SUCCESS) return;
    char text[1024] = "";
    std::size_t size = sizeof text;
    KORO_Library_GetLastError(&code, text, &size);
    std::fprintf(stderr, "code %d: %s\n", code, text);
    std::exit(EXIT_FAILURE);
}

DirectStream::DirectStream(std::uint32_t device) : memory(bufferCount, Memory(bufferSize))
{
    DEV_HANDLE deviceHandle = nullptr;
    Direct().openDevice(nullptr, std::to_string(device).c_str(), DEVICE_ACCESS_CONTROL, &deviceHandle);
    Direct().openStream(deviceHandle, "stream", &stream);
    Direct().registerEvent(stream, EVENT_NEW_BUFFER, &event);
    for (auto& bytes : memory)
        Direct().announce(stream, bytes.data(), bytes.size(), nullptr, &anyBuffer);
}

void DirectStream::Frame() const
{
    const auto buffer = Wait();
    for (const auto command : frameCommands)
        Get(buffer, command);
    Queue(buffer);
}

BUFFER_HANDLE DirectStream::Wait() const
{
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    std::size_t capacity = 0;
    std::size_t size = 0;
    Direct().eventInfo(event, EVENT_SIZE_MAX, &type, nullptr, &size);
    Direct().eventInfo(event, EVENT_SIZE_MAX, &type, &capacity, &size);
    EVENT_NEW_BUFFER_DATA data{};
    Direct().eventData(event, &data, &capacity, GENTL_INFINITE);
    return data.BufferHandle;
}

void DirectStream::Get(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command) const
{
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    std::uint64_t value = 0;
    std::size_t size = 0;
    Direct().bufferInfo(stream, buffer, command, &type, nullptr, &size);
    Direct().bufferInfo(stream, buffer, command, &type, &value, &size);
}

void DirectStream::Queue(BUFFER_HANDLE buffer) const
{
    Direct().queue(stream, buffer);
}

DirectPort::DirectPort()
{
    DEV_HANDLE device = nullptr;
    Direct().openDevice(nullptr, "0", DEVICE_ACCESS_CONTROL, &device);
    Direct().getPort(device, &port);
}

void DirectPort::Read(std::uint64_t address, void* bytes, std::size_t size) const
{
    Direct().readPort(port, address, bytes, &size);
}

void DirectPort::Write(std::uint64_t address, const void* bytes, std::size_t size) const
{
    Direct().writePort(port, address, bytes, &size);
}

Tree::Tree()
{
    Require(KORO_Library_Initialize());
    Require(KORO_ProducerLibrary_Construct(ZERO_COST_PRODUCER, sizeof ZERO_COST_PRODUCER, &library));
    KORO_SystemDescriptorHandle systemDescriptor = nullptr;
    Require(KORO_ProducerLibrary_GetSystem(library, &systemDescriptor));
    Require(KORO_SystemDescriptor_OpenSystem(systemDescriptor, &system));
    Require(KORO_System_UpdateInterfaces(system, 0));
    KORO_InterfaceDescriptorHandle interfaceDescriptor = nullptr;
    Require(KORO_System_GetInterface(system, 0, &interfaceDescriptor));
    Require(KORO_InterfaceDescriptor_OpenInterface(interfaceDescriptor, &interface));
    Require(KORO_Interface_UpdateDevices(interface, 0));
}

Tree::~Tree()
{
    KORO_Library_Close();
}

KORO_DeviceHandle Tree::OpenDevice(std::size_t device)
{
    KORO_DeviceDescriptorHandle deviceDescriptor = nullptr;
    Require(KORO_Interface_GetDevice(interface, device, &deviceDescriptor));
    KORO_DeviceHandle deviceHandle = nullptr;
    Require(KORO_DeviceDescriptor_OpenDevice(deviceDescriptor, DEVICE_ACCESS_CONTROL, &deviceHandle));
    return deviceHandle;
}

KORO_DataStreamHandle Tree::OpenStream(std::size_t device)
{
    KORO_DeviceHandle deviceHandle = OpenDevice(device);
    KORO_DataStreamDescriptorHandle streamDescriptor = nullptr;
    Require(KORO_Device_GetDataStream(deviceHandle, 0, &streamDescriptor));
    KORO_DataStreamHandle stream = nullptr;
    Require(KORO_DataStreamDescriptor_OpenDataStream(streamDescriptor, &stream));
    return stream;
}

ExportedStream::ExportedStream(Tree& tree, std::size_t device)
    : stream(tree.OpenStream(device)), memory(bufferCount, Memory(bufferSize))
{
    for (auto& bytes : memory)
    {
        Require(
            KORO_DataStream_AnnounceBuffer(stream, bytes.data(), bytes.size(), nullptr, nullptr, nullptr, &anyBuffer));
        Require(KORO_DataStream_QueueBuffer(stream, anyBuffer));
    }
    Require(KORO_DataStream_StartAcquisitionInfinite(stream, ACQ_START_FLAGS_DEFAULT));
}

void ExportedStream::Frame() const
{
    const auto buffer = Wait();
    void* base = nullptr;
    std::size_t filled = 0;
    std::size_t width = 0;
    std::size_t height = 0;
    std::uint64_t frameID = 0;
    std::uint64_t timestamp = 0;
    KORO_Buffer_GetBasePtr(buffer, &base);
    KORO_Buffer_GetDeliveredDataSize(buffer, &filled);
    KORO_Buffer_GetWidth(buffer, &width);
    KORO_Buffer_GetHeight(buffer, &height);
    KORO_Buffer_GetFrameID(buffer, &frameID);
    KORO_Buffer_GetTimestamp_ticks(buffer, &timestamp);
    Queue(buffer);
}

KORO_BufferHandle ExportedStream::Wait() const
{
    KORO_BufferHandle buffer = nullptr;
    KORO_DataStream_WaitForFinishedBuffer(stream, GENTL_INFINITE, &buffer);
    return buffer;
}

void ExportedStream::Queue(KORO_BufferHandle buffer) const
{
    KORO_DataStream_QueueBuffer(stream, buffer);
}

} // namespace koro::bench
