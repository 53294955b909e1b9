// EnumerationNode: a feature whose value is one of a list of entries.
//
// Created and owned by its NodeMap. Thread-safe. Reads take no lock of the library; a write holds the lock of the map.
#pragma once

#include "nodes/node.h"

#include <GenApi/Pointer.h>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace koro::internal
{

class EnumerationEntryNode;

class EnumerationNode final : public Node
{
public:
    EnumerationNode(GENAPI_NAMESPACE::INode* node, const std::weak_ptr<NodeMap>& nodeMap)
        : Node(node, nodeMap), value(node)
    {}

    // Reads the value. Throws InternalErrorException or NotFoundException for a value without an entry.
    std::shared_ptr<EnumerationEntryNode> CurrentEntry(CachePolicy policy);
    // For an entry of another enumeration only its number counts. Throws InvalidArgumentException when there is no
    // entry with that number.
    void SetCurrentEntry(const std::shared_ptr<EnumerationEntryNode>& entry);
    void SetCurrentEntry(std::int64_t entryValue);
    void SetCurrentEntry(const std::string& symbolicValue);

    // All entries, available or not, in the order of the description; built on first use and never updated. Of several
    // entries with the same number or name the first is found. The Find functions throw NotFoundException, the TryFind
    // functions return an empty reference; neither accesses the device.
    const std::vector<std::shared_ptr<EnumerationEntryNode>>& Entries();
    std::shared_ptr<EnumerationEntryNode> FindEntry(std::int64_t entryValue);
    std::shared_ptr<EnumerationEntryNode> FindEntry(const std::string& symbolicValue);
    std::shared_ptr<EnumerationEntryNode> TryFindEntry(std::int64_t entryValue);
    std::shared_ptr<EnumerationEntryNode> TryFindEntry(const std::string& symbolicValue);

private:
    struct EntryTable
    {
        std::vector<std::shared_ptr<EnumerationEntryNode>> entries;
        std::unordered_map<std::string, std::shared_ptr<EnumerationEntryNode>> bySymbolicValue;
        std::unordered_map<std::int64_t, std::shared_ptr<EnumerationEntryNode>> byValue;
    };

    const EntryTable& EnsureEntries();
    EntryTable BuildEntries();

    BuiltOnce<EntryTable> entryTable;
    const GENAPI_NAMESPACE::CEnumerationPtr value;
};

} // namespace koro::internal
