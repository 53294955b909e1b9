#include "xml/description.h"

#include <charconv>

namespace GENAPI_NAMESPACE::runtime
{

Span<PropertyRecord> Description::PropertiesOf(NodeIndex node) const
{
    const NodeRecord& record = nodes[node];
    const PropertyRecord* const first = properties.data() + record.firstProperty;
    return {first, first + record.propertyCount};
}

Span<PropertyRecord> Description::EssentialsOf(NodeIndex node) const
{
    const NodeRecord& record = nodes[node];
    if (record.essentialCount == 0) return PropertiesOf(node);
    const PropertyRecord* const first = properties.data() + record.firstEssential;
    return {first, first + record.essentialCount};
}

const PropertyRecord* Description::Find(NodeIndex node, Property property) const
{
    for (const PropertyRecord& record : EssentialsOf(node))
    {
        if (record.property == property) return &record;
    }
    return nullptr;
}

std::string_view Description::Text(NodeIndex node, Property property) const
{
    const PropertyRecord* const record = Find(node, property);
    return record ? Text(record->text) : std::string_view();
}

std::string Description::ValueText(NodeIndex node, const PropertyRecord& record) const
{
    const Element element = nodes[node].element;
    switch (FormOf(element, record.property))
    {
    case Form::Link:
        return std::string(NameOf(record.node));
    case Form::Number:
        return std::to_string(record.number);
    case Form::Boolean:
        return record.number ? "true" : "false";
    case Form::Word:
        return std::string(WordOf(record.property, static_cast<int>(record.number)));
    case Form::Real: {
        char text[32];
        const auto general = std::chars_format::general;
        return std::string(text, std::to_chars(text, text + sizeof text, record.real, general, 17).ptr);
    }
    default:
        return std::string(Text(record.text));
    }
}

NodeIndex Description::FindNode(std::string_view name) const
{
    const uint32_t found = names.Find(name, [this](NodeIndex node) { return NameOf(node); });
    return found ? found - 1 : noNode;
}

} // namespace GENAPI_NAMESPACE::runtime
