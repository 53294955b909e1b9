#include "firmware/bounds.h"
#include "firmware/payloads.h"
#include "tests/unit/genicam/firmware_files.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace
{

using namespace koro::test;
using GENAPI_NAMESPACE::CFirmwareUpdater;

const std::string control = Control(Procedure("") + Update());

std::string Read(const UpdateFileOnDisk& file)
{
    return Thrown([&] { ReadAll(file); });
}

std::string ReadBytes(const std::string& bytes)
{
    return Read(UpdateFileOnDisk(bytes));
}

// Reads the container that holds the package, after `change` has bent its only entry.
template <class Change>
std::string ReadBent(const Change& change)
{
    ZipBuilder container;
    change(container.AddStored("package.zip", Package(control)));
    return ReadBytes(container.Bytes());
}

TEST(UpdateFile, MissingFileIsNotFound)
{
    const UpdateFileOnDisk file("");
    std::filesystem::remove(file.path);
    EXPECT_EQ(Read(file), "FileNotFoundException: The update file 'update.guf' does not exist");
}

TEST(UpdateFile, MissingFolderIsNotFound)
{
    CFirmwareUpdater updater;
    EXPECT_EQ(
        Thrown([&] { updater.VerifyGufFile("no/such/folder/update.guf"); }),
        "FileNotFoundException: The update file 'update.guf' does not exist");
}

TEST(UpdateFile, NameWithAZeroByteIsNotFound)
{
    const UpdateFileOnDisk file(Container(Package(control)));
    CFirmwareUpdater updater;
    const std::string name = file.path + std::string(1, '\0') + ".txt";
    EXPECT_THAT(
        Thrown([&] { updater.VerifyGufFile(GENICAM_NAMESPACE::gcstring(name.data(), name.size())); }),
        testing::EndsWith("has a zero byte in it"));
}

TEST(UpdateFile, FolderIsNoFile)
{
    const UpdateFileOnDisk file("");
    std::filesystem::remove(file.path);
    std::filesystem::create_directory(file.path);
    EXPECT_EQ(Read(file), "FileIOException: The update file 'update.guf' is no file");
}

TEST(UpdateFile, PipeIsNoFileAndIsNotWaitedFor)
{
    const UpdateFileOnDisk file("");
    std::filesystem::remove(file.path);
    ASSERT_EQ(mkfifo(file.path.c_str(), 0600), 0);
    EXPECT_EQ(Read(file), "FileIOException: The update file 'update.guf' is no file");
}

TEST(UpdateFile, EmptyFileIsAFileError)
{
    EXPECT_EQ(ReadBytes(""), "FileIOException: The update file 'update.guf' is empty");
}

TEST(UpdateFile, WhatIsNoZipIsAFileError)
{
    EXPECT_EQ(
        ReadBytes("This is no update."), "FileIOException: The update file 'update.guf' cannot be read: "
                                         "Invalid zip archive: it has no end record");
}

TEST(UpdateFile, TooLargeFileIsRefusedUnread)
{
    const UpdateFileOnDisk file(Container(Package(control)));
    std::filesystem::resize_file(file.path, GENAPI_NAMESPACE::runtime::maxUpdateFileSize + 1);
    EXPECT_EQ(
        Read(file), "FileIOException: The update file 'update.guf' has 536870913 bytes; at most 536870912 are taken");
}

TEST(UpdateFile, NoCutFileIsTaken)
{
    const std::string bytes = Container(Package(control));
    for (size_t size = 0; size < bytes.size(); ++size)
    {
        EXPECT_THAT(ReadBytes(bytes.substr(0, size)), testing::StartsWith("FileIOException: ")) << size;
    }
}

TEST(UpdateFile, NoChangedByteCrashes)
{
    const UpdateFileOnDisk file("");
    const std::string whole = Container(Package(control));
    for (size_t place = 0; place < whole.size(); ++place)
    {
        std::string bytes = whole;
        bytes[place] = static_cast<char>(bytes[place] ^ 0x55);
        file.Replace(bytes);
        EXPECT_THAT(
            Read(file), testing::AnyOf(
                            "nothing", testing::StartsWith("FileIOException: "),
                            testing::StartsWith("FormatException: "), testing::StartsWith("RuntimeException: ")))
            << place;
    }
}

TEST(UpdateFile, ChangedByteOfThePackageIsSeenByItsCheckSum)
{
    EXPECT_EQ(
        ReadBent([](ZipBuilder::Entry& entry) { entry.packed[entry.packed.size() / 2] ^= 1; }),
        "FileIOException: The update file 'update.guf' is damaged: the check sum of the entry 'package.zip' is wrong");
}

TEST(UpdateFile, MissingPackageIsAFormatError)
{
    ZipBuilder container;
    container.AddStored("Package.zip", Package(control));
    EXPECT_EQ(ReadBytes(container.Bytes()), "FormatException: The update file 'update.guf' has no entry 'package.zip'");
}

TEST(UpdateFile, DeflatedPackageIsAFormatError)
{
    ZipBuilder container;
    container.AddDeflated("package.zip", Package(control));
    EXPECT_EQ(
        ReadBytes(container.Bytes()),
        "FormatException: The entry 'package.zip' of the update file 'update.guf' is not stored as it is");
}

TEST(UpdateFile, DeflatedSignatureIsAFormatError)
{
    ZipBuilder container;
    container.AddStored("package.zip", Package(control));
    container.AddDeflated("META-INF/signature.p7s", "signature");
    EXPECT_EQ(
        ReadBytes(container.Bytes()),
        "FormatException: The entry 'META-INF/signature.p7s' of the update file 'update.guf' is not stored as it is");
}

TEST(UpdateFile, EncryptedPackageIsAFormatError)
{
    EXPECT_EQ(
        ReadBent([](ZipBuilder::Entry& entry) { entry.flags = 1; }),
        "FormatException: The entry 'package.zip' of the update file 'update.guf' is encrypted");
}

TEST(UpdateFile, StoredEntryOfTwoSizesIsAFormatError)
{
    EXPECT_EQ(
        ReadBent([](ZipBuilder::Entry& entry) { ++entry.size; }),
        "FormatException: The entry 'package.zip' of the update file 'update.guf' contradicts itself about its size");
}

TEST(UpdateFile, PackageThatIsNoZipIsAFormatError)
{
    EXPECT_EQ(
        ReadBytes(Container("no zip")), "FormatException: The package of the update file 'update.guf' cannot be read: "
                                        "Invalid zip archive: it has no end record");
}

TEST(UpdateFile, FolderOfASignatureWithoutSignatureIsNoError)
{
    ZipBuilder container;
    container.AddStored("META-INF/", "");
    container.AddStored("package.zip", Package(control));
    EXPECT_EQ(ReadBytes(container.Bytes()), "nothing");
}

TEST(UpdateFile, OtherEntriesAreLeftOut)
{
    ZipBuilder container;
    container.AddStored("readme.txt", "Read me.");
    container.AddStored("META-INF/other.p7s", "signature");
    container.AddStored("package.zip", Package(control, {{"unused.bin", "unused"}}));
    EXPECT_EQ(ReadBytes(container.Bytes()), "nothing");
}

TEST(UpdateFile, ControlFileMayBeInAnyCase)
{
    for (const char* const name : {"Control.xml", "control.xml", "CONTROL.XML"})
    {
        ZipBuilder package;
        package.AddStored(name, control);
        EXPECT_EQ(ReadBytes(Container(package.Bytes())), "nothing") << name;
    }
}

TEST(UpdateFile, MissingControlFileIsAFormatError)
{
    ZipBuilder package;
    package.AddDeflated("folder/Control.xml", control);
    EXPECT_EQ(
        ReadBytes(Container(package.Bytes())), "FormatException: The update file 'update.guf' has no control file");
}

TEST(UpdateFile, TwoControlFilesAreAFormatError)
{
    ZipBuilder package;
    package.AddDeflated("Control.xml", control);
    package.AddDeflated("control.xml", control);
    EXPECT_EQ(
        ReadBytes(Container(package.Bytes())),
        "FormatException: The update file 'update.guf' has several control files");
}

TEST(UpdateFile, EncryptedControlFileIsAFormatError)
{
    ZipBuilder package;
    package.AddDeflated("Control.xml", control).flags = 1;
    EXPECT_EQ(
        ReadBytes(Container(package.Bytes())),
        "FormatException: The package of the update file 'update.guf' cannot be read: "
        "Invalid zip archive: the entry 'Control.xml' is encrypted");
}

TEST(UpdateFile, DamagedControlFileIsAFormatError)
{
    ZipBuilder package;
    package.AddDeflated("Control.xml", control).checksum ^= 1;
    EXPECT_EQ(
        ReadBytes(Container(package.Bytes())),
        "FormatException: The package of the update file 'update.guf' cannot be read: "
        "Invalid zip archive: the check sum of the entry 'Control.xml' is wrong");
}

TEST(UpdateFile, EntryThatExpandsAThousandfoldIsAFormatError)
{
    ZipBuilder package;
    package.AddDeflated("Control.xml", std::string(4u << 20, ' '));
    EXPECT_THAT(
        ReadBytes(Container(package.Bytes())),
        testing::MatchesRegex("FormatException: The entry 'Control.xml' of the update file 'update.guf' expands "
                              "from [0-9]+ to 4194304 bytes, more than 200 times"));
}

TEST(UpdateFile, TooLargeControlFileIsAFormatError)
{
    std::string noise = control + "<!--";
    for (uint32_t value = 1; noise.size() <= GENAPI_NAMESPACE::runtime::maxControlFileSize; value = value * 69069 + 1)
        noise += static_cast<char>('a' + (value >> 20) % 26);
    EXPECT_EQ(
        ReadBytes(Container(Package(noise + "-->"))),
        "FormatException: The package of the update file 'update.guf' cannot be read: Invalid zip archive: "
        "the entry 'Control.xml' claims 16777220 bytes; at most 16777216 are taken");
}

TEST(UpdateFile, NamesThatPointOutsideAreAFormatError)
{
    for (const char* const name : {"../firmware.bin", "a/../../b", "..", "/etc/passwd", "C:\\x", "a\\..\\..\\b", "\\x"})
    {
        EXPECT_EQ(
            ReadBytes(Container(Package(control, {{name, "x"}}))),
            "FormatException: The entry '" + std::string(name) +
                "' of the package of the update file 'update.guf' points outside");
    }
    ZipBuilder container;
    container.AddStored("package.zip", Package(control));
    container.AddStored("../x", "x");
    EXPECT_EQ(
        ReadBytes(container.Bytes()),
        "FormatException: The entry '../x' of the update file 'update.guf' points outside");
}

TEST(UpdateFile, DotsWithinNamesPointNowhere)
{
    EXPECT_EQ(ReadBytes(Container(Package(control, {{"v..2/.firmware..bin", "x"}}))), "nothing");
}

TEST(UpdateFile, SameNameTwiceIsAFormatError)
{
    EXPECT_EQ(
        ReadBytes(Container(Package(control, {{"a.bin", "1"}, {"a.bin", "2"}}))),
        "FormatException: The entry 'a.bin' of the package of the update file 'update.guf' is there twice");
    ZipBuilder container;
    container.AddStored("package.zip", Package(control));
    container.AddStored("package.zip", Package(control));
    EXPECT_EQ(
        ReadBytes(container.Bytes()),
        "FormatException: The entry 'package.zip' of the update file 'update.guf' is there twice");
}

TEST(UpdateFile, TellsWherePackageAndSignatureLie)
{
    const std::string package = Package(control);
    ZipBuilder container;
    container.AddStored("META-INF/signature.p7s", "the signature");
    container.AddStored("package.zip", package);
    const std::string bytes = container.Bytes();
    const UpdateFileOnDisk file(bytes);

    size_t packageOffset = 0, packageSize = 0, signatureOffset = 0, signatureSize = 0;
    CFirmwareUpdater().GetSignatureCheckInfo(
        file.path.c_str(), packageOffset, packageSize, signatureOffset, signatureSize);
    EXPECT_EQ(bytes.substr(packageOffset, packageSize), package);
    EXPECT_EQ(bytes.substr(signatureOffset, signatureSize), "the signature");
}

TEST(UpdateFile, AbsentSignatureLiesNowhere)
{
    const UpdateFileOnDisk file(Container(Package(control)));
    size_t packageOffset = 7, packageSize = 7, signatureOffset = 7, signatureSize = 7;
    CFirmwareUpdater().GetSignatureCheckInfo(
        file.path.c_str(), packageOffset, packageSize, signatureOffset, signatureSize);
    EXPECT_EQ(signatureOffset, 0u);
    EXPECT_EQ(signatureSize, 0u);
    EXPECT_GT(packageSize, 0u);
}

TEST(UpdateFile, VerificationReadsControlFileAndUploads)
{
    const std::string upload =
        Step("FileUpload", "<DeviceFileName>Firmware</DeviceFileName><FileName>a.bin</FileName>");
    const std::string withUpload = Control(Procedure(upload) + Update());
    const auto verified = [](const std::string& package) {
        const UpdateFileOnDisk file(Container(package));
        return Thrown([&] { CFirmwareUpdater().VerifyGufFile(file.path.c_str()); });
    };
    EXPECT_EQ(verified(Package(withUpload, {{"a.bin", "bytes"}})), "nothing");
    EXPECT_EQ(
        verified(Package(withUpload)),
        "FileNotFoundException: The update file 'update.guf' has no file 'a.bin' in its package");
    EXPECT_THAT(verified(Package("<oops/>")), testing::StartsWith("RuntimeException: Error while parsing XML stream"));

    ZipBuilder damaged;
    damaged.AddStored("Control.xml", withUpload);
    damaged.AddStored("a.bin", "bytes").checksum ^= 1;
    EXPECT_EQ(
        verified(damaged.Bytes()), "FormatException: The package of the update file 'update.guf' cannot be read: "
                                   "Invalid zip archive: the check sum of the entry 'a.bin' is wrong");
}

TEST(Payloads, AreBoundedTogetherAndReadOnce)
{
    using namespace GENAPI_NAMESPACE::runtime;
    const UpdateFile file("update.guf", Container(Package(control, {{"a.bin", "aaa"}, {"b.bin", "bbb"}})));
    const auto upload = [](const std::string& name) {
        GENAPI_NAMESPACE::runtime::Step step;
        step.type = GENAPI_NAMESPACE::ProgressStepType_FileUpload;
        step.file = name;
        return step;
    };
    EXPECT_EQ(ReadPayloads(file, {upload("a.bin"), upload("b.bin")}, 6).size(), 2u);
    EXPECT_EQ(ReadPayloads(file, {upload("a.bin"), upload("a.bin")}, 3).at("a.bin"), "aaa");
    EXPECT_EQ(
        Thrown([&] {
            ReadPayloads(file, {upload("a.bin"), upload("b.bin")}, 5);
        }),
        "FormatException: The package of the update file 'update.guf' cannot be read: Invalid zip archive: "
        "the entry 'b.bin' claims 3 bytes; at most 2 are taken");
}

TEST(Payloads, OfAllProceduresAreVerifiedTogether)
{
    using namespace GENAPI_NAMESPACE::runtime;
    const auto upload = [](const std::string& name, const std::string& id) {
        const std::string deviceFile = "<DeviceFileName>Firmware</DeviceFileName>";
        return koro::test::Procedure(
            koro::test::Step("FileUpload", deviceFile + "<FileName>" + name + "</FileName>"), id);
    };
    const std::string rules = upload("a.bin", "P") + upload("a.bin", "Q") + upload("b.bin", "R") + Update();
    const UpdateFile file("update.guf", Container(Package(Control(rules), {{"a.bin", "aaa"}, {"b.bin", "bbb"}})));
    const Procedures procedures =
        ParseControlFile(file.ControlFile(), [](const UpdateRules&, const Procedures&) { return true; });
    EXPECT_EQ(procedures.size(), 3u);
    EXPECT_EQ(Thrown([&] { VerifyPayloads(file, procedures, 6); }), "nothing");
    EXPECT_THAT(
        Thrown([&] { VerifyPayloads(file, procedures, 5); }), testing::EndsWith("claims 3 bytes; at most 2 are taken"));
}

TEST(UpdateFile, ExceptionsDoNotNameTheirType)
{
    using namespace GENICAM_NAMESPACE;
    const FormatException exception = GENFW_FORMAT_EXCEPTION("Entry %d is odd", 3);
    EXPECT_THAT(exception.what(), testing::MatchesRegex("Entry 3 is odd \\(file '.*', line [0-9]+\\)"));
    EXPECT_STREQ(exception.GetDescription(), "Entry 3 is odd");
    EXPECT_THAT(GENFW_FILE_IO_EXCEPTION("x").what(), testing::StartsWith("x (file '"));
    EXPECT_THAT(GENFW_FILE_NOT_FOUND_EXCEPTION("x").what(), testing::StartsWith("x (file '"));
}

} // namespace
