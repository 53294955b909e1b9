#include "tests/boundary/info_getters.h"
#include "tests/boundary/tree_test.h"
#include "tests/boundary/update_listener.h"

#include <gmock/gmock.h>
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

    KORO_InterfaceDescriptorHandle Interface(std::size_t index) const
    {
        return Get<KORO_InterfaceDescriptorHandle>(KORO_System_GetInterface, tree.system, index);
    }

    Error OutcomeOfKey(KORO_InterfaceDescriptorHandle interfaceDescriptor) const
    {
        std::size_t size = 0;
        return Outcome(KORO_InterfaceDescriptor_GetKey(interfaceDescriptor, nullptr, &size));
    }

    void RemoveInterface(const std::string& id) const
    {
        producer->Edit([&](scripted::Tree& edited) {
            std::erase_if(edited.interfaces, [&](const auto& interface) { return interface->id == id; });
        });
    }

    void AddInterface(const std::string& id) const
    {
        producer->Edit([&](scripted::Tree& edited) { edited.interfaces.push_back(scripted::MakeInterface(id)); });
    }
};

using Listener = UpdateListener<
    KORO_SystemHandle, KORO_InterfaceDescriptorHandle, KORO_InterfaceFoundCallbackHandle,
    KORO_InterfaceLostCallbackHandle, KORO_System_RegisterInterfaceFoundCallback,
    KORO_System_UnregisterInterfaceFoundCallback, KORO_System_RegisterInterfaceLostCallback,
    KORO_System_UnregisterInterfaceLostCallback, KORO_InterfaceDescriptor_GetKey>;

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

TEST_F(System, UpdatePassesTheTimeoutOn)
{
    Require(KORO_System_UpdateInterfaces(tree.system, 1234));
    Require(KORO_System_UpdateInterfaces(tree.system, KORO_INFINITE));

    EXPECT_EQ(
        producer->Journal(),
        (Strings{"TLUpdateInterfaceList(system, 1234)", "TLUpdateInterfaceList(system, infinite)"}));
}

TEST_F(System, FirstUpdateWalksTheListWhateverTheProducerSaysForChanged)
{
    Require(KORO_System_Destruct(tree.system));
    const auto system = Get<KORO_SystemHandle>(KORO_SystemDescriptor_OpenSystem, tree.systemDescriptor);
    producer->SetChanged("TLUpdateInterfaceList", 0);

    EXPECT_EQ(Get<std::size_t>(KORO_System_GetNumInterfaces, system), 0u);
    Require(KORO_System_UpdateInterfaces(system, 0));
    EXPECT_EQ(Get<std::size_t>(KORO_System_GetNumInterfaces, system), 2u);
}

TEST_F(System, ChangedThatIsNeverWrittenCountsAsUnchanged)
{
    producer->SetChanged("TLUpdateInterfaceList", std::nullopt);
    AddInterface("if2");

    Require(KORO_System_UpdateInterfaces(tree.system, 0));
    EXPECT_EQ(producer->Journal(), Strings{"TLUpdateInterfaceList(system, 0)"});
    EXPECT_EQ(Get<std::size_t>(KORO_System_GetNumInterfaces, tree.system), 2u);
}

TEST_F(System, LaterUpdateWalksTheListOnlyWhenTheProducerSaysSo)
{
    producer->SetChanged("TLUpdateInterfaceList", 0);
    Require(KORO_System_UpdateInterfaces(tree.system, 0));
    EXPECT_EQ(producer->Journal(), Strings{"TLUpdateInterfaceList(system, 0)"});

    producer->SetChanged("TLUpdateInterfaceList", 1);
    producer->ClearJournal();
    Require(KORO_System_UpdateInterfaces(tree.system, 0));
    EXPECT_EQ(
        producer->Journal(), (Strings{
                                 "TLUpdateInterfaceList(system, 0)", "TLGetNumInterfaces(system)",
                                 "TLGetInterfaceID(system, 0, size)", "TLGetInterfaceID(system, 0, data)",
                                 "TLGetInterfaceID(system, 1, size)", "TLGetInterfaceID(system, 1, data)"}));
}

