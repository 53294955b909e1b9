// The data of an event port.
#pragma once

#include "adapters/hex_id.h"
#include "adapters/map_link.h"
#include "nodes/port_node.h"

#include <GenApi/EventPort.h>
#include <vector>

namespace GENAPI_NAMESPACE
{

struct CEventPort::Data
{
    // The node, while there is one.
    runtime::Node* Node() const { return map.Get() ? node : nullptr; }
    runtime::PortNode* PortNode() const { return map.Get() ? portNode : nullptr; }

    runtime::MapLink map;
    runtime::Node* node = nullptr;
    runtime::PortNode* portNode = nullptr; // the same node, when it is a port
    runtime::HexId id;
    bool turned = false; // from the description
    bool delivered = false;
    std::vector<uint8_t> bytes;
};

} // namespace GENAPI_NAMESPACE
