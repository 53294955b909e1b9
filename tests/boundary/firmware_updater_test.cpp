// Collecting updates: what is found, how it is listed, and what a failure leaves.
#include "tests/boundary/firmware_test.h"
#include "tests/support/in_thread.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace koro::test
{

using testing::ElementsAre;
using testing::HasSubstr;

using FirmwareUpdater = FirmwareTest;

TEST_F(FirmwareUpdater, BeforeAnyCollectionNothingIsFound)
{
    ExpectScalarOut(
        "numFirmwareUpdateInformation", std::size_t{0}, KORO_FirmwareUpdater_GetNumFirmwareUpdateInformation, updater);
    Information information = nullptr;
    EXPECT_EQ(Outcome(KORO_FirmwareUpdater_GetFirmwareUpdateInformation(updater, 0, &information)), outOfRange);
    EXPECT_EQ(information, nullptr);
}

TEST_F(FirmwareUpdater, ConstructionNeedsAPlaceForItsHandle)
{
    EXPECT_EQ(Outcome(KORO_FirmwareUpdater_Construct(nullptr)), NullPointer("firmwareUpdaterHandle"));
    KORO_FirmwareUpdaterHandle another = nullptr;
    EXPECT_EQ(Outcome(KORO_FirmwareUpdater_Construct(&another)), Error{});
    EXPECT_NE(another, updater);
}

TEST_F(FirmwareUpdater, AllUpdatesAreFoundInTheOrderOfTheFile)
{
    const UpdateFileOnDisk file = WithControl(Control(Procedure("") + UpdateOf("1") + UpdateOf("2", "Other")));
    EXPECT_EQ(Outcome(CollectAll(file.path)), Error{});
    EXPECT_THAT(VersionsFound(), ElementsAre("1", "2"));
    EXPECT_EQ(Found(1), Found(1));
    EXPECT_NE(Found(0), Found(1));
    Information information = nullptr;
    EXPECT_EQ(Outcome(KORO_FirmwareUpdater_GetFirmwareUpdateInformation(updater, 2, &information)), outOfRange);
    EXPECT_EQ(
        Outcome(KORO_FirmwareUpdater_GetFirmwareUpdateInformation(updater, ~std::size_t{0}, &information)), outOfRange);
    EXPECT_EQ(Calls({"IFOpenDevice"}), Strings());
}

TEST_F(FirmwareUpdater, UpdatesForACameraAreThoseThatFit)
{
    const UpdateFileOnDisk file =
        WithControl(Control(Procedure("") + UpdateOf("1", "Other") + UpdateOf("2") + UpdateOf("3", "Vision$")));
    EXPECT_EQ(Outcome(Collect(file.path)), Error{});
    EXPECT_THAT(VersionsFound(), ElementsAre("2", "3"));
    EXPECT_THAT(
        Calls({"IFOpenDevice", "DevClose"}), ElementsAre("IFOpenDevice(if0, if0-dev0, 3)", "DevClose(if0-dev0)"));
}

TEST_F(FirmwareUpdater, CollectionReplacesTheOneBefore)
{
    Require(CollectAll(WithControl(Control(Procedure("") + UpdateOf("1") + UpdateOf("2"))).path));
    Require(CollectAll(WithControl(Control(Procedure("") + UpdateOf("3"))).path));
    EXPECT_THAT(VersionsFound(), ElementsAre("3"));
}

TEST_F(FirmwareUpdater, CollectionThatFindsNothingForACameraClearsTheResult)
{
    const UpdateFileOnDisk file = WithControl(Control(Procedure("") + UpdateOf("1", "Other")));
    Require(CollectAll(file.path));
    EXPECT_EQ(NumFound(), 1u);
    EXPECT_EQ(Outcome(Collect(file.path)), Error{});
    EXPECT_EQ(NumFound(), 0u);
}

TEST_F(FirmwareUpdater, FailedCollectionLeavesTheResult)
{
    const UpdateFileOnDisk file = WithControl(Control(Procedure("") + UpdateOf("1")));
    Require(CollectAll(file.path));
    const auto found = Found();
    EXPECT_EQ(Outcome(CollectAll(file.path + "x")).code, KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(Outcome(Collect(file.path + "x")).code, KORO_RETURN_CODE_ERROR);
    // Two updates were read before the fault.
    file.Replace(Container(Package(Control(Procedure("") + UpdateOf("2") + UpdateOf("3") + "<Update/>"))));
    EXPECT_EQ(Outcome(CollectAll(file.path)).code, KORO_RETURN_CODE_ERROR);
    EXPECT_THAT(VersionsFound(), ElementsAre("1"));
    EXPECT_EQ(Found(), found);
}

TEST_F(FirmwareUpdater, FailureTellsTheRuntimesWholeText)
{
    const Error outcome = Outcome(CollectAll("/nowhere/update.guf"));
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
    EXPECT_THAT(outcome.text, HasSubstr("The update file '/nowhere/update.guf' does not exist"));
    EXPECT_THAT(outcome.text, HasSubstr("(file '"));
}

TEST_F(FirmwareUpdater, ListIsFreeWhileAFileIsRead)
{
    Require(CollectAll(WithControl(Control(Procedure("") + UpdateOf("1") + UpdateOf("2"))).path));
    std::vector<std::size_t> found;
    // The camera is asked whether the updates fit it, in the middle of the file.
    producer->OnEntry("GCReadPort", [&] { found.push_back(InThread([&] { return NumFound(); })); });
    Require(Collect(WithControl(Control(Procedure("") + UpdateOf("3"))).path));
    EXPECT_THAT(found, testing::AllOf(testing::Not(testing::IsEmpty()), testing::Each(2)));
    EXPECT_THAT(VersionsFound(), ElementsAre("3"));
}

TEST_F(FirmwareUpdater, CameraThatCannotBeOpenedFailsTheCollection)
{
    const UpdateFileOnDisk file = WithControl(Control(Procedure("") + UpdateOf("1")));
    producer->Answer("IFOpenDevice", GenTL::GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(Outcome(Collect(file.path)), CallFailure("IFOpenDevice", ProducerErrorOf(GenTL::GC_ERR_ACCESS_DENIED)));
    EXPECT_EQ(NumFound(), 0u);
}

TEST_F(FirmwareUpdater, PathIsTakenByItsSize)
{
    const UpdateFileOnDisk file = WithControl(Control(Procedure("") + UpdateOf("1")));
    const std::string longer = file.path + ".backup";
    const auto collect = [&](const std::string& text, std::size_t size) {
        return Outcome(KORO_FirmwareUpdater_CollectAllFirmwareUpdateInformation(updater, text.c_str(), size));
    };
    EXPECT_EQ(collect(longer, file.path.size() + 1), Error{});
    EXPECT_EQ(GetText(KORO_FirmwareUpdateInformation_GetFileName, Found()), file.path);
    EXPECT_THAT(collect(file.path, file.path.size()).text, HasSubstr("does not exist"));
    EXPECT_EQ(collect(file.path, 0).code, KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(collect(file.path, 1).code, KORO_RETURN_CODE_ERROR);
    const std::string zeroInside = file.path + '\0' + "x";
    EXPECT_THAT(collect(zeroInside, zeroInside.size() + 1).text, HasSubstr("has a zero byte in it"));
    EXPECT_EQ(NumFound(), 1u);
}

TEST_F(FirmwareUpdater, HandlesAreTestedBeforePointers)
{
    const auto collect = [&](auto usedUpdater, const char* path, auto descriptor) {
        return Outcome(KORO_FirmwareUpdater_CollectFirmwareUpdateInformation(usedUpdater, path, 2, descriptor));
    };
    EXPECT_EQ(collect(nullptr, nullptr, nullptr), InvalidHandle("firmwareUpdaterHandle"));
    EXPECT_EQ(collect(updater, nullptr, nullptr), InvalidHandle("deviceDescriptorHandle"));
    EXPECT_EQ(collect(updater, nullptr, tree.deviceDescriptor), NullPointer("updateFilePath"));
    EXPECT_EQ(
        Outcome(KORO_FirmwareUpdater_CollectAllFirmwareUpdateInformation(updater, nullptr, 2)),
        NullPointer("updateFilePath"));
    EXPECT_EQ(Calls({"IFOpenDevice"}), Strings());
}

TEST_F(FirmwareUpdater, EndTakesTheHandlesOfItsInformation)
{
    Require(CollectAll(WithControl(Control(Procedure("") + UpdateOf("1"))).path));
    const auto information = Found();
    EXPECT_EQ(Outcome(KORO_FirmwareUpdater_Destruct(updater)), Error{});
    EXPECT_EQ(Outcome(KORO_FirmwareUpdater_Destruct(updater)), InvalidHandle("firmwareUpdaterHandle"));
    KORO_Bool8 isValid = 0;
    EXPECT_EQ(
        Outcome(KORO_FirmwareUpdateInformation_GetIsValid(information, &isValid)),
        InvalidHandle("firmwareUpdateInformationHandle"));
}

TEST_F(FirmwareUpdater, InformationOutlastsTheFileAndTheNextCollection)
{
    Information information = nullptr;
    {
        const UpdateFileOnDisk file = WithControl(Control(Procedure("") + UpdateOf("1")));
        Require(CollectAll(file.path));
        information = Found();
    }
    Require(CollectAll(WithControl(Control(Procedure("") + UpdateOf("2"))).path));
    EXPECT_NE(Found(), information);
    EXPECT_EQ(GetText(KORO_FirmwareUpdateInformation_GetVersion, information), "1");
    EXPECT_EQ(GetText(KORO_FirmwareUpdateInformation_GetDescription, information), "Update 1");
}

TEST_F(FirmwareUpdater, LibrarysCloseEndsAllHandles)
{
    Require(CollectAll(WithControl(Control(Procedure("") + UpdateOf("1"))).path));
    const auto information = Found();
    Require(KORO_Library_Close());
    Require(KORO_Library_Initialize());
    KORO_Bool8 isValid = 0;
    EXPECT_EQ(
        Outcome(KORO_FirmwareUpdateInformation_GetIsValid(information, &isValid)),
        InvalidHandle("firmwareUpdateInformationHandle"));
    EXPECT_EQ(Outcome(KORO_FirmwareUpdater_Destruct(updater)), InvalidHandle("firmwareUpdaterHandle"));
}

} // namespace koro::test
