// Merge: combines two descriptions.
#pragma once

#include "xml/links.h"

namespace GENAPI_NAMESPACE::runtime
{

// `base` with the nodes of `injected`, whose source gets the number `source`. Of two nodes of one name the one of
// higher merge priority stays; it takes over the other's pInvalidator and pSelected, a category its pFeature too. Two
// categories of equal priority are joined; two nodes that say the same are one; other nodes of equal priority are a
// RuntimeException. What the description says of the device is the base's. Links are not resolved.
std::shared_ptr<Description> Merge(
    const Description& base, const Description& injected, uint8_t source, const SourceTexts& sources);

} // namespace GENAPI_NAMESPACE::runtime
