#include "nodes/enumeration_entry_node.h"

#include "capi/node_entries.h"
#include <koro/enumeration_entry_node.h>

using namespace koro::internal;

KORO_ReturnCode KORO_EnumerationEntryNode_GetIsSelfClearing(
    KORO_EnumerationEntryNodeHandle enumerationEntryNodeHandle, KORO_Bool8* isSelfClearing)
{
    return GetScalar(
        KORO_ARG(enumerationEntryNodeHandle), KORO_ARG(isSelfClearing), &EnumerationEntryNode::IsSelfClearing);
}

KORO_ReturnCode KORO_EnumerationEntryNode_GetSymbolicValue(
    KORO_EnumerationEntryNodeHandle enumerationEntryNodeHandle, char* symbolicValue, size_t* symbolicValueSize)
{
    return GetString(
        KORO_ARG(enumerationEntryNodeHandle), KORO_ARG(symbolicValue), symbolicValueSize,
        &EnumerationEntryNode::SymbolicValue);
}

KORO_ReturnCode KORO_EnumerationEntryNode_GetValue(
    KORO_EnumerationEntryNodeHandle enumerationEntryNodeHandle, int64_t* value)
{
    return GetScalar(KORO_ARG(enumerationEntryNodeHandle), KORO_ARG(value), &EnumerationEntryNode::Value);
}

KORO_ReturnCode KORO_EnumerationEntryNode_ToNode(
    KORO_EnumerationEntryNodeHandle enumerationEntryNodeHandle, KORO_NodeHandle* nodeHandle)
{
    return CastTo(KORO_ARG(enumerationEntryNodeHandle), KORO_ARG(nodeHandle), &EnumerationEntryNode::ParentNodeMap);
}
