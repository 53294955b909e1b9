#include "producers/simulator/settings/settings.h"

#include "producers/kit/event_packet.h"
#include "producers/kit/failure.h"
#include "producers/simulator/frames/image_source.h"
#include "producers/simulator/frames/parts.h"
#include "producers/simulator/kit.h"
#include "producers/simulator/settings/chunk_settings.h"
#include "producers/simulator/settings/file_settings.h"
#include "producers/simulator/settings/function_names.h"
#include "producers/simulator/settings/json_reader.h"
#include "producers/simulator/settings/reset_settings.h"
#include "producers/simulator/settings/settings_parts.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <system_error>

namespace koro::simulator
{
namespace
{

constexpr std::size_t maxInterfaces = 16;
constexpr std::size_t maxCameras = 256;
constexpr std::size_t maxFaults = 1024;
constexpr std::int64_t maxSide = 16384;
constexpr double minRate = 0.001; // as AcquisitionFrameRate
constexpr double maxRate = 100000;
constexpr std::int64_t maxDelay_ms = 60000;
constexpr std::int64_t maxInfoBytes = std::int64_t{1} << 20;
constexpr std::int64_t maxCommandBytes = 16384;
constexpr std::size_t maxNameLength = 63; // with its terminator it fills a register of the camera

using Json = nlohmann::json;

void ReadSource(JsonObject& object, CameraSettings& camera)
{
    std::string folder;
    object.Read("folder", folder);
    std::string source = folder.empty() ? "" : "folder";
    object.Read("source", source);
    if (source == "pattern")
        camera.source = SourceKind::Pattern;
    else if (source == "sequence")
        camera.source = SourceKind::Sequence;
    else if (source == "folder")
        camera.source = SourceKind::Folder;
    else if (source == "surface")
        camera.source = SourceKind::Surface;
    else if (!source.empty())
        object.Refuse("source", "must be pattern, sequence, surface or folder");
    if (!folder.empty()) camera.folder = folder;
    // A folder camera without a folder plays the built-in sequence.
    if (camera.source == SourceKind::Folder && camera.folder.empty()) camera.source = SourceKind::Sequence;
}

void ReadDescription(JsonObject& object, CameraSettings& camera)
{
    std::string form;
    object.Read("descriptionForm", form);
    if (form == "plain")
        camera.descriptionForm = DescriptionForm::Plain;
    else if (form == "zipped")
        camera.descriptionForm = DescriptionForm::Zipped;
    else if (form == "twoURLs")
        camera.descriptionForm = DescriptionForm::TwoURLs;
    else if (!form.empty())
        object.Refuse("descriptionForm", "must be plain, zipped or twoURLs");
    std::string file = camera.description.string();
    object.Read("description", file);
    camera.description = file;
}

void ReadName(JsonObject& object, const char* key, std::string& value)
{
    object.Read(key, value);
    if (value.size() > maxNameLength)
        object.Refuse(key, "must have at most " + std::to_string(maxNameLength) + " bytes");
}

// Everything of a camera except what distinguishes it from others.
void ReadCommon(JsonObject& object, CameraSettings& camera)
{
    ReadName(object, "vendor", camera.vendor);
    ReadName(object, "model", camera.model);
    object.Read("width", camera.width, 1, maxSide);
    object.Read("height", camera.height, 1, maxSide);
    object.Read("rate", camera.rate, maxRate);
    if (camera.rate > 0 && camera.rate < minRate) object.Refuse("rate", "must be 0, or 0.001 to 100000");
    std::string format = camera.format->name;
    object.Read("pixelFormat", format);
    camera.format = FindPixelFormat(format);
    if (camera.format == nullptr) object.Refuse("pixelFormat", "'" + format + "' is none of " + PixelFormatNames());
    ReadSource(object, camera);
    ReadDescription(object, camera);
    ReadChunks(object, camera.chunks, camera.chunkChecksum);
    object.Read("scan3d", camera.scan3d);
    object.Read("startWithStream", camera.startWithStream);
    object.Read("extendedEventIds", camera.extendedEventIds);
    object.Read("eventsPerPacket", camera.eventsPerPacket, 1, EventPackets::maxItems);
    object.Read("longestCommand", camera.longestCommand, 0, maxCommandBytes);
    object.Read("longestPassingCommand", camera.longestPassingCommand, 0, maxCommandBytes);
    ReadName(object, "firmwareVersion", camera.firmwareVersion);
    ReadFileSettings(object, camera);
    ReadResetSettings(object, camera.reset);
    ReadRetrySettings(object, camera.retries);
}

void CheckShape(const JsonObject& object, const CameraSettings& camera)
{
    if (!camera.format->FitsWidth(camera.width))
        object.Refuse("width", "a line of " + camera.format->name + " must end on a whole byte");
    const PartLayout parts(
        camera.scan3d ? allParts : intensityPart, ImageShape{camera.format, camera.width, camera.height});
    if (parts.Bytes() > maxPayloadBytes)
        object.Refuse("height", "an image must have at most " + std::to_string(maxPayloadBytes) + " bytes");
}

CameraSettings ReadCamera(const Json& value, const std::string& place)
{
    JsonObject object(value, place);
    CameraSettings camera;
    ReadName(object, "serial", camera.serial);
    if (camera.serial.empty()) object.Refuse("serial", "is missing or empty");
    ReadName(object, "userName", camera.userName);
    ReadCommon(object, camera);
    object.RequireNothingElse();
    CheckShape(object, camera);
    return camera;
}

InterfaceSettings ReadInterface(const Json& value, const std::string& place)
{
    JsonObject object(value, place);
    InterfaceSettings interface;
    object.Read("id", interface.id);
    if (interface.id.empty()) object.Refuse("id", "is missing or empty");
    interface.displayName = interface.id;
    object.Read("displayName", interface.displayName);
    interface.tlType = "Custom";
    object.Read("tlType", interface.tlType);
    static const std::set<std::string> types{"GEV",  "CL",       "IIDC", "UVC", "CXP",
                                             "CLHS", "Ethernet", "PCI",  "U3V", "Custom"};
    if (types.count(interface.tlType) == 0)
        object.Refuse("tlType", "'" + interface.tlType + "' is no type of the standard");
    object.ReadArray("cameras", maxCameras, [&](const Json& camera, const std::string& where) {
        interface.cameras.push_back(ReadCamera(camera, where));
    });
    object.RequireNothingElse();
    return interface;
}

void CheckUnique(const std::vector<InterfaceSettings>& interfaces)
{
    std::set<std::string> ids;
    std::set<std::string> serials;
    for (const InterfaceSettings& interface : interfaces)
    {
        if (!ids.insert(interface.id).second)
            throw Failure(GC_ERR_ERROR, "interfaces: the id '" + interface.id + "' is there twice");
        for (const CameraSettings& camera : interface.cameras)
            if (!serials.insert(camera.serial).second)
                throw Failure(GC_ERR_ERROR, "interfaces: the serial number '" + camera.serial + "' is there twice");
    }
}

void CheckScript(const Settings& settings)
{
    std::set<std::string> serials;
    for (const InterfaceSettings& interface : settings.interfaces)
        for (const CameraSettings& camera : interface.cameras)
            serials.insert(camera.serial);
    for (const ConnectionStep& step : settings.connection.script)
        if (serials.count(step.camera) == 0)
            throw Failure(GC_ERR_ERROR, "connection.script: there is no camera '" + step.camera + "'");
}

std::string ReadFunction(JsonObject& object)
{
    std::string function;
    object.Read("function", function);
    if (!IsGenTLFunction(function)) object.Refuse("function", "'" + function + "' is no function of the standard");
    return function;
}

CallFault ReadCallFault(const Json& value, const std::string& place)
{
    JsonObject object(value, place);
    CallFault fault;
    fault.function = ReadFunction(object);
    ReadOccurrences(object, fault.calls);
    object.Read("delay_ms", fault.delay_ms, 0, maxDelay_ms);
    object.ReadError("error", fault.error);
    fault.lastErrorCode = fault.error;
    object.ReadError("lastError", fault.lastErrorCode);
    object.Read("text", fault.text);
    object.RequireNothingElse();
    return fault;
}

void ReadAnswer(JsonObject& object, InfoFault& fault)
{
    const Json* value = object.Take("value");
    if (value == nullptr) return;
    if (value->is_string())
        fault.bytes = InfoValue::Text(value->get<std::string>()).bytes;
    else if (value->is_number_integer())
        fault.number = value->get<std::int64_t>();
    else if (value->is_array())
    {
        fault.bytes.emplace();
        for (const Json& byte : *value)
        {
            if (!byte.is_number_unsigned() || byte.get<std::uint64_t>() > 255)
                object.Refuse("value", "a list must hold bytes, 0 to 255");
            fault.bytes->push_back(static_cast<char>(byte.get<std::uint8_t>()));
        }
    }
    else
        object.Refuse("value", "must be a text, a whole number or a list of bytes");
}

InfoFault ReadInfoFault(const Json& value, const std::string& place)
{
    JsonObject object(value, place);
    InfoFault fault;
    fault.function = ReadFunction(object);
    if (!object.Has("command")) object.Refuse("command", "is missing");
    object.Read("command", fault.command, INT32_MIN, INT32_MAX);
    object.ReadError("error", fault.error);
    if (object.Has("type")) object.Read("type", fault.type.emplace(), INT32_MIN, INT32_MAX);
    ReadAnswer(object, fault);
    if (object.Has("size")) object.Read("size", fault.size.emplace(), 0, maxInfoBytes);
    if (object.Has("claimedSize")) object.Read("claimedSize", fault.claimedSize.emplace(), 0, INT64_MAX);
    object.RequireNothingElse();
    return fault;
}

FrameFault ReadFrameFault(const Json& value, const std::string& place)
{
    JsonObject object(value, place);
    FrameFault fault;
    fault.camera = ReadCameraName(object);
    ReadOccurrences(object, fault.frames);
    if (object.Has("deliveredLines")) object.Read("deliveredLines", fault.deliveredLines.emplace(), 0, maxSide);
    object.Read("late_ms", fault.late_ms, 0, maxDelay_ms);
    fault.chunkSpoil = ReadChunkSpoil(object);
    object.RequireNothingElse();
    return fault;
}

DeviceFault ReadDeviceFault(const Json& value, const std::string& place)
{
    JsonObject object(value, place);
    DeviceFault fault;
    fault.camera = ReadCameraName(object);
    object.Read("vanishAtFrame", fault.vanishAtFrame, 0, INT64_MAX);
    object.Read("vanishAtUpdate", fault.vanishAtUpdate, 0, INT64_MAX);
    object.Read("missingUpdates", fault.missingUpdates, 0, INT64_MAX);
    object.RequireNothingElse();
    return fault;
}

Misbehaviour ReadMisbehaviour(const Json& value, const std::string& place)
{
    JsonObject object(value, place);
    Misbehaviour misbehaviour;
    const auto readList = [&object](const char* key, auto& list, auto read) {
        object.ReadArray(
            key, maxFaults, [&](const Json& entry, const std::string& where) { list.push_back(read(entry, where)); });
    };
    readList("calls", misbehaviour.calls, ReadCallFault);
    readList("info", misbehaviour.info, ReadInfoFault);
    readList("frames", misbehaviour.frames, ReadFrameFault);
    readList("devices", misbehaviour.devices, ReadDeviceFault);
    readList("files", misbehaviour.files, ReadFileFault);
    object.Read("portWriteLimit", misbehaviour.portWriteLimit, 0, INT32_MAX);
    object.ReadError("deadHandleError", misbehaviour.deadHandleError);
    object.RequireNothingElse();
    return misbehaviour;
}

void ReadVersion(JsonObject& object, Settings& settings)
{
    std::string version = "1.5";
    object.Read("claimedVersion", version);
    if (version.size() != 3 || version.compare(0, 2, "1.") != 0 || version[2] < '0' || version[2] > '6')
        object.Refuse("claimedVersion", "must be 1.0 to 1.6");
    settings.versionMinor = static_cast<std::uint32_t>(version[2] - '0');
}

// Beside the settings, wherever a process that uses them was started.
void ReadMemory(JsonObject& object, const std::filesystem::path& base, Settings& settings)
{
    std::string folder;
    object.Read("memory", folder);
    if (folder.empty()) return;
    for (InterfaceSettings& interface : settings.interfaces)
        for (CameraSettings& camera : interface.cameras)
            camera.memory = base / folder;
}

std::string ReadFile(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in) throw Failure(GC_ERR_ERROR, "cannot be opened");
    std::string text;
    char block[65536];
    while (in.read(block, sizeof block) || in.gcount() > 0)
    {
        text.append(block, static_cast<std::size_t>(in.gcount()));
        if (text.size() > (std::size_t{1} << 21)) break; // the parser says the bound
    }
    if (in.bad()) throw Failure(GC_ERR_ERROR, "cannot be read");
    return text;
}

} // namespace

