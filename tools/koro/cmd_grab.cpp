#include "tools/koro/assignments.h"
#include "tools/koro/choice_option.h"
#include "tools/koro/commands.h"
#include "tools/koro/discovery.h"
#include "tools/koro/file_prefix.h"
#include "tools/koro/grab_run.h"
#include "tools/koro/number_option.h"
#include "tools/koro/path_option.h"
#include "tools/koro/tool_error.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <map>
#include <memory>

namespace koro::tool
{

namespace
{

struct GrabCommand
{
    std::string camera;
    ProducerChoice producer;
    GrabOptions options;
};

void MakeFolder(const std::string& path)
{
    std::error_code failure;
    std::filesystem::create_directories(path, failure);
    if (std::filesystem::is_directory(path)) return;
    throw ToolError(
        "Cannot make the folder " + path + (failure ? ": " + failure.message() : std::string()) + ".",
        "Name a folder that can be written with --output.");
}

void CheckOutput(const GrabOptions& options)
{
    if (!options.output.empty()) return;
    if (options.settings.format == FileFormat::None && !options.settings.chunks) return;
    throw ToolError("--output is required", "Name the folder of the files; only --format none needs none.", exitUsage);
}

int Grab(GrabCommand command)
{
    Interrupt interrupt;
    CheckOutput(command.options);
    if (!command.options.output.empty()) MakeFolder(command.options.output);
    Discovery discovery = DiscoverFor(command.producer, command.camera);
    if (interrupt.IsRequested()) return exitInterrupted;
    const CameraChoice choice = FindCamera(discovery, command.camera);
    command.options.prefix = FilePrefix(choice, AllCameras(discovery.producers));
    GrabRun run(command.options, discovery, choice, interrupt);
    discovery.opened.reset(); // so that the run closes it
    return run.Run();
}

} // namespace

Action DefineGrab(CLI::App& command)
{
    const auto grab = std::make_shared<GrabCommand>();
    GrabOptions& options = grab->options;
    GrabSettings& settings = options.settings;
    const std::map<std::string, FileFormat> formats = {
        {"png", FileFormat::PNG}, {"tiff", FileFormat::TIFF}, {"raw", FileFormat::Raw}, {"none", FileFormat::None}};

    command.add_option("camera", grab->camera, "Serial number, user name, id, interface:id, or a pattern with *")
        ->required();
    TakesWholeNumber(
        command.add_option("--frames", settings.numPictures, "Number of pictures")->required(), 1, 1000000000);
    TakesPath(command.add_option(
        "--output", options.output,
        "Folder of the files; made if it is not there. Needed, except for --format none without --chunks"));
    AddChoice(
        command, "--format", settings.format, formats,
        "png (the default), tiff, raw (the frame's bytes as they came), or none (only count)");
    TakesWholeNumber(
        command.add_option("--timeout", settings.timeout_ms, "Milliseconds to wait for a frame"), 1, 3600000)
        ->capture_default_str();
    TakesWholeNumber(
        command.add_option(
            "--payload-size", settings.payloadSize, "Bytes of a frame, if neither stream nor camera states it"),
        1, maxPayloadSize);
    TakesWholeNumber(
        command.add_option(
            "--buffers", settings.numBuffers, "Number of buffers; at least what the producer needs, or 8"),
        1, maxBuffers);
    TakesPositiveNumber(command.add_option(
        "--range-limit", settings.rangeLimit,
        "Leave out points that are farther away, in the camera's unit of distance"));
    command.add_flag("--json", options.json, "Write one JSON object a frame, and one that sums up");
    command.add_flag(
        "--keep-incomplete", settings.keepIncomplete,
        "Save incomplete frames too, with \"incomplete\" in the names of their files");
    command.add_flag(
        "--chunks", settings.chunks, "Switch the chunks on, print their values and write them into a table");
    command.add_flag("--reconnect", options.reconnect, "Go on when the camera was unplugged and comes back");
    DefineSettings(command, settings.settings);
    DefineProducer(command, grab->producer);
    return [grab] { return Grab(*grab); };
}

} // namespace koro::tool
