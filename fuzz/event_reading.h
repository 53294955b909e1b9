// A second parser for event messages, written only from the layouts, with which the targets compare.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <vector>

namespace koro::fuzz
{

using Bytes = std::vector<std::uint8_t>;

struct ReadEvent
{
    std::uint64_t id;
    Bytes bytes;
};
using Events = std::optional<std::vector<ReadEvent>>; // nothing: malformed

inline constexpr std::uint64_t ids[] = {0, 1, 0x9001, 0x9002, 0xffff};

inline bool IsKnown(std::uint64_t id)
{
    return std::find(std::begin(ids), std::end(ids), id) != std::end(ids);
}

inline std::uint64_t NumberAt(const Bytes& bytes, std::size_t offset, std::size_t size, bool big)
{
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < size; ++i)
        number = number << 8 | bytes[offset + (big ? i : size - 1 - i)];
    return number;
}

inline Bytes Part(const Bytes& bytes, std::size_t first, std::size_t last)
{
    return Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(first), bytes.begin() + static_cast<std::ptrdiff_t>(last));
}

inline Events ReadGigEVision(const Bytes& message)
{
    if (message.size() < 8 || message.size() > 8 + 0xffff || message[0] != 0x42) return std::nullopt;
    const std::uint64_t command = NumberAt(message, 2, 2, true);
    if (command != 0xc0 && command != 0xc2) return std::nullopt;
    const std::size_t end = 8 + NumberAt(message, 4, 2, true);
    if (end > message.size()) return std::nullopt;
    const std::size_t head = message[1] & 0x10 ? 24 : 16;
    std::vector<ReadEvent> events;
    for (std::size_t at = 8; at + head <= end;)
    {
        std::size_t size = NumberAt(message, at, 2, true);
        if (size == 0) size = command == 0xc0 ? head : end - at;
        if (size < head || at + size > end) break;
        ReadEvent event = {NumberAt(message, at + 2, 2, true), Part(message, at, at + size)};
        event.bytes[0] = static_cast<std::uint8_t>(size / 256);
        event.bytes[1] = static_cast<std::uint8_t>(size % 256);
        events.push_back(event);
        at += size;
    }
    return events;
}

inline Events ReadUSB3Vision(const Bytes& message)
{
    if (message.size() < 12 || message.size() > 12 + 0xffff) return std::nullopt;
    if (NumberAt(message, 0, 4, false) != 0x45563355 || NumberAt(message, 6, 2, false) != 0x0c00) return std::nullopt;
    const std::size_t end = 12 + NumberAt(message, 8, 2, false);
    if (end > message.size()) return std::nullopt;
    if (end < 24) return std::vector<ReadEvent>();
    return std::vector<ReadEvent>{{NumberAt(message, 14, 2, false), Part(message, 12, end)}};
}

inline Events ReadCameraLink(const Bytes& message)
{
    if (message.size() < 16 || message.size() > 16 + 0xffff) return std::nullopt;
    if (NumberAt(message, 0, 2, true) != 0x0100 || NumberAt(message, 10, 2, true) != 0x0c00) return std::nullopt;
    const std::size_t end = 16 + NumberAt(message, 12, 2, true);
    if (end > message.size()) return std::nullopt;
    std::vector<ReadEvent> events;
    for (std::size_t at = 16; at + 12 <= end;)
    {
        std::size_t size = NumberAt(message, at, 2, true);
        if (size == 0) size = end - at;
        if (size < 12 || at + size > end) break;
        events.push_back({NumberAt(message, at + 2, 2, true), Part(message, at, at + size)});
        at += size;
    }
    return events;
}

} // namespace koro::fuzz
