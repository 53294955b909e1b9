#include "tests/unit/image/sample_picture.h"

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>

namespace
{

using testing::ElementsAre;

// A picture of one component with the library's rule for its edges.
struct Mosaic
{
    int64_t width, height;
    std::vector<uint16_t> samples;
    std::string first; // colours of the first two pixels

    static int64_t Mirror(int64_t i, int64_t size)
    {
        while (size > 1 && (i < 0 || i >= size))
            i = i < 0 ? -i : 2 * (size - 1) - i;
        return size > 1 ? i : 0;
    }
    double At(int64_t x, int64_t y) const
    {
        return samples[static_cast<size_t>(Mirror(y, height) * width + Mirror(x, width))];
    }
    char ColorAt(int64_t x, int64_t y) const
    {
        const bool evenX = x % 2 == 0, evenY = y % 2 == 0;
        if (evenY) return first[evenX ? 0 : 1];
        const char corner = first[0] == 'G' ? first[1] : first[0];
        const char opposite = corner == 'R' ? 'B' : 'R';
        const bool greenFirst = first[0] != 'G';
        return evenX == greenFirst ? 'G' : opposite;
    }
};

// The mean of all samples of a colour among the 3 x 3 pixels around a place, rounded half up.
unsigned MeanAround(const Mosaic& mosaic, int64_t x, int64_t y, char color)
{
    if (mosaic.ColorAt(x, y) == color) return static_cast<unsigned>(mosaic.At(x, y));
    double sum = 0;
    unsigned count = 0;
    for (int64_t dy = -1; dy <= 1; ++dy)
    {
        for (int64_t dx = -1; dx <= 1; ++dx)
        {
            if (mosaic.ColorAt(x + dx + 2, y + dy + 2) != color) continue;
            sum += mosaic.At(x + dx, y + dy);
            ++count;
        }
    }
    return static_cast<unsigned>(std::floor(sum / count + 0.5));
}

double HalfUp(double value)
{
    return std::floor(value + 0.5);
}

// Green along the direction of the smaller change, as docs/image.md describes it.
double EdgeGreen(const Mosaic& m, int64_t x, int64_t y, double largest)
{
    if (m.ColorAt(x + 2000, y + 2000) == 'G') return m.At(x, y);
    const auto curve = [&](int64_t dx, int64_t dy) {
        return 2 * m.At(x, y) - m.At(x - 2 * dx, y - 2 * dy) - m.At(x + 2 * dx, y + 2 * dy);
    };
    const auto change = [&](int64_t dx, int64_t dy) {
        return std::abs(m.At(x - dx, y - dy) - m.At(x + dx, y + dy)) + std::abs(curve(dx, dy));
    };
    const auto estimate = [&](int64_t dx, int64_t dy) {
        return HalfUp((m.At(x - dx, y - dy) + m.At(x + dx, y + dy)) / 2 + curve(dx, dy) / 4);
    };
    const double across = estimate(1, 0), down = estimate(0, 1);
    double green = HalfUp((across + down) / 2);
    if (change(1, 0) < change(0, 1)) green = across;
    if (change(0, 1) < change(1, 0)) green = down;
    return std::clamp(green, 0.0, largest);
}

unsigned EdgeAware(const Mosaic& m, int64_t x, int64_t y, char color, double largest)
{
    const double green = EdgeGreen(m, x, y, largest);
    if (color == 'G') return static_cast<unsigned>(green);
    if (m.ColorAt(x, y) == color) return static_cast<unsigned>(m.At(x, y));
    double sum = 0;
    unsigned count = 0;
    for (int64_t dy = -1; dy <= 1; ++dy)
    {
        for (int64_t dx = -1; dx <= 1; ++dx)
        {
            if (m.ColorAt(x + dx + 2, y + dy + 2) != color) continue;
            sum += m.At(x + dx, y + dy) - EdgeGreen(m, x + dx, y + dy, largest);
            ++count;
        }
    }
    return static_cast<unsigned>(std::clamp(green + HalfUp(sum / count), 0.0, largest));
}

constexpr const char* mosaics[] = {"GR", "RG", "GB", "BG"};

template <class T>
Mosaic MosaicOf(const KIMG_IMAGE& image, const Bytes& bytes, const char* target, const std::string& first)
{
    const auto samples = std::string(target).find("16") == std::string::npos
                             ? [&] { const auto s = Unpacked8(image, bytes); return std::vector<uint16_t>(s.begin(), s.end()); }()
                             : Unpacked16(image, bytes);
    return {static_cast<int64_t>(image.width), static_cast<int64_t>(image.height), samples, first};
}

template <class T, class Expected>
void ExpectColors(
    const std::string& format, const char* target, uint64_t width, uint64_t height, int32_t demosaic,
    const Expected& expected)
{
    for (const std::string first : mosaics)
    {
        const KIMG_IMAGE image = Image(("Bayer" + first + format).c_str(), width, height, 1, 3);
        const Bytes bytes = RandomBytes(image);
        const Mosaic mosaic = MosaicOf<T>(image, bytes, target, first);
        const auto pixels = Converted<T>(image, bytes, target, nullptr, 0, demosaic);
        for (size_t i = 0; i < pixels.size(); ++i)
        {
            const auto x = static_cast<int64_t>(i / 3 % width), y = static_cast<int64_t>(i / 3 / width);
            ASSERT_EQ(pixels[i], expected(mosaic, x, y, "RGB"[i % 3])) << first << ' ' << x << ' ' << y << ' ' << i % 3;
        }
    }
}

TEST(Demosaicing, IsTheMeanOfTheNearestNeighbours)
{
    for (const uint64_t width : {2u, 3u, 16u, 17u, 70u, 131u})
    {
        ExpectColors<uint8_t>("8", "RGB8", width, 5, KIMG_DEMOSAIC_BILINEAR, MeanAround);
        ExpectColors<uint16_t>("16", "RGB16", width, 4, KIMG_DEMOSAIC_BILINEAR, MeanAround);
    }
}

TEST(Demosaicing, FollowsTheDirectionOfTheSmallerChange)
{
    for (const uint64_t width : {2u, 3u, 5u, 16u, 35u, 131u})
    {
        ExpectColors<uint8_t>("8", "RGB8", width, 9, KIMG_DEMOSAIC_EDGE_AWARE, [](auto& m, auto x, auto y, char color) {
            return EdgeAware(m, x, y, color, 255);
        });
        ExpectColors<uint16_t>(
            "16", "RGB16", width, 6, KIMG_DEMOSAIC_EDGE_AWARE,
            [](auto& m, auto x, auto y, char color) { return EdgeAware(m, x, y, color, 65535); });
    }
}

// A grey picture with one upright edge between 20 and 220: bilinear colours it, the edge-aware method does not.
TEST(Demosaicing, KeepsAGreyEdgeGreyWhereItFollowsEdges)
{
    const KIMG_IMAGE image = Image("BayerRG8", 12, 8);
    Bytes bytes;
    for (size_t i = 0; i < 12 * 8; ++i)
        bytes.push_back(i % 12 < 6 ? 20 : 220);
    const auto colored = [&](int32_t method) {
        const auto pixels = Converted<uint8_t>(image, bytes, "RGB8", nullptr, 0, method);
        size_t count = 0;
        for (size_t i = 0; i < pixels.size(); i += 3)
            count += pixels[i] != pixels[i + 1] || pixels[i] != pixels[i + 2];
        return count;
    };
    EXPECT_GT(colored(KIMG_DEMOSAIC_BILINEAR), 8u);
    EXPECT_EQ(colored(KIMG_DEMOSAIC_EDGE_AWARE), 0u);
}

TEST(Demosaicing, GivesARegionThePixelsOfTheWholePicture)
{
    for (const int32_t method : {KIMG_DEMOSAIC_BILINEAR, KIMG_DEMOSAIC_EDGE_AWARE})
    {
        const KIMG_IMAGE image = Image("BayerGB12p", 41, 23, 2);
        const Bytes bytes = RandomBytes(image);
        const auto whole = Converted<uint8_t>(image, bytes, "RGB8", nullptr, 0, method);
        for (const KIMG_REGION& region :
             {KIMG_REGION{1, 1, 1, 1}, {0, 0, 2, 2}, {3, 5, 17, 9}, {40, 22, 1, 1}, {38, 20, 3, 3}, {2, 0, 39, 23}})
        {
            const auto part = Converted<uint8_t>(image, bytes, "RGB8", &region, 0, method);
            for (size_t i = 0; i < part.size(); ++i)
            {
                const size_t y = region.y + i / 3 / region.width, x = region.x + i / 3 % region.width;
                ASSERT_EQ(part[i], whole[3 * (y * 41 + x) + i % 3]) << region.x << ' ' << region.y << ' ' << i;
            }
        }
    }
}

TEST(Demosaicing, TakesPicturesOfOneLineOrColumn)
{
    for (const int32_t method : {KIMG_DEMOSAIC_BILINEAR, KIMG_DEMOSAIC_EDGE_AWARE})
    {
        for (const auto& [width, height] : {std::pair{1u, 1u}, {1u, 9u}, {9u, 1u}, {2u, 1u}})
        {
            const KIMG_IMAGE image = Image("BayerRG8", width, height);
            const Bytes bytes(width * height, 77);
            EXPECT_THAT(Converted<uint8_t>(image, bytes, "RGB8", nullptr, 0, method), testing::Each(77));
        }
    }
}

TEST(Conversion, BringsSamplesToTheFullRange)
{
    EXPECT_THAT(Converted<uint8_t>(Image("Mono12", 2, 1), {0xFF, 0x0F, 0x34, 0x02}, "Mono8"), ElementsAre(255, 0x23));
    EXPECT_THAT(
        Converted<uint16_t>(Image("Mono12", 3, 1), {0xFF, 0x0F, 0x34, 0x02, 0xFF, 0xFF}, "Mono16"),
        ElementsAre(0xFFFF, 0x2342, 0xFFFF));
    EXPECT_THAT(Converted<uint16_t>(Image("Mono8", 2, 1), {0xFF, 0x12}, "Mono16"), ElementsAre(0xFFFF, 0x1212));
    EXPECT_THAT(Converted<uint16_t>(Image("Mono10", 1, 1), {0x01, 0x02}, "Mono16"), ElementsAre(0x8060));
}

TEST(Conversion, WritesEachTargetInItsOrder)
{
    const KIMG_IMAGE image = Image("RGB8", 1, 1);
    EXPECT_THAT(Converted<uint8_t>(image, {1, 2, 3}, "RGB8"), ElementsAre(1, 2, 3));
    EXPECT_THAT(Converted<uint8_t>(image, {1, 2, 3}, "BGR8"), ElementsAre(3, 2, 1));
    EXPECT_THAT(Converted<uint8_t>(image, {1, 2, 3}, "RGBa8"), ElementsAre(1, 2, 3, 255));
    EXPECT_THAT(Converted<uint8_t>(image, {1, 2, 3}, "BGRa8"), ElementsAre(3, 2, 1, 255));
    EXPECT_THAT(Converted<uint16_t>(image, {1, 2, 3}, "RGB16"), ElementsAre(257, 514, 771));
    EXPECT_THAT(Converted<uint16_t>(image, {1, 2, 3}, "BGRa16"), ElementsAre(771, 514, 257, 65535));
    EXPECT_THAT(Converted<uint8_t>(Image("BGRa8", 1, 1), {1, 2, 3, 4}, "RGBa8"), ElementsAre(3, 2, 1, 4));
    EXPECT_THAT(Converted<uint8_t>(Image("Mono8", 1, 1), {7}, "RGBa8"), ElementsAre(7, 7, 7, 255));
}

TEST(Conversion, WeighsColoursForBrightness)
{
    const KIMG_IMAGE image = Image("RGB8", 4, 1);
    const Bytes bytes = {255, 255, 255, 255, 0, 0, 0, 255, 0, 0, 0, 255};
    EXPECT_THAT(Converted<uint8_t>(image, bytes, "Mono8"), ElementsAre(255, 77, 149, 29));
    const auto wide = Converted<uint16_t>(image, bytes, "Mono16");
    EXPECT_EQ(wide[0], 65535);
    EXPECT_NEAR(wide[1], 0.299 * 65535, 1);
    EXPECT_NEAR(wide[2], 0.587 * 65535, 1);
    EXPECT_NEAR(wide[3], 0.114 * 65535, 1);
}

struct Space
{
    const char* format;
    double red, blue;
    bool limited;
    unsigned bits;
};

// Red, green and blue by the definition of the colour space, in numbers from 0 to 1.
std::vector<double> ColorsOf(const Space& space, double y, double cb, double cr)
{
    const double unit = std::pow(2.0, space.bits - 8), all = std::pow(2.0, space.bits) - 1;
    const double brightness = space.limited ? (y - 16 * unit) / (219 * unit) : y / all;
    const double range = space.limited ? 224 * unit : all;
    const double pb = (cb - 128 * unit) / range, pr = (cr - 128 * unit) / range;
    const double red = brightness + 2 * (1 - space.red) * pr;
    const double blue = brightness + 2 * (1 - space.blue) * pb;
    const double green = (brightness - space.red * red - space.blue * blue) / (1 - space.red - space.blue);
    return {std::clamp(red, 0.0, 1.0), std::clamp(green, 0.0, 1.0), std::clamp(blue, 0.0, 1.0)};
}

TEST(Conversion, FollowsEachColourSpace)
{
    for (const Space& space :
         {Space{"YCbCr8", 0.299, 0.114, false, 8},
          {"YUV8_UYV", 0.299, 0.114, false, 8},
          {"YCbCr601_8_CbYCr", 0.299, 0.114, true, 8},
          {"YCbCr709_422_8", 0.2126, 0.0722, true, 8},
          {"YCbCr2020_8_CbYCr", 0.2627, 0.0593, true, 8},
          {"YCbCr709_10p_CbYCr", 0.2126, 0.0722, true, 10},
          {"YCbCr12_CbYCr", 0.299, 0.114, false, 12},
          {"YCbCr420_8_YY_CbCr_Semiplanar", 0.299, 0.114, false, 8}})
    {
        KIMG_IMAGE image = Image(space.format, 34, 6);
        const Bytes bytes = RandomBytes(image);
        const auto components = Unpacked16(image, bytes);
        const auto narrow = Converted<uint8_t>(image, bytes, "RGB8");
        const auto wide = Converted<uint16_t>(image, bytes, "RGB16");
        for (size_t i = 0; i < components.size(); i += 3)
        {
            const unsigned largest = (1u << space.bits) - 1;
            const auto limited = [&](size_t c) { return std::min<unsigned>(components[i + c], largest); };
            if (components[i] > largest || components[i + 1] > largest || components[i + 2] > largest) continue;
            const auto expected = ColorsOf(space, limited(0), limited(1), limited(2));
            for (size_t c = 0; c < 3; ++c)
            {
                ASSERT_NEAR(narrow[i + c], 255 * expected[c], 0.51) << space.format << ' ' << i;
                ASSERT_NEAR(wide[i + c], 65535 * expected[c], 0.51) << space.format << ' ' << i;
            }
        }
    }
}

TEST(Conversion, KeepsGreyOfYCbCrGrey)
{
    EXPECT_THAT(
        Converted<uint8_t>(Image("YCbCr422_8", 2, 1), {9, 128, 200, 128}, "RGB8"), ElementsAre(9, 9, 9, 200, 200, 200));
    EXPECT_THAT(Converted<uint16_t>(Image("YCbCr8", 1, 1), {200, 128, 128}, "BGR16"), ElementsAre(51400, 51400, 51400));
    EXPECT_THAT(
        Converted<uint8_t>(Image("YCbCr601_8_CbYCr", 2, 1), {1, 16, 2, 3, 235, 4}, "Mono8"), ElementsAre(0, 255));
}

TEST(Conversion, SharesTheColoursOfBiColorPairs)
{
    const KIMG_IMAGE image = Image("BiColorRGBG8", 3, 1);
    const Bytes bytes = {10, 1, 20, 2, 30, 3}; // red, green; blue, green; red, green
    EXPECT_THAT(Converted<uint8_t>(image, bytes, "RGB8"), ElementsAre(10, 1, 20, 10, 2, 20, 30, 3, 20));
    const KIMG_REGION last{2, 0, 1, 1};
    EXPECT_THAT(Converted<uint8_t>(image, bytes, "RGB8", &last), ElementsAre(30, 3, 20));
    EXPECT_THAT(
        Converted<uint8_t>(Image("BiColorBGRG8", 2, 1), {10, 1, 20, 2}, "RGB8"), ElementsAre(20, 1, 10, 20, 2, 10));
}

TEST(Conversion, GivesARegionOfEveryFormatThePixelsOfTheWholePicture)
{
    for (const std::string& name : FormatsFor(KIMG_OPERATION_CONVERT))
    {
        const KIMG_IMAGE image = Image(name.c_str(), 21, 9, 1);
        const Bytes bytes = RandomBytes(image);
        const auto whole = Converted<uint16_t>(image, bytes, "RGBa16");
        const KIMG_REGION region{5, 3, 9, 5};
        const auto part = Converted<uint16_t>(image, bytes, "RGBa16", &region);
        for (size_t i = 0; i < part.size(); ++i)
        {
            const size_t y = 3 + i / 36, x = 5 * 4 + i % 36;
            ASSERT_EQ(part[i], whole[y * 84 + x]) << name;
        }
    }
}

TEST(Conversion, RefusesOtherTargetsAndMethods)
{
    const KIMG_IMAGE image = Image("Mono8", 1, 1);
    const uint8_t byte = 7;
    size_t size = 0;
    EXPECT_EQ(
        KIMG_Image_Convert(&image, &byte, 1, nullptr, KIMG_DEMOSAIC_BILINEAR, Number("Mono12p"), 0, nullptr, &size),
        KIMG_RETURN_CODE_NOT_IMPLEMENTED);
    EXPECT_EQ(LastText(), "Mono12p is no target of a conversion; Mono, RGB, BGR, RGBa and BGRa of 8 or 16 bits are.");
    EXPECT_EQ(
        KIMG_Image_Convert(&image, &byte, 1, nullptr, 0, Number("Mono8"), 0, nullptr, &size),
        KIMG_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(LastText(), "demosaic is not one of KIMG_DEMOSAIC_....");
    const KIMG_IMAGE sparse = Image("SCF1WBWG8", 1, 1);
    EXPECT_EQ(
        KIMG_Image_Convert(&sparse, &byte, 1, nullptr, KIMG_DEMOSAIC_BILINEAR, Number("RGB8"), 0, nullptr, &size),
        KIMG_RETURN_CODE_NOT_IMPLEMENTED);
    EXPECT_EQ(
        LastText(), "SCF1WBWG8: How to compute colours from this sparse filter is known only to the maker of the "
                    "sensor; unpack the "
                    "samples instead.");
}

} // namespace
