// SettingsPlan: the records of a feature file beside a camera as it stands: what would change, and what cannot be
// written and why. One thread at a time.
#pragma once

#include "tools/koro/feature_file.h"
#include <koro/koro.hpp>

#include <optional>
#include <string>
#include <vector>

namespace koro::tool
{

struct PlannedRecord
{
    const FeatureRecord* record = nullptr;
    std::string before;          // the camera's value; empty if it cannot be read
    std::string problem;         // why it cannot be written; empty if it can, or has not to be
    bool isSame = false;         // the camera has the value
    std::string missingSelector; // one that the camera has not, and that the library passes over
    bool isWritten = false;      // just now, and taken as it stands in the file
    bool isOfTheMoment = false;  // the problem, which is one of limits or access
    std::string condition;       // a feature that another record changes, after which the value may be possible
};

// The name of a command that the library would execute when it writes the record: its feature, or a selector of it.
std::optional<std::string> CommandIn(const NodeMap& nodes, const FeatureRecord& record);

// Looks at each record, with its selectors set for that moment. Writes nothing else, and sets the selectors back. A
// problem of the moment gets its condition if there is one.
// Points into `records`.
std::vector<PlannedRecord> PlanSettings(
    const NodeMap& nodes, const Port& port, const std::vector<FeatureRecord>& records);

// Writes each record that the camera has not, one by one, in their order, and again as long as that brings the camera
// nearer to the file: one value may be possible only when another one, later in the file, is written. The problems are
// those of the last writing and of what the camera has made of it. The selectors are set back.
std::vector<PlannedRecord> WriteSettings(
    const NodeMap& nodes, const Port& port, const std::vector<FeatureRecord>& records);

} // namespace koro::tool
