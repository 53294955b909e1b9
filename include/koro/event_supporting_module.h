/*
 * What all modules with events have in common. A handle comes from one of the five ..._ToEventSupportingModule
 * functions and ends with the handle that was passed to it. Any thread may call these functions.
 */
#ifndef KORO_EVENT_SUPPORTING_MODULE_H
#define KORO_EVENT_SUPPORTING_MODULE_H

#include <koro/gentl_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Registers an event of the module.
 * @param[in]  eventType             KORO_EVENT_... or a producer-specific number; passed to the producer unchanged
 * @param[out] eventControllerHandle a new handle; end it with KORO_EventController_Destruct
 * @return KORO_RETURN_CODE_BAD_ACCESS when this event of the module is registered already. The library itself registers
 * event type 1000 of a system for the callbacks of KORO_Interface_RegisterDevice...Callback
 */
KORO_API KORO_ReturnCode KORO_EventSupportingModule_EnableEvents(
    KORO_EventSupportingModuleHandle eventSupportingModuleHandle, int32_t eventType,
    KORO_EventControllerHandle* eventControllerHandle);

#ifdef __cplusplus
}
#endif

#endif
