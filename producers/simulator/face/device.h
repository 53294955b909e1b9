// Device: an open camera, the local module, and RemoteDevice: the port of the camera behind it.
//
// A device whose camera went away stays open, with operations that fail, until it is closed. It works again when the
// camera was only unplugged, with its power from elsewhere; else it never does.
#pragma once

#include "producers/kit/child_list.h"
#include "producers/simulator/camera/camera.h"
#include "producers/simulator/face/connection.h"
#include "producers/simulator/face/module.h"

#include <memory>
#include <string>

namespace koro::simulator
{

class DataStream;
class Interface;

class RemoteDevice final : public Module
{
public:
    RemoteDevice(const Camera& camera, PortRegisters registers, Port::Gate gate);

    Port& ModulePort() override { return port; }

private:
    void OnClose() override {}

    Port port;
};

class Device final : public Module
{
public:
    Device(
        std::shared_ptr<Interface> parentInterface, std::shared_ptr<Camera> openedCamera, DEVICE_ACCESS_FLAGS access);

    // To be called once, when the device is complete: makes the remote device.
    void Connect();

    const std::string& Id() const noexcept { return id; }
    const Camera& TheCamera() const noexcept { return *camera; }
    const std::shared_ptr<Camera>& SharedCamera() const noexcept { return camera; }
    const std::shared_ptr<Interface>& Parent() const noexcept { return parent; }
    const std::shared_ptr<RemoteDevice>& Remote() const noexcept { return remote; }
    Port& ModulePort() override { return port; }
    DEVICE_ACCESS_STATUS AccessStatus() const noexcept;

    std::shared_ptr<DataStream> OpenStream(const std::string& id);
    void Forget(const DataStream& stream) { streams.Forget(stream); }
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
    void OnClose() override;
    void RaiseCameraGone();
    void SilenceStream();

    const std::shared_ptr<Interface> parent;
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
    std::shared_ptr<RemoteDevice> remote;
    ChildList<DataStream> streams;
};

// DevGetInfo and IFGetDeviceInfo answer the same; the access status alone differs.
InfoValue DeviceInfo(const Camera& camera, const std::string& id, DEVICE_ACCESS_STATUS status, DEVICE_INFO_CMD command);

} // namespace koro::simulator