Settings ParseSettings(std::string_view json, const std::filesystem::path& base)
{
    const Json document = ParseJson(json);
    JsonObject object(document, "");
    Settings settings = DefaultSettings();
    ReadVersion(object, settings);
    object.Read("strictInit", settings.strictInit);
    if (object.Has("interfaces")) settings.interfaces.clear();
    object.ReadArray("interfaces", maxInterfaces, [&](const Json& interface, const std::string& where) {
        settings.interfaces.push_back(ReadInterface(interface, where));
    });
    if (const Json* all = object.Take("allCameras"))
        for (InterfaceSettings& interface : settings.interfaces)
            for (CameraSettings& camera : interface.cameras)
            {
                JsonObject common(*all, "allCameras");
                ReadCommon(common, camera);
                common.RequireNothingElse();
                CheckShape(common, camera);
            }
    ReadMemory(object, base, settings);
    if (const Json* misbehaviour = object.Take("misbehaviour"))
        settings.misbehaviour = ReadMisbehaviour(*misbehaviour, "misbehaviour");
    if (const Json* connection = object.Take("connection"))
        settings.connection = ReadConnection(*connection, "connection");
    object.RequireNothingElse();
    CheckUnique(settings.interfaces);
    CheckScript(settings);
    return settings;
}

Settings LoadSettings()
{
    const char* file = std::getenv("KORO_SIMULATOR_CONFIG");
    if (file == nullptr || *file == '\0') return DefaultSettings();
    try
    {
        std::error_code noFolder; // without a known base the memory stays relative
        return ParseSettings(ReadFile(file), std::filesystem::absolute(file, noFolder).parent_path());
    }
    catch (const Failure& failure)
    {
        throw Failure(failure.Code(), "settings file '" + std::string(file) + "': " + failure.what());
    }
}

} // namespace koro::simulator
