/*
 * A feature with raw bytes.
 *
 * A handle comes from KORO_Node_ToRegisterNode and ends with the map; do not destruct it. Any thread may call these
 * functions. Getters may read registers, on the calling thread, and may wait for another thread that uses the same map;
 * writes hold the lock of the map. A call that GenApi refuses fails with GenApi's own text: KORO_RETURN_CODE_BAD_ACCESS
 * for a node that cannot be read or written now, KORO_RETURN_CODE_OUT_OF_RANGE for a length beyond that of the
 * register, KORO_RETURN_CODE_ERROR in most other cases. A register transfer that fails returns the code and the text of
 * the producer's failure.
 */
#ifndef KORO_REGISTER_NODE_H
#define KORO_REGISTER_NODE_H

#include <koro/node_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Returns the address of the register in its port. */
KORO_API KORO_ReturnCode KORO_RegisterNode_GetAddress(KORO_RegisterNodeHandle registerNodeHandle, uint64_t* address);

/** Returns the length of the register in bytes. */
KORO_API KORO_ReturnCode KORO_RegisterNode_GetLength(KORO_RegisterNodeHandle registerNodeHandle, size_t* length);

/**
 * Reads the bytes. Unlike other reads, this one may use the cache with either cache policy.
 * @param[in]  cachePolicy KORO_NODE_CACHE_POLICY_IGNORE_CACHE makes the read check the error nodes of the node
 *                         afterwards, as writes do; other numbers do not
 * @param[out] data        buffer for dataSize bytes
 * @param[in]  dataSize    number of bytes to read from the start of the register; at most its length
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for more bytes than the register has; KORO_RETURN_CODE_BAD_ACCESS for a node
 *         that cannot be read now
 */
KORO_API KORO_ReturnCode KORO_RegisterNode_Read(
    KORO_RegisterNodeHandle registerNodeHandle, KORO_NodeCachePolicy cachePolicy, uint8_t* data, size_t dataSize);

/**
 * Writes the bytes. Changed callbacks run on the calling thread before the function returns.
 * @param[in] data     dataSize bytes
 * @param[in] dataSize number of bytes to write to the start of the register; at most its length
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for more bytes than the register has; KORO_RETURN_CODE_BAD_ACCESS for a node
 *         that cannot be written now
 */
KORO_API KORO_ReturnCode
KORO_RegisterNode_Write(KORO_RegisterNodeHandle registerNodeHandle, const uint8_t* data, size_t dataSize);

/** Returns the node as a general Node: the same handle that KORO_NodeMap_FindNode returns. */
KORO_API KORO_ReturnCode
KORO_RegisterNode_ToNode(KORO_RegisterNodeHandle registerNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
