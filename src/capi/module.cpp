#include "modules/module.h"

#include "capi/arguments.h"
#include "gentl/port.h"
#include "nodes/node_map.h"
#include <koro/module.h>

using namespace koro::internal;

KORO_ReturnCode KORO_Module_GetPort(KORO_ModuleHandle moduleHandle, KORO_PortHandle* portHandle)
{
    return GetHandle(KORO_ARG(moduleHandle), KORO_ARG(portHandle), [](const auto& module) {
        return Table<Port>().Add(module->Port(), module);
    });
}

KORO_ReturnCode KORO_Module_GetNumNodeMaps(KORO_ModuleHandle moduleHandle, size_t* numNodeMaps)
{
    return GetScalar(
        KORO_ARG(moduleHandle), KORO_ARG(numNodeMaps), [](auto& module) { return module.NodeMaps().size(); });
}

KORO_ReturnCode KORO_Module_GetNodeMap(KORO_ModuleHandle moduleHandle, size_t index, KORO_NodeMapHandle* nodeMapHandle)
{
    return GetIndexed(
        KORO_ARG(moduleHandle), index, KORO_ARG(nodeMapHandle), &Module::NodeMaps,
        [](const auto& module, const auto& nodeMap) { return Table<NodeMap>().Add(nodeMap, module); });
}
