// What the settings say of chunks.
#pragma once

#include "producers/simulator/frames/chunks.h"
#include "producers/simulator/settings/json_reader.h"

#include <optional>

namespace koro::simulator
{

// Of a camera. Leaves settings without a key unchanged.
void ReadChunks(JsonObject& object, std::optional<ChunkSet>& chunks, bool& withChecksum);
// Of a frame.
ChunkSpoil ReadChunkSpoil(JsonObject& object);

} // namespace koro::simulator
