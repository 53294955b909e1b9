#include "tests/support/file_size_limit.h"
#include "tests/support/temporary_folder.h"
#include "tests/unit/tool/image_files.h"
#include "tools/koro/image_writer.h"
#include "tools/koro/tool_error.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <numeric>

namespace
{

using namespace koro::tool;
using koro::test::ReadPNG;
using koro::test::ReadTIFF;
using koro::test::TemporaryFolder;
using testing::HasSubstr;

template <typename Samples>
Picture Ramp(size_t width, size_t height, unsigned channels)
{
    Samples samples(width * height * channels);
    uint32_t value = 1;
    for (auto& sample : samples)
        sample = static_cast<typename Samples::value_type>(value = value * 1103515245 + 12345);
    return {width, height, channels, std::move(samples)};
}

std::vector<Picture> AllKinds()
{
    return {Ramp<Samples8>(7, 5, 1),  Ramp<Samples16>(7, 5, 1), Ramp<Samples8>(3, 9, 3),
            Ramp<Samples16>(3, 9, 3), Ramp<Samples8>(4, 4, 4),  Ramp<Samples16>(1, 1, 4)};
}

void ExpectSame(const Picture& read, const Picture& written)
{
    EXPECT_EQ(read.width, written.width);
    EXPECT_EQ(read.height, written.height);
    EXPECT_EQ(read.channels, written.channels);
    EXPECT_EQ(read.samples, written.samples);
}

size_t NumFiles(const TemporaryFolder& folder)
{
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(folder.Path()), {}));
}

TEST(ImageWriter, PNGHoldsEverySample)
{
    const TemporaryFolder folder;
    for (const Picture& picture : AllKinds())
    {
        WritePNG(picture, folder.File("a.png"));
        ExpectSame(ReadPNG(folder.File("a.png")), picture);
    }
    EXPECT_EQ(NumFiles(folder), 1u);
}

TEST(ImageWriter, TIFFHoldsEverySample)
{
    const TemporaryFolder folder;
    for (const Picture& picture : AllKinds())
    {
        WriteTIFF(picture, folder.File("a.tiff"));
        ExpectSame(ReadTIFF(folder.File("a.tiff")), picture);
    }
    EXPECT_EQ(NumFiles(folder), 1u);
}

TEST(ImageWriter, RawHoldsTheBytesAndNothingElse)
{
    const TemporaryFolder folder;
    const std::vector<uint8_t> bytes = {0, 1, 2, 255};
    WriteRaw(bytes.data(), bytes.size(), folder.File("a.raw"));
    std::ifstream file(folder.File("a.raw"), std::ios::binary);
    const std::vector<uint8_t> read{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(read, bytes);
}

TEST(ImageWriter, MissingFolderIsNamedWithTheReason)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("missing/a.png");
    try
    {
        WritePNG(Ramp<Samples8>(2, 2, 1), path);
        FAIL() << "no error";
    }
    catch (const ToolError& error)
    {
        EXPECT_EQ(error.what(), "Cannot create " + path + ": No such file or directory.");
    }
}

TEST(ImageWriter, FailedPictureLeavesNoFile)
{
    const TemporaryFolder folder;
    // Wider than libpng accepts; the samples are not reached.
    const Picture broken{size_t{1} << 31, 1, 1, Samples8()};
    EXPECT_THROW(WritePNG(broken, folder.File("a.png")), ToolError);
    EXPECT_EQ(NumFiles(folder), 0u);
}

TEST(ImageWriter, FailedPictureKeepsTheOlderFile)
{
    const TemporaryFolder folder;
    const Picture good = Ramp<Samples8>(2, 2, 1);
    WritePNG(good, folder.File("a.png"));
    const Picture broken{size_t{1} << 31, 1, 1, Samples8()};
    EXPECT_THROW(WritePNG(broken, folder.File("a.png")), ToolError);
    ExpectSame(ReadPNG(folder.File("a.png")), good);
}

TEST(ImageWriter, FullDiskIsReportedByEveryFormat)
{
    const TemporaryFolder folder;
    const koro::test::FileSizeLimit disk(9);
    const Picture picture = Ramp<Samples16>(300, 300, 3);
    EXPECT_THROW(WritePNG(picture, folder.File("full")), ToolError);
    EXPECT_THROW(WriteTIFF(picture, folder.File("full")), ToolError);
    const std::vector<uint8_t> bytes(10, 1);
    EXPECT_THROW(WriteRaw(bytes.data(), bytes.size(), folder.File("full")), ToolError);
    EXPECT_EQ(NumFiles(folder), 0u);
}

TEST(ImageWriter, PointsAreABinaryPLY)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("points.ply");
    WritePLY({{1.0F, -2.0F, 0.5F}, {7, 8, 255}}, path);
    std::ifstream file(path, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    using namespace std::string_literals;
    EXPECT_EQ(
        content, "ply\nformat binary_little_endian 1.0\nelement vertex 1\nproperty float x\nproperty float y\n"
                 "property float z\nproperty uchar red\nproperty uchar green\nproperty uchar blue\nend_header\n"
                 "\x00\x00\x80\x3f\x00\x00\x00\xc0\x00\x00\x00\x3f\x07\x08\xff"s);
    WritePLY({{1.0F, -2.0F, 0.5F}, {}}, path);
    std::ifstream plain(path, std::ios::binary);
    const std::string withoutColours{std::istreambuf_iterator<char>(plain), {}};
    EXPECT_EQ(
        withoutColours, "ply\nformat binary_little_endian 1.0\nelement vertex 1\nproperty float x\n"
                        "property float y\nproperty float z\nend_header\n"
                        "\x00\x00\x80\x3f\x00\x00\x00\xc0\x00\x00\x00\x3f"s);
}

} // namespace
