#include "nodes/node.h"

#include "capi/node_entries.h"
#include "nodes/boolean_node.h"
#include "nodes/category_node.h"
#include "nodes/command_node.h"
#include "nodes/enumeration_entry_node.h"
#include "nodes/enumeration_node.h"
#include "nodes/float_node.h"
#include "nodes/integer_node.h"
#include "nodes/register_node.h"
#include "nodes/string_node.h"
#include <koro/node.h>

using namespace koro::internal;

namespace
{

HandleOf<Node> EnterLinked(const std::shared_ptr<Node>&, const std::shared_ptr<Node>& linked)
{
    return EnterNode(linked);
}

// `find` throws when there is no such node in the list.
KORO_ReturnCode FindLinked(
    const NamedArgument<KORO_NodeHandle>& handle, const NamedArgument<const char*>& name, std::size_t nameSize,
    const NamedArgument<KORO_NodeHandle*>& linkedHandle, std::shared_ptr<Node> (Node::*find)(const std::string&))
{
    return WithObject(handle, [&](const auto& node) {
        if (!name.value) return InvalidPointer(name);
        if (!linkedHandle.value) return InvalidPointer(linkedHandle);
        *linkedHandle.value = EnterNode(((*node).*find)(TextArgument(name.value, nameSize)));
        return success;
    });
}

// Decides by the class of the object, regardless of the type that GenApi reports. `kind` is the name of the class in
// messages.
template <class TypedHandle>
KORO_ReturnCode CastNode(
    const NamedArgument<KORO_NodeHandle>& handle, const NamedArgument<TypedHandle*>& typedHandle, const char* kind)
{
    return WithObject(handle, [&](const auto& node) {
        if (!typedHandle.value) return InvalidPointer(typedHandle);
        const auto typedNode = std::dynamic_pointer_cast<ClassOf<TypedHandle>>(node);
        if (!typedNode)
        {
            return RecordLastError(
                KORO_RETURN_CODE_INVALID_CAST, std::string("Node cannot be cast to ") + kind + " node!");
        }
        *typedHandle.value = Table<ClassOf<TypedHandle>>().Add(typedNode, node->ParentNodeMap());
        return success;
    });
}

} // namespace

KORO_ReturnCode KORO_Node_GetName(KORO_NodeHandle nodeHandle, char* name, size_t* nameSize)
{
    return GetString(KORO_ARG(nodeHandle), KORO_ARG(name), nameSize, &Node::Name);
}

KORO_ReturnCode KORO_Node_GetDisplayName(KORO_NodeHandle nodeHandle, char* displayName, size_t* displayNameSize)
{
    return GetString(KORO_ARG(nodeHandle), KORO_ARG(displayName), displayNameSize, &Node::DisplayName);
}

KORO_ReturnCode KORO_Node_GetNamespace(KORO_NodeHandle nodeHandle, KORO_NodeNamespace* _namespace)
{
    return GetScalar(KORO_ARG(nodeHandle), KORO_ARG(_namespace), &Node::Namespace);
}

KORO_ReturnCode KORO_Node_GetVisibility(KORO_NodeHandle nodeHandle, KORO_NodeVisibility* visibility)
{
    return GetScalar(KORO_ARG(nodeHandle), KORO_ARG(visibility), &Node::Visibility);
}

KORO_ReturnCode KORO_Node_GetAccessStatus(KORO_NodeHandle nodeHandle, KORO_NodeAccessStatus* accessStatus)
{
    return GetScalar(KORO_ARG(nodeHandle), KORO_ARG(accessStatus), &Node::AccessStatus);
}

KORO_ReturnCode KORO_Node_GetIsCacheable(KORO_NodeHandle nodeHandle, KORO_Bool8* isCacheable)
{
    return GetScalar(KORO_ARG(nodeHandle), KORO_ARG(isCacheable), &Node::IsCacheable);
}

KORO_ReturnCode KORO_Node_GetIsAccessStatusCacheable(KORO_NodeHandle nodeHandle, KORO_Bool8* isAccessStatusCacheable)
{
    return GetScalar(KORO_ARG(nodeHandle), KORO_ARG(isAccessStatusCacheable), &Node::IsAccessStatusCacheable);
}

KORO_ReturnCode KORO_Node_GetCachingMode(KORO_NodeHandle nodeHandle, KORO_NodeCachingMode* cachingMode)
{
    return GetScalar(KORO_ARG(nodeHandle), KORO_ARG(cachingMode), &Node::CachingMode);
}

KORO_ReturnCode KORO_Node_GetPollingTime(KORO_NodeHandle nodeHandle, int64_t* pollingTime_ms)
{
    return GetScalar(KORO_ARG(nodeHandle), KORO_ARG(pollingTime_ms), &Node::PollingTime);
}

KORO_ReturnCode KORO_Node_GetToolTip(KORO_NodeHandle nodeHandle, char* toolTip, size_t* toolTipSize)
{
    return GetString(KORO_ARG(nodeHandle), KORO_ARG(toolTip), toolTipSize, &Node::ToolTip);
}

