#include "tools/koro/camera_selection.h"
#include "tools/koro/commands.h"
#include "tools/koro/number_option.h"
#include "tools/koro/producer_option.h"
#include "tools/koro/producer_places.h"
#include "tools/koro/producer_probe.h"
#include "tools/koro/producer_search.h"
#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"
#include "tools/koro/unsearched_places.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace koro::tool
{

namespace
{

struct DoctorSettings
{
    ProducerChoice producer;
    uint64_t timeout_ms = probeTimeout_ms;
};

void PrintSearch(const ProducerSearch& search)
{
    const char* const found = search.variableIsSet     ? "is set"
                              : search.variableIsEmpty ? "names no directory, which counts as not set"
                                                       : "is not set";
    PrintOut("%s %s\n", producerPathVariable, found);
    if (!search.ownFolder.empty()) PrintOut("  %s: came with the tool\n", Printable(search.ownFolder).c_str());
    for (const SearchedDirectory& directory : search.directories)
    {
        const std::string state = directory.problem.empty() ? "ok" : directory.problem;
        PrintOut("  %s: %s\n", Printable(directory.path).c_str(), Printable(state).c_str());
    }
    for (const std::string& duplicate : search.duplicates)
    {
        PrintOut("duplicate: %s\n", Printable(duplicate).c_str());
    }
}

void PrintWorking(const ProducerRecord& producer)
{
    size_t numCameras = 0;
    for (const InterfaceRecord& record : producer.interfaces)
        numCameras += record.cameras.size();
    PrintOut(
        "  loads: %s %s %s, GenTL %s\n", OrDash(producer.vendor).c_str(), OrDash(producer.model).c_str(),
        OrDash(producer.version).c_str(), OrDash(producer.genTLVersion).c_str());
    if (producer.problem) PrintOut("  problem: %s\n", Printable(*producer.problem).c_str());
    for (const InterfaceRecord& record : producer.interfaces)
    {
        if (!record.problem) continue;
        PrintOut("  problem of %s: %s\n", Printable(record.id).c_str(), Printable(*record.problem).c_str());
    }
    PrintOut(
        "  cameras: %zu on %s, %zu usable\n", numCameras, CountOf(producer.interfaces.size(), "interface").c_str(),
        producer.NumUsableCameras());
}

const char* OutcomeName(ProbeOutcome outcome)
{
    switch (outcome)
    {
    case ProbeOutcome::Works:
        return "works";
    case ProbeOutcome::Refused:
        return "does not work";
    case ProbeOutcome::Crashed:
        return "crashes";
    case ProbeOutcome::Hung:
        return "hangs";
    }
    return "";
}

// A file that is no producer lacks them all: a few say enough.
void PrintLoaderTexts(const std::vector<std::string>& texts)
{
    constexpr size_t shown = 4;
    for (size_t i = 0; i < std::min(texts.size(), shown); ++i)
    {
        PrintOut("  loader: %s\n", Printable(texts[i]).c_str());
    }
    if (texts.size() > shown) PrintOut("  loader: %zu more of this kind\n", texts.size() - shown);
}

// Functions without which the library gets along.
void PrintLacking(const std::vector<std::string>& functions)
{
    for (const std::string& function : functions)
    {
        const char* const effect = function == "GCGetLastError" ? ", so failures have no text" : "";
        PrintOut("  lacks: %s%s\n", function.c_str(), effect);
    }
}

void PrintProbe(const ProbeResult& probe)
{
    PrintOut("%s\n", Printable(probe.path).c_str());
    if (probe.record)
    {
        PrintLacking(probe.lacks);
        if (probe.closesDescriptors) PrintOut("  closes: descriptors of the process, when it is started\n");
        return PrintWorking(*probe.record);
    }
    PrintLoaderTexts(probe.loaderTexts);
    PrintOut(
        "  %s at %s: %s\n", OutcomeName(probe.outcome), Printable(probe.stage).c_str(), Printable(probe.text).c_str());
    if (!probe.producerText.empty()) PrintOut("  the producer says: %s\n", Printable(probe.producerText).c_str());
}

bool HasProblem(const ProducerRecord& producer)
{
    return producer.problem || std::any_of(producer.interfaces.begin(), producer.interfaces.end(), [](const auto& one) {
               return one.problem.has_value();
           });
}

// What the probes have found, all together.
struct Findings
{
    size_t numWorking = 0;
    size_t numCameras = 0;
    size_t numUsable = 0;
    bool hasProblems = false; // something could not be loaded, opened or listed

    void Add(const ProbeResult& probe)
    {
        hasProblems |= !probe.record || HasProblem(*probe.record);
        if (!probe.record) return;
        ++numWorking;
        numCameras += AllCameras({*probe.record}).size();
        numUsable += probe.record->NumUsableCameras();
    }
};

const char* Advice(const ProducerSearch& search, const Findings& findings)
{
    if (search.candidates.empty() && !search.variableIsSet)
    {
        return "Set GENICAM_GENTL64_PATH to the directory of your camera maker's .cti file.";
    }
    if (search.candidates.empty()) return "None of these directories holds a .cti file.";
    if (findings.numWorking == 0) return "No producer works; the lines under each say why.";
    if (findings.numCameras > 0) return "Another program may have opened the cameras; `koro list` shows their access.";
    if (findings.hasProblems) return "No camera could be listed; the lines under each producer say why.";
    return "Check the cameras' cables, power and network.";
}

// The folders of producers that lie on this computer and are not searched, with the line that changes it.
void PrintPlaces(const ProducerSearch& search)
{
    const char* const searched = std::getenv(producerPathVariable);
    PrintOut("%s", DescribeUnsearchedPlaces(usualPlaces, {}, search.candidates, searched).c_str());
}

int Doctor(const DoctorSettings& settings)
{
    const ProducerSearch search = SearchProducers(settings.producer);
    PrintSearch(search);
    Findings findings;
    for (const ProbeResult& probe : ProbeProducers(search.candidates, {.timeout_ms = settings.timeout_ms}))
    {
        PrintProbe(probe);
        findings.Add(probe);
    }
    if (settings.producer.file.empty() && (findings.numUsable == 0 || !search.variableIsSet)) PrintPlaces(search);
    if (findings.numUsable > 0)
    {
        PrintOut("%zu usable %s\n", findings.numUsable, findings.numUsable == 1 ? "camera" : "cameras");
        return exitSuccess;
    }
    PrintOut("no usable camera\nhint: %s\n", Advice(search, findings));
    return exitNoUsableCamera;
}

} // namespace

Action DefineDoctor(CLI::App& command)
{
    const auto settings = std::make_shared<DoctorSettings>();
    DefineProducer(command, settings->producer);
    TakesWholeNumber(
        command.add_option("--timeout", settings->timeout_ms, "Milliseconds that each producer has"), 1, 3600000)
        ->capture_default_str();
    return [settings] { return Doctor(*settings); };
}

} // namespace koro::tool
