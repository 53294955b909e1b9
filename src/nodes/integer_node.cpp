#include "nodes/integer_node.h"

#include "nodes/text.h"
#include "nodes/valid_values.h"

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

std::int64_t IntegerNode::Minimum() const
{
    return Ask([&] { return value->GetMin(); });
}

std::int64_t IntegerNode::Maximum() const
{
    return Ask([&] { return value->GetMax(); });
}

std::int64_t IntegerNode::Increment() const
{
    return Ask([&] { return value->GetInc(); });
}

EIncMode IntegerNode::IncrementType() const
{
    return Ask([&] { return value->GetIncMode(); });
}

std::vector<std::int64_t> IntegerNode::ValidValues() const
{
    return AskInBothLayers([&] { return ToVector<std::int64_t>(value->GetListOfValidValues(true)); });
}

ERepresentation IntegerNode::Representation() const
{
    return Ask([&] { return value->GetRepresentation(); });
}

std::string IntegerNode::Unit() const
{
    return AskInBothLayers([&] { return ToText(value->GetUnit()); });
}

std::int64_t IntegerNode::Value(CachePolicy policy) const
{
    return Ask([&] { return value->GetValue(false, IgnoresCache(policy)); });
}

void IntegerNode::SetValue(std::int64_t newValue)
{
    AskLocked([&] { value->SetValue(newValue, true); });
}

} // namespace koro::internal
