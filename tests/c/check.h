/* CHECK: ends the program with the line and the condition when it does not hold. */
#ifndef KORO_TESTS_C_CHECK_H
#define KORO_TESTS_C_CHECK_H

#include <stdio.h>
#include <stdlib.h>

#define CHECK(condition)                                                                                               \
    do                                                                                                                 \
    {                                                                                                                  \
        if (!(condition))                                                                                              \
        {                                                                                                              \
            fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition);                                    \
            exit(EXIT_FAILURE);                                                                                        \
        }                                                                                                              \
    } while (0)

#endif
