// Producers that break the standard, as they are met in the field, seen from the module tree.
#include "tests/boundary/producer_errors.h"
#include "tests/boundary/tree_test.h"
#include "tests/support/journal.h"

#include <cfenv>
#include <clocale>
#include <csignal>
#include <future>
#include <locale>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace koro::internal
{

// A producer that brings a copy of this library throws under the same name.
class IOException : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace koro::internal

namespace koro::test
{

namespace
{

using Strings = std::vector<std::string>;

constexpr std::size_t absurdSize = std::size_t{1} << 40;

class WildProducers : public TreeTest
{
protected:
    Error FailingUpdate() const
    {
        producer->Answer("TLUpdateInterfaceList", GenTL::GC_ERR_IO);
        return Outcome(KORO_System_UpdateInterfaces(tree.system, 0));
    }

    Error Update() const
    {
        producer->SetChanged("TLUpdateInterfaceList", 1);
        return Outcome(KORO_System_UpdateInterfaces(tree.system, 0));
    }

    Strings InterfaceIDs() const
    {
        Strings ids;
        const auto count = Get<std::size_t>(KORO_System_GetNumInterfaces, tree.system);
        for (std::size_t index = 0; index < count; ++index)
        {
            const auto interface = Get<KORO_InterfaceDescriptorHandle>(KORO_System_GetInterface, tree.system, index);
            const auto base = Get<KORO_ModuleDescriptorHandle>(KORO_InterfaceDescriptor_ToModuleDescriptor, interface);
            ids.push_back(GetText(KORO_ModuleDescriptor_GetID, base));
        }
        return ids;
    }

    void SetVendor(const scripted::Info& info) const { producer->SetInfo("TLGetInfo", 1, info); }

    Error OutcomeOfVendor() const
    {
        std::size_t size = 0;
        return Outcome(KORO_System_GetVendorName(tree.system, nullptr, &size));
    }

    std::string Vendor() const { return GetText(KORO_System_GetVendorName, tree.system); }
};

Error UpdateFailure(KORO_ReturnCode code, const std::string& codeAndName, const std::string& text)
{
    return {code, "[Function: TLUpdateInterfaceList | Error-Code: " + codeAndName + " | Error-Text: " + text + "]"};
}

} // namespace

TEST_F(WildProducers, LastErrorWithoutACodeIsTheGeneralError)
{
    producer->SetLastError({.text = "a text", .writesCode = false});
    EXPECT_EQ(FailingUpdate(), UpdateFailure(KORO_RETURN_CODE_ERROR, "-1001 (GC_ERR_ERROR)", "a text"));
}

TEST_F(WildProducers, LastErrorOfSuccessAfterAFailureIsAnInternalError)
{
    producer->SetLastError({.code = GenTL::GC_ERR_SUCCESS, .text = "No Error"});
    EXPECT_EQ(FailingUpdate(), UpdateFailure(KORO_RETURN_CODE_ERROR, "0 (GC_ERR_SUCCESS)", "No Error"));
}

TEST_F(WildProducers, StaleLastErrorDecidesAboutTheFailure)
{
    producer->SetLastError({.code = GenTL::GC_ERR_ABORT, .text = "of long ago"});
    EXPECT_EQ(FailingUpdate(), UpdateFailure(KORO_RETURN_CODE_ABORTED, "-1012 (GC_ERR_ABORT)", "of long ago"));
}

TEST_F(WildProducers, LastErrorMayBeAnyBytesOrNone)
{
    for (const std::string text : {"", "\xff\xfe no UTF-8 \x80", "two\nlines | and ] brackets %s%n"})
    {
        producer->SetLastError({.text = text});
        EXPECT_EQ(FailingUpdate(), UpdateFailure(KORO_RETURN_CODE_IO_ERROR, "-1010 (GC_ERR_IO)", text));
    }
}

TEST_F(WildProducers, LastErrorWithoutTerminatorCountsWhole)
{
    producer->SetLastError({.text = "no end", .terminated = false});
    EXPECT_EQ(FailingUpdate(), UpdateFailure(KORO_RETURN_CODE_IO_ERROR, "-1010 (GC_ERR_IO)", "no end"));
}

TEST_F(WildProducers, LastErrorThatClaimsMoreThanItHasIsReadToItsEnd)
{
    producer->SetLastError({.text = "short", .claimedSize = 1000});
    EXPECT_EQ(FailingUpdate(), UpdateFailure(KORO_RETURN_CODE_IO_ERROR, "-1010 (GC_ERR_IO)", "short"));
}

TEST_F(WildProducers, LastErrorThatGrowsBetweenItsTwoCallsFailsByItself)
{
    producer->SetLastError({.text = "longer than claimed", .claimedSize = 3});
    EXPECT_EQ(
        FailingUpdate(),
        (Error{KORO_RETURN_CODE_ERROR, "[Function: GCGetLastError | Error-Code: -1016 (GC_ERR_BUFFER_TOO_SMALL)]"}));
}

TEST_F(WildProducers, LastErrorOfAnAbsurdSizeNamesTheBound)
{
    producer->SetLastError({.text = "text", .claimedSize = absurdSize});
    EXPECT_EQ(
        FailingUpdate(),
        (Error{
            KORO_RETURN_CODE_ERROR,
            "[Function: GCGetLastError | Error: 1099511627776 text bytes exceed the bound of 16777216]"}));
}

TEST_F(WildProducers, SizesThatAreOneTooLongDoNoHarm)
{
    SetVendor({.type = GenTL::INFO_DATATYPE_STRING, .bytes = std::string("ZVR\0", 4), .claimedSize = 5});
    EXPECT_EQ(Vendor(), "ZVR");
    producer->SetInfo("TLGetInterfaceID", 0, {.bytes = std::string("if0\0", 4), .claimedSize = 5, .deliveredSize = 5});
    EXPECT_EQ(Update(), Error{});
    EXPECT_EQ(InterfaceIDs(), (Strings{"if0", "if1"}));
}

TEST_F(WildProducers, DeliveredSizeBeyondTheBufferIsNotBelieved)
{
    SetVendor({.type = GenTL::INFO_DATATYPE_STRING, .bytes = "ZVR", .claimedSize = 3, .deliveredSize = absurdSize});
    EXPECT_EQ(Vendor(), "ZVR");

    producer->SetInfo("TLGetInfo", 1234, {.type = 1001, .bytes = "raw", .claimedSize = 3, .deliveredSize = absurdSize});
    std::int32_t type = 0;
    std::size_t size = 0;
    EXPECT_EQ(Outcome(KORO_System_GetInfo(tree.system, 1234, &type, nullptr, &size)), Error{});
    EXPECT_EQ(size, 3u);
}

TEST_F(WildProducers, InformationThatShrinksBetweenItsTwoCallsIsTheShorterOne)
{
    producer->SetInfo("TLGetInfo", 1234, {.bytes = "raw", .claimedSize = 100});
    std::int32_t type = 0;
    std::size_t size = 0;
    EXPECT_EQ(Outcome(KORO_System_GetInfo(tree.system, 1234, &type, nullptr, &size)), Error{});
    EXPECT_EQ(size, 3u);
}

TEST_F(WildProducers, InformationThatGrowsBetweenItsTwoCallsIsTheProducersFailure)
{
    SetVendor({.type = GenTL::INFO_DATATYPE_STRING, .bytes = "a longer text", .claimedSize = 2});
    EXPECT_EQ(
        OutcomeOfVendor(),
        InfoFailure({"TLGetInfo", 1, "TL_INFO_VENDOR"}, ProducerErrorOf(GenTL::GC_ERR_BUFFER_TOO_SMALL)));
}

TEST_F(WildProducers, InformationOfAnAbsurdSizeNamesTheBound)
{
    const auto tooMuch = [](const std::string& function, const std::string& size) {
        return Error{
            KORO_RETURN_CODE_ERROR,
            "[Function: " + function + " | Error: " + size + " information bytes exceed the bound of 16777216]"};
    };
    std::int32_t number = 0;
    SetVendor({.type = GenTL::INFO_DATATYPE_STRING, .bytes = "text", .claimedSize = absurdSize});
    EXPECT_EQ(OutcomeOfVendor(), tooMuch("TLGetInfo", "1099511627776"));
    SetVendor({.type = GenTL::INFO_DATATYPE_STRING, .bytes = "text", .claimedSize = SIZE_MAX});
    EXPECT_EQ(OutcomeOfVendor(), tooMuch("TLGetInfo", "18446744073709551615"));
    SetVendor({.type = GenTL::INFO_DATATYPE_STRING, .bytes = "text", .claimedSize = (16u << 20) + 1});
    EXPECT_EQ(OutcomeOfVendor(), tooMuch("TLGetInfo", "16777217"));
    producer->SetInfo("DevGetInfo", 5, {.bytes = "text", .claimedSize = absurdSize});
    EXPECT_EQ(Outcome(KORO_Device_GetAccessStatus(tree.device, &number)), tooMuch("DevGetInfo", "1099511627776"));
}

TEST_F(WildProducers, InformationOfTheLargestSizePasses)
{
    SetVendor({.type = GenTL::INFO_DATATYPE_STRING, .bytes = std::string(16u << 20, 'x')});
    EXPECT_EQ(Vendor().size(), std::size_t{16} << 20);
}

TEST_F(WildProducers, AbsurdCountOfChildrenNamesTheBoundAndKeepsTheList)
{
    producer->SetCount("TLGetNumInterfaces", 0xFFFFFFFF);
    EXPECT_EQ(
        Update(),
        (Error{
            KORO_RETURN_CODE_ERROR,
            "[Function: TLGetNumInterfaces | Error: 4294967295 children of one module exceed the bound of 65536]"}));
    producer->SetCount("TLGetNumInterfaces", 65537);
    EXPECT_EQ(Update().code, KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(InterfaceIDs(), (Strings{"if0", "if1"}));

    const auto port =
        Get<KORO_PortHandle>(KORO_Module_GetPort, Get<KORO_ModuleHandle>(KORO_System_ToModule, tree.system));
    producer->SetCount("GCGetNumPortURLs", 0xFFFFFFFF);
    std::size_t count = 0;
    EXPECT_EQ(
        Outcome(KORO_Port_GetNumURLs(port, &count)),
        (Error{
            KORO_RETURN_CODE_ERROR,
            "[Function: GCGetNumPortURLs | Error: 4294967295 children of one module exceed the bound of 65536]"}));
}

TEST_F(WildProducers, LargestCountOfChildrenPasses)
{
    const auto port =
        Get<KORO_PortHandle>(KORO_Module_GetPort, Get<KORO_ModuleHandle>(KORO_System_ToModule, tree.system));
    producer->SetCount("GCGetNumPortURLs", 65536);
    EXPECT_EQ(Get<std::size_t>(KORO_Port_GetNumURLs, port), 65536u);
}

TEST_F(WildProducers, IDOfAnAbsurdSizeNamesTheBound)
{
    producer->SetInfo("TLGetInterfaceID", 1, {.bytes = "if1", .claimedSize = absurdSize});
    EXPECT_EQ(
        Update(), (Error{
                      KORO_RETURN_CODE_ERROR,
                      "[Function: TLGetInterfaceID | Error: 1099511627776 text bytes exceed the bound of 16777216]"}));
}

TEST_F(WildProducers, IDsWithoutTerminatorEmptyOrWithTheKeysBarAreIDs)
{
    producer->SetCount("TLGetNumInterfaces", 3);
    producer->SetInfo("TLGetInterfaceID", 0, {.bytes = "no end"});
    producer->SetInfo("TLGetInterfaceID", 1, {.bytes = ""});
    producer->SetInfo("TLGetInterfaceID", 2, scripted::Text("a|b"));

    EXPECT_EQ(Update(), Error{});
    EXPECT_EQ(InterfaceIDs(), (Strings{"no end", "", "a|b"}));
}

TEST_F(WildProducers, IDThatGrowsBetweenItsTwoCallsIsTheProducersFailure)
{
    producer->SetInfo("TLGetInterfaceID", 1, {.bytes = "a longer id", .claimedSize = 2});
    EXPECT_EQ(Update(), CallFailure("TLGetInterfaceID", ProducerErrorOf(GenTL::GC_ERR_BUFFER_TOO_SMALL)));
    EXPECT_EQ(InterfaceIDs(), (Strings{"if0", "if1"}));
}

TEST_F(WildProducers, IDThatRepeatsIsListedTwiceAndItsSecondObjectIsNewAtEachWalk)
{
    struct Found
    {
        static void Count(KORO_InterfaceDescriptorHandle, void* context) { ++*static_cast<int*>(context); }
        static void Lost(const char*, std::size_t, void* context) { ++*static_cast<int*>(context); }
    };
    int found = 0;
    int lost = 0;
    KORO_InterfaceFoundCallbackHandle foundHandle = nullptr;
    KORO_InterfaceLostCallbackHandle lostHandle = nullptr;
    Require(KORO_System_RegisterInterfaceFoundCallback(tree.system, Found::Count, &found, &foundHandle));
    Require(KORO_System_RegisterInterfaceLostCallback(tree.system, Found::Lost, &lost, &lostHandle));
    producer->SetInfo("TLGetInterfaceID", 1, scripted::Text("if0"));

    for (int walk = 1; walk <= 3; ++walk)
    {
        EXPECT_EQ(Update(), Error{});
        EXPECT_EQ(InterfaceIDs(), (Strings{"if0", "if0"}));
        EXPECT_EQ(
            Get<KORO_InterfaceDescriptorHandle>(KORO_System_GetInterface, tree.system, std::size_t{0}),
            tree.interfaceDescriptor);
        EXPECT_EQ(found, walk);
        EXPECT_EQ(lost, 1); // if1, at the first walk
    }
}

TEST_F(WildProducers, ListThatShrinksDuringTheUpdateIsTheProducersFailureAndKeepsTheList)
{
    producer->SetCount("TLGetNumInterfaces", 3);
    EXPECT_EQ(Update(), CallFailure("TLGetInterfaceID", ProducerErrorOf(GenTL::GC_ERR_INVALID_INDEX)));
    EXPECT_EQ(InterfaceIDs(), (Strings{"if0", "if1"}));
}

TEST_F(WildProducers, ListThatChangesDuringTheUpdateIsTakenAsItWasRead)
{
    producer->OnEntry(
        "TLGetNumInterfaces", [&] { producer->SetInfo("TLGetInterfaceID", 1, scripted::Text("changed meanwhile")); });
    EXPECT_EQ(Update(), Error{});
    EXPECT_EQ(InterfaceIDs(), (Strings{"if0", "changed meanwhile"}));
}

TEST_F(WildProducers, UpdateFromInsideTheProducersUpdateOfAnotherModuleWorks)
{
    // Some producers call the application back from their own calls.
    Error inner;
    producer->OnEntry(
        "TLUpdateInterfaceList", [&] { inner = Outcome(KORO_Interface_UpdateDevices(tree.interface, 0)); });
    EXPECT_EQ(Update(), Error{});
    EXPECT_EQ(inner, Error{});
}

TEST_F(WildProducers, IDOfTheSystemMayBeThePathOfTheFile)
{
    Require(KORO_ProducerLibrary_Destruct(tree.producerLibrary));
    producer->SetInfo("GCGetInfo", 0, scripted::Text(producer.Path()));
    const OpenTree again(producer.Path());
    EXPECT_EQ(GetText(KORO_System_GetID, again.system), producer.Path());
    EXPECT_EQ(GetText(KORO_System_GetKey, again.system), producer.Path() + "|" + producer.Path());
}

TEST_F(WildProducers, ExceptionsUnderOurOwnNamesAreNotOurs)
{
    producer->OnEntry("TLUpdateInterfaceList", [] { throw internal::IOException("of another copy"); });
    EXPECT_EQ(
        Outcome(KORO_System_UpdateInterfaces(tree.system, 0)), (Error{KORO_RETURN_CODE_ERROR, "of another copy"}));
}

TEST_F(WildProducers, ExceptionOutOfTheInitialisationUnloadsTheFile)
{
    ScriptedProducer other;
    const auto& path = other.Path();
    KORO_ProducerLibraryHandle handle = nullptr;
    other->OnEntry("GCInitLib", [] { throw 5; });
    EXPECT_EQ(
        Outcome(KORO_ProducerLibrary_Construct(path.c_str(), path.size() + 1, &handle)),
        (Error{KORO_RETURN_CODE_ERROR, "Unhandled exception!"}));
    EXPECT_FALSE(other.IsLoadedByOthers());
}

TEST_F(WildProducers, ExceptionOutOfTheFetchOfATextTakesTheFailuresPlace)
{
    producer->OnEntry("GCGetLastError", [] { throw std::runtime_error("no text"); });
    EXPECT_EQ(FailingUpdate(), (Error{KORO_RETURN_CODE_ERROR, "no text"}));
}

TEST_F(WildProducers, ChangedLocaleAndRoundingModeDoNotReachTheTexts)
{
    struct Grouping : std::numpunct<char>
    {
        char do_thousands_sep() const override { return '\''; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale before;
    const int roundingBefore = std::fegetround();
    producer->OnEntry("TLGetInfo", [&] {
        std::locale::global(std::locale(before, new Grouping));
        std::fesetround(FE_UPWARD);
    });
    SetVendor({.type = GenTL::INFO_DATATYPE_STRING, .bytes = "text", .claimedSize = absurdSize});
    const auto outcome = OutcomeOfVendor();
    std::locale::global(before);
    std::fesetround(roundingBefore);

    EXPECT_EQ(
        outcome, (Error{
                     KORO_RETURN_CODE_ERROR,
                     "[Function: TLGetInfo | Error: 1099511627776 information bytes exceed the bound of 16777216]"}));
}

TEST_F(WildProducers, ChangedSignalHandlersAndThreadsLeftRunningDoNotDisturbTheClose)
{
    const auto handlerBefore = std::signal(SIGUSR1, SIG_DFL);
    std::promise<void> testEnds;
    std::thread leftRunning;
    producer->OnEntry("TLGetInfo", [&] {
        std::signal(SIGUSR1, SIG_IGN);
        if (leftRunning.joinable()) return; // the size query came before
        leftRunning = std::thread([end = testEnds.get_future()] { end.wait(); });
    });
    EXPECT_FALSE(Vendor().empty());
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(tree.producerLibrary)), Error{});
    EXPECT_TRUE(leftRunning.joinable());

    testEnds.set_value();
    leftRunning.join();
    std::signal(SIGUSR1, handlerBefore);
}

TEST_F(WildProducers, ChildrenClosedWithTheirParentByTheProducerCloseQuietly)
{
    // The scripted producer closes what is below, so every later close answers with an invalid handle.
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(tree.producerLibrary)), Error{});
    EXPECT_EQ(CallsOf(producer->Journal(), {"IFClose", "DevClose"}), (Strings{"IFClose(dead)", "DevClose(dead)"}));
}

// A camera of a producer that acts by itself, open and with buffers for its pictures.
class WildCamera
{
public:
    explicit WildCamera(const std::string& variant) : producer(variant), tree(producer.Path())
    {
        tree.QueueBuffers(4, pictureSize);
        Require(KORO_DataStream_StartAcquisition(tree.stream, KORO_ACQ_START_FLAGS_DEFAULT, infinite));
        const auto node = Find("AcquisitionStart");
        Require(KORO_CommandNode_Execute(Get<KORO_CommandNodeHandle>(KORO_Node_ToCommandNode, node)));
    }

    KORO_NodeHandle Find(const std::string& name) const
    {
        const auto module = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice);
        const auto map = Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0});
        return Get<KORO_NodeHandle>(KORO_NodeMap_FindNode, map, name.c_str(), name.size() + 1);
    }

    KORO_BufferHandle Next() const
    {
        return Get<KORO_BufferHandle>(KORO_DataStream_WaitForFinishedBuffer, tree.stream, infinite);
    }

    static constexpr std::size_t pictureSize = 64 * 48;
    static constexpr std::uint64_t infinite = GenTL::GENTL_INFINITE;
    const ScriptedProducer producer;
    const KoroLibrary library;
    OpenTree tree;
};

