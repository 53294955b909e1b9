#include "tools/koro/pixel_unpacking.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using namespace koro::tool;
using testing::ElementsAre;

const PixelFormat& Format(const std::string& name)
{
    for (const uint32_t code :
         {0x01100003u, 0x010C0004u, 0x010A0046u, 0x01100005u, 0x010C0006u, 0x010C0047u, 0x01100025u, 0x010E0104u})
    {
        if (FindPixelFormat(code)->name == name) return *FindPixelFormat(code);
    }
    throw std::out_of_range(name);
}

// Unpacks from a buffer that ends with the line, so that a sanitizer sees each byte read beyond it.
std::vector<unsigned> Unpack(const std::string& name, std::vector<uint8_t> line, size_t samples, bool bigEndian = false)
{
    const PixelFormat& format = Format(name);
    EXPECT_EQ(format.BytesOf(samples), line.size());
    std::vector<uint16_t> values(samples);
    UnpackLine(format, bigEndian, line.data(), samples, values.data());
    return {values.begin(), values.end()};
}

TEST(PixelUnpacking, WordsAreLittleEndianUnlessToldOtherwise)
{
    EXPECT_THAT(Unpack("Mono12", {0x34, 0x02, 0xFF, 0x0F}, 2), ElementsAre(0x234, 0xFFF));
    EXPECT_THAT(Unpack("Mono12", {0x02, 0x34, 0x0F, 0xFF}, 2, true), ElementsAre(0x234, 0xFFF));
}

TEST(PixelUnpacking, DenseTenBitsFillFiveBytesWithFourSamples)
{
    // 0x3FF, 0x000, 0x2AA, 0x155 from the lowest bit on.
    EXPECT_THAT(Unpack("Mono10p", {0xFF, 0x03, 0xA0, 0x6A, 0x55}, 4), ElementsAre(0x3FF, 0x000, 0x2AA, 0x155));
}

TEST(PixelUnpacking, DenseTenBitsEndInsideAGroup)
{
    EXPECT_THAT(Unpack("Mono10p", {0xFF, 0x03}, 1), ElementsAre(0x3FF));
    EXPECT_THAT(Unpack("Mono10p", {0xFF, 0x03, 0xA0, 0x6A}, 3), ElementsAre(0x3FF, 0x000, 0x2AA));
}

TEST(PixelUnpacking, DenseTwelveBitsFillThreeBytesWithTwoSamples)
{
    EXPECT_THAT(Unpack("Mono12p", {0x23, 0xC1, 0xAB}, 2), ElementsAre(0x123, 0xABC));
    EXPECT_THAT(Unpack("Mono12p", {0x23, 0xC1, 0xAB, 0xEF, 0x0D}, 3), ElementsAre(0x123, 0xABC, 0xDEF));
}

TEST(PixelUnpacking, DenseFourteenBitsFillSevenBytesWithFourSamples)
{
    // 0x3FFF, 0x0001, 0x2000, 0x1555 from the lowest bit on.
    EXPECT_THAT(
        Unpack("Mono14p", {0xFF, 0x7F, 0x00, 0x00, 0x00, 0x56, 0x55}, 4), ElementsAre(0x3FFF, 0x0001, 0x2000, 0x1555));
    EXPECT_THAT(Unpack("Mono14p", {0xFF, 0x7F, 0x00, 0x00}, 2), ElementsAre(0x3FFF, 0x0001));
}

TEST(PixelUnpacking, PackedTwelveBitsKeepTheLowBitsInTheMiddleByte)
{
    EXPECT_THAT(Unpack("Mono12Packed", {0x12, 0xC3, 0xAB}, 2), ElementsAre(0x123, 0xABC));
    EXPECT_THAT(Unpack("Mono12Packed", {0x12, 0x03}, 1), ElementsAre(0x123));
}

TEST(PixelUnpacking, PackedTenBitsKeepTheLowBitsInTheMiddleByte)
{
    // 0x3FD = 1111111101: high bits 0xFF, low bits 01; 0x156 = 0101010110: high bits 0x55, low bits 10.
    EXPECT_THAT(Unpack("Mono10Packed", {0xFF, 0x21, 0x55}, 2), ElementsAre(0x3FD, 0x156));
    EXPECT_THAT(Unpack("Mono10Packed", {0xFF, 0x01, 0x55, 0x80, 0x03}, 3), ElementsAre(0x3FD, 0x154, 0x203));
}

TEST(PixelUnpacking, UnusedBitsOfPackedTenBitsAreIgnored)
{
    EXPECT_THAT(Unpack("Mono10Packed", {0x00, 0xCC, 0x00}, 2), ElementsAre(0, 0));
}

TEST(PixelUnpacking, StretchingRepeatsTheHighBits)
{
    std::vector<uint16_t> ten{0, 1, 0x200, 0x3FF};
    StretchToFullRange(10, ten.data(), ten.size());
    EXPECT_THAT(ten, ElementsAre(0, 0x0040, 0x8020, 0xFFFF));

    std::vector<uint16_t> twelve{0, 1, 0x800, 0xFFF};
    StretchToFullRange(12, twelve.data(), twelve.size());
    EXPECT_THAT(twelve, ElementsAre(0, 0x0010, 0x8008, 0xFFFF));

    std::vector<uint16_t> fourteen{0, 1, 0x2000, 0x3FFF};
    StretchToFullRange(14, fourteen.data(), fourteen.size());
    EXPECT_THAT(fourteen, ElementsAre(0, 0x0004, 0x8002, 0xFFFF));
}

TEST(PixelUnpacking, SixteenBitsAreLeftAlone)
{
    std::vector<uint16_t> values{0, 1, 0x1234, 0xFFFF};
    StretchToFullRange(16, values.data(), values.size());
    EXPECT_THAT(values, ElementsAre(0, 1, 0x1234, 0xFFFF));
}

TEST(PixelUnpacking, ValueBeyondItsRangeCountsAsTheLargest)
{
    std::vector<uint16_t> values{0x0400, 0xFFFF};
    StretchToFullRange(10, values.data(), values.size());
    EXPECT_THAT(values, ElementsAre(0xFFFF, 0xFFFF));
}

} // namespace
