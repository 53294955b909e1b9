#include "tools/koro/assignments.h"
#include "tools/koro/camera_connection.h"
#include "tools/koro/commands.h"
#include "tools/koro/discovery.h"
#include "tools/koro/grab_session.h"
#include "tools/koro/report.h"
#include "tools/koro/tool_error.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <unistd.h>

namespace koro::tool
{

namespace
{

struct GrabCommand
{
    std::string camera;
    std::string producer;
    std::string output;
    GrabSettings settings;
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
    const Rows measured = {
        {"frames", std::to_string(statistics.numFrames)},
        {"rate", PerSecond(frames, statistics.seconds, "frames/s")},
        {"throughput", PerSecond(megabytes, statistics.seconds, "MB/s")},
        {"underruns", statistics.numUnderruns ? std::to_string(*statistics.numUnderruns) : "-"},
        {"incomplete", std::to_string(statistics.numIncomplete)},
        {"timeouts", std::to_string(statistics.numTimeouts)},
    };
    rows.insert(rows.end(), measured.begin(), measured.end());
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

int Grab(const GrabCommand& command)
{
    Interrupt interrupt;
    MakeFolder(command.output);
    const Discovery discovery = Discover(command.producer);
    if (interrupt.IsRequested()) return exitInterrupted;
    const CameraChoice choice = FindCamera(discovery, command.camera);

    const CameraConnection connection(choice);
    GrabSession session(connection.Descriptor(), command.settings);
    std::printf("%s, %s\n", Printable(DescribeCamera(choice)).c_str(), session.DescribeBuffers().c_str());
    std::fflush(stdout);
    uint64_t numSaved = 0;
    uint64_t numFiles = 0;
    {
        Progress progress(stdout, isatty(STDOUT_FILENO) != 0, command.settings.numPictures);
        PictureSaver saver(command.output, PrefixFor(*choice.camera), progress);
        session.Run(interrupt, saver);
        saver.Finish();
        numSaved = saver.NumSaved();
        numFiles = saver.NumFiles();
    }
    PrintStatistics(session.Statistics(), numSaved, numFiles);
    return ExitStatus(command, interrupt, numSaved);
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
    command.add_option("--output", options->output, "Folder of the files; made if it is not there")->required();
    command.add_option("--format", settings.format, "png, tiff, or raw (the frame's bytes as they came)")
        ->transform(CLI::CheckedTransformer(formats));
    command.add_option("--timeout", settings.timeout_ms, "Milliseconds to wait for a frame")
        ->check(CLI::Range(uint64_t{1}, uint64_t{3600000}))
        ->capture_default_str();
    command.add_option("--payload-size", settings.payloadSize, "Bytes of a frame, if neither stream nor camera tells");
    DefineSettings(command, settings.settings);
    command.add_option("--producer", options->producer, "Use this .cti file alone, not the environment");
    return [options] { return Grab(*options); };
}

} // namespace koro::tool