TEST(WildCameras, FrameWithoutItsLeaderIsIncompleteAndTheNextOneIsWhole)
{
    const WildCamera camera("wild_lost_leaders");
    std::uint64_t format = 0;
    camera.Next();
    camera.Next();
    const auto broken = camera.Next();
    EXPECT_TRUE(Get<KORO_Bool8>(KORO_Buffer_GetIsIncomplete, broken));
    EXPECT_EQ(KORO_Buffer_GetPixelFormat(broken, &format), KORO_RETURN_CODE_ERROR);

    const auto whole = camera.Next();
    EXPECT_FALSE(Get<KORO_Bool8>(KORO_Buffer_GetIsIncomplete, whole));
    EXPECT_EQ(Outcome(KORO_Buffer_GetPixelFormat(whole, &format)), Error{});
}

TEST(WildCameras, PayloadSizeThatTheStreamDoesNotAnswerIsAFeatureOfTheCamera)
{
    const WildCamera camera("wild_no_payload_size");
    std::size_t size = 0;
    EXPECT_EQ(KORO_DataStream_GetPayloadSize(camera.tree.stream, &size), KORO_RETURN_CODE_ERROR);
    const auto node = Get<KORO_IntegerNodeHandle>(KORO_Node_ToIntegerNode, camera.Find("PayloadSize"));
    EXPECT_EQ(
        Get<std::int64_t>(KORO_IntegerNode_GetValue, node, KORO_NODE_CACHE_POLICY_USE_CACHE),
        std::int64_t{WildCamera::pictureSize});
}

