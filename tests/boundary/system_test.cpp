#include "tests/boundary/info_getters.h"
#include "tests/boundary/tree_test.h"

#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using Strings = std::vector<std::string>;

class System : public TreeTest
{
protected:
    System() { producer->ClearJournal(); }
};

} // namespace

TEST_F(System, TextsComeFromTheSystemsInformation)
{
    ExpectTextGetters(
        producer, "TLGetInfo", tree.system,
        {{1, "TL_INFO_VENDOR", "vendorName", KORO_System_GetVendorName},
         {2, "TL_INFO_MODEL", "modelName", KORO_System_GetModelName},
         {3, "TL_INFO_VERSION", "version", KORO_System_GetVersion},
         {4, "TL_INFO_TLTYPE", "tlType", KORO_System_GetTLType},
         {5, "TL_INFO_NAME", "ctiFileName", KORO_System_GetCTIFileName},
         {6, "TL_INFO_PATHNAME", "ctiFullPath", KORO_System_GetCTIFullPath},
         {7, "TL_INFO_DISPLAYNAME", "displayName", KORO_System_GetDisplayName}});
}

TEST_F(System, NumbersComeFromTheSystemsInformation)
{
    ExpectNumberGetter<KORO_SystemHandle, std::int32_t>(
        producer, {"TLGetInfo", 8, "TL_INFO_CHAR_ENCODING"}, scripted::Int32(-7), "5 (INFO_DATATYPE_INT32)",
        "characterEncoding", -7, KORO_System_GetCharacterEncoding, tree.system);
    ExpectNumberGetter<KORO_SystemHandle, std::uint32_t>(
        producer, {"TLGetInfo", 9, "TL_INFO_GENTL_VER_MAJOR"}, scripted::UInt32(0xFFFFFFFE), "6 (INFO_DATATYPE_UINT32)",
        "gentlVersionMajor", 0xFFFFFFFE, KORO_System_GetGenTLVersionMajor, tree.system);
    ExpectNumberGetter<KORO_SystemHandle, std::uint32_t>(
        producer, {"TLGetInfo", 10, "TL_INFO_GENTL_VER_MINOR"}, scripted::UInt32(77), "6 (INFO_DATATYPE_UINT32)",
        "gentlVersionMinor", 77, KORO_System_GetGenTLVersionMinor, tree.system);
}

TEST_F(System, RawInformationComesFromTheSystemsInformation)
{
    ExpectRawInfo(producer, "TLGetInfo", KORO_System_GetInfo, tree.system);
}

TEST_F(System, KeyAndIDAreStored)
{
    ExpectTextOut("key", producer.Path() + "|scripted producer", KORO_System_GetKey, tree.system);
    ExpectTextOut("id", "scripted producer", KORO_System_GetID, tree.system);
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(System, ParentIsTheLibrary)
{
    EXPECT_EQ(Get<KORO_ProducerLibraryHandle>(KORO_System_GetParentLibrary, tree.system), tree.producerLibrary);
    EXPECT_EQ(Outcome(KORO_System_GetParentLibrary(tree.system, nullptr)), NullPointer("producerLibraryHandle"));
}

TEST_F(System, HandleThatIsDeadIsInvalid)
{
    Require(KORO_System_Destruct(tree.system));
    std::size_t size = 0;

    EXPECT_EQ(Outcome(KORO_System_Destruct(tree.system)), InvalidHandle("systemHandle"));
    EXPECT_EQ(Outcome(KORO_System_GetKey(tree.system, nullptr, &size)), InvalidHandle("systemHandle"));
    EXPECT_EQ(Outcome(KORO_System_UpdateInterfaces(tree.system, 0)), InvalidHandle("systemHandle"));
}

TEST_F(System, LibraryThatGoesDuringACallHasExpired)
{
    producer->OnEntry("TLGetInfo", [this] { KORO_ProducerLibrary_Destruct(tree.producerLibrary); });
    std::size_t size = 0;

    EXPECT_EQ(Outcome(KORO_System_GetVendorName(tree.system, nullptr, &size)), parentExpired);
    EXPECT_EQ(Outcome(KORO_System_GetVendorName(tree.system, nullptr, &size)), InvalidHandle("systemHandle"));
}

} // namespace koro::test
