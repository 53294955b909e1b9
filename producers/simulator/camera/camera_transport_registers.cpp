// The registers of a camera that belong to its transport.
#include "producers/kit/failure.h"
#include "producers/simulator/camera/register_settings.h"
#include "producers/simulator/kit.h"

#include <algorithm>
#include <string>

namespace koro::simulator
{
namespace
{

constexpr std::uint64_t gevVersion = 2U << 16 | 2;
constexpr std::uint64_t gevDeviceMode = 1U << 31 | 1; // big-endian, UTF-8
constexpr std::uint64_t gevOptions = 0b01111;         // all that is listed but resending

constexpr std::uint64_t leaderBytes = 52;
constexpr std::uint64_t trailerBytes = 36;
constexpr std::uint64_t finalTransferStep = 1024;

} // namespace

void CameraFeatures::AddTransportLayer()
{
    map.AddInteger(
        registers::PayloadSize, [this] { return std::uint64_t{state.values.Chunks(chunkForm).PayloadBytes()}; });
    AddSetting(
        registers::TLParamsLockedReg, [this]() -> std::uint64_t { return IsFormatLocked() ? 1 : 0; },
        [this](std::uint64_t wanted) { state.paramsLocked = wanted; });
    if (connection.tlType == "GEV") AddGigEVision();
    if (connection.tlType == "U3V") AddUSB3Vision();
}

void CameraFeatures::AddGigEVision()
{
    map.AddInteger(registers::GevVersionMajor, gevVersion);
    map.AddInteger(registers::GevDeviceModeIsBigEndianBit, gevDeviceMode);
    map.AddInteger(registers::GevMACAddress, connection.network.mac);
    map.AddInteger(registers::GevSupportedOptionReg, gevOptions);
    map.AddInteger(registers::GevCurrentIPAddress, connection.network.ip);
    map.AddInteger(registers::GevCurrentSubnetMask, connection.network.mask);
    map.AddInteger(registers::GevCurrentDefaultGateway, connection.network.gateway);
    AddNumber(registers::GevSCPSPacketSizeReg, &FeatureValues::packetSize);
    AddNumber(registers::GevSCPDReg, &FeatureValues::packetDelay);
    map.AddInteger(registers::GevGVCPCMDLength, settings.longestCommand);
    testMemory.resize(registers::GevGVCPCMDLengthTest.bytes);
    map.AddBlock(
        registers::GevGVCPCMDLengthTest, [this] { return testMemory; },
        [this](std::span<const std::byte> in) { std::copy(in.begin(), in.end(), testMemory.begin()); });
}

// Only the test memory is large enough to show it.
void CameraFeatures::RefuseLongCommand(std::uint64_t address, std::size_t bytes) const
{
    constexpr RegisterPlace test = registers::GevGVCPCMDLengthTest;
    const bool isTest = !testMemory.empty() && address >= test.address && address - test.address < test.bytes;
    if (isTest && settings.longestPassingCommand > 0 && bytes > settings.longestPassingCommand)
        throw Failure(GC_ERR_TIMEOUT, "a command of " + std::to_string(bytes) + " bytes got no answer");
}

void CameraFeatures::AddUSB3Vision()
{
    const auto payload = [this] { return std::uint64_t{state.values.Chunks(chunkForm).PayloadBytes()}; };
    const auto rest = [this, payload] { return payload() % state.values.transferSize; };
    map.AddInteger(registers::SIStreamEnableBit, [this]() -> std::uint64_t { return state.isStreaming ? 1 : 0; });
    map.AddInteger(registers::SIRequiredPayloadSize, payload);
    map.AddInteger(registers::SIRequiredLeaderSize, leaderBytes);
    map.AddInteger(registers::SIRequiredTrailerSize, trailerBytes);
    AddNumber(registers::SIMaximumLeaderSizeReg, &FeatureValues::maximumLeader);
    AddNumber(registers::SIMaximumTrailerSizeReg, &FeatureValues::maximumTrailer);
    AddNumber(registers::SIPayloadTransferSizeReg, &FeatureValues::transferSize);
    map.AddInteger(
        registers::SIPayloadTransferCount, [this, payload] { return payload() / state.values.transferSize; });
    map.AddInteger(
        registers::SIPayloadFinalTransfer1Size, [rest] { return rest() / finalTransferStep * finalTransferStep; });
    map.AddInteger(registers::SIPayloadFinalTransfer2Size, [rest] {
        return rest() % finalTransferStep == 0 ? 0 : finalTransferStep;
    });
}

} // namespace koro::simulator
