// Discovery: the cameras of all producers in reach, found by a probing process for each, so that none can take the
// tool down. What it returns are values, and the producer if there was no need of a probe.
#pragma once

#include "tools/koro/camera_selection.h"
#include "tools/koro/producer_option.h"
#include "tools/koro/producer_probe.h"
#include "tools/koro/producer_search.h"

#include <memory>
#include <string>
#include <vector>

namespace koro::tool
{

class OpenedProducer;

struct Discovery
{
    std::vector<ProducerRecord> producers; // those that work
    std::vector<ProbeResult> failed;
    std::shared_ptr<OpenedProducer> opened; // the only producer, loaded into this process; null after probes
};

// All cameras, with the whole time for each list, by probes. Throws koro::Error when there is nothing to search.
Discovery Discover(const ProducerChoice& choice);

// For the camera called `wanted`. A producer that was named is not probed: it is loaded into this process, since it is
// the only one that can have the camera.
Discovery DiscoverFor(const ProducerChoice& choice, const std::string& wanted);

// The camera called `name`; the failed producers are named on standard error, since the camera may be one of theirs.
// The choice points into `discovery`.
CameraChoice FindCamera(const Discovery& discovery, const std::string& name);
// The same for all that a name or a pattern means, at least one.
std::vector<CameraChoice> FindCameras(const Discovery& discovery, const std::string& name);
// Likewise for an interface.
InterfaceChoice FindInterface(const Discovery& discovery, const std::string& name);

// One line: "<path> is left out: <why>".
std::string DescribeFailure(const ProbeResult& failed);

} // namespace koro::tool
