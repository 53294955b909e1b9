// The simulator's default cameras, grabbed through the exports: every pixel is what the documented formula says.
#include "producers/simulator/frames/pattern.h"
#include "tests/support/boundary.h"
#include "tests/support/environment_variable.h"
#include "tests/support/scripted_producer.h"

#include <gtest/gtest.h>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

using namespace koro::test;
using koro::simulator::Component;
using koro::simulator::Deepen;
using koro::simulator::PatternValue;

namespace
{

constexpr std::size_t width = 640;
constexpr std::size_t height = 480;

using Bytes = std::vector<std::uint8_t>;

// All samples of one frame, line by line, as SampleAt(x, y, index in the pixel).
template <class SampleAt>
std::vector<std::uint16_t> Samples(std::size_t perPixel, const SampleAt& sampleAt)
{
    std::vector<std::uint16_t> samples;
    samples.reserve(width * height * perPixel);
    for (std::uint64_t y = 0; y < height; ++y)
    {
        for (std::uint64_t x = 0; x < width; ++x)
        {
            for (std::size_t index = 0; index < perPixel; ++index)
                samples.push_back(sampleAt(x, y, index));
        }
    }
    return samples;
}

std::vector<std::uint16_t> Mono(std::uint64_t frame)
{
    return Samples(
        1, [&](std::uint64_t x, std::uint64_t y, std::size_t) { return PatternValue(Component::Mono, x, y, frame); });
}

std::vector<std::uint16_t> Player(std::uint64_t frame)
{
    return Samples(1, [&](std::uint64_t x, std::uint64_t y, std::size_t) {
        return koro::simulator::SequenceValue(Component::Mono, x, y, frame, width, height);
    });
}

std::vector<std::uint16_t> Colour(std::uint64_t frame)
{
    constexpr Component components[] = {Component::Red, Component::Green, Component::Blue};
    return Samples(3, [&](std::uint64_t x, std::uint64_t y, std::size_t index) {
        return PatternValue(components[index], x, y, frame);
    });
}

// Red and green in even lines, green and blue in odd ones.
std::vector<std::uint16_t> BayerRG12(std::uint64_t frame)
{
    return Samples(1, [&](std::uint64_t x, std::uint64_t y, std::size_t) {
        const auto even = y % 2 == 0 ? Component::Red : Component::Green;
        const auto odd = y % 2 == 0 ? Component::Green : Component::Blue;
        return Deepen(PatternValue(x % 2 == 0 ? even : odd, x, y, frame), 12, x);
    });
}

std::vector<std::uint16_t> UnpackBytes(const Bytes& image)
{
    return {image.begin(), image.end()};
}

// Two samples in three bytes: high bits outside, both low nibbles in the middle, that of the first below.
std::vector<std::uint16_t> Unpack12Packed(const Bytes& image)
{
    std::vector<std::uint16_t> samples;
    for (std::size_t at = 0; at + 2 < image.size(); at += 3)
    {
        samples.push_back(static_cast<std::uint16_t>(image[at] << 4 | (image[at + 1] & 0x0F)));
        samples.push_back(static_cast<std::uint16_t>(image[at + 2] << 4 | image[at + 1] >> 4));
    }
    return samples;
}

struct Camera
{
    const char* serialNumber;
    const char* tlType;
    std::size_t interface;
    std::size_t device;
    std::uint64_t pixelFormat; // number of the 32-bit naming convention
    std::size_t bytes;         // of an image
    std::vector<std::uint16_t> (*expected)(std::uint64_t frame);
    std::vector<std::uint16_t> (*unpack)(const Bytes& image);
};

std::ostream& operator<<(std::ostream& stream, const Camera& camera)
{
    return stream << camera.serialNumber;
}

const Camera cameras[] = {
    {"KS0001", "GEV", 0, 0, 0x01080001, width* height, Mono, UnpackBytes},
    {"KS0002", "GEV", 0, 1, 0x010C002B, width* height * 3 / 2, BayerRG12, Unpack12Packed},
    {"KS0003", "U3V", 1, 0, 0x02180014, width* height * 3, Colour, UnpackBytes},
    {"KS0004", "U3V", 1, 1, 0x01080001, width* height, Player, UnpackBytes},
};

class FirstPicture : public testing::TestWithParam<Camera>
{
protected:
    static constexpr std::size_t numBuffers = 4;

    // Memory of the test's, so that nobody can have copied the image.
    void AnnounceMemory()
    {
        memory.assign(numBuffers, Bytes(Get<std::size_t>(KORO_DataStream_GetPayloadSize, tree.stream), 0xEE));
        for (Bytes& one : memory)
        {
            buffers.emplace_back();
            Require(KORO_DataStream_AnnounceBuffer(
                tree.stream, one.data(), one.size(), &one, nullptr, nullptr, &buffers.back()));
        }
    }

    void QueueAll() const
    {
        for (const auto buffer : buffers)
            Require(KORO_DataStream_QueueBuffer(tree.stream, buffer));
    }

    void Start() const
    {
        Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, KORO_ACQ_START_FLAGS_DEFAULT));
        StartCamera();
    }

    void StartCamera() const
    {
        constexpr std::string_view name = "AcquisitionStart";
        const auto module = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice);
        const auto features = Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0});
        const auto node = Get<KORO_NodeHandle>(KORO_NodeMap_FindNode, features, name.data(), name.size() + 1);
        Require(KORO_CommandNode_Execute(Get<KORO_CommandNodeHandle>(KORO_Node_ToCommandNode, node)));
    }

    KORO_BufferHandle NextFrame() const
    {
        return Get<KORO_BufferHandle>(KORO_DataStream_WaitForFinishedBuffer, tree.stream, patience_ms);
    }

    std::vector<Bytes> memory; // outlives the library, whose end stops the camera
    const EnvironmentVariable noSettings{"KORO_SIMULATOR_CONFIG", std::nullopt};
    const KoroLibrary library;
    const OpenTree tree{BuiltProducer("zvr_koro_simulator"), GetParam().interface, GetParam().device};
    std::vector<KORO_BufferHandle> buffers;
};

