/*
 * A command: a feature that makes the device do something.
 *
 * A handle comes from KORO_Node_ToCommandNode and ends with the map; do not destruct it. Any thread may call these
 * functions. Getters may read registers, on the calling thread, and may wait for another thread that uses the same map;
 * writes hold the lock of the map. A call that GenApi refuses fails with GenApi's own text: KORO_RETURN_CODE_BAD_ACCESS
 * for a command that cannot be executed now, KORO_RETURN_CODE_ERROR in most other cases. A register transfer that fails
 * returns the code and the text of the producer's failure.
 */
#ifndef KORO_COMMAND_NODE_H
#define KORO_COMMAND_NODE_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Starts the command. Does not wait until it is done. Changed callbacks run on the calling thread before the function
 * returns.
 * @return KORO_RETURN_CODE_BAD_ACCESS for a command that cannot be executed now
 */
KORO_API KORO_ReturnCode KORO_CommandNode_Execute(KORO_CommandNodeHandle commandNodeHandle);

/**
 * Reports whether the command is done. After an execution each call reads the register of the command until it reports
 * the end. The call that finds the end runs the changed callbacks, on the calling thread.
 * @param[out] isDone 1 if it is done; also 1 for a command whose state cannot be read or that was not executed
 */
KORO_API KORO_ReturnCode KORO_CommandNode_GetIsDone(KORO_CommandNodeHandle commandNodeHandle, KORO_Bool8* isDone);

/**
 * Waits until the command is done, by querying it every millisecond. The lock of the map is not held during the pauses.
 * @param[in] waitTimeout_ms milliseconds; 0 queries twice without a pause
 * @return KORO_RETURN_CODE_TIMEOUT when the command is not done in time; a failure of a query ends the wait and is
 *         returned
 */
KORO_API KORO_ReturnCode
KORO_CommandNode_WaitUntilDone(KORO_CommandNodeHandle commandNodeHandle, uint64_t waitTimeout_ms);

/**
 * Works like KORO_CommandNode_WaitUntilDone without a timeout: the wait ends only when the command is done or a query
 * fails.
 */
KORO_API KORO_ReturnCode KORO_CommandNode_WaitUntilDoneInfinite(KORO_CommandNodeHandle commandNodeHandle);

/** Returns the node as a general Node: the same handle that KORO_NodeMap_FindNode returns. */
KORO_API KORO_ReturnCode KORO_CommandNode_ToNode(KORO_CommandNodeHandle commandNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
