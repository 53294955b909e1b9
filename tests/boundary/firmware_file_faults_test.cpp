// Update files of strangers: each is refused with a reason, and nothing is found nor written.
#include "tests/boundary/firmware_test.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace koro::test
{

using testing::HasSubstr;

namespace
{

class FirmwareFileFaults : public FirmwareTest
{
protected:
    FirmwareFileFaults() { Require(CollectAll(WithControl(sound).path)); }

    // What a collection says to the bytes; the result of the sound file before has to stay.
    std::string Refusal(const std::string& bytes)
    {
        file.Replace(bytes);
        const Error all = Outcome(CollectAll(file.path));
        EXPECT_EQ(all.code, KORO_RETURN_CODE_ERROR);
        const Error fitting = Outcome(Collect(file.path));
        EXPECT_EQ(fitting, all);
        EXPECT_EQ(NumFound(), 1u);
        return all.text;
    }

    // The package with one more file.
    static std::string WithFile(const std::string& name, const std::string& content)
    {
        return Container(Package(sound, {{name, content}}));
    }

    static inline const std::string sound = Control(Procedure("") + UpdateOf("1"));
    const UpdateFileOnDisk file{""};
};

} // namespace

TEST_F(FirmwareFileFaults, CutAnywhereIsRefused)
{
    const std::string bytes = WithFile("a.bin", "some bytes");
    for (std::size_t size = 0; size < bytes.size(); size += 7)
    {
        SCOPED_TRACE(size);
        EXPECT_THAT(Refusal(bytes.substr(0, size)), HasSubstr("The update file '"));
    }
}

TEST_F(FirmwareFileFaults, WhatIsNoZipIsRefused)
{
    EXPECT_THAT(Refusal("This is no update."), HasSubstr("Invalid zip archive: it has no end record"));
    EXPECT_THAT(Refusal(""), HasSubstr("is empty"));
}

TEST_F(FirmwareFileFaults, FolderOrMissingFileIsRefused)
{
    EXPECT_THAT(Outcome(CollectAll(file.folder.Path().string())).text, HasSubstr("is no file"));
    EXPECT_THAT(Outcome(CollectAll(file.path + "/update.guf")).text, HasSubstr("update.guf'"));
    EXPECT_EQ(NumFound(), 1u);
}

TEST_F(FirmwareFileFaults, PackageWithoutControlFileIsRefused)
{
    ZipBuilder package;
    package.AddDeflated("Other.xml", sound);
    EXPECT_THAT(Refusal(Container(package.Bytes())), HasSubstr("has no control file"));
    // The package by itself is no update file either.
    EXPECT_THAT(Refusal(Package(sound)), HasSubstr("is not stored as it is"));
}

TEST_F(FirmwareFileFaults, NamesThatPointOutsideAreRefused)
{
    for (const std::string name : {"../a.bin", "a/../../b.bin", "/etc/passwd", "..\\a.bin", "C:\\a.bin"})
    {
        SCOPED_TRACE(name);
        EXPECT_THAT(Refusal(WithFile(name, "x")), HasSubstr("points outside"));
    }
    EXPECT_FALSE(std::filesystem::exists(file.folder.Path().parent_path() / "a.bin"));
}

TEST_F(FirmwareFileFaults, ControlFileThatExpandsAThousandfoldIsRefused)
{
    const std::string blanks(8u << 20, ' ');
    EXPECT_THAT(Refusal(Container(Package(sound + blanks))), HasSubstr("more than 200 times"));
}

TEST_F(FirmwareFileFaults, UploadThatExpandsAThousandfoldIsRefusedBeforeTheFirstStep)
{
    const Error outcome = Apply(FileWithSteps(
        firmware::WriteGain("7") + firmware::UploadStep("a.bin"), {{"a.bin", std::string(8u << 20, '\0')}}));
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
    EXPECT_THAT(outcome.text, HasSubstr("more than 200 times"));
    EXPECT_EQ(Gain(), 0u);
    EXPECT_THAT(observer.reports.back(), testing::StartsWith("failed: "));
}

TEST_F(FirmwareFileFaults, MissingUploadIsRefusedBeforeTheFirstStep)
{
    const Error outcome = Apply(FileWithSteps(firmware::WriteGain("7") + firmware::UploadStep("a.bin")));
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
    EXPECT_THAT(outcome.text, HasSubstr("a.bin"));
    EXPECT_EQ(Gain(), 0u);
}

TEST_F(FirmwareFileFaults, UpdateOfAnotherCameraFindsNothingAndIsRefusedWhenApplied)
{
    const UpdateFileOnDisk other =
        WithControl(Control(Procedure(firmware::WriteGain("7")) + UpdateOf("1", "Other vendor")));
    EXPECT_EQ(Outcome(Collect(other.path)), Error{});
    EXPECT_EQ(NumFound(), 0u);
    EXPECT_EQ(Apply(other).code, KORO_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(Gain(), 0u);
}

TEST_F(FirmwareFileFaults, BrokenControlFileIsRefusedWithItsPlace)
{
    EXPECT_THAT(
        Refusal(Container(Package("<GufRuleSet"))), HasSubstr("Error while parsing XML stream at line 1 and column "));
    EXPECT_THAT(Refusal(Container(Package(Control(Procedure(""))))), HasSubstr("Error while parsing XML stream"));
}

TEST_F(FirmwareFileFaults, UpdateWithoutAVersionIsRefused)
{
    EXPECT_THAT(
        Refusal(Container(Package(Control(Procedure("") + Update(Entry("Description", "x")))))), HasSubstr("Version"));
}

} // namespace koro::test
