// ChunkWalk: returns the chunks of a buffer one after the other. TrailerWalk: GigE Vision and USB3 Vision. DcamWalk:
// IIDC.
//
// Every number in the buffer is checked against the remaining size before it is used. A walk goes through the buffer
// once, writes nothing and allocates nothing.
#pragma once

#include "adapters/byte_order.h"

#include <string_view>

namespace GENAPI_NAMESPACE::runtime
{

struct Chunk
{
    std::string_view id; // canonical; valid until the next step
    int64_t offset;      // of its data from the start of the buffer
    int64_t length;      // of its data
};

class ChunkWalk
{
public:
    enum class Step
    {
        Chunk,
        End,
        Broken
    };

    virtual ~ChunkWalk() = default;
    // After the end, or when the layout is wrong, the walk is finished.
    virtual Step Next(Chunk& chunk) = 0;

    // The reason and the place of a wrong layout.
    const char* Fault() const { return fault; }
    int64_t FaultPosition() const { return faultPosition; }

protected:
    Step Break(const char* reason, int64_t position)
    {
        fault = reason;
        faultPosition = position;
        return Step::Broken;
    }

private:
    const char* fault = "";
    int64_t faultPosition = 0;
};

// Whether the walk reaches a valid end.
bool IsGood(ChunkWalk& walk);

// Walks from the end of the buffer to its start: id and length of the data, 32 bits each, follow the data.
class TrailerWalk : public ChunkWalk
{
public:
    TrailerWalk(ByteOrder order, const uint8_t* buffer, int64_t length);
    Step Next(Chunk& chunk) override;

private:
    const uint8_t* const start;
    int64_t rest; // bytes that are not walked yet
    const ByteOrder order;
    bool begun = false;
    uint8_t id[4] = {};
};

class DcamWalk : public ChunkWalk
{
public:
    DcamWalk(const uint8_t* buffer, int64_t length);
    Step Next(Chunk& chunk) override;

private:
    const uint8_t* const start;
    int64_t rest;
    bool begun = false;
};

const int64_t dcamChecksumSize = 4; // bytes behind the last trailer
bool HasDcamChecksum(const uint8_t* buffer, int64_t length);

} // namespace GENAPI_NAMESPACE::runtime
