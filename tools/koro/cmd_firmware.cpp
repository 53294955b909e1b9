#include "tools/koro/assignments.h"
#include "tools/koro/camera_connection.h"
#include "tools/koro/commands.h"
#include "tools/koro/description_bytes.h"
#include "tools/koro/discovery.h"
#include "tools/koro/if_known.h"
#include "tools/koro/interrupt.h"
#include "tools/koro/module_settings.h"
#include "tools/koro/number_option.h"
#include "tools/koro/path_option.h"
#include "tools/koro/pending_file.h"
#include "tools/koro/producer_watch.h"
#include "tools/koro/read_producer.h"
#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"
#include "tools/koro/step_progress.h"
#include "tools/koro/tool_error.h"
#include "tools/koro/update_package.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

namespace koro::tool
{

namespace
{

struct FirmwareCommand
{
    std::string camera;
    std::optional<std::string> onlyFor; // a camera
    ProducerChoice producer;
    std::string file;
    std::string control;
    std::vector<std::string> contents;
    std::vector<std::string> settings; // [MODULE:]NAME=VALUE, written before an update
    bool all = false;
    uint64_t resetTimeout_ms = 60000;
};

void PrintUpdate(const FirmwareUpdateInformation& update)
{
    const auto text = [](const std::string& value) { return value.empty() ? std::string("-") : Printable(value); };
    PrintRows({
        {"update", text(update.Description())},
        {"version", text(update.Version())},
        {"release notes", text(update.ReleaseNotes())},
        {"more", text(update.ReleaseNotesURL())},
    });
}

// All updates of the file, before any camera is asked for.
std::vector<FirmwareUpdateInformation> ReadUpdates(const FirmwareUpdater& updater, const std::string& file)
{
    try
    {
        return updater.Collect(file);
    }
    catch (const Error& error)
    {
        throw ToolError(error.what(), "Update files are whole .guf files, from the maker of the camera.");
    }
}

// Throws when the camera has no features, by which the library decides what fits.
void RequireFeatures(const DeviceDescriptor& camera)
{
    const Device device = camera.OpenDevice(AccessType::Control);
    const RemoteDevice remote = device.RemoteDevice();
    if (remote.NodeMaps().empty()) throw NoDescription("The camera", remote.Port());
}

// The updates of the file that fit the camera.
std::vector<FirmwareUpdateInformation> UpdatesFor(
    const FirmwareUpdater& updater, const std::string& file, const DeviceDescriptor& camera)
{
    try
    {
        return updater.Collect(file, camera);
    }
    catch (const Error& error)
    {
        // Where features are missing the library names an index, and not the reason.
        if (error.Code() == KORO_RETURN_CODE_ERROR) RequireFeatures(camera);
        throw;
    }
}

int Info(const FirmwareCommand& command)
{
    const Library library = Library::Initialize();
    const FirmwareUpdater updater;
    auto updates = ReadUpdates(updater, command.file);
    std::optional<CameraConnection> connection;
    if (command.onlyFor)
    {
        const Discovery discovery = DiscoverFor(command.producer, *command.onlyFor);
        connection.emplace(discovery, FindCamera(discovery, *command.onlyFor));
        updates = UpdatesFor(updater, command.file, connection->Descriptor());
    }
    for (const FirmwareUpdateInformation& update : updates)
        PrintUpdate(update);
    if (!updates.empty()) return exitSuccess;
    throw ToolError(
        "No update of " + Printable(command.file) + " fits.", "Without --for all updates of the file are shown.");
}

const char* NameOf(KORO_FirmwareUpdateStep step)
{
    switch (step)
    {
    case KORO_FIRMWARE_UPDATE_STEP_CHECK_PRECONDITIONS:
        return "checking";
    case KORO_FIRMWARE_UPDATE_STEP_ACQUIRE_UPDATE_DATA:
        return "unpacking";
    case KORO_FIRMWARE_UPDATE_STEP_FEATURE_WRITE:
        return "setting";
    case KORO_FIRMWARE_UPDATE_STEP_FEATURE_EXECUTE:
        return "executing";
    case KORO_FIRMWARE_UPDATE_STEP_FEATURE_ASSERT:
        return "asserting";
    case KORO_FIRMWARE_UPDATE_STEP_FILE_UPLOAD:
        return "uploading";
    case KORO_FIRMWARE_UPDATE_STEP_DEVICE_RESET:
        return "resetting";
    default:
        return "step";
    }
}

// Shows the steps of an update as its observer is told of them.
class StepPrinter
{
public:
    explicit StepPrinter(const FirmwareUpdateProgressObserver& observer)
        : started(
              observer.OnStepStarted([this](KORO_FirmwareUpdateStep step, uint32_t, const std::string& description) {
                  NoteProgress();
                  if (step == KORO_FIRMWARE_UPDATE_STEP_DEVICE_RESET) absence.emplace();
                  shown.Begin(std::string(NameOf(step)) + (description.empty() ? "" : ": " + Printable(description)));
              })),
          progress(observer.OnStepProgress([this](KORO_FirmwareUpdateStep, double percent) {
              NoteProgress();
              shown.Reached(percent);
          })),
          finished(observer.OnStepFinished([this](KORO_FirmwareUpdateStep) {
              absence.reset();
              shown.Finish();
          }))
    {}

private:
    std::optional<ExpectedWait> absence; // of the camera after its reset
    StepProgress shown{Output(), OutputIsTerminal()};
    Registration started;
    Registration progress;
    Registration finished;
};

std::string VersionOf(const CameraConnection& connection, const std::string& serialNumber)
{
    // The camera may have come back under another id.
    const Interface& cameraInterface = connection.Interface();
    IfKnown([&] { return cameraInterface.UpdateDevices(updateTimeout_ms), true; });
    for (const DeviceDescriptor& camera : cameraInterface.Devices())
    {
        if (IfKnown([&] { return camera.SerialNumber(); }) != serialNumber) continue;
        const auto version = IfKnown([&] {
            const Device device = camera.OpenDevice(AccessType::Control);
            return device.RemoteDevice().NodeMap().String("DeviceFirmwareVersion").Value();
        });
        if (version) return *version;
    }
    return "unknown";
}

ModuleSettings SettingsOf(const FirmwareCommand& command)
{
    return ModuleSettings(command.settings, ModuleKind::Remote);
}

// The library opens the camera for the update, so what a setting changes must outlive an open camera. Throws ToolError.
void RefuseSettingsThatEndBefore(const FirmwareCommand& command)
{
    for (const Assignment& setting : ParseAssignments(command.settings, ModuleKind::Remote))
    {
        if (setting.module != ModuleKind::Device && setting.module != ModuleKind::Stream) continue;
        throw ToolError(
            std::string("A setting of the ") + NameOf(setting.module) + " would end before the update.",
            "There are settings of system, interface and remote.", exitUsage);
    }
}

// Those of the camera itself; those above it are written where their modules are opened.
void WriteSettings(const ModuleSettings& settings, const DeviceDescriptor& camera)
{
    if (!settings.NeedCamera()) return;
    const Device device = camera.OpenDevice(AccessType::Control);
    settings.ApplyTo(device, [&]() -> const DataStream& { throw std::logic_error("a setting of a stream"); });
}

void UpdateOne(const FirmwareCommand& command, const Discovery& discovery, const CameraChoice& choice)
{
    const ModuleSettings settings = SettingsOf(command);
    const CameraConnection connection(discovery, choice, settings);
    WriteSettings(settings, connection.Descriptor());
    const FirmwareUpdater updater;
    const auto updates = UpdatesFor(updater, command.file, connection.Descriptor());
    if (updates.empty()) throw ToolError("No update of " + Printable(command.file) + " fits the camera.");
    if (updates.size() > 1)
    {
        std::string versions;
        for (const FirmwareUpdateInformation& update : updates)
            versions += (versions.empty() ? "" : ", ") + Printable(update.Version());
        throw ToolError(
            std::to_string(updates.size()) + " updates of the file fit the camera: " + versions + ".",
            "Ask the maker of the file for one update a camera.");
    }
    PrintOut(
        "%s: %s, version %s\n", DescribeCamera(choice).c_str(), Printable(updates.front().Description()).c_str(),
        Printable(updates.front().Version()).c_str());
    std::fflush(Output());

    const auto begin = std::chrono::steady_clock::now();
    const FirmwareUpdateProgressObserver observer;
    try
    {
        const StepPrinter printer(observer);
        updater.Update(connection.Descriptor(), updates.front(), observer, command.resetTimeout_ms);
    }
    catch (const Error& error)
    {
        // A time-out of the producer is another matter than a camera that does not come back.
        const bool isOfProducer = std::string(error.what()).find("[Function: ") != std::string::npos;
        if (error.Code() != KORO_RETURN_CODE_TIMEOUT || isOfProducer) throw;
        throw ToolError(
            error.what(),
            "Look at the camera; update it again once `koro list` shows it. --reset-timeout gives it more time.");
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    PrintOut(
        "done in %.1f s, the camera reports version %s\n", seconds,
        Printable(VersionOf(connection, choice.camera->serialNumber.value_or(""))).c_str());
}

// The settings of the camera itself are not written yet: it may be one that the file is not for.
bool Fits(const FirmwareCommand& command, const Discovery& discovery, const CameraChoice& choice)
{
    const CameraConnection connection(discovery, choice, SettingsOf(command));
    return !UpdatesFor(FirmwareUpdater(), command.file, connection.Descriptor()).empty();
}

// Every camera that fits, one after the other; a failure of one does not keep the others from their update.
int UpdateAll(const FirmwareCommand& command, const Discovery& discovery, const Interrupt& interrupt)
{
    size_t numUpdated = 0;
    size_t numFailed = 0;
    bool cutShort = false;
    for (const CameraChoice& choice : FindCameras(discovery, command.camera))
    {
        cutShort = interrupt.IsRequested();
        if (cutShort) break;
        try
        {
            if (!Fits(command, discovery, choice)) continue;
            UpdateOne(command, discovery, choice);
            ++numUpdated;
        }
        catch (const std::runtime_error& error)
        {
            ++numFailed;
            std::fprintf(
                Errors(), "koro: %s: %s\n", DescribeCamera(choice).c_str(), PrintableLines(error.what()).c_str());
        }
    }
    PrintOut("%s updated, %zu failed\n", CountOf(numUpdated, "camera").c_str(), numFailed);
    if (cutShort) return exitInterrupted;
    return numFailed == 0 && numUpdated > 0 ? exitSuccess : exitFailure;
}

int Update(const FirmwareCommand& command)
{
    RefuseSettingsThatEndBefore(command);
    // Half an update may leave a camera that never starts again.
    const Interrupt interrupt("the update of a camera is not cut off", Interrupt::Calls::NotCutOff);
    const Library library = Library::Initialize();
    ReadUpdates(FirmwareUpdater(), command.file);
    // All cameras of a name are all that there are, not the first ones that answer.
    const Discovery discovery =
        command.all ? Discover(command.producer) : DiscoverFor(command.producer, command.camera);
    if (interrupt.IsRequested()) return exitInterrupted;
    if (command.all) return UpdateAll(command, discovery, interrupt);
    UpdateOne(command, discovery, FindCamera(discovery, command.camera));
    return exitSuccess;
}

void RefuseOwnContent(const FirmwareCommand& command)
{
    std::vector<std::string> contents = command.contents;
    contents.push_back(command.control);
    for (const std::string& content : contents)
    {
        std::error_code none;
        if (std::filesystem::equivalent(command.file, content, none))
            throw ToolError(
                "Cannot pack: " + content + " is the update file to write.", "The update file comes first.");
    }
}

// What the library cannot read must not leave the maker's house, nor take the place of an older file.
int Pack(const FirmwareCommand& command)
{
    RefuseOwnContent(command);
    const std::vector<std::filesystem::path> contents(command.contents.begin(), command.contents.end());
    const auto bytes = PackUpdateFile(command.control, contents);
    PendingFile file(command.file);
    file.Write(bytes.data(), bytes.size());

    const Library library = Library::Initialize();
    const FirmwareUpdater updater;
    std::vector<FirmwareUpdateInformation> updates;
    try
    {
        updates = updater.Collect(file.Path().string());
    }
    catch (const Error& error)
    {
        throw ToolError(error.what(), "Nothing was written: no camera could be updated with it.");
    }
    RequireUploads(command.control, contents);
    file.Commit();
    for (const FirmwareUpdateInformation& update : updates)
        PrintUpdate(update);
    return exitSuccess;
}

using Run = int (*)(const FirmwareCommand&);

} // namespace

Action DefineFirmware(CLI::App& command)
{
    const auto options = std::make_shared<FirmwareCommand>();
    const auto chosen = std::make_shared<Run>(nullptr);
    command.require_subcommand(1);
    const auto define = [&](const char* name, const char* help, Run run) {
        CLI::App* const part = command.add_subcommand(name, help);
        part->callback([run, chosen] { *chosen = run; });
        return part;
    };
    CLI::App* const info = define("info", "Show what an update file offers", Info);
    TakesPath(info->add_option("file", options->file, "The update file")->required());
    info->add_option("--for", options->onlyFor, "Only what fits this camera");
    CLI::App* const update = define("update", "Apply an update to a camera", Update);
    update->add_option("camera", options->camera, "Serial number, user name, id, interface:id, or a pattern with *")
        ->required();
    TakesPath(update->add_option("file", options->file, "The update file")->required());
    update->add_flag("--all", options->all, "Update every camera that the pattern and the file fit");
    TakesWholeNumber(
        update->add_option(
            "--reset-timeout", options->resetTimeout_ms, "Milliseconds that a camera may take to come back"),
        0, 3600000)
        ->capture_default_str();
    DefineSettings(*update, options->settings);
    for (CLI::App* const part : {info, update})
        DefineProducer(*part, options->producer);
    CLI::App* const pack = define("pack", "Make an update file", Pack);
    pack->add_option("file", options->file, "The update file to write")->required();
    pack->add_option("control", options->control, "The control file (XML) with procedures and updates")->required();
    pack->add_option("contents", options->contents, "The files that the procedures upload");
    return [options, chosen] { return (*chosen)(*options); };
}

} // namespace koro::tool
