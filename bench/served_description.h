// ServedDescription: a description that the zero-cost producer's cameras provide from the next opening on, stored in a
// file of the bench, and the node map that an opened camera then has.
#pragma once

#include "bench/producer_access.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace koro::bench
{

class ServedDescription
{
public:
    explicit ServedDescription(const std::string& xml)
        : path(std::filesystem::temp_directory_path() / ("koro_bench_" + std::to_string(getpid()) + "_" + Number()))
    {
        std::ofstream(path, std::ios::binary) << xml;
        setenv("KORO_BENCH_DESCRIPTION", path.c_str(), 1);
    }
    ServedDescription(const ServedDescription&) = delete;
    ServedDescription& operator=(const ServedDescription&) = delete;
    ~ServedDescription()
    {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }

private:
    static std::string Number()
    {
        static int number = 0;
        return std::to_string(++number);
    }

    const std::filesystem::path path;
};

inline KORO_NodeMapHandle NodeMapOf(KORO_DeviceHandle device)
{
    KORO_RemoteDeviceHandle remoteDevice = nullptr;
    KORO_ModuleHandle module = nullptr;
    KORO_NodeMapHandle map = nullptr;
    Require(KORO_Device_GetRemoteDevice(device, &remoteDevice));
    Require(KORO_RemoteDevice_ToModule(remoteDevice, &module));
    std::size_t numNodeMaps = 0;
    Require(KORO_Module_GetNumNodeMaps(module, &numNodeMaps));
    Require(KORO_Module_GetNodeMap(module, 0, &map));
    return map;
}

inline KORO_NodeHandle Find(KORO_NodeMapHandle map, const char* name)
{
    KORO_NodeHandle node = nullptr;
    Require(KORO_NodeMap_FindNode(map, name, std::strlen(name) + 1, &node));
    return node;
}

} // namespace koro::bench
