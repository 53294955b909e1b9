// Producer: the simulator, loaded and initialised with given settings, bound function by function.
//
// Owned by one test; unloads the file. Tree: the usual chain of modules opened below it.
#pragma once

#include "gentl/api/gentl.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace koro::simulator::test
{

using namespace GenTL; // NOLINT(google-build-using-namespace): these tests talk in the words of the standard

// Settings with one unpaced camera, 16 x 4 pixels Mono8, serial number "A", on an interface "I"; `extra` is appended.
std::string OneCamera(const std::string& extra = "");
// The same, paced.
std::string PacedCamera(double rate, const std::string& extra = "");

// Yields until it holds; false after a minute, which fails the test that asked.
template <typename Condition>
bool Eventually(const Condition& condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition())
    {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::yield();
    }
    return true;
}

struct LastError
{
    GC_ERROR code;
    std::string text;
};

class Producer
{
public:
    // Empty settings: the built-in cameras. Initialises by default.
    explicit Producer(const std::string& settings = "", bool initialise = true);
    Producer(const Producer&) = delete;
    Producer& operator=(const Producer&) = delete;
    ~Producer();

    LastError Last() const;

    // Fetches a value of a fixed size, or a text, by an info query given without its three outputs; checks the code.
    template <typename T = std::string, typename Function, typename... Arguments>
    T Get(Function function, Arguments... arguments) const
    {
        INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
        std::vector<char> bytes(4096);
        std::size_t size = bytes.size();
        RequireSuccess(function(arguments..., &type, bytes.data(), &size));
        if constexpr (std::is_same_v<T, std::string>)
            return bytes.data();
        else
        {
            RequireSize(size, sizeof(T));
            return *reinterpret_cast<const T*>(bytes.data());
        }
    }

    // The result alone.
    template <typename Function, typename... Arguments>
    GC_ERROR Result(Function function, Arguments... arguments) const
    {
        INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
        std::vector<char> bytes(4096);
        std::size_t size = bytes.size();
        return function(arguments..., &type, bytes.data(), &size);
    }

    void* Library() const noexcept { return library; }

private:
    void* Symbol(const char* name) const;
    void RequireSuccess(GC_ERROR result) const;
    static void RequireSize(std::size_t size, std::size_t expected);

    // First, so that it is loaded before the functions are looked up.
    void* library;

