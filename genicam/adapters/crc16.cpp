#include "adapters/crc16.h"

#include <array>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const size_t slices = 8; // bytes taken at once

// tables[n][b]: what the byte b adds to the checksum when n more bytes come behind it.
constexpr std::array<std::array<uint16_t, 256>, slices> MakeTables()
{
    std::array<std::array<uint16_t, 256>, slices> tables{};
    for (unsigned byte = 0; byte < 256; ++byte)
    {
        uint16_t crc = static_cast<uint16_t>(byte << 8);
        for (int bit = 0; bit < 8; ++bit)
            crc = static_cast<uint16_t>(crc << 1 ^ ((crc & 0x8000) != 0 ? 0x1021 : 0));
        tables[0][byte] = crc;
    }
    for (size_t slice = 1; slice < slices; ++slice)
    {
        for (size_t byte = 0; byte < 256; ++byte)
        {
            const uint16_t before = tables[slice - 1][byte];
            tables[slice][byte] = static_cast<uint16_t>(before << 8 ^ tables[0][before >> 8]);
        }
    }
    return tables;
}

constexpr auto tables = MakeTables();

} // namespace

uint16_t Crc16(const uint8_t* bytes, size_t size)
{
    uint16_t crc = 0;
    for (; size >= slices; bytes += slices, size -= slices)
    {
        uint16_t next = static_cast<uint16_t>(tables[7][bytes[0] ^ crc >> 8] ^ tables[6][bytes[1] ^ (crc & 0xff)]);
        for (size_t i = 2; i < slices; ++i)
            next = static_cast<uint16_t>(next ^ tables[slices - 1 - i][bytes[i]]);
        crc = next;
    }
    for (; size > 0; ++bytes, --size)
        crc = static_cast<uint16_t>(crc << 8 ^ tables[0][*bytes ^ crc >> 8]);
    return crc;
}

} // namespace GENAPI_NAMESPACE::runtime
