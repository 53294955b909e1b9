/*
 * A category: a node that groups features. The category "Root" contains all features of a map.
 *
 * A handle comes from KORO_Node_ToCategoryNode and ends with the map; there is no function to destruct it. Any thread
 * may call these functions.
 */
#ifndef KORO_CATEGORY_NODE_H
#define KORO_CATEGORY_NODE_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Returns the number of nodes in the category. */
KORO_API KORO_ReturnCode
KORO_CategoryNode_GetNumSubNodes(KORO_CategoryNodeHandle categoryNodeHandle, size_t* numSubNodes);

/**
 * Returns one node of the category, in the order of the description.
 * @param[in]  index      0 to their number minus 1
 * @param[out] nodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_ERROR for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_CategoryNode_GetSubNode(KORO_CategoryNodeHandle categoryNodeHandle, size_t index, KORO_NodeHandle* nodeHandle);

/** Returns the node as a general Node: the same handle that KORO_NodeMap_FindNode returns. */
KORO_API KORO_ReturnCode
KORO_CategoryNode_ToNode(KORO_CategoryNodeHandle categoryNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
