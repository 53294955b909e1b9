#include "nodes/string_node.h"

#include "nodes/text.h"

namespace koro::internal
{

std::int64_t StringNode::MaximumLength() const
{
    return Ask([&] { return value->GetMaxLength(); });
}

std::string StringNode::Value(CachePolicy policy) const
{
    return AskInBothLayers([&] { return ToText(value->GetValue(false, IgnoresCache(policy))); });
}

void StringNode::SetValue(const std::string& newValue)
{
    AskLocked([&] { value->SetValue(ToGenApiText(newValue), true); });
}

} // namespace koro::internal
