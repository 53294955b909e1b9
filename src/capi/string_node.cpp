#include "nodes/string_node.h"

#include "capi/node_entries.h"
#include <koro/string_node.h>

using namespace koro::internal;

KORO_ReturnCode KORO_StringNode_GetMaximumLength(KORO_StringNodeHandle stringNodeHandle, int64_t* maximumLength)
{
    return GetScalar(KORO_ARG(stringNodeHandle), KORO_ARG(maximumLength), &StringNode::MaximumLength);
}

KORO_ReturnCode KORO_StringNode_GetValue(
    KORO_StringNodeHandle stringNodeHandle, KORO_NodeCachePolicy cachePolicy, char* value, size_t* valueSize)
{
    return GetString(KORO_ARG(stringNodeHandle), KORO_ARG(value), valueSize, [&](const auto& node) {
        return node.Value(CachePolicy{cachePolicy});
    });
}

KORO_ReturnCode KORO_StringNode_SetValue(KORO_StringNodeHandle stringNodeHandle, const char* value, size_t valueSize)
{
    return WithObject(KORO_ARG(stringNodeHandle), [&](const auto& node) {
        if (!value) return InvalidPointer(KORO_ARG(value));
        node->SetValue(TextArgument(value, valueSize));
        return success;
    });
}

KORO_ReturnCode KORO_StringNode_ToNode(KORO_StringNodeHandle stringNodeHandle, KORO_NodeHandle* nodeHandle)
{
    return CastTo(KORO_ARG(stringNodeHandle), KORO_ARG(nodeHandle), &StringNode::ParentNodeMap);
}
