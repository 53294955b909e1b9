#include "tools/koro/assignments.h"
#include "tools/koro/camera_connection.h"
#include "tools/koro/camera_link.h"
#include "tools/koro/commands.h"
#include "tools/koro/discovery.h"
#include "tools/koro/grab_session.h"
#include "tools/koro/path_option.h"
#include "tools/koro/pause.h"
#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"
#include "tools/koro/tool_error.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <unistd.h>
#include <utility>

namespace koro::tool
{

namespace
{

constexpr std::chrono::milliseconds searchInterval{200};

struct GrabCommand
{
    std::string camera;
    ProducerChoice producer;
    std::string output;
    GrabSettings settings;
    bool reconnect = false;
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

std::string PrefixFor(const CameraRecord& camera)
{
    const bool hasSerialNumber = camera.serialNumber && !camera.serialNumber->empty();
    return FileNamePrefix(hasSerialNumber ? *camera.serialNumber : camera.id);
}

std::string PerSecond(double amount, double seconds, const char* unit)
{
    if (seconds <= 0) return "-";
    char text[64];
    std::snprintf(text, sizeof text, "%.1f %s", amount / seconds, unit);
    return text;
}

void PrintStatistics(const GrabStatistics& statistics, uint64_t numSaved, uint64_t numFiles)
{
    // The first frame opens the span of time, so it counts neither for the rate nor for the throughput.
    const uint64_t numIntervals = statistics.numFrames > 0 ? statistics.numFrames - 1 : 0;
    const double frames = static_cast<double>(numIntervals);
    const double megabytes = statistics.numFrames > 0 ? static_cast<double>(statistics.numBytes) / 1e6 * frames /
                                                            static_cast<double>(statistics.numFrames)
                                                      : 0;
    Rows rows = {{"pictures", std::to_string(numSaved)}};
    if (numFiles != numSaved) rows.emplace_back("files", std::to_string(numFiles));
    const auto add = [&rows](const char* label, std::string value) { rows.emplace_back(label, std::move(value)); };
    add("frames", std::to_string(statistics.numFrames));
    add("rate", PerSecond(frames, statistics.Seconds(), "frames/s"));
    add("throughput", PerSecond(megabytes, statistics.Seconds(), "MB/s"));
    add("underruns", statistics.numUnderruns ? std::to_string(*statistics.numUnderruns) : "-");
    add("incomplete", std::to_string(statistics.numIncomplete));
    add("timeouts", std::to_string(statistics.numTimeouts));
    if (statistics.numReconnects > 0)
    {
        char outage[32];
        std::snprintf(outage, sizeof outage, "%.3f s", statistics.longestOutage_s);
        add("reconnects", std::to_string(statistics.numReconnects));
        add("longest outage", outage);
    }
    PrintRows(rows);
}

int ExitStatus(const GrabCommand& command, const Interrupt& interrupt, uint64_t numSaved)
{
    if (interrupt.IsRequested()) return exitInterrupted;
    if (numSaved >= command.settings.numPictures) return exitSuccess;
    std::fprintf(
        stderr,
        "koro: The camera gave %llu of %llu pictures.\nhint: Check that the camera is not waiting for a "
        "trigger, or raise --timeout.\n",
        static_cast<unsigned long long>(numSaved), static_cast<unsigned long long>(command.settings.numPictures));
    return exitFramesMissing;
}

// Looks for the camera until it can be opened and streams again. Empty after an interrupt.
std::unique_ptr<GrabSession> OpenAgain(const GrabCommand& command, CameraLink& link, Interrupt& interrupt)
{
    Pause pause(interrupt);
    while (!interrupt.IsRequested())
    {
        try
        {
            const std::optional<DeviceDescriptor> camera = link.Find();
            if (camera) return std::make_unique<GrabSession>(*camera, command.settings, &link);
        }
        catch (const Error&)
        {
            // Listed before it can be opened, or gone once more.
        }
        pause.Until(Pause::Clock::now() + searchInterval);
    }
    return nullptr;
}

void Stream(
    const GrabCommand& command, std::unique_ptr<GrabSession> session, CameraLink* link, Interrupt& interrupt,
    GrabOutput& output)
{
    while (session && session->Run(interrupt, output) == GrabEnd::Lost)
    {
        session.reset();
        session = OpenAgain(command, *link, interrupt);
    }
}

// For a grab that has failed: what was taken before stays, and so do its values. That failure is the one to tell.
void FinishAfterFailure(ChunkTable& table)
{
    try
    {
        table.Finish();
    }
    catch (const ToolError& error)
    {
        std::fprintf(stderr, "koro: %s\n", error.what());
    }
}

int Grab(const GrabCommand& command)
{
    Interrupt interrupt;
    MakeFolder(command.output);
    const Discovery discovery = DiscoverFor(command.producer, command.camera);
    if (interrupt.IsRequested()) return exitInterrupted;
    const CameraChoice choice = FindCamera(discovery, command.camera);

    const CameraConnection connection(discovery, choice, ModuleSettings(command.settings.settings, ModuleKind::Remote));
    std::optional<CameraLink> link;
    if (command.reconnect) link.emplace(connection, choice.camera->id, choice.camera->serialNumber.value_or(""));
    auto session = std::make_unique<GrabSession>(connection.Descriptor(), command.settings, link ? &*link : nullptr);
    PrintOut("%s, %s\n", Printable(DescribeCamera(choice)).c_str(), session->DescribeBuffers().c_str());
    std::fflush(Output());

    const std::string prefix = PrefixFor(*choice.camera);
    std::optional<ChunkTable> table;
    if (command.settings.chunks) table.emplace(std::filesystem::path(command.output) / (prefix + "-chunks.csv"));
    std::optional<Progress> progress(std::in_place, Output(), OutputIsTerminal(), command.settings.numPictures);
    PictureSaver saver(command.output, prefix, *progress);
    GrabOutput output{saver, *progress, table ? &*table : nullptr};
    try
    {
        Stream(command, std::move(session), link ? &*link : nullptr, interrupt, output);
    }
    catch (...)
    {
        const auto failure = std::current_exception();
        if (table) FinishAfterFailure(*table);
        std::rethrow_exception(failure);
    }
    saver.Finish();
    if (table) table->Finish();
    progress.reset();
    PrintStatistics(output.statistics, saver.NumSaved(), saver.NumFiles());
    return ExitStatus(command, interrupt, saver.NumSaved());
}

} // namespace

Action DefineGrab(CLI::App& command)
{
    const auto options = std::make_shared<GrabCommand>();
    GrabSettings& settings = options->settings;
    const std::map<std::string, FileFormat> formats = {
        {"png", FileFormat::PNG}, {"tiff", FileFormat::TIFF}, {"raw", FileFormat::Raw}};

    command.add_option("camera", options->camera, "Serial number, user name, id, interface:id, or a pattern with *")
        ->required();
    command.add_option("--frames", settings.numPictures, "Number of pictures")
        ->required()
        ->check(CLI::Range(uint64_t{1}, uint64_t{1000000000}));
    TakesPath(command.add_option("--output", options->output, "Folder of the files; made if it is not there")->required());
    command.add_option("--format", settings.format, "png, tiff, or raw (the frame's bytes as they came)")
        ->transform(CLI::CheckedTransformer(formats));
    command.add_option("--timeout", settings.timeout_ms, "Milliseconds to wait for a frame")
        ->check(CLI::Range(uint64_t{1}, uint64_t{3600000}))
        ->capture_default_str();
    command.add_option("--payload-size", settings.payloadSize, "Bytes of a frame, if neither stream nor camera tells");
    command.add_flag(
        "--keep-incomplete", settings.keepIncomplete,
        "Save incomplete frames too, with \"incomplete\" in the names of their files");
    command.add_flag(
        "--chunks", settings.chunks, "Switch the chunks on, print their values and write them into a table");
    command.add_flag("--reconnect", options->reconnect, "Go on when the camera was unplugged and comes back");
    DefineSettings(command, settings.settings);
    DefineProducer(command, options->producer);
    return [options] { return Grab(*options); };
}

} // namespace koro::tool
