#include "tests/tool/played_camera.h"
#include "tests/unit/tool/image_files.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>

namespace
{

using namespace koro::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;


uint8_t GreyOf(const std::string& path)
{
    return std::get<koro::tool::Samples8>(ReadPNG(path).samples).front();
}

std::string BytesOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(GrabFrames, LostLeaderIsAnIncompleteFrameAndTheGrabGoesOn)
{
    const PlayedCamera camera("WLWLLW*");
    const ToolResult result = camera.Grab(5);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\npictures    5\n"));
    EXPECT_THAT(result.out, HasSubstr("\nincomplete  3\n"));
    EXPECT_EQ(result.err, "");
    // The third one that came.
    EXPECT_EQ(GreyOf(camera.File("000002.png")), 3);
    EXPECT_EQ(GreyOf(camera.File("000003.png")), 6);
}

TEST(GrabFrames, QueryThatFailsForAWholeFrameCostsThatFrameAndIsNamedOnce)
{
    const PlayedCamera camera("WQQQW*");
    const ToolResult result = camera.Grab(3);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\npictures    3\n"));
    EXPECT_THAT(result.out, HasSubstr("\nincomplete  3\n"));
    EXPECT_THAT(
        result.err, HasSubstr("koro: Frame 2 cannot be read and counts as incomplete: [Function: "
                              "DSGetBufferInfo | Info-Command: 10 (BUFFER_INFO_WIDTH) | Error-Code: -1003"));
    EXPECT_THAT(result.err, Not(HasSubstr("Frame 3")));
}

TEST(GrabFrames, FrameWithoutBytesIsIncompleteWhereItsProducerCallsItSo)
{
    for (const std::string format : {"png", "raw", "none"})
    {
        const PlayedCamera camera("WOoEW*");
        const ToolResult result = camera.Grab(2, {"--format", format, "--keep-incomplete"});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_THAT(result.out, HasSubstr("\nincomplete  1\n")) << format;
        EXPECT_THAT(result.out, HasSubstr("\nempty       2\n")) << format;
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(camera.FileNames().size(), format == "none" ? 0u : 2u);
    }
}

TEST(GrabFrames, BrokenFramesAreNotSavedInAnyFormat)
{
    for (const std::string format : {"png", "tiff", "raw"})
    {
        const PlayedCamera camera("WBSLsW*");
        const ToolResult result = camera.Grab(2, {"--format", format});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_THAT(result.out, HasSubstr("\nincomplete  4\n")) << format;
        EXPECT_THAT(camera.FileNames(), ElementsAre("000001." + format, "000002." + format));
    }
}

// In every format the frames behave so: two whole ones, and one between that is not.
void ExpectSecondFrameIsIncomplete(const std::string& frames, const std::string& reason)
{
    for (const std::string format : {"png", "tiff", "raw", "none"})
    {
        SCOPED_TRACE(frames + " " + format);
        const PlayedCamera camera(frames);
        const ToolResult result = camera.Grab(2, {"--format", format});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_THAT(result.out, HasSubstr("\nframes      3\n"));
        EXPECT_THAT(result.out, HasSubstr("\nincomplete  1\n"));
        EXPECT_THAT(result.err, HasSubstr("koro: Frame 2 cannot be read and counts as incomplete: " + reason));
    }
}

TEST(GrabFrames, QuestionThatWasAnsweredBeforeCostsTheFrameThatItIsRefusedForInEveryFormat)
{
    const std::string refused = "[Function: DSGetBufferInfo | Info-Command: ";
    ExpectSecondFrameIsIncomplete("WFW*", refused + "20 (BUFFER_INFO_PIXELFORMAT)");
    ExpectSecondFrameIsIncomplete("WQW*", refused + "10 (BUFFER_INFO_WIDTH)");
    ExpectSecondFrameIsIncomplete("WZW*", refused + "9 (BUFFER_INFO_SIZE_FILLED)");
    ExpectSecondFrameIsIncomplete("WIW*", refused + "7 (BUFFER_INFO_IS_INCOMPLETE)");
}

TEST(GrabFrames, PartOutsideOfTheFilledBytesMakesTheFrameIncompleteInEveryFormat)
{
    ExpectSecondFrameIsIncomplete("PpP*", "The producer places a part of the frame outside of the buffer.");
}

TEST(GrabFrames, MissingLinesMakeTheFrameIncompleteInEveryFormat)
{
    ExpectSecondFrameIsIncomplete("WHW*", "Of 2 lines 1 were received.");
}

TEST(GrabFrames, StateOfABrokenFrameIsTheSameWhereItIsOnlyDescribed)
{
    const PlayedCamera camera("WFW*");
    const ToolResult result = camera.Grab(2, {"--format", "none", "--json"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\"state\":\"incomplete\""));
}

TEST(GrabFrames, PayloadThatIsNoPixelsEndsAGrabOfPictures)
{
    const std::pair<std::string, std::string> types[] = {
        {"2", "2 (raw data)"},        {"3", "3 (file)"},  {"5", "5 (JPEG)"},
        {"6", "6 (JPEG 2000)"},       {"7", "7 (H.264)"}, {"8", "8 (chunks only)"},
        {"9", "9 (device specific)"}, {"G", "11 (GenDC)"}};
    for (const auto& [letter, type] : types)
    {
        for (const std::string format : {"png", "tiff"})
        {
            const PlayedCamera camera(letter + "*");
            const ToolResult result = camera.Grab(2, {"--format", format});
            EXPECT_EQ(result.status, failure) << letter;
            EXPECT_EQ(
                result.err, "koro: Payload type " + type +
                                " cannot be turned into a picture.\nhint: Save the frames as they are with --format "
                                "raw.\n");
            EXPECT_THAT(camera.FileNames(), testing::IsEmpty());
        }
        const PlayedCamera camera(letter + "*");
        EXPECT_EQ(camera.Grab(2, {"--format", "raw"}).status, 0) << letter;
        EXPECT_THAT(camera.FileNames(), ElementsAre("000001.raw", "000002.raw"));
    }
}

TEST(GrabFrames, FrameOfAFormatThatEndsTheGrabIsCountedAndDescribed)
{
    const PlayedCamera camera("E7*");
    const ToolResult result = camera.Grab(2, {"--keep-incomplete"});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.out, HasSubstr("\nframes      2\n"));
    EXPECT_THAT(result.out, HasSubstr("\nincomplete  1\n"));
    EXPECT_THAT(camera.FileNames(), ElementsAre("000001-incomplete.raw"));
    const PlayedCamera same("7*");
    const ToolResult described = same.Grab(2, {"--json"});
    EXPECT_EQ(described.status, failure);
    EXPECT_THAT(described.out, HasSubstr("\"problem\":\"Payload type 7 (H.264) cannot be turned into a picture.\""));
    EXPECT_THAT(described.out, HasSubstr("\"incomplete\":1"));
}

