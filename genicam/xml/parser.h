// ReadDescription: converts the XML text of a camera description to flat records.
#pragma once

#include "xml/description.h"

namespace GENAPI_NAMESPACE::runtime
{

// Bounds of what a description may be; beyond them it is refused.
const size_t maxDescriptionSize = 256u << 20; // bytes
const unsigned maxElementDepth = 256;
const size_t maxNodes = 1u << 20;
const size_t maxProperties = 1u << 24;

// Its links are not resolved yet (links.h). Throws RuntimeException, or PropertyException for a number that does not
// convert; the text says what and where. Lenient about the order of children, about unknown elements and attributes, a
// missing name space, and zero bytes or white space behind the root element.
std::shared_ptr<Description> ReadDescription(std::string_view xml);

} // namespace GENAPI_NAMESPACE::runtime
