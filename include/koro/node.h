/*
 * What all nodes of a map have in common: name, access, visibility, relations, and news of changes. A handle comes from
 * the node map or from another node and ends with the map; there is nothing to destruct. KORO_Node_To... gives the
 * handle of the node's own type, which has the values.
 *
 * Any thread. Getters may wait for another thread that works on the same map.
 */
#ifndef KORO_NODE_H
#define KORO_NODE_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What a node can be cast to. Later versions may know more: treat what is not listed as KORO_NODE_TYPE_OTHER. */
typedef int32_t KORO_NodeType;
enum KORO_NodeTypes
{
    KORO_NODE_TYPE_INTEGER = 0,
    KORO_NODE_TYPE_BOOLEAN = 1,
    KORO_NODE_TYPE_COMMAND = 2,
    KORO_NODE_TYPE_FLOAT = 3,
    KORO_NODE_TYPE_STRING = 4,
    KORO_NODE_TYPE_REGISTER = 5,
    KORO_NODE_TYPE_CATEGORY = 6,
    KORO_NODE_TYPE_ENUMERATION = 7,
    KORO_NODE_TYPE_ENUMERATION_ENTRY = 8,
    KORO_NODE_TYPE_OTHER = 9
};

/* How a node may be used at this time; the numbers of GenApi. */
typedef int32_t KORO_NodeAccessStatus;
enum KORO_NodeAccessStatuses
{
    KORO_NODE_ACCESS_STATUS_NOT_IMPLEMENTED = 0,
    KORO_NODE_ACCESS_STATUS_NOT_AVAILABLE = 1,
    KORO_NODE_ACCESS_STATUS_WRITE_ONLY = 2,
    KORO_NODE_ACCESS_STATUS_READ_ONLY = 3,
    KORO_NODE_ACCESS_STATUS_READ_WRITE = 4,
    KORO_NODE_ACCESS_STATUS_UNDEFINED = 5,
    KORO_NODE_ACCESS_STATUS_CYCLE_DETECTED = 6
};

/* Who defined a node's name; the numbers of GenApi. */
typedef int32_t KORO_NodeNamespace;
enum KORO_NodeNamespaces
{
    KORO_NODE_NAMESPACE_CUSTOM = 0,
    KORO_NODE_NAMESPACE_STANDARD = 1,
    KORO_NODE_NAMESPACE_UNDEFINED = 2
};

/* For whom a node is meant; the numbers of GenApi. */
typedef int32_t KORO_NodeVisibility;
enum KORO_NodeVisibilities
{
    KORO_NODE_VISIBILITY_BEGINNER = 0,
    KORO_NODE_VISIBILITY_EXPERT = 1,
    KORO_NODE_VISIBILITY_GURU = 2,
    KORO_NODE_VISIBILITY_INVISIBLE = 3,
    KORO_NODE_VISIBILITY_UNDEFINED = 99
};

/* What is remembered of a node's registers; the numbers of GenApi. */
typedef int32_t KORO_NodeCachingMode;
enum KORO_NodeCachingModes
{
    KORO_NODE_CACHING_MODE_NO_CACHE = 0,
    KORO_NODE_CACHING_MODE_WRITE_THROUGH = 1,
    KORO_NODE_CACHING_MODE_WRITE_AROUND = 2,
    KORO_NODE_CACHING_MODE_UNDEFINED = 3
};

/**
 * Called after a node may have changed, on the thread that caused it, while that holds the lock of the map. It may use
 * any node of the map, register and unregister; it must not wait for another thread that uses the map. A change that it
 * makes is told within it, to itself as well: one that changes its own node at each call never ends. During the last
 * KORO_Library_Close on another thread, KORO_Library_Initialize and KORO_Library_Close in it give
 * KORO_RETURN_CODE_ERROR.
 */
typedef void (*KORO_NodeChangedCallback)(KORO_NodeHandle nodeHandle, void* callbackContext);
/* What a registration gives, for unregistering alone. */
typedef struct KORO_NodeChangedCallback_st* KORO_NodeChangedCallbackHandle;

