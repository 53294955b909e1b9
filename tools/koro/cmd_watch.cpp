#include "tools/koro/camera_tree_json.h"
#include "tools/koro/commands.h"
#include "tools/koro/discovery.h"
#include "tools/koro/feature_session.h"
#include "tools/koro/feature_tree.h"
#include "tools/koro/feature_value.h"
#include "tools/koro/interrupt.h"
#include "tools/koro/number_option.h"
#include "tools/koro/output.h"
#include "tools/koro/pause.h"
#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"
#include "tools/koro/tool_error.h"
#include "tools/koro/tree_watch.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <deque>
#include <memory>
#include <nlohmann/json.hpp>

namespace koro::tool
{

namespace
{

using nlohmann::json;
using Clock = std::chrono::steady_clock;

// The reader of the output is looked for at least this often.
constexpr std::chrono::milliseconds longestPause(500);

struct WatchCommand
{
    FeatureTarget target;
    std::vector<std::string> names;
    uint64_t interval_ms = 100;
    uint64_t duration_ms = 0; // 0: without end
    uint64_t numChanges = 0;  // 0: without end
    bool refresh = false;
    bool json = false;
};

void PauseUntil(Clock::time_point end, Pause& pause, const Interrupt& interrupt)
{
    while (Clock::now() < end && !interrupt.IsRequested() && OutputHasReader())
        pause.Until(std::min(end, Clock::now() + longestPause));
}

int StatusAfter(const Interrupt& interrupt)
{
    if (interrupt.IsRequested()) return exitInterrupted;
    return OutputHasReader() ? exitSuccess : exitBrokenPipe;
}

// One feature: told of changes by its callback, read outside the lock of the map.
struct Watched
{
    Node node;
    std::string name;
    std::string last; // what was read, as JSON
    bool mayHaveChanged = true;
    Registration news;
};

class Watch
{
public:
    Watch(const WatchCommand& wished, const FeatureSession& session)
        : command(wished), nodes(session.Nodes()), device(session.Device())
    {
        if (command.names.empty())
        {
            AddAll(FeatureTree(nodes, KORO_NODE_VISIBILITY_GURU, [] { return false; }));
        }
        for (const std::string& name : command.names)
            Add(session.Feature(name));
    }

    // Until an interrupt, the wished number of changes, or the wished time.
    void Run(Interrupt& interrupt)
    {
        Pause pause(interrupt);
        ReadChanges(!command.names.empty());
        while (!interrupt.IsRequested() && !IsOver())
        {
            const Clock::time_point before = polled;
            PauseUntil(NextPoll(), pause, interrupt);
            polled = Clock::now();
            if (interrupt.IsRequested() || !OutputHasReader()) return;
            nodes.PollNodes(std::chrono::duration_cast<std::chrono::milliseconds>(polled - before).count());
            if (command.refresh) nodes.InvalidateNodes();
            ReadChanges(true);
        }
    }

private:
    void AddAll(const json& features)
    {
        for (const json& feature : features)
        {
            if (feature.contains("features"))
                AddAll(feature.at("features"));
            else if (feature.contains("value"))
                Add(nodes.Node(feature.at("name").get<std::string>()));
        }
    }
    void Add(const Node& node)
    {
        Watched& added = watched.emplace_back();
        added.node = node;
        added.name = node.Name();
        // Runs on this thread, inside PollNodes and InvalidateNodes.
        added.news = node.OnChanged([&added](Node) { added.mayHaveChanged = true; });
    }
    void ReadChanges(bool print)
    {
        for (Watched& feature : watched)
        {
            if (!feature.mayHaveChanged || IsOver()) continue;
            feature.mayHaveChanged = false;
            const json reading = Read(feature.node);
            std::string text = Dump(reading);
            if (text == feature.last) continue;
            feature.last = std::move(text);
            if (print) Print(feature.name, reading);
        }
    }
    // An object with the value, or with the problem of what cannot be read.
    json Read(const Node& node) const
    {
        try
        {
            return json::object({{"value", command.json ? ValueAsJSON(node) : json(ReadValue(node))}});
        }
        catch (const Error& error)
        {
            // A camera that is gone does not come back under this handle.
            if (error.Code() == KORO_RETURN_CODE_IO_ERROR || error.Code() == KORO_RETURN_CODE_INVALID_HANDLE) throw;
            // Its features may say only that they cannot be read.
            if (device && !detail::Answers(device.RemoteDevice()))
                throw ToolError(
                    std::string("The camera does not answer any more: ") + error.what(),
                    "Check the camera's cable and power.");
            return json::object({{"problem", error.what()}});
        }
    }
    void Print(const std::string& name, const json& reading)
    {
        const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
        if (command.json)
        {
            json change = {{"seconds", seconds}, {"name", name}};
            change.update(reading);
            PrintOut("%s\n", Dump(change).c_str());
        }
        else
        {
            const std::string text = reading.contains("value")
                                         ? reading.at("value").get<std::string>()
                                         : "cannot be read: " + reading.at("problem").get<std::string>();
            PrintOut("%9.3f  %s=%s\n", seconds, PrintableStart(name).c_str(), PrintableStart(text).c_str());
        }
        if (!WriteOut()) isOutputLost = true;
        ++numPrinted;
    }
    Clock::time_point NextPoll() const
    {
        const Clock::time_point next = polled + std::chrono::milliseconds(command.interval_ms);
        if (command.duration_ms == 0) return next;
        return std::min(next, begin + std::chrono::milliseconds(command.duration_ms));
    }
    bool IsOver() const
    {
        if (isOutputLost || (command.numChanges > 0 && numPrinted >= command.numChanges)) return true;
        return command.duration_ms > 0 && Clock::now() - begin >= std::chrono::milliseconds(command.duration_ms);
    }

