#include "tests/tool/described_camera.h"
#include "tests/tool/expected_pictures.h"
#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"
#include "tests/unit/tool/image_files.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <nlohmann/json.hpp>

namespace
{

using namespace koro::test;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;


// GenTL info commands that a test makes a producer forget or falsify.
enum StreamInfo
{
    payloadSizeInfo = 7,
    definesPayloadSizeInfo = 9,
    bufferAlignmentInfo = 13,
};
enum BufferInfo
{
    newDataInfo = 3,
    incompleteInfo = 7,
    sizeFilledInfo = 9,
    widthInfo = 10,
    heightInfo = 11,
    xPaddingInfo = 14,
    imageOffsetInfo = 18,
    pixelFormatInfo = 20,
    pixelFormatNamespaceInfo = 21,
};

// One grab from the camera "cam" into the folder "out" of the test.
class Grab
{
public:
    explicit Grab(const json& simulatorSettings) : environment(SimulatorWith(folder, simulatorSettings)) {}

    ToolResult Run(int frames, const Arguments& more = {})
    {
        Arguments arguments = {"grab", "cam", "--frames", std::to_string(frames), "--output", Output()};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return RunTool(arguments, environment);
    }
    std::string Output() const { return folder.File("out"); }
    std::string File(const std::string& name) const { return folder.File("out/" + name); }
    std::vector<std::string> FileNames() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(Output()))
        {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    TemporaryFolder folder;
    Environment environment;
};

class GrabFormat : public testing::TestWithParam<PictureCase>
{};

TEST_P(GrabFormat, PicturesEqualThePattern)
{
    Grab grab(OneCamera(GetParam().pixelFormat, 64, 48));
    const ToolResult result = grab.Run(2);
    ASSERT_EQ(result.status, 0) << result.err;
    for (const uint64_t n : {uint64_t{1}, uint64_t{2}})
    {
        const koro::tool::Picture picture = ReadPNG(grab.File("cam-00000" + std::to_string(n) + ".png"));
        EXPECT_EQ(picture.width, 64u);
        EXPECT_EQ(picture.height, 48u);
        EXPECT_EQ(DifferenceToPattern(picture, GetParam(), n), "");
    }
}

INSTANTIATE_TEST_SUITE_P(
    AllPackings, GrabFormat,
    testing::Values(
        PictureCase{"Mono8", "M", 8}, PictureCase{"Mono10", "M", 10}, PictureCase{"Mono10Packed", "M", 10},
        PictureCase{"Mono10p", "M", 10}, PictureCase{"Mono12", "M", 12}, PictureCase{"Mono12Packed", "M", 12},
        PictureCase{"Mono12p", "M", 12}, PictureCase{"Mono16", "M", 16}, PictureCase{"RGB8", "", 8},
        PictureCase{"BGR8", "", 8}, PictureCase{"BayerRG8", "RGGB", 8}, PictureCase{"BayerGR8", "GRBG", 8},
        PictureCase{"BayerGB8", "GBRG", 8}, PictureCase{"BayerBG8", "BGGR", 8}, PictureCase{"BayerGR10", "GRBG", 10},
        PictureCase{"BayerRG10p", "RGGB", 10}, PictureCase{"BayerGB10Packed", "GBRG", 10},
        PictureCase{"BayerBG12", "BGGR", 12}, PictureCase{"BayerGR12p", "GRBG", 12},
        PictureCase{"BayerRG12Packed", "RGGB", 12}, PictureCase{"BayerGB16", "GBRG", 16}),
    [](const auto& parameter) { return parameter.param.pixelFormat; });

TEST(Grab, TIFFHoldsTheSamePictures)
{
    Grab grab(OneCamera("BayerRG12p", 64, 48));
    ASSERT_EQ(grab.Run(2, {"--format", "tiff"}).status, 0);
    EXPECT_THAT(grab.FileNames(), ElementsAre("cam-000001.tiff", "cam-000002.tiff"));
    EXPECT_EQ(DifferenceToPattern(ReadTIFF(grab.File("cam-000002.tiff")), {"BayerRG12p", "RGGB", 12}, 2), "");
}

TEST(Grab, RawHoldsTheBytesOfTheFrame)
{
    Grab grab(OneCamera("Mono8", 64, 48));
    ASSERT_EQ(grab.Run(1, {"--format", "raw"}).status, 0);
    ASSERT_THAT(grab.FileNames(), ElementsAre("cam-000001.raw"));
    std::ifstream file(grab.File("cam-000001.raw"), std::ios::binary);
    const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(DifferenceToPattern({64, 48, 1, bytes}, {"Mono8", "M", 8}, 1), "");
}

TEST(Grab, EachFileHasALineAndATableCloses)
{
    Grab grab(OneCamera("Mono8", 64, 48));
    const ToolResult result = grab.Run(20);
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(grab.FileNames(), testing::SizeIs(20));
    EXPECT_THAT(result.out, HasSubstr("\n20/20 " + grab.File("cam-000020.png") + "\n"));
    EXPECT_THAT(result.out, HasSubstr("\npictures    20\nframes      20\nrate        "));
    EXPECT_THAT(result.out, HasSubstr(" frames/s\nthroughput  "));
    EXPECT_THAT(result.out, HasSubstr(" MB/s\nunderruns   0\nincomplete  0\ntimeouts    0\n"));
    EXPECT_EQ(result.err, "");
}

TEST(Grab, OlderFilesAreReplaced)
{
    Grab grab(OneCamera("Mono8", 64, 48));
    ASSERT_EQ(grab.Run(3).status, 0);
    ASSERT_EQ(grab.Run(1).status, 0);
    EXPECT_THAT(grab.FileNames(), testing::SizeIs(3));
}

TEST(Grab, IncompleteFramesAreCountedAndNotWritten)
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["misbehaviour"]["frames"].push_back({{"camera", "cam"}, {"at", 2}, {"count", 3}, {"deliveredLines", 5}});
    Grab grab(settings);
    const ToolResult result = grab.Run(4);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\npictures    4\nframes      7\n"));
    EXPECT_THAT(result.out, HasSubstr("\nincomplete  3\n"));
    // Frames 1, 5, 6 and 7.
    EXPECT_EQ(DifferenceToPattern(ReadPNG(grab.File("cam-000001.png")), {"Mono8", "M", 8}, 1), "");
    EXPECT_EQ(DifferenceToPattern(ReadPNG(grab.File("cam-000002.png")), {"Mono8", "M", 8}, 5), "");
}