KORO_ReturnCode KORO_Node_GetDescription(KORO_NodeHandle nodeHandle, char* description, size_t* descriptionSize)
{
    return GetString(KORO_ARG(nodeHandle), KORO_ARG(description), descriptionSize, &Node::Description);
}

KORO_ReturnCode KORO_Node_GetType(KORO_NodeHandle nodeHandle, KORO_NodeType* type)
{
    return GetScalar(KORO_ARG(nodeHandle), KORO_ARG(type), &Node::Type);
}

KORO_ReturnCode KORO_Node_GetIsFeature(KORO_NodeHandle nodeHandle, KORO_Bool8* isFeature)
{
    return GetScalar(KORO_ARG(nodeHandle), KORO_ARG(isFeature), &Node::IsFeature);
}

KORO_ReturnCode KORO_Node_GetIsDeprecated(KORO_NodeHandle nodeHandle, KORO_Bool8* isDeprecated)
{
    return GetScalar(KORO_ARG(nodeHandle), KORO_ARG(isDeprecated), &Node::IsDeprecated);
}

KORO_ReturnCode KORO_Node_GetIsStreamable(KORO_NodeHandle nodeHandle, KORO_Bool8* isStreamable)
{
    return GetScalar(KORO_ARG(nodeHandle), KORO_ARG(isStreamable), &Node::IsStreamable);
}

KORO_ReturnCode KORO_Node_GetParentNodeMap(KORO_NodeHandle nodeHandle, KORO_NodeMapHandle* nodeMapHandle)
{
    return GetParent(KORO_ARG(nodeHandle), KORO_ARG(nodeMapHandle), &Node::ParentNodeMap);
}

KORO_ReturnCode KORO_Node_GetNumInvalidatedNodes(KORO_NodeHandle nodeHandle, size_t* numInvalidatedNodes)
{
    return GetScalar(
        KORO_ARG(nodeHandle), KORO_ARG(numInvalidatedNodes), [](auto& node) { return node.InvalidatedNodes().size(); });
}

KORO_ReturnCode KORO_Node_GetInvalidatedNode(
    KORO_NodeHandle nodeHandle, size_t index, KORO_NodeHandle* invalidatedNodeHandle)
{
    return GetIndexed(
        KORO_ARG(nodeHandle), index, KORO_ARG(invalidatedNodeHandle), &Node::InvalidatedNodes, EnterLinked);
}

KORO_ReturnCode KORO_Node_FindInvalidatedNode(
    KORO_NodeHandle nodeHandle, const char* name, size_t nameSize, KORO_NodeHandle* invalidatedNodeHandle)
{
    return FindLinked(
        KORO_ARG(nodeHandle), KORO_ARG(name), nameSize, KORO_ARG(invalidatedNodeHandle), &Node::FindInvalidatedNode);
}

KORO_ReturnCode KORO_Node_GetNumInvalidatingNodes(KORO_NodeHandle nodeHandle, size_t* numInvalidatingNodes)
{
    return GetScalar(KORO_ARG(nodeHandle), KORO_ARG(numInvalidatingNodes), [](auto& node) {
        return node.InvalidatingNodes().size();
    });
}

KORO_ReturnCode KORO_Node_GetInvalidatingNode(
    KORO_NodeHandle nodeHandle, size_t index, KORO_NodeHandle* invalidatingNodeHandle)
{
    return GetIndexed(
        KORO_ARG(nodeHandle), index, KORO_ARG(invalidatingNodeHandle), &Node::InvalidatingNodes, EnterLinked);
}

KORO_ReturnCode KORO_Node_FindInvalidatingNode(
    KORO_NodeHandle nodeHandle, const char* name, size_t nameSize, KORO_NodeHandle* invalidatingNodeHandle)
{
    return FindLinked(
        KORO_ARG(nodeHandle), KORO_ARG(name), nameSize, KORO_ARG(invalidatingNodeHandle), &Node::FindInvalidatingNode);
}

KORO_ReturnCode KORO_Node_GetNumSelectedNodes(KORO_NodeHandle nodeHandle, size_t* numSelectedNodes)
{
    return GetScalar(
        KORO_ARG(nodeHandle), KORO_ARG(numSelectedNodes), [](auto& node) { return node.SelectedNodes().size(); });
}

KORO_ReturnCode KORO_Node_GetSelectedNode(KORO_NodeHandle nodeHandle, size_t index, KORO_NodeHandle* selectedNodeHandle)
{
    return GetIndexed(KORO_ARG(nodeHandle), index, KORO_ARG(selectedNodeHandle), &Node::SelectedNodes, EnterLinked);
}

KORO_ReturnCode KORO_Node_FindSelectedNode(
    KORO_NodeHandle nodeHandle, const char* name, size_t nameSize, KORO_NodeHandle* selectedNodeHandle)
{
    return FindLinked(
        KORO_ARG(nodeHandle), KORO_ARG(name), nameSize, KORO_ARG(selectedNodeHandle), &Node::FindSelectedNode);
}

