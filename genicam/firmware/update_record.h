// UpdateRecord: the data that CFirmwareUpdateInfo returns, and the data for finding and applying the update.
#pragma once

#include "firmware/control_file.h"
#include "firmware/update_file.h"

#include <FirmwareUpdate/FirmwareUpdateInfo.h>

namespace GENAPI_NAMESPACE::runtime
{

struct UpdateRecord
{
    struct Entry
    {
        std::string key;
        LanguageText text;

        bool operator==(const Entry&) const = default;
    };

    std::string path;
    Fingerprint package;
    size_t number = 0; // of the update within the file
    std::string procedureId;
    uint32_t duration_ms = 0; // of all steps of the procedure, and of the two before them
    std::vector<Entry> entries;
    std::vector<Condition> conditions;

    bool operator==(const UpdateRecord&) const = default;
    // Null: no such key.
    const Entry* Find(std::string_view key) const;
};

// One entry for each key, chosen by language, in the order of the keys' first mention. FormatException: an entry that
// has to be there is not, or an entry is not as it has to be.
std::vector<UpdateRecord::Entry> ChooseEntries(
    const std::vector<UpdateRules::Entry>& entries, std::string_view preferredLanguage);

// The only way from a record to its public face and back.
class InfoAccess
{
public:
    static CFirmwareUpdateInfo Make(UpdateRecord record);
    // Null: not valid.
    static std::shared_ptr<const UpdateRecord> RecordOf(const CFirmwareUpdateInfo& info) { return info.record; }
};

} // namespace GENAPI_NAMESPACE::runtime
