// Compares the conditions of an update with a device.
#pragma once

#include "firmware/update_record.h"

#include <GenApi/INodeMap.h>

namespace GENAPI_NAMESPACE::runtime
{

// All conditions hold. A feature that is not there or cannot be read and a pattern that does not work hold nothing.
bool Matches(INodeMap& map, const std::vector<Condition>& conditions);

// The feature's text. LogicalErrorException: it is not there; else the node's own.
std::string TextOf(INodeMap& map, const std::string& feature);
// LogicalErrorException: it is not there or has no value.
IValue& ValueOf(INodeMap& map, const std::string& feature);

} // namespace GENAPI_NAMESPACE::runtime
