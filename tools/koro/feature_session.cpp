#include "tools/koro/feature_session.h"

#include "tools/koro/assignments.h"
#include "tools/koro/choice_option.h"
#include "tools/koro/discovery.h"
#include "tools/koro/first_stream.h"
#include "tools/koro/producer_option.h"
#include "tools/koro/report.h"
#include "tools/koro/similar_names.h"
#include "tools/koro/tool_error.h"

#include <CLI/CLI.hpp>
#include <utility>

namespace koro::tool
{

namespace
{

constexpr size_t maxSuggestions = 8;

// Among all nodes, since any of them can be named. Features come first where several are equally near.
std::vector<std::string> Suggestions(const NodeMap& nodes, const std::string& name)
{
    std::vector<std::string> names;
    std::vector<std::string> others;
    for (const Node& node : nodes.Nodes())
        (node.IsFeature() ? names : others).push_back(node.Name());
    names.insert(names.end(), others.begin(), others.end());
    return SimilarNames(names, name, maxSuggestions);
}

} // namespace

CLI::Option* DefineCamera(CLI::App& command, FeatureTarget& target)
{
    DefineProducer(command, target.producer);
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
    AddChoice(
        command, "--module", target.module, modules, "remote (the camera itself), device, stream, interface or system");
    if (offersSettings) DefineSettings(command, target.settings);
    return camera;
}

void DefineAnyModule(CLI::App& command, FeatureTarget& target, bool offersSettings)
{
    CLI::Option* const camera = DefineTarget(command, target, offersSettings);
    camera->required(false);
    command.add_option(
        "--interface", target.interfaceName, "In place of a camera: the id of an interface, or a pattern");
    TakesProducer(
        command.add_option("--system", target.systemFile, "In place of a camera: the .cti file of a producer"));
}

void CompleteTarget(FeatureTarget& target, std::vector<std::string>& words)
{
    if (!target.IsAboveCameras())
    {
        if (!target.camera.empty()) return;
        throw ToolError(
            "No camera is named.", "Name a camera, or a module above with --interface or --system.", exitUsage);
    }
    if (!target.camera.empty()) words.insert(words.begin(), std::exchange(target.camera, {}));
    const ModuleKind lowest = target.interfaceName.empty() ? ModuleKind::System : ModuleKind::Interface;
    if (target.module == ModuleKind::Remote) target.module = lowest;
    if (target.module != lowest && target.module != ModuleKind::System)
        throw ToolError(
            std::string("The module ") + NameOf(target.module) + " needs a" +
                (target.module == ModuleKind::Interface ? "n interface." : " camera."),
            "Name it in place of --system or --interface.", exitUsage);
    if (ModuleSettings(target.settings, target.module).NeedCamera())
        throw ToolError("--set of a device, a stream or a remote device needs a camera.", {}, exitUsage);
}

void RequireWords(const std::vector<std::string>& words, size_t least, size_t most, const char* what)
{
    if (words.size() < least) throw ToolError(std::string("There is no ") + what + ".", "See --help.", exitUsage);
    if (words.size() > most)
        throw ToolError("\"" + PrintableStart(words[most]) + "\" is one word too many.", "See --help.", exitUsage);
}

FeatureSession::FeatureSession(const FeatureTarget& target, Access access, Wants wants) : module(target.module)
{
    const ModuleSettings settings(target.settings, module, target.written);
    if (target.IsAboveCameras())
        OpenAboveCameras(target, settings);
    else
        OpenCamera(target, settings, access);
    if (wants == Wants::Nodes) nodes = OpenNodes();
}

void FeatureSession::OpenCamera(const FeatureTarget& target, const ModuleSettings& settings, Access access)
{
    const Discovery discovery = DiscoverFor(target.producer, target.camera);
    connection.emplace(discovery, FindCamera(discovery, target.camera), settings);
    const bool isAbove = module == ModuleKind::System || module == ModuleKind::Interface;
    if (isAbove && !settings.NeedCamera()) return;
    OpenDevice(settings.NeedCamera() ? Access::Write : access);
    settings.ApplyTo(device, [this]() -> const DataStream& { return OpenStream(); });
    if (module == ModuleKind::Stream) OpenStream();
}

void FeatureSession::OpenAboveCameras(const FeatureTarget& target, const ModuleSettings& settings)
{
    if (target.interfaceName.empty())
    {
        RequireProducerFile(target.systemFile);
        aboveCameras.emplace(target.systemFile, "", settings);
        return;
    }
    const Discovery discovery =
        Discover(target.systemFile.empty() ? target.producer : ProducerChoice{.file = target.systemFile});
    const InterfaceChoice choice = FindInterface(discovery, target.interfaceName);
    aboveCameras.emplace(choice.producer->path, choice.interfaceRecord->id, settings);
}

const DataStream& FeatureSession::OpenStream()
{
    if (!stream) stream = OpenFirstStream(device);
    return stream;
}

const koro::System& FeatureSession::System() const
{
    return connection ? connection->System() : aboveCameras->System();
}

const koro::Interface& FeatureSession::Interface() const
{
    return connection ? connection->Interface() : aboveCameras->Interface();
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
        return System().Port();
    case ModuleKind::Interface:
        return Interface().Port();
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
    switch (module)
    {
    case ModuleKind::System:
        return FirstNodes(System(), module);
    case ModuleKind::Interface:
        return FirstNodes(Interface(), module);
    case ModuleKind::Device:
        return FirstNodes(device, module);
    case ModuleKind::Stream:
        return FirstNodes(stream, module);
    default:
        return FirstNodes(device.RemoteDevice(), module);
    }
}

Node FeatureSession::Feature(const std::string& name) const
{
    return FindFeature(nodes, name, NameOf(module));
}

Node FindFeature(const NodeMap& nodes, const std::string& name, const std::string& owner)
{
    const Node node = nodes.TryNode(name);
    if (node) return node;
    const std::vector<std::string> alike = Suggestions(nodes, name);
    throw ToolError(
        "The " + owner + " has no feature \"" + PrintableStart(name) + "\".",
        alike.empty() ? "`koro features --all` lists all names that can be given." : ThereAre(alike),
        exitNoSuchFeature);
}

} // namespace koro::tool
