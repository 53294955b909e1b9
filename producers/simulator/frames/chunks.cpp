#include "producers/simulator/frames/chunks.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>

namespace koro::simulator
{
namespace
{

constexpr std::uint32_t firstId = 0x4B530000; // of ChunkID in the descriptions
constexpr std::size_t alignment = 4;

struct Kind
{
    const char* name;
    std::size_t bytes;
};

constexpr Kind kinds[] = {
    {"Image", 0},      {"FrameID", 8},      {"Timestamp", 8},     {"ExposureTime", 8}, {"Gain", 16},
    {"BlackLevel", 8}, {"CounterValue", 8}, {"OffsetX", 4},       {"OffsetY", 4},      {"Width", 4},
    {"Height", 4},     {"PixelFormat", 4},  {"LineStatusAll", 4},
};
static_assert(std::size(kinds) == numChunks);

// Writes numbers one behind the other; the host is little-endian, as the chunks are.
class Writer
{
public:
    explicit Writer(std::span<std::byte> memory) : out(memory) {}

    void Word(std::uint64_t value) { Put(static_cast<std::uint32_t>(value)); }
    void Long(std::uint64_t value) { Put(value); }
    void Float(double value) { Put(value); }
    std::size_t Written() const noexcept { return at; }

private:
    template <typename T>
    void Put(T value)
    {
        static_assert(std::endian::native == std::endian::little);
        std::memcpy(out.subspan(at, sizeof value).data(), &value, sizeof value);
        at += sizeof value;
    }

    const std::span<std::byte> out;
    std::size_t at = 0;
};

void WriteData(Chunk chunk, const ChunkValues& values, Writer& out)
{
    switch (chunk)
    {
    case Chunk::Image:
        return;
    case Chunk::FrameID:
        return out.Long(values.frameId);
    case Chunk::Timestamp:
        return out.Long(values.timestamp_ns);
    case Chunk::ExposureTime:
        return out.Float(values.exposure_us);
    case Chunk::Gain:
        out.Float(values.gain_dB[0]);
        return out.Float(values.gain_dB[1]);
    case Chunk::BlackLevel:
        return out.Float(values.blackLevel);
    case Chunk::CounterValue:
        out.Word(values.counters[0]);
        return out.Word(values.counters[1]);
    case Chunk::OffsetX:
        return out.Word(values.offsetX);
    case Chunk::OffsetY:
        return out.Word(values.offsetY);
    case Chunk::Width:
        return out.Word(values.width);
    case Chunk::Height:
        return out.Word(values.height);
    case Chunk::PixelFormat:
        return out.Word(values.format);
    case Chunk::LineStatusAll:
        return out.Word(values.lineLevels);
    }
}

std::size_t Padded(std::size_t bytes) noexcept
{
    return (bytes + alignment - 1) / alignment * alignment;
}

} // namespace

std::optional<Chunk> FindChunk(std::string_view name) noexcept
{
    const auto* const found =
        std::find_if(std::begin(kinds), std::end(kinds), [name](const Kind& kind) { return name == kind.name; });
    if (found == std::end(kinds)) return std::nullopt;
    return static_cast<Chunk>(found - std::begin(kinds));
}

std::string ChunkNames()
{
    std::string names;
    for (const Kind& kind : kinds)
        names += (names.empty() ? "" : " ") + std::string(kind.name);
    return names;
}

ChunkLayout::ChunkLayout(ChunkForm chunkForm, ChunkSet chunks, std::size_t bytesOfImage) noexcept
    : form(chunkForm), set(chunks | imageChunk), imageBytes(bytesOfImage)
{}

std::size_t ChunkLayout::ImageChunkBytes() const noexcept
{
    return HasChunks() ? Padded(imageBytes) : imageBytes;
}

std::size_t ChunkLayout::PayloadBytes() const noexcept
{
    if (!HasChunks()) return imageBytes;
    std::size_t bytes = ImageChunkBytes() + ChecksumBytes(form);
    for (std::size_t index = 0; index < numChunks; ++index)
        if ((set >> index & 1) != 0) bytes += kinds[index].bytes + TrailerBytes(form);
    return bytes;
}

std::uint64_t ChunkLayout::Id() const noexcept
{
    static_assert(numChunks <= 16);
    return HasChunks() ? std::uint64_t{ImageChunkBytes()} << 16 | set : 0;
}

std::size_t ChunkLayout::Write(const ChunkValues& values, ChunkSpoil spoil, std::span<std::byte> payload) const
{
    const std::size_t trailerBytes = TrailerBytes(form);
    std::fill(
        payload.begin() + static_cast<std::ptrdiff_t>(imageBytes),
        payload.begin() + static_cast<std::ptrdiff_t>(ImageChunkBytes()), std::byte{});
    std::size_t at = 0;
    std::uint32_t lastId = firstId;
    for (std::uint32_t index = 0; index < numChunks; ++index)
    {
        if ((set >> index & 1) == 0) continue;
        Writer data(payload.subspan(at));
        WriteData(static_cast<Chunk>(index), values, data);
        std::size_t bytes = index == 0 ? ImageChunkBytes() : data.Written();
        at += bytes;
        if (index == 0 && spoil == ChunkSpoil::LeftOver) bytes -= alignment;
        lastId = firstId + index;
        WriteTrailer(form, lastId, bytes, payload.subspan(at));
        at += trailerBytes;
    }
    const auto last = payload.subspan(at - trailerBytes, trailerBytes);
    if (spoil == ChunkSpoil::TooLong) WriteTrailer(form, lastId, payload.size(), last);
    if (spoil == ChunkSpoil::ZeroLength) WriteTrailer(form, lastId, 0, last);
    WriteChecksum(form, payload);
    if (spoil == ChunkSpoil::WrongChecksum && ChecksumBytes(form) > 0) payload[at] ^= std::byte{0xFF};
    if (spoil != ChunkSpoil::Truncated) return payload.size();
    // What lay there before must not complete the trailer by chance.
    const auto missing = payload.subspan(at - trailerBytes / 2);
    std::fill(missing.begin(), missing.end(), std::byte{0xFF});
    return payload.size() - missing.size();
}

} // namespace koro::simulator
