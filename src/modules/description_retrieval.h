// Retrieval: from what a module's port says of its descriptions to the node maps of the module.
//
// Reads the descriptions, but parses nothing: the maps do, when they are used. Any thread; no lock is held.
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
// fetched, in their order. What fails with a single one of them is passed over without a word; whatever else fails,
// such as asking for the port's name, throws.
std::vector<std::shared_ptr<NodeMap>> RetrieveNodeMaps(Module& module);

// Fetches what one URL names, in one transfer. Throws InternalErrorException for a URL that does not lead into the
// registers of the port or cannot be understood, and whatever the transfer throws.
NodeMapDescription FetchDescription(const PortURL& url);

} // namespace koro::internal
