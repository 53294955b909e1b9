#include "tools/koro/commands.h"
#include "tools/koro/producer_probe.h"
#include "tools/koro/producer_search.h"
#include "tools/koro/report.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>

namespace koro::tool
{

namespace
{

struct DoctorSettings
{
    std::string producer;
    uint64_t timeout_ms = probeTimeout_ms;
};

void PrintSearch(const ProducerSearch& search)
{
    std::printf("%s is %s\n", producerPathVariable, search.variableIsSet ? "set" : "not set");
    for (const SearchedDirectory& directory : search.directories)
    {
        const std::string state = directory.problem.empty() ? "ok" : directory.problem;
        std::printf("  %s: %s\n", Printable(directory.path).c_str(), Printable(state).c_str());
    }
    for (const std::string& duplicate : search.duplicates)
    {
        std::printf("duplicate: %s\n", Printable(duplicate).c_str());
    }
}

void PrintWorking(const ProducerRecord& producer)
{
    size_t numCameras = 0;
    for (const InterfaceRecord& record : producer.interfaces)
        numCameras += record.cameras.size();
    std::printf(
        "  loads: %s %s %s, GenTL %s\n", OrDash(producer.vendor).c_str(), OrDash(producer.model).c_str(),
        OrDash(producer.version).c_str(), OrDash(producer.genTLVersion).c_str());
    if (producer.problem) std::printf("  problem: %s\n", Printable(*producer.problem).c_str());
    for (const InterfaceRecord& record : producer.interfaces)
    {
        if (!record.problem) continue;
        std::printf("  problem of %s: %s\n", Printable(record.id).c_str(), Printable(*record.problem).c_str());
    }
    std::printf(
        "  cameras: %zu on %zu interfaces, %zu usable\n", numCameras, producer.interfaces.size(),
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
        std::printf("  loader: %s\n", Printable(texts[i]).c_str());
    }
    if (texts.size() > shown) std::printf("  loader: %zu more of this kind\n", texts.size() - shown);
}

void PrintProbe(const ProbeResult& probe)
{
    std::printf("%s\n", Printable(probe.path).c_str());
    PrintLoaderTexts(probe.loaderTexts);
    if (probe.record) return PrintWorking(*probe.record);
    std::printf(
        "  %s at %s: %s\n", OutcomeName(probe.outcome), Printable(probe.stage).c_str(), Printable(probe.text).c_str());
}

const char* Advice(const ProducerSearch& search)
{
    if (search.candidates.empty() && !search.variableIsSet)
    {
        return "Set GENICAM_GENTL64_PATH to the directory of your camera maker's .cti file.";
    }
    if (search.candidates.empty()) return "None of these directories holds a .cti file.";
    return "Check the cameras' cables, power and network, and whether another program uses them.";
}

int Doctor(const DoctorSettings& settings)
{
    const ProducerSearch search = SearchProducers(settings.producer);
    PrintSearch(search);
    size_t numUsable = 0;
    for (const std::string& candidate : search.candidates)
    {
        const ProbeResult probe = ProbeProducer(candidate, settings.timeout_ms);
        PrintProbe(probe);
        if (probe.record) numUsable += probe.record->NumUsableCameras();
    }
    if (numUsable > 0)
    {
        std::printf("%zu usable %s\n", numUsable, numUsable == 1 ? "camera" : "cameras");
        return exitSuccess;
    }
    std::printf("no usable camera\nhint: %s\n", Advice(search));
    return exitNoUsableCamera;
}

} // namespace

Action DefineDoctor(CLI::App& command)
{
    const auto settings = std::make_shared<DoctorSettings>();
    command.add_option("--producer", settings->producer, "Look at this .cti file alone, not the environment");
    command.add_option("--timeout", settings->timeout_ms, "Milliseconds that each producer has")
        ->check(CLI::Range(uint64_t{1}, uint64_t{3600000}))
        ->capture_default_str();
    return [settings] { return Doctor(*settings); };
}

} // namespace koro::tool
