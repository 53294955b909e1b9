/*
 * What all descriptors have in common. A handle comes from one of the four ..._ToModuleDescriptor casts and ends
 * with the parent of the descriptor that it was cast from. Any thread.
 */
#ifndef KORO_MODULE_DESCRIPTOR_H
#define KORO_MODULE_DESCRIPTOR_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Gives the id that the producer uses for what is described. */
KORO_API KORO_ReturnCode
KORO_ModuleDescriptor_GetID(KORO_ModuleDescriptorHandle moduleDescriptorHandle, char* id, size_t* idSize);

#ifdef __cplusplus
}
#endif

#endif
