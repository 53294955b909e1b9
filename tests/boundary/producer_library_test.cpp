#include "tests/boundary/outputs.h"
#include "tests/boundary/producer_errors.h"
#include "tests/support/boundary.h"
#include "tests/support/elf_file.h"
#include "tests/support/journal.h"
#include "tests/support/scripted_producer.h"
#include "tests/support/temporary_folder.h"

#include <elf.h>
#include <filesystem>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using testing::MatchesRegex;

Error Construct(const std::string& path, KORO_ProducerLibraryHandle* handle = nullptr)
{
    KORO_ProducerLibraryHandle ignored = nullptr;
    return Outcome(KORO_ProducerLibrary_Construct(path.c_str(), path.size() + 1, handle ? handle : &ignored));
}

KORO_ProducerLibraryHandle Constructed(const std::string& path)
{
    KORO_ProducerLibraryHandle handle = nullptr;
    Require(KORO_ProducerLibrary_Construct(path.c_str(), path.size() + 1, &handle));
    return handle;
}

void ExpectLoadFailure(const std::string& path)
{
    const auto outcome = Construct(path);
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_CTI_LOADING_ERROR);
    const std::string start = "Loading CTI " + path + " failed! Code: ";
    EXPECT_EQ(outcome.text.substr(0, start.size()), start);
    EXPECT_THAT(outcome.text.substr(start.size()), MatchesRegex("([0-9]+|<not available>)\\."));
}

class WorkingFolder
{
public:
    explicit WorkingFolder(const std::filesystem::path& path) { std::filesystem::current_path(path); }
    ~WorkingFolder() { std::filesystem::current_path(before); }

private:
    const std::filesystem::path before = std::filesystem::current_path();
};

class ProducerLibrary : public testing::Test
{
protected:
    ScriptedProducer producer;
    const KoroLibrary library;
};

} // namespace

TEST_F(ProducerLibrary, NullPointersAreReportedPathFirst)
{
    KORO_ProducerLibraryHandle handle = nullptr;
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Construct(nullptr, 1, nullptr)), NullPointer("ctiPath"));
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Construct(nullptr, 1, &handle)), NullPointer("ctiPath"));
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Construct("x", 2, nullptr)), NullPointer("producerLibraryHandle"));
}

TEST_F(ProducerLibrary, ProducerIsInitialisedFromTheConstructionOn)
{
    Constructed(producer.Path());

    EXPECT_EQ(
        producer->Journal(),
        (std::vector<std::string>{
            "GCInitLib()", "GCGetInfo(9, data)", "GCGetInfo(10, data)", "GCCloseLib()", "GCInitLib()"}));
    EXPECT_EQ(producer->InitCount(), 1);
}

TEST_F(ProducerLibrary, SizeWithoutTheTerminatorLosesTheLastCharacter)
{
    KORO_ProducerLibraryHandle handle = nullptr;
    const auto& path = producer.Path();
    const auto outcome = Outcome(KORO_ProducerLibrary_Construct(path.c_str(), path.size(), &handle));

    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_CTI_LOADING_ERROR);
    const std::string start = "Loading CTI " + path.substr(0, path.size() - 1) + " failed! Code: ";
    EXPECT_EQ(outcome.text.substr(0, start.size()), start);
    EXPECT_EQ(handle, nullptr);
}