/** Gives the name, without name space: unique in the map. */
KORO_API KORO_ReturnCode KORO_Node_GetName(KORO_NodeHandle nodeHandle, char* name, size_t* nameSize);

/** Gives the name for people. */
KORO_API KORO_ReturnCode
KORO_Node_GetDisplayName(KORO_NodeHandle nodeHandle, char* displayName, size_t* displayNameSize);

/** Tells who defined the name: KORO_NODE_NAMESPACE_... */
KORO_API KORO_ReturnCode KORO_Node_GetNamespace(KORO_NodeHandle nodeHandle, KORO_NodeNamespace* _namespace);

/** Tells for whom the node is meant: KORO_NODE_VISIBILITY_... */
KORO_API KORO_ReturnCode KORO_Node_GetVisibility(KORO_NodeHandle nodeHandle, KORO_NodeVisibility* visibility);

/**
 * Tells how the node may be used at this time; may read registers.
 * @param[out] accessStatus KORO_NODE_ACCESS_STATUS_...
 */
KORO_API KORO_ReturnCode KORO_Node_GetAccessStatus(KORO_NodeHandle nodeHandle, KORO_NodeAccessStatus* accessStatus);

/** Tells whether the value is remembered between reads. */
KORO_API KORO_ReturnCode KORO_Node_GetIsCacheable(KORO_NodeHandle nodeHandle, KORO_Bool8* isCacheable);

/** Tells whether the access status is remembered; 0 as well when that is not known. */
KORO_API KORO_ReturnCode
KORO_Node_GetIsAccessStatusCacheable(KORO_NodeHandle nodeHandle, KORO_Bool8* isAccessStatusCacheable);

/** Tells what is remembered: KORO_NODE_CACHING_MODE_... */
KORO_API KORO_ReturnCode KORO_Node_GetCachingMode(KORO_NodeHandle nodeHandle, KORO_NodeCachingMode* cachingMode);

/**
 * Tells how long what is remembered may be used.
 * @param[out] pollingTime_ms milliseconds; -1 for a node that is not polled. See KORO_NodeMap_PollNodes
 */
KORO_API KORO_ReturnCode KORO_Node_GetPollingTime(KORO_NodeHandle nodeHandle, int64_t* pollingTime_ms);

/** Gives a short text for people; often empty. */
KORO_API KORO_ReturnCode KORO_Node_GetToolTip(KORO_NodeHandle nodeHandle, char* toolTip, size_t* toolTipSize);

/** Gives a longer text for people; often empty. */
KORO_API KORO_ReturnCode
KORO_Node_GetDescription(KORO_NodeHandle nodeHandle, char* description, size_t* descriptionSize);

/** Tells what the node can be cast to: KORO_NODE_TYPE_... */
KORO_API KORO_ReturnCode KORO_Node_GetType(KORO_NodeHandle nodeHandle, KORO_NodeType* type);

/** Tells whether the node is a feature: reachable from the category "Root". */
KORO_API KORO_ReturnCode KORO_Node_GetIsFeature(KORO_NodeHandle nodeHandle, KORO_Bool8* isFeature);

/** Tells whether new programs should not use the node any more. */
KORO_API KORO_ReturnCode KORO_Node_GetIsDeprecated(KORO_NodeHandle nodeHandle, KORO_Bool8* isDeprecated);

/** Tells whether the value belongs to stored settings. */
KORO_API KORO_ReturnCode KORO_Node_GetIsStreamable(KORO_NodeHandle nodeHandle, KORO_Bool8* isStreamable);

/**
 * Gives the map of the node.
 * @param[out] nodeMapHandle the handle from KORO_Module_GetNodeMap: nothing new to destruct
 */
KORO_API KORO_ReturnCode KORO_Node_GetParentNodeMap(KORO_NodeHandle nodeHandle, KORO_NodeMapHandle* nodeMapHandle);

/** Gives the number of nodes that a change of this one invalidates. */
KORO_API KORO_ReturnCode KORO_Node_GetNumInvalidatedNodes(KORO_NodeHandle nodeHandle, size_t* numInvalidatedNodes);

