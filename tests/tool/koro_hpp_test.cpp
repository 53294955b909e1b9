#include "tests/boundary/connection_changes.h"
#include "tests/support/scripted_producer.h"
#include "tests/tool/koro_tree.h"
#include "tests/tool/tool_run.h"
#include <koro/koro.hpp>

#include <atomic>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <thread>
#include <type_traits>

namespace
{

using koro::test::CodeOf;
using koro::test::ConnectionRecord;
using koro::test::ReportingProducer;
using koro::test::ScriptedProducer;
using koro::test::Tree;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr uint64_t waitTimeout_ms = 60000;

TEST(KoroLibrary, InitialisationIsCounted)
{
    EXPECT_FALSE(koro::Library::IsInitialized());
    {
        koro::Library first = koro::Library::Initialize();
        {
            const koro::Library second = koro::Library::Initialize();
            koro::Library moved = std::move(first);
        }
        EXPECT_FALSE(koro::Library::IsInitialized());
        const koro::Library third = koro::Library::Initialize();
        EXPECT_TRUE(koro::Library::IsInitialized());
        EXPECT_EQ(koro::Library::Version(), "1.11.1");
    }
    EXPECT_FALSE(koro::Library::IsInitialized());
}

TEST(KoroLibrary, CallBeforeInitialisationCarriesCodeAndText)
{
    try
    {
        koro::Library::Version();
        FAIL() << "no error";
    }
    catch (const koro::Error& error)
    {
        EXPECT_EQ(error.Code(), KORO_RETURN_CODE_NOT_INITIALIZED);
        EXPECT_STREQ(
            error.what(), "ZVR koro genericAPI library not initialized. Call koro::Library::Initialize() / "
                          "KORO_Library_Initialize() before anything else.");
    }
}

TEST(KoroOwners, MoveOnlyAndNeverCopied)
{
    static_assert(!std::is_copy_constructible_v<koro::Library>);
    static_assert(!std::is_copy_constructible_v<koro::Device>);
    static_assert(!std::is_copy_assignable_v<koro::DataStream>);
    static_assert(std::is_nothrow_move_constructible_v<koro::Interface>);
    static_assert(std::is_nothrow_move_assignable_v<koro::DataStream>);
    static_assert(std::is_copy_constructible_v<koro::Buffer>);
    static_assert(!std::is_copy_constructible_v<koro::Registration>);
}

TEST(KoroOwners, CloseFromTheLeaves)
{
    const ScriptedProducer producer;
    {
        const Tree tree(producer.Path());
        EXPECT_THAT(producer->Open(), testing::Not(testing::IsEmpty()));
    }
    EXPECT_THAT(producer->Open(), testing::IsEmpty());
}

TEST(KoroOwners, MovedFromAndClosedOnesAnswerInvalidHandle)
{
    const ScriptedProducer producer;
    Tree tree(producer.Path());
    koro::Device moved = std::move(tree.device);
    EXPECT_FALSE(tree.device);
    EXPECT_EQ(CodeOf([&] { tree.device.ID(); }), KORO_RETURN_CODE_INVALID_HANDLE);
    EXPECT_EQ(moved.ID(), "if0-dev0");

    EXPECT_EQ(moved.Close(), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(CodeOf([&] { moved.ID(); }), KORO_RETURN_CODE_INVALID_HANDLE);
    EXPECT_EQ(moved.Close(), KORO_RETURN_CODE_SUCCESS);
}

TEST(KoroOwners, AssignmentClosesTheOldOne)
{
    const ScriptedProducer producer;
    Tree tree(producer.Path());
    tree.stream = koro::DataStream();
    tree.device = koro::Device();
    koro::Interface second = tree.system.Interfaces().at(1).OpenInterface();
    tree.firstInterface = std::move(second);
    EXPECT_EQ(tree.firstInterface.ID(), "if1");
    EXPECT_FALSE(second);
}

TEST(KoroOwners, AssignmentOfTheSameNumberEndsNothing)
{
    const ScriptedProducer producer;
    Tree tree(producer.Path());
    koro::Interface stale(tree.firstInterface.Get()); // as if its interface had ended, and a new one had its number
    stale = std::move(tree.firstInterface);
    EXPECT_FALSE(tree.firstInterface);
    EXPECT_EQ(stale.ID(), "if0");
    tree.firstInterface = std::move(stale);
}

TEST(KoroOwners, EndAfterTheLibrarysEndIsHarmless)
{
    const ScriptedProducer producer;
    std::optional<Tree> tree(producer.Path());
    tree->library.Close();
    EXPECT_EQ(tree->stream.Close(), KORO_RETURN_CODE_NOT_INITIALIZED);
    tree.reset();
    EXPECT_THAT(producer->Open(), testing::IsEmpty());
}

TEST(KoroViews, ViewOfAClosedParentAnswersInvalidHandle)
{
    const ScriptedProducer producer;
    Tree tree(producer.Path());
    const koro::DeviceDescriptor descriptor = tree.firstInterface.Devices().at(0);
    const koro::RemoteDevice remote = tree.device.RemoteDevice();
    tree.stream.Close();
    tree.device.Close();
    EXPECT_EQ(CodeOf([&] { remote.Port(); }), KORO_RETURN_CODE_INVALID_HANDLE);
    tree.firstInterface.Close();
    EXPECT_EQ(CodeOf([&] { descriptor.ID(); }), KORO_RETURN_CODE_INVALID_HANDLE);
}

TEST(KoroTree, EveryModuleTellsWhoItIs)
{
    const ScriptedProducer producer;
    const Tree tree(producer.Path());
    EXPECT_EQ(tree.producer.Key(), producer.Path());
    EXPECT_EQ(tree.producer.System().ID(), tree.system.ID());
    EXPECT_EQ(tree.producer.System().Key(), tree.system.Key());
    EXPECT_EQ(tree.producer.System().VendorName(), "ZVR");
    EXPECT_EQ(tree.system.GenTLVersionMajor(), 1u);
    EXPECT_EQ(tree.system.GenTLVersionMinor(), 5u);
    EXPECT_EQ(tree.system.Interfaces().size(), 2u);
    EXPECT_EQ(tree.system.Interfaces().at(0).ID(), "if0");
    EXPECT_EQ(tree.firstInterface.ID(), "if0");
    EXPECT_EQ(tree.firstInterface.Devices().size(), 2u);
    EXPECT_EQ(tree.firstInterface.Devices().at(1).ID(), "if0-dev1");
    EXPECT_EQ(tree.firstInterface.Devices().at(1).SerialNumber(), "serial of if0-dev1");
    EXPECT_TRUE(tree.firstInterface.Devices().at(1).IsOpenable(koro::AccessType::Exclusive));
    EXPECT_EQ(tree.device.UserDefinedName(), "user of if0-dev0");
    EXPECT_EQ(tree.device.RemoteDevice().LocalDevice().Get(), tree.device.Get());
    EXPECT_EQ(tree.device.DataStreams().at(0).ID(), "if0-dev0-stream0");
    EXPECT_EQ(tree.stream.ID(), "if0-dev0-stream0");
    EXPECT_EQ(tree.stream.Key(), tree.device.Key() + "|if0-dev0-stream0");
    EXPECT_FALSE(tree.stream.IsGrabbing());
}

TEST(KoroTree, ParentsAreViewsWithTheSameCalls)
{
    const ScriptedProducer producer;
    const Tree tree(producer.Path());
    const koro::DeviceDescriptor descriptor = tree.firstInterface.Devices().at(0);
    EXPECT_EQ(tree.stream.ParentDevice().Get(), tree.device.Get());
    EXPECT_EQ(tree.device.DataStreams().at(0).ParentDevice().ID(), "if0-dev0");
    EXPECT_EQ(tree.device.RemoteDevice().LocalDevice().SerialNumber(), "serial of if0-dev0");
    EXPECT_EQ(tree.device.ParentInterface().Get(), tree.firstInterface.Get());
    EXPECT_EQ(descriptor.ParentInterface().Devices().size(), 2u);
    EXPECT_EQ(tree.firstInterface.ParentSystem().Get(), tree.system.Get());
    EXPECT_EQ(tree.system.Interfaces().at(0).ParentSystem().VendorName(), "ZVR");
    EXPECT_EQ(tree.system.ParentLibrary().Get(), tree.producer.Get());
    EXPECT_EQ(tree.producer.System().ParentLibrary().Key(), producer.Path());
    EXPECT_EQ(tree.device.RemoteDevice().Port().URLs().at(0).ParentPort(), tree.device.RemoteDevice().Port());
    EXPECT_EQ(tree.device.AccessStatus(), descriptor.AccessStatus());
    EXPECT_TRUE(descriptor.IsOpenableExclusive());
    const koro::DeviceView view = tree.device;
    EXPECT_EQ(view.ID(), "if0-dev0");
}

TEST(KoroTree, RawInformationCarriesTypeAndBytes)
{
    const ScriptedProducer producer;
    const Tree tree(producer.Path());
    const koro::RawInfo id = tree.firstInterface.Info(KORO_INTERFACE_INFO_ID);
    EXPECT_EQ(id.dataType, KORO_INFO_DATATYPE_STRING);
    EXPECT_THAT(id.bytes, ElementsAre('i', 'f', '0', '\0'));
    producer->AnswerOnce("DevGetInfo", GenTL::GC_ERR_IO);
    EXPECT_EQ(CodeOf([&] { tree.device.Info(KORO_DEVICE_INFO_VENDOR); }), KORO_RETURN_CODE_IO_ERROR);
}

TEST(KoroTree, FailureCarriesTheProducersText)
{
    const ScriptedProducer producer;
    const Tree tree(producer.Path());
    producer->AnswerOnce("IFOpenDevice", GenTL::GC_ERR_ACCESS_DENIED);
    try
    {
        tree.firstInterface.Devices().at(1).OpenDevice(koro::AccessType::Exclusive);
        FAIL() << "no error";
    }
    catch (const koro::Error& error)
    {
        EXPECT_EQ(error.Code(), KORO_RETURN_CODE_BAD_ACCESS);
        EXPECT_STREQ(
            error.what(), "[Function: IFOpenDevice | Error-Code: -1005 (GC_ERR_ACCESS_DENIED) | Error-Text: scripted "
                          "failure of IFOpenDevice]");
    }
}

TEST(KoroTree, LoadingNamesTheFile)
{
    const koro::Library library = koro::Library::Initialize();
    try
    {
        const koro::ProducerLibrary missing("/nowhere/x.cti");
        FAIL() << "no error";
    }
    catch (const koro::Error& error)
    {
        EXPECT_EQ(error.Code(), KORO_RETURN_CODE_CTI_LOADING_ERROR);
        EXPECT_THAT(error.what(), HasSubstr("Loading CTI /nowhere/x.cti failed! Code: "));
    }
}

TEST(KoroPort, RegistersAndDescriptionAreReached)
{
    const ScriptedProducer producer;
    const Tree tree(producer.Path());
    const koro::Port port = tree.device.RemoteDevice().Port();
    port.Write(4, {1, 2, 3});
    EXPECT_THAT(port.Read(4, 3), ElementsAre(1, 2, 3));
    EXPECT_EQ(port.URLs().size(), 1u);
    EXPECT_THAT(port.URLs().at(0).URL(), HasSubstr("scripted.xml"));
}

TEST(KoroPort, NothingToTransferIsNoFailureAndNoCall)
{
    const ScriptedProducer producer;
    Tree tree(producer.Path());
    const koro::Port port = tree.device.RemoteDevice().Port();
    producer->ClearJournal();
    EXPECT_THAT(port.Read(4, 0), testing::IsEmpty());
    port.Write(4, {});
    EXPECT_THAT(producer->Journal(), testing::IsEmpty());
    tree.stream.Close();
    tree.device.Close();
    EXPECT_EQ(CodeOf([&] { static_cast<void>(port.Read(4, 0)); }), KORO_RETURN_CODE_INVALID_HANDLE);
    EXPECT_EQ(CodeOf([&] { port.Write(4, {}); }), KORO_RETURN_CODE_INVALID_HANDLE);
}

TEST(KoroCallbacks, FoundAndLostArriveUntilTheRegistrationEnds)
{
    const ScriptedProducer producer;
    const Tree tree(producer.Path());
    std::vector<std::string> found;
    std::vector<std::string> lost;
    koro::Registration foundNews =
        tree.firstInterface.OnDeviceFound([&](koro::DeviceDescriptor device) { found.push_back(device.ID()); });
    const koro::Registration lostNews =
        tree.firstInterface.OnDeviceLost([&](const std::string& id) { lost.push_back(id); });

    producer->Edit([](scripted::Tree& edited) { edited.interfaces.at(0)->devices.at(1)->id = "newcomer"; });
    producer->SetChanged("IFUpdateDeviceList", true);
    tree.firstInterface.UpdateDevices(1000);
    EXPECT_THAT(found, ElementsAre("newcomer"));
    EXPECT_THAT(lost, ElementsAre("if0-dev1"));

    foundNews.End();
    producer->Edit([](scripted::Tree& edited) { edited.interfaces.at(0)->devices.at(1)->id = "another"; });
    tree.firstInterface.UpdateDevices(1000);
    EXPECT_THAT(found, ElementsAre("newcomer"));
    EXPECT_THAT(lost, ElementsAre("if0-dev1", "newcomer"));
}

TEST(KoroCallbacks, InterfacesComeAndGoToo)
{
    const ScriptedProducer producer;
    const Tree tree(producer.Path());
    std::vector<std::string> news;
    const auto found =
        tree.system.OnInterfaceFound([&](koro::InterfaceDescriptor added) { news.push_back("+" + added.ID()); });
    const auto lost = tree.system.OnInterfaceLost([&](const std::string& id) { news.push_back("-" + id); });
    producer->Edit([](scripted::Tree& edited) { edited.interfaces.at(1)->id = "if9"; });
    producer->SetChanged("TLUpdateInterfaceList", true);
    tree.system.UpdateInterfaces(1000);
    EXPECT_THAT(news, ElementsAre("-if1", "+if9"));
}

TEST(KoroCallbacks, ProducersOwnReportsArriveByThemselvesUntilTheRegistrationEnds)
{
    const ReportingProducer producer;
    const Tree tree(producer.Path());
    const koro::DeviceDescriptor device = tree.firstInterface.Devices().at(0);
    std::promise<std::thread::id> listChanged;
    std::promise<koro::DeviceDescriptor> disconnected;
    std::vector<std::promise<uint32_t>> reconnected(2);
    size_t numReconnected = 0;
    koro::Registration listNews =
        tree.firstInterface.OnDeviceListChanged([&] { listChanged.set_value(std::this_thread::get_id()); });
    koro::Registration disconnectNews =
        tree.firstInterface.OnDeviceDisconnected([&](koro::DeviceDescriptor gone) { disconnected.set_value(gone); });
    const koro::Registration reconnectNews = tree.firstInterface.OnDeviceReconnected(
        [&](koro::DeviceDescriptor back, const KORO_DEVICE_RECONNECT_INFORMATION& information) {
            EXPECT_EQ(back, device);
            EXPECT_EQ(information.reconnectFlag1, 1);
            EXPECT_EQ(information.reconnectFlag2, 0);
            reconnected.at(numReconnected++).set_value(information.reconnectValue);
        });
    const ConnectionRecord reconnect{.id = "if0-dev0", .reconnectFlag1 = 9, .reconnectValue = 77};
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 2}));
    ASSERT_TRUE(producer.Send(reconnect));
    EXPECT_NE(listChanged.get_future().get(), std::this_thread::get_id());
    EXPECT_EQ(disconnected.get_future().get(), device);
    EXPECT_EQ(reconnected.at(0).get_future().get(), 77u);

    listNews.End();
    disconnectNews.End();
    ASSERT_TRUE(producer.Send({.deviceFlag = 0})); // a second set_value would end the program
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 2}));
    ASSERT_TRUE(producer.Send(reconnect));
    EXPECT_EQ(reconnected.at(1).get_future().get(), 77u);
}

