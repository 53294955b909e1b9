#include "nodes/knife_nodes.h"

#include "nodes/enumeration_node.h"
#include "nodes/errors.h"
#include "nodes/node_inline.h"

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const std::string_view entrySuffix = "Entry.";

} // namespace

template <class Number>
void KnifeFormula<Number>::Resolve(const Node& owner)
{
    const Description& source = owner.Source();
    const Span<PropertyRecord> records = source.PropertiesOf(owner.Index());
    for (const PropertyRecord* record = records.begin(); record != records.end(); ++record)
    {
        switch (record->property)
        {
        case Property::FormulaTo:
            inputName = "FROM";
            text = source.Text(record->text);
            break;
        case Property::FormulaFrom:
            inputName = "TO";
            text = source.Text(record->text);
            break;
        case Property::Formula:
            text = source.Text(record->text);
            break;
        case Property::pVariable:
        case Property::pConstant:
        case Property::pExpression: {
            const std::string_view name = source.Text(record[1].text);
            const bool variable = record->property == Property::pVariable;
            variables.push_back({name, owner.Map().At(record->node), variable ? AspectOf(name) : Aspect::Value});
            break;
        }
        default:
            break;
        }
    }
}

template <class Number>
typename KnifeFormula<Number>::Aspect KnifeFormula<Number>::AspectOf(std::string_view name)
{
    const size_t point = name.find('.');
    if (point == std::string_view::npos) return Aspect::Value;
    const std::string_view suffix = name.substr(point + 1);
    const std::string_view suffixes[] = {"Value", "Min", "Max", "Inc", "AccessMode", "Visibility", "CachingMode"};
    for (size_t i = 0; i < std::size(suffixes); ++i)
    {
        if (suffix == suffixes[i]) return static_cast<Aspect>(i);
    }
    return suffix.substr(0, entrySuffix.size()) == entrySuffix ? Aspect::Entry : Aspect::Unknown;
}

template <class Number>
const Formula<Number>& KnifeFormula<Number>::Compiled(const Node& owner)
{
    if (!formula && !failure)
    {
        std::vector<std::string_view> names;
        if (!inputName.empty()) names.push_back(inputName);
        for (const Variable& variable : variables)
            names.push_back(variable.name);
        try
        {
            formula = std::make_unique<const Formula<Number>>(text, names);
        }
        catch (const FormulaError& error)
        {
            failure = std::make_unique<const std::string>(error.reason);
        }
    }
    if (failure)
    {
        throw LogicalError(
            owner, "Error while parsing the formula '" + std::string(text.substr(0, 1000)) + "' : " + *failure);
    }
    return *formula;
}

template <class Number>
Number KnifeFormula<Number>::Evaluate(const Node& owner, Number input, ReadOptions options)
{
    const size_t first = inputName.empty() ? 0 : 1;
    const size_t usual = 16;
    Number small[usual];
    std::vector<Number> large(variables.size() + first > usual ? variables.size() + first : 0);
    Number* const values = large.empty() ? small : large.data();
    values[0] = input;

    for (size_t i = 0; i < variables.size(); ++i)
        values[first + i] = ReadVariable(owner, variables[i], options);
    const Formula<Number>& compiled = Compiled(owner);
    try
    {
        return compiled.Evaluate(values);
    }
    catch (const FormulaError& error)
    {
        throw LogicalError(
            owner, "Error while computing the formula '" + std::string(text.substr(0, 1000)) + "' : " + error.reason);
    }
}

template <class Number>
Number KnifeFormula<Number>::ReadVariable(const Node& owner, const Variable& variable, ReadOptions options) const
{
    Node& node = *variable.node;
    switch (variable.aspect)
    {
    case Aspect::Value:
        return ReadFrom<Number>(node, options);
    case Aspect::Min:
        return MinOf<Number>(node.Available());
    case Aspect::Max:
        return MaxOf<Number>(node.Available());
    case Aspect::Inc:
        return IncOf<Number>(node.Available());
    case Aspect::AccessMode:
        return static_cast<Number>(node.AccessMode());
    case Aspect::Visibility:
        return static_cast<Number>(node.GetVisibility());
    case Aspect::CachingMode:
        return static_cast<Number>(node.CachingMode());
    case Aspect::Entry: {
        const EnumerationNode* const enumeration = dynamic_cast<const EnumerationNode*>(&node);
        const std::string_view name = variable.name.substr(variable.name.find('.') + 1 + entrySuffix.size());
        const EnumEntryNode* const entry = enumeration ? enumeration->EntryNamed(name) : nullptr;
        if (entry) return static_cast<Number>(entry->Number());
        break;
    }
    case Aspect::Unknown:
        break;
    }
    throw RuntimeError(owner, "The variable '" + std::string(variable.name) + "' has no such property.");
}

template <class Number>
EAccessMode KnifeFormula<Number>::Mode() const
{
    EAccessMode mode = RW;
    for (const Variable& variable : variables)
    {
        const EAccessMode own = variable.node->AccessMode();
        if (!IsAvailable(own)) mode = Combine(mode, own);
    }
    return mode;
}

template <class Number>
bool KnifeFormula<Number>::Cachable() const
{
    for (const Variable& variable : variables)
    {
        if (variable.node->CachingMode() == NoCache) return false;
    }
    return true;
}

template class KnifeFormula<int64_t>;
template class KnifeFormula<double>;

template <class Base, class Number>
void KnifeNode<Base, Number>::Resolve()
{
    Base::Resolve();
    formula.Resolve(*this);
}

template <class Base, class Number>
void KnifeNode<Base, Number>::Write(Number, bool)
{
    throw AccessError(*this, "Node is not writable.");
}

template <class Base, class Number>
ECachingMode KnifeNode<Base, Number>::NaturalCaching() const
{
    if (!formula.Cachable()) return NoCache;
    return isInteger<Number> ? WriteThrough : WriteAround;
}

template class KnifeNode<IntegerBase, int64_t>;
template class KnifeNode<FloatBase, double>;

} // namespace GENAPI_NAMESPACE::runtime
