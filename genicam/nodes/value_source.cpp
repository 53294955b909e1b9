#include "nodes/value_source.h"

#include "nodes/number_access.h"

#include <algorithm>
#include <limits>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

// The restriction by a node that is only required to exist: none if it is available.
EAccessMode Presence(const Node& node)
{
    const EAccessMode mode = node.AccessMode();
    return IsAvailable(mode) ? RW : mode;
}

} // namespace

template <class Number>
void ValueSource<Number>::Resolve(const Node& resolved)
{
    owner = &resolved;
    const Span<PropertyRecord> records = owner->Source().PropertiesOf(owner->Index());
    for (const PropertyRecord* record = records.begin(); record != records.end(); ++record)
    {
        const auto node = [&] { return owner->Map().At(record->node); };
        const auto number = [&] { return NumberIn<Number>(*record); };
        switch (record->property)
        {
        case Property::Value:
        case Property::ValueDefault:
            otherwise.constant = number();
            break;
        case Property::pValueDefault:
            otherwise.node = node();
            break;
        case Property::pValue:
            main = node();
            [[fallthrough]];
        case Property::pValueCopy:
            targets.push_back(node());
            break;
        case Property::pIndex:
            index = node();
            break;
        case Property::ValueIndexed:
            choices.push_back({record[1].number, nullptr, number()});
            break;
        case Property::pValueIndexed:
            choices.push_back({record[1].number, node(), Number()});
            break;
        default:
            break;
        }
    }
}

template <class Number>
typename ValueSource<Number>::Choice& ValueSource<Number>::Chosen(ReadOptions options)
{
    if (!index) return otherwise;
    const int64_t wanted = index->ReadInteger(options);
    for (Choice& choice : choices)
    {
        if (choice.index == wanted) return choice;
    }
    return otherwise;
}

template <class Number>
Node* ValueSource<Number>::Target() const
{
    return main ? main : Chosen().node;
}

template <class Number>
Number ValueSource<Number>::Min() const
{
    if (!main && Target()) return MinOf<Number>(Target()->Available());
    Number min = std::numeric_limits<Number>::lowest();
    for (Node* const target : targets)
        min = std::max(min, MinOf<Number>(target->Available()));
    return min;
}

template <class Number>
Number ValueSource<Number>::Max() const
{
    if (!main && Target()) return MaxOf<Number>(Target()->Available());
    Number max = std::numeric_limits<Number>::max();
    for (Node* const target : targets)
        max = std::min(max, MaxOf<Number>(target->Available()));
    return max;
}

template <class Number>
Number ValueSource<Number>::Read(ReadOptions options)
{
    if (main) return ReadFrom<Number>(*main, options);
    const Choice& choice = Chosen({false, options.ignoreCache});
    return choice.node ? ReadFrom<Number>(*choice.node, options) : choice.constant;
}

template <class Number>
void ValueSource<Number>::Write(Number value, bool verify)
{
    for (Node* const target : targets)
        WriteTo(*target, value, verify);
    if (main) return;
    Choice& choice = Chosen();
    if (choice.node)
    {
        WriteTo(*choice.node, value, verify);
    }
    else
    {
        owner->Map().DropDependents(*owner);
        owner->Map().CountWrite();
        choice.constant = value;
    }
}

template <class Number>
EAccessMode ValueSource<Number>::Mode() const
{
    if (index)
    {
        const EAccessMode mode = index->AccessMode();
        if (!IsReadable(mode)) return mode == NI ? NI : NA;
        const Choice& choice = Chosen();
        return choice.node ? choice.node->AccessMode() : RW;
    }
    if (!main) return RW;
    EAccessMode mode = main->AccessMode();
    for (const Node* const target : targets)
    {
        if (target == main) continue;
        mode = Combine(mode, target->AccessMode() == RO ? RO : Presence(*target));
    }
    return mode;
}

template <class Number>
ECachingMode ValueSource<Number>::Caching(ECachingMode ofConstant) const
{
    ECachingMode mode = main ? main->CachingMode() : ofConstant;
    const auto needs = [&mode](const Node* node) {
        if (node) mode = Combine(mode, node->CachingMode());
    };
    for (const Node* const target : targets)
        needs(target);
    needs(index);
    for (const Choice& choice : choices)
        needs(choice.node);
    needs(otherwise.node);
    return mode;
}

template class ValueSource<int64_t>;
template class ValueSource<double>;

} // namespace GENAPI_NAMESPACE::runtime
