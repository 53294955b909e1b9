/*
 * A feature with a text.
 *
 * A handle comes from KORO_Node_ToStringNode and ends with the map; do not destruct it. Any thread may call these
 * functions. Getters may read registers, on the calling thread, and may wait for another thread that uses the same map;
 * writes hold the lock of the map. A call that GenApi refuses fails with GenApi's own text: KORO_RETURN_CODE_BAD_ACCESS
 * for a node that cannot be read or written now, KORO_RETURN_CODE_OUT_OF_RANGE for a text that is too long,
 * KORO_RETURN_CODE_ERROR in most other cases. A register transfer that fails returns the code and the text of the
 * producer's failure.
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
 * Returns the maximum length of the text.
 * @param[out] maximumLength bytes, without the terminating zero
 */
KORO_API KORO_ReturnCode
KORO_StringNode_GetMaximumLength(KORO_StringNodeHandle stringNodeHandle, int64_t* maximumLength);

/**
 * Reads the text. A query of the size reads it, too.
 * @param[in] cachePolicy KORO_NODE_CACHE_POLICY_...
 */
KORO_API KORO_ReturnCode KORO_StringNode_GetValue(
    KORO_StringNodeHandle stringNodeHandle, KORO_NodeCachePolicy cachePolicy, char* value, size_t* valueSize);

/**
 * Writes the text. Changed callbacks run on the calling thread before the function returns.
 * @param[in] value     the text; need not be zero-terminated
 * @param[in] valueSize number of bytes including a terminating zero, strlen + 1; the last byte is not read
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for a text beyond the maximum length; KORO_RETURN_CODE_BAD_ACCESS for a node
 *         that cannot be written now
 */
KORO_API KORO_ReturnCode
KORO_StringNode_SetValue(KORO_StringNodeHandle stringNodeHandle, const char* value, size_t valueSize);

/** Returns the node as a general Node: the same handle that KORO_NodeMap_FindNode returns. */
KORO_API KORO_ReturnCode KORO_StringNode_ToNode(KORO_StringNodeHandle stringNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
