// Firmware update files. The first byte determines the meaning of the rest: F a whole file, P the package inside one, C
// the control file inside that, R a pattern, a line feed and a text.
#include "firmware/bounds.h"
#include "firmware/pattern.h"
#include "firmware/payloads.h"
#include "firmware/reading.h"
#include "fuzz/fuzz_target.h"
#include "tests/unit/genicam/zip_builder.h"

#include <Base/GCException.h>
#include <set>

namespace
{

using namespace GENAPI_NAMESPACE;
using namespace GENAPI_NAMESPACE::runtime;
using koro::fuzz::Require;

void CheckRecord(const UpdateRecord& record)
{
    std::set<std::string> keys;
    for (const UpdateRecord::Entry& entry : record.entries)
        Require(keys.insert(entry.key).second, "a key is there once");
    Require(keys.count("Version") + keys.count("Description") == 2, "an update has a version and a description");
    Require(!record.conditions.empty(), "an update has a condition");
    Require(record.duration_ms >= 2 * checkDuration_ms, "the two first steps are counted");
    const CFirmwareUpdateInfo info = InfoAccess::Make(record);
    for (size_t index = 0; index < info.GetCountOfInfos(); ++index)
        Require(info.GetInfo(info.GetInfoKey(index)) != nullptr, "a key has a text");
}

void CheckProcedures(const Procedures& procedures)
{
    for (const auto& [id, procedure] : procedures)
    {
        uint64_t duration_ms = 0;
        for (const Step& step : procedure.steps)
        {
            duration_ms += step.duration_ms;
            Require(!step.descriptions.empty(), "a step has a description");
            Require(
                step.type >= ProgressStepType_FeatureWrite && step.type < ProgressStepType_Invalid,
                "a step has a kind");
        }
        Require(duration_ms == procedure.duration_ms, "the durations are summed up");
    }
}

void ReadFile(std::string bytes)
{
    const size_t size = bytes.size();
    const UpdateFile file("update.guf", std::move(bytes));
    for (const Archive::Place& place : {file.Package(), file.Signature()})
        Require(place.offset <= size && place.size <= size - place.offset, "an entry lies within the file");
    const Procedures procedures = ReadUpdates(file, "update.guf", "de", [](UpdateRecord&& record) {
        CheckRecord(record);
        return true;
    });
    CheckProcedures(procedures);
    VerifyPayloads(file, procedures);
}

void ReadPackage(const std::string& package)
{
    koro::test::ZipBuilder container;
    container.AddStored("package.zip", package);
    ReadFile(container.Bytes());
}

void ReadControl(std::string_view xml)
{
    CheckProcedures(ParseControlFile(xml, [](const UpdateRules& rules, const Procedures&) {
        ChooseEntries(rules.entries, "de");
        return true;
    }));
}

void Match(std::string_view patternAndText)
{
    const size_t end = patternAndText.find('\n');
    const std::string_view text = end == std::string_view::npos ? "" : patternAndText.substr(end + 1);
    const Pattern pattern(patternAndText.substr(0, end));
    const auto extracted = pattern.Extract(text);
    if (!extracted) return;
    Require(pattern.Matches(text), "what is extracted was matched");
    Require(text.find(*extracted) != std::string_view::npos, "what is extracted is a part of the text");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) return 0;
    const std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    try
    {
        switch (data[0])
        {
        case 'F':
            ReadFile(std::string(rest));
            break;
        case 'P':
            ReadPackage(std::string(rest));
            break;
        case 'C':
            ReadControl(rest);
            break;
        case 'R':
            Match(rest);
            break;
        default:
            break;
        }
    }
    catch (const GENICAM_NAMESPACE::GenericException& exception)
    {
        Require(exception.GetDescription()[0] != '\0', "a refusal says why");
    }
    return 0;
}