    template <typename Function>
    Function* Bind(const char* name) const
    {
        return reinterpret_cast<Function*>(Symbol(name));
    }

public:
    decltype(GenTL::GCGetInfo)* const GCGetInfo = Bind<decltype(GenTL::GCGetInfo)>("GCGetInfo");
    decltype(GenTL::GCGetLastError)* const GCGetLastError = Bind<decltype(GenTL::GCGetLastError)>("GCGetLastError");
    decltype(GenTL::GCInitLib)* const GCInitLib = Bind<decltype(GenTL::GCInitLib)>("GCInitLib");
    decltype(GenTL::GCCloseLib)* const GCCloseLib = Bind<decltype(GenTL::GCCloseLib)>("GCCloseLib");
    decltype(GenTL::GCReadPort)* const GCReadPort = Bind<decltype(GenTL::GCReadPort)>("GCReadPort");
    decltype(GenTL::GCWritePort)* const GCWritePort = Bind<decltype(GenTL::GCWritePort)>("GCWritePort");
    decltype(GenTL::GCGetPortURL)* const GCGetPortURL = Bind<decltype(GenTL::GCGetPortURL)>("GCGetPortURL");
    decltype(GenTL::GCGetPortInfo)* const GCGetPortInfo = Bind<decltype(GenTL::GCGetPortInfo)>("GCGetPortInfo");
    decltype(GenTL::GCRegisterEvent)* const GCRegisterEvent = Bind<decltype(GenTL::GCRegisterEvent)>("GCRegisterEvent");
    decltype(GenTL::GCUnregisterEvent)* const GCUnregisterEvent =
        Bind<decltype(GenTL::GCUnregisterEvent)>("GCUnregisterEvent");
    decltype(GenTL::EventGetData)* const EventGetData = Bind<decltype(GenTL::EventGetData)>("EventGetData");
    decltype(GenTL::EventGetDataInfo)* const EventGetDataInfo =
        Bind<decltype(GenTL::EventGetDataInfo)>("EventGetDataInfo");
    decltype(GenTL::EventGetInfo)* const EventGetInfo = Bind<decltype(GenTL::EventGetInfo)>("EventGetInfo");
    decltype(GenTL::EventFlush)* const EventFlush = Bind<decltype(GenTL::EventFlush)>("EventFlush");
    decltype(GenTL::EventKill)* const EventKill = Bind<decltype(GenTL::EventKill)>("EventKill");
    decltype(GenTL::TLOpen)* const TLOpen = Bind<decltype(GenTL::TLOpen)>("TLOpen");
    decltype(GenTL::TLClose)* const TLClose = Bind<decltype(GenTL::TLClose)>("TLClose");
    decltype(GenTL::TLGetInfo)* const TLGetInfo = Bind<decltype(GenTL::TLGetInfo)>("TLGetInfo");
    decltype(GenTL::TLGetNumInterfaces)* const TLGetNumInterfaces =
        Bind<decltype(GenTL::TLGetNumInterfaces)>("TLGetNumInterfaces");
    decltype(GenTL::TLGetInterfaceID)* const TLGetInterfaceID =
        Bind<decltype(GenTL::TLGetInterfaceID)>("TLGetInterfaceID");
    decltype(GenTL::TLGetInterfaceInfo)* const TLGetInterfaceInfo =
        Bind<decltype(GenTL::TLGetInterfaceInfo)>("TLGetInterfaceInfo");
    decltype(GenTL::TLOpenInterface)* const TLOpenInterface = Bind<decltype(GenTL::TLOpenInterface)>("TLOpenInterface");
    decltype(GenTL::TLUpdateInterfaceList)* const TLUpdateInterfaceList =
        Bind<decltype(GenTL::TLUpdateInterfaceList)>("TLUpdateInterfaceList");
    decltype(GenTL::IFClose)* const IFClose = Bind<decltype(GenTL::IFClose)>("IFClose");
    decltype(GenTL::IFGetInfo)* const IFGetInfo = Bind<decltype(GenTL::IFGetInfo)>("IFGetInfo");
    decltype(GenTL::IFGetNumDevices)* const IFGetNumDevices = Bind<decltype(GenTL::IFGetNumDevices)>("IFGetNumDevices");
    decltype(GenTL::IFGetDeviceID)* const IFGetDeviceID = Bind<decltype(GenTL::IFGetDeviceID)>("IFGetDeviceID");
    decltype(GenTL::IFUpdateDeviceList)* const IFUpdateDeviceList =
        Bind<decltype(GenTL::IFUpdateDeviceList)>("IFUpdateDeviceList");
    decltype(GenTL::IFGetDeviceInfo)* const IFGetDeviceInfo = Bind<decltype(GenTL::IFGetDeviceInfo)>("IFGetDeviceInfo");
    decltype(GenTL::IFOpenDevice)* const IFOpenDevice = Bind<decltype(GenTL::IFOpenDevice)>("IFOpenDevice");
    decltype(GenTL::DevGetPort)* const DevGetPort = Bind<decltype(GenTL::DevGetPort)>("DevGetPort");
    decltype(GenTL::DevGetNumDataStreams)* const DevGetNumDataStreams =
        Bind<decltype(GenTL::DevGetNumDataStreams)>("DevGetNumDataStreams");
    decltype(GenTL::DevGetDataStreamID)* const DevGetDataStreamID =
        Bind<decltype(GenTL::DevGetDataStreamID)>("DevGetDataStreamID");
    decltype(GenTL::DevOpenDataStream)* const DevOpenDataStream =
        Bind<decltype(GenTL::DevOpenDataStream)>("DevOpenDataStream");
    decltype(GenTL::DevGetInfo)* const DevGetInfo = Bind<decltype(GenTL::DevGetInfo)>("DevGetInfo");
    decltype(GenTL::DevClose)* const DevClose = Bind<decltype(GenTL::DevClose)>("DevClose");
    decltype(GenTL::DSAnnounceBuffer)* const DSAnnounceBuffer =
        Bind<decltype(GenTL::DSAnnounceBuffer)>("DSAnnounceBuffer");
    decltype(GenTL::DSAllocAndAnnounceBuffer)* const DSAllocAndAnnounceBuffer =
        Bind<decltype(GenTL::DSAllocAndAnnounceBuffer)>("DSAllocAndAnnounceBuffer");
    decltype(GenTL::DSFlushQueue)* const DSFlushQueue = Bind<decltype(GenTL::DSFlushQueue)>("DSFlushQueue");
    decltype(GenTL::DSStartAcquisition)* const DSStartAcquisition =
        Bind<decltype(GenTL::DSStartAcquisition)>("DSStartAcquisition");
    decltype(GenTL::DSStopAcquisition)* const DSStopAcquisition =
        Bind<decltype(GenTL::DSStopAcquisition)>("DSStopAcquisition");
    decltype(GenTL::DSGetInfo)* const DSGetInfo = Bind<decltype(GenTL::DSGetInfo)>("DSGetInfo");
    decltype(GenTL::DSGetBufferID)* const DSGetBufferID = Bind<decltype(GenTL::DSGetBufferID)>("DSGetBufferID");
    decltype(GenTL::DSClose)* const DSClose = Bind<decltype(GenTL::DSClose)>("DSClose");
    decltype(GenTL::DSRevokeBuffer)* const DSRevokeBuffer = Bind<decltype(GenTL::DSRevokeBuffer)>("DSRevokeBuffer");
    decltype(GenTL::DSQueueBuffer)* const DSQueueBuffer = Bind<decltype(GenTL::DSQueueBuffer)>("DSQueueBuffer");
    decltype(GenTL::DSGetBufferInfo)* const DSGetBufferInfo = Bind<decltype(GenTL::DSGetBufferInfo)>("DSGetBufferInfo");
    decltype(GenTL::GCGetNumPortURLs)* const GCGetNumPortURLs =
        Bind<decltype(GenTL::GCGetNumPortURLs)>("GCGetNumPortURLs");
    decltype(GenTL::GCGetPortURLInfo)* const GCGetPortURLInfo =
        Bind<decltype(GenTL::GCGetPortURLInfo)>("GCGetPortURLInfo");
    decltype(GenTL::GCReadPortStacked)* const GCReadPortStacked =
        Bind<decltype(GenTL::GCReadPortStacked)>("GCReadPortStacked");
    decltype(GenTL::GCWritePortStacked)* const GCWritePortStacked =
        Bind<decltype(GenTL::GCWritePortStacked)>("GCWritePortStacked");
    decltype(GenTL::DSGetBufferChunkData)* const DSGetBufferChunkData =
        Bind<decltype(GenTL::DSGetBufferChunkData)>("DSGetBufferChunkData");
    decltype(GenTL::IFGetParentTL)* const IFGetParentTL = Bind<decltype(GenTL::IFGetParentTL)>("IFGetParentTL");
    decltype(GenTL::DevGetParentIF)* const DevGetParentIF = Bind<decltype(GenTL::DevGetParentIF)>("DevGetParentIF");
    decltype(GenTL::DSGetParentDev)* const DSGetParentDev = Bind<decltype(GenTL::DSGetParentDev)>("DSGetParentDev");
    decltype(GenTL::DSGetNumBufferParts)* const DSGetNumBufferParts =
        Bind<decltype(GenTL::DSGetNumBufferParts)>("DSGetNumBufferParts");
    decltype(GenTL::DSGetBufferPartInfo)* const DSGetBufferPartInfo =
        Bind<decltype(GenTL::DSGetBufferPartInfo)>("DSGetBufferPartInfo");
    decltype(GenTL::DSAnnounceCompositeBuffer)* const DSAnnounceCompositeBuffer =
        Bind<decltype(GenTL::DSAnnounceCompositeBuffer)>("DSAnnounceCompositeBuffer");
    decltype(GenTL::DSGetBufferInfoStacked)* const DSGetBufferInfoStacked =
        Bind<decltype(GenTL::DSGetBufferInfoStacked)>("DSGetBufferInfoStacked");
    decltype(GenTL::DSGetBufferPartInfoStacked)* const DSGetBufferPartInfoStacked =
        Bind<decltype(GenTL::DSGetBufferPartInfoStacked)>("DSGetBufferPartInfoStacked");
    decltype(GenTL::DSGetNumFlows)* const DSGetNumFlows = Bind<decltype(GenTL::DSGetNumFlows)>("DSGetNumFlows");
    decltype(GenTL::DSGetFlowInfo)* const DSGetFlowInfo = Bind<decltype(GenTL::DSGetFlowInfo)>("DSGetFlowInfo");
    decltype(GenTL::DSGetNumBufferSegments)* const DSGetNumBufferSegments =
        Bind<decltype(GenTL::DSGetNumBufferSegments)>("DSGetNumBufferSegments");
    decltype(GenTL::DSGetBufferSegmentInfo)* const DSGetBufferSegmentInfo =
        Bind<decltype(GenTL::DSGetBufferSegmentInfo)>("DSGetBufferSegmentInfo");
};

