// ChunkTable: the values that come with each frame as chunks, as text beside the frame and as a table in a file.
//
// Owned by one grab; one thread at a time.
#pragma once

#include "tools/koro/pending_file.h"
#include <koro/koro.hpp>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace koro::tool
{

class ChunkTable
{
public:
    // The table shows up under `path` when it is finished.
    explicit ChunkTable(const std::filesystem::path& path) : file(std::in_place, path) {}

    // Before the first buffer: the features that hold chunks are those of the name that cannot be read yet.
    void FindChunks(const NodeMap& nodes);
    // Attaches the buffer, reads what came with it and adds a line for the frame of that number. The result names what
    // could be read, "ChunkGain=1 ChunkWidth=640", or why nothing could. Throws ToolError when the disk refuses; then
    // the table is given up, and nothing may be added any more.
    std::string Add(const NodeMap& nodes, const Buffer& buffer, uint64_t number);
    // What the last frame brought, by name.
    const std::vector<std::pair<std::string, std::string>>& Values() const { return values; }
    // Does nothing for a table that was given up. Throws ToolError when the disk refuses.
    void Finish();

private:
    void KeepWhatIsThere(const NodeMap& nodes);
    void WriteHeader();
    void WriteLine(std::vector<std::string> cells);

    std::optional<PendingFile> file; // empty when it was given up: it takes no room then
    std::vector<std::string> names; // features that may hold chunks; since the header, the columns
    bool hasHeader = false;
    std::vector<std::pair<std::string, std::string>> values;
    std::vector<uint64_t> waiting; // frames that came before the header
};

} // namespace koro::tool
