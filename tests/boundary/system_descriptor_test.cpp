#include "tests/boundary/info_getters.h"
#include "tests/boundary/tree_test.h"

#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using SystemDescriptor = TreeTest;

const std::string int32Type = "5 (INFO_DATATYPE_INT32)";
const std::string uint32Type = "6 (INFO_DATATYPE_UINT32)";

} // namespace

TEST_F(SystemDescriptor, TextsComeFromTheLibrarysInformation)
{
    ExpectTextGetters(
        producer, "GCGetInfo", tree.systemDescriptor,
        {{1, "TL_INFO_VENDOR", "vendorName", KORO_SystemDescriptor_GetVendorName},
         {2, "TL_INFO_MODEL", "modelName", KORO_SystemDescriptor_GetModelName},
         {3, "TL_INFO_VERSION", "version", KORO_SystemDescriptor_GetVersion},
         {4, "TL_INFO_TLTYPE", "tlType", KORO_SystemDescriptor_GetTLType},
         {5, "TL_INFO_NAME", "ctiFileName", KORO_SystemDescriptor_GetCTIFileName},
         {6, "TL_INFO_PATHNAME", "ctiFullPath", KORO_SystemDescriptor_GetCTIFullPath},
         {7, "TL_INFO_DISPLAYNAME", "displayName", KORO_SystemDescriptor_GetDisplayName}});
}

TEST_F(SystemDescriptor, NumbersComeFromTheLibrarysInformation)
{
    ExpectNumberGetter<KORO_SystemDescriptorHandle, std::int32_t>(
        producer, {"GCGetInfo", 8, "TL_INFO_CHAR_ENCODING"}, scripted::Int32(-7), int32Type, "characterEncoding", -7,
        KORO_SystemDescriptor_GetCharacterEncoding, tree.systemDescriptor);
    ExpectNumberGetter<KORO_SystemDescriptorHandle, std::uint32_t>(
        producer, {"GCGetInfo", 9, "TL_INFO_GENTL_VER_MAJOR"}, scripted::UInt32(0xFFFFFFFE), uint32Type,
        "gentlVersionMajor", 0xFFFFFFFE, KORO_SystemDescriptor_GetGenTLVersionMajor, tree.systemDescriptor);
    ExpectNumberGetter<KORO_SystemDescriptorHandle, std::uint32_t>(
        producer, {"GCGetInfo", 10, "TL_INFO_GENTL_VER_MINOR"}, scripted::UInt32(77), uint32Type, "gentlVersionMinor",
        77, KORO_SystemDescriptor_GetGenTLVersionMinor, tree.systemDescriptor);
}

TEST_F(SystemDescriptor, RawInformationComesFromTheLibrarysInformation)
{
    ExpectRawInfo(producer, "GCGetInfo", KORO_SystemDescriptor_GetInfo, tree.systemDescriptor);
}

TEST_F(SystemDescriptor, AnswersBeforeAnythingHasBeenOpened)
{
    Require(KORO_System_Destruct(tree.system));

    EXPECT_EQ(GetText(KORO_SystemDescriptor_GetDisplayName, tree.systemDescriptor), "ZVR scripted producer");
    EXPECT_EQ(GetText(KORO_SystemDescriptor_GetCTIFileName, tree.systemDescriptor), "scripted_1_5.cti");
    EXPECT_EQ(GetText(KORO_SystemDescriptor_GetCTIFullPath, tree.systemDescriptor), producer.Path());
    EXPECT_EQ(Get<std::uint32_t>(KORO_SystemDescriptor_GetGenTLVersionMajor, tree.systemDescriptor), 1u);
    EXPECT_EQ(Get<std::uint32_t>(KORO_SystemDescriptor_GetGenTLVersionMinor, tree.systemDescriptor), 5u);
}

TEST_F(SystemDescriptor, KeyIsThePathAndTheID)
{
    ExpectTextOut("key", producer.Path() + "|scripted producer", KORO_SystemDescriptor_GetKey, tree.systemDescriptor);
}

TEST_F(SystemDescriptor, KeyAndIDAreStoredAtTheFirstRequest)
{
    producer->SetInfo("GCGetInfo", GenTL::TL_INFO_ID, scripted::Text("another"));
    producer->ClearJournal();

    EXPECT_EQ(GetText(KORO_SystemDescriptor_GetKey, tree.systemDescriptor), producer.Path() + "|scripted producer");
    const auto base = Get<KORO_ModuleDescriptorHandle>(KORO_SystemDescriptor_ToModuleDescriptor, tree.systemDescriptor);
    EXPECT_EQ(GetText(KORO_ModuleDescriptor_GetID, base), "scripted producer");
    EXPECT_EQ(producer->Journal(), std::vector<std::string>{});
}

TEST_F(SystemDescriptor, ParentIsTheLibrary)
{
    EXPECT_EQ(
        Get<KORO_ProducerLibraryHandle>(KORO_SystemDescriptor_GetParentLibrary, tree.systemDescriptor),
        tree.producerLibrary);
    EXPECT_EQ(
        Outcome(KORO_SystemDescriptor_GetParentLibrary(tree.systemDescriptor, nullptr)),
        NullPointer("producerLibraryHandle"));
}

TEST_F(SystemDescriptor, OpenSystemGivesASystemOfTheSameKey)
{
    EXPECT_EQ(GetText(KORO_System_GetKey, tree.system), GetText(KORO_SystemDescriptor_GetKey, tree.systemDescriptor));
}

TEST_F(SystemDescriptor, OpenSystemTellsTheProducersRefusal)
{
    KORO_SystemHandle system = nullptr;
    EXPECT_EQ(
        Outcome(KORO_SystemDescriptor_OpenSystem(tree.systemDescriptor, &system)),
        CallFailure("TLOpen", ProducerErrorOf(GenTL::GC_ERR_RESOURCE_IN_USE)));
    EXPECT_EQ(system, nullptr);
}

TEST_F(SystemDescriptor, OpenSystemWithoutAPlaceForTheHandleOpensNothing)
{
    Require(KORO_System_Destruct(tree.system));
    producer->ClearJournal();

    EXPECT_EQ(Outcome(KORO_SystemDescriptor_OpenSystem(tree.systemDescriptor, nullptr)), NullPointer("systemHandle"));
    EXPECT_EQ(CallsOf(producer->Journal(), {"TLOpen"}), std::vector<std::string>{});
}

TEST_F(SystemDescriptor, SystemCanBeOpenedAgainAfterItsEnd)
{
    Require(KORO_System_Destruct(tree.system));
    const auto again = Get<KORO_SystemHandle>(KORO_SystemDescriptor_OpenSystem, tree.systemDescriptor);

    EXPECT_EQ(GetText(KORO_System_GetID, again), "scripted producer");
}

TEST_F(SystemDescriptor, LibraryThatGoesDuringAQueryHasExpired)
{
    producer->OnEntry("GCGetInfo", [this] { KORO_ProducerLibrary_Destruct(tree.producerLibrary); });
    std::size_t size = 0;

    EXPECT_EQ(Outcome(KORO_SystemDescriptor_GetVendorName(tree.systemDescriptor, nullptr, &size)), parentExpired);
    EXPECT_EQ(
        Outcome(KORO_SystemDescriptor_GetVendorName(tree.systemDescriptor, nullptr, &size)),
        InvalidHandle("systemDescriptorHandle"));
}

} // namespace koro::test
