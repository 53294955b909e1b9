#include "tools/koro/similar_names.h"

#include <gtest/gtest.h>

namespace
{

using namespace koro::tool;
using Names = std::vector<std::string>;

TEST(EditDistance, CountsWrongMissingAndSwappedLetters)
{
    EXPECT_EQ(EditDistance("Width", "width", 3), 0u);
    EXPECT_EQ(EditDistance("Widht", "Width", 3), 1u);
    EXPECT_EQ(EditDistance("Wdth", "Width", 3), 1u);
    EXPECT_EQ(EditDistance("Wiidth", "Width", 3), 1u);
    EXPECT_EQ(EditDistance("Height", "Weight", 3), 1u);
    EXPECT_EQ(EditDistance("Gian", "Gain", 3), 1u);
    EXPECT_EQ(EditDistance("", "ab", 3), 2u);
}

TEST(EditDistance, EndsAboveTheMost)
{
    EXPECT_EQ(EditDistance("Width", "ExposureTime", 3), 4u);
    EXPECT_EQ(EditDistance("abcd", "wxyz", 2), 3u);
    EXPECT_EQ(EditDistance(std::string(1 << 20, 'a'), std::string(1 << 20, 'b'), 2), 3u);
}

TEST(SimilarNames, NearestComesFirst)
{
    const Names names = {"WidthMax", "SensorWidth", "Width", "Height", "Gain"};
    EXPECT_EQ(SimilarNames(names, "Widht", 8), (Names{"Width"}));
    EXPECT_EQ(SimilarNames(names, "width", 8), (Names{"Width", "WidthMax", "SensorWidth"}));
    EXPECT_EQ(SimilarNames(names, "width", 1), (Names{"Width"}));
    EXPECT_EQ(SimilarNames(names, "MyGainRaw", 8), (Names{"Gain"}));
    EXPECT_EQ(SimilarNames(names, "Temperature", 8), Names());
}

TEST(SimilarNames, ShortWishesFitFewNames)
{
    EXPECT_EQ(SimilarNames({"AOI", "ROI", "Root", "ISO"}, "ROJ", 8), (Names{"ROI"}));
}

} // namespace
