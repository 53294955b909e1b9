// What selectors select: what pSelected names, and what reads that.
#pragma once

#include "xml/description.h"

namespace GENAPI_NAMESPACE::runtime
{

// Bound of the links that are followed, over all selectors.
const size_t maxSelectionSteps = 1u << 26;

// Fills `selected` and `selecting`. The parents must be there; pSelected must have no circles. Throws RuntimeException.
void FillSelection(Description& description);

} // namespace GENAPI_NAMESPACE::runtime
