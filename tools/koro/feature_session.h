// FeatureSession: a camera's branch of the module tree, open down to the module whose features are asked for.
//
// Owned by one command; its destructor closes from the leaves up. One thread at a time.
#pragma once

#include "tools/koro/camera_connection.h"
#include <koro/koro.hpp>

#include <optional>
#include <string>
#include <vector>

namespace CLI
{
class App;
class Option;
} // namespace CLI

namespace koro::tool
{

enum class ModuleKind
{
    Remote,
    Device,
    Stream,
    Interface,
    System,
};

// What the commands for features have in common on the command line.
struct FeatureTarget
{
    std::string camera;
    std::string producer;
    ModuleKind module = ModuleKind::Remote;
    std::vector<std::string> settings; // NAME=VALUE, written before anything else
};

// Defines the camera and --producer. Returns the camera's option, which is required.
CLI::Option* DefineCamera(CLI::App& command, FeatureTarget& target);
// The same with --module; with `offersSettings` also --set.
CLI::Option* DefineTarget(CLI::App& command, FeatureTarget& target, bool offersSettings);

// "remote device", "device", ...
const char* NameOf(ModuleKind module);

class FeatureSession
{
public:
    // How the camera is opened.
    enum class Access
    {
        Read,        // for reading; if the producer refuses that, for control
        WriteOrRead, // for control; if the producer refuses that, for reading
        Write,       // for control
    };

    // What for: a session for the port alone does not care whether the description can be used.
    enum class Wants
    {
        Nodes,
        Port,
    };

    // Finds and opens the module; applies the target's settings, for which it needs Access::Write whatever is asked
    // for. Throws koro::Error or ToolError.
    FeatureSession(const FeatureTarget& target, Access access, Wants wants = Wants::Nodes);

    // Not open for the system and the interface.
    const koro::Device& Device() const { return device; }
    koro::Port Port() const;
    const NodeMap& Nodes() const { return nodes; }
    // The feature of that name. Throws ToolError (exit status 6) with names that look alike.
    Node Feature(const std::string& name) const;
    // Why the camera could not be opened for control, if so.
    const std::optional<std::string>& WhyReadOnly() const { return whyReadOnly; }

private:
    void OpenDevice(Access access);
    NodeMap OpenNodes() const;

    ModuleKind module;
    std::optional<CameraConnection> connection;
    koro::Device device;
    DataStream stream;
    std::optional<std::string> whyReadOnly;
    NodeMap nodes;
};

// The node of that name in a map that `owner` has. Throws as FeatureSession::Feature.
Node FindFeature(const NodeMap& nodes, const std::string& name, const std::string& owner);

} // namespace koro::tool
