// FeatureValues: the settings of a camera that a user set keeps, with the rules among them. A plain value.
//
// Setters refuse by RefuseValue. Numbers of enumerations are those of the descriptions.
#pragma once

#include "producers/simulator/camera/camera_events.h"
#include "producers/simulator/frames/frame_plan.h"
#include "producers/simulator/settings/settings.h"

#include <array>
#include <cstdint>

namespace koro::simulator
{

enum class AcquisitionMode : std::uint64_t
{
    Continuous,
    SingleFrame,
    MultiFrame
};

enum class Step : std::size_t
{
    Frame,
    Acquisition
};

struct Trigger
{
    std::uint64_t mode = 0;       // 1 on
    std::uint64_t source = 0;     // 0 software, 1 line 0
    std::uint64_t activation = 0; // 0 rising edge, 1 falling, 2 any

    bool operator==(const Trigger&) const = default;
};

// What never changes of a camera's sensor.
struct Sensor
{
    explicit Sensor(const CameraSettings& settings);

    std::size_t width;
    std::size_t height;
    Colours colours;
    double neutralExposure_us; // the pictures are as their formula says
    double freeRate;           // frames per second without a set rate; 0: unpaced
    bool measures;             // distances

    // Whether the sensor can send that format at all.
    bool CanSend(const PixelFormat& format) const noexcept;
};

class FeatureValues
{
public:
    explicit FeatureValues(const CameraSettings& settings);
    bool operator==(const FeatureValues&) const = default;

    const PixelFormat* format;
    std::uint64_t width;
    std::uint64_t height;
    std::uint64_t offsetX = 0;
    std::uint64_t offsetY = 0;
    std::uint64_t binningHorizontal = 1;
    std::uint64_t binningVertical = 1;
    std::uint64_t reverseX = 0;
    std::uint64_t reverseY = 0;
    std::uint64_t testPattern = 0;
    std::uint64_t chunkModeActive = 0;
    ChunkSet chunkSet = imageChunk; // enabled, with or without the mode
    PartSet partSet;
    std::uint64_t scan3dMode = 1; // rectified

    std::uint64_t acquisitionMode = 0;
    std::uint64_t frameCount = 1;
    std::uint64_t rateEnabled;
    double rate; // frames per second
    double exposure_us;
    bool exposureIsAutomatic = false;
    std::array<Trigger, 2> triggers{}; // by Step

    std::array<std::int32_t, 2> gain{}; // analog, digital; hundredths of a decibel
    std::uint64_t blackLevel = 0;       // sixteenths of a step of an 8-bit image
    double gamma = 1;
    std::array<double, 3> balance{1, 1, 1}; // red, green, blue
    std::uint64_t tableEnabled = 0;
    std::array<std::uint8_t, 256> table{};

    std::array<std::uint64_t, 2> counterSource{};
    double timerDuration_us = 1000;
    std::array<std::uint64_t, 2> lineInverted{};
    std::uint64_t lineSource = 0;
    std::uint64_t userOutput = 0;
    EventSet notifiedEvents = SetOf(CameraEvent::ExposureEnd);

    std::uint64_t heartbeat = 1;
    std::uint64_t heartbeatTimeout_us = 3'000'000;
    std::uint64_t packetSize = 1500;
    std::uint64_t packetDelay = 0;
    std::uint64_t maximumLeader = 1024;
    std::uint64_t maximumTrailer = 1024;
    std::uint64_t transferSize = 65536;

    ImageShape Shape() const noexcept { return {format, width, height}; }
    PartLayout Parts() const { return {partSet, Shape()}; }
    ChunkLayout Chunks(ChunkForm form) const;
    Axis AxisX(const Sensor& sensor) const noexcept;
    Axis AxisY(const Sensor& sensor) const noexcept;
    std::uint64_t WidthMax(const Sensor& sensor) const noexcept { return sensor.width / binningHorizontal; }
    std::uint64_t HeightMax(const Sensor& sensor) const noexcept { return sensor.height / binningVertical; }
    std::uint64_t WidthStep() const noexcept { return StepOf(*format); }
    std::uint64_t BinningMax(std::size_t sensorSide, std::uint64_t least) const noexcept;

