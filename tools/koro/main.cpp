#include "tools/koro/accidents.h"
#include "tools/koro/commands.h"
#include "tools/koro/failure.h"
#include "tools/koro/output.h"
#include "tools/koro/producer_watch.h"
#include "tools/koro/standard_streams.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace koro::tool;

struct Command
{
    const char* name;
    Action (*define)(CLI::App& command);
    const char* help;
};

constexpr Command commands[] = {
    {"list", DefineList, "Show producers, interfaces and cameras as a tree"},
    {"info", DefineInfo, "Show everything that is known of one camera"},
    {"doctor", DefineDoctor, "Find out why a producer or a camera does not show up"},
    {"grab", DefineGrab, "Take pictures with a camera and save them"},
    {"features", DefineFeatures, "Show the features of a camera as a tree"},
    {"get", DefineGet, "Print the values of features"},
    {"set", DefineSet, "Change features, in the order given"},
    {"run", DefineRun, "Execute a command and wait until it is done"},
    {"read", DefineRead, "Print bytes of the registers of a module"},
    {"write", DefineWrite, "Write bytes to the registers of a module"},
    {"describe", DefineDescribe, "Show all that is known of one feature, and why it cannot be written"},
    {"xml", DefineXML, "Write the description of the features as it was fetched"},
    {"watch", DefineWatch, "Print changes of features, or cameras that come and go, as they come"},
    {"events", DefineEvents, "Print the events of a camera as they come"},
    {"settings", DefineSettingsFiles, "Save, load, check and compare the settings of a camera"},
    {"files", DefineFiles, "List, read, write and delete the files of a camera"},
    {"firmware", DefineFirmware, "Show, apply and make firmware updates"},
    {"probe", DefineProbe, "Try one producer (used by the other commands)"},
    {"reference", DefineReference, "Write manual pages and completion (used by the build)"},
};

int Run(const Action& action)
{
    try
    {
        return action();
    }
    catch (...)
    {
        return ReportFailure(std::current_exception());
    }
}

int RunCommandLine(int argc, char** argv)
{
    IgnoreLostReaders();
    IgnoreFileSizeLimit();
    CLI::App app("Find cameras and take pictures through GenICam GenTL producers.", "koro");
    app.require_subcommand(1);
    app.set_version_flag("--version", std::string(KORO_TOOL_VERSION));
    app.footer(
        "GENICAM_GENTL64_PATH names the directories of the producers. Exit status: 0 success, 1 failure, 2 wrong\n"
        "command line, 3 no such camera, 4 no usable camera, 5 pictures missing, 6 no such feature, 7 settings "
        "differ,\n"
        "130 interrupted, 141 nobody reads the output any more.");

    std::vector<std::pair<CLI::App*, Action>> actions;
    for (const Command& command : commands)
    {
        CLI::App* const part = app.add_subcommand(command.name, command.help);
        actions.emplace_back(part, command.define(*part));
    }

    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::ParseError& error)
    {
        return app.exit(error) == 0 ? FinishOutput(exitSuccess) : exitUsage;
    }
    KeepOutput();
    for (const auto& [part, action] : actions)
    {
        if (part->parsed()) return FinishOutput(Run(action));
    }
    return exitUsage;
}

} // namespace

int main(int argc, char** argv)
{
    OpenMissingDescriptors();
    WatchForAccidents();
    const int status = RunCommandLine(argc, argv);
    ExpectExit(status);
    ProducerWatch::OfProcess().Leave(status);
    return status;
}
