/*
 * A feature that is on or off.
 *
 * A handle comes from KORO_Node_ToBooleanNode and ends with the map; there is nothing to destruct. Any thread. Getters
 * may read registers, on this thread, and wait for another thread that works on the same map; writes hold the lock of
 * the map. What GenApi refuses arrives with GenApi's own text: KORO_RETURN_CODE_BAD_ACCESS for a node that cannot be
 * read or written at this time, KORO_RETURN_CODE_ERROR for most else. A transfer that fails arrives with the code and
 * the text of the producer's failure.
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
 * Writes the value. Changed callbacks run before it returns, on this thread.
 * @param[in] value 0 for off, any other number for on
 * @return KORO_RETURN_CODE_BAD_ACCESS for a node that cannot be written at this time
 */
KORO_API KORO_ReturnCode KORO_BooleanNode_SetValue(KORO_BooleanNodeHandle booleanNodeHandle, KORO_Bool8 value);

/** Gives the node as a plain node: the handle that KORO_NodeMap_FindNode gives for it. */
KORO_API KORO_ReturnCode KORO_BooleanNode_ToNode(KORO_BooleanNodeHandle booleanNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
