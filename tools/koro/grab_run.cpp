#include "tools/koro/grab_run.h"

#include "tools/koro/camera_tree_json.h"
#include "tools/koro/failure.h"
#include "tools/koro/grab_summary.h"
#include "tools/koro/output.h"
#include "tools/koro/pause.h"
#include "tools/koro/producer_watch.h"
#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"
#include "tools/koro/tool_error.h"

#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

namespace koro::tool
{

namespace
{

constexpr std::chrono::milliseconds searchInterval{200};

ProgressForm FormOf(const GrabOptions& options)
{
    if (options.json) return ProgressForm::Objects;
    return OutputIsTerminal() ? ProgressForm::Bar : ProgressForm::Lines;
}

void PrintEnd(const std::string& reason, const GrabOutput& output, uint64_t numPictures, const char* hint)
{
    std::fprintf(
        Errors(), "%skoro: The camera gave %llu of %llu pictures.\nhint: %s\n", reason.c_str(),
        static_cast<unsigned long long>(output.numHanded), static_cast<unsigned long long>(numPictures), hint);
}

} // namespace

GrabRun::GrabRun(const GrabOptions& wished, const Discovery& discovery, const CameraChoice& choice, Interrupt& asked)
    : options(wished), producer(choice.producer->path), interrupt(asked),
      connection(std::make_unique<CameraConnection>(
          discovery, choice, ModuleSettings(options.settings.settings, ModuleKind::Remote)))
{
    const CameraRecord& camera = *choice.camera;
    if (options.reconnect)
        link = std::make_unique<CameraLink>(*connection, camera.id, camera.serialNumber.value_or(""));
    session = std::make_unique<GrabSession>(connection->Descriptor(), options.settings, link.get());
    if (!options.json)
        PrintOut("%s, %s\n", Printable(DescribeCamera(choice)).c_str(), session->DescribeBuffers().c_str());
    std::fflush(Output());

    progress.emplace(Output(), FormOf(options), options.settings.numPictures);
    saver.emplace(options.output, options.prefix, *progress);
    const bool writesFiles = options.settings.format != FileFormat::None || options.settings.chunks;
    output.emplace(GrabOutput{*saver, *progress, nullptr, options.json, options.json || !writesFiles});
}

int GrabRun::Run()
{
    ProducerWatch::OfProcess().SetLastWords([this] { return GiveUp(); });
    try
    {
        Stream();
    }
    catch (...)
    {
        cause = std::current_exception();
    }
    output->statistics.End();
    Close();
    ProducerWatch::OfProcess().SetLastWords(nullptr);
    FinishFiles();
    PrintSummary();
    return Conclude();
}

void GrabRun::Stream()
{
    if (options.settings.chunks) BeginTable();
    while (session && (end = session->Run(interrupt, *output)) == GrabEnd::Lost)
    {
        closesLostCamera = true;
        ProducerWatch::OfProcess().BeginClosing();
        session->Stop(closing);
        session.reset();
        ProducerWatch::OfProcess().Call(producer);
        closesLostCamera = false;
        closing.ForgetFailures();
        session = OpenAgain();
    }
}

// A disk that has no room for the file ends the grab as one that gets full later does.
void GrabRun::BeginTable()
{
    const std::filesystem::path folder = options.output;
    output->table = &table.emplace(folder / (options.prefix + "-chunks.csv"));
}

// Looks for the camera until it can be opened and streams again. Empty after an interrupt, and without a reader that
// the grab needs.
std::unique_ptr<GrabSession> GrabRun::OpenAgain()
{
    Pause pause(interrupt);
    while (!interrupt.IsRequested() && output->IsWanted())
    {
        try
        {
            const std::optional<DeviceDescriptor> camera = link->Find();
            if (camera) return std::make_unique<GrabSession>(*camera, options.settings, link.get());
        }
        catch (const Error&)
        {
            // Listed before it can be opened, or gone once more.
        }
        pause.Until(Pause::Clock::now() + searchInterval);
    }
    return nullptr;
}

void GrabRun::Close()
{
    ProducerWatch::OfProcess().BeginClosing();
    if (session && end == GrabEnd::Silent)
    {
        // Asked only now, since a dead camera may never answer.
        cameraAnswers = false;
        cameraAnswers = session->CameraAnswers();
    }
    if (session) session->Stop(closing);
    session.reset();
    link.reset();
    connection.reset();
    // Of a camera that may come and go nobody is surprised.
    if (options.reconnect) closing.ForgetFailures();
}

// What was taken before a failure stays, and so do the values of its chunks. The first failure is the one to report.
void GrabRun::FinishFiles()
{
    const auto attempt = [this](const auto& finish) {
        try
        {
            finish();
        }
        catch (const std::exception& error)
        {
            // What a write failed with ends the grab, and is thrown again when the files are finished.
            if (std::current_exception() == cause) return;
            if (cause)
                closing.Attempt([&] { throw std::runtime_error(error.what()); });
            else
                cause = std::current_exception();
        }
    };
    attempt([this] { saver->Finish(); });
    if (table) attempt([this] { table->Finish(); });
}

void GrabRun::PrintSummary()
{
    progress.reset();
    GrabTotals totals{output->statistics, closing.NumUnderruns(), {}, saver->NumFiles()};
    if (options.settings.format != FileFormat::None) totals.numPictures = saver->NumSaved();
    if (options.json)
        PrintOut("%s\n", Dump(nlohmann::json::object({{"summary", SummaryJSON(totals)}})).c_str());
    else
        PrintRows(SummaryRows(totals));
    std::fflush(Output());
}

// The first cause, then what failed at the end.
int GrabRun::Conclude()
{
    int status = ReportEnd();
    for (const std::string& failure : closing.Failures())
    {
        std::fprintf(Errors(), "koro: %s\n", PrintableLines(failure).c_str());
        if (status == exitSuccess) status = exitFailure;
    }
    if (isGivenUp)
    {
        std::fprintf(Errors(), "koro: The camera could not be closed.\n");
        if (status == exitSuccess) status = exitFailure;
    }
    return interrupt.IsRequested() ? exitInterrupted : status;
}

// The main thread is in a call that does not return. This thread does the rest with what there is.
int GrabRun::GiveUp()
{
    isGivenUp = true;
    if (closesLostCamera)
        cause = std::make_exception_ptr(ToolError("The camera was lost, and what it left open cannot be closed."));
    output->statistics.End();
    FinishFiles();
    PrintSummary();
    return FinishOutput(Conclude());
}

int GrabRun::ReportEnd()
{
    if (cause) return ReportFailure(cause);
    const uint64_t numPictures = options.settings.numPictures;
    if (interrupt.IsRequested() || output->numHanded >= numPictures) return exitSuccess;
    if (!output->IsWanted()) return exitBrokenPipe;
    if (end == GrabEnd::Useless)
    {
        PrintEnd(
            "koro: Of " + std::to_string(maxUselessInRow) + " frames in a row none was whole.\n", *output, numPictures,
            output->problemIsNamed ? "The reason why a frame was not whole is printed above."
                                   : "Check the cable and the packet size; --keep-incomplete saves such frames too.");
    }
    else
    {
        const bool isGone = !cameraAnswers;
        PrintEnd(
            "koro: No frame came within " + std::to_string(options.settings.timeout_ms) + " ms, " +
                std::to_string(maxTimeoutsInRow) + " times in a row" +
                (isGone ? ", and the camera does not answer" : "") + ".\n",
            *output, numPictures,
            isGone ? "Check the camera's cable and power; --reconnect waits for a camera that comes back."
                   : "Check that the camera is not waiting for a trigger, or raise --timeout.");
    }
    return exitFramesMissing;
}

} // namespace koro::tool
