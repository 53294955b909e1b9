// The nodes that selectors select: those that pSelected names, and those that read these.
#pragma once

#include "xml/links.h"

namespace GENAPI_NAMESPACE::runtime
{

// The limit for the links that are followed, over all selectors.
const size_t maxSelectionSteps = 1u << 24;

// Fills `selected`, `selecting` and `namedBy`. The parents must be filled already; pSelected must not form circles.
// Throws RuntimeException.
void FillSelection(Description& description, const SourceTexts& sources);

} // namespace GENAPI_NAMESPACE::runtime
