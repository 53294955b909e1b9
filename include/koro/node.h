/*
 * What all nodes of a map have in common: name, access, visibility, relations to other nodes, and notification of
 * changes. A handle comes from the node map or from another node and ends with the map; there is no function to
 * destruct it. The functions KORO_Node_To... return the handle of the node's type, whose functions access the value.
 *
 * Any thread may call these functions. Getters may wait for another thread that uses the same map.
 */
#ifndef KORO_NODE_H
#define KORO_NODE_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * The type that a node can be cast to. Later versions may add types: treat unknown numbers like KORO_NODE_TYPE_OTHER.
 */
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

/* How a node can be accessed now; the numbers are those of GenApi. */
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

/* Who defined the name of a node; the numbers are those of GenApi. */
typedef int32_t KORO_NodeNamespace;
enum KORO_NodeNamespaces
{
    KORO_NODE_NAMESPACE_CUSTOM = 0,
    KORO_NODE_NAMESPACE_STANDARD = 1,
    KORO_NODE_NAMESPACE_UNDEFINED = 2
};

/* The audience for which a node is intended; the numbers are those of GenApi. */
typedef int32_t KORO_NodeVisibility;
enum KORO_NodeVisibilities
{
    KORO_NODE_VISIBILITY_BEGINNER = 0,
    KORO_NODE_VISIBILITY_EXPERT = 1,
    KORO_NODE_VISIBILITY_GURU = 2,
    KORO_NODE_VISIBILITY_INVISIBLE = 3,
    KORO_NODE_VISIBILITY_UNDEFINED = 99
};

/* How the registers of a node are cached; the numbers are those of GenApi. */
typedef int32_t KORO_NodeCachingMode;
enum KORO_NodeCachingModes
{
    KORO_NODE_CACHING_MODE_NO_CACHE = 0,
    KORO_NODE_CACHING_MODE_WRITE_THROUGH = 1,
    KORO_NODE_CACHING_MODE_WRITE_AROUND = 2,
    KORO_NODE_CACHING_MODE_UNDEFINED = 3
};

/**
 * Called when a node may have changed, on the thread that caused the change, while that thread holds the lock of the
 * map. The callback may use any node of the map, register and unregister callbacks; it must not wait for another thread
 * that uses the map. A change that the callback makes calls the changed callbacks again, before it returns; this
 * includes the callback itself, so one that changes its own node at each call never ends. While another thread executes
 * the last KORO_Library_Close, KORO_Library_Initialize and KORO_Library_Close return KORO_RETURN_CODE_ERROR in the
 * callback.
 */
typedef void (*KORO_NodeChangedCallback)(KORO_NodeHandle nodeHandle, void* callbackContext);
/* Handle of a registered callback. It serves only to unregister the callback. */
typedef struct KORO_NodeChangedCallback_st* KORO_NodeChangedCallbackHandle;

/** Returns the name, without namespace. It is unique in the map. */
KORO_API KORO_ReturnCode KORO_Node_GetName(KORO_NodeHandle nodeHandle, char* name, size_t* nameSize);

/** Returns the display name, a text for people. */
KORO_API KORO_ReturnCode
KORO_Node_GetDisplayName(KORO_NodeHandle nodeHandle, char* displayName, size_t* displayNameSize);

/** Returns who defined the name: KORO_NODE_NAMESPACE_... */
KORO_API KORO_ReturnCode KORO_Node_GetNamespace(KORO_NodeHandle nodeHandle, KORO_NodeNamespace* _namespace);

/** Returns the audience for which the node is intended: KORO_NODE_VISIBILITY_... */
KORO_API KORO_ReturnCode KORO_Node_GetVisibility(KORO_NodeHandle nodeHandle, KORO_NodeVisibility* visibility);

/**
 * Returns how the node can be accessed now; may read registers.
 * @param[out] accessStatus KORO_NODE_ACCESS_STATUS_...
 */
