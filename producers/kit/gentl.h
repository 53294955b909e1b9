// The GenTL header as this producer sees it: functions exported, names usable without prefix inside the kit.
#pragma once

#ifndef GENTL_PRODUCER
#define GENTL_PRODUCER
#endif
#include "gentl/api/gentl.h"

#include <cstdint>

namespace koro::kit
{
using namespace GenTL; // NOLINT(google-build-using-namespace): the kit is written in the words of the standard
}
