#include "capi/arguments.h"
#include "modules/module.h"
#include <koro/module_descriptor.h>

using namespace koro::internal;

KORO_ReturnCode KORO_ModuleDescriptor_GetID(
    KORO_ModuleDescriptorHandle moduleDescriptorHandle, char* id, size_t* idSize)
{
    return GetString(KORO_ARG(moduleDescriptorHandle), KORO_ARG(id), idSize, &ModuleDescriptor::ID);
}
