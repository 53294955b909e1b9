// A second parser for buffers with chunks, written only from the layouts, with which the targets compare.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace koro::fuzz
{

using Bytes = std::vector<std::uint8_t>;

// The id as the layout compares it: its digits without leading zeros.
struct FoundChunk
{
    std::string id;
    std::size_t offset;
    std::size_t length;
};
struct Reading
{
    bool good = false;
    std::vector<FoundChunk> chunks; // the last chunk of the buffer comes first
};

inline std::string Digits(const std::uint8_t* bytes, std::size_t size, bool reversed)
{
    std::string text;
    for (std::size_t i = 0; i < size; ++i)
    {
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02x", bytes[reversed ? size - 1 - i : i]);
        text += pair;
    }
    text.erase(0, std::min(text.find_first_not_of('0'), text.size()));
    return text;
}

inline std::uint64_t NumberAt(const Bytes& bytes, std::size_t offset, std::size_t size, bool big)
{
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < size; ++i)
        number = number << 8 | bytes[offset + (big ? i : size - 1 - i)];
    return number;
}

inline Reading ReadTrailers(const Bytes& bytes, bool big)
{
    Reading reading;
    for (std::size_t end = bytes.size(); end != 0;)
    {
        if (end < 8) return reading;
        const std::uint64_t length = NumberAt(bytes, end - 4, 4, big);
        if (length + 8 > end) return reading;
        end -= 8 + length;
        reading.chunks.push_back({Digits(bytes.data() + end + length, 4, !big), end, length});
    }
    reading.good = !bytes.empty();
    return reading;
}

inline bool IsDcamTrailer(const Bytes& bytes, std::size_t end)
{
    return end >= 24 && (NumberAt(bytes, end - 8, 4, false) ^ NumberAt(bytes, end - 4, 4, false)) == 0xffffffff;
}

inline Reading ReadDcam(const Bytes& bytes)
{
    Reading reading;
    std::size_t end = bytes.size();
    if (!IsDcamTrailer(bytes, end) && end >= 28 && IsDcamTrailer(bytes, end - 4)) end -= 4;
    while (end != 0)
    {
        if (!IsDcamTrailer(bytes, end)) return reading;
        const std::uint64_t length = NumberAt(bytes, end - 8, 4, false);
        if (length < 24 || length > end) return reading;
        reading.chunks.push_back({Digits(bytes.data() + end - 24, 16, false), end - length, length - 24});
        end -= length;
    }
    reading.good = !bytes.empty();
    return reading;
}

// Whether the last four bytes are a checksum and, if so, whether it is right: bit by bit, over all before it.
inline bool HasChecksum(const Bytes& bytes)
{
    return bytes.size() >= 28 && !IsDcamTrailer(bytes, bytes.size()) && IsDcamTrailer(bytes, bytes.size() - 4);
}
inline bool IsChecksumRight(const Bytes& bytes)
{
    std::uint32_t crc = 0;
    for (std::size_t i = 0; i + 4 < bytes.size(); ++i)
    {
        for (int bit = 7; bit >= 0; --bit)
        {
            const std::uint32_t out = (crc >> 15 ^ static_cast<std::uint32_t>(bytes[i]) >> bit) & 1;
            crc = (crc << 1 & 0xffff) ^ (out ? 0x1021u : 0u);
        }
    }
    return NumberAt(bytes, bytes.size() - 4, 2, false) == crc;
}

} // namespace koro::fuzz
