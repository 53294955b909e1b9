#include "tools/koro/demosaic.h"

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

namespace
{

using namespace koro::tool;
using testing::ElementsAre;

constexpr std::array mosaics = {Mosaic::GR, Mosaic::RG, Mosaic::GB, Mosaic::BG};

// Channel of the pixel at (x, y): 0 red, 1 green, 2 blue.
size_t ChannelAt(Mosaic mosaic, size_t x, size_t y)
{
    static const char* const tiles[] = {"", "GRBG", "RGGB", "GBRG", "BGGR"};
    const char colour = tiles[static_cast<size_t>(mosaic)][2 * (y % 2) + x % 2];
    return colour == 'R' ? 0 : colour == 'G' ? 1 : 2;
}

// What a sensor with this mosaic sees of a scene in one colour.
std::vector<uint16_t> See(const std::array<uint16_t, 3>& colour, size_t width, size_t height, Mosaic mosaic)
{
    std::vector<uint16_t> plane;
    for (size_t y = 0; y < height; ++y)
    {
        for (size_t x = 0; x < width; ++x)
            plane.push_back(colour[ChannelAt(mosaic, x, y)]);
    }
    return plane;
}

TEST(Demosaic, SceneInOneColourComesBackInThatColourUpToTheEdges)
{
    for (const Mosaic mosaic : mosaics)
    {
        const std::vector<uint16_t> rgb = Demosaic(See({60000, 300, 7}, 6, 4, mosaic), 6, 4, mosaic);
        ASSERT_EQ(rgb.size(), 6u * 4u * 3u);
        for (size_t i = 0; i < rgb.size(); i += 3)
        {
            EXPECT_THAT((std::vector<unsigned>{rgb[i], rgb[i + 1], rgb[i + 2]}), ElementsAre(60000, 300, 7))
                << "mosaic " << static_cast<int>(mosaic) << ", pixel " << i / 3;
        }
    }
}

TEST(Demosaic, OddSidesKeepTheColours)
{
    for (const Mosaic mosaic : mosaics)
    {
        const std::vector<uint16_t> rgb = Demosaic(See({1, 2, 3}, 5, 3, mosaic), 5, 3, mosaic);
        for (size_t i = 0; i < rgb.size(); i += 3)
        {
            EXPECT_THAT((std::vector<unsigned>{rgb[i], rgb[i + 1], rgb[i + 2]}), ElementsAre(1, 2, 3));
        }
    }
}

TEST(Demosaic, MissingColoursAreMeansOfTheNeighbours)
{
    // R  G  R        The pixel in the middle is blue: red from the corners, green from the sides.
    // G  B  G
    // R  G  R
    const std::vector<uint8_t> plane = {
        10, 1,  20, //
        3,  99, 5,  //
        30, 7,  41, //
    };
    const std::vector<uint8_t> rgb = Demosaic(plane, 3, 3, Mosaic::RG);
    const size_t middle = 3 * 4;
    EXPECT_EQ(rgb[middle + 0], 25); // (10 + 20 + 30 + 41 + 2) / 4
    EXPECT_EQ(rgb[middle + 1], 4);  // (1 + 3 + 5 + 7 + 2) / 4
    EXPECT_EQ(rgb[middle + 2], 99);

    // The green pixel above it: red from left and right, blue from above (mirrored) and below.
    const size_t top = 3 * 1;
    EXPECT_EQ(rgb[top + 0], 15); // (10 + 20 + 1) / 2
    EXPECT_EQ(rgb[top + 1], 1);
    EXPECT_EQ(rgb[top + 2], 99);

    // The corner: everything mirrored inwards.
    EXPECT_EQ(rgb[0], 10);
    EXPECT_EQ(rgb[1], 2); // (1 + 1 + 3 + 3 + 2) / 4
    EXPECT_EQ(rgb[2], 99);
}

TEST(Demosaic, BrightestValuesDoNotOverflow)
{
    const std::vector<uint16_t> rgb = Demosaic(std::vector<uint16_t>(16, 65535), 4, 4, Mosaic::GB);
    EXPECT_THAT(rgb, testing::Each(65535));
}

TEST(Demosaic, SinglePixelsLinesAndColumnsComeThrough)
{
    EXPECT_THAT(Demosaic(std::vector<uint8_t>{7}, 1, 1, Mosaic::RG), ElementsAre(7, 7, 7));
    EXPECT_EQ(Demosaic(std::vector<uint8_t>(5, 9), 5, 1, Mosaic::GR).size(), 15u);
    EXPECT_EQ(Demosaic(std::vector<uint8_t>(5, 9), 1, 5, Mosaic::BG).size(), 15u);
    EXPECT_TRUE(Demosaic(std::vector<uint8_t>{}, 0, 0, Mosaic::BG).empty());
}

} // namespace