TEST(WildCameras, AreDescribedByTheTextOfTheirPlaceWhereNothingElseIsKnown)
{
    const WildCamera camera("wild_strict_start");
    EXPECT_FALSE(Get<KORO_Bool8>(KORO_Buffer_GetIsIncomplete, camera.Next()));
}

TEST(ProducersOfUnknownVersion, MissingFunctionIsToldByNameWhenItIsNeeded)
{
    const ScriptedProducer producer("scripted_no_version", {"IFGetInfo", "GCReadPort", "IFGetDeviceInfo"});
    const KoroLibrary library;
    const OpenTree tree(producer.Path());
    const auto missing = [&](const std::string& function) {
        return Error{
            KORO_RETURN_CODE_ERROR,
            "The instrumented TL (" + producer.Path() + ") does not implement " + function + "()!"};
    };
    const auto port =
        Get<KORO_PortHandle>(KORO_Module_GetPort, Get<KORO_ModuleHandle>(KORO_System_ToModule, tree.system));
    std::uint8_t byte = 0;
    std::size_t size = 0;

    EXPECT_EQ(Outcome(KORO_Interface_GetTLType(tree.interface, nullptr, &size)), missing("IFGetInfo"));
    EXPECT_EQ(Outcome(KORO_Port_Read(port, 0, &byte, 1)), missing("GCReadPort"));
    EXPECT_EQ(
        Outcome(KORO_DeviceDescriptor_GetVendorName(tree.deviceDescriptor, nullptr, &size)),
        missing("IFGetDeviceInfo"));
    EXPECT_EQ(GetText(KORO_System_GetVendorName, tree.system), "ZVR");
}

