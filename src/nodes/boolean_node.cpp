#include "nodes/boolean_node.h"

namespace koro::internal
{

bool BooleanNode::Value(CachePolicy policy) const
{
    return Ask([&] { return value->GetValue(false, IgnoresCache(policy)); });
}

void BooleanNode::SetValue(bool newValue)
{
    AskLocked([&] { value->SetValue(newValue, true); });
}

} // namespace koro::internal
