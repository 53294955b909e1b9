// Discovery: the cameras of all producers in reach, found by a probing process for each, so that none can take the
// tool down. What it returns are values.
#pragma once

#include "tools/koro/camera_selection.h"
#include "tools/koro/producer_probe.h"
#include "tools/koro/producer_search.h"

#include <string>
#include <vector>

namespace koro::tool
{

struct Discovery
{
    std::vector<ProducerRecord> producers; // those that work
    std::vector<ProbeResult> failed;
};

// `singleProducer` is a path, or empty for the environment. Throws koro::Error when the variable is not set.
Discovery Discover(const std::string& singleProducer);

// The camera called `name`; the failed producers are named on standard error, since the camera may be one of theirs.
// The choice points into `discovery`.
CameraChoice FindCamera(const Discovery& discovery, const std::string& name);

// One line: "<path> is left out: <why>".
std::string DescribeFailure(const ProbeResult& failed);

} // namespace koro::tool
