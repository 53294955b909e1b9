#include "producers/simulator/camera/camera_features.h"

#include "producers/kit/failure.h"
#include "producers/simulator/kit.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <exception>
#include <utility>

namespace koro::simulator
{
namespace
{

std::uint64_t Nanoseconds(double microseconds)
{
    return static_cast<std::uint64_t>(std::llround(microseconds * 1000));
}

std::shared_ptr<CameraMemory> MakeMemory(const CameraSettings& settings, const std::string& tlType)
{
    if (settings.memory.empty()) return nullptr;
    return std::make_shared<CameraMemory>(
        settings.memory, settings.serial, IdentityOf(settings, tlType), Encode(CameraState(settings)));
}

} // namespace

CameraFeatures::CameraFeatures(
    const CameraSettings& cameraSettings, const CameraConnection& plug, const std::vector<FileFault>& fileFaults)
    : settings(cameraSettings), connection(plug), sensor(cameraSettings),
      order(plug.tlType == "GEV" ? ByteOrder::Big : ByteOrder::Little),
      chunkForm(ChunkFormOf(plug.tlType, cameraSettings.chunkChecksum)), map(order),
      events({EventPackets::FormOf(plug.tlType), cameraSettings.extendedEventIds}, cameraSettings.eventsPerPacket),
      memory(MakeMemory(cameraSettings, plug.tlType)), files(cameraSettings, fileFaults), state(cameraSettings)
{
    AddDeviceControl();
    AddImageFormatControl();
    AddAcquisitionControl();
    AddAnalogControl();
    AddTable();
    AddCountersAndTimer();
    AddLines();
    AddUserSets();
    AddFileAccess();
    AddEvents();
    AddChunks();
    AddScan3d();
    AddTransportLayer();
    map.SetSnapshot([this]() -> RegisterMap::Action {
        return [this, before = state, filesBefore = files.TheRegisters()] {
            state = before;
            files.SetRegisters(filesBefore);
        };
    });
    if (!memory) return;
    map.Lock().ShareBy(*this);
    const std::lock_guard lock(map.Lock()); // refuses what no camera left there
}

// Writers that are gone have ended their use of the camera, however they went.
void CameraFeatures::Enter()
{
    memory->Lock();
    try
    {
        const auto told = memory->Fetch();
        if (!told.empty())
        {
            if (!Decode(told, sensor, state)) memory->RefuseState();
            wasWritten = true;
        }
        if (state.IsInUse() && !memory->IsControlled())
        {
            state.EndUse();
            Save();
        }
    }
    catch (...)
    {
        memory->Unlock();
        throw;
    }
}

void CameraFeatures::Save()
{
    memory->Save(Encode(state));
}

void CameraFeatures::Leave() noexcept
{
    memory->Unlock();
}

void CameraFeatures::Write(std::uint64_t address, std::span<const std::byte> in)
{
    RefuseLongCommand(address, in.size());
    map.Write(address, in);
    {
        const std::lock_guard lock(map.Lock());
        wasWritten = true;
    }
    TellEvents();
    Announce();
}

void CameraFeatures::Announce()
{
    const std::lock_guard lock(listenerMutex);
    for (const auto& [number, listener] : listeners)
        listener();
}

std::string CameraFeatures::UserName() const
{
    const std::lock_guard lock(map.Lock());
    return state.userName;
}

std::size_t CameraFeatures::PayloadBytes() const
{
    const std::lock_guard lock(map.Lock());
    return state.values.Chunks(chunkForm).PayloadBytes();
}

std::uint64_t CameraFeatures::NumResets() const
{
    const std::lock_guard lock(map.Lock());
    return state.numResets;
}

void CameraFeatures::OnStreamStart()
{
    const std::lock_guard lock(map.Lock());
    state.isStreaming = true;
    if (settings.startWithStream)
        state.acquisition.Start(state.values);
    else
        state.acquisition.Restart();
    map.Lock().Save();
}

void CameraFeatures::OnStreamStop() noexcept
{
    ChangeIfReachable([this] {
        state.isStreaming = false;
        if (settings.startWithStream) state.acquisition.Stop();
    });
}

void CameraFeatures::OnRelease() noexcept
{
    ChangeIfReachable([this] {
        state.EndUse();
        files.CloseAll();
    });
}

void CameraFeatures::OnPowerLoss() noexcept
{
    ChangeIfReachable([this] {
        Reset();
        state.isStreaming = false;
        state.numResets = 0;
        wasWritten = true;
    });
}

template <typename Change>
void CameraFeatures::ChangeIfReachable(const Change& change) noexcept
{
    try
    {
        const std::lock_guard lock(map.Lock());
        change();
        map.Lock().Save();
    }
    catch (const std::exception&)
    { // no lock, no change
    }
}

FrameRequest CameraFeatures::Look() const
{
    const std::lock_guard lock(map.Lock());
    const Acquisition& acquisition = state.acquisition;
    FrameRequest request;
    request.run = acquisition.Run();
    if (!acquisition.IsActive() || acquisition.AwaitsStart() || acquisition.LacksFrameTrigger(state.values))
        return request;
    request.rate = state.values.ResultingRate(sensor);
    if (request.rate == 0)
        request.state = FrameRequest::State::Unpaced;
    else if (state.values.triggers[static_cast<std::size_t>(Step::Frame)].mode == 1)
    {
        request.state = FrameRequest::State::Triggered;
        request.exposureEnd_ns = acquisition.NextExposure_ns() + Nanoseconds(state.values.Exposure_us(sensor));
        request.readout_ns = Nanoseconds(state.values.Readout_us(sensor));
    }
    else
        request.state = FrameRequest::State::Paced;
    return request;
}

std::optional<Frame> CameraFeatures::TakeFrame(std::uint64_t run)
{
    const std::lock_guard lock(map.Lock());
    Acquisition& acquisition = state.acquisition;
    if (!acquisition.IsActive() || acquisition.Run() != run || acquisition.LacksFrameTrigger(state.values))
        return std::nullopt;
    RefreshPlan();
    const std::uint64_t id = acquisition.TakeFrame(state.values);
    const Frame frame{
        id,
        plan,
        (state.values.notifiedEvents & SetOf(CameraEvent::ExposureEnd)) != 0,
        {acquisition.Counter(0), acquisition.Counter(1)}};
    map.Lock().Save();
    return frame;
}

void CameraFeatures::RefreshPlan()
{
    if (!wasWritten) return;
    wasWritten = false;
    if (plannedValues == state.values) return;
    plan = std::make_shared<const FramePlan>(state.values.MakePlan(sensor, chunkForm));
    plannedValues = state.values;
}

std::uint64_t CameraFeatures::Listen(std::function<void()> onWrite)
{
    const std::lock_guard lock(listenerMutex);
    listeners.emplace(nextListener, std::move(onWrite));
    return nextListener++;
}

void CameraFeatures::Unlisten(std::uint64_t listener)
{
    const std::lock_guard lock(listenerMutex);
    listeners.erase(listener);
}

void CameraFeatures::RequireUnlocked() const
{
    if (IsFormatLocked()) throw Failure(GC_ERR_ACCESS_DENIED, "the format is locked while images are taken");
}

void CameraFeatures::OnLinesChanged(std::uint64_t levelsBefore)
{
    const std::uint64_t now = state.values.LineLevels() & 1;
    if ((levelsBefore & 1) != now) state.acquisition.OnLine(state.values, now == 1, Time());
}

void CameraFeatures::Load(std::size_t userSet)
{
    const std::uint64_t before = state.values.LineLevels();
    state.values = state.userSets.at(userSet);
    OnLinesChanged(before);
}

void CameraFeatures::Reset()
{
    state.acquisition.Stop();
    state.paramsLocked = 0;
    state.values = state.userSets[state.userSetDefault];
    state.timerStart.reset();
    state.clockStart = Clock::now();
    state.latched_ns = 0;
    state.firmware = state.nextFirmware;
    files.Restart();
    ++state.numResets;
}

SensorTime CameraFeatures::Time() const
{
    const double rate = state.values.ResultingRate(sensor);
    const auto now = Clock::now().time_since_epoch();
    return {
        static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()),
        rate == 0 ? 0 : Nanoseconds(1e6 / rate)};
}

