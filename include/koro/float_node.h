/*
 * A feature with a real number.
 *
 * A handle comes from KORO_Node_ToFloatNode and ends with the map; there is nothing to destruct. Any thread. Getters
 * may read registers, on this thread, and wait for another thread that works on the same map; writes hold the lock of
 * the map. What GenApi refuses arrives with GenApi's own text: KORO_RETURN_CODE_BAD_ACCESS for a node that cannot be
 * read or written at this time, KORO_RETURN_CODE_OUT_OF_RANGE for a value that it does not take, KORO_RETURN_CODE_ERROR
 * for most else. A transfer that fails arrives with the code and the text of the producer's failure.
 */
#ifndef KORO_FLOAT_NODE_H
#define KORO_FLOAT_NODE_H

#include <koro/node_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Gives the smallest value that the node takes at this time. */
KORO_API KORO_ReturnCode KORO_FloatNode_GetMinimum(KORO_FloatNodeHandle floatNodeHandle, double* minimum);

/** Gives the largest value that the node takes at this time. */
KORO_API KORO_ReturnCode KORO_FloatNode_GetMaximum(KORO_FloatNodeHandle floatNodeHandle, double* maximum);

/**
 * Tells whether the values lie at equal distances.
 * @param[out] hasConstantIncrement 1 if KORO_FloatNode_GetIncrement answers
 */
KORO_API KORO_ReturnCode
KORO_FloatNode_GetHasConstantIncrement(KORO_FloatNodeHandle floatNodeHandle, KORO_Bool8* hasConstantIncrement);

/**
 * Gives the distance between two values, counted from the minimum.
 * @return KORO_RETURN_CODE_ERROR for a node without a constant increment
 */
KORO_API KORO_ReturnCode KORO_FloatNode_GetIncrement(KORO_FloatNodeHandle floatNodeHandle, double* increment);

/**
 * Tells which values between the limits the node takes.
 * @param[out] incrementType KORO_NODE_INCREMENT_TYPE_...
 */
KORO_API KORO_ReturnCode
KORO_FloatNode_GetIncrementType(KORO_FloatNodeHandle floatNodeHandle, KORO_NodeIncrementType* incrementType);

/**
 * Gives the values that the node takes, for KORO_NODE_INCREMENT_TYPE_LIST; none for others. Within the limits only.
 * @param[out]    validValues     room for the values; null asks for the size
 * @param[in,out] validValuesSize in bytes, not in values: eight for each
 */
KORO_API KORO_ReturnCode
KORO_FloatNode_GetValidValues(KORO_FloatNodeHandle floatNodeHandle, double* validValues, size_t* validValuesSize);

/**
 * Tells how the value is best shown.
 * @param[out] representation KORO_NODE_REPRESENTATION_...
 */
KORO_API KORO_ReturnCode
KORO_FloatNode_GetRepresentation(KORO_FloatNodeHandle floatNodeHandle, KORO_NodeRepresentation* representation);

/** Gives the unit of the value; empty for none. */
KORO_API KORO_ReturnCode KORO_FloatNode_GetUnit(KORO_FloatNodeHandle floatNodeHandle, char* unit, size_t* unitSize);

/**
 * Tells how the value is best written.
 * @param[out] displayNotation KORO_NODE_DISPLAY_NOTATION_...
 */
KORO_API KORO_ReturnCode
KORO_FloatNode_GetDisplayNotation(KORO_FloatNodeHandle floatNodeHandle, KORO_NodeDisplayNotation* displayNotation);

/** Gives the number of digits worth writing. */
KORO_API KORO_ReturnCode
KORO_FloatNode_GetDisplayPrecision(KORO_FloatNodeHandle floatNodeHandle, int64_t* displayPrecision);

/**
 * Reads the value.
 * @param[in] cachePolicy KORO_NODE_CACHE_POLICY_...
 */
KORO_API KORO_ReturnCode
KORO_FloatNode_GetValue(KORO_FloatNodeHandle floatNodeHandle, KORO_NodeCachePolicy cachePolicy, double* value);

/**
 * Writes the value, after a check of access and limits; a value between two increments is passed on as it is. Changed
 * callbacks run before it returns, on this thread.
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for a value beyond the limits;
 *         KORO_RETURN_CODE_BAD_ACCESS for a node that cannot be written at this time
 */
KORO_API KORO_ReturnCode KORO_FloatNode_SetValue(KORO_FloatNodeHandle floatNodeHandle, double value);

/** Gives the node as a plain node: the handle that KORO_NodeMap_FindNode gives for it. */
KORO_API KORO_ReturnCode KORO_FloatNode_ToNode(KORO_FloatNodeHandle floatNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
