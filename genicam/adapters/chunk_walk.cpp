#include "adapters/chunk_walk.h"

#include "adapters/hex_id.h"

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const int64_t trailerSize = 8;
const int64_t dcamTrailerSize = 24;
const char* const emptyBuffer = "the buffer is empty";
const char* const noTrailer = "no room for a trailer";
const char* const tooLong = "the chunk is longer than what lies before its trailer";

bool IsDcamTrailer(const uint8_t* trailer)
{
    return Little32(trailer + 16) == ~Little32(trailer + 20);
}

} // namespace

bool IsGood(ChunkWalk& walk)
{
    Chunk chunk;
    ChunkWalk::Step step = ChunkWalk::Step::Chunk;
    while (step == ChunkWalk::Step::Chunk)
        step = walk.Next(chunk);
    return step == ChunkWalk::Step::End;
}

TrailerWalk::TrailerWalk(ByteOrder order, const uint8_t* buffer, int64_t length)
    : start(buffer), rest(buffer && length > 0 ? length : 0), order(order)
{}

ChunkWalk::Step TrailerWalk::Next(Chunk& chunk)
{
    if (rest == 0) return begun ? Step::End : Break(emptyBuffer, 0);
    begun = true;
    if (rest < trailerSize) return Break(noTrailer, rest);
    rest -= trailerSize;
    const uint8_t* const trailer = start + rest;
    const bool big = order == ByteOrder::Big;
    const int64_t length = big ? Big32(trailer + 4) : Little32(trailer + 4);
    if (length > rest) return Break(tooLong, rest);
    for (size_t i = 0; i < sizeof id; ++i)
        id[i] = trailer[big ? i : sizeof id - 1 - i];
    rest -= length;
    chunk = {CanonicalId(id, sizeof id), rest, length};
    return Step::Chunk;
}

bool HasDcamChecksum(const uint8_t* buffer, int64_t length)
{
    if (!buffer || length < dcamTrailerSize + dcamChecksumSize) return false;
    const uint8_t* const trailer = buffer + length - dcamTrailerSize;
    return !IsDcamTrailer(trailer) && IsDcamTrailer(trailer - dcamChecksumSize);
}

DcamWalk::DcamWalk(const uint8_t* buffer, int64_t length) : start(buffer), rest(buffer && length > 0 ? length : 0)
{
    if (HasDcamChecksum(start, rest)) rest -= dcamChecksumSize;
}

ChunkWalk::Step DcamWalk::Next(Chunk& chunk)
{
    if (rest == 0) return begun ? Step::End : Break(emptyBuffer, 0);
    begun = true;
    if (rest < dcamTrailerSize) return Break(noTrailer, rest);
    const uint8_t* const trailer = start + rest - dcamTrailerSize;
    const int64_t position = rest - dcamTrailerSize;
    if (!IsDcamTrailer(trailer)) return Break("the length and its inverse do not match", position);
    const int64_t length = Little32(trailer + 16);
    if (length < dcamTrailerSize) return Break("the chunk is shorter than its trailer", position);
    if (length > rest) return Break(tooLong, position);
    rest -= length;
    chunk = {CanonicalId(trailer, 16), rest, length - dcamTrailerSize};
    return Step::Chunk;
}

} // namespace GENAPI_NAMESPACE::runtime