TEST(Grab, CameraThatDeliversNothingWholeIsGivenUp)
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["misbehaviour"]["frames"].push_back(
        {{"camera", "cam"}, {"at", 3}, {"count", "every"}, {"deliveredLines", 0}});
    Grab grab(settings);
    const ToolResult result = grab.Run(4);
    EXPECT_EQ(result.status, framesMissing);
    EXPECT_THAT(result.err, HasSubstr("koro: The camera gave 2 of 4 pictures.\nhint: "));
    EXPECT_THAT(result.out, HasSubstr("\npictures    2\nframes      66\n"));
    EXPECT_THAT(grab.FileNames(), testing::SizeIs(2));
}

TEST(Grab, SilentCameraIsGivenUpAfterThreeTimeouts)
{
    const TemporaryFolder folder;
    const ToolResult result = RunTool(
        {"grab", "if0-dev0", "--producer", ProducerFolder() + "/scripted_1_5.cti", "--frames", "2", "--output",
         folder.File("out"), "--timeout", "20"});
    EXPECT_EQ(result.status, framesMissing);
    EXPECT_THAT(result.out, HasSubstr("\ntimeouts    3\n"));
    EXPECT_THAT(result.err, HasSubstr("koro: The camera gave 0 of 2 pictures.\n"));
}

