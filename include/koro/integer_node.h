/*
 * A feature with an integer value.
 *
 * A handle comes from KORO_Node_ToIntegerNode and ends with the map; do not destruct it. Any thread may call these
 * functions. Getters may read registers, on the calling thread, and may wait for another thread that uses the same map;
 * writes hold the lock of the map. A call that GenApi refuses fails with GenApi's own text: KORO_RETURN_CODE_BAD_ACCESS
 * for a node that cannot be read or written now, KORO_RETURN_CODE_OUT_OF_RANGE for a value that the node does not
 * accept, KORO_RETURN_CODE_ERROR in most other cases. A register transfer that fails returns the code and the text of
 * the producer's failure.
 */
#ifndef KORO_INTEGER_NODE_H
#define KORO_INTEGER_NODE_H

#include <koro/node_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Returns the smallest value that the node accepts now. */
KORO_API KORO_ReturnCode KORO_IntegerNode_GetMinimum(KORO_IntegerNodeHandle integerNodeHandle, int64_t* minimum);

/** Returns the largest value that the node accepts now. */
KORO_API KORO_ReturnCode KORO_IntegerNode_GetMaximum(KORO_IntegerNodeHandle integerNodeHandle, int64_t* maximum);

/**
 * Returns the distance between two accepted values, counted from the minimum.
 */
KORO_API KORO_ReturnCode KORO_IntegerNode_GetIncrement(KORO_IntegerNodeHandle integerNodeHandle, int64_t* increment);

/**
 * Reports which values between the limits the node takes.
 * @param[out] incrementType KORO_NODE_INCREMENT_TYPE_...
 */
KORO_API KORO_ReturnCode
KORO_IntegerNode_GetIncrementType(KORO_IntegerNodeHandle integerNodeHandle, KORO_NodeIncrementType* incrementType);

/**
 * Returns the list of accepted values if the increment type is KORO_NODE_INCREMENT_TYPE_LIST, otherwise an empty list.
 * Values beyond the limits are left out.
 * @param[out]    validValues     buffer for the values; null queries the size
 * @param[in,out] validValuesSize size in bytes, not the number of values: eight bytes for each
 */
KORO_API KORO_ReturnCode KORO_IntegerNode_GetValidValues(
    KORO_IntegerNodeHandle integerNodeHandle, int64_t* validValues, size_t* validValuesSize);

/**
 * Returns how the value should be displayed.
 * @param[out] representation KORO_NODE_REPRESENTATION_...
 */
KORO_API KORO_ReturnCode
KORO_IntegerNode_GetRepresentation(KORO_IntegerNodeHandle integerNodeHandle, KORO_NodeRepresentation* representation);

/** Returns the unit of the value; empty if it has none. */
KORO_API KORO_ReturnCode
KORO_IntegerNode_GetUnit(KORO_IntegerNodeHandle integerNodeHandle, char* unit, size_t* unitSize);

/**
 * Reads the value.
 * @param[in] cachePolicy KORO_NODE_CACHE_POLICY_...
 */
KORO_API KORO_ReturnCode
KORO_IntegerNode_GetValue(KORO_IntegerNodeHandle integerNodeHandle, KORO_NodeCachePolicy cachePolicy, int64_t* value);

/**
 * Writes the value after checking access and limits. Changed callbacks run on the calling thread before the function
 * returns.
 * @param[in] value in the unit of the node, between its minimum and its maximum, and on its increment
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for a value beyond the limits or between two increments;
 *         KORO_RETURN_CODE_BAD_ACCESS for a node that cannot be written now
 */
KORO_API KORO_ReturnCode KORO_IntegerNode_SetValue(KORO_IntegerNodeHandle integerNodeHandle, int64_t value);

/** Returns the node as a general Node: the same handle that KORO_NodeMap_FindNode returns. */
KORO_API KORO_ReturnCode KORO_IntegerNode_ToNode(KORO_IntegerNodeHandle integerNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
