#include "xml/description_builder.h"

#include "base/quoted.h"
#include "xml/numbers.h"
#include "xml/parser.h"

#include <algorithm>
#include <bitset>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

// The parts of a knife or a converter.
struct FormulaParts
{
    struct Expression
    {
        PropertyRecord link;
        PropertyRecord name;
        TextPlace formula;
    };
    std::vector<PropertyRecord> shared; // variables and constants, each with its name
    std::vector<Expression> expressions;
    std::vector<PropertyRecord> rest;

    explicit FormulaParts(const std::vector<PropertyRecord>& all)
    {
        for (size_t i = 0; i < all.size(); ++i)
        {
            switch (all[i].property)
            {
            case Property::pVariable:
            case Property::pConstant:
                shared.insert(shared.end(), {all[i], all[i + 1]});
                i += 1;
                break;
            case Property::pExpression:
                expressions.push_back({all[i], all[i + 1], all[i + 2].text});
                i += 2;
                break;
            default:
                rest.push_back(all[i]);
                break;
            }
        }
    }

    TextPlace Formula(Property wanted) const
    {
        return std::find_if(
                   rest.begin(), rest.end(), [wanted](const PropertyRecord& r) { return r.property == wanted; })
            ->text;
    }
};

} // namespace

TextPlace DescriptionBuilder::Store(std::string_view text)
{
    if (text.size() > maxDescriptionSize - description->texts.size()) throw reader.Error("the texts are too long");
    const TextPlace place = {static_cast<uint32_t>(description->texts.size()), static_cast<uint32_t>(text.size())};
    description->texts.append(text);
    return place;
}

NodeIndex DescriptionBuilder::Mention(std::string_view name)
{
    const NodeIndex known = description->FindNode(name);
    if (known != noNode) return known;
    if (description->nodes.size() >= maxNodes) throw reader.Error("more nodes than this runtime takes");
    const NodeIndex node = static_cast<NodeIndex>(description->nodes.size());
    NodeRecord record = {};
    record.name = Store(name);
    record.sourceOffset = reader.Offset();
    record.madeBy = noNode;
    description->nodes.push_back(record);
    if (!description->names.Add(name, node)) throw reader.Error("too many names are alike to this runtime");
    return node;
}

NodeIndex DescriptionBuilder::Define(std::string_view name, Element element, NodeIndex madeBy)
{
    const NodeIndex node = Mention(name);
    NodeRecord& record = description->nodes[node];
    if (record.element != Element::None)
    {
        throw reader.Error("Found a duplicate node " + Quoted(name));
    }
    record.element = element;
    record.sourceOffset = reader.Offset();
    record.madeBy = madeBy;
    return node;
}

PropertyRecord DescriptionBuilder::Read(Element element, Property read, std::string_view value)
{
    PropertyRecord record = NumberRecord(read, 0);
    switch (FormOf(element, read))
    {
    case Form::Link:
        record.node = Mention(value);
        break;
    case Form::FilledText:
        if (value.empty()) throw reader.Error("length is less than minimum allowed");
        record.text = Store(value);
        break;
    case Form::Text:
        record.text = Store(value);
        break;
    case Form::Number:
        record.number = Number(runtime::NameOf(read), value);
        break;
    case Form::Real:
        if (!ParseReal(value, record.real)) throw reader.Error("invalid double value: " + Quoted(value));
        break;
    case Form::Boolean:
        record.number = value == "true" || value == "1";
        if (!record.number && value != "false" && value != "0")
            throw reader.Error("invalid boolean value: " + Quoted(value));
        break;
    case Form::Word:
        record.number = WordNumber(element, read, value);
        if (record.number < 0) throw reader.Error("value is not in enumeration: " + Quoted(value));
        break;
    }
    return record;
}

int64_t DescriptionBuilder::Number(std::string_view name, std::string_view value) const
{
    int64_t number = 0;
    if (!ParseNumber(value, number))
    {
        throw PROPERTY_EXCEPTION(
            "Error in property of type '%.*s' at line %lu%s: cannot convert %s to int64_t",
            static_cast<int>(name.size()), name.data(), reader.Line(), reader.Where().c_str(), Quoted(value).c_str());
    }
    return number;
}

std::string DescriptionBuilder::MadeUpName(NodeIndex owner, std::string_view suffix) const
{
    return "_" + std::string(NameOf(owner)) + "_" + std::string(suffix);
}

void DescriptionBuilder::Finish(NodeIndex node, const std::vector<PropertyRecord>& properties)
{
    if (properties.size() > maxProperties - description->properties.size())
    {
        throw reader.Error("more properties than this runtime takes");
    }
    NodeRecord& record = description->nodes[node];
    record.firstProperty = static_cast<uint32_t>(description->properties.size());
    record.propertyCount = static_cast<uint32_t>(properties.size());
    description->properties.insert(description->properties.end(), properties.begin(), properties.end());
}

// Each entry inherits the properties that it does not have; address parts, length, port and byte order are always
// inherited.
void DescriptionBuilder::FinishStruct(const NodeDraft& draft, const StructEntries& entries)
{
    for (const auto& [node, own] : entries)
    {
        std::bitset<static_cast<size_t>(Property::Count)> said;
        for (const PropertyRecord& record : own)
            said.set(static_cast<size_t>(record.property));
        std::vector<PropertyRecord> merged;
        merged.reserve(draft.properties.size() + own.size());
        for (const PropertyRecord& shared : draft.properties)
        {
            const bool replaced =
                Takes(Element::StructEntry, shared.property) && said.test(static_cast<size_t>(shared.property));
            if (!replaced) merged.push_back(shared);
        }
        merged.insert(merged.end(), own.begin(), own.end());
        Finish(node, merged);
    }
}

// The expressions, the knife itself or the two formulas of a converter: each sees the variables, the constants and the
// expressions before it.
void DescriptionBuilder::FinishFormulas(const NodeDraft& draft)
{
    FormulaParts parts(draft.properties);
    const auto finish = [&](NodeIndex node, size_t expressionCount, const std::vector<PropertyRecord>& own) {
        std::vector<PropertyRecord> records = own;
        records.insert(records.end(), parts.shared.begin(), parts.shared.end());
        for (size_t i = 0; i < expressionCount; ++i)
            records.insert(records.end(), {parts.expressions[i].link, parts.expressions[i].name});
        Finish(node, records);
    };
    const size_t count = parts.expressions.size();
    for (size_t i = 0; i < count; ++i)
    {
        const FormulaParts::Expression& expression = parts.expressions[i];
        finish(expression.link.node, i, {TextRecord(Property::Formula, expression.formula)});
    }
    if (draft.element == Element::IntSwissKnife || draft.element == Element::SwissKnife)
    {
        finish(draft.node, count, parts.rest);
        return;
    }

    const std::string name(NameOf(draft.node));
    const Element knife = draft.element == Element::Converter ? Element::SwissKnife : Element::IntSwissKnife;
    const NodeIndex to = Define(name + "_ConvertTo", knife, draft.node);
    const NodeIndex from = Define(name + "_ConvertFrom", knife, draft.node);
    finish(to, count, {TextRecord(Property::FormulaTo, parts.Formula(Property::FormulaTo))});
    finish(from, count, {TextRecord(Property::FormulaFrom, parts.Formula(Property::FormulaFrom))});
    parts.rest.push_back(LinkRecord(Property::pConvertTo, to));
    parts.rest.push_back(LinkRecord(Property::pConvertFrom, from));
    Finish(draft.node, parts.rest);
}

} // namespace GENAPI_NAMESPACE::runtime
