#include "modules/description_retrieval.h"

#include "base/exceptions.h"
#include "base/filesystem.h"
#include "gentl/bounds.h"
#include "gentl/port.h"
#include "gentl/port_url.h"
#include "gentl/port_url_text.h"
#include "modules/module.h"
#include "modules/system.h"
#include "nodes/node_map.h"

#include <optional>
#include <string>
#include <utility>

namespace koro::internal
{

namespace
{

// Selects by the name of the port; null for a port without such a file.
const char* DebugFileOf(const std::string& portName)
{
    static constexpr std::pair<const char*, const char*> files[] = {
        {"TLPort", "tl_system_dbg.xml"},       {"InterfacePort", "tl_interface_dbg.xml"},
        {"DevicePort", "tl_device_dbg.xml"},   {"StreamPort", "tl_datastream_dbg.xml"},
        {"Device", "tl_remotedevice_dbg.xml"},
    };
    for (const auto& [port, file] : files)
    {
        if (portName == port) return file;
    }
    return nullptr;
}

// Includes the separator at the end. The first occurrence of the file's name is removed, even if it is the name of a
// folder: then no file is found.
std::string FolderOfProducer(const System& system)
{
    std::string path = system.CTIFullPath();
    const std::string fileName = system.CTIFileName();
    const auto place = path.find(fileName);
    if (place != std::string::npos) path.erase(place, fileName.size());
    return path;
}

// Empty when the port has no such file or the file does not exist.
std::string DebugFile(Module& module)
{
    const char* const file = DebugFileOf(module.Port()->Name());
    if (!file) return {};

    std::shared_ptr<Module> held;
    Module* top = &module;
    while (auto parent = top->ParentModule())
    {
        held = std::move(parent);
        top = held.get();
    }
    const auto* const system = dynamic_cast<const System*>(top);
    if (!system) return {};
    const std::string path = FolderOfProducer(*system) + file;
    std::error_code error;
    return fs::exists(path, error) ? path : std::string();
}

// One property of the URL: from the producer, otherwise from the text of the URL.
template <class Value>
Value AskOrParse(
    const PortURL& url, const std::string& text, Value (PortURL::*ask)() const,
    std::optional<Value> (*parse)(const std::string&), const char* what)
{
    try
    {
        return (url.*ask)();
    }
    catch (const Exception&)
    {
        if (const auto parsed = parse(text)) return *parsed;
        throw InternalErrorException(std::string("Could not parse the ") + what + " (Port-URL: " + text + ")!");
    }
}

// Ignores failures that are exceptions of the library.
template <class Step>
void IgnoringFailures(Step&& step)
{
    try
    {
        step();
    }
    catch (const Exception&) // one broken description must not prevent the others
    {}
}

} // namespace

std::vector<std::shared_ptr<NodeMap>> RetrieveNodeMaps(Module& module)
{
    std::vector<std::shared_ptr<NodeMap>> nodeMaps;
    const auto addNodeMap = [&](NodeMapDescription description) {
        nodeMaps.push_back(std::make_shared<NodeMap>(module.Port(), std::move(description)));
    };
    const std::string debugFile = DebugFile(module);
    if (!debugFile.empty()) IgnoringFailures([&] { addNodeMap({.filePath = debugFile}); });
    const auto urls = module.Port()->URLs();
    for (const auto& url : *urls)
        IgnoringFailures([&] { addNodeMap(FetchDescription(*url)); });
    return nodeMaps;
}

NodeMapDescription FetchDescription(const PortURL& url)
{
    const std::string text = url.URL();
    const auto scheme = AskOrParse(url, text, &PortURL::Scheme, ParseURLScheme, "port URL scheme");
    if (scheme != GenTL::URL_SCHEME_LOCAL)
    {
        throw InternalErrorException(
            "The scheme type " + std::to_string(scheme) + " (" + URLSchemeName(scheme) +
            ") is not supported yet (Port-URL: " + text + ")!");
    }
    const auto address =
        AskOrParse(url, text, &PortURL::FileRegisterAddress, ParseURLRegisterAddress, "file register address");
    const auto size = AskOrParse(url, text, &PortURL::FileSize, ParseURLFileSize, "file size");
    const auto fileName = AskOrParse(url, text, &PortURL::FileName, ParseURLFileName, "file name");

    CheckClaim(descriptionBound, size, "GCGetPortURLInfo");
    NodeMapDescription description;
    description.data = url.ParentPort()->Read(address, size);
    description.isZipped = fileName.find(".zip") != std::string::npos;
    return description;
}

} // namespace koro::internal
