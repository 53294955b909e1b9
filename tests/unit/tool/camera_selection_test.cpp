#include "tools/koro/camera_selection.h"
#include "tools/koro/report.h"
#include "tools/koro/tool_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <utility>

namespace
{

using namespace koro::tool;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

CameraRecord Camera(const std::string& id, const OptionalText& serialNumber = {}, const OptionalText& userName = {})
{
    CameraRecord camera;
    camera.id = id;
    camera.vendor = "Maker";
    camera.model = "M1";
    camera.serialNumber = serialNumber;
    camera.userName = userName;
    return camera;
}

std::vector<ProducerRecord> Tree()
{
    ProducerRecord producer;
    producer.path = "/p.cti";
    producer.interfaces.resize(2);
    producer.interfaces[0].id = "eth0";
    producer.interfaces[0].cameras = {Camera("cam-a", "1001", "left"), Camera("cam-b", "1002", "right")};
    producer.interfaces[1].id = "usb0";
    producer.interfaces[1].cameras = {Camera("cam-a", "2001", ""), Camera("left", "2002")};
    return {producer};
}

// "interface:id" of the choice, or the error's text.
std::string Select(const std::string& name)
{
    static const std::vector<ProducerRecord> tree = Tree();
    try
    {
        const CameraChoice choice = SelectCamera(tree, name);
        return choice.interfaceRecord->id + ":" + choice.camera->id;
    }
    catch (const ToolError& error)
    {
        EXPECT_EQ(error.ExitCode(), exitNoSuchCamera);
        return error.what();
    }
}

TEST(CameraSelection, EachNameOfACameraFindsIt)
{
    EXPECT_EQ(Select("1002"), "eth0:cam-b");
    EXPECT_EQ(Select("right"), "eth0:cam-b");
    EXPECT_EQ(Select("cam-b"), "eth0:cam-b");
    EXPECT_EQ(Select("eth0:cam-b"), "eth0:cam-b");
}

TEST(CameraSelection, InterfaceTellsEqualIdsApart)
{
    EXPECT_EQ(Select("eth0:cam-a"), "eth0:cam-a");
    EXPECT_EQ(Select("usb0:cam-a"), "usb0:cam-a");
}

TEST(CameraSelection, InterfaceAndIdGoBeforeAUserName)
{
    std::vector<ProducerRecord> tree = Tree();
    tree[0].interfaces[1].cameras[1].userName = "eth0:cam-a";
    EXPECT_EQ(SelectCamera(tree, "eth0:cam-a").camera->serialNumber, "1001");
}

// The hint of the error.
std::string HintFor(const std::vector<ProducerRecord>& tree, const std::string& name)
{
    try
    {
        SelectCamera(tree, name);
    }
    catch (const ToolError& error)
    {
        return error.Hint();
    }
    return "none";
}

TEST(CameraSelection, HintNamesACameraInTheWordsOfAShell)
{
    EXPECT_THAT(HintFor(Tree(), "cam-*"), EndsWith(" as eth0:cam-a"));
    std::vector<ProducerRecord> odd = Tree();
    odd[0].interfaces[0].cameras[0].id = "it's $HOME";
    EXPECT_THAT(HintFor(odd, "*"), EndsWith(" as 'eth0:it'\\''s $HOME'"));
}

// The words of the hint are a pattern then, in quotation marks of the shell.
TEST(CameraSelection, HintForAnIdWithControlCharactersFindsTheCamera)
{
    const char* const ids[] = {"D\x1B[2JX", "a\xC2\x9B*b?", "\x01z", "x\xFFy", "\xEF\xBF\xBD[z]"};
    for (const std::string id : ids)
    {
        std::vector<ProducerRecord> tree = Tree();
        tree[0].interfaces[0].id = "I\x1B[5m\xC2\x9B";
        tree[0].interfaces[0].cameras[0].id = id;
        const std::string hint = HintFor(tree, "*");
        const size_t begin = hint.find('\'');
        ASSERT_NE(begin, hint.npos) << hint;
        const std::string name = hint.substr(begin + 1, hint.size() - begin - 2);
        EXPECT_EQ(Printable(name), name);
        EXPECT_EQ(SelectCamera(tree, name).camera->id, id) << hint;
    }
}

TEST(CameraSelection, HintForIdsThatDifferInControlCharactersOnlyNamesNone)
{
    std::vector<ProducerRecord> tree = Tree();
    tree[0].interfaces[0].cameras[0].id = "x\x01";
    tree[0].interfaces[0].cameras[1].id = "x\x02";
    EXPECT_EQ(
        HintFor(tree, "*"), "Name one by interface:id; `koro list --json` shows them with all of their characters.");
}

TEST(CameraSelection, HintForOneCameraOfTwoProducersNamesTheProducer)
{
    std::vector<ProducerRecord> tree = Tree();
    tree.push_back(tree[0]);
    tree[1].path = "/copy of p.cti";
    EXPECT_THAT(HintFor(tree, "1001"), EndsWith(" as --producer /p.cti eth0:cam-a"));
    std::swap(tree[0].path, tree[1].path);
    EXPECT_THAT(HintFor(tree, "1001"), EndsWith(" as --producer '/copy of p.cti' eth0:cam-a"));
}

TEST(CameraSelection, CamerasThatShareASerialNumberAreToldApartByTheHint)
{
    std::vector<ProducerRecord> tree = Tree();
    tree[0].interfaces[0].cameras[1].serialNumber = "1001";
    EXPECT_THAT(HintFor(tree, "1001"), EndsWith(" as eth0:cam-a"));
}

TEST(CameraSelection, SearchIsOverWhenTheNameIsCertain)
{
    const std::vector<InterfaceRecord> tree = Tree()[0].interfaces;
    EXPECT_TRUE(IsSearchOver({}, tree, "eth0:cam-a"));
    EXPECT_FALSE(IsSearchOver({}, tree, "1001"));
    EXPECT_TRUE(IsSearchOver(tree, tree, "1001"));
    EXPECT_FALSE(IsSearchOver(tree, tree, "cam-?"));
    EXPECT_FALSE(IsSearchOver(tree, tree, "unknown"));
    EXPECT_FALSE(IsSearchOver(tree, tree, ""));
}

TEST(CameraSelection, PatternFindsTheOneCameraThatFits)
{
    EXPECT_EQ(Select("ri*"), "eth0:cam-b");
    EXPECT_EQ(Select("usb0:cam-?"), "usb0:cam-a");
    EXPECT_EQ(Select("200[2]"), "usb0:left");
}

TEST(CameraSelection, AmbiguousNameListsItsCandidates)
{
    const std::string text = Select("cam-a");
    EXPECT_THAT(text, HasSubstr("\"cam-a\" fits several cameras:\n"));
    EXPECT_THAT(text, HasSubstr("\n  eth0:cam-a  Maker M1, serial number 1001, \"left\""));
    EXPECT_THAT(text, HasSubstr("\n  usb0:cam-a  Maker M1, serial number 2001"));
    EXPECT_THAT(text, Not(HasSubstr("cam-b")));
}

TEST(CameraSelection, SameCameraOfTwoProducersIsToldApartByTheirPaths)
{
    std::vector<ProducerRecord> tree = {Tree().front(), Tree().front()};
    tree[1].path = "/q.cti";
    try {
        SelectCamera(tree, "1001");
        FAIL() << "no error";
    }
    catch (const ToolError& error) {
        EXPECT_THAT(error.what(), HasSubstr("\"left\", of /p.cti\n"));
        EXPECT_THAT(error.what(), EndsWith("\"left\", of /q.cti"));
        EXPECT_THAT(error.Hint(), HasSubstr("--producer"));
    }
}

TEST(CameraSelection, UserNameAndIdOfDifferentCamerasAreAmbiguous)
{
    EXPECT_THAT(Select("left"), HasSubstr("\"left\" fits several cameras:"));
}

TEST(CameraSelection, UnknownNameListsAllCameras)
{
    const std::string text = Select("nobody");
    EXPECT_THAT(text, HasSubstr("No camera is called \"nobody\". There are:\n  eth0:cam-a"));
    EXPECT_THAT(text, EndsWith("\n  usb0:left  Maker M1, serial number 2002"));
}

TEST(CameraSelection, EmptyTextsOfTheProducerNameNobody)
{
    EXPECT_THAT(Select(""), HasSubstr("No camera is called \"\""));
}

TEST(CameraSelection, TreeWithoutCamerasSaysSo)
{
    try
    {
        SelectCamera({}, "any");
        FAIL() << "no error";
    }
    catch (const ToolError& error)
    {
        EXPECT_STREQ(error.what(), "There is no camera.");
        EXPECT_EQ(error.ExitCode(), exitNoSuchCamera);
    }
}

TEST(CameraSelection, MissingTextsAreDashes)
{
    ProducerRecord producer;
    producer.interfaces.resize(1);
    producer.interfaces[0].id = "i";
    producer.interfaces[0].cameras.resize(1);
    producer.interfaces[0].cameras[0].id = "c";
    const std::vector<ProducerRecord> tree = {producer};
    EXPECT_EQ(DescribeCamera(AllCameras(tree).at(0)), "i:c  - -, serial number -");
}

} // namespace
