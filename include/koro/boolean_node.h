/*
 * A boolean feature: it is on or off.
 *
 * A handle comes from KORO_Node_ToBooleanNode and ends with the map; do not destruct it. Any thread may call these
 * functions. Getters may read registers, on the calling thread, and may wait for another thread that uses the same map;
 * writes hold the lock of the map. A call that GenApi refuses fails with GenApi's own text: KORO_RETURN_CODE_BAD_ACCESS
 * for a node that cannot be read or written now, KORO_RETURN_CODE_ERROR in most other cases. A register transfer that
 * fails returns the code and the text of the producer's failure.
 */
#ifndef KORO_BOOLEAN_NODE_H
#define KORO_BOOLEAN_NODE_H

#include <koro/node_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Reads the value.
 * @param[in]  cachePolicy KORO_NODE_CACHE_POLICY_...
 * @param[out] value       0 or 1
 */
KORO_API KORO_ReturnCode KORO_BooleanNode_GetValue(
    KORO_BooleanNodeHandle booleanNodeHandle, KORO_NodeCachePolicy cachePolicy, KORO_Bool8* value);

/**
 * Writes the value. Changed callbacks run on the calling thread before the function returns.
 * @param[in] value 0 for off, any other number for on
 * @return KORO_RETURN_CODE_BAD_ACCESS for a node that cannot be written now
 */
KORO_API KORO_ReturnCode KORO_BooleanNode_SetValue(KORO_BooleanNodeHandle booleanNodeHandle, KORO_Bool8 value);

/** Returns the node as a general Node: the same handle that KORO_NodeMap_FindNode returns. */
KORO_API KORO_ReturnCode KORO_BooleanNode_ToNode(KORO_BooleanNodeHandle booleanNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
