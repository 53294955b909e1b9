#include "producers/simulator/frames/chunk_form.h"

#include "producers/kit/failure.h"
#include "producers/simulator/kit.h"

#include <algorithm>
#include <string>

namespace koro::simulator
{
namespace
{

constexpr std::size_t maxChunks = 256; // of one buffer, regardless of what its memory contains by now
constexpr std::size_t guidBytes = 16;

constexpr std::array<std::uint16_t, 256> MakeChecksumTable() noexcept
{
    std::array<std::uint16_t, 256> table{};
    for (std::size_t index = 0; index < table.size(); ++index)
    {
        auto rest = static_cast<std::uint16_t>(index << 8);
        for (int bit = 0; bit < 8; ++bit)
            rest = static_cast<std::uint16_t>((rest & 0x8000U) != 0 ? rest << 1 ^ 0x1021 : rest << 1);
        table[index] = rest;
    }
    return table;
}

constexpr std::array<std::uint16_t, 256> checksumTable = MakeChecksumTable();

bool IsIIDC(ChunkForm form) noexcept
{
    return form == ChunkForm::IIDC || form == ChunkForm::IIDCChecksum;
}

void Put32(ChunkForm form, std::uint32_t value, std::span<std::byte> out) noexcept
{
    for (std::size_t byte = 0; byte < 4; ++byte)
        out[form == ChunkForm::GigEVision ? 3 - byte : byte] = static_cast<std::byte>(value >> 8 * byte & 0xFF);
}

std::uint32_t Get32(ChunkForm form, std::span<const std::byte> in) noexcept
{
    std::uint32_t value = 0;
    for (std::size_t byte = 0; byte < 4; ++byte)
        value |= static_cast<std::uint32_t>(in[form == ChunkForm::GigEVision ? 3 - byte : byte]) << 8 * byte;
    return value;
}

std::uint64_t FirstBytes(std::span<const std::byte> guid) noexcept
{
    std::uint64_t number = 0;
    for (const std::byte byte : guid.first(8))
        number = number << 8 | static_cast<std::uint64_t>(byte);
    return number;
}

[[noreturn]] void RefuseChain(std::size_t place, const char* why)
{
    throw Failure(GC_ERR_PARSING_CHUNK_DATA, "the chunk that ends at byte " + std::to_string(place) + ' ' + why);
}

// The one that ends at byte `end`.
SINGLE_CHUNK_DATA ReadChunk(ChunkForm form, std::span<const std::byte> payload, std::size_t end)
{
    const std::size_t trailerBytes = TrailerBytes(form);
    if (end < trailerBytes) RefuseChain(end, "has no whole trailer");
    const auto trailer = payload.subspan(end - trailerBytes, trailerBytes);
    std::uint64_t id = 0;
    std::size_t length = 0;
    if (IsIIDC(form))
    {
        id = FirstBytes(trailer);
        const std::uint32_t told = Get32(form, trailer.subspan(guidBytes));
        if (Get32(form, trailer.subspan(guidBytes + 4)) != ~told) RefuseChain(end, "has a damaged trailer");
        if (told < trailerBytes) RefuseChain(end, "is shorter than its trailer");
        length = told - trailerBytes;
    }
    else
    {
        id = Get32(form, trailer);
        length = Get32(form, trailer.subspan(4));
    }
    if (length > end - trailerBytes) RefuseChain(end, "begins in front of the buffer");
    return {id, static_cast<std::ptrdiff_t>(end - trailerBytes - length), length};
}

} // namespace

ChunkForm ChunkFormOf(std::string_view tlType, bool withChecksum) noexcept
{
    if (tlType == "GEV") return ChunkForm::GigEVision;
    if (tlType == "IIDC") return withChecksum ? ChunkForm::IIDCChecksum : ChunkForm::IIDC;
    return ChunkForm::USB3Vision;
}

std::array<std::uint8_t, 16> ChunkGUID(std::uint32_t id) noexcept
{
    std::array<std::uint8_t, guidBytes> guid{0,    0,    0,    0,    0x6F, 0x0E, 0x4A, 0x54,
                                             0x9D, 0x0F, 0x1B, 0x7D, 0x5F, 0x1C, 0x0A, 0x08};
    for (std::size_t byte = 0; byte < 4; ++byte)
        guid[byte] = static_cast<std::uint8_t>(id >> (24 - 8 * byte));
    return guid;
}

std::size_t TrailerBytes(ChunkForm form) noexcept
{
    return IsIIDC(form) ? guidBytes + 8 : 8;
}

std::size_t ChecksumBytes(ChunkForm form) noexcept
{
    return form == ChunkForm::IIDCChecksum ? 4 : 0;
}

void WriteTrailer(ChunkForm form, std::uint32_t id, std::size_t dataBytes, std::span<std::byte> out) noexcept
{
    if (!IsIIDC(form))
    {
        Put32(form, id, out);
        return Put32(form, static_cast<std::uint32_t>(dataBytes), out.subspan(4));
    }
    const auto guid = ChunkGUID(id);
    std::copy_n(std::as_bytes(std::span(guid)).begin(), guid.size(), out.begin());
    const auto length = static_cast<std::uint32_t>(dataBytes + TrailerBytes(form));
    Put32(form, length, out.subspan(guidBytes));
    Put32(form, ~length, out.subspan(guidBytes + 4));
}

void WriteChecksum(ChunkForm form, std::span<std::byte> payload) noexcept
{
    const std::size_t bytes = ChecksumBytes(form);
    if (bytes == 0) return;
    const std::size_t covered = payload.size() - bytes;
    Put32(form, Checksum(payload.first(covered)), payload.subspan(covered));
}

std::uint16_t Checksum(std::span<const std::byte> bytes) noexcept
{
    std::uint16_t sum = 0;
    for (const std::byte byte : bytes)
        sum = static_cast<std::uint16_t>(sum << 8 ^ checksumTable[static_cast<std::uint8_t>(byte) ^ sum >> 8]);
    return sum;
}

std::vector<SINGLE_CHUNK_DATA> ParseChunks(ChunkForm form, std::span<const std::byte> payload)
{
    std::vector<SINGLE_CHUNK_DATA> chunks;
    if (payload.size() < ChecksumBytes(form)) RefuseChain(payload.size(), "has no room for the checksum");
    for (std::size_t end = payload.size() - ChecksumBytes(form); end > 0;)
    {
        if (chunks.size() == maxChunks) RefuseChain(end, "is one too many");
        chunks.push_back(ReadChunk(form, payload, end));
        end = static_cast<std::size_t>(chunks.back().ChunkOffset);
    }
    std::reverse(chunks.begin(), chunks.end());
    return chunks;
}

} // namespace koro::simulator
