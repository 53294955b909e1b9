#include "nodes/register_node.h"

#include "capi/node_entries.h"
#include <koro/register_node.h>

using namespace koro::internal;

KORO_ReturnCode KORO_RegisterNode_GetAddress(KORO_RegisterNodeHandle registerNodeHandle, uint64_t* address)
{
    return GetScalar(KORO_ARG(registerNodeHandle), KORO_ARG(address), &RegisterNode::Address);
}

KORO_ReturnCode KORO_RegisterNode_GetLength(KORO_RegisterNodeHandle registerNodeHandle, size_t* length)
{
    return GetScalar(KORO_ARG(registerNodeHandle), KORO_ARG(length), &RegisterNode::Length);
}

KORO_ReturnCode KORO_RegisterNode_Read(
    KORO_RegisterNodeHandle registerNodeHandle, KORO_NodeCachePolicy cachePolicy, uint8_t* data, size_t dataSize)
{
    return WithObject(KORO_ARG(registerNodeHandle), [&](const auto& node) {
        if (!data) return InvalidPointer(KORO_ARG(data));
        node->Read(data, dataSize, CachePolicy{cachePolicy});
        return success;
    });
}

KORO_ReturnCode KORO_RegisterNode_Write(
    KORO_RegisterNodeHandle registerNodeHandle, const uint8_t* data, size_t dataSize)
{
    return WithObject(KORO_ARG(registerNodeHandle), [&](const auto& node) {
        if (!data) return InvalidPointer(KORO_ARG(data));
        node->Write(data, dataSize);
        return success;
    });
}

KORO_ReturnCode KORO_RegisterNode_ToNode(KORO_RegisterNodeHandle registerNodeHandle, KORO_NodeHandle* nodeHandle)
{
    return CastTo(KORO_ARG(registerNodeHandle), KORO_ARG(nodeHandle), &RegisterNode::ParentNodeMap);
}
