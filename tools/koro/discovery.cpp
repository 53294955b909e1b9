#include "tools/koro/discovery.h"

#include "tools/koro/report.h"
#include <koro/koro.hpp>

#include <cstdio>
#include <utility>

namespace koro::tool
{

Discovery Discover(const std::string& singleProducer)
{
    const ProducerSearch search = SearchProducers(singleProducer);
    if (singleProducer.empty() && !search.variableIsSet)
    {
        // The library words this best.
        const Library library = Library::Initialize();
        EnvironmentInspector::Update();
    }

    Discovery discovery;
    for (const std::string& candidate : search.candidates)
    {
        ProbeResult result = ProbeProducer(candidate, probeTimeout_ms);
        if (result.record)
        {
            discovery.producers.push_back(std::move(*result.record));
        }
        else
        {
            discovery.failed.push_back(std::move(result));
        }
    }
    return discovery;
}

CameraChoice FindCamera(const Discovery& discovery, const std::string& name)
{
    for (const ProbeResult& failed : discovery.failed)
    {
        std::fprintf(stderr, "koro: %s\n", DescribeFailure(failed).c_str());
    }
    return SelectCamera(discovery.producers, name);
}

std::string DescribeFailure(const ProbeResult& failed)
{
    return PrintableStart(failed.path + " is left out: " + failed.text, 4096);
}

} // namespace koro::tool
