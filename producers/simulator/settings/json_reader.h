// JsonObject: one object of the settings file, read key by key; every complaint names the place, "interfaces[0].width".
#pragma once

#include "producers/kit/gentl.h"
#include "producers/simulator/kit.h"

#include <cstddef>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>

namespace koro::simulator
{

class JsonObject
{
public:
    // Refuses a value that is no object.
    JsonObject(const nlohmann::json& value, std::string placeInDocument);

    bool Has(const char* key) const { return object.contains(key); }

    // Each leaves `value` as it is when the key is missing.
    void Read(const char* key, std::string& value);
    void Read(const char* key, bool& value);
    void Read(const char* key, double& value, double largest);
    template <typename T>
    void Read(const char* key, T& value, std::int64_t smallest, std::int64_t largest)
    {
        if (const auto number = Integer(key, smallest, largest)) value = static_cast<T>(*number);
    }

    // A number, or the name of one of the standard's codes ("GC_ERR_IO").
    void ReadError(const char* key, GC_ERROR& value);

    // Calls `each` with every element, at most `most` of them.
    void ReadArray(
        const char* key, std::size_t most, const std::function<void(const nlohmann::json&, std::string)>& each);

    // The raw value, null when the key is missing.
    const nlohmann::json* Take(const char* key);

    // Refuses keys that nobody asked for.
    void RequireNothingElse() const;

    [[noreturn]] void Refuse(const std::string& key, const std::string& why) const;

private:
    std::optional<std::int64_t> Integer(const char* key, std::int64_t smallest, std::int64_t largest);

    const nlohmann::json& object;
    std::string place;
    std::set<std::string> known;
};

// Parses with bounded size and depth.
nlohmann::json ParseJson(std::string_view text);

} // namespace koro::simulator
