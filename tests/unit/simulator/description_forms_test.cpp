// The ways to a description: plain, zipped, by two URLs, and somebody else's.
#include "tests/unit/simulator/feature_map.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

namespace koro::simulator::test
{
namespace
{

namespace GenApi = GENAPI_NAMESPACE;

std::string CameraOf(const std::string& keys, const std::string& tlType = "U3V")
{
    return R"({"interfaces": [{"id": "I", "tlType": ")" + tlType + R"(", "cameras": [{"serial": "A", "rate": 0)" +
           keys + "}]}]}";
}

std::uint32_t NumURLs(const Producer& producer, PORT_HANDLE port)
{
    std::uint32_t number = 0;
    EXPECT_EQ(producer.GCGetNumPortURLs(port, &number), GC_ERR_SUCCESS);
    return number;
}

std::string ReadFile(const std::filesystem::path& file)
{
    std::stringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

TEST(SimulatorDescriptionForms, ZippedDescriptionHoldsTheSameCamera)
{
    const Producer producer(CameraOf(R"(, "descriptionForm": "zipped")"));
    const Tree tree(producer);
    EXPECT_EQ(NumURLs(producer, tree.remote), 1U);
    EXPECT_EQ(producer.Get(producer.GCGetPortURLInfo, tree.remote, 0U, URL_INFO_FILENAME), "koro_simulator_u3v.zip");
    EXPECT_EQ(FetchDescription(producer, tree.remote).substr(0, 2), "PK");
    const FeatureMap map(producer, tree.remote);
    EXPECT_EQ(map.Text("DeviceSerialNumber"), "A");
    CheckEveryNode(map);
}

TEST(SimulatorDescriptionForms, SecondURLNamesAFileBesideTheProducer)
{
    const Producer producer(CameraOf(R"(, "descriptionForm": "twoURLs")"));
    const Tree tree(producer);
    ASSERT_EQ(NumURLs(producer, tree.remote), 2U);
    const auto text = [&](std::uint32_t url, URL_INFO_CMD command) {
        return producer.Get(producer.GCGetPortURLInfo, tree.remote, url, command);
    };
    EXPECT_EQ(
        producer.Get<std::int32_t>(producer.GCGetPortURLInfo, tree.remote, 0U, URL_INFO_SCHEME), URL_SCHEME_LOCAL);
    EXPECT_EQ(producer.Get<std::int32_t>(producer.GCGetPortURLInfo, tree.remote, 1U, URL_INFO_SCHEME), URL_SCHEME_FILE);
    const std::string path = text(1, URL_INFO_FILENAME);
    EXPECT_EQ(text(1, URL_INFO_URL), "file://" + path);
    EXPECT_TRUE(ReadFile(path) == FetchDescription(producer, tree.remote)) << path;
    for (const URL_INFO_CMD command : {URL_INFO_FILE_REGISTER_ADDRESS, URL_INFO_FILE_SIZE})
        EXPECT_EQ(producer.Result(producer.GCGetPortURLInfo, tree.remote, 1U, command), GC_ERR_NOT_AVAILABLE);
    EXPECT_EQ(producer.Result(producer.GCGetPortURLInfo, tree.remote, 2U, URL_INFO_URL), GC_ERR_INVALID_INDEX);
    char list[4096] = {};
    std::size_t size = sizeof list;
    ASSERT_EQ(producer.GCGetPortURL(tree.remote, list, &size), GC_ERR_SUCCESS);
    const std::string expected = text(0, URL_INFO_URL) + "?SchemaVersion=1.1.0" + '\0' + text(1, URL_INFO_URL) +
                                 "?SchemaVersion=1.1.0" + '\0' + '\0';
    EXPECT_EQ(std::string(list, size), expected);
}

TEST(SimulatorDescriptionForms, BuiltInCamerasShowAllThree)
{
    const Producer producer;
    const auto first = [&](const char* interface, const char* camera) {
        const Tree tree(producer, interface, camera);
        const std::string name = producer.Get(producer.GCGetPortURLInfo, tree.remote, 0U, URL_INFO_FILENAME);
        CheckEveryNode(FeatureMap(producer, tree.remote));
        const std::string result = name + " " + std::to_string(NumURLs(producer, tree.remote));
        EXPECT_EQ(producer.TLClose(tree.system), GC_ERR_SUCCESS);
        return result;
    };
    EXPECT_EQ(first("SimGEV", "mono"), "koro_simulator_gev.xml 1");
    EXPECT_EQ(first("SimGEV", "bayer"), "koro_simulator_gev.zip 1");
    EXPECT_EQ(first("SimU3V", "colour"), "koro_simulator_u3v.xml 2");
    EXPECT_EQ(first("SimU3V", "player"), "koro_simulator_u3v.xml 1");
}

constexpr const char* strange = R"(<RegisterDescription ModelName="M" VendorName="V" StandardNameSpace="None"
    SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="2"
    SubMinorVersion="3" ProductGuid="p" VersionGuid="v" xmlns="http://www.genicam.org/GenApi/Version_1_1">
    <Category Name="Root"><pFeature>Strange</pFeature></Category>
    <IntReg Name="Strange"><Address>0x123456789A</Address><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg><Port Name="Device"/>
    </RegisterDescription>)";

class SimulatorStrangeDescription : public testing::Test
{
protected:
    // The file is there before the producer looks for it.
    static std::string Described(const std::string& settings)
    {
        std::ofstream("strange.xml") << strange;
        return settings;
    }

