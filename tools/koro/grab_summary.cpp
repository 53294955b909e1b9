#include "tools/koro/grab_summary.h"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>

namespace koro::tool
{

namespace
{

using nlohmann::json;

std::string Seconds(double seconds)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.3f s", seconds);
    return text;
}

std::string PerSecond(double amount, const char* unit)
{
    if (amount <= 0) return "-";
    char text[64];
    std::snprintf(text, sizeof text, "%.1f %s", amount, unit);
    return text;
}

json IfPositive(double amount)
{
    return amount > 0 ? json(amount) : json();
}

} // namespace

Rows SummaryRows(const GrabTotals& totals)
{
    const GrabStatistics& statistics = totals.statistics;
    Rows rows;
    const auto add = [&rows](const char* label, std::string value) { rows.emplace_back(label, std::move(value)); };
    if (totals.numPictures) add("pictures", std::to_string(*totals.numPictures));
    if (totals.numPictures && totals.numFiles != *totals.numPictures) add("files", std::to_string(totals.numFiles));
    add("frames", std::to_string(statistics.numFrames));
    add("rate", PerSecond(statistics.Rate(), "frames/s"));
    add("throughput", PerSecond(statistics.BytesPerSecond() / 1e6, "MB/s"));
    add("underruns", totals.numUnderruns ? std::to_string(*totals.numUnderruns) : "-");
    add("incomplete", std::to_string(statistics.numIncomplete));
    add("timeouts", std::to_string(statistics.numTimeouts));
    add("empty", std::to_string(statistics.numEmpty));
    if (statistics.OutageSeconds() > 0) add("outage", Seconds(statistics.OutageSeconds()));
    if (statistics.numReconnects > 0)
    {
        add("reconnects", std::to_string(statistics.numReconnects));
        add("longest outage", Seconds(statistics.longestOutage_s));
    }
    if (statistics.numPointsLeftOut > 0) add("points left out", std::to_string(statistics.numPointsLeftOut));
    return rows;
}

json SummaryJSON(const GrabTotals& totals)
{
    const GrabStatistics& statistics = totals.statistics;
    return {
        {"pictures", totals.numPictures.value_or(0)},
        {"files", totals.numFiles},
        {"frames", statistics.numFrames},
        {"whole", statistics.numWhole},
        {"incomplete", statistics.numIncomplete},
        {"empty", statistics.numEmpty},
        {"framesPerSecond", IfPositive(statistics.Rate())},
        {"bytesPerSecond", IfPositive(statistics.BytesPerSecond())},
        {"underruns", totals.numUnderruns ? json(*totals.numUnderruns) : json()},
        {"timeouts", statistics.numTimeouts},
        {"outage_s", statistics.OutageSeconds()},
        {"reconnects", statistics.numReconnects},
        {"longestOutage_s", statistics.longestOutage_s},
        {"pointsLeftOut", statistics.numPointsLeftOut},
    };
}

} // namespace koro::tool
