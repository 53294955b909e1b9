/*
 * What all opened modules have in common: a port, and the features that descriptions tell. A handle comes from one of
 * the six ..._ToModule casts and ends with the handle that it was cast from. Any thread.
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

/**
 * Gives the number of descriptions that the module's features are told by. The first call, of this or of
 * KORO_Module_GetNodeMap, reads them all from the registers, on this thread; they are not refreshed afterwards. A
 * description that cannot be fetched is left out without a word. A file for debugging beside the producer comes first:
 * tl_system_dbg.xml, tl_interface_dbg.xml, tl_device_dbg.xml, tl_datastream_dbg.xml or tl_remotedevice_dbg.xml.
 * @param[out] numNodeMaps 0 when there is no usable description; that is no failure
 */
KORO_API KORO_ReturnCode KORO_Module_GetNumNodeMaps(KORO_ModuleHandle moduleHandle, size_t* numNodeMaps);

/**
 * Gives the features as one description tells them. The same handle each time.
 * @param[in]  index         0 to the number of node maps less 1; 0 is the main one
 * @param[out] nodeMapHandle ends with the module; there is nothing to destruct
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_Module_GetNodeMap(KORO_ModuleHandle moduleHandle, size_t index, KORO_NodeMapHandle* nodeMapHandle);

#ifdef __cplusplus
}
#endif

#endif
