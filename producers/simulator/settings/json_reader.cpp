#include "producers/simulator/settings/json_reader.h"

#include "producers/kit/failure.h"
#include "producers/simulator/kit.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace koro::simulator
{
namespace
{

constexpr std::size_t maxDocumentBytes = std::size_t{1} << 20;
constexpr int maxDepth = 8;
constexpr std::size_t maxTextLength = 255;

constexpr std::pair<const char*, GC_ERROR> errorNames[] = {
    {"GC_ERR_SUCCESS", GC_ERR_SUCCESS},
    {"GC_ERR_ERROR", GC_ERR_ERROR},
    {"GC_ERR_NOT_INITIALIZED", GC_ERR_NOT_INITIALIZED},
    {"GC_ERR_NOT_IMPLEMENTED", GC_ERR_NOT_IMPLEMENTED},
    {"GC_ERR_RESOURCE_IN_USE", GC_ERR_RESOURCE_IN_USE},
    {"GC_ERR_ACCESS_DENIED", GC_ERR_ACCESS_DENIED},
    {"GC_ERR_INVALID_HANDLE", GC_ERR_INVALID_HANDLE},
    {"GC_ERR_INVALID_ID", GC_ERR_INVALID_ID},
    {"GC_ERR_NO_DATA", GC_ERR_NO_DATA},
    {"GC_ERR_INVALID_PARAMETER", GC_ERR_INVALID_PARAMETER},
    {"GC_ERR_IO", GC_ERR_IO},
    {"GC_ERR_TIMEOUT", GC_ERR_TIMEOUT},
    {"GC_ERR_ABORT", GC_ERR_ABORT},
    {"GC_ERR_INVALID_BUFFER", GC_ERR_INVALID_BUFFER},
    {"GC_ERR_NOT_AVAILABLE", GC_ERR_NOT_AVAILABLE},
    {"GC_ERR_INVALID_ADDRESS", GC_ERR_INVALID_ADDRESS},
    {"GC_ERR_BUFFER_TOO_SMALL", GC_ERR_BUFFER_TOO_SMALL},
    {"GC_ERR_INVALID_INDEX", GC_ERR_INVALID_INDEX},
    {"GC_ERR_PARSING_CHUNK_DATA", GC_ERR_PARSING_CHUNK_DATA},
    {"GC_ERR_INVALID_VALUE", GC_ERR_INVALID_VALUE},
    {"GC_ERR_RESOURCE_EXHAUSTED", GC_ERR_RESOURCE_EXHAUSTED},
    {"GC_ERR_OUT_OF_MEMORY", GC_ERR_OUT_OF_MEMORY},
    {"GC_ERR_BUSY", GC_ERR_BUSY},
    {"GC_ERR_AMBIGUOUS", GC_ERR_AMBIGUOUS},
};

} // namespace

JsonObject::JsonObject(const nlohmann::json& value, std::string placeInDocument)
    : object(value), place(std::move(placeInDocument))
{
    if (!object.is_object())
        throw Failure(GC_ERR_ERROR, (place.empty() ? "the document" : place) + ": must be an object");
}

void JsonObject::Refuse(const std::string& key, const std::string& why) const
{
    throw Failure(GC_ERR_ERROR, (place.empty() ? key : place + "." + key) + ": " + why);
}

const nlohmann::json* JsonObject::Take(const char* key)
{
    known.insert(key);
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

void JsonObject::Read(const char* key, std::string& value)
{
    const nlohmann::json* found = Take(key);
    if (found == nullptr) return;
    if (!found->is_string()) Refuse(key, "must be a text");
    value = found->get<std::string>();
    if (value.size() > maxTextLength) Refuse(key, "must have at most " + std::to_string(maxTextLength) + " bytes");
    if (value.find('\0') != std::string::npos) Refuse(key, "must not hold a zero byte");
}

void JsonObject::Read(const char* key, bool& value)
{
    const nlohmann::json* found = Take(key);
    if (found == nullptr) return;
    if (!found->is_boolean()) Refuse(key, "must be true or false");
    value = found->get<bool>();
}

void JsonObject::Read(const char* key, double& value, double largest)
{
    const nlohmann::json* found = Take(key);
    if (found == nullptr) return;
    if (!found->is_number()) Refuse(key, "must be a number");
    value = found->get<double>();
    if (!(value >= 0 && value <= largest))
        Refuse(key, "must be 0 to " + std::to_string(static_cast<std::int64_t>(largest)));
}

std::optional<std::int64_t> JsonObject::Integer(const char* key, std::int64_t smallest, std::int64_t largest)
{
    const nlohmann::json* found = Take(key);
    if (found == nullptr) return std::nullopt;
    const bool fits =
        found->is_number_integer() && (!found->is_number_unsigned() || found->get<std::uint64_t>() <= INT64_MAX);
    const std::int64_t number = fits ? found->get<std::int64_t>() : 0;
    if (!fits || number < smallest || number > largest)
        Refuse(key, "must be a whole number, " + std::to_string(smallest) + " to " + std::to_string(largest));
    return number;
}

void JsonObject::ReadError(const char* key, GC_ERROR& value)
{
    const nlohmann::json* found = Take(key);
    if (found == nullptr) return;
    if (!found->is_string()) return Read(key, value, INT32_MIN, INT32_MAX);
    const auto name = found->get<std::string>();
    const auto* const entry = std::find_if(
        std::begin(errorNames), std::end(errorNames), [&](const auto& pair) { return name == pair.first; });
    if (entry == std::end(errorNames)) Refuse(key, "'" + name + "' is no error code of the standard");
    value = entry->second;
}

void JsonObject::ReadArray(
    const char* key, std::size_t most, const std::function<void(const nlohmann::json&, std::string)>& each)
{
    const nlohmann::json* found = Take(key);
    if (found == nullptr) return;
    if (!found->is_array()) Refuse(key, "must be a list");
    if (found->size() > most) Refuse(key, "must have at most " + std::to_string(most) + " entries");
    for (std::size_t index = 0; index < found->size(); ++index)
        each((*found)[index], (place.empty() ? "" : place + ".") + key + "[" + std::to_string(index) + "]");
}

void JsonObject::RequireNothingElse() const
{
    for (const auto& item : object.items())
        if (known.count(item.key()) == 0) Refuse(item.key(), "unknown key");
}

nlohmann::json ParseJson(std::string_view text)
{
    if (text.size() > maxDocumentBytes)
        throw Failure(GC_ERR_ERROR, "the file is larger than " + std::to_string(maxDocumentBytes) + " bytes");
    const auto limitDepth = [](int depth, nlohmann::json::parse_event_t, nlohmann::json&) {
        if (depth > maxDepth) throw Failure(GC_ERR_ERROR, "nested deeper than " + std::to_string(maxDepth) + " levels");
        return true;
    };
    try
    {
        return nlohmann::json::parse(text, limitDepth);
    }
    catch (const nlohmann::json::exception& error)
    {
        throw Failure(GC_ERR_ERROR, error.what());
    }
}

} // namespace koro::simulator
