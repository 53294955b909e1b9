#include "producers/simulator/camera/feature_values.h"

#include "producers/kit/register_map.h"
#include "producers/simulator/kit.h"

#include <algorithm>
#include <camera_register_names.h>
#include <cmath>
#include <numeric>

namespace koro::simulator
{
namespace
{

constexpr double microseconds = 1'000'000;
constexpr double usualExposure_us = 10'000;
constexpr double usualRate = 25;
constexpr double fastestRate = 1000; // of a paced camera that is left to itself
constexpr std::uint64_t largestBinning = 4;
constexpr RealRegister exposureRegister = registers::ExposureTimeReg;

bool IsBayer(Colours colours) noexcept
{
    return colours != Colours::Mono && colours != Colours::RGB && colours != Colours::BGR;
}

bool IsTrueColour(Colours colours) noexcept
{
    return colours == Colours::RGB || colours == Colours::BGR;
}

template <typename Number>
bool IsWithin(Number value, Number least, Number most) noexcept
{
    return value >= least && value <= most; // false for no number
}

bool TriggerFits(const Trigger& trigger) noexcept
{
    return registers::TriggerModeReg.Allows(trigger.mode) && registers::TriggerSourceReg.Allows(trigger.source) &&
           registers::TriggerActivationReg.Allows(trigger.activation);
}

} // namespace

Sensor::Sensor(const CameraSettings& settings)
    : width(settings.width), height(settings.height), colours(settings.format->colours),
      neutralExposure_us(usualExposure_us), freeRate(settings.rate > 0 ? std::max(fastestRate, settings.rate) : 0),
      measures(settings.scan3d)
{
    if (settings.rate > 0)
        neutralExposure_us = std::clamp(microseconds / settings.rate, exposureRegister.least, usualExposure_us);
}

bool Sensor::CanSend(const PixelFormat& format) const noexcept
{
    const bool isOwn = IsTrueColour(colours) ? IsTrueColour(format.colours) : format.colours == colours;
    const bool isGrey = format.colours == Colours::Mono && format.packing == Packing::Bytes;
    return isOwn || isGrey;
}

FeatureValues::FeatureValues(const CameraSettings& settings)
    : format(settings.format), width(settings.width), height(settings.height),
      partSet(settings.scan3d ? allParts : intensityPart), rateEnabled(settings.rate > 0 ? 1 : 0),
      rate(settings.rate > 0 ? settings.rate : usualRate), exposure_us(Sensor(settings).neutralExposure_us)
{
    std::iota(table.begin(), table.end(), std::uint8_t{0});
    if (!settings.chunks) return;
    chunkModeActive = 1;
    chunkSet = *settings.chunks | imageChunk;
}

std::uint64_t FeatureValues::StepOf(const PixelFormat& format) noexcept
{
    std::uint64_t step = 1;
    while (!format.FitsWidth(step))
        ++step;
    return step;
}

std::uint64_t FeatureValues::BinningMax(std::size_t sensorSide, std::uint64_t least) const noexcept
{
    if (IsBayer(format->colours)) return 1;
    return std::clamp<std::uint64_t>(sensorSide / least, 1, largestBinning);
}

void FeatureValues::RequireBounded(const ImageShape& shape) const
{
    if (PartLayout(partSet, shape).Bytes() > maxPayloadBytes) RefuseValue("the image would be too large");
}

void FeatureValues::SetWidth(const Sensor& sensor, std::uint64_t value)
{
    if (value == 0 || value > WidthMax(sensor) - offsetX || value % WidthStep() != 0)
        RefuseValue("the width does not fit");
    RequireBounded({format, value, height});
    width = value;
}

void FeatureValues::SetHeight(const Sensor& sensor, std::uint64_t value)
{
    if (value == 0 || value > HeightMax(sensor) - offsetY) RefuseValue("the height does not fit");
    RequireBounded({format, width, value});
    height = value;
}

void FeatureValues::SetOffsetX(const Sensor& sensor, std::uint64_t value)
{
    if (value > WidthMax(sensor) - width || value % offsetStep != 0) RefuseValue("the region leaves the image");
    offsetX = value;
}

void FeatureValues::SetOffsetY(const Sensor& sensor, std::uint64_t value)
{
    if (value > HeightMax(sensor) - height || value % offsetStep != 0) RefuseValue("the region leaves the image");
    offsetY = value;
}

// A region that does not fit any more loses what lies outside; one that fits stays, so that values can be written in
// any order.
void FeatureValues::SetBinningHorizontal(const Sensor& sensor, std::uint64_t value)
{
    if (value < 1 || value > BinningMax(sensor.width, WidthStep())) RefuseValue("the binning is out of range");
    const std::uint64_t columns = sensor.width / value;
    binningHorizontal = value;
    width = std::min(width, columns / WidthStep() * WidthStep());
    offsetX = std::min(offsetX, (columns - width) / offsetStep * offsetStep);
}

void FeatureValues::SetBinningVertical(const Sensor& sensor, std::uint64_t value)
{
    if (value < 1 || value > BinningMax(sensor.height, 1)) RefuseValue("the binning is out of range");
    const std::uint64_t lines = sensor.height / value;
    binningVertical = value;
    height = std::min(height, lines);
    offsetY = std::min(offsetY, (lines - height) / offsetStep * offsetStep);
}

void FeatureValues::SetFormat(const Sensor& sensor, std::uint64_t code)
{
    const PixelFormat* const wanted = FindPixelFormatByCode(code);
    if (wanted == nullptr || !sensor.CanSend(*wanted)) RefuseValue("the sensor has no such format");
    if (IsBayer(wanted->colours) && (binningHorizontal > 1 || binningVertical > 1))
        RefuseValue("a Bayer format needs an image without binning");
    const std::uint64_t step = StepOf(*wanted);
    const std::uint64_t fitting = width / step * step;
    if (fitting == 0) RefuseValue("the image is too narrow for the format");
    RequireBounded({wanted, fitting, height});
    format = wanted;
    width = fitting;
}

double FeatureValues::GainFactor() const
{
    const double decibels = (gain[0] + gain[1]) / 100.0;
    return std::pow(10, decibels / 20);
}

double FeatureValues::AutomaticExposure_us(const Sensor& sensor) const
{
    return std::clamp(sensor.neutralExposure_us / GainFactor(), exposureRegister.least, exposureRegister.most);
}

double FeatureValues::Exposure_us(const Sensor& sensor) const
{
    return exposureIsAutomatic ? AutomaticExposure_us(sensor) : exposure_us;
}

double FeatureValues::Readout_us(const Sensor& sensor) const
{
    return sensor.freeRate == 0 ? 0 : microseconds / sensor.freeRate;
}

double FeatureValues::ResultingRate(const Sensor& sensor) const
{
    const double wanted = rateEnabled == 1 ? rate : sensor.freeRate;
    if (wanted == 0) return 0;
    return std::min(wanted, microseconds / Exposure_us(sensor));
}

std::uint64_t FeatureValues::LineLevels() const noexcept
{
    const std::uint64_t output = (lineSource == 1 ? userOutput : 0) ^ lineInverted[1];
    const std::uint64_t input = output ^ lineInverted[0];
    return input | output << 1;
}

void FeatureValues::SetPart(PartKind kind, std::uint64_t isSent)
{
    if (isSent > 1) RefuseValue("the value is out of range");
    const PartSet bit = PartSet{1} << static_cast<std::uint32_t>(kind);
    const PartSet wanted = isSent == 1 ? partSet | bit : partSet & ~bit;
    if (wanted == 0) RefuseValue("one component at least is sent");
    if (PartLayout(wanted, Shape()).Bytes() > maxPayloadBytes) RefuseValue("the payload would be too large");
    partSet = wanted;
}

Axis FeatureValues::AxisX(const Sensor& sensor) const noexcept
{
    return {WidthMax(sensor), offsetX, binningHorizontal, reverseX == 1};
}

Axis FeatureValues::AxisY(const Sensor& sensor) const noexcept
{
    return {HeightMax(sensor), offsetY, binningVertical, reverseY == 1};
}

ChunkLayout FeatureValues::Chunks(ChunkForm form) const
{
    const std::size_t imageBytes = Parts().Bytes();
    return chunkModeActive == 1 ? ChunkLayout(form, chunkSet, imageBytes) : ChunkLayout(imageBytes);
}

ChunkValues FeatureValues::MakeChunkValues(const Sensor& sensor) const noexcept
{
    ChunkValues told;
    told.exposure_us = Exposure_us(sensor);
    told.gain_dB = {gain[0] / 100.0, gain[1] / 100.0};
    told.blackLevel = static_cast<double>(blackLevel) / 16;
    told.offsetX = offsetX;
    told.offsetY = offsetY;
    told.width = width;
    told.height = height;
    told.format = format->code;
    told.lineLevels = LineLevels();
    return told;
}

FramePlan FeatureValues::MakePlan(const Sensor& sensor, ChunkForm form) const
{
    FramePlan plan{
        Shape(),
        sensor.width,
        sensor.height,
        AxisX(sensor),
        AxisY(sensor),
        static_cast<TestPattern>(testPattern),
        {},
        Parts(),
        partSet != intensityPart,
        Chunks(form),
        MakeChunkValues(sensor)};
    const double light = Exposure_us(sensor) / sensor.neutralExposure_us * GainFactor();
    const std::uint8_t* const lookUp = tableEnabled == 1 ? table.data() : nullptr;
    const auto respond = [&](Component component, double ratio) {
        const Analog analog{light * ratio, static_cast<double>(blackLevel) / 16, gamma};
        plan.response[static_cast<std::size_t>(component)] = MakeResponse(format->depth, analog, lookUp);
    };
    if (format->colours == Colours::Mono)
        respond(Component::Mono, 1);
    else
    {
        respond(Component::Red, balance[0]);
        respond(Component::Green, balance[1]);
        respond(Component::Blue, balance[2]);
    }
    return plan;
}

bool FeatureValues::GeometryFits(const Sensor& sensor) const
{
    if (format == nullptr || !sensor.CanSend(*format)) return false;
    if (!IsWithin<std::uint64_t>(binningHorizontal, 1, BinningMax(sensor.width, 1))) return false;
    if (!IsWithin<std::uint64_t>(binningVertical, 1, BinningMax(sensor.height, 1))) return false;
    if (!IsWithin<std::uint64_t>(width, 1, WidthMax(sensor)) || width % WidthStep() != 0) return false;
    if (!IsWithin<std::uint64_t>(height, 1, HeightMax(sensor))) return false;
    return offsetX <= WidthMax(sensor) - width && offsetX % offsetStep == 0 && offsetY <= HeightMax(sensor) - height &&
           offsetY % offsetStep == 0 && registers::ReverseXReg.Allows(reverseX) &&
           registers::ReverseYReg.Allows(reverseY) && Parts().Bytes() <= maxPayloadBytes &&
           registers::TestPatternReg.Allows(testPattern) && registers::ChunkModeActiveReg.Allows(chunkModeActive) &&
           (chunkSet & imageChunk) != 0 && chunkSet <= allChunks && partSet >= 1 &&
           partSet <= (sensor.measures ? allParts : intensityPart) && registers::Scan3dOutputModeReg.Allows(scan3dMode);
}

bool FeatureValues::AcquisitionFits() const noexcept
{
    return registers::AcquisitionModeReg.Allows(acquisitionMode) &&
           registers::AcquisitionFrameCountReg.Allows(frameCount) &&
           registers::AcquisitionFrameRateEnableReg.Allows(rateEnabled) &&
           registers::AcquisitionFrameRateReg.Allows(rate) && registers::ExposureTimeReg.Allows(exposure_us) &&
           TriggerFits(triggers[0]) && TriggerFits(triggers[1]);
}

bool FeatureValues::AnalogFits() const noexcept
{
    const auto isRatio = [](double ratio) { return registers::BalanceRatioReg.Allows(ratio); };
    return IsWithin(gain[0], minGain[0], maxGain[0]) && IsWithin(gain[1], minGain[1], maxGain[1]) &&
           blackLevel <= maxBlackLevel && registers::GammaReg.Allows(gamma) &&
           std::all_of(balance.begin(), balance.end(), isRatio) && registers::LUTEnableReg.Allows(tableEnabled);
}

bool FeatureValues::LinesFit() const noexcept
{
    const auto& counterSources = registers::CounterEventSourceReg;
    const auto& inverter = registers::LineInverterReg;
    return counterSources.Allows(counterSource[0]) && counterSources.Allows(counterSource[1]) &&
           registers::TimerDurationReg.Allows(timerDuration_us) && inverter.Allows(lineInverted[0]) &&
           inverter.Allows(lineInverted[1]) && registers::LineSourceReg.Allows(lineSource) &&
           registers::UserOutputValueReg.Allows(userOutput) && notifiedEvents >> numCameraEvents == 0;
}

bool FeatureValues::TransportFits() const noexcept
{
    return registers::DeviceLinkHeartbeatModeReg.Allows(heartbeat) &&
           registers::DeviceLinkHeartbeatTimeoutReg.Allows(heartbeatTimeout_us) &&
           registers::GevSCPSPacketSizeReg.Allows(packetSize) && registers::GevSCPDReg.Allows(packetDelay) &&
           registers::SIMaximumLeaderSizeReg.Allows(maximumLeader) &&
           registers::SIMaximumTrailerSizeReg.Allows(maximumTrailer) &&
           registers::SIPayloadTransferSizeReg.Allows(transferSize);
}

bool FeatureValues::Fits(const Sensor& sensor) const
{
    return GeometryFits(sensor) && AcquisitionFits() && AnalogFits() && LinesFit() && TransportFits();
}

} // namespace koro::simulator
