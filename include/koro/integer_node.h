/*
 * A feature with a whole number.
 *
 * A handle comes from KORO_Node_ToIntegerNode and ends with the map; there is nothing to destruct. Any thread. Getters
 * may read registers, on this thread, and wait for another thread that works on the same map; writes hold the lock of
 * the map. What GenApi refuses arrives with GenApi's own text: KORO_RETURN_CODE_BAD_ACCESS for a node that cannot be
 * read or written at this time, KORO_RETURN_CODE_OUT_OF_RANGE for a value that it does not take, KORO_RETURN_CODE_ERROR
 * for most else. A transfer that fails arrives with the code and the text of the producer's failure.
 */
#ifndef KORO_INTEGER_NODE_H
#define KORO_INTEGER_NODE_H

#include <koro/node_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Gives the smallest value that the node takes at this time. */
KORO_API KORO_ReturnCode KORO_IntegerNode_GetMinimum(KORO_IntegerNodeHandle integerNodeHandle, int64_t* minimum);

/** Gives the largest value that the node takes at this time. */
KORO_API KORO_ReturnCode KORO_IntegerNode_GetMaximum(KORO_IntegerNodeHandle integerNodeHandle, int64_t* maximum);

/**
 * Gives the distance between two values, counted from the minimum.
 */
KORO_API KORO_ReturnCode KORO_IntegerNode_GetIncrement(KORO_IntegerNodeHandle integerNodeHandle, int64_t* increment);

/**
 * Tells which values between the limits the node takes.
 * @param[out] incrementType KORO_NODE_INCREMENT_TYPE_...
 */
KORO_API KORO_ReturnCode
KORO_IntegerNode_GetIncrementType(KORO_IntegerNodeHandle integerNodeHandle, KORO_NodeIncrementType* incrementType);

/**
 * Gives the values that the node takes, for KORO_NODE_INCREMENT_TYPE_LIST; none for others. Within the limits only.
 * @param[out]    validValues     room for the values; null asks for the size
 * @param[in,out] validValuesSize in bytes, not in values: eight for each
 */
KORO_API KORO_ReturnCode KORO_IntegerNode_GetValidValues(
    KORO_IntegerNodeHandle integerNodeHandle, int64_t* validValues, size_t* validValuesSize);

/**
 * Tells how the value is best shown.
 * @param[out] representation KORO_NODE_REPRESENTATION_...
 */
KORO_API KORO_ReturnCode
KORO_IntegerNode_GetRepresentation(KORO_IntegerNodeHandle integerNodeHandle, KORO_NodeRepresentation* representation);

/** Gives the unit of the value; empty for none. */
KORO_API KORO_ReturnCode
KORO_IntegerNode_GetUnit(KORO_IntegerNodeHandle integerNodeHandle, char* unit, size_t* unitSize);

/**
 * Reads the value.
 * @param[in] cachePolicy KORO_NODE_CACHE_POLICY_...
 */
KORO_API KORO_ReturnCode
KORO_IntegerNode_GetValue(KORO_IntegerNodeHandle integerNodeHandle, KORO_NodeCachePolicy cachePolicy, int64_t* value);

/**
 * Writes the value, after a check of access and limits. Changed callbacks run before it returns, on this thread.
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for a value beyond the limits or between two increments;
 *         KORO_RETURN_CODE_BAD_ACCESS for a node that cannot be written at this time
 */
KORO_API KORO_ReturnCode KORO_IntegerNode_SetValue(KORO_IntegerNodeHandle integerNodeHandle, int64_t value);

/** Gives the node as a plain node: the handle that KORO_NodeMap_FindNode gives for it. */
KORO_API KORO_ReturnCode KORO_IntegerNode_ToNode(KORO_IntegerNodeHandle integerNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
