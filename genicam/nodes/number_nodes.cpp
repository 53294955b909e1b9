#include "nodes/number_nodes.h"

#include "nodes/node_inline.h"

#include <algorithm>
#include <charconv>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

// Integers separated by semicolons; blanks are allowed; anything else ends the list.
std::vector<int64_t> ParseValidValues(std::string_view text)
{
    std::vector<int64_t> values;
    const auto skipBlanks = [&text] {
        const size_t start = text.find_first_not_of(" \t\r\n");
        text.remove_prefix(std::min(start, text.size()));
    };
    for (;;)
    {
        skipBlanks();
        int64_t value = 0;
        const std::from_chars_result read = std::from_chars(text.data(), text.data() + text.size(), value);
        if (read.ec != std::errc()) return values;
        values.push_back(value);
        text.remove_prefix(static_cast<size_t>(read.ptr - text.data()));
        skipBlanks();
        if (text.empty() || text[0] != ';') return values;
        text.remove_prefix(1);
    }
}

} // namespace

void IntegerNode::Resolve()
{
    IntegerBase::Resolve();
    source.Resolve(*this);
}

EAccessMode IntegerNode::LinkedMode() const
{
    return Combine(source.Mode(), LimitMode());
}

int64_t IntegerNode::IntegerMin()
{
    const auto written = WrittenLimit<int64_t>(*this, Property::Min, Property::pMin);
    return written ? *written : source.Min();
}

int64_t IntegerNode::IntegerMax()
{
    const auto written = WrittenLimit<int64_t>(*this, Property::Max, Property::pMax);
    return written ? *written : source.Max();
}

int64_t IntegerNode::IntegerInc()
{
    if (const auto written = WrittenLimit<int64_t>(*this, Property::Inc, Property::pInc)) return *written;
    Node* const target = source.Target();
    return target ? IncOf<int64_t>(target->Available()) : 1;
}

std::vector<int64_t> IntegerNode::ValidValues() const
{
    const PropertyRecord* const own = Find(Property::ValidValueSet);
    return own ? ParseValidValues(Source().Text(own->text)) : IntegerBase::ValidValues();
}

void FloatNode::Resolve()
{
    FloatBase::Resolve();
    source.Resolve(*this);
}

EAccessMode FloatNode::LinkedMode() const
{
    return Combine(source.Mode(), LimitMode());
}

ECachingMode FloatNode::NaturalCaching() const
{
    const ECachingMode mode = source.Caching(WriteAround);
    return mode == WriteThrough ? WriteAround : mode;
}

double FloatNode::RealMin()
{
    const auto written = WrittenLimit<double>(*this, Property::Min, Property::pMin);
    return written ? *written : source.Min();
}

double FloatNode::RealMax()
{
    const auto written = WrittenLimit<double>(*this, Property::Max, Property::pMax);
    return written ? *written : source.Max();
}

bool FloatNode::HasRealInc()
{
    if (Find(Property::Inc) || Find(Property::pInc)) return true;
    if (source.Indexed()) return false;
    const Descent descent(*this);
    Node* const target = source.Target();
    return target && target->HasRealInc();
}

double FloatNode::RealInc()
{
    if (const auto written = WrittenLimit<double>(*this, Property::Inc, Property::pInc)) return *written;
    return HasRealInc() ? IncOf<double>(source.Target()->Available()) : FloatBase::RealInc();
}

} // namespace GENAPI_NAMESPACE::runtime
