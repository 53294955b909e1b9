#include "producers/simulator/function_names.h"

#include <algorithm>
#include <iterator>

namespace koro::simulator
{
namespace
{

constexpr std::string_view functionNames[] = {
    "GCGetInfo",
    "GCGetLastError",
    "GCInitLib",
    "GCCloseLib",
    "GCReadPort",
    "GCWritePort",
    "GCGetPortURL",
    "GCGetPortInfo",
    "GCRegisterEvent",
    "GCUnregisterEvent",
    "EventGetData",
    "EventGetDataInfo",
    "EventGetInfo",
    "EventFlush",
    "EventKill",
    "TLOpen",
    "TLClose",
    "TLGetInfo",
    "TLGetNumInterfaces",
    "TLGetInterfaceID",
    "TLGetInterfaceInfo",
    "TLOpenInterface",
    "TLUpdateInterfaceList",
    "IFClose",
    "IFGetInfo",
    "IFGetNumDevices",
    "IFGetDeviceID",
    "IFUpdateDeviceList",
    "IFGetDeviceInfo",
    "IFOpenDevice",
    "DevGetPort",
    "DevGetNumDataStreams",
    "DevGetDataStreamID",
    "DevOpenDataStream",
    "DevGetInfo",
    "DevClose",
    "DSAnnounceBuffer",
    "DSAllocAndAnnounceBuffer",
    "DSFlushQueue",
    "DSStartAcquisition",
    "DSStopAcquisition",
    "DSGetInfo",
    "DSGetBufferID",
    "DSClose",
    "DSRevokeBuffer",
    "DSQueueBuffer",
    "DSGetBufferInfo",
    "GCGetNumPortURLs",
    "GCGetPortURLInfo",
    "GCReadPortStacked",
    "GCWritePortStacked",
    "DSGetBufferChunkData",
    "IFGetParentTL",
    "DevGetParentIF",
    "DSGetParentDev",
    "DSGetNumBufferParts",
    "DSGetBufferPartInfo",
    "DSAnnounceCompositeBuffer",
    "DSGetBufferInfoStacked",
    "DSGetBufferPartInfoStacked",
    "DSGetNumFlows",
    "DSGetFlowInfo",
    "DSGetNumBufferSegments",
    "DSGetBufferSegmentInfo"};

} // namespace

bool IsGenTLFunction(std::string_view name) noexcept
{
    return std::find(std::begin(functionNames), std::end(functionNames), name) != std::end(functionNames);
}

} // namespace koro::simulator
