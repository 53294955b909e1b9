// ChunkForm: how each kind of transport lays out chunks: a trailer behind the data of each, read from the end.
//
// Knows nothing of cameras. No state; any thread.
#pragma once

#include "producers/kit/gentl.h"
#include "producers/simulator/kit.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace koro::simulator
{

enum class ChunkForm
{
    GigEVision,  // id and length, big-endian
    USB3Vision,  // the same, little-endian
    IIDC,        // GUID, length with the trailer, its inverse
    IIDCChecksum // the same, and a CRC behind it all
};

ChunkForm ChunkFormOf(std::string_view tlType, bool withChecksum) noexcept;

// Of an id of the other forms, in the order of its bytes in the buffer; as a number its first eight bytes count.
std::array<std::uint8_t, 16> ChunkGUID(std::uint32_t id) noexcept;

std::size_t TrailerBytes(ChunkForm form) noexcept;
std::size_t ChecksumBytes(ChunkForm form) noexcept;

// `out` begins with the trailer of `dataBytes` bytes in front of it.
void WriteTrailer(ChunkForm form, std::uint32_t id, std::size_t dataBytes, std::span<std::byte> out) noexcept;

// Over all but the last bytes, into these. Nothing for forms without.
void WriteChecksum(ChunkForm form, std::span<std::byte> payload) noexcept;

// The polynomial 0x1021, most significant bit first, beginning with 0.
std::uint16_t Checksum(std::span<const std::byte> bytes) noexcept;

// In the order in which they lie there. Throws GC_ERR_PARSING_CHUNK_DATA for a broken chain; the checksum is not looked
// at.
std::vector<SINGLE_CHUNK_DATA> ParseChunks(ChunkForm form, std::span<const std::byte> payload);

} // namespace koro::simulator
