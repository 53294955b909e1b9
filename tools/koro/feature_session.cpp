#include "tools/koro/feature_session.h"

#include "tools/koro/assignments.h"
#include "tools/koro/discovery.h"
#include "tools/koro/report.h"
#include "tools/koro/tool_error.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>

namespace koro::tool
{

namespace
{

constexpr size_t maxSuggestions = 8;

std::string LowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

// Features whose name holds the wish, or is held by it, whatever the case of letters.
std::string Suggestions(const NodeMap& nodes, const std::string& name)
{
    const std::string wish = LowerCase(name);
    std::string text;
    size_t number = 0;
    for (const Node& node : nodes.Nodes())
    {
        const std::string known = node.Name();
        const std::string lower = LowerCase(known);
        const bool alike = lower.find(wish) != lower.npos || (lower.size() > 3 && wish.find(lower) != wish.npos);
        if (!alike || !node.IsFeature()) continue;
        text += (text.empty() ? "" : ", ") + Printable(known);
        if (++number == maxSuggestions) break;
    }
    return text;
}

} // namespace

CLI::Option* DefineCamera(CLI::App& command, FeatureTarget& target)
{
    command.add_option("--producer", target.producer, "Use this .cti file alone, not the environment");
    return command
        .add_option("camera", target.camera, "Serial number, user name, id, interface:id, or a pattern with *")
        ->required();
}

CLI::Option* DefineTarget(CLI::App& command, FeatureTarget& target, bool offersSettings)
{
    const std::map<std::string, ModuleKind> modules = {
        {"remote", ModuleKind::Remote},
        {"device", ModuleKind::Device},
        {"stream", ModuleKind::Stream},
        {"interface", ModuleKind::Interface},
        {"system", ModuleKind::System}};
    CLI::Option* const camera = DefineCamera(command, target);
    command.add_option("--module", target.module, "remote (the camera itself), device, stream, interface or system")
        ->transform(CLI::CheckedTransformer(modules));
    if (offersSettings) DefineSettings(command, target.settings);
    return camera;
}

const char* NameOf(ModuleKind module)
{
    switch (module)
    {
    case ModuleKind::Device:
        return "device";
    case ModuleKind::Stream:
        return "stream";
    case ModuleKind::Interface:
        return "interface";
    case ModuleKind::System:
        return "system";
    default:
        return "remote device";
    }
}

FeatureSession::FeatureSession(const FeatureTarget& target, Access access, Wants wants) : module(target.module)
{
    const Discovery discovery = Discover(target.producer);
    connection.emplace(FindCamera(discovery, target.camera));
    const bool aboveDevice = module == ModuleKind::System || module == ModuleKind::Interface;
    if (!aboveDevice) OpenDevice(target.settings.empty() ? access : Access::Write);
    if (module == ModuleKind::Stream)
    {
        const auto streams = device.DataStreams();
        if (streams.empty()) throw ToolError("The camera has no data stream.");
        stream = streams.front().OpenDataStream();
    }
    if (wants == Wants::Port) return;
    nodes = OpenNodes();
    if (!target.settings.empty()) Apply(nodes, Port(), ParseAssignments(target.settings), NameOf(module));
}

void FeatureSession::OpenDevice(Access access)
{
    const DeviceDescriptor& descriptor = connection->Descriptor();
    const AccessType first = access == Access::Read ? AccessType::ReadOnly : AccessType::Control;
    try
    {
        device = descriptor.OpenDevice(first);
    }
    catch (const Error& error)
    {
        if (access == Access::Write) throw;
        device = descriptor.OpenDevice(access == Access::Read ? AccessType::Control : AccessType::ReadOnly);
        if (access == Access::WriteOrRead) whyReadOnly = error.what();
    }
}

koro::Port FeatureSession::Port() const
{
    switch (module)
    {
    case ModuleKind::System:
        return connection->System().Port();
    case ModuleKind::Interface:
        return connection->Interface().Port();
    case ModuleKind::Device:
        return device.Port();
    case ModuleKind::Stream:
        return stream.Port();
    default:
        return device.RemoteDevice().Port();
    }
}

NodeMap FeatureSession::OpenNodes() const
{
    std::vector<NodeMap> maps;
    switch (module)
    {
    case ModuleKind::System:
        maps = connection->System().NodeMaps();
        break;
    case ModuleKind::Interface:
        maps = connection->Interface().NodeMaps();
        break;
    case ModuleKind::Device:
        maps = device.NodeMaps();
        break;
    case ModuleKind::Stream:
        maps = stream.NodeMaps();
        break;
    default:
        maps = device.RemoteDevice().NodeMaps();
    }
    if (!maps.empty()) return maps.front();
    throw ToolError(
        std::string("The ") + NameOf(module) + " has no description that can be fetched.",
        "`koro info` shows where its descriptions lie.");
}

Node FeatureSession::Feature(const std::string& name) const
{
    return FindFeature(nodes, name, NameOf(module));
}

Node FindFeature(const NodeMap& nodes, const std::string& name, const std::string& owner)
{
    const Node node = nodes.TryNode(name);
    if (node) return node;
    const std::string alike = Suggestions(nodes, name);
    throw ToolError(
        "The " + owner + " has no feature \"" + Printable(name) + "\".",
        alike.empty() ? "`koro features` lists all of them." : "There are " + alike + ".", exitNoSuchFeature);
}

} // namespace koro::tool