INSTANTIATE_TEST_SUITE_P(Cameras, FirstPicture, testing::ValuesIn(cameras), [](const auto& camera) {
    return camera.param.serialNumber;
});

} // namespace

TEST_P(FirstPicture, EveryPixelIsWhatTheFormulaSays)
{
    const Camera& camera = GetParam();
    EXPECT_EQ(GetText(KORO_Device_GetSerialNumber, tree.device), camera.serialNumber);
    EXPECT_EQ(GetText(KORO_DataStream_GetTLType, tree.stream), camera.tlType);
    AnnounceMemory();
    QueueAll();
    Start();
    for (int frame = 0; frame < 6; ++frame)
    {
        const auto buffer = NextFrame();
        EXPECT_EQ(Get<std::size_t>(KORO_Buffer_GetWidth, buffer), width);
        EXPECT_EQ(Get<std::size_t>(KORO_Buffer_GetHeight, buffer), height);
        EXPECT_EQ(Get<std::uint64_t>(KORO_Buffer_GetPixelFormat, buffer), camera.pixelFormat);
        EXPECT_EQ(
            Get<std::int32_t>(KORO_Buffer_GetPixelFormatNamespace, buffer), KORO_PIXELFORMAT_NAMESPACE_PFNC_32BIT);
        EXPECT_EQ(Get<std::int32_t>(KORO_Buffer_GetPayloadType, buffer), KORO_PAYLOAD_TYPE_IMAGE);
        EXPECT_EQ(Get<std::size_t>(KORO_Buffer_GetDeliveredDataSize, buffer), camera.bytes);
        EXPECT_EQ(Get<KORO_Bool8>(KORO_Buffer_GetIsIncomplete, buffer), 0);

        const auto& image = *static_cast<Bytes*>(Get<void*>(KORO_Buffer_GetUserPtr, buffer));
        ASSERT_EQ(Get<void*>(KORO_Buffer_GetBasePtr, buffer), image.data());
        ASSERT_EQ(image.size(), camera.bytes);
        const auto number = Get<std::uint64_t>(KORO_Buffer_GetFrameID, buffer);
        EXPECT_TRUE(camera.unpack(image) == camera.expected(number)) << "frame " << number;
        Require(KORO_DataStream_QueueBuffer(tree.stream, buffer));
    }
}

TEST_P(FirstPicture, FrameNumbersAndTimesIncrease)
{
    AnnounceMemory();
    QueueAll();
    Start();
    std::uint64_t number = 0;
    std::uint64_t time_ns = 0;
    std::uint64_t time_ticks = 0;
    const auto expectMore = [](std::uint64_t& last, std::uint64_t next) { EXPECT_GT(next, std::exchange(last, next)); };
    for (int frame = 0; frame < 5; ++frame)
    {
        const auto buffer = NextFrame();
        expectMore(number, Get<std::uint64_t>(KORO_Buffer_GetFrameID, buffer));
        expectMore(time_ns, Get<std::uint64_t>(KORO_Buffer_GetTimestamp_ns, buffer));
        expectMore(time_ticks, Get<std::uint64_t>(KORO_Buffer_GetTimestamp_ticks, buffer));
        Require(KORO_DataStream_QueueBuffer(tree.stream, buffer));
    }
}

TEST_P(FirstPicture, FramesWithoutABufferAreUnderruns)
{
    AnnounceMemory();
    Start();
    const auto underruns = [&] { return Get<std::uint64_t>(KORO_DataStream_GetNumUnderruns, tree.stream); };
    while (underruns() < 3)
        std::this_thread::yield();
    // The lost frames have used up their numbers.
    QueueAll();
    EXPECT_GT(Get<std::uint64_t>(KORO_Buffer_GetFrameID, NextFrame()), 3u);
}

TEST_P(FirstPicture, CountedAcquisitionEndsByItself)
{
    AnnounceMemory();
    QueueAll();
    Require(KORO_DataStream_StartAcquisition(tree.stream, KORO_ACQ_START_FLAGS_DEFAULT, 3));
    StartCamera();
    for (int frame = 0; frame < 3; ++frame)
        NextFrame();
    KORO_BufferHandle buffer = nullptr;
    EXPECT_EQ(Outcome(KORO_DataStream_WaitForFinishedBuffer(tree.stream, 0, &buffer)).code, KORO_RETURN_CODE_TIMEOUT);
    EXPECT_EQ(Get<std::uint64_t>(KORO_DataStream_GetNumBuffersDelivered, tree.stream), 3u);
}

TEST_P(FirstPicture, ProducersMemoryHoldsTheSamePicture)
{
    const auto payload = Get<std::size_t>(KORO_DataStream_GetPayloadSize, tree.stream);
    Require(KORO_DataStream_QueueBuffer(
        tree.stream, Get<KORO_BufferHandle>(
                         KORO_DataStream_AllocAndAnnounceBuffer, tree.stream, payload, static_cast<void*>(nullptr))));
    Start();
    const auto buffer = NextFrame();
    const auto* base = static_cast<const std::uint8_t*>(Get<void*>(KORO_Buffer_GetBasePtr, buffer));
    const Bytes image(base, base + Get<std::size_t>(KORO_Buffer_GetDeliveredDataSize, buffer));
    EXPECT_TRUE(GetParam().unpack(image) == GetParam().expected(Get<std::uint64_t>(KORO_Buffer_GetFrameID, buffer)));
}
