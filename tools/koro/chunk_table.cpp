#include "tools/koro/chunk_table.h"

#include "tools/koro/feature_value.h"
#include "tools/koro/if_known.h"
#include "tools/koro/report.h"
#include "tools/koro/tool_error.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <system_error>
#include <utility>

namespace koro::tool
{

namespace
{

bool MayHoldAChunk(const Node& node)
{
    const KORO_NodeType type = node.Type();
    // A register is a block of bytes, such as the image.
    if (!HasValue(type) || type == KORO_NODE_TYPE_REGISTER) return false;
    return node.Name().rfind("Chunk", 0) == 0 && node.IsFeature() && !node.IsReadable();
}

std::optional<std::string> ReadChunk(const NodeMap& nodes, const std::string& name)
{
    const Node node = nodes.Node(name);
    const bool isReadable = IfKnown([&] { return node.IsReadable(); }).value_or(false);
    return isReadable ? IfKnown([&] { return ReadValue(node); }) : std::nullopt;
}

} // namespace

void ChunkTable::FindChunks(const NodeMap& nodes)
{
    if (hasHeader) return;
    names.clear();
    for (const Node& node : nodes.Nodes())
    {
        if (IfKnown([&] { return MayHoldAChunk(node); }).value_or(false)) names.push_back(node.Name());
    }
}

std::string ChunkTable::Add(const NodeMap& nodes, const Buffer& buffer, uint64_t number)
{
    std::vector<std::string> cells = {std::to_string(number)};
    std::string shown;
    values.clear();
    try
    {
        // A buffer without chunks would leave those of the buffer before.
        if (buffer.HasChunks())
        {
            nodes.UpdateChunkNodes(buffer);
            KeepWhatIsThere(nodes);
            WriteHeader();
            for (const std::string& name : names)
            {
                const auto value = ReadChunk(nodes, name);
                cells.push_back(value.value_or(""));
                if (!value) continue;
                values.emplace_back(name, *value);
                shown += (shown.empty() ? "" : " ") + name + "=" + PrintableStart(*value);
            }
        }
    }
    catch (const Error& error)
    {
        shown = std::string("chunks cannot be read: ") + error.what();
    }
    if (hasHeader)
        WriteLine(std::move(cells));
    else
        waiting.push_back(number);
    return shown.empty() ? "no chunks" : shown;
}

// The columns are what the first frame with chunks brings.
void ChunkTable::KeepWhatIsThere(const NodeMap& nodes)
{
    if (hasHeader) return;
    const auto isAbsent = [&nodes](const std::string& name) { return !ReadChunk(nodes, name); };
    names.erase(std::remove_if(names.begin(), names.end(), isAbsent), names.end());
}

void ChunkTable::WriteHeader()
{
    if (hasHeader) return;
    hasHeader = true;
    std::vector<std::string> header = {"frame"};
    header.insert(header.end(), names.begin(), names.end());
    WriteLine(std::move(header));
    for (const uint64_t number : std::exchange(waiting, {}))
        WriteLine({std::to_string(number)});
}

void ChunkTable::Finish()
{
    if (!file) return;
    if (!hasHeader) names.clear();
    WriteHeader();
    file->Commit();
}

void ChunkTable::WriteLine(std::vector<std::string> cells)
{
    cells.resize(names.size() + 1);
    const std::string line = CommaSeparated(cells) + "\n";
    if (std::fwrite(line.data(), 1, line.size(), file->Stream()) == line.size()) return;
    const std::string reason = std::generic_category().message(errno);
    file.reset();
    throw ToolError("Cannot write the table of chunks: " + reason + ".", "Check that the disk has room.");
}

} // namespace koro::tool