TEST_F(System, NumberOfInterfacesIsZeroBeforeAnyUpdate)
{
    Require(KORO_System_Destruct(tree.system));
    const auto system = Get<KORO_SystemHandle>(KORO_SystemDescriptor_OpenSystem, tree.systemDescriptor);
    KORO_InterfaceDescriptorHandle interface = nullptr;
    producer->ClearJournal();

    ExpectScalarOut<KORO_SystemHandle, std::size_t>("numInterfaces", 0, KORO_System_GetNumInterfaces, system);
    EXPECT_EQ(Outcome(KORO_System_GetInterface(system, 0, &interface)), outOfRange);
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(System, InterfaceTwiceIsTheSameHandleAndAsksNothing)
{
    EXPECT_EQ(Interface(0), Interface(0));
    EXPECT_NE(Interface(0), Interface(1));
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(System, InterfaceTestsHandleThenPointerThenIndex)
{
    KORO_InterfaceDescriptorHandle interface = nullptr;
    EXPECT_EQ(Outcome(KORO_System_GetInterface(nullptr, 9, nullptr)), InvalidHandle("systemHandle"));
    EXPECT_EQ(Outcome(KORO_System_GetInterface(tree.system, 9, nullptr)), NullPointer("interfaceDescriptorHandle"));
    EXPECT_EQ(Outcome(KORO_System_GetInterface(tree.system, 2, &interface)), outOfRange);
    EXPECT_EQ(interface, nullptr);
}

TEST_F(System, InterfaceThatStaysKeepsItsHandle)
{
    const auto second = Interface(1);
    RemoveInterface("if0");
    Require(KORO_System_UpdateInterfaces(tree.system, 0));

    EXPECT_EQ(Interface(0), second);
    EXPECT_EQ(GetText(KORO_InterfaceDescriptor_GetKey, second), producer.Path() + "|scripted producer|if1");
}

TEST_F(System, LostInterfaceTakesItsHandleAlong)
{
    const auto first = Interface(0);
    const auto second = Interface(1);
    RemoveInterface("if1");
    Require(KORO_System_UpdateInterfaces(tree.system, 0));

    EXPECT_EQ(OutcomeOfKey(first), Error{});
    EXPECT_EQ(OutcomeOfKey(second), InvalidHandle("interfaceDescriptorHandle"));
}

TEST_F(System, InterfaceFoundAgainIsAnotherObjectAndIsWithdrawnAnew)
{
    for (int round = 0; round < 3; ++round)
    {
        const auto interface = Interface(1);
        EXPECT_EQ(OutcomeOfKey(interface), Error{});
        RemoveInterface("if1");
        Require(KORO_System_UpdateInterfaces(tree.system, 0));
        EXPECT_EQ(OutcomeOfKey(interface), InvalidHandle("interfaceDescriptorHandle"));
        AddInterface("if1");
        Require(KORO_System_UpdateInterfaces(tree.system, 0));
        EXPECT_EQ(OutcomeOfKey(Interface(1)), Error{});
    }
}

TEST_F(System, FoundCallbackGetsAHandleThatIsWithdrawnWhenItIsLost)
{
    Listener listener(tree.system);
    AddInterface("if2");
    Require(KORO_System_UpdateInterfaces(tree.system, 0));

    ASSERT_EQ(listener.found.size(), 1u);
    EXPECT_EQ(listener.found[0], Interface(2));
    EXPECT_EQ(GetText(KORO_InterfaceDescriptor_GetKey, listener.found[0]), producer.Path() + "|scripted producer|if2");

    RemoveInterface("if2");
    Require(KORO_System_UpdateInterfaces(tree.system, 0));
    EXPECT_EQ(OutcomeOfKey(listener.found[0]), InvalidHandle("interfaceDescriptorHandle"));
}

TEST_F(System, LostOnesAreReportedBeforeFoundOnesAndTheseInOrder)
{
    Listener listener(tree.system);
    producer->Edit([](scripted::Tree& edited) {
        edited.interfaces = {
            scripted::MakeInterface("if3"), scripted::MakeInterface("if2"), scripted::MakeInterface("if4")};
    });
    Require(KORO_System_UpdateInterfaces(tree.system, 0));

    ASSERT_EQ(listener.reports.size(), 5u);
    EXPECT_THAT(
        Strings(listener.reports.begin(), listener.reports.begin() + 2),
        testing::UnorderedElementsAre("lost if0 (4)", "lost if1 (4)"));
    const auto prefix = "found " + producer.Path() + "|scripted producer|";
    EXPECT_EQ(
        Strings(listener.reports.begin() + 2, listener.reports.end()),
        (Strings{prefix + "if3", prefix + "if2", prefix + "if4"}));
}

TEST_F(System, ListIsPublishedBeforeTheFirstCallback)
{
    Listener listener(tree.system);
    std::vector<std::size_t> counts;
    listener.onReport = [&] { counts.push_back(Get<std::size_t>(KORO_System_GetNumInterfaces, tree.system)); };
    RemoveInterface("if0");
    AddInterface("if2");
    AddInterface("if3");
    Require(KORO_System_UpdateInterfaces(tree.system, 0));

    EXPECT_EQ(counts, (std::vector<std::size_t>{3, 3, 3}));
}

TEST_F(System, UnregisteredCallbacksAreNotCalled)
{
    Listener listener(tree.system);
    EXPECT_EQ(Outcome(KORO_System_UnregisterInterfaceFoundCallback(tree.system, listener.foundHandle)), Error{});
    EXPECT_EQ(Outcome(KORO_System_UnregisterInterfaceLostCallback(tree.system, listener.lostHandle)), Error{});
    RemoveInterface("if0");
    AddInterface("if2");
    Require(KORO_System_UpdateInterfaces(tree.system, 0));

    EXPECT_EQ(listener.reports, Strings{});
}

TEST_F(System, UnknownCallbackHandleIsIgnored)
{
    int anything = 0;
    const auto found = reinterpret_cast<KORO_InterfaceFoundCallbackHandle>(&anything);
    const auto lost = reinterpret_cast<KORO_InterfaceLostCallbackHandle>(&anything);
    EXPECT_EQ(Outcome(KORO_System_UnregisterInterfaceFoundCallback(tree.system, found)), Error{});
    EXPECT_EQ(Outcome(KORO_System_UnregisterInterfaceLostCallback(tree.system, lost)), Error{});
    EXPECT_EQ(Outcome(KORO_System_UnregisterInterfaceFoundCallback(tree.system, nullptr)), Error{});

    Listener listener(tree.system);
    listener.Unregister();
    EXPECT_EQ(Outcome(KORO_System_UnregisterInterfaceFoundCallback(tree.system, listener.foundHandle)), Error{});
}

TEST_F(System, RegistrationsTestHandleThenCallbackThenPlaceOfTheHandle)
{
    const auto found = [](KORO_InterfaceDescriptorHandle, void*) {};
    const auto lost = [](const char*, std::size_t, void*) {};
    EXPECT_EQ(
        Outcome(KORO_System_RegisterInterfaceFoundCallback(nullptr, nullptr, nullptr, nullptr)),
        InvalidHandle("systemHandle"));
    EXPECT_EQ(
        Outcome(KORO_System_RegisterInterfaceFoundCallback(tree.system, nullptr, nullptr, nullptr)),
        NullPointer("callback"));
    EXPECT_EQ(
        Outcome(KORO_System_RegisterInterfaceFoundCallback(tree.system, found, nullptr, nullptr)),
        NullPointer("callbackHandle"));
    EXPECT_EQ(
        Outcome(KORO_System_RegisterInterfaceLostCallback(tree.system, nullptr, nullptr, nullptr)),
        NullPointer("callback"));
    EXPECT_EQ(
        Outcome(KORO_System_RegisterInterfaceLostCallback(tree.system, lost, nullptr, nullptr)),
        NullPointer("callbackHandle"));
}

TEST_F(System, RegisteringFromInsideTheSameRegistryIsCodeOneAndDoesNotHang)
{
    Listener listener(tree.system);
    std::vector<KORO_ReturnCode> fromFound;
    std::vector<KORO_ReturnCode> fromLost;
    listener.onFound = [&] {
        KORO_InterfaceFoundCallbackHandle handle = nullptr;
        const auto callback = [](KORO_InterfaceDescriptorHandle, void*) {};
        fromFound.push_back(KORO_System_RegisterInterfaceFoundCallback(tree.system, callback, nullptr, &handle));
        fromFound.push_back(KORO_System_UnregisterInterfaceFoundCallback(tree.system, listener.foundHandle));
    };
    listener.onLost = [&] {
        KORO_InterfaceLostCallbackHandle handle = nullptr;
        const auto callback = [](const char*, std::size_t, void*) {};
        fromLost.push_back(KORO_System_RegisterInterfaceLostCallback(tree.system, callback, nullptr, &handle));
        fromLost.push_back(KORO_System_UnregisterInterfaceLostCallback(tree.system, listener.lostHandle));
    };
    RemoveInterface("if0");
    AddInterface("if2");

    EXPECT_EQ(Outcome(KORO_System_UpdateInterfaces(tree.system, 0)), Error{});
    EXPECT_EQ(fromFound, (std::vector<KORO_ReturnCode>{KORO_RETURN_CODE_ERROR, KORO_RETURN_CODE_ERROR}));
    EXPECT_EQ(fromLost, (std::vector<KORO_ReturnCode>{KORO_RETURN_CODE_ERROR, KORO_RETURN_CODE_ERROR}));
}

TEST_F(System, RegisteringAtTheOtherRegistryFromInsideACallbackWorks)
{
    Listener listener(tree.system);
    listener.onFound = [&] {
        KORO_InterfaceLostCallbackHandle handle = nullptr;
        const auto callback = [](const char*, std::size_t, void*) {};
        EXPECT_EQ(Outcome(KORO_System_RegisterInterfaceLostCallback(tree.system, callback, nullptr, &handle)), Error{});
    };
    AddInterface("if2");
    Require(KORO_System_UpdateInterfaces(tree.system, 0));
    EXPECT_EQ(listener.found.size(), 1u);
}

TEST_F(System, FetchingANewChildInsideALostCallbackIsCodeOneAndLeavesNoHandle)
{
    Listener listener(tree.system);
    Error outcome;
    KORO_InterfaceDescriptorHandle fetched = nullptr;
    listener.onLost = [&] { outcome = Outcome(KORO_System_GetInterface(tree.system, 0, &fetched)); };
    Require(KORO_System_UpdateInterfaces(tree.system, 0));
    RemoveInterface("if0");

    EXPECT_EQ(Outcome(KORO_System_UpdateInterfaces(tree.system, 0)), Error{});
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(fetched, nullptr);
    EXPECT_EQ(OutcomeOfKey(Interface(0)), Error{});
}

TEST_F(System, UpdateInsideACallbackWorks)
{
    Listener listener(tree.system);
    listener.onFound = [&] {
        RemoveInterface("if2");
        EXPECT_EQ(Outcome(KORO_System_UpdateInterfaces(tree.system, 0)), Error{});
    };
    AddInterface("if2");

    EXPECT_EQ(Outcome(KORO_System_UpdateInterfaces(tree.system, 0)), Error{});
    EXPECT_EQ(listener.reports.size(), 2u);
    EXPECT_EQ(listener.reports.back(), "lost if2 (4)");
    EXPECT_EQ(OutcomeOfKey(listener.found[0]), InvalidHandle("interfaceDescriptorHandle"));
}

TEST_F(System, FailedUpdateLeavesTheListAndReportsNothing)
{
    Listener listener(tree.system);
    AddInterface("if2");
    producer->AnswerOnce("TLUpdateInterfaceList", GenTL::GC_ERR_BUSY);

    EXPECT_EQ(
        Outcome(KORO_System_UpdateInterfaces(tree.system, 0)),
        CallFailure("TLUpdateInterfaceList", ProducerErrorOf(GenTL::GC_ERR_BUSY)));
    EXPECT_EQ(Get<std::size_t>(KORO_System_GetNumInterfaces, tree.system), 2u);
    EXPECT_EQ(listener.reports, Strings{});
}

TEST_F(System, WalkThatFailsHalfWayMakesTheNextOneFindItsChildrenAnew)
{
    Listener listener(tree.system);
    const auto first = Interface(0);
    const auto second = Interface(1);
    producer->SetChanged("TLUpdateInterfaceList", 1);
    producer->SetInfo("TLGetInterfaceID", 1, scripted::Failing(GenTL::GC_ERR_IO));

    EXPECT_EQ(
        Outcome(KORO_System_UpdateInterfaces(tree.system, 0)),
        CallFailure("TLGetInterfaceID", ProducerErrorOf(GenTL::GC_ERR_IO)));
    EXPECT_EQ(Interface(0), first);
    EXPECT_EQ(listener.reports, Strings{});

    producer->SetInfo("TLGetInterfaceID", 1, scripted::Text("if1"));
    Require(KORO_System_UpdateInterfaces(tree.system, 0));
    EXPECT_EQ(listener.reports, Strings{"found " + producer.Path() + "|scripted producer|if0"});
    EXPECT_EQ(Interface(0), listener.found[0]);
    EXPECT_NE(Interface(0), first);
    EXPECT_EQ(Interface(1), second);
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
