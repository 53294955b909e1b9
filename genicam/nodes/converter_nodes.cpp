#include "nodes/converter_nodes.h"

#include "nodes/node_inline.h"

#include <algorithm>
#include <limits>

namespace GENAPI_NAMESPACE::runtime
{

template <class Base, class Number>
void ConverterNode<Base, Number>::Resolve()
{
    Base::Resolve();
    value = this->Linked(Property::pValue);
    to = dynamic_cast<KnifeNode<Base, Number>*>(this->Linked(Property::pConvertTo));
    from = dynamic_cast<KnifeNode<Base, Number>*>(this->Linked(Property::pConvertFrom));
    slope = static_cast<ESlope>(this->NumberOf(Property::Slope, Automatic));
}

template <class Base, class Number>
Number ConverterNode<Base, Number>::Read(ReadOptions options)
{
    return from->Compute(ReadFrom<Number>(*value, options), options);
}

template <class Base, class Number>
void ConverterNode<Base, Number>::Write(Number written, bool verify)
{
    WriteTo(*value, to->Compute(written, {verify, false}), verify);
}

// One limit of the value, converted by the formula. The slope determines which limit it becomes. Doubles stop at the
// largest number.
template <class Base, class Number>
Number ConverterNode<Base, Number>::Limit(bool upper)
{
    const Number lowest = std::numeric_limits<Number>::lowest();
    const Number highest = std::numeric_limits<Number>::max();
    if (slope == Varying) return upper ? highest : lowest;
    if (slope == Automatic) slope = LimitThroughFormula(true) < LimitThroughFormula(false) ? Decreasing : Increasing;
    return std::clamp(LimitThroughFormula(slope == Decreasing ? !upper : upper), lowest, highest);
}

template <class Base, class Number>
Number ConverterNode<Base, Number>::LimitThroughFormula(bool upper)
{
    Node& target = value->Available();
    return from->Compute(upper ? MaxOf<Number>(target) : MinOf<Number>(target), {});
}

template <class Base, class Number>
EAccessMode ConverterNode<Base, Number>::LinkedMode() const
{
    EAccessMode mode = value->AccessMode();
    for (const Node* const formula : {to, from})
    {
        if (!IsAvailable(formula->AccessMode())) mode = Combine(mode, formula->AccessMode());
    }
    return mode;
}

template <class Base, class Number>
ECachingMode ConverterNode<Base, Number>::NaturalCaching() const
{
    if (to->CachingMode() == NoCache || from->CachingMode() == NoCache) return NoCache;
    return value->CachingMode() == WriteThrough ? WriteAround : value->CachingMode();
}

template class ConverterNode<IntegerBase, int64_t>;
template class ConverterNode<FloatBase, double>;

bool FloatConverter::HasRealInc()
{
    const Descent descent(*this);
    return Says(Property::IsLinear) && Target().HasRealInc();
}

double FloatConverter::RealInc()
{
    if (!HasRealInc()) return FloatBase::RealInc();
    const double inc = FromTarget(IncOf<double>(Target().Available()), {});
    return Falls() ? -inc : inc;
}

} // namespace GENAPI_NAMESPACE::runtime