KORO_API KORO_ReturnCode KORO_Node_GetAccessStatus(KORO_NodeHandle nodeHandle, KORO_NodeAccessStatus* accessStatus);

/** Reports whether the value is cached between reads. */
KORO_API KORO_ReturnCode KORO_Node_GetIsCacheable(KORO_NodeHandle nodeHandle, KORO_Bool8* isCacheable);

/** Reports whether the access status is cached; 0 also when this is not known. */
KORO_API KORO_ReturnCode
KORO_Node_GetIsAccessStatusCacheable(KORO_NodeHandle nodeHandle, KORO_Bool8* isAccessStatusCacheable);

/** Returns how the registers of the node are cached: KORO_NODE_CACHING_MODE_... */
KORO_API KORO_ReturnCode KORO_Node_GetCachingMode(KORO_NodeHandle nodeHandle, KORO_NodeCachingMode* cachingMode);

/**
 * Returns how long cached values of a polled node may be used.
 * @param[out] pollingTime_ms milliseconds; -1 for a node that is not polled. See KORO_NodeMap_PollNodes
 */
KORO_API KORO_ReturnCode KORO_Node_GetPollingTime(KORO_NodeHandle nodeHandle, int64_t* pollingTime_ms);

/** Returns a short text for people; often empty. */
KORO_API KORO_ReturnCode KORO_Node_GetToolTip(KORO_NodeHandle nodeHandle, char* toolTip, size_t* toolTipSize);

/** Returns a longer text for people; often empty. */
KORO_API KORO_ReturnCode
KORO_Node_GetDescription(KORO_NodeHandle nodeHandle, char* description, size_t* descriptionSize);

/** Returns the type that the node can be cast to: KORO_NODE_TYPE_... */
KORO_API KORO_ReturnCode KORO_Node_GetType(KORO_NodeHandle nodeHandle, KORO_NodeType* type);

/** Reports whether the node is a feature, that is, reachable from the category "Root". */
KORO_API KORO_ReturnCode KORO_Node_GetIsFeature(KORO_NodeHandle nodeHandle, KORO_Bool8* isFeature);

/** Reports whether the node is deprecated: new programs should not use it. */
KORO_API KORO_ReturnCode KORO_Node_GetIsDeprecated(KORO_NodeHandle nodeHandle, KORO_Bool8* isDeprecated);

/** Reports whether the value belongs to stored settings (KORO_NodeMap_StoreToFile). */
KORO_API KORO_ReturnCode KORO_Node_GetIsStreamable(KORO_NodeHandle nodeHandle, KORO_Bool8* isStreamable);

/**
 * Returns the map of the node.
 * @param[out] nodeMapHandle the same handle that KORO_Module_GetNodeMap returned
 */
KORO_API KORO_ReturnCode KORO_Node_GetParentNodeMap(KORO_NodeHandle nodeHandle, KORO_NodeMapHandle* nodeMapHandle);

/** Returns the number of nodes that a change of this one invalidates. */
KORO_API KORO_ReturnCode KORO_Node_GetNumInvalidatedNodes(KORO_NodeHandle nodeHandle, size_t* numInvalidatedNodes);

/**
 * Returns one of these nodes by its index.
 * @param[in]  index 0 to their number minus 1
 * @param[out] invalidatedNodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_Node_GetInvalidatedNode(KORO_NodeHandle nodeHandle, size_t index, KORO_NodeHandle* invalidatedNodeHandle);

/**
 * Returns one of these nodes by its name.
 * @param[in]  name name without namespace; need not be zero-terminated
 * @param[in]  nameSize number of bytes including a terminating zero, strlen + 1; the last byte is not read
 * @param[out] invalidatedNodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_NOT_FOUND when the list has no such node
 */
KORO_API KORO_ReturnCode KORO_Node_FindInvalidatedNode(
    KORO_NodeHandle nodeHandle, const char* name, size_t nameSize, KORO_NodeHandle* invalidatedNodeHandle);

