// Feature files and files of the device through the C++ face.
#include "tests/boundary/file_camera.h"
#include "tests/support/temporary_folder.h"
#include "tests/tool/koro_tree.h"
#include <koro/koro.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace koro::test
{

namespace
{

using Bytes = std::vector<uint8_t>;

class KoroFiles : public FileCamera
{
protected:
    koro::NodeMap Features() { return koro::NodeMap(OpenFiles()); }

    static Bytes BytesOf(const std::string& text) { return {text.begin(), text.end()}; }

    template <class Call>
    static koro::Error ErrorOf(const Call& call)
    {
        try
        {
            call();
        }
        catch (const koro::Error& error)
        {
            return error;
        }
        return {KORO_RETURN_CODE_SUCCESS, ""};
    }
};

} // namespace

TEST_F(KoroFiles, AreReadWrittenAndDeleted)
{
    const koro::FileAdapter file(Features(), "User");
    EXPECT_EQ(file.Size(), 20u);
    EXPECT_EQ(file.MaxSize(), 64u);
    EXPECT_EQ(file.Read(), BytesOf("0123456789abcdefghij"));
    EXPECT_EQ(file.Read(3, 10), BytesOf("abc"));
    EXPECT_EQ(file.Read(0), Bytes{});
    file.Write(BytesOf("XYZ"), 1);
    file.Write("W", 1);
    file.Write(Bytes{});
    EXPECT_EQ(files->content, "WXYZ456789abcdefghij");
    file.Delete();
    EXPECT_EQ(file.Read(), Bytes{});
}

TEST_F(KoroFiles, FailuresAreErrorsWithCodeAndText)
{
    const koro::NodeMap features = Features();
    EXPECT_EQ(ErrorOf([&] { koro::FileAdapter(features, "Nothing"); }).Code(), KORO_RETURN_CODE_NOT_AVAILABLE);
    const koro::FileAdapter file(features, "User");
    EXPECT_EQ(ErrorOf([&] { (void)file.Read(21); }).Code(), KORO_RETURN_CODE_OUT_OF_RANGE);
    EXPECT_EQ(
        std::string(ErrorOf([&] { (void)file.Read(~uint64_t{0}); }).what()),
        "A file is not read in pieces of 18446744073709551615 bytes!");
    EXPECT_EQ(
        std::string(ErrorOf([&] { file.Write(Bytes(70)); }).what()),
        "data size + offset exceeds the specified file's size!");
}

TEST_F(KoroFiles, WriteThatRecordsNoTextGetsOne)
{
    const koro::FileAdapter file(Features(), "User");
    files->failingBlock = 0;
    const koro::Error error = ErrorOf([&] { file.Write(BytesOf("data")); });
    EXPECT_EQ(error.Code(), KORO_RETURN_CODE_ERROR);
    EXPECT_STREQ(error.what(), "The device did not take all bytes of the file \"User\"!");
}

TEST_F(KoroFiles, WriteThatFailsAsTheCallBeforeIsToldByItsOwnText)
{
    const koro::FileAdapter file(Features(), "User");
    Require(KORO_Device_Destruct(tree.device));
    for (int time = 0; time < 2; ++time)
        EXPECT_STREQ(ErrorOf([&] { file.Write(BytesOf("data")); }).what(), "Pointer has expired!");
}

TEST_F(KoroFiles, WriteWithoutATextIsKnownBehindAnotherFailure)
{
    const koro::FileAdapter file(Features(), "User");
    files->failingBlock = 0;
    for (int time = 0; time < 2; ++time)
    {
        EXPECT_EQ(ErrorOf([&] { (void)file.Read(4); }).Code(), KORO_RETURN_CODE_ERROR);
        EXPECT_STREQ(
            ErrorOf([&] { file.Write(BytesOf("data")); }).what(), "The device did not take all bytes of the file \"User\"!");
    }
}

TEST_F(KoroFiles, WriteThatIsRefusedIsReportedWithTheDevicesStatus)
{
    const koro::FileAdapter file(Features(), "User");
    files->refusesOpening = true;
    EXPECT_STREQ(
        ErrorOf([&] { file.Write(BytesOf("data")); }).what(),
        "The device did not take all bytes of the file \"User\": FileOperationStatus is Failure!");
    files->refusesOpening = false;
    file.Write(BytesOf("data"));
    EXPECT_EQ(files->content, "data456789abcdefghij");
}

TEST_F(KoroFiles, WriteOfAFileThatIsOnlyReadIsReportedAsThat)
{
    auto nodes = FileNodes();
    nodes["FileOpenMode"] = FileChoice(
        "FileOpenMode", DeviceFiles::OpenMode, {"Read", {"Write", "<pIsAvailable>No</pIsAvailable>"}}, "RW");
    const koro::FileAdapter file(koro::NodeMap(OpenFiles(nodes)), "User");
    EXPECT_STREQ(
        ErrorOf([&] { file.Write(BytesOf("data")); }).what(),
        "The device did not take all bytes of the file \"User\": it cannot be opened for that!");
}

TEST_F(KoroFiles, DeleteThatTheDeviceRefusesIsAnError)
{
    const koro::FileAdapter file(Features(), "User");
    files->refusesDeleting = true;
    const koro::Error error = ErrorOf([&] { file.Delete(); });
    EXPECT_EQ(error.Code(), KORO_RETURN_CODE_ERROR);
    EXPECT_STREQ(error.what(), "The device did not delete the file \"User\": FileOperationStatus is Failure!");
    EXPECT_EQ(files->content, "0123456789abcdefghij");
}

TEST_F(KoroFiles, DeleteThatTheDeviceDoesNotOfferIsAnError)
{
    auto nodes = FileNodes();
    nodes["FileOperationSelector"] = FileChoice(
        "FileOperationSelector", DeviceFiles::Operation,
        {"Open", "Close", "Read", "Write", {"Delete", "<pIsAvailable>No</pIsAvailable>"}}, "RW");
    const koro::FileAdapter file(koro::NodeMap(OpenFiles(nodes)), "User");
    const koro::Error error = ErrorOf([&] { file.Delete(); });
    EXPECT_EQ(error.Code(), KORO_RETURN_CODE_BAD_ACCESS);
    EXPECT_STREQ(error.what(), "The device did not delete the file \"User\": it cannot be deleted!");
}

TEST_F(KoroFiles, FileThatTheDeviceDoesNotHaveIsNamed)
{
    const koro::NodeMap features = Features();
    EXPECT_THAT(ErrorOf([&] { koro::FileAdapter(features, "Nothing"); }).what(), testing::EndsWith(" (Nothing)"));
}

TEST_F(KoroFiles, AdapterOwnsItsHandle)
{
    koro::FileAdapter file(Features(), "User");
    koro::FileAdapter moved = std::move(file);
    EXPECT_FALSE(file);
    const KORO_FileAdapterHandle handle = moved.Get();
    EXPECT_EQ(moved.Close(), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(KORO_FileAdapter_Delete(handle), KORO_RETURN_CODE_INVALID_HANDLE);
    EXPECT_EQ(ErrorOf([&] { moved.Delete(); }).Code(), KORO_RETURN_CODE_INVALID_HANDLE);
}

TEST_F(KoroFiles, FeaturesAreStoredAndLoaded)
{
    const TemporaryFolder folder;
    const koro::NodeMap features(Describe(
        "<Category Name=\"Root\"><pFeature>Width</pFeature></Category>" +
        IntRegister("Width", 0, "<Streamable>Yes</Streamable>")));
    features.Integer("Width").SetValue(640);
    features.StoreToFile(folder.File("settings.txt"));
    features.Integer("Width").SetValue(1);
    features.LoadFromFile(folder.File("settings.txt"));
    EXPECT_EQ(features.Integer("Width").Value(), 640);
    EXPECT_EQ(
        ErrorOf([&] { features.LoadFromFile(folder.File("none.txt")); }).Code(), KORO_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(ErrorOf([&] { features.StoreToFile(folder.Path().string()); }).Code(), KORO_RETURN_CODE_INVALID_ARGUMENT);
}

} // namespace koro::test
