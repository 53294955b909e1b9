// The simulator's camera for one run of the tool, and descriptions of a test's own for it, over registers without
// meaning.
#pragma once

#include "tests/support/temporary_folder.h"
#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>
#include <zlib.h>

namespace koro::test
{

// Runs of the tool on the simulator's camera "cam"; each run meets a camera that is as the settings say.
class Camera
{
public:
    explicit Camera(const nlohmann::json& settings = OneCamera("Mono8", 64, 48))
        : environment(SimulatorWith(folder, settings))
    {}

    ToolResult Run(const Arguments& arguments) const { return RunTool(arguments, environment); }
    const Environment& Surroundings() const { return environment; }

private:
    TemporaryFolder folder;
    Environment environment;
};

// The only camera of `settings` has exactly these nodes and its port.
inline void DescribeWhole(const TemporaryFolder& folder, nlohmann::json& settings, const std::string& nodes)
{
    const std::string description =
        "<?xml version=\"1.0\"?><RegisterDescription ModelName=\"Test\" VendorName=\"ZVR\" ToolTip=\"\" "
        "StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" "
        "MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" ProductGuid=\"\" VersionGuid=\"\" "
        "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">" +
        nodes + "<Port Name=\"Device\"/></RegisterDescription>";
    settings["interfaces"][0]["cameras"][0]["description"] = folder.MakeFile("camera.xml", description);
}

// The same with a category Root, which lists `features`: names, separated by blanks.
inline void Describe(
    const TemporaryFolder& folder, nlohmann::json& settings, const std::string& features, const std::string& nodes)
{
    std::string root = "<Category Name=\"Root\">";
    for (size_t start = 0; start < features.size();)
    {
        const size_t end = std::min(features.find(' ', start), features.size());
        root += "<pFeature>" + features.substr(start, end - start) + "</pFeature>";
        start = end + 1;
    }
    DescribeWhole(folder, settings, root + "</Category>" + nodes);
}

// A register of four bytes.
inline std::string IntRegisterAt(const std::string& name, int address, const std::string& elements = "")
{
    return "<IntReg Name=\"" + name + "\"><Address>" + std::to_string(address) +
           "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>" + elements +
           "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>";
}

// An archive with one file.
inline std::string ArchiveOf(const std::string& text, const std::string& name = "camera.xml")
{
    std::vector<Bytef> packed(compressBound(text.size()) + 64);
    z_stream stream = {};
    deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = packed.data();
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    const std::string data(packed.begin(), packed.begin() + static_cast<std::ptrdiff_t>(stream.total_out));
    deflateEnd(&stream);

    const auto number = [](size_t value, size_t width) {
        std::string bytes;
        for (size_t i = 0; i < width; ++i)
            bytes += static_cast<char>(value >> (8 * i));
        return bytes;
    };
    const size_t crc = crc32(0, reinterpret_cast<const Bytef*>(text.data()), static_cast<uInt>(text.size()));
    // Version, flags, method, time and date, check sum, sizes, length of the name, no further field.
    const std::string common = number(20, 2) + number(0, 2) + number(8, 2) + number(0, 4) + number(crc, 4) +
                               number(data.size(), 4) + number(text.size(), 4) + number(name.size(), 2) + number(0, 2);
    const std::string local = "PK\x03\x04" + common + name + data;
    const std::string directory = "PK\x01\x02" + number(20, 2) + common + number(0, 14) + name;
    const std::string end = "PK\x05\x06" + number(0, 4) + number(1, 2) + number(1, 2) + number(directory.size(), 4) +
                            number(local.size(), 4) + number(0, 2);
    return local + directory + end;
}

} // namespace koro::test