/** Returns the number of nodes whose change invalidates this one. */
KORO_API KORO_ReturnCode KORO_Node_GetNumInvalidatingNodes(KORO_NodeHandle nodeHandle, size_t* numInvalidatingNodes);

/**
 * Returns one of these nodes by its index.
 * @param[in]  index 0 to their number minus 1
 * @param[out] invalidatingNodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_Node_GetInvalidatingNode(KORO_NodeHandle nodeHandle, size_t index, KORO_NodeHandle* invalidatingNodeHandle);

/**
 * Returns one of these nodes by its name.
 * @param[in]  name name without namespace; need not be zero-terminated
 * @param[in]  nameSize number of bytes including a terminating zero, strlen + 1; the last byte is not read
 * @param[out] invalidatingNodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_NOT_FOUND when the list has no such node
 */
KORO_API KORO_ReturnCode KORO_Node_FindInvalidatingNode(
    KORO_NodeHandle nodeHandle, const char* name, size_t nameSize, KORO_NodeHandle* invalidatingNodeHandle);

/** Returns the number of nodes that this node selects; 0 for a node that is not a selector. */
KORO_API KORO_ReturnCode KORO_Node_GetNumSelectedNodes(KORO_NodeHandle nodeHandle, size_t* numSelectedNodes);

/**
 * Returns one of these nodes by its index.
 * @param[in]  index 0 to their number minus 1
 * @param[out] selectedNodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_Node_GetSelectedNode(KORO_NodeHandle nodeHandle, size_t index, KORO_NodeHandle* selectedNodeHandle);

/**
 * Returns one of these nodes by its name.
 * @param[in]  name name without namespace; need not be zero-terminated
 * @param[in]  nameSize number of bytes including a terminating zero, strlen + 1; the last byte is not read
 * @param[out] selectedNodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_NOT_FOUND when the list has no such node
 */
KORO_API KORO_ReturnCode KORO_Node_FindSelectedNode(
    KORO_NodeHandle nodeHandle, const char* name, size_t nameSize, KORO_NodeHandle* selectedNodeHandle);

/** Returns the number of selectors that select this selector; 0 for a node that is no selector. */
KORO_API KORO_ReturnCode KORO_Node_GetNumSelectingNodes(KORO_NodeHandle nodeHandle, size_t* numSelectingNodes);

/**
 * Returns one of these nodes by its index.
 * @param[in]  index 0 to their number minus 1
 * @param[out] selectingNodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_Node_GetSelectingNode(KORO_NodeHandle nodeHandle, size_t index, KORO_NodeHandle* selectingNodeHandle);

/**
 * Returns one of these nodes by its name.
 * @param[in]  name name without namespace; need not be zero-terminated
 * @param[in]  nameSize number of bytes including a terminating zero, strlen + 1; the last byte is not read
 * @param[out] selectingNodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_NOT_FOUND when the list has no such node
 */
KORO_API KORO_ReturnCode KORO_Node_FindSelectingNode(
    KORO_NodeHandle nodeHandle, const char* name, size_t nameSize, KORO_NodeHandle* selectingNodeHandle);

/**
 * Casts the node to an integer node. Each call returns the same handle.
 * @param[out] integerNodeHandle ends with the map; unchanged when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when the node is of another type
 */
KORO_API KORO_ReturnCode KORO_Node_ToIntegerNode(KORO_NodeHandle nodeHandle, KORO_IntegerNodeHandle* integerNodeHandle);

/**
 * Casts the node to a boolean node. Each call returns the same handle.
 * @param[out] booleanNodeHandle ends with the map; unchanged when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when the node is of another type
 */
KORO_API KORO_ReturnCode KORO_Node_ToBooleanNode(KORO_NodeHandle nodeHandle, KORO_BooleanNodeHandle* booleanNodeHandle);

