#include "tests/unit/image/sample_picture.h"

#include <cmath>
#include <gmock/gmock.h>

namespace
{

using testing::ElementsAre;

Bytes WithGains(
    const KIMG_IMAGE& image, Bytes bytes, double red, double green, double blue, const KIMG_REGION* region = nullptr)
{
    EXPECT_EQ(
        KIMG_Image_ApplyGains(&image, bytes.data(), bytes.size(), region, red, green, blue), KIMG_RETURN_CODE_SUCCESS)
        << LastText();
    return bytes;
}

std::vector<uint16_t> Gamma(double gamma, uint32_t bits)
{
    return Fetched<uint16_t>(
        [&](uint16_t* output, size_t* size) { return KIMG_Table_FillGamma(gamma, bits, output, size); });
}

TEST(Gains, MultiplyEachColourOfAMosaic)
{
    const Bytes bytes = {10, 11, 12, 13, 14, 15};
    EXPECT_THAT(WithGains(Image("BayerRG8", 3, 2), bytes, 2, 1, 3), ElementsAre(20, 11, 24, 13, 42, 15));
    EXPECT_THAT(WithGains(Image("BayerGB8", 3, 2), bytes, 2, 1, 3), ElementsAre(10, 33, 12, 26, 14, 30));
    const KIMG_REGION region{1, 1, 2, 1};
    EXPECT_THAT(WithGains(Image("BayerRG8", 3, 2), bytes, 2, 1, 3, &region), ElementsAre(10, 11, 12, 13, 42, 15));
}

TEST(Gains, MultiplyColoursButNotAlpha)
{
    EXPECT_THAT(WithGains(Image("BGRa8", 1, 1), {1, 2, 3, 4}, 10, 20, 30), ElementsAre(30, 40, 30, 4));
    EXPECT_THAT(WithGains(Image("RGB8_Planar", 1, 1), {1, 2, 3}, 10, 20, 30), ElementsAre(10, 40, 90));
    EXPECT_THAT(WithGains(Image("Mono8", 1, 1), {100}, 9, 2, 9), ElementsAre(200));
}

TEST(Gains, RoundAndStopAtTheLargestValue)
{
    EXPECT_THAT(WithGains(Image("Mono8", 3, 1), {1, 3, 200}, 1, 1.5, 1), ElementsAre(2, 5, 255));
    EXPECT_THAT(WithGains(Image("Mono12", 1, 1), {0x00, 0x08}, 1, 3, 1), ElementsAre(0xFF, 0x0F));
    KIMG_IMAGE image = Image("Mono16", 1, 1);
    image.bigEndian = 1;
    EXPECT_THAT(WithGains(image, {0x01, 0x80}, 1, 2, 1), ElementsAre(0x03, 0x00));
}

TEST(Gains, RefuseOtherNumbersAndFormats)
{
    Bytes bytes = {1, 2, 3, 4};
    const KIMG_IMAGE mono = Image("Mono8", 1, 1);
    for (const double gain : {-1.0, 1001.0, std::nan("")})
    {
        EXPECT_EQ(
            KIMG_Image_ApplyGains(&mono, bytes.data(), 4, nullptr, gain, 1, 1), KIMG_RETURN_CODE_INVALID_ARGUMENT);
        EXPECT_EQ(LastText(), "redGain is not a number from 0 to 1000.");
    }
    for (const char* name : {"Mono12p", "YCbCr8", "Mono8s", "Coord3D_C16", "Mono32", "RGB565p", "Mono10Packed"})
    {
        const KIMG_IMAGE image = Image(name, 1, 1);
        EXPECT_EQ(KIMG_Image_ApplyGains(&image, bytes.data(), 4, nullptr, 1, 1, 1), KIMG_RETURN_CODE_NOT_IMPLEMENTED);
    }
    EXPECT_EQ(
        LastText(), "Mono10Packed: Only mono, Bayer and RGB samples of 8 to 16 bits in whole bytes can be changed in "
                    "place; convert first.");
    EXPECT_EQ(KIMG_Image_ApplyGains(&mono, bytes.data(), 0, nullptr, 2, 2, 2), KIMG_RETURN_CODE_NO_DATA);
    EXPECT_THAT(bytes, ElementsAre(1, 2, 3, 4));
}

TEST(Gains, AreEstimatedFromTheMeanColours)
{
    double red = 0, green = 0, blue = 0;
    const Bytes bytes = {50, 100, 100, 200, 50, 100, 100, 200};
    const KIMG_IMAGE bayer = Image("BayerRG8", 2, 4);
    EXPECT_EQ(
        KIMG_Image_EstimateGains(&bayer, bytes.data(), 8, nullptr, &red, &green, &blue), KIMG_RETURN_CODE_SUCCESS);
    EXPECT_THAT((std::vector{red, green, blue}), ElementsAre(2, 1, 0.5));
    const KIMG_IMAGE bgr = Image("BGR8", 1, 1);
    EXPECT_EQ(KIMG_Image_EstimateGains(&bgr, bytes.data(), 8, nullptr, &red, &green, &blue), KIMG_RETURN_CODE_SUCCESS);
    EXPECT_THAT((std::vector{red, green, blue}), ElementsAre(1, 1, 2));
    const Bytes beyond = {0xFF, 0x01, 0xFF, 0x03, 0xFF, 0xFF}; // 511, 1023 and more than ten bits
    const KIMG_IMAGE rgb = Image("RGB10", 1, 1);
    EXPECT_EQ(KIMG_Image_EstimateGains(&rgb, beyond.data(), 6, nullptr, &red, &green, &blue), KIMG_RETURN_CODE_SUCCESS);
    EXPECT_THAT((std::vector{red, green, blue}), ElementsAre(1023.0 / 511, 1, 1));
}

TEST(Gains, CannotBeEstimatedWithoutColours)
{
    double red = 7, green = 7, blue = 7;
    const Bytes bytes = {0, 100, 100, 200};
    const KIMG_IMAGE bayer = Image("BayerRG8", 2, 2);
    EXPECT_EQ(
        KIMG_Image_EstimateGains(&bayer, bytes.data(), 4, nullptr, &red, &green, &blue),
        KIMG_RETURN_CODE_NOT_AVAILABLE);
    EXPECT_EQ(LastText(), "The region has no red, green or blue light.");
    const KIMG_IMAGE mono = Image("Mono8", 2, 2);
    EXPECT_EQ(
        KIMG_Image_EstimateGains(&mono, bytes.data(), 4, nullptr, &red, &green, &blue),
        KIMG_RETURN_CODE_NOT_IMPLEMENTED);
    EXPECT_EQ(LastText(), "Mono8: The picture has no colours.");
    EXPECT_EQ(red + green + blue, 21);
}

TEST(Tables, ReplaceEachSample)
{
    std::vector<uint16_t> inverted(256);
    for (size_t value = 0; value < 256; ++value)
        inverted[value] = static_cast<uint16_t>(255 - value);
    Bytes bytes = {0, 1, 255, 7};
    const KIMG_IMAGE image = Image("RGBa8", 1, 1);
    EXPECT_EQ(KIMG_Image_ApplyTable(&image, bytes.data(), 4, nullptr, inverted.data(), 512), KIMG_RETURN_CODE_SUCCESS);
    EXPECT_THAT(bytes, ElementsAre(255, 254, 0, 7));
}

TEST(Tables, OfAnotherSizeOrRangeAreRefused)
{
    std::vector<uint16_t> table(256, 256);
    Bytes bytes = {9};
    const KIMG_IMAGE image = Image("Mono8", 1, 1);
    EXPECT_EQ(
        KIMG_Image_ApplyTable(&image, bytes.data(), 1, nullptr, table.data(), 510), KIMG_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(LastText(), "tableSize is 510 bytes, not 512.");
    EXPECT_EQ(
        KIMG_Image_ApplyTable(&image, bytes.data(), 1, nullptr, table.data(), 512), KIMG_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(LastText(), "An entry of the table is beyond the bits of a sample.");
    EXPECT_EQ(bytes[0], 9);
}

TEST(Tables, AreFilledWithAGammaCurve)
{
    const auto linear = Gamma(1, 10);
    ASSERT_EQ(linear.size(), 1024u);
    for (size_t value = 0; value < 1024; ++value)
        ASSERT_EQ(linear[value], value);
    const auto bright = Gamma(2, 8);
    EXPECT_EQ(bright[0], 0);
    EXPECT_EQ(bright[255], 255);
    EXPECT_EQ(bright[64], 128); // the root of 64 / 255 is 0.50098
    EXPECT_EQ(Gamma(0.5, 8)[128], 64);
}

TEST(Tables, RefuseCurvesWithoutMeaning)
{
    size_t size = 0;
    for (const double gamma : {0.0, -1.0, 101.0, std::nan("")})
        EXPECT_EQ(KIMG_Table_FillGamma(gamma, 8, nullptr, &size), KIMG_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(LastText(), "gamma is not a number from 0.01 to 100.");
    for (const uint32_t bits : {0u, 7u, 17u, 200u})
        EXPECT_EQ(KIMG_Table_FillGamma(1, bits, nullptr, &size), KIMG_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(LastText(), "bits is 200, not 8 to 16.");
}

} // namespace