TEST(Grab, CameraThatVanishesEndsTheGrabWithWholeFiles)
{
    json settings = OneCamera("Mono8", 64, 48);
    // Not before it was started.
    settings["interfaces"][0]["cameras"][0]["startWithStream"] = false;
    settings["misbehaviour"]["devices"].push_back({{"camera", "cam"}, {"vanishAtFrame", 4}});
    Grab grab(settings);
    const ToolResult result = grab.Run(10, {"--timeout", "1000"});
    EXPECT_NE(result.status, 0);
    EXPECT_THAT(result.err, HasSubstr("koro: "));
    ASSERT_THAT(grab.FileNames(), ElementsAre("cam-000001.png", "cam-000002.png", "cam-000003.png"));
    EXPECT_EQ(DifferenceToPattern(ReadPNG(grab.File("cam-000003.png")), {"Mono8", "M", 8}, 3), "");
}

TEST(Grab, LibrarysTextAndOneHintComeWithAFailure)
{
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "DSStartAcquisition", "GC_ERR_IO")["text"] = "no light";
    const ToolResult result = Grab(settings).Run(1);
    EXPECT_EQ(result.status, failure);
    EXPECT_EQ(
        result.err, "koro: [Function: DSStartAcquisition | Error-Code: -1010 (GC_ERR_IO) | Error-Text: "
                    "DSStartAcquisition: no light]\n"
                    "hint: `koro doctor` checks the producers; the text in brackets is the producer's own.\n");
}

TEST(Grab, CameraInUseGivesTheHintForIt)
{
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "IFOpenDevice", "GC_ERR_RESOURCE_IN_USE");
    const ToolResult result = Grab(settings).Run(1);
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("koro: [Function: IFOpenDevice | Error-Code: -1004"));
    EXPECT_THAT(result.err, HasSubstr("hint: Another program may have opened the camera"));
}

TEST(Grab, FailureInMidStreamKeepsTheFilesSoFar)
{
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "DSQueueBuffer", "GC_ERR_IO")["at"] = 12;
    Grab grab(settings);
    const ToolResult result = grab.Run(20);
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("koro: [Function: DSQueueBuffer"));
    // Eight buffers are queued before the start, so the twelfth call follows the fourth picture.
    ASSERT_THAT(grab.FileNames(), testing::SizeIs(4));
    EXPECT_EQ(DifferenceToPattern(ReadPNG(grab.File("cam-000004.png")), {"Mono8", "M", 8}, 4), "");
}

TEST(Grab, SizeThatTheStreamDoesNotTellIsTheCamerasOwn)
{
    json settings = OneCamera("Mono8", 64, 48);
    ForgetInfo(settings, "DSGetInfo", payloadSizeInfo);
    ForgetInfo(settings, "DSGetInfo", definesPayloadSizeInfo);
    const ToolResult result = Grab(settings).Run(1);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("8 buffers of 3072 bytes\n"));
}

TEST(Grab, SizeThatNobodyTellsNeedsTheOption)
{
    json settings = OneCamera("Mono8", 64, 48);
    const TemporaryFolder folder;
    DescribeWhole(folder, settings, "");
    ForgetInfo(settings, "DSGetInfo", payloadSizeInfo);
    Grab grab(settings);
    const ToolResult without = grab.Run(1);
    EXPECT_EQ(without.status, failure);
    EXPECT_EQ(
        without.err, "koro: Neither the stream nor the camera tells the size of a frame.\n"
                     "hint: Give the camera's PayloadSize in bytes with --payload-size.\n");
    EXPECT_EQ(grab.Run(1, {"--payload-size", "3072"}).status, 0);
}

TEST(Grab, SettingsChangeThePictures)
{
    Grab grab(OneCamera("Mono8", 64, 48));
    const ToolResult result = grab.Run(
        2, {"--set", "Width=32", "--set", "Height=24", "--set", "PixelFormat=Mono12p", "--set", "ExposureTime=5000"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("8 buffers of 1152 bytes\n"));
    const koro::tool::Picture picture = ReadPNG(grab.File("cam-000002.png"));
    EXPECT_EQ(picture.width, 32u);
    EXPECT_EQ(picture.height, 24u);
    EXPECT_EQ(picture.channels, 1u);
}

TEST(Grab, SettingThatFailsTakesNoPicture)
{
    Grab grab(OneCamera("Mono8", 64, 48));
    const ToolResult result = grab.Run(1, {"--set", "Height=24", "--set", "Width=5000"});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("koro: Width was not set to 5000: "));
    EXPECT_THAT(result.err, HasSubstr("\nhint: Width takes 1 to 64 pixel.\n"));
    EXPECT_THAT(grab.FileNames(), testing::IsEmpty());
    EXPECT_EQ(grab.Run(1, {"--set", "Nothing=1"}).status, noSuchFeature);
    EXPECT_EQ(grab.Run(1, {"--set", "Width"}).status, usage);
}