/**
 * Casts the node to a command node. Each call returns the same handle.
 * @param[out] commandNodeHandle ends with the map; unchanged when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when the node is of another type
 */
KORO_API KORO_ReturnCode KORO_Node_ToCommandNode(KORO_NodeHandle nodeHandle, KORO_CommandNodeHandle* commandNodeHandle);

/**
 * Casts the node to a float node. Each call returns the same handle.
 * @param[out] floatNodeHandle ends with the map; unchanged when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when the node is of another type
 */
KORO_API KORO_ReturnCode KORO_Node_ToFloatNode(KORO_NodeHandle nodeHandle, KORO_FloatNodeHandle* floatNodeHandle);

/**
 * Casts the node to a string node. Each call returns the same handle.
 * @param[out] stringNodeHandle ends with the map; unchanged when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when the node is of another type
 */
KORO_API KORO_ReturnCode KORO_Node_ToStringNode(KORO_NodeHandle nodeHandle, KORO_StringNodeHandle* stringNodeHandle);

/**
 * Casts the node to a register node. Each call returns the same handle.
 * @param[out] registerNodeHandle ends with the map; unchanged when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when the node is of another type
 */
KORO_API KORO_ReturnCode
KORO_Node_ToRegisterNode(KORO_NodeHandle nodeHandle, KORO_RegisterNodeHandle* registerNodeHandle);

/**
 * Casts the node to a category node. Each call returns the same handle.
 * @param[out] categoryNodeHandle ends with the map; unchanged when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when the node is of another type
 */
KORO_API KORO_ReturnCode
KORO_Node_ToCategoryNode(KORO_NodeHandle nodeHandle, KORO_CategoryNodeHandle* categoryNodeHandle);

/**
 * Casts the node to an enumeration node. Each call returns the same handle.
 * @param[out] enumerationNodeHandle ends with the map; unchanged when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when the node is of another type
 */
KORO_API KORO_ReturnCode
KORO_Node_ToEnumerationNode(KORO_NodeHandle nodeHandle, KORO_EnumerationNodeHandle* enumerationNodeHandle);

/**
 * Casts the node to an enumeration entry node. Each call returns the same handle.
 * @param[out] enumerationEntryNodeHandle ends with the map; unchanged when the node is of another type
 * @return KORO_RETURN_CODE_INVALID_CAST when the node is of another type
 */
KORO_API KORO_ReturnCode KORO_Node_ToEnumerationEntryNode(
    KORO_NodeHandle nodeHandle, KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle);

/**
 * Registers a callback that runs whenever the node may have changed: after a write to the node or to a node that it
 * depends on, when it is invalidated or polled, and when an event or a chunk delivers a value. Takes the lock of the
 * map. The callback may run before this function returns. The callback handle may have the same number as one that was
 * unregistered earlier.
 * @param[in]  callback        called on the thread that causes the change, while it holds the lock of the map
 * @param[in]  callbackContext passed to the callback unchanged; may be null
 * @param[out] callbackHandle  handle for KORO_Node_UnregisterChangedCallback; ends with the unregistration or with the
 *                             map
 */
KORO_API KORO_ReturnCode KORO_Node_RegisterChangedCallback(
    KORO_NodeHandle nodeHandle, KORO_NodeChangedCallback callback, void* callbackContext,
    KORO_NodeChangedCallbackHandle* callbackHandle);

/**
 * Unregisters a changed callback; may be called inside it. An unknown callback handle is ignored. The function takes
 * the lock of the map, so it waits while another thread is inside the callback. The callback does not run after the
 * function has returned.
 * @param[in] callbackHandle the handle that the registration returned
 */
KORO_API KORO_ReturnCode
KORO_Node_UnregisterChangedCallback(KORO_NodeHandle nodeHandle, KORO_NodeChangedCallbackHandle callbackHandle);

#ifdef __cplusplus
}
#endif

#endif
