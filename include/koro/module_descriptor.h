/*
 * What all descriptors have in common. A handle comes from one of the four ..._ToModuleDescriptor functions and ends
 * with the parent of the descriptor that was passed to it. Any thread may call these functions.
 */
#ifndef KORO_MODULE_DESCRIPTOR_H
#define KORO_MODULE_DESCRIPTOR_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Returns the id by which the producer identifies the described module. */
KORO_API KORO_ReturnCode
KORO_ModuleDescriptor_GetID(KORO_ModuleDescriptorHandle moduleDescriptorHandle, char* id, size_t* idSize);

#ifdef __cplusplus
}
#endif

#endif
