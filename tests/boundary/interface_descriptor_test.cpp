#include "tests/boundary/info_getters.h"
#include "tests/boundary/tree_test.h"

#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using Strings = std::vector<std::string>;
using InterfaceDescriptor = TreeTest;

} // namespace

TEST_F(InterfaceDescriptor, TextsAreAskedOfTheSystemByTheID)
{
    ExpectTextGetters(
        producer, "TLGetInterfaceInfo", tree.interfaceDescriptor,
        {{1, "INTERFACE_INFO_DISPLAYNAME", "displayName", KORO_InterfaceDescriptor_GetDisplayName},
         {2, "INTERFACE_INFO_TLTYPE", "tlType", KORO_InterfaceDescriptor_GetTLType}});

    producer->ClearJournal();
    std::size_t size = 0;
    KORO_InterfaceDescriptor_GetTLType(tree.interfaceDescriptor, nullptr, &size);
    EXPECT_EQ(producer->Journal().front(), "TLGetInterfaceInfo(system, if0, 2, size)");
}

TEST_F(InterfaceDescriptor, RawInformationIsAskedOfTheSystem)
{
    ExpectRawInfo(producer, "TLGetInterfaceInfo", KORO_InterfaceDescriptor_GetInfo, tree.interfaceDescriptor);
}

TEST_F(InterfaceDescriptor, KeyAndIDAreStored)
{
    producer->ClearJournal();
    ExpectTextOut(
        "key", producer.Path() + "|scripted producer|if0", KORO_InterfaceDescriptor_GetKey, tree.interfaceDescriptor);
    const auto base =
        Get<KORO_ModuleDescriptorHandle>(KORO_InterfaceDescriptor_ToModuleDescriptor, tree.interfaceDescriptor);
    ExpectTextOut("id", "if0", KORO_ModuleDescriptor_GetID, base);
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(InterfaceDescriptor, ParentIsTheSystem)
{
    EXPECT_EQ(Get<KORO_SystemHandle>(KORO_InterfaceDescriptor_GetParentSystem, tree.interfaceDescriptor), tree.system);
    EXPECT_EQ(
        Outcome(KORO_InterfaceDescriptor_GetParentSystem(tree.interfaceDescriptor, nullptr)),
        NullPointer("systemHandle"));
}

TEST_F(InterfaceDescriptor, OpenInterfaceGivesAnInterfaceOfTheSameKey)
{
    EXPECT_EQ(
        GetText(KORO_Interface_GetKey, tree.interface),
        GetText(KORO_InterfaceDescriptor_GetKey, tree.interfaceDescriptor));
    EXPECT_EQ(CallsOf(producer->Journal(), {"TLOpenInterface"}), Strings{"TLOpenInterface(system, if0)"});
}

TEST_F(InterfaceDescriptor, SecondOpenTellsTheProducersRefusal)
{
    KORO_InterfaceHandle second = nullptr;
    EXPECT_EQ(
        Outcome(KORO_InterfaceDescriptor_OpenInterface(tree.interfaceDescriptor, &second)),
        CallFailure("TLOpenInterface", ProducerErrorOf(GenTL::GC_ERR_RESOURCE_IN_USE)));
    EXPECT_EQ(second, nullptr);
    EXPECT_EQ(GetText(KORO_Interface_GetID, tree.interface), "if0");
}

TEST_F(InterfaceDescriptor, SecondOpenMakesASecondInterfaceIfTheProducerAllowsIt)
{
    producer->Answer("TLOpenInterface", GenTL::GC_ERR_SUCCESS);
    const auto second = Get<KORO_InterfaceHandle>(KORO_InterfaceDescriptor_OpenInterface, tree.interfaceDescriptor);

    EXPECT_NE(second, tree.interface);
    EXPECT_EQ(GetText(KORO_Interface_GetKey, second), GetText(KORO_Interface_GetKey, tree.interface));
    Require(KORO_Interface_Destruct(second));
    EXPECT_EQ(GetText(KORO_Interface_GetID, tree.interface), "if0");
}

TEST_F(InterfaceDescriptor, OpenInterfaceWithoutAPlaceForTheHandleOpensNothing)
{
    producer->ClearJournal();
    EXPECT_EQ(
        Outcome(KORO_InterfaceDescriptor_OpenInterface(tree.interfaceDescriptor, nullptr)),
        NullPointer("interfaceHandle"));
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(InterfaceDescriptor, InterfaceCanBeOpenedAgainAfterItsEnd)
{
    Require(KORO_Interface_Destruct(tree.interface));
    const auto again = Get<KORO_InterfaceHandle>(KORO_InterfaceDescriptor_OpenInterface, tree.interfaceDescriptor);

    EXPECT_EQ(GetText(KORO_Interface_GetID, again), "if0");
}

TEST_F(InterfaceDescriptor, SystemThatGoesDuringAQueryHasExpired)
{
    producer->OnEntry("TLGetInterfaceInfo", [this] { KORO_System_Destruct(tree.system); });
    std::size_t size = 0;

    EXPECT_EQ(Outcome(KORO_InterfaceDescriptor_GetTLType(tree.interfaceDescriptor, nullptr, &size)), parentExpired);
    EXPECT_EQ(
        Outcome(KORO_InterfaceDescriptor_GetTLType(tree.interfaceDescriptor, nullptr, &size)),
        InvalidHandle("interfaceDescriptorHandle"));
}

TEST_F(InterfaceDescriptor, SystemThatGoesDuringTheOpeningLeavesNothingOpen)
{
    Require(KORO_Interface_Destruct(tree.interface));
    producer->OnEntry("TLOpenInterface", [this] { KORO_System_Destruct(tree.system); });
    KORO_InterfaceHandle interface = nullptr;
    KORO_InterfaceDescriptor_OpenInterface(tree.interfaceDescriptor, &interface);
    std::size_t size = 0;

    EXPECT_EQ(producer->Open(), Strings{});
    EXPECT_EQ(Outcome(KORO_Interface_GetKey(interface, nullptr, &size)), InvalidHandle("interfaceHandle"));
}

} // namespace koro::test
