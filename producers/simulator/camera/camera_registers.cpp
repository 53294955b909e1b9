// The registers of a camera, category by category, at the addresses that descriptions/camera/*.xml name.
#include "producers/kit/failure.h"
#include "producers/kit/port.h"
#include "producers/simulator/camera/camera_features.h"
#include "producers/simulator/camera/producer_facts.h"
#include "producers/simulator/kit.h"

#include <cstring>

namespace koro::simulator
{
namespace
{

constexpr std::size_t stepBytes = 4; // between the registers of a selector

// The standard features naming convention of cameras.
constexpr std::uint64_t cameraSFNC[] = {2, 7, 0};

} // namespace

void CameraFeatures::AddNumber(
    std::uint64_t address, std::function<std::uint64_t&()> value, std::uint64_t least, std::uint64_t most, Lock lock,
    std::uint64_t step)
{
    map.AddInteger(address, 4, value, [this, value, least, most, lock, step](std::uint64_t wanted) {
        if (lock == Lock::WithFormat) RequireUnlocked();
        if (wanted < least || wanted > most || (wanted - least) % step != 0) RefuseValue("the value is out of range");
        value() = wanted;
    });
}

void CameraFeatures::AddNumber(
    std::uint64_t address, std::uint64_t FeatureValues::*value, std::uint64_t least, std::uint64_t most, Lock lock,
    std::uint64_t step)
{
    AddNumber(
        address, [this, value]() -> std::uint64_t& { return state.values.*value; }, least, most, lock, step);
}

void CameraFeatures::AddFloat(
    std::uint64_t address, std::size_t bytes, std::function<double&()> value, double least, double most)
{
    map.AddFloat(address, bytes, value, [value, least, most](double wanted) {
        if (!(wanted >= least && wanted <= most)) RefuseValue("the value is out of range");
        value() = wanted;
    });
}

void CameraFeatures::AddRegion(
    std::uint64_t address, std::uint64_t FeatureValues::*value,
    void (FeatureValues::*set)(const Sensor&, std::uint64_t), Lock lock)
{
    map.AddInteger(
        address, 4, [this, value] { return state.values.*value; },
        [this, set, lock](std::uint64_t wanted) {
            if (lock == Lock::WithFormat) RequireUnlocked();
            (state.values.*set)(sensor, wanted);
        });
}

void CameraFeatures::AddDeviceControl()
{
    map.AddText(0x100, textRegisterBytes, "a simulated camera");
    map.AddText(0x140, textRegisterBytes, [this] { return state.firmware; });
    map.AddText(0x200, textRegisterBytes, settings.serial);
    map.AddText(
        0x240, textRegisterBytes, [this] { return state.userName; },
        [this](std::string text) { state.userName = std::move(text); });
    for (std::size_t part = 0; part < std::size(cameraSFNC); ++part)
        map.AddInteger(0x280 + stepBytes * part, 4, cameraSFNC[part]);
    for (std::size_t place = 0; place < 2; ++place)
        map.AddFloat(0x290 + stepBytes * place, 4, [this, place] { return Temperature(place); });
    map.AddInteger(
        0x298, 4, [] { return std::uint64_t{0}; },
        [this](std::uint64_t value) {
            if (value > 1) RefuseValue("a command takes 1");
            if (value == 1) Reset();
        });
    AddNumber(0x29C, &FeatureValues::heartbeat, 0, 1);
    AddNumber(0x2A0, &FeatureValues::heartbeatTimeout_us, 500'000, 60'000'000);
    map.AddInteger(0x2A8, 8, connection.tlType == "U3V" ? 500'000'000 : 125'000'000);
    map.AddCommand(0x2B0, [this] { state.clockStart = Clock::now(); });
    map.AddCommand(0x2B4, [this] { state.latched_ns = ClockValue_ns(); });
    map.AddInteger(0x2B8, 8, [this] { return state.latched_ns; });
}

void CameraFeatures::AddImageFormatControl()
{
    AddRegion(0x300, &FeatureValues::width, &FeatureValues::SetWidth, Lock::WithFormat);
    AddRegion(0x304, &FeatureValues::height, &FeatureValues::SetHeight, Lock::WithFormat);
    map.AddInteger(
        0x308, 4, [this] { return std::uint64_t{state.values.format->code}; },
        [this](std::uint64_t code) {
            RequireUnlocked();
            state.values.SetFormat(sensor, code);
        });
    map.AddInteger(0x320, 4, sensor.width);
    map.AddInteger(0x324, 4, sensor.height);
    map.AddInteger(0x328, 4, [this] { return state.values.WidthMax(sensor); });
    map.AddInteger(0x32C, 4, [this] { return state.values.HeightMax(sensor); });
    AddRegion(0x330, &FeatureValues::offsetX, &FeatureValues::SetOffsetX, Lock::Never);
    AddRegion(0x334, &FeatureValues::offsetY, &FeatureValues::SetOffsetY, Lock::Never);
    map.AddInteger(0x348, 4, [this] { return state.values.WidthStep(); });
    AddRegion(0x350, &FeatureValues::binningHorizontal, &FeatureValues::SetBinningHorizontal, Lock::WithFormat);
    AddRegion(0x354, &FeatureValues::binningVertical, &FeatureValues::SetBinningVertical, Lock::WithFormat);
    map.AddInteger(0x358, 4, [this] { return state.values.BinningMax(sensor.width, state.values.WidthStep()); });
    map.AddInteger(0x35C, 4, [this] { return state.values.BinningMax(sensor.height, 1); });
    AddNumber(0x360, &FeatureValues::reverseX, 0, 1, Lock::WithFormat);
    AddNumber(0x364, &FeatureValues::reverseY, 0, 1, Lock::WithFormat);
    AddNumber(0x368, &FeatureValues::testPattern, 0, static_cast<std::uint64_t>(TestPattern::ColorBar));

    std::uint64_t words[2] = {};
    for (std::size_t index = 0; index < PixelFormats().size(); ++index)
        if (sensor.CanSend(PixelFormats()[index])) words[index / 32] |= std::uint64_t{1} << index % 32;
    map.AddInteger(0x380, 4, words[0]);
    map.AddInteger(0x384, 4, words[1]);
    map.AddInteger(0x388, 4, sensor.colours == Colours::Mono ? 0 : 1);
}

void CameraFeatures::AddAcquisitionControl()
{
    AddNumber(0x400, &FeatureValues::acquisitionMode, 0, 2, Lock::WithFormat);
    map.AddCommand(0x404, [this] {
        if (!state.acquisition.IsActive()) state.acquisition.Start(state.values);
    });
    map.AddCommand(0x408, [this] { state.acquisition.Stop(); });
    AddNumber(0x40C, &FeatureValues::frameCount, 1, 65535);
    AddNumber(0x410, &FeatureValues::rateEnabled, 0, 1);
    AddFloat(
        0x418, 8, [this]() -> double& { return state.values.rate; }, 0.001, 100'000);
    map.AddFloat(0x420, 8, [this] { return state.values.ResultingRate(sensor); });
    map.AddFloat(
        0x430, 8, [this] { return state.values.Exposure_us(sensor); },
        [this](double wanted) {
            if (state.values.exposureIsAutomatic)
                throw Failure(GC_ERR_ACCESS_DENIED, "the camera chooses the exposure time");
            if (!(wanted >= minExposure_us && wanted <= maxExposure_us)) RefuseValue("the value is out of range");
            state.values.exposure_us = wanted;
        });
    map.AddInteger(
        0x438, 4, [this]() -> std::uint64_t { return state.values.exposureIsAutomatic ? 2 : 0; },
        [this](std::uint64_t mode) {
            if (mode > 2) RefuseValue("the value is out of range");
            if (mode > 0 || state.values.exposureIsAutomatic)
                state.values.exposure_us = state.values.AutomaticExposure_us(sensor);
            state.values.exposureIsAutomatic = mode == 2;
        });
    map.AddInteger(0x43C, 4, [this] { return StatusBits(); });
    for (const Step step : {Step::Frame, Step::Acquisition})
    {
        const auto index = static_cast<std::size_t>(step);
        const auto of = [this, index](std::uint64_t Trigger::*member) {
            return [this, index, member]() -> std::uint64_t& { return state.values.triggers[index].*member; };
        };
        AddNumber(0x440 + stepBytes * index, of(&Trigger::mode), 0, 1);
        AddNumber(0x448 + stepBytes * index, of(&Trigger::source), 0, 1);
        AddNumber(0x450 + stepBytes * index, of(&Trigger::activation), 0, 2);
        map.AddCommand(0x458 + stepBytes * index, [this, step, index] {
            if (state.values.triggers[index].source == 0) state.acquisition.Pull(state.values, step, Time());
        });
    }
}

void CameraFeatures::AddAnalogControl()
{
    constexpr std::int32_t least[] = {0, -600};
    constexpr std::int32_t most[] = {2400, 1200};
    for (std::size_t index = 0; index < 2; ++index)
        map.AddInteger(
            0x500 + stepBytes * index, 4,
            [this, index] { return static_cast<std::uint64_t>(state.values.gain[index]); },
            [this, index, low = least[index], high = most[index]](std::uint64_t value) {
                const auto wanted = static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
                if (wanted < low || wanted > high) RefuseValue("the value is out of range");
                state.values.gain[index] = wanted;
            });
    AddNumber(0x508, &FeatureValues::blackLevel, 0, 1023);
    AddFloat(
        0x510, 4, [this]() -> double& { return state.values.gamma; }, 0.25, 4);
    for (std::size_t index = 0; index < 3; ++index)
        AddFloat(
            0x520 + stepBytes * index, 4, [this, index]() -> double& { return state.values.balance[index]; }, 0.25, 4);
}

void CameraFeatures::AddTable()
{
    AddNumber(0x540, &FeatureValues::tableEnabled, 0, 1);
    map.AddBlock(
        0x600, sizeof state.values.table,
        [this] {
            const auto bytes = std::as_bytes(std::span(state.values.table));
            return std::vector<std::byte>(bytes.begin(), bytes.end());
        },
        [this](std::span<const std::byte> in) { std::memcpy(state.values.table.data(), in.data(), in.size()); });
}

void CameraFeatures::AddCountersAndTimer()
{
    for (std::size_t index = 0; index < 2; ++index)
    {
        AddNumber(
            0x700 + stepBytes * index, [this, index]() -> std::uint64_t& { return state.values.counterSource[index]; },
            0, static_cast<std::uint64_t>(CounterEvent::Line0));
        map.AddCommand(0x708 + stepBytes * index, [this, index] { state.acquisition.ResetCounter(index); });
        map.AddInteger(0x710 + stepBytes * index, 4, [this, index] { return state.acquisition.Counter(index); });
    }
    AddFloat(
        0x720, 8, [this]() -> double& { return state.values.timerDuration_us; }, 1, 60'000'000);
    map.AddCommand(0x728, [this] { state.timerStart = Clock::now(); });
    map.AddInteger(0x72C, 4, [this] { return TimerStatus(); });
    map.AddFloat(0x730, 8, [this] { return TimerValue_us(); });
}

void CameraFeatures::AddLines()
{
    const auto add = [this](std::uint64_t address, std::function<std::uint64_t&()> value) {
        map.AddInteger(address, 4, value, [this, value](std::uint64_t wanted) {
            if (wanted > 1) RefuseValue("the value is out of range");
            const std::uint64_t before = state.values.LineLevels();
            value() = wanted;
            OnLinesChanged(before);
        });
    };
    for (std::size_t line = 0; line < 2; ++line)
        add(0x748 + stepBytes * line, [this, line]() -> std::uint64_t& { return state.values.lineInverted[line]; });
    add(0x75C, [this]() -> std::uint64_t& { return state.values.lineSource; });
    add(0x764, [this]() -> std::uint64_t& { return state.values.userOutput; });
    map.AddInteger(0x760, 4, [this] { return state.values.LineLevels(); });
}

void CameraFeatures::AddUserSets()
{
    for (std::size_t set = 0; set < state.userSets.size(); ++set)
    {
        map.AddCommand(0x780 + stepBytes * set, [this, set] {
            RequireUnlocked();
            Load(set);
        });
        if (set > 0) map.AddCommand(0x790 + stepBytes * set, [this, set] { state.userSets[set] = state.values; });
    }
    AddNumber(
        0x7A0, [this]() -> std::uint64_t& { return state.userSetDefault; }, 0, state.userSets.size() - 1);
}

} // namespace koro::simulator
