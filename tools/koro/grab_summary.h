// Grab summary: what closes a grab, as a table for a person or as JSON. Pure functions.
#pragma once

#include "tools/koro/grab_statistics.h"
#include "tools/koro/report.h"

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>

namespace koro::tool
{

struct GrabTotals
{
    const GrabStatistics& statistics;
    std::optional<uint64_t> numUnderruns; // as the producer counts them
    std::optional<uint64_t> numPictures;  // whole frames that were saved; empty when none is to be
    uint64_t numFiles;
};

Rows SummaryRows(const GrabTotals& totals);
nlohmann::json SummaryJSON(const GrabTotals& totals);

} // namespace koro::tool