KORO_ReturnCode KORO_Node_GetNumSelectingNodes(KORO_NodeHandle nodeHandle, size_t* numSelectingNodes)
{
    return GetScalar(
        KORO_ARG(nodeHandle), KORO_ARG(numSelectingNodes), [](auto& node) { return node.SelectingNodes().size(); });
}

KORO_ReturnCode KORO_Node_GetSelectingNode(
    KORO_NodeHandle nodeHandle, size_t index, KORO_NodeHandle* selectingNodeHandle)
{
    return GetIndexed(KORO_ARG(nodeHandle), index, KORO_ARG(selectingNodeHandle), &Node::SelectingNodes, EnterLinked);
}

KORO_ReturnCode KORO_Node_FindSelectingNode(
    KORO_NodeHandle nodeHandle, const char* name, size_t nameSize, KORO_NodeHandle* selectingNodeHandle)
{
    return FindLinked(
        KORO_ARG(nodeHandle), KORO_ARG(name), nameSize, KORO_ARG(selectingNodeHandle), &Node::FindSelectingNode);
}

KORO_ReturnCode KORO_Node_ToIntegerNode(KORO_NodeHandle nodeHandle, KORO_IntegerNodeHandle* integerNodeHandle)
{
    return CastNode(KORO_ARG(nodeHandle), KORO_ARG(integerNodeHandle), "an integer");
}

KORO_ReturnCode KORO_Node_ToBooleanNode(KORO_NodeHandle nodeHandle, KORO_BooleanNodeHandle* booleanNodeHandle)
{
    return CastNode(KORO_ARG(nodeHandle), KORO_ARG(booleanNodeHandle), "a boolean");
}

KORO_ReturnCode KORO_Node_ToCommandNode(KORO_NodeHandle nodeHandle, KORO_CommandNodeHandle* commandNodeHandle)
{
    return CastNode(KORO_ARG(nodeHandle), KORO_ARG(commandNodeHandle), "a command");
}

KORO_ReturnCode KORO_Node_ToFloatNode(KORO_NodeHandle nodeHandle, KORO_FloatNodeHandle* floatNodeHandle)
{
    return CastNode(KORO_ARG(nodeHandle), KORO_ARG(floatNodeHandle), "a float");
}

KORO_ReturnCode KORO_Node_ToStringNode(KORO_NodeHandle nodeHandle, KORO_StringNodeHandle* stringNodeHandle)
{
    return CastNode(KORO_ARG(nodeHandle), KORO_ARG(stringNodeHandle), "a string");
}

KORO_ReturnCode KORO_Node_ToRegisterNode(KORO_NodeHandle nodeHandle, KORO_RegisterNodeHandle* registerNodeHandle)
{
    return CastNode(KORO_ARG(nodeHandle), KORO_ARG(registerNodeHandle), "a register");
}

KORO_ReturnCode KORO_Node_ToCategoryNode(KORO_NodeHandle nodeHandle, KORO_CategoryNodeHandle* categoryNodeHandle)
{
    return CastNode(KORO_ARG(nodeHandle), KORO_ARG(categoryNodeHandle), "a category");
}

KORO_ReturnCode KORO_Node_ToEnumerationNode(
    KORO_NodeHandle nodeHandle, KORO_EnumerationNodeHandle* enumerationNodeHandle)
{
    return CastNode(KORO_ARG(nodeHandle), KORO_ARG(enumerationNodeHandle), "an enumeration");
}

KORO_ReturnCode KORO_Node_ToEnumerationEntryNode(
    KORO_NodeHandle nodeHandle, KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle)
{
    return CastNode(KORO_ARG(nodeHandle), KORO_ARG(enumerationEntryNodeHandle), "an enumeration entry");
}

KORO_ReturnCode KORO_Node_RegisterChangedCallback(
    KORO_NodeHandle nodeHandle, KORO_NodeChangedCallback callback, void* callbackContext,
    KORO_NodeChangedCallbackHandle* callbackHandle)
{
    return WithObject(KORO_ARG(nodeHandle), [&](const auto& node) {
        if (!callback) return InvalidPointer(KORO_ARG(callback));
        if (!callbackHandle) return InvalidPointer(KORO_ARG(callbackHandle));
        const auto handle = node->RegisterChangedCallback(
            [callback, callbackContext](const auto& changed) { callback(HandleFor(changed), callbackContext); });
        *callbackHandle = reinterpret_cast<KORO_NodeChangedCallbackHandle>(const_cast<void*>(handle));
        return success;
    });
}

KORO_ReturnCode KORO_Node_UnregisterChangedCallback(
    KORO_NodeHandle nodeHandle, KORO_NodeChangedCallbackHandle callbackHandle)
{
    return Perform(KORO_ARG(nodeHandle), [&](auto& node) { node.UnregisterChangedCallback(callbackHandle); });
}
