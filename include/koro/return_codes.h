/*
 * The answers of every export. The number says the kind of failure; the text of the fact is read on the same thread by
 * KORO_Library_GetLastError. The numbers never change.
 */
#ifndef KORO_RETURN_CODES_H
#define KORO_RETURN_CODES_H

#include <stdint.h>

/* A signed 32-bit integer and not the enumeration, so that its width is the same for every compiler. */
typedef int32_t KORO_ReturnCode;

enum KORO_ReturnCodes
{
    /* done; the last error is not touched */
    KORO_RETURN_CODE_SUCCESS = 0,
    /* any failure without a code of its own, also a broken promise of the producer */
    KORO_RETURN_CODE_ERROR = 1,
    /* KORO_Library_Initialize has not been called, or the last KORO_Library_Close has ended the library meanwhile */
    KORO_RETURN_CODE_NOT_INITIALIZED = 2,
    /* a wait was ended by a kill */
    KORO_RETURN_CODE_ABORTED = 3,
    /* in use, opened elsewhere, or not readable or writable */
    KORO_RETURN_CODE_BAD_ACCESS = 4,
    /* the producer has no memory left */
    KORO_RETURN_CODE_BAD_ALLOC = 5,
    /* the caller's buffer is too small; ask for the size with a null buffer */
    KORO_RETURN_CODE_BUFFER_TOO_SMALL = 6,
    /* no register at this address */
    KORO_RETURN_CODE_INVALID_ADDRESS = 7,
    /* a null pointer, or a value that makes no sense */
    KORO_RETURN_CODE_INVALID_ARGUMENT = 8,
    /* the node is not of this type */
    KORO_RETURN_CODE_INVALID_CAST = 9,
    /* null, of another kind, or its object has gone */
    KORO_RETURN_CODE_INVALID_HANDLE = 10,
    /* nothing has this name or id */
    KORO_RETURN_CODE_NOT_FOUND = 11,
    /* an index beyond the list, or a value beyond its limits */
    KORO_RETURN_CODE_OUT_OF_RANGE = 12,
    /* the time ran out */
    KORO_RETURN_CODE_TIMEOUT = 13,
    /* not at this time, in this state or for this payload */
    KORO_RETURN_CODE_NOT_AVAILABLE = 14,
    /* the producer does not offer it */
    KORO_RETURN_CODE_NOT_IMPLEMENTED = 15,
    /* the producer file cannot be loaded */
    KORO_RETURN_CODE_CTI_LOADING_ERROR = 16,
    /* the connection failed or is lost, or a file cannot be written to its end */
    KORO_RETURN_CODE_IO_ERROR = 17,
    /* nothing to work on for this request */
    KORO_RETURN_CODE_NO_DATA = 18
};

#endif
