#include "producers/simulator/settings/reset_settings.h"

#include <algorithm>

namespace koro::simulator
{
namespace
{

constexpr std::int64_t maxAbsence_ms = 600'000;
constexpr std::int64_t maxRetries = 1'000'000;

} // namespace

void ReadResetSettings(JsonObject& object, Absence& reset)
{
    object.Read("resetMissingUpdates", reset.missingUpdates, 0, INT64_MAX);
    object.Read("resetAbsence_ms", reset.time_ms, 0, maxAbsence_ms);
    object.Read("resetReturns", reset.returns);
    object.Read("resetChangesId", reset.changesId);
}

void ReadRetrySettings(JsonObject& object, CommandRetries& retries)
{
    object.Read("commandRetriesMaximum", retries.maximum, 0, maxRetries);
    retries.number = std::min(retries.number, retries.maximum);
    object.Read("commandRetries", retries.number, 0, maxRetries);
    std::string access;
    object.Read("commandRetriesAccess", access);
    retries.isReadOnly = access.empty() ? retries.isReadOnly : access == "readOnly";
    retries.isImplemented = access.empty() ? retries.isImplemented : access != "none";
    if (!access.empty() && access != "readWrite" && access != "readOnly" && access != "none")
        object.Refuse("commandRetriesAccess", "must be readWrite, readOnly or none");
    if (retries.number > retries.maximum) object.Refuse("commandRetries", "must be at most commandRetriesMaximum");
}

} // namespace koro::simulator
