#include "modules/event_supporting_module.h"

#include "modules/event_controller.h"

namespace koro::internal
{

EventSupportingModule::EventSupportingModule(
    GenTL::EVENTSRC_HANDLE handle, const std::shared_ptr<const GenTLProxy>& proxy)
    : Module(handle, proxy), eventCaller(proxy)
{}

std::shared_ptr<EventController> EventSupportingModule::EnableEvents(std::int32_t eventType)
{
    return WithStandardExceptionsAsInternalErrors([&] {
        GenTL::EVENT_HANDLE eventHandle = nullptr;
        eventCaller.Call<&GenTLProxy::GCRegisterEvent>(Handle(), eventType, &eventHandle);
        try
        {
            return std::make_shared<EventController>(
                Handle(), eventHandle, eventType, shared_from_this(), eventCaller.Proxy());
        }
        catch (...)
        {
            eventCaller.CallIgnoringFailures<&GenTLProxy::GCUnregisterEvent>(Handle(), eventType);
            throw;
        }
    });
}

} // namespace koro::internal
