// Feature files: the text form of a camera's settings, read for people, with the lines that its records stand on.
//
// Values. Any thread.
#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace koro::tool
{

struct FeatureRecord
{
    size_t line = 0; // from 1
    std::string name;
    std::vector<std::pair<std::string, std::string>> selectors; // name and value, in their order
    std::string value;

    // "Gain[GainSelector=All]"; what it is among the records of a file.
    std::string Title() const;
};

// Throws ToolError, with the line, for a file that cannot be read or is no feature file. Files of other software and
// those that people have edited may have carriage returns, comments and blank lines between the records. Of zero bytes
// only those at the end are taken.
std::vector<FeatureRecord> ReadFeatureFile(const std::filesystem::path& path);
// The library stores texts that it does not read back as they were: empty ones, and those with a brace in front.
enum class SettingsOf
{
    File,   // which is refused when a value is missing
    Camera, // just stored
};

// The same of a text; `name` is what messages call it.
std::vector<FeatureRecord> ParseFeatureFile(
    const std::string& text, const std::string& name, SettingsOf origin = SettingsOf::File);
// The text that the library reads as these records, where it is stricter with a file than ReadFeatureFile.
std::string FeatureFileOf(const std::vector<FeatureRecord>& records);
// Whether a file can hold the record's value: texts of several lines, empty ones and those with a brace in front are
// lost or read back as something else.
bool IsKeptByAFile(const FeatureRecord& record);
// Takes the records of such texts out, and their lines out of the camera's text that was parsed. Returns their titles.
std::vector<std::string> TakeOutWhatNoFileHolds(std::string& text, std::vector<FeatureRecord>& records);

struct FeatureDifference
{
    std::string title;
    const FeatureRecord* left;  // null: not there
    const FeatureRecord* right; // null: not there
};

// What two files have not in common, in the order of the left one, then of the right one. Points into the arguments. Of
// records with one title the last counts.
std::vector<FeatureDifference> Differences(
    const std::vector<FeatureRecord>& left, const std::vector<FeatureRecord>& right);

} // namespace koro::tool