// System, interface, device, stream and new-buffer event, opened; all closed with the producer.
class Tree
{
public:
    explicit Tree(const Producer& loaded, const std::string& interfaceId = "I", const std::string& camera = "A");

    // Allocated by the producer, by default with the payload size; queued if requested.
    BUFFER_HANDLE Announce(bool queued = true, std::size_t bytes = 0, void* userPointer = nullptr) const;
    void Start(std::uint64_t number = GENTL_INFINITE) const;
    // Takes the next entry, waiting up to a minute.
    EVENT_NEW_BUFFER_DATA Next() const;
    GC_ERROR TryNext(std::uint64_t timeout_ms = 0) const;

    template <typename T>
    T StreamInfo(STREAM_INFO_CMD command) const
    {
        return producer.Get<T>(producer.DSGetInfo, stream, command);
    }
    template <typename T>
    T BufferInfo(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command) const
    {
        return producer.Get<T>(producer.DSGetBufferInfo, stream, buffer, command);
    }
    template <typename T>
    T EventInfo(EVENT_INFO_CMD command) const
    {
        return producer.Get<T>(producer.EventGetInfo, event, command);
    }
    bool Flag(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command) const { return BufferInfo<bool8_t>(buffer, command) != 0; }
    std::vector<std::uint8_t> Pixels(BUFFER_HANDLE buffer) const;

    const Producer& producer;
    TL_HANDLE system = nullptr;
    IF_HANDLE interface = nullptr;
    DEV_HANDLE device = nullptr;
    PORT_HANDLE remote = nullptr;
    DS_HANDLE stream = nullptr;
    EVENT_HANDLE event = nullptr;
};

} // namespace koro::simulator::test
