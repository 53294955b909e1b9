// ParseControlFile: converts the XML text of a control file to records.
#pragma once

#include "firmware/texts.h"

#include <FirmwareUpdate/FirmwareUpdateProgressObserver.h>
#include <functional>
#include <optional>
#include <stdint.h>
#include <unordered_map>

namespace GENAPI_NAMESPACE::runtime
{

// One step of a procedure; the type determines which fields are used.
struct Step
{
    EFirmwareUpdateProgressStepType type = ProgressStepType_Invalid;
    std::vector<LanguageText> descriptions;
    uint32_t duration_ms = 0;
    std::string feature;              // write, execute, assert
    std::string value;                // write: the text; assert: the pattern
    std::string message;              // assert; empty: none
    std::string deviceFile;           // upload: entry of the file selector
    std::string file;                 // upload: name in the package
    std::optional<uint32_t> limit_ms; // execute
    uint32_t delay_ms = 0;            // reset
};

struct Procedure
{
    std::vector<Step> steps;
    uint64_t duration_ms = 0; // of all steps
};

using Procedures = std::unordered_map<std::string, Procedure>; // by id

struct Condition
{
    std::string feature;
    std::string pattern;

    bool operator==(const Condition&) const = default;
};

struct UpdateRules
{
    struct Entry
    {
        std::string key;
        LanguageText text;
    };
    std::string procedureId;
    std::vector<Entry> entries; // as they are in the file
    std::vector<Condition> conditions;
};

// Called for each update as soon as it is read, with the procedures, which all precede the updates. Returning false
// ends the reading.
using OnUpdateRules = std::function<bool(const UpdateRules&, const Procedures&)>;

// Throws RuntimeException; the text says what and where. Exceptions of the callback go through.
Procedures ParseControlFile(std::string_view xml, const OnUpdateRules& onUpdate);

} // namespace GENAPI_NAMESPACE::runtime