/**
 * Gives one of these nodes.
 * @param[in]  index 0 to their number less 1
 * @param[out] invalidatedNodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_Node_GetInvalidatedNode(KORO_NodeHandle nodeHandle, size_t index, KORO_NodeHandle* invalidatedNodeHandle);

/**
 * Gives one of these nodes by its name.
 * @param[in]  name name without name space; need not be terminated
 * @param[in]  nameSize its size in bytes, with a terminating zero counted
 * @param[out] invalidatedNodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_NOT_FOUND when no such node is in the list
 */
KORO_API KORO_ReturnCode KORO_Node_FindInvalidatedNode(
    KORO_NodeHandle nodeHandle, const char* name, size_t nameSize, KORO_NodeHandle* invalidatedNodeHandle);

/** Gives the number of nodes whose change invalidates this one. */
KORO_API KORO_ReturnCode KORO_Node_GetNumInvalidatingNodes(KORO_NodeHandle nodeHandle, size_t* numInvalidatingNodes);

/**
 * Gives one of these nodes.
 * @param[in]  index 0 to their number less 1
 * @param[out] invalidatingNodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_Node_GetInvalidatingNode(KORO_NodeHandle nodeHandle, size_t index, KORO_NodeHandle* invalidatingNodeHandle);

/**
 * Gives one of these nodes by its name.
 * @param[in]  name name without name space; need not be terminated
 * @param[in]  nameSize its size in bytes, with a terminating zero counted
 * @param[out] invalidatingNodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_NOT_FOUND when no such node is in the list
 */
KORO_API KORO_ReturnCode KORO_Node_FindInvalidatingNode(
    KORO_NodeHandle nodeHandle, const char* name, size_t nameSize, KORO_NodeHandle* invalidatingNodeHandle);

/** Gives the number of nodes that this selector selects; 0 for a node that is no selector. */
KORO_API KORO_ReturnCode KORO_Node_GetNumSelectedNodes(KORO_NodeHandle nodeHandle, size_t* numSelectedNodes);

/**
 * Gives one of these nodes.
 * @param[in]  index 0 to their number less 1
 * @param[out] selectedNodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_Node_GetSelectedNode(KORO_NodeHandle nodeHandle, size_t index, KORO_NodeHandle* selectedNodeHandle);

/**
 * Gives one of these nodes by its name.
 * @param[in]  name name without name space; need not be terminated
 * @param[in]  nameSize its size in bytes, with a terminating zero counted
 * @param[out] selectedNodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_NOT_FOUND when no such node is in the list
 */
KORO_API KORO_ReturnCode KORO_Node_FindSelectedNode(
    KORO_NodeHandle nodeHandle, const char* name, size_t nameSize, KORO_NodeHandle* selectedNodeHandle);

/** Gives the number of selectors that select this selector; 0 for a node that is no selector. */
KORO_API KORO_ReturnCode KORO_Node_GetNumSelectingNodes(KORO_NodeHandle nodeHandle, size_t* numSelectingNodes);

/**
 * Gives one of these nodes.
 * @param[in]  index 0 to their number less 1
 * @param[out] selectingNodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_Node_GetSelectingNode(KORO_NodeHandle nodeHandle, size_t index, KORO_NodeHandle* selectingNodeHandle);

/**
 * Gives one of these nodes by its name.
 * @param[in]  name name without name space; need not be terminated
 * @param[in]  nameSize its size in bytes, with a terminating zero counted
 * @param[out] selectingNodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_NOT_FOUND when no such node is in the list
 */
KORO_API KORO_ReturnCode KORO_Node_FindSelectingNode(
    KORO_NodeHandle nodeHandle, const char* name, size_t nameSize, KORO_NodeHandle* selectingNodeHandle);

/**
 * Gives the node as an integer node. The same handle each time.
 * @param[out] integerNodeHandle ends with the map; untouched when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when it is
 */
