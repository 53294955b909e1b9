#include "tools/koro/feature_file.h"

#include "tools/koro/local_file.h"
#include "tools/koro/report.h"
#include "tools/koro/tool_error.h"

#include <algorithm>
#include <string_view>

namespace koro::tool
{

namespace
{

constexpr std::string_view magic = "{05D8C294-F295-4dfb-9D01-096BD04049F4}";
constexpr std::string_view spaces = " \t\n\v\f\r";

[[noreturn]] void Refuse(const std::string& name, size_t line, const std::string& what)
{
    throw ToolError(
        name + ", line " + std::to_string(line) + ": " + what + ".", "`koro settings save` writes such files.");
}

std::string_view Trimmed(std::string_view text)
{
    const size_t begin = text.find_first_not_of(spaces);
    if (begin == text.npos) return {};
    return text.substr(begin, text.find_last_not_of(spaces) - begin + 1);
}

// Takes "{A=1<tab>B=2}" and the tab behind it off the front.
std::vector<std::pair<std::string, std::string>> TakeSelectors(
    std::string_view& rest, const std::string& name, size_t line)
{
    std::vector<std::pair<std::string, std::string>> selectors;
    const size_t end = rest.find("}\t");
    if (end == rest.npos) Refuse(name, line, "the selectors have no end");
    std::string_view inside = rest.substr(1, end - 1);
    rest.remove_prefix(end + 2);
    while (!inside.empty())
    {
        const size_t next = std::min(inside.find('\t'), inside.size());
        const std::string_view pair = inside.substr(0, next);
        const size_t equals = pair.rfind('=');
        if (equals == pair.npos) Refuse(name, line, "a selector has no value");
        selectors.emplace_back(pair.substr(0, equals), pair.substr(equals + 1));
        inside.remove_prefix(std::min(next + 1, inside.size()));
    }
    return selectors;
}

// The library takes nothing behind a zero byte; what stands there would be lost without a word.
std::string TextOf(const std::string& source, const std::string& name)
{
    const size_t end = source.find('\0');
    if (end == source.npos) return source;
    if (source.find_first_not_of('\0', end) != source.npos)
    {
        const auto line = 1 + std::count(source.begin(), source.begin() + static_cast<std::ptrdiff_t>(end), '\n');
        Refuse(name, static_cast<size_t>(line), "there is a zero byte, and text behind it");
    }
    return source.substr(0, end);
}

bool IsLostInAFile(const std::string& value)
{
    return value.empty() || value.front() == '{';
}

} // namespace

std::string FeatureRecord::Title() const
{
    std::string title = name;
    for (size_t i = 0; i < selectors.size(); ++i)
        title += (i == 0 ? "[" : ", ") + selectors[i].first + "=" + selectors[i].second;
    return selectors.empty() ? title : title + "]";
}

std::vector<FeatureRecord> ReadFeatureFile(const std::filesystem::path& path)
{
    return ParseFeatureFile(ReadLocalFile(path), path.string());
}

std::vector<FeatureRecord> ParseFeatureFile(const std::string& source, const std::string& name, SettingsOf origin)
{
    std::string text = TextOf(source, name);
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());

    std::vector<FeatureRecord> records;
    std::string_view left = text;
    for (size_t line = 1; line == 1 || !left.empty(); ++line)
    {
        const size_t end = std::min(left.find('\n'), left.size());
        std::string_view rest = left.substr(0, end);
        left.remove_prefix(std::min(end + 1, left.size()));
        if (line == 1)
        {
            if (rest.find(magic) == rest.npos) Refuse(name, line, "this is no file of settings");
            continue;
        }
        const size_t tab = rest.find('\t');
        const bool isBlank = tab == rest.npos && Trimmed(rest).empty();
        if (isBlank || rest.front() == '#')
        {
            // The library writes comments at the head alone.
            if (origin == SettingsOf::Camera && !records.empty())
                Refuse(name, line, "the text of " + PrintableStart(records.back().name) + " goes on here");
            continue;
        }

        if (tab == rest.npos) Refuse(name, line, "there is no tab behind the name of the feature");
        FeatureRecord& record = records.emplace_back();
        record.line = line;
        record.name = Trimmed(rest.substr(0, tab));
        rest.remove_prefix(tab + 1);
        if (record.name.empty()) Refuse(name, line, "there is no name in front of the tab");
        const bool isText = origin == SettingsOf::Camera && rest.find("}\t") == rest.npos;
        if (!rest.empty() && rest.front() == '{' && !isText) record.selectors = TakeSelectors(rest, name, line);
        record.value = rest;
        if (record.value.empty() && origin == SettingsOf::File)
            Refuse(name, line, PrintableStart(record.name) + " has no value");
    }
    return records;
}

std::string FeatureFileOf(const std::vector<FeatureRecord>& records)
{
    std::string text = "# " + std::string(magic) + "\n";
    for (const FeatureRecord& record : records)
    {
        text += record.name + "\t";
        for (const auto& [name, value] : record.selectors)
            text += (&name == &record.selectors.front().first ? "{" : "\t") + name + "=" + value;
        text += (record.selectors.empty() ? "" : "}\t") + record.value + "\n";
    }
    return text;
}

bool IsKeptByAFile(const FeatureRecord& record)
{
    constexpr std::string_view ends("\n\r\0", 3);
    return !IsLostInAFile(record.value) && record.value.find_first_of(ends) == record.value.npos;
}

std::vector<std::string> TakeOutWhatNoFileHolds(std::string& text, std::vector<FeatureRecord>& records)
{
    std::vector<std::string> titles;
    std::string kept;
    auto record = records.begin();
    for (size_t line = 1, begin = 0, end = 0; begin < text.size(); ++line, begin = end)
    {
        end = std::min(text.find('\n', begin), text.size() - 1) + 1;
        const bool isRecord = record != records.end() && record->line == line;
        if (isRecord && IsLostInAFile(record->value))
            titles.push_back(record->Title());
        else
            kept.append(text, begin, end - begin);
        if (isRecord) ++record;
    }
    text = std::move(kept);
    std::erase_if(records, [](const FeatureRecord& read) { return IsLostInAFile(read.value); });
    return titles;
}

std::vector<FeatureDifference> Differences(
    const std::vector<FeatureRecord>& left, const std::vector<FeatureRecord>& right)
{
    std::map<std::string, std::pair<const FeatureRecord*, const FeatureRecord*>> found;
    std::vector<std::string> order;
    for (const FeatureRecord& record : left)
    {
        auto [place, isNew] = found.try_emplace(record.Title());
        if (isNew) order.push_back(place->first);
        place->second.first = &record;
    }
    for (const FeatureRecord& record : right)
    {
        auto [place, isNew] = found.try_emplace(record.Title());
        if (isNew) order.push_back(place->first);
        place->second.second = &record;
    }

    std::vector<FeatureDifference> differences;
    for (const std::string& title : order)
    {
        const auto& [first, second] = found.at(title);
        if (first && second && first->value == second->value) continue;
        differences.push_back({title, first, second});
    }
    return differences;
}

} // namespace koro::tool
