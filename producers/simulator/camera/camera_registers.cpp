// The registers of a camera, category by category, at the places that descriptions/camera/*.xml give them.
#include "producers/kit/failure.h"
#include "producers/kit/port.h"
#include "producers/simulator/camera/camera_features.h"
#include "producers/simulator/camera/producer_facts.h"
#include "producers/simulator/camera/register_settings.h"
#include "producers/simulator/kit.h"

#include <camera_register_names.h>
#include <cstring>

namespace koro::simulator
{
namespace
{

// The standard features naming convention of cameras.
constexpr std::uint64_t cameraSFNC[] = {2, 7, 0};

// The registers that the kit adds are where the description expects them.
static_assert(registers::DeviceVendorName.address == vendorRegister);
static_assert(registers::DeviceModelName.address == modelRegister);
static_assert(registers::DeviceVersion.address == versionRegister);

} // namespace

void CameraFeatures::AddNumber(const NumberRegister& place, const std::function<std::uint64_t&()>& value)
{
    AddSetting(place, value, [value](std::uint64_t wanted) { value() = wanted; });
}

void CameraFeatures::AddNumber(const NumberRegister& place, std::uint64_t FeatureValues::*value)
{
    AddNumber(place, [this, value]() -> std::uint64_t& { return state.values.*value; });
}

void CameraFeatures::AddReal(const RealRegister& place, const std::function<double&()>& value)
{
    map.AddFloat(place, value, [this, place, value](double wanted) {
        if (place.isLocked) RequireUnlocked();
        RequireAllowed(place, wanted);
        value() = wanted;
    });
}

void CameraFeatures::AddRegion(
    const FeatureRegister& place, std::uint64_t FeatureValues::*value,
    void (FeatureValues::*set)(const Sensor&, std::uint64_t))
{
    AddSetting(
        place, [this, value] { return state.values.*value; },
        [this, set](std::uint64_t wanted) { (state.values.*set)(sensor, wanted); });
}

void CameraFeatures::AddDeviceControl()
{
    map.AddText(registers::DeviceManufacturerInfo, "a simulated camera");
    map.AddText(registers::DeviceFirmwareVersion, [this] { return state.firmware; });
    map.AddText(registers::DeviceSerialNumber, settings.serial);
    map.AddText(
        registers::DeviceUserID, [this] { return state.userName; },
        [this](std::string text) { state.userName = std::move(text); });
    for (std::size_t part = 0; part < std::size(cameraSFNC); ++part)
        map.AddInteger(registers::DeviceSFNCVersionMajor.At(part), cameraSFNC[part]);
    for (std::size_t place = 0; place < 2; ++place)
        map.AddFloat(registers::DeviceTemperatureReg.At(place), [this, place] { return Temperature(place); });
    map.AddInteger(
        registers::DeviceResetReg, [] { return std::uint64_t{0}; },
        [this](std::uint64_t value) {
            if (value > 1) RefuseValue("a command takes 1");
            if (value == 1) Reset();
        });
    AddNumber(registers::DeviceLinkHeartbeatModeReg, &FeatureValues::heartbeat);
    AddNumber(registers::DeviceLinkHeartbeatTimeoutReg, &FeatureValues::heartbeatTimeout_us);
    map.AddInteger(registers::DeviceLinkSpeed, connection.tlType == "U3V" ? 500'000'000 : 125'000'000);
    map.AddCommand(registers::TimestampResetReg, [this] { state.clockStart = Clock::now(); });
    map.AddCommand(registers::TimestampLatchReg, [this] { state.latched_ns = ClockValue_ns(); });
    map.AddInteger(registers::TimestampLatchValue, [this] { return state.latched_ns; });
}

void CameraFeatures::AddImageFormatControl()
{
    AddRegion(registers::WidthReg, &FeatureValues::width, &FeatureValues::SetWidth);
    AddRegion(registers::HeightReg, &FeatureValues::height, &FeatureValues::SetHeight);
    AddSetting(
        registers::PixelFormatReg, [this] { return std::uint64_t{state.values.format->code}; },
        [this](std::uint64_t code) { state.values.SetFormat(sensor, code); });
    map.AddInteger(registers::SensorWidth, sensor.width);
    map.AddInteger(registers::SensorHeight, sensor.height);
    map.AddInteger(registers::WidthMax, [this] { return state.values.WidthMax(sensor); });
    map.AddInteger(registers::HeightMax, [this] { return state.values.HeightMax(sensor); });
    AddRegion(registers::OffsetXReg, &FeatureValues::offsetX, &FeatureValues::SetOffsetX);
    AddRegion(registers::OffsetYReg, &FeatureValues::offsetY, &FeatureValues::SetOffsetY);
    map.AddInteger(registers::WidthIncReg, [this] { return state.values.WidthStep(); });
    AddRegion(registers::BinningHorizontalReg, &FeatureValues::binningHorizontal, &FeatureValues::SetBinningHorizontal);
    AddRegion(registers::BinningVerticalReg, &FeatureValues::binningVertical, &FeatureValues::SetBinningVertical);
    map.AddInteger(registers::BinningHorizontalMax, [this] {
        return state.values.BinningMax(sensor.width, state.values.WidthStep());
    });
    map.AddInteger(registers::BinningVerticalMax, [this] { return state.values.BinningMax(sensor.height, 1); });
    AddNumber(registers::ReverseXReg, &FeatureValues::reverseX);
    AddNumber(registers::ReverseYReg, &FeatureValues::reverseY);
    static_assert(registers::TestPatternReg.most == static_cast<std::uint64_t>(TestPattern::ColorBar));
    AddNumber(registers::TestPatternReg, &FeatureValues::testPattern);

    std::uint64_t words[2] = {};
    for (std::size_t index = 0; index < PixelFormats().size(); ++index)
        if (sensor.CanSend(PixelFormats()[index])) words[index / 32] |= std::uint64_t{1} << index % 32;
    map.AddInteger(registers::HasMono8, words[0]);
    map.AddInteger(registers::HasBayerBG8, words[1]);
    map.AddInteger(registers::SensorIsColour, sensor.colours == Colours::Mono ? 0 : 1);
}

void CameraFeatures::AddAcquisitionControl()
{
    AddNumber(registers::AcquisitionModeReg, &FeatureValues::acquisitionMode);
    map.AddCommand(registers::AcquisitionStartReg, [this] {
        if (!state.acquisition.IsActive()) state.acquisition.Start(state.values);
    });
    map.AddCommand(registers::AcquisitionStopReg, [this] { state.acquisition.Stop(); });
    AddNumber(registers::AcquisitionFrameCountReg, &FeatureValues::frameCount);
    AddNumber(registers::AcquisitionFrameRateEnableReg, &FeatureValues::rateEnabled);
    AddReal(registers::AcquisitionFrameRateReg, [this]() -> double& { return state.values.rate; });
    map.AddFloat(registers::AcquisitionResultingFrameRate, [this] { return state.values.ResultingRate(sensor); });
    map.AddFloat(
        registers::ExposureTimeReg, [this] { return state.values.Exposure_us(sensor); },
        [this](double wanted) {
            if (state.values.exposureIsAutomatic)
                throw Failure(GC_ERR_ACCESS_DENIED, "the camera chooses the exposure time");
            RequireAllowed(registers::ExposureTimeReg, wanted);
            state.values.exposure_us = wanted;
        });
    AddSetting(
        registers::ExposureAutoReg, [this]() -> std::uint64_t { return state.values.exposureIsAutomatic ? 2 : 0; },
        [this](std::uint64_t mode) {
            if (mode > 0 || state.values.exposureIsAutomatic)
                state.values.exposure_us = state.values.AutomaticExposure_us(sensor);
            state.values.exposureIsAutomatic = mode == 2;
        });
    map.AddInteger(registers::AcquisitionStatusReg, [this] { return StatusBits(); });
    for (const Step step : {Step::Frame, Step::Acquisition})
    {
        const auto index = static_cast<std::size_t>(step);
        const auto of = [this, index](std::uint64_t Trigger::*member) {
            return [this, index, member]() -> std::uint64_t& { return state.values.triggers[index].*member; };
        };
        AddNumber(registers::TriggerModeReg.At(index), of(&Trigger::mode));
        AddNumber(registers::TriggerSourceReg.At(index), of(&Trigger::source));
        AddNumber(registers::TriggerActivationReg.At(index), of(&Trigger::activation));
        map.AddCommand(registers::TriggerSoftwareReg.At(index), [this, step, index] {
            if (state.values.triggers[index].source == 0) state.acquisition.Pull(state.values, step, Time());
        });
    }
}

void CameraFeatures::AddAnalogControl()
{
    for (std::size_t index = 0; index < 2; ++index)
        map.AddInteger(
            registers::GainReg.At(index),
            [this, index] { return static_cast<std::uint64_t>(state.values.gain[index]); },
            [this, index](std::uint64_t value) {
                const auto wanted = static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
                if (wanted < minGain[index] || wanted > maxGain[index]) RefuseValue("the value is out of range");
                state.values.gain[index] = wanted;
            });
    AddNumber({registers::BlackLevelReg, 0, maxBlackLevel, 1}, &FeatureValues::blackLevel);
    AddReal(registers::GammaReg, [this]() -> double& { return state.values.gamma; });
    for (std::size_t index = 0; index < 3; ++index)
        AddReal(
            registers::BalanceRatioReg.At(index), [this, index]() -> double& { return state.values.balance[index]; });
}

void CameraFeatures::AddTable()
{
    AddNumber(registers::LUTEnableReg, &FeatureValues::tableEnabled);
    map.AddBlock(
        registers::LUTValueAll,
        [this] {
            const auto bytes = std::as_bytes(std::span(state.values.table));
            return std::vector<std::byte>(bytes.begin(), bytes.end());
        },
        [this](std::span<const std::byte> in) { std::memcpy(state.values.table.data(), in.data(), in.size()); });
}

void CameraFeatures::AddCountersAndTimer()
{
    static_assert(registers::CounterEventSourceReg.most == static_cast<std::uint64_t>(CounterEvent::Line0));
    for (std::size_t index = 0; index < 2; ++index)
    {
        AddNumber(registers::CounterEventSourceReg.At(index), [this, index]() -> std::uint64_t& {
            return state.values.counterSource[index];
        });
        map.AddCommand(registers::CounterResetReg.At(index), [this, index] { state.acquisition.ResetCounter(index); });
        map.AddInteger(
            registers::CounterValueReg.At(index), [this, index] { return state.acquisition.Counter(index); });
    }
    AddReal(registers::TimerDurationReg, [this]() -> double& { return state.values.timerDuration_us; });
    map.AddCommand(registers::TimerResetReg, [this] { state.timerStart = Clock::now(); });
    map.AddInteger(registers::TimerStatusReg, [this] { return TimerStatus(); });
    map.AddFloat(registers::TimerValue, [this] { return TimerValue_us(); });
}

void CameraFeatures::AddLines()
{
    const auto add = [this](const NumberRegister& place, const std::function<std::uint64_t&()>& value) {
        AddSetting(place, value, [this, value](std::uint64_t wanted) {
            const std::uint64_t before = state.values.LineLevels();
            value() = wanted;
            OnLinesChanged(before);
        });
    };
    for (std::size_t line = 0; line < 2; ++line)
        add(registers::LineInverterReg.At(line),
            [this, line]() -> std::uint64_t& { return state.values.lineInverted[line]; });
    add(registers::LineSourceReg, [this]() -> std::uint64_t& { return state.values.lineSource; });
    add(registers::UserOutputValueReg, [this]() -> std::uint64_t& { return state.values.userOutput; });
    map.AddInteger(registers::LineStatusAll, [this] { return state.values.LineLevels(); });
}

void CameraFeatures::AddUserSets()
{
    for (std::size_t set = 0; set < state.userSets.size(); ++set)
    {
        map.AddCommand(registers::UserSetLoadReg.At(set), [this, set] {
            RequireUnlocked();
            Load(set);
        });
        if (set > 0)
            map.AddCommand(registers::UserSetSaveReg.At(set), [this, set] { state.userSets[set] = state.values; });
    }
    static_assert(registers::UserSetDefaultReg.most + 1 == std::tuple_size_v<decltype(state.userSets)>);
    AddNumber(registers::UserSetDefaultReg, [this]() -> std::uint64_t& { return state.userSetDefault; });
}

} // namespace koro::simulator
