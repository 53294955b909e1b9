// Device: an open camera, the local module.
//
// A device whose camera went away stays open, with operations that fail, until it is closed. It works again when the
// camera was only unplugged, with its power from elsewhere; else it never does.
#pragma once

#include "producers/kit/device.h"
#include "producers/simulator/camera/camera.h"
#include "producers/simulator/face/connection.h"
#include "producers/simulator/kit.h"

#include <memory>
#include <string>

namespace koro::simulator
{

class DataStream;
class Interface;

class Device final : public kit::Device
{
public:
    Device(
        std::shared_ptr<Interface> parentInterface, std::shared_ptr<Camera> openedCamera, DEVICE_ACCESS_FLAGS access);

    const std::string& Id() const noexcept override { return id; }
    InfoValue Info(DEVICE_INFO_CMD command) const override;
    const Camera& TheCamera() const noexcept { return *camera; }
    const std::shared_ptr<Camera>& SharedCamera() const noexcept { return camera; }
    Interface& TheInterface() const noexcept { return *interface; }
    Port& ModulePort() override { return port; }
    DEVICE_ACCESS_STATUS AccessStatus() const noexcept override;

    // Null when it is not open.
    std::shared_ptr<DataStream> FindOpenStream() const;

    std::shared_ptr<const Connection> TheConnection() const noexcept { return connection; }
    void RequireConnection() const { connection->Require(); }
    // A camera that several processes can open sends images to the one that controls it.
    void RequireStreamAccess() const;
    // The camera is gone for good.
    void OnCameraLost();
    // The cable was pulled, and nothing comes through it any more once this returns; and back.
    void OnInterruption();
    void OnRestoration();
    // After a write to the camera, which may have reset it.
    void OnCameraWritten();

private:
    bool SupportsEvent(EVENT_TYPE type) const noexcept override;
    void OnRegistration(EVENT_TYPE type, EventQueue* registration) noexcept override;
    InfoValue PacketInfo(EVENT_TYPE type, std::string_view block, EVENT_DATA_INFO_CMD command) const override;
    std::shared_ptr<RemoteDevice> MakeRemote() override;
    void RequireStreamable() const override { RequireConnection(); }
    std::shared_ptr<kit::DataStream> MakeStream(const std::string& streamId) override;
    void OnClosing() override;
    void OnStreamsClosed() override;
    void OnRemoteClosed() override { claim.reset(); }
    void RaiseCameraGone();
    void SilenceStream();

    const std::shared_ptr<Interface> interface;
    const std::shared_ptr<Camera> camera;
    const std::string id; // the camera's at the opening
    const DEVICE_ACCESS_FLAGS access;
    std::unique_ptr<CameraClaim> claim; // on a camera with a memory, until the close
    const std::shared_ptr<Connection> connection;
    PortRegisters MakeRegisters();
    void AddRetries(RegisterMap& map);

    // Of the description; guarded by the lock of the registers.
    std::uint64_t commandTimeout_us = 200'000;
    std::uint64_t commandRetries = 3;
    std::uint64_t commandLength = 576; // bytes, of GigE Vision

    Port port;
};

// What DevGetInfo and IFGetDeviceInfo answer. The camera lives longer.
DeviceFacts FactsOf(const Camera& camera, const std::string& id);

} // namespace koro::simulator
