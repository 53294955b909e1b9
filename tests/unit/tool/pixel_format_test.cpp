#include "tools/koro/pixel_format.h"

#include <gtest/gtest.h>

namespace
{

using namespace koro::tool;

TEST(PixelFormat, CodesAreFoundByTheirNumber)
{
    ASSERT_NE(FindPixelFormat(0x01080001), nullptr);
    EXPECT_STREQ(FindPixelFormat(0x01080001)->name, "Mono8");
    EXPECT_STREQ(FindPixelFormat(0x010C0059)->name, "BayerRG12p");
    EXPECT_EQ(FindPixelFormat(0x010C0059)->mosaic, Mosaic::RG);
    EXPECT_EQ(FindPixelFormat(0x010A0052)->mosaic, Mosaic::BG);
    EXPECT_EQ(FindPixelFormat(0x02180015)->channels, Channels::BGR);
}

TEST(PixelFormat, UnknownCodeIsNotFoundAndIsCalledByItsNumber)
{
    EXPECT_EQ(FindPixelFormat(0x0210001F), nullptr);
    EXPECT_EQ(FindPixelFormat(0x1'01080001), nullptr);
    EXPECT_EQ(PixelFormatName(0x0210001F), "0x0210001F");
    EXPECT_EQ(PixelFormatName(0x01080001), "Mono8");
}

TEST(PixelFormat, SizeInTheCodeIsTheSizeInMemory)
{
    // Bits 23 to 16 of a code are the number of bits that a pixel takes.
    for (uint32_t number = 0; number < 0x200; ++number)
    {
        for (const uint32_t head :
             {0x01080000u, 0x010A0000u, 0x010C0000u, 0x010E0000u, 0x01100000u, 0x02180000u, 0x02200000u, 0x02300000u})
        {
            const PixelFormat* format = FindPixelFormat(head | number);
            if (!format) continue;
            EXPECT_EQ(format->BitsPerSampleInMemory() * format->SamplesPerPixel(), (head >> 16) & 0xFF) << format->name;
        }
    }
}

TEST(PixelFormat, LineEndsOnAByte)
{
    EXPECT_EQ(FindPixelFormat(0x010A0046)->BytesOf(4), 5u); // Mono10p
    EXPECT_EQ(FindPixelFormat(0x010A0046)->BytesOf(5), 7u);
    EXPECT_EQ(FindPixelFormat(0x010C0006)->BytesOf(3), 5u); // Mono12Packed
    EXPECT_EQ(FindPixelFormat(0x01100007)->BytesOf(3), 6u); // Mono16
}

} // namespace
