/*
 * A feature that groups others. The category "Root" holds all features of a map.
 *
 * A handle comes from KORO_Node_ToCategoryNode and ends with the map; there is nothing to destruct. Any thread.
 */
#ifndef KORO_CATEGORY_NODE_H
#define KORO_CATEGORY_NODE_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Gives the number of nodes in the category. */
KORO_API KORO_ReturnCode
KORO_CategoryNode_GetNumSubNodes(KORO_CategoryNodeHandle categoryNodeHandle, size_t* numSubNodes);

/**
 * Gives one node of the category, in the order of the description.
 * @param[in]  index      0 to their number less 1
 * @param[out] nodeHandle the node's own handle; ends with the map
 * @return KORO_RETURN_CODE_ERROR for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_CategoryNode_GetSubNode(KORO_CategoryNodeHandle categoryNodeHandle, size_t index, KORO_NodeHandle* nodeHandle);

/** Gives the node as a plain node: the handle that KORO_NodeMap_FindNode gives for it. */
KORO_API KORO_ReturnCode
KORO_CategoryNode_ToNode(KORO_CategoryNodeHandle categoryNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
