// Retrieval: creates the node maps of a module from the descriptions that its port offers.
//
// Reads the descriptions but does not parse them: the maps do this when they are used. Thread-safe; no lock is held.
#pragma once

#include "nodes/node_map_description.h"

#include <memory>
#include <vector>

namespace koro::internal
{

class Module;
class NodeMap;
class PortURL;

// First a description file for debugging beside the producer, if there is one, then one map for each URL that can be
// fetched, in their order. The failure of a single one is ignored; any other failure, such as a query for the port's
// name, throws.
std::vector<std::shared_ptr<NodeMap>> RetrieveNodeMaps(Module& module);

// Fetches the description at one URL, in one transfer. Throws InternalErrorException for a URL that does not refer to
// registers of the port or cannot be parsed, and any exception of the transfer.
NodeMapDescription FetchDescription(const PortURL& url);

} // namespace koro::internal
