// Events: registering, waiting, looking into what came.
#include "producers/kit/call.h"
#include "producers/kit/device.h"

namespace GenTL
{

using namespace koro::kit; // NOLINT(google-build-using-namespace): entry points are thin wrappers over it

namespace
{

// Everything with a port but the remote device.
std::shared_ptr<Module> FindEventSource(EVENTSRC_HANDLE handle)
{
    auto module = Find<Module>(handle);
    if (dynamic_cast<const RemoteDevice*>(module.get()) != nullptr)
        throw Failure(GC_ERR_INVALID_HANDLE, "the remote device's port is no event source");
    return module;
}

} // namespace

GC_ERROR GCRegisterEvent(EVENTSRC_HANDLE hModule, EVENT_TYPE iEventID, EVENT_HANDLE* phEvent)
{
    return Call(__func__, [=] {
        const auto module = FindEventSource(hModule);
        RequirePointer(phEvent, "phEvent");
        *phEvent = module->RegisterEvent(iEventID)->Handle();
    });
}

GC_ERROR GCUnregisterEvent(EVENTSRC_HANDLE hModule, EVENT_TYPE iEventID)
{
    return Call(__func__, [=] { FindEventSource(hModule)->UnregisterEvent(iEventID); });
}

GC_ERROR EventGetData(EVENT_HANDLE hEvent, void* pBuffer, size_t* piSize, uint64_t iTimeout)
{
    return Call(__func__, [=] {
        const auto event = Find<EventQueue>(hEvent);
        RequirePointer(piSize, "piSize");
        return event->Take(pBuffer, piSize, iTimeout);
    });
}

GC_ERROR EventGetDataInfo(
    EVENT_HANDLE hEvent, const void* pInBuffer, size_t iInSize, EVENT_DATA_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
    void* pOutBuffer, size_t* piOutSize)
{
    return Call(__func__, [=, function = __func__] {
        const auto event = Find<EventQueue>(hEvent);
        RequirePointer(pInBuffer, "pInBuffer");
        if (iInSize == 0) throw Failure(GC_ERR_INVALID_PARAMETER, "the block is empty");
        const auto info = [&] { return event->DataInfo(pInBuffer, iInSize, iInfoCmd); };
        Answer(function, iInfoCmd, {piType, pOutBuffer, piOutSize}, info);
    });
}

GC_ERROR EventGetInfo(
    EVENT_HANDLE hEvent, EVENT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return Call(__func__, [=, function = __func__] {
        const auto event = Find<EventQueue>(hEvent);
        Answer(function, iInfoCmd, {piType, pBuffer, piSize}, [&] { return event->Info(iInfoCmd); });
    });
}

GC_ERROR EventFlush(EVENT_HANDLE hEvent)
{
    return Call(__func__, [=] { Find<EventQueue>(hEvent)->Flush(); });
}

GC_ERROR EventKill(EVENT_HANDLE hEvent)
{
    return Call(__func__, [=] { Find<EventQueue>(hEvent)->Kill(); });
}

} // namespace GenTL