std::uint64_t CameraFeatures::ClockValue_ns() const
{
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now() - state.clockStart).count());
}

double CameraFeatures::TimerValue_us() const
{
    if (!state.timerStart) return 0;
    const double elapsed = std::chrono::duration<double, std::micro>(Clock::now() - *state.timerStart).count();
    return std::min(elapsed, state.values.timerDuration_us);
}

std::uint64_t CameraFeatures::TimerStatus() const
{
    if (!state.timerStart) return 0;
    return TimerValue_us() < state.values.timerDuration_us ? 1 : 2;
}

double CameraFeatures::Temperature(std::size_t place) const
{
    constexpr double cold = 30;
    constexpr double rise = 10;
    constexpr double warmUp_s = 60;
    const double running_s = static_cast<double>(ClockValue_ns()) / 1e9;
    const double sensorPlace =
        cold + rise * (1 - std::exp(-running_s / warmUp_s)) + (state.acquisition.IsActive() ? 3 : 0);
    return place == 0 ? sensorPlace : sensorPlace - 5;
}

std::uint64_t CameraFeatures::StatusBits() const
{
    const Acquisition& acquisition = state.acquisition;
    return (acquisition.AwaitsStart() ? 1U : 0U) | (acquisition.IsActive() ? 2U : 0U) |
           (acquisition.AwaitsFrameTrigger(state.values, Time()) ? 4U : 0U);
}

} // namespace koro::simulator
