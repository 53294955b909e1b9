// CommandNode: a feature that does something.
//
// Made and owned by its NodeMap. Any thread. Executing holds the map's lock; asking and waiting do not.
#pragma once

#include "nodes/node.h"

#include <GenApi/Pointer.h>
#include <cstdint>

namespace koro::internal
{

class CommandNode final : public Node
{
public:
    CommandNode(GENAPI_NAMESPACE::INode* node, const std::weak_ptr<NodeMap>& nodeMap)
        : Node(node, nodeMap), command(node)
    {}

    void Execute();
    bool IsDone() const;
    // Asks each millisecond, and once more at the end. Throws TimeoutException when the command goes on.
    void WaitUntilDone(std::uint64_t waitTimeout_ms) const;

private:
    const GENAPI_NAMESPACE::CCommandPtr command;
};

} // namespace koro::internal
