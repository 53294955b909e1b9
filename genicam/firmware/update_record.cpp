#include "firmware/update_record.h"

#include <FirmwareUpdate/FirmwareUpdateExceptions.h>
#include <algorithm>
#include <iterator>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const char* const keysWithoutLanguage[] = {
    FirmwareUpdateInfoKey_Version, FirmwareUpdateInfoKey_VersionStyle, FirmwareUpdateInfoKey_VersionExtractionPattern};
const char* const neededKeys[] = {FirmwareUpdateInfoKey_Version, FirmwareUpdateInfoKey_Description};

void CheckEntry(const UpdateRules::Entry& entry)
{
    const bool withoutLanguage = std::find(std::begin(keysWithoutLanguage), std::end(keysWithoutLanguage), entry.key) !=
                                 std::end(keysWithoutLanguage);
    if (withoutLanguage && !entry.text.language.empty())
    {
        throw GENFW_FORMAT_EXCEPTION(
            "The entry '%s' takes no language, but has '%s'", entry.key.c_str(), Shown(entry.text.language).c_str());
    }
    if (entry.key == FirmwareUpdateInfoKey_VersionStyle &&
        entry.text.text != FirmwareUpdateInfoValue_VersionStyle_Dotted &&
        entry.text.text != FirmwareUpdateInfoValue_VersionStyle_SemVer)
    {
        throw GENFW_FORMAT_EXCEPTION(
            "The entry '%s' is '%s'; it can be '%s' or '%s'", entry.key.c_str(), Shown(entry.text.text).c_str(),
            FirmwareUpdateInfoValue_VersionStyle_Dotted, FirmwareUpdateInfoValue_VersionStyle_SemVer);
    }
}

} // namespace

const UpdateRecord::Entry* UpdateRecord::Find(std::string_view key) const
{
    const auto found =
        std::find_if(entries.begin(), entries.end(), [key](const Entry& entry) { return entry.key == key; });
    return found == entries.end() ? nullptr : &*found;
}

std::vector<UpdateRecord::Entry> ChooseEntries(
    const std::vector<UpdateRules::Entry>& entries, std::string_view preferredLanguage)
{
    std::vector<std::string> keys; // in the order of their first mention
    std::unordered_map<std::string, std::vector<LanguageText>> texts;
    for (const UpdateRules::Entry& entry : entries)
    {
        CheckEntry(entry);
        const auto [place, inserted] = texts.try_emplace(entry.key);
        if (inserted) keys.push_back(entry.key);
        place->second.push_back(entry.text);
    }
    for (const char* const key : neededKeys)
    {
        if (texts.count(key) == 0) throw GENFW_FORMAT_EXCEPTION("An update has no entry '%s'", key);
    }
    std::vector<UpdateRecord::Entry> chosen;
    for (const std::string& key : keys)
        chosen.push_back({key, *ChooseText(texts[key], preferredLanguage)});
    return chosen;
}

CFirmwareUpdateInfo InfoAccess::Make(UpdateRecord record)
{
    CFirmwareUpdateInfo info;
    info.record = std::make_shared<const UpdateRecord>(std::move(record));
    return info;
}

} // namespace GENAPI_NAMESPACE::runtime
