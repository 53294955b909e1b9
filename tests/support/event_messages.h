// Builds event messages byte by byte, as the transport layers send them.
#pragma once

#include "tests/support/chunk_buffers.h"

#include <cstdint>
#include <string>

namespace koro::test
{

// GigE Vision, an event with data. A port shows the item: its size at 0, the id at 2, the time at 8, the data at 16.
inline std::string GEVEvent(std::uint16_t id, const std::string& data, std::uint64_t time = 0)
{
    const std::string item =
        BigEndian(0, 2) + BigEndian(id, 2) + BigEndian(0xffff, 2) + BigEndian(0, 2) + BigEndian(time, 8) + data;
    return BigEndian(0x4200, 2) + BigEndian(0xc2, 2) + BigEndian(item.size(), 2) + BigEndian(1, 2) + item;
}

// USB3 Vision. A port shows the item: the id at 2, the time at 4, the data at 12.
inline std::string U3VEvent(std::uint16_t id, const std::string& data, std::uint64_t time = 0)
{
    const std::string item = LittleEndian(0, 2) + LittleEndian(id, 2) + LittleEndian(time, 8) + data;
    return LittleEndian(0x45563355, 4) + LittleEndian(0, 2) + LittleEndian(0x0c00, 2) + LittleEndian(item.size(), 2) +
           LittleEndian(1, 2) + item;
}

// Camera Link; the item is that of USB3 Vision, big endian.
inline std::string CLEvent(std::uint16_t id, const std::string& data, std::uint64_t time = 0)
{
    const std::string item = BigEndian(0, 2) + BigEndian(id, 2) + BigEndian(time, 8) + data;
    return BigEndian(0x0100, 2) + BigEndian(0, 8) + BigEndian(0x0c00, 2) + BigEndian(item.size(), 2) + BigEndian(1, 2) +
           item;
}

} // namespace koro::test
