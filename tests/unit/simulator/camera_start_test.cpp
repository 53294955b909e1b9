// When a camera takes images: start and stop, modes, triggers, counters, and the setting that ties it to the stream.
#include "producers/simulator/frames/pattern.h"
#include "tests/unit/simulator/feature_map.h"

#include <gtest/gtest.h>

namespace koro::simulator::test
{
namespace
{

std::string CameraOf(const std::string& keys)
{
    return R"({"interfaces": [{"id": "I", "tlType": "GEV", "cameras": [
        {"serial": "A", "width": 16, "height": 4, "rate": 0)" +
           keys + "}]}]}";
}

constexpr const char* withStream = R"(, "startWithStream": true)";

struct Camera
{
    explicit Camera(const std::string& keys = "") : producer(CameraOf(keys)), tree(producer), map(producer, tree.remote)
    {}

    std::size_t Awaiting() const { return tree.StreamInfo<std::size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY); }
    std::uint64_t Started() const { return tree.StreamInfo<std::uint64_t>(STREAM_INFO_NUM_STARTED); }
    // Waits until so many frames came.
    void Expect(std::size_t frames) const
    {
        ASSERT_TRUE(Eventually([&] { return Awaiting() == frames; }));
    }
    // Nothing begins, and nothing is on its way: a camera at rate 0 would have filled its buffers at once.
    void ExpectSilence() const
    {
        const std::uint64_t before = Started();
        EXPECT_EQ(tree.TryNext(20), before == 0 || Awaiting() == 0 ? GC_ERR_TIMEOUT : GC_ERR_SUCCESS);
        EXPECT_EQ(Started(), before);
    }
    bool Status(const char* which) const
    {
        map.Set("AcquisitionStatusSelector", which);
        return map.Text("AcquisitionStatus") == "1";
    }
    std::uint64_t NextId() const
    {
        return tree.BufferInfo<std::uint64_t>(tree.Next().BufferHandle, BUFFER_INFO_FRAMEID);
    }
    void Announce(int number) const
    {
        for (int index = 0; index < number; ++index)
            tree.Announce();
    }