TEST_F(ProducerLibrary, SizeOfZeroIsTakenAtItsWordAndFails)
{
    KORO_ProducerLibraryHandle handle = nullptr;
    const auto& path = producer.Path();

    EXPECT_EQ(KORO_ProducerLibrary_Construct(path.c_str(), 0, &handle), KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(handle, nullptr);
}

TEST_F(ProducerLibrary, PathEndsWhereItsSizeSays)
{
    const std::string longer = producer.Path() + "and more";
    KORO_ProducerLibraryHandle handle = nullptr;

    Require(KORO_ProducerLibrary_Construct(longer.c_str(), producer.Path().size() + 1, &handle));
    EXPECT_EQ(GetText(KORO_ProducerLibrary_GetKey, handle), producer.Path());
}

TEST_F(ProducerLibrary, MissingFileCannotBeLoadedAndTheTextHoldsANumber)
{
    ExpectLoadFailure(producer.Folder().File("nothing.cti"));
}

TEST_F(ProducerLibrary, FilesThatAreNoSharedObjectsCannotBeLoaded)
{
    const TemporaryFolder folder;
    ExpectLoadFailure(folder.MakeFolder("folder.cti"));
    ExpectLoadFailure(folder.MakeFile("empty.cti", ""));
    ExpectLoadFailure(folder.MakeFile("text.cti", "no shared object"));
    const auto otherMachine = folder.MakeCopy(BuiltProducer("scripted_1_5"), "other_machine.cti");
    SetMachine(otherMachine, EM_AARCH64);
    ExpectLoadFailure(otherMachine);
    ExpectLoadFailure(BuiltProducer("scripted_missing_symbol"));
}

TEST_F(ProducerLibrary, FileWithoutTheFunctionsFailsAtTheFirstThatIsNeeded)
{
    const auto path = BuiltProducer("scripted_not_gentl");
    EXPECT_EQ(
        Construct(path),
        (Error{KORO_RETURN_CODE_ERROR, "The instrumented TL (" + path + ") does not implement GCInitLib()!"}));
}

TEST_F(ProducerLibrary, BareFileNameIsTakenFromTheWorkingFolderAndStaysAsGiven)
{
    const WorkingFolder inside(producer.Folder().Path());
    const auto handle = Constructed("scripted_1_5.cti");

    EXPECT_EQ(GetText(KORO_ProducerLibrary_GetKey, handle), "scripted_1_5.cti");
    ExpectLoadFailure("nothing.cti");
}

TEST_F(ProducerLibrary, BrokenClaimIsCodeOne)
{
    const auto path = BuiltProducer("scripted_1_5_without_parts");
    const auto outcome = Construct(path);

    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
    const std::string start = "Computing address for function DSGetNumBufferParts of cti " + path + " failed! Code: ";
    const std::string end = ". CTI claims to support GenTL V1.5.";
    EXPECT_EQ(outcome.text.substr(0, start.size()), start);
    EXPECT_EQ(outcome.text.substr(outcome.text.size() - end.size()), end);
}

TEST_F(ProducerLibrary, FailuresWhileLoadingAreCodeOneWithTheirTexts)
{
    const auto init = BuiltProducer("scripted_init_fails");
    EXPECT_EQ(Construct(init), (Error{1, "Initializing " + init + " failed! Code: -1001."}));
    const auto version = BuiltProducer("scripted_version_fails");
    EXPECT_EQ(
        Construct(version), (Error{1, "Querying " + version + " for TL_INFO_GENTL_VER_MAJOR failed! Code: -1010."}));
    const auto close = BuiltProducer("scripted_close_fails");
    EXPECT_EQ(Construct(close), (Error{1, "Closing " + close + " failed! Code: -1022."}));
}

TEST_F(ProducerLibrary, FailingInitialisationForUseTellsTheCode)
{
    for (const auto& error : producerErrors)
    {
        producer->AnswerAtCall("GCInitLib", 2, error.code);
        EXPECT_EQ(
            Construct(producer.Path()),
            (Error{
                1, "Could not initialize the library! [Function: GCInitLib | Error-Code: " + Described(error) + "]"}));
        EXPECT_EQ(producer->InitCount(), 0);
    }
}

TEST_F(ProducerLibrary, FailingCloseIsSeenByNobody)
{
    for (const auto& error : producerErrors)
    {
        const auto handle = Constructed(producer.Path());
        producer->AnswerOnce("GCCloseLib", error.code);
        EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(handle)), Error{});
    }
}

TEST_F(ProducerLibrary, CloseThatThrowsIsSeenByNobody)
{
    const auto handle = Constructed(producer.Path());
    producer->OnEntry("GCCloseLib", [] { throw 5; });

    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(handle)), Error{});
}

TEST_F(ProducerLibrary, DestructClosesTheProducerAndLeavesItMapped)
{
    const auto handle = Constructed(producer.Path());
    producer->ClearJournal();

    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(handle)), Error{});
    EXPECT_EQ(producer->Journal(), std::vector<std::string>{"GCCloseLib()"});
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(handle)), InvalidHandle("producerLibraryHandle"));
    EXPECT_TRUE(producer.IsLoadedByOthers());
}

TEST_F(ProducerLibrary, KeyIsThePathAsGiven)
{
    const auto path = producer.Folder().Path().string() + "//./scripted_1_5.cti";
    ExpectTextOut("key", path, KORO_ProducerLibrary_GetKey, Constructed(path));
    std::size_t size = 0;
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_GetKey(nullptr, nullptr, &size)), InvalidHandle("producerLibraryHandle"));
}

