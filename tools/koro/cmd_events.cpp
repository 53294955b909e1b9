#include "tools/koro/assignments.h"
#include "tools/koro/background_stream.h"
#include "tools/koro/camera_tree_json.h"
#include "tools/koro/commands.h"
#include "tools/koro/event_nodes.h"
#include "tools/koro/feature_session.h"
#include "tools/koro/if_known.h"
#include "tools/koro/interrupt.h"
#include "tools/koro/number_option.h"
#include "tools/koro/output.h"
#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"
#include "tools/koro/switched_features.h"
#include "tools/koro/tool_error.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

namespace koro::tool
{

namespace
{

using nlohmann::json;
using Clock = std::chrono::steady_clock;

struct EventsCommand
{
    FeatureTarget target;
    std::vector<std::string> enabled;
    bool acquire = false;
    uint64_t duration_ms = 0; // 0: without end
    uint64_t numEvents = 0;   // 0: without end
    bool json = false;
};

// The reader of the output is looked for at least this often.
constexpr uint64_t longestWait_ms = 500;

class EventPrinter
{
public:
    explicit EventPrinter(const EventsCommand& wished) : command(wished) {}

    void Print(const Event& event, const std::vector<EventNews>& news)
    {
        if (news.empty()) PrintOne(event, {});
        for (const EventNews& one : news)
            PrintOne(event, one);
        isOutputLost = !WriteOut();
    }
    bool IsOver() const
    {
        return isOutputLost || (command.numEvents > 0 && numPrinted >= command.numEvents) || Left_ms() == 0;
    }
    // Milliseconds until the end.
    uint64_t Left_ms() const
    {
        if (command.duration_ms == 0) return infinite;
        const auto gone = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin).count();
        return command.duration_ms - std::min(command.duration_ms, static_cast<uint64_t>(gone));
    }

private:
    void PrintOne(const Event& event, const EventNews& one)
    {
        ++numPrinted;
        const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
        const auto id = IfKnown([&] { return event.ID(); });
        if (command.json)
        {
            json line = {
                {"seconds", seconds}, {"event", one.name}, {"id", id ? json(*id) : json()}, {"values", json::object()}};
            for (const auto& [name, value] : one.values)
                line["values"][name] = value;
            PrintOut("%s\n", Dump(line).c_str());
            return;
        }
        std::string text = one.name.empty() ? "event" : PrintableStart(one.name);
        if (one.values.empty())
            text += (id ? " " + std::to_string(*id) : "") + ", " + std::to_string(event.RawData().size()) +
                    " bytes, no feature";
        for (const auto& [name, value] : one.values)
            text += " " + PrintableStart(name) + "=" + PrintableStart(value);
        PrintOut("%9.3f  %s\n", seconds, text.c_str());
    }

    const EventsCommand& command;
    const Clock::time_point begin = Clock::now();
    uint64_t numPrinted = 0;
    bool isOutputLost = false;
};

// Empty after a time-out, and after an interrupt whatever the producer calls it.
Event Wait(const EventController& controller, const Interrupt& interrupt, uint64_t timeout_ms)
{
    const ExpectedWait wait;
    try
    {
        return controller.WaitForEvent(timeout_ms);
    }
    catch (const Error& error)
    {
        if (interrupt.IsRequested() || error.Code() == KORO_RETURN_CODE_TIMEOUT) return Event();
        throw;
    }
}

// Many producers have no events of cameras, and some say so with no more than a number.
EventController EnableEvents(const Device& device)
{
    try
    {
        return device.EnableEvents(EventType::RemoteDevice);
    }
    catch (const Error& error)
    {
        throw ToolError(
            std::string("The producer delivers no events of this camera: ") + error.what(),
            "`koro watch` can read features again and again.");
    }
}

int Events(const EventsCommand& command)
{
    Interrupt interrupt;
    FeatureSession session(command.target, FeatureSession::Access::Write);
    const NodeMap& nodes = session.Nodes();
    SwitchedFeatures switched(nodes);
    EventNodes eventNodes(nodes);
    const EventController controller = EnableEvents(session.Device());
    if (command.enabled.empty())
        switched.SwitchAllEntries("EventSelector", "EventNotification", "On");
    else
        switched.SwitchEntries("EventSelector", "EventNotification", "On", command.enabled);

    EventPrinter printer(command);
    const Interrupt::WakeUp wakeUp(interrupt, [&] {
        // The wait may have ended meanwhile; then there is nothing to wake.
        KORO_EventController_KillWait(controller.Get());
    });
    std::optional<BackgroundStream> pictures;
    if (command.acquire) pictures.emplace(session.OpenStream(), nodes);
    const ClosingMark mark;
    while (!interrupt.IsRequested() && !printer.IsOver() && OutputHasReader())
    {
        const Event event = Wait(controller, interrupt, std::min(printer.Left_ms(), longestWait_ms));
        if (event) printer.Print(event, eventNodes.Deliver(event));
    }
    if (interrupt.IsRequested()) return exitInterrupted;
    return OutputHasReader() ? exitSuccess : exitBrokenPipe;
}

} // namespace

Action DefineEvents(CLI::App& command)
{
    const auto options = std::make_shared<EventsCommand>();
    DefineCamera(command, options->target);
    DefineSettings(command, options->target.settings);
    command.add_option("--enable", options->enabled, "An event of EventSelector; without it all of them")
        ->type_name("NAME")
        ->allow_extra_args(false);
    command.add_flag("--acquire", options->acquire, "Let the camera take pictures meanwhile");
    TakesWholeNumber(
        command.add_option("--duration", options->duration_ms, "Milliseconds after which to end"), 1, 86400000);
    TakesWholeNumber(
        command.add_option("--events", options->numEvents, "Number of events after which to end"), 1, 1000000000);
    command.add_flag("--json", options->json, "Write one JSON object a line");
    return [options] { return Events(*options); };
}

} // namespace koro::tool
