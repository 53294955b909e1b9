#include "tools/koro/feature_range.h"

#include "tools/koro/feature_value.h"
#include "tools/koro/if_known.h"
#include "tools/koro/report.h"

#include <limits>
#include <nlohmann/json.hpp>

namespace koro::tool
{

namespace
{

using nlohmann::json;

template <typename Read>
void AddIfKnown(json& object, const char* key, const Read& read)
{
    if (auto value = IfKnown(read)) object[key] = *value;
}

template <typename Number>
void AddLimits(json& feature, const Number& node)
{
    AddIfKnown(feature, "unit", [&] { return node.Unit(); });
    if (feature.value("unit", std::string()).empty()) feature.erase("unit");
    AddIfKnown(feature, "minimum", [&] { return node.Minimum(); });
    AddIfKnown(feature, "maximum", [&] { return node.Maximum(); });
    const auto increments = IfKnown([&] { return node.IncrementType(); });
    if (increments == KORO_NODE_INCREMENT_TYPE_FIXED)
        AddIfKnown(feature, "increment", [&] { return node.Increment(); });
    if (increments == KORO_NODE_INCREMENT_TYPE_LIST)
        AddIfKnown(feature, "validValues", [&] { return node.ValidValues(); });
}

void AddEntries(json& feature, const EnumerationNode& node)
{
    json entries = json::array();
    for (const EnumerationEntryNode& entry :
         IfKnown([&] { return node.Entries(); }).value_or(std::vector<EnumerationEntryNode>()))
    {
        const auto status = IfKnown([&] { return entry.Node().AccessStatus(); });
        if (status == KORO_NODE_ACCESS_STATUS_NOT_IMPLEMENTED) continue;
        entries.push_back({
            {"name", entry.SymbolicValue()},
            {"value", entry.Value()},
            {"available", status && *status != KORO_NODE_ACCESS_STATUS_NOT_AVAILABLE},
        });
    }
    feature["entries"] = entries;
}

std::string NumberOf(const json& number, KORO_NodeRepresentation representation)
{
    if (number.is_number_float()) return NumberText(number.get<double>());
    return NumberText(number.get<int64_t>(), representation);
}

KORO_NodeRepresentation RepresentationOf(const json& feature)
{
    return feature.value("representation", int32_t{KORO_NODE_REPRESENTATION_UNDEFINED});
}

std::string AvailableEntries(const json& feature, const char* separator)
{
    std::string text;
    for (const json& entry : feature.at("entries"))
    {
        if (!entry.at("available").get<bool>()) continue;
        text += (text.empty() ? "" : separator) + PrintableStart(entry.at("name").get<std::string>());
    }
    return text;
}

// The ends of a real number's type are no limits.
bool HasLimits(const json& feature)
{
    if (!feature.contains("minimum") || !feature.contains("maximum")) return false;
    constexpr double most = std::numeric_limits<float>::max();
    return !feature.at("minimum").is_number_float() || feature.at("minimum").get<double>() > -most ||
           feature.at("maximum").get<double>() < most;
}

std::string ListText(const json& numbers, KORO_NodeRepresentation representation, const char* separator)
{
    std::string text;
    for (const json& number : numbers)
        text += (text.empty() ? "" : separator) + NumberOf(number, representation);
    return text;
}

} // namespace

void AddRange(json& feature, const Node& node)
{
    switch (node.Type())
    {
    case KORO_NODE_TYPE_INTEGER: {
        const IntegerNode number = node.ToInteger();
        AddLimits(feature, number);
        AddIfKnown(feature, "representation", [&] { return number.Representation(); });
        break;
    }
    case KORO_NODE_TYPE_FLOAT:
        AddLimits(feature, node.ToFloat());
        break;
    case KORO_NODE_TYPE_ENUMERATION:
        AddEntries(feature, node.ToEnumeration());
        break;
    case KORO_NODE_TYPE_STRING:
        AddIfKnown(feature, "maximumLength", [&] { return node.ToString().MaximumLength(); });
        break;
    case KORO_NODE_TYPE_REGISTER:
        AddIfKnown(feature, "length", [&] { return node.ToRegister().Length(); });
        AddIfKnown(feature, "address", [&] { return node.ToRegister().Address(); });
        break;
    default:
        break;
    }
}

std::string RangeText(const json& feature)
{
    const KORO_NodeRepresentation representation = RepresentationOf(feature);
    if (feature.contains("entries")) return AvailableEntries(feature, " | ");
    if (feature.contains("validValues")) return ListText(feature.at("validValues"), representation, " | ");
    if (feature.contains("length")) return feature.at("length").dump() + " bytes";
    if (!HasLimits(feature)) return {};
    std::string text =
        NumberOf(feature.at("minimum"), representation) + ".." + NumberOf(feature.at("maximum"), representation);
    if (feature.contains("increment") && feature.at("increment") != 1)
        text += " by " + NumberOf(feature.at("increment"), KORO_NODE_REPRESENTATION_LINEAR);
    return text;
}

std::string RangeSentence(const Node& node)
{
    json feature = json::object();
    AddRange(feature, node);
    const std::string name = node.Name();
    const KORO_NodeRepresentation representation = RepresentationOf(feature);
    if (feature.contains("entries")) return name + " can be " + AvailableEntries(feature, ", ") + ".";
    if (feature.contains("validValues"))
        return name + " takes " + ListText(feature.at("validValues"), representation, ", ") + ".";
    if (feature.contains("maximumLength"))
        return name + " takes a text of at most " + feature.at("maximumLength").dump() + " bytes.";
    if (!HasLimits(feature)) return {};
    std::string text = name + " takes " + NumberOf(feature.at("minimum"), representation) + " to " +
                       NumberOf(feature.at("maximum"), representation);
    if (feature.contains("increment") && feature.at("increment") != 1)
        text += " in steps of " + NumberOf(feature.at("increment"), KORO_NODE_REPRESENTATION_LINEAR);
    if (feature.contains("unit")) text += " " + PrintableStart(feature.at("unit").get<std::string>());
    return text + ".";
}

} // namespace koro::tool
