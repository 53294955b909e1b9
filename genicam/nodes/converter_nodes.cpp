#include "nodes/converter_nodes.h"

#include "nodes/node_inline.h"

#include <algorithm>
#include <limits>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

// One limit of the value, sent through the formula; which one, the slope tells. An automatic slope is found out by the
// limits of the first time and stays. `through` computes the value of a limit.
template <class Through>
auto LimitBySlope(ESlope& slope, bool upper, const Through& through)
{
    if (slope == Automatic) slope = through(true) < through(false) ? Decreasing : Increasing;
    return through(slope == Decreasing ? !upper : upper);
}

EAccessMode ModeOf(const Node& value, const Node& to, const Node& from)
{
    EAccessMode mode = value.AccessMode();
    for (const Node* const formula : {&to, &from})
    {
        if (!IsAvailable(formula->AccessMode())) mode = Combine(mode, formula->AccessMode());
    }
    return mode;
}

ECachingMode CachingOf(const Node& value, const Node& to, const Node& from)
{
    if (to.CachingMode() == NoCache || from.CachingMode() == NoCache) return NoCache;
    return value.CachingMode() == WriteThrough ? WriteAround : value.CachingMode();
}

} // namespace

void IntegerConverter::Resolve()
{
    IntegerBase::Resolve();
    value = Linked(Property::pValue);
    to = dynamic_cast<IntegerKnife*>(Linked(Property::pConvertTo));
    from = dynamic_cast<IntegerKnife*>(Linked(Property::pConvertFrom));
    slope = static_cast<ESlope>(NumberOf(Property::Slope, Automatic));
}

int64_t IntegerConverter::Read(ReadOptions options)
{
    return from->Compute(value->ReadInteger(options), options);
}

void IntegerConverter::Write(int64_t written, bool verify)
{
    value->WriteInteger(to->Compute(written, {verify, false}), verify);
}

int64_t IntegerConverter::Limit(bool upper)
{
    if (slope == Varying) return upper ? GC_INT64_MAX : GC_INT64_MIN;
    return LimitBySlope(slope, upper, [this](bool max) { return LimitThroughFormula(max); });
}

int64_t IntegerConverter::LimitThroughFormula(bool upper)
{
    Node& target = value->Available();
    return from->Compute(upper ? target.IntegerMax() : target.IntegerMin(), {});
}

EAccessMode IntegerConverter::NaturalMode() const
{
    return ModeOf(*value, *to, *from);
}

ECachingMode IntegerConverter::NaturalCaching() const
{
    return CachingOf(*value, *to, *from);
}

void FloatConverter::Resolve()
{
    FloatBase::Resolve();
    value = Linked(Property::pValue);
    to = dynamic_cast<FloatKnife*>(Linked(Property::pConvertTo));
    from = dynamic_cast<FloatKnife*>(Linked(Property::pConvertFrom));
    slope = static_cast<ESlope>(NumberOf(Property::Slope, Automatic));
}

double FloatConverter::Read(ReadOptions options)
{
    return from->Compute(value->ReadReal(options), options);
}

void FloatConverter::Write(double written, bool verify)
{
    value->WriteReal(to->Compute(written, {verify, false}), verify);
}

double FloatConverter::Limit(bool upper)
{
    if (slope == Varying) return upper ? FloatBase::RealMax() : FloatBase::RealMin();
    const double limit = LimitBySlope(slope, upper, [this](bool max) { return LimitThroughFormula(max); });
    return std::clamp(limit, FloatBase::RealMin(), FloatBase::RealMax()); // doubles stop at the largest
}

double FloatConverter::LimitThroughFormula(bool upper)
{
    Node& target = value->Available();
    return from->Compute(upper ? target.RealMax() : target.RealMin(), {});
}

bool FloatConverter::HasRealInc()
{
    return Says(Property::IsLinear) && value->HasRealInc();
}

double FloatConverter::RealInc()
{
    if (!HasRealInc()) return FloatBase::RealInc();
    const double inc = from->Compute(value->Available().RealInc(), {});
    return slope == Decreasing ? -inc : inc;
}

EAccessMode FloatConverter::NaturalMode() const
{
    return ModeOf(*value, *to, *from);
}

ECachingMode FloatConverter::NaturalCaching() const
{
    return CachingOf(*value, *to, *from);
}

} // namespace GENAPI_NAMESPACE::runtime
