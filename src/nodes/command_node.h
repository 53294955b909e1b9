// CommandNode: a feature that executes a command of the device.
//
// Created and owned by its NodeMap. Thread-safe. Executing holds the lock of the map; queries and waits do not.
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
    // Queries every millisecond and once more at the end. Throws TimeoutException when the command is not done in time.
    void WaitUntilDone(std::uint64_t waitTimeout_ms) const;

private:
    const GENAPI_NAMESPACE::CCommandPtr command;
};

} // namespace koro::internal
