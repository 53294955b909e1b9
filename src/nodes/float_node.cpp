#include "nodes/float_node.h"

#include "nodes/text.h"
#include "nodes/valid_values.h"

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

double FloatNode::Minimum() const
{
    return Ask([&] { return value->GetMin(); });
}

double FloatNode::Maximum() const
{
    return Ask([&] { return value->GetMax(); });
}

bool FloatNode::HasConstantIncrement() const
{
    return Ask([&] { return value->HasInc(); });
}

double FloatNode::Increment() const
{
    return Ask([&] { return value->GetInc(); });
}

EIncMode FloatNode::IncrementType() const
{
    return Ask([&] { return value->GetIncMode(); });
}

std::vector<double> FloatNode::ValidValues() const
{
    return AskInBothLayers([&] { return ToVector<double>(value->GetListOfValidValues(true)); });
}

ERepresentation FloatNode::Representation() const
{
    return Ask([&] { return value->GetRepresentation(); });
}

std::string FloatNode::Unit() const
{
    return AskInBothLayers([&] { return ToText(value->GetUnit()); });
}

EDisplayNotation FloatNode::DisplayNotation() const
{
    return Ask([&] { return value->GetDisplayNotation(); });
}

std::int64_t FloatNode::DisplayPrecision() const
{
    return Ask([&] { return value->GetDisplayPrecision(); });
}

double FloatNode::Value(CachePolicy policy) const
{
    return Ask([&] { return value->GetValue(false, IgnoresCache(policy)); });
}

void FloatNode::SetValue(double newValue)
{
    AskLocked([&] { value->SetValue(newValue, true); });
}

} // namespace koro::internal
