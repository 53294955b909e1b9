#include "producers/simulator/settings/connection_settings.h"

#include <limits>

namespace koro::simulator
{
namespace
{

constexpr std::size_t maxSteps = 1024;
constexpr std::int64_t maxRecordBytes = 4096;
constexpr std::int64_t maxAfter_ms = 86'400'000;
constexpr std::int64_t maxRepeat = 1'000'000'000;
constexpr std::int64_t maxOccasion = 1'000'000'000;

template <typename T>
void ReadNumber(JsonObject& object, const char* key, std::optional<T>& value)
{
    if (object.Has(key)) object.Read(key, value.emplace(), 0, std::numeric_limits<T>::max());
}

RecordShape ReadShape(JsonObject& object)
{
    std::string shape = "whole";
    object.Read("record", shape);
    if (shape == "whole") return RecordShape::Whole;
    if (shape == "unterminated") return RecordShape::Unterminated;
    if (shape == "otherInterface") return RecordShape::OtherInterface;
    if (shape == "short") return RecordShape::Short;
    object.Refuse("record", "must be whole, unterminated, otherInterface or short");
}

void ReadRecord(JsonObject& object, RecordChanges& record)
{
    record.shape = ReadShape(object);
    if (object.Has("id")) object.Read("id", record.id.emplace());
    ReadNumber(object, "changeKind", record.changeKind);
    ReadNumber(object, "deviceFlag", record.deviceFlag);
    ReadNumber(object, "reconnectFlag1", record.reconnectFlag1);
    ReadNumber(object, "reconnectFlag2", record.reconnectFlag2);
    ReadNumber(object, "reconnectValue", record.reconnectValue);
}

ConnectionStep ReadStep(const nlohmann::json& value, const std::string& place)
{
    JsonObject object(value, place);
    ConnectionStep step;
    object.Read("camera", step.camera);
    std::string kind;
    object.Read("do", kind);
    if (kind == "unplug")
        step.kind = ConnectionStep::Kind::Unplug;
    else if (kind == "replug")
        step.kind = ConnectionStep::Kind::Replug;
    else if (kind == "tell")
        step.kind = ConnectionStep::Kind::Tell;
    else if (kind == "send")
        step.kind = ConnectionStep::Kind::Send;
    else
        object.Refuse("do", "must be unplug, replug, tell or send");
    if (step.kind == ConnectionStep::Kind::Unplug) object.Read("atFrame", step.atFrame, 1, maxOccasion);
    if (step.kind == ConnectionStep::Kind::Replug) object.Read("missingUpdates", step.missingUpdates, 1, maxOccasion);
    if (!step.WaitsForOccasion()) object.Read("after_ms", step.after_ms, 0, maxAfter_ms);
    if (step.kind == ConnectionStep::Kind::Send)
        step.event = ReadEventRequest(object);
    else
        ReadRecord(object, step.record);
    object.RequireNothingElse();
    return step;
}

} // namespace

ConnectionSettings ReadConnection(const nlohmann::json& value, const std::string& place)
{
    JsonObject object(value, place);
    ConnectionSettings settings;
    object.Read("recordBytes", settings.recordBytes, 0, maxRecordBytes);
    std::string after = "resume";
    object.Read("afterReplug", after);
    if (after != "resume" && after != "reopen") object.Refuse("afterReplug", "must be resume or reopen");
    settings.resumes = after == "resume";
    object.Read("staysListed", settings.staysListed);
    object.Read("listRecords", settings.listRecords);
    object.ReadError("deadCameraError", settings.deadCameraError);
    if (settings.deadCameraError == GC_ERR_SUCCESS) object.Refuse("deadCameraError", "must be an error");
    object.ReadArray("script", maxSteps, [&settings](const nlohmann::json& step, const std::string& where) {
        settings.script.push_back(ReadStep(step, where));
    });
    object.Read("repeat", settings.repeat, 1, maxRepeat);
    object.Read("stepwise", settings.isStepwise);
    object.RequireNothingElse();
    return settings;
}

} // namespace koro::simulator
