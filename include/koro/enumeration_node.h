/*
 * An enumeration: a feature whose value is one of a list of entries. The list and the searches include entries that
 * cannot be selected now; the access status of an entry's node reports this.
 *
 * A handle comes from KORO_Node_ToEnumerationNode and ends with the map; do not destruct it. Any thread may call these
 * functions. Getters may read registers, on the calling thread, and may wait for another thread that uses the same map;
 * writes hold the lock of the map. A call that GenApi refuses fails with GenApi's own text: KORO_RETURN_CODE_BAD_ACCESS
 * for a node that cannot be read or written now, KORO_RETURN_CODE_INVALID_ARGUMENT for a number without an entry,
 * KORO_RETURN_CODE_ERROR in most other cases. A register transfer that fails returns the code and the text of the
 * producer's failure.
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
 * Reads the value and returns its entry.
 * @param[in]  cachePolicy                KORO_NODE_CACHE_POLICY_...
 * @param[out] enumerationEntryNodeHandle the entry's own handle; ends with the map
 * @return KORO_RETURN_CODE_ERROR or KORO_RETURN_CODE_NOT_FOUND when the value on the device has no entry
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_GetCurrentEntry(
    KORO_EnumerationNodeHandle enumerationNodeHandle, KORO_NodeCachePolicy cachePolicy,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle);

/**
 * Selects an entry. Changed callbacks run on the calling thread before the function returns.
 * @param[in] enumerationEntryNodeHandle an entry of this enumeration; for an entry of another enumeration only its
 *                                       number counts
 * @return KORO_RETURN_CODE_INVALID_ARGUMENT when this enumeration has no entry with that number;
 *         KORO_RETURN_CODE_BAD_ACCESS when node or entry are not available now
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_SetCurrentEntry(
    KORO_EnumerationNodeHandle enumerationNodeHandle, KORO_EnumerationEntryNodeHandle enumerationEntryNodeHandle);

/**
 * Selects an entry by its number. Changed callbacks run on the calling thread before the function returns.
 * @param[in] value the number of the entry, as KORO_EnumerationEntryNode_GetValue gives it
 * @return KORO_RETURN_CODE_INVALID_ARGUMENT for a number without an entry; KORO_RETURN_CODE_BAD_ACCESS when node or
 *         entry are not available now
 */
KORO_API KORO_ReturnCode
KORO_EnumerationNode_SetCurrentEntryByValue(KORO_EnumerationNodeHandle enumerationNodeHandle, int64_t value);

/**
 * Selects an entry by its name. Changed callbacks run on the calling thread before the function returns.
 * @param[in] symbolicValue     for example "Mono8"; need not be zero-terminated
 * @param[in] symbolicValueSize number of bytes including a terminating zero, strlen + 1; the last byte is not read
 * @return KORO_RETURN_CODE_NOT_FOUND for a name without an entry; KORO_RETURN_CODE_BAD_ACCESS when node or entry are
 * not available now
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_SetCurrentEntryBySymbolicValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, const char* symbolicValue, size_t symbolicValueSize);

/** Returns the number of entries. */
KORO_API KORO_ReturnCode
KORO_EnumerationNode_GetNumEntries(KORO_EnumerationNodeHandle enumerationNodeHandle, size_t* numEntries);

/**
 * Returns one entry, in the order of the description.
 * @param[in]  index 0 to their number minus 1
 * @param[out] enumerationEntryNodeHandle the entry's own handle; ends with the map
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_GetEntry(
    KORO_EnumerationNodeHandle enumerationNodeHandle, size_t index,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle);

/**
 * Returns the first entry with a number. Does not read registers.
 * @param[in]  value                      the number of the entry
 * @param[out] enumerationEntryNodeHandle the entry's own handle; ends with the map
 * @return KORO_RETURN_CODE_NOT_FOUND when there is none
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_FindEntryByValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, int64_t value,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle);

/**
 * Returns the first entry with a name. Does not read registers.
 * @param[in]  symbolicValue     for example "Mono8"; need not be zero-terminated
 * @param[in]  symbolicValueSize number of bytes including a terminating zero, strlen + 1; the last byte is not read
 * @param[out] enumerationEntryNodeHandle the entry's own handle; ends with the map
 * @return KORO_RETURN_CODE_NOT_FOUND when there is none
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_FindEntryBySymbolicValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, const char* symbolicValue, size_t symbolicValueSize,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle);

/**
 * Works like KORO_EnumerationNode_FindEntryByValue, but returns success and a null handle when there is no such entry.
 * @param[in]  value                      the number of the entry
 * @param[out] enumerationEntryNodeHandle the handle of the entry, or null; ends with the map
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_TryFindEntryByValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, int64_t value,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle);

/**
 * Works like KORO_EnumerationNode_FindEntryBySymbolicValue, but returns success and a null handle when there is no such
 * entry.
 * @param[in]  symbolicValue              such as "Mono8"; need not be terminated
 * @param[in]  symbolicValueSize          its size in bytes, including a terminating zero
 * @param[out] enumerationEntryNodeHandle the handle of the entry, or null; ends with the map
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_TryFindEntryBySymbolicValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, const char* symbolicValue, size_t symbolicValueSize,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle);

/**
 * Reports whether there is an entry with a number.
 * @param[in]  value    the number of the entry
 * @param[out] hasEntry 1 if there is one, available or not
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_GetHasEntryByValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, int64_t value, KORO_Bool8* hasEntry);

/**
 * Reports whether there is an entry with a name.
 * @param[in]  symbolicValue     for example "Mono8"; need not be zero-terminated
 * @param[in]  symbolicValueSize number of bytes including a terminating zero, strlen + 1; the last byte is not read
 * @param[out] hasEntry          1 if there is one, available or not
 */
KORO_API KORO_ReturnCode KORO_EnumerationNode_GetHasEntryBySymbolicValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, const char* symbolicValue, size_t symbolicValueSize,
    KORO_Bool8* hasEntry);

/** Returns the node as a general Node: the same handle that KORO_NodeMap_FindNode returns. */
KORO_API KORO_ReturnCode
KORO_EnumerationNode_ToNode(KORO_EnumerationNodeHandle enumerationNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
