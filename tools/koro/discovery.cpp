#include "tools/koro/discovery.h"

#include "tools/koro/opened_producer.h"
#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"
#include "tools/koro/tool_error.h"
#include <koro/koro.hpp>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace koro::tool
{

namespace
{

// Simulated cameras are for those who have no other.
void LeaveOutStandIn(const std::string& simulator, std::vector<ProducerRecord>& producers)
{
    const bool othersAnswered = std::any_of(producers.begin(), producers.end(), [&](const ProducerRecord& producer) {
        return producer.path != simulator && !AllCameras({producer}).empty();
    });
    if (!othersAnswered) return;
    std::erase_if(producers, [&](const ProducerRecord& producer) { return producer.path == simulator; });
}

void SayWhoIsWaitedFor(const std::vector<std::string>& paths)
{
    for (const std::string& path : paths)
        std::fprintf(Errors(), "koro: waiting for %s\n", Printable(path).c_str());
}

Discovery ProbeAll(const ProducerChoice& choice, const std::string& wanted)
{
    if (!choice.file.empty()) RequireProducerFile(choice.file);
    const ProducerSearch search = SearchProducers(choice);
    if (!search.ownFolder.empty())
    {
        std::fprintf(
            Errors(), "koro: %s %s; these producers came with the tool: %s\n", producerPathVariable,
            search.variableIsEmpty ? "names no directory" : "is not set", Printable(search.ownFolder).c_str());
    }
    else if (search.candidates.empty() && search.variableIsEmpty)
    {
        throw ToolError(
            std::string(producerPathVariable) + " names no directory.",
            "Set it to the directory of your camera maker's .cti file; `koro doctor` looks for such files.");
    }
    else if (search.candidates.empty() && !search.variableIsSet)
    {
        // The library words this best.
        const Library library = Library::Initialize();
        EnvironmentInspector::Update();
    }

    Discovery discovery;
    for (ProbeResult& result : ProbeProducers(search.candidates, {.wanted = wanted, .onWait = SayWhoIsWaitedFor}))
    {
        if (result.record)
        {
            discovery.producers.push_back(std::move(*result.record));
        }
        else
        {
            discovery.failed.push_back(std::move(result));
        }
    }
    if (!search.standIn.empty()) LeaveOutStandIn(search.standIn, discovery.producers);
    return discovery;
}

// What keeps producers that were loaded from showing their cameras.
std::vector<std::string> ProblemsOf(const std::vector<ProducerRecord>& producers)
{
    std::vector<std::string> problems;
    for (const ProducerRecord& producer : producers)
    {
        if (producer.problem) problems.push_back(producer.path + ": " + *producer.problem);
        for (const InterfaceRecord& record : producer.interfaces)
        {
            if (record.problem) problems.push_back(producer.path + ", " + record.id + ": " + *record.problem);
        }
    }
    return problems;
}

void PrintFailures(const Discovery& discovery)
{
    for (const ProbeResult& failed : discovery.failed)
        std::fprintf(Errors(), "koro: %s\n", DescribeFailure(failed).c_str());
}

// What the producers that work could not list. False when there is nothing.
bool PrintProblems(const Discovery& discovery)
{
    const std::vector<std::string> problems = ProblemsOf(discovery.producers);
    for (const std::string& problem : problems)
        std::fprintf(Errors(), "koro: %s\n", Printable(problem).c_str());
    return !problems.empty();
}

} // namespace

Discovery Discover(const ProducerChoice& choice)
{
    return ProbeAll(choice, {});
}

Discovery DiscoverFor(const ProducerChoice& choice, const std::string& wanted)
{
    if (choice.file.empty()) return ProbeAll(choice, wanted);

    RequireProducerFile(choice.file);
    Discovery discovery;
    discovery.opened = std::make_shared<OpenedProducer>(SearchProducers(choice).candidates.front());
    ProducerRecord record = discovery.opened->Describe();
    discovery.opened->Open();
    discovery.opened->List(record, wanted);
    discovery.producers.push_back(std::move(record));
    return discovery;
}

CameraChoice FindCamera(const Discovery& discovery, const std::string& name)
{
    const std::vector<CameraChoice> found = FindCameras(discovery, name);
    return found.size() == 1 ? found.front() : SelectCamera(discovery.producers, name);
}

std::vector<CameraChoice> FindCameras(const Discovery& discovery, const std::string& name)
{
    PrintFailures(discovery);
    try
    {
        return SelectCameras(discovery.producers, name);
    }
    catch (const ToolError&)
    {
        // The camera may be one of those that could not be listed.
        const bool somethingFailed = PrintProblems(discovery) || !discovery.failed.empty();
        if (!somethingFailed || !AllCameras(discovery.producers).empty()) throw;
    }
    throw ToolError(
        discovery.producers.empty() ? "No producer works, so no camera can be found." : "No camera could be listed.",
        "`koro doctor` tells why.", exitNoSuchCamera);
}

InterfaceChoice FindInterface(const Discovery& discovery, const std::string& name)
{
    PrintFailures(discovery);
    try
    {
        return SelectInterface(discovery.producers, name);
    }
    catch (const ToolError&)
    {
        PrintProblems(discovery);
        throw;
    }
}

std::string DescribeFailure(const ProbeResult& failed)
{
    return PrintableStart(failed.path + " is left out: " + failed.text, 4096);
}

} // namespace koro::tool