    Producer producer;
    Tree tree;
    FeatureMap map;
};

TEST(SimulatorStart, CameraIsSilentUntilAcquisitionStart)
{
    const Camera camera;
    camera.Announce(3);
    camera.tree.Start();
    EXPECT_EQ(camera.tree.StreamInfo<bool8_t>(STREAM_INFO_IS_GRABBING), 1);
    camera.ExpectSilence();
    EXPECT_FALSE(camera.Status("AcquisitionActive"));
    camera.map.Execute("AcquisitionStart");
    camera.Expect(3);
    EXPECT_TRUE(camera.Status("AcquisitionActive"));
    EXPECT_EQ(camera.NextId(), 1U);
    EXPECT_EQ(camera.NextId(), 2U);
}

TEST(SimulatorStart, CameraWithoutAStreamTakesNothing)
{
    const Camera camera;
    camera.Announce(2);
    camera.map.Execute("AcquisitionStart");
    EXPECT_EQ(camera.Started(), 0U);
    camera.tree.Start();
    camera.Expect(2);
    EXPECT_EQ(camera.NextId(), 1U);
}

TEST(SimulatorStart, AcquisitionStopSilencesTheCameraAndTheNextStartCountsAnew)
{
    const Camera camera;
    camera.Announce(2);
    camera.tree.Start();
    camera.map.Execute("AcquisitionStart");
    camera.Expect(2);
    camera.map.Execute("AcquisitionStop");
    const BUFFER_HANDLE buffer = camera.tree.Next().BufferHandle;
    camera.tree.Next();
    ASSERT_EQ(camera.producer.DSQueueBuffer(camera.tree.stream, buffer), GC_ERR_SUCCESS);
    camera.ExpectSilence();
    camera.map.Execute("AcquisitionStart");
    EXPECT_EQ(camera.NextId(), 1U);
}

TEST(SimulatorStart, StreamAloneStartsACameraThatIsToldSo)
{
    const Camera camera(withStream);
    camera.Announce(2);
    camera.tree.Start();
    camera.Expect(2);
    EXPECT_TRUE(camera.Status("AcquisitionActive"));
    ASSERT_EQ(camera.producer.DSStopAcquisition(camera.tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    EXPECT_FALSE(camera.Status("AcquisitionActive"));
}

TEST(SimulatorStart, CameraThatStartsWithTheStreamTakesTheCommandsToo)
{
    const Camera camera(withStream);
    camera.Announce(1);
    camera.tree.Start();
    camera.map.Execute("AcquisitionStart");
    const BUFFER_HANDLE buffer = camera.tree.Next().BufferHandle;
    camera.map.Execute("AcquisitionStop");
    ASSERT_EQ(camera.producer.DSQueueBuffer(camera.tree.stream, buffer), GC_ERR_SUCCESS);
    camera.ExpectSilence();
    camera.map.Execute("AcquisitionStart");
    EXPECT_EQ(camera.NextId(), 1U);
}

TEST(SimulatorStart, CameraStaysStartedWhenTheStreamStops)
{
    const Camera camera;
    const BUFFER_HANDLE buffer = camera.tree.Announce();
    camera.tree.Start();
    camera.map.Execute("AcquisitionStart");
    camera.tree.Next();
    ASSERT_EQ(camera.producer.DSStopAcquisition(camera.tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    EXPECT_TRUE(camera.Status("AcquisitionActive"));
    ASSERT_EQ(camera.producer.DSQueueBuffer(camera.tree.stream, buffer), GC_ERR_SUCCESS);
    camera.tree.Start();
    EXPECT_EQ(camera.NextId(), 1U);
}

TEST(SimulatorStart, ClosingTheDeviceStopsTheCamera)
{
    const Camera camera;
    camera.map.Execute("AcquisitionStart");
    ASSERT_EQ(camera.producer.DevClose(camera.tree.device), GC_ERR_SUCCESS);
    DEV_HANDLE device = nullptr;
    PORT_HANDLE remote = nullptr;
    ASSERT_EQ(camera.producer.IFOpenDevice(camera.tree.interface, "A", DEVICE_ACCESS_CONTROL, &device), GC_ERR_SUCCESS);
    ASSERT_EQ(camera.producer.DevGetPort(device, &remote), GC_ERR_SUCCESS);
    const FeatureMap map(camera.producer, remote);
    map.Set("AcquisitionStatusSelector", "AcquisitionActive");
    EXPECT_EQ(map.Text("AcquisitionStatus"), "0");
}

TEST(SimulatorStart, ModesSayHowManyImagesOneStartTakes)
{
    const Camera camera;
    camera.Announce(8);
    camera.tree.Start();
    camera.map.Set("AcquisitionMode", "SingleFrame");
    camera.map.Execute("AcquisitionStart");
    camera.Expect(1);
    EXPECT_FALSE(camera.Status("AcquisitionActive")) << "the one image ended it";
    camera.map.Set("AcquisitionMode", "MultiFrame");
    camera.map.Set("AcquisitionFrameCount", "3");
    camera.map.Execute("AcquisitionStart");
    camera.Expect(4);
    EXPECT_FALSE(camera.Status("AcquisitionActive"));
    for (const std::uint64_t id : {1U, 1U, 2U, 3U})
        EXPECT_EQ(camera.NextId(), id);
    camera.ExpectSilence();
    camera.map.Set("AcquisitionMode", "Continuous");
    camera.map.Execute("AcquisitionStart");
    camera.Expect(4);
}

TEST(SimulatorTrigger, SoftwareTriggerTakesOneImageEach)
{
    const Camera camera;
    camera.Announce(4);
    camera.tree.Start();
    camera.map.Set("TriggerMode", "On");
    camera.map.Execute("TriggerSoftware");
    camera.map.Execute("AcquisitionStart");
    camera.ExpectSilence();
    EXPECT_TRUE(camera.Status("FrameTriggerWait"));
    camera.map.Execute("TriggerSoftware");
    camera.Expect(1);
    EXPECT_TRUE(camera.Status("FrameTriggerWait"));
    camera.map.Execute("TriggerSoftware");
    camera.map.Execute("TriggerSoftware");
    camera.Expect(3);
    EXPECT_EQ(camera.NextId(), 1U);
}

TEST(SimulatorTrigger, SoManyTriggersAreRememberedAndNoMore)
{
    const Camera camera;
    camera.Announce(1);
    camera.map.Set("CounterEventSource", "FrameTrigger");
    camera.map.Set("TriggerMode", "On");
    camera.map.Execute("AcquisitionStart");
    for (int trigger = 0; trigger < 300; ++trigger)
        camera.map.Execute("TriggerSoftware");
    EXPECT_EQ(camera.map.Text("CounterValue"), "255");
}

TEST(SimulatorTrigger, TriggeredImageOfAPacedCameraDoesNotWaitForThePeriod)
{
    const Camera camera(R"(, "rate": 0.001)");
    camera.Announce(2);
    camera.map.Set("TriggerMode", "On");
    camera.tree.Start();
    camera.map.Execute("AcquisitionStart");
    camera.map.Execute("TriggerSoftware");
    camera.Expect(1);
}

// Of two triggers that follow each other at once the second exposes when the sensor is ready again.
TEST(SimulatorTrigger, TriggeredImagesAreAsFarApartAsTheResultingRateAllows)
{
    const Camera camera(R"(, "rate": 1000)");
    camera.Announce(3);
    camera.map.Set("TriggerMode", "On");
    camera.map.Set("ExposureTime", "50000");
    camera.tree.Start();
    camera.map.Execute("AcquisitionStart");
    const auto timestamp = [&] {
        return camera.tree.BufferInfo<std::uint64_t>(camera.tree.Next().BufferHandle, BUFFER_INFO_TIMESTAMP_NS);
    };
    camera.map.Execute("TriggerSoftware");
    camera.map.Execute("TriggerSoftware");
    const std::uint64_t first = timestamp();
    const std::uint64_t second = timestamp();
    EXPECT_GE(second - first, 50'000'000U);
    camera.map.Set("AcquisitionFrameRate", "8");
    camera.map.Execute("TriggerSoftware");
    EXPECT_GE(timestamp() - second, 125'000'000U);
}

TEST(SimulatorTrigger, TriggersThatComeWhileOneIsRememberedAreMissed)
{
    const Camera camera(R"(, "rate": 1000)");
    camera.Announce(4);
    camera.map.Set("CounterEventSource", "FrameTrigger");
    camera.map.Set("TriggerMode", "On");
    camera.map.Set("ExposureTime", "10000000");
    camera.tree.Start();
    camera.map.Execute("AcquisitionStart");
    EXPECT_TRUE(camera.Status("FrameTriggerWait"));
    camera.map.Execute("TriggerSoftware");
    EXPECT_TRUE(camera.Status("FrameTriggerWait"));
    for (int trigger = 0; trigger < 5; ++trigger)
        camera.map.Execute("TriggerSoftware");
    EXPECT_FALSE(camera.Status("FrameTriggerWait"));
    EXPECT_EQ(camera.map.Text("CounterValue"), "2");
}

TEST(SimulatorTrigger, StopDuringTheExposureBringsNoImage)
{
    const Camera camera(R"(, "rate": 1000)");
    camera.Announce(1);
    camera.map.Set("TriggerMode", "On");
    camera.map.Set("ExposureTime", "10000000");
    camera.tree.Start();
    camera.map.Execute("AcquisitionStart");
    camera.map.Execute("TriggerSoftware");
    camera.map.Execute("AcquisitionStop");
    EXPECT_EQ(camera.producer.DSStopAcquisition(camera.tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    EXPECT_EQ(camera.Awaiting(), 0U);
    EXPECT_EQ(camera.Started(), 0U);
}

TEST(SimulatorTrigger, StartOfTheAcquisitionCanWaitForOneToo)
{
    const Camera camera;
    camera.Announce(3);
    camera.map.Set("TriggerSelector", "AcquisitionStart");
    camera.map.Set("TriggerMode", "On");
    camera.tree.Start();
    camera.map.Execute("AcquisitionStart");
    camera.ExpectSilence();
    EXPECT_TRUE(camera.Status("AcquisitionTriggerWait"));
    camera.map.Execute("TriggerSoftware");
    camera.Expect(3);
    EXPECT_FALSE(camera.Status("AcquisitionTriggerWait"));
}

TEST(SimulatorTrigger, LineTriggersAtTheEdgeThatIsWanted)
{
    const Camera camera;
    camera.Announce(8);
    camera.map.Set("TriggerSource", "Line0");
    camera.map.Set("TriggerMode", "On");
    camera.map.Set("LineSelector", "Line1");
    camera.map.Set("LineSource", "UserOutput0");
    camera.map.Set("CounterEventSource", "FrameTrigger");
    camera.tree.Start();
    camera.map.Execute("AcquisitionStart");
    const auto pulse = [&](const char* activation, const char* triggersOfTheTwoEdges) {
        camera.map.Execute("CounterReset");
        camera.map.Set("TriggerActivation", activation);
        camera.map.Set("UserOutputValue", "1");
        camera.map.Set("UserOutputValue", "0");
        EXPECT_EQ(camera.map.Text("CounterValue"), triggersOfTheTwoEdges) << activation;
    };
    pulse("RisingEdge", "1");
    pulse("FallingEdge", "1");
    pulse("AnyEdge", "2");
    camera.Expect(4);
    EXPECT_THROW(camera.map.Execute("TriggerSoftware"), GENICAM_NAMESPACE::AccessException);
}

TEST(SimulatorTrigger, CountersCountWhatTheyAreTold)
{
    const Camera camera;
    camera.Announce(3);
    camera.map.Set("CounterEventSource", "FrameStart");
    camera.map.Set("CounterSelector", "Counter1");
    camera.map.Set("CounterEventSource", "AcquisitionStart");
    camera.tree.Start();
    camera.map.Execute("AcquisitionStart");
    camera.Expect(3);
    EXPECT_EQ(camera.map.Text("CounterValue"), "1");
    camera.map.Set("CounterSelector", "Counter0");
    EXPECT_EQ(camera.map.Text("CounterValue"), "3");
    camera.map.Execute("CounterReset");
    EXPECT_EQ(camera.map.Text("CounterValue"), "0");
}

TEST(SimulatorRate, ChangesWhileImagesCome)
{
    const Camera camera(withStream + std::string(R"(, "rate": 0.001)"));
    camera.Announce(2);
    camera.tree.Start();
    camera.map.Set("AcquisitionFrameRate", "1000");
    camera.map.Set("ExposureTime", "100");
    camera.Expect(2);
    camera.map.Set("AcquisitionFrameRateEnable", "0");
    EXPECT_EQ(camera.map.Float("AcquisitionResultingFrameRate").GetValue(), 1000) << "as fast as the sensor can";
}

TEST(SimulatorRate, UnpacedCameraCanBePaced)
{
    const Camera camera(withStream);
    camera.Announce(1);
    camera.map.Set("AcquisitionFrameRateEnable", "1");
    camera.map.Set("AcquisitionFrameRate", "1000");
    camera.tree.Start();
    camera.tree.Next();
    ASSERT_TRUE(Eventually([&] { return camera.tree.StreamInfo<std::uint64_t>(STREAM_INFO_NUM_UNDERRUN) >= 2; }))
        << "a paced camera does not wait for buffers";
}

} // namespace
} // namespace koro::simulator::test
