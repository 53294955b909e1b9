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
    // Unlike all other reads this one has the access checked when the cache is to be ignored, and may use the cache.
    void Read(std::uint8_t* data, std::size_t size, CachePolicy policy) const;
    void Write(const std::uint8_t* data, std::size_t size);

private:
    const GENAPI_NAMESPACE::CRegisterPtr bytes;
};

} // namespace koro::internal
