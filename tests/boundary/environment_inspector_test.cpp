#include "tests/boundary/outputs.h"
#include "tests/support/boundary.h"
#include "tests/support/elf_file.h"
#include "tests/support/environment_variable.h"
#include "tests/support/journal.h"
#include "tests/support/scripted_producer.h"
#include "tests/support/temporary_folder.h"

#include <elf.h>
#include <filesystem>
#include <future>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

namespace fs = std::filesystem;

// The list belongs to the process, so each test starts with an empty one.
class EnvironmentInspector : public testing::Test
{
protected:
    EnvironmentInspector() { Require(KORO_EnvironmentInspector_UpdateCTIPaths()); }

    std::vector<std::string> Paths() const
    {
        std::vector<std::string> paths;
        const auto count = Get<std::size_t>(KORO_EnvironmentInspector_GetNumCTIPaths);
        for (std::size_t index = 0; index < count; ++index)
            paths.push_back(GetText(KORO_EnvironmentInspector_GetCTIPath, index));
        return paths;
    }

    std::vector<std::string> PathsAfterUpdate(const std::string& value) const
    {
        variable.Set(value);
        Require(KORO_EnvironmentInspector_UpdateCTIPaths());
        return Paths();
    }

    std::string CopyProducer(const std::string& name, const std::string& variant = "scripted_1_5") const
    {
        return folder.MakeCopy(BuiltProducer(variant), name);
    }

    using Strings = std::vector<std::string>;

    const KoroLibrary library;
    const EnvironmentVariable variable{"GENICAM_GENTL64_PATH", ""};
    const TemporaryFolder folder;
    const std::string here = folder.Path().string();
};

std::size_t LoadTrials(const ScriptedProducer& producer)
{
    return CallsOf(producer->Journal(), {"GCInitLib"}).size() / 2; // once for the version, once for use
}

} // namespace

// Stands first: afterwards there has been an update in this process.
TEST(EnvironmentInspectorBeforeAnyUpdate, ListIsEmpty)
{
    const KoroLibrary library;
    const ScriptedProducer producer;
    const EnvironmentVariable variable("GENICAM_GENTL64_PATH", producer.Folder().Path().string());
    char path[8];
    std::size_t size = sizeof path;

    EXPECT_EQ(Get<std::size_t>(KORO_EnvironmentInspector_GetNumCTIPaths), 0u);
    EXPECT_EQ(Outcome(KORO_EnvironmentInspector_GetCTIPath(0, path, &size)), outOfRange);
    EXPECT_EQ(producer->Journal(), std::vector<std::string>{});
}

TEST_F(EnvironmentInspector, UnsetVariableIsNotFoundAndKeepsTheList)
{
    const auto path = CopyProducer("a.cti");
    EXPECT_EQ(PathsAfterUpdate(here), Strings{path});

    const EnvironmentVariable unset("GENICAM_GENTL64_PATH", std::nullopt);
    EXPECT_EQ(
        Outcome(KORO_EnvironmentInspector_UpdateCTIPaths()),
        (Error{
            KORO_RETURN_CODE_NOT_FOUND,
            "GENICAM_GENTL64_PATH environment variable not found! Please set this to the path of the CTIs."}));
    EXPECT_EQ(Paths(), Strings{path});
}

TEST_F(EnvironmentInspector, EmptyVariableGivesNoPaths)
{
    EXPECT_EQ(PathsAfterUpdate(""), Strings{});
}

TEST_F(EnvironmentInspector, BothSeparatorsSplitAndEmptyPiecesAreDropped)
{
    const auto first = folder.MakeFolder("1");
    const auto second = folder.MakeFolder("2");
    const auto third = folder.MakeFolder("3");
    const Strings paths{CopyProducer("1/a.cti"), CopyProducer("2/a.cti"), CopyProducer("3/a.cti")};

    EXPECT_EQ(PathsAfterUpdate(";:" + second + ";;" + third + ":" + first + ":"), paths);
}

TEST_F(EnvironmentInspector, NewPathsStandInByteOrder)
{
    const Strings paths{CopyProducer("B.cti"), CopyProducer("a.cti"), CopyProducer("b.cti")};

    EXPECT_EQ(PathsAfterUpdate(here), paths);
}

TEST_F(EnvironmentInspector, OneFolderInTwoFormsGivesEachPathOnce)
{
    const auto path = CopyProducer("a.cti");
    const auto inner = folder.MakeFolder("inner");
    const auto link = folder.MakeLink(folder.Path(), "link");

    EXPECT_EQ(PathsAfterUpdate(here + ":" + inner + "/..:" + here + "//:" + link), Strings{path});
}