KORO_API KORO_ReturnCode KORO_Node_ToIntegerNode(KORO_NodeHandle nodeHandle, KORO_IntegerNodeHandle* integerNodeHandle);

/**
 * Gives the node as a boolean node. The same handle each time.
 * @param[out] booleanNodeHandle ends with the map; untouched when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when it is
 */
KORO_API KORO_ReturnCode KORO_Node_ToBooleanNode(KORO_NodeHandle nodeHandle, KORO_BooleanNodeHandle* booleanNodeHandle);

/**
 * Gives the node as a command node. The same handle each time.
 * @param[out] commandNodeHandle ends with the map; untouched when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when it is
 */
KORO_API KORO_ReturnCode KORO_Node_ToCommandNode(KORO_NodeHandle nodeHandle, KORO_CommandNodeHandle* commandNodeHandle);

/**
 * Gives the node as a float node. The same handle each time.
 * @param[out] floatNodeHandle ends with the map; untouched when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when it is
 */
KORO_API KORO_ReturnCode KORO_Node_ToFloatNode(KORO_NodeHandle nodeHandle, KORO_FloatNodeHandle* floatNodeHandle);

/**
 * Gives the node as a string node. The same handle each time.
 * @param[out] stringNodeHandle ends with the map; untouched when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when it is
 */
KORO_API KORO_ReturnCode KORO_Node_ToStringNode(KORO_NodeHandle nodeHandle, KORO_StringNodeHandle* stringNodeHandle);

/**
 * Gives the node as a register node. The same handle each time.
 * @param[out] registerNodeHandle ends with the map; untouched when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when it is
 */
KORO_API KORO_ReturnCode
KORO_Node_ToRegisterNode(KORO_NodeHandle nodeHandle, KORO_RegisterNodeHandle* registerNodeHandle);

/**
 * Gives the node as a category node. The same handle each time.
 * @param[out] categoryNodeHandle ends with the map; untouched when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when it is
 */
KORO_API KORO_ReturnCode
KORO_Node_ToCategoryNode(KORO_NodeHandle nodeHandle, KORO_CategoryNodeHandle* categoryNodeHandle);

/**
 * Gives the node as an enumeration node. The same handle each time.
 * @param[out] enumerationNodeHandle ends with the map; untouched when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when it is
 */
KORO_API KORO_ReturnCode
KORO_Node_ToEnumerationNode(KORO_NodeHandle nodeHandle, KORO_EnumerationNodeHandle* enumerationNodeHandle);

/**
 * Gives the node as an enumeration entry node. The same handle each time.
 * @param[out] enumerationEntryNodeHandle ends with the map; untouched when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when it is
 */
KORO_API KORO_ReturnCode KORO_Node_ToEnumerationEntryNode(
    KORO_NodeHandle nodeHandle, KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle);

/**
 * Has a function called whenever the node may have changed: after a write to it or to what it depends on, when it is
 * invalidated or polled, and when an event or a chunk brings a value. Takes the lock of the map. The callback may run
 * before this returns, and its handle may be the same number as one that was unregistered.
 * @param[in]  callback        called on the thread that caused the change, with the lock of the map held
 * @param[in]  callbackContext given to each call as it is; may be null
 * @param[out] callbackHandle  for KORO_Node_UnregisterChangedCallback; ends with it or with the map
 */
KORO_API KORO_ReturnCode KORO_Node_RegisterChangedCallback(
    KORO_NodeHandle nodeHandle, KORO_NodeChangedCallback callback, void* callbackContext,
    KORO_NodeChangedCallbackHandle* callbackHandle);

/**
 * Ends the calls of a changed callback, also from within it. An unknown callback handle is ignored. Takes the lock of
 * the map, so it waits for a call that is under way on another thread; afterwards the callback does not run any more.
 * @param[in] callbackHandle from the registration
 */
KORO_API KORO_ReturnCode
KORO_Node_UnregisterChangedCallback(KORO_NodeHandle nodeHandle, KORO_NodeChangedCallbackHandle callbackHandle);

#ifdef __cplusplus
}
#endif

#endif
