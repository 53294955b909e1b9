#include "tests/boundary/file_camera.h"
#include "tests/support/in_thread.h"

#include <array>
#include <gmock/gmock.h>
#include <limits>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using testing::HasSubstr;

constexpr std::uint64_t beyondAll = std::numeric_limits<std::uint64_t>::max();

class FileAdapter : public FileCamera
{
protected:
    // What a read gave: its outcome, and the bytes that it claims.
    struct Reading
    {
        Error outcome;
        std::string bytes;

        friend bool operator==(const Reading&, const Reading&) = default;
        friend std::ostream& operator<<(std::ostream& stream, const Reading& reading)
        {
            return stream << reading.outcome << " and \"" << reading.bytes << "\"";
        }
    };

    static Reading Read(KORO_FileAdapterHandle adapter, std::uint64_t size, std::uint64_t offset = 0)
    {
        std::array<std::uint8_t, 256> data{};
        std::uint64_t count = 99;
        Reading reading{Outcome(KORO_FileAdapter_Read(adapter, size, offset, data.data(), &count)), {}};
        if (count <= data.size()) reading.bytes.assign(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(count));
        return reading;
    }
    static KORO_ReturnCode Write(KORO_FileAdapterHandle adapter, const std::string& bytes, std::uint64_t offset = 0)
    {
        return KORO_FileAdapter_Write(
            adapter, reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(), offset);
    }

    void ExpectLockFree() const
    {
        EXPECT_TRUE(InThread([this] {
            const bool taken = Get<KORO_Bool8>(KORO_NodeMap_TryLock, map) == 1;
            if (taken) Require(KORO_NodeMap_Unlock(map));
            return taken;
        }));
    }
    void ExpectClosedAndFree() const
    {
        EXPECT_FALSE(files->IsOpen());
        ExpectLockFree();
    }

    static Error BadAccess(const std::string& text) { return {KORO_RETURN_CODE_BAD_ACCESS, text}; }

    const Error notAvailable{
        KORO_RETURN_CODE_NOT_AVAILABLE, "'FileSelector' node or it's entry with the given fileName is not available!"};
    const Error beyondSize{KORO_RETURN_CODE_OUT_OF_RANGE, "size + offset exceeds the specified file's size!"};
    const Error beyondMaxSize{KORO_RETURN_CODE_OUT_OF_RANGE, "data size + offset exceeds the specified file's size!"};
    const Error unknown{KORO_RETURN_CODE_ERROR, "An unknown error occurred reading the specified file!"};
};

} // namespace

TEST_F(FileAdapter, FileNameThatIsNoEntryIsNotAvailableAndWritesNoHandle)
{
    OpenFiles();
    auto* handle = reinterpret_cast<KORO_FileAdapterHandle>(&files);
    const auto before = handle;
    EXPECT_EQ(Outcome(KORO_FileAdapter_Construct(map, "Other", 6, &handle)), notAvailable);
    EXPECT_EQ(Outcome(KORO_FileAdapter_Construct(map, "user", 5, &handle)), notAvailable);
    EXPECT_EQ(Outcome(KORO_FileAdapter_Construct(map, "User", 0, &handle)), notAvailable) << "no text";
    EXPECT_EQ(Outcome(KORO_FileAdapter_Construct(map, "User\0", 6, &handle)), notAvailable) << "a zero too many";
    EXPECT_EQ(handle, before);
    EXPECT_EQ(files->diary, "");
}

TEST_F(FileAdapter, MapWithoutTheSelectorHasNoFiles)
{
    KORO_FileAdapterHandle handle = nullptr;
    auto nodes = FileNodes();
    nodes.erase("FileSelector");
    EXPECT_EQ(Outcome(KORO_FileAdapter_Construct(OpenFiles(nodes), "User", 5, &handle)), notAvailable);
    nodes["FileSelector"] = "<Integer Name=\"FileSelector\"><Value>0</Value></Integer>";
    EXPECT_EQ(Outcome(KORO_FileAdapter_Construct(OpenFiles(nodes), "User", 5, &handle)), notAvailable);
    EXPECT_EQ(handle, nullptr);
}

