#include "tools/koro/camera_tree_json.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace
{

using namespace koro::tool;

ProducerRecord SampleProducer()
{
    ProducerRecord producer;
    producer.path = "/lib/p.cti";
    producer.vendor = "Maker";
    producer.interfaces.resize(1);
    producer.interfaces[0].id = "eth0";
    producer.interfaces[0].problem = "slow";
    producer.interfaces[0].cameras.resize(1);
    producer.interfaces[0].cameras[0].id = "cam";
    producer.interfaces[0].cameras[0].serialNumber = "1";
    producer.interfaces[0].cameras[0].accessStatus = 4;
    return producer;
}

TEST(CameraTreeJSON, TreeSurvivesTheRoadThroughJSON)
{
    const nlohmann::json first = ToJSON(SampleProducer());
    EXPECT_EQ(ToJSON(ProducerFromJSON(nlohmann::json::parse(Dump(first)))), first);
}

TEST(CameraTreeJSON, MissingTextIsNull)
{
    const nlohmann::json json = ToJSON(SampleProducer());
    EXPECT_TRUE(json.at("model").is_null());
    EXPECT_TRUE(json.at("interfaces").at(0).at("cameras").at(0).at("userName").is_null());
    EXPECT_EQ(json.at("vendor"), "Maker");
    EXPECT_EQ(json.at("interfaces").at(0).at("cameras").at(0).at("access"), "Busy");
}

TEST(CameraTreeJSON, TextThatIsNotUTF8IsReplaced)
{
    ProducerRecord producer = SampleProducer();
    producer.vendor = "K\xF6ro";
    EXPECT_EQ(nlohmann::json::parse(Dump(ToJSON(producer))).at("vendor"), "K\xEF\xBF\xBDro");
}

TEST(CameraTreeJSON, ControlsOfATerminalAreEscapedAndNothingElseIs)
{
    const std::string text = "a\x1B[2J\x7F\xC2\x80\xC2\x9B\xC2\x9F\xC2\xA0\xC3\x9B\xE2\x82\x80z";
    const std::string written = Dump({{text, text}});
    const std::string shown = "\"a\\u001b[2J\\u007f\\u0080\\u009b\\u009f\xC2\xA0\xC3\x9B\xE2\x82\x80z\"";
    EXPECT_EQ(written, "{" + shown + ":" + shown + "}");
    EXPECT_EQ(nlohmann::json::parse(written).at(text), text);
}

TEST(CameraTreeJSON, ForeignJSONIsRefused)
{
    EXPECT_THROW(ProducerFromJSON(nlohmann::json::parse(R"({"path": 1})")), nlohmann::json::exception);
    EXPECT_THROW(ProducerFromJSON(nlohmann::json::parse("[]")), nlohmann::json::exception);
}

TEST(CameraTree, CameraIsUsableUnlessItsStatusSpeaksAgainstIt)
{
    CameraRecord camera;
    EXPECT_TRUE(camera.LooksUsable());
    camera.accessStatus = 1;
    EXPECT_TRUE(camera.LooksUsable());
    for (const int32_t status : {2, 3, 4, 5, 6, 1000})
    {
        camera.accessStatus = status;
        EXPECT_FALSE(camera.LooksUsable()) << status;
    }
    EXPECT_EQ(SampleProducer().NumUsableCameras(), 0u);
}

TEST(CameraTree, AccessStatusHasAName)
{
    EXPECT_EQ(AccessStatusName(0), "Unknown");
    EXPECT_EQ(AccessStatusName(1), "ReadWrite");
    EXPECT_EQ(AccessStatusName(6), "OpenReadOnly");
    EXPECT_EQ(AccessStatusName(7), "7");
    EXPECT_EQ(AccessStatusName(-1), "-1");
}

} // namespace
