// Cameras that are unplugged and plugged in again: the record of event 1000, and what a consumer sees of the camera.
#include "tests/unit/simulator/plugged_cameras.h"

#include <gtest/gtest.h>

namespace koro::simulator::test
{
namespace
{

namespace GenApi = GENAPI_NAMESPACE;

std::string Script(const std::string& steps, const std::string& more = "")
{
    return PluggedSettings(R"("stepwise": true, "script": [)" + steps + "]" + more);
}

TEST(SimulatorConnection, EventHasTheSizeOfTheRecordAndTellsItWhole)
{
    const PluggedCameras cameras;
    const Producer& producer = cameras.producer;
    const auto info = [&](EVENT_INFO_CMD command) {
        return producer.Get<std::size_t>(producer.EventGetInfo, cameras.records, command);
    };
    EXPECT_EQ(producer.Get<std::int32_t>(producer.EventGetInfo, cameras.records, EVENT_EVENT_TYPE), EVENT_CUSTOM_ID);
    EXPECT_EQ(info(EVENT_SIZE_MAX), 351U);
    EXPECT_EQ(info(EVENT_INFO_DATA_SIZE_MAX), 351U);
    cameras.Unplug();
    const auto record = cameras.TakeRecord();
    ASSERT_TRUE(record);
    ASSERT_EQ(record->block.size(), 351U);
    const auto data = [&](EVENT_DATA_INFO_CMD command, INFO_DATATYPE expected) {
        INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
        std::vector<char> bytes(512);
        std::size_t size = bytes.size();
        EXPECT_EQ(
            producer.EventGetDataInfo(
                cameras.records, record->block.data(), record->block.size(), command, &type, bytes.data(), &size),
            GC_ERR_SUCCESS);
        EXPECT_EQ(type, expected);
        return std::string(bytes.data(), size);
    };
    EXPECT_EQ(data(EVENT_DATA_ID, INFO_DATATYPE_STRING), std::string("03E8", 5));
    EXPECT_EQ(data(EVENT_DATA_VALUE, INFO_DATATYPE_BUFFER), record->block);
    EXPECT_EQ(data(EVENT_DATA_NUMID, INFO_DATATYPE_UINT64), std::string("\xE8\3\0\0\0\0\0\0", 8));
    const std::string longer(352, 'x');
    EXPECT_EQ(
        producer.Result(producer.EventGetDataInfo, cameras.records, longer.data(), longer.size(), EVENT_DATA_VALUE),
        GC_ERR_INVALID_PARAMETER);
}

TEST(SimulatorConnection, RecordsTellWhatWentAndWhatCame)
{
    const PluggedCameras cameras;
    cameras.Unplug();
    const auto went = cameras.TakeRecord();
    ASSERT_TRUE(went);
    EXPECT_EQ(went->Interface(), cameras.tree.interface);
    EXPECT_EQ(went->DeviceId(), "SimulatedCamera_A");
    EXPECT_EQ(went->ChangeKind(), 2);
    EXPECT_EQ(went->DeviceFlag(), 1);
    EXPECT_EQ(went->ReconnectValue(), 0U);
    for (std::uint32_t time = 1; time <= 2; ++time)
    {
        cameras.Replug();
        const auto came = cameras.TakeRecord();
        ASSERT_TRUE(came);
        EXPECT_EQ(came->Interface(), cameras.tree.interface);
        EXPECT_EQ(came->DeviceId(), "SimulatedCamera_A");
        EXPECT_EQ(came->ChangeKind(), 1);
        EXPECT_EQ(came->DeviceFlag(), 1);
        EXPECT_EQ(came->ReconnectFlag1(), 1);
        EXPECT_EQ(came->ReconnectFlag2(), 1);
        EXPECT_EQ(came->ReconnectValue(), time);
        cameras.Unplug();
        ASSERT_TRUE(cameras.TakeRecord());
    }
    EXPECT_FALSE(cameras.TakeRecord());
}

TEST(SimulatorConnection, WhatIsOutCannotBeUnpluggedAgainNorTheReverse)
{
    const PluggedCameras cameras;
    cameras.Replug();
    EXPECT_FALSE(cameras.TakeRecord());
    cameras.Unplug();
    cameras.Unplug();
    EXPECT_TRUE(cameras.TakeRecord());
    EXPECT_FALSE(cameras.TakeRecord());
}

TEST(SimulatorConnection, CamerasOfInterfacesThatAreNotOpenAreNotTold)
{
    const PluggedCameras cameras;
    cameras.Unplug(1);
    EXPECT_FALSE(cameras.TakeRecord());
    IF_HANDLE other = nullptr;
    ASSERT_EQ(cameras.producer.TLOpenInterface(cameras.tree.system, "J", &other), GC_ERR_SUCCESS);
    EXPECT_FALSE(cameras.IsListed(other));
    cameras.Replug(1);
    const auto record = cameras.TakeRecord();
    ASSERT_TRUE(record);
    EXPECT_EQ(record->Interface(), other);
    EXPECT_EQ(record->DeviceId(), "SimulatedCamera_B");
    EXPECT_TRUE(cameras.IsListed(other));
}

TEST(SimulatorConnection, FeaturesTellWhichCamerasAreIn)
{
    const PluggedCameras cameras;
    EXPECT_EQ(cameras.system.Integer("SimulatedCameraSelector").GetMax(), 1);
    cameras.Unplug(1);
    EXPECT_EQ(cameras.system.Text("SimulatedCameraID"), "SimulatedCamera_B");
    EXPECT_EQ(cameras.system.Text("SimulatedCameraIsPlugged"), "0");
    cameras.system.Set("SimulatedCameraSelector", "0");
    EXPECT_EQ(cameras.system.Text("SimulatedCameraID"), "SimulatedCamera_A");
    EXPECT_EQ(cameras.system.Text("SimulatedCameraIsPlugged"), "1");
    EXPECT_THROW(cameras.system.Set("SimulatedCameraSelector", "2"), GENICAM_NAMESPACE::OutOfRangeException);
    const std::uint32_t two = 2;
    std::size_t size = sizeof two;
    EXPECT_EQ(cameras.producer.GCWritePort(cameras.tree.system, 0x1C0, &two, &size), GC_ERR_INVALID_VALUE);
}

TEST(SimulatorConnection, WithoutCamerasThereIsNothingToUnplug)
{
    const Producer producer(R"({"interfaces": []})");
    TL_HANDLE handle = nullptr;
    ASSERT_EQ(producer.TLOpen(&handle), GC_ERR_SUCCESS);
    const FeatureMap system(producer, handle);
    for (const char* const name :
         {"SimulatedCameraID", "SimulatedCameraIsPlugged", "SimulatedCameraUnplug", "SimulatedCameraReplug",
          "SimulatedScriptStep"})
        EXPECT_EQ(system.Access(name), GenApi::NA) << name;
    const std::uint32_t one = 1;
    std::size_t size = sizeof one;
    EXPECT_EQ(producer.GCWritePort(handle, 0x1D0, &one, &size), GC_ERR_NOT_AVAILABLE);
}

TEST(SimulatorConnection, UnpluggedCameraAnswersNothingAndGoesOffTheList)
{
    const PluggedCameras cameras;
    const Producer& producer = cameras.producer;
    EVENT_HANDLE errors = nullptr;
    ASSERT_EQ(producer.GCRegisterEvent(cameras.tree.device, EVENT_ERROR, &errors), GC_ERR_SUCCESS);
    cameras.Unplug();
    EXPECT_EQ(cameras.ReadWidth(), GC_ERR_IO);
    EXPECT_EQ(producer.Last().text, "GCReadPort: the camera is gone");
    cameras.tree.Announce();
    EXPECT_EQ(producer.DSStartAcquisition(cameras.tree.stream, 0, 1), GC_ERR_IO);
    EXPECT_EQ(
        producer.Get<std::int32_t>(producer.DevGetInfo, cameras.tree.device, DEVICE_INFO_ACCESS_STATUS),
        DEVICE_ACCESS_STATUS_NOACCESS);
    char block[512];
    std::size_t size = sizeof block;
    ASSERT_EQ(producer.EventGetData(errors, block, &size, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.Get<std::int32_t>(producer.EventGetDataInfo, errors, block, size, EVENT_DATA_ID), GC_ERR_IO);
    EXPECT_FALSE(cameras.IsListed(cameras.tree.interface));
    size = sizeof block;
    EXPECT_EQ(producer.EventGetData(errors, block, &size, 0), GC_ERR_TIMEOUT) << "it went once";
    ASSERT_EQ(producer.DevClose(cameras.tree.device), GC_ERR_SUCCESS);
    DEV_HANDLE device = nullptr;
    EXPECT_EQ(producer.IFOpenDevice(cameras.tree.interface, "A", DEVICE_ACCESS_CONTROL, &device), GC_ERR_INVALID_ID);
    cameras.Replug();
    EXPECT_TRUE(cameras.IsListed(cameras.tree.interface));
    EXPECT_EQ(producer.IFOpenDevice(cameras.tree.interface, "A", DEVICE_ACCESS_CONTROL, &device), GC_ERR_SUCCESS);
}

TEST(SimulatorConnection, UnpluggedCameraCanStayListed)
{
    const PluggedCameras cameras(PluggedSettings(R"("staysListed": true)"));
    const Producer& producer = cameras.producer;
    cameras.Unplug();
    EXPECT_TRUE(cameras.IsListed(cameras.tree.interface));
    EXPECT_EQ(
        producer.Get<std::int32_t>(producer.IFGetDeviceInfo, cameras.tree.interface, "A", DEVICE_INFO_ACCESS_STATUS),
        DEVICE_ACCESS_STATUS_NOACCESS);
    ASSERT_EQ(producer.DevClose(cameras.tree.device), GC_ERR_SUCCESS);
    DEV_HANDLE device = nullptr;
    EXPECT_EQ(producer.IFOpenDevice(cameras.tree.interface, "A", DEVICE_ACCESS_CONTROL, &device), GC_ERR_IO);
}

TEST(SimulatorConnection, DeadCameraCanAnswerAnotherCode)
{
    const PluggedCameras cameras(PluggedSettings(R"("deadCameraError": "GC_ERR_TIMEOUT")"));
    cameras.Unplug();
    EXPECT_EQ(cameras.ReadWidth(), GC_ERR_TIMEOUT);
}

TEST(SimulatorConnection, ReplugedCameraStreamsOnWithWhatWasOpen)
{
    const PluggedCameras cameras;
    const Tree& tree = cameras.tree;
    const Producer& producer = cameras.producer;
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    tree.Next();
    EXPECT_EQ(tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_FRAMEID), 1U);
    cameras.Unplug();
    ASSERT_EQ(producer.DSQueueBuffer(tree.stream, buffer), GC_ERR_SUCCESS);
    EXPECT_EQ(tree.TryNext(20), GC_ERR_TIMEOUT);
    EXPECT_TRUE(tree.Flag(buffer, BUFFER_INFO_IS_QUEUED));
    cameras.Replug();
    EXPECT_EQ(cameras.ReadWidth(), GC_ERR_SUCCESS);
    tree.Next();
    EXPECT_EQ(tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_FRAMEID), 2U);
    EXPECT_EQ(producer.DSStopAcquisition(tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
}

TEST(SimulatorConnection, ImageBeingFilledIsIncompleteWhenTheCableIsPulled)
{
    const PluggedCameras cameras(
        PluggedSettings().insert(1, R"("misbehaviour": {"frames": [{"camera": "A", "at": 1, "late_ms": 60000}]}, )"));
    const BUFFER_HANDLE buffer = cameras.tree.Announce();
    cameras.tree.Start();
    ASSERT_TRUE(Eventually([&] { return cameras.tree.Flag(buffer, BUFFER_INFO_IS_ACQUIRING); }));
    cameras.Unplug();
    ASSERT_EQ(cameras.tree.TryNext(), GC_ERR_SUCCESS);
    EXPECT_TRUE(cameras.tree.Flag(buffer, BUFFER_INFO_IS_INCOMPLETE));
    EXPECT_EQ(cameras.tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_SIZE_FILLED), 0U);
    cameras.Replug();
    ASSERT_EQ(cameras.producer.DSQueueBuffer(cameras.tree.stream, buffer), GC_ERR_SUCCESS);
    cameras.tree.Next();
    EXPECT_FALSE(cameras.tree.Flag(buffer, BUFFER_INFO_IS_INCOMPLETE));
    EXPECT_EQ(cameras.tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_FRAMEID), 2U);
}

TEST(SimulatorConnection, StreamCanBeStoppedAndClosedWhileTheCableIsOut)
{
    const PluggedCameras cameras;
    cameras.tree.Announce();
    cameras.tree.Start();
    cameras.Unplug();
    EXPECT_EQ(cameras.producer.DSStopAcquisition(cameras.tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    EXPECT_EQ(cameras.producer.DSClose(cameras.tree.stream), GC_ERR_SUCCESS);
    DS_HANDLE stream = nullptr;
    EXPECT_EQ(cameras.producer.DevOpenDataStream(cameras.tree.device, "Stream0", &stream), GC_ERR_IO);
    cameras.Replug();
    EXPECT_EQ(cameras.producer.DevOpenDataStream(cameras.tree.device, "Stream0", &stream), GC_ERR_SUCCESS);
}

TEST(SimulatorConnection, ReplugedCameraMayHaveToBeOpenedAnewAndHasForgottenItsSettings)
{
    const PluggedCameras cameras(PluggedSettings(R"("afterReplug": "reopen")"));
    const Tree& tree = cameras.tree;
    const Producer& producer = cameras.producer;
    FeatureMap(producer, tree.remote).Set("OffsetX", "0");
    FeatureMap(producer, tree.remote).Set("Width", "8");
    tree.Announce();
    tree.Start();
    cameras.Unplug();
    cameras.Replug();
    EXPECT_TRUE(cameras.TakeRecord());
    const auto came = cameras.TakeRecord();
    ASSERT_TRUE(came);
    EXPECT_EQ(came->ReconnectFlag1(), 0);
    EXPECT_EQ(came->ReconnectFlag2(), 0);
    EXPECT_EQ(came->ReconnectValue(), 1U);
    EXPECT_EQ(cameras.ReadWidth(), GC_ERR_IO) << "the old handle stays dead";
    EXPECT_EQ(producer.DSStopAcquisition(tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.DSStartAcquisition(tree.stream, 0, 1), GC_ERR_IO);
    ASSERT_EQ(producer.DevClose(tree.device), GC_ERR_SUCCESS);
    DEV_HANDLE device = nullptr;
    PORT_HANDLE remote = nullptr;
    ASSERT_EQ(producer.IFOpenDevice(tree.interface, "A", DEVICE_ACCESS_CONTROL, &device), GC_ERR_SUCCESS);
    ASSERT_EQ(producer.DevGetPort(device, &remote), GC_ERR_SUCCESS);
    EXPECT_EQ(FeatureMap(producer, remote).Text("Width"), "16");
}

TEST(SimulatorConnection, EventCanHaveAnotherSizeOrBeMissing)
{
    for (const int bytes : {350, 352})
    {
        const PluggedCameras cameras(PluggedSettings(R"("recordBytes": )" + std::to_string(bytes)));
        EXPECT_EQ(
            cameras.producer.Get<std::size_t>(cameras.producer.EventGetInfo, cameras.records, EVENT_SIZE_MAX),
            static_cast<std::size_t>(bytes));
        cameras.Unplug();
        const auto record = cameras.TakeRecord();
        ASSERT_TRUE(record);
        EXPECT_EQ(record->block.size(), static_cast<std::size_t>(bytes));
    }
    const Producer producer(PluggedSettings(R"("recordBytes": 0)"));
    const Tree tree(producer);
    EVENT_HANDLE event = nullptr;
    EXPECT_EQ(producer.GCRegisterEvent(tree.system, EVENT_CUSTOM_ID, &event), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(producer.GCUnregisterEvent(tree.system, EVENT_CUSTOM_ID), GC_ERR_NOT_IMPLEMENTED);
}

TEST(SimulatorConnection, RecordAboutTheListCanFollow)
{
    const PluggedCameras cameras(PluggedSettings(R"("listRecords": true)"));
    cameras.Unplug();
    cameras.Replug();
    const int kinds[] = {2, 2, 1, 1};
    const int flags[] = {1, 0, 1, 0};
    for (int index = 0; index < 4; ++index)
    {
        const auto record = cameras.TakeRecord();
        ASSERT_TRUE(record);
        EXPECT_EQ(record->ChangeKind(), kinds[index]);
        EXPECT_EQ(record->DeviceFlag(), flags[index]);
    }
}

TEST(SimulatorConnection, ScriptRunsStepByStepAsOftenAsTold)
{
    const PluggedCameras cameras(
        Script(R"({"camera": "A", "do": "unplug"}, {"camera": "A", "do": "replug"})", R"(, "repeat": 2)"));
    EXPECT_EQ(cameras.system.Text("SimulatedScriptStepsLeft"), "4");
    for (const int kind : {2, 1, 2, 1})
    {
        cameras.system.Execute("SimulatedScriptStep");
        const auto record = cameras.TakeRecord();
        ASSERT_TRUE(record);
        EXPECT_EQ(record->ChangeKind(), kind);
        EXPECT_EQ(cameras.ReadWidth(), kind == 1 ? GC_ERR_SUCCESS : GC_ERR_IO);
    }
    EXPECT_EQ(cameras.system.Text("SimulatedScriptStepsLeft"), "0");
    EXPECT_EQ(cameras.system.Access("SimulatedScriptStep"), GenApi::NA);
    const std::uint32_t one = 1;
    std::size_t size = sizeof one;
    EXPECT_EQ(cameras.producer.GCWritePort(cameras.tree.system, 0x1D8, &one, &size), GC_ERR_NOT_AVAILABLE);
    EXPECT_EQ(cameras.producer.Last().text, "GCWritePort: the script has no step left");
}

TEST(SimulatorConnection, ScriptWithTimesRunsByItselfFromTheOpeningOfTheSystemOn)
{
    const auto before = std::chrono::steady_clock::now();
    const PluggedCameras cameras(PluggedSettings(
        R"("repeat": 2, "script": [{"camera": "A", "do": "unplug", "after_ms": 200}, {"camera": "A", "do": "replug"}])"));
    EXPECT_EQ(cameras.system.Access("SimulatedScriptStep"), GenApi::NA);
    for (const int kind : {2, 1, 2, 1})
    {
        const auto record = cameras.TakeRecord(true);
        ASSERT_TRUE(record);
        EXPECT_EQ(record->ChangeKind(), kind);
    }
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(400));
    EXPECT_EQ(cameras.system.Text("SimulatedScriptStepsLeft"), "0");
    const std::uint32_t one = 1;
    std::size_t size = sizeof one;
    EXPECT_EQ(cameras.producer.GCWritePort(cameras.tree.system, 0x1D8, &one, &size), GC_ERR_NOT_AVAILABLE);
}

TEST(SimulatorConnection, StepsCanWaitForAFrameAndForUpdatesThatMissTheCamera)
{
    const PluggedCameras cameras(PluggedSettings(R"("repeat": 2, "script": [
        {"camera": "A", "do": "unplug", "atFrame": 3}, {"camera": "A", "do": "replug", "missingUpdates": 2}])"));
    const Tree& tree = cameras.tree;
    for (int number = 0; number < 8; ++number)
        tree.Announce();
    tree.Start();
    const auto unplugged = cameras.TakeRecord(true);
    ASSERT_TRUE(unplugged);
    EXPECT_EQ(unplugged->ChangeKind(), 2);
    EXPECT_EQ(tree.StreamInfo<std::size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY), 2U);
    EXPECT_EQ(cameras.system.Text("SimulatedScriptStepsLeft"), "3");

    EXPECT_FALSE(cameras.IsListed(tree.interface));
    EXPECT_EQ(cameras.ReadWidth(), GC_ERR_IO);
    EXPECT_FALSE(cameras.TakeRecord());
    EXPECT_FALSE(cameras.IsListed(tree.interface));
    const auto replugged = cameras.TakeRecord(true);
    ASSERT_TRUE(replugged);
    EXPECT_EQ(replugged->ChangeKind(), 1);

    // The stream goes on behind the frame that was lost. The next round waits for the next acquisition.
    EXPECT_TRUE(Eventually([&] { return tree.StreamInfo<std::size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY) == 8; }));
    EXPECT_EQ(cameras.system.Text("SimulatedScriptStepsLeft"), "2");
    EXPECT_EQ(cameras.producer.DSStopAcquisition(tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
}

TEST(SimulatorConnection, UpdateBesideAReplugLosesNoCamera)
{
    constexpr int numRounds = 100;
    std::string steps = R"({"camera": "A", "do": "unplug", "atFrame": 1})"; // when all is open
    const std::string replug = R"(, {"camera": "A", "do": "replug", "missingUpdates": 1})";
    for (int round = 1; round < numRounds; ++round)
        steps += replug + R"(, {"camera": "A", "do": "unplug"})";
    const PluggedCameras cameras(PluggedSettings(R"("script": [)" + steps + replug + "]"));
    cameras.tree.Announce();
    cameras.tree.Start();
    int numRecords = 0;
    EXPECT_TRUE(Eventually([&] {
        cameras.IsListed(cameras.tree.interface);
        while (cameras.TakeRecord())
            ++numRecords;
        return numRecords == 2 * numRounds;
    }));
    EXPECT_EQ(cameras.ReadWidth(), GC_ERR_SUCCESS);
    EXPECT_EQ(cameras.producer.DSStopAcquisition(cameras.tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
}

TEST(SimulatorConnection, StreamThatIsHeldForAnUnpluggingCanBeClosed)
{
    for (int round = 0; round < 20; ++round)
    {
        const PluggedCameras cameras(PluggedSettings(R"("script": [{"camera": "A", "do": "unplug", "atFrame": 1}])"));
        cameras.tree.Announce();
        cameras.tree.Start();
        EXPECT_EQ(cameras.producer.TLClose(cameras.tree.system), GC_ERR_SUCCESS);
    }
}

TEST(SimulatorConnection, ClosingTheSystemEndsAScriptThatStillWaits)
{
    const PluggedCameras cameras(
        PluggedSettings(R"("script": [{"camera": "A", "do": "unplug", "after_ms": 86400000}])"));
    EXPECT_EQ(cameras.producer.TLClose(cameras.tree.system), GC_ERR_SUCCESS);
}

TEST(SimulatorConnection, ScriptTellsWhatDidNotHappen)
{
    const PluggedCameras cameras(Script(R"({"camera": "A", "do": "tell"},
        {"camera": "A", "do": "tell", "changeKind": 1, "deviceFlag": 0},
        {"camera": "A", "do": "tell", "id": "Stranger", "changeKind": 65535, "deviceFlag": 255, "reconnectFlag1": 7,
         "reconnectFlag2": 255, "reconnectValue": 4294967295})"));
    for (int step = 0; step < 3; ++step)
        cameras.system.Execute("SimulatedScriptStep");
    EXPECT_EQ(cameras.ReadWidth(), GC_ERR_SUCCESS);
    const auto plain = cameras.TakeRecord();
    const auto list = cameras.TakeRecord();
    const auto strange = cameras.TakeRecord();
    ASSERT_TRUE(plain && list && strange);
    EXPECT_EQ(plain->ChangeKind(), 2);
    EXPECT_EQ(plain->DeviceFlag(), 1);
    EXPECT_EQ(list->ChangeKind(), 1);
    EXPECT_EQ(list->DeviceFlag(), 0);
    EXPECT_EQ(list->DeviceId(), "SimulatedCamera_A");
    EXPECT_EQ(strange->DeviceId(), "Stranger");
    EXPECT_EQ(strange->ChangeKind(), 65535);
    EXPECT_EQ(strange->DeviceFlag(), 255);
    EXPECT_EQ(strange->ReconnectFlag1(), 7);
    EXPECT_EQ(strange->ReconnectFlag2(), 255);
    EXPECT_EQ(strange->ReconnectValue(), 4294967295U);
}

TEST(SimulatorConnection, RecordsCanBeSpoilt)
{
    const PluggedCameras cameras(Script(R"({"camera": "A", "do": "unplug", "record": "unterminated"},
        {"camera": "A", "do": "replug", "record": "otherInterface"},
        {"camera": "A", "do": "unplug", "record": "short"})"));
    for (int step = 0; step < 3; ++step)
        cameras.system.Execute("SimulatedScriptStep");
    const auto unterminated = cameras.TakeRecord();
    ASSERT_TRUE(unterminated);
    EXPECT_EQ(unterminated->block.size(), 351U);
    EXPECT_EQ(unterminated->block.substr(16, 17), "SimulatedCamera_A");
    EXPECT_EQ(unterminated->block.substr(16, 256).find('\0'), std::string::npos);
    EXPECT_EQ(unterminated->ChangeKind(), 2);
    const auto foreign = cameras.TakeRecord();
    ASSERT_TRUE(foreign);
    EXPECT_EQ(foreign->block.size(), 351U);
    EXPECT_NE(foreign->Interface(), cameras.tree.interface);
    EXPECT_EQ(foreign->ChangeKind(), 1);
    const auto cut = cameras.TakeRecord();
    ASSERT_TRUE(cut);
    EXPECT_EQ(cut->block.size(), 100U);
    EXPECT_EQ(
        cameras.producer.Result(
            cameras.producer.EventGetDataInfo, cameras.records, cut->block.data(), cut->block.size(), EVENT_DATA_VALUE),
        GC_ERR_SUCCESS);
}

} // namespace
} // namespace koro::simulator::test
