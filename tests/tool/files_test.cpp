#include "tests/support/file_size_limit.h"
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

    // What reading CalibrationData ends with, over an older copy that stays as it is.
    ToolResult ReadOverOlderCopy()
    {
        folder.MakeFile("copy", "older");
        const ToolResult result = Koro({"files", "read", "cam", "CalibrationData", File("copy")});
        EXPECT_EQ(result.status, failure);
        EXPECT_EQ(Content("copy"), "older");
        for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
            EXPECT_NE(entry.path().extension(), ".part");
        return result;
    }
    void AddFault(const json& fault) { settings["misbehaviour"]["files"].push_back(fault); }

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

TEST_F(Files, ThatAreNotAvailableAreToldAtEveryCommand)
{
    const std::string told = "koro: The file MemoryCard is not available now.\n";
    const std::string file = folder.MakeFile("new", "new");
    EXPECT_EQ(Koro({"files", "read", "cam", "MemoryCard", File("copy")}).err, told);
    EXPECT_EQ(Koro({"files", "write", "cam", "MemoryCard", file}).err, told);
    const ToolResult result = Koro({"files", "delete", "cam", "MemoryCard"});
    EXPECT_EQ(result.status, failure);
    EXPECT_EQ(result.err, told);
    EXPECT_EQ(result.out, "");
}

TEST_F(Files, ThatDoNotOfferItAreRefusedByTheirModes)
{
    const ToolResult read = Koro({"files", "read", "cam", "Firmware", File("copy")});
    EXPECT_EQ(read.status, failure);
    EXPECT_EQ(read.err, "koro: The file Firmware cannot be read.\nhint: It can be opened for Write.\n");
    EXPECT_FALSE(std::filesystem::exists(File("copy")));
    const ToolResult written = Koro({"files", "write", "cam", "FactoryData", folder.MakeFile("new", "new")});
    EXPECT_EQ(written.status, failure);
    EXPECT_EQ(written.err, "koro: The file FactoryData cannot be written.\nhint: It can be opened for Read.\n");
    for (const std::string name : {"FactoryData", "Firmware"})
    {
        const ToolResult result = Koro({"files", "delete", "cam", name});
        EXPECT_EQ(result.status, failure);
        EXPECT_EQ(result.err, "koro: The file " + name + " cannot be deleted.\n");
    }
}

TEST_F(Files, ThatTheCameraDoesNotKeepAreNoSuccess)
{
    const std::string file = folder.MakeFile("new", "new");
    const ToolResult refused = Koro({"files", "write", "cam", "Firmware", file});
    EXPECT_EQ(refused.status, failure);
    EXPECT_EQ(refused.err, "koro: The camera did not keep Firmware: FileOperationStatus is FileNotValid.\n");
}

TEST_F(Files, ThatTheCameraRefusesAreReportedWithItsAnswer)
{
    const std::string file = folder.MakeFile("new", "new");
    AddFault({{"camera", "cam"}, {"operation", "Write"}, {"status", "Failure"}});
    const ToolResult refused = Koro({"files", "write", "cam", "UserFile", file});
    EXPECT_EQ(refused.status, failure);
    EXPECT_THAT(
        refused.err, testing::StartsWith("koro: The file UserFile was not written: FileOperationStatus is Failure. "));
}

TEST_F(Files, ThatCannotBeClosedAreNoSuccess)
{
    const std::string file = folder.MakeFile("new", "new");
    AddFault({{"camera", "cam"}, {"operation", "Close"}, {"status", "Failure"}});
    const ToolResult lost = Koro({"files", "write", "cam", "UserFile", file});
    EXPECT_EQ(lost.status, failure);
    EXPECT_EQ(lost.err, "koro: The camera did not keep UserFile: FileOperationStatus is Failure.\n");
    EXPECT_EQ(Koro({"files", "read", "cam", "FactoryData", File("copy")}).status, success) << "reading keeps nothing";
}

TEST_F(Files, ThatAreNotDeletedAreToldByTheStatus)
{
    AddFault({{"camera", "cam"}, {"operation", "Delete"}, {"status", "AccessDenied"}});
    const ToolResult result = Koro({"files", "delete", "cam", "UserFile"});
    EXPECT_EQ(result.status, failure);
    EXPECT_EQ(result.err, "koro: UserFile was not deleted: FileOperationStatus is AccessDenied.\n");
}

TEST_F(Files, ThatEndAtABlockLeaveNoCopy)
{
    AddFault({{"camera", "cam"}, {"operation", "Read"}, {"at", 3}, {"status", "Failure"}});
    EXPECT_THAT(
        ReadOverOlderCopy().err, HasSubstr("koro: The file CalibrationData was not read: FileOperationStatus is "
                                           "Failure. An unknown error occurred reading the specified file!\n"));
}

TEST_F(Files, OfACameraThatIsLostMeanwhileLeaveNoCopy)
{
    settings["interfaces"][0]["cameras"][0]["fileBufferBytes"] = 1000;
    // In the middle of the blocks, of which there are 301.
    settings["misbehaviour"]["calls"].push_back(
        {{"function", "GCWritePort"}, {"at", 400}, {"count", "every"}, {"error", "GC_ERR_IO"}});
    EXPECT_THAT(ReadOverOlderCopy().err, HasSubstr("GC_ERR_IO"));
}

TEST_F(Files, ThatDoNotFitOnTheDiskLeaveNoCopy)
{
    const FileSizeLimit disk(100000);
    EXPECT_THAT(ReadOverOlderCopy().err, HasSubstr("File too large."));
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
