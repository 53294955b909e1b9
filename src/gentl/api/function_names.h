// The functions of GenTL by name, as a consumer binds them.
#pragma once

namespace GenTL
{

// Of version 1.0: every producer has them.
inline constexpr const char* mandatoryFunctions[] = {
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
};

// Of the versions up to 1.6.
inline constexpr const char* laterFunctions[] = {
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
    "DSGetBufferSegmentInfo",
};

} // namespace GenTL
