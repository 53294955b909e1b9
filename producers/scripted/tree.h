// Tree: the modules that a scripted producer has, as plain data that a test edits.
//
// Ids are the names by which Script addresses a module; the default ones are unique in the tree: "system", "if0",
// "if0-dev1", "if0-dev1-stream0"; the remote device's port of "if0-dev1" is "if0-dev1-remote".
#pragma once

#include "gentl/api/gentl.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace scripted
{

// The answer of one query that follows the size-then-data rule.
struct Info
{
    GenTL::INFO_DATATYPE type = GenTL::INFO_DATATYPE_UNKNOWN;
    std::string bytes{};
    GenTL::GC_ERROR sizeResult = GenTL::GC_ERR_SUCCESS; // of the call without a buffer
    GenTL::GC_ERROR dataResult = GenTL::GC_ERR_SUCCESS; // of the call with one
    std::optional<std::size_t> claimedSize{};           // answered without a buffer, in place of the true size
    // Answered with a buffer, in place of the true size; then what fits is written and nothing is too small.
    std::optional<std::size_t> deliveredSize{};
    bool writesType = true;
    bool writesSize = true;
};

using Infos = std::map<std::int32_t, Info>;

inline Info Text(const std::string& text)
{
    return {.type = GenTL::INFO_DATATYPE_STRING, .bytes = text + '\0'};
}

inline Info Bytes(GenTL::INFO_DATATYPE type, const std::string& bytes)
{
    return {.type = type, .bytes = bytes};
}

template <class T>
Info Number(GenTL::INFO_DATATYPE type, T value)
{
    std::string bytes(sizeof value, '\0');
    std::memcpy(bytes.data(), &value, sizeof value);
    return {.type = type, .bytes = bytes};
}

inline Info Int32(std::int32_t value)
{
    return Number(GenTL::INFO_DATATYPE_INT32, value);
}
inline Info UInt32(std::uint32_t value)
{
    return Number(GenTL::INFO_DATATYPE_UINT32, value);
}
inline Info UInt64(std::uint64_t value)
{
    return Number(GenTL::INFO_DATATYPE_UINT64, value);
}
inline Info Size(std::size_t value)
{
    return Number(GenTL::INFO_DATATYPE_SIZET, value);
}
inline Info Bool8(bool value)
{
    return Number(GenTL::INFO_DATATYPE_BOOL8, static_cast<std::uint8_t>(value));
}
inline Info Pointer(const void* value)
{
    return Number(GenTL::INFO_DATATYPE_PTR, value);
}

// Both calls of the query fail.
inline Info Failing(GenTL::GC_ERROR result)
{
    return {.sizeResult = result, .dataResult = result};
}

// What a module shows through its port: information, the description's places, and registers as plain memory.
struct Port
{
    Infos info;
    std::vector<Infos> urls;
    std::map<std::uint64_t, std::string> registers; // address of the first byte, bytes
    // What an address reads as that lies in none of them. Without it: the transfer fails, as all writes there do.
    std::function<char(std::uint64_t)> unwritten;
    // Runs behind each write with its address, and may change the registers; gives the result of the transfer. It must
    // not use the script.
    std::function<GenTL::GC_ERROR(Port&, std::uint64_t)> written{};
};

struct Stream
{
    std::string id;
    Infos info; // beside what the engine counts
    Port port;
};

struct Device
{
    std::string id;
    Infos info;
    Port port;
    Port remotePort;
    std::vector<std::shared_ptr<Stream>> streams;
};

struct Interface
{
    std::string id;
    Infos info;
    Port port;
    std::vector<std::shared_ptr<Device>> devices;
};

struct Tree
{
    std::string id = "system";
    Infos info;
    Port port;
    std::vector<std::shared_ptr<Interface>> interfaces;
};

// Gives the port a description of these nodes in place of the one that it had.
void Describe(Port& port, const std::string& nodes);

// Building blocks of the default tree.
std::shared_ptr<Stream> MakeStream(const std::string& id);
std::shared_ptr<Device> MakeDevice(const std::string& id);
std::shared_ptr<Interface> MakeInterface(const std::string& id, std::size_t deviceCount = 2);
Tree MakeTree();

// What a delivered buffer holds and says about it.
struct Frame
{
    std::string bytes = std::string("\0\1\2\3\4\5\6\7", 8); // 4 x 2 pixels, Mono8
    Infos info{};                                           // beside or in place of the default answers
    bool incomplete = false;
    std::vector<Infos> parts{};
    std::vector<std::size_t> partOffsets{}; // from the buffer's start: the base of a part that does not give it itself
    std::vector<GenTL::SINGLE_CHUNK_DATA> chunks{};
};

} // namespace scripted
