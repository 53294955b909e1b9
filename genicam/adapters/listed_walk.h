// ListedWalk: chunks that the caller lists, with ids as numbers or as texts.
#pragma once

#include "adapters/chunk_walk.h"
#include "adapters/hex_id.h"

#include <GenApi/ChunkAdapterGeneric.h>

namespace GENAPI_NAMESPACE::runtime
{

template <class Record>
class ListedWalk : public ChunkWalk
{
public:
    ListedWalk(const uint8_t* buffer, const Record* list, int64_t count)
        : usable(buffer && count >= 0 && (list || count == 0)), next(list), left(count)
    {}

    Step Next(Chunk& chunk) override
    {
        if (!usable) return Break("buffer or list is missing", 0);
        if (left == 0) return Step::End;
        if (next->ChunkOffset < 0) return Break("the offset is negative", next->ChunkOffset);
        if (next->ChunkLength > static_cast<size_t>(PTRDIFF_MAX - next->ChunkOffset))
        {
            return Break("the chunk ends beyond the address space", next->ChunkOffset);
        }
        chunk = {Take(next->ChunkID), next->ChunkOffset, static_cast<int64_t>(next->ChunkLength)};
        ++next;
        --left;
        return Step::Chunk;
    }

private:
    std::string_view Take(uint64_t id)
    {
        number = NumberId(id);
        return number.Canonical();
    }
    std::string_view Take(const GENICAM_NAMESPACE::gcstring& id)
    {
        text = HexId(id);
        // A text that is not an id must not look like the id 0.
        return text.IsId() ? text.Canonical() : noId;
    }

    // Not canonical, so no port has it.
    static constexpr std::string_view noId{"\0", 1};

    const bool usable;
    const Record* next;
    int64_t left;
    NumberId number{0};
    HexId text;
};

} // namespace GENAPI_NAMESPACE::runtime
