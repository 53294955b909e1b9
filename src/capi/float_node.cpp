#include "nodes/float_node.h"

#include "capi/node_entries.h"
#include <koro/float_node.h>

using namespace koro::internal;

KORO_ReturnCode KORO_FloatNode_GetMinimum(KORO_FloatNodeHandle floatNodeHandle, double* minimum)
{
    return GetScalar(KORO_ARG(floatNodeHandle), KORO_ARG(minimum), &FloatNode::Minimum);
}

KORO_ReturnCode KORO_FloatNode_GetMaximum(KORO_FloatNodeHandle floatNodeHandle, double* maximum)
{
    return GetScalar(KORO_ARG(floatNodeHandle), KORO_ARG(maximum), &FloatNode::Maximum);
}

KORO_ReturnCode KORO_FloatNode_GetHasConstantIncrement(
    KORO_FloatNodeHandle floatNodeHandle, KORO_Bool8* hasConstantIncrement)
{
    return GetScalar(KORO_ARG(floatNodeHandle), KORO_ARG(hasConstantIncrement), &FloatNode::HasConstantIncrement);
}

KORO_ReturnCode KORO_FloatNode_GetIncrement(KORO_FloatNodeHandle floatNodeHandle, double* increment)
{
    return GetScalar(KORO_ARG(floatNodeHandle), KORO_ARG(increment), &FloatNode::Increment);
}

KORO_ReturnCode KORO_FloatNode_GetIncrementType(
    KORO_FloatNodeHandle floatNodeHandle, KORO_NodeIncrementType* incrementType)
{
    return GetScalar(KORO_ARG(floatNodeHandle), KORO_ARG(incrementType), &FloatNode::IncrementType);
}

KORO_ReturnCode KORO_FloatNode_GetValidValues(
    KORO_FloatNodeHandle floatNodeHandle, double* validValues, size_t* validValuesSize)
{
    return GetBytes(KORO_ARG(floatNodeHandle), KORO_ARG(validValues), validValuesSize, &FloatNode::ValidValues);
}

KORO_ReturnCode KORO_FloatNode_GetRepresentation(
    KORO_FloatNodeHandle floatNodeHandle, KORO_NodeRepresentation* representation)
{
    return GetScalar(KORO_ARG(floatNodeHandle), KORO_ARG(representation), &FloatNode::Representation);
}

KORO_ReturnCode KORO_FloatNode_GetUnit(KORO_FloatNodeHandle floatNodeHandle, char* unit, size_t* unitSize)
{
    return GetString(KORO_ARG(floatNodeHandle), KORO_ARG(unit), unitSize, &FloatNode::Unit);
}

KORO_ReturnCode KORO_FloatNode_GetDisplayNotation(
    KORO_FloatNodeHandle floatNodeHandle, KORO_NodeDisplayNotation* displayNotation)
{
    return GetScalar(KORO_ARG(floatNodeHandle), KORO_ARG(displayNotation), &FloatNode::DisplayNotation);
}

KORO_ReturnCode KORO_FloatNode_GetDisplayPrecision(KORO_FloatNodeHandle floatNodeHandle, int64_t* displayPrecision)
{
    return GetScalar(KORO_ARG(floatNodeHandle), KORO_ARG(displayPrecision), &FloatNode::DisplayPrecision);
}

KORO_ReturnCode KORO_FloatNode_GetValue(
    KORO_FloatNodeHandle floatNodeHandle, KORO_NodeCachePolicy cachePolicy, double* value)
{
    return GetScalar(KORO_ARG(floatNodeHandle), KORO_ARG(value), [&](const auto& node) {
        return node.Value(CachePolicy{cachePolicy});
    });
}

KORO_ReturnCode KORO_FloatNode_SetValue(KORO_FloatNodeHandle floatNodeHandle, double value)
{
    return Perform(KORO_ARG(floatNodeHandle), [&](auto& node) { node.SetValue(value); });
}

KORO_ReturnCode KORO_FloatNode_ToNode(KORO_FloatNodeHandle floatNodeHandle, KORO_NodeHandle* nodeHandle)
{
    return CastTo(KORO_ARG(floatNodeHandle), KORO_ARG(nodeHandle), &FloatNode::ParentNodeMap);
}
