#include "tools/koro/switched_features.h"

#include "tools/koro/feature_session.h"
#include "tools/koro/feature_value.h"
#include "tools/koro/if_known.h"
#include "tools/koro/report.h"
#include "tools/koro/tool_error.h"

#include <stdexcept>

namespace koro::tool
{

namespace
{

constexpr const char* owner = "remote device";

std::vector<std::string> EntryNames(const EnumerationNode& node)
{
    std::vector<std::string> names;
    for (const EnumerationEntryNode& entry : node.Entries())
        names.push_back(entry.SymbolicValue());
    return names;
}

} // namespace

SwitchedFeatures::~SwitchedFeatures()
{
    for (auto change = changes.rbegin(); change != changes.rend(); ++change)
    {
        try
        {
            Restore(*change);
        }
        catch (const std::runtime_error&)
        {
            // The camera may have gone.
        }
    }
}

void SwitchedFeatures::Switch(const std::string& feature, const std::string& on)
{
    const Node node = FindFeature(nodes, feature, owner);
    std::string before = ReadValue(node);
    if (before == on) return;
    WriteValue(node, on);
    changes.push_back({feature, std::move(before), {}, {}});
}

void SwitchedFeatures::SwitchEntries(
    const std::string& selector, const std::string& feature, const std::string& on,
    const std::vector<std::string>& entries)
{
    const EnumerationNode chosen = FindFeature(nodes, selector, owner).ToEnumeration();
    for (const std::string& entry : entries)
    {
        if (!chosen.HasEntry(entry))
        {
            throw ToolError(
                selector + " has no entry \"" + PrintableStart(entry) + "\".", ThereAre(EntryNames(chosen)),
                exitNoSuchFeature);
        }
    }
    const std::string before = ReadValue(chosen.Node());
    for (const std::string& entry : entries)
        SwitchEntry(selector, entry, feature, on);
    WriteValue(chosen.Node(), before);
}

void SwitchedFeatures::SwitchAllEntries(const std::string& selector, const std::string& feature, const std::string& on)
{
    const EnumerationNode chosen = FindFeature(nodes, selector, owner).ToEnumeration();
    const std::string before = ReadValue(chosen.Node());
    for (const EnumerationEntryNode& entry : chosen.Entries())
        IfKnown([&] { return SwitchEntry(selector, entry.SymbolicValue(), feature, on), true; });
    WriteValue(chosen.Node(), before);
}

void SwitchedFeatures::SwitchEntry(
    const std::string& selector, const std::string& entry, const std::string& feature, const std::string& on)
{
    WriteValue(nodes.Node(selector), entry);
    const Node node = FindFeature(nodes, feature, owner);
    std::string before = ReadValue(node);
    if (before == on) return;
    WriteValue(node, on);
    changes.push_back({feature, std::move(before), selector, entry});
}

void SwitchedFeatures::Restore(const Change& change) const
{
    if (change.selector.empty()) return WriteValue(nodes.Node(change.feature), change.before);
    const Node selector = nodes.Node(change.selector);
    const std::string before = ReadValue(selector);
    WriteValue(selector, change.entry);
    WriteValue(nodes.Node(change.feature), change.before);
    WriteValue(selector, before);
}

} // namespace koro::tool
