// ReadDescription: converts the XML text of a camera description to flat records.
#pragma once

#include "xml/description.h"

namespace GENAPI_NAMESPACE::runtime
{

// The bounds beyond which a description is refused.
const size_t maxDescriptionSize = 256u << 20; // bytes
const unsigned maxElementDepth = 256;
const size_t maxNodes = 1u << 20;
const size_t maxProperties = 1u << 24;

// The links of the result are not resolved yet (links.h). Throws RuntimeException, or PropertyException for a number
// that does not convert; the text states error and position. Accepts any order of children, unknown elements and
// attributes, a missing namespace, and zero bytes or white space after the root element.
std::shared_ptr<Description> ReadDescription(std::string_view xml);

} // namespace GENAPI_NAMESPACE::runtime
