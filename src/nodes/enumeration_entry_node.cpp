#include "nodes/enumeration_entry_node.h"

#include "nodes/text.h"

namespace koro::internal
{

bool EnumerationEntryNode::IsSelfClearing() const
{
    return Ask([&] { return entry->IsSelfClearing(); });
}

std::string EnumerationEntryNode::SymbolicValue() const
{
    return AskInBothLayers([&] { return ToText(entry->GetSymbolic()); });
}

std::int64_t EnumerationEntryNode::Value() const
{
    return Ask([&] { return entry->GetValue(); });
}

} // namespace koro::internal
