#include "nodes/category_node.h"

#include "capi/node_entries.h"
#include <koro/category_node.h>

#include <stdexcept>

using namespace koro::internal;

KORO_ReturnCode KORO_CategoryNode_GetNumSubNodes(KORO_CategoryNodeHandle categoryNodeHandle, size_t* numSubNodes)
{
    return GetScalar(
        KORO_ARG(categoryNodeHandle), KORO_ARG(numSubNodes), [](auto& node) { return node.SubNodes().size(); });
}

KORO_ReturnCode KORO_CategoryNode_GetSubNode(
    KORO_CategoryNodeHandle categoryNodeHandle, size_t index, KORO_NodeHandle* nodeHandle)
{
    return GetHandle(KORO_ARG(categoryNodeHandle), KORO_ARG(nodeHandle), [&](const auto& node) {
        const auto& subNodes = node->SubNodes();
        // Differs from other lists; kept for compatibility.
        if (index >= subNodes.size()) throw std::out_of_range("invalid vector subscript");
        return EnterNode(subNodes[index]);
    });
}

KORO_ReturnCode KORO_CategoryNode_ToNode(KORO_CategoryNodeHandle categoryNodeHandle, KORO_NodeHandle* nodeHandle)
{
    return CastTo(KORO_ARG(categoryNodeHandle), KORO_ARG(nodeHandle), &CategoryNode::ParentNodeMap);
}
