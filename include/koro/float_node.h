/*
 * A feature with a floating-point value.
 *
 * A handle comes from KORO_Node_ToFloatNode and ends with the map; do not destruct it. Any thread may call these
 * functions. Getters may read registers, on the calling thread, and may wait for another thread that uses the same map;
 * writes hold the lock of the map. A call that GenApi refuses fails with GenApi's own text: KORO_RETURN_CODE_BAD_ACCESS
 * for a node that cannot be read or written now, KORO_RETURN_CODE_OUT_OF_RANGE for a value that the node does not
 * accept, KORO_RETURN_CODE_ERROR in most other cases. A register transfer that fails returns the code and the text of
 * the producer's failure.
 */
#ifndef KORO_FLOAT_NODE_H
#define KORO_FLOAT_NODE_H

#include <koro/node_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Returns the smallest value that the node accepts now. */
KORO_API KORO_ReturnCode KORO_FloatNode_GetMinimum(KORO_FloatNodeHandle floatNodeHandle, double* minimum);

/** Returns the largest value that the node accepts now. */
KORO_API KORO_ReturnCode KORO_FloatNode_GetMaximum(KORO_FloatNodeHandle floatNodeHandle, double* maximum);

/**
 * Reports whether the accepted values have a constant distance.
 * @param[out] hasConstantIncrement 1 if KORO_FloatNode_GetIncrement returns it
 */
KORO_API KORO_ReturnCode
KORO_FloatNode_GetHasConstantIncrement(KORO_FloatNodeHandle floatNodeHandle, KORO_Bool8* hasConstantIncrement);

/**
 * Returns the distance between two accepted values, counted from the minimum.
 * @return KORO_RETURN_CODE_ERROR for a node without a constant increment
 */
KORO_API KORO_ReturnCode KORO_FloatNode_GetIncrement(KORO_FloatNodeHandle floatNodeHandle, double* increment);

/**
 * Reports which values between the limits the node takes.
 * @param[out] incrementType KORO_NODE_INCREMENT_TYPE_...
 */
KORO_API KORO_ReturnCode
KORO_FloatNode_GetIncrementType(KORO_FloatNodeHandle floatNodeHandle, KORO_NodeIncrementType* incrementType);

/**
 * Returns the list of accepted values if the increment type is KORO_NODE_INCREMENT_TYPE_LIST, otherwise an empty list.
 * Values beyond the limits are left out.
 * @param[out]    validValues     buffer for the values; null queries the size
 * @param[in,out] validValuesSize size in bytes, not the number of values: eight bytes for each
 */
KORO_API KORO_ReturnCode
KORO_FloatNode_GetValidValues(KORO_FloatNodeHandle floatNodeHandle, double* validValues, size_t* validValuesSize);

/**
 * Returns how the value should be displayed.
 * @param[out] representation KORO_NODE_REPRESENTATION_...
 */
KORO_API KORO_ReturnCode
KORO_FloatNode_GetRepresentation(KORO_FloatNodeHandle floatNodeHandle, KORO_NodeRepresentation* representation);

/** Returns the unit of the value; empty if it has none. */
KORO_API KORO_ReturnCode KORO_FloatNode_GetUnit(KORO_FloatNodeHandle floatNodeHandle, char* unit, size_t* unitSize);

/**
 * Returns how the value should be written.
 * @param[out] displayNotation KORO_NODE_DISPLAY_NOTATION_...
 */
KORO_API KORO_ReturnCode
KORO_FloatNode_GetDisplayNotation(KORO_FloatNodeHandle floatNodeHandle, KORO_NodeDisplayNotation* displayNotation);

/** Returns the number of digits that should be displayed. */
KORO_API KORO_ReturnCode
KORO_FloatNode_GetDisplayPrecision(KORO_FloatNodeHandle floatNodeHandle, int64_t* displayPrecision);

/**
 * Reads the value.
 * @param[in] cachePolicy KORO_NODE_CACHE_POLICY_...
 */
KORO_API KORO_ReturnCode
KORO_FloatNode_GetValue(KORO_FloatNodeHandle floatNodeHandle, KORO_NodeCachePolicy cachePolicy, double* value);

/**
 * Writes the value after checking access and limits. A value between two increments is passed on unchanged. Changed
 * callbacks run on the calling thread before the function returns.
 * @param[in] value in the unit of the node, between its minimum and its maximum
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for a value beyond the limits; KORO_RETURN_CODE_BAD_ACCESS for a node that
 *         cannot be written now
 */
KORO_API KORO_ReturnCode KORO_FloatNode_SetValue(KORO_FloatNodeHandle floatNodeHandle, double value);

/** Returns the node as a general Node: the same handle that KORO_NodeMap_FindNode returns. */
KORO_API KORO_ReturnCode KORO_FloatNode_ToNode(KORO_FloatNodeHandle floatNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
