#include "tools/koro/camera_tree_json.h"

#include <cstdio>
#include <nlohmann/json.hpp>

namespace koro::tool
{

namespace
{

using nlohmann::json;

template <typename Value>
json OrNull(const std::optional<Value>& value)
{
    return value ? json(*value) : json();
}

template <typename Value>
std::optional<Value> Optional(const json& object, const char* key)
{
    const json& value = object.at(key);
    return value.is_null() ? std::nullopt : std::optional<Value>(value.get<Value>());
}

json ToJSON(const InterfaceRecord& record)
{
    json cameras = json::array();
    for (const CameraRecord& camera : record.cameras)
        cameras.push_back(koro::tool::ToJSON(camera));
    return {
        {"id", record.id},
        {"displayName", OrNull(record.displayName)},
        {"tlType", OrNull(record.tlType)},
        {"problem", OrNull(record.problem)},
        {"cameras", cameras},
    };
}

CameraRecord CameraFromJSON(const json& object)
{
    CameraRecord camera;
    camera.id = object.at("id").get<std::string>();
    camera.displayName = Optional<std::string>(object, "displayName");
    camera.vendor = Optional<std::string>(object, "vendor");
    camera.model = Optional<std::string>(object, "model");
    camera.version = Optional<std::string>(object, "version");
    camera.serialNumber = Optional<std::string>(object, "serialNumber");
    camera.userName = Optional<std::string>(object, "userName");
    camera.tlType = Optional<std::string>(object, "tlType");
    camera.ipAddress = Optional<std::string>(object, "ipAddress");
    camera.macAddress = Optional<std::string>(object, "macAddress");
    camera.accessStatus = Optional<int32_t>(object, "accessStatus");
    return camera;
}

InterfaceRecord InterfaceFromJSON(const json& object)
{
    InterfaceRecord record;
    record.id = object.at("id").get<std::string>();
    record.displayName = Optional<std::string>(object, "displayName");
    record.tlType = Optional<std::string>(object, "tlType");
    record.problem = Optional<std::string>(object, "problem");
    for (const json& camera : object.at("cameras"))
        record.cameras.push_back(CameraFromJSON(camera));
    return record;
}

// DEL and the controls from U+0080 to U+009F, which JSON allows in a text and on which a terminal acts. They stand in
// texts only, so each can be replaced by its escape.
std::string EscapeLateControls(const std::string& written)
{
    std::string escaped;
    escaped.reserve(written.size());
    for (size_t at = 0; at < written.size(); ++at)
    {
        const auto byte = static_cast<unsigned char>(written[at]);
        const auto next = static_cast<unsigned char>(at + 1 < written.size() ? written[at + 1] : '\0');
        const bool isPair = byte == 0xC2 && next >= 0x80 && next < 0xA0;
        if (!isPair && byte != 0x7F)
        {
            escaped += written[at];
            continue;
        }
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(isPair ? next : byte));
        escaped += escape;
        if (isPair) ++at;
    }
    return escaped;
}

} // namespace

json ToJSON(const CameraRecord& camera)
{
    return {
        {"id", camera.id},
        {"displayName", OrNull(camera.displayName)},
        {"vendor", OrNull(camera.vendor)},
        {"model", OrNull(camera.model)},
        {"version", OrNull(camera.version)},
        {"serialNumber", OrNull(camera.serialNumber)},
        {"userName", OrNull(camera.userName)},
        {"tlType", OrNull(camera.tlType)},
        {"ipAddress", OrNull(camera.ipAddress)},
        {"macAddress", OrNull(camera.macAddress)},
        {"accessStatus", OrNull(camera.accessStatus)},
        {"access", camera.accessStatus ? json(AccessStatusName(*camera.accessStatus)) : json()},
    };
}

json ToJSON(const ProducerRecord& producer)
{
    json interfaces = json::array();
    for (const InterfaceRecord& record : producer.interfaces)
        interfaces.push_back(ToJSON(record));
    return {
        {"path", producer.path},
        {"id", OrNull(producer.id)},
        {"displayName", OrNull(producer.displayName)},
        {"vendor", OrNull(producer.vendor)},
        {"model", OrNull(producer.model)},
        {"version", OrNull(producer.version)},
        {"tlType", OrNull(producer.tlType)},
        {"genTLVersion", OrNull(producer.genTLVersion)},
        {"problem", OrNull(producer.problem)},
        {"interfaces", interfaces},
    };
}

ProducerRecord ProducerFromJSON(const json& object)
{
    ProducerRecord producer;
    producer.path = object.at("path").get<std::string>();
    producer.id = Optional<std::string>(object, "id");
    producer.displayName = Optional<std::string>(object, "displayName");
    producer.vendor = Optional<std::string>(object, "vendor");
    producer.model = Optional<std::string>(object, "model");
    producer.version = Optional<std::string>(object, "version");
    producer.tlType = Optional<std::string>(object, "tlType");
    producer.genTLVersion = Optional<std::string>(object, "genTLVersion");
    producer.problem = Optional<std::string>(object, "problem");
    for (const json& record : object.at("interfaces"))
        producer.interfaces.push_back(InterfaceFromJSON(record));
    return producer;
}

std::string Dump(const json& object, int indent)
{
    return EscapeLateControls(object.dump(indent, ' ', false, json::error_handler_t::replace));
}

} // namespace koro::tool
