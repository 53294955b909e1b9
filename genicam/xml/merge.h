// Merge: combines two descriptions.
#pragma once

#include "xml/links.h"

namespace GENAPI_NAMESPACE::runtime
{

// Returns `base` with the nodes of `injected`, whose source gets the number `source`. Of two nodes with one name the
// one with the higher merge priority stays; it takes over the other's pInvalidator and pSelected, and a category also
// the pFeature. Two categories of equal priority are joined; two identical nodes become one; other nodes of equal
// priority raise a RuntimeException. The information about the device is that of the base. Links are not resolved.
std::shared_ptr<Description> Merge(
    const Description& base, const Description& injected, uint8_t source, const SourceTexts& sources);

} // namespace GENAPI_NAMESPACE::runtime
