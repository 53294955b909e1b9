#include "nodes/integer_node.h"

#include "capi/node_entries.h"
#include <koro/integer_node.h>

using namespace koro::internal;

KORO_ReturnCode KORO_IntegerNode_GetMinimum(KORO_IntegerNodeHandle integerNodeHandle, int64_t* minimum)
{
    return GetScalar(KORO_ARG(integerNodeHandle), KORO_ARG(minimum), &IntegerNode::Minimum);
}

KORO_ReturnCode KORO_IntegerNode_GetMaximum(KORO_IntegerNodeHandle integerNodeHandle, int64_t* maximum)
{
    return GetScalar(KORO_ARG(integerNodeHandle), KORO_ARG(maximum), &IntegerNode::Maximum);
}

KORO_ReturnCode KORO_IntegerNode_GetIncrement(KORO_IntegerNodeHandle integerNodeHandle, int64_t* increment)
{
    return GetScalar(KORO_ARG(integerNodeHandle), KORO_ARG(increment), &IntegerNode::Increment);
}

KORO_ReturnCode KORO_IntegerNode_GetIncrementType(
    KORO_IntegerNodeHandle integerNodeHandle, KORO_NodeIncrementType* incrementType)
{
    return GetScalar(KORO_ARG(integerNodeHandle), KORO_ARG(incrementType), &IntegerNode::IncrementType);
}

KORO_ReturnCode KORO_IntegerNode_GetValidValues(
    KORO_IntegerNodeHandle integerNodeHandle, int64_t* validValues, size_t* validValuesSize)
{
    return GetBytes(KORO_ARG(integerNodeHandle), KORO_ARG(validValues), validValuesSize, &IntegerNode::ValidValues);
}

KORO_ReturnCode KORO_IntegerNode_GetRepresentation(
    KORO_IntegerNodeHandle integerNodeHandle, KORO_NodeRepresentation* representation)
{
    return GetScalar(KORO_ARG(integerNodeHandle), KORO_ARG(representation), &IntegerNode::Representation);
}

KORO_ReturnCode KORO_IntegerNode_GetUnit(KORO_IntegerNodeHandle integerNodeHandle, char* unit, size_t* unitSize)
{
    return GetString(KORO_ARG(integerNodeHandle), KORO_ARG(unit), unitSize, &IntegerNode::Unit);
}

KORO_ReturnCode KORO_IntegerNode_GetValue(
    KORO_IntegerNodeHandle integerNodeHandle, KORO_NodeCachePolicy cachePolicy, int64_t* value)
{
    return GetScalar(KORO_ARG(integerNodeHandle), KORO_ARG(value), [&](const auto& node) {
        return node.Value(CachePolicy{cachePolicy});
    });
}

KORO_ReturnCode KORO_IntegerNode_SetValue(KORO_IntegerNodeHandle integerNodeHandle, int64_t value)
{
    return Perform(KORO_ARG(integerNodeHandle), [&](auto& node) { node.SetValue(value); });
}

KORO_ReturnCode KORO_IntegerNode_ToNode(KORO_IntegerNodeHandle integerNodeHandle, KORO_NodeHandle* nodeHandle)
{
    return CastTo(KORO_ARG(integerNodeHandle), KORO_ARG(nodeHandle), &IntegerNode::ParentNodeMap);
}
