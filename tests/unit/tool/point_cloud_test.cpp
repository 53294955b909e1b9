#include "tools/koro/point_cloud.h"

#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace
{

using namespace koro::tool;
using testing::ElementsAre;
using testing::FloatEq;
using testing::Pointwise;

constexpr uint64_t c8 = 0x010800B1;
constexpr uint64_t c16 = 0x011000B8;
constexpr uint64_t abc16 = 0x023000B9;
constexpr uint64_t abc32f = 0x026000C0;

FramePart Range(uint64_t format, size_t width, size_t height, const std::vector<uint8_t>& bytes)
{
    FramePart part;
    part.kind = PartKind::Range;
    part.layout.pixelFormat = format;
    part.layout.width = width;
    part.layout.height = height;
    part.bytes = bytes.data();
    part.size = bytes.size();
    return part;
}

Scan3D Rectified()
{
    Scan3D geometry;
    geometry.outputMode = "RectifiedC";
    geometry.axes = {{{0.5, -1}, {2, 10}, {0.1, 100}}};
    return geometry;
}

TEST(PointCloud, DistancesOfARectifiedPictureStandOnItsGrid)
{
    const std::vector<uint8_t> bytes = {10, 0, 20, 0, 0, 1, 30, 0};
    const auto points = ToPointCloud(Range(c16, 2, 2, bytes), Rectified(), nullptr, nullptr);
    ASSERT_TRUE(points);
    EXPECT_THAT(
        points->coordinates,
        Pointwise(FloatEq(), {-1.0F, 10.0F, 101.0F, -0.5F, 10.0F, 102.0F, -1.0F, 12.0F, 125.6F, -0.5F, 12.0F, 103.0F}));
    EXPECT_THAT(points->colours, testing::IsEmpty());
    EXPECT_EQ(points->NumPoints(), 4u);
}

TEST(PointCloud, DistancesOfAProjectionLieOnRays)
{
    Scan3D geometry;
    geometry.outputMode = "ProjectedC";
    geometry.focalLength = 2;
    geometry.principalPointU = 1;
    geometry.principalPointV = 0;
    const std::vector<uint8_t> bytes = {4, 6};
    const auto points = ToPointCloud(Range(c8, 2, 1, bytes), geometry, nullptr, nullptr);
    ASSERT_TRUE(points);
    EXPECT_THAT(points->coordinates, ElementsAre(-2.0F, 0.0F, 4.0F, 0.0F, 0.0F, 6.0F));
    geometry.focalLength = 0;
    EXPECT_FALSE(ToPointCloud(Range(c8, 2, 1, bytes), geometry, nullptr, nullptr));
}

TEST(PointCloud, ThreeCoordinatesNeedNoMode)
{
    const std::vector<uint8_t> bytes = {1, 0, 2, 0, 3, 0};
    Scan3D geometry;
    geometry.axes[1] = {10, 1};
    const auto points = ToPointCloud(Range(abc16, 1, 1, bytes), geometry, nullptr, nullptr);
    ASSERT_TRUE(points);
    EXPECT_THAT(points->coordinates, ElementsAre(1.0F, 21.0F, 3.0F));
}

TEST(PointCloud, BigEndianNumbersAreRead)
{
    const std::vector<uint8_t> bytes = {0, 1, 0, 2, 1, 0};
    FramePart part = Range(abc16, 1, 1, bytes);
    part.layout.bigEndian = true;
    EXPECT_THAT(ToPointCloud(part, {}, nullptr, nullptr)->coordinates, ElementsAre(1.0F, 2.0F, 256.0F));
}

TEST(PointCloud, RealNumbersThatAreNoneAreNoPlaces)
{
    const float numbers[] = {1, 2, 3, 4, 5, std::numeric_limits<float>::quiet_NaN()};
    std::vector<uint8_t> bytes(sizeof numbers);
    std::memcpy(bytes.data(), numbers, sizeof numbers);
    const auto points = ToPointCloud(Range(abc32f, 2, 1, bytes), {}, nullptr, nullptr);
    ASSERT_TRUE(points);
    EXPECT_THAT(points->coordinates, ElementsAre(1.0F, 2.0F, 3.0F));
}

TEST(PointCloud, InvalidAndUntrustedPlacesAreLeftOut)
{
    const std::vector<uint8_t> bytes = {1, 2, 3, 4};
    Scan3D geometry;
    geometry.outputMode = "RectifiedC";
    geometry.invalidValue = 2;
    const Picture confidence{4, 1, 1, Samples8{1, 1, 0, 255}};
    const Picture grey{4, 1, 1, Samples16{0x0100, 0x0200, 0x0300, 0xFF00}};
    const auto points = ToPointCloud(Range(c8, 4, 1, bytes), geometry, &grey, &confidence);
    ASSERT_TRUE(points);
    EXPECT_THAT(points->coordinates, ElementsAre(0.0F, 0.0F, 1.0F, 3.0F, 0.0F, 4.0F));
    EXPECT_THAT(points->colours, ElementsAre(1, 1, 1, 255, 255, 255));
}

TEST(PointCloud, ColoursAreThoseOfThePicture)
{
    const std::vector<uint8_t> bytes = {1, 2};
    const Picture colours{2, 1, 3, Samples8{1, 2, 3, 4, 5, 6}};
    EXPECT_THAT(
        ToPointCloud(Range(c8, 2, 1, bytes), Rectified(), &colours, nullptr)->colours, ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(PointCloud, PicturesOfAnotherSizeAreNotUsed)
{
    const std::vector<uint8_t> bytes = {1, 2};
    const Picture other{1, 2, 1, Samples8{0, 0}};
    const auto points = ToPointCloud(Range(c8, 2, 1, bytes), Rectified(), &other, &other);
    ASSERT_TRUE(points);
    EXPECT_EQ(points->NumPoints(), 2u);
    EXPECT_THAT(points->colours, testing::IsEmpty());
}

TEST(PointCloud, PaddingIsPassedOver)
{
    const std::vector<uint8_t> bytes = {99, 1, 77, 2};
    FramePart part = Range(c8, 1, 2, bytes);
    part.layout.imageOffset = 1;
    part.layout.xPadding = 1;
    EXPECT_THAT(
        ToPointCloud(part, {"RectifiedC", {}, {}, 0, 0, 0}, nullptr, nullptr)->coordinates,
        ElementsAre(0.0F, 0.0F, 1.0F, 0.0F, 1.0F, 2.0F));
}

TEST(PointCloud, WhatSaysNothingOfPlacesHasNone)
{
    const std::vector<uint8_t> bytes(64);
    Scan3D geometry = Rectified();
    EXPECT_FALSE(ToPointCloud(Range(0x01080001, 2, 2, bytes), geometry, nullptr, nullptr)) << "Mono8";
    EXPECT_FALSE(ToPointCloud(Range(c16, 0, 2, bytes), geometry, nullptr, nullptr)) << "no pixels";
    EXPECT_FALSE(ToPointCloud(Range(c16, 8, 5, bytes), geometry, nullptr, nullptr)) << "too short";
    EXPECT_FALSE(ToPointCloud(Range(c16, ~size_t{0}, ~size_t{0}, bytes), geometry, nullptr, nullptr))
        << "beyond reason";
    FramePart padded = Range(c16, 2, 2, bytes);
    padded.layout.xPadding = ~size_t{0} - 1;
    EXPECT_FALSE(ToPointCloud(padded, geometry, nullptr, nullptr)) << "padding beyond reason";
    geometry.outputMode = "CalibratedC";
    EXPECT_FALSE(ToPointCloud(Range(c16, 2, 2, bytes), geometry, nullptr, nullptr)) << "mode";
}

TEST(PointCloud, PlacesBeyondTheRangeLimitAreLeftOutAndCounted)
{
    Scan3D geometry;
    geometry.outputMode = "RectifiedC";
    geometry.rangeLimit = 5;
    const std::vector<uint8_t> bytes = {4, 5, 200, 3};
    const auto points = ToPointCloud(Range(c8, 4, 1, bytes), geometry, nullptr, nullptr);
    ASSERT_TRUE(points);
    // The second one is 5.1 away from the origin, since it lies a pixel to the right.
    EXPECT_THAT(points->coordinates, Pointwise(FloatEq(), {0.0F, 0.0F, 4.0F, 3.0F, 0.0F, 3.0F}));
    EXPECT_EQ(points->numLeftOut, 2u);
}

} // namespace
