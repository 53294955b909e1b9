#include "producers/simulator/settings/chunk_settings.h"

#include "producers/kit/failure.h"
#include "producers/simulator/kit.h"

#include <map>
#include <string>

namespace koro::simulator
{

void ReadChunks(JsonObject& object, std::optional<ChunkSet>& chunks, bool& withChecksum)
{
    object.Read("chunkChecksum", withChecksum);
    const nlohmann::json* const told = object.Take("chunks");
    if (told == nullptr) return;
    chunks = *told == "all" ? allChunks : imageChunk;
    if (*told == "all") return;
    if (told->is_string()) object.Refuse("chunks", "must be a list of names, or \"all\"");
    object.ReadArray("chunks", numChunks, [&](const nlohmann::json& name, const std::string& where) {
        const auto chunk = name.is_string() ? FindChunk(name.get<std::string>()) : std::nullopt;
        if (!chunk) throw Failure(GC_ERR_ERROR, where + ": is none of " + ChunkNames());
        *chunks |= ChunkSet{1} << static_cast<std::uint32_t>(*chunk);
    });
}

ChunkSpoil ReadChunkSpoil(JsonObject& object)
{
    static const std::map<std::string, ChunkSpoil> spoils{
        {"tooLong", ChunkSpoil::TooLong},
        {"zeroLength", ChunkSpoil::ZeroLength},
        {"truncated", ChunkSpoil::Truncated},
        {"leftOver", ChunkSpoil::LeftOver},
        {"wrongChecksum", ChunkSpoil::WrongChecksum}};
    if (!object.Has("chunks")) return ChunkSpoil::None;
    std::string name;
    object.Read("chunks", name);
    const auto found = spoils.find(name);
    if (found == spoils.end())
        object.Refuse("chunks", "must be tooLong, zeroLength, truncated, leftOver or wrongChecksum");
    return found->second;
}

} // namespace koro::simulator
