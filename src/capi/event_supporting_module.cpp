#include "modules/event_supporting_module.h"

#include "capi/arguments.h"
#include "modules/event_controller.h"
#include <koro/event_supporting_module.h>

using namespace koro::internal;

KORO_ReturnCode KORO_EventSupportingModule_EnableEvents(
    KORO_EventSupportingModuleHandle eventSupportingModuleHandle, int32_t eventType,
    KORO_EventControllerHandle* eventControllerHandle)
{
    return GetHandle(KORO_ARG(eventSupportingModuleHandle), KORO_ARG(eventControllerHandle), [&](const auto& module) {
        return Table<EventController>().Add(module->EnableEvents(eventType), module);
    });
}
