// FeatureSession: a camera's branch of the module tree, open down to the module whose features are asked for.
//
// Owned by one command; its destructor closes from the leaves up. One thread at a time.
#pragma once

#include "tools/koro/camera_connection.h"
#include "tools/koro/module_connection.h"
#include "tools/koro/module_kind.h"
#include "tools/koro/module_settings.h"
#include "tools/koro/producer_option.h"
#include "tools/koro/producer_watch.h"
#include <koro/koro.hpp>

#include <cstddef>
#include <functional>
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

// What the commands for features have in common on the command line.
struct FeatureTarget
{
    std::string camera;
    ProducerChoice producer;
    std::string interfaceName; // a module above the cameras, when no camera is named
    std::string systemFile;    // likewise
    ModuleKind module = ModuleKind::Remote;
    std::vector<std::string> settings; // [MODULE:]NAME=VALUE, written before anything else
    // Called after each that was written; false ends the rest.
    std::function<bool(const Node&)> written;

    bool IsAboveCameras() const { return !interfaceName.empty() || !systemFile.empty(); }
};

// Defines the camera and --producer. Returns the camera's option, which is required.
CLI::Option* DefineCamera(CLI::App& command, FeatureTarget& target);
// The same with --module; with `offersSettings` also --set.
CLI::Option* DefineTarget(CLI::App& command, FeatureTarget& target, bool offersSettings);
// The same with --interface and --system, which take the place of the camera. The action begins with CompleteTarget.
void DefineAnyModule(CLI::App& command, FeatureTarget& target, bool offersSettings);
// Behind --interface and --system the first word is no camera but belongs to the others. Throws ToolError (exit status
// 2) when there is no camera, and for a module that needs one.
void CompleteTarget(FeatureTarget& target, std::vector<std::string>& words);
// Throws ToolError (exit status 2) unless there are so many words; `what` says what is missing.
void RequireWords(const std::vector<std::string>& words, size_t least, size_t most, const char* what);

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

    // Finds and opens the module. Each module of its branch gets its settings before the one below is opened; those of
    // the camera need Access::Write, which is taken then. Throws koro::Error or ToolError.
    FeatureSession(const FeatureTarget& target, Access access, Wants wants = Wants::Nodes);

    // Not open for the system and the interface.
    const koro::Device& Device() const { return device; }
    koro::Port Port() const;
    const NodeMap& Nodes() const { return nodes; }
    // The first stream of the camera, which is opened when it is first asked for, or for a setting. Throws koro::Error,
    // or ToolError for a camera without a stream.
    const DataStream& OpenStream();
    // The feature of that name. Throws ToolError (exit status 6) with names that look alike.
    Node Feature(const std::string& name) const;
    // Why the camera could not be opened for control, if so.
    const std::optional<std::string>& WhyReadOnly() const { return whyReadOnly; }

private:
    void OpenCamera(const FeatureTarget& target, const ModuleSettings& settings, Access access);
    void OpenAboveCameras(const FeatureTarget& target, const ModuleSettings& settings);
    void OpenDevice(Access access);
    const koro::System& System() const;
    const koro::Interface& Interface() const;
    NodeMap OpenNodes() const;

    ModuleKind module;
    std::optional<CameraConnection> connection;
    std::optional<ModuleConnection> aboveCameras; // when no camera is named
    koro::Device device;
    DataStream stream;
    std::optional<std::string> whyReadOnly;
    NodeMap nodes;
    ClosingMark mark; // last
};

// The node of that name in a map that `owner` has. Throws as FeatureSession::Feature.
Node FindFeature(const NodeMap& nodes, const std::string& name, const std::string& owner);

} // namespace koro::tool
