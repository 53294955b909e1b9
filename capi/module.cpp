#include "modules/module.h"

#include "capi/arguments.h"
#include "nodes/port.h"
#include <koro/module.h>

using namespace koro::internal;

KORO_ReturnCode KORO_Module_GetPort(KORO_ModuleHandle moduleHandle, KORO_PortHandle* portHandle)
{
    return GetHandle(KORO_ARG(moduleHandle), KORO_ARG(portHandle), [](const auto& module) {
        return Table<Port>().Add(module->Port(), module);
    });
}
