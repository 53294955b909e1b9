// Compiled once for each build of the producer; all other sources are shared.
#include "producers/scripted/variant.h"

#ifndef SCRIPTED_MAJOR
#define SCRIPTED_MAJOR 1
#endif
#ifndef SCRIPTED_MINOR
#define SCRIPTED_MINOR 5
#endif
#ifndef SCRIPTED_VERSION_RESULT
#define SCRIPTED_VERSION_RESULT GC_ERR_SUCCESS
#endif
#ifndef SCRIPTED_INIT_RESULT
#define SCRIPTED_INIT_RESULT GC_ERR_SUCCESS
#endif
#ifndef SCRIPTED_CLOSE_RESULT
#define SCRIPTED_CLOSE_RESULT GC_ERR_SUCCESS
#endif

namespace scripted
{

using namespace GenTL;

const Variant variant = {
    .versionMajor = SCRIPTED_MAJOR,
    .versionMinor = SCRIPTED_MINOR,
    .versionResult = SCRIPTED_VERSION_RESULT,
    .initResult = SCRIPTED_INIT_RESULT,
    .closeResult = SCRIPTED_CLOSE_RESULT,
};

} // namespace scripted
