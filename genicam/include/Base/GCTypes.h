// GCTypes.h: number types, their limits and the version record.
#pragma once

#include <Base/GCNamespace.h>
#include <stddef.h>
#include <stdint.h>

typedef float float32_t;
typedef double float64_t;

#define GC_INT8_MAX INT8_MAX
#define GC_INT8_MIN INT8_MIN
#define GC_UINT8_MAX UINT8_MAX
#define GC_INT32_MAX INT32_MAX
#define GC_INT32_MIN INT32_MIN
#define GC_UINT32_MAX UINT32_MAX
#define GC_INT64_MAX INT64_MAX
#define GC_INT64_MIN INT64_MIN
#define GC_UINT64_MAX UINT64_MAX

// Length modifier for a 64-bit number in a format of printf: "%" FMT_I64 "d".
#if defined(__LP64__)
#define FMT_I64 "l"
#else
#define FMT_I64 "ll"
#endif

namespace GENICAM_NAMESPACE
{

struct Version_t
{
    uint16_t Major;
    uint16_t Minor;
    uint16_t SubMinor;
};

} // namespace GENICAM_NAMESPACE

using GENICAM_NAMESPACE::Version_t;
