// Features to a file and back.
#include "tests/boundary/described_camera.h"
#include "tests/support/in_thread.h"
#include "tests/support/temporary_folder.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <future>
#include <gmock/gmock.h>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace koro::test
{

namespace
{

using testing::HasSubstr;
using testing::StartsWith;

const std::string head = "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n";
const std::string wholeHead =
    head + "# GenApi persistence file (version 3.4.1)\n"
           "# Device = ZVR::Test --  -- Device version = 1.0.0 -- Product GUID =  -- Product version GUID = \n";

// Features over registers of four bytes at 0, 4, ...; those below Root are features.
std::string Streamable(const std::string& name, std::uint64_t address, const std::string& elements = "")
{
    return IntRegister(name, address, "<Streamable>Yes</Streamable>" + elements);
}

// Width and Height, and a Gain for each of two channels; Register selects and is chosen at address 12.
const std::string camera =
    "<Category Name=\"Root\"><pFeature>Width</pFeature><pFeature>Height</pFeature><pFeature>Channel</pFeature>"
    "<pFeature>Gain</pFeature></Category>" +
    Streamable("Width", 0) + Streamable("Height", 4) +
    "<Enumeration Name=\"Channel\"><EnumEntry Name=\"Red\"><Value>0</Value></EnumEntry>"
    "<EnumEntry Name=\"Blue\"><Value>4</Value></EnumEntry><pValue>ChannelRegister</pValue>"
    "<pSelected>Gain</pSelected></Enumeration>" +
    IntRegister("ChannelRegister", 8) + Streamable("Gain", 16, "<pAddress>ChannelRegister</pAddress>");

const std::string cameraFile = wholeHead + "Width\t640\nHeight\t480\nGain\t{Channel=Red}\t1\nGain\t{Channel=Blue}\t2\n"
                                           "Channel\tBlue\n";

class Settings : public DescribedCamera
{
protected:
    static KORO_ReturnCode Store(KORO_NodeMapHandle map, const std::string& file)
    {
        return KORO_NodeMap_StoreToFile(map, file.c_str(), file.size() + 1);
    }
    static KORO_ReturnCode Load(KORO_NodeMapHandle map, const std::string& file)
    {
        return KORO_NodeMap_LoadFromFile(map, file.c_str(), file.size() + 1);
    }
    KORO_ReturnCode LoadText(KORO_NodeMapHandle map, const std::string& text) const
    {
        return Load(map, folder.MakeFile("settings.txt", text));
    }

    // Opens the camera again, with the registers of a camera in use.
    KORO_NodeMapHandle UsedCamera()
    {
        const auto map = Describe(camera);
        SetRegister(0, 640);
        SetRegister(4, 480);
        SetRegister(8, 4);
        SetRegister(16, 1);
        SetRegister(20, 2);
        return map;
    }

    std::uint32_t Register(std::uint64_t address) const
    {
        std::uint32_t value = 0;
        producer->Edit([&](scripted::Tree& edited) {
            const std::string& bytes = RemotePort(edited).registers[0];
            for (std::size_t byte = sizeof value; byte-- > 0;)
                value = value << 8 | static_cast<unsigned char>(bytes.at(address + byte));
        });
        return value;
    }

    // The failure's text up to the place in the source that it carries, for failures of the reader.
    static void ExpectRefused(KORO_ReturnCode returned, const std::string& text)
    {
        const Error error = Outcome(returned);
        EXPECT_EQ(error.code, KORO_RETURN_CODE_ERROR);
        EXPECT_THAT(error.text, StartsWith(text + " : RuntimeException thrown (file 'feature_file_reader.cpp', line "));
    }

    static bool IsLocked(KORO_NodeMapHandle map)
    {
        return !InThread([map] {
            const bool taken = Get<KORO_Bool8>(KORO_NodeMap_TryLock, map) == 1;
            if (taken) Require(KORO_NodeMap_Unlock(map));
            return taken;
        });
    }

    static std::string ContentOf(const std::string& file)
    {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    static Error InvalidPath(const std::string& file)
    {
        return {
            KORO_RETURN_CODE_INVALID_ARGUMENT, "The given file path (" + std::string(file.c_str()) + ") is invalid!"};
    }

    const TemporaryFolder folder;
    const std::string path = folder.File("settings.txt");
};

} // namespace

TEST_F(Settings, AreStoredAsALineForEachFeatureAndEachCombinationOfSelectors)
{
    const auto map = UsedCamera();
    EXPECT_EQ(Outcome(Store(map, path)), Error{});
    EXPECT_EQ(ContentOf(path), cameraFile);
    EXPECT_EQ(Register(8), 4u) << "the selector is set back";
}

TEST_F(Settings, FileThatWasStoredReadsBackWithTheSameNamesSelectorsAndValues)
{
    auto map = UsedCamera();
    Require(Store(map, path));
    for (const std::uint64_t address : {0u, 4u, 8u, 16u, 20u})
        SetRegister(address, 0);
    map = Describe(camera);
    EXPECT_EQ(Outcome(Load(map, path)), Error{});
    EXPECT_EQ(Register(0), 640u);
    EXPECT_EQ(Register(4), 480u);
    EXPECT_EQ(Register(8), 4u);
    EXPECT_EQ(Register(16), 1u);
    EXPECT_EQ(Register(20), 2u);
    const std::string again = folder.File("again.txt");
    Require(Store(map, again));
    EXPECT_EQ(ContentOf(again), cameraFile);
}

TEST_F(Settings, DeadHandleIsInvalidAndComesBeforeTheNullPath)
{
    EXPECT_EQ(Outcome(KORO_NodeMap_StoreToFile(nullptr, nullptr, 0)), InvalidHandle("nodeMapHandle"));
    EXPECT_EQ(Outcome(KORO_NodeMap_LoadFromFile(nullptr, nullptr, 0)), InvalidHandle("nodeMapHandle"));
    const auto map = UsedCamera();
    EXPECT_EQ(Outcome(KORO_NodeMap_StoreToFile(map, nullptr, 0)), NullPointer("filePath"));
    EXPECT_EQ(Outcome(KORO_NodeMap_LoadFromFile(map, nullptr, 0)), NullPointer("filePath"));
}

TEST_F(Settings, PathIsTheSizeLessOneBytes)
{
    const auto map = UsedCamera();
    const std::string longer = path + ".more";
    EXPECT_EQ(Outcome(KORO_NodeMap_StoreToFile(map, longer.c_str(), path.size() + 1)), Error{});
    EXPECT_TRUE(std::filesystem::exists(path));
    EXPECT_FALSE(std::filesystem::exists(longer));
    EXPECT_EQ(Outcome(KORO_NodeMap_LoadFromFile(map, longer.c_str(), path.size() + 1)), Error{});
    EXPECT_EQ(Outcome(KORO_NodeMap_StoreToFile(map, "x", 0)), InvalidPath(""));
    EXPECT_EQ(Outcome(KORO_NodeMap_LoadFromFile(map, "x", 1)), InvalidPath(""));
}

TEST_F(Settings, PathIsUTF8)
{
    const auto map = UsedCamera();
    const std::string name = folder.File("Größe 設定.txt");
    EXPECT_EQ(Outcome(Store(map, name)), Error{});
    EXPECT_EQ(ContentOf(name), cameraFile);
    EXPECT_EQ(Outcome(Load(map, name)), Error{});
}

TEST_F(Settings, StoringIntoAFolderThatDoesNotExistFailsAndCollectsNothing)
{
    const auto map = UsedCamera();
    ASSERT_GT(Get<std::size_t>(KORO_NodeMap_GetNumNodes, map), 0u);
    producer->ClearJournal();
    const std::string nowhere = folder.File("nowhere/settings.txt");
    EXPECT_EQ(Outcome(Store(map, nowhere)), InvalidPath(nowhere));
    EXPECT_EQ(producer->Journal(), std::vector<std::string>{});
    EXPECT_FALSE(std::filesystem::exists(folder.File("nowhere")));
}

TEST_F(Settings, PathsThatCannotBeOpenedAreInvalidEitherWay)
{
    using namespace std::string_literals;
    const auto map = UsedCamera();
    EXPECT_EQ(Outcome(Load(map, folder.File("none.txt"))), InvalidPath(folder.File("none.txt")));
    for (const std::string& wrong : {folder.Path().string(), ""s, path + "\0more"s, std::string(100'000, 'x')})
    {
        EXPECT_EQ(Outcome(Store(map, wrong)), InvalidPath(wrong));
        EXPECT_EQ(Outcome(Load(map, wrong)), InvalidPath(wrong));
    }
    EXPECT_FALSE(std::filesystem::exists(path)) << "a path does not end at a zero";
}

TEST_F(Settings, BrokenDescriptionIsToldBeforeTheFileIsOpened)
{
    DescribeBy("no description");
    const auto map = NodeMapOf(tree.remoteDevice);
    folder.MakeFile("settings.txt", "kept");
    EXPECT_EQ(Store(map, path), KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(Load(map, path), KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(ContentOf(path), "kept");
    EXPECT_EQ(Store(map, folder.File("nowhere/settings.txt")), KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(Load(map, folder.File("none.txt")), KORO_RETURN_CODE_ERROR);
}

TEST_F(Settings, StoringReplacesWhatWasInTheFile)
{
    const auto map = UsedCamera();
    folder.MakeFile("settings.txt", std::string(10'000, 'x'));
    EXPECT_EQ(Outcome(Store(map, path)), Error{});
    EXPECT_EQ(ContentOf(path), cameraFile);
}

TEST_F(Settings, FailedReadingWhileStoringIsToldAndLeavesTheFileEmptied)
{
    const auto map = UsedCamera();
    folder.MakeFile("settings.txt", "before");
    producer->AnswerAtCall("GCReadPort", 2, GenTL::GC_ERR_IO);
    EXPECT_EQ(Store(map, path), KORO_RETURN_CODE_IO_ERROR);
    EXPECT_THAT(LastError().text, HasSubstr("GC_ERR_IO"));
    EXPECT_EQ(ContentOf(path), "");
    EXPECT_FALSE(IsLocked(map));
}

TEST_F(Settings, FullDiskIsToldAtTheEndOfStoring)
{
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "there is no /dev/full";
    const auto map = UsedCamera();
    EXPECT_EQ(
        Outcome(Store(map, "/dev/full")),
        (Error{
            KORO_RETURN_CODE_IO_ERROR,
            "The features could not be written to the file (/dev/full): No space left on device"}));
}

TEST_F(Settings, FullDiskIsToldInTheMiddleOfStoring)
{
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "there is no /dev/full";
    // More than any buffer of a file takes.
    const auto map =
        Describe("<Category Name=\"Root\"><pFeature>Text</pFeature></Category>"
                 "<StringReg Name=\"Text\"><Streamable>Yes</Streamable><Address>0</Address><Length>200000</Length>"
                 "<AccessMode>RW</AccessMode><pPort>Device</pPort></StringReg>");
    producer->Edit([&](scripted::Tree& edited) { RemotePort(edited).registers[0] = std::string(200'000, 't'); });
    EXPECT_EQ(Store(map, "/dev/full"), KORO_RETURN_CODE_IO_ERROR);
}

TEST_F(Settings, FileThatHasRoomForSomeOfTheFeaturesIsLeftEmpty)
{
    std::string names;
    std::string features;
    for (int number = 0; number < 200; ++number)
    {
        const std::string name = "Text" + std::to_string(number);
        names += "<pFeature>" + name + "</pFeature>";
        features += "<String Name=\"" + name + "\"><Streamable>Yes</Streamable><Value>" + std::string(200, 't') +
                    "</Value></String>";
    }
    const auto map = Describe("<Category Name=\"Root\">" + names + "</Category>" + features);
    // As on a disk that gets full: what lies beyond is refused.
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit room{20'000, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &room), 0);
    const Error outcome = Outcome(Store(map, path));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_IO_ERROR);
    EXPECT_THAT(outcome.text, HasSubstr("File too large"));
    EXPECT_EQ(ContentOf(path), "");
    EXPECT_EQ(Outcome(Store(map, path)), Error{});
}

TEST_F(Settings, CarriageReturnsOfAFileAreNoDifference)
{
    const auto map = UsedCamera();
    EXPECT_EQ(Outcome(LoadText(map, head + "Width\t1\r\n# comment\r\nHeight\t2\r\n")), Error{});
    EXPECT_EQ(Register(0), 1u);
    EXPECT_EQ(Register(4), 2u);
}

TEST_F(Settings, FileOfOtherSoftwareLoads)
{
    const auto map = UsedCamera();
    EXPECT_EQ(
        Outcome(LoadText(
            map, "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\r\n# GenApi persistence file (version 2.4.0)\r\n"
                 "# Device = Other::Camera\r\n#\r\n# ----\r\nWidth \t1\r\n# in between\r\n"
                 "Gain\t{Channel=Blue}\t7\r\nChannel\tRed")),
        Error{});
    EXPECT_EQ(Register(0), 1u);
    EXPECT_EQ(Register(4), 480u);
    EXPECT_EQ(Register(8), 0u);
    EXPECT_EQ(Register(16), 1u);
    EXPECT_EQ(Register(20), 7u);
}

TEST_F(Settings, DeviceThatIsLostMeanwhileLeavesTheRestOfBothSides)
{
    const auto map = UsedCamera();
    Require(Store(map, path));
    producer->OnEntry("GCWritePort", [this] {
        producer->Answer("GCReadPort", GenTL::GC_ERR_IO);
        producer->Answer("GCWritePort", GenTL::GC_ERR_IO);
    });
    EXPECT_EQ(Load(map, path), KORO_RETURN_CODE_IO_ERROR);
    EXPECT_FALSE(IsLocked(map));
    const std::string other = folder.File("other.txt");
    EXPECT_EQ(Store(map, other), KORO_RETURN_CODE_IO_ERROR);
    EXPECT_EQ(ContentOf(other), "");
    EXPECT_EQ(ContentOf(path), cameraFile);
    EXPECT_FALSE(IsLocked(map));
}

TEST_F(Settings, FilesThatAreNoneAreRefusedByWordsAndNothingIsWritten)
{
    const auto map = UsedCamera();
    const std::string magicMissing =
        "The stream is not a GenApi feature stream since it is missing the magic GUID in the first line";
    ExpectRefused(LoadText(map, ""), magicMissing);
    ExpectRefused(LoadText(map, "Width\t1\n"), magicMissing);
    ExpectRefused(
        LoadText(map, "# {4709CB3C-7322-4460-84C3-DA11DDA09939}\nWidth\t1\n"),
        "The stream has been created using the CFeatureBagger class thus must be restored using the CFeatureBagger "
        "class as well");
    ExpectRefused(LoadText(map, head + "Width\t1\nHeight"), "The stream holds excess data");
    ExpectRefused(LoadText(map, head + "Width\t1\nHeight\t\n"), "The stream holds incomplete key - value - set");
    ExpectRefused(LoadText(map, head + std::string(300 << 20, ' ')), "The stream holds more than 268435456 bytes");
    EXPECT_EQ(Register(0), 640u);
}

TEST_F(Settings, FileThatNeverEndsIsRefused)
{
    if (!std::filesystem::exists("/dev/zero")) GTEST_SKIP() << "there is no /dev/zero";
    ExpectRefused(Load(UsedCamera(), "/dev/zero"), "The stream holds more than 268435456 bytes");
}

TEST_F(Settings, LineOf64MegabytesIsTriedAndItsRefusalQuotesLittleOfIt)
{
    const auto map = UsedCamera();
    EXPECT_EQ(LoadText(map, head + "Width\t" + std::string(64 << 20, '7') + "\n"), KORO_RETURN_CODE_ERROR);
    EXPECT_LT(LastError().text.size(), 10'000u);
    EXPECT_EQ(LoadText(map, head + std::string(64 << 20, 'n') + "\t1\n"), KORO_RETURN_CODE_ERROR);
    EXPECT_LT(LastError().text.size(), 10'000u);
}

TEST_F(Settings, NothingBehindAZeroByteIsSeen)
{
    using namespace std::string_literals;
    const auto map = UsedCamera();
    EXPECT_EQ(Outcome(LoadText(map, head + "Width\t1\n\0Height\t2\n"s)), Error{});
    EXPECT_EQ(Register(0), 1u);
    EXPECT_EQ(Register(4), 480u);
}

TEST_F(Settings, FileWithoutRecordsLoads)
{
    EXPECT_EQ(Outcome(LoadText(UsedCamera(), head)), Error{});
}

TEST_F(Settings, UnknownFeatureIsAnErrorAndAllOthersAreWritten)
{
    const auto map = UsedCamera();
    EXPECT_EQ(
        Outcome(LoadText(map, head + "Depth\t1\nWidth\t2\nFar\t3\n")),
        (Error{KORO_RETURN_CODE_ERROR, "Error while writing node: 'Depth' not found"}))
        << "the first of several errors is told";
    EXPECT_EQ(Register(0), 2u);
}

TEST_F(Settings, ValueThatIsNoneOrCannotBeWrittenIsAnError)
{
    const auto map = Describe(
        "<Category Name=\"Root\"><pFeature>Width</pFeature></Category>" + Streamable("Width", 0) +
        "<Integer Name=\"Constant\"><ImposedAccessMode>RO</ImposedAccessMode><Value>1</Value></Integer>");
    EXPECT_EQ(LoadText(map, head + "Width\tx\n"), KORO_RETURN_CODE_ERROR);
    EXPECT_THAT(LastError().text, StartsWith("Error while writing node 'Width': "));
    EXPECT_EQ(LoadText(map, head + "Constant\t2\n"), KORO_RETURN_CODE_ERROR);
    EXPECT_THAT(LastError().text, StartsWith("Error while writing node 'Constant': "));
}

TEST_F(Settings, ValueOutOfRangeIsWrittenAndThenFailsToBeVerified)
{
    const auto map = Describe(
        "<Category Name=\"Root\"><pFeature>Width</pFeature></Category>"
        "<Integer Name=\"Width\"><Streamable>Yes</Streamable><pValue>WidthRegister</pValue><Max>100</Max></Integer>" +
        IntRegister("WidthRegister", 0));
    EXPECT_EQ(LoadText(map, head + "Width\t101\n"), KORO_RETURN_CODE_ERROR);
    EXPECT_THAT(LastError().text, StartsWith("Error while verifying the value of node 'Width': "));
    EXPECT_EQ(Register(0), 101u) << "nothing is set back";
}

TEST_F(Settings, SelectorThatDoesNotExistIsPassedOver)
{
    const auto map = UsedCamera();
    EXPECT_EQ(Outcome(LoadText(map, head + "Width\t{Nowhere=1}\t5\n")), Error{});
    EXPECT_EQ(Register(0), 5u);
}

TEST_F(Settings, SelectorWithAnUnknownEntryDropsItsRecord)
{
    const auto map = UsedCamera();
    EXPECT_EQ(LoadText(map, head + "Gain\t{Channel=Green}\t9\nWidth\t5\n"), KORO_RETURN_CODE_ERROR);
    EXPECT_THAT(LastError().text, StartsWith("Error while writing selector 'Channel': "));
    EXPECT_EQ(Register(16), 1u);
    EXPECT_EQ(Register(20), 2u);
    EXPECT_EQ(Register(0), 5u);
}

TEST_F(Settings, LoadThatFailsHalfWayKeepsWhatIsWrittenAndReleasesTheLock)
{
    const auto map = UsedCamera();
    producer->AnswerAtCall("GCWritePort", 2, GenTL::GC_ERR_IO);
    EXPECT_EQ(LoadText(map, head + "Width\t1\nHeight\t2\n"), KORO_RETURN_CODE_IO_ERROR);
    EXPECT_THAT(LastError().text, HasSubstr("GC_ERR_IO")) << "the producer's own failure";
    EXPECT_EQ(Register(0), 1u);
    EXPECT_EQ(Register(4), 480u);
    EXPECT_FALSE(IsLocked(map));

    EXPECT_EQ(LoadText(map, head + "Nowhere\t1\n"), KORO_RETURN_CODE_ERROR);
    EXPECT_FALSE(IsLocked(map));
}

TEST_F(Settings, LockIsHeldWhileTheDeviceIsWritten)
{
    const auto map = UsedCamera();
    int writes = 0;
    bool locked = true;
    producer->OnEntry("GCWritePort", [&] {
        ++writes;
        locked = locked && IsLocked(map);
    });
    EXPECT_EQ(Outcome(LoadText(map, head + "Width\t1\nHeight\t2\n")), Error{});
    producer->OnEntry("GCWritePort", {});
    EXPECT_EQ(writes, 2);
    EXPECT_TRUE(locked);
    EXPECT_FALSE(IsLocked(map));
}

TEST_F(Settings, FileIsReadBeforeTheLockIsTaken)
{
    const auto map = UsedCamera();
    Require(Store(map, path));
    Require(KORO_NodeMap_Lock(map));
    // A wait for the lock would not end.
    const auto [unreadable, missing] = InThread([&] {
        return std::pair(Outcome(LoadText(map, "no features")).code, Outcome(Load(map, folder.File("none.txt"))).code);
    });
    EXPECT_EQ(unreadable, KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(missing, KORO_RETURN_CODE_INVALID_ARGUMENT);
    Require(KORO_NodeMap_Unlock(map));
}

TEST_F(Settings, FileIsOpenedForStoringBeforeAnyLockIsTaken)
{
    const auto map = UsedCamera();
    ASSERT_GT(Get<std::size_t>(KORO_NodeMap_GetNumNodes, map), 0u);
    Require(KORO_NodeMap_Lock(map));
    const auto outcome = InThread([&] { return Outcome(Store(map, folder.File("nowhere/settings.txt"))); });
    EXPECT_EQ(outcome, InvalidPath(folder.File("nowhere/settings.txt")));
    Require(KORO_NodeMap_Unlock(map));
}

TEST_F(Settings, HolderOfTheLockMayStoreAndLoad)
{
    const auto map = UsedCamera();
    Require(KORO_NodeMap_Lock(map));
    EXPECT_EQ(Outcome(Store(map, path)), Error{});
    EXPECT_EQ(Outcome(Load(map, path)), Error{});
    Require(KORO_NodeMap_Unlock(map));
    EXPECT_FALSE(IsLocked(map));
}

TEST_F(Settings, EmptyTextIsStoredAndItsFileIsRefused)
{
    const auto map =
        Describe("<Category Name=\"Root\"><pFeature>Text</pFeature></Category>"
                 "<StringReg Name=\"Text\"><Streamable>Yes</Streamable><Address>0</Address><Length>8</Length>"
                 "<AccessMode>RW</AccessMode><pPort>Device</pPort></StringReg>");
    producer->Edit([&](scripted::Tree& edited) { RemotePort(edited).registers[0].assign(8, '\0'); });
    EXPECT_EQ(Outcome(Store(map, path)), Error{});
    EXPECT_EQ(ContentOf(path), wholeHead + "Text\t\n");
    ExpectRefused(Load(map, path), "The stream holds incomplete key - value - set");
}

TEST_F(Settings, InfoOfSeveralLinesStaysAComment)
{
    std::string description = DescriptionOf(camera);
    const std::string tip = "ToolTip=\"\"";
    description.replace(
        description.find(tip), tip.size(), "ToolTip=\"one&#10;Width\t7&#10;" + std::string(2000, 'x') + "\"");
    DescribeBy(description);
    const auto map = NodeMapOf(tree.remoteDevice);
    SetRegister(0, 640);
    Require(Store(map, path));
    EXPECT_EQ(Outcome(Load(map, path)), Error{});
    EXPECT_EQ(Register(0), 640u);
}

} // namespace koro::test
