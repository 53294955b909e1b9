/*
 * What all opened modules have in common: a port. A handle comes from one of the six ..._ToModule casts and ends
 * with the handle that it was cast from. Any thread.
 */
#ifndef KORO_MODULE_H
#define KORO_MODULE_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Gives the port, through which the registers of the module are read and written. No producer call; the same handle
 * each time.
 * @param[out] portHandle ends with the module; there is nothing to destruct
 */
KORO_API KORO_ReturnCode KORO_Module_GetPort(KORO_ModuleHandle moduleHandle, KORO_PortHandle* portHandle);

#ifdef __cplusplus
}
#endif

#endif
