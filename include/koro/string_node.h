/*
 * A feature with a text.
 *
 * A handle comes from KORO_Node_ToStringNode and ends with the map; there is nothing to destruct. Any thread. Getters
 * may read registers, on this thread, and wait for another thread that works on the same map; writes hold the lock of
 * the map. What GenApi refuses arrives with GenApi's own text: KORO_RETURN_CODE_BAD_ACCESS for a node that cannot be
 * read or written at this time, KORO_RETURN_CODE_OUT_OF_RANGE for a text that is too long, KORO_RETURN_CODE_ERROR for
 * most else. A transfer that fails arrives with the code and the text of the producer's failure.
 */
#ifndef KORO_STRING_NODE_H
#define KORO_STRING_NODE_H

#include <koro/node_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Gives the room for the text.
 * @param[out] maximumLength bytes, no terminating zero counted
 */
KORO_API KORO_ReturnCode
KORO_StringNode_GetMaximumLength(KORO_StringNodeHandle stringNodeHandle, int64_t* maximumLength);

/**
 * Reads the text. A size query reads it too.
 * @param[in] cachePolicy KORO_NODE_CACHE_POLICY_...
 */
KORO_API KORO_ReturnCode KORO_StringNode_GetValue(
    KORO_StringNodeHandle stringNodeHandle, KORO_NodeCachePolicy cachePolicy, char* value, size_t* valueSize);

/**
 * Writes the text. Changed callbacks run before it returns, on this thread.
 * @param[in] value     the text; need not be terminated
 * @param[in] valueSize its size in bytes, with a terminating zero counted
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for a text beyond the maximum length;
 *         KORO_RETURN_CODE_BAD_ACCESS for a node that cannot be written at this time
 */
KORO_API KORO_ReturnCode
KORO_StringNode_SetValue(KORO_StringNodeHandle stringNodeHandle, const char* value, size_t valueSize);

/** Gives the node as a plain node: the handle that KORO_NodeMap_FindNode gives for it. */
KORO_API KORO_ReturnCode KORO_StringNode_ToNode(KORO_StringNodeHandle stringNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
