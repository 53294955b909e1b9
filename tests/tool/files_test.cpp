#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"

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
using testing::HasSubstr;

constexpr int failure = 1;
constexpr int noSuchFeature = 6;

class Files : public testing::Test
{
protected:
    ToolResult Koro(const Arguments& arguments)
    {
        if (environment.empty()) environment = SimulatorWith(folder, settings);
        return RunTool(arguments, environment);
    }
    std::string File(const std::string& name) const { return folder.File(name); }
    std::string Content(const std::string& name) const
    {
        std::ifstream file(File(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    TemporaryFolder folder;
    json settings = OneCamera("Mono8", 64, 48);
    Environment environment;
};

// The bytes of the simulated file CalibrationData.
std::string Calibration()
{
    std::string bytes;
    for (size_t i = 0; i < 300001; ++i)
        bytes.push_back(static_cast<char>(7 * i + i / 256));
    return bytes;
}

TEST_F(Files, AreListedWithTheirSizes)
{
    const ToolResult result = Koro({"files", "list", "cam"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\nUserFile                            0     33554432  "));
    EXPECT_THAT(result.out, HasSubstr("\nCalibrationData                300001       300001  Read\n"));
    EXPECT_THAT(result.out, HasSubstr("\nMemoryCard                          -            -  not available\n"));
}

TEST_F(Files, AreReadWithTheirBytes)
{
    const ToolResult result = Koro({"files", "read", "cam", "CalibrationData", File("copy")});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.err, HasSubstr("300001 bytes in "));
    EXPECT_EQ(Content("copy"), Calibration());
}

TEST_F(Files, AreReadToStandardOutput)
{
    const ToolResult result = Koro({"files", "read", "cam", "FactoryData", "-"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("serial=cam\n"));
}

TEST_F(Files, AreWrittenForTheNextRunOfACameraWithAMemory)
{
    settings["memory"] = folder.MakeFolder("memory");
    const ToolResult result = Koro({"files", "write", "cam", "UserFile", folder.MakeFile("new", Calibration())});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.err, HasSubstr("300001 bytes in "));
    ASSERT_EQ(Koro({"files", "read", "cam", "UserFile", File("copy")}).status, 0);
    EXPECT_EQ(Content("copy"), Calibration());
    ASSERT_EQ(Koro({"files", "write", "cam", "UserFile", folder.MakeFile("new", "short")}).status, 0);
    ASSERT_EQ(Koro({"files", "read", "cam", "UserFile", File("copy")}).status, 0);
    EXPECT_EQ(Content("copy"), "short");
}

TEST_F(Files, ThatAreTooLargeForTheCameraAreAFailure)
{
    settings["interfaces"][0]["cameras"][0]["userFileBytes"] = 1000;
    const ToolResult result = Koro({"files", "write", "cam", "UserFile", folder.MakeFile("new", Calibration())});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("koro: "));
}

TEST_F(Files, ThatCannotBeDeletedStay)
{
    EXPECT_EQ(Koro({"files", "delete", "cam", "UserFile"}).out, "UserFile deleted\n");
    const ToolResult result = Koro({"files", "delete", "cam", "CalibrationData"});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("koro: "));
}

TEST_F(Files, ThatAreNotThereAreRefusedWithThoseThatAre)
{
    const ToolResult result = Koro({"files", "read", "cam", "Nothing", File("copy")});
    EXPECT_EQ(result.status, noSuchFeature);
    EXPECT_EQ(
        result.err, "koro: The camera has no file \"Nothing\".\n"
                    "hint: There are UserFile, FactoryData, CalibrationData, MemoryCard, Firmware.\n");
    EXPECT_FALSE(std::filesystem::exists(File("copy")));
    EXPECT_EQ(Koro({"files", "write", "cam", "UserFile", File("missing")}).status, failure);
    EXPECT_EQ(Koro({"files", "read", "cam", "MemoryCard", File("copy")}).status, failure);
}

} // namespace
