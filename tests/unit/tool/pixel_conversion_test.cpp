#include "tools/koro/pixel_conversion.h"
#include "tools/koro/tool_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using namespace koro::tool;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr uint64_t mono8 = 0x01080001;
constexpr uint64_t mono12 = 0x01100005;
constexpr uint64_t mono12p = 0x010C0047;
constexpr uint64_t mono16 = 0x01100007;
constexpr uint64_t bayerRG8 = 0x01080009;
constexpr uint64_t bayerGB12p = 0x010C0055;
constexpr uint64_t rgb8 = 0x02180014;
constexpr uint64_t bgr8 = 0x02180015;
constexpr uint64_t bgra8 = 0x02200017;
constexpr uint64_t bgr12 = 0x0230001B;
constexpr uint64_t yuv422 = 0x02100032;

FrameLayout Layout(uint64_t format, size_t width, size_t height)
{
    FrameLayout layout;
    layout.pixelFormat = format;
    layout.width = width;
    layout.height = height;
    return layout;
}

Picture Convert(const FrameLayout& layout, const std::vector<uint8_t>& frame)
{
    return ToPicture(layout, frame.data(), frame.size());
}

std::string ErrorOf(const FrameLayout& layout, const std::vector<uint8_t>& frame)
{
    try
    {
        Convert(layout, frame);
    }
    catch (const ToolError& error)
    {
        return error.what();
    }
    return "no error";
}

