// The registers of a camera that belong to its transport.
#include "producers/kit/failure.h"
#include "producers/simulator/camera/camera_features.h"
#include "producers/simulator/kit.h"

#include <algorithm>
#include <string>

namespace koro::simulator
{
namespace
{

constexpr std::uint64_t testMemoryAddress = 0x8000;
constexpr std::size_t testMemoryBytes = 0x4000;

constexpr std::uint64_t gevVersion = 2U << 16 | 2;
constexpr std::uint64_t gevDeviceMode = 1U << 31 | 1; // big-endian, UTF-8
constexpr std::uint64_t gevOptions = 0b01111;         // all that is listed but resending

constexpr std::uint64_t leaderBytes = 52;
constexpr std::uint64_t trailerBytes = 36;
constexpr std::uint64_t finalTransferStep = 1024;

} // namespace

void CameraFeatures::AddTransportLayer()
{
    map.AddInteger(0x310, 8, [this] { return std::uint64_t{state.values.Chunks(chunkForm).PayloadBytes()}; });
    map.AddInteger(
        0x318, 4, [this]() -> std::uint64_t { return IsFormatLocked() ? 1 : 0; },
        [this](std::uint64_t wanted) {
            if (wanted > 1) RefuseValue("the value is out of range");
            state.paramsLocked = wanted;
        });
    if (connection.tlType == "GEV") AddGigEVision();
    if (connection.tlType == "U3V") AddUSB3Vision();
}

void CameraFeatures::AddGigEVision()
{
    map.AddInteger(0x800, 4, gevVersion);
    map.AddInteger(0x804, 4, gevDeviceMode);
    map.AddInteger(0x808, 8, connection.network.mac);
    map.AddInteger(0x810, 4, gevOptions);
    map.AddInteger(0x814, 4, connection.network.ip);
    map.AddInteger(0x818, 4, connection.network.mask);
    map.AddInteger(0x81C, 4, connection.network.gateway);
    AddNumber(0x820, &FeatureValues::packetSize, 576, 9000, Lock::WithFormat, 4);
    AddNumber(0x824, &FeatureValues::packetDelay, 0, 1'000'000);
    map.AddInteger(0x840, 4, settings.longestCommand);
    testMemory.resize(testMemoryBytes);
    map.AddBlock(
        testMemoryAddress, testMemoryBytes, [this] { return testMemory; },
        [this](std::span<const std::byte> in) { std::copy(in.begin(), in.end(), testMemory.begin()); });
}

// Only the test memory is large enough to show it.
void CameraFeatures::RefuseLongCommand(std::uint64_t address, std::size_t bytes) const
{
    const bool isTest =
        !testMemory.empty() && address >= testMemoryAddress && address - testMemoryAddress < testMemoryBytes;
    if (isTest && settings.longestPassingCommand > 0 && bytes > settings.longestPassingCommand)
        throw Failure(GC_ERR_TIMEOUT, "a command of " + std::to_string(bytes) + " bytes got no answer");
}

void CameraFeatures::AddUSB3Vision()
{
    const auto payload = [this] { return std::uint64_t{state.values.Chunks(chunkForm).PayloadBytes()}; };
    const auto rest = [this, payload] { return payload() % state.values.transferSize; };
    map.AddInteger(0x904, 4, [this]() -> std::uint64_t { return state.isStreaming ? 1 : 0; });
    map.AddInteger(0x908, 8, payload);
    map.AddInteger(0x910, 4, leaderBytes);
    map.AddInteger(0x914, 4, trailerBytes);
    AddNumber(0x918, &FeatureValues::maximumLeader, 52, 65536, Lock::WithFormat);
    AddNumber(0x91C, &FeatureValues::maximumTrailer, 52, 65536, Lock::WithFormat);
    AddNumber(0x920, &FeatureValues::transferSize, 1024, 1'048'576, Lock::WithFormat, 1024);
    map.AddInteger(0x924, 4, [this, payload] { return payload() / state.values.transferSize; });
    map.AddInteger(0x928, 4, [rest] { return rest() / finalTransferStep * finalTransferStep; });
    map.AddInteger(0x92C, 4, [rest] { return rest() % finalTransferStep == 0 ? 0 : finalTransferStep; });
}

} // namespace koro::simulator