TEST(GrabFrames, PayloadThatIsNoPixelsAmongPicturesIsNamedOnce)
{
    const PlayedCamera camera("W77W*");
    const ToolResult result = camera.Grab(2);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\nincomplete  2\n"));
    EXPECT_EQ(
        result.err, "koro: Frame 2 cannot be read and counts as incomplete: Payload type 7 (H.264) cannot be turned "
                    "into a picture.\nhint: Save the frames as they are with --format raw.\n");
}

TEST(GrabFrames, PayloadOfAnOpenTypeIsReadAsTheImageThatItsProducerDescribes)
{
    const PlayedCamera camera("4CW*");
    const ToolResult result = camera.Grab(3);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\nincomplete  0\n"));
    EXPECT_EQ(GreyOf(camera.File("000002.png")), 2);
}

TEST(GrabFrames, FrameThatHasNoImageAsItsProducerStatesIsNoPicture)
{
    const PlayedCamera camera("WNW*");
    const ToolResult result = camera.Grab(2);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\nincomplete  1\n"));
    EXPECT_THAT(result.err, HasSubstr("incomplete: The producer states that the frame has no image.\nhint: "));
    for (const std::string format : {"raw", "none"})
    {
        const PlayedCamera same("WNW*");
        EXPECT_THAT(same.Grab(2, {"--format", format}).out, HasSubstr("\nincomplete  0\n")) << format;
    }
}

TEST(GrabFrames, QuestionThatIsNeverAnsweredIsNotHeldAgainstTheFrames)
{
    for (const std::string format : {"raw", "none"})
    {
        const PlayedCamera camera("U*");
        const ToolResult result = camera.Grab(3, {"--format", format});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_THAT(result.out, HasSubstr("\nincomplete  0\n")) << format;
        EXPECT_EQ(result.err, "");
    }
}

