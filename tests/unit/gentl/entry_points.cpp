#include "tests/unit/gentl/entry_points.h"

#include <map>

namespace koro::test
{

using internal::CoreEntryPoint;
using internal::GenTLCaller;
using internal::GenTLProxy;
using internal::OptionalEntryPoint;

namespace
{

template <auto Function, template <class> class Kind, class... Parameters>
void CallWithZeros(const GenTLCaller& gentl, Kind<GenTL::GC_ERROR(Parameters...)> GenTLProxy::*)
{
    gentl.Call<Function>(Parameters{}...);
}

#define KORO_FUNCTION(function)                                                                                        \
    BoundFunction                                                                                                      \
    {                                                                                                                  \
#function, [](const GenTLCaller& gentl) { CallWithZeros<&GenTLProxy::function>(gentl, &GenTLProxy::function); }, \
            [](const GenTLProxy& proxy) { return proxy.function.IsBound(); }     \
    }

} // namespace

const std::vector<BoundFunction>& BootstrapFunctions()
{
    static const std::vector<BoundFunction> functions = {
        KORO_FUNCTION(GCGetInfo),
        KORO_FUNCTION(GCInitLib),
        KORO_FUNCTION(GCCloseLib),
    };
    return functions;
}

const std::vector<BoundFunction>& CoreFunctions()
{
    static const std::vector<BoundFunction> functions = {
        KORO_FUNCTION(GCReadPort),
        KORO_FUNCTION(GCWritePort),
        KORO_FUNCTION(GCGetPortURL),
        KORO_FUNCTION(GCGetPortInfo),
        KORO_FUNCTION(GCRegisterEvent),
        KORO_FUNCTION(GCUnregisterEvent),
        KORO_FUNCTION(EventGetData),
        KORO_FUNCTION(EventGetDataInfo),
        KORO_FUNCTION(EventGetInfo),
        KORO_FUNCTION(EventFlush),
        KORO_FUNCTION(EventKill),
        KORO_FUNCTION(TLOpen),
        KORO_FUNCTION(TLClose),
        KORO_FUNCTION(TLGetInfo),
        KORO_FUNCTION(TLGetNumInterfaces),
        KORO_FUNCTION(TLGetInterfaceID),
        KORO_FUNCTION(TLGetInterfaceInfo),
        KORO_FUNCTION(TLOpenInterface),
        KORO_FUNCTION(TLUpdateInterfaceList),
        KORO_FUNCTION(IFClose),
        KORO_FUNCTION(IFGetInfo),
        KORO_FUNCTION(IFGetNumDevices),
        KORO_FUNCTION(IFGetDeviceID),
        KORO_FUNCTION(IFUpdateDeviceList),
        KORO_FUNCTION(IFGetDeviceInfo),
        KORO_FUNCTION(IFOpenDevice),
        KORO_FUNCTION(DevGetPort),
        KORO_FUNCTION(DevGetNumDataStreams),
        KORO_FUNCTION(DevGetDataStreamID),
        KORO_FUNCTION(DevOpenDataStream),
        KORO_FUNCTION(DevGetInfo),
        KORO_FUNCTION(DevClose),
        KORO_FUNCTION(DSAnnounceBuffer),
        KORO_FUNCTION(DSAllocAndAnnounceBuffer),
        KORO_FUNCTION(DSFlushQueue),
        KORO_FUNCTION(DSStartAcquisition),
        KORO_FUNCTION(DSStopAcquisition),
        KORO_FUNCTION(DSGetInfo),
        KORO_FUNCTION(DSGetBufferID),
        KORO_FUNCTION(DSClose),
        KORO_FUNCTION(DSRevokeBuffer),
        KORO_FUNCTION(DSQueueBuffer),
        KORO_FUNCTION(DSGetBufferInfo),
    };
    return functions;
}

const std::vector<BoundFunction>& FunctionsSince(int minor)
{
    static const std::map<int, std::vector<BoundFunction>> groups = {
        {1,
         {
             KORO_FUNCTION(GCGetNumPortURLs),
             KORO_FUNCTION(GCGetPortURLInfo),
             KORO_FUNCTION(GCReadPortStacked),
             KORO_FUNCTION(GCWritePortStacked),
         }},
        {3,
         {
             KORO_FUNCTION(DSGetBufferChunkData),
         }},
        {4,
         {
             KORO_FUNCTION(IFGetParentTL),
             KORO_FUNCTION(DevGetParentIF),
             KORO_FUNCTION(DSGetParentDev),
         }},
        {5,
         {
             KORO_FUNCTION(DSGetNumBufferParts),
             KORO_FUNCTION(DSGetBufferPartInfo),
         }},
    };
    return groups.at(minor);
}

std::vector<BoundFunction> AllFunctions()
{
    std::vector<BoundFunction> all = BootstrapFunctions();
    const auto append = [&](const std::vector<BoundFunction>& group) {
        all.insert(all.end(), group.begin(), group.end());
    };
    append(CoreFunctions());
    for (const int minor : {1, 3, 4, 5})
        append(FunctionsSince(minor));
    return all;
}

} // namespace koro::test
