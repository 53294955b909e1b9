// Chunks: the data that a camera sends behind an image, and the place of each piece in the payload.
//
// Plain values. The numbers are those of the enumeration ChunkSelector of the descriptions.
#pragma once

#include "producers/simulator/frames/chunk_form.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace koro::simulator
{

enum class Chunk : std::uint32_t
{
    Image, // always there, in front
    FrameID,
    Timestamp,
    ExposureTime,
    Gain,
    BlackLevel,
    CounterValue,
    OffsetX,
    OffsetY,
    Width,
    Height,
    PixelFormat,
    LineStatusAll
};

inline constexpr std::size_t numChunks = 13;

// Bit n stands for chunk n.
using ChunkSet = std::uint64_t;
inline constexpr ChunkSet imageChunk = 1;
inline constexpr ChunkSet allChunks = (ChunkSet{1} << numChunks) - 1;

// As ChunkSelector spells it.
std::optional<Chunk> FindChunk(std::string_view name) noexcept;
std::string ChunkNames();

// What the chunks of one frame say; numbers are little-endian in the buffer, on every transport.
struct ChunkValues
{
    std::uint64_t frameId = 0;
    std::uint64_t timestamp_ns = 0;
    double exposure_us = 0;
    std::array<double, 2> gain_dB{}; // analog, digital
    double blackLevel = 0;           // steps of an 8-bit image
    std::array<std::uint64_t, 2> counters{};
    std::uint64_t offsetX = 0;
    std::uint64_t offsetY = 0;
    std::uint64_t width = 0;
    std::uint64_t height = 0;
    std::uint64_t format = 0; // code
    std::uint64_t lineLevels = 0;
};

// How a payload shall be spoilt. Without a checksum a wrong one changes nothing.
enum class ChunkSpoil
{
    None,
    TooLong,      // the last trailer states more bytes than the buffer has
    ZeroLength,   // the last trailer states 0
    Truncated,    // half of the last trailer does not arrive
    LeftOver,     // the first trailer leaves four bytes that belong to no chunk
    WrongChecksum // of IIDC
};

// Where the chunks of a payload lie; the image comes first, padded to four bytes.
class ChunkLayout
{
public:
    // An image without chunks.
    explicit ChunkLayout(std::size_t bytesOfImage = 0) noexcept : imageBytes(bytesOfImage) {}
    ChunkLayout(ChunkForm chunkForm, ChunkSet chunks, std::size_t bytesOfImage) noexcept;

    bool HasChunks() const noexcept { return set != 0; }
    ChunkForm Form() const noexcept { return form; }
    std::size_t PayloadBytes() const noexcept;
    // Behind the image.
    std::size_t ChunkBytes() const noexcept { return PayloadBytes() - ImageChunkBytes(); }
    // Two layouts have the same number when all of their chunks lie at the same places. 0 without chunks.
    std::uint64_t Id() const noexcept;

    // Everything behind the image, into a payload of PayloadBytes; how much of it arrives.
    std::size_t Write(const ChunkValues& values, ChunkSpoil spoil, std::span<std::byte> payload) const;

private:
    std::size_t ImageChunkBytes() const noexcept;

    ChunkForm form = ChunkForm::USB3Vision;
    ChunkSet set = 0;
    std::size_t imageBytes;
};

} // namespace koro::simulator