TEST_F(FileAdapter, PointersAreTestedBeforeHandlesInWordsOfTheirOwn)
{
    const auto invalid = [](const std::string& text) { return Error{KORO_RETURN_CODE_INVALID_ARGUMENT, text}; };
    KORO_FileAdapterHandle handle = nullptr;
    EXPECT_EQ(
        Outcome(KORO_FileAdapter_Construct(nullptr, nullptr, 0, nullptr)),
        invalid("nodeMapHandle is not a valid pointer!"));
    auto* const nothing = reinterpret_cast<KORO_NodeMapHandle>(&handle);
    EXPECT_EQ(
        Outcome(KORO_FileAdapter_Construct(nothing, nullptr, 0, nullptr)),
        invalid("fileAdapterHandle is not a valid pointer!"));
    EXPECT_EQ(
        Outcome(KORO_FileAdapter_Construct(nothing, nullptr, 0, &handle)), invalid("fileName is not a valid pointer!"));
    EXPECT_EQ(Outcome(KORO_FileAdapter_GetSize(nullptr, nullptr)), invalid("size is invalid!"));
    EXPECT_EQ(Outcome(KORO_FileAdapter_GetMaxSize(nullptr, nullptr)), invalid("maxSize is invalid!"));
    std::uint64_t size = 0;
    std::uint8_t byte = 0;
    EXPECT_EQ(Outcome(KORO_FileAdapter_Read(nullptr, 1, 0, nullptr, nullptr)), invalid("data is invalid!"));
    EXPECT_EQ(Outcome(KORO_FileAdapter_Read(nullptr, 1, 0, nullptr, &size)), invalid("data is invalid!"));
    EXPECT_EQ(Outcome(KORO_FileAdapter_Read(nullptr, 1, 0, &byte, nullptr)), invalid("dataSize is invalid!"));
    EXPECT_EQ(Outcome(KORO_FileAdapter_Write(nullptr, nullptr, 1, 0)), invalid("data is invalid!"));
}

TEST_F(FileAdapter, UnknownHandlesAreToldInWordsOfTheirOwn)
{
    OpenFiles();
    KORO_FileAdapterHandle handle = nullptr;
    auto* const nothing = reinterpret_cast<KORO_NodeMapHandle>(&handle);
    EXPECT_EQ(
        Outcome(KORO_FileAdapter_Construct(nothing, "User", 5, &handle)),
        (Error{KORO_RETURN_CODE_INVALID_HANDLE, "nodeMapHandle is not a valid handle!"}));

    // Null, an address of no object, and a handle of another kind.
    std::uint64_t size = 0;
    std::uint8_t byte = 0;
    for (auto* const wrong :
         {KORO_FileAdapterHandle{}, reinterpret_cast<KORO_FileAdapterHandle>(&size),
          reinterpret_cast<KORO_FileAdapterHandle>(map)})
    {
        const Error invalid = InvalidHandle("fileAdapter");
        EXPECT_EQ(Outcome(KORO_FileAdapter_Destruct(wrong)), invalid);
        EXPECT_EQ(Outcome(KORO_FileAdapter_GetSize(wrong, &size)), invalid);
        EXPECT_EQ(Outcome(KORO_FileAdapter_GetMaxSize(wrong, &size)), invalid);
        EXPECT_EQ(Outcome(KORO_FileAdapter_Read(wrong, 1, 0, &byte, &size)), invalid);
        EXPECT_EQ(Outcome(KORO_FileAdapter_Write(wrong, &byte, 1, 0)), invalid);
        EXPECT_EQ(Outcome(KORO_FileAdapter_Delete(wrong)), invalid);
    }
}

TEST_F(FileAdapter, EachConstructionGivesAHandleOfItsOwnThatEndsByItsDestruction)
{
    OpenFiles();
    const auto one = Adapter();
    const auto other = Adapter();
    EXPECT_NE(one, other);
    EXPECT_EQ(Outcome(KORO_FileAdapter_Destruct(one)), Error{});
    EXPECT_EQ(Outcome(KORO_FileAdapter_Destruct(one)), InvalidHandle("fileAdapter"));
    EXPECT_EQ(Read(other, 4), (Reading{{}, "0123"}));
    EXPECT_EQ(files->diary.find("Open"), files->diary.rfind("Open")) << "opened by the read alone";
}