TEST(Grab, CameraThatWaitsForItsStartCommandIsStarted)
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["interfaces"][0]["cameras"][0]["startWithStream"] = false;
    Grab grab(settings);
    ASSERT_EQ(grab.Run(2).status, 0);
    EXPECT_EQ(DifferenceToPattern(ReadPNG(grab.File("cam-000002.png")), {"Mono8", "M", 8}, 2), "");
}

TEST(Grab, CameraWithoutUsableFeaturesStreamsAllTheSame)
{
    json settings = OneCamera("Mono8", 64, 48);
    const TemporaryFolder folder;
    settings["interfaces"][0]["cameras"][0]["description"] = folder.MakeFile("camera.xml", "<no description");
    Grab grab(settings);
    const ToolResult result = grab.Run(1);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.err, HasSubstr("koro: No features of the camera are used: "));
    EXPECT_EQ(grab.Run(1, {"--set", "Width=32"}).status, failure);
}

TEST(Grab, FailedStartCommandIsTold)
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["interfaces"][0]["cameras"][0]["startWithStream"] = false;
    // The first write locks the format, the second one starts.
    json& call = FailCall(settings, "GCWritePort", "GC_ERR_IO");
    call["at"] = 2;
    call["text"] = "no light";
    const ToolResult result = Grab(settings).Run(1);
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("GCWritePort: no light"));
}

TEST(Grab, BufferThatIsTooSmallGivesNoPicture)
{
    Grab grab(OneCamera("Mono8", 64, 48));
    const ToolResult result = grab.Run(1, {"--payload-size", "1000", "--timeout", "50"});
    EXPECT_NE(result.status, 0);
    EXPECT_THAT(grab.FileNames(), testing::IsEmpty());
}

TEST(Grab, BufferThatIsTooSmallIsTheReasonThatIsNamed)
{
    Grab grab(OneCamera("Mono8", 64, 48));
    const ToolResult result = grab.Run(1, {"--payload-size", "1000", "--format", "none", "--json"});
    EXPECT_EQ(result.status, framesMissing);
    const std::string reason = "larger than the buffer of 1000 bytes.";
    EXPECT_THAT(result.err, HasSubstr(reason + "\nhint: Raise --payload-size, or leave it out.\n"));
    EXPECT_THAT(result.err, HasSubstr("\nhint: The reason why a frame was not whole is printed above.\n"));
    const json first = json::parse(result.out.substr(0, result.out.find('\n')));
    EXPECT_EQ(first.at("state"), "incomplete");
    EXPECT_THAT(first.at("problem").get<std::string>(), HasSubstr(reason));
}

TEST(Grab, MissingFrameInformationIsReplacedByWhatIsUsual)
{
    json settings = OneCamera("Mono8", 64, 48);
    for (const int command :
         {newDataInfo, incompleteInfo, sizeFilledInfo, xPaddingInfo, imageOffsetInfo, pixelFormatNamespaceInfo})
    {
        ForgetInfo(settings, "DSGetBufferInfo", command);
    }
    Grab grab(settings);
    ASSERT_EQ(grab.Run(2).status, 0);
    EXPECT_EQ(DifferenceToPattern(ReadPNG(grab.File("cam-000002.png")), {"Mono8", "M", 8}, 2), "");
}

TEST(Grab, FrameWithoutPixelFormatCanOnlyBeSavedRaw)
{
    json settings = OneCamera("Mono8", 64, 48);
    ForgetInfo(settings, "DSGetBufferInfo", pixelFormatInfo);
    Grab grab(settings);
    const ToolResult result = grab.Run(1);
    EXPECT_EQ(result.status, framesMissing);
    EXPECT_THAT(
        result.err, HasSubstr("koro: Frame 1 cannot be read and counts as incomplete: [Function: DSGetBufferInfo | "
                              "Info-Command: 20 (BUFFER_INFO_PIXELFORMAT) | Error-Code: -1003"));
    EXPECT_EQ(grab.Run(1, {"--format", "raw"}).status, 0);
}

