// CameraFeatures: the state of a camera behind its registers, and what the frame generator asks of it.
//
// Owned by its Camera, so it outlives every opening. Any thread; everything is guarded by the lock of the registers,
// which other processes share when the camera has a memory.
// Listeners are called without it, after each write that went well.
#pragma once

#include "producers/kit/port.h"
#include "producers/simulator/camera/camera_memory.h"
#include "producers/simulator/camera/camera_state.h"
#include "producers/simulator/camera/device_files.h"
#include "producers/simulator/camera/transport.h"
#include "producers/simulator/feature_register.h"
#include "producers/simulator/kit.h"

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace koro::simulator
{

// Where a camera is plugged in.
struct CameraConnection
{
    std::string tlType;
    NetworkAddress network; // of GigE Vision cameras
};

// What the generator is to do next.
struct FrameRequest
{
    enum class State
    {
        Silent,  // not started, or waiting for a trigger
        Paced,   // at a rate
        Unpaced, // as fast as buffers come
        Triggered
    };
    State state = State::Silent;
    std::uint64_t run = 0;
    double rate = 0; // of Paced
    // Of Triggered: by the monotonic clock, and how long it takes from there until the image is there.
    std::uint64_t exposureEnd_ns = 0;
    std::uint64_t readout_ns = 0;
};

struct Frame
{
    std::uint64_t id;
    std::shared_ptr<const FramePlan> plan;
    bool tellsExposureEnd;
    std::array<std::uint64_t, 2> counters; // when it was taken
};

class CameraFeatures final : public RegisterSpace, private RegisterLock::Sharing
{
public:
    // With the memory that the settings name, if they do.
    CameraFeatures(
        const CameraSettings& cameraSettings, const CameraConnection& plug,
        const std::vector<FileFault>& fileFaults = {});

    ByteOrder Order() const noexcept { return order; }
    // To be called before anyone else sees the registers.
    void AddDescription(const PortFacts& facts, const Description& description)
    {
        AddCommonRegisters(map, facts, description);
    }
    void Read(std::uint64_t address, std::span<std::byte> out) const override { map.Read(address, out); }
    void Write(std::uint64_t address, std::span<const std::byte> in) override;

    std::string UserName() const;
    // Of one frame, as things stand.
    std::size_t PayloadBytes() const;
    ChunkForm ChunksForm() const noexcept { return chunkForm; }

    // A stream starts and stops to listen. With `startWithStream` the camera starts and stops with it.
    void OnStreamStart();
    // This and the next two do nothing when the memory cannot be reached: the use of a camera ends with the claim on it
    // anyway.
    void OnStreamStop() noexcept;
    // The device was closed: as a camera whose control link went, it stops and gives up its lock.
    void OnRelease() noexcept;
    // The cable was pulled: a camera that comes back has started again.
    void OnPowerLoss() noexcept;

    FrameRequest Look() const;
    // Nothing when the run has ended meanwhile.
    std::optional<Frame> TakeFrame(std::uint64_t run);

    // `onWrite` until Unlisten of the result.
    std::uint64_t Listen(std::function<void()> onWrite);
    void Unlisten(std::uint64_t listener);
    // Calls the listeners.
    void Announce();

    // The events. The generator sends ExposureEnd, the features send the rest.
    CameraEvents& Events() noexcept { return events; }

    // How often DeviceReset was executed by this process, since the power was lost.
    std::uint64_t NumResets() const;

    // Null without one.
    const std::shared_ptr<CameraMemory>& Memory() const noexcept { return memory; }

private:
    using Clock = CameraClock;

    void Enter() override;
    void Save() override;
    void Leave() noexcept override;

    // One for each category of the description, in camera_registers.cpp.
    void AddDeviceControl();
    void AddImageFormatControl();
    void AddAcquisitionControl();
    void AddAnalogControl();
    void AddTable();
    void AddCountersAndTimer();
    void AddLines();
    void AddUserSets();
    // camera_file_registers.cpp
    void AddFileAccess();
    bool KeepFirmware(); // with the lock held; whether there was new one
    // camera_event_registers.cpp
    void AddEvents();
    void TellEvents();
    SensorTime Time() const; // with the lock held
    // camera_chunk_registers.cpp
    void AddChunks();
    // camera_scan3d_registers.cpp
    void AddScan3d();
    // camera_transport_registers.cpp
    void AddTransportLayer();
    void AddGigEVision();
    void AddUSB3Vision();

    // A setting. `set` gets only what the description allows at present.
    template <typename Register>
    void AddSetting(const Register& place, std::function<std::uint64_t()> get, std::function<void(std::uint64_t)> set);
    void AddNumber(const NumberRegister& place, std::uint64_t FeatureValues::*value);
    void AddNumber(const NumberRegister& place, const std::function<std::uint64_t&()>& value);
    void AddReal(const RealRegister& place, const std::function<double&()>& value);
    // A side of the image, set by a rule of FeatureValues.
    void AddRegion(
        const FeatureRegister& place, std::uint64_t FeatureValues::*value,
        void (FeatureValues::*set)(const Sensor&, std::uint64_t));

    template <typename Change>
    void ChangeIfReachable(const Change& change) noexcept;

    // With the lock held.
    bool IsFormatLocked() const noexcept { return state.paramsLocked == 1 || state.acquisition.IsActive(); }
    void RequireUnlocked() const;
    void OnLinesChanged(std::uint64_t levelsBefore);
    void RefreshPlan();
    void RefuseLongCommand(std::uint64_t address, std::size_t bytes) const;
    void Load(std::size_t userSet);
    void Reset();
    std::uint64_t TimerStatus() const;
    double TimerValue_us() const;
    double Temperature(std::size_t place) const;
    std::uint64_t ClockValue_ns() const;
    std::uint64_t StatusBits() const;
    // From a number to a coordinate.
    struct Line
    {
        double scale_mm;
        double offset_mm;
    };
    Line Coordinate(std::size_t axis) const;

    const CameraSettings& settings;
    const CameraConnection& connection;
    const Sensor sensor;
    const ByteOrder order;
    const ChunkForm chunkForm;
    RegisterMap map;

    CameraEvents events;

    const std::shared_ptr<CameraMemory> memory; // null: the state is this process's own

    // Guarded by the lock of the map.
    DeviceFiles files; // this process's own
    CameraState state; // a copy, refreshed with each lock, when there is a memory
    std::shared_ptr<const FramePlan> plan;
    std::optional<FeatureValues> plannedValues; // those of the plan
    bool wasWritten = true;                     // since the plan was made
    std::vector<std::byte> testMemory;          // GevGVCPCMDLengthTest

    std::mutex listenerMutex; // before the streams' mutexes
    std::map<std::uint64_t, std::function<void()>> listeners;
    std::uint64_t nextListener = 1;
};

} // namespace koro::simulator
