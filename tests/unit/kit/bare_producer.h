// A producer in the test's own process: a system without interfaces, whose claimed version and watch a test sets before
// it calls GCInitLib.
#pragma once

#include "producers/kit/call_watch.h"
#include "producers/kit/version.h"

#include <memory>

namespace kit_test
{

struct BareProducer
{
    koro::kit::GenTLVersion claimed = koro::kit::newestVersion;
    bool answersNewerFunctions = false;
    bool initIsStrict = false;
    std::shared_ptr<koro::kit::CallWatch> watch;
    bool cannotStart = false;
};

// What the next start makes.
BareProducer& Next();

} // namespace kit_test
