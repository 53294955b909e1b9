#include "tools/koro/frame_files.h"
#include "tools/koro/tool_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace koro::tool;
using testing::ElementsAre;

constexpr uint64_t mono8 = 0x01080001;
constexpr uint64_t rangeC8 = 0x010800B1;
constexpr uint64_t rangeABC8 = 0x021800B2;
constexpr uint64_t confidence8 = 0x010800C6;
constexpr uint64_t unknownFormat = 0x0108FFFF;

const std::vector<uint8_t> bytes = {1, 2, 3, 4, 5, 6};

FramePart Part(PartKind kind, uint64_t format, size_t width = 2)
{
    FramePart part;
    part.kind = kind;
    part.layout.pixelFormat = format;
    part.layout.width = width;
    part.layout.height = 1;
    part.bytes = bytes.data();
    part.size = bytes.size();
    return part;
}

std::vector<std::string> NamesOf(const FrameFiles& files)
{
    std::vector<std::string> names;
    for (const FrameFile& file : files)
        names.push_back(file.label + file.suffix);
    return names;
}

const Scan3D rectified = {"RectifiedC", {}, {}, 0, 0, 0};

TEST(FrameFiles, RawFrameIsItsBytes)
{
    const FrameFiles files = ToRawFile(bytes.data(), 3);
    ASSERT_THAT(NamesOf(files), ElementsAre(".raw"));
    EXPECT_THAT(std::get<RawBytes>(files[0].content), ElementsAre(1, 2, 3));
}

TEST(FrameFiles, FrameOfOneImageIsOnePicture)
{
    EXPECT_THAT(NamesOf(ToPictureFiles(Part(PartKind::Image, mono8), FileFormat::PNG, rectified)), ElementsAre(".png"));
    EXPECT_THAT(NamesOf(ToPictureFiles(Part(PartKind::Image, mono8), FileFormat::TIFF, {})), ElementsAre(".tiff"));
}

TEST(FrameFiles, FrameOfOneRangeHasItsPointsBeside)
{
    const FrameFiles files = ToPictureFiles(Part(PartKind::Image, rangeC8), FileFormat::PNG, rectified);
    ASSERT_THAT(NamesOf(files), ElementsAre(".png", "points.ply"));
    EXPECT_EQ(std::get<PointCloud>(files[1].content).NumPoints(), 2u);
    EXPECT_THAT(NamesOf(ToPictureFiles(Part(PartKind::Image, rangeC8), FileFormat::PNG, {})), ElementsAre(".png"));
}

TEST(FrameFiles, PlacesOfThreeCoordinatesHaveNoPicture)
{
    EXPECT_THAT(
        NamesOf(ToPictureFiles(Part(PartKind::Image, rangeABC8), FileFormat::PNG, rectified)),
        ElementsAre("points.ply"));
}

TEST(FrameFiles, ImageThatCannotBeShownIsRefused)
{
    EXPECT_THROW(ToPictureFiles(Part(PartKind::Image, unknownFormat), FileFormat::PNG, {}), ToolError);
    EXPECT_THAT(ToPictureFiles(Part(PartKind::Image, mono8, 7), FileFormat::PNG, {}), testing::IsEmpty());
}

TEST(FrameFiles, PartsAreNamedByWhatTheyAre)
{
    const FrameFiles files = ToPartFiles(
        {Part(PartKind::Image, mono8), Part(PartKind::Range, rangeC8), Part(PartKind::Confidence, confidence8),
         Part(PartKind::Image, mono8), Part(PartKind::JPEG, 0), Part(PartKind::JPEG2000, 0), Part(PartKind::Data, 0)},
        FileFormat::PNG, rectified);
    EXPECT_THAT(
        NamesOf(files), ElementsAre(
                            "points.ply", "image.png", "range.png", "confidence.png", "image2.png", "image3.jpg",
                            "image4.jp2", "data.raw"));
    const PointCloud& points = std::get<PointCloud>(files[0].content);
    EXPECT_EQ(points.NumPoints(), 2u);
    EXPECT_THAT(points.colours, ElementsAre(1, 1, 1, 2, 2, 2));
    EXPECT_THAT(std::get<RawBytes>(files[7].content), testing::ElementsAreArray(bytes));
}

TEST(FrameFiles, PartOfAnUnknownFormatIsKeptAsItCame)
{
    EXPECT_THAT(
        NamesOf(ToPartFiles(
            {Part(PartKind::Image, unknownFormat), Part(PartKind::Range, unknownFormat)}, FileFormat::TIFF, rectified)),
        ElementsAre("image.raw", "range.raw"));
}

TEST(FrameFiles, ShortPartMakesTheFrameUseless)
{
    EXPECT_THAT(
        ToPartFiles({Part(PartKind::Image, mono8), Part(PartKind::Confidence, confidence8, 7)}, FileFormat::PNG, {}),
        testing::IsEmpty());
}

TEST(FrameFiles, ColoursComeFromThePictureThatFits)
{
    const FrameFiles files = ToPartFiles(
        {Part(PartKind::Image, mono8, 3), Part(PartKind::Image, mono8), Part(PartKind::Range, rangeC8)},
        FileFormat::PNG, rectified);
    EXPECT_THAT(std::get<PointCloud>(files[0].content).colours, ElementsAre(1, 1, 1, 2, 2, 2));
    const FrameFiles none =
        ToPartFiles({Part(PartKind::Image, mono8, 3), Part(PartKind::Range, rangeC8)}, FileFormat::PNG, rectified);
    EXPECT_THAT(std::get<PointCloud>(none[0].content).colours, testing::IsEmpty());
}

TEST(FrameFiles, PurposeAndRegionNameTheFilesOfAPart)
{
    const auto tagged = [](PartKind kind, uint64_t format, uint64_t purpose, uint64_t region) {
        FramePart part = Part(kind, format);
        part.purpose = purpose;
        part.region = region;
        return part;
    };
    FramePart untagged = Part(PartKind::Image, mono8);
    FramePart purposeAlone = untagged;
    purposeAlone.purpose = 3;
    EXPECT_THAT(
        NamesOf(ToPartFiles(
            {tagged(PartKind::Image, mono8, 1, 0), tagged(PartKind::Image, mono8, 1, 2),
             tagged(PartKind::Range, rangeC8, 4, 2), untagged, purposeAlone, purposeAlone},
            FileFormat::PNG, rectified)),
        ElementsAre(
            "points-region2.ply", "image.png", "image-region2.png",
            "range-region2.png", "image2.png", "image-purpose3.png", "image-purpose3-2.png"));
}

TEST(FrameFiles, NumbersOfMeasurementsAreNotStretched)
{
    constexpr uint64_t mono12 = 0x01100005;
    const std::vector<uint8_t> sent = {0x23, 0x01, 0xFF, 0x0F};
    FramePart image = Part(PartKind::Image, mono12);
    image.bytes = sent.data();
    image.size = sent.size();
    FramePart disparity = image;
    disparity.isMeasurement = true;
    FramePart range = image;
    range.kind = PartKind::Range;
    const FrameFiles files = ToPartFiles({image, disparity, range}, FileFormat::PNG, {});
    const auto samplesOf = [](const FrameFile& file) {
        return std::get<Samples16>(std::get<Picture>(file.content).samples);
    };
    EXPECT_THAT(samplesOf(files[0]), ElementsAre(0x1231, 0xFFFF));
    EXPECT_THAT(samplesOf(files[1]), ElementsAre(0x123, 0xFFF));
    EXPECT_THAT(samplesOf(files[2]), ElementsAre(0x123, 0xFFF));
}

} // namespace
