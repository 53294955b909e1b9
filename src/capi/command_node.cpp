#include "nodes/command_node.h"

#include "capi/node_entries.h"
#include <koro/command_node.h>

using namespace koro::internal;

KORO_ReturnCode KORO_CommandNode_Execute(KORO_CommandNodeHandle commandNodeHandle)
{
    return Perform(KORO_ARG(commandNodeHandle), &CommandNode::Execute);
}

KORO_ReturnCode KORO_CommandNode_GetIsDone(KORO_CommandNodeHandle commandNodeHandle, KORO_Bool8* isDone)
{
    return GetScalar(KORO_ARG(commandNodeHandle), KORO_ARG(isDone), &CommandNode::IsDone);
}

KORO_ReturnCode KORO_CommandNode_WaitUntilDone(KORO_CommandNodeHandle commandNodeHandle, uint64_t waitTimeout_ms)
{
    return Perform(KORO_ARG(commandNodeHandle), [&](const auto& node) { node.WaitUntilDone(waitTimeout_ms); });
}

KORO_ReturnCode KORO_CommandNode_WaitUntilDoneInfinite(KORO_CommandNodeHandle commandNodeHandle)
{
    return Perform(KORO_ARG(commandNodeHandle), [](const auto& node) { node.WaitUntilDone(KORO_INFINITE); });
}

KORO_ReturnCode KORO_CommandNode_ToNode(KORO_CommandNodeHandle commandNodeHandle, KORO_NodeHandle* nodeHandle)
{
    return CastTo(KORO_ARG(commandNodeHandle), KORO_ARG(nodeHandle), &CommandNode::ParentNodeMap);
}
