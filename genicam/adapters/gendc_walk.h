// GenDCWalk: the chunks in the metadata parts of a GenDC container. All numbers are little endian; offsets count from
// the start of the container.
#pragma once

#include "adapters/chunk_walk.h"

#include <optional>

namespace GENAPI_NAMESPACE::runtime
{

class GenDCWalk : public ChunkWalk
{
public:
    GenDCWalk(const uint8_t* buffer, int64_t length);
    Step Next(Chunk& chunk) override;

private:
    bool OpenContainer();
    bool OpenComponent();
    bool OpenPart();
    bool Has(int64_t offset, int64_t wanted) const;
    int64_t OffsetAt(int64_t list, int64_t position) const;
    bool Refuse(const char* reason, int64_t position);

    const uint8_t* const start;
    const int64_t size;
    bool opened = false;
    int64_t component = 0; // number of the next one
    int64_t componentCount = 0;
    int64_t parts = 0; // position of the offsets of the component's parts
    int64_t part = 0;
    int64_t partCount = 0;
    int64_t partsLeft;     // headers that fit into the container
    int64_t chunkDataLeft; // bytes that chunk parts can still have without lying in each other
    int64_t dataOffset = 0;
    std::optional<TrailerWalk> chunks;
    bool foundChunks = false;
};

} // namespace GENAPI_NAMESPACE::runtime
