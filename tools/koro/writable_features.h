// Writable features: the values of all features that can be read and written, as records of a feature file, for
// descriptions that do not mark what belongs to the settings. One thread at a time.
#pragma once

#include "tools/koro/feature_file.h"
#include <koro/koro.hpp>

#include <vector>

namespace koro::tool
{

// Of each feature a record for every combination of its selectors in which it can be read and written, then the
// selectors themselves. A feature stands behind those that its limits and its access depend on; where two depend on
// each other the description's order decides. Selectors are moved meanwhile and set back. `TLParamsLocked`, which
// belongs to a running acquisition, is left out. Throws koro::Error, and ToolError for more than a million records.
std::vector<FeatureRecord> WritableFeatures(const NodeMap& nodes);

} // namespace koro::tool
