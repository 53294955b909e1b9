#include "tests/unit/image/sample_picture.h"

#include <cmath>
#include <gmock/gmock.h>

namespace
{

using testing::ElementsAre;

std::vector<uint8_t> Downscaled(
    const KIMG_IMAGE& image, const Bytes& bytes, const char* target, uint64_t width, uint64_t height,
    const KIMG_REGION* region = nullptr, size_t stride = 0)
{
    return Fetched<uint8_t>([&](uint8_t* output, size_t* size) {
        return KIMG_Image_Downscale(
            &image, bytes.data(), bytes.size(), region, Number(target), width, height, stride, output, size);
    });
}

TEST(Downscaling, TakesTheMeanOfThePixelsThatAreCovered)
{
    const Bytes bytes = {1, 2, 30, 3, 5, 31};
    EXPECT_THAT(Downscaled(Image("Mono8", 3, 2), bytes, "Mono8", 1, 1), ElementsAre(12));
    // Columns 0 and 1 to 2 of three.
    EXPECT_THAT(Downscaled(Image("Mono8", 3, 2), bytes, "Mono8", 2, 1), ElementsAre(2, 17));
    EXPECT_THAT(Downscaled(Image("Mono8", 3, 2), bytes, "Mono8", 3, 2), ElementsAre(1, 2, 30, 3, 5, 31));
    const KIMG_REGION region{1, 0, 2, 1};
    EXPECT_THAT(Downscaled(Image("Mono8", 3, 2), bytes, "RGBa8", 1, 1, &region), ElementsAre(16, 16, 16, 255));
    EXPECT_THAT(Downscaled(Image("RGB8", 1, 2), bytes, "BGR8", 1, 1), ElementsAre(31, 4, 2));
    EXPECT_THAT(Downscaled(Image("Mono8", 3, 2), bytes, "Mono8", 1, 2, nullptr, 2), ElementsAre(11, 0xA5, 13));
}

TEST(Downscaling, AgreesWithTheMeanOfTheConvertedPicture)
{
    for (const char* name : {"BayerGR8", "Mono12p", "YCbCr422_8", "BGR10p", "RGB8_Planar"})
    {
        const KIMG_IMAGE image = Image(name, 45, 31, 2);
        const Bytes bytes = RandomBytes(image);
        const auto whole = Converted<uint8_t>(image, bytes, "RGB8");
        const auto small = Downscaled(image, bytes, "RGB8", 7, 5);
        for (size_t i = 0; i < small.size(); ++i)
        {
            const size_t x = i / 3 % 7, y = i / 21;
            double sum = 0, count = 0;
            for (size_t row = y * 31 / 5; row < (y + 1) * 31 / 5; ++row)
            {
                for (size_t column = x * 45 / 7; column < (x + 1) * 45 / 7; ++column, ++count)
                    sum += whole[3 * (row * 45 + column) + i % 3];
            }
            ASSERT_EQ(small[i], std::floor(sum / count + 0.5)) << name << ' ' << i;
        }
    }
}

TEST(Downscaling, RefusesToEnlargeAndOtherTargets)
{
    const KIMG_IMAGE image = Image("Mono8", 3, 2);
    const Bytes bytes(6);
    size_t size = 0;
    const auto code = [&](const char* target, uint64_t width, uint64_t height) {
        return KIMG_Image_Downscale(&image, bytes.data(), 6, nullptr, Number(target), width, height, 0, nullptr, &size);
    };
    EXPECT_EQ(code("Mono8", 4, 1), KIMG_RETURN_CODE_OUT_OF_RANGE);
    EXPECT_EQ(LastText(), "outputWidth is 4, not 1 to 3, the size of the region.");
    EXPECT_EQ(code("Mono8", 1, 0), KIMG_RETURN_CODE_OUT_OF_RANGE);
    EXPECT_EQ(code("Mono16", 1, 1), KIMG_RETURN_CODE_NOT_IMPLEMENTED);
    EXPECT_EQ(LastText(), "A preview has 8 bits for each sample.");
}

} // namespace