TEST_F(EnvironmentInspector, RelativeFolderGivesTheCanonicalPath)
{
    const auto path = CopyProducer("a.cti");

    EXPECT_EQ(PathsAfterUpdate(fs::relative(folder.Path()).string()), Strings{path});
}

TEST_F(EnvironmentInspector, LinkStandsAsWhatItLeadsTo)
{
    folder.MakeFolder("elsewhere");
    const auto path = CopyProducer("elsewhere/other.cti");
    folder.MakeFolder("here");
    folder.MakeLink(path, "here/link.cti");

    EXPECT_EQ(PathsAfterUpdate(folder.File("here")), Strings{path});
}

TEST_F(EnvironmentInspector, LinkThatLeadsNowhereEndsTheUpdateWithCodeOne)
{
    const auto path = CopyProducer("a.cti");
    EXPECT_EQ(PathsAfterUpdate(here), Strings{path});

    const auto link = folder.MakeLink(folder.File("nothing"), "link.cti");
    const auto outcome = Outcome(KORO_EnvironmentInspector_UpdateCTIPaths());
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
    EXPECT_NE(outcome.text.find(link), std::string::npos) << outcome;
    EXPECT_EQ(Paths(), Strings{path});
}

TEST_F(EnvironmentInspector, OnlyPlainFilesDirectlyInTheFolderCount)
{
    folder.MakeFolder("folder.cti");
    folder.MakeFolder("below");
    CopyProducer("below/a.cti");
    CopyProducer("folder.cti/a.cti");

    EXPECT_EQ(PathsAfterUpdate(here), Strings{});
}

TEST_F(EnvironmentInspector, EndingIsComparedExactly)
{
    CopyProducer("a.CTI");
    CopyProducer("b.cti.bak");
    CopyProducer("ccti");
    const auto path = CopyProducer("d.cti");

    EXPECT_EQ(PathsAfterUpdate(here), Strings{path});
}

TEST_F(EnvironmentInspector, FolderThatDoesNotExistIsNoError)
{
    const auto path = CopyProducer("a.cti");

    EXPECT_EQ(PathsAfterUpdate(folder.File("nowhere") + ":" + here), Strings{path});
    EXPECT_EQ(PathsAfterUpdate(path + ":" + here), Strings{path}); // a file is no folder either
}

TEST_F(EnvironmentInspector, FolderPathOf258CharactersIsSkipped)
{
    const auto pathOfLength = [&](std::size_t length) {
        const auto outer = folder.MakeFolder(std::string(120, 'o'));
        return outer + "/" + std::string(length - outer.size() - 1, 'i');
    };
    const auto allowed = pathOfLength(257);
    const auto tooLong = pathOfLength(258);
    fs::create_directory(allowed);
    fs::create_directory(tooLong);
    fs::copy_file(BuiltProducer("scripted_1_5"), allowed + "/a.cti");
    fs::copy_file(BuiltProducer("scripted_1_5"), tooLong + "/a.cti");

    EXPECT_EQ(PathsAfterUpdate(tooLong + ":" + allowed), Strings{allowed + "/a.cti"});
}

TEST_F(EnvironmentInspector, FilesThatAreNoProducersAreAbsent)
{
    folder.MakeFile("empty.cti", "");
    folder.MakeFile("text.cti", "no shared object");
    folder.MakeFile(
        "short.cti", std::string(
                         "\x7f"
                         "ELF\2\1\1",
                         7));
    SetMachine(CopyProducer("other_machine.cti"), EM_AARCH64);
    CopyProducer("init_fails.cti", "scripted_init_fails");
    CopyProducer("lacks_core.cti", "scripted_lacks_core");
    CopyProducer("missing_symbol.cti", "scripted_missing_symbol");
    CopyProducer("not_gentl.cti", "scripted_not_gentl");
    CopyProducer("version_fails.cti", "scripted_version_fails");
    const auto path = CopyProducer("zz_good.cti");

    EXPECT_EQ(PathsAfterUpdate(here), Strings{path});
}

TEST_F(EnvironmentInspector, ProducerThatThrowsIsAbsent)
{
    const ScriptedProducer producer;
    producer->OnEntry("GCInitLib", [] { throw 5; });
    const auto path = CopyProducer("a.cti");

    EXPECT_EQ(PathsAfterUpdate(producer.Folder().Path().string() + ":" + here), Strings{path});
}

