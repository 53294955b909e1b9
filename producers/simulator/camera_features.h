// CameraFeatures: the state of a camera behind its registers, and what the frame generator asks of it.
//
// Owned by its Camera, so it outlives every opening. Any thread; everything is guarded by the lock of the registers.
// Listeners are called without it, after each write that went well.
#pragma once

#include "producers/simulator/acquisition.h"
#include "producers/simulator/feature_values.h"
#include "producers/simulator/port.h"
#include "producers/simulator/transport.h"

#include <array>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

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
};

struct Frame
{
    std::uint64_t id;
    std::shared_ptr<const FramePlan> plan;
};

class CameraFeatures final : public RegisterSpace
{
public:
    CameraFeatures(const CameraSettings& cameraSettings, const CameraConnection& plug);

    ByteOrder Order() const noexcept { return order; }
    // To be called before anyone else sees the registers.
    void AddDescription(const PortFacts& facts, const Description& description)
    {
        AddCommonRegisters(map, facts, description);
    }
    void Read(std::uint64_t address, std::span<std::byte> out) const override { map.Read(address, out); }
    void Write(std::uint64_t address, std::span<const std::byte> in) override;

    std::string UserName() const;
    ImageShape Shape() const;

    // A stream starts and stops to listen. With `startWithStream` the camera starts and stops with it.
    void OnStreamStart();
    void OnStreamStop();
    // The device was closed: as a camera whose control link went, it stops and gives up its lock.
    void OnRelease();
    // The cable was pulled: what comes back has started anew.
    void OnPowerLoss();

    FrameRequest Look() const;
    // Nothing when the run has ended meanwhile.
    std::optional<Frame> TakeFrame(std::uint64_t run);

    // `onWrite` until Unlisten of the result.
    std::uint64_t Listen(std::function<void()> onWrite);
    void Unlisten(std::uint64_t listener);

    // How often DeviceReset was executed.
    std::uint64_t NumResets() const;

private:
    using Clock = std::chrono::steady_clock;

    // All that changes; a copy of it takes back what a write did half.
    struct State
    {
        FeatureValues values;
        std::array<FeatureValues, 3> userSets; // Default, UserSet0, UserSet1
        std::uint64_t userSetDefault = 0;
        std::string userName;
        std::uint64_t paramsLocked = 0;
        bool isStreaming = false;
        Acquisition acquisition;
        std::optional<Clock::time_point> timerStart;
        Clock::time_point clockStart;
        std::uint64_t latched_ns = 0;
        std::uint64_t numResets = 0;
    };

    // One for each category of the description, in camera_registers.cpp.
    void AddDeviceControl();
    void AddImageFormatControl();
    void AddAcquisitionControl();
    void AddAnalogControl();
    void AddTable();
    void AddCountersAndTimer();
    void AddLines();
    void AddUserSets();
    // camera_transport_registers.cpp
    void AddTransportLayer();
    void AddGigEVision();
    void AddUSB3Vision();

    // A number of the settings with a range, a step and, if wanted, the lock of the format.
    enum class Lock
    {
        Never,
        WithFormat
    };
    void AddNumber(
        std::uint64_t address, std::uint64_t FeatureValues::*value, std::uint64_t least, std::uint64_t most,
        Lock lock = Lock::Never, std::uint64_t step = 1);
    void AddNumber(
        std::uint64_t address, std::function<std::uint64_t&()> value, std::uint64_t least, std::uint64_t most,
        Lock lock = Lock::Never, std::uint64_t step = 1);
    void AddFloat(std::uint64_t address, std::size_t bytes, std::function<double&()> value, double least, double most);
    // A side of the image, set by a rule of FeatureValues.
    void AddRegion(
        std::uint64_t address, std::uint64_t FeatureValues::*value,
        void (FeatureValues::*set)(const Sensor&, std::uint64_t), Lock lock);

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

    const CameraSettings& settings;
    const CameraConnection& connection;
    const Sensor sensor;
    const ByteOrder order;
    RegisterMap map;

    // Guarded by the lock of the map.
    State state;
    std::shared_ptr<const FramePlan> plan;
    std::optional<FeatureValues> plannedValues; // those of the plan
    bool wasWritten = true;                     // since the plan was made
    std::vector<std::byte> testMemory;          // GevGVCPCMDLengthTest

    std::mutex listenerMutex; // before the streams' mutexes
    std::map<std::uint64_t, std::function<void()>> listeners;
    std::uint64_t nextListener = 1;
};

} // namespace koro::simulator
