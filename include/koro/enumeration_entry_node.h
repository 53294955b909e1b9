/*
 * One entry of an enumeration. The access status of its node reports whether it can be selected now.
 *
 * A handle comes from the enumeration node or from KORO_Node_ToEnumerationEntryNode and ends with the map; there is no
 * function to destruct it. Any thread may call these functions.
 */
#ifndef KORO_ENUMERATION_ENTRY_NODE_H
#define KORO_ENUMERATION_ENTRY_NODE_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Reports whether the device resets the enumeration by itself after this entry was selected. */
KORO_API KORO_ReturnCode KORO_EnumerationEntryNode_GetIsSelfClearing(
    KORO_EnumerationEntryNodeHandle enumerationEntryNodeHandle, KORO_Bool8* isSelfClearing);

/** Returns the name of the entry in its enumeration, for example "Mono8". */
KORO_API KORO_ReturnCode KORO_EnumerationEntryNode_GetSymbolicValue(
    KORO_EnumerationEntryNodeHandle enumerationEntryNodeHandle, char* symbolicValue, size_t* symbolicValueSize);

/** Returns the number that is written to the device for the entry. */
KORO_API KORO_ReturnCode
KORO_EnumerationEntryNode_GetValue(KORO_EnumerationEntryNodeHandle enumerationEntryNodeHandle, int64_t* value);

/** Returns the node as a general Node: the same handle that KORO_NodeMap_FindNode returns. */
KORO_API KORO_ReturnCode KORO_EnumerationEntryNode_ToNode(
    KORO_EnumerationEntryNodeHandle enumerationEntryNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
