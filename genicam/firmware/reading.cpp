#include "firmware/reading.h"

#include "firmware/bounds.h"

#include <algorithm>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

uint32_t DurationOf(const Procedures& procedures, const std::string& id)
{
    const auto procedure = procedures.find(id);
    const uint64_t steps_ms = procedure == procedures.end() ? 0 : procedure->second.duration_ms;
    return static_cast<uint32_t>(std::min<uint64_t>(steps_ms + 2 * checkDuration_ms, UINT32_MAX));
}

} // namespace

Procedures ReadUpdates(
    const UpdateFile& file, const std::string& path, std::string_view preferredLanguage, const OnRecord& onRecord)
{
    size_t number = 0;
    return ParseControlFile(file.ControlFile(), [&](const UpdateRules& rules, const Procedures& procedures) {
        UpdateRecord record;
        record.path = path;
        record.package = file.PackageFingerprint();
        record.number = number++;
        record.procedureId = rules.procedureId;
        record.duration_ms = DurationOf(procedures, rules.procedureId);
        record.entries = ChooseEntries(rules.entries, preferredLanguage);
        record.conditions = rules.conditions;
        return onRecord(std::move(record));
    });
}

} // namespace GENAPI_NAMESPACE::runtime