TEST_F(FileAdapter, SizesAreThoseOfTheSelectedFile)
{
    OpenFiles();
    EXPECT_EQ(Get<std::uint64_t>(KORO_FileAdapter_GetSize, Adapter("Table")), 20u);
    EXPECT_EQ(files->diary, "file 1");
    files->diary.clear();
    EXPECT_EQ(Get<std::uint64_t>(KORO_FileAdapter_GetMaxSize, Adapter("User")), 64u);
    EXPECT_EQ(files->diary, "file 0");
    SetDevice(DeviceFiles::Size, 0);
    SetDevice(DeviceFiles::MaxSize, std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(Get<std::uint64_t>(KORO_FileAdapter_GetSize, Adapter()), 0u);
    EXPECT_EQ(Get<std::uint64_t>(KORO_FileAdapter_GetMaxSize, Adapter()), std::uint64_t{INT64_MAX});
    ExpectLockFree();
}

TEST_F(FileAdapter, SizesMayComeOutOfACache)
{
    auto nodes = FileNodes();
    std::string& text = nodes["FileSize"];
    for (auto place = text.find("NoCache"); place != std::string::npos; place = text.find("NoCache"))
        text.replace(place, 7, "WriteThrough");
    OpenFiles(nodes);
    EXPECT_EQ(Get<std::uint64_t>(KORO_FileAdapter_GetSize, Adapter()), 20u);
    SetDevice(DeviceFiles::Size, 7);
    EXPECT_EQ(Get<std::uint64_t>(KORO_FileAdapter_GetSize, Adapter()), 20u);
}

TEST_F(FileAdapter, NegativeSizeIsAnError)
{
    OpenFiles();
    SetDevice(DeviceFiles::Size, -1);
    std::uint64_t size = 99;
    EXPECT_EQ(
        Outcome(KORO_FileAdapter_GetSize(Adapter(), &size)),
        (Error{KORO_RETURN_CODE_ERROR, "FileSize tells a negative size (-1)!"}));
    EXPECT_EQ(size, 99u);
    ExpectLockFree();
}

TEST_F(FileAdapter, SizeThatIsMissingOrNotReadableIsToldByWords)
{
    std::uint64_t size = 0;
    OpenFilesWithout("FileSize");
    for (const auto getSize : {KORO_FileAdapter_GetSize, KORO_FileAdapter_GetMaxSize})
        EXPECT_EQ(Outcome(getSize(Adapter(), &size)), BadAccess("Missing FileSize node!"));
    for (const auto mode : {"WO", "NA", "NI"})
    {
        OpenFilesWith("FileSize", mode);
        for (const auto getSize : {KORO_FileAdapter_GetSize, KORO_FileAdapter_GetMaxSize})
            EXPECT_EQ(Outcome(getSize(Adapter(), &size)), BadAccess("FileSize node was not readable!")) << mode;
    }
    ExpectLockFree();
}

TEST_F(FileAdapter, EntryThatIsNotAvailablePassesConstructionAndFailsLater)
{
    OpenFiles();
    const Error missing = BadAccess("File selector entry not available!");
    for (const auto file : {"Locked", "Absent"})
    {
        const auto adapter = Adapter(file);
        std::uint64_t size = 0;
        EXPECT_EQ(Outcome(KORO_FileAdapter_GetSize(adapter, &size)), missing) << file;
        EXPECT_EQ(Outcome(KORO_FileAdapter_GetMaxSize(adapter, &size)), missing) << file;
        EXPECT_EQ(Read(adapter, 4).outcome, missing) << file;
        EXPECT_EQ(Outcome(Write(adapter, "data")), missing) << file;
        EXPECT_EQ(Outcome(KORO_FileAdapter_Delete(adapter)), Error{}) << "which does not select it by these rules";
    }
    EXPECT_EQ(files->diary.find("Open"), std::string::npos);
    ExpectLockFree();

    SetDevice(DeviceFiles::LockedStatus, 1);
    EXPECT_EQ(Read(Adapter("Locked"), 4), (Reading{{}, "0123"}));
}

TEST_F(FileAdapter, ReadingSelectsOpensPreparesTheLengthReadsBlocksAndCloses)
{
    OpenFiles();
    EXPECT_EQ(Read(Adapter(), 12, 3), (Reading{{}, "3456789abcde"}));
    EXPECT_EQ(
        files->diary, "file 0, file 0, mode 0, Open, length 1, file 0, offset 3, length 8, Read, offset 11, length 4, "
                      "Read, file 0, Close");
    ExpectClosedAndFree();
}

TEST_F(FileAdapter, WritingSelectsOpensPreparesTheLengthWritesBlocksAndCloses)
{
    OpenFiles();
    EXPECT_EQ(Outcome(Write(Adapter(), "ABCDEFGHIJ", 2)), Error{});
    EXPECT_EQ(files->content, "01ABCDEFGHIJcdefghij");
    EXPECT_EQ(
        files->diary, "file 0, file 0, mode 1, Open, length 1, file 0, offset 2, length 8, Write, offset 10, length 2, "
                      "Write, file 0, Close");
    ExpectClosedAndFree();
}

TEST_F(FileAdapter, LengthIsPreparedOnlyWhereItsMaximumIsAboveZero)
{
    OpenFiles();
    SetDevice(DeviceFiles::MaxLength, 0);
    EXPECT_EQ(Read(Adapter(), 4), (Reading{unknown, ""})) << "nor can a block be told its length";
    EXPECT_EQ(files->diary.find("length"), std::string::npos);
    ExpectClosedAndFree();
}

TEST_F(FileAdapter, ReadingNothingSucceeds)
{
    OpenFiles();
    EXPECT_EQ(Read(Adapter(), 0), (Reading{{}, ""}));
    EXPECT_EQ(Read(Adapter(), 0, 1000), (Reading{{}, ""}));
    files->content.clear();
    EXPECT_EQ(Read(Adapter(), 0), (Reading{{}, ""}));
    ExpectClosedAndFree();
}

TEST_F(FileAdapter, WritingNothingSucceeds)
{
    OpenFiles();
    EXPECT_EQ(Outcome(Write(Adapter(), "")), Error{});
    EXPECT_EQ(files->content, "0123456789abcdefghij");
    ExpectClosedAndFree();
}

TEST_F(FileAdapter, ReadingOverTheEndGivesWhatIsThereAndIsOutOfRange)
{
    OpenFiles();
    EXPECT_EQ(Read(Adapter(), 30), (Reading{beyondSize, "0123456789abcdefghij"}));
    EXPECT_EQ(Read(Adapter(), 10, 15), (Reading{beyondSize, "fghij"}));
    EXPECT_EQ(Read(Adapter(), 1, 20), (Reading{beyondSize, ""}));
    EXPECT_EQ(Read(Adapter(), 20), (Reading{{}, "0123456789abcdefghij"}));
    ExpectClosedAndFree();
}

TEST_F(FileAdapter, SizesAndOffsetsBeyondAnyFileAreOutOfRange)
{
    OpenFiles();
    const std::string all = files->content;
    for (const std::uint64_t huge : {beyondAll, beyondAll - 1, std::uint64_t{INT64_MAX} + 1, std::uint64_t{INT64_MAX}})
    {
        EXPECT_EQ(Read(Adapter(), huge), (Reading{beyondSize, all}));
        EXPECT_EQ(Read(Adapter(), huge, 18), (Reading{beyondSize, "ij"})) << "the sum may not fit";
        EXPECT_EQ(Read(Adapter(), 1, huge), (Reading{beyondSize, ""}));
        EXPECT_EQ(Read(Adapter(), huge, huge), (Reading{beyondSize, ""}));
        EXPECT_EQ(Read(Adapter(), 0, huge), (Reading{{}, ""}));
    }
    ExpectClosedAndFree();
}

TEST_F(FileAdapter, ReadingDoesNotCheckTheOffset)
{
    OpenFiles();
    SetDevice(DeviceFiles::MaxOffset, 4);
    EXPECT_EQ(Read(Adapter(), 4, 5), (Reading{unknown, ""})) << "the device's limit ends the transfer";
    OpenFilesWithout("FileAccessOffset");
    EXPECT_EQ(Read(Adapter(), 4).outcome, unknown) << "without the node nothing opens";
}

TEST_F(FileAdapter, DeviceThatGivesLessThanItHasIsAnUnknownError)
{
    OpenFiles();
    files->failingBlock = 1;
    EXPECT_EQ(Read(Adapter(), 20), (Reading{unknown, "01234567"}));
    ExpectClosedAndFree();
    files->failingBlock = 0;
    EXPECT_EQ(Read(Adapter(), 20), (Reading{unknown, ""}));
    ExpectClosedAndFree();
}

TEST_F(FileAdapter, ShortBlocksAreReadOn)
{
    OpenFiles();
    files->mostBytes = 3;
    EXPECT_EQ(Read(Adapter(), 20), (Reading{{}, "0123456789abcdefghij"}));
    EXPECT_EQ(Outcome(Write(Adapter(), "ABCDEFGHIJKLMN")), Error{});
    EXPECT_EQ(files->content, "ABCDEFGHIJKLMNefghij");
}

TEST_F(FileAdapter, ResultBeyondTheBlockIsNotBelieved)
{
    OpenFiles();
    files->lie = 1;
    EXPECT_EQ(Read(Adapter(), 20), (Reading{unknown, ""}));
    files->lie = -100;
    EXPECT_EQ(Read(Adapter(), 20), (Reading{unknown, ""}));
    files->lie = INT64_MAX - 100;
    EXPECT_EQ(Read(Adapter(), 20), (Reading{unknown, ""}));
    ExpectClosedAndFree();
}

TEST_F(FileAdapter, FileThatCannotBeOpenedShowsInTheCountAlone)
{
    OpenFiles();
    files->refusesOpening = true;
    EXPECT_EQ(Read(Adapter(), 4), (Reading{unknown, ""}));
    EXPECT_EQ(Read(Adapter(), 21), (Reading{beyondSize, ""}));
    EXPECT_EQ(Read(Adapter(), 0), (Reading{{}, ""}));
    EXPECT_EQ(files->diary.find("Read"), std::string::npos);
    EXPECT_NE(files->diary.find("Close"), std::string::npos) << "closed on every way out";
    EXPECT_EQ(Write(Adapter(), "data"), KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(Outcome(Write(Adapter(), std::string(65, 'x'))), beyondMaxSize);
    EXPECT_EQ(files->diary.find("Write"), std::string::npos);
    ExpectClosedAndFree();
}

TEST_F(FileAdapter, ShortReadWithoutSizeIsToldByTheMissingNode)
{
    OpenFilesWithout("FileSize");
    EXPECT_EQ(Read(Adapter(), 20), (Reading{{}, "0123456789abcdefghij"}));
    EXPECT_EQ(Read(Adapter(), 21), (Reading{BadAccess("Missing FileSize node!"), "0123456789abcdefghij"}));
}

TEST_F(FileAdapter, LengthThatIsMissingOrNotWritableIsToldAndTheFileIsClosed)
{
    auto nodes = FileNodes();
    nodes["FileAccessLength"] = "<Float Name=\"FileAccessLength\"><Value>1</Value></Float>";
    OpenFiles(nodes);
    // Without that node nothing is opened, and only the count shows it.
    EXPECT_EQ(Read(Adapter(), 4).outcome, unknown);

    for (const auto mode : {"RO", "NA", "NI"})
    {
        OpenFilesWith("FileAccessLength", mode);
        const Error refused = BadAccess("FileAccessLength node was not writable!");
        EXPECT_EQ(Read(Adapter(), 4).outcome, refused) << mode;
        EXPECT_EQ(Outcome(Write(Adapter(), "data")), refused) << mode;
        EXPECT_NE(files->diary.find("Close"), std::string::npos);
        ExpectClosedAndFree();
    }
}

TEST_F(FileAdapter, FailureInPreparingTheLengthIsToldAndTheFileIsClosed)
{
    OpenFiles();
    files->failingAddress = DeviceFiles::Length;
    EXPECT_EQ(Read(Adapter(), 4).outcome.code, KORO_RETURN_CODE_IO_ERROR);
    EXPECT_THAT(LastError().text, HasSubstr("GC_ERR_IO"));
    EXPECT_NE(files->diary.find("Close"), std::string::npos);
    ExpectClosedAndFree();
    EXPECT_EQ(Write(Adapter(), "data"), KORO_RETURN_CODE_IO_ERROR);
    EXPECT_EQ(files->content, "0123456789abcdefghij");
    ExpectClosedAndFree();
}

TEST_F(FileAdapter, FailureInSelectingIsToldAndNothingIsOpened)
{
    OpenFiles();
    files->failingAddress = DeviceFiles::File;
    std::uint64_t size = 0;
    EXPECT_EQ(KORO_FileAdapter_GetSize(Adapter(), &size), KORO_RETURN_CODE_IO_ERROR);
    EXPECT_EQ(Read(Adapter(), 4).outcome.code, KORO_RETURN_CODE_IO_ERROR);
    EXPECT_EQ(Write(Adapter(), "data"), KORO_RETURN_CODE_IO_ERROR);
    EXPECT_EQ(Outcome(KORO_FileAdapter_Delete(Adapter())), Error{});
    EXPECT_EQ(files->diary, "");
    ExpectLockFree();
}

TEST_F(FileAdapter, RefusalsOfTheNodesAreTranslated)
{
    auto nodes = FileNodes();
    const std::string selector = "<Enumeration Name=\"FileSelector\">";
    nodes["FileSelector"].insert(selector.size(), "<ImposedAccessMode>RO</ImposedAccessMode>");
    OpenFiles(nodes);
    EXPECT_EQ(Read(Adapter(), 4).outcome.code, KORO_RETURN_CODE_BAD_ACCESS);
    EXPECT_THAT(LastError().text, HasSubstr("AccessException thrown in node 'FileSelector'"));
    EXPECT_EQ(Write(Adapter(), "data"), KORO_RETURN_CODE_BAD_ACCESS);
    EXPECT_EQ(files->diary, "");

    nodes = FileNodes();
    std::string& length = nodes["FileAccessLength"];
    length.replace(length.find("<Min>0"), 6, "<Min>2");
    OpenFiles(nodes);
    EXPECT_EQ(Read(Adapter(), 4).outcome.code, KORO_RETURN_CODE_OUT_OF_RANGE);
    EXPECT_THAT(LastError().text, HasSubstr("OutOfRangeException thrown in node 'FileAccessLength'"));
    ExpectClosedAndFree();
    EXPECT_EQ(Write(Adapter(), "data"), KORO_RETURN_CODE_OUT_OF_RANGE);
    EXPECT_NE(files->diary.find("Close"), std::string::npos);
    EXPECT_EQ(files->content, "0123456789abcdefghij");
    ExpectClosedAndFree();
}

TEST_F(FileAdapter, FailureInSelectingForTheOpeningIsToldAndNothingIsOpened)
{
    OpenFiles();
    const auto adapter = Adapter();
    producer->AnswerAtCall("GCWritePort", 2, GenTL::GC_ERR_IO);
    EXPECT_EQ(Read(adapter, 4).outcome.code, KORO_RETURN_CODE_IO_ERROR);
    EXPECT_THAT(LastError().text, HasSubstr("GC_ERR_IO"));
    EXPECT_EQ(files->diary, "file 0");
    ExpectClosedAndFree();
    producer->AnswerAtCall("GCWritePort", 2, GenTL::GC_ERR_IO);
    EXPECT_EQ(Write(adapter, "data"), KORO_RETURN_CODE_IO_ERROR);
    EXPECT_EQ(files->diary, "file 0, file 0");
    ExpectClosedAndFree();
    EXPECT_EQ(Read(adapter, 4), (Reading{{}, "0123"}));
}

TEST_F(FileAdapter, DeviceThatIsLostDuringATransferIsToldBehindWhatArrived)
{
    OpenFiles();
    const auto adapter = Adapter();
    const auto loseBehind = [&](const std::string& operation) {
        producer->AnswerAsUsual("GCReadPort");
        producer->AnswerAsUsual("GCWritePort");
        files->diary.clear();
        producer->OnEntry("GCWritePort", [this, operation] {
            if (files->diary.find(operation) == std::string::npos) return;
            producer->Answer("GCReadPort", GenTL::GC_ERR_IO);
            producer->Answer("GCWritePort", GenTL::GC_ERR_IO);
        });
    };
    loseBehind("Read");
    const Reading read = Read(adapter, 20);
    EXPECT_EQ(read.outcome.code, KORO_RETURN_CODE_IO_ERROR);
    EXPECT_THAT(read.outcome.text, HasSubstr("GC_ERR_IO"));
    EXPECT_EQ(read.bytes, "01234567");
    ExpectLockFree();

    loseBehind("Write");
    EXPECT_EQ(Write(adapter, "ABCDEFGHIJ"), KORO_RETURN_CODE_IO_ERROR);
    EXPECT_EQ(files->content, "ABCDEFGH89abcdefghij");
    ExpectLockFree();
    std::uint64_t size = 99;
    EXPECT_EQ(KORO_FileAdapter_GetSize(adapter, &size), KORO_RETURN_CODE_IO_ERROR);
    EXPECT_EQ(KORO_FileAdapter_GetMaxSize(adapter, &size), KORO_RETURN_CODE_IO_ERROR);
    EXPECT_EQ(size, 99u);
    EXPECT_EQ(Outcome(KORO_FileAdapter_Delete(adapter)), Error{}) << "whose answer is not examined";
    EXPECT_EQ(Outcome(KORO_FileAdapter_Destruct(adapter)), Error{});
}

TEST_F(FileAdapter, FailedReadLeavesTheCountOfTheCallerAsItWas)
{
    OpenFilesWith("FileAccessLength", "RO");
    std::uint8_t byte = 0;
    std::uint64_t count = 99;
    EXPECT_EQ(KORO_FileAdapter_Read(Adapter(), 1, 0, &byte, &count), KORO_RETURN_CODE_BAD_ACCESS);
    EXPECT_EQ(count, 99u);
}

TEST_F(FileAdapter, OffsetAboveItsMaximumFailsBeforeAnyDataMoves)
{
    OpenFiles();
    const Error outside{KORO_RETURN_CODE_OUT_OF_RANGE, "FileAccessOffset out of range!"};
    for (const std::uint64_t offset : {std::uint64_t{64}, std::uint64_t{INT64_MAX} + 1, beyondAll})
    {
        EXPECT_EQ(Outcome(Write(Adapter(), "data", offset)), outside);
        EXPECT_EQ(Outcome(Write(Adapter(), "", offset)), outside);
    }
    EXPECT_EQ(files->diary.find("Write"), std::string::npos);
    ExpectClosedAndFree();
    EXPECT_EQ(Outcome(Write(Adapter(), "x", 63)), Error{}) << "the maximum itself is one";
    EXPECT_EQ(files->content.size(), 64u);
    SetDevice(DeviceFiles::MaxOffset, -1);
    EXPECT_EQ(Outcome(Write(Adapter(), "data")), outside);
}

TEST_F(FileAdapter, OffsetThatIsNotReadableIsToldAndTheFileIsClosed)
{
    for (const auto mode : {"WO", "NA", "NI"})
    {
        OpenFilesWith("FileAccessOffset", mode);
        EXPECT_EQ(Outcome(Write(Adapter(), "data")), BadAccess("FileAccessOffset node was not readable!")) << mode;
        ExpectClosedAndFree();
    }
}

TEST_F(FileAdapter, LengthIsPreparedBeforeTheOffsetIsChecked)
{
    auto nodes = FileNodes();
    for (const auto& [name, mode] : {std::pair("FileAccessLength", "RO"), std::pair("FileAccessOffset", "WO")})
    {
        const std::string begin = "<Integer Name=\"" + std::string(name) + "\">";
        nodes[name].insert(begin.size(), "<ImposedAccessMode>" + std::string(mode) + "</ImposedAccessMode>");
    }
    OpenFiles(nodes);
    EXPECT_EQ(Outcome(Write(Adapter(), "data")), BadAccess("FileAccessLength node was not writable!"));
    ExpectClosedAndFree();
}

TEST_F(FileAdapter, WritingBeyondTheMaximumIsOutOfRangeBehindWhatFits)
{
    OpenFiles();
    EXPECT_EQ(Outcome(Write(Adapter(), std::string(70, 'x'))), beyondMaxSize);
    EXPECT_EQ(files->content, std::string(64, 'x'));
    EXPECT_EQ(Outcome(Write(Adapter(), "abcdef", 60)), beyondMaxSize);
    EXPECT_EQ(files->content.substr(60), "abcd");
    ExpectClosedAndFree();
}

TEST_F(FileAdapter, WriteThatFailsWithinTheFileRecordsNoText)
{
    OpenFiles();
    files->failingBlock = 1;
    // The record of an earlier failure stays.
    std::uint64_t size = 0;
    EXPECT_EQ(Outcome(KORO_FileAdapter_GetSize(nullptr, &size)), InvalidHandle("fileAdapter"));
    EXPECT_EQ(Write(Adapter(), "ABCDEFGHIJ"), KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(LastError(), InvalidHandle("fileAdapter"));
    EXPECT_EQ(files->content, "ABCDEFGH89abcdefghij");
    ExpectClosedAndFree();
    // Nor beyond what the file has at the moment.
    EXPECT_EQ(Write(Adapter(), std::string(64, 'x')), KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(LastError(), InvalidHandle("fileAdapter"));
}

TEST_F(FileAdapter, DeletingAsksTheDeviceAndDoesNotExamineItsAnswer)
{
    OpenFiles();
    EXPECT_EQ(Outcome(KORO_FileAdapter_Delete(Adapter("Table"))), Error{});
    EXPECT_EQ(files->diary, "file 1, Delete");
    EXPECT_EQ(files->content, "");
    files->failingAddress = DeviceFiles::Execute;
    EXPECT_EQ(Outcome(KORO_FileAdapter_Delete(Adapter())), Error{});
    ExpectLockFree();
}

TEST_F(FileAdapter, AfterTheMapHasGoneAllOperationsFail)
{
    OpenFiles();
    const auto adapter = Adapter();
    Require(KORO_Device_Destruct(tree.device));
    std::uint64_t size = 0;
    EXPECT_EQ(Outcome(KORO_FileAdapter_GetSize(adapter, &size)), parentExpired);
    EXPECT_EQ(Outcome(KORO_FileAdapter_GetMaxSize(adapter, &size)), parentExpired);
    EXPECT_EQ(Read(adapter, 4).outcome, parentExpired);
    EXPECT_EQ(Outcome(Write(adapter, "data")), parentExpired);
    EXPECT_EQ(Outcome(KORO_FileAdapter_Delete(adapter)), parentExpired);
    EXPECT_EQ(Outcome(KORO_FileAdapter_Destruct(adapter)), Error{});
}

TEST_F(FileAdapter, LockIsHeldFromTheFirstNodeToTheLast)
{
    OpenFiles();
    const auto adapter = Adapter();
    std::size_t writes = 0;
    std::size_t lockedWrites = 0;
    producer->OnEntry("GCWritePort", [&] {
        ++writes;
        lockedWrites += InThread([&] {
            const bool taken = Get<KORO_Bool8>(KORO_NodeMap_TryLock, map) == 1;
            if (taken) Require(KORO_NodeMap_Unlock(map));
            return !taken;
        });
    });
    EXPECT_EQ(Read(adapter, 20).outcome, Error{});
    EXPECT_EQ(Outcome(Write(adapter, "data")), Error{});
    EXPECT_EQ(Outcome(KORO_FileAdapter_Delete(adapter)), Error{});
    producer->OnEntry("GCWritePort", {});
    EXPECT_GT(writes, 20u);
    EXPECT_EQ(lockedWrites, writes);
    ExpectLockFree();
}

TEST_F(FileAdapter, HolderOfTheLockMayUseFiles)
{
    OpenFiles();
    Require(KORO_NodeMap_Lock(map));
    EXPECT_EQ(Read(Adapter(), 4), (Reading{{}, "0123"}));
    EXPECT_EQ(Outcome(Write(Adapter(), "data")), Error{});
    Require(KORO_NodeMap_Unlock(map));
    ExpectLockFree();
}

TEST_F(FileAdapter, DescriptionThatIsBrokenIsToldByTheConstruction)
{
    DescribeBy("no description");
    KORO_FileAdapterHandle handle = nullptr;
    EXPECT_EQ(KORO_FileAdapter_Construct(NodeMapOf(tree.remoteDevice), "User", 5, &handle), KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(handle, nullptr);
}

TEST_F(FileAdapter, LibrarysCloseEndsAdapters)
{
    OpenFiles();
    const auto adapter = Adapter();
    Require(KORO_Library_Close());
    Require(KORO_Library_Initialize());
    EXPECT_EQ(Outcome(KORO_FileAdapter_Destruct(adapter)), InvalidHandle("fileAdapter"));
}

} // namespace koro::test
