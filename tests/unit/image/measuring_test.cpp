#include "tests/unit/image/sample_picture.h"

#include <cmath>
#include <cstring>
#include <gmock/gmock.h>
#include <limits>
#include <map>

namespace
{

std::vector<uint64_t> Histogram(
    const KIMG_IMAGE& image, const Bytes& bytes, size_t component = 0, const KIMG_REGION* region = nullptr)
{
    return Fetched<uint64_t>([&](uint64_t* output, size_t* size) {
        return KIMG_Image_GetHistogram(&image, bytes.data(), bytes.size(), region, component, output, size);
    });
}

KIMG_STATISTICS Statistics(
    const KIMG_IMAGE& image, const Bytes& bytes, size_t component = 0, const KIMG_REGION* region = nullptr)
{
    KIMG_STATISTICS statistics{};
    EXPECT_EQ(
        KIMG_Image_GetStatistics(&image, bytes.data(), bytes.size(), region, component, &statistics),
        KIMG_RETURN_CODE_SUCCESS)
        << LastText();
    return statistics;
}

Bytes BytesOf(const std::vector<float>& numbers)
{
    Bytes bytes(4 * numbers.size());
    std::memcpy(bytes.data(), numbers.data(), bytes.size());
    return bytes;
}

TEST(Histogram, CountsTheValuesThatUnpackingGives)
{
    for (const char* name : {"Mono8", "BayerRG8", "Mono12p", "Mono10Packed", "RGB8", "YCbCr422_8", "Mono1p", "Data16s"})
    {
        const KIMG_IMAGE image = Image(name, 53, 11, 3, 1);
        const Bytes bytes = RandomBytes(image);
        const size_t channels = InfoOf(name).numComponents;
        for (const KIMG_REGION& region : {KIMG_REGION{0, 0, 53, 11}, {7, 2, 21, 5}, {52, 10, 1, 1}})
        {
            const auto values = Unpacked16(image, bytes, &region);
            for (size_t component = 0; component < channels; ++component)
            {
                const auto histogram = Histogram(image, bytes, component, &region);
                ASSERT_EQ(histogram.size(), size_t{1} << InfoOf(name).bitsPerSample);
                std::vector<uint64_t> expected(histogram.size());
                for (size_t i = component; i < values.size(); i += channels)
                    ++expected[values[i]];
                ASSERT_EQ(histogram, expected) << name;
            }
        }
    }
}

TEST(Histogram, CountsAValueBeyondItsBitsAsTheLargest)
{
    const auto histogram = Histogram(Image("Mono10", 2, 1), {0xFF, 0xFF, 0xFE, 0x03});
    EXPECT_EQ(histogram[1023], 1u);
    EXPECT_EQ(histogram[1022], 1u);
}

TEST(Histogram, RefusesWhatItCannotCount)
{
    const Bytes bytes(16);
    const KIMG_IMAGE wide = Image("Mono32", 1, 1);
    size_t size = 0;
    EXPECT_EQ(
        KIMG_Image_GetHistogram(&wide, bytes.data(), 16, nullptr, 0, nullptr, &size), KIMG_RETURN_CODE_NOT_IMPLEMENTED);
    const KIMG_IMAGE mono = Image("Mono8", 1, 1);
    EXPECT_EQ(
        KIMG_Image_GetHistogram(&mono, bytes.data(), 16, nullptr, 1, nullptr, &size), KIMG_RETURN_CODE_OUT_OF_RANGE);
    EXPECT_EQ(LastText(), "componentIndex is out of range!");
    std::vector<uint64_t> small(255, 77);
    size = 255 * 8;
    EXPECT_EQ(
        KIMG_Image_GetHistogram(&mono, bytes.data(), 16, nullptr, 0, small.data(), &size),
        KIMG_RETURN_CODE_BUFFER_TOO_SMALL);
    EXPECT_THAT(small, testing::Each(77));
}

TEST(Statistics, AreThoseOfTheSamples)
{
    const KIMG_STATISTICS bytes = Statistics(Image("Mono8", 4, 1), {10, 255, 20, 255});
    EXPECT_EQ(bytes.minimum, 10);
    EXPECT_EQ(bytes.maximum, 255);
    EXPECT_EQ(bytes.mean, 135);
    EXPECT_EQ(bytes.numSamples, 4u);
    EXPECT_EQ(bytes.numSaturated, 2u);
    const KIMG_STATISTICS green = Statistics(Image("BGR8", 2, 1), {1, 2, 3, 5, 8, 9}, 1);
    EXPECT_EQ(green.minimum, 2);
    EXPECT_EQ(green.mean, 5);
    const KIMG_STATISTICS narrow = Statistics(Image("RGB565p", 1, 1), {0x1F, 0x00}, 0);
    EXPECT_EQ(narrow.maximum, 31);
    EXPECT_EQ(narrow.numSaturated, 1u) << "red has five bits only";
}

TEST(Statistics, KeepTheSignOfSignedSamples)
{
    const KIMG_STATISTICS bytes = Statistics(Image("Mono8s", 2, 1), {0x80, 0x7F});
    EXPECT_EQ(bytes.minimum, -128);
    EXPECT_EQ(bytes.maximum, 127);
    EXPECT_EQ(bytes.mean, -0.5);
    EXPECT_EQ(bytes.numSaturated, 1u);
    EXPECT_EQ(Statistics(Image("Data32s", 1, 1), {0xFE, 0xFF, 0xFF, 0xFF}).minimum, -2);
}

TEST(Statistics, LeaveOutWhatIsNoFiniteNumber)
{
    const float infinite = std::numeric_limits<float>::infinity(), none = std::nanf("");
    const KIMG_STATISTICS figures = Statistics(Image("Coord3D_C32f", 4, 1), BytesOf({none, -1.5F, infinite, 2.5F}));
    EXPECT_EQ(figures.minimum, -1.5);
    EXPECT_EQ(figures.maximum, 2.5);
    EXPECT_EQ(figures.mean, 0.5);
    EXPECT_EQ(figures.numSamples, 2u);
    EXPECT_EQ(figures.numSaturated, 0u);
    KIMG_STATISTICS statistics{};
    const KIMG_IMAGE image = Image("Coord3D_C32f", 1, 1);
    const Bytes bytes = BytesOf({none});
    EXPECT_EQ(
        KIMG_Image_GetStatistics(&image, bytes.data(), 4, nullptr, 0, &statistics), KIMG_RETURN_CODE_NOT_AVAILABLE);
    EXPECT_EQ(LastText(), "No sample of the region is a finite number.");
}

} // namespace
