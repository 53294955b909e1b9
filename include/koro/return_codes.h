/*
 * The return codes of all functions. The code states the kind of failure; KORO_Library_GetLastError returns the details
 * as a text, on the same thread. The numbers never change.
 */
#ifndef KORO_RETURN_CODES_H
#define KORO_RETURN_CODES_H

#include <stdint.h>

/* A signed 32-bit integer instead of the enumeration, so that its size is the same for every compiler. */
typedef int32_t KORO_ReturnCode;

enum KORO_ReturnCodes
{
    /* success; the last error is not changed */
    KORO_RETURN_CODE_SUCCESS = 0,
    /* any failure that has no code below; also a violation of the GenTL standard by the producer */
    KORO_RETURN_CODE_ERROR = 1,
    /*
     * KORO_Library_Initialize has not been called, or the last KORO_Library_Close has closed the library during the
     * call
     */
    KORO_RETURN_CODE_NOT_INITIALIZED = 2,
    /* a kill function or the end of the object ended the wait */
    KORO_RETURN_CODE_ABORTED = 3,
    /* in use, opened elsewhere, or not readable or writable */
    KORO_RETURN_CODE_BAD_ACCESS = 4,
    /* the producer is out of memory */
    KORO_RETURN_CODE_BAD_ALLOC = 5,
    /* the caller's buffer is too small; query the size with a null buffer */
    KORO_RETURN_CODE_BUFFER_TOO_SMALL = 6,
    /* there is no register at this address */
    KORO_RETURN_CODE_INVALID_ADDRESS = 7,
    /* a null pointer, or a value that is not allowed */
    KORO_RETURN_CODE_INVALID_ARGUMENT = 8,
    /* the node is not of this type */
    KORO_RETURN_CODE_INVALID_CAST = 9,
    /* the handle is null or of another kind, or its object has ended */
    KORO_RETURN_CODE_INVALID_HANDLE = 10,
    /* nothing has this name or id */
    KORO_RETURN_CODE_NOT_FOUND = 11,
    /* an index beyond the end of a list, or a value beyond its limits */
    KORO_RETURN_CODE_OUT_OF_RANGE = 12,
    /* the timeout has expired */
    KORO_RETURN_CODE_TIMEOUT = 13,
    /* not available now, in this state or for this payload */
    KORO_RETURN_CODE_NOT_AVAILABLE = 14,
    /* the producer does not implement it */
    KORO_RETURN_CODE_NOT_IMPLEMENTED = 15,
    /* the producer file cannot be loaded */
    KORO_RETURN_CODE_CTI_LOADING_ERROR = 16,
    /* the connection has failed or is lost, or a file cannot be written completely */
    KORO_RETURN_CODE_IO_ERROR = 17,
    /* there is no data for this request */
    KORO_RETURN_CODE_NO_DATA = 18
};

#endif
