/*
 * A feature with a choice. All entries are listed and found, also those that cannot be chosen at this time: see the
 * access status of their nodes.
 *
 * A handle comes from KORO_Node_ToEnumerationNode and ends with the map; there is nothing to destruct. Any thread.
 * Getters may read registers, on this thread, and wait for another thread that works on the same map; writes hold the
 * lock of the map. What GenApi refuses arrives with GenApi's own text: KORO_RETURN_CODE_BAD_ACCESS for a node that
 * cannot be read or written at this time, KORO_RETURN_CODE_INVALID_ARGUMENT for a number that is no entry's,
 * KORO_RETURN_CODE_ERROR for most else. A transfer that fails arrives with the code and the text of the producer's
 * failure.
 */
#ifndef KORO_ENUMERATION_NODE_H
#define KORO_ENUMERATION_NODE_H

#include <koro/node_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Reads the value and gives its entry.
 * @param[in]  cachePolicy                KORO_NODE_CACHE_POLICY_...
 * @param[out] enumerationEntryNodeHandle the entry's own handle; ends with the map
 * @return KORO_RETURN_CODE_ERROR or KORO_RETURN_CODE_NOT_FOUND when the device has a value without an entry
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_GetCurrentEntry(
    KORO_EnumerationNodeHandle enumerationNodeHandle, KORO_NodeCachePolicy cachePolicy,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle);

/**
 * Chooses an entry. Changed callbacks run before it returns, on this thread.
 * @param[in] enumerationEntryNodeHandle an entry of this enumeration; of any other just the number is taken
 * @return KORO_RETURN_CODE_INVALID_ARGUMENT when that is no entry's of this one; KORO_RETURN_CODE_BAD_ACCESS when node
 *         or entry are not available at this time
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_SetCurrentEntry(
    KORO_EnumerationNodeHandle enumerationNodeHandle, KORO_EnumerationEntryNodeHandle enumerationEntryNodeHandle);

/**
 * Chooses the entry with a number. Changed callbacks run before it returns, on this thread.
 * @return KORO_RETURN_CODE_INVALID_ARGUMENT for a number without an entry; KORO_RETURN_CODE_BAD_ACCESS when node or
 *         entry are not available at this time
 */
KORO_API KORO_ReturnCode
KORO_EnumerationNode_SetCurrentEntryByValue(KORO_EnumerationNodeHandle enumerationNodeHandle, int64_t value);

/**
 * Chooses the entry with a name. Changed callbacks run before it returns, on this thread.
 * @param[in] symbolicValue     such as "Mono8"; need not be terminated
 * @param[in] symbolicValueSize its size in bytes, with a terminating zero counted
 * @return KORO_RETURN_CODE_NOT_FOUND for a name without an entry; KORO_RETURN_CODE_BAD_ACCESS when node or entry are
 * not available at this time
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_SetCurrentEntryBySymbolicValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, const char* symbolicValue, size_t symbolicValueSize);

/** Gives the number of entries. */
KORO_API KORO_ReturnCode
KORO_EnumerationNode_GetNumEntries(KORO_EnumerationNodeHandle enumerationNodeHandle, size_t* numEntries);

/**
 * Gives one entry, in the order of the description.
 * @param[in]  index 0 to their number less 1
 * @param[out] enumerationEntryNodeHandle the entry's own handle; ends with the map
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_GetEntry(
    KORO_EnumerationNodeHandle enumerationNodeHandle, size_t index,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle);

/**
 * Gives the entry with a number; the first of several. Reads nothing.
 * @param[out] enumerationEntryNodeHandle the entry's own handle; ends with the map
 * @return KORO_RETURN_CODE_NOT_FOUND when there is none
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_FindEntryByValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, int64_t value,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle);

/**
 * Gives the entry with a name; the first of several. Reads nothing.
 * @param[in]  symbolicValue     such as "Mono8"; need not be terminated
 * @param[in]  symbolicValueSize its size in bytes, with a terminating zero counted
 * @param[out] enumerationEntryNodeHandle the entry's own handle; ends with the map
 * @return KORO_RETURN_CODE_NOT_FOUND when there is none
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_FindEntryBySymbolicValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, const char* symbolicValue, size_t symbolicValueSize,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle);

/** As KORO_EnumerationNode_FindEntryByValue, but success with a null handle when there is none. */
KORO_API KORO_ReturnCode KORO_EnumerationNode_TryFindEntryByValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, int64_t value,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle);

/** As KORO_EnumerationNode_FindEntryBySymbolicValue, but success with a null handle when there is none. */
KORO_API KORO_ReturnCode KORO_EnumerationNode_TryFindEntryBySymbolicValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, const char* symbolicValue, size_t symbolicValueSize,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle);

/**
 * Tells whether there is an entry with a number.
 * @param[out] hasEntry 1 if there is one, available or not
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_GetHasEntryByValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, int64_t value, KORO_Bool8* hasEntry);

/**
 * Tells whether there is an entry with a name.
 * @param[in]  symbolicValue     such as "Mono8"; need not be terminated
 * @param[in]  symbolicValueSize its size in bytes, with a terminating zero counted
 * @param[out] hasEntry          1 if there is one, available or not
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_GetHasEntryBySymbolicValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, const char* symbolicValue, size_t symbolicValueSize,
    KORO_Bool8* hasEntry);

/** Gives the node as a plain node: the handle that KORO_NodeMap_FindNode gives for it. */
KORO_API KORO_ReturnCode
KORO_EnumerationNode_ToNode(KORO_EnumerationNodeHandle enumerationNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
