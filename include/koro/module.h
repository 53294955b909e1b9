/*
 * What all opened modules have in common: a port, and the features that their descriptions define. A handle comes from
 * one of the six ..._ToModule functions and ends with the handle that was passed to it. Any thread may call these
 * functions.
 */
#ifndef KORO_MODULE_H
#define KORO_MODULE_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Returns the port, which reads and writes the registers of the module. Does not call the producer. Each call returns
 * the same handle.
 * @param[out] portHandle ends with the module; do not destruct it
 */
KORO_API KORO_ReturnCode KORO_Module_GetPort(KORO_ModuleHandle moduleHandle, KORO_PortHandle* portHandle);

/**
 * Returns the number of node maps, one for each description of the module's features. The first call of this function
 * or of KORO_Module_GetNodeMap reads all descriptions from the registers, on the calling thread; they are not read
 * again later. A description that cannot be fetched is left out silently. For debugging, a file beside the producer
 * takes precedence: tl_system_dbg.xml, tl_interface_dbg.xml, tl_device_dbg.xml, tl_datastream_dbg.xml or
 * tl_remotedevice_dbg.xml.
 * @param[out] numNodeMaps 0 when there is no usable description, which is not a failure
 */
KORO_API KORO_ReturnCode KORO_Module_GetNumNodeMaps(KORO_ModuleHandle moduleHandle, size_t* numNodeMaps);

/**
 * Returns the node map of one description. Each call returns the same handle.
 * @param[in]  index         0 to the number of node maps minus 1; 0 is the main one
 * @param[out] nodeMapHandle ends with the module; do not destruct it
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_Module_GetNodeMap(KORO_ModuleHandle moduleHandle, size_t index, KORO_NodeMapHandle* nodeMapHandle);

#ifdef __cplusplus
}
#endif

#endif
