// RegisterNode: a feature with raw bytes.
//
// Created and owned by its NodeMap. Thread-safe. Reads take no lock of the library; a write holds the lock of the map.
#pragma once

#include "nodes/node.h"

#include <GenApi/Pointer.h>
#include <cstddef>
#include <cstdint>

namespace koro::internal
{

class RegisterNode final : public Node
{
public:
    RegisterNode(GENAPI_NAMESPACE::INode* node, const std::weak_ptr<NodeMap>& nodeMap)
        : Node(node, nodeMap), bytes(node)
    {}

    std::uint64_t Address() const;
    std::size_t Length() const;
    // Unlike all other reads, this one passes "ignore the cache" as GenApi's Verify: the error nodes are then checked,
    // and the cache may be used.
    void Read(std::uint8_t* data, std::size_t size, CachePolicy policy) const;
    void Write(const std::uint8_t* data, std::size_t size);

private:
    const GENAPI_NAMESPACE::CRegisterPtr bytes;
};

} // namespace koro::internal