TEST(PixelConversion, Mono8IsTakenAsItIs)
{
    const Picture picture = Convert(Layout(mono8, 3, 2), {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(picture.width, 3u);
    EXPECT_EQ(picture.height, 2u);
    EXPECT_EQ(picture.channels, 1u);
    EXPECT_EQ(picture.BitsPerSample(), 8u);
    EXPECT_THAT(std::get<Samples8>(picture.samples), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(PixelConversion, LinePaddingAndImageOffsetAreSkipped)
{
    FrameLayout layout = Layout(mono8, 2, 2);
    layout.xPadding = 3;
    layout.imageOffset = 4;
    const Picture picture = Convert(layout, {90, 91, 92, 93, 1, 2, 94, 95, 96, 3, 4, 97, 98, 99});
    EXPECT_THAT(std::get<Samples8>(picture.samples), ElementsAre(1, 2, 3, 4));
}

TEST(PixelConversion, PaddingBehindTheLastLineMayBeMissing)
{
    FrameLayout layout = Layout(mono8, 2, 2);
    layout.xPadding = 3;
    EXPECT_EQ(BytesNeeded(layout), 7u);
    EXPECT_THAT(std::get<Samples8>(Convert(layout, {1, 2, 9, 9, 9, 3, 4}).samples), ElementsAre(1, 2, 3, 4));
}

TEST(PixelConversion, PackedLinesStartOnAByteOfTheirOwn)
{
    const Picture picture = Convert(Layout(mono12p, 1, 2), {0xFF, 0x0F, 0x00, 0x08});
    EXPECT_EQ(picture.BitsPerSample(), 16u);
    EXPECT_THAT(std::get<Samples16>(picture.samples), ElementsAre(0xFFFF, 0x8008));
}

TEST(PixelConversion, TwelveBitsUseTheFullRange)
{
    const Picture picture = Convert(Layout(mono12, 3, 1), {0x00, 0x00, 0x00, 0x08, 0xFF, 0x0F});
    EXPECT_THAT(std::get<Samples16>(picture.samples), ElementsAre(0, 0x8008, 0xFFFF));
}

TEST(PixelConversion, BigEndianPixelsAreTurnedRound)
{
    FrameLayout layout = Layout(mono16, 2, 1);
    layout.bigEndian = true;
    EXPECT_THAT(std::get<Samples16>(Convert(layout, {0x12, 0x34, 0xAB, 0xCD}).samples), ElementsAre(0x1234, 0xABCD));
}

TEST(PixelConversion, ColoursComeOutInTheOrderRedGreenBlue)
{
    EXPECT_THAT(std::get<Samples8>(Convert(Layout(rgb8, 1, 1), {1, 2, 3}).samples), ElementsAre(1, 2, 3));
    const Picture swapped = Convert(Layout(bgr8, 2, 1), {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(swapped.channels, 3u);
    EXPECT_THAT(std::get<Samples8>(swapped.samples), ElementsAre(3, 2, 1, 6, 5, 4));
}

TEST(PixelConversion, AlphaStaysTheLastChannel)
{
    const Picture picture = Convert(Layout(bgra8, 2, 1), {1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_EQ(picture.channels, 4u);
    EXPECT_THAT(std::get<Samples8>(picture.samples), ElementsAre(3, 2, 1, 4, 7, 6, 5, 8));
}

TEST(PixelConversion, WideColoursAreStretchedAndSwapped)
{
    const Picture picture = Convert(Layout(bgr12, 1, 1), {0xFF, 0x0F, 0x00, 0x08, 0x00, 0x00});
    EXPECT_THAT(std::get<Samples16>(picture.samples), ElementsAre(0, 0x8008, 0xFFFF));
}

TEST(PixelConversion, BayerGivesColours)
{
    // Red 200, green 100, blue 50 everywhere.
    const Picture picture = Convert(Layout(bayerRG8, 2, 2), {200, 100, 100, 50});
    EXPECT_EQ(picture.channels, 3u);
    EXPECT_THAT(
        std::get<Samples8>(picture.samples), ElementsAre(200, 100, 50, 200, 100, 50, 200, 100, 50, 200, 100, 50));
}

TEST(PixelConversion, PackedBayerIsUnpackedBeforeItIsDemosaiced)
{
    // Green 0xFFF, blue 0x800 above red 0x000, green 0xFFF.
    const Picture picture = Convert(Layout(bayerGB12p, 2, 2), {0xFF, 0x0F, 0x80, 0x00, 0xF0, 0xFF});
    const auto& samples = std::get<Samples16>(picture.samples);
    ASSERT_EQ(samples.size(), 12u);
    for (size_t i = 0; i < samples.size(); i += 3)
    {
        EXPECT_THAT(
            (std::vector<unsigned>{samples[i], samples[i + 1], samples[i + 2]}), ElementsAre(0, 0xFFFF, 0x8008));
    }
}

TEST(PixelConversion, FrameThatIsTooShortIsRefused)
{
    EXPECT_EQ(ErrorOf(Layout(mono8, 3, 2), {1, 2, 3, 4, 5}), "The frame is too short: 5 bytes where 6 are needed.");
    FrameLayout layout = Layout(mono8, 2, 1);
    layout.imageOffset = 1;
    EXPECT_EQ(ErrorOf(layout, {1, 2}), "The frame is too short: 2 bytes where 3 are needed.");
}

TEST(PixelConversion, FrameWithoutPixelsIsRefused)
{
    EXPECT_EQ(ErrorOf(Layout(mono8, 0, 2), {1}), "The frame says that it has no pixels.");
    EXPECT_EQ(ErrorOf(Layout(mono8, 2, 0), {1}), "The frame says that it has no pixels.");
}

TEST(PixelConversion, SizesBeyondReasonAreRefusedBeforeTheyOverflow)
{
    const size_t huge = ~size_t{0};
    FrameLayout padding = Layout(mono8, 1, 2);
    padding.xPadding = huge - 1;
    FrameLayout offset = Layout(mono8, 1, 1);
    offset.imageOffset = huge;
    for (const FrameLayout& layout :
         {Layout(mono8, huge, 1), Layout(mono8, 1, huge), Layout(rgb8, huge / 3 + 1, 1),
          Layout(mono16, size_t{1} << 63, 2), padding, offset})
    {
        EXPECT_THAT(ErrorOf(layout, {1, 2, 3, 4}), HasSubstr("which is beyond reason."));
    }
}

TEST(PixelConversion, LargestSidesDoNotOverflow)
{
    EXPECT_EQ(BytesNeeded(Layout(bgra8, 1000000, 1000000)), size_t{4000000000000});
    EXPECT_THAT(ErrorOf(Layout(bgra8, 1000000, 1000000), {1, 2, 3, 4}), HasSubstr("The frame is too short"));
}

TEST(PixelConversion, UnknownFormatIsNamed)
{
    EXPECT_EQ(ErrorOf(Layout(yuv422, 2, 1), {1, 2, 3, 4}), "Pixel format 0x02100032 cannot be turned into a picture.");
}

} // namespace
