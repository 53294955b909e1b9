// Files: a camera, opened, with the GenICam runtime's file adapter on its map.
#pragma once

#include "tests/unit/simulator/feature_map.h"

#include <GenApi/Filestream.h>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace koro::simulator::test
{

inline constexpr auto forReading = std::ios_base::in;
inline constexpr auto forWriting = std::ios_base::out;

inline std::string CameraWithFiles(const std::string& keys, const std::string& faults, const std::string& tlType)
{
    return R"({"misbehaviour": {"files": [)" + faults + R"(]}, "interfaces": [{"id": "I", "tlType": ")" + tlType +
           R"(", "cameras": [{"serial": "A", "width": 16, "height": 4, "rate": 0)" + keys + "}]}]}";
}

inline std::string Pattern(std::size_t bytes)
{
    std::string pattern(bytes, '\0');
    for (std::size_t index = 0; index < bytes; ++index)
        pattern[index] = static_cast<char>(index * 2654435761U >> 11);
    return pattern;
}

// One camera, opened, with an adapter on its map.
struct Files
{
    explicit Files(const std::string& keys = "", const std::string& faults = "", const std::string& tlType = "GEV")
        : producer(CameraWithFiles(keys, faults, tlType)), tree(producer), map(producer, tree.remote)
    {
        if (!adapter.attach(&map.Map())) throw std::runtime_error("the camera has no files");
    }

    std::int64_t Write(const std::string& text, std::int64_t offset = 0, const char* file = "UserFile")
    {
        return adapter.write(text.data(), offset, static_cast<std::int64_t>(text.size()), file);
    }
    std::string Read(std::size_t bytes, std::int64_t offset = 0, const char* file = "UserFile")
    {
        std::string text(bytes, '\x55');
        const auto got = adapter.read(text.data(), offset, static_cast<std::int64_t>(bytes), file);
        text.resize(static_cast<std::size_t>(got));
        return text;
    }
    // Runs it and returns its status.
    std::string Do(const char* operation) const
    {
        map.Set("FileOperationSelector", operation);
        map.Execute("FileOperationExecute");
        return map.Text("FileOperationStatus");
    }
    std::string Status() const { return map.Text("FileOperationStatus"); }
    bool IsDone() const { return dynamic_cast<GENAPI_NAMESPACE::ICommand&>(map.Node("FileOperationExecute")).IsDone(); }
    GC_ERROR TryWrite(std::uint64_t address, const void* bytes, std::size_t size) const
    {
        return producer.GCWritePort(tree.remote, address, bytes, &size);
    }

    Producer producer;
    Tree tree;
    FeatureMap map;
    GENAPI_NAMESPACE::FileProtocolAdapter adapter;
};

} // namespace koro::simulator::test