TEST_F(EnvironmentInspector, DeletedFileGoesAndTheOthersKeepTheirOrder)
{
    const auto b = CopyProducer("b.cti");
    const auto d = CopyProducer("d.cti");
    EXPECT_EQ(PathsAfterUpdate(here), (Strings{b, d}));

    const auto a = CopyProducer("a.cti");
    const auto c = CopyProducer("c.cti");
    EXPECT_EQ(PathsAfterUpdate(here), (Strings{b, d, a, c}));

    fs::remove(d);
    EXPECT_EQ(PathsAfterUpdate(here), (Strings{b, a, c}));
}

TEST_F(EnvironmentInspector, UpdateLoadsANewProducerOnceAndKeepsItMapped)
{
    ScriptedProducer producer;
    const auto producerFolder = producer.Folder().Path().string();

    EXPECT_EQ(PathsAfterUpdate(producerFolder), Strings{producer.Path()});
    EXPECT_EQ(
        CallsOf(producer->Journal(), {"GCInitLib", "GCCloseLib", "TLOpen"}),
        (Strings{"GCInitLib()", "GCCloseLib()", "GCInitLib()", "GCCloseLib()"}));
    EXPECT_EQ(producer->InitCount(), 0);

    EXPECT_EQ(PathsAfterUpdate(producerFolder), Strings{producer.Path()});
    EXPECT_EQ(LoadTrials(producer), 1u);
    EXPECT_TRUE(producer.IsLoadedByOthers());
}

// Without the mapping each of the threads goes on in code that is no longer there.
TEST_F(EnvironmentInspector, ThreadsThatAProducerLeavesBehindKeepTheirCode)
{
    const auto path = CopyProducer("a.cti", "scripted_lingering_threads");

    EXPECT_EQ(PathsAfterUpdate(here), Strings{path});
    EXPECT_TRUE(IsMapped(path));
}

TEST_F(EnvironmentInspector, FileThatFailsBeforeItsStartIsUnloaded)
{
    const auto path = CopyProducer("a.cti", "scripted_init_fails");

    EXPECT_EQ(PathsAfterUpdate(here), Strings{});
    EXPECT_FALSE(IsMapped(path));
}

TEST_F(EnvironmentInspector, ProducerThatFailedIsTriedAgainAtTheNextUpdate)
{
    const ScriptedProducer producer;
    producer->AnswerOnce("GCInitLib", GenTL::GC_ERR_ACCESS_DENIED);
    const auto producerFolder = producer.Folder().Path().string();

    EXPECT_EQ(PathsAfterUpdate(producerFolder), Strings{});
    EXPECT_EQ(PathsAfterUpdate(producerFolder), Strings{producer.Path()});
}

TEST_F(EnvironmentInspector, ProducerInUseIsAcceptedWithoutATrial)
{
    const ScriptedProducer producer;
    producer->SetStrictInit(true); // a trial would fail
    const OpenTree tree(producer.Path());
    const auto open = producer->Open();
    producer->ClearJournal();

    EXPECT_EQ(PathsAfterUpdate(producer.Folder().Path().string()), Strings{producer.Path()});
    EXPECT_EQ(producer->Journal(), Strings{});
    EXPECT_EQ(producer->Open(), open);
}

TEST_F(EnvironmentInspector, ProducerInUseIsRecognisedThroughARelativePathAndALink)
{
    const ScriptedProducer producer;
    producer->SetStrictInit(true); // a trial would fail
    const std::string link = here + "/link.cti";
    fs::create_symlink(producer.Path(), link);
    const std::string relative = fs::relative(producer.Path()).string();
    const auto producerFolder = producer.Folder().Path().string();

    for (const std::string& path : {link, relative})
    {
        const OpenTree tree(path);
        producer->ClearJournal();
        EXPECT_EQ(PathsAfterUpdate(producerFolder), Strings{producer.Path()}) << path;
        EXPECT_EQ(producer->Journal(), Strings{}) << path;
        Require(KORO_ProducerLibrary_Destruct(tree.producerLibrary));
        EXPECT_EQ(PathsAfterUpdate(""), Strings{});
    }
}

TEST_F(EnvironmentInspector, OpenProducerWhoseFileHasGoneIsNotDisturbed)
{
    const ScriptedProducer producer;
    const OpenTree tree(producer.Path());
    const auto producerFolder = producer.Folder().Path().string();
    EXPECT_EQ(PathsAfterUpdate(producerFolder), Strings{producer.Path()});

    fs::remove(producer.Path());
    EXPECT_EQ(PathsAfterUpdate(producerFolder), Strings{});
    EXPECT_EQ(GetText(KORO_System_GetVendorName, tree.system), "ZVR");
}

