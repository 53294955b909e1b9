#include "nodes/enumeration_node.h"

#include "base/exceptions.h"
#include "nodes/enumeration_entry_node.h"
#include "nodes/text.h"

#include <GenApi/Container.h>

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

namespace
{

template <class Table, class Key>
std::shared_ptr<EnumerationEntryNode> Look(const Table& table, const Key& key)
{
    const auto found = table.find(key);
    return found == table.end() ? nullptr : found->second;
}

} // namespace

std::shared_ptr<EnumerationEntryNode> EnumerationNode::CurrentEntry(CachePolicy policy)
{
    return AskInBothLayers([&] {
        IEnumEntry* const current = value->GetCurrentEntry(false, IgnoresCache(policy));
        if (!current)
        {
            throw InternalErrorException("EnumerationNode CurrentEntry not found. This should not be possible.");
        }
        return FindEntry(current->GetValue());
    });
}

void EnumerationNode::SetCurrentEntry(const std::shared_ptr<EnumerationEntryNode>& entry)
{
    const auto nodeMap = ParentNodeMap();
    if (!entry)
    {
        throw InvalidArgumentException("EnumerationNode::SetCurrentEntry(const std::shared_ptr<EnumerationEntryNode>&) "
                                       "was given an empty shared_ptr!");
    }
    SetCurrentEntry(entry->Value());
}

void EnumerationNode::SetCurrentEntry(std::int64_t entryValue)
{
    AskLocked([&] { WithStandardExceptionsAsInternalErrors([&] { value->SetIntValue(entryValue, true); }); });
}

void EnumerationNode::SetCurrentEntry(const std::string& symbolicValue)
{
    SetCurrentEntry(FindEntry(symbolicValue));
}

const std::vector<std::shared_ptr<EnumerationEntryNode>>& EnumerationNode::Entries()
{
    return Ask([&]() -> const auto& { return EnsureEntries().entries; });
}

std::shared_ptr<EnumerationEntryNode> EnumerationNode::FindEntry(std::int64_t entryValue)
{
    auto entry = TryFindEntry(entryValue);
    if (entry) return entry;
    throw NotFoundException(
        "There is no enumeration entry node with the given value (" + std::to_string(entryValue) + ")!");
}

std::shared_ptr<EnumerationEntryNode> EnumerationNode::FindEntry(const std::string& symbolicValue)
{
    auto entry = TryFindEntry(symbolicValue);
    if (entry) return entry;
    throw NotFoundException(
        "There is no enumeration entry node with the given symbolic value (" + symbolicValue + ")!");
}

std::shared_ptr<EnumerationEntryNode> EnumerationNode::TryFindEntry(std::int64_t entryValue)
{
    return AskInBothLayers([&] { return Look(EnsureEntries().byValue, entryValue); });
}

std::shared_ptr<EnumerationEntryNode> EnumerationNode::TryFindEntry(const std::string& symbolicValue)
{
    return AskInBothLayers([&] { return Look(EnsureEntries().bySymbolicValue, symbolicValue); });
}

const EnumerationNode::EntryTable& EnumerationNode::EnsureEntries()
{
    return entryTable.Get([&] { return BuildEntries(); });
}

EnumerationNode::EntryTable EnumerationNode::BuildEntries()
{
    const auto nodeMap = ParentNodeMap();
    node_vector genApiEntries;
    value->GetEntries(genApiEntries);

    EntryTable table;
    for (const INode* const genApiEntry : genApiEntries)
    {
        const auto node = nodeMap->FindNode(ToText(genApiEntry->GetName(false)));
        const auto entry = std::dynamic_pointer_cast<EnumerationEntryNode>(node);
        if (!entry) throw InternalErrorException("Node cannot be cast to an enumeration entry node!");
        table.entries.push_back(entry);
        table.bySymbolicValue.emplace(entry->SymbolicValue(), entry);
        table.byValue.emplace(entry->Value(), entry);
    }
    return table;
}

} // namespace koro::internal
