#include "tests/support/file_size_limit.h"
#include "tests/support/temporary_folder.h"
#include "tests/unit/tool/image_files.h"
#include "tools/koro/picture_saver.h"
#include "tools/koro/tool_error.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>

namespace
{

using namespace koro::tool;
using koro::test::ReadPNG;
using koro::test::TemporaryFolder;

FrameFiles Grey(uint8_t value, const char* suffix = ".png")
{
    return {{"", suffix, Picture{2, 1, 1, Samples8{value, value}}}};
}

// A progress that nobody sees.
struct Silence
{
    std::FILE* stream = std::fopen("/dev/null", "w");
    Progress progress{stream, ProgressForm::Lines, 1};

    ~Silence() { std::fclose(stream); }
};

TEST(PictureSaver, PicturesAreNumberedInTheirOrder)
{
    const TemporaryFolder folder;
    Silence silence;
    PictureSaver saver(folder.Path(), "cam", silence.progress);
    for (uint8_t i = 1; i <= 20; ++i)
        saver.Save(Grey(i));
    saver.Finish();
    EXPECT_EQ(saver.NumSaved(), 20u);
    EXPECT_EQ(std::get<Samples8>(ReadPNG(folder.File("cam-000001.png")).samples)[0], 1);
    EXPECT_EQ(std::get<Samples8>(ReadPNG(folder.File("cam-000020.png")).samples)[0], 20);
}

TEST(PictureSaver, WhatStandsInLineIsWrittenAtTheEnd)
{
    const TemporaryFolder folder;
    Silence silence;
    {
        PictureSaver saver(folder.Path(), "cam", silence.progress);
        for (uint8_t i = 0; i < 5; ++i)
            saver.Save(Grey(i, ".tiff"));
    }
    EXPECT_TRUE(std::filesystem::exists(folder.File("cam-000005.tiff")));
}

TEST(PictureSaver, RawFramesAreWrittenAsTheyAre)
{
    const TemporaryFolder folder;
    Silence silence;
    PictureSaver saver(folder.Path(), "cam", silence.progress);
    saver.Save({{"", ".raw", RawBytes{1, 2, 3}}});
    saver.Finish();
    EXPECT_EQ(std::filesystem::file_size(folder.File("cam-000001.raw")), 3u);
}

TEST(PictureSaver, FilesOfOneFrameHaveItsNumberAndTheirLabels)
{
    const TemporaryFolder folder;
    Silence silence;
    PictureSaver saver(folder.Path(), "cam", silence.progress);
    saver.Save(Grey(1));
    saver.Save(
        {{"range", ".png", Picture{1, 1, 1, Samples16{300}}},
         {"points", ".ply", PointCloud{{1.0F, 2.0F, 3.0F}, {}}},
         {"data", ".raw", RawBytes{7}}});
    saver.Finish();
    EXPECT_EQ(saver.NumSaved(), 2u);
    EXPECT_EQ(saver.NumFiles(), 4u);
    EXPECT_EQ(std::get<Samples16>(ReadPNG(folder.File("cam-000002-range.png")).samples)[0], 300);
    EXPECT_TRUE(std::filesystem::exists(folder.File("cam-000002-points.ply")));
    EXPECT_EQ(std::filesystem::file_size(folder.File("cam-000002-data.raw")), 1u);
}

TEST(PictureSaver, FailureReachesTheCaller)
{
    const TemporaryFolder folder;
    Silence silence;
    PictureSaver saver(folder.File("missing"), "cam", silence.progress);
    // More than may stand in line: without the failure's notice this would wait for ever.
    EXPECT_THROW(
        {
            for (int i = 0; i < 100; ++i)
                saver.Save(Grey(1));
        },
        ToolError);
    EXPECT_THROW(saver.Finish(), ToolError);
    EXPECT_EQ(saver.NumSaved(), 0u);
}

// A frame of which the second file cannot be written.
void ExpectNothingOfAFrameOf(size_t numBytes, const TemporaryFolder& folder)
{
    Silence silence;
    PictureSaver saver(folder.Path(), "cam", silence.progress);
    saver.Save({{"image", ".raw", RawBytes{1, 2, 3}}, {"range", ".raw", RawBytes(numBytes, 4)}});
    EXPECT_THROW(saver.Finish(), ToolError);
    EXPECT_EQ(saver.NumSaved(), 0u);
    EXPECT_EQ(saver.NumFiles(), 0u);
}

TEST(PictureSaver, FrameThatDoesNotFitOnTheDiskLeavesNoneOfItsFiles)
{
    const TemporaryFolder folder;
    const koro::test::FileSizeLimit disk(9);
    ExpectNothingOfAFrameOf(10, folder);
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(PictureSaver, FrameOfWhichOneNameIsTakenByAFolderLeavesTheOlderFiles)
{
    const TemporaryFolder folder;
    const std::string older = folder.MakeFile("cam-000001-image.raw", "older");
    std::filesystem::create_directory(folder.File("cam-000001-range.raw"));
    ExpectNothingOfAFrameOf(1, folder);
    EXPECT_EQ(std::filesystem::file_size(older), 5u);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 2);
}

TEST(PictureSaver, FrameWithoutFilesUsesUpNoNumber)
{
    const TemporaryFolder folder;
    Silence silence;
    PictureSaver saver(folder.Path(), "cam", silence.progress);
    saver.Save({});
    FrameNote broken;
    broken.isWhole = false;
    saver.Save(Grey(1), broken);
    saver.Save(Grey(2));
    saver.Finish();
    EXPECT_EQ(saver.NumSaved(), 2u);
    EXPECT_EQ(saver.NumFiles(), 2u);
    EXPECT_TRUE(std::filesystem::exists(folder.File("cam-000001-incomplete.png")));
    EXPECT_TRUE(std::filesystem::exists(folder.File("cam-000002.png")));
}

} // namespace
