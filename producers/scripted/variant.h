// Variant: what one build of the scripted producer does by itself, before any test speaks to it.
#pragma once

#include "gentl/api/gentl.h"

#include <cstdint>

namespace scripted
{

class Script;

struct Variant
{
    std::uint32_t versionMajor;
    std::uint32_t versionMinor;
    GenTL::GC_ERROR versionResult; // of the queries of both numbers
    GenTL::GC_ERROR initResult;
    GenTL::GC_ERROR closeResult;
    bool leavesThreads;             // one for each start: lingering_thread.h
    void (*behave)(Script& script); // run at load and at each Reset(); may be null
};

extern const Variant variant;

} // namespace scripted