TEST(Grab, UnknownPixelFormatIsNamedWithAWayOut)
{
    json settings = OneCamera("Mono8", 64, 48);
    FalsifyInfo(settings, "DSGetBufferInfo", pixelFormatInfo, 0x02100032);
    const ToolResult result = Grab(settings).Run(1);
    EXPECT_EQ(result.status, failure);
    EXPECT_EQ(
        result.err, "koro: Pixel format 0x02100032 cannot be turned into a picture.\n"
                    "hint: Save the frames as they are with --format raw.\n");
}

TEST(Grab, AbsurdSizesAreRefused)
{
    const struct
    {
        const char* function;
        int command;
        int64_t value;
        int status;
        const char* text;
    } cases[] = {
        {"DSGetBufferInfo", widthInfo, int64_t{1} << 40, framesMissing, "which is beyond reason."},
        {"DSGetBufferInfo", heightInfo, int64_t{1} << 40, framesMissing, "which is beyond reason."},
        {"DSGetBufferInfo", xPaddingInfo, int64_t{1} << 60, framesMissing, "which is beyond reason."},
        {"DSGetBufferInfo", imageOffsetInfo, -1, framesMissing, "which is beyond reason."},
        {"DSGetInfo", payloadSizeInfo, int64_t{1} << 40, failure, "is beyond the limit of 1073741824 bytes."},
        {"DSGetInfo", bufferAlignmentInfo, int64_t{1} << 40, failure,
         "The producer asks for buffers aligned to 1099511627776"},
    };
    for (const auto& [function, command, value, status, text] : cases)
    {
        json settings = OneCamera("Mono8", 64, 48);
        FalsifyInfo(settings, function, command, value);
        const ToolResult result = Grab(settings).Run(1);
        EXPECT_EQ(result.status, status) << function << " " << command;
        EXPECT_THAT(result.err, HasSubstr(text));
    }
}

TEST(Grab, ClaimOfMoreBytesThanTheBufferHasIsNotBelieved)
{
    json settings = OneCamera("Mono8", 64, 48);
    FalsifyInfo(settings, "DSGetBufferInfo", sizeFilledInfo, int64_t{1} << 40);
    FalsifyInfo(settings, "DSGetBufferInfo", heightInfo, 4800);
    Grab grab(settings);
    EXPECT_EQ(grab.Run(1).status, framesMissing);
    EXPECT_EQ(grab.Run(1, {"--format", "raw"}).status, framesMissing);
    EXPECT_THAT(grab.FileNames(), testing::IsEmpty());
    EXPECT_EQ(grab.Run(1, {"--format", "raw", "--keep-incomplete"}).status, framesMissing);
    EXPECT_EQ(std::filesystem::file_size(grab.File("cam-000001-incomplete.raw")), 3072u);
}

TEST(Grab, FolderThatCannotBeMadeIsNamed)
{
    const ToolResult result =
        RunTool({"grab", "cam", "--frames", "1", "--output", "/dev/null/x"}, {{"GENICAM_GENTL64_PATH", ""}});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("koro: Cannot make the folder /dev/null/x: "));
}

TEST(Grab, UnknownCameraTakesNoPicture)
{
    const TemporaryFolder folder;
    const ToolResult result = RunTool(
        {"grab", "nobody", "--frames", "1", "--output", folder.File("out")}, SimulatorWith(folder, json::object()));
    EXPECT_EQ(result.status, noSuchCamera);
    EXPECT_THAT(result.err, HasSubstr("koro: No camera is called \"nobody\". There are:\n"));
}

TEST(Grab, PacedDefaultCameraDeliversInRealTime)
{
    const TemporaryFolder folder;
    const ToolResult result = RunTool(
        {"grab", "KS0002", "--frames", "3", "--output", folder.File("out")}, SimulatorWith(folder, json::object()));
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(ReadPNG(folder.File("out/KS0002-000003.png")).width, 640u);
}

} // namespace
