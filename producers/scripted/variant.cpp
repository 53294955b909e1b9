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
#ifndef SCRIPTED_LEAVES_THREADS
#define SCRIPTED_LEAVES_THREADS false
#endif

#ifdef SCRIPTED_BEHAVIOUR
#include "producers/scripted/wild/producer.h"
#define SCRIPTED_BEHAVE [](Script& script) { wild::Behave(script, wild::SCRIPTED_BEHAVIOUR); }
#else
#define SCRIPTED_BEHAVE nullptr
#endif

namespace scripted
{

#ifdef SCRIPTED_BEHAVIOUR
namespace wild
{

void SCRIPTED_BEHAVIOUR(Producer& producer);

}
#endif

using namespace GenTL;

const Variant variant = {
    .versionMajor = SCRIPTED_MAJOR,
    .versionMinor = SCRIPTED_MINOR,
    .versionResult = SCRIPTED_VERSION_RESULT,
    .initResult = SCRIPTED_INIT_RESULT,
    .closeResult = SCRIPTED_CLOSE_RESULT,
    .leavesThreads = SCRIPTED_LEAVES_THREADS,
    .behave = SCRIPTED_BEHAVE,
};

} // namespace scripted
