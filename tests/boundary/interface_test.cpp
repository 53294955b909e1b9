#include "tests/boundary/info_getters.h"
#include "tests/boundary/tree_test.h"

#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using Strings = std::vector<std::string>;

class Interface : public TreeTest
{
protected:
    Interface() { producer->ClearJournal(); }
};

} // namespace

TEST_F(Interface, TextsComeFromTheInterfacesInformation)
{
    ExpectTextGetters(
        producer, "IFGetInfo", tree.interface,
        {{1, "INTERFACE_INFO_DISPLAYNAME", "displayName", KORO_Interface_GetDisplayName},
         {2, "INTERFACE_INFO_TLTYPE", "tlType", KORO_Interface_GetTLType}});
}

TEST_F(Interface, RawInformationComesFromTheInterfacesInformation)
{
    ExpectRawInfo(producer, "IFGetInfo", KORO_Interface_GetInfo, tree.interface);
}

TEST_F(Interface, KeyAndIDAreStored)
{
    ExpectTextOut("key", producer.Path() + "|scripted producer|if0", KORO_Interface_GetKey, tree.interface);
    ExpectTextOut("id", "if0", KORO_Interface_GetID, tree.interface);
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(Interface, ParentIsTheSystem)
{
    EXPECT_EQ(Get<KORO_SystemHandle>(KORO_Interface_GetParentSystem, tree.interface), tree.system);
    EXPECT_EQ(Outcome(KORO_Interface_GetParentSystem(tree.interface, nullptr)), NullPointer("systemHandle"));
}

TEST_F(Interface, LostDeviceTakesItsDescriptorHandleAlongAndLeavesTheOpenDevice)
{
    producer->Edit([](scripted::Tree& edited) { edited.interfaces[0]->devices.clear(); });
    Require(KORO_Interface_UpdateDevices(tree.interface, 0));
    std::size_t size = 0;

    EXPECT_EQ(
        Outcome(KORO_DeviceDescriptor_GetKey(tree.deviceDescriptor, nullptr, &size)),
        InvalidHandle("deviceDescriptorHandle"));
    EXPECT_EQ(GetText(KORO_Device_GetID, tree.device), "if0-dev0");
    EXPECT_EQ(GetText(KORO_Device_GetVendorName, tree.device), "ZVR"); // the producer still answers
}

TEST_F(Interface, SystemThatGoesDuringACallHasExpired)
{
    producer->OnEntry("IFGetInfo", [this] { KORO_System_Destruct(tree.system); });
    std::size_t size = 0;

    EXPECT_EQ(Outcome(KORO_Interface_GetTLType(tree.interface, nullptr, &size)), parentExpired);
    EXPECT_EQ(Outcome(KORO_Interface_GetTLType(tree.interface, nullptr, &size)), InvalidHandle("interfaceHandle"));
}

} // namespace koro::test
