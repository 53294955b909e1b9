/*
 * A feature that does something.
 *
 * A handle comes from KORO_Node_ToCommandNode and ends with the map; there is nothing to destruct. Any thread. Getters
 * may read registers, on this thread, and wait for another thread that works on the same map; writes hold the lock of
 * the map. What GenApi refuses arrives with GenApi's own text: KORO_RETURN_CODE_BAD_ACCESS for a command that cannot be
 * executed at this time, KORO_RETURN_CODE_ERROR for most else. A transfer that fails arrives with the code and the text
 * of the producer's failure.
 */
#ifndef KORO_COMMAND_NODE_H
#define KORO_COMMAND_NODE_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Starts the command; does not wait for its end. Changed callbacks run before it returns, on this thread.
 * @return KORO_RETURN_CODE_BAD_ACCESS for a command that cannot be executed at this time
 */
KORO_API KORO_ReturnCode KORO_CommandNode_Execute(KORO_CommandNodeHandle commandNodeHandle);

/**
 * Tells whether the command has come to its end. Reads the register from an execution to the answer that it is done;
 * changed callbacks run with that answer, on this thread.
 * @param[out] isDone 1 also for a command that cannot tell or was not executed
 */
KORO_API KORO_ReturnCode KORO_CommandNode_GetIsDone(KORO_CommandNodeHandle commandNodeHandle, KORO_Bool8* isDone);

/**
 * Asks each millisecond until the command has come to its end. The lock of the map is free meanwhile.
 * @param[in] waitTimeout_ms milliseconds; 0 asks twice without a pause
 * @return KORO_RETURN_CODE_TIMEOUT when the command goes on; the failure of an answer ends the wait
 */
KORO_API KORO_ReturnCode
KORO_CommandNode_WaitUntilDone(KORO_CommandNodeHandle commandNodeHandle, uint64_t waitTimeout_ms);

/** As KORO_CommandNode_WaitUntilDone without a time-out: only the command's end or a failing answer ends it. */
KORO_API KORO_ReturnCode KORO_CommandNode_WaitUntilDoneInfinite(KORO_CommandNodeHandle commandNodeHandle);

/** Gives the node as a plain node: the handle that KORO_NodeMap_FindNode gives for it. */
KORO_API KORO_ReturnCode KORO_CommandNode_ToNode(KORO_CommandNodeHandle commandNodeHandle, KORO_NodeHandle* nodeHandle);

#ifdef __cplusplus
}
#endif

#endif