TEST_F(ProducerLibrary, TwoLibrariesOfOneFileAreTwoObjectsThatTheProducerCounts)
{
    const auto first = Constructed(producer.Path());
    const auto second = Constructed(producer.Path());
    EXPECT_NE(first, second);
    EXPECT_EQ(producer->InitCount(), 2);

    Require(KORO_ProducerLibrary_Destruct(first));
    EXPECT_EQ(producer->InitCount(), 1);
    EXPECT_EQ(GetText(KORO_ProducerLibrary_GetKey, second), producer.Path());
}

TEST_F(ProducerLibrary, SecondLibraryOfAProducerThatDoesNotCountIsRefusedAndACopyOfTheFileWorks)
{
    producer->SetStrictInit(true);
    const auto first = Constructed(producer.Path());

    EXPECT_EQ(Construct(producer.Path()), (Error{1, "Initializing " + producer.Path() + " failed! Code: -1004."}));
    Constructed(producer.Folder().MakeCopy(producer.Path(), "copy.cti"));
    EXPECT_EQ(GetText(KORO_ProducerLibrary_GetKey, first), producer.Path());

    Require(KORO_ProducerLibrary_Destruct(first));
    Constructed(producer.Path());
}

TEST_F(ProducerLibrary, GetSystemTwiceReadsTheIDOnceAndGivesTheSameHandle)
{
    const auto handle = Constructed(producer.Path());
    producer->ClearJournal();

    const auto first = Get<KORO_SystemDescriptorHandle>(KORO_ProducerLibrary_GetSystem, handle);
    const auto second = Get<KORO_SystemDescriptorHandle>(KORO_ProducerLibrary_GetSystem, handle);
    EXPECT_EQ(first, second);
    EXPECT_EQ(producer->Journal(), (std::vector<std::string>{"GCGetInfo(0, size)", "GCGetInfo(0, data)"}));
}

TEST_F(ProducerLibrary, GetSystemThatFailedIsTriedAgain)
{
    const auto handle = Constructed(producer.Path());
    producer->AnswerOnce("GCGetInfo", GenTL::GC_ERR_IO);
    KORO_SystemDescriptorHandle descriptor = nullptr;

    EXPECT_EQ(
        Outcome(KORO_ProducerLibrary_GetSystem(handle, &descriptor)),
        InfoFailure({"GCGetInfo", 0, "TL_INFO_ID"}, ProducerErrorOf(GenTL::GC_ERR_IO)));
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_GetSystem(handle, &descriptor)), Error{});
}

TEST_F(ProducerLibrary, ConcurrentFirstRequestsMakeOneDescriptor)
{
    const auto handle = Constructed(producer.Path());
    producer->ClearJournal();
    const auto request = [&] { return Get<KORO_SystemDescriptorHandle>(KORO_ProducerLibrary_GetSystem, handle); };
    auto first = std::async(std::launch::async, request);
    auto second = std::async(std::launch::async, request);

    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(producer->Journal().size(), 2u);
}

TEST_F(ProducerLibrary, GetSystemTestsHandleAndPointer)
{
    const auto handle = Constructed(producer.Path());
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_GetSystem(nullptr, nullptr)), InvalidHandle("producerLibraryHandle"));
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_GetSystem(handle, nullptr)), NullPointer("systemDescriptorHandle"));
}

TEST_F(ProducerLibrary, DestructEndsTheSystemDescriptor)
{
    const auto handle = Constructed(producer.Path());
    const auto descriptor = Get<KORO_SystemDescriptorHandle>(KORO_ProducerLibrary_GetSystem, handle);
    Require(KORO_ProducerLibrary_Destruct(handle));

    std::size_t size = 0;
    EXPECT_EQ(
        Outcome(KORO_SystemDescriptor_GetKey(descriptor, nullptr, &size)), InvalidHandle("systemDescriptorHandle"));
}

TEST_F(ProducerLibrary, HandleOfAnotherKindIsNoLibrary)
{
    const OpenTree tree(producer.Path());
    std::size_t size = 0;
    const auto other = reinterpret_cast<KORO_ProducerLibraryHandle>(tree.system);

    EXPECT_EQ(Outcome(KORO_ProducerLibrary_GetKey(other, nullptr, &size)), InvalidHandle("producerLibraryHandle"));
}

} // namespace koro::test