    const Producer producer{Described(CameraOf(R"(, "description": "strange.xml", "startWithStream": false)"))};
    const Tree tree{producer};
};

TEST_F(SimulatorStrangeDescription, IsServedAsItIs)
{
    EXPECT_EQ(FetchDescription(producer, tree.remote), strange);
    EXPECT_EQ(producer.Get(producer.GCGetPortURLInfo, tree.remote, 0U, URL_INFO_FILENAME), "strange.xml");
    for (const URL_INFO_CMD command : {URL_INFO_SCHEMA_VER_MAJOR, URL_INFO_FILE_VER_MINOR, URL_INFO_FILE_SHA1_HASH})
        EXPECT_EQ(producer.Result(producer.GCGetPortURLInfo, tree.remote, 0U, command), GC_ERR_NOT_AVAILABLE);
    char byte = 0;
    std::size_t size = 1;
    EXPECT_EQ(producer.GCWritePort(tree.remote, 0x7000000000000000, &byte, &size), GC_ERR_ACCESS_DENIED);
}

TEST_F(SimulatorStrangeDescription, RegistersAreForgottenByAWriteToTheAddressForIt)
{
    const FeatureMap map(producer, tree.remote);
    map.Set("Strange", "77");
    std::uint8_t edge[] = {1, 2, 3, 4};
    std::size_t size = sizeof edge;
    ASSERT_EQ(producer.GCWritePort(tree.remote, 4094, edge, &size), GC_ERR_SUCCESS);
    const std::uint32_t any = 1;
    size = sizeof any;
    ASSERT_EQ(producer.GCWritePort(tree.remote, 0x7800000000000000, &any, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(map.Integer("Strange").GetValue(false, true), 0);
    ASSERT_EQ(producer.GCReadPort(tree.remote, 4094, edge, &size), GC_ERR_SUCCESS);
    EXPECT_THAT(edge, testing::ElementsAre(0, 0, 0, 0));
    ASSERT_EQ(producer.GCReadPort(tree.remote, 0x7800000000000000, edge, &size), GC_ERR_SUCCESS);
    EXPECT_THAT(edge, testing::ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(FetchDescription(producer, tree.remote), strange);
    map.Set("Strange", "78");
    EXPECT_EQ(map.Integer("Strange").GetValue(false, true), 78);
}

TEST_F(SimulatorStrangeDescription, RegistersKeepWhatIsWritten)
{
    const FeatureMap map(producer, tree.remote);
    EXPECT_EQ(map.Text("Strange"), "0");
    map.Set("Strange", "77");
    EXPECT_EQ(map.Integer("Strange").GetValue(false, true), 77);
    std::uint8_t edge[] = {1, 2, 3, 4};
    std::size_t size = sizeof edge;
    ASSERT_EQ(producer.GCWritePort(tree.remote, 4094, edge, &size), GC_ERR_SUCCESS);
    std::uint8_t read[6] = {};
    size = sizeof read;
    ASSERT_EQ(producer.GCReadPort(tree.remote, 4093, read, &size), GC_ERR_SUCCESS);
    EXPECT_THAT(read, testing::ElementsAre(0, 1, 2, 3, 4, 0)) << "over the edge of a page";
    EXPECT_EQ(producer.GCReadPort(tree.remote, UINT64_MAX - 2, read, &size), GC_ERR_INVALID_ADDRESS);
}

TEST_F(SimulatorStrangeDescription, MemoryIsBounded)
{
    const std::vector<char> block(std::size_t{1} << 26, 'x');
    std::size_t size = block.size();
    EXPECT_EQ(producer.GCWritePort(tree.remote, 1, block.data(), &size), GC_ERR_RESOURCE_EXHAUSTED);
    size = block.size();
    ASSERT_EQ(producer.GCWritePort(tree.remote, 0, block.data(), &size), GC_ERR_SUCCESS);
    size = 1;
    EXPECT_EQ(producer.GCWritePort(tree.remote, block.size(), block.data(), &size), GC_ERR_RESOURCE_EXHAUSTED);
    EXPECT_EQ(producer.GCWritePort(tree.remote, 5, block.data(), &size), GC_ERR_SUCCESS) << "what is there stays";
}

TEST_F(SimulatorStrangeDescription, ImagesComeWithTheStream)
{
    tree.Announce();
    tree.Start(1);
    tree.Next();
}

TEST(SimulatorStrangeDescriptions, ThatCannotBeReadFailTheInitWithTheirName)
{
    const auto textOf = [](const std::string& file) {
        const Producer producer(CameraOf(R"(, "description": ")" + file + "\""), false);
        EXPECT_EQ(producer.GCInitLib(), GC_ERR_ERROR);
        return producer.Last().text;
    };
    EXPECT_THAT(textOf("missing.xml"), testing::HasSubstr("camera 'A': description 'missing.xml': cannot be read"));
    std::ofstream("empty.xml").close();
    EXPECT_THAT(textOf("empty.xml"), testing::HasSubstr("description 'empty.xml': is empty"));
    EXPECT_THAT(textOf("."), testing::HasSubstr("description '.': cannot be read"));
    std::ofstream("large.xml").close();
    std::filesystem::resize_file("large.xml", (std::uintmax_t{1} << 26) + 1);
    EXPECT_THAT(textOf("large.xml"), testing::HasSubstr("description 'large.xml': is larger than 67108864 bytes"));
    std::filesystem::remove("large.xml");
}

// Any camera file that lies at hand can be explored.
TEST(SimulatorStrangeDescriptions, OfRealCamerasLoad)
{
    const char* const folder = std::getenv("KORO_REFERENCE_DATA");
    if (folder == nullptr) GTEST_SKIP() << "KORO_REFERENCE_DATA is not set";
    std::size_t number = 0;
    for (const auto& entry : std::filesystem::directory_iterator(std::string(folder) + "/camera-descriptions"))
    {
        if (entry.path().extension() != ".xml" || ++number % 8 != 0) continue;
        SCOPED_TRACE(entry.path().filename().string());
        const Producer producer(CameraOf(R"(, "description": ")" + entry.path().string() + "\""));
        const Tree tree(producer);
        EXPECT_TRUE(FetchDescription(producer, tree.remote) == ReadFile(entry.path()));
        GenApi::CNodeMapFactory factory(FetchDescription(producer, tree.remote).c_str());
        GenApi::INodeMap* const map = factory.CreateNodeMap();
        EXPECT_GT(map->GetNumNodes(), 0U);
        GenApi::CastToIDestroy(map)->Destroy();
    }
    EXPECT_GT(number, 0U);
}

} // namespace
} // namespace koro::simulator::test
