#include "nodes/boolean_node.h"

#include "capi/node_entries.h"
#include <koro/boolean_node.h>

using namespace koro::internal;

KORO_ReturnCode KORO_BooleanNode_GetValue(
    KORO_BooleanNodeHandle booleanNodeHandle, KORO_NodeCachePolicy cachePolicy, KORO_Bool8* value)
{
    return GetScalar(KORO_ARG(booleanNodeHandle), KORO_ARG(value), [&](const auto& node) {
        return node.Value(CachePolicy{cachePolicy});
    });
}

KORO_ReturnCode KORO_BooleanNode_SetValue(KORO_BooleanNodeHandle booleanNodeHandle, KORO_Bool8 value)
{
    return Perform(KORO_ARG(booleanNodeHandle), [&](auto& node) { node.SetValue(value != 0); });
}

KORO_ReturnCode KORO_BooleanNode_ToNode(KORO_BooleanNodeHandle booleanNodeHandle, KORO_NodeHandle* nodeHandle)
{
    return CastTo(KORO_ARG(booleanNodeHandle), KORO_ARG(nodeHandle), &BooleanNode::ParentNodeMap);
}
