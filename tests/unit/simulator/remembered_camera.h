// RememberedCamera: the simulator with one camera that has a memory, and the camera opened.
//
// Owned by a test or by its other process.
#pragma once

#include "tests/unit/simulator/producer.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>

namespace koro::simulator::test
{

// Registers of a camera, four bytes each by default.
namespace at
{
inline constexpr std::uint64_t userName = 0x240; // 64 bytes
inline constexpr std::uint64_t temperature = 0x290;
inline constexpr std::uint64_t reset = 0x298;
inline constexpr std::uint64_t width = 0x300;
inline constexpr std::uint64_t height = 0x304;
inline constexpr std::uint64_t payloadSize = 0x310;
inline constexpr std::uint64_t paramsLocked = 0x318;
inline constexpr std::uint64_t acquisitionStart = 0x404;
inline constexpr std::uint64_t acquisitionStatus = 0x43C;
inline constexpr std::uint64_t userSetLoad1 = 0x788;
inline constexpr std::uint64_t userSetSave1 = 0x798;
inline constexpr std::uint64_t streamEnable = 0x904;
} // namespace at

inline constexpr std::uint32_t isActive = 2; // of AcquisitionStatus

// An unpaced U3V camera "A" of 64 x 48 pixels; `keys` are more of the camera's, `memory` is its folder.
inline std::string RememberedSettings(
    const std::string& memory, const std::string& keys = "", const std::string& serial = "A")
{
    return R"({"memory": ")" + memory + R"(", "interfaces": [{"id": "I", "tlType": "U3V", "cameras": [
        {"serial": ")" +
           serial + R"(", "width": 64, "height": 48, "rate": 0)" + keys + "}]}]}";
}

class RememberedCamera
{
public:
    explicit RememberedCamera(
        const std::string& settings, DEVICE_ACCESS_FLAGS access = DEVICE_ACCESS_CONTROL, const char* serial = "A")
        : producer(settings)
    {
        Require(producer.TLOpen(&system));
        Require(producer.TLUpdateInterfaceList(system, nullptr, 0));
        Require(producer.TLOpenInterface(system, "I", &interface));
        Require(producer.IFUpdateDeviceList(interface, nullptr, 0));
        if (access != DEVICE_ACCESS_NONE) Require(Open(access, serial));
    }

    // DEVICE_ACCESS_NONE in the constructor leaves it closed.
    GC_ERROR Open(DEVICE_ACCESS_FLAGS access, const char* serial = "A")
    {
        const GC_ERROR result = producer.IFOpenDevice(interface, serial, access, &device);
        if (result == GC_ERR_SUCCESS) Require(producer.DevGetPort(device, &remote));
        return result;
    }
    void Close() const { Require(producer.DevClose(device)); }
    std::int32_t Status() const
    {
        return producer.Get<std::int32_t>(producer.IFGetDeviceInfo, interface, "A", DEVICE_INFO_ACCESS_STATUS);
    }
    std::string ListedName() const
    {
        return producer.Get(producer.IFGetDeviceInfo, interface, "A", DEVICE_INFO_USER_DEFINED_NAME);
    }

    template <typename T = std::uint32_t>
    T Read(std::uint64_t address) const
    {
        T value{};
        Require(TryRead(address, &value, sizeof value));
        return value;
    }
    GC_ERROR TryRead(std::uint64_t address, void* bytes, std::size_t size) const
    {
        return producer.GCReadPort(remote, address, bytes, &size);
    }
    template <typename T>
    void Write(std::uint64_t address, const T& value) const
    {
        Require(TryWrite(address, value));
    }
    template <typename T>
    GC_ERROR TryWrite(std::uint64_t address, const T& value) const
    {
        std::size_t size = sizeof value;
        return producer.GCWritePort(remote, address, &value, &size);
    }
    void WriteWidth(std::uint32_t width) const { Write(at::width, width); }
    void WriteName(const std::string& name) const
    {
        std::array<char, 64> bytes{};
        std::memcpy(bytes.data(), name.data(), name.size());
        Write(at::userName, bytes);
    }

    GC_ERROR TryStream()
    {
        DS_HANDLE stream = nullptr;
        BUFFER_HANDLE buffer = nullptr;
        Require(producer.DevOpenDataStream(device, "Stream0", &stream));
        Require(producer.DSAllocAndAnnounceBuffer(stream, 64 * 48, nullptr, &buffer));
        return producer.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE);
    }
    // As a consumer takes images.
    void TakeImages()
    {
        Require(TryStream());
        Write(at::paramsLocked, std::uint32_t{1});
        Write(at::acquisitionStart, std::uint32_t{1});
    }

    void Require(GC_ERROR result) const
    {
        if (result != GC_ERR_SUCCESS) throw std::runtime_error(std::to_string(result) + ": " + producer.Last().text);
    }

    Producer producer;
    TL_HANDLE system = nullptr;
    IF_HANDLE interface = nullptr;
    DEV_HANDLE device = nullptr;
    PORT_HANDLE remote = nullptr;
};

} // namespace koro::simulator::test