TEST(ProducersOfUnknownVersion, MissingCloseFunctionsReachNobody)
{
    const ScriptedProducer producer("scripted_no_version", {"DSClose", "DevClose", "IFClose", "TLClose"});
    const KoroLibrary library;
    const OpenTree tree(producer.Path());

    EXPECT_EQ(Outcome(KORO_DataStream_Destruct(tree.stream)), Error{});
    EXPECT_EQ(Outcome(KORO_Device_Destruct(tree.device)), Error{});
    EXPECT_EQ(Outcome(KORO_Interface_Destruct(tree.interface)), Error{});
    EXPECT_EQ(Outcome(KORO_System_Destruct(tree.system)), Error{});
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(tree.producerLibrary)), Error{});
}

TEST(ProducersOfUnknownVersion, VersionNumbersAreTheProducersFailure)
{
    const ScriptedProducer producer("scripted_no_version");
    const KoroLibrary library;
    const OpenTree tree(producer.Path());
    std::uint32_t number = 0;

    EXPECT_EQ(
        Outcome(KORO_SystemDescriptor_GetGenTLVersionMajor(tree.systemDescriptor, &number)),
        InfoFailure({"GCGetInfo", 9, "TL_INFO_GENTL_VER_MAJOR"}, ProducerErrorOf(GenTL::GC_ERR_NOT_IMPLEMENTED)));
    EXPECT_EQ(
        Outcome(KORO_System_GetGenTLVersionMinor(tree.system, &number)),
        InfoFailure({"TLGetInfo", 10, "TL_INFO_GENTL_VER_MINOR"}, ProducerErrorOf(GenTL::GC_ERR_NOT_IMPLEMENTED)));
}

} // namespace koro::test
