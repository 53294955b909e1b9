// The words of the kit, as the simulator uses them.
#pragma once

#include "producers/kit/gentl.h"

namespace koro::simulator
{
using namespace kit; // NOLINT(google-build-using-namespace): the simulator is written in the words of the kit
}
