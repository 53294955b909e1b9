/* The functions as C sees them: widths of the types, the usual pair of calls, and the last error. */
#include "check.h"
#include <koro/koro.h>

#include <string.h>

_Static_assert(sizeof(KORO_ReturnCode) == 4, "return codes are 32-bit");
_Static_assert((KORO_ReturnCode)-1 < 0, "return codes are signed");
_Static_assert(sizeof(KORO_Bool8) == 1, "flags are one byte");
_Static_assert(sizeof(KORO_BufferHandle) == sizeof(void*), "handles are pointer-sized");
_Static_assert(sizeof(size_t) == 8, "sizes are 64-bit");
_Static_assert(KORO_INFINITE == 0xFFFFFFFFFFFFFFFF, "all bits set means no end");
_Static_assert(KORO_RETURN_CODE_NO_DATA == 18, "the numbers never change");

static void ReadsTheLastErrorByTheUsualPair(void)
{
    static const char expected[] = "bufferHandle is invalid!";
    KORO_ReturnCode code = KORO_RETURN_CODE_SUCCESS;
    size_t size = 0;
    char* text = NULL;

    CHECK(KORO_Buffer_GetSize(NULL, &size) == KORO_RETURN_CODE_INVALID_HANDLE);
    CHECK(KORO_Library_GetLastError(&code, NULL, &size) == KORO_RETURN_CODE_SUCCESS);
    CHECK(code == KORO_RETURN_CODE_INVALID_HANDLE);
    CHECK(size == sizeof expected);

    text = malloc(size);
    CHECK(text != NULL);
    CHECK(KORO_Library_GetLastError(&code, text, &size) == KORO_RETURN_CODE_SUCCESS);
    CHECK(strcmp(text, expected) == 0);
    free(text);
}

static void WritesFlagsOfOneByte(void)
{
    KORO_Bool8 flags[3] = {0x5a, 0x5a, 0x5a};
    CHECK(KORO_Library_IsInitialized(&flags[1]) == KORO_RETURN_CODE_SUCCESS);
    CHECK(flags[0] == 0x5a);
    CHECK(flags[1] == 1);
    CHECK(flags[2] == 0x5a);
}

int main(void)
{
    CHECK(KORO_Library_Initialize() == KORO_RETURN_CODE_SUCCESS);
    ReadsTheLastErrorByTheUsualPair();
    WritesFlagsOfOneByte();
    CHECK(KORO_Library_Close() == KORO_RETURN_CODE_SUCCESS);
    return 0;
}
