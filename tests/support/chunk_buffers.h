// Builds buffers with chunks byte by byte, as the transport layers lay them out: data first, followed by its trailer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace koro::test
{

inline std::string LittleEndian(std::uint64_t number, std::size_t size)
{
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i)
        bytes += static_cast<char>(number >> (8 * i));
    return bytes;
}

inline std::string BigEndian(std::uint64_t number, std::size_t size)
{
    const std::string little = LittleEndian(number, size);
    return {little.rbegin(), little.rend()};
}

inline std::string GEVChunk(std::uint32_t id, const std::string& data)
{
    return data + BigEndian(id, 4) + BigEndian(data.size(), 4);
}

inline std::string U3VChunk(std::uint32_t id, const std::string& data)
{
    return data + LittleEndian(id, 4) + LittleEndian(data.size(), 4);
}

// `id` contains the 16 bytes in their order; the length includes the trailer.
inline std::string IIDCChunk(const std::string& id, const std::string& data)
{
    const auto length = static_cast<std::uint32_t>(data.size() + 24);
    return data + id + LittleEndian(length, 4) + LittleEndian(~length, 4);
}

// Appends the checksum of an IIDC buffer, or a wrong one.
inline std::string WithChecksum(const std::string& chunks, bool right = true)
{
    std::uint16_t crc = 0;
    for (const char byte : chunks)
    {
        crc = static_cast<std::uint16_t>(crc ^ static_cast<unsigned char>(byte) << 8);
        for (int bit = 0; bit < 8; ++bit)
            crc = static_cast<std::uint16_t>(crc << 1 ^ ((crc & 0x8000) != 0 ? 0x1021 : 0));
    }
    return chunks + LittleEndian(right ? crc : crc ^ 1u, 4);
}

} // namespace koro::test