    void SetWidth(const Sensor& sensor, std::uint64_t value);
    void SetHeight(const Sensor& sensor, std::uint64_t value);
    void SetOffsetX(const Sensor& sensor, std::uint64_t value);
    void SetOffsetY(const Sensor& sensor, std::uint64_t value);
    // These set the region of that side back to the whole.
    void SetBinningHorizontal(const Sensor& sensor, std::uint64_t value);
    void SetBinningVertical(const Sensor& sensor, std::uint64_t value);
    // The width goes down to the next that the format allows.
    void SetFormat(const Sensor& sensor, std::uint64_t code);
    // One at least is sent.
    void SetPart(PartKind kind, std::uint64_t isSent);

    // All gains but the balance.
    double GainFactor() const;
    double Exposure_us(const Sensor& sensor) const;
    double AutomaticExposure_us(const Sensor& sensor) const;
    // Of the sensor at its fastest; 0: unpaced.
    double Readout_us(const Sensor& sensor) const;
    // Frames per second; 0: unpaced.
    double ResultingRate(const Sensor& sensor) const;
    // Levels of line 0 (bit 0, wired to line 1) and line 1 (bit 1).
    std::uint64_t LineLevels() const noexcept;

    FramePlan MakePlan(const Sensor& sensor, ChunkForm form) const;

    // Whether the setters could have left them so.
    bool Fits(const Sensor& sensor) const;
    // `each` for every field but the format.
    template <typename Values, typename Each>
    static void ForEachField(Values& values, const Each& each);

private:
    static std::uint64_t StepOf(const PixelFormat& format) noexcept;
    void RequireBounded(const ImageShape& shape) const;
    ChunkValues MakeChunkValues(const Sensor& sensor) const noexcept;
    bool GeometryFits(const Sensor& sensor) const;
    bool AcquisitionFits() const noexcept;
    bool AnalogFits() const noexcept;
    bool LinesFit() const noexcept;
    bool TransportFits() const noexcept;
};

inline constexpr std::uint64_t offsetStep = 2; // keeps the colours of a Bayer pattern in place
// Ranges that the descriptions compute, here in the numbers of the registers.
inline constexpr std::array<std::int32_t, 2> minGain{0, -600};
inline constexpr std::array<std::int32_t, 2> maxGain{2400, 1200};
inline constexpr std::uint64_t maxBlackLevel = 1023;

template <typename Values, typename Each>
void FeatureValues::ForEachField(Values& values, const Each& each)
{
    each(values.width);
    each(values.height);
    each(values.offsetX);
    each(values.offsetY);
    each(values.binningHorizontal);
    each(values.binningVertical);
    each(values.reverseX);
    each(values.reverseY);
    each(values.testPattern);
    each(values.chunkModeActive);
    each(values.chunkSet);
    each(values.partSet);
    each(values.scan3dMode);
    each(values.acquisitionMode);
    each(values.frameCount);
    each(values.rateEnabled);
    each(values.rate);
    each(values.exposure_us);
    each(values.exposureIsAutomatic);
    for (auto& trigger : values.triggers)
    {
        each(trigger.mode);
        each(trigger.source);
        each(trigger.activation);
    }
    each(values.gain);
    each(values.blackLevel);
    each(values.gamma);
    each(values.balance);
    each(values.tableEnabled);
    each(values.table);
    each(values.counterSource);
    each(values.timerDuration_us);
    each(values.lineInverted);
    each(values.lineSource);
    each(values.userOutput);
    each(values.notifiedEvents);
    each(values.heartbeat);
    each(values.heartbeatTimeout_us);
    each(values.packetSize);
    each(values.packetDelay);
    each(values.maximumLeader);
    each(values.maximumTrailer);
    each(values.transferSize);
}

} // namespace koro::simulator
