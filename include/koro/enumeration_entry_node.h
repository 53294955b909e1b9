/*
 * One entry of a choice. Whether it can be chosen at this time is the access status of its node.
 *
 * A handle comes from the enumeration or from KORO_Node_ToEnumerationEntryNode and ends with the map; there is nothing
 * to destruct. Any thread.
 */
#ifndef KORO_ENUMERATION_ENTRY_NODE_H
#define KORO_ENUMERATION_ENTRY_NODE_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Tells whether the device leaves this entry by itself after it was chosen. */
KORO_API KORO_ReturnCode KORO_EnumerationEntryNode_GetIsSelfClearing(
    KORO_EnumerationEntryNodeHandle enumerationEntryNodeHandle, KORO_Bool8* isSelfClearing);

/** Gives the name of the entry within its enumeration, such as "Mono8". */
KORO_API KORO_ReturnCode KORO_EnumerationEntryNode_GetSymbolicValue(
    KORO_EnumerationEntryNodeHandle enumerationEntryNodeHandle, char* symbolicValue, size_t* symbolicValueSize);

/** Gives the number that is written for the entry. */
KORO_API KORO_ReturnCode
KORO_EnumerationEntryNode_GetValue(KORO_EnumerationEntryNodeHandle enumerationEntryNodeHandle, int64_t* value);

/** Gives the node as a plain node: the handle that KORO_NodeMap_FindNode gives for it. */
KORO_API KORO_ReturnCode KORO_EnumerationEntryNode_ToNode(
    KORO_EnumerationEntryNodeHandle enumerationEntryNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