    const WatchCommand& command;
    const NodeMap& nodes;
    const Device& device; // not open for a module above the cameras
    const Clock::time_point begin = Clock::now();
    Clock::time_point polled = begin;
    uint64_t numPrinted = 0;
    bool isOutputLost = false;
    std::deque<Watched> watched; // each stays at its address
};

// Without a camera: what comes and goes.
class ChangePrinter
{
public:
    explicit ChangePrinter(const WatchCommand& wished) : command(wished) {}

    // Called by one thread at a time. A list may bring more than is wished.
    void Print(const TreeChange& change)
    {
        if (HasPrintedAll()) return;
        const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
        if (command.json)
        {
            const json line = {
                {"seconds", seconds}, {"change", change.what}, {"place", change.place}, {"detail", change.detail}};
            PrintOut("%s\n", Dump(line).c_str());
        }
        else
        {
            PrintOut(
                "%9.3f  %-12s  %s%s%s\n", seconds, change.what, PrintableStart(change.place).c_str(),
                change.detail.empty() ? "" : "  ", PrintableStart(change.detail).c_str());
        }
        if (!WriteOut()) isOutputLost = true;
        ++numPrinted;
    }
    bool IsOver() const
    {
        if (HasPrintedAll()) return true;
        return command.duration_ms > 0 && Clock::now() - begin >= std::chrono::milliseconds(command.duration_ms);
    }

private:
    bool HasPrintedAll() const { return isOutputLost || (command.numChanges > 0 && numPrinted >= command.numChanges); }

    const WatchCommand& command;
    const Clock::time_point begin = Clock::now();
    std::atomic<uint64_t> numPrinted{0};
    std::atomic<bool> isOutputLost{false};
};

std::vector<std::string> WorkingProducers(const ProducerChoice& choice)
{
    if (!choice.file.empty())
    {
        RequireProducerFile(choice.file);
        return SearchProducers(choice).candidates;
    }
    const Discovery discovery = Discover(choice);
    for (const ProbeResult& failed : discovery.failed)
        std::fprintf(Errors(), "koro: %s\n", DescribeFailure(failed).c_str());
    std::vector<std::string> producers;
    for (const ProducerRecord& producer : discovery.producers)
        producers.push_back(producer.path);
    return producers;
}

int WatchTree(const WatchCommand& command)
{
    if (command.refresh || !command.target.settings.empty() || command.target.module != ModuleKind::Remote)
        throw ToolError("--refresh, --set and --module need a camera.", {}, exitUsage);
    Interrupt interrupt;
    const std::vector<std::string> producers = WorkingProducers(command.target.producer);
    if (producers.empty()) throw ToolError("There is no producer that works.", "`koro doctor` tells why.");

    ChangePrinter printer(command);
    TreeWatch watch(producers, [&printer](const TreeChange& change) { printer.Print(change); });
    Pause pause(interrupt);
    while (!interrupt.IsRequested() && !printer.IsOver() && OutputHasReader())
    {
        watch.Update();
        if (printer.IsOver()) break;
        PauseUntil(Clock::now() + std::chrono::milliseconds(command.interval_ms), pause, interrupt);
    }
    return StatusAfter(interrupt);
}

int WatchIt(const WatchCommand& command)
{
    if (command.target.camera.empty()) return WatchTree(command);
    Interrupt interrupt;
    const FeatureSession session(command.target, FeatureSession::Access::Read);
    Watch(command, session).Run(interrupt);
    return StatusAfter(interrupt);
}

} // namespace

Action DefineWatch(CLI::App& command)
{
    const auto options = std::make_shared<WatchCommand>();
    DefineTarget(command, options->target, true)->required(false);
    command.add_option(
        "names", options->names,
        "Features; without a name all that can be read. Without a camera too: interfaces and cameras that come and go");
    TakesWholeNumber(
        command.add_option("--interval", options->interval_ms, "Milliseconds between two polls"), 1, 3600000)
        ->capture_default_str();
    TakesWholeNumber(
        command.add_option("--duration", options->duration_ms, "Milliseconds after which to end"), 1, 86400000);
    TakesWholeNumber(
        command.add_option("--changes", options->numChanges, "Number of lines after which to end"), 1, 1000000000);
    command.add_flag("--refresh", options->refresh, "Ask the camera for every feature at each poll");
    command.add_flag("--json", options->json, "Write one JSON object a line");
    return [options] { return WatchIt(*options); };
}

} // namespace koro::tool