TEST_F(EnvironmentInspector, PathGoesOutByTheRulesOfTexts)
{
    const auto path = CopyProducer("a.cti");
    EXPECT_EQ(PathsAfterUpdate(here), Strings{path});

    ExpectTextOut<std::size_t>("ctiPath", path, KORO_EnvironmentInspector_GetCTIPath, 0);
    EXPECT_EQ(Outcome(KORO_EnvironmentInspector_GetNumCTIPaths(nullptr)), NullPointer("numCtiPaths"));
}

TEST_F(EnvironmentInspector, IndexAtTheNumberOfPathsIsOutOfRange)
{
    CopyProducer("a.cti");
    EXPECT_EQ(PathsAfterUpdate(here).size(), 1u);
    std::size_t size = 0;

    EXPECT_EQ(Outcome(KORO_EnvironmentInspector_GetCTIPath(1, nullptr, &size)), outOfRange);
    EXPECT_EQ(Outcome(KORO_EnvironmentInspector_GetCTIPath(SIZE_MAX, nullptr, nullptr)), outOfRange);
}

TEST_F(EnvironmentInspector, ReadersDoNotRefreshTheList)
{
    const auto path = CopyProducer("a.cti");
    EXPECT_EQ(PathsAfterUpdate(here), Strings{path});

    CopyProducer("b.cti");
    fs::remove(path);
    EXPECT_EQ(Paths(), Strings{path});
}

TEST_F(EnvironmentInspector, ListSurvivesTheLibrarysClose)
{
    const auto path = CopyProducer("a.cti");
    EXPECT_EQ(PathsAfterUpdate(here), Strings{path});

    Require(KORO_Library_Close());
    Require(KORO_Library_Initialize());
    EXPECT_EQ(Paths(), Strings{path});
}

TEST_F(EnvironmentInspector, GetterThatComesDuringAnUpdateAnswersWithItsResult)
{
    const ScriptedProducer producer;
    std::future<std::size_t> count;
    producer->OnEntry("GCInitLib", [&] {
        if (count.valid()) return;
        count =
            std::async(std::launch::async, [] { return Get<std::size_t>(KORO_EnvironmentInspector_GetNumCTIPaths); });
    });

    EXPECT_EQ(PathsAfterUpdate(producer.Folder().Path().string()), Strings{producer.Path()});
    EXPECT_EQ(count.get(), 1u);
}

TEST_F(EnvironmentInspector, ProducerThatAsksDuringItsOwnTrialIsRefusedInsteadOfHanging)
{
    const ScriptedProducer producer;
    KORO_ReturnCode read = KORO_RETURN_CODE_SUCCESS;
    KORO_ReturnCode update = KORO_RETURN_CODE_SUCCESS;
    producer->OnEntry("GCInitLib", [&] {
        std::size_t count = 0;
        read = KORO_EnvironmentInspector_GetNumCTIPaths(&count);
        update = KORO_EnvironmentInspector_UpdateCTIPaths();
    });

    EXPECT_EQ(PathsAfterUpdate(producer.Folder().Path().string()), Strings{producer.Path()});
    EXPECT_EQ(read, KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(update, KORO_RETURN_CODE_ERROR);
}

TEST_F(EnvironmentInspector, LibraryThatIsDestructedDuringATrialEndsAtOnce)
{
    const ScriptedProducer other;
    const OpenTree tree(other.Path());
    const ScriptedProducer producer;
    std::int64_t openDuringTheTrial = -1;
    producer->OnEntry("GCInitLib", [&] {
        if (openDuringTheTrial >= 0) return;
        Require(KORO_ProducerLibrary_Destruct(tree.producerLibrary));
        openDuringTheTrial = other->InitCount();
    });

    EXPECT_EQ(PathsAfterUpdate(producer.Folder().Path().string()), Strings{producer.Path()});
    EXPECT_EQ(openDuringTheTrial, 0);
}

TEST_F(EnvironmentInspector, ConcurrentUpdatesTryAProducerOnce)
{
    const ScriptedProducer producer;
    variable.Set(producer.Folder().Path().string());
    auto other = std::async(std::launch::async, [] { return KORO_EnvironmentInspector_UpdateCTIPaths(); });

    EXPECT_EQ(KORO_EnvironmentInspector_UpdateCTIPaths(), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(other.get(), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(Paths(), Strings{producer.Path()});
    EXPECT_EQ(LoadTrials(producer), 1u);
}

} // namespace koro::test
