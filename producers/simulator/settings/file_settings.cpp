#include "producers/simulator/settings/file_settings.h"

#include "producers/simulator/settings/file_access.h"
#include "producers/simulator/settings/settings_parts.h"

namespace koro::simulator
{
namespace
{

constexpr std::int64_t maxBufferBytes = std::int64_t{1} << 20;
constexpr std::int64_t maxFileBytes = std::int64_t{1} << 28;
constexpr std::int64_t maxBusyPolls = 1'000'000;

// Nothing when the key is missing.
template <typename Number, std::size_t count>
std::optional<Number> ReadWord(JsonObject& object, const char* key, const std::array<std::string_view, count>& words)
{
    if (!object.Has(key)) return std::nullopt;
    std::string word;
    object.Read(key, word);
    const auto found = FindWord<Number>(words, word);
    if (found) return found;
    std::string list;
    for (const std::string_view known : words)
        list += (list.empty() ? "" : ", ") + std::string(known);
    object.Refuse(key, "'" + word + "' is none of " + list);
}

} // namespace

void ReadFileSettings(JsonObject& object, CameraSettings& camera)
{
    object.Read("fileBufferBytes", camera.fileBufferBytes, 1, maxBufferBytes);
    object.Read("userFileBytes", camera.userFileBytes, 0, maxFileBytes);
    object.Read("memoryCard", camera.memoryCard);
}

FileFault ReadFileFault(const nlohmann::json& value, const std::string& place)
{
    JsonObject object(value, place);
    FileFault fault;
    fault.camera = ReadCameraName(object);
    fault.file = ReadWord<FileName>(object, "file", fileNames);
    fault.operation = ReadWord<FileOperation>(object, "operation", fileOperations);
    ReadOccurrences(object, fault.executions);
    object.Read("busyPolls", fault.busyPolls, 0, maxBusyPolls);
    fault.status = ReadWord<FileStatus>(object, "status", fileStatuses).value_or(FileStatus::Success);
    object.Read("movedBytes", fault.movedBytes, 0, maxBufferBytes);
    object.ReadError("error", fault.error);
    object.RequireNothingElse();
    return fault;
}

} // namespace koro::simulator