TEST(KoroCallbacks, InterfaceThatClosesWaitsForAReportThatIsUnderWay)
{
    const ReportingProducer producer;
    Tree tree(producer.Path());
    std::promise<void> entered;
    std::atomic<bool> over{false};
    const koro::Registration news = tree.firstInterface.OnDeviceListChanged([&] {
        entered.set_value();
        for (int turn = 0; turn < 1000; ++turn)
            std::this_thread::yield();
        over = true;
    });
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
    entered.get_future().wait();
    EXPECT_EQ(tree.firstInterface.Close(), KORO_RETURN_CODE_SUCCESS);
    EXPECT_TRUE(over);
}

TEST(KoroCallbacks, FunctionThatEndsItsOwnKindLivesUntilItReturnsAndIsNotCalledAgain)
{
    const ScriptedProducer producer;
    const Tree tree(producer.Path());
    auto captured = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = captured;
    std::vector<KORO_ReturnCode> codes;
    bool lived = false;
    koro::Registration news;
    news = tree.firstInterface.OnDeviceFound([&, captured = std::move(captured)](koro::DeviceDescriptor) {
        auto& livedOutside = lived;
        const auto& watchedOutside = watched;
        codes.push_back(news.End());
        livedOutside = !watchedOutside.expired();
    });
    const auto replaceDevice = [&](const std::string& id) {
        producer->Edit([&](scripted::Tree& edited) { edited.interfaces.at(0)->devices.at(1)->id = id; });
        producer->SetChanged("IFUpdateDeviceList", true);
        tree.firstInterface.UpdateDevices(1000);
    };
    replaceDevice("newcomer");
    EXPECT_THAT(codes, ElementsAre(KORO_RETURN_CODE_ERROR)); // the library keeps its side
    EXPECT_TRUE(lived);
    EXPECT_TRUE(watched.expired());
    replaceDevice("another");
    EXPECT_EQ(codes.size(), 1u);
    EXPECT_EQ(news.End(), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(news.End(), KORO_RETURN_CODE_SUCCESS);
}

void ReplaceSecondDevice(const ScriptedProducer& producer)
{
    producer->Edit([](scripted::Tree& edited) { edited.interfaces.at(0)->devices.at(1)->id = "newcomer"; });
    producer->SetChanged("IFUpdateDeviceList", true);
}

TEST(KoroCallbacks, EndWaitsForItsFunctionOnAnotherThreadEvenIfTheInterfaceEndedBefore)
{
    const ScriptedProducer producer;
    Tree tree(producer.Path());
    std::promise<void> entered;
    std::promise<void> interfaceEnded;
    std::atomic<bool> ended{false};
    bool endedDuringTheCall = false;
    koro::Registration news = tree.firstInterface.OnDeviceFound([&](koro::DeviceDescriptor) {
        entered.set_value();
        interfaceEnded.get_future().wait();
        for (int turn = 0; turn < 10000 && !ended; ++turn)
            std::this_thread::yield();
        endedDuringTheCall = ended;
    });
    ReplaceSecondDevice(producer);
    std::thread updating([handle = tree.firstInterface.Get()] { KORO_Interface_UpdateDevices(handle, 1000); });
    entered.get_future().wait();
    EXPECT_EQ(tree.firstInterface.Close(), KORO_RETURN_CODE_SUCCESS);
    interfaceEnded.set_value();
    EXPECT_EQ(news.End(), KORO_RETURN_CODE_INVALID_HANDLE);
    ended = true;
    updating.join();
    EXPECT_FALSE(endedDuringTheCall);
}

TEST(KoroCallbacks, FunctionMayEndItselfAfterItHasEndedItsInterface)
{
    const ScriptedProducer producer;
    Tree tree(producer.Path());
    std::vector<KORO_ReturnCode> codes;
    koro::Registration news;
    news = tree.firstInterface.OnDeviceFound([&](koro::DeviceDescriptor) {
        codes.push_back(tree.firstInterface.Close());
        codes.push_back(news.End());
    });
    ReplaceSecondDevice(producer);
    KORO_Interface_UpdateDevices(tree.firstInterface.Get(), 1000);
    EXPECT_THAT(codes, ElementsAre(KORO_RETURN_CODE_SUCCESS, KORO_RETURN_CODE_INVALID_HANDLE));
}

TEST(KoroCallbacks, ChangedInformationArrivesWithItsRoles)
{
    const ScriptedProducer producer;
    const Tree tree(producer.Path());
    const koro::DeviceDescriptor device = tree.firstInterface.Devices().at(1);
    device.SetMonitoringUpdateInterval(1);
    EXPECT_EQ(device.MonitoringUpdateInterval_ms(), 1u);
    EXPECT_FALSE(device.IsInformationRoleMonitored(KORO_DEVICE_INFO_MODEL));
    device.AddInformationRoleToMonitoring(KORO_DEVICE_INFO_MODEL);
    EXPECT_TRUE(device.IsInformationRoleMonitored(KORO_DEVICE_INFO_MODEL));
    device.RemoveInformationRoleFromMonitoring(KORO_DEVICE_INFO_ACCESS_STATUS);
    EXPECT_FALSE(device.IsInformationRoleMonitored(KORO_DEVICE_INFO_ACCESS_STATUS));
    std::promise<std::vector<int32_t>> first;
    bool reported = false; // used on the descriptor's thread alone
    koro::Registration news = device.OnInformationChanged([&](const std::vector<int32_t>& roles) {
        if (!std::exchange(reported, true)) first.set_value(roles);
    });
    EXPECT_THAT(first.get_future().get(), testing::Contains(int32_t{KORO_DEVICE_INFO_MODEL}));
    EXPECT_EQ(news.End(), KORO_RETURN_CODE_SUCCESS);
}

TEST(KoroCallbacks, EmptyFunctionIsRefused)
{
    const ScriptedProducer producer;
    const Tree tree(producer.Path());
    EXPECT_EQ(
        CodeOf([&] { static_cast<void>(tree.firstInterface.OnDeviceLost(nullptr)); }),
        KORO_RETURN_CODE_INVALID_ARGUMENT);
}

TEST(KoroStream, FrameArrivesInTheMemoryThatWasAnnounced)
{
    const ScriptedProducer producer;
    Tree tree(producer.Path());
    std::vector<char> memory(tree.stream.PayloadSize());
    const koro::Buffer announced = tree.stream.AnnounceBuffer(memory.data(), memory.size(), &tree);
    tree.stream.QueueBuffer(announced);
    tree.stream.StartAcquisition();
    EXPECT_TRUE(tree.stream.IsGrabbing());
    producer->Deliver("if0-dev0-stream0", {.bytes = "pixels"});

    const koro::Buffer delivered = tree.stream.WaitForFinishedBuffer(waitTimeout_ms);
    EXPECT_EQ(delivered, announced);
    EXPECT_EQ(delivered.BasePtr(), memory.data());
    EXPECT_EQ(delivered.UserPtr(), &tree);
    EXPECT_EQ(delivered.DeliveredDataSize(), 6u);
    EXPECT_EQ(std::string(memory.data(), 6), "pixels");
    tree.stream.StopAcquisition();
    tree.stream.Flush(koro::FlushMode::AllDiscard);
    tree.stream.RevokeBuffer(delivered);
    EXPECT_EQ(CodeOf([&] { delivered.Size(); }), KORO_RETURN_CODE_INVALID_HANDLE);
}

TEST(KoroStream, RevocationIsReportedOnce)
{
    const ScriptedProducer producer;
    Tree tree(producer.Path());
    std::vector<char> memory(8);
    std::vector<void*> revoked;
    const auto note = [&](void* buffer, void*) { revoked.push_back(buffer); };
    const koro::Buffer first = tree.stream.AnnounceBuffer(memory.data(), 4, nullptr, note);
    tree.stream.AnnounceBuffer(memory.data() + 4, 4, nullptr, note);
    tree.stream.RevokeBuffer(first);
    EXPECT_THAT(revoked, ElementsAre(memory.data()));
    tree.stream.Close();
    EXPECT_THAT(revoked, ElementsAre(memory.data(), memory.data() + 4));
}

TEST(KoroStream, FunctionsAnnouncedOnManyThreadsEachRunOnce)
{
    constexpr int numThreads = 8;
    constexpr int numRounds = 200;
    const ScriptedProducer producer;
    producer->KeepJournal(false);
    Tree tree(producer.Path());
    std::atomic<int> numRevoked{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < numThreads; ++thread)
    {
        threads.emplace_back([&] {
            char memory = 0;
            for (int round = 0; round < numRounds; ++round)
                tree.stream.RevokeBuffer(
                    tree.stream.AnnounceBuffer(&memory, 1, nullptr, [&](void*, void*) { ++numRevoked; }));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(numRevoked, numThreads * numRounds);
}

TEST(KoroStream, MoveToItselfKeepsTheFunctions)
{
    const ScriptedProducer producer;
    Tree tree(producer.Path());
    char memory = 0;
    auto captured = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = captured;
    int numRevoked = 0;
    tree.stream.AnnounceBuffer(
        &memory, 1, nullptr, [&numRevoked, captured = std::move(captured)](void*, void*) { ++numRevoked; });
    koro::DataStream& same = tree.stream;
    tree.stream = std::move(same);
    EXPECT_FALSE(watched.expired());
    tree.stream.Close();
    EXPECT_EQ(numRevoked, 1);
    EXPECT_TRUE(watched.expired());
}

TEST(KoroStream, FunctionIsDroppedWhenTheStreamWentWithItsDevice)
{
    const ScriptedProducer producer;
    Tree tree(producer.Path());
    char memory = 0;
    auto captured = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = captured;
    int numRevoked = 0;
    tree.stream.AnnounceBuffer(
        &memory, 1, nullptr, [&numRevoked, captured = std::move(captured)](void*, void*) { ++numRevoked; });
    tree.device.Close();
    EXPECT_FALSE(watched.expired());
    tree.stream.Close();
    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(numRevoked, 0);
}

TEST(KoroStream, TryWaitIsEmptyWhenNothingCame)
{
    const ScriptedProducer producer;
    Tree tree(producer.Path());
    const koro::Buffer announced = tree.stream.AllocAndAnnounceBuffer(16);
    EXPECT_FALSE(announced.HasParts());
    tree.stream.QueueBuffer(announced);
    tree.stream.StartAcquisitionInfinite(koro::StartMode::Default);
    EXPECT_FALSE(tree.stream.TryWait(1));
    producer->Deliver("if0-dev0-stream0", {.bytes = "pixels"});
    EXPECT_EQ(tree.stream.TryWait(waitTimeout_ms), announced);
    tree.stream.KillWait();
    EXPECT_EQ(CodeOf([&] { tree.stream.TryWait(waitTimeout_ms); }), KORO_RETURN_CODE_ABORTED);
    tree.stream.StopAcquisition(koro::StopMode::Kill);
}

TEST(KoroStream, TimeoutAndKillAreToldApartByTheirCodes)
{
    const ScriptedProducer producer;
    Tree tree(producer.Path());
    EXPECT_EQ(CodeOf([&] { tree.stream.WaitForFinishedBuffer(1); }), KORO_RETURN_CODE_TIMEOUT);
    std::thread killer([&] {
        producer->AwaitWaiters(1);
        tree.stream.KillWait();
    });
    EXPECT_EQ(CodeOf([&] { tree.stream.WaitForFinishedBuffer(); }), KORO_RETURN_CODE_ABORTED);
    killer.join();
}

TEST(KoroEvents, EventCarriesItsData)
{
    const ScriptedProducer producer;
    const Tree tree(producer.Path());
    const koro::EventController events = tree.system.EnableEvents(koro::EventType::Module);
    EXPECT_EQ(events.ControlledEventType(), koro::EventType::Module);
    producer->Fire("system", GenTL::EVENT_MODULE, "block");
    const koro::Event event = events.WaitForEvent(waitTimeout_ms);
    EXPECT_EQ(event.Type(), koro::EventType::Module);
    EXPECT_THAT(event.RawData(), testing::Not(testing::IsEmpty()));
}

TEST(KoroEvents, TryWaitIsEmptyWhenNothingCame)
{
    const ScriptedProducer producer;
    const Tree tree(producer.Path());
    const koro::EventController events = tree.system.EnableEvents(koro::EventType::Module);
    EXPECT_FALSE(events.TryWait(1));
    producer->Fire("system", GenTL::EVENT_MODULE, "block");
    const std::optional<koro::Event> event = events.TryWait(waitTimeout_ms);
    ASSERT_TRUE(event);
    EXPECT_EQ(event->Type(), koro::EventType::Module);
    events.KillWait();
    EXPECT_EQ(CodeOf([&] { events.TryWait(waitTimeout_ms); }), KORO_RETURN_CODE_ABORTED);
}

TEST(KoroSimulator, PicturesStreamThroughTheFace)
{
    Tree tree(koro::test::SimulatorPath());
    EXPECT_EQ(tree.device.SerialNumber(), "KS0001");
    const size_t size = tree.stream.PayloadSize();
    ASSERT_EQ(size, 640u * 480u);
    for (int i = 0; i < 4; ++i)
        tree.stream.QueueBuffer(tree.stream.AllocAndAnnounceBuffer(size));
    koro::Acquisition acquisition(tree.stream, tree.device.RemoteDevice().NodeMap());
    uint64_t last = 0;
    for (int i = 0; i < 3; ++i)
    {
        const koro::Buffer buffer = tree.stream.WaitForFinishedBuffer(waitTimeout_ms);
        EXPECT_EQ(buffer.Width(), 640u);
        EXPECT_EQ(buffer.DeliveredDataSize(), size);
        EXPECT_FALSE(buffer.IsIncomplete());
        EXPECT_GT(buffer.FrameID(), last);
        last = buffer.FrameID();
        tree.stream.QueueBuffer(buffer);
    }
    acquisition.Stop();
}

} // namespace
