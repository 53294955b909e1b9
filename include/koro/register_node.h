/*
 * A feature with raw bytes.
 *
 * A handle comes from KORO_Node_ToRegisterNode and ends with the map; there is nothing to destruct. Any thread. Getters
 * may read registers, on this thread, and wait for another thread that works on the same map; writes hold the lock of
 * the map. What GenApi refuses arrives with GenApi's own text: KORO_RETURN_CODE_BAD_ACCESS for a node that cannot be
 * read or written at this time, KORO_RETURN_CODE_OUT_OF_RANGE for a length that it does not have,
 * KORO_RETURN_CODE_ERROR for most else. A transfer that fails arrives with the code and the text of the producer's
 * failure.
 */
#ifndef KORO_REGISTER_NODE_H
#define KORO_REGISTER_NODE_H

#include <koro/node_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Gives the address of the register in its port. */
KORO_API KORO_ReturnCode KORO_RegisterNode_GetAddress(KORO_RegisterNodeHandle registerNodeHandle, uint64_t* address);

/** Gives the length of the register in bytes. */
KORO_API KORO_ReturnCode KORO_RegisterNode_GetLength(KORO_RegisterNodeHandle registerNodeHandle, size_t* length);

/**
 * Reads the bytes. Unlike other reads this one may use the cache whatever the policy says.
 * @param[in]  cachePolicy KORO_NODE_CACHE_POLICY_IGNORE_CACHE has the node's error nodes looked at after the reading,
 *                         as writes do; all other numbers do not
 * @param[out] data        room for dataSize bytes
 * @param[in]  dataSize    at most the length of the register: its first bytes are read
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for more bytes than the register has;
 *         KORO_RETURN_CODE_BAD_ACCESS for a node that cannot be read at this time
 */
KORO_API KORO_ReturnCode KORO_RegisterNode_Read(
    KORO_RegisterNodeHandle registerNodeHandle, KORO_NodeCachePolicy cachePolicy, uint8_t* data, size_t dataSize);

/**
 * Writes the bytes. Changed callbacks run before it returns, on this thread.
 * @param[in] data     dataSize bytes
 * @param[in] dataSize at most the length of the register: its first bytes are written
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for more bytes than the register has;
 *         KORO_RETURN_CODE_BAD_ACCESS for a node that cannot be written at this time
 */
KORO_API KORO_ReturnCode
KORO_RegisterNode_Write(KORO_RegisterNodeHandle registerNodeHandle, const uint8_t* data, size_t dataSize);

/** Gives the node as a plain node: the handle that KORO_NodeMap_FindNode gives for it. */
KORO_API KORO_ReturnCode
KORO_RegisterNode_ToNode(KORO_RegisterNodeHandle registerNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