// None of these frames is known to be whole.
TEST(GrabFrames, ProducerThatFailsToAnswerWhetherFramesAreIncompleteGivesNone)
{
    for (const std::string format : {"png", "raw", "none"})
    {
        const PlayedCamera camera("I*");
        const ToolResult result = camera.Grab(1, {"--format", format});
        EXPECT_EQ(result.status, framesMissing) << format;
        EXPECT_THAT(result.err, HasSubstr("koro: Frame 1 cannot be read and counts as incomplete: "));
    }
}

TEST(GrabFrames, FrameOfUnknownFormatIsComparedWithTheSizeThatWasMeantToCome)
{
    const PlayedCamera camera("VvV*");
    const ToolResult result = camera.Grab(2, {"--format", "raw"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\nframes      3\n"));
    EXPECT_THAT(result.out, HasSubstr("\nincomplete  1\n"));
}

TEST(GrabFrames, RawFilesHoldWholeFrames)
{
    const PlayedCamera camera("BWSW*");
    ASSERT_EQ(camera.Grab(2, {"--format", "raw"}).status, 0);
    EXPECT_EQ(BytesOf(camera.File("000001.raw")), std::string(8, '\2'));
    EXPECT_EQ(BytesOf(camera.File("000002.raw")), std::string(8, '\4'));
}

TEST(GrabFrames, IncompleteFramesThatAreKeptSayItInTheirNames)
{
    const PlayedCamera camera("WBSLEW*");
    const ToolResult result = camera.Grab(2, {"--keep-incomplete"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(
        camera.FileNames(),
        ElementsAre(
            "000001.png", "000002-incomplete.png", "000003-incomplete.png", "000004-incomplete.raw", "000005.png"));
    EXPECT_THAT(result.out, HasSubstr("\npictures    2\n"));
    EXPECT_EQ(GreyOf(camera.File("000002-incomplete.png")), 2);
    // What did not come is black, not a part of an older frame.
    EXPECT_THAT(
        std::get<koro::tool::Samples8>(ReadPNG(camera.File("000003-incomplete.png")).samples),
        ElementsAre(3, 3, 3, 0, 0, 0, 0, 0));
    EXPECT_EQ(GreyOf(camera.File("000005.png")), 6);
}

TEST(GrabFrames, LinesThatAreMissingInAKeptFrameAreBlack)
{
    for (const std::string format : {"png", "tiff"})
    {
        const PlayedCamera camera("WHhW*");
        const ToolResult result = camera.Grab(2, {"--keep-incomplete", "--format", format});
        EXPECT_EQ(result.status, 0) << result.err;
        const auto read = format == "png" ? ReadPNG : ReadTIFF;
        EXPECT_THAT(
            std::get<koro::tool::Samples8>(read(camera.File("000002-incomplete." + format)).samples),
            ElementsAre(2, 2, 2, 2, 0, 0, 0, 0));
        // The second part comes behind the missing line of the first and is whole.
        EXPECT_THAT(
            std::get<koro::tool::Samples8>(read(camera.File("000003-incomplete-image." + format)).samples),
            ElementsAre(3, 3, 0, 0));
        EXPECT_THAT(
            std::get<koro::tool::Samples8>(read(camera.File("000003-incomplete-image2." + format)).samples),
            ElementsAre(3, 3, 3, 3));
    }
    const PlayedCamera camera("WHW*");
    ASSERT_EQ(camera.Grab(2, {"--keep-incomplete", "--format", "raw"}).status, 0);
    EXPECT_EQ(BytesOf(camera.File("000002-incomplete.raw")), std::string(8, '\2'));
}

TEST(GrabFrames, IncompleteFramesThatAreKeptRawHaveTheBytesThatCame)
{
    const PlayedCamera camera("BSW*");
    ASSERT_EQ(camera.Grab(1, {"--keep-incomplete", "--format", "raw"}).status, 0);
    EXPECT_THAT(camera.FileNames(), ElementsAre("000001-incomplete.raw", "000002-incomplete.raw", "000003.raw"));
    EXPECT_EQ(BytesOf(camera.File("000002-incomplete.raw")), std::string(3, '\2'));
}

TEST(GrabFrames, CameraOfNothingButBrokenFramesIsGivenUp)
{
    for (const char* const frames : {"L*", "B*", "Q*", "E*"})
    {
        const PlayedCamera camera(frames);
        EXPECT_EQ(camera.Grab(1, {"--keep-incomplete"}).status, framesMissing) << frames;
    }
}

} // namespace
